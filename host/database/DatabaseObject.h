#pragma once

#include <windows.h>

// The creatable class "brvADO.Database": a connection to a data source by ODBC, for late-bound clients.
//
//   Open(ConnectionString, [LoginTimeout])  connects; the time limit in seconds, 15 when left out
//   Close                                   closes; objects that were handed out fail from then on, but a result that
//                                           Execute gave can be read to its end
//   Connected                               whether the connection is there; a lost one is opened again if it can
//   CurrentCatalog                          the default schema (where a name without a prefix belongs), or the current
//                                           catalogue where catalogues are used like schemas; empty when there is
//                                           neither. Not the database's name: the editor leaves this prefix away in
//                                           statements, and they must run all the same.
//   UserName, SchemaTerm, DBType            of the connection; SchemaTerm is empty when there are no schemas
//   DBTypeName(DBType)                      describes the connection when DBType is its own, else names the product
//   FormatName(Name)                        the name as statements must write it
//   Dictionary                              the schemas, tables, views and columns; Nothing when not connected
//   ShowCreateTableDialog1(SQL, Cancelled)  shows a dialog; leaves a CREATE TABLE statement in SQL, or sets Cancelled
//   Execute(SQL, [MaxRows])                 runs one statement; see below for what comes back
//
// The dictionary:
//   Schemas(SchemaName, IncludeSystem)      collection of names, or Nothing when the database has no schemas
//   Objects(ObjectType, SchemaName, ObjectName, IncludeSys)
//                                           1 tables, 2 views; collection of names. A SchemaName that is Null, empty or
//                                           missing is the default schema; an empty ObjectName is every object
//   Columns(SchemaName, TableName)          collection of columns, each a collection of arrays (name, value, attribute)
//   DataTypeDesc(DataType, FieldAttribute)  the name of an ODBC type code
//
// What Execute returns:
//   FieldCount                              0 when the statement gave no rows
//   FieldName(Index), FieldType(Index)      Index from 0; the type is an ODBC code
//   RowsAffected                            -1 when unknown
//   NextRow                                 the next row as an array of values, Null after the last
//   NextRowText([Limit])                    the same as texts (Null stays Null), numbers and dates as the data source
//                                           writes them; with a limit longer texts are cut and end in an ellipsis
//   NextResult                              goes to the next result of a batch; False after the last
//   Close
// Rows come from the data source as they are asked for.
//
// Errors have the source "brvADO" and the numbers of DatabaseError in Session.h.
HRESULT CreateDatabaseObject(REFIID iid, void** object);
