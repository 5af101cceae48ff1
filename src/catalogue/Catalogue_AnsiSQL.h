#pragma once

#include "catalogue/CatalogueEntry.h"

// Laid out by hand, so that every entry reads like the next.
// clang-format off
namespace Catalogue_AnsiSQL {

inline constexpr CatalogueEntry Commands[] = {
    {.Text = L"COMMIT", .Description = L"Saves the changes in the current transaction to the database."},
    {.Text = L"CREATE TABLE",
     .Description = L"Creates a new table.",
     .DragDrop = L"CREATE TABLE table_name\r\n"
                 L"( column_name data_type\r\n"
                 L", column_name data_type\r\n"
                 L", ...\r\n"
                 L")"},
    {.Text = L"CREATE VIEW",
     .Description = L"Creates a new view of one or more tables and/or views.",
     .DragDrop = L"CREATE [OR REPLACE] VIEW view\r\n"
                 L"[alias, alias, ...]\r\n"
                 L"AS subquery"},
    {.Text = L"DELETE",
     .Description = L"Removes rows from a table.",
     .DragDrop = L"DELETE FROM table [WHERE condition]"},
    {.Text = L"DROP",
     .Description = L"Removes objects from the database.",
     .DragDrop = L"DROP {TABLE | VIEW} name"},
    {.Text = L"DROP VIEW",
     .Description = L"Deletes a database view.",
     .DragDrop = L"DROP VIEW view"},
    {.Text = L"INSERT",
     .Description = L"Adds new rows to a table.",
     .DragDrop = L"INSERT INTO table\r\n"
                 L"[(column, column, ...)]\r\n"
                 L"{VALUES (expr, expr, ...) | subquery}"},
    {.Text = L"SELECT",
     .Description = L"Queries one or more tables or views.",
     .DragDrop = L"SELECT [ALL | DISTINCT]\r\n"
                 L"column, column, ...\r\n"
                 L"FROM table, table, ...\r\n"
                 L"[WHERE condition(s)]\r\n"
                 L"[GROUP BY expr, expr, ... [HAVING condition(s)]]\r\n"
                 L"[ORDER BY] expr/pos [ASC | DESC],... ]"},
    {.Text = L"ROLLBACK", .Description = L"Undoes all changes made."},
    {.Text = L"UPDATE",
     .Description = L"Changes the values of columns in rows that meet the where condition in a table.",
     .DragDrop = L"UPDATE table SET\r\n"
                 L"{column = {expr | query} | (column, column, ...) = (subquery)}\r\n"
                 L"[WHERE condition(s)]"},
};

}  // namespace Catalogue_AnsiSQL
