#include "automation/Variant.h"

#include <gtest/gtest.h>

#include <climits>

#include "automation/App.h"
#include "automation/Object.h"
#include "FakeDispatch.h"

namespace {

// An array of a plain element type, counted from `lower`.
template <class T>
Variant Array(VARTYPE type, const std::vector<T>& items, long lower = 0) {
    SAFEARRAYBOUND bound{static_cast<ULONG>(items.size()), lower};
    Variant made;
    made.parray = SafeArrayCreate(type, 1, &bound);
    made.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    for (size_t at = 0; at < items.size(); ++at) {
        auto index = static_cast<LONG>(lower + static_cast<long>(at));
        EXPECT_EQ(S_OK, SafeArrayPutElement(made.parray, &index, const_cast<T*>(&items[at])));
    }
    return made;
}

}  // namespace

TEST(VariantTest, TextsOfPlainValues) {
    EXPECT_EQ(L"", Variant().ToText());
    EXPECT_EQ(L"12", Variant(12).ToText());
    EXPECT_EQ(L"-7", Variant(static_cast<short>(-7)).ToText());
    EXPECT_EQ(L"1.5", Variant(1.5).ToText());
    EXPECT_EQ(L"True", Variant(true).ToText());
    EXPECT_EQ(L"False", Variant(false).ToText());
    EXPECT_EQ(L"text", Variant(L"text").ToText());
}

TEST(VariantTest, TextsKeepNulCharactersAndLoneSurrogates) {
    const std::wstring text(L"a\0b\xD800", 4);
    EXPECT_EQ(text, Variant(text).ToText());
    VARIANT null = Raw(VT_BSTR, nullptr);
    EXPECT_EQ(L"", Variant(null).ToText());
    EXPECT_EQ(L"", TextOf(nullptr));
}

TEST(VariantTest, NumbersRoundHalvesToEven) {
    EXPECT_EQ(2, Variant(2.5).ToLong());
    EXPECT_EQ(4, Variant(3.5).ToLong());
    EXPECT_EQ(-2, Variant(-2.5).ToLong());
    EXPECT_EQ(2, Variant(L"2.5").ToLong());
    EXPECT_EQ(0, Variant().ToLong());
    EXPECT_EQ(-1, Variant(true).ToLong());
    EXPECT_EQ(LONG_MIN, Variant(-2147483648.0).ToLong());
    EXPECT_DOUBLE_EQ(0.25, Variant(L"0.25").ToDouble());
}

TEST(VariantTest, NumbersThatDoNotFitOverflow) {
    EXPECT_EQ(6, NumberOf([] { Variant(2147483648.0).ToLong(); }));
    EXPECT_EQ(6, NumberOf([] { Variant(L"99999999999").ToLong(); }));
    EXPECT_EQ(6, NumberOf([] { Variant(40000).ToInteger(); }));
    EXPECT_EQ(-32768, Variant(-32768).ToInteger());
}

TEST(VariantTest, BooleansReadWordsAndNumbers) {
    EXPECT_TRUE(Variant(2).ToBoolean());
    EXPECT_FALSE(Variant(0).ToBoolean());
    EXPECT_TRUE(Variant(L"True").ToBoolean());
    EXPECT_FALSE(Variant(L"0").ToBoolean());
    EXPECT_FALSE(Variant().ToBoolean());
    EXPECT_EQ(13, NumberOf([] { Variant(L"perhaps").ToBoolean(); }));
    EXPECT_EQ(13, NumberOf([] { Variant(L"").ToBoolean(); }));
}

TEST(VariantTest, WhatHasNoValueIsAnErrorOfItsOwn) {
    EXPECT_EQ(94, NumberOf([] { Variant::Null().ToText(); }));
    EXPECT_EQ(94, NumberOf([] { Variant::Null().ToLong(); }));
    EXPECT_EQ(94, NumberOf([] { Variant::Null().ToBoolean(); }));
    EXPECT_EQ(91, NumberOf([] { Variant::Nothing().ToText(); }));
    EXPECT_EQ(13, NumberOf([] { Variant::Missing().ToText(); }));
    EXPECT_EQ(13, NumberOf([] { Variant::ArrayOf({Variant(1)}).ToLong(); }));
    EXPECT_EQ(13, NumberOf([] { Variant(L"x").ToLong(); }));
    EXPECT_EQ(13, NumberOf([] { Variant(L"").ToLong(); }));
}

TEST(VariantTest, AFailedConversionIsOurs) {
    LeaveErrorInfo(L"somebody else");
    const RuntimeError error = ErrorOf([] { Variant(L"x").ToLong(); });
    EXPECT_EQ(App::Title, error.Source);
    EXPECT_EQ(L"Type mismatch", error.Description);
    SetErrorInfo(0, nullptr);
}

TEST(VariantTest, AnObjectReadsAsItsDefaultMember) {
    FakeDispatch object;
    object.OnInvoke = [](DISPID id, WORD, DISPPARAMS&, VARIANT* result, EXCEPINFO*) -> HRESULT {
        if (id != DISPID_VALUE) return DISP_E_MEMBERNOTFOUND;
        result->vt = VT_I4;
        result->lVal = 42;
        return S_OK;
    };
    EXPECT_EQ(42, Variant(&object).ToLong());
    EXPECT_EQ(L"42", Variant(&object).ToText());
    object.OnInvoke = nullptr;
    EXPECT_EQ(438, NumberOf([&object] { Variant(&object).ToText(); }));
}

TEST(VariantTest, ReferencesAreLookedThrough) {
    LONG number = 5;
    EXPECT_EQ(VT_I4, Variant(Raw(VT_BYREF | VT_I4, &number)).vt);
    EXPECT_EQ(5, Variant(Raw(VT_BYREF | VT_I4, &number)).ToLong());
    BSTR text = SysAllocString(L"text");
    EXPECT_EQ(L"text", Variant(Raw(VT_BYREF | VT_BSTR, &text)).ToText());
    VARIANT inner = Raw(VT_BYREF | VT_BSTR, &text);
    EXPECT_EQ(L"text", Variant(Raw(VT_BYREF | VT_VARIANT, &inner)).ToText());
    EXPECT_EQ(VT_BSTR, Variant(Raw(VT_BYREF | VT_VARIANT, &inner)).vt);
    SysFreeString(text);
}

TEST(VariantTest, AReferenceToNowhereIsATypeMismatch) {
    for (const VARTYPE type : {VT_I4, VT_BSTR, VT_VARIANT, VT_DISPATCH, VT_DECIMAL}) {
        const VARIANT raw = Raw(static_cast<VARTYPE>(VT_BYREF | type), nullptr);
        EXPECT_EQ(13, NumberOf([&raw] { Variant copy(raw); })) << type;
    }
    VARIANT inner = Raw(VT_BYREF | VT_I4, nullptr);
    const VARIANT outer = Raw(VT_BYREF | VT_VARIANT, &inner);
    EXPECT_EQ(13, NumberOf([&outer] { Variant copy(outer); }));
}

TEST(VariantTest, AReferenceToItselfIsAnError) {
    VARIANT self = Raw(VT_BYREF | VT_VARIANT, nullptr);
    self.pvarVal = &self;
    EXPECT_NE(0, NumberOf([&self] { Variant copy(self); }));
}

TEST(VariantTest, CopiesAndMovesKeepTheCount) {
    FakeDispatch object;
    {
        Variant first(&object);
        EXPECT_EQ(2u, object.References);
        Variant second(first);
        EXPECT_EQ(3u, object.References);
        Variant third(std::move(first));
        EXPECT_EQ(3u, object.References);
        EXPECT_TRUE(first.IsEmpty());
        const Variant& alias = third;
        third = alias;
        EXPECT_EQ(3u, object.References);
        third = Variant(1);
        EXPECT_EQ(2u, object.References);
        second.Receive();
        EXPECT_EQ(1u, object.References);
        EXPECT_TRUE(second.IsEmpty());
    }
    EXPECT_EQ(1u, object.References);
}

TEST(VariantTest, WhatALastReferenceDoesMeetsTheNewValue) {
    struct Tells : FakeDispatch {
        Variant* Watched = nullptr;
        long Seen = 0;
        ULONG STDMETHODCALLTYPE Release() override {
            const ULONG left = FakeDispatch::Release();
            if (left == 1 && Watched != nullptr) Seen = Watched->vt == VT_I4 ? Watched->lVal : -1;
            return left;
        }
    } object;
    Variant variable(&object);
    object.Watched = &variable;
    variable = Variant(6);
    EXPECT_EQ(6, object.Seen);
}

TEST(VariantTest, KindsAreTold) {
    EXPECT_EQ(VT_EMPTY, Variant().vt);
    EXPECT_EQ(VT_NULL, Variant::Null().vt);
    EXPECT_EQ(VT_BOOL, Variant(true).vt);
    EXPECT_EQ(VARIANT_TRUE, Variant(true).boolVal);
    EXPECT_EQ(VT_I2, Variant(static_cast<short>(1)).vt);
    EXPECT_EQ(VT_I4, Variant(1).vt);
    EXPECT_EQ(VT_I4, Variant(1L).vt);
    EXPECT_EQ(VT_R8, Variant(1.0).vt);
    EXPECT_EQ(VT_BSTR, Variant(L"").vt);
    EXPECT_EQ(VT_DISPATCH, Variant::Nothing().vt);
    EXPECT_EQ(VT_ERROR, Variant::Missing().vt);
    EXPECT_EQ(VT_ARRAY | VT_VARIANT, Variant::ArrayOf({}).vt);
    for (const Variant& other : {Variant(), Variant::Null(), Variant(1), Variant(L"x"), Variant::Missing()}) {
        EXPECT_FALSE(other.IsObject()) << other.vt;
        EXPECT_FALSE(other.IsArray()) << other.vt;
        EXPECT_EQ(other.vt == VT_EMPTY, other.IsEmpty());
        EXPECT_EQ(other.vt == VT_NULL, other.IsNull());
        EXPECT_EQ(other.vt == VT_ERROR, other.IsMissing());
    }
    EXPECT_TRUE(Variant().IsEmpty());
    EXPECT_TRUE(Variant::Null().IsNull());
    EXPECT_TRUE(Variant::Missing().IsMissing());
    EXPECT_TRUE(Variant::Nothing().IsObject());
    EXPECT_TRUE(Variant::Nothing().IsNothing());
    EXPECT_FALSE(Variant().IsNothing());
    EXPECT_FALSE(Variant().IsMissing());
    EXPECT_TRUE(Variant::ArrayOf({}).IsArray());
    Variant other;
    other.vt = VT_ERROR;
    other.scode = E_FAIL;
    EXPECT_FALSE(other.IsMissing());
}

TEST(VariantTest, IsNumericAsHostsTellIt) {
    for (const Variant& yes :
         {Variant(), Variant(1), Variant(1.5), Variant(true), Variant(L"12"), Variant(L" -1.5 "), Variant(L"1e3")}) {
        EXPECT_TRUE(yes.IsNumeric()) << yes.vt;
    }
    for (const Variant& no : {Variant(L""), Variant(L"x"), Variant(L"1x"), Variant::Null(), Variant::Nothing(),
                              Variant::Missing(), Variant::ArrayOf({})}) {
        EXPECT_FALSE(no.IsNumeric()) << no.vt;
    }
    Variant date;
    date.vt = VT_DATE;
    date.date = 1;
    EXPECT_FALSE(date.IsNumeric());
}

TEST(VariantTest, ObjectsAreTakenOut) {
    FakeDispatch object;
    EXPECT_EQ(&object, Variant(&object).ToObject().Dispatch());
    VARIANT unknown = Raw(VT_UNKNOWN, static_cast<IUnknown*>(&object));
    EXPECT_EQ(&object, Variant(unknown).ToObject().Dispatch());
    EXPECT_FALSE(Variant::Nothing().ToObject());
    EXPECT_EQ(13, NumberOf([] { Variant().ToObject(); }));
    EXPECT_EQ(13, NumberOf([] { Variant::Null().ToObject(); }));
    EXPECT_EQ(424, NumberOf([] { Variant(1).ToObject(); }));
    EXPECT_EQ(424, NumberOf([] { Variant(L"x").ToObject(); }));
    struct Mute : FakeDispatch {
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** found) override {
            *found = nullptr;
            return E_NOINTERFACE;
        }
    } mute;
    VARIANT raw = Raw(VT_UNKNOWN, static_cast<IUnknown*>(&mute));
    EXPECT_EQ(430, NumberOf([&raw] { Variant(raw).ToObject(); }));
}

TEST(VariantTest, ArraysOfAnyElementTypeAndBound) {
    const auto texts = [](const Variant& array) {
        std::wstring joined;
        for (const Variant& item : array.ToArray()) joined += item.ToText() + L"|";
        return joined;
    };
    EXPECT_EQ(L"1|two|", texts(Variant::ArrayOf({Variant(1), Variant(L"two")})));
    EXPECT_EQ(L"1|two|", texts(Variant::ArrayOf({Variant(1), Variant(L"two")}, -3)));
    EXPECT_EQ(L"1|2|3|", texts(Array<short>(VT_I2, {1, 2, 3}, 5)));
    EXPECT_EQ(L"7|8|", texts(Array<long>(VT_I4, {7, 8})));
    EXPECT_EQ(L"255|", texts(Array<BYTE>(VT_UI1, {255})));
    EXPECT_EQ(L"0.5|", texts(Array<double>(VT_R8, {0.5})));
    EXPECT_EQ(L"True|False|", texts(Array<VARIANT_BOOL>(VT_BOOL, {VARIANT_TRUE, VARIANT_FALSE})));
    CY money{};
    money.int64 = 12500;
    EXPECT_EQ(L"1.25|", texts(Array<CY>(VT_CY, {money})));
    DECIMAL decimal{};
    ASSERT_EQ(S_OK, VarDecFromI4(-9, &decimal));
    EXPECT_EQ(L"-9|", texts(Array<DECIMAL>(VT_DECIMAL, {decimal})));
    EXPECT_EQ(L"", texts(Variant::ArrayOf({})));

    SAFEARRAYBOUND bound{2, 1};
    Variant strings;
    strings.parray = SafeArrayCreate(VT_BSTR, 1, &bound);
    strings.vt = VT_ARRAY | VT_BSTR;
    LONG at = 2;
    const BSTR text = SysAllocString(L"b");
    ASSERT_EQ(S_OK, SafeArrayPutElement(strings.parray, &at, text));
    SysFreeString(text);
    EXPECT_EQ(L"|b|", texts(strings)) << "an element that was never set is a null string";
}

TEST(VariantTest, ArraysOfObjectsCountTheirReferences) {
    FakeDispatch object;
    SAFEARRAYBOUND bound{1, 0};
    Variant array;
    array.parray = SafeArrayCreate(VT_DISPATCH, 1, &bound);
    array.vt = VT_ARRAY | VT_DISPATCH;
    LONG at = 0;
    ASSERT_EQ(S_OK, SafeArrayPutElement(array.parray, &at, static_cast<IDispatch*>(&object)));
    EXPECT_EQ(&object, array.ToArray().at(0).pdispVal);
    array = Variant();
    EXPECT_EQ(1u, object.References);
}

TEST(VariantTest, AnArrayAtTheEndOfAllIndexesIsReadOnce) {
    Variant array = Array<long>(VT_I4, {1, 2});
    array.parray->rgsabound[0].lLbound = LONG_MAX - 1;
    EXPECT_EQ(2u, array.ToArray().size());
    array.parray->rgsabound[0].lLbound = LONG_MIN;
    EXPECT_EQ(2u, array.ToArray().size());
}

TEST(VariantTest, ArraysThatAreNoListAreATypeMismatch) {
    EXPECT_EQ(13, NumberOf([] { Variant(1).ToArray(); }));
    EXPECT_EQ(13, NumberOf([] { Variant().ToArray(); }));
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    Variant table;
    table.parray = SafeArrayCreate(VT_I4, 2, bounds);
    table.vt = VT_ARRAY | VT_I4;
    EXPECT_EQ(13, NumberOf([&table] { table.ToArray(); }));
    Variant none;
    none.vt = VT_ARRAY | VT_I4;
    none.parray = nullptr;
    EXPECT_EQ(13, NumberOf([&none] { none.ToArray(); }));
}

TEST(VariantTest, AnArrayThatLiesAboutItsElementsIsATypeMismatch) {
    Variant lie = Array<DECIMAL>(VT_DECIMAL, {DECIMAL{}});
    lie.vt = VT_ARRAY | VT_I4;  // sixteen bytes would go where four have room
    EXPECT_EQ(13, NumberOf([&lie] { lie.ToArray(); }));
    Variant unread = Array<long>(VT_I4, {1});
    unread.vt = VT_ARRAY | VT_VARIANT;
    EXPECT_EQ(13, NumberOf([&unread] { unread.ToArray(); }));
    unread.vt = VT_ARRAY | VT_BSTR;  // a number would be taken for an address
    EXPECT_EQ(13, NumberOf([&unread] { unread.ToArray(); }));
    unread.vt = VT_ARRAY | VT_I4;
}

TEST(Variant, ADecimalThatIsNoneIsNoNumber) {
    for (const auto& [scale, sign] : {std::pair{29, 0}, {200, 0}, {0, 1}, {28, 0x81}}) {
        Variant value;
        value.decVal.Lo64 = 0xFFFF;
        value.decVal.Hi32 = 0;
        value.decVal.scale = static_cast<BYTE>(scale);
        value.decVal.sign = static_cast<BYTE>(sign);
        value.vt = VT_DECIMAL;
        EXPECT_FALSE(value.IsNumeric());
        EXPECT_EQ(ErrorNumber::InvalidProcedureCall, NumberOf([&] { value.ToText(); }));
        EXPECT_EQ(ErrorNumber::InvalidProcedureCall, NumberOf([&] { value.ToLong(); }));
        EXPECT_EQ(ErrorNumber::InvalidProcedureCall, NumberOf([&] { value.ToDouble(); }));
    }
}

TEST(VariantTest, EveryKindIsANumberOrNot) {
    const auto numeric = [](VARTYPE type) {
        Variant value;
        value.vt = type;  // of which all bytes are zero
        const bool is = value.IsNumeric();
        value.vt = VT_EMPTY;
        return is;
    };
    for (const VARTYPE type : {VT_EMPTY, VT_I1, VT_I2, VT_I4, VT_I8, VT_INT, VT_UI1, VT_UI2, VT_UI4, VT_UI8, VT_UINT,
                               VT_R4, VT_R8, VT_CY, VT_BOOL, VT_DECIMAL})
        EXPECT_TRUE(numeric(type)) << type;
    for (const VARTYPE type : {VT_NULL, VT_DATE, VT_BSTR, VT_DISPATCH, VT_ERROR, VT_UNKNOWN, VT_RECORD})
        EXPECT_FALSE(numeric(type)) << type;
    for (const BYTE sign : {BYTE{0}, BYTE{DECIMAL_NEG}}) {
        Variant value;
        value.decVal.Lo64 = 5;
        value.decVal.Hi32 = 0;
        value.decVal.scale = 28;
        value.decVal.sign = sign;
        value.vt = VT_DECIMAL;
        EXPECT_TRUE(value.IsNumeric());
        EXPECT_NE(0, value.ToDouble());
    }
}

TEST(VariantTest, ArraysOfEveryPlainTypeAreRead) {
    const struct {
        VARTYPE Type;
        UINT Size;
    } all[] = {{VT_I1, 1},   {VT_UI1, 1}, {VT_I2, 2}, {VT_UI2, 2}, {VT_BOOL, 2}, {VT_I4, 4},   {VT_UI4, 4}, {VT_INT, 4},
               {VT_UINT, 4}, {VT_R4, 4},  {VT_I8, 8}, {VT_UI8, 8}, {VT_R8, 8},   {VT_DATE, 8}, {VT_CY, 8}};
    for (const auto& one : all) {
        SAFEARRAYBOUND bound{2, 0};
        Variant array;
        array.parray = SafeArrayCreate(one.Type, 1, &bound);
        ASSERT_NE(nullptr, array.parray) << one.Type;
        array.vt = static_cast<VARTYPE>(VT_ARRAY | one.Type);
        // The second one is one as a whole number, and not zero as any other.
        static_cast<BYTE*>(array.parray->pvData)[one.Size] = 1;
        const std::vector<Variant> items = array.ToArray();
        ASSERT_EQ(2U, items.size()) << one.Type;
        for (const Variant& item : items) EXPECT_EQ(one.Type, item.vt);
        EXPECT_EQ(0, memcmp(&items[1].byref, static_cast<BYTE*>(array.parray->pvData) + one.Size, one.Size));
        EXPECT_EQ(1, items[1].bVal) << one.Type;
        EXPECT_EQ(0, items[0].bVal) << one.Type;
        // An array that names another type is refused unless the elements of that type have the same size.
        for (const auto& other : all) {
            array.vt = static_cast<VARTYPE>(VT_ARRAY | other.Type);
            EXPECT_EQ(other.Size == one.Size ? 0 : 13, NumberOf([&] { array.ToArray(); })) << one.Type << other.Type;
        }
        for (const VARTYPE owning : {VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_VARIANT, VT_EMPTY, VT_NULL, VT_RECORD}) {
            array.vt = static_cast<VARTYPE>(VT_ARRAY | owning);
            EXPECT_EQ(13, NumberOf([&] { array.ToArray(); })) << one.Type << owning;
        }
        array.vt = static_cast<VARTYPE>(VT_ARRAY | one.Type);
    }
}

TEST(VariantTest, ArraysOfWhatOwnsSomethingAreTakenForNothingElse) {
    const VARTYPE owning[] = {VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_VARIANT};
    const VARTYPE plain = sizeof(void*) == 8 ? VT_I8 : VT_I4;
    for (const VARTYPE made : owning) {
        SAFEARRAYBOUND bound{1, 0};
        Variant array;
        array.parray = SafeArrayCreate(made, 1, &bound);
        for (const VARTYPE said : {owning[0], owning[1], owning[2], owning[3], plain, VARTYPE{VT_DECIMAL}}) {
            array.vt = static_cast<VARTYPE>(VT_ARRAY | said);
            // Whoever asks for objects of any kind may be given those that can be called by name.
            const bool fits = said == made || (said == VT_UNKNOWN && made == VT_DISPATCH);
            EXPECT_EQ(fits ? 0 : 13, NumberOf([&] { array.ToArray(); })) << made << " as " << said;
        }
        array.vt = static_cast<VARTYPE>(VT_ARRAY | made);
    }
}

TEST(VariantTest, ReferencesToReferencesAreFollowedSoFar) {
    const auto nested = [](int depth) {
        std::vector<VARIANT> chain(static_cast<size_t>(depth) + 1);
        chain[0].vt = VT_I4;
        chain[0].lVal = 7;
        for (size_t at = 1; at < chain.size(); ++at) {
            chain[at].vt = VT_BYREF | VT_VARIANT;
            chain[at].pvarVal = &chain[at - 1];
        }
        return Variant(static_cast<const VARIANT&>(chain.back())).ToLong();
    };
    for (const int depth : {0, 1, 2, 8}) EXPECT_EQ(7, nested(depth)) << depth;
    EXPECT_EQ(ErrorNumber::TypeMismatch, NumberOf([&] { nested(9); }));
}

TEST(VariantTest, NothingOfEitherKindIsNoObject) {
    for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
        Variant nothing;
        nothing.punkVal = nullptr;
        nothing.vt = type;
        EXPECT_FALSE(nothing.ToObject()) << type;
    }
}
