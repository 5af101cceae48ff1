#include "Window.h"

#include <cwctype>

namespace {

ULONGLONG deadline;

bool Is32BitOn64(HANDLE process) {
    BOOL wow = FALSE;
    return IsWow64Process(process, &wow) && wow;
}

std::wstring Upper(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(towupper(c));
    return text;
}

BOOL CALLBACK IsEditor(HWND window, LPARAM result) {
    wchar_t caption[64] = L"";
    // The caption of a foreign top-level window is read without a message: a hanging one does no harm.
    GetWindowTextW(window, caption, ARRAYSIZE(caption));
    if (!IsWindowVisible(window) || wcsncmp(caption, L"SQL Editor", 10) != 0) return TRUE;
    if (ClassOf(window) == L"#32770") return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

}  // namespace

namespace Deadline {

void Set(double seconds) { deadline = GetTickCount64() + static_cast<ULONGLONG>(seconds * 1000); }

DWORD Left() {
    const ULONGLONG now = GetTickCount64();
    return now < deadline ? static_cast<DWORD>(deadline - now) : 0;
}

bool Retry() {
    if (!Left()) return false;
    Sleep(50);
    return true;
}

}  // namespace Deadline

LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    DWORD_PTR result = 0;
    const DWORD left = Deadline::Left();
    if (!left || !SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, left, &result)) {
        if (!IsWindow(window)) throw Failure(NotFound, "the window is gone");
        throw Failure(NoAnswer, "the window did not answer a message in time");
    }
    return static_cast<LRESULT>(result);
}

void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!PostMessageW(window, message, wParam, lParam)) throw Failure(NotFound, "the window took no posted message");
}

std::wstring TextOf(HWND window) {
    const auto length = static_cast<size_t>(Send(window, WM_GETTEXTLENGTH));
    std::wstring text(length + 1, L'\0');
    const auto got = static_cast<size_t>(Send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())));
    text.resize(got <= length ? got : length);
    return text;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[256] = L"";
    GetClassNameW(window, name, ARRAYSIZE(name));
    return name;
}

std::wstring WithoutAmpersands(const std::wstring& caption) {
    std::wstring plain;
    for (size_t at = 0; at < caption.size(); ++at) {
        if (caption[at] == L'&' && ++at >= caption.size()) break;
        plain += caption[at];
    }
    return plain;
}

HWND FindEditor() {
    HWND found = nullptr;
    EnumWindows(IsEditor, reinterpret_cast<LPARAM>(&found));
    return found;
}

HWND WaitForEditor() {
    do {
        if (HWND window = FindEditor()) return window;
    } while (Deadline::Retry());
    throw Failure(NotFound, "no visible window with a caption beginning \"SQL Editor\"");
}

std::vector<HWND> Descendants(HWND window) {
    std::vector<HWND> all;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        all.push_back(child);
        const std::vector<HWND> below = Descendants(child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

HWND DescendantOfClass(HWND window, const wchar_t* part, size_t number) {
    std::vector<HWND> matching;
    for (HWND child : Descendants(window)) {
        if (Upper(ClassOf(child)).find(Upper(part)) != std::wstring::npos) matching.push_back(child);
    }
    if (number < 1 || number > matching.size()) {
        throw Failure(NotFound, "the window has " + std::to_string(matching.size()) + " of these controls, number " +
                                    std::to_string(number) + " was wanted");
    }
    return matching[number - 1];
}

RemoteMemory::RemoteMemory(HWND window, size_t bytes) {
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    process_ =
        OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE | PROCESS_QUERY_INFORMATION, FALSE, id);
    if (!process_) throw Failure(NoAnswer, "the process of the window cannot be opened");
    if (Is32BitOn64(process_) != Is32BitOn64(GetCurrentProcess())) {
        CloseHandle(process_);
        throw Failure(NoAnswer, "the window belongs to a process of another width (32 or 64 bits) than this program");
    }
    memory_ = VirtualAllocEx(process_, nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (!memory_) {
        CloseHandle(process_);
        throw Failure(NoAnswer, "no memory in the process of the window");
    }
}

RemoteMemory::~RemoteMemory() {
    // When a message timed out the target may still write there: its memory stays, and goes with the process.
    if (Deadline::Left()) VirtualFreeEx(process_, memory_, 0, MEM_RELEASE);
    CloseHandle(process_);
}

void RemoteMemory::Write(const void* data, size_t bytes, size_t offset) {
    if (!WriteProcessMemory(process_, static_cast<char*>(memory_) + offset, data, bytes, nullptr)) {
        throw Failure(NoAnswer, "the memory of the other process cannot be written");
    }
}

void RemoteMemory::Read(void* data, size_t bytes, size_t offset) const {
    if (!ReadProcessMemory(process_, static_cast<char*>(memory_) + offset, data, bytes, nullptr)) {
        throw Failure(NoAnswer, "the memory of the other process cannot be read");
    }
}

std::wstring RemoteMemory::ReadText(size_t capacity, size_t offset) const {
    std::wstring text(capacity, L'\0');
    Read(text.data(), capacity * sizeof(wchar_t), offset);
    text.resize(wcsnlen(text.data(), capacity));
    return text;
}
