#pragma once

#include <functional>
#include <string>
#include <string_view>

// Files that are written without losing anything: the old file stays until the new one is whole. Errors as in
// forms/FileAccess.h.
namespace AtomicFile {

// An unpredictable file name: others with write access to the folder could prepare a known one.
std::wstring UnknownName();

// Makes the file hold these bytes, or fails and leaves everything as it was: they are written to a new file beside it,
// which then takes its place and its attributes, times and access rights. Where the path is a symbolic link, the file
// behind it is replaced. A file that is only reached by another hard link too is parted from it. `name` tells what the
// new file is called, and then what the old one is while they change places; what has the new file's name already, be
// it a link to nothing, is left alone and the next name is asked for.
void Write(const std::wstring& path, std::string_view bytes, const std::function<std::wstring()>& name = UnknownName);

}  // namespace AtomicFile
