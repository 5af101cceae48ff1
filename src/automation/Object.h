#pragma once

#include <windows.h>
#include <oaidl.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "automation/HostContexts.h"
#include "automation/Variant.h"

// One argument of a late-bound call. A plain value is passed by value; ByRef passes the variable itself.
class Argument {
public:
    Argument(Variant value);
    Argument(const wchar_t* text);
    Argument(const std::wstring& text);
    Argument(bool value);
    Argument(short value);
    Argument(long value);
    Argument(int value);
    Argument(const Object& object);
    Argument(Argument&&) noexcept;
    Argument(const Argument&) = delete;
    ~Argument();

private:
    friend class Object;
    friend Argument ByRef(std::wstring&);
    friend Argument ByRef(long&);
    friend Argument ByRef(short&);
    friend Argument ByRef(bool&);
    friend Argument ByRef(Variant&);
    friend Argument ByRef(Object&);
    struct Reference;
    explicit Argument(std::unique_ptr<Reference> reference) noexcept;
    enum class Way { AsType, AsVariant, AsValue };  // of passing a reference: the last two are for script objects
    // What goes into DISPPARAMS: owned by this argument for the time of the call.
    VARIANT Passed(Way way) noexcept;
    // After a call that succeeded: what the callee left goes into the caller's variable.
    void WriteBack();

    Variant value_;
    std::unique_ptr<Reference> reference_;
};

// Passes a variable by reference, as VT_BYREF of the variable's own type; to an object of VBScript, whose variables
// have no types, as VT_BYREF|VT_VARIANT; to one of JScript, which has no references, by value. The variable must
// outlive the call; it is written when the call succeeds. A callee that leaves what cannot be converted back raises
// error 13 (or 6, 94, 424).
Argument ByRef(std::wstring& variable);
Argument ByRef(long& variable);
Argument ByRef(short& variable);
Argument ByRef(bool& variable);
Argument ByRef(Variant& variable);
Argument ByRef(Object& variable);

// A late-bound reference to an object, or nothing. Copies share the member ids that were looked up: the look-up of a
// name is a call to the other object too, so it is made once a member for as long as the object is held. Every use of
// an empty reference is error 91.
class Object {
public:
    Object() noexcept;
    explicit Object(IDispatch* object);  // AddRefs
    static Object Attach(IDispatch* object);
    // A new object of the class; error 429 when it cannot be created (the description says why).
    static Object Create(const wchar_t* progId);

    explicit operator bool() const noexcept;
    IDispatch* Dispatch() const noexcept;  // not AddRef'd
    void Clear() noexcept;
    bool IsSameAs(const Object& other) const noexcept;  // COM identity

    // Reads a property (or calls a function) with arguments in their natural order.
    template <class... Args>
    Variant Get(const wchar_t* member, Args&&... args) const {
        Argument list[sizeof...(Args) + 1] = {Argument(std::forward<Args>(args))..., Argument(Variant())};
        return Invoke(member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, list, sizeof...(Args));
    }
    // Calls a method.
    template <class... Args>
    Variant Call(const wchar_t* member, Args&&... args) const {
        Argument list[sizeof...(Args) + 1] = {Argument(std::forward<Args>(args))..., Argument(Variant())};
        return Invoke(member, DISPATCH_METHOD, list, sizeof...(Args));
    }
    // Reads the default member.
    Variant Value() const;
    // Writes a property.
    void Let(const wchar_t* member, const Variant& value) const;
    // Whether the object knows the name. No member is called.
    bool Has(const wchar_t* member) const noexcept;

private:
    friend class TextFunction;
    struct State;
    std::shared_ptr<State> state_;
    Variant Invoke(const wchar_t* member, WORD flags, Argument* arguments, size_t count) const;
    Variant InvokeId(DISPID id, WORD flags, Argument* arguments, size_t count) const;
};

// A member that takes one text by reference and returns a text, called repeatedly: the result of Get(member,
// ByRef(text)) without its copies, for loops over thousands of names. Whatever the callee leaves in its argument is
// dropped. Holds the object; `member` must outlive it.
class TextFunction {
public:
    TextFunction(const Object& object, const wchar_t* member) noexcept : object_(object), member_(member) {}
    ~TextFunction();
    TextFunction(const TextFunction&) = delete;
    TextFunction& operator=(const TextFunction&) = delete;

    // Whether it is a function of this object.
    bool IsOf(const Object& object) const noexcept { return object_.Dispatch() == object.Dispatch(); }
    // Appends the answer to `to`, which is unchanged when the call fails.
    void AppendTo(std::wstring& to, std::wstring_view argument);

private:
    const InHostContexts host_;  // once for all the calls
    const Object object_;
    const wchar_t* const member_;
    // One string for each length that has occurred, the first for all that are longer: most calls need no memory.
    std::array<BSTR, 48> passed_{};
    DISPID id_ = DISPID_UNKNOWN;
};
