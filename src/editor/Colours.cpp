#include "editor/Colours.h"

#include <commctrl.h>

#include <algorithm>

#include "catalogue/Catalogue.h"

namespace {

constexpr size_t RunsAtOnce = 40;  // about 6 ms under Wine
constexpr long IdleStep = 12;      // milliseconds
constexpr size_t CharactersAtOnce = 32 * 1024;
constexpr size_t NearEnough = 16 * 1024;  // characters that are read again at once for an edit
constexpr size_t PairWithin = 20000;      // lines that are looked through for the other bracket

// True when so many milliseconds have gone by.
class Until {
public:
    explicit Until(long milliseconds) noexcept {
        QueryPerformanceFrequency(&end_);
        const long long length = end_.QuadPart * milliseconds / 1000;
        QueryPerformanceCounter(&end_);
        end_.QuadPart += length;
    }
    explicit operator bool() const noexcept {
        LARGE_INTEGER now;
        QueryPerformanceCounter(&now);
        return now.QuadPart >= end_.QuadPart;
    }

private:
    LARGE_INTEGER end_;
};

// The control's ends of lines are CR already; what else ends a line for it is left to it.
size_t CommonStart(std::wstring_view one, std::wstring_view other) {
    const size_t most = std::min(one.size(), other.size());
    return static_cast<size_t>(
        std::mismatch(one.begin(), one.begin() + static_cast<std::ptrdiff_t>(most), other.begin()).first - one.begin());
}

size_t CommonEnd(std::wstring_view one, std::wstring_view other, size_t most) {
    size_t same = 0;
    while (same < most && one[one.size() - 1 - same] == other[other.size() - 1 - same]) ++same;
    return same;
}

}  // namespace

void Colours::SetLanguage(long dbType) {
    Sql::Words words(dbType);
    for (const CatalogueSection& section : CatalogueSections()) {
        if (section.DBType != dbType ||
            (section.Category.find(L"Functions") == section.Category.npos && section.Category != L"Pseudo Columns")) {
            continue;
        }
        for (const CatalogueEntry& entry : section.Entries) words.AddFunction(entry.Text);
    }
    dialect_ = &Sql::DialectOf(dbType);
    lines_.SetLanguage(*dialect_, std::move(words));
}

// Asked of the system once, until it tells that something is another way now.
void Colours::MakePalette() {
    if (palette_) return;
    palette_ = Palette::For(GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT));
    contrast_ = IsContrastTheme();
}

bool Colours::Off() {
    MakePalette();
    return failed_ || box_.HasFormats() || static_cast<size_t>(box_.RawLength()) > Longest || contrast_;
}

void Colours::SettingsChanged() {
    palette_.reset();
    box_.ShowPlain();
}

void Colours::MadePlain() {
    lines_.Forget(true);
    marksDue_ = true;
}

void Colours::TextChanged() {
    marksDue_ = true;
    reading_.clear();
    if (box_.Texts() != texts_) {
        texts_ = box_.Texts();
        stale_ = fresh_ = true;
        failed_ = false;
        return;
    }
    if (stale_) return;
    Near(box_.LastEdit());
    if (!stale_ && !box_.Composing() && !Off()) Work(false);
}

// What changed stands around what was selected before and is now; when the lengths do not bear that out, everything is
// read again.
void Colours::Near(const RichTextBox::Edit& edit) {
    using How = RichTextBox::Edit::How;
    stale_ = true;
    if (edit.Kind == How::Anything) return;
    const auto [from, to] = box_.RawSelection();
    const long length = box_.RawLength();
    const long before = static_cast<long>(lines_.Text().size());
    const long more = length - before;
    const long start = std::max(std::min(edit.From, from), 0L);
    const long end = std::min(std::max({to, edit.To + more, start}), length);
    if (start > before || end - more > before || end - more < start || static_cast<size_t>(end - start) > NearEnough)
        return;
    const std::wstring now = box_.RawText(start, end);
    if (now.size() != static_cast<size_t>(end - start)) return;
    const auto place = static_cast<size_t>(start);
    const auto was = std::wstring_view(lines_.Text()).substr(place, static_cast<size_t>(end - more - start));
    const size_t same = CommonStart(was, now);
    const size_t sameEnd = CommonEnd(was, now, std::min(was.size(), now.size()) - same);
    const bool typed = edit.Kind == How::Typed && edit.From == edit.To && was.size() == same + sameEnd;
    lines_.Replace(place + same, was.size() - same - sameEnd,
                   std::wstring_view(now).substr(same, now.size() - same - sameEnd), typed);
    stale_ = lines_.Text().size() != static_cast<size_t>(length);
    // A key may have undone something somewhere else, of the same length.
    if (edit.Kind != How::Typed && same + sameEnd == now.size() && more == 0) stale_ = true;
}

// Reads the next part of the text. Whether there is more.
bool Colours::Read() {
    const long length = box_.RawLength();
    const auto from = static_cast<long>(reading_.size());
    const std::wstring part = box_.RawText(from, std::min(length, from + static_cast<long>(CharactersAtOnce)));
    reading_ += part;
    if (!part.empty() && static_cast<long>(reading_.size()) < length) return true;
    if (fresh_) {
        lines_.SetText(reading_, true);
    } else {
        Compare(reading_);
    }
    reading_.clear();
    reading_.shrink_to_fit();
    stale_ = fresh_ = false;
    return true;
}

void Colours::Compare(std::wstring_view text) {
    const std::wstring_view was = lines_.Text();
    const size_t same = CommonStart(was, text);
    if (same == was.size() && same == text.size()) return;
    const size_t sameEnd = CommonEnd(was, text, std::min(was.size(), text.size()) - same);
    lines_.Replace(same, was.size() - same - sameEnd, text.substr(same, text.size() - same - sameEnd));
}

bool Colours::Apply(size_t from, size_t to, size_t most) {
    std::vector<Sql::Run> runs;
    while (runs.size() < most && from < to) from = lines_.Next(from, to, most - runs.size(), runs);
    if (runs.empty()) return false;
    std::vector<RichTextBox::Shade> shades;
    shades.reserve(runs.size());
    for (const Sql::Run& run : runs) {
        shades.push_back({static_cast<long>(run.Position), static_cast<long>(run.Position + run.Length), run.Ground,
                          run.Ground ? palette_->Ground[run.Value] : palette_->Text[run.Value]});
    }
    if (!box_.Show(shades)) failed_ = true;
    return true;
}

// What is seen comes first, and alone when an edit waits for it. Whether there is more to do.
bool Colours::Work(bool everything) {
    MakePalette();
    const auto [first, last] = box_.Seen();
    const size_t from = lines_.LineAt(static_cast<size_t>(std::max(first, 0L)));
    const size_t to = lines_.LineAt(static_cast<size_t>(std::max(last, 0L))) + 1;
    lines_.Lex(to, everything ? CharactersAtOnce : NearEnough);
    if (!lines_.IsLexed(to - 1)) return true;
    if (marksDue_ || std::pair(from, to) != markedLines_) {
        marksDue_ = false;
        markedLines_ = {from, to};
        FindMarks();
    }
    if (Apply(from, to, RunsAtOnce)) return true;
    if (!everything) return true;
    if (lines_.Lex(lines_.Count(), CharactersAtOnce)) return true;
    return Apply(0, lines_.Count(), RunsAtOnce);
}

// For as long as a key may wait. What is shown so far is painted after that, and not after each of the smaller steps.
bool Colours::Idle() {
    const Until over(IdleStep);
    do {
        if (box_.Composing()) return false;
        if (Off()) {
            box_.ShowPlain();
            return false;
        }
        if (!(stale_ ? Read() : Work(true))) return false;
    } while (!over);
    return true;
}

void Colours::FindMarks() {
    std::vector<Sql::Lines::Marked> marks;
    const auto [from, to] = box_.RawSelection();
    if (from == to) {
        FindPair(static_cast<size_t>(std::max(from, 0L)), marks);
    } else if (from >= 0 && to - from <= 128) {
        FindSame(static_cast<size_t>(from), static_cast<size_t>(to), marks);
    }
    lines_.SetMarks(std::move(marks));
}

// The bracket after the caret, else the one before it, and its partner.
void Colours::FindPair(size_t caret, std::vector<Sql::Lines::Marked>& marks) {
    const std::wstring& text = lines_.Text();
    if (caret > text.size()) return;
    const size_t line = lines_.LineAt(caret);
    if (!lines_.IsLexed(line)) return;
    static constexpr std::wstring_view Opening = L"([{";
    static constexpr std::wstring_view Closing = L")]}";
    const auto isBracket = [&](const Sql::Token& token, size_t start) {
        const wchar_t c = text[start + token.Start];
        return token.What == Sql::Kind::Operator && token.Length == 1 &&
               (Opening.find(c) != Opening.npos || Closing.find(c) != Closing.npos);
    };
    size_t at = text.npos;
    const size_t start = lines_.StartOf(line);
    for (const Sql::Token& token : lines_.TokensOf(line)) {
        if (!isBracket(token, start)) continue;
        if (start + token.Start == caret || (start + token.Start + 1 == caret && at == text.npos))
            at = start + token.Start;
    }
    if (at == text.npos) return;
    const wchar_t own = text[at];
    const bool forward = Opening.find(own) != Opening.npos;
    const wchar_t other = forward ? Closing[Opening.find(own)] : Opening[Closing.find(own)];
    size_t depth = 0;
    size_t current = line;
    for (size_t steps = 0; steps < PairWithin; ++steps) {
        std::vector<Sql::Token> tokens = lines_.TokensOf(current);
        if (!forward) std::reverse(tokens.begin(), tokens.end());
        const size_t begin = lines_.StartOf(current);
        for (const Sql::Token& token : tokens) {
            const size_t place = begin + token.Start;
            if (!isBracket(token, begin) || (forward ? place < at : place > at)) continue;
            if (text[place] == own) ++depth;
            if (text[place] == other && --depth == 0) {
                marks = {{std::min(at, place), 1, Sql::Mark::Pair}, {std::max(at, place), 1, Sql::Mark::Pair}};
                return;
            }
        }
        if (forward ? current + 1 == lines_.Count() : current == 0) {
            marks = {{at, 1, Sql::Mark::Alone}};
            return;
        }
        current += forward ? 1 : static_cast<size_t>(-1);
        // The text further on has not been read yet: the search is repeated when it has.
        if (!lines_.IsLexed(current)) {
            marksDue_ = true;
            return;
        }
    }
}

// The other places, among those that are seen, of a word that is selected.
void Colours::FindSame(size_t from, size_t to, std::vector<Sql::Lines::Marked>& marks) {
    const std::wstring_view text = lines_.Text();
    if (to > text.size()) return;
    const std::wstring_view word = text.substr(from, to - from);
    if (word.find(L'\r') != word.npos) return;
    const auto isWord = [](const Sql::Token& token) {
        return token.What == Sql::Kind::Word || token.What == Sql::Kind::Name;
    };
    const size_t own = lines_.LineAt(from);
    if (!lines_.IsLexed(own)) return;
    const auto tokens = lines_.TokensOf(own);
    if (std::none_of(tokens.begin(), tokens.end(), [&](const Sql::Token& token) {
            return isWord(token) && lines_.StartOf(own) + token.Start == from && token.Length == to - from;
        })) {
        return;
    }
    for (size_t line = markedLines_.first; line < markedLines_.second; ++line) {
        const size_t start = lines_.StartOf(line);
        for (const Sql::Token& token : lines_.TokensOf(line)) {
            if (!isWord(token) || token.Length != word.size() || start + token.Start == from) continue;
            if (CompareStringOrdinal(text.data() + start + token.Start, static_cast<int>(word.size()), word.data(),
                                     static_cast<int>(word.size()), TRUE) == CSTR_EQUAL) {
                marks.push_back({start + token.Start, token.Length, Sql::Mark::Same});
            }
        }
    }
}
