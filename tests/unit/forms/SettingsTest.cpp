#include "forms/Settings.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/Errors.h"

namespace {

constexpr const wchar_t* Root = L"Software\\VB and VBA Program Settings\\FormsTest";

class SettingsTest : public testing::Test {
protected:
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }
    static void Clear() {
        RegDeleteTreeW(HKEY_CURRENT_USER, Root);
        RegDeleteKeyW(HKEY_CURRENT_USER, Root);
    }
    static void Put(DWORD type, const void* data, DWORD bytes) {
        HKEY key;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, (std::wstring(Root) + L"\\Settings").c_str(), 0,
                                                 nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr));
        RegSetValueExW(key, L"Key", 0, type, static_cast<const BYTE*>(data), bytes);
        RegCloseKey(key);
    }
};

}  // namespace

TEST_F(SettingsTest, AMissingValueIsTheFallback) {
    EXPECT_EQ(L"1000", GetSetting(L"FormsTest", L"Settings", L"Key", L"1000"));
    SaveSetting(L"FormsTest", L"Settings", L"Other", L"x");
    EXPECT_EQ(L"1000", GetSetting(L"FormsTest", L"Settings", L"Key", L"1000"));
}

TEST_F(SettingsTest, WhatWasSavedComesBack) {
    SaveSetting(L"FormsTest", L"Settings", L"Key", L"6487.5");
    EXPECT_EQ(L"6487.5", GetSetting(L"FormsTest", L"Settings", L"Key", L""));
    SaveSetting(L"FormsTest", L"Settings", L"Key", L"");
    EXPECT_EQ(L"", GetSetting(L"FormsTest", L"Settings", L"Key", L"fallback"));
}

TEST_F(SettingsTest, AValueWithoutItsEndingNulAndOneOfAnotherType) {
    Put(REG_SZ, L"1234", 8);
    EXPECT_EQ(L"1234", GetSetting(L"FormsTest", L"Settings", L"Key", L""));
    Put(REG_EXPAND_SZ, L"5678", 10);
    EXPECT_EQ(L"5678", GetSetting(L"FormsTest", L"Settings", L"Key", L""));
    const DWORD number = 1000;
    Put(REG_DWORD, &number, sizeof number);
    EXPECT_EQ(L"", GetSetting(L"FormsTest", L"Settings", L"Key", L"1000"));
    const BYTE odd[] = {0x31};
    Put(REG_SZ, odd, 1);
    EXPECT_EQ(L"", GetSetting(L"FormsTest", L"Settings", L"Key", L"1000"));
}

TEST_F(SettingsTest, AStoreThatRefusesIsAnError) {
    // Below a volatile key no lasting one can be made.
    HKEY key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, Root, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                             nullptr, &key, nullptr));
    RegCloseKey(key);
    try {
        SaveSetting(L"FormsTest", L"Settings", L"Key", L"x");
        FAIL() << "saved below a volatile key";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(ErrorNumber::InvalidProcedureCall, error.Number);
        EXPECT_EQ(ERROR_CHILD_MUST_BE_VOLATILE, error.LastDllError);
    }
}

TEST(SettingsNumbers, AreWrittenAndReadWithAPoint) {
    const LCID before = GetThreadLocale();
    SetThreadLocale(MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT));
    EXPECT_EQ(L"6487.5", FromSingle(6487.5F));
    EXPECT_FLOAT_EQ(6487.5F, ToSingle(L"6487.5"));
    SetThreadLocale(before);
    EXPECT_EQ(L"1000", FromSingle(1000));
    EXPECT_EQ(L"-1005", FromSingle(-1005));
    EXPECT_EQ(L"1000000", FromSingle(1000000));
    EXPECT_EQ(L"6488.571", FromSingle(6488.5713F));
    EXPECT_FLOAT_EQ(-15.0F, ToSingle(L" -15 "));
    EXPECT_FLOAT_EQ(1000.0F, ToSingle(L"1e3"));
}

TEST(SettingsNumbers, WhatIsNoNumberIsAnError) {
    for (const wchar_t* text : {L"", L"abc", L"12px", L"nan", L"inf", L"--5", L"1 2x"}) {
        EXPECT_EQ(ErrorNumber::TypeMismatch, NumberOf([&] { ToSingle(text); })) << text;
    }
    EXPECT_EQ(ErrorNumber::Overflow, NumberOf([] { ToSingle(L"1e40"); }));
}
