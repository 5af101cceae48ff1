#pragma once

#include <windows.h>

#include <memory>
#include <string>

// How files are opened, for what reads them (TextFile) and what replaces them (AtomicFile). A failure is a run-time
// error with the number that Basic's own file statements give it: 52 bad file name, 53 file not found, 57 device, 58
// already exists, 61 disk full, 68 no such device, 70 locked by another program, 71 disk not ready, 75 access (a
// folder, a read-only file, no right), 76 path not found, 7 too large. Paths of any length.
namespace FileAccess {

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};
using FileHandle = std::unique_ptr<HANDLE, CloseFile>;

inline constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// As CreateFile; null when it fails, and GetLastError says why.
FileHandle Open(const std::wstring& path, DWORD access, DWORD share, DWORD disposition, DWORD flags = 0);

// Throws the error that a system error of a file call stands for.
[[noreturn]] void RaiseFileError(DWORD error);

// A form of the path that may be longer than MAX_PATH. Error 52 or 75 for a path that can be none of a file, such as a
// pipe's, before anything is asked of it.
std::wstring FullPath(const std::wstring& path);

}  // namespace FileAccess
