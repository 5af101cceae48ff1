#pragma once

#include <windows.h>
#define SQL_NOUNICODEMAP  // the names without a suffix stay the narrow functions
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A small layer over ODBC 3: handles that free themselves, diagnostics as exceptions, columns read in pieces so that a
// value may have any length. Everything uses the W functions. Nothing here is safe for use from two threads at once.
namespace Odbc {

// One diagnostic record of a failed call.
struct Diagnostic {
    std::wstring State;  // SQLSTATE, five characters
    long Native = 0;     // the data source's own number
    std::wstring Text;
};

// A call that failed, with all that the driver said of it.
class Error : public std::exception {
public:
    explicit Error(std::vector<Diagnostic> records);
    // The SQLSTATE of the first record; HY000 when the driver gave none.
    const std::wstring& State() const noexcept;
    long Native() const noexcept;
    // The texts of all records, each on a line of its own, without repetitions.
    std::wstring Text() const;
    // Whether the SQLSTATE says that the connection is gone (class 08, and what servers send while they shut down).
    bool ConnectionLost() const noexcept;
    // Whether the driver says that it does not have the function that was called.
    bool NotSupported() const noexcept;
    const char* what() const noexcept override;

private:
    std::vector<Diagnostic> records_;
};

// How texts go through the driver manager.
// Under Wine the driver manager is unixODBC. For a driver without W functions it turns texts into the locale's bytes,
// and loses every character beyond U+FFFF on the way; in a locale without UTF-8, all that is not ASCII. The SQLite
// driver for Unix is such a driver; its narrow functions take and give UTF-8 in every locale, so they are called
// instead. Windows' own drivers all have W functions.
enum class Encoding { Wide, NarrowUtf8 };

// Diagnostic records of a handle, at most 64 of them.
std::vector<Diagnostic> Diagnostics(SQLSMALLINT type, SQLHANDLE handle, Encoding encoding = Encoding::Wide);

// The environment of the process, made with the first connection and freed with the last.
class Environment {
public:
    static std::shared_ptr<Environment> Shared();
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    SQLHENV Handle() const noexcept { return handle_; }

private:
    Environment();
    SQLHENV handle_ = SQL_NULL_HENV;
};

class Connection {
public:
    // Connects without ever showing a dialog. `loginTimeout` in seconds; a driver that knows no time limit ignores it.
    Connection(const std::wstring& connectionString, unsigned loginTimeout);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    SQLHDBC Handle() const noexcept { return handle_; }
    Encoding TextEncoding() const noexcept { return encoding_; }
    // Whether the driver can be asked for a number of rows whatever the statement is.
    bool CanLimitRows() const noexcept { return canLimitRows_; }
    // SQLGetInfo for a text, and for numbers of 16 and 32 bits. Nothing when the driver does not know the item.
    std::optional<std::wstring> InfoText(SQLUSMALLINT item) const;
    std::optional<unsigned> InfoShort(SQLUSMALLINT item) const;
    std::optional<unsigned long> InfoLong(SQLUSMALLINT item) const;
    // SQL_ATTR_CURRENT_CATALOG, empty when the driver has none.
    std::wstring CurrentCatalog() const;
    // What the driver knows of the connection without asking the server. A driver that cannot tell counts as alive.
    bool IsDead() const noexcept;

private:
    std::shared_ptr<Environment> environment_;
    SQLHDBC handle_ = SQL_NULL_HDBC;
    bool connected_ = false;
    Encoding encoding_ = Encoding::Wide;
    bool canLimitRows_ = true;
};

// A column of a result set.
struct ColumnInfo {
    std::wstring Name;
    SQLSMALLINT Type = SQL_UNKNOWN_TYPE;  // SQL_VARCHAR, SQL_INTEGER, ...
    SQLULEN Size = 0;                     // characters, or digits of a number
    SQLSMALLINT Digits = 0;               // after the decimal point
    bool Nullable = true;

    bool IsNumber() const noexcept;
    bool IsBinary() const noexcept;
};

// An argument of a catalogue call: left out (a null pointer) when it holds nothing.
using Name = std::optional<std::wstring>;

class Statement {
public:
    explicit Statement(Connection& connection);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Asks the driver to give at most that many rows. Some drivers fetch a whole result first and save memory by this,
    // others ignore it: the reader must count for itself. 0 is no limit. Only where the connection can limit rows.
    void LimitRows(unsigned long rows) noexcept;
    void Execute(const std::wstring& sql);

    // SQLTables with its special forms as ODBC has them: see the standard for "%" and empty arguments.
    void Tables(const Name& catalog, const Name& schema, const Name& table, const Name& types);
    void Columns(const Name& catalog, const Name& schema, const Name& table, const Name& column);
    void TypeInfo(SQLSMALLINT type);

    // 0: the statement gave no rows.
    unsigned ColumnCount() const;
    // `column` counts from 1, as in the whole class.
    ColumnInfo Column(unsigned column) const;
    // The names and types of all columns; read once, after the call that made the result set.
    const std::vector<ColumnInfo>& AllColumns();
    // The number of rows that were changed; -1 when the driver does not say.
    SQLLEN RowCount() const;
    // Goes to the next row; false after the last.
    bool Fetch();
    // Goes to the next result of a batch of statements; false when there is none.
    bool NextResult();
    void Close() noexcept;

    // The value of a column of the current row; nothing is NULL. Columns must be read from left to right, each once:
    // that is all that many drivers can do. Binary values are read as hexadecimal digits after 0x. With a `limit` at
    // most that many characters are read, and `cut` tells whether there were more.
    std::optional<std::wstring> Text(unsigned column, size_t limit = SIZE_MAX, bool* cut = nullptr);
    std::optional<long long> Integer(unsigned column);

private:
    void Check(SQLRETURN result) const;
    std::optional<std::wstring> Characters(unsigned column, size_t limit, bool* cut);
    std::optional<std::wstring> Hexadecimal(unsigned column, size_t limit, bool* cut);

    SQLHSTMT handle_ = SQL_NULL_HSTMT;
    Encoding encoding_ = Encoding::Wide;
    std::vector<ColumnInfo> columns_;
    std::vector<wchar_t> buffer_;
};

// A name in which no character is a wildcard of catalogue calls: "_", "%" and the escape character itself get `escape`,
// what the driver says for SQL_SEARCH_PATTERN_ESCAPE, in front. With an empty `escape` the name stays as it is, and the
// caller must compare the names that come back.
std::wstring EscapePattern(std::wstring_view name, std::wstring_view escape);

}  // namespace Odbc
