#pragma once

#include "automation/Variant.h"
#include "Generator.h"

// A value of any kind that a host can hand over: each simple type at its ends and in between, texts, dates, decimals,
// currency, errors, Null, Nothing, objects with and without automation, arrays of every element type, of arrays, of
// several dimensions, without a block, huge or empty, with any lower bound, and types that there are not. Owned as a
// variant owns.
Variant AnyValue(Random& random, int depth = 0, ULONG huge = 100000);
// One that a variable by reference can hold: never an array or object.
Variant AnyScalar(Random& random);
// False for a decimal that is none by its scale or sign, for all that its type says: the platform need not be ready for
// it.
bool IsWellFormed(const Variant& value);
// A copy also of what is of no type that can be copied.
Variant CopyOf(const Variant& value);
// For failures.
std::string Shown(const VARIANT& value);

// A value as an argument: by value, or by reference of its own type, of a variant, of a variant by reference, of
// itself, or of nothing at all. Lives as long as the argument is used.
class AnyArgument {
public:
    AnyArgument(Random& random, Variant value);
    AnyArgument(const AnyArgument&) = delete;
    AnyArgument& operator=(const AnyArgument&) = delete;

    VARIANT Passed{};  // not owned
    Variant Value;     // what Passed refers to
    enum class Way { Value, OfType, OfVariant, OfReference, OfItself, OfNothing };
    Way How;

private:
    VARIANT inner_{};
};
