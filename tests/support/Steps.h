#pragma once

#include <concepts>
#include <string>
#include <vector>

#include "support/Editing.h"

// What is done between two turns of the window's loop. Work that answers nothing is done when it has run; work that
// answers false is called again.
class Step {
public:
    template <std::invocable Work>
    requires(!std::same_as<Work, Step>) Step(Work work)  // NOLINT(google-explicit-constructor): a lambda is a step
        : run_([work = std::move(work)]() mutable {
              if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
                  work();
                  return true;
              } else {
                  return work();
              }
          }) {}
    bool operator()() { return run_(); }

private:
    std::function<bool()> run_;
};

// Shows the window and lets its modal loop run between steps, so that what it does while it is idle happens too.
class StepsFixture : public EditingFixture {
protected:
    using Steps = std::vector<Step>;
    // One step after the other; one that is not done within five seconds fails. Returns the text that came back.
    std::wstring InSteps(const std::wstring& sql, Steps steps);
    static Steps Joined(const std::vector<Steps>& all);
    // A key goes down and up.
    static Step Press(WORD key, int modifiers = 0) {
        return [=] { Key(key, modifiers); };
    }
    // Waits until what is read is what is expected, so many turns at the most.
    template <class Value, class Read>
    static Step Becomes(Value expected, Read read, int turns = 40) {
        return [=]() mutable {
            if (read() != expected && --turns > 0) return false;
            EXPECT_EQ(expected, read());
            return true;
        };
    }
    // Puts the text into the editor, which gets the focus; the caret goes to where "|" stands in it.
    static void PutWithCaret(std::wstring text);

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
