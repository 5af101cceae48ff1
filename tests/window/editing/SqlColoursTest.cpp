#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include "editor/Palette.h"
#include "support/ContrastTheme.h"
#include "support/Dialogs.h"
#include "support/Screen.h"
#include "support/Steps.h"

namespace {

bool CanUndo() { return SendMessageW(EditorWindow::Editor(), EM_CANUNDO, 0, 0) != 0; }

Step Told(UINT message, WPARAM what, bool contrast) {
    return [=] {
        ContrastTheme::Choose(contrast);
        SendMessageW(EditorWindow::Find(), message, what, 0);
    };
}

}  // namespace

class SqlColoursTest : public StepsFixture {};

TEST_F(SqlColoursTest, TokensHaveTheirColours) {
    Type(8);
    const std::wstring sql = L"select count(a), 'b' 12 -- c\r\nfrom [d] left join e /* f\r\ng */";
    EXPECT_EQ(
        sql,
        InSteps(sql, {[&] { return Pattern(sql) == L"aaaaaa bbbbb.... ccc dd ee e|aaaa fff aaaa aaaa . ee e|e ee"; },
                      [] {
                          EXPECT_FALSE(CanUndo());
                          EXPECT_EQ(L"0-0", Selection());
                          for (const LONG at : {0L, 7L, 17L, 21L, 24L, 34L}) {
                              const COLORREF colour = ColourAt(at);
                              EXPECT_NE(CLR_DEFAULT, colour) << at;
                              EXPECT_GE(ContrastOf(colour, GetSysColor(COLOR_WINDOW)), 4.5) << at;
                          }
                      }}));
}

// Functions and pseudo columns of the database's reference are functions; its formats, and what another database has,
// are not.
TEST_F(SqlColoursTest, FunctionsAreThoseOfTheDatabase) {
    const std::wstring sql = L"select nvl(len(initcap(getdate(x currval sysdate hh24 @@error";
    // Of the words in their order: keyword, function, none.
    const auto kinds = [] {
        std::wstring all;
        for (const LONG at : {0L, 7L, 11L, 15L, 23L, 33L, 41L, 49L, 54L}) {
            const COLORREF colour = ColourAt(at);
            all += colour == CLR_DEFAULT ? L'.' : colour == ColourAt(0) ? L'k' : L'f';
        }
        return all;
    };
    const std::pair<long, const wchar_t*> patterns[] = {{4, L"kf.f.fk.."}, {8, L"k.f.f...f"}, {27, L"k........"}};
    for (const auto& [type, pattern] : patterns) {
        Type(type);
        InSteps(sql, {Becomes(std::wstring(pattern), kinds)});
    }
}

TEST_F(SqlColoursTest, EditsChangeTheColoursOfWhatTheyChange) {
    const std::wstring text = InSteps(
        L"a\r\nb\r\nc", {[] {
                             SelectText(0, 0);
                             Type(L"select");
                             EXPECT_EQ(L".......", Pattern(L"selecta"));
                         },
                         [] { return true; },
                         [] {
                             SelectText(6, 6);
                             Type(L" ");
                             EXPECT_EQ(L"aaaaaa .|.|.", Pattern(L"select a\r\nb\r\nc"));
                             // A comment begins in the first line and takes the others with it.
                             SelectText(7, 7);
                             Type(L"/*");
                         },
                         [] { return Pattern(L"select /*a\r\nb\r\nc") == L"aaaaaa bbb|b|b"; },
                         [] {
                             SelectText(9, 9);
                             Type(L"*/");
                         },
                         [] { return Pattern(L"select /**/a\r\nb\r\nc") == L"aaaaaa bbbb.|.|."; },
                         [] {
                             SelectText(7, 11);
                             SendMessageW(EditorWindow::Editor(), EM_REPLACESEL, TRUE,
                                          reinterpret_cast<LPARAM>(L"'x'\r\nfrom "));
                         },
                         [] { return Pattern(L"select 'x'\r\nfrom a\r\nb\r\nc") == L"aaaaaa bbb|aaaa .|.|."; }});
    EXPECT_EQ(L"select 'x'\r\nfrom a\r\nb\r\nc", text);
}

TEST_F(SqlColoursTest, UndoGoesBackToTheBeginningAndLeavesTheColours) {
    const std::wstring sql = L"select 1\r\nfrom b";
    EXPECT_EQ(sql,
              InSteps(sql, {[&] { return Pattern(sql) == L"aaaaaa b|aaaa ."; },
                            [] {
                                EXPECT_FALSE(CanUndo());
                                SelectText(8, 8);
                                Type(L" /* where");
                            },
                            [] { return Pattern(L"select 1 /* where\r\nfrom b") == L"aaaaaa b cc ccccc|cccc c"; },
                            [] {
                                SelectText(0, 3);
                                SendMessageW(EditorWindow::Editor(), WM_CLEAR, 0, 0);
                            },
                            [] { return Pattern(L"ect 1 /* where\r\nfrom b") == L"... a bb bbbbb|bbbb b"; },
                            [] {
                                int steps = 0;
                                while (CanUndo() && ++steps < 50) SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                                EXPECT_LE(steps, 11);
                                EXPECT_EQ(L"select 1\r\nfrom b", EditorWindow::Text());
                            },
                            [&] { return Pattern(sql) == L"aaaaaa b|aaaa ."; },
                            [] {
                                EXPECT_FALSE(CanUndo());
                                int steps = 0;
                                while (SendMessageW(EditorWindow::Editor(), EM_CANREDO, 0, 0) != 0 && ++steps < 50) {
                                    SendMessageW(EditorWindow::Editor(), EM_REDO, 0, 0);
                                }
                                EXPECT_EQ(L"ect 1 /* where\r\nfrom b", EditorWindow::Text());
                                while (CanUndo() && --steps > -50) SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                            }}));
}

// What is undone may stand anywhere, whatever is selected before and afterwards.
TEST_F(SqlColoursTest, WhatIsUndoneFarFromTheCaretHasItsColours) {
    const auto undo = [](LONG caret) {
        return [caret] {
            SelectText(caret, caret);
            SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
            SelectText(caret, caret);
        };
    };
    const std::wstring sql = L"a\r\nselect b\r\nc";
    EXPECT_EQ(sql, InSteps(sql, {[&] { return Pattern(sql) == L".|aaaaaa .|."; },
                                 [] {
                                     SelectText(13, 13);
                                     Type(L" 'x");
                                 },
                                 [] { return Pattern(L"a\r\nselect b\r\nc 'x") == L".|aaaaaa .|. bb"; }, undo(0),
                                 [&] { return Pattern(sql) == L".|aaaaaa .|."; },
                                 [] {
                                     SelectText(0, 0);
                                     Type(L"from /*");
                                 },
                                 [] { return Pattern(L"from /*a\r\nselect b\r\nc") == L"aaaa bbb|bbbbbb b|b"; },
                                 undo(20), [&] { return Pattern(sql) == L".|aaaaaa .|."; }}));
}

TEST_F(SqlColoursTest, ColoursAreNoChange) {
    const std::wstring sql = L"select 1";
    InSteps(sql, {[&] { return Pattern(sql) == L"aaaaaa b"; },
                  [] {
                      // Nothing is asked: nothing was changed.
                      BoxAnswerer boxes(IDCANCEL);
                      EditorWindow::Choose(L"File", L"New");
                      EXPECT_EQ(0, boxes.Boxes);
                      EXPECT_EQ(L"", EditorWindow::Text());
                  },
                  [] {
                      Type(L"x");
                      EXPECT_EQ(CLR_DEFAULT, ColourAt(0));
                  }});
}

TEST_F(SqlColoursTest, LongTextsHaveNone) {
    std::wstring sql = L"select 1\r\n";
    sql.append(1024 * 1024, L'x');
    InSteps(sql, {[] { return true; }, [] { return true; }, [] { return true; },
                  [] { EXPECT_EQ(CLR_DEFAULT, ColourAt(0)); }});
}

TEST_F(SqlColoursTest, BracketsAndWordsAreMarked) {
    const std::wstring sql = L"f(a, '(', (b)) a (";
    COLORREF pair = CLR_DEFAULT;
    InSteps(sql,
            {[&] { return Pattern(sql)[6] != L'.'; }, [] { SelectText(1, 1); },
             [] {
                 return GroundAt(1) != CLR_DEFAULT && GroundAt(1) == GroundAt(13) && GroundAt(10) == CLR_DEFAULT &&
                        GroundAt(6) == CLR_DEFAULT;
             },
             [&] {
                 pair = GroundAt(1);
                 SelectText(17, 17);
             },
             [&] { return GroundAt(17) != CLR_DEFAULT && GroundAt(17) != pair && GroundAt(1) == CLR_DEFAULT; },
             [] { SelectText(2, 3); },
             [] { return GroundAt(15) != CLR_DEFAULT && GroundAt(17) == CLR_DEFAULT && GroundAt(2) == CLR_DEFAULT; },
             [] { EXPECT_FALSE(CanUndo()); }});
}

TEST_F(SqlColoursTest, ContrastThemesHaveNone) {
    const ContrastTheme theme(true);
    ASSERT_TRUE(theme);
    const std::wstring sql = L"select 1";
    const auto plain = [&] { return Pattern(sql) == L"...... ."; };
    const auto coloured = [&] { return Pattern(sql) == L"aaaaaa b"; };
    const auto some = [] { return true; };  // the loop is idle between steps
    InSteps(sql, {some, some, [&] { EXPECT_TRUE(plain()); },
                  // Each of the messages that may tell of it.
                  Told(WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, false), coloured, Told(WM_THEMECHANGED, 0, true), plain,
                  Told(WM_SYSCOLORCHANGE, 0, false), coloured, Told(WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, true), plain,
                  [&] {
                      EXPECT_FALSE(CanUndo());
                      ContrastTheme::Choose(true);
                      Type(L"x");
                  },
                  some,
                  [&] {
                      EXPECT_EQ(CLR_DEFAULT, ColourAt(8));
                      EXPECT_EQ(0, ContrastTheme::TimesAsked()) << "each key asks the system";
                      SendMessageW(EditorWindow::Editor(), EM_UNDO, 0, 0);
                  },
                  Told(WM_THEMECHANGED, 0, false), coloured});
}

TEST_F(SqlColoursTest, TheColoursFollowTheWindows) {
    const int indices[] = {COLOR_WINDOW, COLOR_WINDOWTEXT};
    const COLORREF former[] = {GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT)};
    const COLORREF dark[] = {RGB(20, 20, 20), RGB(240, 240, 240)};
    const std::wstring sql = L"select 'a' f(";
    const auto reads = [](COLORREF window) {
        return [=] {
            for (const LONG at : {0L, 8L})
                if (ColourAt(at) == CLR_DEFAULT || ContrastOf(ColourAt(at), window) < 4.5) return false;
            return GetSysColor(COLOR_WINDOW) == window;
        };
    };
    InSteps(sql, {reads(former[0]), [&] { SetSysColors(2, indices, dark); }, reads(dark[0]),
                  [&] {
                      EXPECT_LT(ContrastOf(ColourAt(0), former[0]), 4.5);
                      SetSysColors(2, indices, former);
                  },
                  reads(former[0])});
    EXPECT_EQ(former[0], GetSysColor(COLOR_WINDOW));
}
