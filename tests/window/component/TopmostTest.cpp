#include <algorithm>

#include "WatchedErrors.h"
#include "support/Browsed.h"

// The window is topmost, except while code runs that may show a window of its own.

namespace {

bool IsTopmost() { return (GetWindowLongW(EditorWindow::Find(), GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; }

// What happens to the editor's window and to the windows in it while it lives.
class Watch {
public:
    Watch() {
        editor = EditorWindow::Find();
        moves = repaints = 0;
        hook_ = SetWindowsHookExW(WH_CALLWNDPROC, &Watch::Hook, nullptr, GetCurrentThreadId());
        EXPECT_NE(nullptr, hook_);
    }
    ~Watch() { UnhookWindowsHookEx(hook_); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    static int PlacesInFront() { return moves; }  // how often its place among the windows was set
    static int Repaints() { return repaints; }
    // Whether anything of it waits to be painted.
    static bool Waits() {
        bool waits = GetUpdateRect(editor, nullptr, FALSE) != FALSE;
        EnumChildWindows(
            editor,
            [](HWND child, LPARAM parameter) WINAPI -> BOOL {
                if (GetUpdateRect(child, nullptr, FALSE)) *reinterpret_cast<bool*>(parameter) = true;
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&waits));
        return waits;
    }

private:
    static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam) {
        const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
        if (code == HC_ACTION && (sent.hwnd == editor || IsChild(editor, sent.hwnd))) {
            if (sent.message == WM_WINDOWPOSCHANGING && sent.hwnd == editor) {
                const auto& place = *reinterpret_cast<const WINDOWPOS*>(sent.lParam);
                if ((place.flags & SWP_NOZORDER) == 0) ++moves;
            }
            if (sent.message == WM_ERASEBKGND || sent.message == WM_NCPAINT || sent.message == WM_PAINT) ++repaints;
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }
    static inline HWND editor;
    static inline int moves;
    static inline int repaints;
    HHOOK hook_;
};

void Settle() {
    MSG message;
    for (int round = 0; round < 3; ++round) {
        while (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE)) DispatchMessageW(&message);
        UpdateWindow(EditorWindow::Find());
    }
}

// Whether the first window stands before the second one.
bool IsBefore(HWND first, HWND second) {
    for (HWND next = GetWindow(first, GW_HWNDNEXT); next != nullptr; next = GetWindow(next, GW_HWNDNEXT)) {
        if (next == second) return true;
    }
    return false;
}

class TopmostTest : public BrowsedFixture {
protected:
    // The member then says whether the window was topmost when it was called.
    void Record(std::map<std::wstring, std::function<Variant(const Arguments&)>>& members, const wchar_t* name) {
        members[name] = [this, name, former = members[name]](const Arguments& a) {
            if (EditorWindow::Find() != nullptr) Called[name].push_back(IsTopmost());
            return former ? former(a) : Variant();
        };
    }
    std::map<std::wstring, std::vector<bool>> Called;
};

}  // namespace

TEST_F(TopmostTest, TheDictionaryIsCalledWithoutIt) {
    for (const wchar_t* name : {L"Schemas", L"Objects", L"Columns", L"DataTypeDesc"}) {
        Record(Database.DictionaryMembers, name);
    }
    Inside([this] {
        EXPECT_TRUE(IsTopmost());
        for (const auto& path : {std::initializer_list<int>{}, {0}, {0, 0}, {0, 0, 0}}) {
            Tree.Open(Tree.At(path));
            EXPECT_TRUE(IsTopmost());
        }
    });
    for (const wchar_t* name : {L"Schemas", L"Objects", L"Columns", L"DataTypeDesc"}) {
        EXPECT_FALSE(Called[name].empty()) << name;
        EXPECT_EQ(0, std::ranges::count(Called[name], true)) << name;
    }
}

TEST_F(TopmostTest, TheCreateTableDialogOpensInFront) {
    HWND host = nullptr;
    HWND dialog = nullptr;
    bool before = false;
    bool active = false;
    Database.Members[L"ShowCreateTableDialog1"] = [&](const Arguments&) {
        // As a form of a Basic host: it belongs to the application's window, which is disabled.
        dialog = CreateWindowExW(0, L"Static", L"create", WS_POPUP | WS_CAPTION | WS_VISIBLE, 60, 60, 200, 100, host,
                                 nullptr, nullptr, nullptr);
        SetActiveWindow(dialog);
        before = IsBefore(dialog, EditorWindow::Find()) && !IsTopmost();
        EXPECT_FALSE(IsWindowEnabled(host));
        DestroyWindow(dialog);
        SetActiveWindow(host);
        return Variant();
    };
    host = CreateWindowExW(0, L"Static", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr,
                           nullptr, nullptr);
    Inside([&] {
        Tree.OpenDownTo({0});
        Tree.Click(Tree.At({0, 0}));
        EditorWindow::Choose(L"Action", L"Create");
        EXPECT_TRUE(IsTopmost());
        active = GetActiveWindow() == EditorWindow::Find();
    });
    EXPECT_NE(nullptr, dialog);
    EXPECT_TRUE(before);
    EXPECT_TRUE(active) << "the activation was left with a disabled window";
    DestroyWindow(host);
}

// Its small windows belong to it and go with it.
TEST_F(TopmostTest, AnOpenFindWindowChangesNothing) {
    Record(Database.DictionaryMembers, L"Objects");
    bool toolWasTopmost = true;
    auto objects = Database.DictionaryMembers[L"Objects"];
    HWND tool = nullptr;
    const auto isTopmost = [](HWND window) { return (GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; };
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments& a) {
        toolWasTopmost = isTopmost(tool);
        return objects(a);
    };
    Inside([&] {
        Tree.Open(Tree.At({}));
        SetFocus(EditorWindow::Editor());
        EditorWindow::PressKey('H', true);
        tool = FindWindowW(L"#32770", L"Replace");
        ASSERT_NE(nullptr, tool);
        EXPECT_TRUE(IsTopmost());
        EXPECT_TRUE(isTopmost(tool));
        Tree.Click(Tree.At({0}));
        EXPECT_TRUE(IsTopmost());
        EXPECT_TRUE(isTopmost(tool));
        EXPECT_TRUE(IsBefore(tool, EditorWindow::Find()));
        DestroyWindow(tool);
    });
    EXPECT_FALSE(Called[L"Objects"].empty());
    EXPECT_EQ(0, std::ranges::count(Called[L"Objects"], true));
    EXPECT_FALSE(toolWasTopmost);
}

TEST_F(TopmostTest, TheErrorComponentIsCalledWithoutIt) {
    std::vector<bool> reported;
    Errors.Wrap = [&](const Object& recorder) {
        return Watched(recorder, [&](const wchar_t*) { reported.push_back(IsTopmost()); });
    };
    Database.Members[L"FormatName"] = [](const Arguments&) -> Variant { RaiseError(5); };
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        Tree.Click(Tree.At({0, 0, 0}));
        EditorWindow::Choose(L"Action", L"Delete");
        EXPECT_TRUE(IsTopmost());
    });
    EXPECT_GE(reported.size(), 2U);
    EXPECT_NE(L"", Errors.Places());
    EXPECT_EQ(0, std::ranges::count(reported, true));
}

TEST_F(TopmostTest, APrintersBoxesOpenInFront) {
    static int boxes, topmost;
    boxes = topmost = 0;
    Inside([] {
        const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) WINAPI {
            EnumThreadWindows(
                GetCurrentThreadId(),
                [](HWND window, LPARAM) WINAPI -> BOOL {
                    wchar_t name[20];
                    GetClassNameW(window, name, 20);
                    if (lstrcmpW(name, L"#32770") != 0 || !IsWindowVisible(window)) return TRUE;
                    ++boxes;
                    if (IsTopmost()) ++topmost;
                    PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
                    return FALSE;
                },
                0);
        });
        EditorWindow::Choose(L"File", L"Print...");
        KillTimer(nullptr, timer);
        EXPECT_TRUE(IsTopmost());
    });
    EXPECT_GT(boxes, 0);
    EXPECT_EQ(0, topmost);
}

// Two changes of its place among the windows for each time that the host is asked, however many calls that takes, and
// nothing that is painted again.
TEST_F(TopmostTest, NothingFlickers) {
    std::vector<const wchar_t*> names(50, L"C");
    Columns(names);
    int asked = 0;
    Database.DictionaryMembers[L"DataTypeDesc"] = [&](const Arguments&) {
        ++asked;
        return Variant(L"number");
    };
    Database.Members[L"ShowCreateTableDialog1"] = [](const Arguments&) { return Variant(); };
    Inside([&] {
        Tree.OpenDownTo({0, 0});
        {
            const Watch watch;
            Tree.Open(Tree.At({0, 0, 0}));
            EXPECT_EQ(50, asked);
            EXPECT_EQ(2, watch.PlacesInFront());
        }
        Tree.Click(Tree.At({0, 0}));
        Settle();
        {
            const Watch watch;
            EditorWindow::Choose(L"Action", L"Create");
            EXPECT_EQ(2, watch.PlacesInFront());
            EXPECT_EQ(0, watch.Repaints());
            EXPECT_FALSE(watch.Waits());
        }
        // Where the host is not asked for anything.
        {
            const Watch watch;
            ShowPage(1);
            EditorWindow::SetText(L"select 2");
            EXPECT_EQ(0, watch.PlacesInFront());
        }
    });
}
