#include "automation/Version.h"
#include "support/Component.h"
#include "support/Errors.h"
#include "support/Settings.h"

namespace {
class ReportTest : public ComponentFixture {};
}  // namespace

TEST_F(ReportTest, TheErrorComponentIsMadeOnceWithTitleAndVersion) {
    Database.Members.erase(L"Connected");
    const Object editor = Dll.Create();
    EXPECT_EQ(0, Errors.Created);  // not before there is something to report
    editor.Call(L"Constructor", Database.Make());
    editor.Call(L"Constructor", Database.Make());
    EXPECT_EQ(1, Errors.Created);
    ASSERT_EQ(1U, Errors.Constructed.size());
    EXPECT_EQ(L"brvSQLEditor," + std::to_wstring(BRV_VERSION_MAJOR) + L"," + std::to_wstring(BRV_VERSION_MINOR) + L"," +
                  std::to_wstring(BRV_VERSION_REVISION),
              Errors.Constructed[0]);
    EXPECT_EQ(2U, Errors.Reports.size());
}

TEST_F(ReportTest, AReportHasLineZeroAndNoDebugText) {
    Database.Members.erase(L"UserName");
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Database.Make());
    ASSERT_EQ(1U, Errors.Reports.size());
    EXPECT_EQ(0, Errors.Reports[0].Line);
    EXPECT_TRUE(Errors.Reports[0].DebugMissing);
    EXPECT_EQ(L"brvSQLEditor", Errors.Reports[0].Source);
    EXPECT_NE(L"", Errors.Reports[0].Description);
}

TEST_F(ReportTest, WhenTheReportingFailsTheErrorReachesTheHostAtLast) {
    Errors.CannotBeCreated = true;
    Database.Members.erase(L"Connected");
    const Object editor = Dll.Create();
    try {
        editor.Call(L"Constructor", Database.Make());
        FAIL() << "no error reached the host";
    } catch (const RuntimeError& error) {
        // What could not be reported is the failure of the reporting.
        EXPECT_EQ(ErrorNumber::CannotCreateObject, error.Number);
        EXPECT_EQ(L"brvSQLEditor", error.Source);
        EXPECT_NE(std::wstring::npos, error.Description.find(L"brvError.clsError"));
    }
    // The next report tries again.
    Errors.CannotBeCreated = false;
    editor.Call(L"Constructor", Database.Make());
    EXPECT_EQ(L"clsSQLEditor.Constructor 438", Errors.Places());
}

TEST_F(ReportTest, AnErrorOfTheErrorComponentTravelsUpThroughTheTraps) {
    Errors.ErrorMessageFails = true;
    Settings::Put(L"MainLeft", L"no number");
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    std::wstring sql = L"x";
    try {
        editor.Call(L"Display", ByRef(sql));
        FAIL() << "no error reached the host";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(ObjectErrorBase + 77, error.Number);
        EXPECT_EQ(L"brvError", error.Source);
        EXPECT_EQ(L"the log is full", error.Description);
    }
    EXPECT_EQ(nullptr, EditorWindow::Find());
    // The window is there now and is not loaded again.
    Errors.ErrorMessageFails = false;
    EXPECT_EQ(L"x", DisplayAndClose(editor, L"x"));
    EXPECT_EQ(L"", Errors.Places());
}

TEST_F(ReportTest, AnEventThatCannotBeReportedEndsTheWindowAndFreesTheHost) {
    const HWND host = CreateWindowExW(0, L"Static", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 99, 99, nullptr,
                                      nullptr, nullptr, nullptr);
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Object());
    std::wstring sql = L"x";
    const WhenShown shown([&] {
        EXPECT_FALSE(IsWindowEnabled(host));
        // Closing fails to save and then to report it.
        HKEY key = nullptr;
        Settings::Clear();
        RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\brvSQLEditor", 0, nullptr,
                        REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegCloseKey(key);
        Errors.CannotBeCreated = true;
        PostMessageW(EditorWindow::Find(), WM_CLOSE, 0, 0);
    });
    EXPECT_EQ(ErrorNumber::CannotCreateObject, NumberOf([&] { editor.Call(L"Display", ByRef(sql)); }));
    EXPECT_EQ(nullptr, EditorWindow::Find());
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_EQ(L"x", sql);
    DestroyWindow(host);
    Settings::Clear();
}

// An error component that shows each error, and a host whose timer fails again meanwhile, would exhaust the stack.
TEST_F(ReportTest, FailuresWhileOneIsReportedAreReportedToSomeDepth) {
    Database.Members.erase(L"Connected");
    const Object database = Database.Make();
    const Object editor = Dll.Create();
    Errors.OnReport = [&] {
        if (Errors.Reports.size() < 50) editor.Call(L"Constructor", database);
    };
    editor.Call(L"Constructor", database);
    EXPECT_EQ(16U, Errors.Reports.size());
    // And then as ever.
    editor.Call(L"Constructor", database);
    EXPECT_EQ(32U, Errors.Reports.size());
    Errors.OnReport = {};
}
