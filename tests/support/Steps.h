#pragma once

#include <string>
#include <vector>

#include "support/Editing.h"

// Shows the window and lets its modal loop run between steps, so that what it does while it is idle happens too.
class StepsFixture : public EditingFixture {
protected:
    // Each step is called again and again until it answers true; one that does not within ten seconds fails. Returns
    // the text that came back.
    std::wstring InSteps(const std::wstring& sql, std::vector<std::function<bool()>> steps);

    // How long the loop may be idle between two steps, in milliseconds.
    static inline UINT Pause = 30;

    // As colours: the one that the character after a position is shown in, CLR_DEFAULT for the window's own.
    static COLORREF ColourAt(LONG position);
    static COLORREF GroundAt(LONG position);
    // The colours of the text, one letter a character: "." the window's own, then "a", "b", ... in the order in which
    // they come; blanks and line ends are left as they are.
    static std::wstring Pattern(const std::wstring& text);
    // A key with modifiers (FCONTROL, FSHIFT, FALT), posted to the window that has the focus, with its character.
    static void Key(WORD key, int modifiers = 0);
    using BrowsedFixture::Type;
    static void Type(const std::wstring& text);
};
