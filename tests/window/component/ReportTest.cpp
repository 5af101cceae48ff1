#include "automation/Version.h"
#include "errors/clsErrorHandler.h"
#include "errors/modErrorHandler.h"
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
    EXPECT_EQ(L"clsSQLEditor.Constructor 438|clsSQLEditor.Constructor 438", Errors.Places());
}

TEST_F(ReportTest, AReportHasLineZeroAndNoDebugText) {
    Database.Members.erase(L"UserName");
    const Object editor = Connected();
    const Report report = Errors.Only();
    EXPECT_EQ(0, report.Line);
    EXPECT_TRUE(report.DebugMissing);
    EXPECT_EQ(L"brvSQLEditor", report.Source);
    EXPECT_NE(L"", report.Description);
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
        Settings::Refuse();
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
    Errors.Forget();
}

TEST(ErrorHandlerTest, ForwardsEveryMember) {
    FakeErrors errors;
    clsErrorHandler handler;
    handler.Alert(L"careful");
    handler.Alert(L"careful", L"Title");
    handler.LogEvent(L"started");
    EXPECT_EQ((std::vector<std::wstring>{L"Alert,careful,<missing>", L"Alert,careful,Title", L"LogEvent,started"}),
              errors.Told);
    EXPECT_TRUE(handler.DisplayAlerts());  // any number but 0
    handler.SetDisplayAlerts(false);
    EXPECT_FALSE(errors.DisplayAlerts);
    EXPECT_FALSE(handler.DisplayAlerts());
    RuntimeError error;
    error.Number = 13;
    error.Source = L"here";
    error.Description = L"there";
    handler.ErrorMessage(L"modA", L"ProcB", MakeErrorObject(error), 70, L"index=[1]");
    EXPECT_EQ(L"modA.ProcB 13", errors.Places());
    EXPECT_EQ(70, errors.Only().Line);
    EXPECT_EQ(L"index=[1]", errors.Only().Debug);
    handler.Destructor();
    handler.LogEvent(L"still there");
    EXPECT_EQ(4U, errors.Told.size());
}

TEST(ErrorHandlerTest, AnErrorIsHandedOverWithAllItSays) {
    RuntimeError error;
    error.Number = -2147221494;
    error.Source = L"brvADO";
    error.Description = L"gone";
    error.HelpFile = L"help.chm";
    error.HelpContext = 42;
    error.LastDllError = 5;
    const Object object = MakeErrorObject(error);
    EXPECT_EQ(-2147221494, object.Get(L"Number").ToLong());
    EXPECT_EQ(L"brvADO", object.Get(L"Source").ToText());
    EXPECT_EQ(L"gone", object.Get(L"Description").ToText());
    EXPECT_EQ(L"help.chm", object.Get(L"HelpFile").ToText());
    EXPECT_EQ(42, object.Get(L"HelpContext").ToLong());
    EXPECT_EQ(5, object.Get(L"LastDllError").ToLong());
    EXPECT_EQ(-2147221494, Variant(object).ToLong());  // its default member
}

TEST(ComponentErrors, AreToldApartByTheirRange) {
    EXPECT_TRUE(IsNotComponentError(-2147221504));
    EXPECT_FALSE(IsNotComponentError(-2147221503));
    EXPECT_FALSE(IsNotComponentError(-2147155970));
    EXPECT_TRUE(IsNotComponentError(-2147155969));
    EXPECT_TRUE(IsNotComponentError(5));
    EXPECT_TRUE(IsNotComponentError(-5));
    EXPECT_TRUE(IsNotComponentError(262143));
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { IsNotComponentError(262144); }));
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { IsNotComponentError(2147483647); }));
    EXPECT_TRUE(IsNotComponentError(-2147483647 - 1));
}
