#include "support/Steps.h"

#include <algorithm>
#include <map>

#include "support/WindowWatchdog.h"

namespace {

struct Running {
    std::vector<Step> Steps;
    size_t At = 0;
    DWORD Since = 0;
    UINT_PTR Timer = 0;
    TIMERPROC Tick = nullptr;
    UINT Pause = 0;
};
Running* running = nullptr;

CHARFORMAT2W FormatAt(LONG position) {
    const HWND editor = EditorWindow::Editor();
    CHARRANGE before{};
    SendMessageW(editor, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&before));
    const LRESULT mask = SendMessageW(editor, EM_SETEVENTMASK, 0, 0);
    CHARRANGE range{position, position + 1};
    SendMessageW(editor, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    SendMessageW(editor, EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
    SendMessageW(editor, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&before));
    SendMessageW(editor, EM_SETEVENTMASK, 0, mask);
    return format;
}

}  // namespace

std::wstring StepsFixture::InSteps(const std::wstring& sql, Steps steps) {
    Running all{std::move(steps)};
    running = &all;
    all.Since = GetTickCount();
    all.Pause = Pause;
    // Set again after each step: a timer that is due already would leave the loop no moment to be idle.
    const auto tick = [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        KillTimer(nullptr, id);
        if (running == nullptr) return;
        struct Again {
            ~Again() {
                if (running != nullptr) running->Timer = SetTimer(nullptr, 0, running->Pause, running->Tick);
            }
        } const again;
        if (EditorWindow::Find() == nullptr) return;
        Running& self = *running;
        if (self.At == self.Steps.size()) {
            running = nullptr;
            EditorWindow::Close();
            return;
        }
        const bool done = self.Steps[self.At]();
        const bool late = GetTickCount() - self.Since > 5000;
        EXPECT_TRUE(done || !late) << "step " << self.At << " waits in vain, the text being shown as "
                                   << testing::PrintToString(Pattern(EditorWindow::Text()));
        if (!done && !late) return;
        ++self.At;
        self.Since = GetTickCount();
        if (late && !done) self.At = self.Steps.size();
    };
    all.Tick = tick;
    all.Timer = SetTimer(nullptr, 0, 15, tick);
    const WindowWatchdog watchdog(100000);
    const Object editor = Connected();
    std::wstring text = sql;
    editor.Call(L"Display", ByRef(text));
    KillTimer(nullptr, all.Timer);
    running = nullptr;
    return text;
}

StepsFixture::Steps StepsFixture::Joined(const std::vector<Steps>& all) {
    Steps joined;
    for (const Steps& some : all) joined.insert(joined.end(), some.begin(), some.end());
    return joined;
}

void StepsFixture::PutWithCaret(std::wstring text) {
    const size_t caret = text.find(L'|');
    text.erase(caret, 1);
    SetForegroundWindow(EditorWindow::Find());
    EditorWindow::SetText(text);
    SetFocus(EditorWindow::Editor());
    const std::wstring before = text.substr(0, caret);  // where a line end is one position of the control
    const auto at = static_cast<LONG>(caret) - static_cast<LONG>(std::ranges::count(before, L'\r'));
    SelectText(at, at);
}

COLORREF StepsFixture::ColourAt(LONG position) {
    const CHARFORMAT2W format = FormatAt(position);
    return (format.dwEffects & CFE_AUTOCOLOR) != 0 ? CLR_DEFAULT : format.crTextColor;
}

COLORREF StepsFixture::GroundAt(LONG position) {
    const CHARFORMAT2W format = FormatAt(position);
    return (format.dwEffects & CFE_AUTOBACKCOLOR) != 0 ? CLR_DEFAULT : format.crBackColor;
}

std::wstring StepsFixture::Pattern(const std::wstring& text) {
    std::map<COLORREF, wchar_t> letters{{CLR_DEFAULT, L'.'}};
    std::wstring pattern;
    LONG position = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == L'\r') continue;  // CR LF is one character of the control
        const wchar_t c = text[at];
        if (c == L' ' || c == L'\n') {
            pattern += c == L'\n' ? L'|' : c;
        } else {
            const auto next = static_cast<wchar_t>(L'a' + letters.size() - 1);
            pattern += letters.try_emplace(ColourAt(position), next).first->second;
        }
        ++position;
    }
    return pattern;
}

void StepsFixture::Key(WORD key, int modifiers) {
    // As the keyboard does it: the state of the modifiers goes with the messages.
    const auto send = [](WORD virtualKey, bool up) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = virtualKey;
        input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
        input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
        SendInput(1, &input, sizeof input);
    };
    const std::pair<int, WORD> all[] = {{FCONTROL, VK_CONTROL}, {FSHIFT, VK_SHIFT}, {FALT, VK_MENU}};
    for (const auto& [bit, virtualKey] : all) {
        if ((modifiers & bit) != 0) send(virtualKey, false);
    }
    send(key, false);
    send(key, true);
    for (const auto& [bit, virtualKey] : all) {
        if ((modifiers & bit) != 0) send(virtualKey, true);
    }
}

void StepsFixture::Type(const std::wstring& text) {
    for (const wchar_t c : text) SendMessageW(EditorWindow::Editor(), WM_CHAR, c, 1);
}
