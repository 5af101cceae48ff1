#include "automation/RuntimeError.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <cwctype>
#include <new>
#include <type_traits>
#include <utility>
#include <stdexcept>

#include "automation/App.h"
#include "FakeDispatch.h"

namespace {

EXCEPINFO Raised(WORD code, SCODE scode) {
    EXCEPINFO exception{};
    exception.wCode = code;
    exception.scode = scode;
    return exception;
}

HRESULT STDAPICALLTYPE FillLater(EXCEPINFO* exception) {
    exception->bstrSource = SysAllocString(L"late source");
    exception->bstrDescription = SysAllocString(L"late description");
    exception->scode = static_cast<SCODE>(0x80040005);
    return S_OK;
}

}  // namespace

TEST(RuntimeErrorTest, KnownResultsHaveTheNumbersThatHostsKnow) {
    const struct {
        HRESULT Result;
        long Number;
    } cases[] = {
        {DISP_E_MEMBERNOTFOUND, 438},
        {DISP_E_UNKNOWNNAME, 438},
        {DISP_E_TYPEMISMATCH, 13},
        {DISP_E_OVERFLOW, 6},
        {DISP_E_BADPARAMCOUNT, 450},
        {DISP_E_PARAMNOTOPTIONAL, 449},
        {DISP_E_BADINDEX, 9},
        {DISP_E_DIVBYZERO, 11},
        {DISP_E_NONAMEDARGS, 446},
        {DISP_E_NOTACOLLECTION, 451},
        {E_OUTOFMEMORY, 7},
        {E_NOINTERFACE, 430},
        {E_INVALIDARG, 5},
        {E_NOTIMPL, 445},
        {E_ACCESSDENIED, 70},
        {REGDB_E_CLASSNOTREG, 429},
        {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), 462},
        {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED), 462},
        {RPC_E_DISCONNECTED, 462},
        {RPC_E_SERVER_DIED, 462},
        {CO_E_OBJNOTCONNECTED, 462},
        {DISP_E_ARRAYISLOCKED, 10},
        {DISP_E_UNKNOWNLCID, 447},
        {DISP_E_PARAMNOTFOUND, 448},
        {CO_E_SERVER_EXEC_FAILURE, 429},
        {RPC_E_SERVER_DIED_DNE, 462},
    };
    for (const auto& known : cases) {
        EXPECT_EQ(known.Number, ErrorFromHresult(known.Result, nullptr).Number) << std::hex << known.Result;
    }
}

TEST(RuntimeErrorTest, AnotherResultKeepsItsNumber) {
    EXPECT_EQ(static_cast<long>(0x80004005), ErrorFromHresult(E_FAIL, nullptr).Number);
    EXPECT_EQ(static_cast<long>(0x80040001), ErrorFromHresult(static_cast<HRESULT>(0x80040001), nullptr).Number);
}

TEST(RuntimeErrorTest, ControlFacilityHoldsAHostsNumber) {
    EXPECT_EQ(1004, ErrorFromHresult(static_cast<HRESULT>(0x800A03EC), nullptr).Number);
    EXPECT_EQ(65535, ErrorFromHresult(static_cast<HRESULT>(0x800AFFFF), nullptr).Number);
    // An error must not look like none.
    EXPECT_EQ(static_cast<long>(0x800A0000), ErrorFromHresult(static_cast<HRESULT>(0x800A0000), nullptr).Number);
}

TEST(RuntimeErrorTest, ExceptionCodeComesBeforeItsResult) {
    EXCEPINFO both = Raised(1004, E_FAIL);
    EXPECT_EQ(1004, ErrorFromHresult(DISP_E_EXCEPTION, &both).Number);
    EXCEPINFO scode = Raised(0, static_cast<SCODE>(0x800A000D));
    EXPECT_EQ(13, ErrorFromHresult(DISP_E_EXCEPTION, &scode).Number);
}

TEST(RuntimeErrorTest, ANumberThatAnExceptionCarriesStaysAsItIs) {
    // Two of these lie in the range in which components number errors of their own.
    for (const HRESULT number : {REGDB_E_CLASSNOTREG, CO_E_OBJNOTCONNECTED, E_OUTOFMEMORY, DISP_E_TYPEMISMATCH}) {
        EXCEPINFO exception = Raised(0, number);
        EXPECT_EQ(number, ErrorFromHresult(DISP_E_EXCEPTION, &exception).Number);
        EXCEPINFO unused = Raised(0, S_OK);
        EXPECT_NE(number, ErrorFromHresult(number, &unused).Number) << "a bare result";
    }
}

TEST(RuntimeErrorTest, AFailureWithoutASourceIsMarkedAsForeign) {
    EXPECT_TRUE(ErrorFromHresult(static_cast<HRESULT>(0x80040002), nullptr).Foreign);
    EXCEPINFO nameless = Raised(0, static_cast<SCODE>(0x80040002));
    EXPECT_TRUE(ErrorFromHresult(DISP_E_EXCEPTION, &nameless).Foreign);
    EXCEPINFO named = Raised(0, static_cast<SCODE>(0x80040002));
    named.bstrSource = SysAllocString(L"brvADO");
    EXPECT_FALSE(ErrorFromHresult(DISP_E_EXCEPTION, &named).Foreign);
    EXPECT_FALSE(ErrorOf([] { RaiseError(5); }).Foreign);
    RuntimeError published;
    published.Number = -2147221502;
    published.Source = L"brvADO";
    const HRESULT result = PublishError(published);
    EXPECT_FALSE(ErrorOf([result] { CheckHresult(result); }).Foreign);
}

TEST(RuntimeErrorTest, ExceptionThatSaysNothingIsAnErrorAllTheSame) {
    EXCEPINFO nothing = Raised(0, S_OK);
    const RuntimeError error = ErrorFromHresult(DISP_E_EXCEPTION, &nothing);
    EXPECT_NE(0, error.Number);
    EXPECT_EQ(App::Title, error.Source);
    EXPECT_FALSE(error.Description.empty());
}

TEST(RuntimeErrorTest, ObjectErrorsPassWithTheSourceOfTheirObject) {
    EXCEPINFO exception = Raised(0, static_cast<SCODE>(0x80040001));
    exception.bstrSource = SysAllocString(L"brvADO");
    exception.bstrDescription = SysAllocString(L"no such object");
    exception.bstrHelpFile = SysAllocString(L"help.chm");
    exception.dwHelpContext = 12;
    const RuntimeError error = ErrorFromHresult(DISP_E_EXCEPTION, &exception);
    EXPECT_EQ(-2147221503, error.Number);
    EXPECT_EQ(L"brvADO", error.Source);
    EXPECT_EQ(L"no such object", error.Description);
    EXPECT_EQ(L"help.chm", error.HelpFile);
    EXPECT_EQ(12, error.HelpContext);
    EXPECT_EQ(nullptr, exception.bstrSource) << "taken over";
    EXPECT_EQ(nullptr, exception.bstrDescription);
    EXPECT_EQ(nullptr, exception.bstrHelpFile);
}

TEST(RuntimeErrorTest, EmptyTextsOfAnExceptionAreReplaced) {
    EXCEPINFO exception = Raised(13, 0);
    exception.bstrSource = SysAllocString(L"");
    const RuntimeError error = ErrorFromHresult(DISP_E_EXCEPTION, &exception);
    EXPECT_EQ(App::Title, error.Source);
    EXPECT_EQ(L"Type mismatch", error.Description);
}

TEST(RuntimeErrorTest, DetailsThatAreFilledInLaterAreAskedFor) {
    EXCEPINFO exception{};
    exception.pfnDeferredFillIn = FillLater;
    const RuntimeError error = ErrorFromHresult(DISP_E_EXCEPTION, &exception);
    EXPECT_EQ(static_cast<long>(0x80040005), error.Number);
    EXPECT_EQ(L"late source", error.Source);
    EXPECT_EQ(L"late description", error.Description);
}

TEST(RuntimeErrorTest, ResultWithoutATextOfItsOwnSaysSomething) {
    EXPECT_FALSE(ErrorFromHresult(static_cast<HRESULT>(0x80040123), nullptr).Description.empty());
    EXPECT_EQ(L"Application-defined or object-defined error", ErrorText(1004));
}

TEST(RuntimeErrorTest, RaiseErrorNamesItsSource) {
    const RuntimeError plain = ErrorOf([] { RaiseError(ErrorNumber::ObjectNotSet); });
    EXPECT_EQ(91, plain.Number);
    EXPECT_EQ(App::Title, plain.Source);
    EXPECT_EQ(ErrorText(91), plain.Description);
    const RuntimeError sourced = ErrorOf([] { RaiseError(5, L"somebody", L"something"); });
    EXPECT_EQ(L"somebody", sourced.Source);
    EXPECT_EQ(L"something", sourced.Description);
}

TEST(RuntimeErrorTest, SystemErrorCarriesWhatWindowsSaid) {
    const RuntimeError error = ErrorOf([] { RaiseSystemError(ErrorNumber::PermissionDenied, ERROR_ACCESS_DENIED); });
    EXPECT_EQ(70, error.Number);
    EXPECT_EQ(ERROR_ACCESS_DENIED, error.LastDllError);
    EXPECT_EQ(0u, error.Description.find(ErrorText(70)));
    EXPECT_GT(error.Description.size(), ErrorText(70).size());
    EXPECT_FALSE(std::iswspace(error.Description.back()));  // the system's texts end with a line end
    // A code that Windows has no words for.
    const RuntimeError unknown = ErrorOf([] { RaiseSystemError(ErrorNumber::DeviceIOError, 0x2FFFFFFF); });
    EXPECT_EQ(ErrorText(57), unknown.Description);
}

TEST(RuntimeErrorTest, CurrentErrorTakesWhateverWasThrown) {
    const auto caught = [](auto thrown) {
        try {
            throw std::move(thrown);
        } catch (...) {
            return CurrentError();
        }
    };
    RuntimeError own;
    own.Number = 5;
    own.Source = L"own";
    own.LastDllError = 3;
    EXPECT_EQ(L"own", caught(own.Copy()).Source);
    EXPECT_EQ(3, caught(own.Copy()).LastDllError);
    EXPECT_EQ(7, caught(std::bad_alloc()).Number);
    EXPECT_EQ(440, caught(std::runtime_error("x")).Number);
    EXPECT_EQ(440, caught(1).Number);
    EXPECT_EQ(App::Title, caught(1).Source);
}

// A copy that found no memory while it is thrown would end the process.
TEST(RuntimeErrorTest, IsThrownWithoutBeingCopied) {
    static_assert(!std::is_copy_constructible_v<RuntimeError> && !std::is_copy_assignable_v<RuntimeError>);
    static_assert(std::is_nothrow_move_constructible_v<RuntimeError>);
    RuntimeError error;
    error.Description.assign(100, L'x');
    const wchar_t* const text = error.Description.c_str();
    try {
        Raise(std::move(error));
    } catch (const RuntimeError& caught) {
        EXPECT_EQ(text, caught.Description.c_str());
    }
}

TEST(RuntimeErrorTest, NumbersBecomeResults) {
    const auto result = [](long number) {
        RuntimeError error;
        error.Number = number;
        return HresultFromError(error);
    };
    EXPECT_EQ(static_cast<HRESULT>(0x800A000D), result(13));
    EXPECT_EQ(static_cast<HRESULT>(0x800AFFFF), result(65535));
    EXPECT_EQ(static_cast<HRESULT>(0x80040001), result(-2147221503));
    EXPECT_EQ(static_cast<HRESULT>(0x800A0001), result(1));
    // No number of a host's, and no result either.
    for (const long number : {0L, 65536L, 70000L, 0x7FFFFFFFL}) EXPECT_EQ(E_FAIL, result(number)) << number;
    for (const HRESULT failure : {E_FAIL, E_UNEXPECTED, static_cast<HRESULT>(0x80000000), static_cast<HRESULT>(-1)})
        EXPECT_EQ(failure, result(failure));
}

TEST(RuntimeErrorTest, PublishedErrorTellsWhereHelpIs) {
    RuntimeError error;
    error.Number = 13;
    error.HelpFile = L"help.chm";
    error.HelpContext = 1234;
    EXPECT_EQ(static_cast<HRESULT>(0x800A000D), PublishError(error));
    IErrorInfo* info = nullptr;
    ASSERT_EQ(S_OK, GetErrorInfo(0, &info));
    BSTR file = nullptr;
    DWORD context = 0;
    EXPECT_EQ(S_OK, info->GetHelpFile(&file));
    EXPECT_EQ(S_OK, info->GetHelpContext(&context));
    EXPECT_STREQ(L"help.chm", file);
    EXPECT_EQ(1234U, context);
    SysFreeString(file);
    info->Release();
    EXPECT_EQ(S_FALSE, GetErrorInfo(0, &info)) << "it is taken once";
}

TEST(RuntimeErrorTest, WhatAPublishedErrorLeavesOutIsSaidByItsResult) {
    const auto checked = [](const std::wstring& source, const std::wstring& description) {
        RuntimeError error;
        error.Number = 13;
        error.Source = source;
        error.Description = description;
        const HRESULT result = PublishError(error);
        return ErrorOf([result] { CheckHresult(result); });
    };
    EXPECT_EQ(App::Title, checked(L"", L"why").Source);
    EXPECT_TRUE(checked(L"", L"why").Foreign);
    EXPECT_EQ(L"why", checked(L"", L"why").Description);
    EXPECT_EQ(L"Type mismatch", checked(L"who", L"").Description);
    EXPECT_EQ(L"who", checked(L"who", L"").Source);
    EXPECT_FALSE(checked(L"who", L"").Foreign);
    SetErrorInfo(0, nullptr);
    const RuntimeError none = ErrorOf([] { CheckHresult(DISP_E_TYPEMISMATCH); });
    EXPECT_EQ(L"Type mismatch", none.Description);
    EXPECT_TRUE(none.Foreign);
    EXPECT_EQ(13, ErrorOf([] { RaiseIfFailed(DISP_E_TYPEMISMATCH); }).Number);
    RaiseIfFailed(S_OK);
    RaiseIfFailed(S_FALSE);
}

TEST(RuntimeErrorTest, OnlyFailuresOfTheControlFacilityHoldANumber) {
    const auto number = [](unsigned long result) {
        return ErrorFromHresult(static_cast<HRESULT>(result), nullptr).Number;
    };
    EXPECT_EQ(1, number(0x800A0001));
    EXPECT_EQ(0xA0001, number(0x000A0001)) << "a success";
    EXPECT_EQ(static_cast<long>(0x80090001), number(0x80090001));
    EXPECT_EQ(static_cast<long>(0x800B0001), number(0x800B0001));
}

TEST(RuntimeErrorTest, PublishedErrorIsFoundByTheCaller) {
    RuntimeError error;
    error.Number = -2147221503;
    error.Source = L"brvADO";
    error.Description = L"what happened";
    const HRESULT result = PublishError(error);
    const RuntimeError found = ErrorOf([result] { CheckHresult(result); });
    EXPECT_EQ(error.Number, found.Number);
    EXPECT_EQ(L"brvADO", found.Source);
    EXPECT_EQ(L"what happened", found.Description);
    CheckHresult(S_OK);
    CheckHresult(S_FALSE);
}

TEST(RuntimeErrorTest, FilledExceptionComesBackAsItWas) {
    RuntimeError error;
    error.Number = 1004;
    error.Source = L"source";
    error.Description = std::wstring(L"with\0null", 9);
    error.HelpFile = L"file";
    error.HelpContext = 9;
    EXCEPINFO exception{};
    ASSERT_EQ(DISP_E_EXCEPTION, FillException(error, &exception));
    const RuntimeError back = ErrorFromHresult(DISP_E_EXCEPTION, &exception);
    EXPECT_EQ(error.Number, back.Number);
    EXPECT_EQ(error.Source, back.Source);
    EXPECT_EQ(error.Description, back.Description);
    EXPECT_EQ(error.HelpFile, back.HelpFile);
    EXPECT_EQ(error.HelpContext, back.HelpContext);
}

TEST(RuntimeErrorTest, WithoutAnExceptionToFillTheErrorIsPublished) {
    RuntimeError error;
    error.Number = 1004;
    error.Source = L"published";
    const HRESULT result = FillException(error, nullptr);
    EXPECT_EQ(static_cast<HRESULT>(0x800A03EC), result);
    EXPECT_EQ(L"published", ErrorOf([result] { CheckHresult(result); }).Source);
}

// Written down apart from the table: users read these, and hosts compare the numbers.
TEST(RuntimeErrorTest, EachNumberHasItsText) {
    const std::pair<long, const wchar_t*> all[] = {
        {5, L"Invalid procedure call or argument"},
        {6, L"Overflow"},
        {7, L"Out of memory"},
        {9, L"Subscript out of range"},
        {10, L"The array is fixed or locked"},
        {11, L"Division by zero"},
        {13, L"Type mismatch"},
        {52, L"Bad file name"},
        {53, L"File not found"},
        {55, L"File already open"},
        {57, L"Device I/O error"},
        {58, L"File already exists"},
        {61, L"Disk full"},
        {68, L"Device unavailable"},
        {70, L"Permission denied"},
        {71, L"Disk not ready"},
        {75, L"Path/File access error"},
        {76, L"Path not found"},
        {91, L"Object variable not set"},
        {94, L"Invalid use of Null"},
        {321, L"Invalid file format"},
        {380, L"Invalid property value"},
        {400, L"The window is shown already and cannot be shown modally"},
        {424, L"Object required"},
        {429, L"The object cannot be created"},
        {430, L"The class does not support automation"},
        {438, L"The object does not support this property or method"},
        {440, L"Automation error"},
        {445, L"The object does not support this action"},
        {446, L"The object does not support named arguments"},
        {447, L"The object does not support the current locale"},
        {448, L"Named argument not found"},
        {449, L"An argument is missing that is not optional"},
        {450, L"Wrong number of arguments"},
        {451, L"The object is not a collection"},
        {457, L"The key belongs to another element of the collection"},
        {462, L"The remote server is not available"},
        {521, L"The clipboard cannot be opened"},
        {32755, L"Cancel was selected"},
        {35600, L"Index out of bounds"},
        {35601, L"Element not found"},
        {35602, L"The key is not unique in the collection"},
        {static_cast<long>(0x80020101), L"The script has failed and has told its own host why"},
    };
    for (const auto& [number, text] : all) EXPECT_EQ(text, ErrorText(number)) << number;
    EXPECT_EQ(L"Application-defined or object-defined error", ErrorText(54321));
}
