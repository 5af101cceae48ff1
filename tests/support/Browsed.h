#pragma once

#include "support/Component.h"
#include "support/EditorTree.h"
#include "support/Menus.h"

// A host whose dictionary holds a few schemas with two tables and two views each, so that the object browser has
// something to show.
class BrowsedFixture : public ComponentFixture {
protected:
    BrowsedFixture() {
        Database.DictionaryMembers[L"Schemas"] = [](const Arguments& a) {
            ExpectTypes(a, {VT_BSTR, VT_BOOL});
            EXPECT_EQ(L"", a[0].ToText());
            EXPECT_TRUE(a[1].ToBoolean());
            return Variant(MakeCollection({Variant(L"HR"), Variant(L""), Variant::Null(), Variant(L"Sales & Co")}));
        };
        Database.DictionaryMembers[L"Objects"] = [this](const Arguments& a) {
            ExpectTypes(a, {VT_I4, a[1].IsNull() ? VT_NULL : VT_BSTR, VT_BSTR, VT_BOOL});
            Asked = a[0].ToText() + L"," + (a[1].IsNull() ? std::wstring(L"<null>") : a[1].ToText()) + L"," +
                    a[2].ToText() + L"," + (a[3].ToBoolean() ? L"all" : L"own");
            return Variant(MakeCollection({Variant(L"ORDERS"), Variant(L"odd \"name\"")}));
        };
        Database.DictionaryMembers[L"Columns"] = [this](const Arguments& a) {
            ExpectTypes(a, {a[0].IsNull() ? VT_NULL : VT_BSTR, VT_BSTR});
            Asked = (a[0].IsNull() ? std::wstring(L"<null>") : a[0].ToText()) + L"," + a[1].ToText();
            return Variant(MakeCollection({Column(L"ID", 3L), Column(L"NAME", L"text")}));
        };
        Database.DictionaryMembers[L"DataTypeDesc"] = [](const Arguments& a) {
            ExpectTypes(a, {VT_I4, VT_I4});
            return Variant(L"type " + a[0].ToText() + L"/" + a[1].ToText());
        };
        // Names with a blank are quoted in brackets.
        Database.Members[L"FormatName"] = [](const Arguments& a) {
            ExpectTypes(a, {VT_BSTR});
            const std::wstring name = a[0].ToText();
            return Variant(name.find(L' ') == std::wstring::npos ? name : L"[" + name + L"]");
        };
    }
    // So many arguments of these types, however they are passed.
    static void ExpectTypes(const Arguments& given, const std::vector<int>& types) {
        ASSERT_EQ(types.size(), given.Count());
        for (size_t at = 0; at < types.size(); ++at) EXPECT_EQ(types[at], given[at].vt) << "argument " << at;
    }
    static Variant Property(const Variant& name, const Variant& value, const Variant& attribute = Variant(7L),
                            long lower = 0) {
        return Variant::ArrayOf({name, value, attribute}, lower);
    }
    static Variant Column(const wchar_t* name, const Variant& type) {
        return Variant(
            MakeCollection({Property(L"TABLE_CAT", Variant::Null()), Property(L"COLUMN_NAME", name, Variant(), 1),
                            Property(L"DATA_TYPE", type), Property(L"NULLABLE", Variant::Null())}));
    }
    void Columns(std::vector<const wchar_t*> names) {
        Database.DictionaryMembers[L"Columns"] = [names](const Arguments&) {
            std::vector<Variant> columns;
            for (const wchar_t* name : names) columns.push_back(Column(name, 3L));
            return Variant(MakeCollection(std::move(columns)));
        };
    }
    void Tables(int count) {  // T0, T1, ..., and as many views
        Database.DictionaryMembers[L"Objects"] = [count](const Arguments&) {
            std::vector<Variant> names;
            for (int at = 0; at < count; ++at) names.push_back(Variant(L"T" + std::to_wstring(at)));
            return Variant(MakeCollection(std::move(names)));
        };
    }
    void Type(long code) {
        Database.Members[L"DBType"] = [code](const Arguments&) { return Variant(code); };
    }

    EditorTree Tree;
    std::wstring Asked;  // the arguments of the last question for objects or columns
};
