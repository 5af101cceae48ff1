#include <windows.h>

#include <optional>
#include <utility>

#include "forms/PlainText.h"
#include "forms/RichTextBox.h"

namespace {

// What becomes of a key.
enum class Meaning {
    Control,  // the control does what it does with it
    System,   // menus, windows, characters of AltGr: as in a window without keys of its own
    Nothing,  // and its character is swallowed too
    LineBreak,
    Copy,
    Cut,
    Paste,
    SelectAll,
};

// The control has keys that format, align, put symbols and accents, change what is typed from then on, or overwrite,
// and every version of it has some more. A text of SQL has no use for any of them, and some change it unseen. So with
// Ctrl or Alt the control gets the keys that stand here and no others.
Meaning MeaningOf(WPARAM key, int shift) noexcept {
    const bool shifted = (shift & ShiftState::Shift) != 0;
    // With both it is AltGr, and what it writes comes as a character.
    if ((shift & ShiftState::Alt) != 0)
        return key == VK_BACK && shift == ShiftState::Alt ? Meaning::Control : Meaning::System;
    if ((shift & ShiftState::Ctrl) != 0) {
        switch (key) {
            case VK_LEFT:
            case VK_RIGHT:
            case VK_UP:
            case VK_DOWN:
            case VK_HOME:
            case VK_END:
            case VK_PRIOR:
            case VK_NEXT:
                return Meaning::Control;
            case VK_BACK:
            case VK_DELETE:
            case 'Y':
            case 'Z':
                return shifted ? Meaning::Nothing : Meaning::Control;
            case VK_RETURN:
                return Meaning::LineBreak;
            case VK_INSERT:
            case 'C':
                return shifted ? Meaning::Nothing : Meaning::Copy;
            case 'X':
                return shifted ? Meaning::Nothing : Meaning::Cut;
            case 'V':
                return shifted ? Meaning::Nothing : Meaning::Paste;
            case 'A':
                return shifted ? Meaning::Nothing : Meaning::SelectAll;
            default:
                return Meaning::Nothing;
        }
    }
    switch (key) {
        case VK_RETURN:
            // The control's own is a line break within a paragraph, U+000B, which no database reads.
            return shifted ? Meaning::LineBreak : Meaning::Control;
        case VK_INSERT:
            return shifted ? Meaning::Paste : Meaning::Nothing;  // alone it would switch to overwriting, unseen
        case VK_DELETE:
            return shifted ? Meaning::Cut : Meaning::Control;
        default:
            return key >= VK_F1 && key <= VK_F24 ? Meaning::System : Meaning::Control;
    }
}

// The characters that come from keys like Ctrl+Enter or Escape, and write nothing.
bool IsKeyCode(WPARAM character) noexcept {
    return (character < L' ' && character != L'\b' && character != L'\t' && character != L'\r') || character == 0x7F;
}

// The key behind a keyboard message, as far as the message says.
LPARAM KeyOf(LPARAM lParam) noexcept { return lParam & 0x01FF0000; }

}  // namespace

bool RichTextBox::IsOfTakenKey(LPARAM lParam) noexcept {
    const std::optional<LPARAM> taken = std::exchange(takenKey_, std::nullopt);
    return taken && *taken == KeyOf(lParam);
}

bool RichTextBox::OnKey(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            break;
        case WM_SYSKEYUP:
            takenKey_.reset();
            return false;
        case WM_KEYUP:
            takenKey_.reset();
            // With both keys of a pair the control changes the direction of the paragraph when one comes up.
            if (wParam != VK_SHIFT && wParam != VK_CONTROL) return false;
            result = DefWindowProcW(Handle(), message, wParam, lParam);
            return true;
        case WM_CHAR:
            if (IsOfTakenKey(lParam) || IsKeyCode(wParam)) return true;
            if (!PlainText::IsLineBreak(static_cast<wchar_t>(wParam))) return false;
            SetSelText(L"\r\n");
            return true;
        case WM_SYSCHAR:  // Alt+X would make a character of the digits before the caret, and back
            if (!IsOfTakenKey(lParam)) result = DefWindowProcW(Handle(), message, wParam, lParam);
            return true;
        default:
            return false;
    }

    const int shift = ShiftKeys();
    // The character that comes with a key is in the queue already, and goes the way of its key.
    takenKey_ = KeyOf(lParam);
    if (KeyPressed && KeyPressed(static_cast<int>(wParam), shift)) return true;
    switch (MeaningOf(wParam, shift)) {
        case Meaning::Control:
            takenKey_.reset();
            return false;
        case Meaning::System:
            takenKey_.reset();
            result = DefWindowProcW(Handle(), message, wParam, lParam);
            return true;
        case Meaning::Nothing:
            return true;
        case Meaning::LineBreak:
            SetSelText(L"\r\n");
            ScrollCaret();
            return true;
        case Meaning::Copy:
            if (CopyRequested) CopyRequested();
            return true;
        case Meaning::Cut:
            if (CutRequested) CutRequested();
            return true;
        case Meaning::Paste:
            if (PasteRequested) PasteRequested();
            return true;
        case Meaning::SelectAll:
            Select(0, TextLength());
            return true;
    }
    return false;
}
