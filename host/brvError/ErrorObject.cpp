#include "host/brvError/ErrorObject.h"

#include <windows.h>

#include <memory>

#include "automation/DynamicObject.h"
#include "automation/RuntimeError.h"
#include "host/brvError/EventLog.h"

namespace {

struct State {
    std::wstring Title = L"brvError";  // until Constructor was called
    std::wstring Version;
    bool DisplayAlerts = true;

    State() {
        wchar_t off[4]{};
        DisplayAlerts = !(GetEnvironmentVariableW(L"BRVERROR_ALERTS", off, 4) == 1 && off[0] == L'0');
    }
    std::wstring Program() const { return Version.empty() ? Title : Title + L" " + Version; }
};

// A value as text; what has none is the empty text.
std::wstring TextFrom(const Variant& value) noexcept {
    try {
        return value.IsNull() || value.IsEmpty() || value.IsMissing() || value.IsNothing() ? std::wstring()
                                                                                           : value.ToText();
    } catch (...) {
        return {};
    }
}

std::wstring Member(const Object& object, const wchar_t* name) noexcept {
    try {
        return object ? TextFrom(object.Get(name)) : std::wstring();
    } catch (...) {
        return {};
    }
}

Object ObjectFrom(const Variant& value) noexcept {
    try {
        return value.IsObject() ? value.ToObject() : Object();
    } catch (...) {
        return {};
    }
}

// As much as fits on a screen, without the NUL characters, which would end the text.
std::wstring Shown(std::wstring text) {
    constexpr size_t Most = 2000;
    if (text.size() > Most) text = text.substr(0, Most) + L"...";
    for (wchar_t& unit : text) {
        if (unit == L'\0') unit = L' ';
    }
    return text;
}

BOOL CALLBACK TakeOwner(HWND window, LPARAM found) {
    if (!IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    const bool topmost = (GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
    HWND& owner = *reinterpret_cast<HWND*>(found);
    if (owner == nullptr || topmost) owner = window;
    return !topmost;
}

// The window that the user works in: a message box that it does not own would lie under a topmost window. While the
// user works in another program the thread has no active window; then it is one that could become active.
HWND Owner() noexcept {
    HWND owner = GetActiveWindow();
    if (owner == nullptr) EnumThreadWindows(GetCurrentThreadId(), &TakeOwner, reinterpret_cast<LPARAM>(&owner));
    return owner;
}

// A box pumps messages, and what a timer of the host does meanwhile may fail in turn, once a second or so: a box inside
// a box inside a box, until the stack is used up. While one is open no other is shown.
bool alertShows = false;

struct Open {
    Open() noexcept { alertShows = true; }
    ~Open() { alertShows = false; }
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
};

// The texts are ones that fit.
void Show(const std::wstring& message, const std::wstring& title, UINT icon) {
    const Open shown;
    const HWND owner = Owner();
    const UINT placed = owner != nullptr ? 0 : MB_TASKMODAL | MB_TOPMOST | MB_SETFOREGROUND;
    MessageBoxW(owner, message.c_str(), title.c_str(), MB_OK | icon | placed);
}

// "In module.routine (number 5, source x)", of which any part may be missing.
std::wstring Origin(const std::wstring& module, const std::wstring& routine, const std::wstring& number,
                    const std::wstring& source) {
    std::wstring place = module;
    if (!module.empty() && !routine.empty()) place += L".";
    place += routine;
    std::wstring details = number.empty() ? std::wstring() : L"number " + number;
    if (!source.empty()) details += (details.empty() ? L"source " : L", source ") + source;
    if (place.empty()) place = L"an unnamed place";
    return L"In " + place + (details.empty() ? std::wstring() : L" (" + details + L")");
}

void ErrorMessage(const State& state, const Arguments& arguments) {
    const std::wstring module = TextFrom(arguments[0]);
    const std::wstring routine = TextFrom(arguments[1]);
    const Object error = ObjectFrom(arguments[2]);
    const std::wstring number = Member(error, L"Number");
    const std::wstring source = Member(error, L"Source");
    const std::wstring description = Member(error, L"Description");
    EventLog(state.Title)
        .Append({state.Program(), module, routine, number, source, description, TextFrom(arguments[3]),
                 TextFrom(arguments[4]), Member(error, L"LastDllError"), Member(error, L"HelpFile"),
                 Member(error, L"HelpContext")});
    if (!state.DisplayAlerts || alertShows) return;
    std::wstring text = description.empty() ? std::wstring(L"An error occurred that has no description.") : description;
    text = Shown(text) + L"\r\n\r\n" + Shown(Origin(module, routine, number, source));
    Show(text, Shown(state.Title), MB_ICONWARNING);
}

}  // namespace

Object MakeErrorComponent() {
    const auto state = std::make_shared<State>();
    auto* made = new DynamicObject;
    Object held = Object::Attach(made);
    made->Define(L"Constructor", [state](const Arguments& arguments) {
        const std::wstring title = TextFrom(arguments[0]);
        if (!title.empty()) state->Title = title;
        state->Version.clear();
        for (size_t at = 1; at <= 3; ++at) {
            const std::wstring part = TextFrom(arguments[at]);
            if (!part.empty()) state->Version += (state->Version.empty() ? L"" : L".") + part;
        }
        return Variant();
    });
    made->Define(L"Alert", [state](const Arguments& arguments) {
        const std::wstring message = TextFrom(arguments[0]);
        const std::wstring title = TextFrom(arguments[1]);
        if (state->DisplayAlerts && !alertShows) {
            Show(Shown(message), Shown(title.empty() ? state->Title : title), MB_ICONINFORMATION);
        } else {
            // Nobody is there to close a box: what could not be shown is kept.
            EventLog(state->Title).Append({state->Program(), L"", L"", L"", L"", message});
        }
        return Variant();
    });
    made->Define(L"LogEvent", [state](const Arguments& arguments) {
        EventLog(state->Title).Append({state->Program(), L"", L"", L"", L"", TextFrom(arguments[0])});
        return Variant();
    });
    made->Define(L"ErrorMessage", [state](const Arguments& arguments) {
        ErrorMessage(*state, arguments);
        return Variant();
    });
    made->Define(L"DisplayAlerts", [state](const Arguments&) { return Variant(state->DisplayAlerts); });
    made->DefineLet(L"DisplayAlerts", [state](const Variant& value) { state->DisplayAlerts = value.ToBoolean(); });
    made->Define(L"LogFile", [state](const Arguments&) { return Variant(EventLog(state->Title).FileName()); });
    return held;
}
