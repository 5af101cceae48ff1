#include "host/database/DatabaseObject.h"

#include <algorithm>

#include "automation/DynamicObject.h"
#include "automation/Object.h"
#include "automation/RuntimeError.h"
#include "automation/Variant.h"
#include "host/database/CreateTableDialog.h"
#include "host/database/DataTypes.h"
#include "host/database/Dictionary.h"
#include "host/database/RowReader.h"
#include "host/database/Session.h"

namespace {

constexpr unsigned defaultLoginTimeout = 15;

// What a database object and the objects that it hands out share.
struct State {
    std::shared_ptr<Session> Current;

    const std::shared_ptr<Session>& Connected() const {
        if (!Current)
            RaiseError(DatabaseError::NotConnected, DatabaseError::Source, L"There is no connection to a database.");
        return Current;
    }
};

// The text of an argument; Null, Empty and a missing one are the empty text.
std::wstring OptionalText(const Variant& value) {
    if (value.IsNull() || value.IsEmpty() || value.IsMissing() || value.IsNothing()) return {};
    return value.ToText();
}

long OptionalLong(const Arguments& arguments, size_t position, long otherwise) {
    if (!arguments.Has(position)) return otherwise;
    const Variant value = arguments[position];
    return value.IsNull() || value.IsEmpty() ? otherwise : value.ToLong();
}

bool OptionalBoolean(const Arguments& arguments, size_t position) {
    if (!arguments.Has(position)) return false;
    const Variant value = arguments[position];
    return !value.IsNull() && value.ToBoolean();
}

void NeedArguments(const Arguments& arguments, size_t least, size_t most) {
    if (arguments.Count() < least || arguments.Count() > most) RaiseError(ErrorNumber::WrongArgumentCount);
}

Object NamesObject(const std::vector<std::wstring>& names) {
    return MakeCollection(std::vector<Variant>(names.begin(), names.end()));
}

Object MakeDictionaryObject(const std::shared_ptr<State>& state) {
    auto* object = new DynamicObject;
    Object reference = Object::Attach(object);
    object->Define(L"Schemas", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 0, 2);
        const Dictionary dictionary(state->Connected());
        const auto names = dictionary.Schemas(OptionalText(arguments[0]), OptionalBoolean(arguments, 1));
        return names ? Variant(NamesObject(*names)) : Variant::Nothing();
    });
    object->Define(L"Objects", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 1, 4);
        const Dictionary dictionary(state->Connected());
        return NamesObject(dictionary.Objects(arguments[0].ToLong(), OptionalText(arguments[1]),
                                              OptionalText(arguments[2]), OptionalBoolean(arguments, 3)));
    });
    object->Define(L"Columns", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 2, 2);
        const std::wstring table = OptionalText(arguments[1]);
        if (!state->Current) {
            RaiseError(DatabaseError::NoSuchColumns, DatabaseError::Source,
                       L"The columns of \"" + table + L"\" cannot be read: there is no connection to a database.");
        }
        const Dictionary dictionary(state->Current);
        std::vector<Variant> columns;
        for (const ColumnProperties& properties : dictionary.Columns(OptionalText(arguments[0]), table)) {
            std::vector<Variant> items;
            for (const ColumnProperty& property : properties) {
                items.push_back(Variant::ArrayOf({property.Name, property.Value, property.Attribute}));
            }
            columns.push_back(MakeCollection(std::move(items)));
        }
        return MakeCollection(std::move(columns));
    });
    object->Define(L"DataTypeDesc", [](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 1, 2);
        return DataTypeDesc(arguments[0].ToLong(), OptionalLong(arguments, 1, FieldAttribute::None));
    });
    return reference;
}

Object MakeRowsObject(std::shared_ptr<RowReader> rows) {
    auto* object = new DynamicObject;
    Object reference = Object::Attach(object);
    object->Define(L"FieldCount",
                   [rows](const Arguments&) -> Variant { return static_cast<long>(rows->Fields().size()); });
    const auto field = [rows](const Arguments& arguments) -> const Odbc::ColumnInfo& {
        NeedArguments(arguments, 1, 1);
        const long index = arguments[0].ToLong();
        if (index < 0 || index >= static_cast<long>(rows->Fields().size()))
            RaiseError(ErrorNumber::SubscriptOutOfRange);
        return rows->Fields()[static_cast<size_t>(index)];
    };
    object->Define(L"FieldName", [field](const Arguments& arguments) -> Variant { return field(arguments).Name; });
    object->Define(L"FieldType",
                   [field](const Arguments& arguments) -> Variant { return static_cast<long>(field(arguments).Type); });
    object->Define(L"RowsAffected", [rows](const Arguments&) -> Variant { return rows->RowsAffected(); });
    object->Define(L"NextRow", [rows](const Arguments&) -> Variant {
        const auto row = rows->Next();
        return row ? Variant::ArrayOf(*row) : Variant::Null();
    });
    object->Define(L"NextRowText", [rows](const Arguments& arguments) -> Variant {
        const long limit = OptionalLong(arguments, 0, 0);
        const auto row = rows->NextText(limit > 0 ? static_cast<size_t>(limit) : SIZE_MAX);
        return row ? Variant::ArrayOf(*row) : Variant::Null();
    });
    object->Define(L"NextResult", [rows](const Arguments&) -> Variant { return rows->NextResult(); });
    object->Define(L"Close", [rows](const Arguments&) -> Variant {
        rows->Close();
        return {};
    });
    return reference;
}

// A database in a file is told by the file's name first, since a status bar may have no room for the folder.
std::wstring DescribeDatabase(const std::wstring& database) {
    const size_t slash = database.find_last_of(L"\\/");
    if (slash == std::wstring::npos || slash + 1 == database.size()) return database;
    return database.substr(slash + 1) + L" in " + database.substr(0, std::max<size_t>(slash, 1));
}

// "PostgreSQL 15.0.18, shop on localhost as anna"
std::wstring DescribeConnection(const SessionFacts& facts) {
    std::wstring text = facts.ProductName.empty() ? facts.Kind->Name : facts.ProductName;
    if (!facts.ProductVersion.empty()) text += L" " + facts.ProductVersion;
    if (!facts.Database.empty()) text += L", " + DescribeDatabase(facts.Database);
    // A database in a file is its own server for some drivers.
    if (!facts.Server.empty() && facts.Server != facts.Database) text += L" on " + facts.Server;
    if (!facts.UserName.empty()) text += L" as " + facts.UserName;
    return text;
}

void DefineFacts(DynamicObject& object, const std::shared_ptr<State>& state) {
    object.Define(L"Connected",
                  [state](const Arguments&) -> Variant { return state->Current && state->Current->IsAlive(); });
    object.Define(L"CurrentCatalog",
                  [state](const Arguments&) -> Variant { return state->Connected()->Facts().DefaultSchema; });
    object.Define(L"UserName", [state](const Arguments&) -> Variant { return state->Connected()->Facts().UserName; });
    object.Define(L"SchemaTerm",
                  [state](const Arguments&) -> Variant { return state->Connected()->Facts().SchemaTerm; });
    object.Define(L"DBType", [state](const Arguments&) -> Variant {
        return state->Current ? state->Current->Facts().Kind->DBType : 0L;
    });
    object.Define(L"DBTypeName", [state](const Arguments& arguments) -> Variant {
        const long own = state->Current ? state->Current->Facts().Kind->DBType : -1;
        const long type = OptionalLong(arguments, 0, own);
        return type == own && state->Current ? DescribeConnection(state->Current->Facts()) : ProductName(type);
    });
    object.Define(L"FormatName", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 1, 1);
        return FormatName(state->Connected()->Facts().Rules, OptionalText(arguments[0]));
    });
    object.Define(L"Dictionary", [state](const Arguments&) -> Variant {
        return state->Current ? Variant(MakeDictionaryObject(state)) : Variant::Nothing();
    });
}

void DefineActions(DynamicObject& object, const std::shared_ptr<State>& state) {
    object.Define(L"Open", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 1, 2);
        const long timeout = OptionalLong(arguments, 1, defaultLoginTimeout);
        if (timeout < 0) RaiseError(ErrorNumber::InvalidProcedureCall);
        state->Current.reset();
        state->Current = std::make_shared<Session>(OptionalText(arguments[0]), static_cast<unsigned>(timeout));
        return {};
    });
    object.Define(L"Close", [state](const Arguments&) -> Variant {
        state->Current.reset();
        return {};
    });
    object.Define(L"Execute", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 1, 2);
        const long limit = OptionalLong(arguments, 1, 0);
        return MakeRowsObject(std::make_shared<RowReader>(state->Connected(), OptionalText(arguments[0]),
                                                          limit > 0 ? static_cast<unsigned long>(limit) : 0));
    });
    object.Define(L"ShowCreateTableDialog1", [state](const Arguments& arguments) -> Variant {
        NeedArguments(arguments, 2, 2);
        const auto session = state->Connected();  // a timer of the host may close the connection meanwhile
        const std::optional<std::wstring> statement = ShowCreateTableDialog(*session);
        arguments.Let(0, Variant(statement.value_or(L"")));
        arguments.Let(1, Variant(!statement.has_value()));
        return {};
    });
}

}  // namespace

HRESULT CreateDatabaseObject(REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    try {
        const auto state = std::make_shared<State>();
        auto* database = new DynamicObject;
        Object reference = Object::Attach(database);
        DefineFacts(*database, state);
        DefineActions(*database, state);
        return database->QueryInterface(iid, object);
    } catch (...) {
        return PublishError(CurrentError());
    }
}
