#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <cstdio>
#include <string>

// A host that uses the component without registration: beside MANIFEST SQL shows SQL in the window of the component
// that the manifest describes, and prints what has become of it. Exit code 1 when a step fails.
namespace {

HRESULT Call(IDispatch* editor, const wchar_t* member, VARIANT argument) {
    std::wstring text = member;
    OLECHAR* name = text.data();
    DISPID id = 0;
    const HRESULT known = editor->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(known)) return known;
    DISPPARAMS arguments{&argument, nullptr, 1, 0};
    return editor->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &arguments, nullptr, nullptr, nullptr);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 3) return 1;
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.lpSource = arguments[1];
    const HANDLE context = CreateActCtxW(&request);
    ULONG_PTR cookie = 0;
    if (context == INVALID_HANDLE_VALUE || !ActivateActCtx(context, &cookie)) return 1;
    CLSID id;
    IDispatch* editor = nullptr;
    HRESULT result = CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id);
    if (SUCCEEDED(result)) {
        result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&editor));
    }
    DeactivateActCtx(0, cookie);
    if (FAILED(result)) {
        std::fwprintf(stderr, L"not made: 0x%08lX\n", static_cast<unsigned long>(result));
        return 1;
    }
    VARIANT nothing{};
    nothing.vt = VT_DISPATCH;
    result = Call(editor, L"Constructor", nothing);
    BSTR sql = SysAllocString(arguments[2]);
    VARIANT text{};
    text.vt = VT_BSTR | VT_BYREF;
    text.pbstrVal = &sql;
    if (SUCCEEDED(result)) result = Call(editor, L"Display", text);
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(GetModuleHandleW(L"brvSQLEditor.dll"), path, MAX_PATH);
    std::wprintf(L"%ls\n%ls\n", path, sql);
    SysFreeString(sql);
    editor->Release();
    return SUCCEEDED(result) ? 0 : 1;
}
