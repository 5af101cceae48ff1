#include "host/demo/Options.h"

#include <windows.h>

#include <memory>

#include "host/demo/Console.h"

namespace {

constexpr LONGLONG largestFile = 64 << 20;

bool ReadCount(const std::wstring& text, long& count) {
    if (text.empty() || text.size() > 9 || text.find_first_not_of(L"0123456789") != std::wstring::npos) return false;
    count = wcstol(text.c_str(), nullptr, 10);
    return true;
}

struct CloseFile {
    void operator()(HANDLE file) const { CloseHandle(file); }
};

}  // namespace

std::wstring ReadOptions(const std::vector<std::wstring>& arguments, Options& options) {
    for (size_t i = 0; i < arguments.size(); ++i) {
        std::wstring name = arguments[i];
        std::optional<std::wstring> value;
        if (const size_t equals = name.find(L'='); name.starts_with(L"--") && equals != std::wstring::npos) {
            value = name.substr(equals + 1);
            name.resize(equals);
        }
        if (name == L"--help" || name == L"-h" || name == L"/?") {
            options.Help = true;
            return {};
        }
        if (name == L"--no-editor") {
            options.Editor = false;
            continue;
        }
        if (name == L"--sample") {
            options.Sample = true;
            continue;
        }
        if (name == L"--unregistered") {
            options.Unregistered = true;
            continue;
        }
        if (name != L"--connect" && name != L"--sql" && name != L"--csv" && name != L"--max-rows") {
            return L"Unknown option: " + arguments[i];
        }
        if (!value) {
            if (i + 1 == arguments.size()) return name + L" needs a value.";
            value = arguments[++i];
        }
        if (name == L"--connect") options.Connect = *value;
        if (name == L"--sql") options.Sql = *value;
        if (name == L"--csv") options.Csv = *value;
        if (name == L"--max-rows") {
            long count = 0;
            if (!ReadCount(*value, count)) return L"--max-rows needs a whole number, 0 for no limit: " + *value;
            options.MaxRows = count;
        }
    }
    if (options.Sample && !options.Connect.empty()) return L"--sample and --connect are two databases: which one?";
    if (options.Connect.empty() && !options.Sample) return L"--connect is missing: which database?";
    return {};
}

const wchar_t* HelpText() {
    return LR"(kolvex-demo: opens the SQL Editor over a database, then runs the SQL that comes back and shows its rows.

  --connect "STRING"   the ODBC connection string, for example
                         "Driver=SQLite3;Database=C:\data\shop.db;StepAPI=1"
                         "DSN=sales;UID=anna;PWD=secret"
  --sample             instead of a connection: the tables of a sample shop without a database, whose SQL cannot be run
  --sql TEXT|@FILE     the SQL to begin with; @FILE reads it from a file in UTF-8
  --csv FILE           writes the rows to a CSV file instead of showing them; the rows of a second
                       statement go to FILE with "-2" before its extension, and so on
  --max-rows N         shows at most N rows of each statement, 0 for all; 100 when left out, all with --csv
  --no-editor          runs the SQL at once, without the window
  --unregistered       takes the components from the manifests that lie beside this program, not from the registry
  --help               shows this

Exit code: 0 all went well, 1 a statement failed or the CSV file could not be written, 2 no connection to the
database, 3 a component is not registered or failed, 4 the options are wrong.
)";
}

std::optional<std::wstring> ReadTextFile(const std::wstring& path, std::wstring& failure) {
    HANDLE opened = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        failure = SystemMessage(GetLastError());
        return std::nullopt;
    }
    const std::unique_ptr<void, CloseFile> file(opened);
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.get(), &size) || size.QuadPart > largestFile) {
        failure = L"the file is too large";
        return std::nullopt;
    }
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        failure = SystemMessage(GetLastError());
        return std::nullopt;
    }
    bytes.resize(read);
    if (bytes.starts_with("\xFF\xFE")) {
        return std::wstring(reinterpret_cast<const wchar_t*>(bytes.data() + 2), bytes.size() / 2 - 1);
    }
    return FromUtf8(bytes.starts_with("\xEF\xBB\xBF") ? std::string_view(bytes).substr(3) : std::string_view(bytes));
}
