#include "support/Editing.h"

namespace {

class FindTest : public EditingFixture {
protected:
    // What is done in the box once it is there.
    static void InBox(std::function<void(HWND)> work) {
        static std::function<void(HWND)> pending;
        pending = std::move(work);
        SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            const HWND box = FindWindowW(L"#32770", L"Find");
            if (box == nullptr || !IsWindowVisible(box)) return;
            KillTimer(nullptr, id);
            const auto work = std::move(pending);
            work(box);
        });
    }
    static void FindByBox(const wchar_t* text) {
        InBox([text](HWND box) {
            SetDlgItemTextW(box, 101, text);
            SendMessageW(box, WM_COMMAND, IDOK, 0);
        });
        Choose(L"Find...");
    }
};

}  // namespace

TEST_F(FindTest, FindAndFindNextGoThroughTheText) {
    Inside(L"select *\r\nfrom a --\r\nFrom b", [] {
        FindByBox(L"FROM");
        EXPECT_EQ(L"9-13", Selection());
        Choose(L"Find Next");
        EXPECT_EQ(L"19-23", Selection());
        Choose(L"Find Next");
        EXPECT_EQ(L"9-13", Selection());  // from the top again
    });
}

TEST_F(FindTest, ATextThatIsNotThereIsNotReported) {
    Inside(L"some text", [] {
        SelectText(1, 3);
        FindByBox(L"nowhere");
        EXPECT_EQ(L"1-3", Selection());
        Choose(L"Find Next");
        EXPECT_EQ(L"1-3", Selection());
    });
}

TEST_F(FindTest, TheBoxOffersTheLastTextAndCanBeCancelled) {
    Inside(L"a b c", [] {
        Choose(L"Find Next");  // nothing was looked for yet
        EXPECT_EQ(L"0-0", Selection());
        FindByBox(L"b");
        EXPECT_EQ(L"2-3", Selection());
        InBox([](HWND box) {
            wchar_t text[100]{};
            GetDlgItemTextW(box, 101, text, 100);
            EXPECT_STREQ(L"b", text);
            GetDlgItemTextW(box, 100, text, 100);
            EXPECT_STREQ(L"Enter text to find", text);
            EXPECT_EQ(EditorWindow::Find(), GetWindow(box, GW_OWNER));
            EXPECT_EQ(GetDlgItem(box, 101), GetFocus());
            EXPECT_EQ(MAKELRESULT(0, 1), SendDlgItemMessageW(box, 101, EM_GETSEL, 0, 0));  // selected
            SetDlgItemTextW(box, 101, L"c");
            SendMessageW(box, WM_COMMAND, IDCANCEL, 0);
        });
        Choose(L"Find...");
        SelectText(0, 0);
        Choose(L"Find Next");
        EXPECT_EQ(L"2-3", Selection());  // still the last one
        FindByBox(L"");
        Choose(L"Find Next");
        EXPECT_EQ(L"2-3", Selection());  // nothing is looked for any more
    });
}
