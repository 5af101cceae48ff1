// The demonstration host: what a spreadsheet's database add-in does with the SQL Editor, as a console program.

#include <windows.h>
#include <ole2.h>

#include <algorithm>
#include <optional>

#include "automation/App.h"
#include "automation/HostCollection.h"
#include "automation/Object.h"
#include "automation/RuntimeError.h"
#include "automation/Version.h"
#include "host/demo/Console.h"
#include "host/demo/Csv.h"
#include "host/demo/Options.h"
#include "host/demo/Sample.h"
#include "host/demo/StatementSplitter.h"
#include "host/demo/TablePrinter.h"
#include "host/demo/Unregistered.h"

namespace App {
const wchar_t* const Title = L"kolvex-demo";
const short Major = BRV_VERSION_MAJOR;
const short Minor = BRV_VERSION_MINOR;
const short Revision = BRV_VERSION_REVISION;
}  // namespace App

namespace {

enum ExitCode { AllWell = 0, StatementFailed = 1, NoConnection = 2, ComponentFailed = 3, WrongOptions = 4 };

constexpr long rowsToShow = 100;
constexpr size_t widestColumn = 48;

// Line ends of the editor and of error texts as this program prints them.
std::wstring WithPlainLineEnds(std::wstring text) {
    std::erase(text, L'\r');
    return text;
}

void PrintFailure(const std::wstring& what, const RuntimeError& error) {
    Console::PrintError(what + WithPlainLineEnds(error.Description) + L"\n");
}

// Where a portable zip has the editor, seen from the folder of this program.
const std::vector<std::wstring> EditorFolders = {sizeof(void*) == 8 ? L"..\\..\\x64" : L"..\\..\\x86"};

class OleSession {
public:
    OleSession() { CheckHresult(OleInitialize(nullptr)); }
    ~OleSession() { OleUninitialize(); }
    OleSession(const OleSession&) = delete;
    OleSession& operator=(const OleSession&) = delete;
};

// What to begin with when the user gave no SQL: the sample database's best-sellers, else the first table that there is.
std::wstring DefaultSql(const Object& database) {
    const Object dictionary = database.Get(L"Dictionary").ToObject();
    const auto first = [&](long type, const wchar_t* name) {
        std::wstring found;
        HostCollection(dictionary.Get(L"Objects", type, Variant::Null(), name, false))
            .ForEach([&](const Variant& item) {
                found = item.ToText();
                return false;
            });
        return found;
    };
    try {
        if (!first(2, L"best_sellers").empty()) {
            return L"-- The best-selling products. Change this, then choose \"Return SQL to Kolvex\".\r\n"
                   L"SELECT p.sku, p.name, p.price, b.sold\r\n"
                   L"FROM best_sellers AS b JOIN product AS p ON p.sku = b.sku\r\n"
                   L"ORDER BY b.sold DESC\r\n"
                   L"LIMIT 10;\r\n";
        }
        const std::wstring table = first(1, L"");
        if (!table.empty()) return L"SELECT * FROM " + database.Get(L"FormatName", table).ToText() + L";\r\n";
    } catch (const RuntimeError&) {
        // A database whose dictionary cannot be read can be queried all the same.
    }
    return {};
}

// Shows the editor; false when it could not be used.
bool Edit(const Object& database, const Options& options, std::wstring& sql) {
    Object editor;
    try {
        std::optional<UnregisteredClasses> classes;
        if (options.Unregistered) classes.emplace(L"brvSQLEditor.X.manifest", EditorFolders);
        editor = Object::Create(L"brvSQLEditor.clsSQLEditor");
    } catch (...) {
        PrintFailure(options.Unregistered
                         ? L"The SQL Editor (brvSQLEditor.clsSQLEditor) cannot be made:\n"
                         : L"The SQL Editor (brvSQLEditor.clsSQLEditor) is not registered on this computer, or "
                           L"its DLL cannot be loaded:\n",
                     CurrentError());
        return false;
    }
    try {
        editor.Call(L"Constructor", database);
        editor.Call(L"Display", ByRef(sql));
        editor.Call(L"Destructor");
    } catch (...) {
        PrintFailure(L"The SQL Editor failed:\n", CurrentError());
        return false;
    }
    return true;
}

// "rows.csv", "rows-2.csv", ...
std::wstring NumberedPath(const std::wstring& path, int number) {
    if (number == 1) return path;
    const size_t name = path.find_last_of(L"\\/:") == std::wstring::npos ? 0 : path.find_last_of(L"\\/:") + 1;
    size_t point = path.rfind(L'.');
    if (point == std::wstring::npos || point <= name) point = path.size();
    return path.substr(0, point) + L"-" + std::to_wstring(number) + path.substr(point);
}

std::vector<std::optional<std::wstring>> Texts(const Variant& row) {
    std::vector<std::optional<std::wstring>> texts;
    for (const Variant& value : row.ToArray()) {
        if (value.IsNull()) {
            texts.emplace_back();
        } else {
            texts.emplace_back(value.ToText());
        }
    }
    return texts;
}

class Runner {
public:
    Runner(Object database, const Options& options) : database_(std::move(database)), options_(options) {
        limit_ = options.MaxRows.value_or(options.Csv.empty() ? rowsToShow : 0);
    }
    // Runs the statements until one fails.
    bool Run(const std::vector<std::wstring>& statements) {
        for (size_t i = 0; i < statements.size(); ++i) {
            if (statements.size() > 1) Console::Print(L"\n-- Statement " + std::to_wstring(i + 1) + L"\n");
            try {
                if (RunOne(statements[i])) continue;
            } catch (...) {
                PrintFailure(L"Statement " + std::to_wstring(i + 1) + L" failed: ", CurrentError());
            }
            const size_t left = statements.size() - i - 1;
            if (left)
                Console::PrintError(std::to_wstring(left) + (left == 1 ? L" statement" : L" statements") +
                                    L" behind it not run.\n");
            return false;
        }
        return true;
    }

private:
    bool RunOne(const std::wstring& statement) {
        // One row more than is shown tells whether there are more.
        const Object rows = database_.Call(L"Execute", statement, limit_ ? limit_ + 1 : 0).ToObject();
        const long count = rows.Get(L"FieldCount").ToLong();
        if (count == 0) {
            const long changed = rows.Get(L"RowsAffected").ToLong();
            Console::Print(changed >= 0 ? L"Done, " + std::to_wstring(changed) + (changed == 1 ? L" row" : L" rows") +
                                              L" changed.\n"
                                        : L"Done.\n");
            return true;
        }
        std::vector<TablePrinter::Column> columns;
        for (long i = 0; i < count; ++i)
            columns.push_back({rows.Get(L"FieldName", i).ToText(), IsNumber(rows.Get(L"FieldType", i).ToLong())});
        return options_.Csv.empty() ? Show(rows, std::move(columns)) : WriteCsv(rows, columns);
    }

    static bool IsNumber(long odbcType) {
        // NUMERIC to DOUBLE, BIGINT, TINYINT
        return (odbcType >= 2 && odbcType <= 8) || odbcType == -5 || odbcType == -6;
    }

    bool Show(const Object& rows, std::vector<TablePrinter::Column> columns) {
        TablePrinter table(std::move(columns), widestColumn, [](const std::wstring& line) { Console::Print(line); });
        long shown = 0;
        bool more = false;
        for (;;) {
            // The texts may be shortened where they come from: a value of megabytes is never needed whole.
            const Variant row = rows.Call(L"NextRowText", static_cast<long>(4 * widestColumn));
            if (row.IsNull()) break;
            if (limit_ && shown == limit_) {
                more = true;
                break;
            }
            table.Add(Texts(row));
            ++shown;
        }
        table.Finish();
        Console::Print(L"(" + std::to_wstring(shown) + (shown == 1 ? L" row" : L" rows") +
                       (more ? L" shown, there are more: --max-rows)\n" : L")\n"));
        return true;
    }

    bool WriteCsv(const Object& rows, const std::vector<TablePrinter::Column>& columns) {
        const std::wstring path = NumberedPath(options_.Csv, ++files_);
        CsvFile file(path);
        std::vector<std::optional<std::wstring>> heading;
        heading.reserve(columns.size());
        for (const TablePrinter::Column& column : columns) heading.emplace_back(column.Name);
        bool good = file.Write(heading);
        long written = 0;
        while (good && (!limit_ || written < limit_)) {
            const Variant row = rows.Call(L"NextRowText");
            if (row.IsNull()) break;
            good = file.Write(Texts(row));
            ++written;
        }
        if (!good || !file.Close()) {
            Console::PrintError(L"The file " + path + L" could not be written: " + file.Failure() + L"\n");
            return false;
        }
        Console::Print(L"Wrote " + std::to_wstring(written) + (written == 1 ? L" row" : L" rows") + L" to " + path +
                       L"\n");
        return true;
    }

    Object database_;
    const Options& options_;
    long limit_;
    int files_ = 0;
};

ExitCode Connect(const Options& options, Object& database) {
    if (options.Sample) {
        database = MakeSampleConnection();
        return AllWell;
    }
    try {
        std::optional<UnregisteredClasses> classes;
        if (options.Unregistered) classes.emplace(L"brvADO.X.manifest");
        database = Object::Create(L"brvADO.Database");
    } catch (...) {
        PrintFailure(options.Unregistered ? L"The database component (brvADO.Database) cannot be made:\n"
                                          : L"The database component (brvADO.Database) is not registered on this "
                                            L"computer, or its DLL cannot be loaded:\n",
                     CurrentError());
        return ComponentFailed;
    }
    try {
        database.Call(L"Open", options.Connect);
    } catch (...) {
        PrintFailure(L"No connection to the database:\n", CurrentError());
        return NoConnection;
    }
    return AllWell;
}

int Run(const Options& options) {
    const OleSession ole;
    // The editor makes the error component itself, while one of its members is called: the host's context is active
    // then.
    std::optional<UnregisteredClasses> errorClass;
    if (options.Unregistered) errorClass.emplace(L"brvError.X.manifest");
    Object database;
    if (const ExitCode failed = Connect(options, database)) return failed;
    Console::Print(L"Connected: " + database.Get(L"DBTypeName", database.Get(L"DBType")).ToText() + L"\n");

    std::wstring sql;
    if (!options.Sql) {
        sql = DefaultSql(database);
    } else if (options.Sql->starts_with(L"@")) {
        std::wstring failure;
        const std::optional<std::wstring> text = ReadTextFile(options.Sql->substr(1), failure);
        if (!text) {
            Console::PrintError(L"The file " + options.Sql->substr(1) + L" cannot be read: " + failure + L"\n");
            return WrongOptions;
        }
        sql = *text;
    } else {
        sql = *options.Sql;
    }

    if (options.Editor) {
        if (!Edit(database, options, sql)) return ComponentFailed;
        Console::Print(L"SQL from the editor:\n" + WithPlainLineEnds(sql) + (sql.ends_with(L"\n") ? L"" : L"\n"));
    }
    if (options.Sample) {
        Console::Print(L"The sample has no database behind it, so this SQL was not run. --connect runs it on yours.\n");
        return AllWell;
    }
    const std::vector<std::wstring> statements = SplitStatements(sql, database.Get(L"DBType").ToLong());
    if (statements.empty()) Console::Print(L"There is no statement to run.\n");
    return Runner(database, options).Run(statements) ? AllWell : StatementFailed;
}

}  // namespace

int wmain(int count, wchar_t** values) {
    try {
        Options options;
        const std::wstring wrong =
            ReadOptions(std::vector<std::wstring>(values + std::min(count, 1), values + count), options);
        if (!wrong.empty()) {
            Console::PrintError(wrong + L"\nkolvex-demo --help tells what there is.\n");
            return WrongOptions;
        }
        if (options.Help) {
            Console::Print(HelpText());
            return AllWell;
        }
        return Run(options);
    } catch (...) {
        PrintFailure(L"kolvex-demo failed: ", CurrentError());
        return ComponentFailed;
    }
}
