#include <vector>

#include "automation/HostCollection.h"
#include "automation/RuntimeError.h"
#include "browser/ReadingProgress.h"
#include "browser/modLists_Tree.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/MsgBox.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"
#include "sql/DatabaseTypes.h"

namespace {

// Stands for the connection's default schema.
constexpr const wchar_t* CurrentSchema = L"Current Schema";

// Held for the time of a procedure: the host may give the component another dictionary meanwhile.
std::shared_ptr<clsDictionary> Adapter() {
    if (Dictionary == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    return Dictionary;
}

Variant SchemaArgument(const std::wstring& Text) { return Text == CurrentSchema ? Variant::Null() : Variant(Text); }

// The owner of a message; null when the host released the window during the call.
HWND MessageOwner() { return EditorForm != nullptr ? EditorForm->Handle() : nullptr; }

void TellThatThereIsNoDictionary() {
    const std::wstring Text =
        DBType == DatabaseType::ActiveDirectory
            ? L"Active directory does not support this feature. Use the LDAP path as table name. For example: select * "
              L"from "
              L"'LDAP://DC=example,DC=com'."
            : L"No database dictionary information could be found. You may want to try a different driver / provider.";
    MsgBox(MessageOwner(), Text, MB_OK | MB_ICONINFORMATION);
}

// Runs a statement; when the host's component says that columns cannot be read, the user is told and the next statement
// follows.
template <class Step>
void ResumingAfterColumnErrors(Step&& step) {
    try {
        step();
    } catch (const RuntimeError& error) {
        if (error.Source != HostDatabaseError::Source || error.Number != HostDatabaseError::NoColumns) throw;
        MsgBox(MessageOwner(), error.Description, MB_OK | MB_ICONEXCLAMATION, L"SQL Editor");
    }
}

const Variant& Element(const std::vector<Variant>& Elements, size_t Position) {
    if (Position >= Elements.size()) RaiseError(ErrorNumber::SubscriptOutOfRange);
    return Elements[Position];
}

void AddProperty(Nodes& Nodes, const Node& Column, const Node& Properties, const Variant& Property,
                 const clsDictionary& Adapter) {
    const std::vector<Variant> Elements = Property.ToArray();
    const Variant& Name = Element(Elements, 0);
    const Variant& Value = Element(Elements, 1);
    std::wstring NameText;
    ResumingAfterColumnErrors([&] {
        NameText = Name.ToText();
        if (NameText == L"COLUMN_NAME") Column.SetText(Value.ToText());
    });
    const Node Shown = modLists::m_AddNode(Nodes, modLists::m_VntToStr(Name) + L"=" + modLists::m_VntToStr(Value),
                                           modLists::NodeKind::Property, Properties);
    ResumingAfterColumnErrors([&] {
        if (!Value.IsNumeric() || NameText != L"DATA_TYPE") return;
        Shown.SetText(modLists::m_VntToStr(Name) + L"=" +
                      Adapter.DataTypeDesc(Value.ToLong(), Element(Elements, 2).ToLong()));
    });
}

}  // namespace

std::wstring modLists::m_VntToStr(const Variant& Value) try {
    return Value.IsNull() ? std::wstring(L"null") : Value.ToText();
} catch (...) {
    ReportError(Module, L"m_VntToStr");
    return {};
}

void modLists::PopulateDBObjSchemas(::Nodes& Nodes, const ::Node& Node) try {
    const HostCollection Schemas = Adapter()->Schemas(L"", true);
    m_ClearNode(Nodes, Node);
    const auto AddSchema = [&](const std::wstring& Text) {
        const ::Node Schema =
            m_AddNode(Nodes, Text.empty() ? std::wstring(CurrentSchema) : Text, NodeKind::Schema, Node);
        AddDefaultSchemaItems(Nodes, Schema);
    };
    if (!Schemas) {
        AddSchema(CurrentSchema);
        return;
    }
    ReadingProgress Progress(L"schemas");
    Schemas.ForEach([&](const Variant& Schema) {
        AddSchema(Schema.IsNull() ? std::wstring() : Schema.ToText());
        Progress.Count();
        return true;
    });
} catch (...) {
    ReportUnlessOwn(L"PopulateDBObjSchemas");
}

void modLists::PopulateDBObjTablesViews(long ObjectType, ::Nodes& Nodes, const ::Node& Node, bool IncludeSys) try {
    const Variant SchemaName = SchemaArgument(Node.Parent().Text());
    // Cleared before the dictionary is asked, unlike schemas and columns: without a dictionary the node stays empty.
    m_ClearNode(Nodes, Node);
    const HostCollection Objects = Adapter()->Objects(ObjectType, SchemaName, L"", IncludeSys);
    ReadingProgress Progress((ObjectType == ObjectType::Tables ? L"tables of " : L"views of ") + Node.Parent().Text());
    Objects.ForEach([&](const Variant& Name) {
        const ::Node Object =
            m_AddNode(Nodes, Name.ToText(), ObjectType == ObjectType::Tables ? NodeKind::Table : NodeKind::View, Node);
        AddDefaultDBObjectItems(Nodes, Object);
        Progress.Count();
        return true;
    });
} catch (...) {
    if (IsOwnError(CurrentError(), HostDatabaseError::NoDictionary)) {
        TellThatThereIsNoDictionary();
        return;
    }
    ReportUnlessOwn(L"PopulateDBObjTablesViews");
}

void modLists::PopulateDBObjColumns(::Nodes& Nodes, const ::Node& Node) try {
    const auto Held = Adapter();
    const std::wstring TableName = Node.Parent().Text();
    const Variant SchemaName = SchemaArgument(Node.Parent().Parent().Parent().Text());
    HostCollection Columns;
    ResumingAfterColumnErrors([&] { Columns = Held->Columns(SchemaName, TableName); });
    // Cleared after the dictionary was asked, even when it returned nothing.
    m_ClearNode(Nodes, Node);
    if (!Columns) return;
    ReadingProgress Progress(L"columns of " + TableName);
    ResumingAfterColumnErrors([&] {
        Columns.ForEach([&](const Variant& Entry) {
            const ::Node Column = m_AddNode(Nodes, L"", NodeKind::Column, Node);
            const ::Node Properties = m_AddNode(Nodes, L"Properties", NodeKind::Properties, Column);
            ResumingAfterColumnErrors([&] {
                HostCollection::OrArray(Entry).ForEach([&](const Variant& Property) {
                    AddProperty(Nodes, Column, Properties, Property, *Held);
                    return true;
                });
            });
            Progress.Count();
            return true;
        });
    });
} catch (...) {
    ReportUnlessOwn(L"PopulateDBObjColumns");
}
