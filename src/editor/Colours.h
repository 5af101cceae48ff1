#pragma once

#include <optional>
#include <string>
#include <vector>

#include "editor/Palette.h"
#include "forms/RichTextBox.h"
#include "sql/Lines.h"

// Shows the SQL of the editor in colours: what is seen at once or nearly so, the rest while nobody waits. A copy of the
// text is kept for it. Texts beyond 1 MB, those that came with formats, and schemes of high contrast have none.
class Colours {
public:
    explicit Colours(RichTextBox& box) : box_(box) {}

    // Sets the database type, which decides the dialect, the keywords and the functions.
    void SetLanguage(long dbType);
    void TextChanged();
    void SelectionChanged() noexcept { marksDue_ = true; }
    // The control shows all of it plain again.
    void MadePlain();
    // The system's colours may be others.
    void SettingsChanged();
    // One step; whether there is more to do. A failure is passed on, and ends the colours for this text.
    bool Idle();
    void GiveUp() noexcept { failed_ = true; }

    const Sql::Dialect& Dialect() const noexcept { return *dialect_; }

private:
    static constexpr size_t Longest = 1024 * 1024;  // characters

    bool Off();
    void Near(const RichTextBox::Edit& edit);
    bool Read();
    void Compare(std::wstring_view text);
    bool Work(bool everything);
    bool Apply(size_t from, size_t to, size_t most);
    void MakePalette();
    void FindMarks();
    void FindPair(size_t caret, std::vector<Sql::Lines::Marked>& marks);
    void FindSame(size_t from, size_t to, std::vector<Sql::Lines::Marked>& marks);

    RichTextBox& box_;
    const Sql::Dialect* dialect_ = &Sql::DialectOf(0);
    Sql::Lines lines_;
    unsigned texts_ = 0;  // of the control, when the text was read
    bool stale_ = true;   // the text has to be read again
    bool fresh_ = true;   // and nothing of it is shown in colours
    bool failed_ = false;
    bool marksDue_ = false;
    std::wstring reading_;  // what was read so far
    std::pair<size_t, size_t> markedLines_{};
    std::optional<Palette> palette_;
    bool contrast_ = false;  // a contrast theme has colours enough
};
