#include "FaultyHost.h"
#include "support/Settings.h"

FaultyHostFixture::FaultyHostFixture() {
    // Tall enough for all branches: what comes and goes with a scroll bar takes most of a case's time.
    Settings::Put(L"MainHeight", L"14000");
    const auto names = [this](const wchar_t* list) {
        return [this, list](const Arguments&) {
            std::vector<Variant> items;
            for (const std::wstring& name : Browsed::Names) items.emplace_back(name);
            return Variant(MakeList(list, std::move(items)));
        };
    };
    Database.DictionaryMembers[L"Schemas"] = names(L"Schemas");
    Database.DictionaryMembers[L"Objects"] = names(L"Objects");
    Database.DictionaryMembers[L"Columns"] = [this](const Arguments&) {
        std::vector<Variant> columns;
        for (const std::wstring& name : Browsed::ColumnNames) columns.emplace_back(MakeColumn(name));
        return Variant(MakeList(L"Columns", std::move(columns)));
    };
    Database.DictionaryMembers[L"DataTypeDesc"] = [](const Arguments&) { return Variant(L"number"); };
    Database.Members[L"Dictionary"] = [this](const Arguments&) {
        return Variant(Wanted.Wrap(L"Dictionary.", Database.MakeDictionary()));
    };
    Database.Members[L"FormatName"] = [](const Arguments& a) { return Variant(L"[" + a[0].ToText() + L"]"); };
    Database.Members[L"ShowCreateTableDialog1"] = [](const Arguments& a) {
        a.Let(0, Variant(L"CREATE TABLE x"));
        return Variant();
    };
}

Object FaultyHostFixture::MakeHost() {
    Database.Log.clear();
    return Wanted.Wrap(L"", Database.Make());
}

Object FaultyHostFixture::MakeList(const std::wstring& name, std::vector<Variant> items) {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    const long count = static_cast<long>(items.size());
    made->Define(L"Count", [count](const Arguments&) { return Variant(count); });
    made->Define(L"Item", [items = std::move(items)](const Arguments& a) -> Variant {
        const long at = a[0].ToLong();
        if (at < 1 || at > static_cast<long>(items.size())) RaiseError(ErrorNumber::SubscriptOutOfRange);
        return items[static_cast<size_t>(at - 1)];
    });
    return Wanted.Wrap(name + L".", held);
}

Object FaultyHostFixture::MakeColumn(const std::wstring& name) {
    return MakeList(L"Properties", {Variant::ArrayOf({Variant(L"TABLE_CAT"), Variant::Null(), Variant()}),
                                    Variant::ArrayOf({Variant(L"COLUMN_NAME"), Variant(name), Variant()}),
                                    Variant::ArrayOf({Variant(L"DATA_TYPE"), Variant(3L), Variant(7L)})});
}

std::vector<std::wstring> FaultyHostFixture::Reported() {
    std::vector<std::wstring> reports;
    for (const Report& report : Errors.Reports) {
        reports.push_back(report.Place() + L" " + std::to_wstring(report.Number) + L" " + report.Source);
        EXPECT_EQ(0, report.Line);
        EXPECT_TRUE(report.DebugMissing);
        EXPECT_NE(L"", report.Description);
    }
    Errors.Forget();
    return reports;
}

void FaultyHostFixture::Compare(const Outcome& expected, const std::vector<std::wstring>& boxes) {
    EXPECT_EQ(expected.Reports, Reported());
    EXPECT_EQ(expected.Boxes, boxes);
    EXPECT_EQ(0U, Errors.Told.size());
}

void FaultyHostFixture::Pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

std::wstring FaultyHostFixture::Beside(std::wstring text) {
    const size_t mine = text.find(L"-- mine");
    EXPECT_NE(std::wstring::npos, mine) << "what was there is lost";
    if (mine != std::wstring::npos) text.erase(mine, 7);
    return text;
}

void OpenSchema(const EditorTree& tree) {
    tree.Click(tree.At({}));  // reads the schemas again and throws away what was below them
    tree.Open(tree.At({}));
    tree.Open(tree.At({0}));
}

void OpenTables(const EditorTree& tree) {
    OpenSchema(tree);
    tree.Open(tree.At({0, 0}));
}

void SelectTable(const EditorTree& tree) {
    OpenTables(tree);
    tree.Open(tree.At({0, 0, 0}));
    tree.Select(tree.At({0, 0, 0}));
}

void SelectTables(const EditorTree& tree) {
    OpenTables(tree);
    tree.Select(tree.At({0, 0}));
}
