#include <gtest/gtest.h>

#include <stdexcept>

#include "automation/App.h"
#include "host/database/Resources.h"
#include "SampleDatabase.h"

namespace App {
const wchar_t* const Title = L"host_tests";
const short Major = 1;
const short Minor = 0;
const short Revision = 0;
}  // namespace App

std::wstring SampleConnectionString() {
    wchar_t path[1024] = {};
    const DWORD length = GetEnvironmentVariableW(L"BRV_SHOP_DB", path, 1024);
    if (length == 0 || length >= 1024) {
        throw std::runtime_error("BRV_SHOP_DB must name the sample database made from host/demo/shop.sql");
    }
    return std::wstring(L"Driver=SQLite3;StepAPI=1;NoCreat=1;Database=") + path;
}

std::shared_ptr<Session> OpenSample() { return std::make_shared<Session>(SampleConnectionString(), 5); }

std::shared_ptr<Session> OpenEmpty() { return std::make_shared<Session>(L"Driver=SQLite3;Database=:memory:", 5); }

Object CreateDatabaseObject() {
    static const HMODULE module = LoadLibraryExW(L"brvADO.dll", nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR);
    const CLSID id = {0xd4c3f42a, 0x48df, 0x4a7d, {0x90, 0xb6, 0xc6, 0x49, 0x2e, 0xf9, 0x07, 0x04}};
    using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    if (!module) throw std::runtime_error("brvADO.dll cannot be loaded");
    const auto get =
        reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    IClassFactory* factory = nullptr;
    CheckHresult(get(id, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    IDispatch* object = nullptr;
    const HRESULT created = factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object));
    factory->Release();
    CheckHresult(created);
    return Object::Attach(object);
}

Object OpenDatabaseObject() {
    Object database = CreateDatabaseObject();
    database.Call(L"Open", SampleConnectionString());
    return database;
}

HWND ShownTableDialog() {
    HWND shown = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM found) WINAPI -> BOOL {
            if (IsWindowVisible(window) && GetDlgItem(window, IDC_PREVIEW) != nullptr)
                *reinterpret_cast<HWND*>(found) = window;
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&shown));
    return shown;
}

void RunSql(Session& session, const std::wstring& sql) {
    Odbc::Statement statement(*session.Live());
    statement.Execute(sql);
}

int main(int count, char** values) {
    testing::InitGoogleTest(&count, values);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
