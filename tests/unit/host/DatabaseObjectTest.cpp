#include <gtest/gtest.h>

#include "automation/HostCollection.h"
#include "automation/Object.h"
#include "host/database/Resources.h"
#include "SampleDatabase.h"

namespace {

template <class Call>
RuntimeError ErrorOf(Call call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        return error.Copy();
    }
    ADD_FAILURE() << "no error";
    return {};
}

std::vector<std::wstring> NamesIn(const Variant& collection) {
    std::vector<std::wstring> names;
    HostCollection(collection).ForEach([&](const Variant& item) {
        names.push_back(item.ToText());
        return true;
    });
    return names;
}

TEST(DatabaseObject, IsNotConnectedAtFirst) {
    const Object database = CreateDatabaseObject();
    EXPECT_FALSE(database.Get(L"Connected").ToBoolean());
    EXPECT_EQ(database.Get(L"DBType").ToLong(), 0);
    EXPECT_TRUE(database.Get(L"Dictionary").IsNothing());
    for (const wchar_t* member : {L"CurrentCatalog", L"UserName", L"SchemaTerm"}) {
        const RuntimeError error = ErrorOf([&] { database.Get(member); });
        EXPECT_EQ(error.Source, L"brvADO");
        EXPECT_EQ(error.Number, DatabaseError::NotConnected);
    }
    EXPECT_EQ(ErrorOf([&] { database.Call(L"Execute", L"select 1"); }).Number, DatabaseError::NotConnected);
}

TEST(DatabaseObject, TellsWhyItCannotConnect) {
    const Object database = CreateDatabaseObject();
    const RuntimeError error = ErrorOf([&] { database.Call(L"Open", L"Driver=No such driver;Database=x"); });
    EXPECT_EQ(error.Source, L"brvADO");
    EXPECT_EQ(error.Number, DatabaseError::ConnectFailed);
    EXPECT_FALSE(error.Description.empty());
    EXPECT_FALSE(database.Get(L"Connected").ToBoolean());
}

TEST(DatabaseObject, TellsOfItsConnection) {
    const Object database = OpenDatabaseObject();
    EXPECT_TRUE(database.Get(L"Connected").ToBoolean());
    EXPECT_EQ(database.Get(L"DBType").ToLong(), 17);
    EXPECT_EQ(database.Get(L"SchemaTerm").ToText(), L"");
    EXPECT_EQ(database.Get(L"CurrentCatalog").ToText(), L"");
    long type = 17;
    const std::wstring description = database.Get(L"DBTypeName", ByRef(type)).ToText();
    EXPECT_TRUE(description.starts_with(L"SQLite 3.")) << description.c_str();
    EXPECT_EQ(database.Get(L"DBTypeName", 4).ToText(), L"Oracle");
}

TEST(DatabaseObject, FormatsNamesByReferenceAndByValue) {
    const Object database = OpenDatabaseObject();
    std::wstring name = L"Order Details";
    EXPECT_EQ(database.Get(L"FormatName", ByRef(name)).ToText(), L"\"Order Details\"");
    EXPECT_EQ(name, L"Order Details");
    EXPECT_EQ(database.Get(L"FormatName", L"customer").ToText(), L"customer");
    EXPECT_EQ(database.Get(L"FormatName", L"order").ToText(), L"\"order\"");
    EXPECT_EQ(database.Get(L"FormatName", L"limit").ToText(), L"\"limit\"");
}

TEST(DatabaseObject, HandsOutADictionary) {
    const Object dictionary = OpenDatabaseObject().Get(L"Dictionary").ToObject();
    EXPECT_TRUE(dictionary.Get(L"Schemas", L"", true).IsNothing());
    const std::vector<std::wstring> views = NamesIn(dictionary.Get(L"Objects", 2, Variant::Null(), L"", false));
    EXPECT_EQ(views.size(), 6u);
    EXPECT_EQ(NamesIn(dictionary.Get(L"Objects", 2)), views);  // arguments may be left out
    EXPECT_EQ(NamesIn(dictionary.Get(L"Objects", 2, Variant::Missing(), Variant::Missing(), Variant::Missing())),
              views);
    EXPECT_EQ(dictionary.Get(L"DataTypeDesc", 12, 0).ToText(), L"VARCHAR");
}

TEST(DatabaseObject, GivesColumnsAsCollectionsOfArrays) {
    const Object dictionary = OpenDatabaseObject().Get(L"Dictionary").ToObject();
    const Object columns = dictionary.Get(L"Columns", Variant::Null(), L"survey").ToObject();
    EXPECT_EQ(columns.Get(L"Count").ToLong(), 60);
    const Object second = columns.Get(L"Item", 2).ToObject();
    std::wstring name;
    long type = 0;
    int count = 0;
    HostCollection(Variant(second)).ForEach([&](const Variant& property) {
        EXPECT_EQ(property.vt, VT_ARRAY | VT_VARIANT);
        const std::vector<Variant> elements = property.ToArray();
        EXPECT_EQ(elements.size(), 3u);
        if (elements[0].ToText() == L"COLUMN_NAME") name = elements[1].ToText();
        if (elements[0].ToText() == L"DATA_TYPE") type = elements[1].ToLong();
        ++count;
        return true;
    });
    EXPECT_EQ(name, L"customer_id");
    EXPECT_EQ(type, SQL_INTEGER);
    EXPECT_GE(count, 18);
}

TEST(DatabaseObject, RaisesTheDictionarysErrors) {
    const Object database = OpenDatabaseObject();
    const Object dictionary = database.Get(L"Dictionary").ToObject();
    RuntimeError error = ErrorOf([&] { dictionary.Get(L"Columns", Variant::Null(), L"no such table"); });
    EXPECT_EQ(error.Number, -2147221494);
    EXPECT_EQ(error.Source, L"brvADO");
    EXPECT_NE(error.Description.find(L"no such table"), std::wstring::npos);

    database.Call(L"Close");
    error = ErrorOf([&] { dictionary.Get(L"Columns", Variant::Null(), L"customer"); });
    EXPECT_EQ(error.Number, -2147221494);
    error = ErrorOf([&] { dictionary.Get(L"Objects", 1); });
    EXPECT_EQ(error.Number, DatabaseError::NotConnected);
    EXPECT_EQ(error.Source, L"brvADO");
}

TEST(DatabaseObject, RefusesArgumentsOfTheWrongKind) {
    const Object database = OpenDatabaseObject();
    const Object dictionary = database.Get(L"Dictionary").ToObject();
    EXPECT_EQ(ErrorOf([&] { dictionary.Get(L"Objects", L"tables"); }).Number, ErrorNumber::TypeMismatch);
    EXPECT_EQ(ErrorOf([&] { dictionary.Get(L"Objects", 7); }).Number, ErrorNumber::InvalidProcedureCall);
    EXPECT_EQ(ErrorOf([&] { database.Get(L"FormatName"); }).Number, ErrorNumber::WrongArgumentCount);
    EXPECT_EQ(ErrorOf([&] { database.Get(L"NoSuchMember"); }).Number, ErrorNumber::NoSuchMember);
}

// A timer of the host closes the connection while the dialog shows.
TEST(DatabaseObject, TheDialogOutlivesTheConnection) {
    static Object database;
    static std::wstring preview;
    static std::vector<std::wstring> churn;
    database = OpenDatabaseObject();
    preview.clear();
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        const HWND dialog = ShownTableDialog();
        if (dialog == nullptr) return;
        KillTimer(nullptr, id);
        database.Call(L"Close");
        // What was freed is written over.
        for (size_t size = 1; size < 2000; ++size) churn.emplace_back(size % 200, L'x');
        SetDlgItemTextW(dialog, IDC_TABLE_NAME, L"Order table");
        wchar_t text[2000]{};
        GetDlgItemTextW(dialog, IDC_PREVIEW, text, 2000);
        preview = text;
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    std::wstring statement;
    bool cancelled = false;
    database.Call(L"ShowCreateTableDialog1", ByRef(statement), ByRef(cancelled));
    KillTimer(nullptr, timer);
    EXPECT_TRUE(cancelled);
    EXPECT_NE(preview.find(L"\"Order table\""), std::wstring::npos) << testing::PrintToString(preview);
    EXPECT_FALSE(database.Get(L"Connected").ToBoolean());
    churn.clear();
    database = Object();
}

// The host leaves an activation context behind while the dialog shows.
TEST(DatabaseObject, TheDialogLeavesAContextThatTheHostForgot) {
    static HANDLE context;
    ACTCTXW request = {};
    request.cbSize = sizeof request;
    request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    Object database = OpenDatabaseObject();
    request.hModule = GetModuleHandleW(L"brvADO.dll");
    request.lpResourceName = MAKEINTRESOURCEW(IDM_CONTROLS_MANIFEST);
    context = CreateActCtxW(&request);
    ASSERT_NE(context, INVALID_HANDLE_VALUE);
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
        const HWND dialog = GetActiveWindow();
        if (dialog == nullptr || GetDlgItem(dialog, IDC_PREVIEW) == nullptr) return;
        KillTimer(nullptr, id);
        ULONG_PTR cookie = 0;
        ActivateActCtx(context, &cookie);
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    std::wstring statement;
    bool cancelled = false;
    database.Call(L"ShowCreateTableDialog1", ByRef(statement), ByRef(cancelled));
    KillTimer(nullptr, timer);
    EXPECT_TRUE(cancelled);
    ReleaseActCtx(context);
}

TEST(DatabaseObject, RunsStatements) {
    const Object database = OpenDatabaseObject();
    const Object rows = database.Call(L"Execute", L"select code, vat_rate from country order by code").ToObject();
    EXPECT_EQ(rows.Get(L"FieldCount").ToLong(), 2);
    EXPECT_EQ(rows.Get(L"FieldName", 1).ToText(), L"vat_rate");
    EXPECT_EQ(ErrorOf([&] { rows.Get(L"FieldName", 2); }).Number, ErrorNumber::SubscriptOutOfRange);
    int count = 0;
    for (Variant row = rows.Call(L"NextRowText"); !row.IsNull(); row = rows.Call(L"NextRowText")) {
        if (count++ > 0) continue;
        EXPECT_EQ(row.ToArray()[0].ToText(), L"AT");
    }
    EXPECT_EQ(count, 18);
    const RuntimeError error = ErrorOf([&] { database.Call(L"Execute", L"select nonsense"); });
    EXPECT_EQ(error.Number, DatabaseError::StatementFailed);
    EXPECT_NE(error.Description.find(L"SQLSTATE"), std::wstring::npos);
}

TEST(DatabaseObject, KeepsResultsAliveBeyondClose) {
    const Object database = OpenDatabaseObject();
    const Object rows = database.Call(L"Execute", L"select code from country order by code").ToObject();
    database.Call(L"Close");
    EXPECT_EQ(rows.Call(L"NextRowText").ToArray()[0].ToText(), L"AT");
}

}  // namespace
