#include <windows.h>
#include <objbase.h>

#include <string>
#include <vector>

#include "Fakes.h"

// The DLL as COM loads it: by its registration, and unloaded when nothing of it lives.

namespace {

bool IsLoaded() { return GetModuleHandleW(L"brvSQLEditor.dll") != nullptr; }

// The classes of windows that the module has registered would be in the way of its next life.
int ClassesOf(HMODULE module, const std::vector<std::wstring>& names) {
    int count = 0;
    for (const std::wstring& name : names) {
        WNDCLASSEXW found{};
        found.cbSize = sizeof found;
        if (GetClassInfoExW(module, name.c_str(), &found)) ++count;
    }
    return count;
}

BOOL CALLBACK AddClass(HWND window, LPARAM list) {
    wchar_t name[256] = L"";
    GetClassNameW(window, name, 256);
    reinterpret_cast<std::vector<std::wstring>*>(list)->push_back(name);
    return TRUE;
}

std::wstring ShowOnce(const std::wstring& typed, std::vector<std::wstring>* classes = nullptr) {
    const Object editor = Object::Create(L"brvSQLEditor.clsSQLEditor");
    editor.Call(L"Constructor", Object());
    std::wstring sql = L"select 1";
    const WhenShown shown([&] {
        EditorWindow::SetText(typed);
        if (classes != nullptr) {
            AddClass(EditorWindow::Find(), reinterpret_cast<LPARAM>(classes));
            EnumChildWindows(EditorWindow::Find(), AddClass, reinterpret_cast<LPARAM>(classes));
        }
        EditorWindow::Close();
    });
    editor.Call(L"Display", ByRef(sql));
    EXPECT_TRUE(shown.Ran());
    return sql;
}

}  // namespace

TEST(UnloadTest, ItGoesWhenNothingLivesAndComesBack) {
    const FakeErrors errors;
    Settings::Clear();
    for (int life = 1; life <= 3; ++life) {
        SCOPED_TRACE(life);
        std::vector<std::wstring> classes;
        EXPECT_EQ(L"select 2", ShowOnce(L"select 2", &classes));
        const HMODULE module = GetModuleHandleW(L"brvSQLEditor.dll");
        ASSERT_NE(nullptr, module);
        using CanUnload = HRESULT(STDAPICALLTYPE*)();
        const auto canUnload =
            reinterpret_cast<CanUnload>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
        EXPECT_EQ(S_OK, canUnload());
        EXPECT_LT(0, ClassesOf(module, classes));
        CoFreeUnusedLibrariesEx(0, 0);
        ASSERT_FALSE(IsLoaded());
        // A timer, hook or window of the module that is left would run into memory that is gone.
        MSG message;
        const DWORD until = GetTickCount() + 300;
        while (GetTickCount() < until) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
            Sleep(10);
        }
    }
    Settings::Clear();
    EXPECT_EQ(L"", errors.Places());
}
