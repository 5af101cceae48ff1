#include "forms/TextFile.h"

#include <windows.h>
#include <objbase.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "automation/RuntimeError.h"

namespace TextFile {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view LittleEndianMark = "\xFF\xFE";
constexpr std::string_view BigEndianMark = "\xFE\xFF";

bool IsHigh(unsigned unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLow(unsigned unit) noexcept { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Whether the bytes are UTF-8, and what they say. A surrogate of its own is let through, a pair of them is not: that
// would be written as four bytes when it goes out again.
bool FromUtf8(std::string_view bytes, std::wstring& text) {
    text.clear();
    text.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        if (first < 0x80) {
            text += static_cast<wchar_t>(first);
            ++at;
            continue;
        }
        const size_t length = first >= 0xC2 && first <= 0xDF   ? 2
                              : first >= 0xE0 && first <= 0xEF ? 3
                              : first >= 0xF0 && first <= 0xF4 ? 4
                                                               : 0;
        if (length == 0 || bytes.size() - at < length) return false;
        unsigned code = first & (0xFFU >> (length + 1));
        for (size_t next = 1; next < length; ++next) {
            const auto byte = static_cast<unsigned char>(bytes[at + next]);
            if ((byte & 0xC0) != 0x80) return false;
            code = code << 6 | (byte & 0x3FU);
        }
        // What fewer bytes could say is no UTF-8.
        if ((length == 3 && code < 0x800) || (length == 4 && (code < 0x10000 || code > 0x10FFFF))) return false;
        if (code >= 0x10000) {
            text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            if (IsLow(code) && !text.empty() && IsHigh(text.back())) return false;
            text += static_cast<wchar_t>(code);
        }
        at += length;
    }
    return true;
}

void AppendUtf8(std::string& bytes, const std::wstring& text) {
    const auto add = [&bytes](unsigned byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
    for (size_t at = 0; at < text.size(); ++at) {
        unsigned code = text[at];
        if (IsHigh(code) && at + 1 < text.size() && IsLow(text[at + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++at] - 0xDC00U);
        }
        if (code < 0x80) {
            add(code);
        } else if (code < 0x800) {
            add(0xC0 | code >> 6);
            add(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            add(0xE0 | code >> 12);
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 0x3F));
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        }
    }
}

std::wstring FromUtf16(std::string_view bytes, bool bigEndian) {
    std::wstring text(bytes.size() / 2, L'\0');
    for (size_t at = 0; at < text.size(); ++at) {
        const unsigned one = static_cast<unsigned char>(bytes[2 * at]);
        const unsigned two = static_cast<unsigned char>(bytes[2 * at + 1]);
        text[at] = static_cast<wchar_t>(bigEndian ? one << 8 | two : two << 8 | one);
    }
    return text;
}

void AppendUtf16(std::string& bytes, const std::wstring& text, bool bigEndian) {
    for (const wchar_t unit : text) {
        const char low = static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        const char high = static_cast<char>(static_cast<unsigned char>(unit >> 8 & 0xFF));
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
}

// A system whose code page is UTF-8 has none for what is not UTF-8: the Western one holds every byte.
UINT CodePage() noexcept {
    const UINT system = GetACP();
    return system == CP_UTF8 ? 1252 : system;
}

int LengthOf(size_t size) {
    if (size > static_cast<size_t>(std::numeric_limits<int>::max())) RaiseError(ErrorNumber::OutOfMemory);
    return static_cast<int>(size);
}

std::wstring FromCodePage(std::string_view bytes) {
    if (bytes.empty()) return {};
    const int size = LengthOf(bytes.size());
    std::wstring text(static_cast<size_t>(MultiByteToWideChar(CodePage(), 0, bytes.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CodePage(), 0, bytes.data(), size, text.data(), LengthOf(text.size()));
    return text;
}

// False: a character that the code page does not have.
bool ToCodePage(const std::wstring& text, std::string& bytes) {
    bytes.clear();
    if (text.empty()) return true;
    const int size = LengthOf(text.size());
    BOOL replaced = FALSE;
    bytes.resize(static_cast<size_t>(
        WideCharToMultiByte(CodePage(), WC_NO_BEST_FIT_CHARS, text.data(), size, nullptr, 0, nullptr, &replaced)));
    if (replaced || bytes.empty()) return false;
    WideCharToMultiByte(CodePage(), WC_NO_BEST_FIT_CHARS, text.data(), size, bytes.data(), LengthOf(bytes.size()),
                        nullptr, nullptr);
    return true;
}

LineEnd LinesOf(const std::wstring& text) noexcept {
    bool crLf = false;
    bool lf = false;
    bool cr = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == L'\n') {
            lf = true;
        } else if (text[at] == L'\r') {
            const bool both = at + 1 < text.size() && text[at + 1] == L'\n';
            (both ? crLf : cr) = true;
            if (both) ++at;
        }
    }
    if (lf && !crLf && !cr) return LineEnd::Lf;
    if (cr && !crLf && !lf) return LineEnd::Cr;
    return LineEnd::CrLf;
}

std::wstring WithLineEnds(const std::wstring& text, LineEnd lines) {
    if (lines == LineEnd::CrLf) return text;
    std::wstring result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        const bool both = text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n';
        result += !both ? text[at] : lines == LineEnd::Lf ? L'\n' : L'\r';
        if (both) ++at;
    }
    return result;
}

// ---- Files

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};
using FileHandle = std::unique_ptr<HANDLE, CloseFile>;

FileHandle Open(const std::wstring& path, DWORD access, DWORD share, DWORD disposition, DWORD flags = 0) {
    // Should it be a pipe after all, whoever listens there learns who is asking and may not act in that name.
    const HANDLE file =
        CreateFileW(path.c_str(), access, share, nullptr, disposition,
                    FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION | flags, nullptr);
    return FileHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

[[noreturn]] void RaiseFileError(DWORD error) {
    constexpr std::pair<DWORD, long> numbers[] = {
        {ERROR_FILE_NOT_FOUND, ErrorNumber::FileNotFound},
        {ERROR_PATH_NOT_FOUND, ErrorNumber::PathNotFound},
        {ERROR_BAD_NETPATH, ErrorNumber::PathNotFound},
        {ERROR_BAD_NET_NAME, ErrorNumber::PathNotFound},
        {ERROR_DIRECTORY, ErrorNumber::PathNotFound},
        {ERROR_SHARING_VIOLATION, ErrorNumber::PermissionDenied},
        {ERROR_LOCK_VIOLATION, ErrorNumber::PermissionDenied},
        {ERROR_UNABLE_TO_REMOVE_REPLACED, ErrorNumber::PermissionDenied},
        {ERROR_USER_MAPPED_FILE, ErrorNumber::PermissionDenied},
        {ERROR_ACCESS_DENIED, ErrorNumber::PathFileAccessError},
        {ERROR_WRITE_PROTECT, ErrorNumber::PathFileAccessError},
        {ERROR_DISK_FULL, ErrorNumber::DiskFull},
        {ERROR_HANDLE_DISK_FULL, ErrorNumber::DiskFull},
        {1295 /* ERROR_DISK_QUOTA_EXCEEDED */, ErrorNumber::DiskFull},
        {ERROR_NOT_ENOUGH_MEMORY, ErrorNumber::OutOfMemory},
        {ERROR_OUTOFMEMORY, ErrorNumber::OutOfMemory},
        {ERROR_INVALID_NAME, 52},
        {ERROR_BAD_PATHNAME, 52},
        {ERROR_FILENAME_EXCED_RANGE, 52},
        {ERROR_ALREADY_EXISTS, 58},
        {ERROR_FILE_EXISTS, 58},
        {ERROR_INVALID_DRIVE, 68},
        {ERROR_NOT_READY, 71},
    };
    for (const auto& [system, number] : numbers) {
        if (system == error) RaiseSystemError(number, error);
    }
    RaiseSystemError(ErrorNumber::DeviceIOError, error);
}

bool StartsWith(std::wstring_view text, std::wstring_view with) noexcept {
    return text.size() >= with.size() && CompareStringOrdinal(text.data(), static_cast<int>(with.size()), with.data(),
                                                              static_cast<int>(with.size()), TRUE) == CSTR_EQUAL;
}

// Pipes, mailslots, consoles, disks as a whole and the like, of a full path. To open one is to talk to it already.
bool IsDevice(std::wstring_view path) noexcept {
    if (!StartsWith(path, L"\\\\")) return false;
    std::wstring_view rest = path.substr(2);
    if (StartsWith(rest, L"?\\UNC\\")) {
        rest.remove_prefix(6);
    } else if (StartsWith(rest, L"?\\") || StartsWith(rest, L".\\")) {
        rest.remove_prefix(2);
        const bool drive = rest.size() > 2 && rest[1] == L':' && rest[2] == L'\\';
        return !drive && !StartsWith(rest, L"Volume{");
    }
    // On another computer, or on this one by its name: what stands for a share.
    const size_t share = rest.find(L'\\');
    if (share == std::wstring_view::npos) return false;
    rest.remove_prefix(share + 1);
    for (const std::wstring_view name : {L"pipe", L"mailslot", L"ipc$"}) {
        if (StartsWith(rest, name) && (rest.size() == name.size() || rest[name.size()] == L'\\')) return true;
    }
    return false;
}

// A form of the path that may be longer than MAX_PATH. Error 75 for a device.
std::wstring FullPath(const std::wstring& path) {
    if (path.empty() || path.find(L'\0') != std::wstring::npos) RaiseFileError(ERROR_INVALID_NAME);
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    if (size == 0) RaiseFileError(GetLastError());
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    if (IsDevice(full)) RaiseFileError(ERROR_ACCESS_DENIED);
    constexpr size_t Short = 180;  // leaves room for the name of the file beside it
    if (full.size() < Short || full.rfind(L"\\\\?\\", 0) == 0 || full.rfind(L"\\\\.\\", 0) == 0) return full;
    return full.rfind(L"\\\\", 0) == 0 ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

std::wstring BehindLinks(HANDLE file, const std::wstring& path) {
    const DWORD size = GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (size == 0) return path;
    std::wstring final(size, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, final.data(), size, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (length == 0 || length >= size) return path;
    final.resize(length);
    return final;
}

// The letter of the drive; none for a path of the network.
wchar_t DriveOf(const std::wstring& path) noexcept {
    const size_t at = path.rfind(L"\\\\?\\", 0) == 0 ? 4 : 0;
    return path.size() > at + 1 && path[at + 1] == L':' ? path[at] : L'\0';
}

// The file beside the one that is written. It goes away unless it took the other's place.
class Temporary {
public:
    Temporary(const std::wstring& target, const std::function<std::wstring()>& name) : name_(name) {
        const std::wstring folder = FolderOf(target);
        for (int attempt = 0; !file_; ++attempt) {
            path_ = folder + name();
            // By itself CREATE_NEW goes through a link that leads to nothing, and makes the file that it names.
            file_ = Open(path_, GENERIC_WRITE, 0, CREATE_NEW, FILE_FLAG_OPEN_REPARSE_POINT);
            const DWORD error = file_ ? ERROR_SUCCESS : GetLastError();
            const bool taken = error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS;
            if (!file_ && (!taken || attempt >= 5)) RaiseFileError(error);
        }
    }
    ~Temporary() {
        file_.reset();
        if (!kept_) DeleteFileW(path_.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    void Write(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto part = static_cast<DWORD>(std::min<size_t>(bytes.size(), 1 << 20));
            DWORD written = 0;
            if (!WriteFile(file_.get(), bytes.data(), part, &written, nullptr)) RaiseFileError(GetLastError());
            if (written == 0) RaiseFileError(ERROR_DISK_FULL);
            bytes.remove_prefix(written);
        }
        if (!FlushFileBuffers(file_.get())) RaiseFileError(GetLastError());
        file_.reset();
    }
    void Become(const std::wstring& target) {
        if (!MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) RaiseFileError(GetLastError());
        kept_ = true;
    }
    void Replace(const std::wstring& target) {
        // The old file is put aside until the new one has its name: so ReplaceFile loses neither when it fails halfway.
        // Wine would use a file of its own for that, and leave it there after a failure.
        const std::wstring aside = FolderOf(target) + name_();
        DWORD flags = 0;
        // ReplaceFile does this by itself, but not under Wine, and what stands in for it below does not either.
        constexpr DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        const DWORD attributes = GetFileAttributesW(target.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            RaiseFileError(ERROR_ACCESS_DENIED);  // Wine would put a folder aside too
        }
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kept) != 0) {
            SetFileAttributesW(path_.c_str(), (attributes & kept) | FILE_ATTRIBUTE_ARCHIVE);
        }
        // A scanner that looks at the new file may hold it for a moment.
        for (int attempt = 0;; ++attempt) {
            if (ReplaceFileW(target.c_str(), path_.c_str(), aside.c_str(), flags, nullptr, nullptr)) break;
            const DWORD error = GetLastError();
            if (GetFileAttributesW(target.c_str()) == INVALID_FILE_ATTRIBUTES &&
                GetLastError() == ERROR_FILE_NOT_FOUND) {
                // It got as far as putting the old file aside, or somebody else removed it.
                if (MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH)) break;
                const DWORD reason = GetLastError();
                MoveFileExW(aside.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
                RaiseFileError(reason);
            }
            if (error == ERROR_ACCESS_DENIED && flags == 0) {
                // Who may write the file need not have the right to give the new one its access list.
                flags = REPLACEFILE_IGNORE_MERGE_ERRORS;
                continue;
            }
            if (error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
                error == ERROR_CALL_NOT_IMPLEMENTED) {
                // A file system that knows no such thing.
                if (MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
                    break;
                RaiseFileError(GetLastError());
            }
            if (attempt >= 5 || (error != ERROR_SHARING_VIOLATION && error != ERROR_UNABLE_TO_REMOVE_REPLACED)) {
                RaiseFileError(error);
            }
            Sleep(20);
        }
        kept_ = true;
        DeleteFileW(aside.c_str());
    }

private:
    static std::wstring FolderOf(const std::wstring& target) {
        return target.substr(0, target.find_last_of(L'\\') + 1);
    }

    const std::function<std::wstring()>& name_;
    std::wstring path_;
    FileHandle file_;
    bool kept_ = false;
};

}  // namespace

Contents Decode(std::string_view bytes) {
    Contents contents;
    const auto starts = [bytes](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
    const bool bigEndian = starts(BigEndianMark);
    const bool marked = starts(Utf8Mark);
    if ((bigEndian || starts(LittleEndianMark)) && bytes.size() % 2 == 0) {
        contents.Text = FromUtf16(bytes.substr(2), bigEndian);
        contents.Form.Kind = bigEndian ? Encoding::Utf16BigEndian : Encoding::Utf16LittleEndian;
        contents.Form.ByteOrderMark = true;
    } else if (FromUtf8(marked ? bytes.substr(Utf8Mark.size()) : bytes, contents.Text)) {
        contents.Form.ByteOrderMark = marked;
    } else {
        contents.Text = FromCodePage(bytes);
        contents.Form.Kind = Encoding::SystemCodePage;
        std::string again;
        if (!ToCodePage(contents.Text, again) || again != bytes) RaiseError(321);
    }
    contents.Form.Lines = LinesOf(contents.Text);
    return contents;
}

std::string Encode(const std::wstring& text, Format& format) {
    const std::wstring lines = WithLineEnds(text, format.Lines);
    std::string bytes;
    if (format.Kind == Encoding::SystemCodePage) {
        // Some texts would be taken for UTF-8 or for a mark when they are read again.
        if (ToCodePage(lines, bytes) && Decode(bytes).Text == lines) {
            format.ByteOrderMark = false;
            return bytes;
        }
        bytes.clear();
        format.Kind = Encoding::Utf8;
        format.ByteOrderMark = true;
    }
    if (format.Kind == Encoding::Utf8) {
        // A text that begins with the character of the mark needs a mark before it.
        if (!lines.empty() && lines[0] == 0xFEFF) format.ByteOrderMark = true;
        bytes.reserve(lines.size() + 3);
        if (format.ByteOrderMark) bytes = Utf8Mark;
        AppendUtf8(bytes, lines);
        return bytes;
    }
    const bool bigEndian = format.Kind == Encoding::Utf16BigEndian;
    format.ByteOrderMark = true;
    bytes.reserve(2 * lines.size() + 2);
    bytes = bigEndian ? BigEndianMark : LittleEndianMark;
    AppendUtf16(bytes, lines, bigEndian);
    return bytes;
}

void CheckPath(const std::wstring& path) { FullPath(path); }

std::string ReadBytes(const std::wstring& path, uint64_t limit) {
    const FileHandle file = Open(FullPath(path), GENERIC_READ, ShareAll, OPEN_EXISTING);
    if (!file) RaiseFileError(GetLastError());
    // A pipe or a console would keep the reader waiting.
    if (GetFileType(file.get()) != FILE_TYPE_DISK) RaiseFileError(ERROR_ACCESS_DENIED);
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size)) RaiseFileError(GetLastError());
    if (static_cast<uint64_t>(size.QuadPart) > limit) RaiseError(ErrorNumber::OutOfMemory, L"The file is too large");
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    size_t done = 0;
    while (done < bytes.size()) {
        DWORD read = 0;
        const auto part = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1 << 20));
        if (!ReadFile(file.get(), bytes.data() + done, part, &read, nullptr)) RaiseFileError(GetLastError());
        if (read == 0) break;  // it became shorter meanwhile
        done += read;
    }
    bytes.resize(done);
    return bytes;
}

Contents Read(const std::wstring& path, uint64_t limit) { return Decode(ReadBytes(path, limit)); }

std::wstring UnknownName() {
    GUID random;
    if (FAILED(CoCreateGuid(&random))) RaiseError(ErrorNumber::OutOfMemory);
    wchar_t text[40]{};
    StringFromGUID2(random, text, 40);
    return std::wstring(L"~") + text + L".tmp";
}

void Write(const std::wstring& path, std::string_view bytes, const std::function<std::wstring()>& name) {
    std::wstring target = FullPath(path);
    bool exists = false;
    {
        // Whoever may not write the file itself does not replace it either, whatever the folder allows. The right to
        // delete it is what replacing needs; without it ReplaceFile would fail as well, but leave a file of its own
        // under Wine.
        const FileHandle file = Open(target, GENERIC_WRITE | DELETE, ShareAll, OPEN_EXISTING);
        const DWORD error = file ? ERROR_SUCCESS : GetLastError();
        if (!file && error != ERROR_FILE_NOT_FOUND) RaiseFileError(error);
        if (file) {
            exists = true;
            if (GetFileType(file.get()) != FILE_TYPE_DISK) RaiseFileError(ERROR_ACCESS_DENIED);
            const DWORD attributes = GetFileAttributesW(target.c_str());
            if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
                RaiseFileError(ERROR_ACCESS_DENIED);  // Wine opens it for the administrator
            }
            const bool link = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
            const std::wstring behind = BehindLinks(file.get(), target);
            // Under Wine a link looks like the file itself. A path on another drive is that of a mapped one and no
            // link.
            if (link || DriveOf(behind) == DriveOf(target)) target = behind;
        }
    }
    Temporary temporary(target, name);
    temporary.Write(bytes);
    if (exists) {
        temporary.Replace(target);
    } else {
        temporary.Become(target);
    }
}

}  // namespace TextFile
