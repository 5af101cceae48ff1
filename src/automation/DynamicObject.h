#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/ComObject.h"
#include "automation/Object.h"

// The arguments of a call that came in, in their natural order.
class Arguments {
public:
    Arguments(const DISPPARAMS& parameters) noexcept;
    size_t Count() const noexcept;
    // The argument as a value (VT_BYREF looked through); one beyond the end, or left out, is Missing.
    Variant operator[](size_t position) const;
    bool Has(size_t position) const noexcept;  // given and not missing
    // Writes an argument that was passed by reference (VT_BYREF|VT_BSTR, |VT_BOOL, |VT_I4, |VT_VARIANT, ...), converted
    // to its type. One that was passed by value is left alone; returns whether it was written.
    bool Let(size_t position, const Variant& value) const;
    // The argument as it was passed, for callers that need its type; null beyond the end.
    const VARIANT* Raw(size_t position) const noexcept;

private:
    const DISPPARAMS& parameters_;
};

// An object of our own that is reached by name only: members are given as functions. Names are compared without regard
// to case. An exception that leaves a member reaches the caller as EXCEPINFO; an unknown name is DISP_E_UNKNOWNNAME.
// Keeps a ModuleLock. Made with `new`, owned by its reference count (1 after construction).
class DynamicObject : public ComObject<IDispatch> {
public:
    using Member = std::function<Variant(const Arguments&)>;
    using Setter = std::function<void(const Variant&)>;

    DynamicObject();
    void Define(const std::wstring& name, Member member);                // a method, or a property to read
    void DefineLet(const std::wstring& name, Setter setter);             // a property to write
    void DefineDefault(Member member);                                   // DISPID_VALUE
    void DefineEnumerator(std::function<std::vector<Variant>()> items);  // DISPID_NEWENUM, name "_NewEnum"

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* exception, UINT* argumentError) override;

protected:
    ~DynamicObject() override;

private:
    struct Slot;
    Slot& SlotOf(const std::wstring& name);
    HRESULT Answer(DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result);
    std::vector<Slot> slots_;
    std::map<std::wstring, size_t> names_;
};

// A collection for late-bound readers: Count, Item (from 1; a wrong position is error 9), _NewEnum. Item is the default
// member.
Object MakeCollection(std::vector<Variant> items);
