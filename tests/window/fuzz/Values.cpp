#include "Values.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "support/CountedObject.h"
#include "automation/DynamicObject.h"
#include "automation/RuntimeError.h"

namespace {

// An object that has nothing but itself.
class Bare final : public CountedObject<IUnknown, 1> {
public:
private:
    ~Bare() = default;
};

Object AnyObject(Random& random, int depth) {
    auto* made = new DynamicObject;
    Object held = Object::Attach(made);
    switch (random.Below(5)) {
        case 0:
            break;  // without members
        case 1: {
            const Variant value = AnyScalar(random);
            made->DefineDefault([value](const Arguments&) { return value; });
            break;
        }
        case 2:
            made->DefineDefault([number = random.Between(-100000, 100000)](const Arguments&) -> Variant {
                RaiseError(number, L"a host", L"it does not");
            });
            break;
        case 3: {
            std::vector<Variant> items;
            for (size_t left = random.Below(4); left > 0; --left) items.push_back(AnyValue(random, depth + 1));
            return MakeCollection(std::move(items));
        }
        default: {
            // What it counts to is called: a large number is no test but a wait.
            const Variant count =
                random.OneIn(2) ? Variant(random.Pick({-1L, 0L, 1L, 2L, 3L})) : Variant(AnyText(random));
            const Variant item = AnyScalar(random);
            if (!random.OneIn(3)) made->Define(L"Count", [count](const Arguments&) { return count; });
            made->Define(L"Item", [item](const Arguments&) { return item; });
            break;
        }
    }
    return held;
}

const std::vector<VARTYPE> ElementTypes = {VT_I1,   VT_UI1,     VT_I2,    VT_UI2,  VT_I4,      VT_UI4,      VT_INT,
                                           VT_UINT, VT_I8,      VT_UI8,   VT_R4,   VT_R8,      VT_BOOL,     VT_DATE,
                                           VT_CY,   VT_DECIMAL, VT_ERROR, VT_BSTR, VT_VARIANT, VT_DISPATCH, VT_UNKNOWN};

Variant AnyArray(Random& random, int depth, ULONG most) {
    Variant made;
    const VARTYPE type = random.OneIn(2) ? VARTYPE{VT_VARIANT} : random.Pick(ElementTypes);
    if (random.OneIn(12)) {  // declared, and never given a size
        made.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        made.parray = nullptr;
        return made;
    }
    const UINT dimensions = random.OneIn(6) ? 2 + static_cast<UINT>(random.Below(3)) : 1;
    SAFEARRAYBOUND bounds[4];
    for (UINT at = 0; at < dimensions; ++at) {
        bounds[at].cElements = static_cast<ULONG>(random.Below(4));
        bounds[at].lLbound = random.Pick<LONG>({0, 0, 0, 1, -1, 100, LONG_MIN, LONG_MAX - 4});
    }
    const bool huge = dimensions == 1 && type != VT_VARIANT && random.OneIn(8);
    if (huge) bounds[0].cElements = most;
    made.parray = SafeArrayCreate(type, dimensions, bounds);
    if (made.parray == nullptr) return made;
    made.vt =
        static_cast<VARTYPE>(VT_ARRAY | (random.OneIn(20) ? random.Pick(ElementTypes) : type));  // or a wrong word
    if (type == VT_VARIANT && made.vt != (VT_ARRAY | VT_VARIANT)) made.vt = VT_ARRAY | VT_VARIANT;
    size_t count = 1;
    for (UINT at = 0; at < dimensions; ++at) count *= bounds[at].cElements;
    void* data = nullptr;
    if (count == 0 || huge || FAILED(SafeArrayAccessData(made.parray, &data))) return made;
    for (size_t at = 0; at < count; ++at) {
        if (type == VT_VARIANT) {
            Variant element = AnyValue(random, depth + 1);
            std::memcpy(static_cast<VARIANT*>(data) + at, static_cast<VARIANT*>(&element), sizeof(VARIANT));
            static_cast<VARIANT&>(element).vt = VT_EMPTY;
        } else if (type == VT_BSTR) {
            static_cast<BSTR*>(data)[at] = random.OneIn(3) ? nullptr : Bstr(AnyText(random)).Detach();
        }
    }
    SafeArrayUnaccessData(made.parray);
    return made;
}

double AnyDouble(Random& random) {
    switch (random.Below(6)) {
        case 0:
            return random.Pick({0.0, -0.0, 0.5, 1.5, 2.5, -0.5, 32767.5, 2147483647.5, -2147483648.5, 2147483648.0,
                                1e300, -1e300, 3.4028235e38, 3.5e38, 5e-324});
        case 1:
            return random.Pick({std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()});
        case 2: {
            const uint64_t bits = random.Next();
            double value = 0;
            std::memcpy(&value, &bits, sizeof value);
            return value;
        }
        default:
            return static_cast<double>(random.Between(-1000000, 1000000)) / 8;
    }
}

}  // namespace

Variant AnyScalar(Random& random) {
    Variant made;
    // The bits of whole numbers: the ends, and anything.
    const uint64_t bits =
        random.OneIn(2)
            ? random.Pick<uint64_t>({0, 1, 0x7F, 0x80, 0xFF, 0x7FFF, 0x8000, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF,
                                     0x7FFFFFFFFFFFFFFF, 0x8000000000000000, 0xFFFFFFFFFFFFFFFF})
            : random.Next();
    switch (random.Below(14)) {
        case 0:
            return Variant();
        case 1:
            return Variant::Null();
        case 2:
            made.vt =
                random.Pick<VARTYPE>({VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8});
            made.llVal = static_cast<LONGLONG>(bits);
            return made;
        case 3:
            made.vt = VT_BOOL;
            made.boolVal = static_cast<VARIANT_BOOL>(random.Pick<uint64_t>({0, 0xFFFF, 1, bits & 0xFFFF}));
            return made;
        case 4:
            made.vt = VT_R4;
            made.fltVal = static_cast<float>(AnyDouble(random));
            return made;
        case 5:
            return Variant(AnyDouble(random));
        case 6:
            made.vt = VT_CY;
            made.cyVal.int64 = static_cast<LONGLONG>(bits);
            return made;
        case 7:
            made.vt = VT_DATE;
            made.date =
                random.OneIn(3) ? AnyDouble(random) : static_cast<double>(random.Between(-657434, 2958465)) + 0.25;
            return made;
        case 8: {
            DECIMAL number{};
            number.scale = static_cast<BYTE>(random.OneIn(8) ? random.Below(256) : random.Below(29));
            number.sign = static_cast<BYTE>(random.OneIn(8) ? random.Below(256) : random.Pick({0, 0x80}));
            number.Hi32 = static_cast<ULONG>(random.OneIn(2) ? 0 : random.Next());
            number.Lo64 = bits;
            static_cast<VARIANT&>(made).decVal = number;
            made.vt = VT_DECIMAL;
            return made;
        }
        case 9:
            made.vt = VT_ERROR;
            made.scode = random.Pick<SCODE>({DISP_E_PARAMNOTFOUND, S_OK, E_FAIL, static_cast<SCODE>(bits)});
            return made;
        case 10: {
            made.vt = VT_BSTR;  // of no text
            made.bstrVal = nullptr;
            return made;
        }
        case 11:
            return Variant(
                random.Pick({L"0", L"-1", L" 12 ", L"1e3", L"1,5", L"1.5", L"True", L"false", L"&H10", L"12:30",
                             L"1.1.2000", L"99999999999", L"1e400", L"\u0661\u0662", L"", L" ", L"1e", L"-", L"$1"}));
        default:
            return Variant(random.OneIn(40) ? TextOfLength(random, LongText) : AnyText(random));
    }
}

Variant AnyValue(Random& random, int depth, ULONG huge) {
    if (depth > 3 || random.OneIn(2)) return AnyScalar(random);
    switch (random.Below(8)) {
        case 0:
            return random.OneIn(2) ? Variant::Nothing() : Variant::Missing();
        case 1:
        case 2:
            return Variant(AnyObject(random, depth));
        case 3: {
            Variant made;
            made.vt = VT_UNKNOWN;
            made.punkVal = random.OneIn(4) ? nullptr : new Bare;
            return made;
        }
        case 4: {
            // A type that no variant has: nobody may ask what is in it.
            Variant made;
            made.vt = random.Pick<VARTYPE>({VT_VARIANT, 15, VT_VOID, VT_HRESULT, VT_LPSTR, VT_LPWSTR, VT_FILETIME,
                                            VT_BLOB, VT_CLSID, 0x0FFF, 0x1003, VT_VECTOR | VT_I4, 0x8000 | VT_UI1,
                                            0xFFF & VT_ILLEGAL});
            made.llVal = 0;
            return made;
        }
        default:
            return AnyArray(random, depth, huge);
    }
}

bool IsWellFormed(const Variant& value) {
    return value.vt != VT_DECIMAL ||
           (value.decVal.scale <= 28 && (value.decVal.sign == 0 || value.decVal.sign == 0x80));
}

Variant CopyOf(const Variant& value) {
    try {
        return value;
    } catch (const RuntimeError&) {
        Variant copy;  // it owns nothing
        std::memcpy(static_cast<VARIANT*>(&copy), static_cast<const VARIANT*>(&value), sizeof(VARIANT));
        return copy;
    }
}

std::string Shown(const VARIANT& value) {
    std::string shown = "vt " + std::to_string(value.vt);
    if (value.vt == VT_BSTR) return shown + " " + Shown(TextOf(value.bstrVal));
    if ((value.vt & (VT_ARRAY | VT_BYREF)) == 0) {
        char bits[40];
        std::snprintf(bits, sizeof bits, " %016llx", static_cast<unsigned long long>(value.ullVal));
        shown += bits;
    }
    return shown;
}

AnyArgument::AnyArgument(Random& random, Variant value) : Value(std::move(value)) {
    static const std::vector<Way> ways = {Way::Value,       Way::Value,     Way::OfType,
                                          Way::OfType,      Way::OfVariant, Way::OfVariant,
                                          Way::OfReference, Way::OfItself,  Way::OfNothing};
    How = random.Pick(ways);
    VariantInit(&Passed);
    VariantInit(&inner_);
    switch (How) {
        case Way::Value:
            std::memcpy(&Passed, static_cast<VARIANT*>(&Value), sizeof Passed);
            break;
        case Way::OfType:
            Passed.vt = static_cast<VARTYPE>(VT_BYREF | Value.vt);
            Passed.byref = Value.vt == VT_DECIMAL ? static_cast<void*>(&Value) : static_cast<void*>(&Value.byref);
            // There is no reference to nothing and to Null, and what calls itself a variant is none.
            if (Value.vt == VT_EMPTY || Value.vt == VT_NULL || Value.vt == VT_VARIANT) {
                Passed.vt = VT_BYREF | VT_VARIANT;
                Passed.pvarVal = &Value;
                How = Way::OfVariant;
            }
            break;
        case Way::OfVariant:
            Passed.vt = VT_BYREF | VT_VARIANT;
            Passed.pvarVal = &Value;
            break;
        case Way::OfReference:
            inner_.vt = VT_BYREF | VT_VARIANT;
            inner_.pvarVal = &Value;
            Passed.vt = VT_BYREF | VT_VARIANT;
            Passed.pvarVal = &inner_;
            break;
        case Way::OfItself:
            inner_.vt = VT_BYREF | VT_VARIANT;
            inner_.pvarVal = &inner_;
            Passed = inner_;
            break;
        case Way::OfNothing:
            Passed.vt = static_cast<VARTYPE>(
                VT_BYREF | random.Pick<VARTYPE>({VT_VARIANT, VT_BSTR, VT_I4, VT_DISPATCH, VT_ARRAY | VT_I4}));
            Passed.byref = nullptr;
            break;
    }
}
