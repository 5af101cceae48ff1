#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "Browsed.h"
#include "TestData.h"

namespace {

class OleDropTest : public BrowsedFixture {
protected:
    static POINTL PlaceOf(LONG position) {
        POINTL at{};
        SendMessageW(EditorWindow::Editor(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&at), position);
        POINT screen{at.x + 1, at.y + 3};
        ClientToScreen(EditorWindow::Editor(), &screen);
        return {screen.x, screen.y};
    }
    static std::wstring Selected() {
        CHARRANGE range{};
        SendMessageW(EditorWindow::Editor(), EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
        std::wstring text(static_cast<size_t>(range.cpMax - range.cpMin) + 1, L'\0');
        text.resize(static_cast<size_t>(
            SendMessageW(EditorWindow::Editor(), EM_GETSELTEXT, 0, reinterpret_cast<LPARAM>(text.data()))));
        return text;
    }
};

}  // namespace

TEST_F(OleDropTest, TextGoesWhereItIsDropped) {
    EXPECT_EQ(L"one - Zo\u00eb \u4e2d two", Inside(
                                                [] {
                                                    TestData data;
                                                    data.AddText(L" - Zo\u00eb \u4e2d");
                                                    EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, PlaceOf(3)));
                                                    EXPECT_EQ(L" - Zo\u00eb \u4e2d", Selected());
                                                    EXPECT_EQ(EditorWindow::Editor(), GetFocus());
                                                },
                                                L"one two"));
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(OleDropTest, ADropThatNamesNoPlaceInTheTextGoesBehindTheSelection) {
    EXPECT_EQ(L"oneX two", Inside(
                               [] {
                                   SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 3);
                                   TestData data;
                                   data.AddText(L"X");
                                   DropOnEditor(data, {-5000, -5000});
                               },
                               L"one two"));
}

TEST_F(OleDropTest, TextOfTheCodePageIsRead) {
    EXPECT_EQ(L"a\u00e9b", Inside(
                               [] {
                                   TestData data;
                                   data.Add(CF_TEXT, std::string("a\xe9"
                                                                 "b\0",
                                                                 4));
                                   DropOnEditor(data, PlaceOf(0));
                               },
                               L""));
}

TEST_F(OleDropTest, RichTextLeavesItsFormattingBehind) {
    const std::string rtf = "{\\rtf1\\ansi{\\b select} *\\par from t}";
    EXPECT_EQ(L"select *\r\nfrom t", Inside(
                                         [&] {
                                             TestData data;
                                             data.AddRichText(rtf);
                                             EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, PlaceOf(0)));
                                         },
                                         L""));
    // With the same as plain text, that is what is taken.
    EXPECT_EQ(L"plain", Inside(
                            [&] {
                                TestData data;
                                data.AddRichText(rtf).AddText(L"plain");
                                DropOnEditor(data, PlaceOf(0));
                            },
                            L""));
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(OleDropTest, PicturesAndWhatIsNotKnownAreRefused) {
    EXPECT_EQ(L"one", Inside(
                          [] {
                              TestData picture;
                              picture.Add(CF_DIB, std::string(100, '\0'));
                              EXPECT_EQ(DWORD{DROPEFFECT_NONE}, DropOnEditor(picture, PlaceOf(0)));
                              TestData nothing;
                              EXPECT_EQ(DWORD{DROPEFFECT_NONE}, DropOnEditor(nothing, PlaceOf(0)));
                              TestData text;  // of a program that only lets it be moved: it would lose it
                              text.AddText(L"moved");
                              EXPECT_EQ(DWORD{DROPEFFECT_NONE}, DropOnEditor(text, PlaceOf(0), DROPEFFECT_MOVE));
                          },
                          L"one"));
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(OleDropTest, ADragThatLeavesPutsTheSelectionBack) {
    Inside(
        [] {
            SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 3);
            IDropTarget* const target = EditorDropTarget();
            ASSERT_NE(nullptr, target);
            TestData data;
            data.AddText(L"X");
            DWORD effect = DROPEFFECT_COPY;
            target->DragEnter(&data, MK_LBUTTON, PlaceOf(5), &effect);
            EXPECT_EQ(L"", Selected());
            target->DragLeave();
            EXPECT_EQ(L"one", Selected());
            target->Release();
        },
        L"one two");
}

TEST_F(OleDropTest, ATargetThatIsHeldBeyondTheWindowTakesNothing) {
    IDropTarget* target = nullptr;
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Database.Make());
    DisplayAndClose(editor, L"one", [&] { target = EditorDropTarget(); });
    editor.Call(L"Destructor");
    ASSERT_NE(nullptr, target);
    TestData data;
    data.AddText(L"X");
    DWORD effect = DROPEFFECT_COPY;
    EXPECT_EQ(S_OK, target->DragEnter(&data, MK_LBUTTON, {0, 0}, &effect));
    EXPECT_EQ(DWORD{DROPEFFECT_NONE}, effect);
    effect = DROPEFFECT_COPY;
    EXPECT_EQ(S_OK, target->Drop(&data, 0, {0, 0}, &effect));
    EXPECT_EQ(DWORD{DROPEFFECT_NONE}, effect);
    EXPECT_EQ(0U, target->Release());
}
