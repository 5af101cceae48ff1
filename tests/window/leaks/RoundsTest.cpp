#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "support/Browsed.h"

// Rounds of create, Constructor, Display, edit, close, Destructor, release. BRV_ROUNDS in the environment says how
// many; the number that is taken without it fits into a test run.

namespace {

int Rounds() {
    const char* wanted = std::getenv("BRV_ROUNDS");
    const int rounds = wanted != nullptr ? std::atoi(wanted) : 0;
    return rounds > 28 ? rounds : 28;
}

// What a process has of the system.
struct Held {
    int Windows = 0;
    long Gdi = 0;          // objects
    long User = 0;         // windows, menus and the like
    size_t HeapBytes = 0;  // in use, of all heaps
    size_t HeapBlocks = 0;
    size_t PrivateBytes = 0;
};

BOOL CALLBACK CountChild(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

BOOL CALLBACK CountWindow(HWND window, LPARAM count) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId()) {
        ++*reinterpret_cast<int*>(count);
        EnumChildWindows(window, CountChild, count);
    }
    return TRUE;
}

int CountWindows() {
    int count = 0;
    EnumWindows(CountWindow, reinterpret_cast<LPARAM>(&count));
    for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;) {
        CountWindow(window, reinterpret_cast<LPARAM>(&count));
    }
    return count;
}

// GetGuiResources, which counts nothing under Wine. There a handle's low word is its place in a table, and does for the
// handle: the places are gone through, and what is there in this process is counted.
template <class Test>
long Counted(DWORD kind, Test isThere) {
    long count = static_cast<long>(GetGuiResources(GetCurrentProcess(), kind));
    if (count > 0) return count;
    for (UINT_PTR place = 1; place < 0xFFF0; ++place) count += isThere(place);
    return count;
}

bool IsDrawingObject(UINT_PTR place) { return GetObjectType(reinterpret_cast<HGDIOBJ>(place)) != 0; }

bool IsUserObject(UINT_PTR place) {
    if (place % 2 != 0) return false;
    if (IsMenu(reinterpret_cast<HMENU>(place))) return true;
    if (CopyAcceleratorTableW(reinterpret_cast<HACCEL>(place), nullptr, 0) > 0) return true;
    ICONINFO icon{};
    if (!GetIconInfo(reinterpret_cast<HICON>(place), &icon)) return false;
    DeleteObject(icon.hbmMask);
    if (icon.hbmColor != nullptr) DeleteObject(icon.hbmColor);
    return true;
}

// A heap whose free blocks are checked (scripts/test-traps) keeps the last 1,024 of them under Wine, and tells them as
// used. Those that a round freed give way to as many of one size.
void ReplaceKept(HANDLE heap) {
    for (int block = 0; block < 1024; ++block) HeapFree(heap, 0, HeapAlloc(heap, 0, 12));
}

void AddHeaps(Held& held) {
    std::vector<HANDLE> heaps(256);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (const HANDLE heap : heaps) {
        ReplaceKept(heap);
        EXPECT_TRUE(HeapValidate(heap, 0, nullptr));
        HeapLock(heap);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
            held.HeapBytes += entry.cbData;
            ++held.HeapBlocks;
        }
        HeapUnlock(heap);
    }
}

Held Now() {
    Held held;
    held.Windows = CountWindows();
    held.Gdi = Counted(GR_GDIOBJECTS, IsDrawingObject);
    held.User = Counted(GR_USEROBJECTS, IsUserObject);
    PROCESS_MEMORY_COUNTERS_EX counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    held.PrivateBytes = counters.PrivateUsage;
    AddHeaps(held);
    return held;
}

constexpr size_t KeptByStatic = 3 * sizeof(void*);

// What HeapWalk tells beyond the block itself where a block of that size lies: nothing, or the rest of the group of
// small blocks that it tells as one.
size_t ToldAroundIt() {
    const HANDLE heap = GetProcessHeap();
    std::vector<void*> blocks(500);  // so many that they are put into groups where there are any
    for (void*& block : blocks) block = HeapAlloc(heap, 0, KeptByStatic);
    const auto* const last = static_cast<const char*>(blocks.back());
    size_t told = 0;
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry)) {
        const auto* const begin = static_cast<const char*>(entry.lpData);
        const bool busy = (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
        if (busy && begin <= last && last < begin + entry.cbData) told = entry.cbData;
    }
    HeapUnlock(heap);
    for (void* block : blocks) HeapFree(heap, 0, block);
    EXPECT_LE(KeptByStatic, told);
    return told - std::min(told, KeptByStatic);
}

long References(const Object& object) {
    object.Dispatch()->AddRef();
    return static_cast<long>(object.Dispatch()->Release());
}

class RoundsTest : public BrowsedFixture {
protected:
    // What happens between showing and closing.
    void Edit() {
        Tree.OpenDownTo({0, 0, 0});
        Tree.Click(Tree.At({0, 0, 0}));
        EditorWindow::Choose(L"Action", L"Select");
        for (const int page : {1, 2, 3, 0}) ShowPage(page);
        SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 0);
        SendMessageW(EditorWindow::Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L"-- edited\r\n"));
        Tree.Shut(Tree.At({0}));
    }
    void Round(const Object& host) {
        std::wstring sql = L"select 1";
        {
            const Object editor = Dll.Create();
            editor.Call(L"Constructor", host);
            const std::wstring edited = DisplayAndClose(editor, sql, [this] { Edit(); });
            EXPECT_EQ(0U, edited.find(L"-- edited\r\n"));
            EXPECT_NE(std::wstring::npos, edited.find(L"ORDERS")) << "the statement for the table";
            EXPECT_NE(std::wstring::npos, edited.find(sql));
            editor.Call(L"Destructor");
            editor.Call(L"Constructor", Object());
        }
    }
};

// What came to be held from one time to another; memory by the round.
struct Growth {
    int Windows;
    long Gdi;
    long User;
    double Bytes;
    double Blocks;
};

Growth Between(const Held& from, const Held& to, int rounds) {
    const auto grown = [](auto now, auto before) { return static_cast<double>(now) - static_cast<double>(before); };
    return {to.Windows - from.Windows, to.Gdi - from.Gdi, to.User - from.User,
            grown(to.HeapBytes, from.HeapBytes) / rounds, grown(to.HeapBlocks, from.HeapBlocks) / rounds};
}

constexpr int Settling = 10;  // rounds after which nothing may grow

}  // namespace

TEST_F(RoundsTest, NothingStaysBehind) {
    const Object dictionary = Database.MakeDictionary();
    Database.Members[L"Dictionary"] = [&](const Arguments&) { return Variant(dictionary); };
    const Object host = Database.Make();
    const int rounds = Rounds();
    // How much a round may leave on the average. Wine's static control keeps three pointers of every window that it
    // was; what the system keeps otherwise does not come with every round. Where the heap is told by groups of small
    // blocks (Wine 10: 31 of them, 1,008 bytes, in 64 bits 1,512), those show as the group that they keep.
    const double BytesPerRound = 100 + static_cast<double>(ToldAroundIt());
    constexpr double BlocksPerRound = 1.5;
    Held settled;
    Held middle;
    long hostReferences = 0;
    long dictionaryReferences = 0;
    for (int round = 1; round <= rounds; ++round) {
        Round(host);
        Database.Log.clear();
        Database.Log.shrink_to_fit();
        if (round == Settling) {
            settled = Now();  // makes what it needs for itself
            settled = Now();
            hostReferences = References(host);
            dictionaryReferences = References(dictionary);
            EXPECT_EQ(1, hostReferences);
        }
        if (round == rounds / 2) middle = Now();
        if (round > Settling) {
            ASSERT_EQ(hostReferences, References(host)) << "round " << round;
            ASSERT_EQ(dictionaryReferences, References(dictionary)) << "round " << round;
            ASSERT_EQ(settled.Windows, CountWindows()) << "round " << round;
        }
    }
    const Held end = Now();
    // A step that comes once is something that the system keeps from then on; what a round leaves shows in both halves.
    const Growth first = Between(settled, middle, rounds / 2 - Settling);
    const Growth second = Between(middle, end, rounds - rounds / 2);
    const Growth least{std::min(first.Windows, second.Windows), std::min(first.Gdi, second.Gdi),
                       std::min(first.User, second.User), std::min(first.Bytes, second.Bytes),
                       std::min(first.Blocks, second.Blocks)};
    std::printf(
        "%d rounds: %.1f bytes and %.2f blocks of the heaps a round, private memory %+.0f KB in all, objects "
        "%ld -> %ld -> %ld and %ld -> %ld -> %ld, windows %d\n",
        rounds, least.Bytes, least.Blocks,
        (static_cast<double>(end.PrivateBytes) - static_cast<double>(settled.PrivateBytes)) / 1024, settled.Gdi,
        middle.Gdi, end.Gdi, settled.User, middle.User, end.User, end.Windows);
    EXPECT_LE(least.Windows, 0);
    EXPECT_LE(least.Gdi, 0);
    EXPECT_LE(least.User, 0);
    EXPECT_LT(least.Bytes, BytesPerRound);
    EXPECT_LT(least.Blocks, BlocksPerRound);
}

// The measure itself: what a leak of each kind would look like.
TEST_F(RoundsTest, ALeakWouldBeSeen) {
    // The first window of a thread brings one of the system's along.
    const HWND first = CreateWindowExW(0, L"Static", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    Now();
    const Held before = Now();
    std::vector<void*> memory;
    std::vector<HPEN> pens;
    std::vector<HMENU> menus;
    std::vector<HWND> windows;
    constexpr int Times = 50;
    memory.reserve(Times);
    for (int at = 0; at < Times; ++at) {
        memory.push_back(std::malloc(1024));
        pens.push_back(CreatePen(PS_DOT, 1, RGB(9, 9, 9)));
        menus.push_back(CreatePopupMenu());
        windows.push_back(CreateWindowExW(0, L"Static", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
    }
    const Held after = Now();
    EXPECT_EQ(before.Windows + Times, after.Windows);
    EXPECT_EQ(before.Gdi + Times, after.Gdi);
    EXPECT_LE(before.User + Times, after.User);
    EXPECT_LE(before.HeapBytes + Times * 1024, after.HeapBytes);
    EXPECT_LE(before.HeapBlocks + Times, after.HeapBlocks);
    for (void* block : memory) std::free(block);
    for (const HPEN pen : pens) DeleteObject(pen);
    for (const HMENU menu : menus) DestroyMenu(menu);
    for (const HWND window : windows) DestroyWindow(window);
    DestroyWindow(first);
}
