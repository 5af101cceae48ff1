#include "forms/TextFile.h"

#include <windows.h>

#include <algorithm>

#include "automation/RuntimeError.h"
#include "forms/FileAccess.h"

namespace TextFile {

using namespace FileAccess;

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

}  // namespace TextFile
