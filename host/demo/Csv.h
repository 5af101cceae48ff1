#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

// One row as RFC 4180 has it, line end included: fields that hold a comma, a quote or a line end, or begin or end with
// a blank, are quoted. NULL (no value) is an empty field, an empty text is "". What a spreadsheet would take for a
// formula gets an apostrophe before it.
std::wstring CsvRow(const std::vector<std::optional<std::wstring>>& fields);

// A CSV file in UTF-8 with a byte order mark, written beside its place and put there by Close: when something fails on
// the way, a file that was there before stays as it was. The functions return false when Windows refuses; Failure then
// tells why.
class CsvFile {
public:
    explicit CsvFile(std::wstring path);
    ~CsvFile();  // without Close: removes what was written
    CsvFile(const CsvFile&) = delete;
    CsvFile& operator=(const CsvFile&) = delete;

    bool Write(const std::vector<std::optional<std::wstring>>& fields);
    bool Close();
    const std::wstring& Failure() const noexcept { return failure_; }

private:
    bool Flush();
    bool Fail();

    std::wstring path_;
    std::wstring temporary_;
    HANDLE file_ = INVALID_HANDLE_VALUE;
    std::string buffer_;
    std::wstring failure_;
};
