#include <cstdio>
#include <set>

#include "WatchedErrors.h"
#include "support/Browsed.h"

// A host with an activation context and an awareness of dots per inch of its own.

namespace {

template <class Function>
Function UserFunction(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

DPI_AWARENESS_CONTEXT Awareness() {
    return UserFunction<DPI_AWARENESS_CONTEXT(WINAPI*)()>("GetThreadDpiAwarenessContext")();
}

DPI_AWARENESS_CONTEXT SetAwareness(DPI_AWARENESS_CONTEXT awareness) {
    return UserFunction<DPI_AWARENESS_CONTEXT(WINAPI*)(DPI_AWARENESS_CONTEXT)>("SetThreadDpiAwarenessContext")(
        awareness);
}

bool AreEqual(DPI_AWARENESS_CONTEXT one, DPI_AWARENESS_CONTEXT other) {
    return UserFunction<BOOL(WINAPI*)(DPI_AWARENESS_CONTEXT, DPI_AWARENESS_CONTEXT)>("AreDpiAwarenessContextsEqual")(
               one, other) != FALSE;
}

HANDLE Activation() {
    HANDLE current = nullptr;
    GetCurrentActCtx(&current);
    if (current != nullptr) ReleaseActCtx(current);
    return current;
}

class HostContextsTest : public BrowsedFixture {
public:
    HostContextsTest() {
        wchar_t folder[MAX_PATH], path[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        GetTempFileNameW(folder, L"ctx", 0, path);
        FILE* file = _wfopen(path, L"wb");
        std::fputs(
            "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">"
            "<assemblyIdentity type=\"win32\" name=\"Host\" version=\"1.0.0.0\"/></assembly>",
            file);
        std::fclose(file);
        ACTCTXW request{};
        request.cbSize = sizeof request;
        request.lpSource = path;
        Context = CreateActCtxW(&request);
        DeleteFileW(path);
        EXPECT_NE(INVALID_HANDLE_VALUE, Context);
        Before = SetAwareness(DPI_AWARENESS_CONTEXT_UNAWARE);
        EXPECT_TRUE(ActivateActCtx(Context, &cookie_));
    }
    ~HostContextsTest() override {
        DeactivateActCtx(0, cookie_);
        SetAwareness(Before);
        ReleaseActCtx(Context);
    }
    // Notes when the contexts that are in force are not the host's.
    void Look(const std::wstring& where) {
        ++Seen[where];
        if (Activation() != Context) Strange.insert(where + L": activation");
        if (!AreEqual(Awareness(), DPI_AWARENESS_CONTEXT_UNAWARE)) Strange.insert(where + L": awareness");
    }
    void LookIn(std::map<std::wstring, std::function<Variant(const Arguments&)>>& members) {
        for (auto& [name, member] : members) {
            member = [this, name = name, former = member](const Arguments& a) {
                Look(name);
                return former(a);
            };
        }
    }
    std::wstring AllStrange() const {
        std::wstring all;
        for (const std::wstring& one : Strange) all += one + L"|";
        return all;
    }

    HANDLE Context = INVALID_HANDLE_VALUE;
    DPI_AWARENESS_CONTEXT Before = nullptr;
    std::map<std::wstring, int> Seen;
    std::set<std::wstring> Strange;

private:
    ULONG_PTR cookie_ = 0;
};

// A window of the host, whose procedure is its code too.
HostContextsTest* looking = nullptr;
constexpr UINT Posted = WM_APP + 5;

}  // namespace

TEST_F(HostContextsTest, TheHostsCodeRunsInItsOwn) {
    Database.Members[L"ShowCreateTableDialog1"] = [](const Arguments&) { return Variant(); };
    LookIn(Database.Members);
    LookIn(Database.DictionaryMembers);
    Errors.Wrap = [&](const Object& recorder) {
        Look(L"creation of the error component");
        return Watched(recorder, [this](const wchar_t* member) { Look(member); });
    };
    Inside([this] {
        Look(L"a timer of the host");
        Tree.OpenDownTo({0, 0, 0});
        Tree.Click(Tree.At({0, 0, 0}));
        EditorWindow::Choose(L"Action", L"Select");
        Tree.Click(Tree.At({0, 0}));
        EditorWindow::Choose(L"Action", L"Create");
        Database.Members.clear();
        Look(L"after the calls");
    });
    for (const wchar_t* name : {L"Connected", L"DBTypeName", L"Schemas", L"Objects", L"Columns", L"DataTypeDesc",
                                L"FormatName", L"ShowCreateTableDialog1"}) {
        EXPECT_LT(0, Seen[name]) << name;
    }
    Look(L"after Display");
    EXPECT_EQ(L"", AllStrange());
}

TEST_F(HostContextsTest, TheErrorComponentRunsInTheHosts) {
    Errors.Wrap = [&](const Object& recorder) {
        Look(L"creation");
        return Watched(recorder, [this](const wchar_t* member) { Look(member); });
    };
    Database.Members[L"FormatName"] = [](const Arguments&) -> Variant { RaiseError(5); };
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        Tree.Click(Tree.At({0, 0, 0}));
        EditorWindow::Choose(L"Action", L"Delete");
    });
    EXPECT_LT(0, Seen[L"creation"]);
    EXPECT_LT(0, Seen[L"Constructor"]);
    EXPECT_LT(0, Seen[L"ErrorMessage"]);
    EXPECT_NE(L"", Errors.Places());
    EXPECT_EQ(L"", AllStrange());
}

TEST_F(HostContextsTest, ItsWindowsGetTheirMessagesInItsOwn) {
    WNDCLASSW host{};
    host.lpszClassName = L"HostContextsTest";
    host.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
        // The awareness of a procedure is that of its window; the activation context is whoever's sends.
        if (looking != nullptr && (message == WM_ENABLE || message == Posted)) {
            looking->Seen[message == WM_ENABLE ? L"enable" : L"posted"]++;
            if (Activation() != looking->Context) looking->Strange.insert(std::to_wstring(message));
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    RegisterClassW(&host);
    const HWND window = CreateWindowExW(0, host.lpszClassName, L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100,
                                        100, nullptr, nullptr, nullptr, nullptr);
    looking = this;
    PostMessageW(window, Posted, 0, 0);
    Inside([] {});
    looking = nullptr;
    DestroyWindow(window);
    UnregisterClassW(host.lpszClassName, nullptr);
    EXPECT_EQ(2, Seen[L"enable"]);
    EXPECT_EQ(1, Seen[L"posted"]);
    EXPECT_EQ(L"", AllStrange());
}

TEST_F(HostContextsTest, OurWindowsAreMadeInOurs) {
    const auto of = UserFunction<DPI_AWARENESS_CONTEXT(WINAPI*)(HWND)>("GetWindowDpiAwarenessContext");
    Inside([&] {
        for (const HWND window : {EditorWindow::Find(), EditorWindow::Editor(), Tree.Handle()}) {
            EXPECT_FALSE(AreEqual(of(window), DPI_AWARENESS_CONTEXT_UNAWARE));
        }
    });
    Look(L"after");
    EXPECT_EQ(L"", AllStrange());
}
