#include "support/Component.h"
#include "support/Settings.h"

#include <oleauto.h>

namespace {

class DisplayTest : public ComponentFixture {
protected:
    Object Editor() {
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Object());
        return editor;
    }
    // Arguments by reference, as a host's compiler passes a variable.
    static VARIANT Reference(VARIANT& variable) {
        VARIANT argument;
        argument.vt = VT_BYREF | VT_VARIANT;
        argument.pvarVal = &variable;
        return argument;
    }
    static VARIANT Reference(BSTR& text) {
        VARIANT argument;
        argument.vt = VT_BYREF | VT_BSTR;
        argument.pbstrVal = &text;
        return argument;
    }
    // Display with one argument exactly as given, the window edited to `edited` and closed. Null: it may not show,
    // which shownText_ tells.
    HRESULT Invoke(const Object& editor, VARIANT& argument, const wchar_t* edited) {
        DISPPARAMS parameters{&argument, nullptr, 1, 0};
        const WhenShown shown(
            [&] {
                shownText_ = EditorWindow::Text();
                if (edited != nullptr) EditorWindow::SetText(edited);
                EditorWindow::Close();
            },
            edited != nullptr ? WhenShown::Expect::Shown : WhenShown::Expect::MayStayHidden);
        shownText_ = L"<not shown>";
        EXCEPINFO exception{};
        UINT argumentError = 0;
        return editor.Dispatch()->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, &exception,
                                         &argumentError);
    }
    HRESULT Invoke(const Object& editor, VARIANT&& argument, const wchar_t* edited) {
        return Invoke(editor, argument, edited);
    }
    std::wstring shownText_;
};

}  // namespace

TEST_F(DisplayTest, TheEditedTextComesBackWhicheverWayTheWindowIsClosed) {
    const Object editor = Editor();
    using Way = void (*)();
    for (const Way way : {Way([] { EditorWindow::Close(); }), Way([] { EditorWindow::PressReturn(); }),
                          Way([] { EditorWindow::Choose(L"File", L"Close"); }),
                          Way([] { SendMessageW(EditorWindow::Find(), WM_SYSCOMMAND, SC_CLOSE, 0); })}) {
        std::wstring sql = L"select 1";
        const WhenShown shown([&] {
            EditorWindow::SetText(L"select 2\r\nfrom dual");
            way();
        });
        editor.Call(L"Display", ByRef(sql));
        EXPECT_EQ(L"select 2\r\nfrom dual", sql);
    }
}

TEST_F(DisplayTest, TextComesBackAsItWentIn) {
    using namespace std::string_literals;
    const Object editor = Editor();
    for (const std::wstring& text :
         {L""s, L"select 1"s, L"a\r\nb\r\n"s, L"{\\rtf1 not {\\b rich}}"s, L"x\xD800y\xDC00"s, L"a\0b"s,
          L"\xD83D\xDE00 \x4E2D\x6587 \x05D0"s, L"\t\ttabs\t"s, std::wstring(100000, L'x'),
          // The editor has CR LF for all of these.
          L"cell\vof a\fsheet"s, L"a\x0085 b\x2028 c\x2029"s, L"a\nb\vc"s}) {
        EXPECT_EQ(text, DisplayAndClose(editor, text));
    }
    EXPECT_EQ(L"a\r\nb\r\nc", DisplayAndClose(editor, L"a\nb\rc"));
    EXPECT_EQ(L"a\r\n\r\nb\r\n\r\n", DisplayAndClose(editor, L"a\r\r\nb\n\n"));
}

TEST_F(DisplayTest, AnEditedTextHasOneKindOfLineEnd) {
    const Object editor = Editor();
    const std::wstring text = L"a\vb\nc\x2028 d";
    const auto edited = [&](const std::function<void()>& work) { return DisplayAndClose(editor, text, work); };
    EXPECT_EQ(L"xa\r\nb\r\nc\r\n d", edited([] { SendMessageW(EditorWindow::Editor(), WM_CHAR, L'x', 1); }));
    // What is taken back is no change.
    EXPECT_EQ(text, edited([] {
                  SendMessageW(EditorWindow::Editor(), WM_CHAR, L'x', 1);
                  SendMessageW(EditorWindow::Editor(), WM_UNDO, 0, 0);
              }));
    EXPECT_EQ(L"", edited([] { EditorWindow::SetText(L""); }));
}

TEST_F(DisplayTest, AMegabyteGoesThroughWhole) {
    // Of long lines: what the control takes under Wine grows with the square of their number.
    std::wstring text;
    for (int line = 0; text.size() < 1024 * 1024; ++line)
        text += std::wstring(2000, static_cast<wchar_t>(L'a' + line % 26)) + L"\r\n";
    EXPECT_EQ(text, DisplayAndClose(Editor(), text));
}

TEST_F(DisplayTest, TakesItsTextInThreeWaysAndWritesItBackInTwo) {
    const Object editor = Editor();
    BSTR text = SysAllocString(L"one");
    EXPECT_EQ(S_OK, Invoke(editor, Reference(text), L"edited one"));
    EXPECT_EQ(L"one", shownText_);
    EXPECT_STREQ(L"edited one", text);
    SysFreeString(text);

    Variant variable(L"two");
    EXPECT_EQ(S_OK, Invoke(editor, Reference(variable), L"edited two"));
    EXPECT_EQ(L"two", shownText_);
    EXPECT_EQ(L"edited two", variable.ToText());

    Variant value(L"three");
    EXPECT_EQ(S_OK, Invoke(editor, value, L"edited three"));
    EXPECT_EQ(L"three", shownText_);
    EXPECT_EQ(L"three", value.ToText());
}

TEST_F(DisplayTest, TakesWhatConvertsToText) {
    const Object editor = Editor();
    Variant variable(42L);
    EXPECT_EQ(S_OK, Invoke(editor, Reference(variable), L"43"));
    EXPECT_EQ(L"42", shownText_);
    EXPECT_EQ(VT_BSTR, variable.vt);
    EXPECT_EQ(L"43", variable.ToText());
    Variant empty;
    EXPECT_EQ(S_OK, Invoke(editor, Reference(empty), L"typed"));
    EXPECT_EQ(L"", shownText_);
    EXPECT_EQ(L"typed", empty.ToText());
    BSTR null = nullptr;
    EXPECT_EQ(S_OK, Invoke(editor, Reference(null), L"typed"));
    EXPECT_STREQ(L"typed", null);
    SysFreeString(null);
}

// Down to its type and its address: hosts may hold on to either.
TEST_F(DisplayTest, WhatWasNotEditedIsLeftAlone) {
    const Object editor = Editor();
    Variant number(42L);
    EXPECT_EQ(S_OK, Invoke(editor, Reference(number), L"42"));
    EXPECT_EQ(VT_I4, number.vt);
    EXPECT_EQ(42, number.lVal);
    BSTR text = SysAllocString(L"select 1");
    BSTR const before = text;
    EXPECT_EQ(S_OK, Invoke(editor, Reference(text), L"select 1"));
    EXPECT_EQ(before, text);
    EXPECT_STREQ(L"select 1", text);
    SysFreeString(text);
}

TEST_F(DisplayTest, ReportsWhatIsNoTextAndShowsNothing) {
    const Object editor = Editor();
    struct Case {
        Variant Value;
        long Number;
    };
    for (const Case& one :
         {Case{Variant::Null(), ErrorNumber::InvalidUseOfNull}, Case{Variant::Missing(), ErrorNumber::TypeMismatch},
          Case{Variant::Nothing(), ErrorNumber::ObjectNotSet},
          Case{Variant::ArrayOf({Variant(1L)}), ErrorNumber::TypeMismatch}}) {
        for (const bool byReference : {false, true}) {
            Errors.Forget();
            Variant value = one.Value;
            EXPECT_EQ(S_OK, byReference ? Invoke(editor, Reference(value), nullptr) : Invoke(editor, value, nullptr));
            EXPECT_EQ(L"<not shown>", shownText_);
            EXPECT_EQ(L"clsSQLEditor.Display " + std::to_wstring(one.Number), Errors.Places());
            EXPECT_EQ(one.Value.vt, value.vt);
        }
    }
}

TEST_F(DisplayTest, AReferenceThatEndsNowhereIsReported) {
    const Object editor = Editor();
    VARIANT itself;
    itself.vt = VT_BYREF | VT_VARIANT;
    itself.pvarVal = &itself;
    VARIANT none;
    none.vt = VT_BYREF | VT_BSTR;
    none.pbstrVal = nullptr;
    for (VARIANT* argument : {&itself, &none}) {
        Errors.Forget();
        EXPECT_EQ(S_OK, Invoke(editor, *argument, nullptr));
        EXPECT_EQ(L"<not shown>", shownText_);
        EXPECT_EQ(L"clsSQLEditor.Display 13", Errors.Places());
    }
    EXPECT_EQ(&itself, itself.pvarVal);
}

TEST_F(DisplayTest, AFailingTypeNameIsReportedAndNothingIsShown) {
    Database.Members[L"DBTypeName"] = [](const Arguments&) -> Variant { RaiseError(1234, L"brvADO", L"gone"); };
    const Object editor = Connected();
    std::wstring sql = L"select 1";
    bool seen = false;
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, nullptr);
    editor.Call(L"Display", ByRef(sql));
    KillTimer(nullptr, timer);
    seen = EditorWindow::Find() != nullptr;
    EXPECT_FALSE(seen);
    EXPECT_EQ(L"select 1", sql);
    EXPECT_EQ(L"frmSQLEditor.Display 1234", Errors.Places());
}

TEST_F(DisplayTest, TheTypeNameIsAskedForWithTheTypeByReference) {
    VARTYPE passed = 0;
    Database.Members[L"DBTypeName"] = [&](const Arguments& a) {
        passed = a.Raw(0)->vt;
        EXPECT_EQ(1U, a.Count());
        return Variant(L"Oracle 8i");
    };
    const Object editor = Connected();
    std::wstring status;
    DisplayAndClose(editor, L"x", [&] { status = EditorWindow::Status(); });
    EXPECT_EQ(L"Oracle 8i", status);
    EXPECT_EQ(VT_BYREF | VT_I4, passed);
}

TEST_F(DisplayTest, ASecondDisplayShowsTheSameWindowAfresh) {
    const Object editor = Editor();
    HWND first = nullptr;
    DisplayAndClose(editor, L"one", [&] {
        first = EditorWindow::Find();
        EditorWindow::SetText(L"changed");
    });
    HWND second = nullptr;
    std::wstring text;
    std::wstring caption;
    bool focused = false;
    bool canUndo = true;
    DisplayAndClose(editor, L"two", [&] {
        second = EditorWindow::Find();
        text = EditorWindow::Text();
        caption = EditorWindow::Caption();
        focused = GetFocus() == EditorWindow::Editor();
        canUndo = SendMessageW(EditorWindow::Editor(), EM_CANUNDO, 0, 0) != 0;
    });
    EXPECT_EQ(first, second);
    EXPECT_EQ(L"two", text);
    EXPECT_EQ(L"SQL Editor", caption);
    EXPECT_TRUE(focused);
    EXPECT_FALSE(canUndo);
}

TEST_F(DisplayTest, TheWindowIsTopmostUnownedAndOfAClassOfItsOwn) {
    DisplayAndClose(Editor(), L"x", [] {
        const HWND window = EditorWindow::Find();
        EXPECT_TRUE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST);
        EXPECT_EQ(nullptr, GetWindow(window, GW_OWNER));
        wchar_t name[100]{};
        GetClassNameW(window, name, 100);
        EXPECT_STRNE(L"#32770", name);
    });
}

TEST_F(DisplayTest, AfterDestructorAFreshWindowIsMade) {
    const Object editor = Editor();
    DisplayAndClose(editor, L"one");
    editor.Call(L"Destructor");
    editor.Call(L"Destructor");
    Settings::Put(L"MainLeft", L"3000");
    RECT place{};
    DisplayAndClose(editor, L"two", [&] { GetWindowRect(EditorWindow::Find(), &place); });
    EXPECT_GT(place.left, 150);  // it was loaded again
}

TEST_F(DisplayTest, DestructorBeforeAnyDisplayDoesNothing) {
    const Object editor = Dll.Create();
    editor.Call(L"Destructor");
}

TEST_F(DisplayTest, ADisplayFromInsideIsReportedAndTheOpenTextStays) {
    const Object editor = Editor();
    std::wstring inner = L"inner";
    const std::wstring outer = DisplayAndClose(editor, L"outer", [&] {
        EditorWindow::SetText(L"being edited");
        editor.Call(L"Display", ByRef(inner));
        EXPECT_NE(nullptr, EditorWindow::Find());
        EXPECT_EQ(L"being edited", EditorWindow::Text());
    });
    EXPECT_EQ(L"frmSQLEditor.Display 400", Errors.Places());
    EXPECT_EQ(L"inner", inner);
    EXPECT_EQ(L"being edited", outer);
}

TEST_F(DisplayTest, DestructorFromInsideClosesTheWindowAndTheTextComesBack) {
    const Object editor = Editor();
    std::wstring sql = L"one";
    const WhenShown shown([&] {
        EditorWindow::SetText(L"edited");
        editor.Call(L"Destructor");
    });
    editor.Call(L"Display", ByRef(sql));
    EXPECT_EQ(L"edited", sql);
    EXPECT_EQ(nullptr, EditorWindow::Find());
    EXPECT_EQ(L"two", DisplayAndClose(editor, L"two"));
}

TEST_F(DisplayTest, ConstructorFromInsideTakesTheNewConnection) {
    const Object editor = Editor();
    DisplayAndClose(editor, L"one", [&] { editor.Call(L"Constructor", Database.Make()); });
    std::wstring status;
    DisplayAndClose(editor, L"two", [&] { status = EditorWindow::Status(); });
    EXPECT_EQ(L"Type 4", status);
}

TEST_F(DisplayTest, TheHostMayLetGoOfTheObjectFromInside) {
    Object editor = Editor();
    std::wstring sql = L"one";
    const WhenShown shown([&] {
        EditorWindow::SetText(L"edited");
        editor.Clear();
        EXPECT_NE(nullptr, EditorWindow::Find());
        EditorWindow::Close();
    });
    IDispatch* const raw = editor.Dispatch();
    Variant variable(sql);
    VARIANT argument = Reference(variable);
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    EXPECT_EQ(S_OK, raw->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr));
    EXPECT_EQ(L"edited", variable.ToText());
}

TEST_F(DisplayTest, TheEndOfAnObjectLetsTheWindowGo) {
    { DisplayAndClose(Editor(), L"one"); }
    EXPECT_EQ(S_OK, Dll.CanUnload());
}

namespace {

// The positions that a window is asked to take while it does not show.
struct Positions {
    HWND Window;
    std::vector<WINDOWPOS> All;
};
Positions* positions = nullptr;

}  // namespace

TEST_F(DisplayTest, EachDisplayMakesTheWindowTopmostWhereItStands) {
    const Object editor = Editor();
    Positions seen{};
    RECT before{};
    DisplayAndClose(editor, L"one", [&] {
        seen.Window = EditorWindow::Find();
        SetWindowPos(seen.Window, nullptr, 150, 120, 640, 480, SWP_NOZORDER | SWP_NOACTIVATE);
        GetWindowRect(seen.Window, &before);
    });
    positions = &seen;
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (code == HC_ACTION && message.message == WM_WINDOWPOSCHANGING && message.hwnd == positions->Window &&
                !IsWindowVisible(message.hwnd)) {
                positions->All.push_back(*reinterpret_cast<const WINDOWPOS*>(message.lParam));
            }
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    RECT after{};
    DisplayAndClose(editor, L"two", [&] { GetWindowRect(seen.Window, &after); });
    UnhookWindowsHookEx(hook);
    EXPECT_TRUE(EqualRect(&before, &after));
    // Before it shows it is asked for once, and neither moved nor sized by that.
    int topmost = 0;
    for (const WINDOWPOS& position : seen.All) {
        if (position.hwndInsertAfter != HWND_TOPMOST) continue;
        ++topmost;
        EXPECT_EQ(UINT{SWP_NOSIZE | SWP_NOMOVE}, position.flags & (SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER));
    }
    EXPECT_EQ(1, topmost);
}
