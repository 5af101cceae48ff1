#include <windows.h>
#include <commctrl.h>

#include "browser/modLists_Tree.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"
#include "shared/modGlobal.h"
#include "editor/ControlIds.h"
#include "support/Dialogs.h"
#include "support/Folder.h"
#include "support/HostFakes.h"
#include "support/PatchedFunction.h"
#include "support/Settings.h"
#include "support/TestData.h"

// Each procedure reports under its own name. An event of a control that lets an error out makes the procedure fail that
// raised it; where a procedure below it has a trap of its own, the first reports fail, and what failed travels up, each
// trap on the way having its turn.
namespace {

constexpr long Failure = ObjectErrorBase + 77;

class ReportNamesTest : public testing::Test {
protected:
    ReportNamesTest() {
        Settings::Clear();
        modGlobal::Main();
        Host.DictionaryMembers[L"Schemas"] = [](const Arguments&) -> Variant { RaiseError(Failure, L"host", L"no"); };
        Host.DictionaryMembers[L"Objects"] = Host.DictionaryMembers[L"Schemas"];
        Host.DictionaryMembers[L"Columns"] = Host.DictionaryMembers[L"Schemas"];
        Dictionary = std::make_shared<clsDictionary>();
        Dictionary->Constructor(Host.MakeDictionary());
        DBType = 4;
        SchemaTermPlural = L"Schemas";
        EditorForm = std::make_shared<frmSQLEditor>();
        EditorForm->Load();
        EXPECT_EQ(L"", Errors.Places());
    }
    ~ReportNamesTest() override {
        EditorForm.reset();
        Dictionary.reset();
        ErrorHandler.reset();
        DBType = 0;
        SchemaTermPlural.clear();
        Settings::Clear();
    }
    frmSQLEditor& Form() { return *EditorForm; }
    static void Fail() { RaiseError(Failure, L"a test", L"no"); }

    // The reports of a step, each as "procedure number", when the first attempts to report fail.
    std::wstring Reported(const std::function<void()>& step, int failing = 0) {
        ErrorHandler.reset();
        Errors.Forget();
        Errors.CreateFailures = failing;
        try {
            step();
        } catch (const RuntimeError&) {
            Errors.CreateFailures = 0;
            return L"<went up>";
        }
        Errors.CreateFailures = 0;
        std::wstring places;
        for (const Report& report : Errors.Reports) {
            if (report.Module != L"frmSQLEditor") places += report.Module + L".";
            places += report.Routine + (report.Number == Failure ? L" " : L" " + std::to_wstring(report.Number) + L" ");
        }
        Errors.Forget();
        return places;
    }
    void SelectRow(HWND list, int row, LPARAM data) {
        SendMessageW(list, LB_SETITEMDATA, static_cast<WPARAM>(row), data);
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(row), 0);
    }
    HWND Tab(int page) { return GetDlgItem(Form().Handle(), IdLeftButton + page); }
    void ShowTab(int page) { Form().cmdLeft[static_cast<size_t>(page)].Click(); }

    FakeErrors Errors;
    FakeDatabase Host;
};

}  // namespace

TEST_F(ReportNamesTest, OfTheEditorsEvents) {
    Form().rtbSQL.SetText(L"select 1");
    Form().rtbSQL.Select(0, 6);
    // What replaces the text fails at the change that it makes.
    Form().rtbSQL.Change = Fail;
    EXPECT_EQ(L"mnuEditDelete_Click ", Reported([this] { Form().mnuEditDelete.Click(); }));
    Form().rtbSQL.Change = nullptr;
    Form().rtbSQL.SetText(L"select 1");
    Form().rtbSQL.Change = Fail;
    const auto select = [this] {
        Form().rtbSQL.SelChange = nullptr;
        Form().rtbSQL.Select(0, 3);
    };
    select();
    EXPECT_EQ(L"mnuEditMakeUpperCase_Click ", Reported([this] { Form().mnuEditMakeUpperCase.Click(); }));
    select();
    EXPECT_EQ(L"mnuEditMakeLowerCase_Click ", Reported([this] { Form().mnuEditMakeLowerCase.Click(); }));
    select();
    EXPECT_EQ(L"mnuEditTimeDate_Click ", Reported([this] { Form().mnuEditTimeDate.Click(); }));
    Form().rtbSQL.Change = nullptr;
    Form().rtbSQL.SetText(L"select 1");
    {
        const PatchedFunction none(L"oleaut32.dll", "SystemTimeToVariantTime",
                                   reinterpret_cast<void*>(+[](SYSTEMTIME*, DOUBLE*) WINAPI -> INT { return 0; }));
        ASSERT_TRUE(none);
        EXPECT_EQ(L"mnuEditTimeDate_Click 5 ", Reported([this] { Form().mnuEditTimeDate.Click(); }));
    }
    // What moves the selection fails at that.
    Form().rtbSQL.SelChange = Fail;
    EXPECT_EQ(L"mnuEditSelectAll_Click ", Reported([this] { Form().mnuEditSelectAll.Click(); }));
    Form().rtbSQL.SelChange = nullptr;
    Form().rtbSQL.Select(8, 0);
    Form().rtbSQL.SelChange = Fail;
    EXPECT_EQ(L"rtbSQL_DragOver ",
              Reported([this] { Form().rtbSQL.DragOver(Form().trvDBObjects, 0, 0, DragState::Over); }));
    Form().rtbSQL.SelChange = nullptr;
}

TEST_F(ReportNamesTest, OfInsertions) {
    Form().lstAnsiSQL.SetListIndex(0);
    Form().rtbSQL.Change = Fail;
    EXPECT_EQ(L"m_InsertSQL ", Reported([this] { Form().rtbSQL.DragDrop(Form().lstAnsiSQL, 0, 0); }));
    EXPECT_EQ(L"rtbSQL_DragDrop 429 ", Reported([this] { Form().rtbSQL.DragDrop(Form().lstAnsiSQL, 0, 0); }, 1));
    ShowTab(1);
    EXPECT_EQ(L"m_InsertSQL ", Reported([this] { Form().mnuActionExecute.Click(); }));
    EXPECT_EQ(L"mnuActionExecute_Click 429 ", Reported([this] { Form().mnuActionExecute.Click(); }, 1));
}

// What waits until the other program has its answer.
TEST_F(ReportNamesTest, OfDropsThatAreInsertedLater) {
    const Folder here;
    const std::wstring file = here / L"a.sql";
    PutBytes(file, "select 1");
    ShowWindow(Form().Handle(), SW_SHOWNA);  // nothing is inserted into a window that was closed meanwhile
    Form().rtbSQL.SetText(L"select 1");
    BoxAnswerer box(IDOK);
    for (const bool isFile : {true, false}) {
        const auto drop = [&] {
            // The insertion begins behind what is selected, and fails at that.
            Form().rtbSQL.SelChange = nullptr;
            Form().rtbSQL.Select(0, 6);
            Form().rtbSQL.SelChange = Fail;
            TestData data;
            if (isFile) {
                data.AddFiles({file});
            } else {
                data.AddText(std::wstring(1024 * 1024 + 1, L'x'));
            }
            Form().rtbSQL.OLEDragDrop(DroppedData(&data));
            MSG message;
            while (PeekMessageW(&message, Form().rtbSQL.Handle(), 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        };
        EXPECT_EQ(L"m_InsertSQL ", Reported(drop)) << isFile;
        EXPECT_EQ(L"rtbSQL_OLEDragDrop 429 ", Reported(drop, 1)) << isFile;
    }
    EXPECT_EQ(2, box.Boxes);
    Form().rtbSQL.SelChange = nullptr;
    ShowWindow(Form().Handle(), SW_HIDE);
}

TEST_F(ReportNamesTest, OfTheActiveItem) {
    const struct {
        int Page;
        HWND View;
    } lists[] = {{1, Form().lstAnsiSQL.Handle()}, {3, Form().lstKolvex.Handle()}};
    for (const auto& list : lists) {
        ShowTab(list.Page);
        SelectRow(list.View, 2, 9999);  // no such entry
        const auto choose = [this](MenuItem& entry, int failing) { return Reported([&] { entry.Click(); }, failing); };
        EXPECT_EQ(L"m_GetActiveItem 5 ", choose(Form().mnuActionSelect, 0));
        EXPECT_EQ(L"mnuActionSelect_Click 429 ", choose(Form().mnuActionSelect, 1));
        EXPECT_EQ(L"mnuActionInsert_Click 429 ", choose(Form().mnuActionInsert, 1));
        EXPECT_EQ(L"mnuActionUpdate_Click 429 ", choose(Form().mnuActionUpdate, 1));
        EXPECT_EQ(L"mnuActionDelete_Click 429 ", choose(Form().mnuActionDelete, 1));
        EXPECT_EQ(L"mnuActionExecute_Click 429 ", choose(Form().mnuActionExecute, 1));
        EXPECT_EQ(L"mnuActionCreate_Click 429 ", choose(Form().mnuActionCreate, 1));
        EXPECT_EQ(L"mnuActionTask_Click 429 ", choose(Form().mnuActionTask[0], 1));
        ListBox& box = list.Page == 1 ? Form().lstAnsiSQL : Form().lstKolvex;
        const std::wstring name = list.Page == 1 ? L"lstAnsiSQL" : L"lstKolvex";
        EXPECT_EQ(L"m_SelectFromListBox 5 m_EnableActionMenu 5 ", Reported([&] { box.Click(); }));
        EXPECT_EQ(name + L"_Click 429 ", Reported([&] { box.Click(); }, 1));
        EXPECT_EQ(name + L"_MouseDown 429 ", Reported([&] { box.MouseDown(MouseButton::Right, 0, 0, 0); }, 1));
        EXPECT_EQ(L"m_ReferenceContextMenu 429 ", Reported([&] { box.ContextMenu({}); }, 1));
        EXPECT_EQ(L"cmdLeft_Click 429 ", Reported([&] { ShowTab(list.Page); }, 2));
        // Without a row there is no item, and so nothing to do: the host is not asked to create a table either.
        SendMessageW(list.View, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        for (MenuItem* entry : {&Form().mnuActionSelect, &Form().mnuActionInsert, &Form().mnuActionUpdate,
                                &Form().mnuActionDelete, &Form().mnuActionExecute, &Form().mnuActionCreate}) {
            EXPECT_EQ(L"", choose(*entry, 0));
        }
    }
}

TEST_F(ReportNamesTest, OfTheReferenceTree) {
    TreeView& tree = Form().trvDatabaseSpecific;
    const Node entry = tree.Items().Item(1).Child();
    ASSERT_TRUE(entry);
    ShowTab(2);
    tree.SetSelectedItem(entry);
    entry.SetTag(L"no number");
    EXPECT_EQ(L"m_SelectFromTreeView 13 m_EnableActionMenu 13 ", Reported([&] { tree.NodeClick(entry); }));
    EXPECT_EQ(L"trvDatabaseSpecific_NodeClick 429 ", Reported([&] { tree.NodeClick(entry); }, 1));
    EXPECT_EQ(L"trvDatabaseSpecific_MouseDown 429 ", Reported([&] { tree.MouseDown(MouseButton::Right, 0, 0, 0); }, 1));
    EXPECT_EQ(L"m_ReferenceContextMenu 429 ", Reported([&] { tree.ContextMenu({}); }, 1));
    EXPECT_EQ(L"m_GetActiveItem 13 ", Reported([this] { Form().mnuActionExecute.Click(); }));
    entry.SetTag(L"9999");
    EXPECT_EQ(L"m_SelectFromTreeView 5 m_EnableActionMenu 5 ", Reported([&] { tree.NodeClick(entry); }));
    tree.Items().Remove(entry.Index());
    EXPECT_EQ(L"trvDatabaseSpecific_NodeClick 35601 ", Reported([&] { tree.NodeClick(entry); }));
}

TEST_F(ReportNamesTest, OfTheObjectTree) {
    TreeView& tree = Form().trvDBObjects;
    const Node root = tree.Items().Item(1);
    // The adapter, the procedure that fills the branch, the event, and whoever called that.
    EXPECT_EQ(L"clsDictionary.Get Schemas ", Reported([&] { tree.Expand(root); }));
    EXPECT_EQ(L"modLists.PopulateDBObjSchemas 429 ", Reported([&] { tree.Expand(root); }, 1));
    EXPECT_EQ(L"trvDBObjects_Expand 429 ", Reported([&] { tree.Expand(root); }, 2));
    EXPECT_EQ(L"trvDBObjects_NodeClick 429 ", Reported([&] { tree.NodeClick(root); }, 3));
    tree.SetSelectedItem(root);
    EXPECT_EQ(L"trvDBObjects_ContextMenu 429 ", Reported([&] { tree.ContextMenu({}); }, 4));
    const Node gone = tree.Items().Add(L"schemas", TreeRelationship::Child, Variant::Missing(), L"gone");
    tree.Items().Remove(gone.Index());
    EXPECT_EQ(L"trvDBObjects_Expand 35601 ", Reported([&] { tree.Expand(gone); }));
    EXPECT_EQ(L"trvDBObjects_Collapse 35601 ", Reported([&] { tree.Collapse(gone); }));
    EXPECT_EQ(L"trvDBObjects_NodeClick 35601 ", Reported([&] { tree.NodeClick(gone); }));
    EXPECT_EQ(L"trvDBObjects_SelChange 35601 ", Reported([&] { tree.SelChange(gone); }));
    // A missing node is none of them.
    EXPECT_EQ(L"", Reported([&] {
                  tree.Expand(Node());
                  tree.Collapse(Node());
                  tree.NodeClick(Node());
                  tree.SelChange(Node());
              }));
}

TEST_F(ReportNamesTest, OfTheLayout) {
    Form().rtbSQL.Resize = Fail;
    EXPECT_EQ(L"picRight_Resize ", Reported([this] { Form().SetWidth(9000); }));
    Form().rtbSQL.Resize = nullptr;
    const std::array<Control*, 4> views{&Form().trvDBObjects, &Form().lstAnsiSQL, &Form().trvDatabaseSpecific,
                                        &Form().lstKolvex};
    for (Control* view : views) {
        view->Resize = Fail;
        EXPECT_EQ(L"picLeft_Resize ", Reported([this] { Form().SetHeight(Form().Height() + 600); }));
        view->Resize = nullptr;
    }
    Form().picRight.Resize = Fail;
    float width = 9000;
    const auto change = [&] { Form().SetWidth(width += 300); };
    EXPECT_EQ(L"m_SizeControls ", Reported(change));
    EXPECT_EQ(L"Form_Resize 429 ", Reported(change, 1));
    EXPECT_EQ(L"mnuViewStatusBar_Click 429 ", Reported([this] { Form().mnuViewStatusBar.Click(); }, 1));
    EXPECT_EQ(L"picHide_Click 429 ", Reported([this] { Form().picHide.Click(); }, 1));
    EXPECT_EQ(L"picUnhide_Click 429 ", Reported([this] { Form().picUnhide.Click(); }, 1));
    EXPECT_EQ(L"mnuViewObjectBrowser_Click 429 ", Reported([this] { Form().mnuViewObjectBrowser.Click(); }, 2));
    EXPECT_EQ(L"mnuViewObjectBrowser_Click 429 ", Reported([this] { Form().mnuViewObjectBrowser.Click(); }, 2));
    Form().imgSplitterV.MouseDown(MouseButton::Left, 0, 0, 0);
    Form().imgSplitterV.MouseMove(MouseButton::Left, 0, 600, 0);
    EXPECT_EQ(L"imgSplitterV_MouseUp 429 ",
              Reported([this] { Form().imgSplitterV.MouseUp(MouseButton::Left, 0, 0, 0); }, 1));
    Form().picRight.Resize = nullptr;
    Form().picSplitterV.Resize = Fail;
    Form().SetHeight(Form().Height() + 900);
    EXPECT_EQ(L"imgSplitterV_MouseDown ",
              Reported([this] { Form().imgSplitterV.MouseDown(MouseButton::Left, 0, 0, 0); }));
    Form().picSplitterV.Resize = nullptr;
    ReleaseCapture();
}

TEST_F(ReportNamesTest, OfTheWaysOutOfTheWindow) {
    Settings::Refuse();
    const Toolbar::Button back{L"return", L"", L"", 0};
    EXPECT_EQ(L"mnuFileClose_Click 5 ", Reported([&] { Form().tlbToolbar.ButtonClick(back); }));
    EXPECT_EQ(L"tlbToolbar_ButtonClick 429 ", Reported([&] { Form().tlbToolbar.ButtonClick(back); }, 1));
    const Toolbar::Button other{L"other", L"", L"", 0};
    EXPECT_EQ(L"", Reported([&] { Form().tlbToolbar.ButtonClick(other); }));  // another button closes nothing
    EXPECT_EQ(L"mnuFileClose_Click 5 ", Reported([this] { Form().mnuFileClose.Click(); }));
    EXPECT_EQ(L"Form_Unload 429 ", Reported([this] { Form().Unload(); }, 1));
}
