#include <richedit.h>

#include <algorithm>
#include <cstring>

#include "automation/RuntimeError.h"
#include "automation/Scope.h"
#include "automation/Text.h"
#include "forms/AtomicFile.h"
#include "forms/PlainText.h"
#include "forms/RichEdit.h"
#include "forms/RichTextBox.h"
#include "forms/Rtf.h"

namespace {

constexpr long InvalidFileFormat = 321;

DWORD CALLBACK ReadBytes(DWORD_PTR cookie, LPBYTE buffer, LONG capacity, LONG* taken) noexcept {
    auto& rest = *reinterpret_cast<std::string_view*>(cookie);
    const size_t take = std::min(static_cast<size_t>(capacity), rest.size());
    std::memcpy(buffer, rest.data(), take);
    rest.remove_prefix(take);
    *taken = static_cast<LONG>(take);
    return 0;
}

DWORD CALLBACK WriteBytes(DWORD_PTR cookie, LPBYTE buffer, LONG size, LONG* taken) noexcept {
    try {
        reinterpret_cast<std::string*>(cookie)->append(reinterpret_cast<const char*>(buffer),
                                                       static_cast<size_t>(size));
    } catch (...) {
        return ERROR_OUTOFMEMORY;
    }
    *taken = size;
    return 0;
}

// Characters that a control may drop, or take for a line end or a picture.
bool IsUnusual(wchar_t unit) noexcept {
    return (unit < L' ' && unit != L'\t' && unit != L'\r' && unit != L'\n') || unit == 0x7F ||
           (unit >= 0xD800 && unit <= 0xDFFF) || unit == 0xFEFF || unit >= 0xFFF0;
}

bool HasUnusual(const std::wstring& text) noexcept { return std::any_of(text.begin(), text.end(), IsUnusual); }

// A check sum of a file's bytes (FNV-1a): who changes a file does not do it to deceive.
uint64_t SumOf(std::string_view bytes) noexcept {
    uint64_t sum = 14695981039346656037U;
    for (const char byte : bytes) sum = (sum ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    return sum;
}

// Without the line end that an RTF reader may add after the last paragraph.
std::wstring WithoutLastLineEnd(std::wstring text) {
    if (text.size() >= 2 && text.compare(text.size() - 2, 2, L"\r\n") == 0) text.resize(text.size() - 2);
    return text;
}

}  // namespace

RichTextBox::FileKind RichTextBox::KindOf(const std::wstring& fileName) {
    const std::wstring_view name(fileName);
    return name.size() >= 3 && SameName(name.substr(name.size() - 3), L"rtf") ? FileKind::RichText : FileKind::Text;
}

void RichTextBox::LoadFile(const std::wstring& path, FileKind kind) {
    const std::string bytes = TextFile::ReadBytes(path, FileLimit);
    if (kind == FileKind::RichText) {
        SetRichText(bytes);
        FileFormat = {};
    } else {
        const TextFile::Contents contents = TextFile::Decode(bytes);
        // A file that the control would change on the way in and out is better left alone: saving would damage it.
        // But for line ends, of which the editor has one kind: where no other control characters stand, a vertical tab
        // is one.
        const std::wstring text = PlainText::WithCrLf(contents.Text);
        if (HasUnusual(text)) {
            std::wstring kept;
            if (std::any_of(contents.Text.begin(), contents.Text.end(), PlainText::IsLineBreak) ||
                !ReadPlainText(text, kept) || kept != text) {
                RaiseError(InvalidFileFormat);
            }
        }
        const std::wstring former = Text();
        try {
            SetText(text);
        } catch (const RuntimeError&) {
            SetText(former);
            throw;
        }
        FileFormat = contents.Form;
    }
    FileName = path;
    fileSum_ = SumOf(bytes);
}

void RichTextBox::SaveFile(const std::wstring& path, FileKind kind) {
    TextFile::Format format = FileFormat;
    std::string bytes;
    if (kind == FileKind::RichText) {
        ShowPlain();
        bytes = RichText();
        const std::wstring text = Text();
        // Rich text has no way to write some characters down.
        if (HasUnusual(text) && WithoutLastLineEnd(PlainTextOf(bytes)) != WithoutLastLineEnd(text))
            RaiseError(InvalidFileFormat);
    } else {
        bytes = TextFile::Encode(Text(), format);
    }
    AtomicFile::Write(path, bytes);
    FileFormat = format;
    FileName = path;
    fileSum_ = SumOf(bytes);
}

bool RichTextBox::FileChangedOutside() const {
    if (FileName.empty()) return false;
    try {
        return SumOf(TextFile::ReadBytes(FileName, FileLimit)) != fileSum_;
    } catch (const RuntimeError& error) {
        return error.Number == ErrorNumber::OutOfMemory;  // larger than anything that was loaded
    }
}

void RichTextBox::SetRichText(std::string_view rtf) {
    if (rtf.empty()) return SetText({});
    // Loaded into a scratch control first: a failure loses nothing.
    std::wstring text;
    std::string cleaned;
    if (!IsRichText(rtf) || !SanitizeRtf(rtf, cleaned) || !ReadRichText(rtf, text)) RaiseError(InvalidFileFormat);
    bool counts = true;
    {
        const AutoReset filling(filling_, true);
        Replace();
        std::string_view rest = cleaned;
        EDITSTREAM stream{};
        stream.dwCookie = reinterpret_cast<DWORD_PTR>(&rest);
        stream.pfnCallback = &ReadBytes;
        Send(EM_STREAMIN, SF_RTF, reinterpret_cast<LPARAM>(&stream));
        rich_ = true;
        ++texts_;
        GETTEXTLENGTHEX request{};
        request.flags = GTL_NUMCHARS | GTL_PRECISE;
        request.codepage = 1200;
        const auto length = static_cast<long>(Send(EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&request)));
        // Soft line breaks and tables add lines that are not in the text, which would shift positions.
        counts = stream.dwError == 0 && FromControl(length) == TextLength() && Text() == text;
        Send(EM_SETSEL, 0, 0);
        Send(EM_EMPTYUNDOBUFFER);
    }
    if (!counts) return SetText(text);
    if (Change) Change();
    if (SelChange) SelChange();
}

std::string RichTextBox::RichText() const {
    std::string bytes;
    EDITSTREAM stream{};
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&bytes);
    stream.pfnCallback = &WriteBytes;
    Send(EM_STREAMOUT, SF_RTF, reinterpret_cast<LPARAM>(&stream));
    if (stream.dwError != 0 || !IsRichText(bytes)) RaiseError(ErrorNumber::OutOfMemory);
    return bytes;
}
