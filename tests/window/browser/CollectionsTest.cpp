#include <windows.h>
#include <commctrl.h>

#include "support/Browsed.h"

// Hosts hand their collections over in several kinds, and all are read alike, at each level of the tree. The list of a
// column's properties may be an array too.
namespace {

enum class Kind { Enumerated, CountFromOne, CountFromZero, VariantArray, ArrayFromFive };

bool IsArray(Kind kind) { return kind == Kind::VariantArray || kind == Kind::ArrayFromFive; }

Variant Pack(Kind kind, std::vector<Variant> items) {
    switch (kind) {
        case Kind::Enumerated: {
            // An enumerator alone, without Count and Item.
            auto* made = new DynamicObject;
            const Object held = Object::Attach(made);
            made->DefineEnumerator([items] { return items; });
            return Variant(held);
        }
        case Kind::CountFromOne:
        case Kind::CountFromZero: {
            auto* made = new DynamicObject;
            const Object held = Object::Attach(made);
            const long base = kind == Kind::CountFromOne ? 1 : 0;
            made->Define(L"Count", [items](const Arguments&) { return Variant(static_cast<long>(items.size())); });
            made->Define(L"Item", [items, base](const Arguments& a) -> Variant {
                const long at = a[0].ToLong() - base;
                if (at < 0 || at >= static_cast<long>(items.size())) RaiseError(ErrorNumber::SubscriptOutOfRange);
                return items[static_cast<size_t>(at)];
            });
            return Variant(held);
        }
        case Kind::VariantArray:
            return Variant::ArrayOf(items);
        default:
            return Variant::ArrayOf(items, 5);
    }
}

class CollectionsTest : public BrowsedFixture, public testing::WithParamInterface<Kind> {};

}  // namespace

TEST_P(CollectionsTest, EveryLevelIsReadFromEveryKind) {
    const Kind kind = GetParam();
    const Kind outer = IsArray(kind) ? Kind::CountFromOne : kind;
    Database.DictionaryMembers[L"Schemas"] = [outer](const Arguments&) {
        return Pack(outer, {Variant(L"A"), Variant(L"B")});
    };
    Database.DictionaryMembers[L"Objects"] = [outer](const Arguments&) {
        return Pack(outer, {Variant(L"T1"), Variant(L"T2"), Variant(L"T3")});
    };
    Database.DictionaryMembers[L"Columns"] = [kind, outer](const Arguments&) {
        std::vector<Variant> columns;
        long lower = -1;
        for (const wchar_t* name : {L"C1", L"C2", L"C3", L"C4"}) {
            columns.push_back(
                Pack(kind, {Property(L"COLUMN_NAME", name, Variant(), lower), Property(L"DATA_TYPE", 12L, 1L, lower)}));
            lower = lower == 1 ? 5 : lower + 1;  // -1, 0, 1, 5
        }
        return Pack(outer, columns);
    };
    Inside([this] {
        Tree.Open(Tree.At({}));
        EXPECT_EQ(L"A|B", Tree.Children(Tree.At({})));
        Tree.Open(Tree.At({1}));
        Tree.Open(Tree.At({1, 0}));
        EXPECT_EQ(L"T1|T2|T3", Tree.Children(Tree.At({1, 0})));
        Tree.Open(Tree.At({1, 0, 2}));
        EXPECT_EQ(L"C1|C2|C3|C4", Tree.Children(Tree.At({1, 0, 2, 0})));
        for (const int column : {0, 1, 2, 3}) {
            EXPECT_EQ(L"COLUMN_NAME=C" + std::to_wstring(column + 1) + L"|DATA_TYPE=type 12/1",
                      Tree.Children(Tree.At({1, 0, 2, 0, column, 0})));
        }
    });
}

TEST_P(CollectionsTest, EmptyOnesGiveEmptyBranches) {
    const Kind kind = GetParam();
    if (IsArray(kind)) return;  // no collection of objects
    Database.DictionaryMembers[L"Objects"] = [kind](const Arguments&) { return Pack(kind, {}); };
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        EXPECT_EQ(L"", Tree.Children(Tree.At({0, 0})));
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, CollectionsTest,
                         testing::Values(Kind::Enumerated, Kind::CountFromOne, Kind::CountFromZero, Kind::VariantArray,
                                         Kind::ArrayFromFive));

TEST_F(BrowsedFixture, AnArrayIsNoCollectionAtAnyLevel) {
    const auto array = [](const Arguments&) { return Variant::ArrayOf({Variant(L"A"), Variant(L"B")}); };
    Database.DictionaryMembers[L"Columns"] = array;
    Inside([this] {
        Tree.OpenDownTo({0, 0, 0});
        EXPECT_EQ(L"", Tree.Children(Tree.At({0, 0, 0, 0})));
    });
    EXPECT_EQ(L"clsDictionary.Get Columns 13", Errors.Places());
    Errors.Forget();
    Database.DictionaryMembers[L"Objects"] = array;
    Inside([this] {
        Tree.OpenDownTo({0, 0});
        EXPECT_EQ(L"", Tree.Children(Tree.At({0, 0})));
    });
    EXPECT_EQ(L"clsDictionary.Get Objects 13|modLists.PopulateDBObjTablesViews 91", Errors.Places());
    Errors.Forget();
    Database.DictionaryMembers[L"Schemas"] = array;
    Inside([this] {
        Tree.Open(Tree.At({}));
        EXPECT_EQ(L"Current Schema", Tree.Children(Tree.At({})));
    });
    EXPECT_EQ(L"clsDictionary.Get Schemas 13", Errors.Places());
}

TEST_F(BrowsedFixture, ValuesOfAllTypesAreShown) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
        Variant date;
        date.vt = VT_DATE;
        date.date = 46023.0;  // a day of 2026, without a time
        return Variant(MakeCollection({Variant(MakeCollection(
            {Property(L"COLUMN_NAME", L"C"), Property(L"NULL", Variant::Null()), Property(L"EMPTY", Variant()),
             Property(L"LONG", -5L), Property(L"BOOL", true), Property(L"DATE", date),
             Property(7L, L"number for a name"), Property(L"DATA_TYPE", Variant::Null()),
             Property(L"DATA_TYPE", L"varchar"), Property(L"DATA_TYPE", L"12", 3L)}))}));
    };
    Variant date;
    date.vt = VT_DATE;
    date.date = 46023.0;
    const std::wstring day = date.ToText();
    Inside([&] {
        Tree.OpenDownTo({0, 0, 0});
        // A type that reads as a number is described, whatever it is kept in.
        EXPECT_EQ(L"COLUMN_NAME=C|NULL=null|EMPTY=|LONG=-5|BOOL=True|DATE=" + day +
                      L"|7=number for a name|DATA_TYPE=null|DATA_TYPE=varchar|DATA_TYPE=type 12/3",
                  Tree.Children(Tree.At({0, 0, 0, 0, 0, 0})));
    });
}

TEST_F(BrowsedFixture, AColumnThatIsNoCollectionIsReportedAndTheOnesBeforeItStay) {
    Database.DictionaryMembers[L"Columns"] = [](const Arguments&) {
        return Variant(MakeCollection({Column(L"GOOD", 1L), Variant(42L), Column(L"NEVER", 1L)}));
    };
    Inside([this] {
        Tree.OpenDownTo({0, 0, 0});
        EXPECT_EQ(L"GOOD|", Tree.Children(Tree.At({0, 0, 0, 0})));
    });
    EXPECT_EQ(L"modLists.PopulateDBObjColumns 13", Errors.Places());
}
