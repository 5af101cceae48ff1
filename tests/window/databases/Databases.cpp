#include "Databases.h"

namespace {

std::wstring FromEnvironment(const wchar_t* name) {
    std::wstring value(32767, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    EXPECT_FALSE(value.empty()) << "the environment has no " << std::string(name, name + wcslen(name))
                                << ": run the tests by ./test";
    return value;
}

}  // namespace

RealDatabase::RealDatabase(const std::wstring& connection) : host_(Object::Create(L"brvADO.Database")) {
    host_.Call(L"Open", connection);
}

void RealDatabase::Run(const std::vector<std::wstring>& statements) {
    for (const std::wstring& statement : statements) {
        std::wstring failure;
        EXPECT_TRUE(Takes(statement, failure))
            << std::string(statement.begin(), statement.end()) << ": " << std::string(failure.begin(), failure.end());
    }
}

bool RealDatabase::Takes(const std::wstring& statement, std::wstring& failure) {
    try {
        const Object rows = host_.Call(L"Execute", statement).ToObject();
        // Some drivers find out while they fetch.
        if (rows.Get(L"FieldCount").ToLong() > 0) rows.Call(L"NextRow");
        rows.Call(L"Close");
        return true;
    } catch (const RuntimeError& error) {
        failure = error.Description;
        return false;
    }
}

std::vector<std::wstring> RealDatabase::FirstRow(const std::wstring& query) {
    const Object rows = host_.Call(L"Execute", query).ToObject();
    const Variant row = rows.Call(L"NextRow");
    std::vector<std::wstring> values;
    if (!row.IsNull()) {
        for (const Variant& value : row.ToArray())
            values.push_back(value.IsNull() ? std::wstring(L"<null>") : value.ToText());
    }
    rows.Call(L"Close");
    return values;
}

std::wstring SampleShop() { return L"Driver=SQLite3;Database=" + FromEnvironment(L"BRV_SHOP_DB"); }

std::wstring PostgresServer() { return FromEnvironment(L"BRV_PG"); }

std::wstring MariaDbServer() { return FromEnvironment(L"BRV_MARIADB"); }

ScratchFile::ScratchFile() {
    const std::wstring shop = FromEnvironment(L"BRV_SHOP_DB");
    // Beside the sample, where the driver, a program of the system, finds it by the system's own name.
    unixPath_ = shop.substr(0, shop.find_last_of(L'/') + 1) + L"scratch-" + std::to_wstring(GetCurrentProcessId()) +
                L"-" + std::to_wstring(GetTickCount64()) + L".db";
    path_ = L"Z:" + unixPath_;
}

ScratchFile::~ScratchFile() { DeleteFileW(path_.c_str()); }

std::wstring ScratchFile::Connection() const { return L"Driver=SQLite3;Database=" + unixPath_; }

void SwitchPostgres(const wchar_t* what) {
    const std::wstring file = FromEnvironment(L"BRV_PG_SWITCH") + L"\\" + what;
    CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    for (int tenths = 0; tenths < 300 && GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES; ++tenths)
        Sleep(100);
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(file.c_str())) << "nobody switches the server";
}

void DatabasesFixture::Inside(RealDatabase& database, const std::function<void()>& work) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", database.Host());
    DisplayAndClose(editor, L"", work);
}

void DatabasesFixture::OpenSchema(const wchar_t* schema) {
    Tree.Open(Tree.At({}));
    Tree.Open(Tree.Named(Tree.At({}), schema));
    Tree.Open(Folder(schema, L"Tables"));
    Tree.Open(Folder(schema, L"Views"));
}

HTREEITEM DatabasesFixture::Folder(const wchar_t* schema, const wchar_t* folder) const {
    return Tree.Named(Tree.Named(Tree.At({}), schema), folder);
}
