#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <functional>
#include <string>

#include "editor/ControlIds.h"
#include "support/Browsed.h"
#include "support/Settings.h"

// The window's end in every way that is none of the user's: by other code of the process, before it shows, from inside
// what it was asked to do. The user's text goes back to the host, and the host's windows can be used again.

namespace {

// A visible window of the host's; `Told` sees its messages.
class HostWindow {
public:
    explicit HostWindow(std::function<void(UINT, WPARAM)> told = {}) : told_(std::move(told)) {
        window_ = CreateWindowExW(0, L"Static", L"the host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                                  nullptr, nullptr, nullptr);
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        original_ = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&HostWindow::Procedure)));
    }
    ~HostWindow() {
        told_ = {};
        DestroyWindow(window_);
    }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    bool Enabled() const { return IsWindowEnabled(window_) != FALSE; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto& self = *reinterpret_cast<HostWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self.told_) self.told_(message, wParam);
        return CallWindowProcW(self.original_, window, message, wParam, lParam);
    }
    std::function<void(UINT, WPARAM)> told_;
    HWND window_ = nullptr;
    WNDPROC original_ = nullptr;
};

// Answers 0 to one message of a control in its place while it lives, as a control that is short of memory does.
class Refusing {
public:
    Refusing(HWND control, UINT message) : control_(control), message_(message) {
        current = this;
        original_ = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(control_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Refusing::Procedure)));
    }
    ~Refusing() {
        SetWindowLongPtrW(control_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original_));
        current = nullptr;
    }
    Refusing(const Refusing&) = delete;
    Refusing& operator=(const Refusing&) = delete;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == current->message_) return 0;
        return CallWindowProcW(current->original_, window, message, wParam, lParam);
    }
    static inline Refusing* current = nullptr;
    HWND control_;
    UINT message_;
    WNDPROC original_;
};

// Sees each message that is sent to the editor's window, before its procedure does, as a hook of the host does.
class Hook {
public:
    explicit Hook(std::function<void(HWND, UINT, WPARAM)> seen) {
        current = std::move(seen);
        hook_ = SetWindowsHookExW(
            WH_CALLWNDPROC,
            [](int code, WPARAM own, LPARAM sent) WINAPI -> LRESULT {
                const auto& message = *reinterpret_cast<const CWPSTRUCT*>(sent);
                wchar_t name[40]{};
                GetClassNameW(message.hwnd, name, 40);
                if (code == HC_ACTION && lstrcmpW(name, L"brvSQLEditorForm") == 0)
                    current(message.hwnd, message.message, message.wParam);
                return CallNextHookEx(nullptr, code, own, sent);
            },
            nullptr, GetCurrentThreadId());
        EXPECT_NE(nullptr, hook_);
    }
    ~Hook() {
        UnhookWindowsHookEx(hook_);
        current = nullptr;
    }
    Hook(const Hook&) = delete;
    Hook& operator=(const Hook&) = delete;

private:
    static inline std::function<void(HWND, UINT, WPARAM)> current;
    HHOOK hook_;
};

class WindowLifeTest : public BrowsedFixture {
protected:
    // Shown or not.
    static HWND Window() { return FindWindowW(L"brvSQLEditorForm", nullptr); }
    static HWND HiddenEditor() {
        HWND found = nullptr;
        EnumChildWindows(
            Window(),
            [](HWND window, LPARAM result) WINAPI -> BOOL {
                wchar_t name[40]{};
                GetClassNameW(window, name, 40);
                if (lstrcmpiW(name, L"RICHEDIT50W") != 0 && lstrcmpiW(name, L"RichEdit20W") != 0) return TRUE;
                *reinterpret_cast<HWND*>(result) = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&found));
        return found;
    }
    void ExpectUsable(const Object& editor) {
        std::wstring root;
        EXPECT_EQ(L"usable", DisplayAndClose(editor, L"afterwards", [&] {
                      EXPECT_EQ(L"afterwards", EditorWindow::Text());
                      root = EditorWindow::Root();
                      EditorWindow::SetText(L"usable");
                  }));
        EXPECT_EQ(L"Schemas", root);
        EXPECT_EQ(nullptr, EditorWindow::Find());
    }
};

}  // namespace

TEST_F(WindowLifeTest, DestroyedByOthersWhileItShows) {
    const HostWindow host;
    const Object editor = Connected();
    for (const bool wholeWindow : {true, false}) {
        SCOPED_TRACE(wholeWindow ? "the window" : "the text's control alone");
        std::wstring sql = L"mine";
        const WhenShown shown([&] {
            EXPECT_FALSE(host.Enabled());
            EditorWindow::SetText(L"edited");
            if (wholeWindow) {
                DestroyWindow(EditorWindow::Find());
            } else {
                DestroyWindow(EditorWindow::Editor());
                EditorWindow::Close();
            }
        });
        editor.Call(L"Display", ByRef(sql));
        EXPECT_EQ(L"edited", sql);
        EXPECT_TRUE(host.Enabled());
        EXPECT_EQ(L"", Errors.Places());
        ExpectUsable(editor);
    }
}

TEST_F(WindowLifeTest, DestroyedByOthersWhileItIsHidden) {
    const Object editor = Connected();
    for (const bool wholeWindow : {true, false}) {
        SCOPED_TRACE(wholeWindow ? "the window" : "the text's control alone");
        DisplayAndClose(editor, L"one");
        const HWND gone = wholeWindow ? Window() : HiddenEditor();
        ASSERT_NE(nullptr, gone);
        EXPECT_TRUE(DestroyWindow(gone));
        EXPECT_EQ(L"two", DisplayAndClose(editor, L"two"));
        EXPECT_EQ(L"", Errors.Places());
        ExpectUsable(editor);
    }
}

TEST_F(WindowLifeTest, DestroyedWhileTheDictionaryIsAsked) {
    const Object editor = Connected();
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        DestroyWindow(EditorWindow::Find());
        return Variant(MakeCollection({Variant(L"HR")}));
    };
    editor.Call(L"Constructor", Database.Make());
    std::wstring sql = L"mine";
    {
        const WhenShown shown([&] {
            EditorWindow::SetText(L"edited");
            Tree.Open(Tree.At({}));
        });
        editor.Call(L"Display", ByRef(sql));
    }
    EXPECT_EQ(L"edited", sql);
    EXPECT_EQ(L"modLists.m_AddNode 7|modLists.m_ClearNode 91|modLists.AddDefaultSchemaItems 91", Errors.Places());
    ExpectUsable(editor);
}

// A host sees the messages of modal windows by such a hook, and may take some for itself.
TEST_F(WindowLifeTest, AMessageFilterOfTheHostGoesFirst) {
    constexpr UINT Message = WM_APP + 77;
    static int seen;
    seen = 0;
    const HHOOK hook = SetWindowsHookExW(
        WH_MSGFILTER,
        [](int code, WPARAM, LPARAM lParam) WINAPI -> LRESULT {
            const auto& message = *reinterpret_cast<const MSG*>(lParam);
            if (code == MSGF_DIALOGBOX && message.message == Message) ++seen;
            if (code == MSGF_DIALOGBOX && message.message == WM_CLOSE && message.wParam == 77) {
                EditorWindow::SetText(L"taken");
                PostMessageW(EditorWindow::Find(), WM_CLOSE, 0, 0);
                return TRUE;
            }
            return CallNextHookEx(nullptr, code, 0, lParam);
        },
        nullptr, GetCurrentThreadId());
    ASSERT_NE(nullptr, hook);
    const Object editor = Connected();
    std::wstring sql = L"mine";
    {
        const WhenShown shown([] {
            PostMessageW(EditorWindow::Find(), Message, 0, 0);
            PostMessageW(EditorWindow::Find(), WM_CLOSE, 77, 0);
        });
        editor.Call(L"Display", ByRef(sql));
    }
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(1, seen);
    EXPECT_EQ(L"taken", sql);
    EXPECT_EQ(L"", Errors.Places());
}

// Windows ends the session: the edit is the host's before its own turn comes.
TEST_F(WindowLifeTest, TheEndOfTheSessionClosesTheWindow) {
    const Object editor = Connected();
    EXPECT_EQ(L"edited", DisplayAndClose(editor, L"mine", [] {
                  const HWND window = EditorWindow::Find();
                  EditorWindow::SetText(L"edited");
                  EXPECT_TRUE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
                  EXPECT_FALSE(IsWindowVisible(window));
              }));
    ExpectUsable(editor);
}

// The first Display still has the text to give back.
TEST_F(WindowLifeTest, NoOtherWindowIsMadeWhileADestroyedOneReturns) {
    const Object editor = Connected();
    std::wstring sql = L"mine";
    const WhenShown shown([&] {
        EditorWindow::SetText(L"edited");
        DestroyWindow(EditorWindow::Find());
        std::wstring other = L"other";
        editor.Call(L"Display", ByRef(other));
        EXPECT_EQ(L"other", other);
        EXPECT_EQ(L"frmSQLEditor.Display 400", Errors.Places());
        Errors.Forget();
    });
    editor.Call(L"Display", ByRef(sql));
    EXPECT_EQ(L"edited", sql);
    ExpectUsable(editor);
}

TEST_F(WindowLifeTest, ClosedBeforeItShows) {
    const Object editor = Connected();
    DisplayAndClose(editor, L"one");
    for (const UINT when : {WM_ENABLE, WM_ACTIVATE, WM_NCACTIVATE}) {
        for (const bool byDestructor : {true, false}) {
            SCOPED_TRACE(std::to_string(when) + (byDestructor ? ", Destructor" : ", WM_CLOSE"));
            bool displays = false;
            bool closed = false;
            const auto told = [&](UINT message, WPARAM wParam) {
                if (when == WM_ENABLE && closed && message == WM_ENABLE) {
                    EXPECT_TRUE(wParam) << "for no window";
                }
                if (!displays || message != when || LOWORD(wParam) != FALSE || closed) return;
                closed = true;
                if (byDestructor) {
                    editor.Call(L"Destructor");
                } else {
                    SendMessageW(Window(), WM_CLOSE, 0, 0);
                }
            };
            const HostWindow first(told);
            const HostWindow second(told);
            const HostWindow third(told);
            const Hook hook([&](HWND, UINT message, WPARAM wParam) {
                if (when == WM_ENABLE && closed && message == WM_SHOWWINDOW) {
                    EXPECT_FALSE(wParam) << "after it was closed";
                }
            });
            std::wstring sql = L"mine";
            const WhenShown shown([] { EditorWindow::Close(); }, WhenShown::Expect::MayStayHidden);
            displays = true;
            editor.Call(L"Display", ByRef(sql));
            EXPECT_TRUE(closed);
            EXPECT_EQ(L"mine", sql);
            EXPECT_TRUE(first.Enabled());
            EXPECT_TRUE(second.Enabled());
            EXPECT_TRUE(third.Enabled());
            EXPECT_EQ(nullptr, EditorWindow::Find());
            EXPECT_EQ(L"", Errors.Places());
        }
    }
    ExpectUsable(editor);
}

// Where it was asked to show and does not show yet.
TEST_F(WindowLifeTest, ClosedWhileItIsBeingShown) {
    const Object editor = Connected();
    const HostWindow host;
    for (const UINT when : {WM_SHOWWINDOW, WM_WINDOWPOSCHANGING, WM_ACTIVATE}) {
        SCOPED_TRACE(when);
        DisplayAndClose(editor, L"one");
        bool closed = false;
        const Hook hook([&](HWND window, UINT message, WPARAM wParam) {
            if (message != when || (wParam == 0 && when != WM_WINDOWPOSCHANGING) || closed) return;
            closed = true;
            SendMessageW(window, WM_CLOSE, 0, 0);
        });
        std::wstring sql = L"mine";
        const WhenShown shown([] { EditorWindow::Close(); }, WhenShown::Expect::MayStayHidden);
        editor.Call(L"Display", ByRef(sql));
        EXPECT_TRUE(closed);
        EXPECT_EQ(L"mine", sql);
        EXPECT_TRUE(host.Enabled());
        EXPECT_EQ(nullptr, EditorWindow::Find());
        EXPECT_EQ(L"", Errors.Places());
    }
    ExpectUsable(editor);
}

TEST_F(WindowLifeTest, LetGoOfFromInsideWhatAHiddenWindowIsAsked) {
    // A program that reads the screen opens a branch of the hidden window; the dictionary's answer ends the component.
    Object editor;
    int asked = 0;
    Database.DictionaryMembers[L"Schemas"] = [&](const Arguments&) {
        if (++asked > 1) {
            editor.Clear();
            EXPECT_NE(nullptr, Window()) << "it lives until the message is over";
        }
        return Variant(MakeCollection({Variant(L"HR")}));
    };
    editor = Connected();
    DisplayAndClose(editor, L"one", [&] { Tree.Open(Tree.At({})); });
    const HWND tree = GetDlgItem(GetDlgItem(Window(), IdLeftPage), IdView);
    ASSERT_NE(nullptr, tree);
    const LRESULT root = SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0);
    SendMessageW(tree, TVM_EXPAND, TVE_COLLAPSE, root);
    SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, root);
    EXPECT_EQ(2, asked);
    EXPECT_FALSE(editor);
    EXPECT_EQ(nullptr, Window());
    EXPECT_EQ(S_OK, Dll.CanUnload());
    editor = Connected();
    ExpectUsable(editor);
}

TEST_F(WindowLifeTest, AnotherWindowFromInsideWhatTheFirstIsAsked) {
    // The host gives the window up in the middle of an answer and shows another one.
    Object editor;
    bool nested = false;
    std::wstring inner = L"inner";
    Database.DictionaryMembers[L"Schemas"] = [&](const Arguments&) {
        if (!nested) {
            nested = true;
            editor.Call(L"Destructor");
            editor.Call(L"Constructor", Database.Make());
            inner = DisplayAndClose(editor, inner, [&] {
                Tree.Open(Tree.At({}));
                EXPECT_EQ(L"HR", Tree.Children(Tree.At({})));
                EditorWindow::SetText(L"inner, edited");
            });
        }
        return Variant(MakeCollection({Variant(L"HR")}));
    };
    editor = Connected();
    std::wstring sql = L"outer";
    {
        const WhenShown shown([&] {
            EditorWindow::SetText(L"outer, edited");
            Tree.Open(Tree.At({}));
        });
        editor.Call(L"Display", ByRef(sql));
    }
    EXPECT_EQ(L"outer, edited", sql);
    EXPECT_EQ(L"inner, edited", inner);
    EXPECT_EQ(L"", Errors.Places());
    ExpectUsable(editor);
}

TEST_F(WindowLifeTest, EndedWhileItLoads) {
    // What cannot be read of the saved placement is reported, and whoever takes the report calls back.
    const Object other = Dll.Create();
    for (const bool byOther : {false, true}) {
        Object second = Dll.Create();
        const Object editor = Connected();
        Settings::Put(L"MainLeft", L"no number");
        int calls = 0;
        Errors.OnReport = [&] {
            if (++calls > 1) return;
            if (byOther) {
                second.Clear();  // the end of an object gives up the one window that all objects share
            } else {
                editor.Call(L"Destructor");
            }
        };
        std::wstring sql = L"mine";
        {
            const WhenShown shown([] { EditorWindow::Close(); }, WhenShown::Expect::MayStayHidden);
            editor.Call(L"Display", ByRef(sql));
            EXPECT_FALSE(shown.Ran());
        }
        EXPECT_EQ(L"mine", sql);
        EXPECT_EQ(L"frmSQLEditor.Form_Load 13|frmSQLEditor.Constructor 35601|clsSQLEditor.Display 91", Errors.Places());
        Errors.OnReport = nullptr;
        Errors.Forget();
        Settings::Clear();
        ExpectUsable(editor);
    }
}

TEST_F(WindowLifeTest, ADisplayWhileItLoadsIsRefused) {
    const Object editor = Connected();
    Settings::Put(L"MainLeft", L"no number");
    std::wstring inner = L"inner";
    bool called = false;
    Errors.OnReport = [&] {
        if (std::exchange(called, true)) return;
        editor.Call(L"Display", ByRef(inner));
        EXPECT_EQ(nullptr, EditorWindow::Find());
    };
    EXPECT_EQ(L"mine", DisplayAndClose(editor, L"mine"));
    EXPECT_EQ(L"inner", inner);
    EXPECT_EQ(L"frmSQLEditor.Form_Load 13|frmSQLEditor.Display 400|frmSQLEditor.Constructor 35601", Errors.Places());
}

TEST_F(WindowLifeTest, TheHostQuitsWhileEverythingIsOpened) {
    Object editor;
    Database.DictionaryMembers[L"Objects"] = [](const Arguments&) {
        // A key of the keyboard waits, and none that was posted: the branch is looked at for such.
        INPUT key[2]{};
        key[0].type = key[1].type = INPUT_KEYBOARD;
        key[0].ki.wVk = key[1].ki.wVk = VK_SHIFT;
        key[1].ki.dwFlags = KEYEVENTF_KEYUP;
        SendInput(2, key, sizeof(INPUT));
        EXPECT_NE(0, HIWORD(GetQueueStatus(QS_KEY)));
        PostQuitMessage(7);
        return Variant(MakeCollection({Variant(L"ORDERS")}));
    };
    editor = Connected();
    std::wstring sql = L"mine";
    {
        const WhenShown shown([&] {
            EditorWindow::SetText(L"edited");
            Tree.Open(Tree.At({}));
            Tree.Select(Tree.At({0}));
            Tree.Key(VK_MULTIPLY);
        });
        editor.Call(L"Display", ByRef(sql));
    }
    EXPECT_EQ(L"edited", sql);
    MSG quit{};
    EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the host never hears of its end";
    EXPECT_EQ(7U, quit.wParam);
}

TEST_F(WindowLifeTest, ATextThatCannotBeReadKeepsTheWindowOpen) {
    const Object editor = Connected();
    std::wstring sql = L"mine";
    {
        const WhenShown shown([&] {
            EditorWindow::SetText(L"edited");
            {
                const Refusing refusing(EditorWindow::Editor(), EM_GETTEXTEX);
                EditorWindow::Close();
                EXPECT_NE(nullptr, EditorWindow::Find());
                EXPECT_EQ(L"frmSQLEditor.mnuFileClose_Click 7", Errors.Places());
            }
            EditorWindow::Close();
        });
        editor.Call(L"Display", ByRef(sql));
    }
    EXPECT_EQ(L"edited", sql);
}

TEST_F(WindowLifeTest, ATextThatTheControlDoesNotTakeIsNotShown) {
    const Object editor = Connected();
    DisplayAndClose(editor, L"");
    std::wstring sql = L"mine";
    {
        const Refusing refusing(HiddenEditor(), EM_SETTEXTEX);
        const WhenShown shown([] { EditorWindow::Close(); }, WhenShown::Expect::MayStayHidden);
        editor.Call(L"Display", ByRef(sql));
        EXPECT_FALSE(shown.Ran());
    }
    EXPECT_EQ(L"mine", sql);
    EXPECT_EQ(L"frmSQLEditor.Display 7", Errors.Places());
    ExpectUsable(editor);
}

TEST_F(WindowLifeTest, TheVariableIsWrittenByTheTypeThatItHasThen) {
    // The host's code puts something else into the variable that it gave to Display.
    const Object editor = Connected();
    int objects = 0;
    struct Counted {
        int& Count;
        explicit Counted(int& count) : Count(count) { ++Count; }
        ~Counted() { --Count; }
    };
    const auto object = [&objects] {
        auto* made = new DynamicObject;
        const Object held = Object::Attach(made);
        made->Define(L"Counted",
                     [counted = std::make_shared<Counted>(objects)](const Arguments&) { return Variant(); });
        return Variant(held);
    };
    const std::function<Variant()> values[] = {[] { return Variant(5L); },
                                               [] { return Variant(); },
                                               [] { return Variant::Null(); },
                                               object,
                                               [] { return Variant::ArrayOf({Variant(1L)}); },
                                               [] { return Variant(L"another text"); }};
    for (const Variant& first : {Variant(L"text"), Variant(12L)}) {
        for (const auto& value : values) {
            Variant variable = first;
            VARIANT argument;
            argument.vt = VT_BYREF | VT_VARIANT;
            argument.pvarVal = &variable;
            DISPPARAMS parameters{&argument, nullptr, 1, 0};
            {
                const WhenShown shown([&] {
                    variable = value();
                    EditorWindow::SetText(L"edited");
                    EditorWindow::Close();
                });
                EXPECT_EQ(S_OK, editor.Dispatch()->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr,
                                                          nullptr, nullptr));
            }
            EXPECT_EQ(VT_BSTR, variable.vt);
            EXPECT_EQ(L"edited", variable.ToText());
            EXPECT_EQ(0, objects);
        }
    }
}
