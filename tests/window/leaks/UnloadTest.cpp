#include <windows.h>
#include <objbase.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/Component.h"
#include "support/Settings.h"

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
    FakeErrors errors;
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

// The DLL is loaded, asked for its class, which makes the catalogue, and let go; what a life leaves is measured.
TEST(UnloadTest, TheCatalogueGoesWithTheModule) {
    const auto heaps = [] {
        size_t bytes = 0;
        std::vector<HANDLE> all(256);
        all.resize(GetProcessHeaps(static_cast<DWORD>(all.size()), all.data()));
        for (const HANDLE heap : all) {
            HeapLock(heap);
            PROCESS_HEAP_ENTRY entry{};
            while (HeapWalk(heap, &entry)) {
                if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
            }
            HeapUnlock(heap);
        }
        return bytes;
    };
    const auto live = [] {
        const Component dll;
        IClassFactory* factory = nullptr;
        CLSID id;
        ASSERT_EQ(S_OK, CLSIDFromProgID(L"brvSQLEditor.clsSQLEditor", &id));
        ASSERT_EQ(S_OK, dll.GetClassObject(id, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
        factory->Release();
    };
    constexpr int Lives = 10;
    for (int at = 0; at < 3; ++at) live();
    ASSERT_FALSE(IsLoaded());
    const size_t before = heaps();
    for (int at = 0; at < Lives; ++at) live();
    const size_t after = heaps();
    const double left = (static_cast<double>(after) - static_cast<double>(before)) / Lives;
    std::printf("a life of the module leaves %.0f bytes\n", left);
    EXPECT_LT(left, 100000) << "the catalogue alone is more";
}

// A process has 1,088 indices of thread-local storage for all its libraries. Hosts unload the module when they are idle
// and load it again: a life that kept an index would use them up.
TEST(UnloadTest, ALifeTakesNoIndexOfThreadLocalStorageAlong) {
    const auto freeIndices = [] {
        std::vector<DWORD> taken;
        for (DWORD index = TlsAlloc(); index != TLS_OUT_OF_INDEXES; index = TlsAlloc()) taken.push_back(index);
        for (const DWORD index : taken) TlsFree(index);
        return static_cast<long>(taken.size());
    };
    FakeErrors errors;
    const auto live = [&errors] {
        {
            const Object editor = Object::Create(L"brvSQLEditor.clsSQLEditor");
            editor.Call(L"Constructor", 5L);  // reported: an exception was thrown and caught inside the module
        }
        EXPECT_NE(L"", errors.Places());
        errors.Forget();
        CoFreeUnusedLibrariesEx(0, 0);
        ASSERT_FALSE(IsLoaded());
    };
    live();
    const long before = freeIndices();
    ASSERT_LT(100, before);
    constexpr long Lives = 20;
    for (long at = 0; at < Lives; ++at) live();
    EXPECT_EQ(0, before - freeIndices()) << "in " << Lives << " lives";
}
