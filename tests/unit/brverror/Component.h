#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "automation/DynamicObject.h"
#include "automation/Object.h"
#include "automation/RuntimeError.h"

// The component as it was built, taken from the folder of this program without the registry.
namespace Component {

inline constexpr CLSID Class = {0x9CD017BD, 0xAC5D, 0x430F, {0xAD, 0xC8, 0xEE, 0xDB, 0xF3, 0x99, 0xC0, 0x40}};

// The DLL, loaded for as long as the program runs. Fails loudly when it is not there.
HMODULE Library();
template <class Function>
Function* Exported(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(Library(), name)));
}
// A new object of its class.
Object Make();
// The same with Constructor called: title "Test Program", version 4.5.6.
Object MakeConstructed();

}  // namespace Component

// An environment variable for the time of a test; null takes it away.
class EnvironmentValue {
public:
    EnvironmentValue(const wchar_t* name, const wchar_t* value);
    ~EnvironmentValue();
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;

private:
    const wchar_t* name_;
    bool had_;
    std::wstring old_;
};

// A folder of its own for a test, with a log file in it that BRVERROR_LOG names. Removed with all its files.
class LogFolder {
public:
    LogFolder();
    ~LogFolder();
    std::wstring File(const wchar_t* name = L"events.log") const { return folder_ + L"\\" + name; }

private:
    std::wstring folder_;
    EnvironmentValue variable_;
};

bool FileExists(const std::wstring& name);
std::string BytesOf(const std::wstring& name);
void WriteBytes(const std::wstring& name, const std::string& bytes);
// The entries of a log, each split at its tabs. An entry that does not end with CR LF is given as the one field
// "unfinished".
std::vector<std::vector<std::wstring>> EntriesOf(const std::wstring& name);

// A message box as the user saw it.
struct Box {
    std::wstring Title;
    std::wstring Text;
    HWND Owner;
    bool Warning;      // shows the system's warning sign
    bool Information;  // shows the system's information sign
};
// Does the work, closes each message box of this thread that comes up meanwhile, and tells what they were. A box that
// cannot be closed ends the program, since nobody else would.
std::vector<Box> BoxesOf(const std::function<void()>& work);

// An error object with the six members, as the hosts' language has it.
Object MakeError(long number, const wchar_t* source, const wchar_t* description);
