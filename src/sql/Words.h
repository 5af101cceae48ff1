#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Sql {

// What the words of a text are.
class Words {
public:
    enum class Meaning : unsigned char {
        Nothing,
        Keyword,
        Function,           // also without a bracket after it: SYSDATE
        Call,               // a function where a bracket follows
        KeywordOrFunction,  // a function where a bracket follows, else a keyword
    };

    // The keywords of the host's database type code, and no functions. An unknown code has the common ones.
    explicit Words(long dbType = 0);

    // The name of a function as a reference writes it, in letters of any case: what stands before a bracket, which its
    // calls then need.
    void AddFunction(std::wstring_view text);

    // All keywords, in capitals.
    std::vector<std::wstring_view> Keywords() const;

    // Upper and lower case are the same.
    Meaning Of(std::wstring_view word) const noexcept;

private:
    struct Function {
        std::wstring Name;
        bool Bracket;
    };
    std::span<const std::wstring_view> own_;
    std::vector<Function> functions_;  // by name
};

}  // namespace Sql
