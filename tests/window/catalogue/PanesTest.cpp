#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <map>

#include "catalogue/Catalogue.h"
#include "catalogue/CatalogueEntry.h"
#include "editor/ControlIds.h"
#include "support/Browsed.h"
#include "support/Screen.h"

// The reference as the running window shows it: every entry of every pane, its description, and what the Action menu
// does with it.
namespace {

// An entry as it has to come out of the window.
struct Expected {
    std::wstring Text;
    std::wstring Category;
    CatalogueTexts Texts;
    long List;
    long Type;
};

std::map<long, Expected> AllEntries() {
    std::map<long, Expected> all;
    for (const CatalogueSection& section : CatalogueSections()) {
        long id = section.FirstId;
        for (const CatalogueEntry& entry : section.Entries) {
            all[id++] = {std::wstring(entry.Text), std::wstring(section.Category), ExpandTexts(section, entry),
                         section.list, section.DBType};
        }
    }
    return all;
}

class PanesTest : public BrowsedFixture {
protected:
    const std::map<long, Expected> Entries = AllEntries();

    // What an entry of the Action menu makes of the selected entry; "<none>" when it cannot be chosen.
    static std::wstring Chosen(const wchar_t* entry) {
        if (MenuEntries(L"Action").find(std::wstring(entry) + L"+") == std::wstring::npos) return L"<none>";
        EditorWindow::SetText(L"");
        EditorWindow::Choose(L"Action", entry);
        return EditorWindow::Text();
    }
    static std::wstring Statement(const std::wstring& text) {
        return text.empty() ? std::wstring(L"<none>") : L"\r\n" + text + L";\r\n";
    }
    static void ExpectShown(const Expected& entry) {
        SCOPED_TRACE(std::string(entry.Text.begin(), entry.Text.end()));
        EXPECT_EQ(entry.Texts.Description.Text(), Description());
        EXPECT_EQ(Statement(entry.Texts.SelectText.Text()), Chosen(L"Select"));
        EXPECT_EQ(Statement(entry.Texts.ExecuteText.Text()), Chosen(L"Execute"));
        EXPECT_EQ(L"<none>", Chosen(L"Insert"));
        EXPECT_EQ(L"<none>", Chosen(L"Update"));
        EXPECT_EQ(L"<none>", Chosen(L"Delete"));
    }
    void ExpectList(int page, long list, size_t count, const wchar_t* first) {
        // The row that is selected after the load.
        wchar_t text[300]{};
        ASSERT_EQ(0, SendMessageW(View(page), LB_GETCURSEL, 0, 0));
        SendMessageW(View(page), LB_GETTEXT, 0, reinterpret_cast<LPARAM>(text));
        EXPECT_EQ(std::wstring(first), text);
        ShowPage(page);
        LRESULT row = 0;
        for (const auto& [id, entry] : Entries) {
            if (entry.List != list) continue;
            if (row > 0) SendMessageW(View(page), WM_KEYDOWN, VK_DOWN, 1);
            ASSERT_EQ(row, SendMessageW(View(page), LB_GETCURSEL, 0, 0));
            SendMessageW(View(page), LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
            EXPECT_EQ(entry.Text, text);
            EXPECT_EQ(id, SendMessageW(View(page), LB_GETITEMDATA, static_cast<WPARAM>(row), 0));
            ExpectShown(entry);
            ++row;
        }
        EXPECT_EQ(count, static_cast<size_t>(SendMessageW(View(page), LB_GETCOUNT, 0, 0)));
    }
    // The categories, with the number of their entries.
    std::wstring ExpectTree(long type) {
        const EditorTree tree(EditorTree::DatabaseSpecific);
        ShowPage(2);
        std::wstring counts;
        std::map<std::wstring, HTREEITEM> next;
        std::map<std::wstring, int> found;
        std::vector<std::wstring> order;
        for (HTREEITEM category = tree.At({}); category != nullptr; category = tree.Next(TVGN_NEXT, category)) {
            order.push_back(tree.Text(category));
            next[order.back()] = tree.Next(TVGN_CHILD, category);
        }
        for (const auto& [id, entry] : Entries) {
            if (entry.Type != type || entry.List != 2) continue;
            HTREEITEM& node = next[entry.Category];
            EXPECT_NE(nullptr, node);
            if (node == nullptr) continue;
            EXPECT_EQ(entry.Text, tree.Text(node));
            tree.Click(node);
            ExpectShown(entry);
            node = tree.Next(TVGN_NEXT, node);
            ++found[entry.Category];
        }
        for (const std::wstring& category : order) {
            EXPECT_EQ(nullptr, next[category]);  // none beyond those
            counts += (counts.empty() ? L"" : L" ") + std::to_wstring(found[category]);
        }
        return counts;
    }
};

}  // namespace

TEST_F(PanesTest, TheTwoListsShowTheirEntries) {
    Inside([this] {
        ExpectList(1, 1, 10, L"COMMIT");
        ExpectList(3, 3, 25, L"@");
    });
}

TEST_F(PanesTest, TheTreeShowsTheEntriesOfTheDatabase) {
    const struct {
        long Type;
        const wchar_t* Counts;
    } databases[] = {{4, L"1 18 23 8 6 10 9 24 5 10"}, {8, L"1 24 23 14 10 2 28 0 5 27"}};
    for (const auto& database : databases) {
        Type(database.Type);
        Inside([&] {
            const EditorTree tree(EditorTree::DatabaseSpecific);
            EXPECT_EQ(L"SQL Commands", tree.Text(tree.Selected()));
            EXPECT_EQ(database.Counts, ExpectTree(database.Type));
            tree.Click(tree.At({}));
            EXPECT_EQ(L"", Description());  // a category
        });
        EXPECT_EQ(L"", Errors.Places());
    }
}

TEST_F(PanesTest, OtherDatabasesHaveAnEmptyTreeAndFullLists) {
    for (const long type : {0L, 17L}) {
        Type(type);
        Inside([this] {
            const EditorTree tree(EditorTree::DatabaseSpecific);
            EXPECT_EQ(0, tree.Count());
            EXPECT_EQ(nullptr, tree.Selected());
            ShowPage(2);
            EXPECT_EQ(0U, MenuEntries(L"Action").find(L"Select-|Insert-|Update-|Delete-|Execute-|Create-|Tasks-"));
            EXPECT_EQ(10, SendMessageW(View(1), LB_GETCOUNT, 0, 0));
            EXPECT_EQ(25, SendMessageW(View(3), LB_GETCOUNT, 0, 0));
        });
        EXPECT_EQ(L"", Errors.Places());
    }
}

TEST_F(PanesTest, WithoutADictionaryTheTreeIsEmptyAndTheListsAreFull) {
    Database.Members[L"Dictionary"] = [](const Arguments&) { return Variant::Nothing(); };
    Inside([] {
        EXPECT_EQ(0, EditorTree(EditorTree::DatabaseSpecific).Count());
        EXPECT_EQ(10, SendMessageW(View(1), LB_GETCOUNT, 0, 0));
        EXPECT_EQ(25, SendMessageW(View(3), LB_GETCOUNT, 0, 0));
    });
    EXPECT_EQ(L"frmSQLEditor.Constructor 35601", Errors.Places());
}

// As wide as the window opens, and not low.
TEST_F(PanesTest, EveryDescriptionIsSeenWhole) {
    Inside([this] {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 6500 * ScreenDpi() / 1440, 9000 * ScreenDpi() / 1440,
                     SWP_NOMOVE | SWP_NOZORDER);
        const HWND label = EditorWindow::Control(IdDescription);
        RECT client;
        GetClientRect(label, &client);
        const HDC context = GetDC(label);
        const HGDIOBJ before = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(label, WM_GETFONT, 0, 0)));
        LONG highest = 0;
        for (const auto& [id, entry] : Entries) {
            RECT text{0, 0, client.right, 0};
            const std::wstring description = entry.Texts.Description.Text();
            DrawTextW(context, description.c_str(), -1, &text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
            EXPECT_LE(text.bottom, client.bottom) << id;
            highest = std::max(highest, text.bottom);
        }
        SelectObject(context, before);
        ReleaseDC(label, context);
        EXPECT_GT(highest, client.bottom / 2);
    });
}
