// Opens the SQL Editor late-bound, by IDispatch, and prints the SQL that comes back.
//   late_bound ["ODBC connection string" ["SQL"]]
// With Microsoft's compiler: cl /EHsc /std:c++17 /DUNICODE /D_UNICODE late_bound.cpp ole32.lib oleaut32.lib uuid.lib
// odbc32.lib

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include <cstdio>
#include <cwchar>
#include <memory>

#include "odbc_database.h"

namespace {

// Calls a member by its name with one argument or none. What the member hands back in `argument` stays there.
HRESULT Call(IDispatch* object, const wchar_t* name, VARIANT* argument = nullptr) {
    DISPID id = 0;
    auto* text = const_cast<OLECHAR*>(name);
    const HRESULT known = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(known)) return known;
    DISPPARAMS parameters{argument, nullptr, argument != nullptr ? 1u : 0u, 0};
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
}

IDispatch* CreateEditor() {
    CLSID id;
    IDispatch* object = nullptr;
    HRESULT result = CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id);
    if (SUCCEEDED(result))
        result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&object));
    if (result == CO_E_CLASSSTRING || result == REGDB_E_CLASSNOTREG)
        std::fwprintf(stderr, L"brvSQLEditor is not registered for programs of this width (0x%08lX)\n",
                      static_cast<unsigned long>(result));
    else if (FAILED(result))
        std::fwprintf(stderr, L"brvSQLEditor cannot be made: 0x%08lX\n", static_cast<unsigned long>(result));
    return object;
}

// Shows the window; `sql` is the text before and after.
HRESULT Edit(IDispatch* editor, IDispatch* database, BSTR* sql) {
    VARIANT argument;
    argument.vt = VT_DISPATCH;  // null: no connection
    argument.pdispVal = database;
    HRESULT result = Call(editor, L"Constructor", &argument);
    if (SUCCEEDED(result)) {
        argument.vt = VT_BYREF | VT_BSTR;
        argument.pbstrVal = sql;
        result = Call(editor, L"Display", &argument);
    }
    const HRESULT ended = Call(editor, L"Destructor");  // whatever came of it
    return FAILED(result) ? result : ended;
}

int Run(const wchar_t* connection, const wchar_t* text) {
    std::shared_ptr<example::OdbcDatabase> database;
    if (connection != nullptr) database = std::make_shared<example::OdbcDatabase>(connection);
    IDispatch* editor = CreateEditor();
    if (editor == nullptr) return 1;
    IDispatch* object = database ? database->Object() : nullptr;
    BSTR sql = SysAllocString(text);
    const HRESULT result = Edit(editor, object, &sql);
    if (SUCCEEDED(result))
        std::wprintf(L"%ls\n", sql != nullptr ? sql : L"");
    else
        std::fwprintf(stderr, L"The SQL Editor failed: 0x%08lX\n", static_cast<unsigned long>(result));
    SysFreeString(sql);
    editor->Release();
    if (object != nullptr) object->Release();
    return SUCCEEDED(result) ? 0 : 1;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    OleInitialize(nullptr);  // a single-threaded apartment
    int code = 1;
    try {
        code = Run(count > 1 ? arguments[1] : nullptr, count > 2 ? arguments[2] : L"SELECT 1");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The database cannot be used: %s\n", error.what());
    }
    OleUninitialize();
    return code;
}
