#include "host/brvError/EventLog.h"

#include <windows.h>
#include <shlobj.h>

#include <cstdio>

#include "host/Utf8.h"

namespace {

constexpr LONGLONG RotateBeyond = 1024 * 1024;  // bytes
constexpr size_t LongestField = 32 * 1024;      // characters: one entry must not push all others out of the log
constexpr DWORD Patience = 250;                 // milliseconds to wait for another process that writes

std::wstring Environment(const wchar_t* name) {
    const DWORD length = GetEnvironmentVariableW(name, nullptr, 0);
    if (length == 0) return {};
    std::wstring value(length, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), length));
    return value;
}

// A folder's or file's name made of a title: what file names cannot hold becomes a line.
std::wstring SafeName(std::wstring title) {
    for (wchar_t& unit : title) {
        if (unit < L' ' || std::wstring(L"\\/:*?\"<>|").find(unit) != std::wstring::npos) unit = L'_';
    }
    if (title.size() > 100) title.resize(100);
    while (!title.empty() && (title.back() == L'.' || title.back() == L' ')) title.pop_back();
    return title.empty() ? L"brvError" : title;
}

// The control characters, with those that end a line or turn the direction of writing in some editors.
bool IsControl(wchar_t unit) noexcept {
    return unit < L' ' || (unit >= 0x7F && unit < 0xA0) || unit == 0x061C || unit == 0x200E || unit == 0x200F ||
           (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) || unit == 0xFEFF;
}

std::wstring Escaped(std::wstring text) {
    if (text.size() > LongestField) {
        // Not between the two halves of one character.
        text.resize(IS_HIGH_SURROGATE(text[LongestField - 1]) ? LongestField - 1 : LongestField);
        text += L"...";
    }
    std::wstring result;
    result.reserve(text.size());
    for (const wchar_t unit : text) {
        switch (unit) {
            case L'\\':
                result += L"\\\\";
                break;
            case L'\r':
                result += L"\\r";
                break;
            case L'\n':
                result += L"\\n";
                break;
            case L'\t':
                result += L"\\t";
                break;
            default:
                if (IsControl(unit)) {
                    wchar_t code[8];
                    swprintf(code, 8, L"\\u%04X", static_cast<unsigned>(unit));
                    result += code;
                } else {
                    result += unit;
                }
        }
    }
    return result;
}

std::wstring Now() {
    SYSTEMTIME time;
    GetLocalTime(&time);
    wchar_t text[32];
    swprintf(text, 32, L"%04u-%02u-%02uT%02u:%02u:%02u.%03u", time.wYear, time.wMonth, time.wDay, time.wHour,
             time.wMinute, time.wSecond, time.wMilliseconds);
    return text;
}

// Keeps other processes from rotating the file between this one's look at its size and its move. One that cannot be had
// in time is gone without: a late rotation is less than a lost entry.
class Turn {
public:
    Turn() noexcept : mutex_(CreateMutexW(nullptr, FALSE, L"Local\\brvError.events")) {
        const DWORD waited = mutex_ != nullptr ? WaitForSingleObject(mutex_, Patience) : WAIT_FAILED;
        mine_ = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
    }
    ~Turn() {
        if (mine_) ReleaseMutex(mutex_);
        if (mutex_ != nullptr) CloseHandle(mutex_);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    bool IsMine() const noexcept { return mine_; }

private:
    HANDLE mutex_;
    bool mine_;
};

}  // namespace

EventLog::EventLog(const std::wstring& title) : fileName_(Environment(L"BRVERROR_LOG")) {
    if (!fileName_.empty()) return;
    wchar_t folder[MAX_PATH];
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder))) return;
    fileName_ = std::wstring(folder) + L"\\" + SafeName(title) + L"\\events.log";
}

bool EventLog::Append(std::initializer_list<std::wstring> fields) const noexcept try {
    if (fileName_.empty()) return false;
    std::wstring line = Now();
    for (const std::wstring& field : fields) line += L'\t' + Escaped(field);
    const std::string bytes = ToUtf8(line) + "\r\n";

    const size_t folderEnd = fileName_.find_last_of(L"\\/");
    if (folderEnd != std::wstring::npos) CreateDirectoryW(fileName_.substr(0, folderEnd).c_str(), nullptr);
    const Turn turn;
    WIN32_FILE_ATTRIBUTE_DATA present;
    if (turn.IsMine() && GetFileAttributesExW(fileName_.c_str(), GetFileExInfoStandard, &present) &&
        ((static_cast<LONGLONG>(present.nFileSizeHigh) << 32) | present.nFileSizeLow) > RotateBeyond) {
        const size_t dot = fileName_.find_last_of(L'.');
        const bool extended = dot != std::wstring::npos && (folderEnd == std::wstring::npos || dot > folderEnd);
        const std::wstring older =
            extended ? fileName_.substr(0, dot) + L".1" + fileName_.substr(dot) : fileName_ + L".1";
        MoveFileExW(fileName_.c_str(), older.c_str(), MOVEFILE_REPLACE_EXISTING);
    }
    // Append access and one write: entries of several processes never interleave.
    const HANDLE file =
        CreateFileW(fileName_.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const BOOL done = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    return done != FALSE && written == bytes.size();
} catch (...) {
    return false;
}
