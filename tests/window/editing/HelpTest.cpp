#include <windows.h>
#include <commctrl.h>

#include "support/Steps.h"

// F1 and the tips of the object browser's columns.
namespace {

// The text of the tip that shows, if one does.
std::wstring Tip() {
    for (HWND tip = nullptr; (tip = FindWindowExW(nullptr, tip, TOOLTIPS_CLASSW, nullptr)) != nullptr;) {
        DWORD process = 0;
        GetWindowThreadProcessId(tip, &process);
        if (process != GetCurrentProcessId() || !IsWindowVisible(tip)) continue;
        wchar_t text[2000]{};
        TTTOOLINFOW tool{};
        tool.cbSize = sizeof tool;
        tool.lpszText = text;
        if (!SendMessageW(tip, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&tool))) continue;
        tool.lpszText = text;
        SendMessageW(tip, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
        return text;
    }
    return L"<none>";
}

}  // namespace

class HelpTest : public StepsFixture {
protected:
    static Step Put(const std::wstring& text) {
        return [text] { PutWithCaret(text); };
    }
    static Step Shows(const std::wstring& text) { return Becomes(text, &Tip); }
    // F1 at the caret, what it shows, and that the next key takes it away.
    std::vector<Step> Help(const std::wstring& text, const std::wstring& help) {
        return {Put(text), Press(VK_F1), Shows(help), Press(VK_LEFT), Shows(L"<none>")};
    }
    void Run(const std::vector<Steps>& all) { InSteps(L"", Joined(all)); }
};

TEST_F(HelpTest, TheWordAtTheCaretIsLookedUp) {
    Type(4);  // Oracle
    Run({Help(L"select in|itcap(a) from t",
              L"INITCAP(s)\r\n\r\nString s, with the first letter of each word capitalized and the rest of it in "
              L"lowercase. A character that is neither letter nor digit ends a word."),
         // An entry of Oracle, which other databases lack.
         Help(L"comment| on table t is 'x'",
              L"COMMENT\r\n\r\nStores a comment in the data dictionary: COMMENT ON TABLE name IS 'text' for a table or "
              L"view, COMMENT ON COLUMN table.column IS 'text' for a column. An empty text ('') removes it.")});
}

TEST_F(HelpTest, SqlOfEveryDatabaseIsExplained) {
    Run({Help(L"rollb|ack", L"ROLLBACK\r\n\r\nUndoes all changes made."),
         Help(L"|delete from t", L"DELETE FROM table [WHERE condition]\r\n\r\nRemoves rows from a table."),
         // Two words, at either of them; and a word that only begins names.
         Help(L"drop  vi|ew v", L"DROP VIEW view\r\n\r\nDeletes a database view."),
         Help(L"dro|p view v", L"DROP VIEW view\r\n\r\nDeletes a database view."),
         Help(L"dro|p table v", L"DROP {TABLE | VIEW} name\r\n\r\nRemoves objects from the database."),
         Help(L"create| index",
              L"CREATE TABLE table_name\r\n( column_name data_type\r\n, column_name data_type\r\n, ...\r\n)\r\n\r\n"
              L"Creates a new table.\r\n\r\n"
              L"CREATE [OR REPLACE] VIEW view\r\n[alias, alias, ...]\r\nAS subquery\r\n\r\n"
              L"Creates a new view of one or more tables and/or views.")});
}

TEST_F(HelpTest, NoMoreThanThreeEntriesAreShown) {
    Run({Help(L"se|t x",
              L"SET FEEDBACK {ON|OFF}\r\n\r\nPrints a feedback line under the retrieved data.\r\n\r\n"
              L"SET LONG n\r\n\r\nSpecifies how many characters are printed for a LongVarchar column; Long "
              L"(Oracle) or Text (Sql Server).\r\n\r\n"
              L"SET PAGES[IZE] n\r\n\r\nSets the size of the page in rows. Used when page breaks are "
              L"defined.")});
}

TEST_F(HelpTest, AnOpenListOfNamesGivesWayToTheTip) {
    Run({{Put(L"rollback|"), Press(VK_SPACE, FCONTROL), [] { return EditorWindow::NameList() != nullptr; },
          Press(VK_F1), Shows(L"ROLLBACK\r\n\r\nUndoes all changes made."),
          [] { EXPECT_EQ(nullptr, EditorWindow::NameList()); }}});
}

// The first and the last message of each kind.
TEST_F(HelpTest, APressOrAWheelAnywhereInTheWindowHidesTheTip) {
    const std::wstring help = L"ROLLBACK\r\n\r\nUndoes all changes made.";
    std::vector<Steps> all;
    for (const UINT message :
         {WM_LBUTTONDOWN, WM_MOUSEWHEEL, WM_MOUSEHWHEEL, WM_NCLBUTTONDOWN, WM_NCMBUTTONDBLCLK, WM_NCXBUTTONDBLCLK}) {
        all.push_back({Put(L"rollback|"), Press(VK_F1), Shows(help),
                       [message] { PostMessageW(EditorWindow::Find(), message, HTCLIENT, 0); }, Shows(L"<none>")});
    }
    // The movement of the mouse hides no tip.
    all.push_back({Put(L"rollback|"), Press(VK_F1), Shows(help),
                   [] {
                       PostMessageW(EditorWindow::Find(), WM_MOUSEMOVE, 0, 0);
                       PostMessageW(EditorWindow::Find(), WM_NCMOUSEMOVE, HTCLIENT, 0);
                   },
                   [] {}, Shows(help)});
    Run(all);
}

TEST_F(HelpTest, ATipGoesWithTheWindow) {
    Run({{Put(L"rollback|"), Press(VK_F1), Shows(L"ROLLBACK\r\n\r\nUndoes all changes made.")}});
    EXPECT_EQ(L"<none>", Tip());
}

TEST_F(HelpTest, WhatIsNotKnownIsSaid) {
    Run({Help(L"nonsen|se", L"<none>"),
         {Put(L"nonsen|se"), Press(VK_F1),
          [] { return EditorWindow::Status() == L"\"nonsense\" is not in the reference of your database."; }},
         {Put(L"a + | b"), Press(VK_F1), [] { return EditorWindow::Status() == L"There is no word at the caret."; }}});
}

TEST_F(HelpTest, TheTipStandsAtTheCaretAndGoesWithTheFocus) {
    Run({{Put(L"rollback|"), Press(VK_F1), Shows(L"ROLLBACK\r\n\r\nUndoes all changes made."),
          [] {
              HWND tip = nullptr;
              while ((tip = FindWindowExW(nullptr, tip, TOOLTIPS_CLASSW, nullptr)) != nullptr &&
                     !IsWindowVisible(tip)) {
              }
              RECT place{};
              GetWindowRect(tip, &place);
              POINTL caret{};
              SendMessageW(EditorWindow::Editor(), EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&caret), 8);
              POINT corner{caret.x, caret.y};
              ClientToScreen(EditorWindow::Editor(), &corner);
              EXPECT_NEAR(corner.x, place.left, 3);
              EXPECT_GT(place.top, corner.y + 8);
              EXPECT_LT(place.top, corner.y + 40);
              EXPECT_NE(0L, GetWindowLongW(tip, GWL_EXSTYLE) & WS_EX_TOPMOST);
              EXPECT_EQ(EditorWindow::Editor(), GetFocus());
              SetFocus(View(0));
          },
          Shows(L"<none>")}});
}

TEST_F(HelpTest, EntriesOfTheViewsAreExplainedToo) {
    Type(8);
    Run({{Put(L"|"), Press('2', FALT), Press(VK_HOME), Press(VK_F1),
          Shows(L"COMMIT\r\n\r\nSaves the changes in the current transaction to the database."), Press('4', FALT),
          Shows(L"<none>"), Press(VK_HOME), Press(VK_F1), Shows(L"@filename\r\n\r\nExecutes the SQL in a file.")}});
}

TEST_F(HelpTest, AColumnTellsItsTypeSizeAndWhetherItTakesNull) {
    struct Kind {
        const wchar_t* Name;
        std::vector<std::pair<const wchar_t*, Variant>> Properties;
        const wchar_t* Tip;
    };
    std::vector<Kind> kinds;
    kinds.push_back({L"A",
                     {{L"TYPE_NAME", Variant(L"VARCHAR")}, {L"COLUMN_SIZE", Variant(40L)}, {L"NULLABLE", Variant(0L)}},
                     L"A: VARCHAR(40), not null"});
    kinds.push_back({L"B",
                     {{L"TYPE_NAME", Variant(L"NUMBER")},
                      {L"COLUMN_SIZE", Variant(10L)},
                      {L"DECIMAL_DIGITS", Variant(2L)},
                      {L"IS_NULLABLE", Variant(L"YES")}},
                     L"B: NUMBER(10,2), null allowed"});
    kinds.push_back({L"C", {{L"TYPE_NAME", Variant(L"CHAR(3)")}, {L"COLUMN_SIZE", Variant(3L)}}, L"C: CHAR(3)"});
    kinds.push_back({L"D", {{L"DATA_TYPE", Variant(L"text")}, {L"IS_NULLABLE", Variant(L"NO")}}, L"D: text, not null"});
    kinds.push_back({L"E", {{L"REMARKS", Variant(L"none")}}, L"<none>"});
    kinds.push_back({L"L", {{L"TYPE_NAME", Variant::Null()}, {L"DATA_TYPE", Variant(L"text")}}, L"L: text"});
    // Other interfaces have other names for the size and the digits.
    kinds.push_back(
        {L"M", {{L"TYPE_NAME", Variant(L"VARCHAR")}, {L"CHARACTER_MAXIMUM_LENGTH", Variant(20L)}}, L"M: VARCHAR(20)"});
    kinds.push_back(
        {L"N",
         {{L"TYPE_NAME", Variant(L"NUMERIC")}, {L"NUMERIC_PRECISION", Variant(8L)}, {L"NUMERIC_SCALE", Variant(3L)}},
         L"N: NUMERIC(8,3)"});
    kinds.push_back(
        {L"O",
         {{L"TYPE_NAME", Variant(L"NUMBER")}, {L"COLUMN_SIZE", Variant(5L)}, {L"DECIMAL_DIGITS", Variant(0L)}},
         L"O: NUMBER(5)"});
    kinds.push_back({L"P", {{L"TYPE_NAME", Variant(12L)}, {L"COLUMN_SIZE", Variant(L"max")}}, L"P: type 12"});
    // What numbers and truth values of a driver say.
    for (const auto& [name, nullable, tip] :
         std::vector<std::tuple<const wchar_t*, Variant, const wchar_t*>>{{L"G", Variant(1L), L"G: null allowed"},
                                                                          {L"H", Variant(-1L), L"H: null allowed"},
                                                                          {L"I", Variant(true), L"I: null allowed"},
                                                                          {L"J", Variant(false), L"J: not null"},
                                                                          {L"K", Variant(2L), L"<none>"}}) {
        kinds.push_back({name, {{L"NULLABLE", nullable}}, tip});
    }
    kinds.push_back({L"F", {{L"TYPE_NAME", Variant(L"TEXT")}, {L"COLUMN_SIZE", Variant(0L)}}, L"F: TEXT"});
    Database.DictionaryMembers[L"Columns"] = [&](const Arguments&) {
        std::vector<Variant> columns;
        for (const Kind& kind : kinds) {
            std::vector<Variant> properties{Property(L"COLUMN_NAME", Variant(kind.Name))};
            for (const auto& [name, value] : kind.Properties) properties.push_back(Property(name, value));
            columns.emplace_back(MakeCollection(std::move(properties)));
        }
        return Variant(MakeCollection(std::move(columns)));
    };
    std::vector<Step> steps{[this] {
        SetForegroundWindow(EditorWindow::Find());
        Tree.Click(Tree.At({}));
        for (const std::initializer_list<int> path : {std::initializer_list<int>{}, {0}, {0, 0}, {0, 0, 0}})
            Tree.Open(Tree.At(path));
    }};
    for (int at = 0; at < static_cast<int>(kinds.size()); ++at) {
        // By the key and by the mouse.
        const std::wstring tip = kinds[static_cast<size_t>(at)].Tip;
        steps.push_back([this, at] {
            Tree.Select(Tree.At({0, 0, 0, 0, at}));
            SetFocus(Tree.Handle());
            Key(VK_F1);
        });
        steps.push_back(Shows(tip));
        if (at >= 5) continue;  // the mouse has shown enough, and no more rows are wholly in sight
        steps.push_back([this, at] {
            Key(VK_SHIFT);
            POINT place{};
            EXPECT_TRUE(Tree.Place(Tree.At({0, 0, 0, 0, at}), place));
            ClientToScreen(Tree.Handle(), &place);
            SetCursorPos(place.x, place.y);
        });
        steps.push_back(Shows(tip));
        steps.push_back([] { SetCursorPos(0, 0); });
        steps.push_back(Shows(L"<none>"));
    }
    InSteps(L"", std::move(steps));
}

TEST_F(HelpTest, ANameThatIsCutOffIsShownWhole) {
    const std::wstring longName(120, L'n');
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) {
        return Variant(MakeCollection({Variant(longName), Variant(L"S")}));
    };
    const auto point = [this](int at) {
        return [this, at] {
            POINT place{};
            EXPECT_TRUE(Tree.Place(Tree.At({0, 0, at}), place));
            RECT client{};
            GetClientRect(Tree.Handle(), &client);
            place.x = std::min(place.x, client.right - 20);
            ClientToScreen(Tree.Handle(), &place);
            SetCursorPos(place.x, place.y);
        };
    };
    InSteps(L"", {[this] {
                      SetForegroundWindow(EditorWindow::Find());
                      Tree.Click(Tree.At({}));
                      for (const std::initializer_list<int> path : {std::initializer_list<int>{}, {0}, {0, 0}})
                          Tree.Open(Tree.At(path));
                      Tree.Select(Tree.At({}));
                  },
                  point(0), Shows(longName), point(1), Shows(L"<none>"), [] { SetCursorPos(0, 0); }});
}
