#include <windows.h>

#include <string>

#include "support/Browsed.h"
#include "support/Errors.h"

// Hosts that do to the thread, or from inside a call, what no host should: nothing ends the process, and the window is
// as good as before.
namespace {

class HostFaultsTest : public BrowsedFixture {
protected:
    // Display until the window is closed; the number of the error that reaches the host.
    long Show(const std::function<void()>& inside) {
        std::wstring sql = L"select 1";
        const WhenShown shown(inside);
        return NumberOf([&] { editor_.Call(L"Display", ByRef(sql)); });
    }
    // Makes an event of the window fail, in a host that has no error component to take the report.
    void FailAnEvent() {
        Errors.CannotBeCreated = true;
        Database.Members.erase(L"ShowCreateTableDialog1");
        Dll.CanUnload();  // no object lives yet: what was made of the error component is given back
        editor_ = Dll.Create();
    }

    Object editor_;
};

HANDLE CurrentContext() {
    HANDLE context = nullptr;
    GetCurrentActCtx(&context);
    ReleaseActCtx(context);  // compared only
    return context;
}

// An activation context that is not the one that is active.
class OtherContext {
public:
    OtherContext() {
        ACTCTXW request{};
        request.cbSize = sizeof request;
        request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
        const std::wstring path = Component::Path();
        request.lpSource = path.c_str();
        request.lpResourceName = ISOLATIONAWARE_NOSTATICIMPORT_MANIFEST_RESOURCE_ID;
        handle_ = CreateActCtxW(&request);
        EXPECT_NE(INVALID_HANDLE_VALUE, handle_);
    }
    ~OtherContext() { ReleaseActCtx(handle_); }
    OtherContext(const OtherContext&) = delete;
    OtherContext& operator=(const OtherContext&) = delete;
    void Activate() const {
        ULONG_PTR cookie = 0;
        EXPECT_TRUE(ActivateActCtx(handle_, &cookie));
    }

private:
    HANDLE handle_;
};

}  // namespace

TEST_F(HostFaultsTest, AnActivationContextThatIsLeftBehindEndsNothing) {
    const OtherContext other;
    const HANDLE before = CurrentContext();
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) {
        other.Activate();
        return Variant(MakeCollection({Variant(L"ORDERS")}));
    };
    editor_ = Dll.Create();
    EXPECT_EQ(0, NumberOf([&] { editor_.Call(L"Constructor", Database.Make()); }));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(0, Show([&] {
                      other.Activate();
                      Tree.OpenDownTo({0, 0});
                      EXPECT_EQ(L"ORDERS", Tree.Children(Tree.At({0, 0})));
                      other.Activate();
                      EditorWindow::Close();
                  }));
        EXPECT_EQ(before, CurrentContext()) << "what was active before is active again";
    }
}

// The event fails while the dictionary is asked and the host pumps: the branch is filled all the same, and the error
// ends the window as that of any event does.
TEST_F(HostFaultsTest, AFailedReportInsideACallOfTheHostLeavesNoGhost) {
    FailAnEvent();
    int asked = 0;
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) {
        if (asked++ == 0) {
            // From another page: for what the tree selects the menu is refused while a branch is read.
            ShowPage(1);
            SendMessageW(View(1), LB_SETCURSEL, 0, 0);
            EditorWindow::Choose(L"Action", L"Create");
        }
        return Variant(MakeCollection({Variant(L"ONE"), Variant(L"TWO"), Variant(L"THREE")}));
    };
    editor_.Call(L"Constructor", Database.Make());
    EXPECT_EQ(ErrorNumber::CannotCreateObject, Show([&] {
                  Tree.OpenDownTo({0});
                  Tree.Select(Tree.At({0, 0}));
                  Tree.Open(Tree.At({0, 0}));
              }));
    EXPECT_EQ(1, asked);
    Errors.CannotBeCreated = false;
    EXPECT_EQ(0, Show([&] {
                  EXPECT_EQ(L"ONE|TWO|THREE", Tree.Children(Tree.At({0, 0})));
                  for (HTREEITEM item = Tree.Next(TVGN_CHILD, Tree.At({0, 0})); item != nullptr;
                       item = Tree.Next(TVGN_NEXT, item)) {
                      Tree.Select(item);
                      EXPECT_EQ(item, Tree.Selected());
                  }
                  Tree.Click(Tree.At({}));
                  EXPECT_EQ(L"HR|Current Schema|Current Schema|Sales & Co", Tree.Children(Tree.At({})));
                  EXPECT_EQ(1 + 4 * (1 + 2 + 4), Tree.Count());
                  EditorWindow::Close();
              }));
}

// The session ends: what was written is with the host before that is asked.
TEST_F(HostFaultsTest, TheTextGoesBackBeforeTheSessionEnds) {
    editor_ = Dll.Create();
    editor_.Call(L"Constructor", Object());
    std::wstring sql = L"select 1";
    const WhenShown shown([] {
        const HWND window = EditorWindow::Find();
        EditorWindow::SetText(L"select 2");
        EXPECT_TRUE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
        EXPECT_FALSE(IsWindowVisible(window));
    });
    EXPECT_EQ(0, NumberOf([&] { editor_.Call(L"Display", ByRef(sql)); }));
    EXPECT_EQ(L"select 2", sql);
}

// An error component that shows what is reported pumps messages, and a timer of the host calls Display each time.
TEST_F(HostFaultsTest, ReportsInsideEachOtherHaveAnEnd) {
    editor_ = Dll.Create();
    editor_.Call(L"Constructor", Object());
    int reports = 0;
    Errors.Wrap = [&](const Object& made) {
        auto* shows = new DynamicObject;
        const Object held = Object::Attach(shows);
        shows->Define(L"Constructor", [](const Arguments&) { return Variant(); });
        shows->Define(L"ErrorMessage", [&, made](const Arguments&) {
            if (++reports < 200) {
                std::wstring other = L"another";
                editor_.Call(L"Display", ByRef(other));
            }
            return Variant();
        });
        return held;
    };
    EXPECT_EQ(0, Show([&] {
                  std::wstring other = L"another";
                  editor_.Call(L"Display", ByRef(other));
                  EditorWindow::Close();
              }));
    EXPECT_LT(1, reports);
    EXPECT_GT(100, reports);
}

// The last reference is let go of on another thread, as collectors of garbage do.
TEST_F(HostFaultsTest, TheLastReleaseOnAnotherThreadLeavesTheWindowAlone) {
    HWND window = nullptr;
    IDispatch* raw = nullptr;
    {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Object());
        DisplayAndClose(editor, L"x", [&] { window = EditorWindow::Find(); });
        raw = editor.Dispatch();
        raw->AddRef();
    }
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void* last) WINAPI -> DWORD {
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            const ULONG left = static_cast<IDispatch*>(last)->Release();
            CoUninitialize();
            return left;
        },
        raw, 0, nullptr);
    // The window's thread pumps nothing meanwhile: nobody may wait for it.
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 20000));
    DWORD left = 99;
    GetExitCodeThread(thread, &left);
    CloseHandle(thread);
    EXPECT_EQ(0U, left);
    EXPECT_EQ(S_FALSE, Dll.CanUnload()) << "the window lives";
    ASSERT_TRUE(IsWindow(window));
    for (const UINT message : {WM_SETTINGCHANGE, WM_SYSCOLORCHANGE, WM_THEMECHANGED, WM_ENDSESSION}) {
        SendMessageW(window, message, 0, 0);
    }
    // The next object has it.
    const Object editor = Dll.Create();
    EXPECT_EQ(L"y", DisplayAndClose(editor, L"y", [&] { EXPECT_EQ(window, EditorWindow::Find()); }));
}

// A host that ends the editor where it happens to be.
TEST_F(HostFaultsTest, ADestructorOnAnotherThreadIsReportedAndLeavesTheWindow) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    HWND window = nullptr;
    DisplayAndClose(editor, L"x", [&] {
        window = EditorWindow::Find();
        // A report, so that the error component is there already: it is made on this thread.
        std::wstring other;
        editor.Call(L"Display", ByRef(other));
    });
    Errors.Forget();
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void* there) WINAPI -> DWORD {
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            const long number = NumberOf([&] { static_cast<const Object*>(there)->Call(L"Destructor"); });
            CoUninitialize();
            return static_cast<DWORD>(number);
        },
        const_cast<Object*>(&editor), 0, nullptr);
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 20000));
    DWORD number = 99;
    GetExitCodeThread(thread, &number);
    CloseHandle(thread);
    EXPECT_EQ(0U, number);
    EXPECT_EQ(L"clsSQLEditor.Destructor " + std::to_wstring(RPC_E_WRONG_THREAD), Errors.Places());
    Errors.Forget();
    ASSERT_TRUE(IsWindow(window));
    EXPECT_EQ(L"y", DisplayAndClose(editor, L"y", [&] { EXPECT_EQ(window, EditorWindow::Find()); }));
    editor.Call(L"Destructor");
    EXPECT_FALSE(IsWindow(window));
}

// What an event of the hidden window lets out is nobody's, and the next call begins without it.
TEST_F(HostFaultsTest, AFailedEventOfTheHiddenWindowFailsNoOtherCall) {
    FailAnEvent();
    editor_.Call(L"Constructor", Database.Make());
    HWND window = nullptr;
    UINT create = 0;
    EXPECT_EQ(0, Show([&] {
                  window = EditorWindow::Find();
                  Tree.OpenDownTo({0});
                  Tree.Select(Tree.At({0, 0}));
                  const HMENU menu = GetSubMenu(GetMenu(window), 2);
                  for (int at = 0; at < GetMenuItemCount(menu); ++at) {
                      wchar_t text[100];
                      GetMenuStringW(menu, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
                      if (std::wstring(text).find(L"reate") != std::wstring::npos) create = GetMenuItemID(menu, at);
                  }
                  EditorWindow::Close();
              }));
    ASSERT_NE(0U, create);
    SendMessageW(window, WM_COMMAND, create, 0);
    EXPECT_EQ(0, NumberOf([&] { editor_.Call(L"Constructor", Database.Make()); }));
    EXPECT_EQ(0, Show([] { EditorWindow::Close(); }));
    SendMessageW(window, WM_COMMAND, create, 0);
    EXPECT_EQ(0, NumberOf([&] { editor_.Call(L"Destructor"); }));
}
