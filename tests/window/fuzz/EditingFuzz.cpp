#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "Cases.h"
#include "Windows.h"
#include "catalogue/Catalogue.h"
#include "editor/Palette.h"
#include "sql/Lines.h"
#include "support/ContrastTheme.h"
#include "support/Steps.h"

// The window's editor, worked by keys and commands of every kind: with colours, whose steps come between, it holds
// after each of them what it holds without any, and undo goes as far back.
namespace {

struct Deed {
    enum What { Typing, Key, Selecting, Pasting, Replacing, Inserting, Casing, Dropping, Scrolling } Kind = Typing;
    wchar_t Letter = 0;
    WORD Virtual = 0;
    int Modifiers = 0;
    std::wstring Text;
    std::wstring With;
    size_t From = 0;
    size_t To = 0;
};

struct Stroke {
    WORD Virtual;
    int Modifiers;
};

const std::vector<Stroke> Strokes = {{VK_RETURN, 0},
                                     {VK_RETURN, 0},
                                     {VK_RETURN, FSHIFT},
                                     {VK_BACK, 0},
                                     {VK_BACK, 0},
                                     {VK_DELETE, 0},
                                     {VK_BACK, FCONTROL},
                                     {VK_DELETE, FCONTROL},
                                     {VK_TAB, 0},
                                     {VK_LEFT, 0},
                                     {VK_RIGHT, FSHIFT},
                                     {VK_UP, FSHIFT},
                                     {VK_DOWN, FSHIFT},
                                     {VK_HOME, 0},
                                     {VK_END, FSHIFT},
                                     {VK_HOME, FCONTROL},
                                     {VK_END, FCONTROL},
                                     {VK_RIGHT, FCONTROL},
                                     {VK_OEM_2, FCONTROL},
                                     {VK_DIVIDE, FCONTROL},
                                     {VK_OEM_6, FCONTROL},
                                     {VK_OEM_4, FCONTROL},
                                     {VK_UP, FALT},
                                     {VK_DOWN, FALT},
                                     {'D', FCONTROL},
                                     {'K', FCONTROL | FSHIFT},
                                     {VK_SPACE, FCONTROL | FSHIFT},
                                     {'R', FCONTROL | FSHIFT},
                                     {'A', FCONTROL},
                                     {'Z', FCONTROL},
                                     {'Z', FCONTROL},
                                     {'Z', FCONTROL},
                                     {'Z', FCONTROL},
                                     {'Y', FCONTROL},
                                     {'Y', FCONTROL},
                                     {VK_OEM_PLUS, FCONTROL},
                                     {VK_OEM_MINUS, FCONTROL}};

const std::vector<std::wstring> Pieces = {L"select ", L"a",        L"b_1 ",      L"'it''s' ", L"'",      L"/*",
                                          L"*/",      L"-- x\r\n", L"\r\n",      L"\r\n",     L"count(", L"left(",
                                          L") ",      L"[d e] ",   L"\"",        L"12.5 ",    L";\r\n",  L"from ",
                                          L"where ",  L"\t",       L"begin\r\n", L"end ",     L"$$"};

std::wstring AnyPieces(Random& random, size_t most) {
    std::wstring text;
    for (size_t left = random.Below(most + 1); left > 0; --left) text += random.Pick(Pieces);
    return text;
}

Deed AnyDeed(Random& random) {
    Deed deed;
    deed.From = static_cast<size_t>(random.Next() % 100000);
    deed.To = static_cast<size_t>(random.Next() % 100000);
    switch (random.Below(20)) {
        case 0:
        case 1:
        case 2:
            deed.Kind = Deed::Selecting;
            break;
        case 3:
            deed.Kind = Deed::Pasting;
            deed.Text = AnyPieces(random, 6);
            break;
        case 4:
            deed.Kind = Deed::Replacing;
            deed.Text = random.Pick<std::wstring>({L"a", L"'", L"/*", L"select", L" ", L"12"});
            deed.With = random.Pick<std::wstring>({L"", L"'", L"*/", L"bb", L"--", L"a"});
            break;
        case 5:
            deed.Kind = Deed::Inserting;
            break;
        case 6:
            deed.Kind = Deed::Casing;
            break;
        case 7:
            deed.Kind = Deed::Dropping;
            deed.Text = AnyPieces(random, 4);
            break;
        case 8:
            deed.Kind = Deed::Scrolling;
            break;
        case 9:
        case 10:
        case 11:
        case 12:
        case 13: {
            deed.Kind = Deed::Typing;
            deed.Letter = random.Pick({L'a', L'e', L'\'', L'*', L'/', L'-', L' ', L'1', L'(', L')', L';', L'\x5D0'});
            break;
        }
        default: {
            deed.Kind = Deed::Key;
            const Stroke& stroke = random.Pick(Strokes);
            deed.Virtual = stroke.Virtual;
            deed.Modifiers = stroke.Modifiers;
        }
    }
    return deed;
}

class EditingFuzz : public StepsFixture {
protected:
    // As the control gets it from a keyboard: the state of the modifiers goes with the message.
    static void Stroke(WORD key, int modifiers) {
        const auto down = [](std::initializer_list<int> held) {
            BYTE keys[256]{};
            for (const int one : held) keys[one] = 0x80;
            SetKeyboardState(keys);
        };
        if ((modifiers & FALT) != 0) {
            down({VK_MENU, VK_LMENU});
        } else if (modifiers == (FCONTROL | FSHIFT)) {
            down({VK_CONTROL, VK_LCONTROL, VK_SHIFT, VK_LSHIFT});
        } else if (modifiers == FCONTROL) {
            down({VK_CONTROL, VK_LCONTROL});
        } else if (modifiers == FSHIFT) {
            down({VK_SHIFT, VK_LSHIFT});
        }
        const HWND editor = EditorWindow::Editor();
        const LPARAM place = 1 | static_cast<LPARAM>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC)) << 16;
        const bool alt = (modifiers & FALT) != 0;
        SendMessageW(editor, alt ? WM_SYSKEYDOWN : WM_KEYDOWN, key, place | (alt ? 1L << 29 : 0));
        // The character that comes with it, if the key was not taken: the editor knows.
        if (modifiers == 0 && (key == VK_RETURN || key == VK_BACK || key == VK_TAB))
            SendMessageW(editor, WM_CHAR, MapVirtualKeyW(key, MAPVK_VK_TO_CHAR), place);
        SendMessageW(editor, alt ? WM_SYSKEYUP : WM_KEYUP, key, place | static_cast<LPARAM>(0xC0000000));
        down({});
    }
    static void Do(const Deed& deed) {
        const HWND editor = EditorWindow::Editor();
        const auto length = static_cast<size_t>(EditorText().size()) + 1;
        switch (deed.Kind) {
            case Deed::Typing:
                SendMessageW(editor, WM_CHAR, deed.Letter, 1);
                break;
            case Deed::Key:
                Stroke(deed.Virtual, deed.Modifiers);
                break;
            case Deed::Selecting:
                SelectText(static_cast<long>(deed.From % length), static_cast<long>(deed.To % length));
                break;
            case Deed::Pasting:
                PutText(deed.Text);
                SetFocus(editor);
                Stroke('V', FCONTROL);
                break;
            case Deed::Replacing: {
                Stroke('H', FCONTROL);
                const HWND window = FindWindowW(L"#32770", L"Replace");
                ASSERT_NE(nullptr, window);
                SetDlgItemTextW(window, 100, deed.Text.c_str());
                SetDlgItemTextW(window, 101, deed.With.c_str());
                SendMessageW(GetDlgItem(window, 106), BM_CLICK, 0, 0);
                SendMessageW(window, WM_COMMAND, IDCANCEL, 0);
                break;
            }
            case Deed::Inserting:
                SendMessageW(View(1), LB_SETCURSEL, deed.From % 20, 0);
                SendMessageW(GetParent(View(1)), WM_COMMAND, MAKEWPARAM(1031, LBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(View(1)));
                EditorWindow::Choose(L"Action", L"Execute");
                break;
            case Deed::Casing:
                EditorWindow::Choose(L"Edit", deed.From % 2 == 0 ? L"Make Upper Case" : L"Make Lower Case");
                break;
            case Deed::Dropping:
                SendMessageW(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(deed.Text.c_str()));
                break;
            case Deed::Scrolling:
                SendMessageW(editor, EM_LINESCROLL, 0, static_cast<LPARAM>(deed.From % 9) - 4);
                break;
        }
    }
    static bool IsUndone() {
        if (SendMessageW(EditorWindow::Editor(), EM_CANUNDO, 0, 0) == 0) return true;
        SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
        return false;
    }
    // The position of the first character that is shown in another colour than it is to have; -1: none is.
    static LONG WrongColour(long type) {
        Sql::Words words(type);
        for (const CatalogueSection& section : CatalogueSections()) {
            if (section.DBType == type &&
                (section.Category.find(L"Functions") != section.Category.npos || section.Category == L"Pseudo Columns"))
                for (const CatalogueEntry& entry : section.Entries) words.AddFunction(entry.Text);
        }
        std::wstring text = EditorText();
        std::erase(text, L'\n');
        Sql::Lines lines;
        lines.SetLanguage(Sql::DialectOf(type), std::move(words));
        lines.SetText(text, true);
        while (lines.Lex(lines.Count(), 10000)) {
        }
        const Palette palette = Palette::For(GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT));
        std::vector<Sql::Run> runs;
        while (lines.Next(0, lines.Count(), 10000, runs) < lines.Count()) {
        }
        std::vector<COLORREF> wanted(text.size(), CLR_DEFAULT);
        for (const Sql::Run& run : runs)
            std::fill_n(wanted.begin() + static_cast<std::ptrdiff_t>(run.Position), run.Length,
                        palette.Text[run.Value]);
        for (size_t at = 0; at < text.size(); ++at) {
            if (text[at] == L' ' || text[at] == L'\r' || text[at] == L'\t') continue;
            if (ColourAt(static_cast<LONG>(at)) != wanted[at]) return static_cast<LONG>(at);
        }
        return -1;
    }
};

}  // namespace

TEST_F(EditingFuzz, TheTextIsThatOfAnEditorWithoutColours) {
    const ContrastTheme theme(true);
    ASSERT_TRUE(theme);
    Pause = 10;
    ForEachCase(3, [&](Random& random) {
        const long type = random.Pick({0L, 4L, 8L, 27L});
        Type(type);
        const std::wstring sql = AnyPieces(random, 30);
        std::vector<Deed> deeds;
        for (size_t left = 20 + random.Below(40); left > 0; --left) deeds.push_back(AnyDeed(random));

        // Contrast themes have no colours.
        std::vector<std::wstring> texts;
        std::wstring beginning;
        ContrastTheme::Choose(true);
        const std::wstring returned = Inside(sql, [&] {
            for (const Deed& deed : deeds) {
                Do(deed);
                texts.push_back(EditorText());
            }
            for (int steps = 0; !IsUndone() && steps < 2000; ++steps) {
            }
            beginning = EditorText();
        });

        ContrastTheme::Choose(false);
        std::vector<Step> steps;
        for (size_t at = 0; at < deeds.size(); ++at) {
            steps.push_back([&, at] {
                Do(deeds[at]);
                EXPECT_TRUE(texts[at] == EditorText()) << "after deed " << at << " of kind " << deeds[at].Kind << ": "
                                                       << Shown(EditorText()) << "\ninstead of " << Shown(texts[at]);
            });
        }
        steps.push_back([=] { return WrongColour(type) == -1; });
        steps.push_back([] {
            for (int count = 0; !IsUndone() && count < 2000; ++count) {
            }
        });
        steps.push_back([=] { return WrongColour(type) == -1; });
        EXPECT_TRUE(returned == InSteps(sql, std::move(steps)));
        EXPECT_TRUE(returned == beginning);
        EXPECT_EQ(L"", Errors.Places());
    });
}
