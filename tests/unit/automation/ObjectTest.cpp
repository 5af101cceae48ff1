#include "automation/Object.h"

#include <gtest/gtest.h>

#include "automation/App.h"
#include "FakeDispatch.h"

namespace {

void Answer(VARIANT* result, const wchar_t* text) {
    result->vt = VT_BSTR;
    result->bstrVal = SysAllocString(text);
}

}  // namespace

TEST(ObjectTest, NothingIsError91) {
    const Object nothing;
    EXPECT_FALSE(nothing);
    EXPECT_EQ(91, NumberOf([&] { nothing.Get(L"Member"); }));
    EXPECT_EQ(91, NumberOf([&] { nothing.Call(L"Member", 1); }));
    EXPECT_EQ(91, NumberOf([&] { nothing.Let(L"Member", Variant(1)); }));
    EXPECT_FALSE(nothing.Has(L"Member"));
    EXPECT_FALSE(Object(nullptr));
    EXPECT_FALSE(Object::Attach(nullptr));
    EXPECT_EQ(nullptr, nothing.Dispatch());
}

TEST(ObjectTest, ReferencesAreCounted) {
    FakeDispatch fake;
    {
        Object object(&fake);
        EXPECT_EQ(2u, fake.References);
        Object copy = object;
        object.Clear();
        EXPECT_FALSE(object);
        EXPECT_EQ(2u, fake.References);
        fake.AddRef();
        const Object attached = Object::Attach(&fake);
        EXPECT_EQ(3u, fake.References);
    }
    EXPECT_EQ(1u, fake.References);
}

TEST(ObjectTest, ReadingAndCallingUseTheFlagsThatHostsUse) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID id, WORD, DISPPARAMS&, VARIANT* result, EXCEPINFO*) -> HRESULT {
        EXPECT_EQ(7, id);
        Answer(result, L"value");
        return S_OK;
    };
    const Object object(&fake);
    EXPECT_EQ(L"value", object.Get(L"Member").ToText());
    object.Call(L"Member");
    EXPECT_EQ((std::vector<WORD>{DISPATCH_METHOD | DISPATCH_PROPERTYGET, DISPATCH_METHOD}), fake.Flags);
}

TEST(ObjectTest, ArgumentsArriveInTheirNaturalOrder) {
    FakeDispatch fake;
    std::vector<std::wstring> seen;
    fake.OnInvoke = [&seen](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        EXPECT_EQ(0u, parameters.cNamedArgs);
        for (UINT at = parameters.cArgs; at-- > 0;) {
            seen.push_back(std::to_wstring(parameters.rgvarg[at].vt) + L":" +
                           (parameters.rgvarg[at].vt == VT_ERROR ? L"" : Variant(parameters.rgvarg[at]).ToText()));
        }
        return S_OK;
    };
    Object(&fake).Call(L"Member", L"one", 2, true, static_cast<short>(4), Variant(5.5), std::wstring(L"six"),
                       Variant::Missing());
    EXPECT_EQ((std::vector<std::wstring>{L"8:one", L"3:2", L"11:True", L"2:4", L"5:5.5", L"8:six", L"10:"}), seen);
}

TEST(ObjectTest, MissingStaysMissing) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        EXPECT_EQ(1u, parameters.cArgs);
        EXPECT_EQ(VT_ERROR, parameters.rgvarg[0].vt);
        EXPECT_EQ(DISP_E_PARAMNOTFOUND, parameters.rgvarg[0].scode);
        return S_OK;
    };
    Object(&fake).Get(L"Member", Variant::Missing());
    EXPECT_EQ(1, fake.Calls);
}

TEST(ObjectTest, AMemberIsLookedUpOnceForAllCopies) {
    FakeDispatch fake({{L"Member", 7}, {L"Other", 8}});
    std::vector<DISPID> ids;
    fake.OnInvoke = [&ids](DISPID id, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) -> HRESULT {
        ids.push_back(id);
        return S_OK;
    };
    const Object object(&fake);
    object.Get(L"Member");
    const Object copy = object;
    copy.Get(L"Member");
    copy.Call(L"Other");
    wchar_t spelled[] = L"Member";
    object.Get(spelled);
    // The same place may hold another name later: what counts are the letters.
    wcscpy(spelled, L"Other");
    object.Get(spelled);
    EXPECT_EQ(2, fake.LookUps);
    EXPECT_EQ((std::vector<DISPID>{7, 7, 8, 7, 8}), ids);
    EXPECT_EQ(static_cast<LCID>(LOCALE_USER_DEFAULT), fake.Locale);
}

TEST(ObjectTest, AnUnknownMemberIsError438AndIsAskedForAgain) {
    FakeDispatch fake;
    const Object object(&fake);
    EXPECT_EQ(438, NumberOf([&] { object.Get(L"Later"); }));
    EXPECT_EQ(0, fake.Calls);
    fake.Names[L"Later"] = 3;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) -> HRESULT { return S_OK; };
    object.Get(L"Later");
    EXPECT_EQ(1, fake.Calls);
    fake.LookUpResult = RPC_E_DISCONNECTED;
    EXPECT_EQ(462, NumberOf([&] { object.Get(L"Third"); }));
}

// It says that it has the other interface, and gives nothing.
TEST(ObjectTest, AnInterfaceThatIsSaidToBeThereAndIsNotIsAFailure) {
    struct Liar : FakeDispatch {
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
            if (iid == IID_IUnknown || iid == IID_IDispatch) return FakeDispatch::QueryInterface(iid, object);
            *object = nullptr;
            return S_OK;
        }
    } liar;
    liar.LookUpResult = E_NOTIMPL;
    const Object object(&liar);
    EXPECT_NE(0, NumberOf([&] { object.Get(L"Member"); }));
    EXPECT_NE(0, NumberOf([&] { object.Let(L"Member", Variant(1L)); }));
    EXPECT_FALSE(object.Has(L"Member"));
}

TEST(ObjectTest, HasAsksAndCallsNothing) {
    FakeDispatch fake;
    const Object object(&fake);
    EXPECT_TRUE(object.Has(L"Member"));
    EXPECT_FALSE(object.Has(L"Other"));
    EXPECT_EQ(0, fake.Calls);
}

TEST(ObjectTest, ByRefPassesTheVariablesOwnType) {
    FakeDispatch fake;
    std::vector<VARTYPE> types;
    FakeDispatch other;
    fake.OnInvoke = [&](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        for (UINT at = parameters.cArgs; at-- > 0;) types.push_back(parameters.rgvarg[at].vt);
        VARIANT* arguments = parameters.rgvarg;  // the last one first
        EXPECT_STREQ(L"before", *arguments[5].pbstrVal);
        EXPECT_EQ(1, *arguments[4].plVal);
        SysReAllocString(arguments[5].pbstrVal, L"a text that is longer than the one before");
        *arguments[4].plVal = 11;
        *arguments[3].piVal = 12;
        *arguments[2].pboolVal = VARIANT_TRUE;
        VariantClear(arguments[1].pvarVal);
        arguments[1].pvarVal->vt = VT_I4;
        arguments[1].pvarVal->lVal = 13;
        EXPECT_EQ(nullptr, *arguments[0].ppdispVal);
        other.AddRef();
        *arguments[0].ppdispVal = &other;
        return S_OK;
    };
    std::wstring text = L"before";
    long number = 1;
    short integer = 2;
    bool flag = false;
    Variant variant(L"x");
    Object object;
    Object(&fake).Call(L"Member", ByRef(text), ByRef(number), ByRef(integer), ByRef(flag), ByRef(variant),
                       ByRef(object));
    EXPECT_EQ((std::vector<VARTYPE>{VT_BYREF | VT_BSTR, VT_BYREF | VT_I4, VT_BYREF | VT_I2, VT_BYREF | VT_BOOL,
                                    VT_BYREF | VT_VARIANT, VT_BYREF | VT_DISPATCH}),
              types);
    EXPECT_EQ(L"a text that is longer than the one before", text);
    EXPECT_EQ(11, number);
    EXPECT_EQ(12, integer);
    EXPECT_TRUE(flag);
    EXPECT_EQ(13, variant.ToLong());
    EXPECT_EQ(&other, object.Dispatch());
}

TEST(ObjectTest, AReferenceIsWrittenOnlyWhenTheCallSucceeds) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        SysReAllocString(parameters.rgvarg[0].pbstrVal, L"half done");
        return E_FAIL;
    };
    std::wstring text = L"before";
    EXPECT_NE(0, NumberOf([&] { Object(&fake).Call(L"Member", ByRef(text)); }));
    EXPECT_EQ(L"before", text);
}

TEST(ObjectTest, AVariantKeepsNoReferenceIntoTheCallee) {
    FakeDispatch fake;
    LONG inside = 5;
    fake.OnInvoke = [&inside](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        parameters.rgvarg[0].pvarVal->vt = VT_BYREF | VT_I4;
        parameters.rgvarg[0].pvarVal->plVal = &inside;
        return S_OK;
    };
    Variant variant;
    Object(&fake).Call(L"Member", ByRef(variant));
    inside = 6;
    EXPECT_EQ(VT_I4, variant.vt);
    EXPECT_EQ(5, variant.ToLong());
}

TEST(ObjectTest, ATextAndAnObjectMayBeTakenAway) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        SysFreeString(*parameters.rgvarg[1].pbstrVal);
        *parameters.rgvarg[1].pbstrVal = nullptr;
        (*parameters.rgvarg[0].ppdispVal)->Release();
        *parameters.rgvarg[0].ppdispVal = nullptr;
        return S_OK;
    };
    std::wstring text = L"before";
    Object object(&fake);
    Object(&fake).Call(L"Member", ByRef(text), ByRef(object));
    EXPECT_EQ(L"", text);
    EXPECT_FALSE(object);
}

TEST(ObjectTest, AMovedArgumentStillNamesItsVariable) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        *parameters.rgvarg[0].plVal += 1;
        return S_OK;
    };
    long number = 1;
    Argument first = ByRef(number);
    Argument second = std::move(first);
    Object(&fake).Call(L"Member", std::move(second));
    EXPECT_EQ(2, number);
}

TEST(ObjectTest, AValueIsNotTheCalleesToChange) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        parameters.rgvarg[0].vt = VT_EMPTY;  // what it does to its copy is its own affair
        return S_OK;
    };
    const std::wstring text = L"kept";
    Object(&fake).Call(L"Member", text);
    EXPECT_EQ(L"kept", text);
}

TEST(ObjectTest, AResultByReferenceIsCopied) {
    FakeDispatch fake;
    LONG inside = 5;
    fake.OnInvoke = [&inside](DISPID, WORD, DISPPARAMS&, VARIANT* result, EXCEPINFO*) -> HRESULT {
        result->vt = VT_BYREF | VT_I4;
        result->plVal = &inside;
        return S_OK;
    };
    const Variant result = Object(&fake).Get(L"Member");
    inside = 6;
    EXPECT_EQ(VT_I4, result.vt);
    EXPECT_EQ(5, result.ToLong());
}

TEST(ObjectTest, WhatStandsInTheResultBesideAFailureIsLeftAlone) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT* result, EXCEPINFO*) -> HRESULT {
        result->vt = VT_DISPATCH;
        result->pdispVal = reinterpret_cast<IDispatch*>(0x10);
        return DISP_E_TYPEMISMATCH;
    };
    EXPECT_EQ(13, NumberOf([&fake] { Object(&fake).Get(L"Member"); }));
}

TEST(ObjectTest, AnExceptionOfTheCalleePassesWhole) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO* exception) -> HRESULT {
        exception->scode = static_cast<SCODE>(0x80040001);
        exception->bstrSource = SysAllocString(L"brvADO");
        exception->bstrDescription = SysAllocString(L"gone");
        return DISP_E_EXCEPTION;
    };
    const RuntimeError error = ErrorOf([&fake] { Object(&fake).Get(L"Member", 1); });
    EXPECT_EQ(-2147221503, error.Number);
    EXPECT_EQ(L"brvADO", error.Source);
    EXPECT_EQ(L"gone", error.Description);
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) -> HRESULT { return DISP_E_EXCEPTION; };
    EXPECT_NE(0, NumberOf([&fake] { Object(&fake).Get(L"Member"); }));
}

TEST(ObjectTest, AFailureIsAskedForOnce) {
    FakeDispatch fake;
    for (const HRESULT result : {E_FAIL, E_NOTIMPL, E_INVALIDARG, static_cast<HRESULT>(0x800A138A)}) {
        fake.Calls = 0;
        fake.OnInvoke = [result](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) { return result; };
        std::wstring text;
        EXPECT_NE(0, NumberOf([&fake] { Object(&fake).Get(L"Member"); }));
        EXPECT_NE(0, NumberOf([&fake, &text] { Object(&fake).Get(L"Member", ByRef(text)); }));
        EXPECT_EQ(2, fake.Calls) << "only script objects are asked a second time";
    }
}

TEST(ObjectTest, LetNamesTheValue) {
    FakeDispatch fake;
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS& parameters, VARIANT* result, EXCEPINFO*) -> HRESULT {
        EXPECT_EQ(nullptr, result);
        EXPECT_EQ(1u, parameters.cArgs);
        EXPECT_EQ(1u, parameters.cNamedArgs);
        EXPECT_EQ(DISPID_PROPERTYPUT, parameters.rgdispidNamedArgs[0]);
        EXPECT_STREQ(L"value", parameters.rgvarg[0].bstrVal);
        return S_OK;
    };
    Object(&fake).Let(L"Member", Variant(L"value"));
    EXPECT_EQ((std::vector<WORD>{DISPATCH_PROPERTYPUT}), fake.Flags);
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) -> HRESULT { return DISP_E_TYPEMISMATCH; };
    EXPECT_EQ(13, NumberOf([&fake] { Object(&fake).Let(L"Member", Variant(1)); }));
}

TEST(ObjectTest, AnObjectIsLetByReferenceElseByValue) {
    FakeDispatch fake;
    FakeDispatch value;
    bool byReference = true;
    fake.OnInvoke = [&](DISPID, WORD flags, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        EXPECT_EQ(&value, parameters.rgvarg[0].pdispVal);
        return flags == DISPATCH_PROPERTYPUTREF && !byReference ? DISP_E_MEMBERNOTFOUND : S_OK;
    };
    Object(&fake).Let(L"Member", Variant(&value));
    byReference = false;
    Object(&fake).Let(L"Member", Variant(&value));
    EXPECT_EQ((std::vector<WORD>{DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUT}), fake.Flags);
    fake.OnInvoke = [](DISPID, WORD, DISPPARAMS&, VARIANT*, EXCEPINFO*) -> HRESULT { return E_ACCESSDENIED; };
    fake.Calls = 0;
    EXPECT_EQ(70, NumberOf([&] { Object(&fake).Let(L"Member", Variant(&value)); }));
    EXPECT_EQ(1, fake.Calls) << "a refusal of another kind is no reason to try again";
}

TEST(ObjectTest, TheCalleeMayLetGoOfTheVariable) {
    FakeDispatch fake;
    Object object(&fake);
    fake.OnInvoke = [&](DISPID, WORD, DISPPARAMS&, VARIANT* result, EXCEPINFO*) -> HRESULT {
        object.Clear();
        EXPECT_EQ(2u, fake.References) << "kept for the time of the call";
        Answer(result, L"still here");
        return S_OK;
    };
    EXPECT_EQ(L"still here", object.Get(L"Member").ToText());
    EXPECT_FALSE(object);
    EXPECT_EQ(1u, fake.References);
}

TEST(ObjectTest, SameObjectBehindTwoPointers) {
    struct Two : FakeDispatch {
        IDispatch* Identity = nullptr;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** found) override {
            if (iid != IID_IUnknown || Identity == nullptr) return FakeDispatch::QueryInterface(iid, found);
            return Identity->QueryInterface(iid, found);
        }
    };
    Two one;
    Two face;
    face.Identity = &one;
    FakeDispatch other;
    EXPECT_TRUE(Object(&one).IsSameAs(Object(&face)));
    EXPECT_TRUE(Object(&one).IsSameAs(Object(&one)));
    EXPECT_FALSE(Object(&one).IsSameAs(Object(&other)));
    EXPECT_FALSE(Object(&one).IsSameAs(Object()));
    EXPECT_TRUE(Object().IsSameAs(Object()));
}

TEST(ObjectTest, AClassThatIsNotThereIsError429) {
    const RuntimeError error = ErrorOf([] { Object::Create(L"No.SuchClass"); });
    EXPECT_EQ(429, error.Number);
    EXPECT_EQ(App::Title, error.Source);
    EXPECT_NE(std::wstring::npos, error.Description.find(L"No.SuchClass"));
}

TEST(ObjectTest, ARealObjectIsReadAndWritten) {
    const Object dictionary = Object::Create(L"Scripting.Dictionary");
    dictionary.Call(L"Add", L"one", 1);
    dictionary.Call(L"Add", L"two", L"zwei");
    EXPECT_EQ(2, dictionary.Get(L"Count").ToLong());
    EXPECT_EQ(L"zwei", dictionary.Get(L"Item", L"two").ToText());
    EXPECT_TRUE(dictionary.Get(L"Exists", L"one").ToBoolean());
    EXPECT_EQ(2u, dictionary.Get(L"Keys").ToArray().size());
    EXPECT_EQ(457, NumberOf([&dictionary] { dictionary.Call(L"Add", L"one", 1); }));
    const Object fresh = Object::Create(L"Scripting.Dictionary");
    fresh.Let(L"CompareMode", Variant(1));
    EXPECT_EQ(1, fresh.Get(L"CompareMode").ToLong());
    EXPECT_EQ(438, NumberOf([&fresh] { fresh.Get(L"NoSuchMember"); }));
}

TEST(TextFunctionTest, AppendsTheAnswersToATextByReference) {
    FakeDispatch fake;
    std::vector<std::wstring> heard;
    fake.OnInvoke = [&](DISPID, WORD flags, DISPPARAMS& parameters, VARIANT* result, EXCEPINFO*) {
        EXPECT_EQ(DISPATCH_METHOD | DISPATCH_PROPERTYGET, flags);
        EXPECT_EQ(1U, parameters.cArgs);
        EXPECT_EQ(VT_BYREF | VT_BSTR, parameters.rgvarg[0].vt);
        BSTR& text = *parameters.rgvarg[0].pbstrVal;
        heard.emplace_back(text, SysStringLen(text));
        result->vt = VT_BSTR;
        result->bstrVal = SysAllocString((L"[" + heard.back() + L"]").c_str());
        // What it does with its argument is its own affair.
        switch (heard.size() % 4) {
            case 0:
                text[0] = L'?';
                break;
            case 1:
                SysReAllocString(&text, L"another text, which is longer");
                break;
            case 2:
                SysFreeString(text);
                text = nullptr;
                break;
            default:
                break;
        }
        return S_OK;
    };
    std::wstring to = L"begin ", wanted = L"begin ";
    {
        TextFunction function(Object(&fake), L"Member");
        for (const size_t length : {3U, 3U, 3U, 3U, 0U, 0U, 1U, 200U, 3U, 200U, 200U, 47U, 48U, 49U, 3U}) {
            const std::wstring text(length, L'a');
            function.AppendTo(to, text);
            EXPECT_EQ(text, heard.back());
            wanted += L"[" + text + L"]";
        }
    }
    EXPECT_EQ(wanted, to);
    EXPECT_EQ(1, fake.LookUps);
}

TEST(TextFunctionTest, AFailureLeavesTheTextAsItWas) {
    FakeDispatch fake;
    int calls = 0;
    fake.OnInvoke = [&](DISPID, WORD, DISPPARAMS&, VARIANT* result, EXCEPINFO*) -> HRESULT {
        switch (++calls) {
            case 1:
                return DISP_E_TYPEMISMATCH;
            case 2:
                result->vt = VT_NULL;  // no text
                return S_OK;
            default:
                result->vt = VT_I4;
                result->lVal = 12;
                return S_OK;
        }
    };
    std::wstring to = L"x";
    {
        TextFunction function(Object(&fake), L"Member");
        EXPECT_EQ(ErrorNumber::TypeMismatch, NumberOf([&] { function.AppendTo(to, L"a"); }));
        EXPECT_EQ(ErrorNumber::InvalidUseOfNull, NumberOf([&] { function.AppendTo(to, L"a"); }));
        EXPECT_EQ(L"x", to);
        function.AppendTo(to, L"a");
        EXPECT_EQ(L"x12", to);
        TextFunction unknown(Object(&fake), L"Unknown");
        EXPECT_NE(0, NumberOf([&] { unknown.AppendTo(to, L"a"); }));
        TextFunction nothing(Object(), L"Member");
        EXPECT_EQ(ErrorNumber::ObjectNotSet, NumberOf([&] { nothing.AppendTo(to, L"a"); }));
    }
    EXPECT_EQ(L"x12", to);
}

TEST(ObjectTest, TakesEightArguments) {
    FakeDispatch fake;
    UINT passed = 0;
    fake.OnInvoke = [&](DISPID, WORD, DISPPARAMS& parameters, VARIANT*, EXCEPINFO*) -> HRESULT {
        passed = parameters.cArgs;
        return S_OK;
    };
    const Object object(&fake);
    object.Call(L"Member", 1, 2, 3, 4, 5, 6, 7, 8);
    EXPECT_EQ(8U, passed);
    EXPECT_EQ(ErrorNumber::InvalidProcedureCall, NumberOf([&] { object.Call(L"Member", 1, 2, 3, 4, 5, 6, 7, 8, 9); }));
}
