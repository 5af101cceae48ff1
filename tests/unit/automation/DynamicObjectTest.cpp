#include "automation/DynamicObject.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "FakeDispatch.h"
#include "automation/App.h"
#include "automation/HostCollection.h"

namespace {

// What a member is called with, for tests of Arguments.
struct Passed {
    explicit Passed(std::vector<VARIANT> inOrder) : Reversed(inOrder.rbegin(), inOrder.rend()) {
        Parameters.rgvarg = Reversed.data();
        Parameters.cArgs = static_cast<UINT>(Reversed.size());
    }
    std::vector<VARIANT> Reversed;
    DISPPARAMS Parameters{};
};

VARIANT Number(LONG value) {
    VARIANT raw;
    VariantInit(&raw);
    raw.vt = VT_I4;
    raw.lVal = value;
    return raw;
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
    auto* writable = const_cast<LPOLESTR>(name);
    DISPID id = 0;
    return SUCCEEDED(object->GetIDsOfNames(IID_NULL, &writable, 1, LOCALE_USER_DEFAULT, &id)) ? id : 0;
}

}  // namespace

TEST(ArgumentsTest, ComeInTheirNaturalOrder) {
    Passed passed({Number(1), Number(2), Number(3)});
    const Arguments arguments(passed.Parameters);
    EXPECT_EQ(3u, arguments.Count());
    EXPECT_EQ(1, arguments[0].ToLong());
    EXPECT_EQ(3, arguments[2].ToLong());
    EXPECT_TRUE(arguments[3].IsMissing());
    EXPECT_EQ(nullptr, arguments.Raw(3));
    EXPECT_FALSE(arguments.Has(3));
    EXPECT_TRUE(arguments.Has(2));
    EXPECT_EQ(2, arguments.Raw(1)->lVal);
}

TEST(ArgumentsTest, OneThatWasLeftOutIsMissing) {
    VARIANT missing = Raw(VT_ERROR, nullptr);
    missing.scode = DISP_E_PARAMNOTFOUND;
    VARIANT other = missing;
    other.scode = E_FAIL;
    Passed passed({missing, other});
    const Arguments arguments(passed.Parameters);
    EXPECT_TRUE(arguments[0].IsMissing());
    EXPECT_FALSE(arguments.Has(0));
    EXPECT_TRUE(arguments.Has(1));
}

TEST(ArgumentsTest, ReferencesAreReadAndWritten) {
    BSTR text = SysAllocString(L"before");
    LONG number = 1;
    SHORT integer = 2;
    VARIANT_BOOL flag = VARIANT_FALSE;
    double real = 0.5;
    BYTE byte = 3;
    IDispatch* object = nullptr;
    VARIANT variant = Number(4);
    DATE date = 0;
    Passed passed({Raw(VT_BYREF | VT_BSTR, &text), Raw(VT_BYREF | VT_I4, &number), Raw(VT_BYREF | VT_I2, &integer),
                   Raw(VT_BYREF | VT_BOOL, &flag), Raw(VT_BYREF | VT_R8, &real), Raw(VT_BYREF | VT_UI1, &byte),
                   Raw(VT_BYREF | VT_DISPATCH, &object), Raw(VT_BYREF | VT_VARIANT, &variant),
                   Raw(VT_BYREF | VT_DATE, &date)});
    const Arguments arguments(passed.Parameters);
    EXPECT_EQ(L"before", arguments[0].ToText());
    EXPECT_EQ(4, arguments[7].ToLong());
    FakeDispatch given;
    EXPECT_TRUE(arguments.Let(0, Variant(L"after")));
    EXPECT_TRUE(arguments.Let(1, Variant(L"11"))) << "converted to the variable's type";
    EXPECT_TRUE(arguments.Let(2, Variant(12)));
    EXPECT_TRUE(arguments.Let(3, Variant(1)));
    EXPECT_TRUE(arguments.Let(4, Variant(L"1.5")));
    EXPECT_TRUE(arguments.Let(5, Variant(200)));
    EXPECT_TRUE(arguments.Let(6, Variant(&given)));
    EXPECT_TRUE(arguments.Let(7, Variant(L"text")));
    EXPECT_TRUE(arguments.Let(8, Variant(2.0)));
    EXPECT_STREQ(L"after", text);
    EXPECT_EQ(11, number);
    EXPECT_EQ(12, integer);
    EXPECT_EQ(VARIANT_TRUE, flag);
    EXPECT_EQ(1.5, real);
    EXPECT_EQ(200, byte);
    EXPECT_EQ(&given, object);
    EXPECT_STREQ(L"text", variant.bstrVal);
    EXPECT_EQ(2.0, date);
    SysFreeString(text);
    VariantClear(&variant);
    object->Release();
}

TEST(ArgumentsTest, AVariableThatIsAReferenceItselfIsWrittenThrough) {
    BSTR text = SysAllocString(L"before");
    VARIANT inner = Raw(VT_BYREF | VT_BSTR, &text);
    Passed passed({Raw(VT_BYREF | VT_VARIANT, &inner)});
    const Arguments arguments(passed.Parameters);
    EXPECT_TRUE(arguments.Let(0, Variant(L"after")));
    EXPECT_STREQ(L"after", text);
    SysFreeString(text);
}

TEST(ArgumentsTest, WhatIsNoReferenceIsLeftAlone) {
    VARIANT self = Raw(VT_BYREF | VT_VARIANT, nullptr);
    self.pvarVal = &self;
    Passed passed({Number(1), Raw(VT_BYREF | VT_I4, nullptr), self});
    const Arguments arguments(passed.Parameters);
    EXPECT_FALSE(arguments.Let(0, Variant(2)));
    EXPECT_EQ(1, arguments[0].ToLong());
    EXPECT_FALSE(arguments.Let(1, Variant(2)));
    EXPECT_FALSE(arguments.Let(2, Variant(2)));
    EXPECT_FALSE(arguments.Let(3, Variant(2)));
}

TEST(ArgumentsTest, WhatDoesNotFitTheVariableIsAnErrorAndLeavesIt) {
    LONG number = 1;
    Passed passed({Raw(VT_BYREF | VT_I4, &number)});
    const Arguments arguments(passed.Parameters);
    EXPECT_EQ(13, NumberOf([&arguments] { arguments.Let(0, Variant(L"x")); }));
    EXPECT_EQ(6, NumberOf([&arguments] { arguments.Let(0, Variant(1e12)); }));
    EXPECT_EQ(1, number);
}

TEST(DynamicObjectTest, MembersAreFoundWithoutRegardToCase) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    made->Define(L"Sum",
                 [](const Arguments& arguments) { return Variant(arguments[0].ToLong() + arguments[1].ToLong()); });
    EXPECT_EQ(5, object.Get(L"Sum", 2, 3).ToLong());
    EXPECT_EQ(5, object.Call(L"SUM", 2, 3).ToLong());
    EXPECT_TRUE(object.Has(L"sum"));
    EXPECT_FALSE(object.Has(L"other"));
    EXPECT_EQ(438, NumberOf([&object] { object.Get(L"other"); }));
}

TEST(DynamicObjectTest, PropertiesAreReadAndWritten) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    std::wstring text = L"before";
    made->Define(L"Text", [&text](const Arguments&) { return Variant(text); });
    made->DefineLet(L"text", [&text](const Variant& value) { text = value.ToText(); });
    made->Define(L"Fixed", [](const Arguments&) { return Variant(1); });
    made->DefineLet(L"Sink", [](const Variant&) {});
    object.Let(L"Text", Variant(L"after"));
    EXPECT_EQ(L"after", object.Get(L"Text").ToText());
    EXPECT_EQ(438, NumberOf([&object] { object.Let(L"Fixed", Variant(2)); }));
    EXPECT_EQ(438, NumberOf([&object] { object.Get(L"Sink"); }));
    EXPECT_EQ(94, NumberOf([&object] { object.Let(L"Text", Variant::Null()); }));
}

TEST(DynamicObjectTest, AnObjectIsWrittenByReference) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    Variant kept;
    made->DefineLet(L"Kept", [&kept](const Variant& value) { kept = value; });
    FakeDispatch other;
    object.Let(L"Kept", Variant(&other));
    EXPECT_EQ(&other, kept.pdispVal);
    kept = Variant();
}

TEST(DynamicObjectTest, TheDefaultMemberIsTheObjectsValue) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    EXPECT_EQ(438, NumberOf([&object] { object.Value(); }));
    made->DefineDefault([](const Arguments&) { return Variant(L"value"); });
    EXPECT_EQ(L"value", Variant(object).ToText());
    EXPECT_FALSE(object.Has(L"")) << "it has no name";
}

TEST(DynamicObjectTest, ExceptionsOfAMemberReachTheCaller) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    made->Define(L"Raises", [](const Arguments&) -> Variant { RaiseError(-2147221503, L"brvADO", L"gone"); });
    made->Define(L"Throws", [](const Arguments&) -> Variant { throw std::runtime_error("no"); });
    made->Define(L"Fills", [](const Arguments&) -> Variant { throw std::bad_alloc(); });
    const RuntimeError error = ErrorOf([&object] { object.Get(L"Raises"); });
    EXPECT_EQ(-2147221503, error.Number);
    EXPECT_EQ(L"brvADO", error.Source);
    EXPECT_EQ(L"gone", error.Description);
    EXPECT_EQ(440, NumberOf([&object] { object.Get(L"Throws"); }));
    EXPECT_EQ(7, NumberOf([&object] { object.Get(L"Fills"); }));
}

TEST(DynamicObjectTest, WithoutAnExceptionToFillTheErrorIsOnTheThread) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    made->Define(L"Raises", [](const Arguments&) -> Variant { RaiseError(-2147221503, L"brvADO", L"gone"); });
    DISPPARAMS none{};
    const HRESULT result =
        made->Invoke(IdOf(made, L"Raises"), IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
    EXPECT_EQ(static_cast<HRESULT>(0x80040001), result);
    EXPECT_EQ(L"gone", ErrorOf([result] { CheckHresult(result); }).Description);
}

TEST(DynamicObjectTest, WrongCallsAreRefused) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    made->Define(L"Member", [](const Arguments& arguments) { return arguments[0]; });
    made->DefineLet(L"Member", [](const Variant&) {});
    const DISPID id = IdOf(made, L"Member");
    DISPPARAMS none{};
    EXPECT_EQ(E_POINTER, made->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, made->Invoke(99, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, made->Invoke(-77, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT,
              made->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(S_OK, made->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr))
        << "no result wanted";
    DISPPARAMS nowhere{nullptr, nullptr, 2, 0};
    EXPECT_EQ(E_POINTER, made->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &nowhere, nullptr, nullptr, nullptr));
    LPOLESTR names[2] = {const_cast<LPOLESTR>(L"Member"), const_cast<LPOLESTR>(L"argument")};
    DISPID ids[2] = {5, 5};
    EXPECT_EQ(DISP_E_UNKNOWNNAME, made->GetIDsOfNames(IID_NULL, names, 2, 0, ids));
    EXPECT_EQ(id, ids[0]);
    EXPECT_EQ(DISPID_UNKNOWN, ids[1]);
    UINT count = 9;
    EXPECT_EQ(S_OK, made->GetTypeInfoCount(&count));
    EXPECT_EQ(0u, count);
}

TEST(DynamicObjectTest, AMemberMayLetGoOfTheObject) {
    ASSERT_TRUE(Server::CanUnload()) << "something was left over by another test";
    auto* made = new DynamicObject;
    Object object = Object::Attach(made);
    auto watched = std::make_shared<int>(5);
    const std::weak_ptr<int> alive = watched;
    made->Define(L"Leave", [&object, watched](const Arguments&) {
        object.Clear();
        EXPECT_FALSE(Server::CanUnload()) << "the code that runs here is still needed";
        return Variant(*watched);
    });
    watched.reset();
    made->AddRef();
    DISPPARAMS none{};
    const DISPID id = IdOf(made, L"Leave");
    made->Release();  // the variable holds the last reference now
    Variant result;
    EXPECT_EQ(S_OK, made->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, result.Receive(), nullptr, nullptr));
    EXPECT_EQ(5, result.ToLong());
    EXPECT_TRUE(alive.expired()) << "and goes when the member is done";
}

TEST(DynamicObjectTest, AMemberMayDefineOthers) {
    auto* made = new DynamicObject;
    const Object object = Object::Attach(made);
    const std::wstring kept = L"a text that is long enough to live elsewhere";
    made->Define(L"Grow", [made, kept](const Arguments&) {
        for (int at = 0; at < 100; ++at)
            made->Define(L"M" + std::to_wstring(at), [](const Arguments&) { return Variant(); });
        return Variant(kept);
    });
    EXPECT_EQ(kept, object.Get(L"Grow").ToText());
}

TEST(DynamicObjectTest, KeepsTheModule) {
    const bool before = Server::CanUnload();
    {
        const Object object = Object::Attach(new DynamicObject);
        EXPECT_FALSE(Server::CanUnload());
    }
    EXPECT_EQ(before, Server::CanUnload());
    EXPECT_TRUE(before) << "something was left over by another test";
}

TEST(MakeCollectionTest, IsReadInEveryWay) {
    const Object collection = MakeCollection({Variant(L"a"), Variant(2)});
    EXPECT_EQ(2, collection.Get(L"Count").ToLong());
    EXPECT_EQ(L"a", collection.Get(L"Item", 1).ToText());
    EXPECT_EQ(2, collection.Get(L"Item", L"2").ToLong());
    EXPECT_EQ(9, NumberOf([&collection] { collection.Get(L"Item", 0); }));
    EXPECT_EQ(9, NumberOf([&collection] { collection.Get(L"Item", 3); }));
    EXPECT_NE(0, NumberOf([&collection] { collection.Get(L"Item"); }));
    std::wstring all;
    const HostCollection host{Variant(collection)};
    for (int pass = 0; pass < 2; ++pass) {
        host.ForEach([&all](const Variant& item) {
            all += item.ToText() + L"|";
            return true;
        });
    }
    EXPECT_EQ(L"a|2|a|2|", all);
}

TEST(MakeCollectionTest, TheEnumeratorKeepsItsContract) {
    const Object collection = MakeCollection({Variant(1), Variant(2), Variant(3)});
    DISPPARAMS none{};
    Variant result;
    ASSERT_EQ(S_OK, collection.Dispatch()->Invoke(DISPID_NEWENUM, IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                                                  result.Receive(), nullptr, nullptr));
    ASSERT_EQ(VT_UNKNOWN, result.vt);
    IEnumVARIANT* items = nullptr;
    ASSERT_EQ(S_OK, result.punkVal->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&items)));
    VARIANT got[4];
    ULONG fetched = 9;
    EXPECT_EQ(S_OK, items->Next(2, got, &fetched));
    EXPECT_EQ(2u, fetched);
    EXPECT_EQ(2, got[1].lVal);
    IEnumVARIANT* clone = nullptr;
    ASSERT_EQ(S_OK, items->Clone(&clone));
    EXPECT_EQ(S_FALSE, items->Next(4, got, &fetched));
    EXPECT_EQ(1u, fetched);
    EXPECT_EQ(3, got[0].lVal);
    EXPECT_EQ(S_FALSE, items->Next(1, got, nullptr));
    EXPECT_EQ(S_OK, items->Reset());
    EXPECT_EQ(S_OK, items->Skip(2));
    EXPECT_EQ(S_OK, items->Next(1, got, nullptr));
    EXPECT_EQ(3, got[0].lVal);
    EXPECT_EQ(S_FALSE, items->Skip(1));
    EXPECT_EQ(S_OK, items->Reset());
    EXPECT_EQ(S_OK, items->Skip(3)) << "all that there are";
    EXPECT_EQ(S_OK, items->Skip(0));
    EXPECT_EQ(S_FALSE, items->Next(1, got, nullptr));
    EXPECT_EQ(S_OK, clone->Next(1, got, &fetched)) << "a clone stands where the original stood";
    EXPECT_EQ(3, got[0].lVal);
    clone->Release();
    items->Release();
}
