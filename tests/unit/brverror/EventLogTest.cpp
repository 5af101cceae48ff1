#include <gtest/gtest.h>
#include <shlobj.h>

#include <algorithm>

#include "Component.h"

namespace {

class BrvErrorLog : public testing::Test {
protected:
    LogFolder Log;
    EnvironmentValue Alerts{L"BRVERROR_ALERTS", L"0"};

    std::vector<std::vector<std::wstring>> Entries() const { return EntriesOf(Log.File()); }
};

enum Field {
    Time,
    Program,
    Module,
    Routine,
    Number,
    Source,
    Description,
    Line,
    DebugText,
    LastDllError,
    HelpFile,
    HelpContext
};

bool HasFormOf(const std::wstring& text, const std::wstring& form) {
    if (text.size() != form.size()) return false;
    for (size_t at = 0; at < form.size(); ++at) {
        if (form[at] == L'0' ? text[at] < L'0' || text[at] > L'9' : text[at] != form[at]) return false;
    }
    return true;
}

// What ends a line, or the text, or hides, moves or turns what stands beside it, in some program that shows the log.
const std::wstring Breaks[] = {
    L"\r",     L"\n",     L"\r\n",           L"\n\r",   L"\t",     L"\v",     L"\f",     std::wstring(1, L'\0'),
    L"\x1a",   L"\b",     L"\x1b[2K\x1b[1A", L"\x1c",   L"\x1e",   L"\x7f",   L"\x84",   L"\x85",
    L"\x9b",   L"\x2028", L"\x2029",         L"\x061c", L"\x200e", L"\x200f", L"\x202a", L"\x202b",
    L"\x202c", L"\x202d", L"\x202e",         L"\x2066", L"\x2067", L"\x2068", L"\x2069", L"\xfeff"};

// The text that a field of the log stands for.
std::wstring Meant(const std::wstring& field) {
    std::wstring text;
    for (size_t at = 0; at < field.size(); ++at) {
        if (field[at] != L'\\' || at + 1 == field.size()) {
            text += field[at];
            continue;
        }
        switch (const wchar_t kind = field[++at]) {
            case L'r':
                text += L'\r';
                break;
            case L'n':
                text += L'\n';
                break;
            case L't':
                text += L'\t';
                break;
            case L'u':
                text += static_cast<wchar_t>(std::stoul(field.substr(at + 1, 4), nullptr, 16));
                at += 4;
                break;
            default:
                text += kind;
        }
    }
    return text;
}

// Of what the file holds, the units that stand neither in a field nor between two of them nor at the end of a line.
size_t StrayUnits(const std::wstring& file) {
    std::wstring text;
    const std::string bytes = BytesOf(file);
    text.resize(bytes.size());
    text.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                        static_cast<int>(bytes.size()), text.data(),
                                                        static_cast<int>(text.size()))));
    std::wstring breaking;
    for (const std::wstring& sequence : Breaks) {
        for (const wchar_t unit : sequence) breaking += unit < L' ' || unit > L'~' ? std::wstring(1, unit) : L"";
    }
    breaking.erase(std::remove(breaking.begin(), breaking.end(), L'\t'), breaking.end());
    size_t stray = 0;
    for (size_t at = text.find_first_of(breaking); at != std::wstring::npos;
         at = text.find_first_of(breaking, at + 1)) {
        if (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') {
            ++at;
        } else {
            ++stray;
        }
    }
    return stray;
}

constexpr int EntriesEach = 100;

DWORD WINAPI WriteMany(void*) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
        const Object component = Component::MakeConstructed();
        for (int at = 0; at < EntriesEach; ++at) component.Call(L"LogEvent", std::wstring(500, L'z'));
    }
    CoUninitialize();
    return 0;
}

}  // namespace

TEST_F(BrvErrorLog, WritesAllFieldsOfAnErrorInOrder) {
    const Object component = Component::MakeConstructed();
    component.Call(L"ErrorMessage", L"frmMain", L"Form_Load", MakeError(-2147221503, L"brvX", L"It failed"), 120L,
                   L"more");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 1u);
    const auto& entry = entries[0];
    ASSERT_EQ(entry.size(), 12u);
    EXPECT_TRUE(HasFormOf(entry[Time], L"0000-00-00T00:00:00.000"));
    SYSTEMTIME now;
    GetLocalTime(&now);
    EXPECT_EQ(entry[Time].substr(0, 4), std::to_wstring(now.wYear));
    EXPECT_EQ(entry[Program], L"Test Program 4.5.6");
    EXPECT_EQ(entry[Module], L"frmMain");
    EXPECT_EQ(entry[Routine], L"Form_Load");
    EXPECT_EQ(entry[Number], L"-2147221503");
    EXPECT_EQ(entry[Source], L"brvX");
    EXPECT_EQ(entry[Description], L"It failed");
    EXPECT_EQ(entry[Line], L"120");
    EXPECT_EQ(entry[DebugText], L"more");
    EXPECT_EQ(entry[LastDllError], L"32");
    EXPECT_EQ(entry[HelpFile], L"C:\\\\help\\\\program.chm");
    EXPECT_EQ(entry[HelpContext], L"1007");
}

TEST_F(BrvErrorLog, WritesAnEventInTheSameOrder) {
    const Object component = Component::MakeConstructed();
    component.Call(L"LogEvent", L"Started");
    component.Call(L"LogEvent", L"Stopped");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].at(Program), L"Test Program 4.5.6");
    EXPECT_EQ(entries[0].at(Module), L"");
    EXPECT_EQ(entries[0].at(Description), L"Started");
    EXPECT_EQ(entries[1].at(Description), L"Stopped");
}

TEST_F(BrvErrorLog, CannotBeMadeToShowAnEntryThatWasNone) {
    const Object component = Component::MakeConstructed();
    const wchar_t* forged = L"x\r\n2001-01-01T00:00:00.000\tTest Program 4.5.6\tforged";
    component.Call(L"LogEvent", forged);
    component.Call(L"ErrorMessage", forged, forged, MakeError(1, forged, forged), 0L, forged);
    component.Call(L"Constructor", forged, short{1}, short{0}, short{0});
    component.Call(L"LogEvent", L"\\n is no line end; \x01\x1b\x7f\x85\x2028\x2029\x202e\xfeff");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].at(Description), L"x\\r\\n2001-01-01T00:00:00.000\\tTest Program 4.5.6\\tforged");
    EXPECT_EQ(entries[1].size(), 12u);
    EXPECT_EQ(entries[1].at(DebugText), entries[0].at(Description));
    EXPECT_EQ(entries[2].at(Description),
              L"\\\\n is no line end; \\u0001\\u001B\\u007F\\u0085\\u2028\\u2029\\u202E\\uFEFF");
    const std::string bytes = BytesOf(Log.File());
    EXPECT_EQ(static_cast<size_t>(std::count(bytes.begin(), bytes.end(), '\n')), 3u);
}

TEST_F(BrvErrorLog, NoFieldHoldsALineThatWasNone) {
    const Object component = Component::MakeConstructed();
    component.Call(L"ErrorMessage", L"frmMain", L"Form_Load", MakeError(11, L"brvX", L"It failed"), 120L, L"more");
    const std::string bytes = BytesOf(Log.File());
    const std::wstring whole(bytes.begin(), bytes.end());  // a line of the log as it is, with its end
    ASSERT_EQ(L"\r\n", whole.substr(whole.size() - 2));
    size_t count = 1;
    for (const std::wstring& sequence : Breaks) {
        const std::wstring forged = L"before" + sequence + whole + sequence + L"after";
        for (int field = Module; field <= HelpContext; ++field) {
            std::vector<std::wstring> values(HelpContext + 1, L"plain");
            values[static_cast<size_t>(field)] = forged;
            auto* error = new DynamicObject;
            const Object held = Object::Attach(error);
            const auto give = [&](const wchar_t* name, Field from) {
                error->Define(name, [value = values[from]](const Arguments&) { return Variant(value); });
            };
            give(L"Number", Number);
            give(L"Source", Source);
            give(L"Description", Description);
            give(L"LastDllError", LastDllError);
            give(L"HelpFile", HelpFile);
            give(L"HelpContext", HelpContext);
            component.Call(L"ErrorMessage", values[Module], values[Routine], held, values[Line], values[DebugText]);
            const auto entries = Entries();
            ASSERT_EQ(++count, entries.size()) << "field " << field;
            const auto& entry = entries.back();
            ASSERT_EQ(static_cast<size_t>(HelpContext) + 1, entry.size()) << "field " << field;
            EXPECT_EQ(L"Test Program 4.5.6", entry[Program]);
            for (int at = Module; at <= HelpContext; ++at) {
                EXPECT_EQ(values[static_cast<size_t>(at)], Meant(entry[static_cast<size_t>(at)])) << "field " << at;
            }
        }
        const Object other = Component::Make();
        other.Call(L"Constructor", forged, forged, forged, forged);
        other.Call(L"LogEvent", forged);
        other.Call(L"Alert", forged, forged);
        const auto entries = Entries();
        ASSERT_EQ(count + 2, entries.size());
        for (; count < entries.size(); ++count) {
            ASSERT_EQ(7U, entries[count].size());
            EXPECT_EQ(forged + L" " + forged + L"." + forged + L"." + forged, Meant(entries[count][Program]));
            EXPECT_EQ(forged, Meant(entries[count][Description]));
        }
        EXPECT_EQ(0U, StrayUnits(Log.File()));
        // Before it is so long that it is put aside.
        DeleteFileW(Log.File().c_str());
        count = 0;
    }
}

TEST_F(BrvErrorLog, ALongTextIsCutWithoutLettingALineEndThrough) {
    const Object component = Component::MakeConstructed();
    for (const std::wstring& sequence : Breaks) {
        for (const size_t before : {32768 - 2, 32768 - 1, 32768}) {
            const std::wstring text = std::wstring(before, L'y') + sequence + L"2001-01-01T00:00:00.000\tforged\r\n";
            component.Call(L"LogEvent", text);
            const auto entries = Entries();
            ASSERT_EQ(1U, entries.size());
            ASSERT_EQ(7U, entries[0].size());
            EXPECT_EQ(text.substr(0, 32768) + L"...", Meant(entries[0][Description]));
            EXPECT_EQ(0U, StrayUnits(Log.File()));
            DeleteFileW(Log.File().c_str());
        }
    }
    // Nothing but line ends, each of which becomes several characters.
    component.Call(L"LogEvent", std::wstring(100000, L'\x2028'));
    component.Call(L"LogEvent", std::wstring(100000, L'\n'));
    const auto entries = Entries();
    ASSERT_EQ(2U, entries.size());
    EXPECT_EQ(std::wstring(32768, L'\x2028') + L"...", Meant(entries[0].at(Description)));
    EXPECT_EQ(std::wstring(32768, L'\n') + L"...", Meant(entries[1].at(Description)));
}

TEST_F(BrvErrorLog, IsUtf8) {
    const Object component = Component::MakeConstructed();
    component.Call(L"LogEvent", L"\xe9 \x4e2d \xd83d\xde00");
    const std::string bytes = BytesOf(Log.File());
    EXPECT_NE(bytes.find("\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x98\x80\r\n"), std::string::npos);
    // Half of a character cannot be written in UTF-8 and must not cost the entry.
    component.Call(L"LogEvent", L"half \xd83d.");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[1].at(Description).substr(0, 5), L"half ");
}

TEST_F(BrvErrorLog, CutsAnEndlessText) {
    const Object component = Component::MakeConstructed();
    component.Call(L"LogEvent", std::wstring(5000000, L'y'));
    component.Call(L"LogEvent", std::wstring(32767, L'y') + L"\xd83d\xde00");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].at(Description), std::wstring(32768, L'y') + L"...");
    EXPECT_EQ(entries[1].at(Description), std::wstring(32767, L'y') + L"...") << "not in the middle of a character";
}

TEST_F(BrvErrorLog, TakesWhateverComesForTheErrorAndTheOthers) {
    const Object component = Component::MakeConstructed();
    auto* empty = new DynamicObject;
    const Object held = Object::Attach(empty);
    auto* failing = new DynamicObject;
    const Object fails = Object::Attach(failing);
    for (const wchar_t* name : {L"Number", L"Source", L"Description", L"HelpFile", L"HelpContext", L"LastDllError"}) {
        failing->Define(name, [](const Arguments&) -> Variant { RaiseError(ErrorNumber::OutOfMemory); });
    }
    const std::vector<Variant> values = {Variant(),          Variant::Null(),  Variant::Missing(),
                                         Variant::Nothing(), Variant(L"text"), Variant(3L),
                                         Variant(held),      Variant(fails),   Variant::ArrayOf({Variant(1L)})};
    for (const Variant& value : values) {
        component.Call(L"ErrorMessage", L"m", L"r", value, 5L, L"debug");
        component.Call(L"ErrorMessage", value, value, value, value, value);
        component.Call(L"LogEvent", value);
        component.Call(L"Alert", value, value);
    }
    component.Call(L"ErrorMessage");
    component.Call(L"ErrorMessage", L"m");
    component.Call(L"LogEvent");
    component.Call(L"Alert");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), values.size() * 4 + 4);
    for (size_t at = 0; at < values.size(); ++at) {
        const auto& entry = entries[at * 4];
        ASSERT_EQ(entry.size(), 12u);
        EXPECT_EQ(entry[Module], L"m");
        EXPECT_EQ(entry[Number], L"");
        EXPECT_EQ(entry[Line], L"5");
        EXPECT_EQ(entry[DebugText], L"debug");
    }
}

TEST_F(BrvErrorLog, LooksThroughArgumentsByReference) {
    const Object component = Component::MakeConstructed();
    std::wstring module = L"m";
    std::wstring routine = L"r";
    Object error = MakeError(11, L"s", L"by reference");
    long line = 7;
    Variant debug(L"more");
    component.Call(L"ErrorMessage", ByRef(module), ByRef(routine), ByRef(error), ByRef(line), ByRef(debug));
    Variant asVariant(error);
    component.Call(L"ErrorMessage", ByRef(module), ByRef(routine), ByRef(asVariant), ByRef(line), ByRef(debug));
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 2u);
    for (const auto& entry : entries) {
        EXPECT_EQ(entry.at(Module), L"m");
        EXPECT_EQ(entry.at(Routine), L"r");
        EXPECT_EQ(entry.at(Number), L"11");
        EXPECT_EQ(entry.at(Line), L"7");
        EXPECT_EQ(entry.at(DebugText), L"more");
    }
}

TEST_F(BrvErrorLog, WorksBeforeConstructorAndWithAConstructorThatTellsNothing) {
    const Object component = Component::Make();
    component.Call(L"LogEvent", L"early");
    component.Call(L"Constructor");
    component.Call(L"LogEvent", L"still nameless");
    component.Call(L"Constructor", L"Name", Variant::Null(), Variant(), Variant::Missing());
    component.Call(L"LogEvent", L"named");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].at(Program), L"brvError");
    EXPECT_EQ(entries[1].at(Program), L"brvError");
    EXPECT_EQ(entries[2].at(Program), L"Name");
}

TEST_F(BrvErrorLog, LiesInTheUsersLocalApplicationData) {
    const EnvironmentValue none(L"BRVERROR_LOG", nullptr);
    wchar_t local[MAX_PATH];
    ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, local), S_OK);
    const std::wstring title = L"BrvErrorTest " + std::to_wstring(GetCurrentProcessId());
    const Object component = Component::Make();
    component.Call(L"Constructor", title, short{1}, short{0}, short{0});
    const std::wstring folder = std::wstring(local) + L"\\" + title;
    EXPECT_EQ(component.Get(L"LogFile").ToText(), folder + L"\\events.log");
    EXPECT_FALSE(FileExists(folder)) << "nothing is made before the first entry";
    component.Call(L"LogEvent", L"here");
    const auto entries = EntriesOf(folder + L"\\events.log");
    DeleteFileW((folder + L"\\events.log").c_str());
    EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].at(Description), L"here");
}

TEST_F(BrvErrorLog, StaysInItsFolderWhateverTheTitleHolds) {
    const EnvironmentValue none(L"BRVERROR_LOG", nullptr);
    wchar_t local[MAX_PATH];
    ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, local), S_OK);
    const auto folderFor = [&local](const std::wstring& title) {
        const Object component = Component::Make();
        component.Call(L"Constructor", title, short{1}, short{0}, short{0});
        const std::wstring file = component.Get(L"LogFile").ToText();
        const std::wstring front = std::wstring(local) + L"\\";
        const std::wstring back = L"\\events.log";
        EXPECT_EQ(file.substr(0, front.size()), front);
        EXPECT_EQ(file.substr(file.size() - back.size()), back);
        return file.substr(front.size(), file.size() - front.size() - back.size());
    };
    EXPECT_EQ(folderFor(L"..\\..\\elsewhere"), L".._.._elsewhere");
    EXPECT_EQ(folderFor(L"C:/windows"), L"C__windows");
    EXPECT_EQ(folderFor(L".."), L"brvError");
    EXPECT_EQ(folderFor(L"name. "), L"name");
    EXPECT_EQ(folderFor(L"a\x01"
                        L"b\"<>|*?"),
              L"a_b______");
    EXPECT_LE(folderFor(std::wstring(5000, L'n')).size(), 100u);
}

TEST_F(BrvErrorLog, TellsItsFile) {
    const Object component = Component::MakeConstructed();
    EXPECT_EQ(component.Get(L"LogFile").ToText(), Log.File());
}

TEST_F(BrvErrorLog, IsRotatedAboveAMegabyte) {
    const Object component = Component::MakeConstructed();
    WriteBytes(Log.File(), std::string(1024 * 1024 - 2, 'a') + "\r\n");
    component.Call(L"LogEvent", L"one more");
    EXPECT_FALSE(FileExists(Log.File(L"events.1.log"))) << "not above yet";
    ASSERT_EQ(Entries().size(), 2u);
    WriteBytes(Log.File(L"events.1.log"), "older\r\n");
    component.Call(L"LogEvent", L"fresh");
    const auto older = EntriesOf(Log.File(L"events.1.log"));
    ASSERT_EQ(older.size(), 2u) << "the file before takes the place of an older one";
    EXPECT_EQ(older[1].at(Description), L"one more");
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].at(Description), L"fresh");
}

TEST_F(BrvErrorLog, GoesOnWhereItCannotBeRotated) {
    const Object component = Component::MakeConstructed();
    WriteBytes(Log.File(), std::string(1024 * 1024, 'a') + "\r\n");
    // A reader that lets others write and does not let the file go.
    const HANDLE reader = CreateFileW(Log.File().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    component.Call(L"LogEvent", L"appended");
    CloseHandle(reader);
    EXPECT_FALSE(FileExists(Log.File(L"events.1.log")));
    EXPECT_EQ(Entries().size(), 2u);
}

TEST_F(BrvErrorLog, IsShared) {
    const Object component = Component::MakeConstructed();
    component.Call(L"LogEvent", L"first");
    const HANDLE other = CreateFileW(Log.File().c_str(), GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE) << "the component keeps no handle";
    component.Call(L"LogEvent", L"second");
    CloseHandle(other);
    EXPECT_EQ(Entries().size(), 2u);
}

TEST_F(BrvErrorLog, IsNoErrorWhenAnotherProgramLocksIt) {
    const Object component = Component::MakeConstructed();
    component.Call(L"LogEvent", L"first");
    const HANDLE other = CreateFileW(Log.File().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    EXPECT_NO_THROW(component.Call(L"LogEvent", L"lost"));
    CloseHandle(other);
    component.Call(L"LogEvent", L"third");
    EXPECT_EQ(Entries().size(), 2u);
}

TEST_F(BrvErrorLog, KeepsTheEntriesOfSeveralWritersWhole) {
    constexpr int Writers = 4;
    HANDLE threads[Writers];
    for (HANDLE& thread : threads) {
        thread = CreateThread(nullptr, 0, &WriteMany, nullptr, 0, nullptr);
        ASSERT_NE(thread, nullptr);
    }
    EXPECT_EQ(WaitForMultipleObjects(Writers, threads, TRUE, 60000), WAIT_OBJECT_0);
    for (const HANDLE thread : threads) CloseHandle(thread);
    const auto entries = Entries();
    EXPECT_EQ(entries.size(), static_cast<size_t>(Writers * EntriesEach));
    for (const auto& entry : entries) {
        ASSERT_EQ(entry.size(), 7u);
        ASSERT_EQ(entry[Description], std::wstring(500, L'z'));
    }
}
