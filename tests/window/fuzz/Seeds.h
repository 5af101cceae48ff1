#pragma once

#include <cstdint>

// Seeds that are always run. A seed stands for its case for as long as the generators draw as they do; what must never
// come back has a test by its name as well.
struct KeptSeed {
    const char* Property;
    uint64_t Seed;
    const char* Found;  // or what it covers
};

inline constexpr KeptSeed KeptSeeds[] = {
    {"DropsFuzz.ListsOfFiles", 0x8945ef9967, "a list without an end: what stood behind the block was read"},
    {"DropsFuzz.ListsOfFiles", 0xb4173dd172, "names that begin outside the block: no end of reading"},
    {"DropsFuzz.ListsOfFiles", 0xe97860b370, "names of the code page without an end"},
    {"DropsFuzz.RichTexts", 0x3ca2b03d,
     "groups in each other by the thousand, dropped: the same crash as from a file, below"},
    {"DropsFuzz.RichTexts", 0x5c10fbd869, "a picture that is cut off, and a font's name of thousands of letters"},
    {"HostFuzz.DisplayTakesAnyArgument", 0xf7cef5357b,
     "a variant by reference that refers to itself: Display had no end"},
    {"HostFuzz.DisplayTakesAnyArgument", 0x7a786926a7, "another one"},
    {"HostFuzz.MembersAnswerWithAnything", 0xc1ff8680b, "a folder of a thousand names"},
    {"MessagesFuzz.WithNothingToPointTo", 0x8cd290d77,
     "a posted message of DDE without memory, which Wine finds again at each look: no end of a loop that looks first"},
    {"NamesFuzz.Statements", 0xa08d6615f8, "CR CR LF in one name and NUL in another: a blank for two line ends"},
    {"NamesFuzz.Statements", 0x12a5fafd72, "the same in a folder's statements"},
    {"NamesFuzz.DropsFromTheTree", 0x313c738799, "right-to-left and combining names by the mouse"},
    // Under Wine, whose reader of rich text has room for 32 groups and 1,023 letters and believes pictures.
    {"RichTextFuzz.WhatIsDamagedIsReadOrRefused", 0xdcd5119eb5, "hundreds of groups in each other: a crash"},
    {"RichTextFuzz.WhatIsDamagedIsReadOrRefused", 0x691c9fa1f0, "a word of thousands of letters: a crash"},
    {"RichTextFuzz.WhatIsDamagedIsReadOrRefused", 0xf25ee45f75, "a picture that is cut off: a crash"},
    {"RichTextFuzz.WhatIsDamagedIsReadOrRefused", 0x5f5a2d755f,
     "a word that becomes a picture's when binary data before it goes"},
    {"ValuesFuzz.ScalarsConvertAsThePlatformDoes", 0x27b5d0e920, "a decimal that is none was said to be a number"},
    {"ValuesFuzz.ScalarsConvertAsThePlatformDoes", 0x6ebbfe1a6c,
     "a decimal of more places than there are: Wine's conversion to a text crashed"},
};
