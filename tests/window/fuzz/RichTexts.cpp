#include "RichTexts.h"

std::string AsRichText(Random& random, const std::wstring& text) {
    std::string rtf = "{\\rtf1\\ansi\\ansicpg1252\\uc1 ";
    int depth = 0;
    const auto word = [&](const std::string& control) { rtf += control + (random.OneIn(2) ? " " : "{}"); };
    for (const wchar_t unit : text) {
        if (random.OneIn(12)) {
            word(random.Pick<std::string>({"\\b", "\\i0", "\\fs20", "\\cf0", "\\ul", "\\f0", "\\unknownword12"}));
        }
        if (random.OneIn(12)) {
            rtf += "{";
            ++depth;
        }
        if (depth > 0 && random.OneIn(8)) {
            rtf += "}";
            --depth;
        }
        if (random.OneIn(30)) rtf += "{\\*\\nobodyknows not {this} text}";
        if (unit == L'\n') {
            word("\\par");
        } else if (unit == L'\t') {
            word("\\tab");
        } else if (unit == L'{' || unit == L'}' || unit == L'\\') {
            rtf += "\\";
            rtf += static_cast<char>(unit);
        } else if (unit >= 0x20 && unit < 0x7F) {
            rtf += static_cast<char>(unit);
        } else if (unit != L'\r') {
            rtf += "\\u" + std::to_string(static_cast<short>(unit)) + "?";
        }
    }
    return rtf + std::string(static_cast<size_t>(depth), '}') + "}";
}

std::wstring AnyPlainText(Random& random) {
    std::wstring text;
    for (size_t left = random.Below(80); left > 0; --left) {
        switch (random.Below(6)) {
            case 0:
                text += L"\r\n";
                break;
            case 1:
                text += random.Pick({L'{', L'}', L'\\', L'\t', L'"', L'&'});
                break;
            case 2:
                text += static_cast<wchar_t>(random.Between(0x4E00, 0x9FFF));
                break;
            case 3:
                text += static_cast<wchar_t>(random.Between(0x5D0, 0x5EA));
                break;
            default:
                text += static_cast<wchar_t>(random.Between(0x20, 0x7E));
                break;
        }
    }
    return text;
}

std::string AnyRichText(Random& random) {
    switch (random.Below(6)) {
        case 0:
            return "{\\rtf1\\ansi{\\fonttbl{\\f0\\fmodern Courier New;}{\\f1\\fcharset177 "
                   "Arial;}}{\\colortbl;\\red0\\green0\\blue255;}"
                   "\\pard\\cf1\\f0\\fs20 select \\b *\\b0\\par from t\\par}";
        case 1:
            return "{\\rtf1\\ansi \\trowd\\cellx1000\\cellx2000 a\\cell b\\cell\\row\\pard c\\line d\\page e}";
        case 2:
            return "{\\rtf1\\ansi x{\\pict\\wmetafile8\\picw100\\pich100 010009000003}y{\\object\\objemb{\\*\\objdata "
                   "0105000002}"
                   "{\\result r}}z\\bin4 {}{}w}";
        case 3:
            return "{\\rtf1\\mac\\deff0{\\stylesheet{\\s1 Normal;}}{\\info{\\title t}}\\u8364?\\'80\\emdash\\~\\_\\-"
                   "{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt y}}}";
        default:
            return AsRichText(random, AnyPlainText(random));
    }
}

std::string DamagedRichText(Random& random, std::string rtf) {
    const auto insert = [&](const std::string& what) { rtf.insert(random.Below(rtf.size() + 1), what); };
    for (size_t left = random.Below(3); left > 0; --left) {
        switch (random.Below(11)) {
            case 0: {
                const size_t deep = random.Pick({5, 100, 990, 10000});
                const std::string open(deep, '{');
                insert(open + "x" + std::string(random.OneIn(3) ? random.Below(deep) : deep, '}'));
                break;
            }
            case 1:
                insert("\\bin" + std::to_string(random.Pick({0L, 1L, 100L, 0x7FFFFFFFL, -1L})) + " ");
                break;
            case 2:
                insert("\\u" +
                       random.Pick<std::string>({"99999999999", "-1", "-40000", "55357", "0", "-2", "65535", ""}) +
                       "?");
                break;
            case 3:
                insert("\\uc" + random.Pick<std::string>({"0", "2", "1000000", "-1"}) + " ");
                break;
            case 4:
                insert("{\\object\\objemb{\\*\\objdata " +
                       random.Pick<std::string>({"", "zz", "0105", "01050000020000000800"}) + "}}");
                break;
            case 5:
                insert("{\\pict" +
                       random.Pick<std::string>({"\\wmetafile8", "\\dibitmap0", "\\pngblip", "\\emfblip", ""}) +
                       "\\picw-1\\pich99999999\\picwgoal-1 " +
                       random.Pick<std::string>({"00", "ff", "0", "not", "\\bin3 abc"}) + "}");
                break;
            case 6:
                insert(
                    random.Pick<std::string>({"\\'", "\\'0", "\\'zz", "\\", "\\*", "{\\*", "\\'00", "\\0", "\\\r\n"}));
                break;
            case 7:
                insert("\\" + std::string(random.Pick({1, 31, 32, 33, 200, 5000}), 'a') +
                       std::to_string(random.Between(-99999, 99999)));
                break;
            case 8:
                insert(random.Pick<std::string>({"\\cell", "\\row", "\\trowd", "\\cellx99999999", "\\cellx-1",
                                                 "\\intbl", "\\nestcell", "{\\fonttbl", "{\\colortbl", "\\f9999",
                                                 "\\cf9999", "\\fs99999", "\\s-1", "\\tx99999999", "\\ansicpg99999",
                                                 "\\fcharset999", "{\\stylesheet", "\\li-99999999", "\\sl99999"}));
                break;
            case 9:
                insert("{\\" +
                       random.Pick<std::string>({"fonttbl{\\f0 ", "stylesheet{\\s1 ", "info{\\title ", "colortbl"}) +
                       std::string(random.Pick({10, 255, 1023, 1024, 5000}), 'n') +
                       random.Pick<std::string>({"", ";", ";}}", "}}"}));
                break;
            default:
                rtf = Damaged(random, rtf, 1 + random.Below(4));
                break;
        }
    }
    return rtf;
}
