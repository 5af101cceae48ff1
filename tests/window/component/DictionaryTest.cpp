#include "dictionary/clsDictionary.h"

#include "automation/App.h"
#include "errors/clsErrorHandler.h"
#include "shared/modGlobal.h"
#include "support/Errors.h"
#include "support/HostFakes.h"

namespace {

// The adapter is used here as the component's own procedures use it.
class DictionaryTest : public testing::Test {
protected:
    ~DictionaryTest() override { ErrorHandler.reset(); }
    FakeErrors Errors;
    FakeDatabase Host;
    std::wstring Asked;

    void Answer(const wchar_t* member, const Variant& value) {
        Host.DictionaryMembers[member] = [this, value](const Arguments& a) {
            Asked.clear();
            for (size_t at = 0; at < a.Count(); ++at) {
                const Variant given = a[at];
                Asked += given.IsMissing() ? L"<missing>"
                         : given.IsNull()  ? L"<null>"
                         : given.IsEmpty() ? L"<empty>"
                                           : given.ToText();
                Asked += L":" + std::to_wstring(given.vt) + L" ";
            }
            return value;
        };
    }
    void Fail(const wchar_t* member, long number, const wchar_t* source) {
        Host.DictionaryMembers[member] = [number, source](const Arguments&) -> Variant {
            RaiseError(number, source, L"as told");
        };
    }
    static std::wstring Items(const HostCollection& collection) {
        std::wstring items;
        collection.ForEach([&](const Variant& item) {
            items += item.ToText() + L" ";
            return true;
        });
        return items;
    }
};

}  // namespace

TEST_F(DictionaryTest, WithoutADictionaryItIsNotConnectedAndItsGettersReport) {
    clsDictionary dictionary;
    dictionary.Constructor(Object());
    EXPECT_FALSE(dictionary.Connected());
    EXPECT_FALSE(dictionary.Schemas(L""));
    EXPECT_FALSE(dictionary.Objects(1));
    EXPECT_FALSE(dictionary.Columns(L"", L""));
    EXPECT_EQ(L"", dictionary.DataTypeDesc(3));
    EXPECT_EQ(
        L"clsDictionary.Get Schemas 91|clsDictionary.Get Objects 91|clsDictionary.Get Columns 91|"
        L"clsDictionary.Get DataTypeDesc 91",
        Errors.Places());
}

TEST_F(DictionaryTest, ForwardsInOrderWithItsDefaults) {
    const Object items = MakeCollection({Variant(L"A"), Variant(L"B")});
    for (const wchar_t* member : {L"Schemas", L"Objects", L"Columns"}) Answer(member, Variant(items));
    Answer(L"DataTypeDesc", Variant(L"NUMBER"));
    clsDictionary dictionary;
    dictionary.Constructor(Host.MakeDictionary());
    EXPECT_TRUE(dictionary.Connected());

    EXPECT_EQ(L"A B ", Items(dictionary.Schemas(Variant())));
    EXPECT_EQ(L"<empty>:0 " + Variant(false).ToText() + L":11 ", Asked);
    dictionary.Schemas(L"X", true);
    EXPECT_EQ(L"X:8 " + Variant(true).ToText() + L":11 ", Asked);

    dictionary.Objects(2);
    EXPECT_EQ(L"2:3 <missing>:10 <missing>:10 <missing>:10 ", Asked);
    dictionary.Objects(1, Variant::Null(), L"", true);
    EXPECT_EQ(L"1:3 <null>:1 :8 " + Variant(true).ToText() + L":11 ", Asked);

    dictionary.Columns(Variant::Null(), L"ORDERS");
    EXPECT_EQ(L"<null>:1 ORDERS:8 ", Asked);

    EXPECT_EQ(L"NUMBER", dictionary.DataTypeDesc(3));
    EXPECT_EQ(L"3:3 0:3 ", Asked);
    dictionary.DataTypeDesc(3, 7);
    EXPECT_EQ(L"3:3 7:3 ", Asked);
}

TEST_F(DictionaryTest, WhatIsNoCollectionIsReported) {
    clsDictionary dictionary;
    for (const Variant& value : {Variant(5L), Variant(L"A"), Variant::Null(), Variant(), Variant(Host.Make())}) {
        Answer(L"Schemas", value);
        dictionary.Constructor(Host.MakeDictionary());
        Errors.Forget();
        EXPECT_FALSE(dictionary.Schemas(L""));
        EXPECT_EQ(L"clsDictionary.Get Schemas 13", Errors.Places());
    }
    Answer(L"Schemas", Variant::Nothing());
    dictionary.Constructor(Host.MakeDictionary());
    Errors.Forget();
    EXPECT_FALSE(dictionary.Schemas(L""));
}

TEST_F(DictionaryTest, AnArrayIsNoCollection) {
    for (const wchar_t* member : {L"Schemas", L"Objects", L"Columns"}) {
        Answer(member, Variant::ArrayOf({Variant(L"A"), Variant(L"B")}));
    }
    clsDictionary dictionary;
    dictionary.Constructor(Host.MakeDictionary());
    EXPECT_FALSE(dictionary.Schemas(L""));
    EXPECT_FALSE(dictionary.Objects(1));
    EXPECT_FALSE(dictionary.Columns(L"", L""));
    EXPECT_EQ(L"clsDictionary.Get Schemas 13|clsDictionary.Get Objects 13|clsDictionary.Get Columns 13",
              Errors.Places());
}

TEST_F(DictionaryTest, NumbersThatWindowsDefinesArePassedOnAsTheHostRaisedThem) {
    clsDictionary dictionary;
    for (const long number : {-2147221164L, -2147220995L}) {
        Fail(L"Columns", number, L"brvADO");
        dictionary.Constructor(Host.MakeDictionary());
        EXPECT_EQ(number, NumberOf([&] { dictionary.Columns(L"", L""); }));
    }
}

TEST_F(DictionaryTest, NoDictionaryComesFromObjectsUnderTheApplicationsName) {
    clsDictionary dictionary;
    for (const wchar_t* member : {L"Schemas", L"Objects", L"Columns"}) Fail(member, -2147221503, L"brvADO");
    dictionary.Constructor(Host.MakeDictionary());
    try {
        dictionary.Objects(1);
        FAIL() << "not passed on";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(-2147221503, error.Number);
        EXPECT_EQ(App::Title, error.Source);
        EXPECT_EQ(L"as told", error.Description);
    }
    EXPECT_EQ(L"", Errors.Places());
    EXPECT_FALSE(dictionary.Schemas(L""));
    EXPECT_EQ(L"clsDictionary.Get Schemas -2147221503", Errors.Places());
}

TEST_F(DictionaryTest, ColumnsPassesOnWhatTheHostsComponentNumbersItself) {
    clsDictionary dictionary;
    for (const long number : {-2147221503L, -2147221494L, ObjectErrorBase + 65534}) {
        Fail(L"Columns", number, L"brvADO");
        dictionary.Constructor(Host.MakeDictionary());
        try {
            dictionary.Columns(L"", L"");
            FAIL() << "not passed on";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(number, error.Number);
            EXPECT_EQ(L"brvADO", error.Source);
            EXPECT_EQ(L"as told", error.Description);
        }
    }
    EXPECT_EQ(L"", Errors.Places());
    struct Reported {
        long Number;
        const wchar_t* Source;
    };
    for (const Reported& one : {Reported{ObjectErrorBase + 10, L"other"}, Reported{ObjectErrorBase + 65535, L"brvADO"},
                                Reported{5, L"brvADO"}}) {
        Fail(L"Columns", one.Number, one.Source);
        dictionary.Constructor(Host.MakeDictionary());
        Errors.Forget();
        EXPECT_FALSE(dictionary.Columns(L"", L""));
        EXPECT_EQ(L"clsDictionary.Get Columns " + std::to_wstring(one.Number), Errors.Places());
    }
}

TEST_F(DictionaryTest, ObjectsReportsEveryOtherError) {
    clsDictionary dictionary;
    struct Reported {
        long Number;
        const wchar_t* Source;
    };
    for (const Reported& one :
         {Reported{-2147221503, L"other"}, Reported{-2147221502, L"brvADO"}, Reported{7, L"brvADO"}}) {
        Fail(L"Objects", one.Number, one.Source);
        dictionary.Constructor(Host.MakeDictionary());
        Errors.Forget();
        EXPECT_FALSE(dictionary.Objects(1));
        EXPECT_EQ(L"clsDictionary.Get Objects " + std::to_wstring(one.Number), Errors.Places());
    }
}

TEST_F(DictionaryTest, LetsTheDictionaryGo) {
    auto* made = new DynamicObject;
    IDispatch* const raw = made;
    clsDictionary dictionary;
    dictionary.Constructor(Object::Attach(made));
    raw->AddRef();
    EXPECT_TRUE(dictionary.Connected());
    dictionary.Destructor();
    EXPECT_EQ(0U, raw->Release());
    EXPECT_FALSE(dictionary.Connected());
}
