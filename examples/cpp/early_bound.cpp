// Opens the SQL Editor early-bound, through its interface, and prints the SQL that comes back.
//   early_bound ["SQL"]
// With Microsoft's compiler: cl /EHsc /std:c++17 /DUNICODE /D_UNICODE early_bound.cpp ole32.lib oleaut32.lib uuid.lib
// All that it knows of the component is in the registered type library. Microsoft's compiler reads that itself:
//   #import "brvSQLEditor.dll" no_namespace
//   _clsSQLEditorPtr editor(__uuidof(clsSQLEditor));
//   editor->Constructor(&database); editor->Display(&sql); editor->Destructor();
// Other compilers have no such instruction. Here the library tells at run time where a member stands in the interface's
// table of functions, and DispCallFunc calls it there.

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include <cstdio>
#include <cwchar>

namespace {

const GUID Library = {0x34573171, 0x1A06, 0x4517, {0xB0, 0xE9, 0x36, 0xAF, 0xAA, 0xB9, 0x21, 0x0D}};

// The functions of the default interface of a class, as the type library has them.
struct Interface {
    CLSID Class{};
    IID Id{};
    ITypeInfo* Functions = nullptr;  // of the table, not of IDispatch
};

// The type of a kind (TKIND_...) and name.
ITypeInfo* Find(ITypeLib* library, const wchar_t* name, TYPEKIND kind) {
    for (UINT at = 0; at < library->GetTypeInfoCount(); ++at) {
        TYPEKIND found;
        BSTR text = nullptr;
        if (FAILED(library->GetTypeInfoType(at, &found)) || found != kind) continue;
        library->GetDocumentation(static_cast<INT>(at), &text, nullptr, nullptr, nullptr);
        const bool same = text != nullptr && std::wcscmp(text, name) == 0;
        SysFreeString(text);
        ITypeInfo* type = nullptr;
        if (same && SUCCEEDED(library->GetTypeInfo(at, &type))) return type;
    }
    return nullptr;
}

GUID GuidOf(ITypeInfo* type) {
    TYPEATTR* attributes = nullptr;
    GUID guid{};
    if (SUCCEEDED(type->GetTypeAttr(&attributes))) {
        guid = attributes->guid;
        type->ReleaseTypeAttr(attributes);
    }
    return guid;
}

bool Read(const wchar_t* name, Interface& read) {
    ITypeLib* library = nullptr;
    if (FAILED(LoadRegTypeLib(Library, 1, 0, LOCALE_NEUTRAL, &library))) return false;
    ITypeInfo* type = Find(library, name, TKIND_COCLASS);
    library->Release();
    if (type == nullptr) return false;
    read.Class = GuidOf(type);
    // The first interface that is named is the default one. It is a dual one: its second face is the table (-1).
    HREFTYPE reference = 0;
    ITypeInfo* dispatch = nullptr;
    if (SUCCEEDED(type->GetRefTypeOfImplType(0, &reference))) type->GetRefTypeInfo(reference, &dispatch);
    type->Release();
    if (dispatch == nullptr) return false;
    read.Id = GuidOf(dispatch);
    if (SUCCEEDED(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)))
        dispatch->GetRefTypeInfo(reference, &read.Functions);
    dispatch->Release();
    return read.Functions != nullptr;
}

// Calls a member in the table, with one argument (a pointer) or none.
HRESULT Call(IUnknown* object, const Interface& type, const wchar_t* name, VARTYPE kind = VT_EMPTY,
             void* argument = nullptr) {
    MEMBERID id = 0;
    auto* text = const_cast<OLECHAR*>(name);
    HRESULT result = type.Functions->GetIDsOfNames(&text, 1, &id);
    if (FAILED(result)) return result;
    TYPEATTR* attributes = nullptr;
    result = type.Functions->GetTypeAttr(&attributes);
    if (FAILED(result)) return result;
    const WORD count = attributes->cFuncs;
    type.Functions->ReleaseTypeAttr(attributes);
    result = TYPE_E_ELEMENTNOTFOUND;
    for (UINT at = 0; at < count; ++at) {
        FUNCDESC* function = nullptr;
        if (FAILED(type.Functions->GetFuncDesc(at, &function))) continue;
        if (function->memid == id) {
            VARIANTARG value;
            value.vt = kind;
            value.byref = argument;
            VARTYPE types[] = {kind};
            VARIANTARG* values[] = {&value};
            VARIANT answer;
            VariantInit(&answer);
            result = DispCallFunc(object, static_cast<ULONG_PTR>(function->oVft), function->callconv, VT_I4,
                                  argument != nullptr ? 1 : 0, types, values, &answer);
            if (SUCCEEDED(result)) result = answer.lVal;
        }
        type.Functions->ReleaseFuncDesc(function);
    }
    return result;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    OleInitialize(nullptr);  // a single-threaded apartment
    Interface type;
    IUnknown* editor = nullptr;
    HRESULT result = Read(L"clsSQLEditor", type) ? CoCreateInstance(type.Class, nullptr, CLSCTX_INPROC_SERVER, type.Id,
                                                                    reinterpret_cast<void**>(&editor))
                                                 : TYPE_E_CANTLOADLIBRARY;
    if (FAILED(result)) {
        std::fwprintf(stderr, L"brvSQLEditor is not registered for programs of this width (0x%08lX)\n",
                      static_cast<unsigned long>(result));
        if (type.Functions != nullptr) type.Functions->Release();
        OleUninitialize();
        return 1;
    }
    IDispatch* database = nullptr;  // the connection object of your add-in; null: no connection
    BSTR sql = SysAllocString(count > 1 ? arguments[1] : L"SELECT 1");
    result = Call(editor, type, L"Constructor", VT_BYREF | VT_DISPATCH, &database);
    if (SUCCEEDED(result)) result = Call(editor, type, L"Display", VT_BYREF | VT_BSTR, &sql);
    const HRESULT ended = Call(editor, type, L"Destructor");  // whatever came of it
    if (SUCCEEDED(result)) result = ended;
    if (SUCCEEDED(result)) {
        std::wprintf(L"%ls\n", sql != nullptr ? sql : L"");
    } else {
        std::fwprintf(stderr, L"The SQL Editor failed: 0x%08lX\n", static_cast<unsigned long>(result));
    }
    SysFreeString(sql);
    editor->Release();
    type.Functions->Release();
    OleUninitialize();
    return SUCCEEDED(result) ? 0 : 1;
}
