#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "forms/TextEncoding.h"

// Text files, read and written without losing anything: the old file stays until the new one is whole. (What the bytes
// say is in forms/TextEncoding.h.) A failure is a run-time error with the number that Basic's own file statements give
// it: 52 bad file name, 53 file not found, 57 device, 58 already exists, 61 disk full, 68 no such device, 70 locked by
// another program, 71 disk not ready, 75 access (a folder, a read-only file, no right), 76 path not found, 7 too large.
// Paths of any length.
namespace TextFile {

// More than an editor control can usefully hold.
inline constexpr uint64_t DefaultLimit = 16 * 1024 * 1024;  // bytes

// Error 52 or 75 for a path that can be none of a file, such as a pipe's, before anything is asked of it.
void CheckPath(const std::wstring& path);

// The bytes of a file, or what they say. A file of more than `limit` bytes is error 7, at once.
std::string ReadBytes(const std::wstring& path, uint64_t limit = DefaultLimit);
Contents Read(const std::wstring& path, uint64_t limit = DefaultLimit);

// An unpredictable file name: others with write access to the folder could prepare a known one.
std::wstring UnknownName();

// Makes the file hold these bytes, or fails and leaves everything as it was: they are written to a new file beside it,
// which then takes its place and its attributes, times and access rights. Where the path is a symbolic link, the file
// behind it is replaced. A file that is only reached by another hard link too is parted from it. `name` tells what the
// new file is called, and then what the old one is while they change places; what has the new file's name already, be
// it a link to nothing, is left alone and the next name is asked for.
void Write(const std::wstring& path, std::string_view bytes, const std::function<std::wstring()>& name = UnknownName);

}  // namespace TextFile
