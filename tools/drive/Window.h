#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <vector>

// Windows of another process, reached by messages only. Everything has a time limit: a target that hangs must not take
// this program along.

// What ends the program with an exit code of its own.
struct Failure : std::runtime_error {
    Failure(int code, const std::string& what) : std::runtime_error(what), Code(code) {}
    int Code;
};
enum ExitCode { Done = 0, NotFound = 1, Usage = 2, NoAnswer = 3, Disabled = 4 };

// The time limit of the whole command.
namespace Deadline {
void Set(double seconds);
DWORD Left();  // milliseconds; 0 when it has passed
// Waits a moment before another attempt; false when there is no time for one.
bool Retry();
}  // namespace Deadline

// SendMessage within the time limit; throws Failure{NoAnswer}.
LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
void Post(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

std::wstring TextOf(HWND window);
std::wstring ClassOf(HWND window);
std::wstring WithoutAmpersands(const std::wstring& caption);

// The visible top-level window whose caption begins "SQL Editor" and which is no dialog; null when there is none.
HWND FindEditor();
// The same within the time limit; throws Failure{NotFound}.
HWND WaitForEditor();

// Descendants in z-order, parents first.
std::vector<HWND> Descendants(HWND window);
// The descendant numbered `number`, from 1, of those whose class name contains `part`, upper and lower case being the
// same; throws Failure{NotFound}.
HWND DescendantOfClass(HWND window, const wchar_t* part, size_t number);

// Memory in the process of a window, for messages whose pointers the system does not carry across. Structures have the
// target's layout only when both processes have the same width, which the constructor checks.
class RemoteMemory {
public:
    RemoteMemory(HWND window, size_t bytes);
    ~RemoteMemory();
    RemoteMemory(const RemoteMemory&) = delete;
    RemoteMemory& operator=(const RemoteMemory&) = delete;

    LPARAM Address(size_t offset = 0) const { return reinterpret_cast<LPARAM>(memory_) + static_cast<LPARAM>(offset); }
    void Write(const void* data, size_t bytes, size_t offset = 0);
    void Read(void* data, size_t bytes, size_t offset = 0) const;
    // Characters up to the first NUL, at most `capacity`.
    std::wstring ReadText(size_t capacity, size_t offset = 0) const;

private:
    HANDLE process_ = nullptr;
    void* memory_ = nullptr;
};
