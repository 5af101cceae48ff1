#include "forms/TextFile.h"

#include <windows.h>
#include <objbase.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "automation/RuntimeError.h"

namespace TextFile {
namespace {

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};
using FileHandle = std::unique_ptr<HANDLE, CloseFile>;

FileHandle Open(const std::wstring& path, DWORD access, DWORD share, DWORD disposition, DWORD flags = 0) {
    // Should it be a pipe after all, its server may identify the caller but not impersonate it.
    const HANDLE file =
        CreateFileW(path.c_str(), access, share, nullptr, disposition,
                    FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION | flags, nullptr);
    return FileHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

[[noreturn]] void RaiseFileError(DWORD error) {
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

// A form of the path that may be longer than MAX_PATH. Error 75 for a device.
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

std::wstring BehindLinks(HANDLE file, const std::wstring& path) {
    const DWORD size = GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (size == 0) return path;
    std::wstring final(size, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, final.data(), size, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (length == 0 || length >= size) return path;
    final.resize(length);
    return final;
}

// The letter of the drive; none for a path of the network.
wchar_t DriveOf(const std::wstring& path) noexcept {
    const size_t at = path.rfind(L"\\\\?\\", 0) == 0 ? 4 : 0;
    return path.size() > at + 1 && path[at + 1] == L':' ? path[at] : L'\0';
}

// The file beside the one that is written. It goes away unless it took the other's place.
class Temporary {
public:
    Temporary(const std::wstring& target, const std::function<std::wstring()>& name) : name_(name) {
        const std::wstring folder = FolderOf(target);
        for (int attempt = 0; !file_; ++attempt) {
            path_ = folder + name();
            // CREATE_NEW alone follows a dangling link and creates its target.
            file_ = Open(path_, GENERIC_WRITE, 0, CREATE_NEW, FILE_FLAG_OPEN_REPARSE_POINT);
            const DWORD error = file_ ? ERROR_SUCCESS : GetLastError();
            const bool taken = error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS;
            if (!file_ && (!taken || attempt >= 5)) RaiseFileError(error);
        }
    }
    ~Temporary() {
        file_.reset();
        if (!kept_) DeleteFileW(path_.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    void Write(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto part = static_cast<DWORD>(std::min<size_t>(bytes.size(), 1 << 20));
            DWORD written = 0;
            if (!WriteFile(file_.get(), bytes.data(), part, &written, nullptr)) RaiseFileError(GetLastError());
            if (written == 0) RaiseFileError(ERROR_DISK_FULL);
            bytes.remove_prefix(written);
        }
        if (!FlushFileBuffers(file_.get())) RaiseFileError(GetLastError());
        file_.reset();
    }
    void Become(const std::wstring& target) {
        if (!MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) RaiseFileError(GetLastError());
        kept_ = true;
    }
    void Replace(const std::wstring& target) {
        // The old file is backed up until the new one has its name, so that ReplaceFile loses neither when it fails
        // halfway. Without a backup name Wine would invent one and leave that file after a failure.
        const std::wstring aside = FolderOf(target) + name_();
        DWORD flags = 0;
        // ReplaceFile does this by itself, but not under Wine, and what stands in for it below does not either.
        constexpr DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        const DWORD attributes = GetFileAttributesW(target.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            RaiseFileError(ERROR_ACCESS_DENIED);  // Wine would put a folder aside too
        }
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kept) != 0) {
            SetFileAttributesW(path_.c_str(), (attributes & kept) | FILE_ATTRIBUTE_ARCHIVE);
        }
        // A scanner that looks at the new file may hold it for a moment.
        for (int attempt = 0;; ++attempt) {
            if (ReplaceFileW(target.c_str(), path_.c_str(), aside.c_str(), flags, nullptr, nullptr)) break;
            const DWORD error = GetLastError();
            if (GetFileAttributesW(target.c_str()) == INVALID_FILE_ATTRIBUTES &&
                GetLastError() == ERROR_FILE_NOT_FOUND) {
                // Either the old file was already put aside, or another program removed it.
                if (MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) break;
                const DWORD reason = GetLastError();
                MoveFileExW(aside.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
                RaiseFileError(reason);
            }
            if (error == ERROR_ACCESS_DENIED && flags == 0) {
                // Write access does not imply the right to set the new file's access list.
                flags = REPLACEFILE_IGNORE_MERGE_ERRORS;
                continue;
            }
            if (error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
                error == ERROR_CALL_NOT_IMPLEMENTED) {
                // A file system that knows no such thing.
                if (MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
                    break;
                RaiseFileError(GetLastError());
            }
            if (attempt >= 5 || (error != ERROR_SHARING_VIOLATION && error != ERROR_UNABLE_TO_REMOVE_REPLACED)) {
                RaiseFileError(error);
            }
            Sleep(20);
        }
        kept_ = true;
        DeleteFileW(aside.c_str());
    }

private:
    static std::wstring FolderOf(const std::wstring& target) {
        return target.substr(0, target.find_last_of(L'\\') + 1);
    }

    const std::function<std::wstring()>& name_;
    std::wstring path_;
    FileHandle file_;
    bool kept_ = false;
};

}  // namespace

void CheckPath(const std::wstring& path) { FullPath(path); }

std::string ReadBytes(const std::wstring& path, uint64_t limit) {
    const FileHandle file = Open(FullPath(path), GENERIC_READ, ShareAll, OPEN_EXISTING);
    if (!file) RaiseFileError(GetLastError());
    // Reading a pipe or a console could block.
    if (GetFileType(file.get()) != FILE_TYPE_DISK) RaiseFileError(ERROR_ACCESS_DENIED);
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size)) RaiseFileError(GetLastError());
    if (static_cast<uint64_t>(size.QuadPart) > limit) RaiseError(ErrorNumber::OutOfMemory, L"The file is too large");
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    size_t done = 0;
    while (done < bytes.size()) {
        DWORD read = 0;
        const auto part = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1 << 20));
        if (!ReadFile(file.get(), bytes.data() + done, part, &read, nullptr)) RaiseFileError(GetLastError());
        if (read == 0) break;  // truncated meanwhile
        done += read;
    }
    bytes.resize(done);
    return bytes;
}

Contents Read(const std::wstring& path, uint64_t limit) { return Decode(ReadBytes(path, limit)); }

std::wstring UnknownName() {
    GUID random;
    if (FAILED(CoCreateGuid(&random))) RaiseError(ErrorNumber::OutOfMemory);
    wchar_t text[40]{};
    StringFromGUID2(random, text, 40);
    return std::wstring(L"~") + text + L".tmp";
}

void Write(const std::wstring& path, std::string_view bytes, const std::function<std::wstring()>& name) {
    std::wstring target = FullPath(path);
    bool exists = false;
    {
        // A file that the user may not write is not replaced either, whatever the folder allows. Replacing needs the
        // right to delete it; without that ReplaceFile fails too, but under Wine leaves a stray file.
        const FileHandle file = Open(target, GENERIC_WRITE | DELETE, ShareAll, OPEN_EXISTING);
        const DWORD error = file ? ERROR_SUCCESS : GetLastError();
        if (!file && error != ERROR_FILE_NOT_FOUND) RaiseFileError(error);
        if (file) {
            exists = true;
            if (GetFileType(file.get()) != FILE_TYPE_DISK) RaiseFileError(ERROR_ACCESS_DENIED);
            const DWORD attributes = GetFileAttributesW(target.c_str());
            if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
                RaiseFileError(ERROR_ACCESS_DENIED);  // Wine opens it for the administrator
            }
            const bool link = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
            const std::wstring behind = BehindLinks(file.get(), target);
            // Under Wine a link looks like its target. A path on another drive is a mapped drive and not a link.
            if (link || DriveOf(behind) == DriveOf(target)) target = behind;
        }
    }
    Temporary temporary(target, name);
    temporary.Write(bytes);
    if (exists) {
        temporary.Replace(target);
    } else {
        temporary.Become(target);
    }
}

}  // namespace TextFile
