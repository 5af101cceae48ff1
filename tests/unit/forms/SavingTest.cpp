#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwctype>
#include <functional>
#include <memory>
#include <set>

#include "forms/AtomicFile.h"
#include "forms/TextFile.h"
#include "support/Errors.h"
#include "support/Folder.h"
#include "support/PatchedFunction.h"

// What somebody else who may write to the folder can do to a file while it is saved, and what is left there.
namespace {

using Names = std::vector<std::wstring>;

// Sees the names that appear in a folder, also those that are gone again.
class Watch {
public:
    explicit Watch(const std::wstring& folder)
        : folder_(CreateFileW(folder.c_str(), FILE_LIST_DIRECTORY,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr)),
          event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        Ask();
    }
    ~Watch() {
        CancelIo(folder_);
        DWORD size = 0;
        GetOverlappedResult(folder_, &asked_, &size, TRUE);
        CloseHandle(folder_);
        CloseHandle(event_);
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // All since the beginning, when nothing more came for so many milliseconds.
    const std::set<std::wstring>& Made(DWORD patience = 500) {
        while (WaitForSingleObject(event_, patience) == WAIT_OBJECT_0) {
            DWORD size = 0;
            EXPECT_TRUE(GetOverlappedResult(folder_, &asked_, &size, FALSE));
            EXPECT_NE(0U, size) << "there was more than the buffer holds";
            for (DWORD at = 0; size != 0;) {
                // A copy: under Wine the second may stand at any even address.
                FILE_NOTIFY_INFORMATION change;
                constexpr size_t front = offsetof(FILE_NOTIFY_INFORMATION, FileName);
                std::memcpy(&change, buffer_ + at, front);
                std::wstring name(change.FileNameLength / sizeof(wchar_t), L'\0');
                std::memcpy(name.data(), buffer_ + at + front, change.FileNameLength);
                if (change.Action == FILE_ACTION_ADDED || change.Action == FILE_ACTION_RENAMED_NEW_NAME)
                    made_.insert(name);
                if (change.NextEntryOffset == 0) break;
                at += change.NextEntryOffset;
            }
            Ask();
        }
        return made_;
    }

private:
    void Ask() {
        asked_ = {};
        asked_.hEvent = event_;
        EXPECT_TRUE(ReadDirectoryChangesW(folder_, buffer_, sizeof buffer_, FALSE, FILE_NOTIFY_CHANGE_FILE_NAME,
                                          nullptr, &asked_, nullptr));
    }

    HANDLE folder_;
    HANDLE event_;
    OVERLAPPED asked_{};
    alignas(8) char buffer_[32 * 1024];
    std::set<std::wstring> made_;
};

// A name as `form` has it, where "0" stands for a digit of 16.
bool HasFormOf(const std::wstring& name, const std::wstring& form) {
    return std::equal(name.begin(), name.end(), form.begin(), form.end(),
                      [](wchar_t unit, wchar_t as) { return as == L'0' ? iswxdigit(unit) != 0 : unit == as; });
}

// A symbolic link in the folder, where one can be made. Wine makes none itself, but the system below it does; there it
// also has to go, since for Wine it is the file behind it.
class Link {
public:
    Link(const Folder& folder, const std::wstring& name, std::wstring target) : folder_(folder), name_(name) {
        if (!Below()) {
            Made = CreateSymbolicLinkW((folder_ / name.c_str()).c_str(), target.c_str(),
                                       SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE) != 0;
            return;
        }
        std::replace(target.begin(), target.end(), L'\\', L'/');
        Made = Run(L"ln -s '" + target + L"' '" + name + L"'");
    }
    ~Link() {
        if (!Made) return;
        if (Below()) {
            Run(L"rm '" + name_ + L"'");
        } else {
            DeleteFileW((folder_ / name_.c_str()).c_str());
        }
    }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    bool Made = false;

private:
    static bool Below() { return GetFileAttributesW(L"Z:\\bin\\sh") != INVALID_FILE_ATTRIBUTES; }
    bool Run(const std::wstring& what) const {
        std::wstring command = L"Z:\\bin\\sh -c \"" + what + L" && echo >done\"";
        STARTUPINFOW start{};
        start.cb = sizeof start;
        PROCESS_INFORMATION made{};
        if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, (folder_ / L"").c_str(),
                            &start, &made)) {
            return false;
        }
        CloseHandle(made.hThread);
        CloseHandle(made.hProcess);
        for (int wait = 0; wait < 100; ++wait) {  // the program below runs on by itself
            if (DeleteFileW((folder_ / L"done").c_str())) return true;
            Sleep(50);
        }
        return false;
    }

    const Folder& folder_;
    std::wstring name_;
};

// Gives these names one after the other, and then the last one again and again.
struct Given {
    Names All;
    size_t Asked = 0;

    std::wstring operator()() { return All[std::min(Asked++, All.size() - 1)]; }
};

// Gives names as they always are, and does something when it is asked for the first or the second.
struct When {
    int Which;
    std::function<void()> Work;
    std::shared_ptr<int> Asked = std::make_shared<int>(0);

    std::wstring operator()() const {
        if ((*Asked)++ == Which) Work();
        return AtomicFile::UnknownName();
    }
};

}  // namespace

TEST(SavingTest, NobodyKnowsTheNameOfTheFileBesideBefore) {
    const Folder folder;
    Watch watch(folder / L"");
    constexpr size_t Saves = 8;
    for (size_t at = 0; at < Saves; ++at) {
        AtomicFile::Write(folder / L"kept.sql", std::to_string(at));
        watch.Made(20);
    }
    std::set<std::wstring> names = watch.Made();
    names.erase(L"kept.sql");
    // One a save, and most saves put the old file aside.
    ASSERT_LE(Saves, names.size());
    for (const std::wstring& name : names) {
        EXPECT_TRUE(HasFormOf(name, L"~{00000000-0000-0000-0000-000000000000}.tmp")) << name;
        for (const std::wstring& other : names) {
            if (&other == &name) continue;
            // Neither a counter nor the time: a digit of one and of the next are the same once in sixteen times.
            int same = 0;
            for (size_t at = 0; at < std::min(name.size(), other.size()); ++at) {
                same += iswxdigit(name[at]) != 0 && name[at] == other[at];
            }
            EXPECT_LT(same, 16) << name << " " << other;
        }
    }
    EXPECT_EQ(Names{L"kept.sql"}, folder.Names());
}

TEST(SavingTest, WithoutANameForTheFileBesideNothingIsWritten) {
    const Folder folder;
    AtomicFile::Write(folder / L"kept.sql", "before");
    const PatchedFunction guid(L"ole32.dll", "CoCreateGuid",
                               reinterpret_cast<void*>(static_cast<HRESULT(WINAPI*)(GUID*)>([](GUID* made) WINAPI {
                                   *made = {};
                                   return E_FAIL;
                               })));
    ASSERT_TRUE(guid);
    EXPECT_EQ(ErrorNumber::OutOfMemory, NumberOf([&] { AtomicFile::Write(folder / L"kept.sql", "after"); }));
    EXPECT_EQ("before", TextFile::ReadBytes(folder / L"kept.sql", 100));
    EXPECT_EQ(Names{L"kept.sql"}, folder.Names());
}

TEST(SavingTest, AFileThatOthersHaveOpenIsTriedAgainSixTimes) {
    static int replaced;
    static DWORD slept;
    static DWORD error;
    const Folder folder;
    AtomicFile::Write(folder / L"kept.sql", "before");
    const PatchedFunction replace(
        L"kernel32.dll", "ReplaceFileW",
        reinterpret_cast<void*>(
            static_cast<BOOL(WINAPI*)(const wchar_t*, const wchar_t*, const wchar_t*, DWORD, void*, void*)>(
                [](const wchar_t*, const wchar_t*, const wchar_t*, DWORD, void*, void*) WINAPI {
                    ++replaced;
                    SetLastError(error);
                    return FALSE;
                })));
    const PatchedFunction sleep(
        L"kernel32.dll", "Sleep",
        reinterpret_cast<void*>(static_cast<void(WINAPI*)(DWORD)>([](DWORD time) WINAPI { slept += time; })));
    ASSERT_TRUE(replace);
    ASSERT_TRUE(sleep);
    const auto tried = [&](DWORD failure) {
        error = failure;
        replaced = 0;
        slept = 0;
        EXPECT_NE(0, NumberOf([&] { AtomicFile::Write(folder / L"kept.sql", "after"); })) << failure;
        EXPECT_EQ("before", TextFile::ReadBytes(folder / L"kept.sql", 100));
        EXPECT_EQ(Names{L"kept.sql"}, folder.Names());
        return replaced;
    };
    for (const DWORD passing : {ERROR_SHARING_VIOLATION, ERROR_UNABLE_TO_REMOVE_REPLACED}) {
        EXPECT_EQ(6, tried(passing)) << passing;
        EXPECT_EQ(100U, slept);
    }
    // With another flag, once.
    EXPECT_EQ(2, tried(ERROR_ACCESS_DENIED));
    EXPECT_EQ(1, tried(ERROR_DISK_FULL));
    EXPECT_EQ(0U, slept);
    // A file system that cannot replace has the file moved there.
    int moved = 0;
    for (const DWORD unknown : {ERROR_NOT_SUPPORTED, ERROR_INVALID_FUNCTION, ERROR_CALL_NOT_IMPLEMENTED}) {
        error = unknown;
        const std::string text = "after " + std::to_string(++moved);
        AtomicFile::Write(folder / L"kept.sql", text);
        EXPECT_EQ(text, TextFile::ReadBytes(folder / L"kept.sql", 100));
        EXPECT_EQ(Names{L"kept.sql"}, folder.Names());
    }
}

TEST(SavingTest, AnOldFileThatWasPutAsideComesBackWhereTheNewOneCannotTakeItsPlace) {
    static int moved;
    const Folder folder;
    AtomicFile::Write(folder / L"kept.sql", "before");
    const PatchedFunction replace(
        L"kernel32.dll", "ReplaceFileW",
        reinterpret_cast<void*>(
            static_cast<BOOL(WINAPI*)(const wchar_t*, const wchar_t*, const wchar_t*, DWORD, void*, void*)>(
                [](const wchar_t* target, const wchar_t*, const wchar_t* aside, DWORD, void*, void*) WINAPI {
                    CopyFileW(target, aside, TRUE);
                    DeleteFileW(target);
                    SetLastError(ERROR_UNABLE_TO_MOVE_REPLACEMENT_2);
                    return FALSE;
                })));
    const PatchedFunction move(
        L"kernel32.dll", "MoveFileExW",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(const wchar_t*, const wchar_t*, DWORD)>(
            [](const wchar_t* from, const wchar_t* to, DWORD) WINAPI -> BOOL {
                SetLastError(ERROR_DISK_FULL);
                return ++moved > 1 && CopyFileW(from, to, TRUE) && DeleteFileW(from);
            })));
    ASSERT_TRUE(replace);
    ASSERT_TRUE(move);
    moved = 0;
    EXPECT_EQ(ErrorNumber::DiskFull, NumberOf([&] { AtomicFile::Write(folder / L"kept.sql", "after"); }));
    EXPECT_EQ(2, moved);
    EXPECT_EQ("before", BytesOf(folder / L"kept.sql"));
    EXPECT_EQ(Names{L"kept.sql"}, folder.Names());
}

TEST(SavingTest, WhatAFileIsMarkedAsStays) {
    static DWORD given;
    const Folder folder;
    AtomicFile::Write(folder / L"kept.sql", "before");
    const PatchedFunction get(
        L"kernel32.dll", "GetFileAttributesW",
        reinterpret_cast<void*>(static_cast<DWORD(WINAPI*)(const wchar_t*)>([](const wchar_t*) WINAPI -> DWORD {
            return FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_TEMPORARY |
                   FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        })));
    const PatchedFunction set(
        L"kernel32.dll", "SetFileAttributesW",
        reinterpret_cast<void*>(static_cast<BOOL(WINAPI*)(const wchar_t*, DWORD)>([](const wchar_t*, DWORD as) WINAPI {
            given = as;
            return TRUE;
        })));
    ASSERT_TRUE(get);
    ASSERT_TRUE(set);
    given = 0;
    AtomicFile::Write(folder / L"kept.sql", "after");
    EXPECT_EQ(static_cast<DWORD>(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED |
                                 FILE_ATTRIBUTE_ARCHIVE),
              given);
}

TEST(SavingTest, SixTakenNamesAreEnough) {
    const Folder folder;
    AtomicFile::Write(folder / L"taken.tmp", "somebody else's");
    int asked = 0;
    int taken = 6;
    const auto name = [&] { return std::wstring(++asked <= taken ? L"taken.tmp" : L"free.tmp"); };
    EXPECT_NE(0, NumberOf([&] { AtomicFile::Write(folder / L"new.sql", "text", name); }));
    EXPECT_EQ(6, asked);
    EXPECT_EQ(Names{L"taken.tmp"}, folder.Names());
    asked = 0;
    taken = 5;
    AtomicFile::Write(folder / L"new.sql", "text", name);
    EXPECT_EQ(6, asked);
    EXPECT_EQ("text", TextFile::ReadBytes(folder / L"new.sql", 100));
    EXPECT_EQ("somebody else's", TextFile::ReadBytes(folder / L"taken.tmp", 100));
}

TEST(SavingTest, WhatIsThereUnderTheNameIsNeverWrittenThrough) {
    const Folder folder;
    PutBytes(folder / L"kept.sql", "old");
    PutBytes(folder / L"victim.txt", "precious");
    PutBytes(folder / L"1.tmp", "of somebody else");
    ASSERT_TRUE(CreateHardLinkW((folder / L"2.tmp").c_str(), (folder / L"victim.txt").c_str(), nullptr));
    ASSERT_TRUE(CreateDirectoryW((folder / L"3.tmp").c_str(), nullptr));
    const Link toVictim(folder, L"4.tmp", L"victim.txt");
    const Link toNothing(folder, L"5.tmp", L"nothing.txt");
    const bool links = toVictim.Made && toNothing.Made;
    const Names before = folder.Names();

    Given names{{L"1.tmp", L"2.tmp", L"3.tmp"}};
    if (links) names.All.insert(names.All.end(), {L"4.tmp", L"5.tmp"});
    names.All.insert(names.All.end(), {L"free.tmp", L"aside.tmp"});
    AtomicFile::Write(folder / L"kept.sql", "new", std::ref(names));
    EXPECT_EQ(names.All.size(), names.Asked);
    EXPECT_EQ("new", BytesOf(folder / L"kept.sql"));
    EXPECT_EQ("precious", BytesOf(folder / L"victim.txt"));
    EXPECT_EQ("of somebody else", BytesOf(folder / L"1.tmp"));
    EXPECT_EQ("precious", BytesOf(folder / L"2.tmp"));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW((folder / L"nothing.txt").c_str()));
    EXPECT_EQ(before, folder.Names());

    // Nobody is let wait for ever.
    for (const wchar_t* name : {L"1.tmp", L"2.tmp", L"3.tmp", L"4.tmp", L"5.tmp"}) {
        if (!links && name[0] > L'3') continue;
        Given taken{{name}};
        EXPECT_EQ(58, NumberOf([&] { AtomicFile::Write(folder / L"kept.sql", "newer", std::ref(taken)); })) << name;
        EXPECT_EQ(58, NumberOf([&] { AtomicFile::Write(folder / L"another.sql", "newer", std::ref(taken)); })) << name;
        EXPECT_LT(taken.Asked, 20U);
    }
    EXPECT_EQ("new", BytesOf(folder / L"kept.sql"));
    EXPECT_EQ("precious", BytesOf(folder / L"victim.txt"));
    EXPECT_EQ(before, folder.Names());
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW((folder / L"nothing.txt").c_str()));
}

TEST(SavingTest, WhatOthersDoMeanwhileLeavesNothingBehind) {
    const Folder folder;
    const std::wstring path = folder / L"kept.sql";
    const Names kept{L"kept.sql"};
    PutBytes(path, "old");
    // A name is asked for when all has been looked at, and another one when the new file is written.
    for (const int when : {0, 1}) {
        HANDLE held = INVALID_HANDLE_VALUE;
        EXPECT_EQ(70, NumberOf([&] {
                      AtomicFile::Write(path, "new", When{when, [&] {
                                                              held = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr,
                                                                                 OPEN_EXISTING, 0, nullptr);
                                                          }});
                  }));
        EXPECT_NE(INVALID_HANDLE_VALUE, held);
        CloseHandle(held);
        EXPECT_EQ("old", BytesOf(path));
        EXPECT_EQ(kept, folder.Names());

        const When fails{when, [] { RaiseError(ErrorNumber::OutOfMemory); }};
        EXPECT_EQ(7, NumberOf([&] { AtomicFile::Write(path, "new", fails); }));
        EXPECT_EQ("old", BytesOf(path));
        EXPECT_EQ(kept, folder.Names());

        // The old file is gone: the new one takes its place all the same.
        AtomicFile::Write(path, "new", When{when, [&] { EXPECT_TRUE(DeleteFileW(path.c_str())); }});
        EXPECT_EQ("new", BytesOf(path));
        EXPECT_EQ(kept, folder.Names());
        PutBytes(path, "old");

        // A folder is in its place.
        const When folderComes{when, [&] {
                                   EXPECT_TRUE(DeleteFileW(path.c_str()));
                                   EXPECT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
                               }};
        EXPECT_EQ(75, NumberOf([&] { AtomicFile::Write(path, "new", folderComes); }));
        EXPECT_EQ(kept, folder.Names());
        EXPECT_TRUE(RemoveDirectoryW(path.c_str()));
        PutBytes(path, "old");
    }
    // The folder is gone.
    ASSERT_TRUE(CreateDirectoryW((folder / L"sub").c_str(), nullptr));
    const When removes{0, [&] { EXPECT_TRUE(RemoveDirectoryW((folder / L"sub").c_str())); }};
    EXPECT_EQ(76, NumberOf([&] { AtomicFile::Write(folder / L"sub\\kept.sql", "new", removes); }));
    // Somebody else was faster with a new file.
    const When faster{0, [&] { PutBytes(folder / L"new.sql", "of somebody else"); }};
    EXPECT_EQ(58, NumberOf([&] { AtomicFile::Write(folder / L"new.sql", "mine", faster); }));
    EXPECT_EQ("of somebody else", BytesOf(folder / L"new.sql"));
    EXPECT_EQ((Names{L"kept.sql", L"new.sql"}), folder.Names());
}

TEST(SavingTest, OtherHardLinksKeepTheOldText) {
    const Folder folder;
    PutBytes(folder / L"kept.sql", "old");
    ASSERT_TRUE(CreateHardLinkW((folder / L"other.sql").c_str(), (folder / L"kept.sql").c_str(), nullptr));
    AtomicFile::Write(folder / L"other.sql", "new");
    EXPECT_EQ("old", BytesOf(folder / L"kept.sql"));
    EXPECT_EQ("new", BytesOf(folder / L"other.sql"));
    EXPECT_EQ((Names{L"kept.sql", L"other.sql"}), folder.Names());
}

TEST(SavingTest, ThroughASymbolicLinkTheFileBehindItIsReplacedInItsOwnFolder) {
    const Folder folder;
    ASSERT_TRUE(CreateDirectoryW((folder / L"real").c_str(), nullptr));
    PutBytes(folder / L"real\\kept.sql", "old");
    const Link link(folder, L"link.sql", L"real\\kept.sql");
    if (link.Made) {
        EXPECT_EQ("old", BytesOf(folder / L"link.sql"));
        Watch beside(folder / L"");
        Watch behind(folder / L"real");
        Given name{{L"1.tmp", L"2.tmp"}};
        AtomicFile::Write(folder / L"link.sql", "new", std::ref(name));
        EXPECT_EQ(std::set<std::wstring>{}, beside.Made());
        EXPECT_EQ(1U, behind.Made().count(L"1.tmp"));
        EXPECT_EQ("new", BytesOf(folder / L"real\\kept.sql"));
        // Still a link: it shows whatever the file says.
        PutBytes(folder / L"real\\kept.sql", "newer");
        EXPECT_EQ("newer", BytesOf(folder / L"link.sql"));
    }
    EXPECT_TRUE(DeleteFileW((folder / L"real\\kept.sql").c_str()));
    EXPECT_TRUE(RemoveDirectoryW((folder / L"real").c_str())) << "something was left in it";
    if (!link.Made) GTEST_SKIP() << "no links can be made here";
}

TEST(SavingTest, ALinkToNothingIsNotFollowed) {
    const Folder folder;
    ASSERT_TRUE(CreateDirectoryW((folder / L"real").c_str(), nullptr));
    const Link link(folder, L"link.sql", L"real\\new.sql");
    if (link.Made) {
        // Windows refuses it, since something has the name; Wine does not see the link, and puts the file in its place.
        const long number = NumberOf([&] { AtomicFile::Write(folder / L"link.sql", "new"); });
        EXPECT_TRUE(number == 58 || (number == 0 && BytesOf(folder / L"link.sql") == "new")) << number;
        for (const std::wstring& name : folder.Names()) EXPECT_TRUE(name == L"real" || name == L"link.sql") << name;
    }
    EXPECT_TRUE(RemoveDirectoryW((folder / L"real").c_str())) << "something was made behind the link";
    if (!link.Made) GTEST_SKIP() << "no links can be made here";
}
