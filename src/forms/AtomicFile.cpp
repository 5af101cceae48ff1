#include "forms/AtomicFile.h"

#include <windows.h>
#include <objbase.h>

#include <algorithm>

#include "automation/RuntimeError.h"
#include "forms/FileAccess.h"

namespace AtomicFile {
namespace {

using namespace FileAccess;

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
        // Windows' ReplaceFile copies these attributes. Wine's does not, nor does MoveFileEx below.
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

}  // namespace AtomicFile
