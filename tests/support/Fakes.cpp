#include "support/Fakes.h"

#include "automation/App.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdio>

namespace {

FakeErrors* currentErrors = nullptr;

Object MakeRecorder() {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    made->Define(L"Constructor", [](const Arguments& a) {
        currentErrors->Constructed.push_back(a[0].ToText() + L"," + a[1].ToText() + L"," + a[2].ToText() + L"," +
                                             a[3].ToText());
        return Variant();
    });
    const auto told = [](const wchar_t* name) {
        return [name](const Arguments& a) {
            std::wstring entry = name;
            for (size_t at = 0; at < a.Count(); ++at)
                entry += L"," + (a.Has(at) ? a[at].ToText() : std::wstring(L"<missing>"));
            currentErrors->Told.push_back(entry);
            return Variant();
        };
    };
    made->Define(L"Alert", told(L"Alert"));
    made->Define(L"LogEvent", told(L"LogEvent"));
    made->Define(L"DisplayAlerts", [](const Arguments&) { return Variant(currentErrors->DisplayAlerts ? -1L : 0L); });
    made->DefineLet(L"DisplayAlerts", [](const Variant& value) { currentErrors->DisplayAlerts = value.ToBoolean(); });
    made->Define(L"ErrorMessage", [](const Arguments& a) {
        if (currentErrors->ErrorMessageFails ||
            (currentErrors->MessageFailures > 0 && currentErrors->MessageFailures-- > 0))
            RaiseError(ObjectErrorBase + 77, L"brvError", L"the log is full");
        Report report;
        report.Module = a[0].ToText();
        report.Routine = a[1].ToText();
        const Object error = a[2].ToObject();
        report.Number = error.Get(L"Number").ToLong();
        report.Source = error.Get(L"Source").ToText();
        report.Description = error.Get(L"Description").ToText();
        error.Get(L"HelpFile").ToText();
        error.Get(L"HelpContext").ToLong();
        error.Get(L"LastDllError").ToLong();
        report.Line = a[3].ToLong();
        report.DebugMissing = !a.Has(4);
        if (!report.DebugMissing) report.Debug = a[4].ToText();
        EXPECT_EQ(5U, a.Count());
        currentErrors->Reports.push_back(report);
        if (currentErrors->OnReport) currentErrors->OnReport();
        return Variant();
    });
    return held;
}

class RecorderFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
        return *object != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        *object = nullptr;
        if (currentErrors->CannotBeCreated) return E_ACCESSDENIED;
        if (currentErrors->CreateFailures > 0 && currentErrors->CreateFailures-- > 0) return E_ACCESSDENIED;
        ++currentErrors->Created;
        Object made = MakeRecorder();
        if (currentErrors->Wrap) made = currentErrors->Wrap(made);
        return made.Dispatch()->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

RecorderFactory recorderFactory;

struct Search {
    const wchar_t* Class;
    int Left;
    HWND Found;
};

std::wstring ClassOf(HWND window) {
    wchar_t name[100]{};
    GetClassNameW(window, name, 100);
    return name;
}

std::wstring Plain(std::wstring text) {
    text = text.substr(0, text.find(L'\t'));
    for (size_t at; (at = text.find(L'&')) != std::wstring::npos;) text.erase(at, 1);
    return text;
}

}  // namespace

FakeErrors::FakeErrors() {
    currentErrors = this;
    CLSID id;
    if (FAILED(CLSIDFromProgID(L"brvError.clsError", &id))) {
        ADD_FAILURE() << "brvError.clsError is not registered: run the tests by ./test";
        return;
    }
    // A class object that the process has registered itself comes before the one of the registry.
    EXPECT_EQ(S_OK, CoRegisterClassObject(id, &recorderFactory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
}

FakeErrors::~FakeErrors() {
    CoRevokeClassObject(cookie_);
    currentErrors = nullptr;
}

std::wstring FakeErrors::Places() const {
    std::wstring places;
    for (const Report& report : Reports) {
        if (!places.empty()) places += L"|";
        places += report.Place() + L" " + std::to_wstring(report.Number);
    }
    return places;
}

FakeDatabase::FakeDatabase() {
    Members[L"Connected"] = [](const Arguments&) { return Variant(true); };
    Members[L"CurrentCatalog"] = [](const Arguments&) { return Variant(L""); };
    Members[L"UserName"] = [](const Arguments&) { return Variant(L"SCOTT"); };
    Members[L"DBType"] = [](const Arguments&) { return Variant(4L); };
    Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L""); };
    Members[L"Dictionary"] = [this](const Arguments&) { return Variant(MakeDictionary()); };
    Members[L"DBTypeName"] = [](const Arguments& a) { return Variant(L"Type " + a[0].ToText()); };
}

Object FakeDatabase::Make() {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    for (const auto& [name, member] : Members) {
        made->Define(name, [this, name = name, member = member](const Arguments& a) {
            Log.push_back(name);
            return member(a);
        });
    }
    return held;
}

Object FakeDatabase::MakeDictionary() {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    for (const auto& [name, member] : DictionaryMembers) {
        made->Define(name, [this, name = name, member = member](const Arguments& a) {
            Log.push_back(L"Dictionary." + name);
            return member(a);
        });
    }
    return held;
}

std::wstring FakeDatabase::Logged() const {
    std::wstring all;
    for (const std::wstring& entry : Log) all += entry + L" ";
    return all;
}

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

HWND EditorWindow::Find() {
    HWND found = nullptr;
    EnumWindows(
        [](HWND window, LPARAM result) WINAPI -> BOOL {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            wchar_t caption[100]{};
            GetWindowTextW(window, caption, 100);
            if (process != GetCurrentProcessId() || !IsWindowVisible(window) ||
                wcsncmp(caption, L"SQL Editor", 10) != 0) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

HWND EditorWindow::Child(const wchar_t* windowClass, int position) {
    Search search{windowClass, position, nullptr};
    EnumChildWindows(
        Find(),
        [](HWND window, LPARAM parameter) WINAPI -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(parameter);
            if (lstrcmpiW(ClassOf(window).c_str(), wanted.Class) != 0 || wanted.Left-- > 0) return TRUE;
            wanted.Found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.Found;
}

HWND EditorWindow::Editor() {
    const HWND editor = Child(L"RICHEDIT50W");
    return editor != nullptr ? editor : Child(L"RichEdit20W");
}

std::wstring EditorWindow::Text() {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(Editor())) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(Editor(), text.data(), static_cast<int>(text.size()))));
    return text;
}

void EditorWindow::SetText(const std::wstring& text) {
    SendMessageW(Editor(), EM_SETSEL, 0, -1);
    SendMessageW(Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring EditorWindow::Status() {
    wchar_t text[1000]{};
    SendMessageW(Child(STATUSCLASSNAMEW), SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text));
    return text;
}

std::wstring EditorWindow::Caption() {
    wchar_t text[300]{};
    GetWindowTextW(Find(), text, 300);
    return text;
}

std::wstring EditorWindow::Root() {
    const HWND tree = GetDlgItem(GetDlgItem(Find(), 1020), 1030);
    wchar_t text[300]{};
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0));
    item.pszText = text;
    item.cchTextMax = 300;
    if (item.hItem == nullptr) return L"<none>";
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return text;
}

void EditorWindow::Choose(const wchar_t* menu, const wchar_t* entry) {
    const HWND window = Find();
    const HMENU bar = GetMenu(window);
    wchar_t text[200];
    for (int at = 0; at < GetMenuItemCount(bar); ++at) {
        GetMenuStringW(bar, static_cast<UINT>(at), text, 200, MF_BYPOSITION);
        if (Plain(text) != menu) continue;
        const HMENU popup = GetSubMenu(bar, at);
        SendMessageW(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup), at);
        for (int below = 0; below < GetMenuItemCount(popup); ++below) {
            GetMenuStringW(popup, static_cast<UINT>(below), text, 200, MF_BYPOSITION);
            if (Plain(text) != entry) continue;
            SendMessageW(window, WM_COMMAND, GetMenuItemID(popup, below), 0);
            return;
        }
        for (int below = 0; below < GetMenuItemCount(popup); ++below) {
            const HMENU inner = GetSubMenu(popup, below);
            for (int task = 0; inner != nullptr && task < GetMenuItemCount(inner); ++task) {
                GetMenuStringW(inner, static_cast<UINT>(task), text, 200, MF_BYPOSITION);
                if (Plain(text) != entry) continue;
                SendMessageW(window, WM_COMMAND, GetMenuItemID(inner, task), 0);
                return;
            }
        }
    }
    ADD_FAILURE() << "no such menu entry";
}

void EditorWindow::PressReturn() {
    const HWND bar = Child(TOOLBARCLASSNAMEW);
    TBBUTTON button{};
    SendMessageW(bar, TB_GETBUTTON, 0, reinterpret_cast<LPARAM>(&button));
    SendMessageW(Find(), WM_COMMAND, static_cast<WPARAM>(button.idCommand), reinterpret_cast<LPARAM>(bar));
}

void EditorWindow::Close() { SendMessageW(Find(), WM_CLOSE, 0, 0); }

WhenShown::WhenShown(std::function<void()> step, Expect expect) : step_(std::move(step)), expect_(expect) {
    static std::map<UINT_PTR, WhenShown*> all;
    timer_ = SetTimer(nullptr, 0, 15, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        const auto found = all.find(id);
        if (found == all.end() || EditorWindow::Find() == nullptr) return;
        WhenShown& self = *found->second;
        all.erase(found);
        KillTimer(nullptr, id);
        self.ran_ = true;
        self.step_();
        self.finished_ = true;
    });
    all[timer_] = this;
    watchdog_ = SetTimer(nullptr, 0, Limit, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
        std::puts("the watchdog ends a test whose window nobody closes");
        std::fflush(stdout);
        TerminateProcess(GetCurrentProcess(), 99);
    });
}

WhenShown::~WhenShown() {
    // Whoever calls a timer's procedure may catch an access violation in it and go on as if nothing had been.
    EXPECT_EQ(ran_, finished_) << "the step was cut off in the middle: something crashed";
    EXPECT_TRUE(ran_ || expect_ == Expect::MayStayHidden) << "the window was never shown";
    KillTimer(nullptr, timer_);
    KillTimer(nullptr, watchdog_);
}

namespace {
std::wstring SettingsRoot() { return std::wstring(L"Software\\VB and VBA Program Settings\\") + App::Title; }
}  // namespace

void Settings::Clear() {
    RegDeleteTreeW(HKEY_CURRENT_USER, SettingsRoot().c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, SettingsRoot().c_str());
}

std::wstring Settings::Get(const wchar_t* key) {
    wchar_t value[200]{};
    DWORD bytes = sizeof value - sizeof(wchar_t);
    if (RegGetValueW(HKEY_CURRENT_USER, (SettingsRoot() + L"\\Settings").c_str(), key, RRF_RT_REG_SZ, nullptr, value,
                     &bytes) != ERROR_SUCCESS) {
        return L"<none>";
    }
    return value;
}

void Settings::Put(const wchar_t* key, const wchar_t* value) {
    HKEY opened = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, (SettingsRoot() + L"\\Settings").c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                    &opened, nullptr);
    RegSetValueExW(opened, key, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                   static_cast<DWORD>((wcslen(value) + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
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

long NumberOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const RuntimeError& error) {
        return error.Number;
    }
    return 0;
}
