#pragma once

#include <windows.h>
#include <oaidl.h>
#include <oleauto.h>

#include <string>
#include <string_view>
#include <vector>

#include "automation/Bstr.h"

class Object;

// An owned VARIANT that reads like the hosts' own variable: conversions follow VariantChangeType with the user's
// locale, look through VT_BYREF, and throw error 13 (or 6, 94, 91, 438) when there is no conversion.
class Variant : public VARIANT {
public:
    Variant() noexcept;  // Empty
    Variant(const Variant& other);
    Variant(Variant&& other) noexcept;
    Variant& operator=(const Variant& other);
    Variant& operator=(Variant&& other) noexcept;
    ~Variant();

    Variant(std::wstring_view text);
    Variant(const std::wstring& text);
    Variant(const wchar_t* text);
    Variant(bool value) noexcept;
    Variant(short value) noexcept;
    Variant(long value) noexcept;
    Variant(int value) noexcept;
    Variant(double value) noexcept;
    Variant(const Object& object) noexcept;
    Variant(IDispatch* object) noexcept;     // AddRefs; null is Nothing
    explicit Variant(const VARIANT& other);  // a copy; VT_BYREF is looked through

    static Variant Missing() noexcept;  // an optional argument that was left out
    static Variant Null() noexcept;
    static Variant Nothing() noexcept;               // an object variable that holds no object
    static Variant Attach(VARIANT& other) noexcept;  // takes the contents over and leaves `other` Empty
    static Variant ArrayOf(const std::vector<Variant>& items, long lowerBound = 0);  // a SAFEARRAY of variants
    static Variant ArrayOf(std::vector<Variant>&& items, long lowerBound = 0);  // the same, which leaves them Empty

    bool IsEmpty() const noexcept;
    bool IsNull() const noexcept;
    bool IsMissing() const noexcept;
    bool IsObject() const noexcept;   // Nothing included
    bool IsNothing() const noexcept;  // an object type that holds a null pointer
    bool IsArray() const noexcept;
    // Whether a conversion to a number would succeed, as the hosts' IsNumeric tells it: numbers, Booleans, Empty and
    // texts that read as a number; not dates, Null, objects.
    bool IsNumeric() const noexcept;

    std::wstring ToText() const;  // Null is error 94
    long ToLong() const;          // halves to even, as VariantChangeType does; out of range is error 6
    short ToInteger() const;
    bool ToBoolean() const;
    double ToDouble() const;
    // The object: Nothing gives an empty Object; a type that holds no object is error 424 (13 when it is Null or
    // Empty), an object without IDispatch error 430.
    Object ToObject() const;
    // The elements of a one-dimensional array of any element type, in index order; error 13 when it is none.
    std::vector<Variant> ToArray() const;

    // Hands the contents over to the caller and is Empty after that.
    VARIANT Detach() noexcept;
    // Empties the variant and gives its address to a call that fills it.
    VARIANT* Receive() noexcept;

private:
    Variant ChangedTo(VARTYPE type) const;
};
