#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/Variant.h"
#include "host/database/Session.h"

// A field of a column's description.
struct ColumnProperty {
    std::wstring Name;
    Variant Value;
    long Attribute = 0;  // of DATA_TYPE: see FieldAttribute
};
using ColumnProperties = std::vector<ColumnProperty>;

// The database's own description of its schemas, tables, views and columns. Everything is read again with each call.
// All of it throws RuntimeError with the source DatabaseError::Source.
class Dictionary {
public:
    enum ObjectType { Tables = 1, Views = 2 };

    explicit Dictionary(std::shared_ptr<Session> session);

    // The names of the schemas, in the order of the driver; nothing when the database has none. `only` keeps the schema
    // of that name alone unless it is empty.
    std::optional<std::vector<std::wstring>> Schemas(const std::wstring& only, bool includeSystem) const;
    // The names of the tables or views of a schema, sorted. An empty schema is the connection's default schema; `only`
    // keeps the object of that name alone unless it is empty. Error NoDictionary when the driver cannot list tables at
    // all, 5 when the type is neither Tables nor Views.
    std::vector<std::wstring> Objects(long objectType, const std::wstring& schema, const std::wstring& only,
                                      bool includeSystem) const;
    // The columns of a table or view in their order, each with the fields of its SQLColumns row. Error NoSuchColumns
    // when they cannot be read, the object is not there any more included.
    std::vector<ColumnProperties> Columns(const std::wstring& schema, const std::wstring& table) const;

private:
    std::vector<ColumnProperties> ReadColumns(Odbc::Connection& connection, const std::wstring& schema,
                                              const std::wstring& table) const;

    std::shared_ptr<Session> session_;
};
