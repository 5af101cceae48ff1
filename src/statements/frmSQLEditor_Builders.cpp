#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "browser/modLists_Tree.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"
#include "statements/Dialects.h"

// Statements for a node of the object browser. Each reads the tree as it stands and asks the host for nothing but
// FormatName.
namespace {

constexpr const wchar_t* Separator = L";\r\n";  // between two statements
constexpr size_t SeparatorLength = 3;

// The name as the host writes it.
std::wstring FormatName(const std::wstring& Name) {
    std::wstring Written;
    TextFunction(HostDatabase, L"FormatName").AppendTo(Written, Name);
    return Written;
}

// The references to the tables of one schema. While the host is asked for a name it may give the component another
// connection: the database, its type and the owner are read for each table.
class TableNames {
public:
    // `Lead` stands before each reference: both are written at once, for folders have thousands.
    explicit TableNames(std::wstring Schema, std::wstring_view Lead = {}) : schema_(std::move(Schema)), lead_(Lead) {}

    // The lead without its first `Skipped` characters, the schema by what the connection is before the host is asked,
    // and the name.
    void AppendTo(std::wstring& To, const std::wstring& Table, size_t Skipped = 0) {
        if (prefix_ == std::nullopt || type_ != DBType || owner_ != OwnerName) {
            prefix_ = lead_ + Dialects::TablePrefix(DBType, OwnerName, schema_);
            type_ = DBType;
            owner_ = OwnerName;
        }
        To.append(*prefix_, Skipped);
        if (formatted_ == nullptr || !formatted_->IsOf(HostDatabase)) {
            formatted_ = std::make_unique<TextFunction>(HostDatabase, L"FormatName");
        }
        formatted_->AppendTo(To, Table);
    }

private:
    const std::wstring schema_;
    const std::wstring lead_;
    std::optional<std::wstring> prefix_;
    long type_ = 0;
    std::wstring owner_;
    std::unique_ptr<TextFunction> formatted_;
};

// Appends like the procedure of that name would: a failure is reported under its name and appends nothing. Whether it
// has appended.
template <class Append>
bool Trapped(const wchar_t* Routine, std::wstring& To, Append&& append) {
    const size_t Before = To.size();
    try {
        append();
        return true;
    } catch (...) {
        To.resize(Before);
        ReportError(frmSQLEditor::Module, Routine);
        return false;
    }
}

bool IsFolder(const std::wstring& Kind) {
    return Kind == modLists::NodeKind::Tables || Kind == modLists::NodeKind::Views;
}

bool IsTableOrView(const std::wstring& Kind) {
    return Kind == modLists::NodeKind::Table || Kind == modLists::NodeKind::View;
}

// By value: the schema's node may go while the host is asked for a name.
std::wstring SchemaOfTable(const Node& Table) { return Table.Parent().Parent().Text(); }

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

// Reserves room for a growing text, within reason. If the allocation fails, the text grows in steps instead.
void WishFor(std::wstring& Text, uint64_t Length) noexcept {
    constexpr uint64_t Most = 4 * 1024 * 1024;
    try {
        Text.reserve(static_cast<size_t>(std::min(Length, Most)));
    } catch (...) {
    }
}

// One statement for each object of a folder: `append` puts the separator, without its first `Skipped` characters, and
// the statement after the others for the object's name.
template <class Append>
std::wstring JoinStatements(const Node& Folder, Append&& append) {
    const auto Count = static_cast<size_t>(Folder.Children());
    std::wstring Joined;
    bool First = true;
    ForEachObject(Folder, [&](const Node& Object) {
        append(Joined, Object.Text(), First ? SeparatorLength : 0);
        // Room for as many that are half as long again.
        if (First) WishFor(Joined, uint64_t{Count} * (Joined.size() + SeparatorLength) * 3 / 2);
        First = false;
    });
    return Joined;
}

// `Start` and what m_BuildTable gives, for each object of a folder.
std::wstring JoinTables(const Node& Folder, std::wstring_view Start) {
    const std::wstring Lead = Separator + std::wstring(Start);
    TableNames Names(Folder.Parent().Text(), Lead);
    return JoinStatements(Folder, [&](std::wstring& Joined, const std::wstring& Table, size_t Skipped) {
        if (!Trapped(L"m_BuildTable", Joined, [&] { Names.AppendTo(Joined, Table, Skipped); }))
            Joined.append(Lead, Skipped);
    });
}

// What m_BuildStmtSampleRows gives for each object of a folder.
std::wstring JoinSampleRows(const Node& Folder) {
    TableNames Names(Folder.Parent().Text());
    return JoinStatements(Folder, [&](std::wstring& Joined, const std::wstring& Table, size_t Skipped) {
        Joined.append(Separator + Skipped);
        Trapped(L"m_BuildStmtSampleRows", Joined, [&] {
            const size_t At = Joined.size();
            const Dialects::Frame Expected = Dialects::SampleRows(DBType);
            Joined.append(Expected.Before);
            Trapped(L"m_BuildTable", Joined, [&] { Names.AppendTo(Joined, Table); });
            // By what the connection is after the host was asked.
            const Dialects::Frame Frame = Dialects::SampleRows(DBType);
            if (Frame.Before != Expected.Before) Joined.replace(At, Expected.Before.size(), Frame.Before);
            Joined.append(Frame.Behind);
        });
    });
}

// What m_GetStmtDescribe gives for each object of a folder.
std::wstring JoinDescriptions(const Node& Folder, const std::wstring& Prefix) {
    const std::wstring Lead = Separator + (L"DESCRIBE " + Prefix);
    return JoinStatements(Folder, [&](std::wstring& Joined, const std::wstring& Name, size_t Skipped) {
        Joined.append(Lead, Skipped).append(Name);
    });
}

}  // namespace

std::wstring frmSQLEditor::m_BuildTable(const std::wstring& Schema, const std::wstring& Table) try {
    std::wstring Reference;
    TableNames(Schema).AppendTo(Reference, Table);
    return Reference;
} catch (...) {
    ReportError(Module, L"m_BuildTable");
    return {};
}

std::wstring frmSQLEditor::m_BuildStmtSampleRows(const std::wstring& Schema, const std::wstring& Table) try {
    const std::wstring Reference = m_BuildTable(Schema, Table);
    const Dialects::Frame Frame = Dialects::SampleRows(DBType);
    std::wstring Statement(Frame.Before);
    return Statement.append(Reference).append(Frame.Behind);
} catch (...) {
    ReportError(Module, L"m_BuildStmtSampleRows");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtCountRows(const Node& Node) try {
    const std::wstring& Kind = Node.Tag();
    if (IsTableOrView(Kind)) return L"SELECT COUNT(*) FROM " + m_BuildTable(SchemaOfTable(Node), Node.Text());
    if (!IsFolder(Kind)) return {};
    return JoinTables(Node, L"SELECT COUNT(*) FROM ");
} catch (...) {
    ReportError(Module, L"m_GetStmtCountRows");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtDescribe(const Node& Node) try {
    const std::wstring& Kind = Node.Tag();
    if (IsTableOrView(Kind)) return L"DESCRIBE " + Dialects::DescribePrefix(SchemaOfTable(Node)) + Node.Text();
    if (IsFolder(Kind)) return JoinDescriptions(Node, Dialects::DescribePrefix(Node.Parent().Text()));
    if (Kind != modLists::NodeKind::Schema) return {};
    const std::wstring Prefix = Dialects::DescribePrefix(Node.Text());
    std::wstring Joined = JoinDescriptions(Node.Child().FirstSibling(), Prefix);
    const std::wstring OfTheLast = JoinDescriptions(Node.Child().LastSibling(), Prefix);
    if (!Joined.empty() && !OfTheLast.empty()) Joined.append(Separator);
    return Joined.append(OfTheLast);
} catch (...) {
    ReportError(Module, L"m_GetStmtDescribe");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtSampleRows(const Node& Node) try {
    const std::wstring& Kind = Node.Tag();
    if (IsTableOrView(Kind)) return m_BuildStmtSampleRows(SchemaOfTable(Node), Node.Text());
    if (!IsFolder(Kind)) return {};
    return JoinSampleRows(Node);
} catch (...) {
    ReportError(Module, L"m_GetStmtSampleRows");
    return {};
}

std::wstring frmSQLEditor::m_GetStmtSelectTable(const Node& Node) try {
    // Decided before the kind of node is checked, so that it holds for a folder's first object too. Deliberate.
    if (!Node.Child() || !Node.Child().Child()) return {};
    const std::wstring& Kind = Node.Tag();
    if (IsFolder(Kind)) return JoinTables(Node, L"SELECT * FROM ");
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
        // The unquoted name: the word to be filled in is not an identifier.
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
        // Asked for in each of the two lists: the host may answer differently.
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

// A TAB after the keyword where UPDATE has blanks: the two forms differ on purpose.
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
