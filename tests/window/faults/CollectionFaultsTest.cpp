#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Fault.h"
#include "support/CountedObject.h"
#include "support/Browsed.h"
#include "support/Dialogs.h"

// What collections and their items can do wrong that is no call by name: enumerators that fail on the way, and items
// that are not what they should be.

namespace {

// Gives its items and then fails, or what else it was told to do.
class Enumeration final : public CountedObject<IEnumVARIANT> {
public:
    struct Ways {
        HRESULT AtThird = S_OK;  // what Next answers for the third item
        HRESULT Reset = S_OK;
        bool TellsMore = false;  // says that it fetched more than it was asked for
    };
    Enumeration(std::vector<Variant> items, const Ways& ways) : items_(std::move(items)), ways_(ways) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
        if (fetched != nullptr) *fetched = 0;
        if (at_ == 2 && ways_.AtThird != S_OK) return ways_.AtThird;
        if (count == 0 || at_ >= items_.size()) return S_FALSE;
        VariantInit(items);
        VariantCopy(items, &items_[at_++]);
        if (fetched != nullptr) *fetched = ways_.TellsMore ? 1000 : 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override {
        if (ways_.Reset == S_OK) at_ = 0;
        return ways_.Reset;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

private:
    ~Enumeration() = default;
    std::vector<Variant> items_;
    const Ways ways_;
    size_t at_ = 0;
};

// A collection that knows nothing but its enumerator.
class Enumerable final : public CountedObject<IDispatch> {
public:
    Enumerable(std::vector<Variant> items, const Enumeration::Ways& ways) : items_(std::move(items)), ways_(ways) {}
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override {
        if (id != DISPID_NEWENUM) return DISP_E_MEMBERNOTFOUND;
        auto* made = new Enumeration(items_, ways_);
        made->AddRef();
        result->vt = VT_UNKNOWN;
        result->punkVal = made;
        return S_OK;
    }

private:
    ~Enumerable() = default;
    const std::vector<Variant> items_;
    const Enumeration::Ways ways_;
};

Variant PlainObject() { return Variant(Object::Attach(new DynamicObject)); }

class CollectionFaultsTest : public BrowsedFixture {
protected:
    void Gives(const wchar_t* member, const Variant& value) {
        Database.DictionaryMembers[member] = [value](const Arguments&) { return value; };
    }
    static Variant Enumerated(std::vector<Variant> items, const Enumeration::Ways& ways) {
        return Variant(Object(new Enumerable(std::move(items), ways)));
    }
    // Opens the branch down to the path and gives the texts in it.
    std::wstring Opened(std::initializer_list<std::initializer_list<int>> way) {
        std::wstring left;
        Inside([&] {
            BoxAnswerer boxes;
            HTREEITEM last = nullptr;
            for (const auto& path : way) {
                last = Tree.At(path);
                Tree.Open(last);
            }
            left = Tree.Children(last);
            EXPECT_EQ(0, boxes.Boxes) << "a message that nobody described";
        });
        return left;
    }
    std::wstring Schemas() { return Opened({{}}); }
    std::wstring Tables() { return Opened({{}, {0}, {0, 0}}); }
    std::wstring ColumnTexts() {
        std::wstring left;
        Inside([&] {
            Tree.OpenDownTo({0, 0, 0});
            left = Tree.Children(Tree.At({0, 0, 0, 0}));
        });
        return left;
    }
    std::wstring TakeReports() {
        std::wstring reports;
        for (const Report& report : Errors.Reports) {
            reports += (reports.empty() ? L"" : L"|") + report.Place() + L" " + std::to_wstring(report.Number) + L" " +
                       report.Source;
        }
        Errors.Forget();
        return reports;
    }
    const std::vector<Variant> three_{Variant(L"one"), Variant(L"two"), Variant(L"three")};
};

}  // namespace

TEST_F(CollectionFaultsTest, AnEnumeratorThatFailsOnTheWay) {
    struct Row {
        HRESULT AtThird;
        const wchar_t* Report;  // the number and source
    };
    // Only a number of the component's own range, from a source that is the component, goes up to the event: without an
    // exception the source is whoever called.
    const Row rows[] = {
        {E_FAIL, L"-2147467259 brvSQLEditor"},
        {E_OUTOFMEMORY, L"7 brvSQLEditor"},
        {E_NOINTERFACE, L"430 brvSQLEditor"},
        {E_POINTER, L"-2147467261 brvSQLEditor"},
        {static_cast<HRESULT>(0x800A000D), L"13 brvSQLEditor"},
        {static_cast<HRESULT>(0x800706BA), L"462 brvSQLEditor"},
    };
    for (const Row& row : rows) {
        Enumeration::Ways ways;
        ways.AtThird = row.AtThird;
        SCOPED_TRACE(testing::Message() << std::hex << row.AtThird);
        Gives(L"Schemas", Enumerated(three_, ways));
        EXPECT_EQ(L"one|two", Schemas());
        EXPECT_EQ(std::wstring(L"modLists.PopulateDBObjSchemas ") + row.Report, TakeReports());
        Gives(L"Schemas", Variant(MakeCollection(three_)));
        Gives(L"Objects", Enumerated(three_, ways));
        EXPECT_EQ(L"one|two", Tables());
        EXPECT_EQ(std::wstring(L"modLists.PopulateDBObjTablesViews ") + row.Report, TakeReports());
    }
}

TEST_F(CollectionFaultsTest, AnEnumeratorThatSaysThereIsNoMoreWhileThereIs) {
    Enumeration::Ways ways;
    ways.AtThird = S_FALSE;
    Gives(L"Schemas", Enumerated(three_, ways));
    EXPECT_EQ(L"one|two", Schemas());
    EXPECT_EQ(L"", TakeReports());
}

TEST_F(CollectionFaultsTest, AnEnumeratorThatCannotBeResetOrMiscounts) {
    Enumeration::Ways ways;
    ways.Reset = E_NOTIMPL;
    Gives(L"Schemas", Enumerated(three_, ways));
    EXPECT_EQ(L"one|two|three", Schemas());
    ways.Reset = S_OK;
    ways.TellsMore = true;
    Gives(L"Schemas", Enumerated(three_, ways));
    EXPECT_EQ(L"one|two|three", Schemas());
    EXPECT_EQ(L"", TakeReports());
}

TEST_F(CollectionFaultsTest, PropertiesThatAreNoProperties) {
    struct Row {
        const char* Name;
        Variant Property;
        const wchar_t* Left;
        const wchar_t* Reports;
    };
    const Variant null = Variant::Null();
    const auto array = [](std::vector<Variant> items) { return Variant::ArrayOf(items); };
    const wchar_t* const mismatch = L"modLists.PopulateDBObjColumns 13 brvSQLEditor";
    const wchar_t* const outside = L"modLists.PopulateDBObjColumns 9 brvSQLEditor";
    const wchar_t* const nullUsed = L"modLists.PopulateDBObjColumns 94 brvSQLEditor";
    const wchar_t* const noMember = L"modLists.PopulateDBObjColumns 438 brvSQLEditor";
    const Row rows[] = {
        {"null", null, L"FIRST=1", mismatch},
        {"empty", Variant(), L"FIRST=1", mismatch},
        {"nothing", Variant::Nothing(), L"FIRST=1", mismatch},
        {"a text", Variant(L"COLUMN_NAME"), L"FIRST=1", mismatch},
        {"no elements", array({}), L"FIRST=1", outside},
        {"a name alone", array({Variant(L"X")}), L"FIRST=1", outside},
        {"name and value", array({Variant(L"X"), Variant(L"y")}), L"FIRST=1|X=y|LAST=2", L""},
        {"a name that is null", array({null, Variant(L"y"), Variant()}), L"FIRST=1", nullUsed},
        {"a name that is an object", array({PlainObject(), Variant(L"y"), Variant()}), L"FIRST=1", noMember},
        {"a name that is nothing", array({Variant(), null, Variant()}), L"FIRST=1|=null|LAST=2", L""},
        {"a column's name that is null", array({Variant(L"COLUMN_NAME"), null, Variant()}), L"FIRST=1", nullUsed},
        {"a value that is an object", array({Variant(L"X"), PlainObject(), Variant()}), L"FIRST=1|X=|LAST=2",
         L"modLists.m_VntToStr 438 brvSQLEditor"},
        {"a value that is an array", array({Variant(L"X"), array({Variant(L"y")}), Variant()}), L"FIRST=1|X=|LAST=2",
         L"modLists.m_VntToStr 13 brvSQLEditor"},
        {"a type without an attribute", array({Variant(L"DATA_TYPE"), Variant(3L)}), L"FIRST=1|DATA_TYPE=3", outside},
        {"a type whose attribute is null", array({Variant(L"DATA_TYPE"), Variant(3L), null}), L"FIRST=1|DATA_TYPE=3",
         nullUsed},
        {"a type whose attribute is a text", array({Variant(L"DATA_TYPE"), Variant(3L), Variant(L"x")}),
         L"FIRST=1|DATA_TYPE=3", mismatch},
        {"a type that is too large", array({Variant(L"DATA_TYPE"), Variant(1e12), Variant(0L)}),
         L"FIRST=1|DATA_TYPE=1000000000000", L"modLists.PopulateDBObjColumns 6 brvSQLEditor"},
        {"a type that is null", array({Variant(L"DATA_TYPE"), null, Variant(0L)}), L"FIRST=1|DATA_TYPE=null|LAST=2",
         L""},
    };
    const Row* now = rows;
    Database.DictionaryMembers[L"Columns"] = [&now](const Arguments&) {
        return Variant(
            MakeCollection({Variant(MakeCollection({Property(L"FIRST", 1L), now->Property, Property(L"LAST", 2L)}))}));
    };
    int cases = 0;
    Inside([&] {
        BoxAnswerer boxes;
        Tree.OpenDownTo({0, 0});
        for (const Row& row : rows) {
            SCOPED_TRACE(row.Name);
            now = &row;
            Tree.Open(Tree.At({0, 0, 0}));
            EXPECT_EQ(row.Left, Tree.Children(Tree.At({0, 0, 0, 0, 0, 0})));
            EXPECT_EQ(row.Reports, TakeReports());
            Tree.Shut(Tree.At({0, 0, 0}));
            ++cases;
        }
        EXPECT_EQ(0, boxes.Boxes) << "a message that nobody described";
    });
    std::printf("fault matrix, properties: %d cases\n", cases);
}

TEST_F(CollectionFaultsTest, ColumnsThatAreNoCollections) {
    const std::vector<std::pair<Variant, const wchar_t*>> rows = {
        {Variant::Null(), L"modLists.PopulateDBObjColumns 13 brvSQLEditor"},
        {Variant(), L"modLists.PopulateDBObjColumns 13 brvSQLEditor"},
        {Variant(L"A"), L"modLists.PopulateDBObjColumns 13 brvSQLEditor"},
        {Variant::Nothing(), L"modLists.PopulateDBObjColumns 91 brvSQLEditor"},
        {PlainObject(), L"modLists.PopulateDBObjColumns 13 brvSQLEditor"},
    };
    for (const auto& [column, report] : rows) {
        Gives(L"Columns", Variant(MakeCollection({Column(L"A", 3L), column, Column(L"C", 3L)})));
        EXPECT_EQ(L"A|", ColumnTexts());  // the one that failed was added before it was read
        EXPECT_EQ(report, TakeReports());
    }
}
