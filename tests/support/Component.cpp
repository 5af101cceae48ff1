#include "support/Component.h"

#include "support/Settings.h"

std::wstring Component::Path() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    return folder.substr(0, folder.find_last_of(L'\\') + 1) + L"brvSQLEditor.dll";
}

Component::Component() : module_(LoadLibraryW(Path().c_str())) { EXPECT_NE(nullptr, module_); }

Component::~Component() {
    EXPECT_EQ(S_OK, CanUnload());
    FreeLibrary(module_);
}

HRESULT Component::CanUnload() const {
    return reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module_, "DllCanUnloadNow")))();
}

HRESULT Component::GetClassObject(REFCLSID id, REFIID iid, void** object) const {
    return reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
        reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")))(id, iid, object);
}

Object Component::Create() const {
    CLSID id;
    EXPECT_EQ(S_OK, CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id));
    IClassFactory* factory = nullptr;
    EXPECT_EQ(S_OK, GetClassObject(id, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    if (factory == nullptr) return Object();
    IDispatch* made = nullptr;
    EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&made)));
    factory->Release();
    return Object::Attach(made);
}

ComponentFixture::ComponentFixture() { Settings::Clear(); }

ComponentFixture::~ComponentFixture() { Settings::Clear(); }

std::wstring ComponentFixture::DisplayAndClose(const Object& editor, const std::wstring& sql,
                                               const std::function<void()>& inside) {
    std::wstring text = sql;
    const WhenShown shown([&] {
        if (inside) inside();
        EditorWindow::Close();
    });
    editor.Call(L"Display", ByRef(text));
    return text;
}

Object ComponentFixture::Connected() {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Database.Make());
    return editor;
}

std::wstring ComponentFixture::Inside(const std::wstring& sql, const std::function<void()>& work) {
    return DisplayAndClose(Connected(), sql, work);
}
