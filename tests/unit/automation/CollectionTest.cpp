#include "automation/Collection.h"
#include "automation/HostCollection.h"

#include <gtest/gtest.h>

#include "FakeDispatch.h"
#include "automation/App.h"

namespace {

// An enumerator that a test can make as wrong as it likes. On the stack, as FakeDispatch.
class FakeEnumerator : public StackObject<IEnumVARIANT> {
public:
    virtual ~FakeEnumerator() { EXPECT_EQ(1u, References) << "references that were taken and not given back"; }

    std::vector<Variant> Items;
    size_t At = 0;
    size_t FailsAt = SIZE_MAX;
    HRESULT ResetResult = S_OK;
    bool SaysFetchedZero = false;
    bool SaysFetchedOne = false;
    bool EndsWithOk = false;
    bool LeavesItemAtEnd = false;
    ULONG Largest = 0;
    int Resets = 0;

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
        if (count > Largest) Largest = count;
        ULONG given = 0;
        for (; given < count && At < Items.size(); ++given, ++At) {
            if (At == FailsAt) return E_ACCESSDENIED;
            VariantCopy(&items[given], &Items[At]);
        }
        if (fetched != nullptr) *fetched = SaysFetchedZero ? 0 : SaysFetchedOne ? 1 : given;
        if (given < count && LeavesItemAtEnd) VariantCopy(items, &Items.back());
        return given == count || EndsWithOk ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override {
        ++Resets;
        if (ResetResult == S_OK) At = 0;
        return ResetResult;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT**) override { return E_NOTIMPL; }
};

// A collection object around an enumerator.
class Enumerated : public FakeDispatch {
public:
    explicit Enumerated(VARTYPE type = VT_UNKNOWN) : FakeDispatch(std::map<std::wstring, DISPID>()) {
        Enumerator.Items = {Variant(L"a"), Variant(L"b"), Variant(L"c")};
        OnInvoke = [this, type](DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result, EXCEPINFO*) -> HRESULT {
            if (id != DISPID_NEWENUM) return DISP_E_MEMBERNOTFOUND;
            EXPECT_EQ(DISPATCH_METHOD | DISPATCH_PROPERTYGET, flags);
            EXPECT_EQ(0u, parameters.cArgs);
            if (Fresh) Enumerator.At = 0;
            Enumerator.AddRef();
            result->vt = type;
            result->punkVal = &Enumerator;
            return S_OK;
        };
    }
    FakeEnumerator Enumerator;
    bool Fresh = false;
};

HostCollection Of(IDispatch* object) { return HostCollection(Variant(object)); }

// An object with Count and Item alone.
class Counted : public FakeDispatch {
public:
    Counted(long first, std::vector<std::wstring> items)
        : FakeDispatch({{L"Count", 1}, {L"Item", 2}}), First(first), Items(std::move(items)) {
        OnInvoke = [this](DISPID id, WORD, DISPPARAMS& parameters, VARIANT* result, EXCEPINFO*) -> HRESULT {
            if (id == 1) {
                result->vt = VT_I4;
                result->lVal = static_cast<LONG>(Items.size());
                return S_OK;
            }
            if (id != 2) return DISP_E_MEMBERNOTFOUND;
            const long at = Variant(parameters.rgvarg[0]).ToLong() - First;
            if (at < 0 || at >= static_cast<long>(Items.size()) || at == FailsAt) return DISP_E_BADINDEX;
            result->vt = VT_BSTR;
            result->bstrVal = SysAllocString(Items[static_cast<size_t>(at)].c_str());
            return S_OK;
        };
    }
    long First;
    long FailsAt = -1;
    std::vector<std::wstring> Items;
};

}  // namespace

TEST(HostCollectionTest, NothingIsNoCollection) {
    EXPECT_FALSE(HostCollection());
    const HostCollection nothing(Variant::Nothing());
    EXPECT_FALSE(nothing);
    EXPECT_EQ(91, NumberOf([&nothing] { Joined(nothing); }));
}

TEST(HostCollectionTest, WhatIsNoCollectionIsATypeMismatch) {
    for (const Variant& wrong : {Variant(), Variant::Null(), Variant(1), Variant(L"text"), Variant::Missing()}) {
        EXPECT_EQ(13, NumberOf([&wrong] { HostCollection collection(wrong); })) << wrong.vt;
    }
    FakeDispatch plain;
    EXPECT_EQ(13, NumberOf([&plain] { Of(&plain); }));
    FakeDispatch half({{L"Count", 1}});
    EXPECT_EQ(13, NumberOf([&half] { Of(&half); }));
}

TEST(HostCollectionTest, EnumeratesInOrder) {
    Enumerated unknown;
    EXPECT_EQ(L"a|b|c|", Joined(Of(&unknown)));
    EXPECT_TRUE(Of(&unknown));
    Enumerated dispatch(VT_DISPATCH);
    EXPECT_EQ(L"a|b|c|", Joined(Of(&dispatch)));
    EXPECT_EQ(0, dispatch.LookUps) << "by id: the name need not be known";
}

TEST(HostCollectionTest, NoItemIsAskedForBeforeItIsNeeded) {
    Enumerated object;
    const HostCollection collection = Of(&object);
    EXPECT_EQ(0u, object.Enumerator.Largest);
    EXPECT_EQ(1, object.Calls);
}

TEST(HostCollectionTest, EachPassBeginsAtTheFirstItem) {
    Enumerated object;
    const HostCollection collection = Of(&object);
    EXPECT_EQ(L"a|b|c|", Joined(collection));
    EXPECT_EQ(L"a|b|c|", Joined(collection));
    EXPECT_EQ(2, object.Enumerator.Resets);
    EXPECT_EQ(1, object.Calls) << "one that can be reset is asked for once";
}

TEST(HostCollectionTest, AnEnumeratorThatCannotBeResetIsAskedForAnew) {
    for (const HRESULT refusal : {E_NOTIMPL, S_FALSE}) {
        Enumerated object;
        object.Enumerator.ResetResult = refusal;
        object.Fresh = true;
        const HostCollection collection = Of(&object);
        EXPECT_EQ(L"a|b|c|", Joined(collection));
        EXPECT_EQ(L"a|b|c|", Joined(collection));
    }
}

TEST(HostCollectionTest, OneThatCanNeitherBeResetNorAskedForAnewIsReadOnce) {
    Enumerated object;
    object.Enumerator.ResetResult = E_NOTIMPL;
    const HostCollection collection = Of(&object);
    object.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* exception) -> HRESULT {
        exception->bstrDescription = SysAllocString(L"not twice");
        return DISP_E_EXCEPTION;
    };
    EXPECT_EQ(L"a|b|c|", Joined(collection));
}

TEST(HostCollectionTest, TheReaderMayStop) {
    Enumerated object;
    int seen = 0;
    Of(&object).ForEach([&seen](const Variant&) { return ++seen < 2; });
    EXPECT_EQ(2, seen);
    EXPECT_EQ(2u, object.Enumerator.At) << "nothing is fetched ahead";
}

TEST(HostCollectionTest, WhatStandsBeforeAFailureIsDelivered) {
    Enumerated object;
    object.Enumerator.FailsAt = 2;
    std::wstring seen;
    EXPECT_EQ(70, NumberOf([&] {
                  Of(&object).ForEach([&seen](const Variant& item) {
                      seen += item.ToText();
                      return true;
                  });
              }));
    EXPECT_EQ(L"ab", seen);
}

TEST(HostCollectionTest, AFailureOfTheReaderPassesThrough) {
    Enumerated object;
    EXPECT_EQ(5, NumberOf([&] { Of(&object).ForEach([](const Variant&) -> bool { RaiseError(5); }); }));
}

TEST(HostCollectionTest, CountsOfEnumeratorsAreNotTrusted) {
    Enumerated zero;
    zero.Enumerator.SaysFetchedZero = true;
    EXPECT_EQ(L"a|b|c|", Joined(Of(&zero)));
    Enumerated one;
    one.Enumerator.SaysFetchedOne = true;
    EXPECT_EQ(L"a|b|c|", Joined(Of(&one)));
    Enumerated okay;
    okay.Enumerator.EndsWithOk = true;
    EXPECT_EQ(L"a|b|c|", Joined(Of(&okay)));
    Enumerated empty;
    empty.Enumerator.Items = {Variant(), Variant(1), Variant()};
    EXPECT_EQ(L"|1||", Joined(Of(&empty))) << "an item may be Empty";
}

TEST(HostCollectionTest, WhatIsLeftBesideTheEndIsGivenBack) {
    FakeDispatch item;
    Enumerated object;
    object.Enumerator.Items = {Variant(&item)};
    object.Enumerator.LeavesItemAtEnd = true;
    int seen = 0;
    Of(&object).ForEach([&seen](const Variant&) { return ++seen > 0; });
    EXPECT_EQ(1, seen);
    object.Enumerator.Items.clear();
    EXPECT_EQ(1u, item.References);
}

TEST(HostCollectionTest, ItemsByReferenceAreLookedThrough) {
    LONG number = 9;
    Variant reference;
    reference.vt = VT_BYREF | VT_I4;
    reference.plVal = &number;
    Enumerated object;
    object.Enumerator.Items[1] = reference;
    VARTYPE type = 0;
    Of(&object).ForEach([&type](const Variant& item) {
        if (item.vt != VT_BSTR) type = item.vt;
        return true;
    });
    EXPECT_EQ(VT_I4, type);
}

TEST(HostCollectionTest, TheReaderMayLetGoOfTheCollection) {
    Enumerated object;
    HostCollection collection = Of(&object);
    std::wstring seen;
    collection.ForEach([&](const Variant& item) {
        collection = HostCollection();
        seen += item.ToText();
        return true;
    });
    EXPECT_EQ(L"abc", seen);
    for (const bool array : {false, true}) {
        Counted counted(1, {L"x", L"y"});
        HostCollection other =
            array ? HostCollection::OrArray(Variant::ArrayOf({Variant(L"x"), Variant(L"y")})) : Of(&counted);
        seen.clear();
        other.ForEach([&](const Variant& item) {
            other = HostCollection();
            seen += item.ToText();
            return true;
        });
        EXPECT_EQ(L"xy", seen);
    }
}

TEST(HostCollectionTest, CountsFromOneOrZero) {
    Counted one(1, {L"x", L"y"});
    EXPECT_EQ(L"x|y|", Joined(Of(&one)));
    Counted zero(0, {L"x", L"y"});
    EXPECT_EQ(L"x|y|", Joined(Of(&zero)));
    Counted single(0, {L"x"});
    EXPECT_EQ(L"x|", Joined(Of(&single)));
    Counted none(1, {});
    EXPECT_EQ(L"", Joined(Of(&none)));
    EXPECT_TRUE(Of(&none));
    // One that counts from 1 and has something at 0 too.
    Counted both(0, {L"heading", L"x", L"y"});
    both.OnInvoke = [answer = both.OnInvoke](DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result,
                                             EXCEPINFO* exception) -> HRESULT {
        const HRESULT done = answer(id, flags, parameters, result, exception);
        if (id == 1) result->lVal = 2;
        return done;
    };
    EXPECT_EQ(L"x|y|", Joined(Of(&both)));
}

TEST(HostCollectionTest, ACountedCollectionThatFailsDeliversWhatStandsBefore) {
    for (const long failsAt : {1L, 2L}) {
        Counted object(1, {L"x", L"y", L"z"});
        object.FailsAt = failsAt;
        std::wstring seen;
        EXPECT_EQ(9, NumberOf([&] {
                      Of(&object).ForEach([&seen](const Variant& item) {
                          seen += item.ToText();
                          return true;
                      });
                  }));
        EXPECT_EQ(failsAt == 1 ? L"x" : L"xy", seen);
    }
}

TEST(HostCollectionTest, AnEnumeratorComesBeforeCounting) {
    Counted object(1, {L"x"});
    FakeEnumerator enumerator;
    enumerator.Items = {Variant(L"enumerated")};
    const auto counted = object.OnInvoke;
    object.OnInvoke = [&](DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result,
                          EXCEPINFO* exception) -> HRESULT {
        if (id != DISPID_NEWENUM) return counted(id, flags, parameters, result, exception);
        enumerator.AddRef();
        result->vt = VT_UNKNOWN;
        result->punkVal = &enumerator;
        return S_OK;
    };
    EXPECT_EQ(L"enumerated|", Joined(Of(&object)));
}

TEST(HostCollectionTest, AnObjectWithoutAnEnumeratorIsCountedHoweverItSaysSo) {
    FakeDispatch noEnumerator;
    const std::function<HRESULT(VARIANT*, EXCEPINFO*)> ways[] = {
        [](VARIANT*, EXCEPINFO*) -> HRESULT { return DISP_E_MEMBERNOTFOUND; },
        [](VARIANT*, EXCEPINFO*) -> HRESULT { return E_NOTIMPL; },
        [](VARIANT*, EXCEPINFO* exception) -> HRESULT {
            exception->wCode = 438;
            return DISP_E_EXCEPTION;
        },
        [](VARIANT* result, EXCEPINFO*) -> HRESULT {
            result->vt = VT_EMPTY;
            return S_OK;
        },
        [](VARIANT* result, EXCEPINFO*) -> HRESULT {
            result->vt = VT_DISPATCH;
            result->pdispVal = nullptr;
            return S_OK;
        },
        [&noEnumerator](VARIANT* result, EXCEPINFO*) -> HRESULT {
            noEnumerator.AddRef();
            result->vt = VT_DISPATCH;
            result->pdispVal = &noEnumerator;
            return S_OK;
        },
    };
    for (const auto& way : ways) {
        Counted object(1, {L"x"});
        const auto counted = object.OnInvoke;
        object.OnInvoke = [&](DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception) {
            return id == DISPID_NEWENUM ? way(result, exception) : counted(id, flags, parameters, result, exception);
        };
        EXPECT_EQ(L"x|", Joined(Of(&object)));
    }
}

TEST(HostCollectionTest, AFailureInAskingIsTheCollectionsOwn) {
    FakeDispatch object;
    object.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* exception) -> HRESULT {
        exception->scode = static_cast<SCODE>(0x80040001);
        exception->bstrSource = SysAllocString(L"brvADO");
        return DISP_E_EXCEPTION;
    };
    const RuntimeError error = ErrorOf([&object] { Of(&object); });
    EXPECT_EQ(-2147221503, error.Number);
    EXPECT_EQ(L"brvADO", error.Source);
}

TEST(HostCollectionTest, AnArrayIsNoCollection) {
    for (const Variant& array : {Variant::ArrayOf({Variant(1), Variant(2)}), Variant::ArrayOf({})}) {
        EXPECT_EQ(13, NumberOf([&array] { HostCollection collection(array); }));
    }
}

TEST(HostCollectionTest, AnEntryMayBeAnArray) {
    const auto joined = [](const Variant& entry) { return Joined(HostCollection::OrArray(entry)); };
    EXPECT_EQ(L"1|2|", joined(Variant::ArrayOf({Variant(1), Variant(2)})));
    EXPECT_EQ(L"1|2|", joined(Variant::ArrayOf({Variant(1), Variant(2)}, 7)));
    EXPECT_EQ(L"", joined(Variant::ArrayOf({})));
    Enumerated object;
    EXPECT_EQ(L"a|b|c|", joined(Variant(static_cast<IDispatch*>(&object))));
    EXPECT_EQ(13, NumberOf([] { HostCollection::OrArray(Variant(L"text")); }));
    SAFEARRAYBOUND bounds[2] = {{1, 0}, {1, 0}};
    Variant table;
    table.parray = SafeArrayCreate(VT_I4, 2, bounds);
    table.vt = VT_ARRAY | VT_I4;
    EXPECT_EQ(13, NumberOf([&table] { HostCollection::OrArray(table); }));
}

TEST(HostCollectionTest, ARealCollectionIsRead) {
    const Object dictionary = Object::Create(L"Scripting.Dictionary");
    dictionary.Call(L"Add", L"one", 1);
    dictionary.Call(L"Add", L"two", 2);
    EXPECT_EQ(L"one|two|", Joined(HostCollection(Variant(dictionary))));
    EXPECT_EQ(L"1|2|", Joined(HostCollection::OrArray(dictionary.Get(L"Items"))));
}

TEST(CollectionTest, KeepsOrderAndKeys) {
    Collection<std::wstring> collection;
    collection.Add(L"first", L"Alpha");
    collection.Add(L"second");
    collection.Add(L"third");
    EXPECT_EQ(3, collection.Count());
    EXPECT_EQ(L"first", collection.Item(1));
    EXPECT_EQ(L"third", collection.Item(3));
    EXPECT_EQ(L"first", collection.Item(std::wstring(L"ALPHA")));
    std::wstring all;
    for (const std::wstring& item : collection) all += item + L"|";
    EXPECT_EQ(L"first|second|third|", all);
}

TEST(CollectionTest, WrongPositionsAndKeysAreErrors) {
    Collection<int> collection;
    collection.Add(1, L"\x00E4");
    EXPECT_EQ(9, NumberOf([&] { collection.Item(0); }));
    EXPECT_EQ(9, NumberOf([&] { collection.Item(2); }));
    EXPECT_EQ(5, NumberOf([&] { collection.Item(std::wstring(L"none")); }));
    EXPECT_EQ(5, NumberOf([&] { collection.Item(std::wstring()); }));
    EXPECT_EQ(457, NumberOf([&] { collection.Add(2, L"\x00C4"); }));
    EXPECT_EQ(1, collection.Count()) << "what was refused is not in it";
}
