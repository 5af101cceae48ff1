#include "support/Component.h"
#include "support/Folder.h"
#include "support/Settings.h"
#include "support/Shortage.h"

#include <oleauto.h>
#include <ocidl.h>

#include "brvSQLEditor_h.h"
#include "brvSQLEditor_i.c"

namespace {
class DoorTest : public ComponentFixture {};
}  // namespace

TEST_F(DoorTest, IsMadeByItsProgId) {
    CLSID id;
    ASSERT_EQ(S_OK, CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id));
    EXPECT_EQ(CLSID_clsSQLEditor, id);
    IDispatch* made = nullptr;
    ASSERT_EQ(S_OK,
              CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&made)));
    made->Release();
}

TEST_F(DoorTest, RefusesWhatItIsNot) {
    void* object = this;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, Dll.GetClassObject(IID_IDispatch, IID_IClassFactory, &object));
    EXPECT_EQ(nullptr, object);
    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, Dll.GetClassObject(CLSID_clsSQLEditor, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    const Object outer = Dll.Create();
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(outer.Dispatch(), IID_IUnknown, &object));
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IStream, &object));
    EXPECT_EQ(nullptr, object);
    factory->Release();
}

// The reference is made with the first object, and not again with the others.
TEST_F(DoorTest, TheStartRunsOnce) {
    const Object first = Dll.Create();
    const Shortage counting(Dll.Handle());
    Shortage::Begin(0, false);
    const Object second = Dll.Create();
    const long one = Shortage::End();
    EXPECT_GT(20, one);
    Shortage::Begin(0, false);
    const Object third = Dll.Create();
    EXPECT_EQ(one, Shortage::End());
}

TEST_F(DoorTest, StaysLoadedWhileSomethingLives) {
    EXPECT_EQ(S_OK, Dll.CanUnload());
    {
        const Object editor = Dll.Create();
        EXPECT_EQ(S_FALSE, Dll.CanUnload());
        editor.Call(L"Constructor", Object());
        HRESULT during = S_OK;
        DisplayAndClose(editor, L"x", [&] { during = Dll.CanUnload(); });
        EXPECT_EQ(S_FALSE, during);
    }
    EXPECT_EQ(S_OK, Dll.CanUnload());
    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, Dll.GetClassObject(CLSID_clsSQLEditor, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    factory->LockServer(TRUE);
    EXPECT_EQ(S_FALSE, Dll.CanUnload());
    factory->LockServer(FALSE);
    factory->Release();
    EXPECT_EQ(S_OK, Dll.CanUnload());
}

TEST_F(DoorTest, AnUnlockTooManyOutweighsNoObject) {
    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, Dll.GetClassObject(CLSID_clsSQLEditor, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    EXPECT_EQ(E_UNEXPECTED, factory->LockServer(FALSE));
    EXPECT_EQ(S_FALSE, Dll.CanUnload());
    {
        const Object editor = Dll.Create();
        factory->LockServer(FALSE);
        factory->Release();
        EXPECT_EQ(S_FALSE, Dll.CanUnload());
    }
    EXPECT_EQ(S_OK, Dll.CanUnload());
}

// COM may ask on any thread; what the module holds of the host can be given back on its own thread alone.
TEST_F(DoorTest, AnotherThreadCannotMakeItLetGo) {
    auto* counted = new DynamicObject;
    IDispatch* const raw = counted;
    for (const auto& [name, member] : Database.Members) counted->Define(name, member);
    {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Object(raw));
        DisplayAndClose(editor, L"x");
    }
    const auto elsewhere = [this] {
        const HANDLE thread = CreateThread(
            nullptr, 0,
            [](void* parameter) WINAPI -> DWORD {
                CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
                IClassFactory* factory = nullptr;
                const auto& dll = *static_cast<const Component*>(parameter);
                const HRESULT made =
                    dll.GetClassObject(CLSID_clsSQLEditor, IID_IClassFactory, reinterpret_cast<void**>(&factory));
                if (SUCCEEDED(made)) factory->Release();
                const HRESULT unload = dll.CanUnload();
                CoUninitialize();
                return FAILED(made) ? 99U : static_cast<DWORD>(unload);
            },
            &Dll, 0, nullptr);
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 30000));
        DWORD code = 98;
        GetExitCodeThread(thread, &code);
        CloseHandle(thread);
        return static_cast<HRESULT>(code);
    };
    EXPECT_EQ(S_FALSE, elsewhere());
    raw->AddRef();
    EXPECT_LT(1U, raw->Release()) << "still held";
    EXPECT_EQ(S_OK, Dll.CanUnload());
    EXPECT_EQ(S_OK, elsewhere()) << "nothing is held any more";
    EXPECT_EQ(0U, raw->Release());
}

TEST_F(DoorTest, GivesTheHostsObjectsBackBeforeItGoes) {
    auto* counted = new DynamicObject;
    IDispatch* const raw = counted;
    counted->Define(L"Connected", [](const Arguments&) { return Variant(true); });
    counted->Define(L"CurrentCatalog", [](const Arguments&) { return Variant(L""); });
    counted->Define(L"UserName", [](const Arguments&) { return Variant(L"U"); });
    counted->Define(L"DBType", [](const Arguments&) { return Variant(1L); });
    counted->Define(L"SchemaTerm", [](const Arguments&) { return Variant(L""); });
    counted->Define(L"Dictionary", [this](const Arguments&) { return Variant(Database.MakeDictionary()); });
    {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Object(raw));
    }
    EXPECT_EQ(S_OK, Dll.CanUnload());
    EXPECT_EQ(0U, raw->Release());
}

TEST_F(DoorTest, KnowsItsNamesInAnyCase) {
    const Object editor = Dll.Create();
    const auto id = [&](std::initializer_list<const wchar_t*> names, HRESULT expected) {
        std::vector<LPOLESTR> list;
        for (const wchar_t* name : names) list.push_back(const_cast<LPOLESTR>(name));
        std::vector<DISPID> ids(list.size(), 99);
        EXPECT_EQ(expected, editor.Dispatch()->GetIDsOfNames(IID_NULL, list.data(), static_cast<UINT>(list.size()), 0,
                                                             ids.data()));
        return ids;
    };
    EXPECT_EQ(1, id({L"Constructor"}, S_OK)[0]);
    EXPECT_EQ(2, id({L"DISPLAY"}, S_OK)[0]);
    EXPECT_EQ(3, id({L"destructor"}, S_OK)[0]);
    EXPECT_EQ(DISPID_UNKNOWN, id({L"Show"}, DISP_E_UNKNOWNNAME)[0]);
    EXPECT_EQ(0, id({L"Display", L"sql"}, S_OK)[1]);
    EXPECT_EQ(DISPID_UNKNOWN, id({L"Display", L"text"}, DISP_E_UNKNOWNNAME)[1]);
}

TEST_F(DoorTest, RefusesCallsThatCannotBeMeant) {
    const Object editor = Dll.Create();
    IDispatch* const raw = editor.Dispatch();
    Variant arguments[2] = {Variant(L"a"), Variant(L"b")};
    DISPPARAMS none{};
    DISPPARAMS two{arguments, nullptr, 2, 0};
    DISPPARAMS one{arguments, nullptr, 1, 0};
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, raw->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, raw->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &two, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, raw->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, raw->Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &one, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, raw->Invoke(4, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, raw->Invoke(0, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
              raw->Invoke(2, IID_NULL, 0, DISPATCH_PROPERTYPUT, &one, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              raw->Invoke(3, IID_IDispatch, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    // Arguments that are counted and not there.
    DISPPARAMS nowhere{nullptr, nullptr, 1, 0};
    EXPECT_EQ(E_POINTER, raw->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &nowhere, nullptr, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, raw->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &nowhere, nullptr, nullptr, nullptr));
    EXPECT_EQ(S_OK, raw->Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
}

TEST_F(DoorTest, TakesANamedArgument) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    Variant text(L"by name");
    DISPID name = 0;
    DISPPARAMS parameters{&text, &name, 1, 1};
    std::wstring seen;
    {
        const WhenShown shown([&] {
            seen = EditorWindow::Text();
            EditorWindow::Close();
        });
        EXPECT_EQ(S_OK,
                  editor.Dispatch()->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr));
    }
    EXPECT_EQ(L"by name", seen);
}

TEST_F(DoorTest, WorksEarlyBound) {
    const Object made = Dll.Create();
    _clsSQLEditor* editor = nullptr;
    ASSERT_EQ(S_OK, made.Dispatch()->QueryInterface(IID__clsSQLEditor, reinterpret_cast<void**>(&editor)));
    Object database = Database.Make();
    IDispatch* raw = database.Dispatch();
    EXPECT_EQ(S_OK, editor->Constructor(&raw));
    BSTR sql = SysAllocString(L"select 1");
    {
        const WhenShown shown([] {
            EXPECT_EQ(L"Type 4", EditorWindow::Status());
            EditorWindow::SetText(L"select 2");
            EditorWindow::Close();
        });
        EXPECT_EQ(S_OK, editor->Display(&sql));
    }
    EXPECT_STREQ(L"select 2", sql);
    SysFreeString(sql);
    EXPECT_EQ(E_POINTER, editor->Display(nullptr));
    EXPECT_EQ(S_OK, editor->Constructor(nullptr));
    EXPECT_EQ(S_OK, editor->Destructor());
    editor->Release();
}

TEST_F(DoorTest, TellsEarlyBoundHostsOfAFailedReport) {
    const Object made = Dll.Create();
    _clsSQLEditor* editor = nullptr;
    ASSERT_EQ(S_OK, made.Dispatch()->QueryInterface(IID__clsSQLEditor, reinterpret_cast<void**>(&editor)));
    ISupportErrorInfo* support = nullptr;
    ASSERT_EQ(S_OK, editor->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support)));
    EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID__clsSQLEditor));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IProvideClassInfo));
    support->Release();
    Errors.CannotBeCreated = true;
    Database.Members.erase(L"Connected");
    Object database = Database.Make();
    IDispatch* raw = database.Dispatch();
    EXPECT_EQ(static_cast<HRESULT>(0x800A01AD), editor->Constructor(&raw));  // 429
    IErrorInfo* info = nullptr;
    ASSERT_EQ(S_OK, GetErrorInfo(0, &info));
    BSTR source = nullptr;
    info->GetSource(&source);
    EXPECT_STREQ(L"brvSQLEditor", source);
    SysFreeString(source);
    info->Release();
    editor->Release();
}

TEST_F(DoorTest, ItsTypeLibraryDescribesTheClass) {
    const Object editor = Dll.Create();
    ITypeInfo* info = nullptr;
    ASSERT_EQ(S_OK, editor.Dispatch()->GetTypeInfo(0, 0, &info));
    for (const MEMBERID id : {1, 2, 3}) {
        BSTR name = nullptr;
        BSTR help = nullptr;
        EXPECT_EQ(S_OK, info->GetDocumentation(id, &name, &help, nullptr, nullptr));
        EXPECT_GT(SysStringLen(name), 0U);
        EXPECT_GT(SysStringLen(help), 10U);
        SysFreeString(name);
        SysFreeString(help);
    }
    // What a marshaller by type library does with the call.
    Object database = Database.Make();
    IDispatch* raw = database.Dispatch();
    VARIANT argument;
    argument.vt = VT_BYREF | VT_DISPATCH;
    argument.ppdispVal = &raw;
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    _clsSQLEditor* vtable = nullptr;
    editor.Dispatch()->QueryInterface(IID__clsSQLEditor, reinterpret_cast<void**>(&vtable));
    EXPECT_EQ(S_OK, info->Invoke(vtable, 1, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr));
    EXPECT_EQ(L"Connected", Database.Log.at(0));
    vtable->Release();
    info->Release();
    IProvideClassInfo* provider = nullptr;
    ASSERT_EQ(S_OK, editor.Dispatch()->QueryInterface(IID_IProvideClassInfo, reinterpret_cast<void**>(&provider)));
    EXPECT_EQ(S_OK, provider->GetClassInfo(&info));
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    EXPECT_EQ(CLSID_clsSQLEditor, attributes->guid);
    info->ReleaseTypeAttr(attributes);
    info->Release();
    provider->Release();
}

TEST_F(DoorTest, IsMadeByItsManifestWithoutRegistration) {
    // A copy in another folder, so that what is loaded tells whether the manifest or the registry was followed.
    const Folder folder;
    const std::wstring dll = folder / L"brvSQLEditor.dll";
    const std::wstring manifest = folder / L"brvSQLEditor.X.manifest";
    const std::wstring built = Component::Path();
    ASSERT_TRUE(CopyFileW(built.c_str(), dll.c_str(), TRUE));
    ASSERT_TRUE(CopyFileW((built.substr(0, built.size() - 3) + L"X.manifest").c_str(), manifest.c_str(), TRUE));

    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.lpSource = manifest.c_str();
    const HANDLE context = CreateActCtxW(&request);
    ASSERT_NE(INVALID_HANDLE_VALUE, context) << GetLastError();
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(context, &cookie));
    CLSID id{};
    EXPECT_EQ(S_OK, CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id));
    // An id of the activation context's own, which stands for the class while the context is active.
    IDispatch* made = nullptr;
    EXPECT_EQ(S_OK,
              CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&made)));
    DeactivateActCtx(0, cookie);
    EXPECT_NE(nullptr, GetModuleHandleW(dll.c_str()));
    if (made != nullptr) {
        const Object editor = Object::Attach(made);
        editor.Call(L"Constructor", Object());
        EXPECT_EQ(L"x", DisplayAndClose(editor, L"x"));
    }
    CoFreeUnusedLibrariesEx(0, 0);
    ReleaseActCtx(context);
    EXPECT_EQ(nullptr, GetModuleHandleW(dll.c_str()));
    EXPECT_TRUE(DeleteFileW(dll.c_str()));
}

TEST(Unloading, TheModuleGoesAndComesBack) {
    Settings::Clear();
    for (int round = 0; round < 3; ++round) {
        {
            FakeErrors errors;
            Component component;
            const Object editor = component.Create();
            editor.Call(L"Constructor", Object());
            std::wstring sql = L"x";
            const WhenShown shown([] { EditorWindow::Close(); });
            editor.Call(L"Display", ByRef(sql));
        }
        CoFreeUnusedLibrariesEx(0, 0);  // what COM itself has loaded in other tests
        EXPECT_EQ(nullptr, GetModuleHandleW(L"brvSQLEditor.dll")) << "round " << round;
    }
    Settings::Clear();
}
