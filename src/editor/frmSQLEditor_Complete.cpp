#include <algorithm>
#include <string_view>
#include <utility>

#include "automation/Text.h"
#include "browser/ReadNodes.h"
#include "browser/modLists_Tree.h"
#include "catalogue/Catalogue.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "shared/modGlobal.h"
#include "sql/Scope.h"

// Ctrl+Space: a list of the names that may stand at the caret. Positions are the control's, a line end being one
// character.
namespace {

constexpr long LongestName = 200;  // characters

namespace NodeKind = modLists::NodeKind;

using namespace ReadNodes;

// What a name of the reference is called in a statement: what stands before its bracket, when that is one word.
std::wstring_view WordOf(std::wstring_view Text) {
    Text = Text.substr(0, Text.find(L'('));
    return Text.find(L' ') == Text.npos ? Text : std::wstring_view();
}

bool GoesOn(wchar_t c) noexcept { return IsCharAlphaNumericW(c) || c == L'_' || c == L'$' || c == L'#' || c == L'@'; }

const wchar_t* WordFor(NameList::Kind Kind) noexcept {
    using enum NameList::Kind;
    switch (Kind) {
        case Column:
            return L"column";
        case Table:
            return L"table";
        case View:
            return L"view";
        case Schema:
            return L"schema";
        case Function:
            return L"function";
        case Type:
            return L"type";
        default:
            return L"keyword";
    }
}

}  // namespace

void frmSQLEditor::m_AddColumns(const Node& Table) {
    if (!AreColumnsRead(Table)) return;
    m_AddOwner(Table.Text());
    for (Node Column = ColumnsOf(Table).Child(); Column; Column = Column.Next())
        names_.Add(Column.Text(), NameList::Kind::Column, nameOwners_.size() - 1);
}

void frmSQLEditor::m_AddOwner(const std::wstring& Name) { nameOwners_.push_back(Name); }

void frmSQLEditor::m_AddTables(const Node& Schema) {
    m_AddOwner(Schema.Text());
    const size_t Owner = nameOwners_.size() - 1;
    for (Node Folder = Schema.Child(); Folder; Folder = Folder.Next()) {
        for (Node Table = Folder.Child(); Table; Table = Table.Next()) {
            if (IsPlaceholder(Table)) continue;
            names_.Add(Table.Text(), Table.Tag() == NodeKind::View ? NameList::Kind::View : NameList::Kind::Table,
                       Owner);
        }
    }
}

// All that was read, and the words of the language.
void frmSQLEditor::m_AddEverything() {
    Nodes& Nodes = trvDBObjects.Items();
    if (Nodes.Count() > 0) {
        m_AddOwner(L"");
        for (Node Schema = Nodes.Item(1).Child(); Schema; Schema = Schema.Next()) {
            if (IsPlaceholder(Schema)) continue;
            names_.Add(Schema.Text(), NameList::Kind::Schema, 0);
            m_AddTables(Schema);
        }
        ForEachTable(Nodes, [&](const Node&, const Node& Table) { m_AddColumns(Table); });
    }
    for (const CatalogueSection& Section : CatalogueSections()) {
        if (Section.DBType != DBType || Section.Category.empty()) continue;
        const bool Types = Section.Category == L"Data Types";
        if (!Types && Section.Category.find(L"Functions") == Section.Category.npos &&
            Section.Category != L"Pseudo Columns")
            continue;
        for (const CatalogueEntry& Entry : Section.Entries)
            names_.Add(WordOf(Entry.Text), Types ? NameList::Kind::Type : NameList::Kind::Function);
    }
    for (const std::wstring_view Word : Sql::Words(DBType).Keywords()) names_.Add(Word, NameList::Kind::Keyword);
}

// The columns of the table that stands before the point, or the tables of the schema; returns why there are none.
std::wstring frmSQLEditor::m_AddQualified(const std::wstring& Text, size_t Caret,
                                          const std::vector<std::wstring>& Qualifiers) {
    const std::wstring& Name = Qualifiers.back();
    std::wstring TableName = Name;
    std::wstring SchemaName = Qualifiers.size() > 1 ? Qualifiers[Qualifiers.size() - 2] : std::wstring();
    bool IsOfStatement = false;
    if (Qualifiers.size() == 1) {
        const std::vector<Sql::TableReference> Tables =
            Sql::TablesAt(Text, Caret, colours_.Dialect(), Sql::Words(DBType));
        const auto Found = std::find_if(Tables.begin(), Tables.end(), [&](const Sql::TableReference& Table) {
            return SameName(Table.Alias.empty() ? Table.Table : Table.Alias, Name);
        });
        if (Found != Tables.end()) {
            TableName = Found->Table;
            SchemaName = Found->Schema;
            IsOfStatement = true;
        }
    }
    Nodes& Nodes = trvDBObjects.Items();
    if (const Node Table = FindTable(Nodes, SchemaName, TableName)) {
        if (!AreColumnsRead(Table)) {
            // As a click on it: the tree shows what was read.
            trvDBObjects.SetSelectedItem(Table);
            trvDBObjects_NodeClick(Table);
        }
        m_AddColumns(Table);
        return L"The columns of \"" + TableName + L"\" could not be read.";
    }
    if (const Node Schema = IsOfStatement ? Node() : FindSchema(Nodes, Name)) {
        m_AddTables(Schema);
        return L"No table or view of \"" + Name + L"\" has been read.";
    }
    return L"\"" + TableName + L"\" is not among the tables that the object browser has read.";
}

void frmSQLEditor::m_Complete() {
    lstNames.Close();
    // The host is being asked for a branch already.
    if (trvDBObjects.RefusesInput()) return;
    const auto [From, To] = rtbSQL.RawSelection();
    const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
    const Sql::NameAtCaret Name = Sql::NameAt(Text, static_cast<size_t>(std::max(To, 0L)), colours_.Dialect());
    if (!Name.IsCode) return sbStatusBar.ShowNote(L"No names are completed in comments and texts.");
    names_ = {};
    nameOwners_.clear();
    nameQualified_ = !Name.Qualifiers.empty();
    std::wstring WhyNone = L"No name begins like that.";
    if (nameQualified_) {
        const std::wstring Why = m_AddQualified(Text, static_cast<size_t>(To), Name.Qualifiers);
        if (names_.IsEmpty()) WhyNone = Why;
        // The host's code ran: the window may be closed, and the text another one.
        if (!Visible() || rtbSQL.RawSelection() != std::pair(From, To) ||
            rtbSQL.RawLength() != static_cast<long>(Text.size())) {
            return;
        }
        rtbSQL.SetFocus();
    } else {
        m_AddEverything();
    }
    names_.Sort();
    namePlace_ = {static_cast<long>(Name.Start), static_cast<long>(Name.End)};
    whyNoName_ = WhyNone;
    if (From != To) rtbSQL.RawSelect(To, To);
    lstNames.Open(Handle(), rtbSQL.RawPlace(namePlace_.first), MessageFont(), L"Names");
    nameBegun_ = Name.Begun;
    names_.Filter(Name.Begun);
    lstNames.SetRows(names_.Rows(), whyNoName_);
}

// The text or the caret has changed while the list is open: it follows what is written of the name, and closes when
// something else is written.
void frmSQLEditor::m_FollowName() {
    if (!lstNames.IsOpen()) return;
    const auto [From, To] = rtbSQL.RawSelection();
    if (From != To || To < namePlace_.first || To - namePlace_.first > LongestName) return lstNames.Close();
    std::wstring Begun = rtbSQL.RawText(namePlace_.first, To);
    const bool Quoted = !Begun.empty() && (Begun[0] == L'"' || Begun[0] == L'`' || Begun[0] == L'[');
    if (Quoted) Begun.erase(0, 1);
    const bool Goes = std::all_of(Begun.begin(), Begun.end(), [&](wchar_t c) {
        return GoesOn(c) || (Quoted && c != L'\r' && c != L'"' && c != L'`' && c != L']');
    });
    if (!Goes) return lstNames.Close();
    // What stands after the caret belongs to the name as before.
    const std::wstring Rest = rtbSQL.RawText(To, std::min(To + LongestName, rtbSQL.RawLength()));
    const auto End = Quoted ? Rest.begin() : std::find_if_not(Rest.begin(), Rest.end(), GoesOn);
    namePlace_.second = To + static_cast<long>(End - Rest.begin());
    // A key tells of the text and of the caret, and the list is made once.
    if (std::exchange(nameBegun_, Begun) == Begun) return;
    names_.Filter(Begun);
    lstNames.SetRows(names_.Rows(), whyNoName_);
}

PopupList::Row frmSQLEditor::m_NameRow(size_t Row) const {
    const NameList::Row Name = names_.At(Row);
    std::wstring Note = WordFor(Name.What);
    const std::wstring Owner = Name.What <= NameList::Kind::View ? nameOwners_.at(Name.Tag) : std::wstring();
    if (!Owner.empty()) Note += L", " + Owner;
    return {std::wstring(Name.Name), std::move(Note)};
}

// Writes the selected name as the statements write it, in place of what was begun.
void frmSQLEditor::m_TakeName() {
    const long Selected = lstNames.Selected();
    const auto Place = namePlace_;
    if (Selected < 0) return lstNames.Close();
    const NameList::Row Row = names_.At(static_cast<size_t>(Selected));
    const std::wstring Name(Row.Name);
    const NameList::Kind Kind = Row.What;
    const std::wstring Owner = Kind <= NameList::Kind::View ? nameOwners_.at(Row.Tag) : std::wstring();
    // Closed first: the host is asked for the name, and the list would stand in front of what it may show.
    lstNames.Close();
    const std::wstring Begun = rtbSQL.RawText(Place.first, Place.second);
    std::wstring Written = Name;
    if ((Kind == NameList::Kind::Table || Kind == NameList::Kind::View) && !nameQualified_) {
        Written = m_BuildTable(Owner, Name);
    } else if (Kind <= NameList::Kind::View) {
        Written.clear();
        TextFunction(HostDatabase, L"FormatName").AppendTo(Written, Name);
    } else if (Kind != NameList::Kind::Schema && std::any_of(Begun.begin(), Begun.end(), IsCharLowerW) &&
               std::none_of(Begun.begin(), Begun.end(), IsCharUpperW)) {
        CharLowerBuffW(Written.data(), static_cast<DWORD>(Written.size()));
    }
    // What failed was reported. The host's code ran: what was begun may not be there any more.
    if (Written.empty() || !Visible() || rtbSQL.RawText(Place.first, Place.second) != Begun) return;
    const long Caret = Place.first + static_cast<long>(Written.size());
    m_ReplaceRaw(Place.first, Place.second, Written, Caret, Caret);
}

// The keys of the open list. True: the key was one of them.
bool frmSQLEditor::m_NameKey(int Key, int Shift) {
    if (!lstNames.IsOpen()) return false;
    if (Shift != 0) {
        // Ctrl alone, or Shift for a capital, is the beginning of another key.
        if (Key == VK_MENU || (Shift & ShiftState::Alt) != 0) lstNames.Close();
        return false;
    }
    switch (Key) {
        case VK_UP:
            lstNames.Move(-1);
            return true;
        case VK_DOWN:
            lstNames.Move(1);
            return true;
        case VK_PRIOR:
            lstNames.Move(-lstNames.PageRows());
            return true;
        case VK_NEXT:
            lstNames.Move(lstNames.PageRows());
            return true;
        case VK_RETURN:
        case VK_TAB:
            m_TakeName();
            return true;
        case VK_ESCAPE:
            lstNames.Close();
            return true;
        default:
            return false;
    }
}

void frmSQLEditor::lstNames_Chosen() try { m_TakeName(); } catch (...) {
    ReportError(Module, L"lstNames_Chosen");
}
