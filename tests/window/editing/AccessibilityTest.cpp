#include <initguid.h>
#include <oleacc.h>

#include <map>

#include "editor/ControlIds.h"
#include "support/Editing.h"

namespace {

struct Told {
    std::wstring Name = L"<none>";
    long Role = 0;
};

// What a program that reads the screen is told of the window.
Told About(HWND window) {
    Told told;
    IAccessible* object = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                          reinterpret_cast<void**>(&object)))) {
        return told;
    }
    VARIANT self;
    VariantInit(&self);
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    if (object->get_accName(self, &name) == S_OK && name != nullptr) told.Name.assign(name, SysStringLen(name));
    SysFreeString(name);
    VARIANT role;
    VariantInit(&role);
    if (object->get_accRole(self, &role) == S_OK && role.vt == VT_I4) told.Role = role.lVal;
    VariantClear(&role);
    object->Release();
    return told;
}

std::wstring NameOf(HWND window) { return About(window).Name; }

// The role of a window of that class that nobody has changed: Wine has one of its own for few classes.
long BareRole(const wchar_t* windowClass) {
    const HWND bare =
        CreateWindowExW(0, windowClass, L"", WS_CHILD, 0, 0, 10, 10, EditorWindow::Find(), nullptr, nullptr, nullptr);
    EXPECT_NE(nullptr, bare);
    const long role = About(bare).Role;
    DestroyWindow(bare);
    return role;
}

// Stands in for the system's service while it lives, and keeps what is told of the windows.
class RecordingServices : public IAccPropServices, public IClassFactory {
public:
    RecordingServices() {
        EXPECT_HRESULT_SUCCEEDED(CoRegisterClassObject(CLSID_AccPropServices, static_cast<IClassFactory*>(this),
                                                       CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
    }
    ~RecordingServices() { CoRevokeClassObject(cookie_); }

    std::map<HWND, std::wstring> Names;
    std::map<HWND, long> Roles;
    int OfDeadWindows = 0;

    HRESULT WINAPI QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IAccPropServices) {
            *object = static_cast<IAccPropServices*>(this);
        } else if (iid == IID_IUnknown || iid == IID_IClassFactory) {
            *object = static_cast<IClassFactory*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        return S_OK;
    }
    ULONG WINAPI AddRef() override { return 2; }
    ULONG WINAPI Release() override { return 1; }
    HRESULT WINAPI CreateInstance(IUnknown*, REFIID iid, void** object) override { return QueryInterface(iid, object); }
    HRESULT WINAPI LockServer(BOOL) override { return S_OK; }

    HRESULT WINAPI SetHwndProp(HWND window, DWORD object, DWORD child, MSAAPROPID id, VARIANT value) override {
        EXPECT_EQ(static_cast<DWORD>(OBJID_CLIENT), object);
        EXPECT_EQ(static_cast<DWORD>(CHILDID_SELF), child);
        EXPECT_TRUE(id == PROPID_ACC_ROLE);
        EXPECT_EQ(VT_I4, value.vt);
        Roles[window] = value.lVal;
        return S_OK;
    }
    HRESULT WINAPI SetHwndPropStr(HWND window, DWORD object, DWORD child, MSAAPROPID id, LPCWSTR text) override {
        EXPECT_EQ(static_cast<DWORD>(OBJID_CLIENT), object);
        EXPECT_EQ(static_cast<DWORD>(CHILDID_SELF), child);
        EXPECT_TRUE(id == PROPID_ACC_NAME);
        Names[window] = text;
        return S_OK;
    }
    HRESULT WINAPI ClearHwndProps(HWND window, DWORD, DWORD, const MSAAPROPID* ids, int count) override {
        if (!IsWindow(window)) ++OfDeadWindows;
        for (int at = 0; at < count; ++at) {
            if (ids[at] == PROPID_ACC_NAME) Names.erase(window);
            if (ids[at] == PROPID_ACC_ROLE) Roles.erase(window);
        }
        return S_OK;
    }
    HRESULT WINAPI SetPropValue(const BYTE*, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetPropServer(const BYTE*, DWORD, const MSAAPROPID*, int, IAccPropServer*, AnnoScope) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ClearProps(const BYTE*, DWORD, const MSAAPROPID*, int) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHwndPropServer(HWND, DWORD, DWORD, const MSAAPROPID*, int, IAccPropServer*, AnnoScope) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ComposeHwndIdentityString(HWND, DWORD, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI DecomposeHwndIdentityString(const BYTE*, DWORD, HWND*, DWORD*, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuProp(HMENU, DWORD, MSAAPROPID, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuPropStr(HMENU, DWORD, MSAAPROPID, LPCWSTR) override { return E_NOTIMPL; }
    HRESULT WINAPI SetHmenuPropServer(HMENU, DWORD, const MSAAPROPID*, int, IAccPropServer*, AnnoScope) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI ClearHmenuProps(HMENU, DWORD, const MSAAPROPID*, int) override { return E_NOTIMPL; }
    HRESULT WINAPI ComposeHmenuIdentityString(HMENU, DWORD, BYTE**, DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI DecomposeHmenuIdentityString(const BYTE*, DWORD, HMENU*, DWORD*) override { return E_NOTIMPL; }

private:
    DWORD cookie_ = 0;
};

const wchar_t* const Pages[] = {L"Database Objects", L"ANSI SQL", L"Database Specific", L"Kolvex"};

}  // namespace

class AccessibilityTest : public EditingFixture {};

TEST_F(AccessibilityTest, ControlsHaveNamesAndTheRolesOfTheirClasses) {
    Inside([] {
        const HWND window = EditorWindow::Find();
        const wchar_t* const classes[] = {L"SysTreeView32", L"ListBox", L"SysTreeView32", L"ListBox"};
        for (int page = 0; page < 4; ++page) {
            const Told button = About(GetDlgItem(window, IdLeftButton + page));
            EXPECT_EQ(Pages[page], button.Name);
            EXPECT_EQ(BareRole(L"Button"), button.Role);
            const HWND container = GetDlgItem(window, IdLeftPage + page);
            EXPECT_EQ(Pages[page], NameOf(container));
            const Told view = About(GetDlgItem(container, IdView + page));
            EXPECT_EQ(Pages[page], view.Name);
            EXPECT_EQ(BareRole(classes[page]), view.Role);
        }
        const Told toolbar = About(GetDlgItem(window, IdToolbar));
        EXPECT_EQ(L"Toolbar", toolbar.Name);
        EXPECT_EQ(BareRole(L"ToolbarWindow32"), toolbar.Role);
        EXPECT_EQ(L"Hide the left pane", NameOf(GetDlgItem(window, IdHide)));
        EXPECT_EQ(L"Show the left pane", NameOf(GetDlgItem(window, IdUnhide)));
        EXPECT_EQ(L"Splitter", NameOf(GetDlgItem(window, IdSplitter)));
        EXPECT_NE(0, About(EditorWindow::Editor()).Role);
    });
}

TEST_F(AccessibilityTest, TheServiceIsToldAndItIsTakenBack) {
    RecordingServices services;
    {
        const Object editor = Connected();
        DisplayAndClose(editor, L"select 1", [&] {
            const HWND window = EditorWindow::Find();
            for (int page = 0; page < 4; ++page) {
                const HWND container = GetDlgItem(window, IdLeftPage + page);
                EXPECT_EQ(Pages[page], services.Names[GetDlgItem(container, IdView + page)]);
                EXPECT_EQ(ROLE_SYSTEM_GROUPING, services.Roles[container]);
            }
            EXPECT_EQ(L"SQL", services.Names[EditorWindow::Editor()]);
            EXPECT_EQ(L"Status bar", services.Names[GetDlgItem(window, IdStatusBar)]);
            for (const int box : {IdHide, IdUnhide}) {
                EXPECT_EQ(ROLE_SYSTEM_PUSHBUTTON, services.Roles[GetDlgItem(window, box)]);
            }
            EXPECT_EQ(ROLE_SYSTEM_SEPARATOR, services.Roles[GetDlgItem(window, IdSplitter)]);
            // What the classes themselves say of these is right.
            EXPECT_EQ(0U, services.Roles.count(EditorWindow::Editor()));
            EXPECT_EQ(0U, services.Names.count(GetDlgItem(window, IdDescription)));
        });
        EXPECT_FALSE(services.Names.empty());
    }
    EXPECT_TRUE(services.Names.empty());
    EXPECT_TRUE(services.Roles.empty());
    EXPECT_EQ(0, services.OfDeadWindows);
}

// Whatever a control is called, what it shows stays what it was.
TEST_F(AccessibilityTest, NamesDoNotReachTheTexts) {
    EXPECT_EQ(L"select 1", Inside([] {
                  EXPECT_EQ(L"select 1", EditorWindow::Text());
                  EXPECT_EQ(std::wstring::npos, EditorWindow::Status().find(L"Status bar"));
                  EXPECT_EQ(0, GetWindowTextLengthW(EditorWindow::Control(IdDescription)));
              }));
}

// A long text is replaced by making the control again.
TEST_F(AccessibilityTest, AFreshEditorIsNamedToo) {
    RecordingServices services;
    {
        const Object editor = Connected();
        HWND first = nullptr;
        DisplayAndClose(editor, std::wstring(40000, L'x'), [&] { first = EditorWindow::Editor(); });
        DisplayAndClose(editor, L"select 2", [&] {
            EXPECT_NE(first, EditorWindow::Editor());
            EXPECT_EQ(L"SQL", services.Names[EditorWindow::Editor()]);
            EXPECT_EQ(0U, services.Names.count(first));
        });
    }
    EXPECT_TRUE(services.Names.empty());
    EXPECT_EQ(0, services.OfDeadWindows);
}

TEST_F(AccessibilityTest, TheKeysThatMoveTheFocusShowWhereItIs) {
    const Object editor = Connected();
    // Wine does not answer WM_QUERYUISTATE: the message that asks for the rectangle is watched itself.
    static int asked;
    static HWND form, before, after;
    static WPARAM key;
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (code == HC_ACTION && sent.message == WM_CHANGEUISTATE && sent.hwnd == form &&
                LOWORD(sent.wParam) == UIS_CLEAR && (HIWORD(sent.wParam) & UISF_HIDEFOCUS) != 0) {
                ++asked;
            }
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    ASSERT_NE(nullptr, hook);
    for (const WPARAM each : {VK_TAB, VK_F6}) {
        SCOPED_TRACE(each);
        key = each;
        asked = 0;
        form = before = after = nullptr;
        std::wstring sql = L"select 1";
        {
            const WhenShown shown([] {
                form = EditorWindow::Find();
                before = GetDlgItem(form, IdLeftButton);
                SetFocus(before);
                EXPECT_EQ(0, asked);
                PostMessageW(before, WM_KEYDOWN, key, 1);
                SetTimer(nullptr, 0, 100, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
                    KillTimer(nullptr, id);
                    after = GetFocus();
                    EditorWindow::Close();
                });
            });
            editor.Call(L"Display", ByRef(sql));
        }
        EXPECT_EQ(1, asked);
        EXPECT_NE(nullptr, after);
        EXPECT_NE(before, after);
    }
    UnhookWindowsHookEx(hook);
}

TEST_F(AccessibilityTest, TheEnterKeyChoosesThePageOfAButton) {
    const Object editor = Connected();
    std::wstring sql = L"select 1";
    static HWND button;
    static int turns;
    static LRESULT chosen;
    turns = 0;
    chosen = -1;
    const WhenShown shown([] {
        button = EditorWindow::Control(IdLeftButton + 3);
        // Programs that read the screen say of a button in this shape whether it is pressed.
        EXPECT_EQ(BS_CHECKBOX | BS_PUSHLIKE, GetWindowLongW(button, GWL_STYLE) & (BS_TYPEMASK | BS_PUSHLIKE));
        SetFocus(button);
        EXPECT_EQ(BST_UNCHECKED, SendMessageW(button, BM_GETCHECK, 0, 0)) << "the focus alone chooses nothing";
        PostMessageW(button, WM_KEYDOWN, VK_RETURN, 1);
        SetTimer(nullptr, 0, 30, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            chosen = SendMessageW(button, BM_GETCHECK, 0, 0);
            if (chosen != BST_CHECKED && ++turns < 100) return;
            KillTimer(nullptr, id);
            EditorWindow::Close();
        });
    });
    editor.Call(L"Display", ByRef(sql));
    EXPECT_EQ(BST_CHECKED, chosen);
}
