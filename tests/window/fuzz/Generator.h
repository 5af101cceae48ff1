#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

// Where all chance comes from: the same seed gives the same case on every machine and in both widths. (splitmix64)
class Random {
public:
    explicit Random(uint64_t seed) noexcept : state_(seed) {}

    uint64_t Next() noexcept {
        uint64_t mixed = state_ += 0x9E3779B97F4A7C15U;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }
    // 0 to limit - 1; 0 when the limit is 0.
    size_t Below(size_t limit) noexcept { return limit != 0 ? static_cast<size_t>(Next() % limit) : 0; }
    long Between(long least, long most) noexcept {
        return least + static_cast<long>(Next() % (static_cast<uint64_t>(static_cast<int64_t>(most) - least) + 1));
    }
    bool OneIn(size_t times) noexcept { return Below(times) == 0; }
    template <class T>
    const T& Pick(const std::vector<T>& from) noexcept {
        return from[Below(from.size())];
    }
    template <class T>
    T Pick(std::initializer_list<T> from) noexcept {
        return from.begin()[Below(from.size())];
    }

private:
    uint64_t state_;
};

// ---- texts

inline constexpr size_t LongText = 64 * 1024;

// A text of any UTF-16 units: letters of many scripts, pieces of SQL, quotes, "&", "%", backslashes, line ends of all
// kinds, controls and NUL, right-to-left marks, combining runs, pairs and halves of pairs, noncharacters; empty now and
// then, and up to `longest` units.
std::wstring AnyText(Random& random, size_t longest = 60);
// One of `length` units: a letter again and again, and a few pieces of the above.
std::wstring TextOfLength(Random& random, size_t length);
// The same text with some of its ASCII letters in the other case.
std::wstring InOtherCase(Random& random, std::wstring text);
// A name in double quotes, those in it doubled: what the fake host's FormatName answers.
std::wstring Quoted(const std::wstring& name);

// ---- bytes

std::string AnyBytes(Random& random, size_t longest);
// A file of a text in an encoding of any kind, its mark or its end cut short now and then.
std::string AnyFile(Random& random, size_t longest);
// Bytes changed, taken away, doubled, moved, or cut off.
std::string Damaged(Random& random, std::string bytes, size_t blows);

// ---- what the editor makes of a text

// It gives CR LF for a line end, whether it was that, CR, LF or one of the rarer ones; all other units stay as they
// are.
std::wstring InControl(const std::wstring& text);
// The part of a text that windows show which end a text at NUL.
std::wstring UpToNul(const std::wstring& text);

// For failures: every unit that is no plain ASCII as \xHHHH, the middle of a long text left out.
std::string Shown(const std::wstring& text);
