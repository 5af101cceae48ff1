#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "support/Browsed.h"
#include "support/Dialogs.h"
#include "support/Folder.h"
#include "support/PatchedFunction.h"
#include "support/TestData.h"

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
};

}  // namespace

TEST_F(OleDropTest, TextGoesWhereItIsDropped) {
    EXPECT_EQ(L"one - Zo\u00eb \u4e2d two", Inside(L"one two", [] {
                  TestData data;
                  data.AddText(L" - Zo\u00eb \u4e2d");
                  EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, PlaceOf(3)));
                  EXPECT_EQ(L" - Zo\u00eb \u4e2d", EditorWindow::SelectedText());
                  EXPECT_EQ(EditorWindow::Editor(), GetFocus());
              }));
}

TEST_F(OleDropTest, AShortTextIsThereWithTheAnswer) {
    Inside(L"one", [] {
        const auto target = EditorDropTarget();
        ASSERT_TRUE(target);
        TestData data;
        data.AddText(L"two");
        DWORD effect = DROPEFFECT_COPY;
        target->DragEnter(&data, MK_LBUTTON, PlaceOf(3), &effect);
        EXPECT_EQ(S_OK, target->Drop(&data, 0, PlaceOf(3), &effect));
        EXPECT_EQ(L"onetwo", EditorWindow::Text());
    });
}

TEST_F(OleDropTest, ADropThatNamesNoPlaceInTheTextGoesBehindTheSelection) {
    EXPECT_EQ(L"oneX two", Inside(L"one two", [] {
                  SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 3);
                  TestData data;
                  data.AddText(L"X");
                  DropOnEditor(data, {-5000, -5000});
              }));
}

TEST_F(OleDropTest, TextOfTheCodePageIsRead) {
    EXPECT_EQ(L"a\u00e9b", Inside(L"", [] {
                  TestData data;
                  data.Add(CF_TEXT, std::string("a\xe9"
                                                "b\0",
                                                4));
                  DropOnEditor(data, PlaceOf(0));
              }));
}

TEST_F(OleDropTest, RichTextLeavesItsFormattingBehind) {
    const std::string rtf = "{\\rtf1\\ansi{\\b select} *\\par from t}";
    EXPECT_EQ(L"select *\r\nfrom t", Inside(L"", [&] {
                  TestData data;
                  data.AddRichText(rtf);
                  EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, PlaceOf(0)));
              }));
    // With the same as plain text, that is what is taken.
    EXPECT_EQ(L"plain", Inside(L"", [&] {
                  TestData data;
                  data.AddRichText(rtf).AddText(L"plain");
                  DropOnEditor(data, PlaceOf(0));
              }));
}

TEST_F(OleDropTest, PicturesAndWhatIsNotKnownAreRefused) {
    EXPECT_EQ(L"one", Inside(L"one", [] {
                  TestData picture;
                  picture.Add(CF_DIB, std::string(100, '\0'));
                  EXPECT_EQ(DWORD{DROPEFFECT_NONE}, DropOnEditor(picture, PlaceOf(0)));
                  TestData nothing;
                  EXPECT_EQ(DWORD{DROPEFFECT_NONE}, DropOnEditor(nothing, PlaceOf(0)));
                  TestData text;  // of a program that only lets it be moved: it would lose it
                  text.AddText(L"moved");
                  EXPECT_EQ(DWORD{DROPEFFECT_NONE}, DropOnEditor(text, PlaceOf(0), DROPEFFECT_MOVE));
              }));
}

// A link to something is taken for what it leads to.
TEST_F(OleDropTest, WhatMayOnlyBeLinkedIsInserted) {
    EXPECT_EQ(L"linkedone", Inside(L"one", [] {
                  TestData text;
                  text.AddText(L"linked");
                  EXPECT_EQ(DWORD{DROPEFFECT_LINK}, DropOnEditor(text, PlaceOf(0), DROPEFFECT_LINK));
              }));
}

TEST_F(OleDropTest, FormatsAreAskedForInTheirOrder) {
    Inside([] {
        TestData nothing;
        DropOnEditor(nothing, PlaceOf(0));
        const auto rich = static_cast<CLIPFORMAT>(RegisterClipboardFormatW(L"Rich Text Format"));
        // By the drop itself, last: the text in either form.
        const std::vector<CLIPFORMAT> order = {
            rich, CF_UNICODETEXT, CF_TEXT, CF_HDROP, CF_BITMAP, CF_METAFILEPICT, CF_ENHMETAFILE, CF_DIB, CF_PALETTE};
        ASSERT_GE(nothing.Asked.size(), order.size());
        EXPECT_EQ(order, std::vector<CLIPFORMAT>(nothing.Asked.end() - static_cast<std::ptrdiff_t>(order.size()),
                                                 nothing.Asked.end()));
        // The first one that is offered decides: no other is asked for after it.
        TestData picture;
        picture.Add(CF_ENHMETAFILE, "x");
        DropOnEditor(picture, PlaceOf(0));
        EXPECT_EQ(CF_ENHMETAFILE, picture.Asked.back());
        TestData both;
        both.AddFiles({L"C:\\missing.sql"}).AddText(L"text");
        DropOnEditor(both, PlaceOf(0));
        EXPECT_EQ(L"text", EditorWindow::SelectedText());
        EXPECT_EQ(CF_UNICODETEXT, both.Asked.back());
    });
}

TEST_F(OleDropTest, ADragThatLeavesPutsTheSelectionBack) {
    Inside(L"one two", [] {
        SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, 3);
        const auto target = EditorDropTarget();
        ASSERT_TRUE(target);
        TestData data;
        data.AddText(L"X");
        DWORD effect = DROPEFFECT_COPY;
        target->DragEnter(&data, MK_LBUTTON, PlaceOf(5), &effect);
        EXPECT_EQ(L"", EditorWindow::SelectedText());
        target->DragLeave();
        EXPECT_EQ(L"one", EditorWindow::SelectedText());
    });
}

// As files: a large text is asked for and a larger one refused, when the other program has its answer.
TEST_F(OleDropTest, ALargeTextIsAskedForAndALargerOneRefused) {
    const auto dropped = [this](const std::function<void(TestData&)>& fill) {
        BoxAnswerer box(IDCANCEL);
        EXPECT_EQ(L"one", Inside(L"one", [&] {
                      const auto target = EditorDropTarget();
                      ASSERT_TRUE(target);
                      TestData data;
                      fill(data);
                      DWORD effect = DROPEFFECT_COPY;
                      target->DragEnter(&data, MK_LBUTTON, PlaceOf(0), &effect);
                      EXPECT_EQ(S_OK, target->Drop(&data, 0, PlaceOf(0), &effect));
                      EXPECT_EQ(0, box.Boxes);
                      FinishDrop();
                  }));
        return box.Icon + L": " + box.Text;
    };
    constexpr size_t Million = 1024 * 1024;
    const std::wstring asked =
        L"question: The text is 3 MB large, which takes the editor a while. Do you want to insert it?";
    const std::wstring refused = L"exclamation: The text that was dropped is too large for the editor.";
    EXPECT_EQ(asked, dropped([](TestData& data) { data.AddText(std::wstring(3 * Million, L'x')); }));
    EXPECT_EQ(L"question: The text is 1 MB large, which takes the editor a while. Do you want to insert it?",
              dropped([](TestData& data) { data.AddText(std::wstring(Million + 1, L'x')); }));
    EXPECT_EQ(L"question: The text is 4 MB large, which takes the editor a while. Do you want to insert it?",
              dropped([](TestData& data) { data.AddText(std::wstring(4 * Million, L'x')); }));
    // To the nearest.
    EXPECT_NE(std::wstring::npos,
              dropped([](TestData& data) { data.AddText(std::wstring(Million + Million / 2, L'x')); }).find(L" 2 MB "));
    EXPECT_EQ(refused, dropped([](TestData& data) { data.AddText(std::wstring(4 * Million + 1, L'x')); }));
    EXPECT_EQ(refused, dropped([](TestData& data) { data.Add(CF_TEXT, std::string(4 * Million + 1, 'x')); }));
    EXPECT_EQ(refused,
              dropped([](TestData& data) { data.AddRichText("{\\rtf1 " + std::string(4 * Million, 'x') + "}"); }));
    // What counts is where the text ends, not the block.
    EXPECT_EQ(L": ", dropped([](TestData& data) { data.AddText(std::wstring(5 * Million, L'\0')); }));
}

// What the other program lets through while it answers may take the target away: a long text gives way to a new one in
// a control that is made for it.
TEST_F(OleDropTest, ATargetMayGoWhileTheOtherProgramAnswers) {
    for (const int calls : {1, 2, 3}) {
        const std::wstring long_text(20000, L'x');
        const std::wstring text = Inside(long_text, [&] {
            const HWND before = EditorWindow::Editor();
            const auto target = EditorDropTarget();
            ASSERT_TRUE(target);
            TestData data;
            data.AddText(L"dropped");
            int asked = 0;
            int call = 0;
            data.WhenAsked = [&] {
                if (call == calls && asked++ == 0) EditorWindow::Choose(L"File", L"New");
            };
            const POINTL at = PlaceOf(0);
            for (call = 1; call <= 3; ++call) {
                DWORD effect = DROPEFFECT_COPY;
                if (call == 1) {
                    EXPECT_EQ(S_OK, target->DragEnter(&data, MK_LBUTTON, at, &effect));
                }
                if (call == 2) {
                    EXPECT_EQ(S_OK, target->DragOver(MK_LBUTTON, at, &effect));
                }
                if (call == 3) {
                    EXPECT_EQ(S_OK, target->Drop(&data, 0, at, &effect));
                }
                if (asked > 0) {
                    EXPECT_EQ(DWORD{DROPEFFECT_NONE}, effect) << calls << call;
                }
            }
            EXPECT_EQ(calls == 2, EditorWindow::Editor() == before);  // nobody is asked while the mouse moves
        });
        EXPECT_EQ(calls == 2 ? L"dropped" + long_text : L"", text) << calls;
    }
}

TEST_F(OleDropTest, ADragThatComesInDoesNotScrollBackToTheCaretAndScrollsAtTheEdges) {
    std::wstring lines;
    for (int line = 0; line < 200; ++line) lines += std::to_wstring(line) + L"\r\n";
    Inside(lines, [this] {
        const HWND editor = EditorWindow::Editor();
        const auto first = [&] { return SendMessageW(editor, EM_GETFIRSTVISIBLELINE, 0, 0); };
        SetFocus(Tree.Handle());
        SendMessageW(editor, EM_SETSEL, 0, 0);
        SendMessageW(editor, EM_LINESCROLL, 0, 100);
        const LRESULT scrolled = first();
        ASSERT_GT(scrolled, 50);
        RECT client;
        GetClientRect(editor, &client);
        const auto place = [&](LONG x, LONG y) {
            POINT at{x, y};
            ClientToScreen(editor, &at);
            return POINTL{at.x, at.y};
        };
        const auto target = EditorDropTarget();
        ASSERT_TRUE(target);
        TestData data;
        data.AddText(L"x");
        DWORD effect = DROPEFFECT_COPY;
        target->DragEnter(&data, MK_LBUTTON, place(50, client.bottom / 2), &effect);
        EXPECT_EQ(editor, GetFocus());
        EXPECT_EQ(scrolled, first());
        const auto held = [&](POINTL at) {
            for (int times = 0; times < 8; ++times) {
                effect = DROPEFFECT_COPY;
                target->DragOver(MK_LBUTTON, at, &effect);
                Sleep(30);
            }
        };
        held(place(50, client.bottom / 2));
        EXPECT_EQ(scrolled, first());
        held(place(50, 3));
        const LRESULT up = first();
        EXPECT_LT(up, scrolled);
        EXPECT_GE(up, scrolled - 8);  // a step a call, at most
        held(place(50, client.bottom - 3));
        EXPECT_GT(first(), up);
        target->DragLeave();
    });
}

TEST_F(OleDropTest, ATargetThatIsHeldBeyondTheWindowTakesNothing) {
    ComPtr<IDropTarget> target;
    const Object editor = Connected();
    DisplayAndClose(editor, L"one", [&] { target = EditorDropTarget(); });
    editor.Call(L"Destructor");
    ASSERT_TRUE(target);
    TestData data;
    data.AddText(L"X");
    DWORD effect = DROPEFFECT_COPY;
    EXPECT_EQ(S_OK, target->DragEnter(&data, MK_LBUTTON, {0, 0}, &effect));
    EXPECT_EQ(DWORD{DROPEFFECT_NONE}, effect);
    effect = DROPEFFECT_COPY;
    EXPECT_EQ(S_OK, target->Drop(&data, 0, {0, 0}, &effect));
    EXPECT_EQ(DWORD{DROPEFFECT_NONE}, effect);
    EXPECT_EQ(0U, target.Detach()->Release());
}

// ---- files

namespace {

class FileDropTest : public OleDropTest {
protected:
    std::wstring File(const wchar_t* name, const std::string& bytes) {
        PutBytes(Here / name, bytes);
        return Here / name;
    }
    // A file of the size without contents.
    std::wstring Sparse(const wchar_t* name, LONG megabytes) {
        const std::wstring path = File(name, "x");
        const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        SetFilePointer(file, megabytes * 1024 * 1024, nullptr, FILE_BEGIN);
        SetEndOfFile(file);
        CloseHandle(file);
        return path;
    }
    std::wstring Drop(const std::vector<std::wstring>& files, const std::wstring& sql = L"") {
        return Inside(sql, [&] {
            TestData data;
            data.AddFiles(files);
            EXPECT_EQ(DWORD{DROPEFFECT_COPY}, DropOnEditor(data, PlaceOf(0)));
        });
    }

    Folder Here;
};

}  // namespace

TEST_F(FileDropTest, EachFileComesWithALineBreakBehindIt) {
    EXPECT_EQ(L"select 1\r\nselect 2\r\nfrom t\r\n",
              Drop({File(L"one.sql", "select 1"), File(L"empty.sql", ""), File(L"two.txt", "select 2\r\nfrom t")}));
}

TEST_F(FileDropTest, EveryEncodingIsRead) {
    const std::string little(
        "\xff\xfe"
        "a\0\x2d\x4e",
        6);
    const std::string big(
        "\xfe\xff"
        "\0b\x4e\x2d",
        6);
    EXPECT_EQ(L"\u00eb\u4e2d\r\nZ\u00eb\r\na\u4e2d\r\nb\u4e2d\r\n\u00e9!\r\n",
              Drop({File(L"utf8.sql", "\xc3\xab\xe4\xb8\xad"), File(L"mark.sql", "\xef\xbb\xbfZ\xc3\xab"),
                    File(L"le.sql", little), File(L"be.sql", big), File(L"ansi.sql", "\xe9!")}));
}

TEST_F(FileDropTest, LineEndsOfOtherSystemsBecomeTheEditors) {
    EXPECT_EQ(L"a\r\nb\r\nc\r\n", Drop({File(L"unix.sql", "a\nb\nc")}));
    // All of it is selected, the line break after it too.
    Inside(L"", [this] {
        TestData data;
        data.AddFiles({File(L"unix2.sql", "a\nb")});
        DropOnEditor(data, PlaceOf(0));
        EXPECT_EQ(L"a\rb\r", EditorWindow::SelectedText());
    });
}

TEST_F(FileDropTest, RichTextComesAsItsText) {
    EXPECT_EQ(L"select *\r\n", Drop({File(L"rich.RTF", "{\\rtf1\\ansi select *}")}));
}

TEST_F(FileDropTest, WhatOnlyBearsTheNameOfRichTextComesAsItIs) {
    EXPECT_EQ(L"select 1\r\n\u00eb\r\n", Drop({File(L"plain.rtf", "select 1"), File(L"utf8.rtf", "\xc3\xab")}));
}

TEST_F(FileDropTest, DamagedRichTextIsTold) {
    for (const char* const bytes : {"{\\rtf1 half {\\b of it", "{\\rtf1 one} and more"}) {
        BoxAnswerer box;
        const std::wstring path = File(L"broken.rtf", bytes);
        EXPECT_EQ(L"x\r\n", Drop({path, File(L"x.sql", "x")}));
        EXPECT_EQ(1, box.Boxes);
        EXPECT_NE(std::wstring::npos, box.Text.find(path + L": The rich text in this file is damaged."));
    }
}

TEST_F(FileDropTest, AllFilesOfADropAreOneStepOfUndo) {
    EXPECT_EQ(L"one", Inside(L"one", [this] {
                  TestData data;
                  data.AddFiles({File(L"a.sql", "a"), File(L"b.sql", "b"), File(L"c.sql", "\r\nc\nd")});
                  DropOnEditor(data, PlaceOf(0));
                  EXPECT_EQ(L"a\r\nb\r\n\r\nc\r\nd\r\none", EditorWindow::Text());
                  // The last one stands selected, without the line break that it begins with.
                  EXPECT_EQ(L"c\rd\r", EditorWindow::SelectedText());
                  SendMessageW(EditorWindow::Editor(), WM_UNDO, 0, 0);
              }));
}

TEST_F(FileDropTest, WhatCannotBeInsertedIsToldAndTheRestComes) {
    BoxAnswerer box;
    const std::wstring missing = Here / L"missing.sql";
    EXPECT_EQ(L"x\r\n", Drop({Here.Path(), missing, File(L"x.sql", "x"), Sparse(L"huge.sql", 100)}));
    EXPECT_EQ(1, box.Boxes);
    const std::wstring folder = Here.Path() + L": This is a folder; only files can be dropped here.\r\n";
    EXPECT_EQ(0U, box.Text.find(L"Not everything could be inserted.\r\n" + folder + missing + L": "))
        << box.Text.size();
    const std::wstring huge = L": With 100 MB the file is too large for the editor, which takes up to 4 MB.";
    EXPECT_TRUE(box.Text.ends_with((Here / L"huge.sql") + huge)) << testing::PrintToString(box.Text);
    EXPECT_EQ(L"exclamation", box.Icon);
    EXPECT_EQ(1, box.Buttons);
}

// To ask for the attributes of a pipe, or to open it, is to talk to whoever listens there.
TEST_F(FileDropTest, APipeIsAskedNothing) {
    const std::wstring name = L"\\\\.\\pipe\\brv-drop-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE pipe =
        CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_NOWAIT, 1, 100, 100, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, pipe);
    static std::vector<std::wstring> asked;
    asked.clear();
    using AttributesFunction = BOOL(WINAPI*)(LPCWSTR, GET_FILEEX_INFO_LEVELS, void*);
    const AttributesFunction note = [](LPCWSTR path, GET_FILEEX_INFO_LEVELS, void*) WINAPI -> BOOL {
        asked.emplace_back(path);
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    };
    BoxAnswerer box;
    {
        const PatchedFunction patched(L"kernel32.dll", "GetFileAttributesExW", reinterpret_cast<void*>(note));
        ASSERT_TRUE(patched);
        EXPECT_EQ(L"x\r\n", Drop({name, File(L"x.sql", "x")}));
    }
    EXPECT_EQ(std::vector<std::wstring>{Here / L"x.sql"}, asked);
    EXPECT_FALSE(ConnectNamedPipe(pipe, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_PIPE_LISTENING), GetLastError()) << "somebody has opened it";
    CloseHandle(pipe);
    EXPECT_EQ(1, box.Boxes);
    EXPECT_NE(std::wstring::npos, box.Text.find(name + L": "));
}

TEST_F(FileDropTest, ALargeFileIsAskedFor) {
    BoxAnswerer box(IDCANCEL);
    EXPECT_EQ(L"x\r\none", Drop({Sparse(L"large.sql", 3), File(L"x.sql", "x")}, L"one"));
    EXPECT_EQ(1, box.Boxes);
    EXPECT_EQ((Here / L"large.sql") + L"\r\nis 3 MB large, which takes the editor a while. Do you want to insert it?",
              box.Text);
    EXPECT_EQ(L"question", box.Icon);
    EXPECT_EQ(2, box.Buttons);
}

// The other program waits for the answer: a question would leave it hanging.
TEST_F(FileDropTest, TheQuestionComesWhenTheOtherProgramHasItsAnswer) {
    BoxAnswerer box(IDCANCEL);
    const std::wstring large = Sparse(L"large.sql", 3);
    Inside(L"one", [&] {
        const auto target = EditorDropTarget();
        ASSERT_TRUE(target);
        TestData data;
        data.AddFiles({large, File(L"x.sql", "x")});
        DWORD effect = DROPEFFECT_COPY;
        target->DragEnter(&data, MK_LBUTTON, PlaceOf(0), &effect);
        EXPECT_EQ(S_OK, target->Drop(&data, 0, PlaceOf(0), &effect));
        EXPECT_EQ(DWORD{DROPEFFECT_COPY}, effect);
        EXPECT_EQ(0, box.Boxes);
        EXPECT_EQ(L"one", EditorWindow::Text());
        FinishDrop();
        EXPECT_EQ(1, box.Boxes);
        EXPECT_EQ(L"x\r\none", EditorWindow::Text());
    });
}

TEST_F(FileDropTest, WhatIsDroppedIntoOneTextDoesNotComeIntoTheNext) {
    const std::wstring file = Sparse(L"large.sql", 3);  // would be asked for
    BoxAnswerer box;
    const Object editor = Connected();
    const std::wstring first = DisplayAndClose(editor, L"one", [&] {
        const auto target = EditorDropTarget();
        ASSERT_TRUE(target);
        TestData data;
        data.AddFiles({file});
        DWORD effect = DROPEFFECT_COPY;
        target->DragEnter(&data, MK_LBUTTON, PlaceOf(0), &effect);
        target->Drop(&data, 0, PlaceOf(0), &effect);
    });
    EXPECT_EQ(L"one", first);
    // The host's own loop finds what was posted to the window, which does not show any more.
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    EXPECT_EQ(0, box.Boxes);
    EXPECT_EQ(L"two", DisplayAndClose(editor, L"two"));
}

// The block is another program's: what it says of itself need not be true.
TEST_F(FileDropTest, ADamagedListIsReadWithinItsBlock) {
    struct Header {
        DWORD Names;
        POINT Point;
        BOOL NonClient;
        BOOL Wide;
    };
    const std::wstring path = File(L"x.sql", "x");
    const std::string name(reinterpret_cast<const char*>(path.data()), path.size() * sizeof(wchar_t));
    const auto dropped = [&](DWORD names, const std::string& rest) {
        const Header header{names, {}, FALSE, TRUE};
        TestData data;
        data.Add(CF_HDROP, std::string(reinterpret_cast<const char*>(&header), sizeof header) + rest);
        return Inside(L"", [&] { DropOnEditor(data, PlaceOf(0)); });
    };
    EXPECT_EQ(L"x\r\n", dropped(sizeof(Header), name));                         // no end at all
    EXPECT_EQ(L"x\r\n", dropped(sizeof(Header), name + std::string(2, '\0')));  // none of the list
    EXPECT_EQ(L"x\r\nx\r\n", dropped(sizeof(Header), name + std::string(2, '\0') + name + std::string(3, '\0')));
    EXPECT_EQ(L"", dropped(sizeof(Header), ""));
    for (const DWORD outside :
         {DWORD{0}, DWORD{sizeof(Header) - 1}, DWORD{0x1000}, DWORD{0x7FFFFFFF}, DWORD{0xFFFFFFFF}})
        EXPECT_EQ(L"", dropped(outside, name + std::string(4, '\0')));
    TestData shorter;
    shorter.Add(CF_HDROP, std::string(sizeof(Header) - 1, '\x14'));
    EXPECT_EQ(L"", Inside(L"", [&] { DropOnEditor(shorter, PlaceOf(0)); }));
}

TEST_F(FileDropTest, BinaryBytesDoNotCutTheText) {
    const std::wstring text = Drop({File(L"binary.sql", std::string("a\0b", 3))});
    EXPECT_EQ(std::wstring(L"a\0b\r\n", 5), text);
}
