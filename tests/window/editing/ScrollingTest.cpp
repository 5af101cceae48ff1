#include <windows.h>

#include <richedit.h>

#include "forms/Clipboard.h"
#include "support/Editing.h"
#include "support/EditorTree.h"

// What writes or selects asks the control last of all to scroll to the caret. A control without the focus does not do
// that itself on every system.
namespace {

std::vector<UINT>* sent = nullptr;

// The messages of the editor that write, select and scroll, while it lives.
class Sent {
public:
    Sent()
        : hook_(SetWindowsHookExW(
              WH_CALLWNDPROC,
              [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
                  const auto& one = *reinterpret_cast<const CWPSTRUCT*>(lParam);
                  const bool counts =
                      one.message == EM_EXSETSEL || one.message == EM_REPLACESEL || one.message == EM_SCROLLCARET;
                  if (code == HC_ACTION && counts && one.hwnd == EditorWindow::Editor()) sent->push_back(one.message);
                  return CallNextHookEx(nullptr, code, wParam, lParam);
              },
              nullptr, GetCurrentThreadId())) {
        sent = &All;
    }
    ~Sent() {
        UnhookWindowsHookEx(hook_);
        sent = nullptr;
    }
    Sent(const Sent&) = delete;
    Sent& operator=(const Sent&) = delete;
    std::vector<UINT> All;

private:
    HHOOK hook_;
};

class ScrollingTest : public EditingFixture {
protected:
    // The key goes down without a loop between; the modifiers are FCONTROL, FSHIFT and FALT.
    static void Press(WORD key, int modifiers) {
        BYTE before[256];
        GetKeyboardState(before);
        BYTE keys[256]{};
        if ((modifiers & FCONTROL) != 0) keys[VK_CONTROL] = 0x80;
        if ((modifiers & FSHIFT) != 0) keys[VK_SHIFT] = 0x80;
        if ((modifiers & FALT) != 0) keys[VK_MENU] = 0x80;
        SetKeyboardState(keys);
        SendMessageW(EditorWindow::Editor(), modifiers == FALT ? WM_SYSKEYDOWN : WM_KEYDOWN, key, 1);
        SetKeyboardState(before);
    }
    static void ExpectScrolled(const char* what, const std::function<void()>& work) {
        Sent messages;
        work();
        ASSERT_LE(2U, messages.All.size()) << what;
        EXPECT_EQ(UINT{EM_SCROLLCARET}, messages.All.back()) << what;
    }
};

}  // namespace

TEST_F(ScrollingTest, EveryKeyScrollsToWhatItHasDone) {
    Inside(L"a\r\nb\r\nc;\r\nd", [] {
        Clipboard::SetText(EditorWindow::Find(), L"\"pasted\"");
        SetFocus(EditorWindow::Editor());
        const struct {
            const char* What;
            WORD Key;
            int Modifiers;
        } keys[] = {{"Enter", VK_RETURN, 0},
                    {"a comment", VK_DIVIDE, FCONTROL},
                    {"a line up", VK_UP, FALT},
                    {"a line down", VK_DOWN, FALT},
                    {"a line twice", 'D', FCONTROL},
                    {"a line less", 'K', FCONTROL | FSHIFT},
                    {"the statement", VK_SPACE, FCONTROL | FSHIFT},
                    {"from code", 'V', FCONTROL | FSHIFT},
                    {"the sheet's text", 'R', FCONTROL | FSHIFT}};
        for (const auto& one : keys) {
            SelectText(3, 3);
            ExpectScrolled(one.What, [&] { Press(one.Key, one.Modifiers); });
        }
    });
}

TEST_F(ScrollingTest, AndSoDoTheMenus) {
    Inside(L"a b", [] {
        ShowPage(1);
        ExpectScrolled("Execute", [] { EditorWindow::Choose(L"Action", L"Execute"); });
        Clipboard::SetText(EditorWindow::Find(), L"pasted");
        SetFocus(EditorWindow::Editor());
        ExpectScrolled("Paste", [] { EditorWindow::Choose(L"Edit", L"Paste"); });
        ExpectScrolled("Time/Date", [] { EditorWindow::Choose(L"Edit", L"Time/Date"); });
    });
}
