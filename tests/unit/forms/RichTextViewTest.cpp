#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <map>

#include "forms/RichTextBox.h"
#include "support/Folder.h"
#include "support/TopWindow.h"

// How characters are shown is no content: what leaves the control is the same with it and without.
namespace {

struct ViewEditor {
    TopWindow Top;
    RichTextBox Box;
    int Changes = 0;
    int Plain = 0;
    Folder Here;
    std::wstring Path = Here / L"text.tmp";
    ViewEditor() {
        Box.Create(Top.Handle(), 1);
        Box.SetEditorFont(L"Courier New", 10);
        Box.Move(0, 0, 6000, 5000);
        Box.Change = [this] { ++Changes; };
        Box.MadePlain = [this] { ++Plain; };
    }
    LRESULT Ask(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(Box.Handle(), message, wParam, lParam);
    }
    COLORREF ColourAt(LONG position) const {
        CHARRANGE before{};
        Ask(EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&before));
        CHARRANGE range{position, position + 1};
        Ask(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
        CHARFORMAT2W format{};
        format.cbSize = sizeof format;
        Ask(EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
        Ask(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&before));
        return (format.dwEffects & CFE_AUTOCOLOR) != 0 ? CLR_DEFAULT : format.crTextColor;
    }
    std::string Saved() {
        Box.SaveFile(Path, RichTextBox::FileKind::RichText);
        return TextFile::ReadBytes(Path, 1024 * 1024);
    }
    void Colour() {
        const RichTextBox::Shade shades[] = {
            {0, 6, false, RGB(0, 0, 200)}, {7, 8, false, RGB(200, 0, 0)}, {7, 8, true, RGB(200, 200, 0)}};
        EXPECT_TRUE(Box.Show(shades));
    }
};

const std::wstring Sql = L"select 1\r\nfrom \u00e4, \u4e2d\r\n";

}  // namespace

TEST(RichTextView, ColoursAreNoChangeAndNoStepOfUndo) {
    ViewEditor editor;
    editor.Box.SetText(Sql);
    editor.Changes = 0;
    editor.Ask(EM_SETMODIFY, FALSE);
    editor.Box.RawSelect(3, 9);
    editor.Colour();
    EXPECT_EQ(RGB(0, 0, 200), editor.ColourAt(5));
    EXPECT_EQ(CLR_DEFAULT, editor.ColourAt(6));
    EXPECT_EQ(RGB(200, 0, 0), editor.ColourAt(7));
    EXPECT_EQ(0, editor.Changes);
    EXPECT_EQ(0, editor.Ask(EM_GETMODIFY));
    EXPECT_EQ(0, editor.Ask(EM_CANUNDO));
    EXPECT_EQ((std::pair<long, long>(3, 9)), editor.Box.RawSelection());
    EXPECT_EQ(Sql, editor.Box.Text());
    // Between an edit and its undoing, and between that and the edit again.
    editor.Box.RawSelect(0, 0);
    editor.Box.SetSelText(L"x");
    editor.Colour();
    editor.Ask(EM_UNDO);
    EXPECT_EQ(Sql, editor.Box.Text());
    EXPECT_EQ(0, editor.Ask(EM_CANUNDO));
    editor.Colour();
    EXPECT_NE(0, editor.Ask(EM_CANREDO));
    editor.Ask(EM_REDO);
    EXPECT_EQ(L"x" + Sql, editor.Box.Text());
}

TEST(RichTextView, RichTextFilesAreTheSameByteByByte) {
    ViewEditor plain;
    plain.Box.SetText(Sql);
    const std::string expected = plain.Saved();
    ViewEditor editor;
    editor.Box.SetText(Sql);
    editor.Colour();
    EXPECT_EQ(expected, editor.Saved());
    EXPECT_EQ(1, editor.Plain);
    EXPECT_EQ(CLR_DEFAULT, editor.ColourAt(0));
    EXPECT_EQ(expected, editor.Saved());
    EXPECT_EQ(1, editor.Plain);
    EXPECT_EQ(std::string::npos, expected.find("\\red200"));
}

TEST(RichTextView, AnotherTextBeginsPlain) {
    ViewEditor editor;
    for (const std::wstring& text : {Sql, std::wstring(L"x"), std::wstring(20000, L'y')}) {
        editor.Box.SetText(Sql);
        editor.Colour();
        editor.Box.SetText(text);
        EXPECT_EQ(CLR_DEFAULT, editor.ColourAt(0));
        editor.Box.RawSelect(0, 0);
        editor.Box.SetSelText(L"z");
        EXPECT_EQ(CLR_DEFAULT, editor.ColourAt(0));
    }
    const unsigned texts = editor.Box.Texts();
    editor.Box.SetText(L"");
    EXPECT_NE(texts, editor.Box.Texts());
}

TEST(RichTextView, RawPositionsCountOneForALineEnd) {
    ViewEditor editor;
    editor.Box.SetText(L"ab\r\n\r\ncd");
    EXPECT_EQ(6, editor.Box.RawLength());
    EXPECT_EQ(L"b\r\rc", editor.Box.RawText(1, 5));
    EXPECT_EQ(L"", editor.Box.RawText(3, 3));
    EXPECT_EQ(0, editor.Box.RawLineStart(2));
    EXPECT_EQ(2, editor.Box.RawLineEnd(0));
    EXPECT_EQ(3, editor.Box.RawLineStart(3));
    EXPECT_EQ(3, editor.Box.RawLineEnd(3));
    EXPECT_EQ(6, editor.Box.RawLineEnd(6));
    EXPECT_EQ(0, editor.Box.Seen().first);
    EXPECT_GE(editor.Box.Seen().second, 4);
}

// Each colour would be painted at once, and what was to be painted before would be forgotten.
TEST(RichTextView, PaintingWaitsForTheLastColour) {
    static HWND window;
    static std::wstring told;
    ViewEditor editor;
    editor.Box.SetText(Sql);
    window = editor.Box.Handle();
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) WINAPI -> LRESULT {
            const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            if (sent.hwnd == window && sent.message == WM_SETREDRAW) told += sent.wParam != 0 ? L"on " : L"off ";
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    const auto after = [&](auto&& act) {
        told.clear();
        act();
        return told;
    };
    EXPECT_EQ(L"off on ", after([&] { editor.Colour(); }));
    EXPECT_EQ(L"off on ", after([&] { editor.Box.ShowPlain(); }));
    EXPECT_EQ(L"", after([&] { editor.Box.ShowPlain(); }));
    EXPECT_NE(0, GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE);
    // Somebody else has it wait already.
    SendMessageW(window, WM_SETREDRAW, FALSE, 0);
    EXPECT_EQ(L"", after([&] { editor.Colour(); }));
    EXPECT_EQ(L"", after([&] { editor.Box.ShowPlain(); }));
    EXPECT_EQ(0, GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE);
    UnhookWindowsHookEx(hook);
}

TEST(RichTextView, ChangedTextStaysChanged) {
    ViewEditor editor;
    editor.Box.SetText(Sql);
    for (const bool modified : {false, true}) {
        editor.Ask(EM_SETMODIFY, modified);
        editor.Colour();
        EXPECT_EQ(modified, editor.Ask(EM_GETMODIFY) != 0);
        editor.Box.ShowPlain();
        EXPECT_EQ(modified, editor.Ask(EM_GETMODIFY) != 0);
    }
}

TEST(RichTextView, IsZoomedByTenPercentBetweenItsEnds) {
    ViewEditor editor;
    EXPECT_EQ(100, editor.Box.ZoomPercent());
    editor.Box.Zoom(1);
    EXPECT_EQ(110, editor.Box.ZoomPercent());
    editor.Box.Zoom(-2);
    EXPECT_EQ(90, editor.Box.ZoomPercent());
    editor.Box.Zoom(-100);
    EXPECT_EQ(20, editor.Box.ZoomPercent());
    editor.Box.Zoom(100);
    EXPECT_EQ(500, editor.Box.ZoomPercent());
    editor.Box.Zoom(0);
    EXPECT_EQ(100, editor.Box.ZoomPercent());
}
