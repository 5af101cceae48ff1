#include <algorithm>
#include <cwctype>
#include <vector>

#include "automation/Text.h"
#include "browser/modLists_Tree.h"
#include "catalogue/Catalogue.h"
#include "editor/frmSQLEditor.h"
#include "forms/Twips.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"
#include "sql/Scope.h"

// F1: what the reference says of the word at the caret or of the selected entry, and what the object browser knows of
// the selected column, in a tip that stays until the next key.
namespace {

constexpr size_t MostEntries = 3;  // that begin with the word and are shown
constexpr long MostWords = 3;      // of an entry's name

struct Entry {
    const CatalogueSection* Section = nullptr;
    const CatalogueEntry* Found = nullptr;
};

template <class Step>
void ForEachEntry(Step&& step) {
    for (const CatalogueSection& Section : CatalogueSections()) {
        if (Section.DBType != 0 && Section.DBType != DBType) continue;
        for (const CatalogueEntry& Found : Section.Entries) step(Entry{&Section, &Found});
    }
}

Entry EntryOf(long Id) {
    for (const CatalogueSection& Section : CatalogueSections()) {
        const long At = Id - Section.FirstId;
        if (At >= 0 && At < static_cast<long>(Section.Entries.size()))
            return {&Section, &Section.Entries[static_cast<size_t>(At)]};
    }
    return {};
}

bool IsWordCharacter(wchar_t c) noexcept { return IsCharAlphaNumericW(c) || c == L'_' || c == L'$' || c == L'#'; }

// The words that an entry's name begins with, up to its bracket.
std::vector<std::wstring_view> WordsOf(std::wstring_view Text) {
    std::vector<std::wstring_view> Words;
    size_t At = 0;
    while (At < Text.size() && IsWordCharacter(Text[At])) {
        const size_t Start = At;
        while (At < Text.size() && IsWordCharacter(Text[At])) ++At;
        Words.push_back(Text.substr(Start, At - Start));
        if (At < Text.size() && Text[At] == L' ') ++At;
    }
    return Words;
}

// The word at a position of a text, and its neighbours that only blanks and line ends part from it.
struct WordsAround {
    std::vector<std::wstring_view> Words;
    size_t Caret = 0;  // which of them the caret is at
};

WordsAround WordsAt(std::wstring_view Text, size_t Caret) {
    const auto Back = [&](size_t At) {
        while (At > 0 && IsWordCharacter(Text[At - 1])) --At;
        return At;
    };
    const auto On = [&](size_t At) {
        while (At < Text.size() && IsWordCharacter(Text[At])) ++At;
        return At;
    };
    size_t Start = Back(std::min(Caret, Text.size()));
    size_t End = On(Start);
    WordsAround Around;
    if (Start == End) return Around;
    Around.Words.push_back(Text.substr(Start, End - Start));
    for (long More = 1; More < MostWords; ++More) {
        size_t Before = Start;
        while (Before > 0 && std::iswspace(Text[Before - 1])) --Before;
        if (Before == Start || Back(Before) == Before) break;
        Start = Back(Before);
        Around.Words.insert(Around.Words.begin(), Text.substr(Start, Before - Start));
        ++Around.Caret;
    }
    for (long More = 1; More < MostWords; ++More) {
        size_t After = End;
        while (After < Text.size() && std::iswspace(Text[After])) ++After;
        if (After == End || On(After) == After) break;
        End = On(After);
        Around.Words.push_back(Text.substr(After, End - After));
    }
    return Around;
}

// How many words of the text around the caret, the caret's among them, are the entry's name.
size_t Matched(const WordsAround& Around, std::wstring_view Text) {
    const std::vector<std::wstring_view> Words = WordsOf(Text);
    if (Words.empty()) return 0;
    for (size_t Before = 0; Before < Words.size() && Before <= Around.Caret; ++Before) {
        const size_t First = Around.Caret - Before;
        if (First + Words.size() > Around.Words.size()) continue;
        if (std::equal(Words.begin(), Words.end(), Around.Words.begin() + static_cast<ptrdiff_t>(First), SameName))
            return Words.size();
    }
    return 0;
}

// The entries of the longest name at the caret; else the first ones whose names begin with the word.
std::vector<Entry> EntriesAt(std::wstring_view Text, size_t Caret) {
    std::vector<Entry> Found;
    const WordsAround Around = WordsAt(Text, Caret);
    if (Around.Words.empty()) return Found;
    size_t Best = 0;
    ForEachEntry([&](const Entry& One) {
        const size_t Count = Matched(Around, One.Found->Text);
        if (Count <= Best) return;
        Best = Count;
        Found = {One};
    });
    if (Best > 0) return Found;
    ForEachEntry([&](const Entry& One) {
        const std::vector<std::wstring_view> Words = WordsOf(One.Found->Text);
        if (Found.size() < MostEntries && !Words.empty() && SameName(Words[0], Around.Words[Around.Caret]))
            Found.push_back(One);
    });
    return Found;
}

std::wstring HelpOf(const Entry& One) {
    if (One.Found == nullptr) return {};
    const CatalogueTexts Texts = ExpandTexts(*One.Section, *One.Found);
    std::wstring Syntax(One.Found->Text);
    if (One.Section->Rule == TextRule::HostCommand) {
        Syntax = Texts.ExecuteText.Text();
    } else if (Syntax.find(L'(') == Syntax.npos && !Texts.DragDrop.Text().empty()) {
        Syntax = Texts.DragDrop.Text();
    }
    const std::wstring Description(Texts.Description.Text());
    return Description.empty() ? Syntax : Syntax + L"\r\n\r\n" + Description;
}

// What a column's properties say, by the names that the interfaces of databases give them.
class Properties {
public:
    explicit Properties(const Node& Column) {
        const Node Folder = Column.Child();
        for (Node Property = Folder ? Folder.Child() : Node(); Property; Property = Property.Next()) {
            const std::wstring& Text = Property.Text();
            const size_t Sign = Text.find(L'=');
            if (Sign != Text.npos) all_.emplace_back(Text.substr(0, Sign), Text.substr(Sign + 1));
        }
    }
    // The first of the names that has a value; empty when none has.
    std::wstring First(std::initializer_list<const wchar_t*> Names) const {
        for (const wchar_t* Name : Names) {
            for (const auto& [Key, Value] : all_) {
                if (SameName(Key, Name) && !Value.empty() && Value != L"null") return Value;
            }
        }
        return {};
    }

private:
    std::vector<std::pair<std::wstring, std::wstring>> all_;
};

bool IsNumber(const std::wstring& Text) {
    return !Text.empty() && std::all_of(Text.begin(), Text.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

std::wstring TypeOf(const Properties& Of) {
    std::wstring Type = Of.First({L"TYPE_NAME", L"DATA_TYPE"});
    if (IsNumber(Type)) Type = L"type " + Type;
    const std::wstring Size = Of.First({L"COLUMN_SIZE", L"CHARACTER_MAXIMUM_LENGTH", L"NUMERIC_PRECISION"});
    if (Type.empty() || !IsNumber(Size) || Size == L"0" || Type.find(L'(') != Type.npos) return Type;
    const std::wstring Scale = Of.First({L"DECIMAL_DIGITS", L"NUMERIC_SCALE"});
    return Type + L"(" + Size + (IsNumber(Scale) && Scale != L"0" ? L"," + Scale : std::wstring()) + L")";
}

std::wstring NullOf(const Properties& Of) {
    const std::wstring Takes = Of.First({L"NULLABLE", L"IS_NULLABLE"});
    for (const wchar_t* No : {L"0", L"NO", L"False"}) {
        if (SameName(Takes, No)) return L"not null";
    }
    for (const wchar_t* Yes : {L"1", L"-1", L"YES", L"True"}) {
        if (SameName(Takes, Yes)) return L"null allowed";
    }
    return {};
}

}  // namespace

// Empty for what is no column, and for one of which nothing is known.
std::wstring frmSQLEditor::m_NodeTip(const Node& Node) {
    if (Node.Tag() != modLists::NodeKind::Column) return {};
    const Properties Of(Node);
    std::wstring Tip = TypeOf(Of);
    if (const std::wstring Null = NullOf(Of); !Null.empty()) Tip.append(Tip.empty() ? L"" : L", ").append(Null);
    return Tip.empty() ? Tip : Node.Text() + L": " + Tip;
}

// Returns the text of the tip. An empty one means that no entry was found; in the SQL the status bar says so.
std::wstring frmSQLEditor::m_HelpText() {
    if (rtbSQL.HasFocus()) {
        const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
        const auto Caret = static_cast<size_t>(std::max(rtbSQL.RawSelection().second, 0L));
        std::wstring Help;
        for (const Entry& One : EntriesAt(Text, Caret))
            Help.append(Help.empty() ? L"" : L"\r\n\r\n").append(HelpOf(One));
        if (!Help.empty()) return Help;
        const WordsAround Around = WordsAt(Text, Caret);
        sbStatusBar.ShowNote(Around.Words.empty() ? std::wstring(L"There is no word at the caret.")
                                                  : L"\"" + std::wstring(Around.Words[Around.Caret]) +
                                                        L"\" is not in the reference of your database.");
        return {};
    }
    for (const ListBox* List : {&lstAnsiSQL, &lstKolvex}) {
        if (List->HasFocus() && List->ListIndex() != -1) return HelpOf(EntryOf(List->ItemData(List->ListIndex())));
    }
    if (trvDatabaseSpecific.HasFocus()) {
        const Node Selected = trvDatabaseSpecific.SelectedItem();
        return Selected && IsNumber(Selected.Tag()) ? HelpOf(EntryOf(std::stol(Selected.Tag()))) : std::wstring();
    }
    if (trvDBObjects.HasFocus()) {
        if (const Node Selected = trvDBObjects.SelectedItem()) return m_NodeTip(Selected);
    }
    return {};
}

void frmSQLEditor::m_ShowHelp() {
    lstNames.Close();
    tipHelp_.Hide();
    const std::wstring Help = m_HelpText();
    if (Help.empty()) return;
    RECT Line{};
    if (rtbSQL.HasFocus()) {
        Line = rtbSQL.RawPlace(rtbSQL.RawSelection().second);
    } else {
        const POINT At = m_View(activeView_).SelectedPlace();
        Line = {At.x, At.y - TwipsToPixels(lblDescription.LineHeight(), Dpi()), At.x, At.y};
    }
    tipHelp_.Show(Handle(), Line, MessageFont(), Help);
}
