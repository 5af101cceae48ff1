// Opens the SQL Editor late-bound, by IDispatch, and prints the SQL that comes back.
//   late_bound ["ODBC connection string" ["SQL"]]

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include <cstdio>
#include <cwchar>

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

IDispatch* Create(const wchar_t* name) {
    CLSID id;
    IDispatch* object = nullptr;
    if (SUCCEEDED(CLSIDFromProgID(name, &id)))
        CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&object));
    if (object == nullptr)
        std::fwprintf(stderr, L"%ls cannot be made: is it registered for programs of this width?\n", name);
    return object;
}

// Opens the connection. An add-in has a connection object of its own; this one comes with the editor's source code.
IDispatch* OpenDatabase(const wchar_t* connection) {
    IDispatch* database = Create(L"brvADO.Database");
    if (database == nullptr) return nullptr;
    VARIANT text;
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(connection);
    const HRESULT opened = Call(database, L"Open", &text);
    VariantClear(&text);
    if (FAILED(opened)) {
        database->Release();
        return nullptr;
    }
    return database;
}

// Shows the window; `sql` is the text before and after.
HRESULT Edit(IDispatch* editor, IDispatch* database, BSTR* sql) {
    VARIANT argument;
    argument.vt = VT_DISPATCH;  // null: no connection
    argument.pdispVal = database;
    HRESULT result = Call(editor, L"Constructor", &argument);
    if (FAILED(result)) return result;
    argument.vt = VT_BYREF | VT_BSTR;
    argument.pbstrVal = sql;
    result = Call(editor, L"Display", &argument);
    if (FAILED(result)) return result;
    return Call(editor, L"Destructor");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    OleInitialize(nullptr);  // a single-threaded apartment
    IDispatch* database = nullptr;
    if (count > 1 && (database = OpenDatabase(arguments[1])) == nullptr) return 1;
    IDispatch* editor = Create(L"brvSQLEditor.clsSQLEditor");
    if (editor == nullptr) return 1;
    BSTR sql = SysAllocString(count > 2 ? arguments[2] : L"SELECT 1");
    const HRESULT result = Edit(editor, database, &sql);
    if (SUCCEEDED(result)) std::wprintf(L"%ls\n", sql != nullptr ? sql : L"");
    SysFreeString(sql);
    editor->Release();
    if (database != nullptr) database->Release();
    OleUninitialize();
    return SUCCEEDED(result) ? 0 : 1;
}
