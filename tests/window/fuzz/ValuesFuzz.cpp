#include <gtest/gtest.h>
#include <windows.h>
#include <oleauto.h>

#include <cmath>

#include "Cases.h"
#include "Values.h"
#include "automation/HostCollection.h"
#include "automation/RuntimeError.h"

// Conversions of values of every kind: each gives a value or a run-time error, and nothing else leaves it.
namespace {

constexpr long Bad = -1;

// As NumberOf; whatever else is thrown is a failure.
template <class Work>
long RunTimeErrorOf(Work&& work) {
    try {
        work();
    } catch (const RuntimeError& error) {
        EXPECT_FALSE(error.Description.empty());
        return error.Number;
    } catch (...) {
        ADD_FAILURE() << "what was thrown is no run-time error";
        return Bad;
    }
    return 0;
}

// What the platform's own conversion says of a value that is no object, no array and no Null.
HRESULT Platform(const Variant& value, VARTYPE type, VARIANT& changed) {
    VariantInit(&changed);
    return VariantChangeTypeEx(&changed, const_cast<Variant*>(&value), LOCALE_USER_DEFAULT, VARIANT_ALPHABOOL, type);
}

}  // namespace

TEST(ValuesFuzz, ScalarsConvertAsThePlatformDoes) {
    ForEachCase(3000, [](Random& random) {
        const Variant value = AnyScalar(random);
        SCOPED_TRACE(Shown(value));
        if (value.IsNull() || value.IsMissing()) {
            const long expected = value.IsNull() ? ErrorNumber::InvalidUseOfNull : ErrorNumber::TypeMismatch;
            EXPECT_EQ(expected, RunTimeErrorOf([&] { value.ToText(); }));
            EXPECT_EQ(expected, RunTimeErrorOf([&] { value.ToLong(); }));
            EXPECT_EQ(expected, RunTimeErrorOf([&] { value.ToBoolean(); }));
            return;
        }
        if (!IsWellFormed(value)) {
            EXPECT_FALSE(value.IsNumeric());
            EXPECT_EQ(ErrorNumber::InvalidProcedureCall, RunTimeErrorOf([&] { value.ToText(); }));
            EXPECT_EQ(ErrorNumber::InvalidProcedureCall, RunTimeErrorOf([&] { value.ToDouble(); }));
            return;
        }
        VARIANT changed;
        std::wstring text;
        if (SUCCEEDED(Platform(value, VT_BSTR, changed))) {
            EXPECT_EQ(0, RunTimeErrorOf([&] { text = value.ToText(); }));
            EXPECT_EQ(Shown(TextOf(changed.bstrVal)), Shown(text));
        } else {
            EXPECT_NE(0, RunTimeErrorOf([&] { text = value.ToText(); }));
        }
        VariantClear(&changed);
        const auto compare = [&](VARTYPE type, auto&& convert, auto&& read) {
            VARIANT number;
            const HRESULT result = Platform(value, type, number);
            decltype(convert()) converted{};
            const long error = RunTimeErrorOf([&] { converted = convert(); });
            EXPECT_EQ(SUCCEEDED(result), error == 0) << "type " << type << " error " << error;
            if (result == DISP_E_OVERFLOW) {
                EXPECT_EQ(ErrorNumber::Overflow, error);
            }
            if (SUCCEEDED(result) && error == 0) {
                EXPECT_TRUE(read(number) == converted || (converted != converted)) << "type " << type;
            }
        };
        compare(
            VT_I4, [&] { return value.ToLong(); }, [](const VARIANT& number) { return number.lVal; });
        compare(
            VT_I2, [&] { return value.ToInteger(); }, [](const VARIANT& number) { return number.iVal; });
        compare(
            VT_BOOL, [&] { return value.ToBoolean(); }, [](const VARIANT& number) { return number.boolVal != 0; });
        compare(
            VT_R8, [&] { return value.ToDouble(); }, [](const VARIANT& number) { return number.dblVal; });
        // Whole numbers from a text by hand, past the platform.
        if (value.vt == VT_I4) {
            EXPECT_EQ(std::to_wstring(value.lVal), text);
        }
        if (value.vt == VT_BSTR) {
            EXPECT_EQ(Shown(TextOf(value.bstrVal)), Shown(text));
        }
        if (value.IsNumeric()) {
            EXPECT_EQ(0, RunTimeErrorOf([&] { value.ToDouble(); }));
        }
        EXPECT_NE(0, RunTimeErrorOf([&] { value.ToObject(); }));
        EXPECT_NE(0, RunTimeErrorOf([&] { value.ToArray(); }));
    });
}

TEST(ValuesFuzz, AnyValueGivesAValueOrARunTimeError) {
    ForEachCase(2000, [](Random& random) {
        const Variant value = AnyValue(random);
        SCOPED_TRACE(Shown(value));
        Variant copy;
        RunTimeErrorOf([&] { copy = value; });
        RunTimeErrorOf([&] { value.ToText(); });
        RunTimeErrorOf([&] { value.ToLong(); });
        RunTimeErrorOf([&] { value.ToInteger(); });
        RunTimeErrorOf([&] { value.ToBoolean(); });
        RunTimeErrorOf([&] { value.ToDouble(); });
        Object object;
        if (RunTimeErrorOf([&] { object = value.ToObject(); }) == 0) {
            EXPECT_TRUE(value.IsObject());
            EXPECT_EQ(value.IsNothing(), !object);
            RunTimeErrorOf([&] { object.Get(L"Count"); });
        }
        std::vector<Variant> elements;
        if (RunTimeErrorOf([&] { elements = value.ToArray(); }) == 0) {
            ASSERT_TRUE(value.IsArray());
            EXPECT_EQ(1U, SafeArrayGetDim(value.parray));
            EXPECT_EQ(value.parray->rgsabound[0].cElements, elements.size());
            if (value.vt == (VT_ARRAY | VT_VARIANT)) {
                // Each as it stands in the array.
                for (size_t at = 0; at < elements.size(); ++at) {
                    EXPECT_EQ(static_cast<VARIANT*>(value.parray->pvData)[at].vt, elements[at].vt);
                }
            }
        }
        HostCollection collection;
        if (RunTimeErrorOf([&] { collection = HostCollection(value); }) == 0 && collection) {
            size_t items = 0;
            const long number =
                RunTimeErrorOf([&] { collection.ForEach([&](const Variant&) { return ++items < 100000; }); });
            if (number == 0 && value.IsArray()) {
                EXPECT_EQ(elements.size(), items);
            }
        }
    });
}

TEST(ValuesFuzz, AReferenceIsLookedThrough) {
    ForEachCase(2000, [](Random& random) {
        const AnyArgument argument(random, AnyValue(random));
        SCOPED_TRACE(Shown(argument.Value) + " way " + std::to_string(static_cast<int>(argument.How)));
        Variant copy;
        const long number = RunTimeErrorOf([&] { copy = Variant(argument.Passed); });
        using Way = AnyArgument::Way;
        if (argument.How == Way::OfItself || argument.How == Way::OfNothing) {
            EXPECT_EQ(ErrorNumber::TypeMismatch, number);
            return;
        }
        if (number != 0) return;
        EXPECT_EQ(argument.Value.vt, copy.vt);
        EXPECT_EQ(0, copy.vt & VT_BYREF);
        if (copy.vt == VT_BSTR) {
            EXPECT_EQ(Shown(TextOf(argument.Value.bstrVal)), Shown(TextOf(copy.bstrVal)));
        }
    });
}
