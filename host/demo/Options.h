#pragma once

#include <optional>
#include <string>
#include <vector>

struct Options {
    std::wstring Connect;
    std::optional<std::wstring> Sql;  // the text itself, or "@" and the name of a file
    std::wstring Csv;                 // empty: rows go to the terminal
    std::optional<long> MaxRows;      // 0: no limit
    bool Editor = true;
    bool Sample = false;        // the sample connection instead of Connect
    bool Unregistered = false;  // the components come from the manifests beside this program
    bool Help = false;
};

// Reads the arguments (without the program's name). What is wrong with them, for the user to read, or an empty text.
std::wstring ReadOptions(const std::vector<std::wstring>& arguments, Options& options);

const wchar_t* HelpText();

// The text of a file in UTF-8, or UTF-16 with a byte order mark. Nothing when it cannot be read: `failure` tells why.
std::optional<std::wstring> ReadTextFile(const std::wstring& path, std::wstring& failure);
