#include "host/demo/Unregistered.h"

#include "automation/RuntimeError.h"
#include "host/demo/Console.h"

namespace {

std::wstring ProgramFolder() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

std::wstring Find(const std::wstring& file, const std::vector<std::wstring>& elsewhere) {
    const std::wstring folder = ProgramFolder();
    std::vector<std::wstring> paths = {folder + file};
    for (const std::wstring& other : elsewhere) paths.push_back(folder + other + L"\\" + file);
    for (const std::wstring& path : paths) {
        if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return path;
    }
    RaiseError(ErrorNumber::FileNotFound, L"kolvex-demo",
               L"The file " + file + L" was not found: has the whole zip been unpacked?");
}

HANDLE Create(const std::wstring& path) {
    ACTCTXW context{};
    context.cbSize = sizeof context;
    context.lpSource = path.c_str();
    HANDLE made = CreateActCtxW(&context);
    if (made == INVALID_HANDLE_VALUE)
        RaiseError(ErrorNumber::CannotCreateObject, L"kolvex-demo", path + L": " + SystemMessage(GetLastError()));
    return made;
}

}  // namespace

UnregisteredClasses::UnregisteredClasses(const std::wstring& file, const std::vector<std::wstring>& elsewhere)
    : context_(Create(Find(file, elsewhere))), active_(context_.Handle) {}
