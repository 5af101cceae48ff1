#include <initializer_list>
#include <string_view>

#include "automation/Text.h"
#include "browser/modLists.h"
#include "component/modGlobal.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"

// Statements for a node of the object browser. Each reads the tree as it stands and asks the host for nothing but
// FormatName.
namespace {

constexpr const wchar_t* Module = L"frmSQLEditor";
constexpr const wchar_t* LineBreak = L"\r\n";
constexpr const wchar_t* Separator = L";\r\n";  // between two statements
constexpr size_t SeparatorLength = 3;

// The host's type codes whose statements differ; what products they stand for is the host's affair.
bool WritesSchema(long Type) { return Type == 4 || Type == 8 || Type == 13 || Type == 26 || Type == 27 || Type == 40; }

std::wstring Concatenated(std::initializer_list<std::wstring_view> Parts) {
    size_t Length = 0;
    for (const std::wstring_view Part : Parts) Length += Part.size();
    std::wstring Text;
    Text.reserve(Length);
    for (const std::wstring_view Part : Parts) Text += Part;
    return Text;
}

// The name as the host writes it.
std::wstring FormatName(const std::wstring& Name) {
    std::wstring Written;
    TextFunction(HostDatabase, L"FormatName").AppendTo(Written, Name);
    return Written;
}

// What a table's name is written behind: its schema, as it stands, since the host quotes names of tables and columns
// alone.
std::wstring QualifierFor(const std::wstring& Schema) {
    const bool Qualified = WritesSchema(DBType) && !SameName(Schema, OwnerName) && !SameName(Schema, L"current schema");
    return Qualified && !Schema.empty() ? Schema + L"." : std::wstring();
}

// What stands before and behind a table's name in the statement for its first rows.
struct Frame {
    std::wstring_view Before;
    std::wstring_view Behind;
};

Frame FrameOfSampleRows() {
    switch (DBType) {
        case 2:
        case 28:
            return {L"SELECT first 100 * FROM ", L""};
        case 4:
            return {L"SELECT * FROM ", L" WHERE rownum <= 100"};
        case 13:
            return {L"SELECT * FROM ", L"  fetch first 100 rows only"};  // two blanks: kept
        case 17:
        case 27:
            return {L"SELECT * FROM ", L" LIMIT 100"};
        default:
            return {L"SELECT top 100 * FROM ", L""};
    }
}

bool IsFolder(const std::wstring& Kind) {
    return Kind == modLists::NodeKind::Tables || Kind == modLists::NodeKind::Views;
}

bool IsTableOrView(const std::wstring& Kind) {
    return Kind == modLists::NodeKind::Table || Kind == modLists::NodeKind::View;
}

const std::wstring& SchemaOfTable(const Node& Table) { return Table.Parent().Parent().Text(); }

// Calls `step` with each object of a folder in their order. A placeholder is none.
template <class Step>
void ForEachObject(const Node& Folder, Step&& step) {
    constexpr std::wstring_view Placeholder = modLists::NodeKind::Undefined;
    for (Node Object = Folder.Child(); Object; Object = Object.Next()) {
        if (Object.Tag() != Placeholder) step(Object);
    }
}

// Whether the columns of a table or view have been read, and there are any.
bool HasColumns(const Node& Table) {
    const Node Columns = Table.Child();
    if (!Columns) return false;
    const Node First = Columns.Child();
    return First && First.Tag() != modLists::NodeKind::Undefined;
}

template <class Step>
void ForEachColumn(const Node& Table, Step&& step) {
    for (Node Column = Table.Child().Child().FirstSibling(); Column; Column = Column.Next()) step(Column);
}

// One statement for each object of a folder: `Start`, what `append` puts behind it for the object's name, and `Behind`.
template <class Append>
std::wstring JoinStatements(const Node& Folder, const std::wstring& Start, std::wstring_view Behind, Append&& append) {
    // What ends one statement and begins the next goes in at once.
    const std::wstring Between = Concatenated({Behind, Separator, Start});
    const auto Count = static_cast<size_t>(Folder.Children());
    std::wstring Joined;
    ForEachObject(Folder, [&](const Node& Object) {
        const bool First = Joined.empty();
        Joined.append(First ? Start : Between);
        append(Joined, Object.Text());
        // The others will hardly be twice as long. What is not used is never touched.
        if (First) Joined.reserve(Count * (Joined.size() + Joined.size() / 2 + Between.size() - Start.size()));
    });
    if (!Joined.empty()) Joined.append(Behind);
    return Joined;
}

// The statement of one table, what m_BuildTable gives between two texts, for each object of a folder.
std::wstring JoinTables(const Node& Folder, const Frame& Frame) {
    const std::wstring Qualifier = QualifierFor(Folder.Parent().Text());
    TextFunction Formatted(HostDatabase, L"FormatName");
    return JoinStatements(Folder, Concatenated({Frame.Before, Qualifier}), Frame.Behind,
                          [&](std::wstring& Joined, const std::wstring& Name) {
                              try {
                                  Formatted.AppendTo(Joined, Name);
                              } catch (...) {
                                  Joined.resize(Joined.size() - Qualifier.size());
                                  ReportError(Module, L"m_BuildTable");
                              }
                          });
}

// The schema that DESCRIBE writes: every one but the default, the connected user's own too. The test minds the case,
// unlike the one for the other statements: kept.
std::wstring DescribePrefix(const std::wstring& Schema) {
    return Schema == L"Current Schema" ? std::wstring() : Schema + L".";
}

void AppendDescribe(std::wstring& Joined, const std::wstring& Prefix, const std::wstring& Name) {
    Joined.append(L"DESCRIBE ").append(Prefix).append(Name);
}

}  // namespace

std::wstring frmSQLEditor::m_BuildTable(const std::wstring& Schema, const std::wstring& Table) try {
    return QualifierFor(Schema) + FormatName(Table);
} catch (...) {
    ReportError(Module, L"m_BuildTable");
    return {};
}

std::wstring frmSQLEditor::m_BuildStmtSampleRows(const std::wstring& Schema, const std::wstring& Table) try {
    const Frame Frame = FrameOfSampleRows();
    return Concatenated({Frame.Before, m_BuildTable(Schema, Table), Frame.Behind});
} catch (...) {
    ReportError(Module, L"m_BuildStmtSampleRows");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtCountRows(const Node& Node) try {
    const std::wstring& Kind = Node.Tag();
    if (IsTableOrView(Kind)) return L"SELECT COUNT(*) FROM " + m_BuildTable(SchemaOfTable(Node), Node.Text());
    if (!IsFolder(Kind)) return {};
    return JoinTables(Node, {L"SELECT COUNT(*) FROM ", L""});
} catch (...) {
    ReportError(Module, L"m_GetStmtCountRows");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtDescribe(const Node& Node) try {
    const std::wstring& Kind = Node.Tag();
    if (IsTableOrView(Kind)) return L"DESCRIBE " + DescribePrefix(SchemaOfTable(Node)) + Node.Text();
    if (IsFolder(Kind)) {
        return JoinStatements(Node, L"DESCRIBE " + DescribePrefix(Node.Parent().Text()), L"",
                              [](std::wstring& Joined, const std::wstring& Name) { Joined.append(Name); });
    }
    if (Kind != modLists::NodeKind::Schema) return {};
    const std::wstring Prefix = DescribePrefix(Node.Text());
    std::wstring Joined;
    for (const ::Node& Folder : {Node.Child().FirstSibling(), Node.Child().LastSibling()}) {
        ForEachObject(Folder, [&](const ::Node& Object) {
            AppendDescribe(Joined, Prefix, Object.Text());
            Joined.append(Separator);
        });
    }
    if (!Joined.empty()) Joined.resize(Joined.size() - SeparatorLength);
    return Joined;
} catch (...) {
    ReportError(Module, L"m_GetStmtDescribe");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtSampleRows(const Node& Node) try {
    const std::wstring& Kind = Node.Tag();
    if (IsTableOrView(Kind)) return m_BuildStmtSampleRows(SchemaOfTable(Node), Node.Text());
    if (!IsFolder(Kind)) return {};
    return JoinTables(Node, FrameOfSampleRows());
} catch (...) {
    ReportError(Module, L"m_GetStmtSampleRows");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtSelectTable(const Node& Node) try {
    // Before the kind of node is looked at, so that it holds for a folder's first object too: kept.
    if (!Node.Child() || !Node.Child().Child()) return {};
    const std::wstring& Kind = Node.Tag();
    if (IsFolder(Kind)) return JoinTables(Node, {L"SELECT * FROM ", L""});
    if (!IsTableOrView(Kind) || !HasColumns(Node)) return {};
    std::wstring Statement;
    ForEachColumn(Node, [&](const ::Node& Column) {
        Statement.append(Statement.empty() ? L"SELECT " : L", ").append(FormatName(Column.Text())).append(LineBreak);
    });
    Statement.append(L"FROM ").append(m_BuildTable(SchemaOfTable(Node), Node.Text())).append(LineBreak);
    return Statement;
} catch (...) {
    ReportError(Module, L"m_GetStmtSelectTable");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtInsertTable(const Node& Node) try {
    if (!HasColumns(Node)) return {};
    std::wstring Statement = L"INSERT INTO " + m_BuildTable(SchemaOfTable(Node), Node.Text()) + LineBreak;
    const wchar_t* Before = L"( ";
    ForEachColumn(Node, [&](const ::Node& Column) {
        Statement.append(Before).append(FormatName(Column.Text())).append(LineBreak);
        Before = L", ";
    });
    Statement.append(L") VALUES").append(LineBreak);
    Before = L"( ";
    ForEachColumn(Node, [&](const ::Node& Column) {
        // The name as it stands: what is to be filled in is no identifier.
        Statement.append(Before).append(Column.Text()).append(L"_value").append(LineBreak);
        Before = L", ";
    });
    return Statement.append(L")");
} catch (...) {
    ReportError(Module, L"m_GetStmtInsertTable");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtUpdateTable(const Node& Node) try {
    if (!HasColumns(Node)) return {};
    const std::wstring Head = L"UPDATE " + m_BuildTable(SchemaOfTable(Node), Node.Text()) + LineBreak;
    std::wstring SetList;
    std::wstring WhereList;
    ForEachColumn(Node, [&](const ::Node& Column) {
        // Asked for each of the two lists: what the host writes is its affair.
        SetList.append(SetList.empty() ? L"SET " : L", ").append(FormatName(Column.Text())).append(L" = value");
        SetList.append(LineBreak);
        WhereList.append(WhereList.empty() ? L"WHERE " : L" AND ")
            .append(FormatName(Column.Text()))
            .append(L" = value");
        if (Column.Next()) WhereList.append(LineBreak);
    });
    return Head + SetList + WhereList;
} catch (...) {
    ReportError(Module, L"m_GetStmtUpdateTable");
    return {};
}

// A TAB behind the keyword where UPDATE has blanks: the two forms differ on purpose.
std::wstring frmSQLEditor::m_GetStmtDeleteTable(const Node& Node) try {
    if (!HasColumns(Node)) return {};
    std::wstring Statement = L"DELETE FROM " + m_BuildTable(SchemaOfTable(Node), Node.Text()) + LineBreak;
    const wchar_t* Keyword = L"WHERE\t";
    ForEachColumn(Node, [&](const ::Node& Column) {
        Statement.append(Keyword).append(FormatName(Column.Text())).append(L" = value");
        if (Column.Next()) Statement.append(LineBreak);
        Keyword = L"AND\t";
    });
    return Statement;
} catch (...) {
    ReportError(Module, L"m_GetStmtDeleteTable");
    return {};
}
