#pragma once

#include <cstdint>
#include <string>

#include "forms/TextEncoding.h"

// Text files, read. (What the bytes say is in forms/TextEncoding.h, writing in forms/AtomicFile.h.) Errors as in
// forms/FileAccess.h.
namespace TextFile {

// More than an editor control can usefully hold.
inline constexpr uint64_t DefaultLimit = 16 * 1024 * 1024;  // bytes

// Error 52 or 75 for a path that can be none of a file, such as a pipe's, before anything is asked of it.
void CheckPath(const std::wstring& path);

// The bytes of a file, or what they say. A file of more than `limit` bytes is error 7, at once.
std::string ReadBytes(const std::wstring& path, uint64_t limit = DefaultLimit);
Contents Read(const std::wstring& path, uint64_t limit = DefaultLimit);

}  // namespace TextFile
