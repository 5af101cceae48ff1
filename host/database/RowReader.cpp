#include "host/database/RowReader.h"

#include <charconv>
#include <climits>
#include <string>
#include <system_error>

namespace {

// OLE Automation would also read "1,5" as 15 and accept signs of currency.
bool IsPlainNumber(const std::wstring& text) {
    return !text.empty() && text.find_first_not_of(L"+-.0123456789eE") == std::wstring::npos;
}

// Whole numbers and decimals: kept exact.
bool ReadDecimal(std::wstring text, Variant& value) {
    DECIMAL decimal;
    if (!IsPlainNumber(text) || FAILED(VarDecFromStr(text.data(), LOCALE_INVARIANT, 0, &decimal))) return false;
    VARIANT* receiver = value.Receive();
    receiver->decVal = decimal;  // shares its first bytes with the type, which is set afterwards
    receiver->vt = VT_DECIMAL;
    return true;
}

// Not by VarR8FromStr, which need not find the nearest number.
bool ReadDouble(const std::wstring& text, Variant& value) {
    if (!IsPlainNumber(text)) return false;
    const std::string digits(text.begin() + (text.front() == L'+' ? 1 : 0), text.end());
    double number = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (failure != std::errc() || end != digits.data() + digits.size()) return false;
    value = Variant(number);
    return true;
}

// yyyy-mm-dd, with hh:mm:ss and a fraction after it or not. An automation date holds no fraction of a second and no
// year before 100.
bool ReadDate(const std::wstring& text, Variant& value) {
    SYSTEMTIME time = {};
    unsigned fields[6] = {};
    static const wchar_t separators[] = L"-- ::";
    const wchar_t* p = text.c_str();
    int count = 0;
    while (count < 6) {
        if (*p < L'0' || *p > L'9') return false;
        for (int digits = 0; *p >= L'0' && *p <= L'9'; ++p) {
            if (++digits > 4) return false;
            fields[count] = fields[count] * 10 + static_cast<unsigned>(*p - L'0');
        }
        ++count;
        if (*p == L'\0') break;
        if (count < 6 && *p++ != separators[count - 1]) return false;
    }
    if (count != 3 && count != 6) return false;
    if (*p == L'.') {
        do ++p;
        while (*p >= L'0' && *p <= L'9');
    }
    if (*p != L'\0' || fields[0] < 100 || fields[1] < 1 || fields[1] > 12) return false;
    // Windows takes the 30th of February for the 1st of March.
    static const unsigned days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leapYear = fields[0] % 4 == 0 && (fields[0] % 100 != 0 || fields[0] % 400 == 0);
    const unsigned last = fields[1] == 2 && leapYear ? 29 : days[fields[1] - 1];
    if (fields[2] < 1 || fields[2] > last || fields[3] > 23 || fields[4] > 59 || fields[5] > 59) return false;
    time.wYear = static_cast<WORD>(fields[0]);
    time.wMonth = static_cast<WORD>(fields[1]);
    time.wDay = static_cast<WORD>(fields[2]);
    time.wHour = static_cast<WORD>(fields[3]);
    time.wMinute = static_cast<WORD>(fields[4]);
    time.wSecond = static_cast<WORD>(fields[5]);
    double date = 0;
    if (!SystemTimeToVariantTime(&time, &date)) return false;
    value = Variant(date);
    value.vt = VT_DATE;
    return true;
}

}  // namespace

Variant TypedValue(const std::wstring& text, const Odbc::ColumnInfo& column) {
    Variant value;
    switch (column.Type) {
        case SQL_TINYINT:
        case SQL_SMALLINT:
        case SQL_INTEGER: {
            wchar_t* end = nullptr;
            errno = 0;
            const long number = wcstol(text.c_str(), &end, 10);
            if (end != text.c_str() && *end == L'\0' && errno == 0) return Variant(number);
            break;
        }
        case SQL_BIT:
            if (text == L"0" || text == L"1") return Variant(text == L"1");
            break;
        case SQL_BIGINT:
        case SQL_DECIMAL:
        case SQL_NUMERIC:
            if (ReadDecimal(text, value)) return value;
            break;
        case SQL_FLOAT:
        case SQL_REAL:
        case SQL_DOUBLE:
            if (ReadDouble(text, value)) return value;
            break;
        case SQL_TYPE_DATE:
        case SQL_TYPE_TIMESTAMP:
        case SQL_DATE:
        case SQL_TIMESTAMP:
            if (ReadDate(text, value)) return value;
            break;
        default:
            break;
    }
    return Variant(text);
}

RowReader::RowReader(std::shared_ptr<Session> session, const std::wstring& sql, unsigned long maxRows)
    : session_(std::move(session)), connection_(session_->Live()), rowsLeft_(maxRows ? maxRows : ULONG_MAX) {
    try {
        statement_ = std::make_unique<Odbc::Statement>(*connection_);
        if (maxRows && connection_->CanLimitRows()) statement_->LimitRows(maxRows);
        statement_->Execute(sql);
    } catch (const Odbc::Error& error) {
        session_->NoteFailure(error);
        Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
    }
}

Odbc::Statement& RowReader::Open() {
    if (!statement_) RaiseError(DatabaseError::StatementFailed, DatabaseError::Source, L"The result was closed.");
    return *statement_;
}

const std::vector<Odbc::ColumnInfo>& RowReader::Fields() try {
    return Open().AllColumns();
} catch (const Odbc::Error& error) {
    session_->NoteFailure(error);
    Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
}

long RowReader::RowsAffected() { return static_cast<long>(Open().RowCount()); }

// Called within the traps of the reading functions.
bool RowReader::Fetch() {
    if (rowsLeft_ == 0 || Open().AllColumns().empty() || !statement_->Fetch()) return false;
    if (rowsLeft_ != ULONG_MAX) --rowsLeft_;
    return true;
}

std::optional<std::vector<Variant>> RowReader::Next() try {
    if (!Fetch()) return std::nullopt;
    const std::vector<Odbc::ColumnInfo>& columns = statement_->AllColumns();
    std::vector<Variant> row;
    for (size_t i = 0; i < columns.size(); ++i) {
        const std::optional<std::wstring> text = statement_->Text(static_cast<unsigned>(i) + 1);
        row.push_back(text ? TypedValue(*text, columns[i]) : Variant::Null());
    }
    return row;
} catch (const Odbc::Error& error) {
    session_->NoteFailure(error);
    Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
}

std::optional<std::vector<Variant>> RowReader::NextText(size_t limit) try {
    if (!Fetch()) return std::nullopt;
    const size_t count = statement_->AllColumns().size();
    std::vector<Variant> row;
    for (size_t i = 0; i < count; ++i) {
        bool cut = false;
        std::optional<std::wstring> text = statement_->Text(static_cast<unsigned>(i) + 1, limit, &cut);
        if (text && cut && !text->empty()) {
            if (text->size() > 1 && IS_LOW_SURROGATE(text->back())) text->pop_back();
            text->back() = L'\x2026';
        }
        row.push_back(text ? Variant(*text) : Variant::Null());
    }
    return row;
} catch (const Odbc::Error& error) {
    session_->NoteFailure(error);
    Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
}

bool RowReader::NextResult() try { return Open().NextResult(); } catch (const Odbc::Error& error) {
    session_->NoteFailure(error);
    Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
}

void RowReader::Close() noexcept { statement_.reset(); }
