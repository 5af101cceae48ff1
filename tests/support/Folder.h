#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A folder of its own, which goes with everything in it.
class Folder {
public:
    Folder() {
        wchar_t temporary[MAX_PATH];
        GetTempPathW(MAX_PATH, temporary);
        path_ = std::wstring(temporary) + L"text file " + std::to_wstring(GetCurrentProcessId()) + L"\\";
        CreateDirectoryW(path_.c_str(), nullptr);
    }
    ~Folder() {
        for (const std::wstring& name : Names()) {
            SetFileAttributesW((path_ + name).c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileW((path_ + name).c_str());
            RemoveDirectoryW((path_ + name).c_str());
        }
        RemoveDirectoryW(path_.c_str());
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::wstring operator/(const wchar_t* name) const { return path_ + name; }
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        WIN32_FIND_DATAW found{};
        const HANDLE search = FindFirstFileW((path_ + L"*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) return names;
        do {
            const std::wstring name = found.cFileName;
            if (name != L"." && name != L"..") names.push_back(name);
        } while (FindNextFileW(search, &found));
        FindClose(search);
        return names;
    }

private:
    std::wstring path_;
};

inline std::string BytesOf(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(INVALID_HANDLE_VALUE, file);
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    EXPECT_EQ(bytes.size(), read);
    return bytes;
}

inline void Put(const std::wstring& path, const std::string& bytes) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    ASSERT_EQ(bytes.size(), written);
}
