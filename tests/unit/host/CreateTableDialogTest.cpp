#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>

#include <functional>

#include "automation/Object.h"
#include "host/database/Resources.h"
#include "SampleDatabase.h"
#include "support/WindowWatchdog.h"

// The dialog that designs a table, on SQLite, whose types are in small letters.
namespace {

class Dialog {
public:
    explicit Dialog(HWND window) : window_(window) {}
    HWND Window() const { return window_; }
    HWND Item(int id) const { return GetDlgItem(window_, id); }
    std::wstring Text(int id) const {
        wchar_t text[2000]{};
        GetDlgItemTextW(window_, id, text, 2000);
        return text;
    }
    bool Enabled(int id) const { return IsWindowEnabled(Item(id)) != FALSE; }
    bool Checked(int id) const { return IsDlgButtonChecked(window_, id) == BST_CHECKED; }
    void Press(int id) const { SendMessageW(Item(id), BM_CLICK, 0, 0); }
    // As the user's typing does it: the dialog is told.
    void Type(int id, const wchar_t* text) const { SetDlgItemTextW(window_, id, text); }
    // The type by its field, and by the row of its list.
    void TypeType(const wchar_t* name) const {
        const HWND box = Item(IDC_COLUMN_TYPE);
        SetWindowTextW(box, name);
        SendMessageW(window_, WM_COMMAND, MAKEWPARAM(IDC_COLUMN_TYPE, CBN_EDITCHANGE), reinterpret_cast<LPARAM>(box));
    }
    void ChooseType(const wchar_t* name) const {
        const HWND box = Item(IDC_COLUMN_TYPE);
        const LRESULT row =
            SendMessageW(box, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name));
        ASSERT_LE(0, row);
        SendMessageW(box, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
        SendMessageW(window_, WM_COMMAND, MAKEWPARAM(IDC_COLUMN_TYPE, CBN_SELCHANGE), reinterpret_cast<LPARAM>(box));
    }
    int Rows() const { return static_cast<int>(SendMessageW(Item(IDC_COLUMNS), LVM_GETITEMCOUNT, 0, 0)); }
    std::wstring Row(int row) const {
        std::wstring cells;
        for (int column = 0; column < 5; ++column) {
            wchar_t text[200]{};
            LVITEMW item{};
            item.iSubItem = column;
            item.pszText = text;
            item.cchTextMax = 200;
            SendMessageW(Item(IDC_COLUMNS), LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                         reinterpret_cast<LPARAM>(&item));
            cells += (column > 0 ? L"|" : L"") + std::wstring(text);
        }
        return cells;
    }
    int Selected() const {
        return static_cast<int>(
            SendMessageW(Item(IDC_COLUMNS), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    }
    void Select(int row) const {
        LVITEMW item{};
        item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageW(Item(IDC_COLUMNS), LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    void Key(WORD key) const { SendMessageW(Item(IDC_COLUMNS), WM_KEYDOWN, key, 1); }
    RECT Place(int id) const {
        RECT place{};
        GetWindowRect(Item(id), &place);
        MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }

private:
    HWND window_;
};

struct Answer {
    std::wstring Statement;
    bool Cancelled = false;
    int Shown = 0;
};

// Shows the dialog, works in it, and cancels it where the work has left it open.
Answer InDialog(std::function<void(const Dialog&)> work) {
    static std::function<void(const Dialog&)> inside;
    static int shown;
    inside = std::move(work);
    shown = 0;
    const WindowWatchdog watchdog(20000);
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        const HWND window = ShownTableDialog();
        if (window == nullptr) return;
        KillTimer(nullptr, id);
        ++shown;
        inside(Dialog(window));
        if (IsWindowVisible(window)) SendMessageW(window, WM_COMMAND, IDCANCEL, 0);
    });
    const Object database = OpenDatabaseObject();
    Answer answer{L"before"};
    database.Call(L"ShowCreateTableDialog1", ByRef(answer.Statement), ByRef(answer.Cancelled));
    KillTimer(nullptr, timer);
    inside = nullptr;
    answer.Shown = shown;
    return answer;
}

}  // namespace

TEST(CreateTableDialog, BeginsWithAKeyAndWantsAName) {
    const Answer answer = InDialog([](const Dialog& dialog) {
        EXPECT_EQ(1, dialog.Rows());
        EXPECT_EQ(L"id|integer||no|yes", dialog.Row(0));
        EXPECT_EQ(0, dialog.Selected());
        EXPECT_EQ(L"id", dialog.Text(IDC_COLUMN_NAME));
        EXPECT_EQ(L"integer", dialog.Text(IDC_COLUMN_TYPE));
        EXPECT_EQ(L"", dialog.Text(IDC_COLUMN_SIZE));
        EXPECT_FALSE(dialog.Enabled(IDC_COLUMN_SIZE)) << "an integer has none";
        EXPECT_FALSE(dialog.Checked(IDC_NULLABLE));
        EXPECT_TRUE(dialog.Checked(IDC_PRIMARY_KEY));
        EXPECT_EQ(L"The table needs a name.", dialog.Text(IDC_HINT));
        EXPECT_FALSE(dialog.Enabled(IDOK));
        EXPECT_EQ(dialog.Item(IDC_TABLE_NAME), GetFocus());
        for (const int name : {IDC_TABLE_NAME, IDC_COLUMN_NAME})
            EXPECT_EQ(128, SendMessageW(dialog.Item(name), EM_GETLIMITTEXT, 0, 0));
        EXPECT_EQ(20, SendMessageW(dialog.Item(IDC_COLUMN_SIZE), EM_GETLIMITTEXT, 0, 0));
        // The Enter key asks for the button that is disabled.
        SendMessageW(dialog.Window(), WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(IsWindowVisible(dialog.Window()));
        dialog.Type(IDC_TABLE_NAME, L" \t");
        EXPECT_FALSE(dialog.Enabled(IDOK));
        dialog.Type(IDC_TABLE_NAME, L"  my table\t");
        EXPECT_TRUE(dialog.Enabled(IDOK));
        EXPECT_EQ(L"", dialog.Text(IDC_HINT));
        dialog.Press(IDOK);
    });
    EXPECT_EQ(1, answer.Shown);
    EXPECT_FALSE(answer.Cancelled);
    EXPECT_EQ(L"CREATE TABLE \"my table\" (\r\n    id integer NOT NULL,\r\n    PRIMARY KEY (id)\r\n)",
              answer.Statement);
}

TEST(CreateTableDialog, AddsAndChangesAColumn) {
    const Answer answer = InDialog([](const Dialog& dialog) {
        dialog.Type(IDC_TABLE_NAME, L"t");
        dialog.Press(IDC_ADD);
        ASSERT_EQ(2, dialog.Rows());
        EXPECT_EQ(1, dialog.Selected());
        EXPECT_EQ(dialog.Item(IDC_COLUMN_NAME), GetFocus());
        EXPECT_EQ(L"|varchar|50|yes|", dialog.Row(1));
        EXPECT_TRUE(dialog.Enabled(IDC_COLUMN_SIZE));
        EXPECT_EQ(L"Column 2 needs a name.", dialog.Text(IDC_HINT));
        dialog.Type(IDC_COLUMN_NAME, L" name ");
        dialog.Type(IDC_COLUMN_SIZE, L"40");
        EXPECT_EQ(L"name|varchar|40|yes|", dialog.Row(1));
        EXPECT_EQ(L"", dialog.Text(IDC_HINT));
        dialog.Press(IDC_NULLABLE);
        EXPECT_EQ(L"name|varchar|40|no|", dialog.Row(1));
        dialog.Press(IDC_NULLABLE);
        dialog.Press(IDC_PRIMARY_KEY);
        EXPECT_EQ(L"name|varchar|40|no|yes", dialog.Row(1));
        EXPECT_FALSE(dialog.Checked(IDC_NULLABLE)) << "what is in the key is not null";
        EXPECT_EQ(
            L"CREATE TABLE t (\r\n    id integer NOT NULL,\r\n    name varchar(40) NOT NULL,\r\n"
            L"    PRIMARY KEY (id, name)\r\n)",
            dialog.Text(IDC_PREVIEW));
        dialog.Press(IDC_PRIMARY_KEY);
        EXPECT_EQ(L"name|varchar|40|yes|", dialog.Row(1));
        EXPECT_EQ(L"id|integer||no|yes", dialog.Row(0)) << "the other one stays as it was";
        dialog.Press(IDOK);
    });
    EXPECT_FALSE(answer.Cancelled);
    EXPECT_EQ(L"CREATE TABLE t (\r\n    id integer NOT NULL,\r\n    name varchar(40),\r\n    PRIMARY KEY (id)\r\n)",
              answer.Statement);
}

TEST(CreateTableDialog, AnotherTypeBringsItsSize) {
    InDialog([](const Dialog& dialog) {
        dialog.Press(IDC_ADD);
        dialog.Type(IDC_COLUMN_NAME, L"c");
        dialog.Type(IDC_COLUMN_SIZE, L"40");
        dialog.ChooseType(L"integer");
        EXPECT_EQ(L"c|integer||yes|", dialog.Row(1));
        EXPECT_EQ(L"", dialog.Text(IDC_COLUMN_SIZE));
        EXPECT_FALSE(dialog.Enabled(IDC_COLUMN_SIZE));
        dialog.TypeType(L" VARCHAR ");
        EXPECT_EQ(L"c|VARCHAR|50|yes|", dialog.Row(1));
        EXPECT_EQ(L"50", dialog.Text(IDC_COLUMN_SIZE));
        EXPECT_TRUE(dialog.Enabled(IDC_COLUMN_SIZE));
        // One that the driver does not tell of may have a size, and keeps the one that there is.
        dialog.TypeType(L"geometry");
        EXPECT_EQ(L"c|geometry|50|yes|", dialog.Row(1));
        EXPECT_TRUE(dialog.Enabled(IDC_COLUMN_SIZE));
        dialog.TypeType(L"");
        EXPECT_EQ(L"The table needs a name.", dialog.Text(IDC_HINT));
        dialog.Type(IDC_TABLE_NAME, L"t");
        EXPECT_EQ(L"The column c needs a type.", dialog.Text(IDC_HINT));
        EXPECT_FALSE(dialog.Enabled(IDOK));
    });
}

TEST(CreateTableDialog, MovesAndRemovesTheSelectedColumn) {
    const Answer answer = InDialog([](const Dialog& dialog) {
        for (const wchar_t* const name : {L"a", L"b"}) {
            dialog.Press(IDC_ADD);
            dialog.Type(IDC_COLUMN_NAME, name);
        }
        const auto names = [&] {
            std::wstring all;
            for (int row = 0; row < dialog.Rows(); ++row)
                all += dialog.Row(row).substr(0, dialog.Row(row).find(L'|')) + L" ";
            return all + std::to_wstring(dialog.Selected());
        };
        EXPECT_EQ(L"id a b 2", names());
        EXPECT_TRUE(dialog.Enabled(IDC_MOVE_UP));
        EXPECT_FALSE(dialog.Enabled(IDC_MOVE_DOWN));
        dialog.Press(IDC_MOVE_UP);
        EXPECT_EQ(L"id b a 1", names());
        EXPECT_TRUE(dialog.Enabled(IDC_MOVE_DOWN));
        dialog.Press(IDC_MOVE_UP);
        EXPECT_EQ(L"b id a 0", names());
        EXPECT_FALSE(dialog.Enabled(IDC_MOVE_UP));
        SendMessageW(dialog.Window(), WM_COMMAND, IDC_MOVE_UP, 0);
        EXPECT_EQ(L"b id a 0", names());
        dialog.Press(IDC_MOVE_DOWN);
        EXPECT_EQ(L"id b a 1", names());
        // A new one comes behind the selected one.
        dialog.Select(0);
        EXPECT_EQ(L"id", dialog.Text(IDC_COLUMN_NAME));
        EXPECT_TRUE(dialog.Checked(IDC_PRIMARY_KEY));
        SetFocus(dialog.Item(IDC_COLUMNS));
        dialog.Key(VK_INSERT);
        dialog.Type(IDC_COLUMN_NAME, L"n");
        EXPECT_EQ(L"id n b a 1", names());
        EXPECT_EQ(dialog.Item(IDC_COLUMN_NAME), GetFocus());
        SetFocus(dialog.Item(IDC_COLUMNS));
        dialog.Key(VK_DELETE);
        EXPECT_EQ(L"id b a 1", names());
        EXPECT_EQ(L"b", dialog.Text(IDC_COLUMN_NAME));
        dialog.Key(VK_F2);
        EXPECT_EQ(dialog.Item(IDC_COLUMN_NAME), GetFocus());
        NMHDR twice{dialog.Item(IDC_COLUMNS), IDC_COLUMNS, static_cast<UINT>(NM_DBLCLK)};
        SetFocus(dialog.Item(IDC_TABLE_NAME));
        SendMessageW(dialog.Window(), WM_NOTIFY, IDC_COLUMNS, reinterpret_cast<LPARAM>(&twice));
        EXPECT_EQ(dialog.Item(IDC_COLUMN_NAME), GetFocus());
        dialog.Press(IDC_REMOVE);
        EXPECT_EQ(L"id a 1", names());
        dialog.Press(IDC_REMOVE);
        EXPECT_EQ(L"id 0", names());
        dialog.Press(IDC_REMOVE);
        EXPECT_EQ(L"-1", names());
        dialog.Type(IDC_TABLE_NAME, L"t");
        EXPECT_EQ(L"The table needs at least one column.", dialog.Text(IDC_HINT));
        EXPECT_EQ(L"", dialog.Text(IDC_COLUMN_NAME));
        for (const int id : {IDC_COLUMN_NAME, IDC_COLUMN_TYPE, IDC_COLUMN_SIZE, IDC_NULLABLE, IDC_PRIMARY_KEY,
                             IDC_REMOVE, IDC_MOVE_UP, IDC_MOVE_DOWN, IDOK}) {
            EXPECT_FALSE(dialog.Enabled(id)) << id;
        }
        EXPECT_TRUE(dialog.Enabled(IDC_ADD));
        EXPECT_NE(nullptr, GetFocus()) << "the button with the focus was disabled";
        dialog.Press(IDC_ADD);
        EXPECT_EQ(L" 0", names());
    });
    EXPECT_TRUE(answer.Cancelled);
    EXPECT_EQ(L"", answer.Statement);
}

TEST(CreateTableDialog, ItsPartsShareItsSizeAndDoNotOverlap) {
    InDialog([](const Dialog& dialog) {
        const auto expectOrder = [&] {
            RECT client{};
            GetClientRect(dialog.Window(), &client);
            const RECT list = dialog.Place(IDC_COLUMNS);
            const RECT preview = dialog.Place(IDC_PREVIEW);
            const RECT name = dialog.Place(IDC_COLUMN_NAME);
            const RECT type = dialog.Place(IDC_COLUMN_TYPE);
            const RECT size = dialog.Place(IDC_COLUMN_SIZE);
            const RECT ok = dialog.Place(IDOK);
            const RECT cancel = dialog.Place(IDCANCEL);
            const int stack[] = {IDC_TABLE_NAME,  IDC_COLUMNS_LABEL, IDC_COLUMNS, IDC_COLUMN_NAME_LABEL,
                                 IDC_COLUMN_NAME, IDC_PREVIEW_LABEL, IDC_PREVIEW, IDOK};
            for (size_t at = 1; at < std::size(stack); ++at) {
                EXPECT_LE(dialog.Place(stack[at - 1]).bottom, dialog.Place(stack[at]).top) << stack[at];
                EXPECT_LT(dialog.Place(stack[at]).top, dialog.Place(stack[at]).bottom) << stack[at];
            }
            EXPECT_LT(0, dialog.Place(IDC_TABLE_NAME).top);
            EXPECT_LT(ok.bottom, client.bottom);
            const int across[] = {IDC_COLUMN_NAME, IDC_COLUMN_TYPE, IDC_COLUMN_SIZE, IDC_NULLABLE, IDC_PRIMARY_KEY};
            for (size_t at = 1; at < std::size(across); ++at)
                EXPECT_LT(dialog.Place(across[at - 1]).right, dialog.Place(across[at]).left) << across[at];
            EXPECT_LE(dialog.Place(IDC_PRIMARY_KEY).right, client.right);
            EXPECT_LT(ok.right, cancel.left);
            const int buttons[] = {IDC_ADD, IDC_REMOVE, IDC_MOVE_UP, IDC_MOVE_DOWN};
            for (size_t at = 0; at < std::size(buttons); ++at) {
                const RECT button = dialog.Place(buttons[at]);
                EXPECT_LT(list.right, button.left);
                EXPECT_EQ(cancel.right, button.right);
                EXPECT_LT(at > 0 ? dialog.Place(buttons[at - 1]).bottom : 0, button.top);
            }
            EXPECT_EQ(preview.left, list.left);
            EXPECT_EQ(name.left, list.left);
            EXPECT_EQ(name.top, type.top);
            EXPECT_EQ(name.top, size.top);
            EXPECT_NEAR(cancel.right, preview.right, 1);
            EXPECT_NEAR(preview.left, client.right - preview.right, 1);
            // The columns of the list fill it, and leave room for its bar.
            LRESULT widths = 0;
            for (WPARAM column = 0; column < 5; ++column)
                widths += SendMessageW(dialog.Item(IDC_COLUMNS), LVM_GETCOLUMNWIDTH, column, 0);
            RECT inside{};
            GetClientRect(dialog.Item(IDC_COLUMNS), &inside);
            EXPECT_EQ(inside.right - GetSystemMetrics(SM_CXVSCROLL), widths);
        };
        expectOrder();
        const RECT before = dialog.Place(IDC_PREVIEW);
        RECT window{};
        GetWindowRect(dialog.Window(), &window);
        SetWindowPos(dialog.Window(), nullptr, 0, 0, window.right - window.left + 200, window.bottom - window.top + 150,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        expectOrder();
        const RECT after = dialog.Place(IDC_PREVIEW);
        EXPECT_NEAR(200, (after.right - after.left) - (before.right - before.left), 3);
        EXPECT_LT(before.bottom - before.top, after.bottom - after.top);
        MINMAXINFO limits{};
        SendMessageW(dialog.Window(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        SetWindowPos(dialog.Window(), nullptr, 0, 0, 1, 1, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        GetWindowRect(dialog.Window(), &window);
        EXPECT_EQ(limits.ptMinTrackSize.x, window.right - window.left);
        EXPECT_EQ(limits.ptMinTrackSize.y, window.bottom - window.top);
        expectOrder();
        // What is read as a statement stands in a font where all letters are as wide as each other.
        LOGFONTW font{};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog.Item(IDC_PREVIEW), WM_GETFONT, 0, 0)), sizeof font,
                   &font);
        EXPECT_STREQ(L"Consolas", font.lfFaceName);
        LOGFONTW own{};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog.Window(), WM_GETFONT, 0, 0)), sizeof own, &own);
        EXPECT_EQ(own.lfHeight, font.lfHeight);
    });
}

TEST(CreateTableDialog, HasTheControlsOfItsManifest) {
    const auto active = [] {
        HANDLE context = nullptr;
        GetCurrentActCtx(&context);
        if (context != nullptr) ReleaseActCtx(context);
        return context != nullptr;
    };
    EXPECT_FALSE(active());
    const Answer answer = InDialog([&](const Dialog& dialog) {
        EXPECT_TRUE(active());
        constexpr DWORD Extended = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
        EXPECT_EQ(Extended,
                  static_cast<DWORD>(SendMessageW(dialog.Item(IDC_COLUMNS), LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0)));
        const wchar_t* const titles[] = {L"Name", L"Type", L"Size", L"Null", L"Key"};
        for (WPARAM column = 0; column < 5; ++column) {
            wchar_t text[50]{};
            LVCOLUMNW asked{};
            asked.mask = LVCF_TEXT;
            asked.pszText = text;
            asked.cchTextMax = 50;
            SendMessageW(dialog.Item(IDC_COLUMNS), LVM_GETCOLUMNW, column, reinterpret_cast<LPARAM>(&asked));
            EXPECT_STREQ(titles[column], text);
        }
    });
    EXPECT_EQ(1, answer.Shown);
    EXPECT_FALSE(active());
}

TEST(CreateTableDialog, OfATopmostWindowIsTopmostToo) {
    for (const DWORD style : {DWORD{0}, DWORD{WS_EX_TOPMOST}}) {
        const HWND owner = CreateWindowExW(style, L"Static", L"", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                                           nullptr, nullptr, nullptr);
        SetActiveWindow(owner);
        InDialog([&](const Dialog& dialog) {
            EXPECT_EQ(owner, GetWindow(dialog.Window(), GW_OWNER));
            EXPECT_FALSE(IsWindowEnabled(owner));
            EXPECT_EQ(style, static_cast<DWORD>(GetWindowLongW(dialog.Window(), GWL_EXSTYLE)) & WS_EX_TOPMOST);
        });
        DestroyWindow(owner);
    }
}
