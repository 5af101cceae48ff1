#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

// Prints rows as a table of aligned columns. The widths come from the heading and the first rows; longer values after
// them are shortened, so that nothing but the first rows is kept. Numbers stand right: columns that are numeric by
// type, or whose first values all look like numbers. Line ends and other control characters are shown as visible signs.
class TablePrinter {
public:
    struct Column {
        std::wstring Name;
        bool IsNumber = false;
    };
    using Row = std::vector<std::optional<std::wstring>>;  // no value: NULL

    // A column is at most `widest` characters wide. `print` gets whole lines, "\n" included.
    TablePrinter(std::vector<Column> columns, size_t widest, std::function<void(const std::wstring&)> print);
    void Add(Row row);
    void Finish();  // prints what was kept back; to be called once, after the last row

private:
    void Measure();
    void PrintRow(const Row& row);

    std::vector<Column> columns_;
    std::vector<size_t> widths_;
    size_t widest_;
    std::function<void(const std::wstring&)> print_;
    std::vector<Row> first_;
    bool measured_ = false;
};

// What the table shows for a value: control characters replaced, cut to `width` characters with an ellipsis at the end.
std::wstring Shown(const std::wstring& value, size_t width);
// The number of places that a text takes: its characters, without those that stand above another one.
size_t Places(const std::wstring& text);
