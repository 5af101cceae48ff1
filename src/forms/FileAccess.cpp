#include "forms/FileAccess.h"

#include <string_view>
#include <utility>

#include "automation/RuntimeError.h"

namespace {

bool StartsWith(std::wstring_view text, std::wstring_view with) noexcept {
    return text.size() >= with.size() && CompareStringOrdinal(text.data(), static_cast<int>(with.size()), with.data(),
                                                              static_cast<int>(with.size()), TRUE) == CSTR_EQUAL;
}

// Pipes, mailslots, consoles, disks as a whole and the like, of a full path. To open one is to talk to it already.
bool IsDevice(std::wstring_view path) noexcept {
    if (!StartsWith(path, L"\\\\")) return false;
    std::wstring_view rest = path.substr(2);
    if (StartsWith(rest, L"?\\UNC\\")) {
        rest.remove_prefix(6);
    } else if (StartsWith(rest, L"?\\") || StartsWith(rest, L".\\")) {
        rest.remove_prefix(2);
        const bool drive = rest.size() > 2 && rest[1] == L':' && rest[2] == L'\\';
        return !drive && !StartsWith(rest, L"Volume{");
    }
    // On another computer, or on this one by its name: what stands for a share.
    const size_t share = rest.find(L'\\');
    if (share == std::wstring_view::npos) return false;
    rest.remove_prefix(share + 1);
    for (const std::wstring_view name : {L"pipe", L"mailslot", L"ipc$"}) {
        if (StartsWith(rest, name) && (rest.size() == name.size() || rest[name.size()] == L'\\')) return true;
    }
    return false;
}

}  // namespace

namespace FileAccess {

FileHandle Open(const std::wstring& path, DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    // Should it be a pipe after all, its server may identify the caller but not impersonate it.
    const HANDLE file =
        CreateFileW(path.c_str(), access, share, nullptr, disposition,
                    FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION | flags, nullptr);
    return FileHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

void RaiseFileError(DWORD error) {
    constexpr std::pair<DWORD, long> numbers[] = {
        {ERROR_FILE_NOT_FOUND, ErrorNumber::FileNotFound},
        {ERROR_PATH_NOT_FOUND, ErrorNumber::PathNotFound},
        {ERROR_BAD_NETPATH, ErrorNumber::PathNotFound},
        {ERROR_BAD_NET_NAME, ErrorNumber::PathNotFound},
        {ERROR_DIRECTORY, ErrorNumber::PathNotFound},
        {ERROR_SHARING_VIOLATION, ErrorNumber::PermissionDenied},
        {ERROR_LOCK_VIOLATION, ErrorNumber::PermissionDenied},
        {ERROR_UNABLE_TO_REMOVE_REPLACED, ErrorNumber::PermissionDenied},
        {ERROR_USER_MAPPED_FILE, ErrorNumber::PermissionDenied},
        {ERROR_ACCESS_DENIED, ErrorNumber::PathFileAccessError},
        {ERROR_WRITE_PROTECT, ErrorNumber::PathFileAccessError},
        {ERROR_DISK_FULL, ErrorNumber::DiskFull},
        {ERROR_HANDLE_DISK_FULL, ErrorNumber::DiskFull},
        {1295 /* ERROR_DISK_QUOTA_EXCEEDED */, ErrorNumber::DiskFull},
        {ERROR_NOT_ENOUGH_MEMORY, ErrorNumber::OutOfMemory},
        {ERROR_OUTOFMEMORY, ErrorNumber::OutOfMemory},
        {ERROR_INVALID_NAME, 52},
        {ERROR_BAD_PATHNAME, 52},
        {ERROR_FILENAME_EXCED_RANGE, 52},
        {ERROR_ALREADY_EXISTS, 58},
        {ERROR_FILE_EXISTS, 58},
        {ERROR_INVALID_DRIVE, 68},
        {ERROR_NOT_READY, 71},
    };
    for (const auto& [system, number] : numbers) {
        if (system == error) RaiseSystemError(number, error);
    }
    RaiseSystemError(ErrorNumber::DeviceIOError, error);
}

std::wstring FullPath(const std::wstring& path) {
    if (path.empty() || path.find(L'\0') != std::wstring::npos) RaiseFileError(ERROR_INVALID_NAME);
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    if (size == 0) RaiseFileError(GetLastError());
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    if (IsDevice(full)) RaiseFileError(ERROR_ACCESS_DENIED);
    constexpr size_t Short = 180;  // leaves room for the name of the file beside it
    if (full.size() < Short || full.rfind(L"\\\\?\\", 0) == 0 || full.rfind(L"\\\\.\\", 0) == 0) return full;
    return full.rfind(L"\\\\", 0) == 0 ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

}  // namespace FileAccess
