#include <gtest/gtest.h>
#include <windows.h>

#include "host/demo/Console.h"
#include "SampleDatabase.h"
#include "support/Folder.h"

// The demonstration host as a program, run without its window. brvADO.dll must be registered, as ./test does it.
namespace {

struct Outcome {
    DWORD ExitCode = 0;
    std::wstring Output;  // standard output and standard error
};

std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    for (const wchar_t c : argument) {
        if (c == L'"') quoted += L'\\';
        quoted += c;
    }
    return quoted + L"\"";
}

Outcome RunDemo(const std::vector<std::wstring>& arguments) {
    wchar_t own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    const std::wstring folder = std::wstring(own).substr(0, std::wstring(own).find_last_of(L'\\') + 1);
    std::wstring command = Quoted(folder + L"kolvex-demo.exe");
    for (const std::wstring& argument : arguments) command += L" " + Quoted(argument);

    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    HANDLE read = nullptr, write = nullptr;
    if (!CreatePipe(&read, &write, &inheritable, 0)) throw std::runtime_error("no pipe");
    SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = write;
    PROCESS_INFORMATION process = {};
    const BOOL started =
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    CloseHandle(write);
    if (!started) {
        CloseHandle(read);
        throw std::runtime_error("kolvex-demo.exe could not be started");
    }
    std::string bytes;
    char part[4096];
    for (DWORD count = 0; ReadFile(read, part, sizeof part, &count, nullptr) && count;) bytes.append(part, count);
    CloseHandle(read);
    Outcome outcome;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &outcome.ExitCode);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    outcome.Output = FromUtf8(bytes);
    return outcome;
}

Outcome RunSql(const std::wstring& sql, std::vector<std::wstring> more = {}) {
    std::vector<std::wstring> arguments = {L"--connect", SampleConnectionString(), L"--no-editor", L"--sql", sql};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunDemo(arguments);
}

bool Contains(const Outcome& outcome, const wchar_t* part) { return outcome.Output.find(part) != std::wstring::npos; }

TEST(KolvexDemo, ShowsItsOptions) {
    const Outcome help = RunDemo({L"--help"});
    EXPECT_EQ(help.ExitCode, 0u);
    EXPECT_TRUE(Contains(help, L"--max-rows"));
    EXPECT_EQ(RunDemo({}).ExitCode, 4u);
    EXPECT_EQ(RunDemo({L"--nonsense"}).ExitCode, 4u);
}

TEST(KolvexDemo, PrintsRowsInUtf8) {
    const Outcome outcome = RunSql(
        L"select name, currency from country where code in ('JP', 'DE') order by code; select count(*) as n from "
        L"survey");
    EXPECT_EQ(outcome.ExitCode, 0u);
    EXPECT_TRUE(Contains(outcome, L"name        | currency\n------------+---------\nDeutschland | EUR\n日本"));
    EXPECT_TRUE(Contains(outcome, L"  n\n---\n240\n(1 row)\n"));
}

TEST(KolvexDemo, StopsAtMaxRows) {
    EXPECT_TRUE(Contains(RunSql(L"select * from survey", {L"--max-rows", L"7"}), L"(7 rows shown, there are more"));
    EXPECT_TRUE(Contains(RunSql(L"select * from survey", {L"--max-rows", L"240"}), L"(240 rows)"));
    EXPECT_TRUE(Contains(RunSql(L"select * from survey", {L"--max-rows", L"0"}), L"(240 rows)"));
}

TEST(KolvexDemo, StopsAtAFailingStatement) {
    const Outcome outcome = RunSql(L"select 'first'; select * from no_such_table; select 'third'");
    EXPECT_EQ(outcome.ExitCode, 1u);
    EXPECT_TRUE(Contains(outcome, L"first"));
    EXPECT_TRUE(Contains(outcome, L"Statement 2 failed:"));
    EXPECT_TRUE(Contains(outcome, L"SQLSTATE"));
    EXPECT_FALSE(Contains(outcome, L"third"));
    EXPECT_TRUE(Contains(outcome, L"\n1 statement behind it not run."));
    EXPECT_TRUE(Contains(RunSql(L"nonsense; select 2; select 3"), L"\n2 statements behind it not run."));
    EXPECT_FALSE(Contains(RunSql(L"nonsense"), L"not run"));
}

TEST(KolvexDemo, TellsWhatAStatementWithoutRowsHasDone) {
    // In memory: nothing of it is left.
    const auto run = [](const std::wstring& sql) {
        return RunDemo({L"--connect", L"Driver=SQLite3;Database=:memory:", L"--no-editor", L"--sql", sql});
    };
    const Outcome outcome =
        run(L"create table t (a integer); insert into t values (1); insert into t values (2), (3); select a from t");
    EXPECT_EQ(outcome.ExitCode, 0u);
    EXPECT_TRUE(Contains(outcome, L"-- Statement 2\nDone, 1 row changed.\n")) << testing::PrintToString(outcome.Output);
    EXPECT_TRUE(Contains(outcome, L"-- Statement 3\nDone, 2 rows changed.\n"));
    EXPECT_TRUE(Contains(outcome, L"(3 rows)\n"));
    EXPECT_TRUE(Contains(run(L"-- nothing"), L"There is no statement to run.\n"));
}

// The server repeats a name of the statement in its error text; a terminal would obey it.
TEST(KolvexDemo, TellsNothingThatATerminalObeys) {
    const Outcome outcome = RunSql(
        L"select * from \"no\x1b[31m\x9b"
        L"2J\x07such\"");
    EXPECT_EQ(outcome.ExitCode, 1u);
    EXPECT_TRUE(Contains(outcome, L"no\xB7[31m")) << testing::PrintToString(outcome.Output);
    for (const wchar_t c : {L'\x1b', L'\x9b', L'\x07'}) EXPECT_EQ(outcome.Output.find(c), std::wstring::npos);
}

TEST(KolvexDemo, SaysThatItCannotConnect) {
    const Outcome outcome =
        RunDemo({L"--connect", L"Driver=SQLite3;NoCreat=1;Database=/no/such/folder/x.db", L"--no-editor"});
    EXPECT_EQ(outcome.ExitCode, 2u);
    EXPECT_TRUE(Contains(outcome, L"No connection to the database:"));
}

TEST(KolvexDemo, WritesCsv) {
    const Folder here;
    const std::wstring path = here / L"a.csv";
    const Outcome outcome =
        RunSql(L"select weekday, \"from\" as \"from, local\" from opening_hours where weekday < 3 order by 1",
               {L"--csv", path});
    EXPECT_EQ(outcome.ExitCode, 0u);
    EXPECT_EQ(BytesOf(path), "\xEF\xBB\xBFweekday,\"from, local\"\r\n1,\r\n2,09:30\r\n");
    EXPECT_TRUE(Contains(outcome, (L"Wrote 2 rows to " + path).c_str()));
    // The second statement's go beside it, no more of them than are wanted.
    RunSql(L"select 1 as a; select weekday from opening_hours order by 1", {L"--csv", path, L"--max-rows", L"2"});
    EXPECT_EQ(BytesOf(path),
              "\xEF\xBB\xBF"
              "a\r\n1\r\n");
    EXPECT_EQ(BytesOf(here / L"a-2.csv"), "\xEF\xBB\xBFweekday\r\n1\r\n2\r\n");
    const Outcome refused = RunSql(L"select 1", {L"--csv", here / L"no such folder\\a.csv"});
    EXPECT_EQ(refused.ExitCode, 1u);
    EXPECT_TRUE(Contains(refused, L"could not be written: "));
}

TEST(KolvexDemo, SaysThatTheSqlFileIsMissing) {
    const Outcome outcome = RunSql(L"@Z:\\no such folder\\x.sql");
    EXPECT_EQ(outcome.ExitCode, 4u);
    EXPECT_TRUE(Contains(outcome, L"cannot be read"));
}

}  // namespace
