#include "host/demo/Csv.h"

#include <string_view>

#include "host/demo/Console.h"

namespace {

// A spreadsheet takes what begins so for a formula and runs it, whoever wrote it into the database.
bool LooksLikeFormula(const std::wstring& text) {
    if (text.empty() || std::wstring_view(L"=+-@\t\r").find(text.front()) == std::wstring_view::npos) return false;
    if (text.front() != L'+' && text.front() != L'-') return true;
    // A signed number is not a formula.
    const size_t digits = text.find_first_not_of(L"0123456789.,eE", 1);
    return digits != std::wstring::npos || text.size() == 1;
}

}  // namespace

std::wstring CsvRow(const std::vector<std::optional<std::wstring>>& fields) {
    std::wstring row;
    for (size_t i = 0; i < fields.size(); ++i) {
        if (i) row += L',';
        if (!fields[i]) continue;
        const std::wstring text = LooksLikeFormula(*fields[i]) ? L"'" + *fields[i] : *fields[i];
        const bool quote = text.empty() || text.find_first_of(L",\"\r\n") != std::wstring::npos ||
                           text.front() == L' ' || text.back() == L' ';
        if (!quote) {
            row += text;
            continue;
        }
        row += L'"';
        for (const wchar_t c : text) {
            if (c == L'"') row += L'"';
            row += c;
        }
        row += L'"';
    }
    return row + L"\r\n";
}

CsvFile::CsvFile(std::wstring path) : path_(std::move(path)) {
    // Never what is there already, be it a link that somebody put there: then the next name is tried.
    constexpr int attempts = 100;
    for (int attempt = 0; file_ == INVALID_HANDLE_VALUE && attempt < attempts; ++attempt) {
        temporary_ = path_ + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(attempt) + L".part";
        file_ = CreateFileW(temporary_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
        if (file_ == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) break;
    }
    if (file_ == INVALID_HANDLE_VALUE) Fail();
    buffer_ = "\xEF\xBB\xBF";
}

CsvFile::~CsvFile() {
    if (file_ == INVALID_HANDLE_VALUE) return;
    CloseHandle(file_);
    DeleteFileW(temporary_.c_str());
}

bool CsvFile::Fail() {
    if (failure_.empty()) failure_ = SystemMessage(GetLastError());
    return false;
}

bool CsvFile::Flush() {
    DWORD written = 0;
    if (!WriteFile(file_, buffer_.data(), static_cast<DWORD>(buffer_.size()), &written, nullptr)) return Fail();
    if (written != buffer_.size()) {
        SetLastError(ERROR_DISK_FULL);
        return Fail();
    }
    buffer_.clear();
    return true;
}

bool CsvFile::Write(const std::vector<std::optional<std::wstring>>& fields) {
    if (!failure_.empty()) return false;
    buffer_ += ToUtf8(CsvRow(fields));
    return buffer_.size() < 65536 || Flush();
}

bool CsvFile::Close() {
    if (!failure_.empty() || !Flush()) return false;
    const bool closed = CloseHandle(file_);
    if (!closed) Fail();
    file_ = INVALID_HANDLE_VALUE;
    if (closed && MoveFileExW(temporary_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
    Fail();
    DeleteFileW(temporary_.c_str());
    return false;
}
