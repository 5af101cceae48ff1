#include <gtest/gtest.h>
#include <richedit.h>

#include <initializer_list>
#include <optional>
#include <set>
#include <string>

#include "forms/RichTextBox.h"
#include "support/TopWindow.h"

namespace {

// The state of the keyboard as this thread sees it, for the time that it lives.
class Held {
public:
    Held(std::initializer_list<int> keys) {
        GetKeyboardState(before_);
        BYTE state[256]{};
        for (const int key : keys) state[key] = 0x80;
        SetKeyboardState(state);
    }
    ~Held() { SetKeyboardState(before_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

private:
    BYTE before_[256]{};
};

struct KeyEditor {
    TopWindow Top;
    RichTextBox Box;
    std::wstring Asked;  // c, x and v for copy, cut and paste
    KeyEditor() {
        Box.Create(Top.Handle(), 1);
        Box.SetEditorFont(L"Courier New", 10);
        Box.Move(0, 0, 6000, 5000);
        Box.CopyRequested = [this] { Asked += L'c'; };
        Box.CutRequested = [this] { Asked += L'x'; };
        Box.PasteRequested = [this] { Asked += L'v'; };
    }
    // A key with these others held, as it comes from a keyboard: down, the character that Windows makes of it, up.
    void Press(WPARAM key, std::initializer_list<int> held = {}, wchar_t character = 0) {
        bool alt = false;
        bool ctrl = false;
        for (const int other : held) {
            alt = alt || other == VK_MENU;
            ctrl = ctrl || other == VK_CONTROL;
        }
        const bool system = alt && !ctrl;
        const Held state(held);
        const LPARAM place = 1 | static_cast<LPARAM>(key & 0xFF) << 16;
        Box.Send(system ? WM_SYSKEYDOWN : WM_KEYDOWN, key, place);
        if (character != 0) Box.Send(system ? WM_SYSCHAR : WM_CHAR, character, place);
        Box.Send(system ? WM_SYSKEYUP : WM_KEYUP, key, place | static_cast<LPARAM>(0xC0000000));
    }
};

DWORD Effects(const RichTextBox& box) {
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    box.Send(EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
    return format.dwEffects &
           (CFE_BOLD | CFE_ITALIC | CFE_UNDERLINE | CFE_STRIKEOUT | CFE_SUBSCRIPT | CFE_SUPERSCRIPT | CFE_ALLCAPS);
}

WORD Alignment(const RichTextBox& box) {
    PARAFORMAT2 format{};
    format.cbSize = sizeof format;
    box.Send(EM_GETPARAFORMAT, 0, reinterpret_cast<LPARAM>(&format));
    return format.wAlignment;
}

}  // namespace

TEST(RichTextKeys, EveryEnterIsALineEnd) {
    KeyEditor editor;
    editor.Box.SetText(L"ab");
    editor.Box.Select(1, 0);
    editor.Press(VK_RETURN, {VK_SHIFT}, L'\r');
    EXPECT_EQ(L"a\r\nb", editor.Box.Text());
    EXPECT_EQ(3, editor.Box.SelStart());
    editor.Press(VK_RETURN, {VK_CONTROL}, L'\n');
    EXPECT_EQ(L"a\r\n\r\nb", editor.Box.Text());
    editor.Press(VK_RETURN, {}, L'\r');
    EXPECT_EQ(L"a\r\n\r\n\r\nb", editor.Box.Text());
    EXPECT_EQ(7, editor.Box.SelStart());
    editor.Box.Send(EM_UNDO);
    editor.Box.Send(EM_UNDO);
    editor.Box.Send(EM_UNDO);
    EXPECT_EQ(L"ab", editor.Box.Text());
    // A selection is replaced, as by any character.
    editor.Box.Select(0, 2);
    editor.Press(VK_RETURN, {VK_SHIFT}, L'\r');
    EXPECT_EQ(L"\r\n", editor.Box.Text());
}

TEST(RichTextKeys, WhatIsTypedAfterAKeyThatDoesNothingIsWritten) {
    KeyEditor editor;
    editor.Press(VK_OEM_7, {VK_CONTROL, VK_SHIFT}, L'"');
    editor.Press(VK_SPACE, {VK_CONTROL}, L' ');
    EXPECT_EQ(L"", editor.Box.Text());
    editor.Press(VK_INSERT);
    editor.Press('A', {}, L'a');
    editor.Box.Send(WM_KEYDOWN, VK_INSERT, 1 | 0x52 << 16);  // held while another key is typed
    editor.Press('B', {}, L'b');
    EXPECT_EQ(L"ab", editor.Box.Text());
}

TEST(RichTextKeys, InsertDoesNotOverwrite) {
    KeyEditor editor;
    editor.Box.SetText(L"abc");
    editor.Press(VK_INSERT);
    editor.Press('X', {}, L'x');
    EXPECT_EQ(L"xabc", editor.Box.Text());
    EXPECT_EQ(L"", editor.Asked);
}

namespace {

// Stands between the editor and the control for editors that are made while it lives, and keeps the keys that get
// through to the control. What the control does with them differs by its version.
class ControlsKeys {
public:
    ControlsKeys() {
        keys_.clear();
        hook_ = SetWindowsHookExW(WH_CBT, &ControlsKeys::Made, nullptr, GetCurrentThreadId());
        editor_.emplace();
        UnhookWindowsHookEx(hook_);
    }
    ~ControlsKeys() {
        editor_.reset();
        original_ = nullptr;
    }
    ControlsKeys(const ControlsKeys&) = delete;
    ControlsKeys& operator=(const ControlsKeys&) = delete;
    bool Gets(WPARAM key, std::initializer_list<int> held) {
        keys_.clear();
        editor_->Press(key, held);
        return keys_.contains(key);
    }
    bool GetsUp(WPARAM key) {
        up_ = 0;
        editor_->Box.Send(WM_KEYUP, key, 1);
        return up_ == key;
    }

private:
    static LRESULT CALLBACK Made(int code, WPARAM window, LPARAM data) noexcept {
        wchar_t name[32]{};
        GetClassNameW(reinterpret_cast<HWND>(window), name, 32);
        if (code == HCBT_CREATEWND && _wcsnicmp(name, L"RichEdit", 8) == 0 && original_ == nullptr) {
            original_ = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(reinterpret_cast<HWND>(window), GWLP_WNDPROC,
                                                                    reinterpret_cast<LONG_PTR>(&ControlsKeys::Keep)));
        }
        return CallNextHookEx(nullptr, code, window, data);
    }
    static LRESULT CALLBACK Keep(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
        if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN) keys_.insert(wParam);
        if (message == WM_KEYUP) up_ = wParam;
        return CallWindowProcW(original_, window, message, wParam, lParam);
    }
    static inline WNDPROC original_ = nullptr;
    static inline std::set<WPARAM> keys_;
    static inline WPARAM up_ = 0;
    HHOOK hook_ = nullptr;
    std::optional<KeyEditor> editor_;
};

}  // namespace

TEST(RichTextKeys, TheControlGetsTheKeysThatItIsMeantToGetAndNoOthers) {
    ControlsKeys control;
    for (const WPARAM key : {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, VK_HOME, VK_END, VK_PRIOR, VK_NEXT}) {
        EXPECT_TRUE(control.Gets(key, {})) << key;
        EXPECT_TRUE(control.Gets(key, {VK_SHIFT})) << key;
        EXPECT_TRUE(control.Gets(key, {VK_CONTROL})) << key;
        EXPECT_TRUE(control.Gets(key, {VK_CONTROL, VK_SHIFT})) << key;
        EXPECT_FALSE(control.Gets(key, {VK_MENU})) << key;
    }
    for (const WPARAM key : {WPARAM{VK_BACK}, WPARAM{VK_DELETE}, WPARAM{'Y'}, WPARAM{'Z'}}) {
        EXPECT_TRUE(control.Gets(key, {})) << key;
        EXPECT_TRUE(control.Gets(key, {VK_CONTROL})) << key;
        EXPECT_FALSE(control.Gets(key, {VK_CONTROL, VK_SHIFT})) << key;
        EXPECT_EQ(key == VK_BACK, control.Gets(key, {VK_MENU})) << key;
    }
    EXPECT_TRUE(control.Gets('A', {}));
    EXPECT_TRUE(control.Gets('A', {VK_SHIFT}));
    EXPECT_TRUE(control.Gets(VK_TAB, {}));
    EXPECT_TRUE(control.Gets(VK_RETURN, {}));
    EXPECT_FALSE(control.Gets(VK_RETURN, {VK_SHIFT}));
    EXPECT_FALSE(control.Gets(VK_DELETE, {VK_SHIFT}));
    EXPECT_FALSE(control.Gets(VK_INSERT, {})) << "it would overwrite from then on";
    EXPECT_FALSE(control.Gets(VK_INSERT, {VK_SHIFT}));
    for (WPARAM key = VK_F1; key <= VK_F24; ++key) {
        if (key == VK_F10) continue;  // which opens the menus
        EXPECT_FALSE(control.Gets(key, {})) << key;
    }
    // With both keys of a pair the control changes the direction of the paragraph when one comes up.
    for (const WPARAM key : {VK_SHIFT, VK_CONTROL}) EXPECT_FALSE(control.GetsUp(key)) << key;
    for (const WPARAM key : {VK_RETURN, VK_MENU, VK_LEFT}) EXPECT_TRUE(control.GetsUp(key)) << key;
    for (WPARAM key = '0'; key <= 'X'; ++key) EXPECT_FALSE(control.Gets(key, {VK_CONTROL})) << key;
    for (const WPARAM key : {VK_INSERT, VK_RETURN, VK_TAB, VK_SPACE, VK_OEM_PLUS, VK_OEM_MINUS, VK_OEM_1, VK_OEM_7})
        EXPECT_FALSE(control.Gets(key, {VK_CONTROL})) << key;
}

TEST(RichTextKeys, TheOldKeysOfTheClipboardAreTheCommands) {
    KeyEditor editor;
    editor.Box.SetText(L"abc");
    editor.Box.Select(0, 2);
    editor.Press(VK_INSERT, {VK_CONTROL});
    editor.Press('C', {VK_CONTROL}, L'\x03');
    EXPECT_EQ(L"cc", editor.Asked);
    editor.Press(VK_DELETE, {VK_SHIFT});
    editor.Press('X', {VK_CONTROL}, L'\x18');
    EXPECT_EQ(L"ccxx", editor.Asked);
    editor.Press(VK_INSERT, {VK_SHIFT});
    editor.Press('V', {VK_CONTROL}, L'\x16');
    EXPECT_EQ(L"ccxxvv", editor.Asked);
    EXPECT_EQ(L"abc", editor.Box.Text());
    editor.Asked.clear();
    for (const UINT message : {UINT{WM_COPY}, UINT{WM_CUT}, UINT{WM_PASTE}, UINT{EM_PASTESPECIAL}})
        editor.Box.Send(message);
    EXPECT_EQ(L"cxvv", editor.Asked);
    EXPECT_EQ(L"abc", editor.Box.Text());
    editor.Press('A', {VK_CONTROL}, L'\x01');
    EXPECT_EQ(L"abc", editor.Box.SelText());
}

TEST(RichTextKeys, WithShiftBesideCtrlTheyAreNone) {
    KeyEditor editor;
    editor.Box.SetText(L"abc def");
    editor.Box.Select(0, 7);
    editor.Box.SetSelText(L"one two");
    editor.Box.Select(4, 3);
    for (const WPARAM key : {WPARAM{'C'}, WPARAM{'X'}, WPARAM{'V'}, WPARAM{'A'}, WPARAM{'Y'}, WPARAM{'Z'},
                             WPARAM{VK_INSERT}, WPARAM{VK_DELETE}, WPARAM{VK_BACK}}) {
        SCOPED_TRACE(key);
        editor.Press(key, {VK_CONTROL, VK_SHIFT});
        EXPECT_EQ(L"", editor.Asked);
        EXPECT_EQ(L"one two", editor.Box.Text());
        EXPECT_EQ(L"two", editor.Box.SelText());
    }
}

TEST(RichTextKeys, NothingFormatsAlignsOrSubstitutes) {
    KeyEditor editor;
    editor.Box.SetText(L"abc 41");
    int changes = 0;
    editor.Box.Change = [&changes] { ++changes; };
    for (const bool selected : {true, false}) {
        editor.Box.Select(selected ? 0 : 6, selected ? 6 : 0);
        for (WPARAM key = 1; key < 0xFF; ++key) {
            // Keys that only move, select, delete or undo, commands, and the buttons of the mouse.
            if (key <= VK_XBUTTON2 || (key >= VK_PRIOR && key <= VK_DOWN) || key == VK_RETURN || key == VK_BACK ||
                key == VK_DELETE || key == VK_TAB || key == VK_ESCAPE || key == VK_INSERT || key == VK_MENU ||
                key == VK_SHIFT || key == VK_CONTROL || key == VK_APPS || key == VK_F10 ||
                (key >= VK_LWIN && key <= VK_SLEEP)) {
                continue;
            }
            const auto character = static_cast<wchar_t>(key >= 'A' && key <= 'Z' ? key - '@' : 0);
            if (key != 'Y' && key != 'Z' && key != 'A') editor.Press(key, {VK_CONTROL}, character);
            editor.Press(key, {VK_CONTROL, VK_SHIFT}, character);
            editor.Press(key, {VK_CONTROL, VK_MENU});
            editor.Press(key, {VK_CONTROL, VK_SHIFT, VK_MENU});
        }
        editor.Press('X', {VK_MENU}, L'x');
        editor.Press('X', {VK_MENU, VK_SHIFT}, L'X');
        EXPECT_EQ(0U, Effects(editor.Box));
        EXPECT_EQ(PFA_LEFT, Alignment(editor.Box));
        EXPECT_EQ(L"abc 41", editor.Box.Text());
        EXPECT_EQ(0, changes);
    }
}

TEST(RichTextKeys, KeysThatMoveSelectDeleteAndUndoAreTheControls) {
    KeyEditor editor;
    editor.Box.SetText(L"one two three\r\nlast");
    editor.Press(VK_RIGHT, {VK_CONTROL});
    EXPECT_EQ(4, editor.Box.SelStart());
    editor.Press(VK_RIGHT, {VK_CONTROL, VK_SHIFT});
    EXPECT_EQ(L"two ", editor.Box.SelText());
    editor.Press(VK_DELETE);
    EXPECT_EQ(L"one three\r\nlast", editor.Box.Text());
    editor.Press('Z', {VK_CONTROL}, L'\x1A');
    EXPECT_EQ(L"one two three\r\nlast", editor.Box.Text());
    editor.Press('Y', {VK_CONTROL}, L'\x19');
    EXPECT_EQ(L"one three\r\nlast", editor.Box.Text());
    editor.Press(VK_END, {VK_CONTROL});
    EXPECT_EQ(15, editor.Box.SelStart());
    editor.Press(VK_HOME, {VK_CONTROL, VK_SHIFT});
    EXPECT_EQ(15, editor.Box.SelLength());
}

TEST(RichTextKeys, TheCharactersOfKeysAndOfOtherProgramsAreTextOrNothing) {
    KeyEditor editor;
    for (const wchar_t code : {L'\x01', L'\n', L'\x0B', L'\x0C', L'\x1B', L'\x7F'}) editor.Box.Send(WM_CHAR, code, 1);
    EXPECT_EQ(L"", editor.Box.Text());
    // With AltGr, which is both keys.
    editor.Press('Q', {VK_CONTROL, VK_MENU}, L'@');
    editor.Press('E', {VK_CONTROL, VK_MENU}, L'\x20AC');
    for (const wchar_t unit : {L'\x4E2D', L'\t', L'\x2028', L'x', L'\x0085'}) editor.Box.Send(WM_CHAR, unit, 1);
    EXPECT_EQ(L"@\x20AC\x4E2D\t\r\nx\r\n", editor.Box.Text());
}

TEST(RichTextKeys, TheProgramIsAskedFirst) {
    KeyEditor editor;
    std::wstring asked;
    editor.Box.KeyPressed = [&asked](int key, int shift) {
        asked += std::to_wstring(key) + L"," + std::to_wstring(shift) + L";";
        return key == 'Q';
    };
    editor.Press('Q', {}, L'q');
    editor.Press('Q', {VK_SHIFT, VK_CONTROL}, L'\x11');
    editor.Press('R', {}, L'r');
    EXPECT_EQ(L"81,0;81,3;82,0;", asked);
    EXPECT_EQ(L"r", editor.Box.Text());
}

// A dialog that asks for the keys with the message that it has: the control takes itself for its child from then on.
TEST(RichTextKeys, AskedByADialogItStaysAnEditor) {
    KeyEditor editor;
    MSG message{editor.Box.Handle(), WM_KEYDOWN, VK_ESCAPE, 1, 0, {}};
    const LRESULT code =
        SendMessageW(editor.Box.Handle(), WM_GETDLGCODE, VK_ESCAPE, reinterpret_cast<LPARAM>(&message));
    EXPECT_NE(0, code & DLGC_WANTALLKEYS);
    EXPECT_NE(0, code & DLGC_WANTARROWS);
    EXPECT_NE(0, code & DLGC_WANTTAB);
    editor.Box.SetText(L"ab");
    editor.Press(VK_RETURN, {}, L'\r');
    EXPECT_EQ(L"\r\nab", editor.Box.Text());
    editor.Press(VK_ESCAPE, {}, L'\x1B');
    MSG next;
    while (PeekMessageW(&next, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&next);
    EXPECT_TRUE(IsWindow(editor.Box.Handle()));
    EXPECT_EQ(editor.Top.Handle(), GetParent(editor.Box.Handle()));
}

TEST(RichTextKeys, APaneIsNotClosed) {
    KeyEditor editor;
    SendMessageW(editor.Top.Handle(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(editor.Top.Handle()));
    EXPECT_TRUE(IsWindow(editor.Box.Handle()));
}
