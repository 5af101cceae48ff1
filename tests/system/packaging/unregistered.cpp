#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <cstdio>
#include <cwchar>

// Makes the component by its name where nothing is registered: the manifest beside this program tells where it is.
// Prints the file that was loaded. Exit code 1 when a step fails.
int wmain() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CLSID id;
    HRESULT result = CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id);
    IDispatch* editor = nullptr;
    if (SUCCEEDED(result)) {
        result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&editor));
    }
    if (FAILED(result)) {
        std::fwprintf(stderr, L"not made: 0x%08lX\n", static_cast<unsigned long>(result));
        return 1;
    }
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(GetModuleHandleW(L"brvSQLEditor.dll"), path, MAX_PATH);
    std::wprintf(L"%ls\n", path);
    OLECHAR member[] = L"Destructor";
    OLECHAR* name = member;
    DISPID call = 0;
    result = editor->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &call);
    DISPPARAMS none{};
    if (SUCCEEDED(result)) {
        result = editor->Invoke(call, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
    }
    editor->Release();
    return SUCCEEDED(result) ? 0 : 1;
}
