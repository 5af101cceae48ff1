#include "support/Folder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

Folder::Folder() {
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    static int serial = 0;
    path_ = std::wstring(temporary) + L"sql files " + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(++serial) + L"\\";
    EXPECT_TRUE(CreateDirectoryW(path_.c_str(), nullptr));
}

Folder::~Folder() {
    for (const std::wstring& name : Names()) {
        SetFileAttributesW((path_ + name).c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW((path_ + name).c_str());
        RemoveDirectoryW((path_ + name).c_str());
    }
    RemoveDirectoryW(path_.c_str());
}

std::vector<std::wstring> Folder::Names() const {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((path_ + L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") names.push_back(name);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

std::wstring Folder::Listing() const {
    std::wstring all;
    for (const std::wstring& name : Names()) all += name + L"|";
    return all;
}

std::string BytesOf(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "<none>";
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    EXPECT_EQ(bytes.size(), read);
    return bytes;
}

void PutBytes(const std::wstring& path, const std::string& bytes) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    ASSERT_EQ(bytes.size(), written);
}
