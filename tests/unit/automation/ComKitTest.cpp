#include <gtest/gtest.h>
#include <windows.h>
#include <ocidl.h>

#include "automation/Bstr.h"
#include "automation/ComObject.h"
#include "automation/ComPtr.h"
#include "automation/Scope.h"
#include "automation/Variant.h"
#include "support/CountedObject.h"

namespace {

class CountedReference final : public StackObject<IUnknown> {};

// Says that it has whatever is asked for, and writes what it was told to.
class Liar final : public StackObject<IUnknown> {
public:
    HRESULT Result = S_OK;
    void* Written = nullptr;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = Written;
        return Result;
    }
};

class TwoFaced final : public ComObject<IErrorInfo, ISupportErrorInfo> {
public:
    explicit TwoFaced(int& ends) : ends_(ends) {}
    HRESULT STDMETHODCALLTYPE GetGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID) override { return S_FALSE; }

private:
    ~TwoFaced() override {
        ++ends_;
        // As a host's code may do it that runs in the end of an object.
        AddRef();
        Release();
    }
    int& ends_;
};

}  // namespace

TEST(ComPtr, CountsOneReferenceEach) {
    CountedReference object;
    {
        const ComPtr<IUnknown> one(&object);
        EXPECT_EQ(2U, object.References);
        ComPtr<IUnknown> two = one;
        EXPECT_EQ(3U, object.References);
        const ComPtr<IUnknown> three = std::move(two);
        EXPECT_EQ(3U, object.References);
        EXPECT_FALSE(two);
        two = three;
        EXPECT_EQ(4U, object.References);
        two.Reset();
        EXPECT_EQ(3U, object.References);
    }
    EXPECT_EQ(1U, object.References);
    object.AddRef();
    { const auto taken = ComPtr<IUnknown>::Attach(&object); }
    EXPECT_EQ(1U, object.References);
    ComPtr<IUnknown> handed(&object);
    EXPECT_EQ(&object, handed.Detach());
    EXPECT_EQ(2U, object.References);
}

TEST(ComPtr, OwnsNothingAfterAFailureWhateverWasWritten) {
    Liar liar;
    int nothing = 0;
    const ComPtr<IUnknown> object(&liar);
    liar.Result = E_NOINTERFACE;
    liar.Written = &nothing;  // would end the program if it were released
    EXPECT_FALSE(object.As<IDispatch>());
    liar.Result = S_OK;
    liar.Written = nullptr;
    EXPECT_FALSE(object.As<IDispatch>());
    EXPECT_FALSE(ComPtr<IUnknown>().As<IDispatch>());
}

TEST(ComObject, AnswersForItsInterfacesAndEndsOnce) {
    int ends = 0;
    auto made = ComPtr<TwoFaced>::Attach(new TwoFaced(ends));
    EXPECT_FALSE(Server::CanUnload());
    auto first = made.As<IErrorInfo>();
    auto second = made.As<ISupportErrorInfo>();
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(first.As<IUnknown>().Get(), second.As<IUnknown>().Get()) << "one identity";
    EXPECT_FALSE(made.As<IDispatch>());
    EXPECT_EQ(E_POINTER, made->QueryInterface(IID_IUnknown, nullptr));
    made.Reset();
    second.Reset();
    EXPECT_EQ(0, ends);
    first.Reset();
    EXPECT_EQ(1, ends);
    EXPECT_TRUE(Server::CanUnload());
}

TEST(Bstr, OwnsItsString) {
    using namespace std::string_literals;
    Bstr text(L"a\0b"s);
    EXPECT_EQ(L"a\0b"s, TextOf(text.Get()));
    *text.Receive() = SysAllocString(L"other");
    EXPECT_EQ(L"other", TextOf(text.Get()));
    const Bstr moved = std::move(text);
    EXPECT_EQ(nullptr, text.Get());
    EXPECT_EQ(L"other", TextOf(moved.Get()));
    EXPECT_EQ(nullptr, Bstr::OrNull(L"").Get());
    EXPECT_EQ(L"", TextOf(Bstr(L"").Get()));
}

TEST(Variant, HandsItsContentsOver) {
    Variant value(L"text");
    VARIANT taken = value.Detach();
    EXPECT_TRUE(value.IsEmpty());
    EXPECT_EQ(L"text", TextOf(taken.bstrVal));
    VariantClear(&taken);
}

TEST(Scope, EndsHoweverItIsLeft) {
    int value = 1;
    int ends = 0;
    try {
        const AutoReset changed(value, 2);
        {
            const AutoReset again(value, 3);
            EXPECT_EQ(3, value);
        }
        EXPECT_EQ(2, value);
        const ScopeExit end([&] { ++ends; });
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(1, value);
    EXPECT_EQ(1, ends);
}
