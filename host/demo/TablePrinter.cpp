#include "host/demo/TablePrinter.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr size_t rowsToMeasure = 200;
const wchar_t nullText[] = L"NULL";

bool TakesNoPlace(wchar_t c) {
    if (c < 0x300) return false;
    if (IS_LOW_SURROGATE(c) || c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F)) return true;
    WORD type = 0;
    return GetStringTypeW(CT_CTYPE3, &c, 1, &type) && (type & C3_NONSPACING);
}

bool LooksLikeNumber(const std::wstring& text) {
    size_t i = text.starts_with(L"-") ? 1 : 0;
    const size_t first = i;
    while (i < text.size() && text[i] >= L'0' && text[i] <= L'9') ++i;
    if (i == first || (text[first] == L'0' && i > first + 1))
        return false;  // postcodes and telephone numbers are texts
    if (i < text.size() && text[i] == L'.') {
        const size_t point = i++;
        while (i < text.size() && text[i] >= L'0' && text[i] <= L'9') ++i;
        if (i == point + 1) return false;
    }
    return i == text.size();
}

}  // namespace

size_t Places(const std::wstring& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](wchar_t c) { return !TakesNoPlace(c); }));
}

std::wstring Shown(const std::wstring& value, size_t width) {
    std::wstring shown;
    size_t places = 0;
    size_t lastStart = 0;  // where the character in the last place begins
    for (size_t i = 0; i < value.size(); ++i) {
        wchar_t c = value[i];
        if (c == L'\r' && i + 1 < value.size() && value[i + 1] == L'\n') continue;
        if (c == L'\r' || c == L'\n')
            c = L'\x21B5';  // the sign of a return key
        else if (c < L' ' || (c >= 0x7F && c < 0xA0))
            c = L'\xB7';
        if (!TakesNoPlace(c)) {
            if (places == width) {
                shown.resize(lastStart);
                return shown + L'\x2026';
            }
            ++places;
            lastStart = shown.size();
        }
        shown += c;
    }
    return shown;
}

TablePrinter::TablePrinter(std::vector<Column> columns, size_t widest, std::function<void(const std::wstring&)> print)
    : columns_(std::move(columns)), widest_(std::max<size_t>(widest, 1)), print_(std::move(print)) {}

void TablePrinter::Add(Row row) {
    row.resize(columns_.size());
    if (measured_) {
        PrintRow(row);
        return;
    }
    first_.push_back(std::move(row));
    if (first_.size() == rowsToMeasure) Measure();
}

void TablePrinter::Finish() {
    if (!measured_) Measure();
}

void TablePrinter::Measure() {
    measured_ = true;
    Row heading;
    std::wstring line;
    for (size_t i = 0; i < columns_.size(); ++i) {
        heading.emplace_back(columns_[i].Name);
        size_t width = Places(Shown(columns_[i].Name, widest_));
        bool numbers = false, others = false;
        for (const Row& row : first_) {
            width = std::max(width, row[i] ? Places(Shown(*row[i], widest_)) : std::size(nullText) - 1);
            if (row[i]) (LooksLikeNumber(*row[i]) ? numbers : others) = true;
        }
        if (numbers && !others) columns_[i].IsNumber = true;
        widths_.push_back(std::max<size_t>(width, 1));
        if (i) line += L"-+-";
        line.append(widths_[i], L'-');
    }
    PrintRow(heading);
    print_(line + L"\n");
    for (const Row& row : first_) PrintRow(row);
    first_.clear();
}

void TablePrinter::PrintRow(const Row& row) {
    std::wstring line;
    for (size_t i = 0; i < columns_.size(); ++i) {
        const std::wstring text = Shown(row[i].value_or(nullText), widths_[i]);
        const std::wstring padding(widths_[i] - std::min(widths_[i], Places(text)), L' ');
        if (i) line += L" | ";
        line += columns_[i].IsNumber ? padding + text : text + padding;
    }
    while (!line.empty() && line.back() == L' ') line.pop_back();
    print_(line + L"\n");
}
