#include <windows.h>
#include <commctrl.h>

#include "support/Browsed.h"

// Where a name cannot be formatted and the first reports of it fail, what failed travels up: each builder on the way
// has its turn to report.
namespace {

class BuilderReportsTest : public BrowsedFixture {
protected:
    BuilderReportsTest() {
        Database.DictionaryMembers[L"Objects"] = [](const Arguments& a) {
            return Variant(MakeCollection({Variant(a[0].ToLong() == 1 ? L"ORDERS" : L"TOTALS"), Variant(L"LAST")}));
        };
        Database.Members[L"FormatName"] = [this](const Arguments& a) -> Variant {
            EXPECT_EQ(1U, a.Count());
            if (++asked_ == failingCall_) RaiseError(1234, L"brvADO", L"no");
            return L"<" + a[0].ToText() + L">";
        };
    }
    // What is written and what is reported for the selected node when the call of this number fails and so many reports
    // of it.
    std::wstring Written(const std::wstring& entry, int call, int failures) {
        EditorWindow::SetText(L"");
        Errors.Forget();
        asked_ = 0;
        failingCall_ = call;
        Errors.MessageFailures = failures;
        EditorWindow::Choose(L"Action", entry.c_str());
        Errors.MessageFailures = 0;
        std::wstring places = Errors.Places();
        Errors.Forget();
        const size_t number =
            places.find(L" " + std::to_wstring(ObjectErrorBase + 77));  // what the reporting failed with
        return EditorWindow::Text() + L" " +
               (number == std::wstring::npos ? places : places.substr(0, number) + L" later");
    }
    void OpenFolder(int folder) { Tree.OpenDownTo({0, folder}); }

private:
    int asked_ = 0;
    int failingCall_ = 0;
};

}  // namespace

// The columns of the view were not read: its name is formatted for COUNT and then for the sample rows.
TEST_F(BuilderReportsTest, OfAView) {
    Inside([this] {
        OpenFolder(1);
        Tree.Select(Tree.At({0, 1, 0}));
        EXPECT_EQ(L"\r\nSELECT COUNT(*) FROM ;\r\n frmSQLEditor.m_BuildTable 1234", Written(L"Count rows", 1, 0));
        EXPECT_EQ(L" frmSQLEditor.m_GetStmtCountRows later", Written(L"Count rows", 1, 1));
        EXPECT_EQ(L" frmSQLEditor.m_GetActiveItem later", Written(L"Count rows", 1, 2));
        EXPECT_EQ(L" frmSQLEditor.mnuActionTask_Click later", Written(L"Count rows", 1, 3));
        EXPECT_EQ(L"\r\nSELECT * FROM  WHERE rownum <= 100;\r\n frmSQLEditor.m_BuildTable 1234",
                  Written(L"Sample rows", 2, 0));
        EXPECT_EQ(L" frmSQLEditor.m_BuildStmtSampleRows later", Written(L"Sample rows", 2, 1));
        EXPECT_EQ(L" frmSQLEditor.m_GetStmtSampleRows later", Written(L"Sample rows", 2, 2));
        EXPECT_EQ(L" frmSQLEditor.m_GetActiveItem later", Written(L"Sample rows", 2, 3));
        // What was not asked for is in the menu all the same.
        EXPECT_EQ(L"\r\nDESCRIBE HR.TOTALS;\r\n frmSQLEditor.m_BuildTable 1234", Written(L"Describe view", 2, 0));
    });
}

// SELECT, COUNT and sample rows of two objects each.
TEST_F(BuilderReportsTest, OfAFolder) {
    Inside([this] {
        for (const int folder : {0, 1}) {
            OpenFolder(folder);
            Tree.Select(Tree.At({0, folder}));
            const std::wstring of = folder == 0 ? L" tables" : L" views";
            const std::wstring first = folder == 0 ? L"ORDERS" : L"TOTALS";
            const std::wstring count = L"Count rows in all" + of;
            const std::wstring sample = L"Sample rows from all" + of;
            const std::wstring describe = L"Describe all" + of;
            EXPECT_EQ(L"\r\nSELECT * FROM ;\r\nSELECT * FROM HR.<LAST>;\r\n frmSQLEditor.m_BuildTable 1234",
                      Written(L"Select", 1, 0));
            EXPECT_EQ(L"\r\nSELECT * FROM HR.<" + first + L">;\r\nSELECT * FROM ;\r\n frmSQLEditor.m_BuildTable 1234",
                      Written(L"Select", 2, 0));
            EXPECT_EQ(L" frmSQLEditor.m_GetStmtSelectTable later", Written(L"Select", 1, 1));
            EXPECT_EQ(L"\r\nSELECT COUNT(*) FROM HR.<" + first +
                          L">;\r\nSELECT COUNT(*) FROM ;\r\n frmSQLEditor.m_BuildTable 1234",
                      Written(count, 4, 0));
            EXPECT_EQ(L" frmSQLEditor.m_GetStmtCountRows later", Written(count, 3, 1));
            EXPECT_EQ(
                L"\r\nSELECT * FROM  WHERE rownum <= 100;\r\nSELECT * FROM HR.<LAST> WHERE rownum <= 100;\r\n "
                L"frmSQLEditor.m_BuildTable 1234",
                Written(sample, 5, 0));
            EXPECT_EQ(L"\r\nDESCRIBE HR." + first + L";\r\nDESCRIBE HR.LAST;\r\n ", Written(describe, 0, 0));
            EXPECT_EQ(L"\r\nSELECT COUNT(*) FROM HR.<" + first + L">;\r\nSELECT COUNT(*) FROM HR.<LAST>;\r\n ",
                      Written(count, 0, 0));
            EXPECT_EQ(L"\r\nSELECT * FROM HR.<" + first +
                          L"> WHERE rownum <= 100;\r\nSELECT * FROM HR.<LAST> WHERE rownum <= 100;\r\n ",
                      Written(sample, 0, 0));
        }
    });
}
