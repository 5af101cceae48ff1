#include "host/database/Odbc.h"

#include <algorithm>

#include "host/Utf8.h"

namespace Odbc {
namespace {

// The ODBC functions take their texts without const, but do not change them.
SQLWCHAR* Chars(const std::wstring& text) noexcept { return const_cast<SQLWCHAR*>(text.data()); }

SQLCHAR* Bytes(const std::string& text) noexcept { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.data())); }

// A name as the catalogue functions take it, in one of the two encodings.
class NameArgument {
public:
    NameArgument(const Name& name, Encoding encoding) : name_(name) {
        if (!name_) return;
        if (encoding == Encoding::NarrowUtf8) utf8_ = ToUtf8(*name_);
        if (std::max(name_->size(), utf8_.size()) > SHRT_MAX) throw Error({{L"HY090", 0, L"The name is too long."}});
    }
    SQLWCHAR* Wide() const noexcept { return name_ ? Chars(*name_) : nullptr; }
    SQLSMALLINT WideLength() const noexcept { return static_cast<SQLSMALLINT>(name_ ? name_->size() : 0); }
    SQLCHAR* Narrow() const noexcept { return name_ ? Bytes(utf8_) : nullptr; }
    SQLSMALLINT NarrowLength() const noexcept { return static_cast<SQLSMALLINT>(utf8_.size()); }

private:
    const Name& name_;
    std::string utf8_;
};

// A driver that fails without a word still gets a text that tells what failed.
[[noreturn]] void Throw(SQLSMALLINT type, SQLHANDLE handle, SQLRETURN result, Encoding encoding = Encoding::Wide) {
    std::vector<Diagnostic> records = Diagnostics(type, handle, encoding);
    if (records.empty()) {
        records.push_back({L"HY000", 0,
                           result == SQL_INVALID_HANDLE ? L"The ODBC handle is not valid."
                                                        : L"The ODBC driver reports a failure without details."});
    }
    throw Error(std::move(records));
}

SQLRETURN DiagnosticRecord(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT number, Encoding encoding,
                           Diagnostic& record) {
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLRETURN result;
    if (encoding == Encoding::NarrowUtf8) {
        SQLCHAR state[6] = {};
        std::string text(8192, '\0');
        result = SQLGetDiagRec(type, handle, number, state, &native, Bytes(text), static_cast<SQLSMALLINT>(text.size()),
                               &length);
        record.State = FromUtf8(reinterpret_cast<const char*>(state));
        record.Text = FromUtf8(text.c_str());
    } else {
        wchar_t state[6] = {};
        std::wstring text(8192, L'\0');
        result = SQLGetDiagRecW(type, handle, number, state, &native, Chars(text),
                                static_cast<SQLSMALLINT>(text.size()), &length);
        record.State = state;
        record.Text = text.c_str();
    }
    record.Native = native;
    return result;
}

}  // namespace

Error::Error(std::vector<Diagnostic> records) : records_(std::move(records)) {
    if (records_.empty()) records_.push_back({L"HY000", 0, L"ODBC failed without details."});
}

const std::wstring& Error::State() const noexcept { return records_.front().State; }

long Error::Native() const noexcept { return records_.front().Native; }

std::wstring Error::Text() const {
    std::wstring text;
    for (size_t i = 0; i < records_.size(); ++i) {
        const auto same = [&](const Diagnostic& other) { return other.Text == records_[i].Text; };
        if (std::any_of(records_.begin(), records_.begin() + static_cast<std::ptrdiff_t>(i), same)) continue;
        if (!text.empty()) text += L"\r\n";
        text += records_[i].Text;
    }
    return text;
}

bool Error::ConnectionLost() const noexcept {
    // 08007 tells of a transaction whose end is unknown, not of a connection. 57P01 to 57P03 are sent by PostgreSQL
    // while it shuts down or is not yet up, HYT01 is the connection's time limit.
    for (const Diagnostic& record : records_) {
        const std::wstring& state = record.State;
        if (state.starts_with(L"08") && state != L"08007") return true;
        if (state == L"57P01" || state == L"57P02" || state == L"57P03" || state == L"HYT01") return true;
    }
    return false;
}

bool Error::NotSupported() const noexcept { return State() == L"IM001" || State() == L"HYC00" || State() == L"S1C00"; }

const char* Error::what() const noexcept { return "ODBC error"; }

std::vector<Diagnostic> Diagnostics(SQLSMALLINT type, SQLHANDLE handle, Encoding encoding) {
    std::vector<Diagnostic> records;
    for (SQLSMALLINT i = 1; i <= 64; ++i) {
        Diagnostic record;
        if (!SQL_SUCCEEDED(DiagnosticRecord(type, handle, i, encoding, record))) break;
        while (!record.Text.empty() && wcschr(L"\r\n ", record.Text.back())) record.Text.pop_back();
        records.push_back(std::move(record));
    }
    return records;
}

Environment::Environment() {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &handle_))) {
        throw Error({{L"HY001", 0, L"ODBC could not be started: no environment handle."}});
    }
    const SQLRETURN result = SQLSetEnvAttr(handle_, SQL_ATTR_ODBC_VERSION,
                                           reinterpret_cast<SQLPOINTER>(static_cast<ULONG_PTR>(SQL_OV_ODBC3)), 0);
    if (!SQL_SUCCEEDED(result)) {
        SQLFreeHandle(SQL_HANDLE_ENV, handle_);
        throw Error({{L"HY000", 0, L"ODBC version 3 is not available."}});
    }
}

Environment::~Environment() { SQLFreeHandle(SQL_HANDLE_ENV, handle_); }

std::shared_ptr<Environment> Environment::Shared() {
    static std::weak_ptr<Environment> shared;
    std::shared_ptr<Environment> environment = shared.lock();
    if (!environment) {
        environment.reset(new Environment);
        shared = environment;
    }
    return environment;
}

Connection::Connection(const std::wstring& connectionString, unsigned loginTimeout)
    : environment_(Environment::Shared()) {
    if (connectionString.size() > SHRT_MAX) throw Error({{L"HY090", 0, L"The connection string is too long."}});
    SQLRETURN result = SQLAllocHandle(SQL_HANDLE_DBC, environment_->Handle(), &handle_);
    if (!SQL_SUCCEEDED(result)) Throw(SQL_HANDLE_ENV, environment_->Handle(), result);
    try {
        if (loginTimeout) {
            SQLSetConnectAttrW(handle_, SQL_ATTR_LOGIN_TIMEOUT,
                               reinterpret_cast<SQLPOINTER>(static_cast<ULONG_PTR>(loginTimeout)), SQL_IS_UINTEGER);
        }
        std::vector<wchar_t> completed(1024 + connectionString.size());
        SQLSMALLINT length = 0;
        result = SQLDriverConnectW(handle_, nullptr, Chars(connectionString),
                                   static_cast<SQLSMALLINT>(connectionString.size()), completed.data(),
                                   static_cast<SQLSMALLINT>(std::min<size_t>(completed.size(), SHRT_MAX)), &length,
                                   SQL_DRIVER_NOPROMPT);
        SecureZeroMemory(completed.data(), completed.size() * sizeof(wchar_t));  // it holds the password
        if (result == SQL_NO_DATA)
            throw Error({{L"08001", 0, L"The connection was not made: the connection string is incomplete."}});
        if (!SQL_SUCCEEDED(result)) Throw(SQL_HANDLE_DBC, handle_, result);
        connected_ = true;
        const std::wstring driver = InfoText(SQL_DRIVER_NAME).value_or(L"");
        if (driver.find(L"sqlite3odbc") != std::wstring::npos && driver.ends_with(L".so"))
            encoding_ = Encoding::NarrowUtf8;
        // The driver of MariaDB writes LIMIT behind the statement, even behind CREATE TABLE or another LIMIT.
        canLimitRows_ = driver.find(L"maodbc") == std::wstring::npos;
    } catch (...) {
        SQLFreeHandle(SQL_HANDLE_DBC, handle_);
        throw;
    }
}

Connection::~Connection() {
    if (connected_ && !SQL_SUCCEEDED(SQLDisconnect(handle_))) {
        // An open transaction keeps the connection; what was not committed is given up.
        SQLEndTran(SQL_HANDLE_DBC, handle_, SQL_ROLLBACK);
        SQLDisconnect(handle_);
    }
    SQLFreeHandle(SQL_HANDLE_DBC, handle_);
}

std::optional<std::wstring> Connection::InfoText(SQLUSMALLINT item) const {
    std::vector<wchar_t> text(4096);
    for (int attempt = 0; attempt < 2; ++attempt) {
        SQLSMALLINT bytes = 0;
        const SQLSMALLINT room =
            static_cast<SQLSMALLINT>(std::min<size_t>(text.size() * sizeof(wchar_t), SHRT_MAX - 1));
        if (!SQL_SUCCEEDED(SQLGetInfoW(handle_, item, text.data(), room, &bytes))) return std::nullopt;
        if (bytes < room || text.size() * sizeof(wchar_t) >= SHRT_MAX - 1) break;
        text.assign(static_cast<size_t>(bytes) / sizeof(wchar_t) + 2, L'\0');
    }
    // The length that came back is not asked: some drivers count characters where the standard counts bytes.
    return std::wstring(text.data(), wcsnlen(text.data(), text.size()));
}

std::optional<unsigned> Connection::InfoShort(SQLUSMALLINT item) const {
    SQLUINTEGER value = 0;  // room for a driver that writes 32 bits
    SQLSMALLINT bytes = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(handle_, item, &value, sizeof value, &bytes))) return std::nullopt;
    return value & 0xFFFF;
}

std::optional<unsigned long> Connection::InfoLong(SQLUSMALLINT item) const {
    SQLUINTEGER value = 0;
    SQLSMALLINT bytes = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(handle_, item, &value, sizeof value, &bytes))) return std::nullopt;
    return value;
}

std::wstring Connection::CurrentCatalog() const {
    std::vector<wchar_t> text(1024);
    SQLINTEGER bytes = 0;
    const SQLRETURN result = SQLGetConnectAttrW(handle_, SQL_ATTR_CURRENT_CATALOG, text.data(),
                                                static_cast<SQLINTEGER>((text.size() - 1) * sizeof(wchar_t)), &bytes);
    if (!SQL_SUCCEEDED(result)) return {};
    return std::wstring(text.data(), wcsnlen(text.data(), text.size()));
}

bool Connection::IsDead() const noexcept {
    SQLUINTEGER dead = SQL_CD_FALSE;
    const SQLRETURN result = SQLGetConnectAttrW(handle_, SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
    return SQL_SUCCEEDED(result) && dead == SQL_CD_TRUE;
}

bool ColumnInfo::IsNumber() const noexcept {
    switch (Type) {
        case SQL_NUMERIC:
        case SQL_DECIMAL:
        case SQL_INTEGER:
        case SQL_SMALLINT:
        case SQL_FLOAT:
        case SQL_REAL:
        case SQL_DOUBLE:
        case SQL_BIGINT:
        case SQL_TINYINT:
        case SQL_BIT:
            return true;
        default:
            return false;
    }
}

bool ColumnInfo::IsBinary() const noexcept {
    return Type == SQL_BINARY || Type == SQL_VARBINARY || Type == SQL_LONGVARBINARY;
}

Statement::Statement(Connection& connection) : encoding_(connection.TextEncoding()), buffer_(2048) {
    const SQLRETURN result = SQLAllocHandle(SQL_HANDLE_STMT, connection.Handle(), &handle_);
    if (!SQL_SUCCEEDED(result)) Throw(SQL_HANDLE_DBC, connection.Handle(), result, encoding_);
}

Statement::~Statement() { SQLFreeHandle(SQL_HANDLE_STMT, handle_); }

void Statement::Check(SQLRETURN result) const {
    if (!SQL_SUCCEEDED(result)) Throw(SQL_HANDLE_STMT, handle_, result, encoding_);
}

void Statement::LimitRows(unsigned long rows) noexcept {
    SQLSetStmtAttrW(handle_, SQL_ATTR_MAX_ROWS, reinterpret_cast<SQLPOINTER>(static_cast<ULONG_PTR>(rows)),
                    SQL_IS_UINTEGER);
}

void Statement::Execute(const std::wstring& sql) {
    columns_.clear();
    SQLRETURN result;
    if (encoding_ == Encoding::NarrowUtf8) {
        const std::string utf8 = ToUtf8(sql);
        result = SQLExecDirect(handle_, Bytes(utf8), static_cast<SQLINTEGER>(utf8.size()));
    } else {
        result = SQLExecDirectW(handle_, Chars(sql), static_cast<SQLINTEGER>(sql.size()));
    }
    // An UPDATE or DELETE that touches no row answers with SQL_NO_DATA.
    if (result != SQL_NO_DATA) Check(result);
}

void Statement::Tables(const Name& catalog, const Name& schema, const Name& table, const Name& types) {
    columns_.clear();
    const NameArgument c(catalog, encoding_), s(schema, encoding_), t(table, encoding_), y(types, encoding_);
    if (encoding_ == Encoding::NarrowUtf8) {
        Check(SQLTables(handle_, c.Narrow(), c.NarrowLength(), s.Narrow(), s.NarrowLength(), t.Narrow(),
                        t.NarrowLength(), y.Narrow(), y.NarrowLength()));
    } else {
        Check(SQLTablesW(handle_, c.Wide(), c.WideLength(), s.Wide(), s.WideLength(), t.Wide(), t.WideLength(),
                         y.Wide(), y.WideLength()));
    }
}

void Statement::Columns(const Name& catalog, const Name& schema, const Name& table, const Name& column) {
    columns_.clear();
    const NameArgument c(catalog, encoding_), s(schema, encoding_), t(table, encoding_), n(column, encoding_);
    if (encoding_ == Encoding::NarrowUtf8) {
        Check(SQLColumns(handle_, c.Narrow(), c.NarrowLength(), s.Narrow(), s.NarrowLength(), t.Narrow(),
                         t.NarrowLength(), n.Narrow(), n.NarrowLength()));
    } else {
        Check(SQLColumnsW(handle_, c.Wide(), c.WideLength(), s.Wide(), s.WideLength(), t.Wide(), t.WideLength(),
                          n.Wide(), n.WideLength()));
    }
}

void Statement::TypeInfo(SQLSMALLINT type) {
    columns_.clear();
    Check(SQLGetTypeInfoW(handle_, type));
}

unsigned Statement::ColumnCount() const {
    SQLSMALLINT count = 0;
    Check(SQLNumResultCols(handle_, &count));
    return count > 0 ? static_cast<unsigned>(count) : 0;
}

ColumnInfo Statement::Column(unsigned column) const {
    ColumnInfo info;
    const SQLUSMALLINT number = static_cast<SQLUSMALLINT>(column);
    SQLSMALLINT length = 0, nullable = SQL_NULLABLE_UNKNOWN;
    if (encoding_ == Encoding::NarrowUtf8) {
        std::string name(4096, '\0');
        Check(SQLDescribeCol(handle_, number, Bytes(name), static_cast<SQLSMALLINT>(name.size()), &length, &info.Type,
                             &info.Size, &info.Digits, &nullable));
        info.Name = FromUtf8(name.c_str());
    } else {
        std::wstring name(2048, L'\0');
        Check(SQLDescribeColW(handle_, number, Chars(name), static_cast<SQLSMALLINT>(name.size()), &length, &info.Type,
                              &info.Size, &info.Digits, &nullable));
        info.Name = name.c_str();
    }
    info.Nullable = nullable != SQL_NO_NULLS;
    return info;
}

const std::vector<ColumnInfo>& Statement::AllColumns() {
    if (columns_.empty()) {
        const unsigned count = ColumnCount();
        for (unsigned i = 1; i <= count; ++i) columns_.push_back(Column(i));
    }
    return columns_;
}

SQLLEN Statement::RowCount() const {
    SQLLEN count = -1;
    return SQL_SUCCEEDED(SQLRowCount(handle_, &count)) ? count : -1;
}

bool Statement::Fetch() {
    const SQLRETURN result = SQLFetch(handle_);
    if (result == SQL_NO_DATA) return false;
    Check(result);
    return true;
}

bool Statement::NextResult() {
    columns_.clear();
    const SQLRETURN result = SQLMoreResults(handle_);
    if (result == SQL_NO_DATA) return false;
    Check(result);
    return true;
}

void Statement::Close() noexcept { SQLFreeStmt(handle_, SQL_CLOSE); }

std::optional<std::wstring> Statement::Text(unsigned column, size_t limit, bool* cut) {
    if (cut) *cut = false;
    const std::vector<ColumnInfo>& columns = AllColumns();
    if (column == 0 || column > columns.size()) throw Error({{L"07009", 0, L"There is no column of this number."}});
    const ColumnInfo& info = columns[column - 1];
    if (info.IsBinary()) return Hexadecimal(column, limit, cut);
    return Characters(column, limit, cut);
}

std::optional<std::wstring> Statement::Characters(unsigned column, size_t limit, bool* cut) {
    std::wstring text;
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN result = SQLGetData(handle_, static_cast<SQLUSMALLINT>(column), SQL_C_WCHAR, buffer_.data(),
                                            static_cast<SQLLEN>(buffer_.size() * sizeof(wchar_t)), &indicator);
        if (result == SQL_NO_DATA) break;
        Check(result);
        if (indicator == SQL_NULL_DATA) return std::nullopt;
        // A full buffer ends with a NUL. What is left is told in bytes, or not at all.
        const size_t room = buffer_.size() - 1;
        const bool more = indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > room * sizeof(wchar_t);
        text.append(buffer_.data(), more ? room : static_cast<size_t>(indicator) / sizeof(wchar_t));
        if (!more) break;
        if (text.size() > limit) break;
    }
    if (text.size() > limit) {
        if (cut) *cut = true;
        if (limit && IS_HIGH_SURROGATE(text[limit - 1])) --limit;
        text.resize(limit);
    }
    return text;
}

std::optional<std::wstring> Statement::Hexadecimal(unsigned column, size_t limit, bool* cut) {
    static const wchar_t digits[] = L"0123456789ABCDEF";
    std::wstring text = L"0x";
    const auto bytes = reinterpret_cast<const unsigned char*>(buffer_.data());
    for (;;) {
        const size_t room = buffer_.size() * sizeof(wchar_t);
        SQLLEN indicator = 0;
        const SQLRETURN result = SQLGetData(handle_, static_cast<SQLUSMALLINT>(column), SQL_C_BINARY, buffer_.data(),
                                            static_cast<SQLLEN>(room), &indicator);
        if (result == SQL_NO_DATA) break;
        Check(result);
        if (indicator == SQL_NULL_DATA) return std::nullopt;
        const bool more = indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) > room;
        const size_t count = more ? room : static_cast<size_t>(indicator);
        for (size_t i = 0; i < count; ++i) {
            text += digits[bytes[i] >> 4];
            text += digits[bytes[i] & 15];
        }
        if (!more || text.size() > limit) break;
    }
    if (text.size() > limit) {
        if (cut) *cut = true;
        text.resize(limit);
    }
    return text;
}

std::optional<long long> Statement::Integer(unsigned column) {
    SQLBIGINT value = 0;
    SQLLEN indicator = 0;
    Check(SQLGetData(handle_, static_cast<SQLUSMALLINT>(column), SQL_C_SBIGINT, &value, sizeof value, &indicator));
    if (indicator == SQL_NULL_DATA) return std::nullopt;
    return value;
}

std::wstring EscapePattern(std::wstring_view name, std::wstring_view escape) {
    std::wstring pattern;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool wild = name[i] == L'_' || name[i] == L'%';
        if (!escape.empty() && (wild || name.substr(i).starts_with(escape))) pattern += escape;
        pattern += name[i];
    }
    return pattern;
}

}  // namespace Odbc
