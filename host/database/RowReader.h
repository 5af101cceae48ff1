#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/Variant.h"
#include "host/database/Session.h"

// A statement that was run, and its rows one after the other. Throws RuntimeError with the source
// DatabaseError::Source.
class RowReader {
public:
    // Runs the statement. `maxRows` asks the driver for no more rows than that; 0 is no limit.
    RowReader(std::shared_ptr<Session> session, const std::wstring& sql, unsigned long maxRows);

    const std::vector<Odbc::ColumnInfo>& Fields();  // empty: the statement gave no rows
    long RowsAffected();                            // -1: unknown
    // The next row; nothing after the last. Values have the type of their column where they read as such: whole
    // numbers, decimals, floating point, Boolean, dates; all else is text. Binary values are hexadecimal digits after
    // 0x.
    std::optional<std::vector<Variant>> Next();
    // The next row as texts, Null for NULL. A text longer than `limit` is cut to that length, its last character an
    // ellipsis.
    std::optional<std::vector<Variant>> NextText(size_t limit);
    bool NextResult();
    void Close() noexcept;

private:
    Odbc::Statement& Open();
    bool Fetch();

    std::shared_ptr<Session> session_;
    std::shared_ptr<Odbc::Connection>
        connection_;  // must outlive the statement, also when the session opens another one
    std::unique_ptr<Odbc::Statement> statement_;
    unsigned long rowsLeft_;
};

// A text of a column as a value of the column's type; the text itself where it does not read as one.
Variant TypedValue(const std::wstring& text, const Odbc::ColumnInfo& column);
