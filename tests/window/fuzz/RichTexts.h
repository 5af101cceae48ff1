#pragma once

#include "Generator.h"

// Letters of many scripts and lines, and nothing that readers of rich text treat in ways of their own.
std::wstring AnyPlainText(Random& random);
// A text as rich text: each unit as it may be written, in groups and with formats that say nothing.
std::string AsRichText(Random& random, const std::wstring& text);
// Rich text that is whole: tables, pictures, objects, fields, or a text.
std::string AnyRichText(Random& random);
// The same with damage that only rich text knows: groups without end or thousands deep, lengths and numbers beyond all
// measure, words and names of thousands of letters, objects and pictures of nothing; and with that of bytes.
std::string DamagedRichText(Random& random, std::string rtf);
