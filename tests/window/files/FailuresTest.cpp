#include <algorithm>

#include "support/Dialogs.h"
#include "support/Files.h"

using namespace std::string_literals;

namespace {

// What goes wrong with files: nothing that was there before is lost, and nothing looks done that was not.
class FileFailuresTest : public FilesFixture {
protected:
    // Opens a file that cannot come in while a text is being written.
    void CannotOpen(const std::wstring& path) {
        const std::wstring text = EditorWindow::Text();
        const std::wstring caption = EditorWindow::Caption();
        ASSERT_TRUE(Modified());
        {
            Dialogs dialogs;
            dialogs.Button(IDYES).File(path);
            Open();
            EXPECT_EQ(2U, dialogs.All.size());
        }
        ExpectTold(path, L" was not opened: ");
        EXPECT_EQ(text, EditorWindow::Text());
        EXPECT_EQ(caption, EditorWindow::Caption());
        EXPECT_TRUE(Modified());
    }
    // Save and Save As of a text that belongs to a file that cannot be written.
    void CannotSave(const std::wstring& path, const std::string& onDisk, long number) {
        const std::wstring caption = EditorWindow::Caption();
        const std::wstring text = EditorWindow::Text();
        ASSERT_TRUE(Modified());
        Save();
        EXPECT_EQ(L"frmSQLEditor.mnuFileSave_Click " + std::to_wstring(number), Errors.Places());
        EXPECT_TRUE(Modified());
        EXPECT_EQ(caption, EditorWindow::Caption());
        EXPECT_EQ(text, EditorWindow::Text());
        EXPECT_EQ(onDisk, BytesOf(path));
        Errors.Forget();
    }
    void CannotSaveAs(const std::wstring& path, bool exists) {
        const std::wstring caption = EditorWindow::Caption();
        const std::wstring text = EditorWindow::Text();
        ASSERT_TRUE(Modified());
        {
            Dialogs dialogs;
            dialogs.File(path);
            if (exists) dialogs.Button(IDYES);
            SaveAs();
        }
        ExpectTold(path, L" was not saved: ");
        EXPECT_EQ(L"", Errors.Places());
        EXPECT_TRUE(Modified());
        EXPECT_EQ(caption, EditorWindow::Caption());
        EXPECT_EQ(text, EditorWindow::Text());
    }

private:
    // The status bar says what was not done, and why.
    static void ExpectTold(const std::wstring& path, const wchar_t* what) {
        const std::wstring told = path.substr(path.find_last_of(L'\\') + 1) + what;
        const std::wstring note = EditorWindow::Status();
        EXPECT_EQ(0U, note.find(told)) << testing::PrintToString(note);
        EXPECT_LT(told.size(), note.size());
    }
};

class Held {
public:
    Held(const std::wstring& path, DWORD share)
        : file_(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(INVALID_HANDLE_VALUE, file_);
    }
    ~Held() { CloseHandle(file_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

private:
    HANDLE file_;
};

// Runs a program of the system below Wine; false where there is none.
bool RunBelow(std::wstring command) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made))
        return false;
    WaitForSingleObject(made.hProcess, 10000);
    CloseHandle(made.hThread);
    CloseHandle(made.hProcess);
    return true;
}

// A name that no other run uses at the same time: under Wine two processes of different prefixes may have the same
// number.
std::wstring UniqueName(const wchar_t* beginning) {
    GUID unique{};
    CoCreateGuid(&unique);
    wchar_t text[40];
    StringFromGUID2(unique, text, 40);
    return beginning + std::wstring(text + 1, 36);
}

// A file system of 64 KB, where one can be had.
class SmallDisk {
public:
    SmallDisk() {
        const std::wstring name = UniqueName(L"brv-small-disk-");
        below_ = L"/tmp/" + name;
        path_ = L"Z:\\tmp\\" + name + L"\\";
        if (!CreateDirectoryW(path_.c_str(), nullptr)) return;
        RunBelow(L"Z:\\bin\\mount -t tmpfs -o size=64k brv-test " + below_);
        ULARGE_INTEGER size{};
        // The program below runs on by itself.
        for (int wait = 0; wait < 50 && !Mounted; ++wait) {
            Mounted = GetDiskFreeSpaceExW(path_.c_str(), nullptr, &size, nullptr) && size.QuadPart == 64 * 1024;
            if (!Mounted) Sleep(50);
        }
    }
    ~SmallDisk() {
        if (Mounted) RunBelow(L"Z:\\bin\\umount -l " + below_);
        for (int wait = 0; wait < 50 && !RemoveDirectoryW(path_.c_str()); ++wait) Sleep(50);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    std::wstring operator/(const wchar_t* name) const { return path_ + name; }
    // From here on nothing can be made or written in it; false where that cannot be had.
    bool TakeRights() {
        for (int wait = 0; wait < 50; ++wait) {
            // Refused while a file is open for writing, as the one below may still be: so each time.
            RunBelow(L"Z:\\bin\\mount -o remount,ro " + below_);
            Sleep(50);
            const HANDLE file = CreateFileW((path_ + L"rights").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                            FILE_FLAG_DELETE_ON_CLOSE, nullptr);
            if (file == INVALID_HANDLE_VALUE) return true;
            CloseHandle(file);
        }
        return false;
    }
    std::wstring Names() const {
        std::wstring names;
        WIN32_FIND_DATAW found{};
        const HANDLE search = FindFirstFileW((path_ + L"*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) return L"?";
        do {
            if (found.cFileName[0] != L'.') names += found.cFileName + std::wstring(L"|");
        } while (FindNextFileW(search, &found));
        FindClose(search);
        return names;
    }
    bool Mounted = false;

private:
    std::wstring below_;
    std::wstring path_;
};

}  // namespace

TEST_F(FileFailuresTest, ALockedFileIsNotRead) {
    PutBytes(Here / L"a.sql", "locked");
    Inside(L"", [this] {
        Type(L"mine");
        const Held held(Here / L"a.sql", 0);
        CannotOpen(Here / L"a.sql");
    });
}

TEST_F(FileFailuresTest, ALockedFileIsNotWritten) {
    PutBytes(Here / L"a.sql", "old");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        Type(L" new");
        for (const DWORD share : {FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
            const Held held(Here / L"a.sql", share);
            CannotSave(Here / L"a.sql", "old", 70);
            CannotSaveAs(Here / L"a.sql", true);
        }
        Save();  // let go, it can be written
        EXPECT_EQ("old new", BytesOf(Here / L"a.sql"));
        EXPECT_FALSE(Modified());
    });
    EXPECT_EQ(L"a.sql|", Here.Listing());
}

TEST_F(FileFailuresTest, AReadOnlyFileIsReadAndNotWritten) {
    PutBytes(Here / L"a.sql", "old");
    ASSERT_TRUE(SetFileAttributesW((Here / L"a.sql").c_str(), FILE_ATTRIBUTE_READONLY));
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        Type(L" new");
        CannotSave(Here / L"a.sql", "old", 75);
        EXPECT_TRUE(GetFileAttributesW((Here / L"a.sql").c_str()) & FILE_ATTRIBUTE_READONLY);
    });
    EXPECT_EQ(L"a.sql|", Here.Listing());
}

TEST_F(FileFailuresTest, AFileThatWasDeletedMeanwhileIsWrittenAnew) {
    PutBytes(Here / L"a.sql", "old");
    Inside(L"", [this] {
        Load(Here / L"a.sql");
        DeleteFileW((Here / L"a.sql").c_str());
        Type(L" new");
        Save();
        EXPECT_EQ("old new", BytesOf(Here / L"a.sql"));
    });
}

TEST_F(FileFailuresTest, AFolderThatWasDeletedMeanwhileIsTold) {
    CreateDirectoryW((Here / L"sub").c_str(), nullptr);
    PutBytes(Here / L"sub\\a.sql", "old");
    Inside(L"", [this] {
        Load(Here / L"sub\\a.sql");
        DeleteFileW((Here / L"sub\\a.sql").c_str());
        ASSERT_TRUE(RemoveDirectoryW((Here / L"sub").c_str()));
        Type(L" new");
        CannotSave(Here / L"sub\\a.sql", "<none>", 76);
    });
    EXPECT_EQ(L"", Here.Listing());
}

TEST_F(FileFailuresTest, AFullDiskLosesNothing) {
    const SmallDisk disk;
    if (!disk.Mounted) GTEST_SKIP() << "no small file system can be had here";
    PutBytes(disk / L"a.sql", "old");
    Inside(L"", [&] {
        Load(disk / L"a.sql");
        Type(std::wstring(100000, L'x'));
        CannotSave(disk / L"a.sql", "old", 61);
        CannotSaveAs(disk / L"b.sql", false);
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW((disk / L"b.sql").c_str()));
        CannotSaveAs(disk / L"b.rtf", false);
        // Nothing of it was left there either: what fits is written.
        EXPECT_TRUE(DeleteFileW((disk / L"a.sql").c_str()));
        ULARGE_INTEGER left{};
        GetDiskFreeSpaceExW((disk / L"").c_str(), nullptr, nullptr, &left);
        EXPECT_EQ(64U * 1024, left.QuadPart);
        EditorWindow::SetText(L"small");
        Save();
        EXPECT_EQ("small", BytesOf(disk / L"a.sql"));
    });
}

TEST_F(FileFailuresTest, AFolderWithoutRightsIsToldAndStaysAsItWas) {
    SmallDisk disk;
    if (!disk.Mounted) GTEST_SKIP() << "no file system can be had here whose rights can be taken";
    PutBytes(disk / L"a.sql", "old");
    Inside(L"", [&] {
        Load(disk / L"a.sql");
        Type(L" new");
        ASSERT_TRUE(disk.TakeRights());
        CannotSave(disk / L"a.sql", "old", 75);
        CannotSaveAs(disk / L"a.sql", true);
        CannotSaveAs(disk / L"new.sql", false);
        EXPECT_EQ(L"a.sql|", disk.Names());
        // Elsewhere it can be saved.
        {
            Dialogs dialogs;
            dialogs.File(Here / L"b.sql");
            SaveAs();
        }
        EXPECT_FALSE(Modified());
    });
    EXPECT_EQ("old new", BytesOf(Here / L"b.sql"));
    EXPECT_EQ(L"b.sql|", Here.Listing());
}

TEST_F(FileFailuresTest, ALinkStaysALink) {
    const std::wstring name = UniqueName(L"brv-link-");
    const std::wstring link = L"Z:\\tmp\\" + name + L".sql";
    const std::wstring real = L"Z:\\tmp\\" + name + L"-real.sql";
    if (GetFileAttributesW(L"Z:\\bin\\ln") == INVALID_FILE_ATTRIBUTES) GTEST_SKIP() << "no links can be made here";
    PutBytes(real, "old");
    RunBelow(L"Z:\\bin\\ln -s " + name + L"-real.sql /tmp/" + name + L".sql");
    for (int wait = 0; wait < 50 && BytesOf(link) != "old"; ++wait) Sleep(50);
    Inside(L"", [&] {
        Load(link);
        Type(L" new");
        Save();
    });
    EXPECT_EQ("old new", BytesOf(real));
    EXPECT_EQ("old new", BytesOf(link));
    PutBytes(real, "newer");
    EXPECT_EQ("newer", BytesOf(link));
    // Wine would delete the file behind the link.
    RunBelow(L"Z:\\bin\\rm -f /tmp/" + name + L".sql /tmp/" + name + L"-real.sql");
}

TEST_F(FileFailuresTest, ABinaryFileComesBackAsItWasOrNotAtAll) {
    std::string bytes = "MZ\x90";
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != '\r' && byte != '\n') bytes += static_cast<char>(byte);
    }
    PutBytes(Here / L"a.exe", bytes);
    Inside(L"", [&] {
        Dialogs dialogs;
        dialogs.File(Here / L"a.exe");
        Open();
        if (EditorWindow::Caption() != L"SQL Editor") {
            Save();
        } else {
            EXPECT_EQ(L"", EditorWindow::Text());
        }
        EXPECT_EQ(bytes, BytesOf(Here / L"a.exe"));
    });
}

TEST_F(FileFailuresTest, BrokenRichTextChangesNothing) {
    std::string deep = "{\\rtf1 ";
    for (int level = 0; level < 100000; ++level) deep += '{';
    for (int level = 0; level < 100000; ++level) deep += '}';
    Inside(L"", [&] {
        Type(L"mine");
        for (const std::string& bytes :
             {"select 1"s, "{\\rtf1 half {\\b of it"s, "{\\rtf1 one} and more"s, "{\\rtf1 \\bin99999999999 x}"s,
              "{\\rt1 x}"s, "\0\0\0"s, "{\\rtf1 \\"s, deep + "}"}) {
            PutBytes(Here / L"broken.rtf", bytes);
            CannotOpen(Here / L"broken.rtf");
        }
    });
}

TEST_F(FileFailuresTest, AFileOfAHundredMegabytesIsRefusedAtOnce) {
    for (const wchar_t* name : {L"large.sql", L"large.rtf"}) {
        const HANDLE file = CreateFileW((Here / name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        SetFilePointer(file, 100 << 20, nullptr, FILE_BEGIN);
        SetEndOfFile(file);
        CloseHandle(file);
    }
    Inside(L"", [this] {
        Type(L"mine");
        for (const wchar_t* name : {L"large.sql", L"large.rtf"}) {
            const DWORD before = GetTickCount();
            CannotOpen(Here / name);
            EXPECT_LT(GetTickCount() - before, 10000U);
        }
    });
}
