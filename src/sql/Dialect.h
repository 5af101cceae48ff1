#pragma once

namespace Sql {

// How the products' SQL differs, as far as splitting a text into tokens is concerned.
struct Dialect {
    // How far the body of a procedure, function or trigger reaches.
    enum class Bodies {
        Standard,      // from BEGIN to its END; without BEGIN to the semicolon
        BeginNeeded,   // to the END of its BEGIN, which a semicolon may stand before; without BEGIN to the batch's end
        EndNeeded,     // to END PROCEDURE or END FUNCTION
        Declarations,  // PL/SQL: declarations, subprograms and packages in each other
    };
    // A line of this word alone ends a statement.
    enum class Batch { None, Go, Slash };

    bool NestedComments = false;    // /* /* */ */
    bool HashComments = false;      // # to the end of the line
    bool SlashComments = false;     // // to the end of the line
    bool BracketNames = false;      // [a name], not after a word
    bool BackquoteNames = false;    // `a name`
    bool HashNames = false;         // # is a letter
    bool HashDates = false;         // #2026-01-31#
    bool DoubleQuoteTexts = false;  // "a string"
    bool DollarQuotes = false;      // $tag$ ... $tag$
    bool EscapeTexts = false;       // E'a \' b'
    bool DelimitedTexts = false;    // q'[a ' b]'
    bool BackslashQuotes = false;   // 'don\'t': a backslash before a quote, in front of a letter
    bool GraphicTexts = false;      // G'..', GX'..', UX'..', BX'..'
    bool BeginIsBlock = false;      // BEGIN opens a level in every statement
    Bodies Body = Bodies::Standard;
    Batch Separator = Batch::None;
};

// The dialect of the host's database type code. A code that is not known has what the products have in common and
// what means nothing else in any of them.
const Dialect& DialectOf(long dbType) noexcept;

}  // namespace Sql
