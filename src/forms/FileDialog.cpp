#include "forms/FileDialog.h"

#include <cderr.h>

#include <algorithm>
#include <vector>

#include "automation/RuntimeError.h"
#include "forms/Events.h"
#include "forms/Surroundings.h"
#include "forms/SystemFunctions.h"

namespace {

// OFN_NOCHANGEDIR alone does not keep the open dialog from changing it.
class CurrentFolder {
public:
    CurrentFolder() {
        path_.resize(GetCurrentDirectoryW(0, nullptr));
        path_.resize(GetCurrentDirectoryW(static_cast<DWORD>(path_.size()), path_.data()));
    }
    ~CurrentFolder() {
        if (!path_.empty()) SetCurrentDirectoryW(path_.c_str());
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::wstring path_;
};

}  // namespace

std::wstring FileDialog::FileTitle() const { return FileName.substr(FileName.find_last_of(L"\\/:") + 1); }

void FileDialog::ShowOpen(HWND owner) { Show(owner, false); }

void FileDialog::ShowSave(HWND owner) { Show(owner, true); }

void FileDialog::Show(HWND owner, bool save) {
    const Surroundings surroundings;
    if (!System::CommDlgExtendedError) RaiseError(ErrorNumber::AutomationError, L"The file dialog cannot be loaded");
    const CurrentFolder folder;
    std::wstring filter = Filter;
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    filter += L'\0';

    std::vector<wchar_t> name(32768);  // the longest possible path
    if (FileName.size() < name.size()) std::copy(FileName.begin(), FileName.end(), name.begin());
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = owner;
    request.lpstrFilter = filter.c_str();
    request.nFilterIndex = static_cast<DWORD>(FilterIndex);
    request.lpstrFile = name.data();
    request.nMaxFile = static_cast<DWORD>(name.size());
    request.lpstrDefExt = DefaultExt.empty() ? nullptr : DefaultExt.c_str();
    request.Flags = OFN_EXPLORER | OFN_ENABLESIZING | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST |
                    (save ? OFN_OVERWRITEPROMPT | OFN_NOREADONLYRETURN : OFN_FILEMUSTEXIST);
    const auto ask = [&] { return save ? System::GetSaveFileNameW(&request) : System::GetOpenFileNameW(&request); };
    Events::Call call;
    BOOL chosen = ask();
    DWORD failure = chosen ? 0 : System::CommDlgExtendedError();
    if (failure == FNERR_INVALIDFILENAME && name[0] != L'\0') {
        // The dialog refuses some valid file names: it then starts without one.
        name[0] = L'\0';
        chosen = ask();
        failure = chosen ? 0 : System::CommDlgExtendedError();
    }
    call.Rethrow();
    if (failure != 0)
        RaiseError(ErrorNumber::AutomationError, L"The file dialog failed with " + std::to_wstring(failure));
    if (!chosen) RaiseError(ErrorNumber::DialogCancelled);
    FileName = name.data();
    FilterIndex = static_cast<int>(request.nFilterIndex);
}
