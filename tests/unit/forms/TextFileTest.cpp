#include "forms/TextFile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "forms/AtomicFile.h"
#include "forms/FileAccess.h"
#include "support/Errors.h"
#include "support/Folder.h"
#include "support/PatchedFunction.h"

using TextFile::Encoding;
using TextFile::Format;
using TextFile::LineEnd;
using namespace std::string_literals;

namespace {

// What the bytes become when they are read and written again.
std::string Again(const std::string& bytes) {
    TextFile::Contents contents = TextFile::Decode(bytes);
    return TextFile::Encode(contents.Text, contents.Form);
}

std::wstring Through(const std::wstring& text, Format format) {
    return TextFile::Decode(TextFile::Encode(text, format)).Text;
}

}  // namespace

TEST(TextFile, AMarkDecidesTheEncoding) {
    const auto little = TextFile::Decode("\xFF\xFEs\0\xE9\0\x3D\xD8\0\xDE"s);
    EXPECT_EQ(L"s\x00E9\xD83D\xDE00", little.Text);
    EXPECT_EQ((Format{Encoding::Utf16LittleEndian, true}), little.Form);
    const auto big = TextFile::Decode("\xFE\xFF\0s\0\xE9"s);
    EXPECT_EQ(L"s\x00E9", big.Text);
    EXPECT_EQ((Format{Encoding::Utf16BigEndian, true}), big.Form);
    const auto utf8 = TextFile::Decode("\xEF\xBB\xBFs\xC3\xA9");
    EXPECT_EQ(L"s\x00E9", utf8.Text);
    EXPECT_EQ((Format{Encoding::Utf8, true}), utf8.Form);
    for (const auto& [bytes, form] : {std::pair{"\xFF\xFE"s, Format{Encoding::Utf16LittleEndian, true}},
                                      {"\xFE\xFF"s, {Encoding::Utf16BigEndian, true}},
                                      {"\xEF\xBB\xBF"s, {Encoding::Utf8, true}},
                                      {""s, {Encoding::Utf8, false}}}) {
        EXPECT_EQ(L"", TextFile::Decode(bytes).Text);
        EXPECT_EQ(form, TextFile::Decode(bytes).Form);
        EXPECT_EQ(bytes, Again(bytes));
    }
}

TEST(TextFile, WithoutAMarkItIsUtf8OrTheSystemsCodePage) {
    EXPECT_EQ((Format{Encoding::Utf8, false}), TextFile::Decode("plain").Form);
    EXPECT_EQ(L"\x20AC\xD83D\xDE00", TextFile::Decode("\xE2\x82\xAC\xF0\x9F\x98\x80").Text);
    const auto western = TextFile::Decode("caf\xE9");
    EXPECT_EQ(Encoding::SystemCodePage, western.Form.Kind);
    EXPECT_FALSE(western.Form.ByteOrderMark);
    wchar_t expected[5]{};
    MultiByteToWideChar(CP_ACP, 0, "caf\xE9", -1, expected, 5);
    EXPECT_EQ(expected, western.Text);
}

TEST(TextFile, WhatIsNoUtf8IsNotTakenForIt) {
    for (const std::string bytes :
         {"a\x80", "\xC0\x80", "\xC1\xBF", "\xC3", "\xE2\x82", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xFF", "\xC3\xC3", "\xED\xA0\xBD\xED\xB8\x80", "\xEF\xBB\xBF\xE9", "\xFF\xFE\x41"}) {
        EXPECT_EQ(Encoding::SystemCodePage, TextFile::Decode(bytes).Form.Kind) << bytes;
        EXPECT_EQ(bytes, Again(bytes));
    }
}

// The first and the last character of each length, and what would lie beside them.
TEST(TextFile, Utf8HasItsEdges) {
    const struct {
        const char* Bytes;
        std::wstring Text;
    } known[] = {{"\x7F", L"\x7F"},
                 {"\xC2\x80", L"\x80"},
                 {"\xDF\xBF", L"\x7FF"},
                 {"\xE0\xA0\x80", L"\x800"},
                 {"\xED\x9F\xBF", L"\xD7FF"},
                 {"\xED\xA0\x80", L"\xD800"},
                 {"\xED\xAF\xBF", L"\xDBFF"},
                 {"\xED\xB0\x80", L"\xDC00"},
                 {"\xED\xBF\xBF", L"\xDFFF"},
                 {"\xEE\x80\x80", L"\xE000"},
                 {"\xEF\xBF\xBF", L"\xFFFF"},
                 {"\xED\xB0\x80\xED\xA0\x80", L"\xDC00\xD800"},
                 {"\xEE\x80\x80\xED\xB0\x80", L"\xE000\xDC00"},
                 {"\xED\x9F\xBF\xED\xB0\x80", L"\xD7FF\xDC00"},
                 {"\xED\xA0\x80\xEE\x80\x80", L"\xD800\xE000"},
                 {"\xF0\x90\x80\x80", L"\xD800\xDC00"},
                 {"\xF0\x90\x8F\xBF", L"\xD800\xDFFF"},
                 {"\xF0\x90\x90\x80", L"\xD801\xDC00"},
                 {"\xF4\x8F\xBF\xBF", L"\xDBFF\xDFFF"}};
    for (const auto& one : known) {
        const auto contents = TextFile::Decode(one.Bytes);
        EXPECT_EQ(Encoding::Utf8, contents.Form.Kind) << one.Bytes;
        EXPECT_EQ(one.Text, contents.Text) << one.Bytes;
        EXPECT_EQ(one.Bytes, Again(one.Bytes));
    }
    for (const std::string bytes :
         {"\x80", "\xBF", "\xC1\xBF", "\xC2", "\xC2\x7F", "\xC2\xC0", "\xE0\x9F\xBF", "\xE0\xA0", "\xEF\xBF",
          "\xEF\xBF\x7F", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
          "\xED\xA0\x80\xED\xB0\x80", "\xED\xAF\xBF\xED\xBF\xBF", "\xED\xA0\x80\xED\xBF\xBF",
          "\xED\xAF\xBF\xED\xB0\x80"}) {
        EXPECT_EQ(Encoding::SystemCodePage, TextFile::Decode(bytes).Form.Kind) << bytes;
        EXPECT_EQ(bytes, Again(bytes));
    }
    // Half a unit is no text with a mark.
    EXPECT_EQ(Encoding::SystemCodePage, TextFile::Decode("\xFE\xFF\0x\0"s).Form.Kind);
}

TEST(TextFile, EveryByteComesOutAsItWentIn) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    EXPECT_EQ(all, Again(all));
    EXPECT_EQ(all + all, Again(all + all));
    EXPECT_EQ("\xFF\xFE" + all, Again("\xFF\xFE" + all));
    EXPECT_EQ("\xFE\xFF" + all, Again("\xFE\xFF" + all));
    EXPECT_EQ("\xEF\xBB\xBF" + all, Again("\xEF\xBB\xBF" + all));
}

TEST(TextFile, EveryEncodingHoldsEveryText) {
    for (const std::wstring& text :
         {L""s, L"select 1"s, L"a\0b\0"s, L"\xFEFFx"s, L"x\xFEFF"s, L"\x00FF\x00FE"s, L"\x00C3\x00A9"s,
          L"\x00EF\x00BB\x00BF"s, L"\xD83D\xDE00"s, L"x\xD83Dx"s, L"\xDE00\xD83D"s, L"\xD83D"s, L"\xFFFE\xFFFF"s,
          L"caf\x00E9 \x4E2D"s, L"\x0081"s, L"a\r\nb\r\n"s, L"a\nb\rc\r\n"s}) {
        for (const Encoding kind :
             {Encoding::Utf8, Encoding::Utf16LittleEndian, Encoding::Utf16BigEndian, Encoding::SystemCodePage}) {
            EXPECT_EQ(text, Through(text, {kind, false}));
            EXPECT_EQ(text, Through(text, {kind, true}));
        }
    }
}

TEST(TextFile, ACharacterThatTheCodePageDoesNotHaveTurnsTheFileIntoUtf8WithAMark) {
    Format format{Encoding::SystemCodePage, false};
    EXPECT_EQ("caf\xE9", TextFile::Encode(TextFile::Decode("caf\xE9").Text, format));
    EXPECT_EQ(Encoding::SystemCodePage, format.Kind);
    EXPECT_EQ("\xEF\xBB\xBF\xE4\xB8\xAD", TextFile::Encode(L"\x4E2D", format));
    EXPECT_EQ((Format{Encoding::Utf8, true}), format);
    // One that only looks like one it has.
    format = {Encoding::SystemCodePage, false};
    EXPECT_EQ("\xEF\xBB\xBF\xE2\x88\x92", TextFile::Encode(L"\x2212", format));
}

// Not every byte is a character of that code page.
TEST(TextFile, WhereTheSystemsCodePageIsUtf8BytesThatAreNoneAreWestern) {
    using CodePageFunction = UINT(WINAPI*)();
    const CodePageFunction utf8 = []() WINAPI -> UINT { return CP_UTF8; };
    const PatchedFunction patched(L"kernel32.dll", "GetACP", reinterpret_cast<void*>(utf8));
    ASSERT_TRUE(patched);
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    EXPECT_EQ(all, Again(all));
    EXPECT_EQ(L"caf\x00E9 \x20AC", TextFile::Decode("caf\xE9 \x80").Text);
    Format format{Encoding::SystemCodePage, false};
    EXPECT_EQ("\xE9", TextFile::Encode(L"\x00E9", format));
}

TEST(TextFile, LineEndsOfOneKindAreKept) {
    for (const auto& [bytes, lines] : {std::pair{"a\nb\n"s, LineEnd::Lf},
                                       {"a\rb"s, LineEnd::Cr},
                                       {"a\r\nb"s, LineEnd::CrLf},
                                       {"a"s, LineEnd::CrLf},
                                       {"a\nb\r\n"s, LineEnd::CrLf},
                                       {"a\nb\r"s, LineEnd::CrLf}}) {
        EXPECT_EQ(lines, TextFile::Decode(bytes).Form.Lines);
    }
    Format format{Encoding::Utf8, false, LineEnd::Lf};
    EXPECT_EQ("a\nb\n\n", TextFile::Encode(L"a\r\nb\r\n\r\n", format));
    format.Lines = LineEnd::Cr;
    EXPECT_EQ("a\rb\r", TextFile::Encode(L"a\r\nb\r\n", format));
    format.Lines = LineEnd::CrLf;
    EXPECT_EQ("a\r\nb\n", TextFile::Encode(L"a\r\nb\n", format));
}

TEST(TextFile, IsWrittenAndReadByEveryKindOfPath) {
    const Folder folder;
    AtomicFile::Write(folder / L"new.sql", "select 1");
    EXPECT_EQ("select 1", BytesOf(folder / L"new.sql"));
    AtomicFile::Write(folder / L"new.sql", "");
    EXPECT_EQ("", BytesOf(folder / L"new.sql"));
    EXPECT_EQ(L"", TextFile::Read(folder / L"new.sql").Text);
    AtomicFile::Write(folder / L"\x4E2D \x05D0.sql", "a\0b"s);
    EXPECT_EQ(L"a\0b"s, TextFile::Read(folder / L"\x4E2D \x05D0.sql").Text);
    EXPECT_EQ(2U, folder.Names().size());
}

TEST(TextFile, APathMayBeLong) {
    const Folder folder;
    const std::wstring part(100, L'x');
    const std::wstring first = L"\\\\?\\" + (folder / part.c_str());
    const std::wstring second = first + L"\\" + part;
    const std::wstring third = second + L"\\" + part;
    for (const std::wstring& path : {first, second, third}) ASSERT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
    const std::wstring plain = third.substr(4) + L"\\long.sql";
    AtomicFile::Write(plain, "one");
    AtomicFile::Write(plain, "two");
    EXPECT_EQ(L"two", TextFile::Read(plain).Text);
    EXPECT_TRUE(DeleteFileW((third + L"\\long.sql").c_str()));
    for (const std::wstring& path : {third, second, first})
        EXPECT_TRUE(RemoveDirectoryW(path.c_str()));  // nothing was left
}

TEST(TextFile, ALongPathIsWrittenInTheFormThatHasNoLimit) {
    const std::wstring name(200, L'x');
    for (const auto& [path, full] : {std::pair{L"C:\\a\\" + name, L"\\\\?\\C:\\a\\" + name},
                                     {L"C:\\a\\..\\" + name, L"\\\\?\\C:\\" + name},
                                     {L"\\\\server\\share\\" + name, L"\\\\?\\UNC\\server\\share\\" + name},
                                     {L"\\\\?\\C:\\" + name, L"\\\\?\\C:\\" + name},
                                     {L"\\\\server\\share\\x"s, L"\\\\server\\share\\x"s},
                                     {L"C:\\a\\x"s, L"C:\\a\\x"s}}) {
        EXPECT_EQ(full, FileAccess::FullPath(path));
    }
}

TEST(TextFile, TellsWhyAFileCannotBeRead) {
    const Folder folder;
    EXPECT_EQ(53, NumberOf([&] { TextFile::Read(folder / L"none.sql"); }));
    EXPECT_EQ(76, NumberOf([&] { TextFile::Read(folder / L"none\\none.sql"); }));
    EXPECT_EQ(75, NumberOf([&] { TextFile::Read(folder / L""); }));
    EXPECT_EQ(52, NumberOf([&] { TextFile::Read(L""); }));
    EXPECT_EQ(52, NumberOf([&] { TextFile::Read(L"a\0b"s); }));
    EXPECT_EQ(75, NumberOf([&] { TextFile::Read(L"NUL"); }));
    PutBytes(folder / L"locked.sql", "x");
    const HANDLE held =
        CreateFileW((folder / L"locked.sql").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(70, NumberOf([&] { TextFile::Read(folder / L"locked.sql"); }));
    CloseHandle(held);
    EXPECT_EQ(L"x", TextFile::Read(folder / L"locked.sql").Text);
}

// To open a pipe is to talk to whoever listens there, who could act in the user's name.
TEST(TextFile, AskNothingOfADevice) {
    const std::wstring name = L"\\\\.\\pipe\\brv-text-file-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE pipe =
        CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_NOWAIT, 1, 100, 100, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, pipe);
    const std::wstring paths[] = {name,
                                  L"\\\\?\\pipe" + name.substr(8),
                                  L"\\\\.\\PIPE" + name.substr(8),
                                  L"\\\\localhost\\pipe" + name.substr(8),
                                  L"\\\\?\\UNC\\localhost\\pipe" + name.substr(8),
                                  L"\\\\localhost\\mailslot\\x",
                                  L"\\\\localhost\\ipc$\\x",
                                  L"\\\\?\\UNC\\localhost\\IPC$",
                                  L"\\\\?\\GLOBALROOT\\Device\\Null",
                                  L"\\\\.\\PhysicalDrive0"};
    for (const std::wstring& path : paths) {
        EXPECT_EQ(ErrorNumber::PathFileAccessError, NumberOf([&] { TextFile::CheckPath(path); }))
            << testing::PrintToString(path);
        EXPECT_EQ(ErrorNumber::PathFileAccessError, NumberOf([&] { TextFile::ReadBytes(path); }));
        EXPECT_EQ(ErrorNumber::PathFileAccessError, NumberOf([&] { AtomicFile::Write(path, "x"); }));
    }
    EXPECT_FALSE(ConnectNamedPipe(pipe, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_PIPE_LISTENING), GetLastError()) << "somebody has opened it";
    CloseHandle(pipe);
    for (const wchar_t* path : {L"C:\\pipe\\x", L"\\\\server\\share\\pipe\\x", L"\\\\server\\pipes\\x", L"\\\\?\\C:\\x",
                                L"\\\\.\\C:\\x", L"pipe\\x"}) {
        EXPECT_EQ(0, NumberOf([&] { TextFile::CheckPath(path); })) << testing::PrintToString(path);
    }
}

// A file may turn out to be a pipe when it is opened: by a link, or on another computer.
TEST(TextFile, WhoeverListensBehindAFileMayNotActInTheUsersName) {
    static std::vector<DWORD> flags;
    flags.clear();
    using CreateFileFunction = HANDLE(WINAPI*)(LPCWSTR, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE);
    const CreateFileFunction refuse = [](LPCWSTR, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD given, HANDLE)
                                          WINAPI -> HANDLE {
        flags.push_back(given);
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    };
    const Folder folder;
    {
        const PatchedFunction patched(L"kernel32.dll", "CreateFileW", reinterpret_cast<void*>(refuse));
        ASSERT_TRUE(patched);
        NumberOf([&] { TextFile::Read(folder / L"a.sql"); });
        NumberOf([&] { AtomicFile::Write(folder / L"a.sql", "x"); });
    }
    ASSERT_EQ(3U, flags.size());  // what is read, what is written over, and the new file beside it
    for (const DWORD given : flags) {
        EXPECT_EQ(DWORD{SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION},
                  given & (SECURITY_SQOS_PRESENT | SECURITY_VALID_SQOS_FLAGS));
    }
}

TEST(TextFile, RefusesAFileThatIsTooLargeAtOnce) {
    const Folder folder;
    const std::wstring path = folder / L"large.sql";
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    LARGE_INTEGER size{};
    size.QuadPart = int64_t{5} << 30;
    SetFilePointerEx(file, size, nullptr, FILE_BEGIN);
    SetEndOfFile(file);
    CloseHandle(file);
    const DWORD before = GetTickCount();
    EXPECT_EQ(7, NumberOf([&] { TextFile::Read(path); }));
    EXPECT_LT(GetTickCount() - before, 1000U);
    PutBytes(path, "12345678");
    EXPECT_EQ(7, NumberOf([&] { TextFile::Read(path, 7); }));
    EXPECT_EQ(L"12345678", TextFile::Read(path, 8).Text);
}

TEST(TextFile, AFailureToWriteLeavesEverythingAsItWas) {
    const Folder folder;
    const std::wstring path = folder / L"kept.sql";
    PutBytes(path, "old");

    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(75, NumberOf([&] { AtomicFile::Write(path, "new"); }));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);

    for (const DWORD share : {0, FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
        const HANDLE held = CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(70, NumberOf([&] { AtomicFile::Write(path, "new"); })) << share;
        CloseHandle(held);
    }
    CreateDirectoryW((folder / L"sub").c_str(), nullptr);
    EXPECT_EQ(75, NumberOf([&] { AtomicFile::Write(folder / L"sub", "new"); }));
    EXPECT_EQ(76, NumberOf([&] { AtomicFile::Write(folder / L"none\\kept.sql", "new"); }));
    EXPECT_EQ(52, NumberOf([&] { AtomicFile::Write(L"", "new"); }));
    EXPECT_EQ(75, NumberOf([&] { AtomicFile::Write(L"NUL", "new"); }));

    EXPECT_EQ("old", BytesOf(path));
    EXPECT_EQ((std::vector<std::wstring>{L"kept.sql", L"sub"}), folder.Names());
}

TEST(TextFile, ANewTextTakesTheOldOnesPlaceAndAttributes) {
    const Folder folder;
    const std::wstring path = folder / L"kept.sql";
    PutBytes(path, "old");
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
    ASSERT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN);
    const std::string long_(3 << 20, 'x');
    AtomicFile::Write(path, long_);
    EXPECT_EQ(long_, BytesOf(path));
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(1U, folder.Names().size());
}

TEST(TextFile, OneThatIsCutShortWhileItIsReadIsReadAsFarAsItGoes) {
    static int reads;
    const Folder folder;
    PutBytes(folder / L"a.sql", std::string(10, 'x'));
    const PatchedFunction read(
        L"kernel32.dll", "ReadFile",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*)>(
            [](HANDLE, void* buffer, DWORD size, DWORD* done, OVERLAPPED*) WINAPI -> BOOL {
                *done = ++reads > 2 || size < 2 ? 0 : 2;
                if (*done > 0) memcpy(buffer, "ab", 2);
                return TRUE;
            })));
    ASSERT_TRUE(read);
    reads = 0;
    EXPECT_EQ("abab", TextFile::ReadBytes(folder / L"a.sql", 100));
    EXPECT_EQ(3, reads);
}
