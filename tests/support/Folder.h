#pragma once

#include <string>
#include <vector>

// A new folder, which goes with everything in it.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::wstring operator/(const wchar_t* name) const { return path_ + name; }
    std::wstring Path() const { return path_.substr(0, path_.size() - 1); }
    std::vector<std::wstring> Names() const;  // of what is in it, sorted
    std::wstring Listing() const;             // the same, each followed by a bar

private:
    std::wstring path_;
};

// A file's bytes; "<none>" where there is no file.
std::string BytesOf(const std::wstring& path);
void PutBytes(const std::wstring& path, const std::string& bytes);
