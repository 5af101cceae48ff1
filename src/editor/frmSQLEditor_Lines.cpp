#include <algorithm>
#include <vector>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/Keyboard.h"
#include "forms/PlainText.h"
#include "sql/Statements.h"

// Keys that work on whole lines, each as one step of undo. Positions are the control's, a line end being one character.
namespace {

constexpr size_t Indentation = 4;  // blanks
constexpr std::wstring_view Blanks = L" \t";

using Texts = std::vector<std::wstring>;

Texts Split(const std::wstring& text) {
    Texts lines;
    size_t start = 0;
    for (size_t end = text.find(L'\r'); end != text.npos; end = text.find(L'\r', start)) {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(text.substr(start));
    return lines;
}

std::wstring Joined(const Texts& lines) {
    std::wstring text;
    for (size_t at = 0; at < lines.size(); ++at) text.append(at == 0 ? L"" : L"\r").append(lines[at]);
    return text;
}

size_t IndentOf(const std::wstring& line) { return std::min(line.find_first_not_of(Blanks), line.size()); }

bool IsBlank(const std::wstring& line) { return IndentOf(line) == line.size(); }

void ToggleComment(Texts& lines) {
    const bool all = std::all_of(lines.begin(), lines.end(), IsBlank);
    size_t column = std::wstring::npos;
    bool commented = true;
    for (const std::wstring& line : lines) {
        if (IsBlank(line) && !all) continue;
        column = std::min(column, IndentOf(line));
        commented = commented && line.compare(IndentOf(line), 2, L"--") == 0;
    }
    for (std::wstring& line : lines) {
        if (IsBlank(line) && !all) continue;
        if (commented) {
            const size_t at = IndentOf(line);
            line.erase(at, line.compare(at, 3, L"-- ") == 0 ? 3 : 2);
        } else {
            line.insert(std::min(column, line.size()), L"-- ");
        }
    }
}

void Indent(Texts& lines) {
    const bool one = lines.size() == 1;
    for (std::wstring& line : lines) {
        if (one || !IsBlank(line)) line.insert(0, Indentation, L' ');
    }
}

void Outdent(Texts& lines) {
    for (std::wstring& line : lines) {
        size_t count = 0;
        while (count < Indentation && count < line.size() && line[count] == L' ') ++count;
        if (count == 0 && !line.empty() && line[0] == L'\t') count = 1;
        line.erase(0, count);
    }
}

// Where the bracket needs AltGr, the key that has it on other keyboards does.
bool IsBracketKey(int Key, bool Shifted, wchar_t Bracket, int Elsewhere) noexcept {
    return HasCharacter(Bracket) ? WritesCharacter(Key, Shifted, Bracket) : Key == Elsewhere && !Shifted;
}

}  // namespace

// The lines that the selection touches; one that it only reaches the beginning of does not belong to them.
std::pair<long, long> frmSQLEditor::m_SelectedLines() {
    const auto [From, To] = rtbSQL.RawSelection();
    long Last = To;
    if (To > From && rtbSQL.RawLineStart(To) == To) --Last;
    return {rtbSQL.RawLineStart(From), rtbSQL.RawLineEnd(Last)};
}

// Replaces a part of the text, as little of it as differs, and selects.
void frmSQLEditor::m_ReplaceRaw(long From, long To, const std::wstring& Text, long SelectFrom, long SelectTo) {
    const std::wstring Was = rtbSQL.RawText(From, To);
    if (Was != Text) {
        const size_t Most = std::min(Was.size(), Text.size());
        size_t Same = 0;
        while (Same < Most && Was[Same] == Text[Same]) ++Same;
        size_t SameEnd = 0;
        while (SameEnd < Most - Same && Was[Was.size() - 1 - SameEnd] == Text[Text.size() - 1 - SameEnd]) ++SameEnd;
        std::wstring Inserted;
        for (size_t At = Same; At < Text.size() - SameEnd; ++At) {
            Inserted += Text[At];
            if (Text[At] == L'\r') Inserted += L'\n';
        }
        rtbSQL.RawSelect(From + static_cast<long>(Same), To - static_cast<long>(SameEnd));
        rtbSQL.SetSelText(Inserted);
    }
    rtbSQL.RawSelect(SelectFrom, SelectTo);
    rtbSQL.ScrollCaret();
}

void frmSQLEditor::m_ChangeLines(const std::function<void(std::vector<std::wstring>&)>& Change) {
    const auto [SelFrom, SelTo] = rtbSQL.RawSelection();
    const auto [From, To] = m_SelectedLines();
    const std::wstring Before = rtbSQL.RawText(From, To);
    Texts Lines = Split(Before);
    const size_t Length = Lines.front().size();
    Change(Lines);
    const std::wstring After = Joined(Lines);
    if (SelFrom != SelTo) return m_ReplaceRaw(From, To, After, From, From + static_cast<long>(After.size()));
    // The caret stays at its character.
    const long Moved = static_cast<long>(Lines.front().size()) - static_cast<long>(Length);
    const long Caret = std::max(SelFrom + Moved, From);
    m_ReplaceRaw(From, To, After, Caret, Caret);
}

void frmSQLEditor::m_MoveLines(bool Down) {
    const auto [SelFrom, SelTo] = rtbSQL.RawSelection();
    const auto [From, To] = m_SelectedLines();
    const std::wstring Lines = rtbSQL.RawText(From, To);
    if (Down) {
        if (To >= rtbSQL.RawLength()) return;
        const long End = rtbSQL.RawLineEnd(To + 1);
        const std::wstring Other = rtbSQL.RawText(To + 1, End);
        const long Moved = static_cast<long>(Other.size()) + 1;
        m_ReplaceRaw(From, End, Other + L"\r" + Lines, SelFrom + Moved, std::min(SelTo + Moved, rtbSQL.RawLength()));
    } else {
        if (From == 0) return;
        const long Start = rtbSQL.RawLineStart(From - 1);
        const std::wstring Other = rtbSQL.RawText(Start, From - 1);
        m_ReplaceRaw(Start, To, Lines + L"\r" + Other, SelFrom - (From - Start), SelTo - (From - Start));
    }
}

void frmSQLEditor::m_DoubleLines() {
    const auto [SelFrom, SelTo] = rtbSQL.RawSelection();
    const auto [From, To] = m_SelectedLines();
    const std::wstring Lines = rtbSQL.RawText(From, To);
    const long Moved = static_cast<long>(Lines.size()) + 1;
    m_ReplaceRaw(To, To, L"\r" + Lines, SelFrom + Moved, SelTo + Moved);
}

void frmSQLEditor::m_DeleteLines() {
    auto [From, To] = m_SelectedLines();
    if (To < rtbSQL.RawLength()) {
        ++To;
    } else if (From > 0) {
        --From;
    }
    if (From == To) return;
    rtbSQL.RawSelect(From, To);
    rtbSQL.SetSelText(L"");
    const long Caret = rtbSQL.RawLineStart(From);
    rtbSQL.RawSelect(Caret, Caret);
    rtbSQL.ScrollCaret();
}

// A new line begins with the blanks that its own begins with, as far as they stand before the caret.
void frmSQLEditor::m_BreakLine() {
    const auto [From, To] = rtbSQL.RawSelection();
    const std::wstring Before = rtbSQL.RawText(rtbSQL.RawLineStart(From), From);
    rtbSQL.SetSelText(L"\r\n" + Before.substr(0, IndentOf(Before)));
    rtbSQL.ScrollCaret();
}

void frmSQLEditor::m_SelectStatement() {
    const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
    const std::vector<Sql::Statement> All = Sql::Statements(Text, colours_.Dialect());
    const auto [From, To] = rtbSQL.RawSelection();
    const Sql::Statement* const Found = Sql::StatementAt(All, Text, static_cast<size_t>(std::max(From, 0L)));
    if (Found == nullptr) return;
    rtbSQL.RawSelect(static_cast<long>(Found->Start), static_cast<long>(Found->Behind));
    rtbSQL.ScrollCaret();
}

// As one step of undo, as far as formats leave one: a rich text gives way to a plain one, which begins a new history.
void frmSQLEditor::m_RestoreDisplayed() {
    if (rtbSQL.HasFormats()) {
        rtbSQL.SetText(displayed_);
    } else {
        std::wstring Text = PlainText::WithCrLf(displayed_);
        std::erase(Text, L'\n');
        m_ReplaceRaw(0, rtbSQL.RawLength(), Text, 0, 0);
    }
    // The text no longer belongs to a file: saving must not overwrite one with it.
    rtbSQL.FileName.clear();
    rtbSQL.FileFormat = {};
    m_FormTitle(L"");
    m_ShowFileFormat();
}

// Keys are identified by the character on them, which keyboards of other countries have elsewhere. True: the key was
// handled.
bool frmSQLEditor::rtbSQL_KeyPressed(int Key, int Shift) try {
    using namespace ShiftState;
    if (m_NameKey(Key, Shift)) return true;
    if (Key == VK_RETURN && Shift == 0) {
        m_BreakLine();
        return true;
    }
    if (Shift == Alt && (Key == VK_UP || Key == VK_DOWN)) {
        m_MoveLines(Key == VK_DOWN);
        return true;
    }
    if (Key == VK_F12 && Shift == 0) {
        m_FindObject();
        return true;
    }
    if ((Shift & Ctrl) == 0 || (Shift & Alt) != 0) return false;
    const bool Shifted = Shift == (Ctrl | ShiftState::Shift);
    if (WritesCharacter(Key, Shifted, L'/')) {
        m_ChangeLines(ToggleComment);
    } else if (IsBracketKey(Key, Shifted, L']', VK_OEM_6)) {
        m_ChangeLines(Indent);
    } else if (IsBracketKey(Key, Shifted, L'[', VK_OEM_4)) {
        m_ChangeLines(Outdent);
    } else if (Key == 'D' && !Shifted) {
        m_DoubleLines();
    } else if (Key == 'K' && Shifted) {
        m_DeleteLines();
    } else if (Key == VK_SPACE && !Shifted) {
        m_Complete();
    } else if (Key == VK_SPACE && Shifted) {
        m_SelectStatement();
    } else if (Key == 'C' && Shifted) {
        m_CopyAsBasic();
    } else if (Key == 'V' && Shifted) {
        m_PasteFromCode();
    } else if (Key == 'R' && Shifted) {
        m_RestoreDisplayed();
    } else if (Key == 'H' && !Shifted) {
        m_OpenReplace();
    } else if (Key == 'G' && !Shifted) {
        m_OpenGoto();
    } else if (Key == VK_OEM_PLUS || WritesCharacter(Key, Shifted, L'+')) {
        rtbSQL.Zoom(1);
    } else if (Key == VK_OEM_MINUS || WritesCharacter(Key, Shifted, L'-')) {
        rtbSQL.Zoom(-1);
    } else if (!Shifted && (Key == '0' || Key == VK_NUMPAD0)) {
        rtbSQL.Zoom(0);
    } else {
        return false;
    }
    return true;
} catch (...) {
    ReportError(Module, L"rtbSQL_KeyPressed");
    return true;
}
