#include <windows.h>

#include <cmath>
#include <cstdlib>

#include "Cases.h"
#include "Windows.h"
#include "automation/App.h"
#include "forms/Settings.h"
#include "support/Component.h"
#include "support/Errors.h"
#include "support/Settings.h"

// What stands in the registry may be anything: another program or a hand has written it.
namespace {

constexpr long TypeMismatch = 13;
constexpr long Overflow = 6;

struct Setting {
    DWORD Type = REG_SZ;
    std::string Bytes;
    std::wstring Text;  // what it says as a text
    long Number = 0;    // the error that it is, 0 for none, -1 where it may be a number or none
    float Value = 0;    // where it is a number
};

std::string AsBytes(const std::wstring& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}

// A number that a Single holds exactly, written down in one of the ways of the language.
Setting NumberSetting(Random& random, long least, long most) {
    Setting made;
    const long eighths = random.Between(least * 8, most * 8);
    made.Value = static_cast<float>(eighths) / 8;
    char digits[60];
    switch (random.Below(4)) {
        case 0:
            std::snprintf(digits, sizeof digits, "%.3f", static_cast<double>(made.Value));
            break;
        case 1:
            std::snprintf(digits, sizeof digits, "%.3fE+1", static_cast<double>(made.Value) / 10);
            break;
        case 2:
            std::snprintf(digits, sizeof digits, "%.1fe-2", static_cast<double>(made.Value) * 100);
            break;
        default:
            made.Value = std::floor(made.Value);
            std::snprintf(digits, sizeof digits, "%.0f", static_cast<double>(made.Value));
            break;
    }
    // What was rounded on the way is what counts.
    made.Value = std::strtof(digits, nullptr);
    made.Text = std::wstring(random.Below(3), L' ') + std::wstring(digits, digits + strlen(digits)) +
                std::wstring(random.Below(3), L' ');
    made.Bytes = AsBytes(made.Text);
    return made;
}

Setting AnySetting(Random& random, long least, long most) {
    Setting made;
    switch (random.Below(6)) {
        case 0:
        case 1:
            made = NumberSetting(random, least, most);
            break;
        case 2:
            made.Text = UpToNul(AnyText(random, 60));
            made.Bytes = AsBytes(made.Text);
            made.Number = -1;
            break;
        case 3:
            made.Text = random.Pick<std::wstring>(
                {L"", L"wide", L"1e39", L"-1e39", L"1 2", L"0x10", L"1.2.3", L"--5", L"1e", L"\u221e", L"NaN", L"inf",
                 L"1e999999999999", TextOfLength(random, LongText), std::wstring(LongText, L'9'),
                 std::wstring(LongText, L' '), L"0." + std::wstring(LongText, L'0') + L"1"});
            made.Text = UpToNul(made.Text);
            made.Bytes = AsBytes(made.Text);
            made.Number = -1;
            if (made.Text == L"" || made.Text == L"wide" || made.Text == L"--5" || made.Text == L"1.2.3")
                made.Number = TypeMismatch;
            if (made.Text == L"1e39" || made.Text == L"-1e39") made.Number = Overflow;
            break;
        case 4:  // of another kind: it reads as no text
            made.Type = random.Pick<DWORD>(
                {REG_DWORD, REG_BINARY, REG_QWORD, REG_MULTI_SZ, REG_NONE, REG_DWORD_BIG_ENDIAN, 12345});
            made.Bytes = AnyBytes(random, 40);
            if (made.Type == REG_DWORD || made.Type == REG_DWORD_BIG_ENDIAN) made.Bytes.resize(4);
            if (made.Type == REG_QWORD) made.Bytes.resize(8);
            made.Number = TypeMismatch;
            return made;
        default: {  // bytes, of an odd number too
            made.Bytes = AnyBytes(random, 41);
            std::wstring text(made.Bytes.size() / 2, L'\0');
            memcpy(text.data(), made.Bytes.data(), text.size() * 2);
            made.Text = UpToNul(text);
            made.Number = made.Text.empty() ? TypeMismatch : -1;
            return made;
        }
    }
    if (random.OneIn(4)) made.Type = REG_EXPAND_SZ;
    // With an end, without, or with something after it.
    if (!random.OneIn(3)) made.Bytes += std::string(2, '\0');
    if (random.OneIn(4)) made.Bytes += std::string(2, '\0') + AnyBytes(random, 10);
    return made;
}

std::string Told(const Setting& setting) {
    return "type " + std::to_string(setting.Type) + ", " + Shown(setting.Text) + ", error " +
           std::to_string(setting.Number);
}

void Put(const wchar_t* name, const Setting& setting) {
    HKEY key = nullptr;
    const std::wstring path = std::wstring(L"Software\\VB and VBA Program Settings\\") + App::Title + L"\\Settings";
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr));
    EXPECT_EQ(ERROR_SUCCESS,
              RegSetValueExW(key, name, 0, setting.Type, reinterpret_cast<const BYTE*>(setting.Bytes.data()),
                             static_cast<DWORD>(setting.Bytes.size())));
    RegCloseKey(key);
}

class SettingsFuzz : public ComponentFixture {};

}  // namespace

TEST_F(SettingsFuzz, IsReadAsATextAndThatAsANumber) {
    ForEachCase(400, [](Random& random) {
        const Setting setting = AnySetting(random, -100000, 100000);
        SCOPED_TRACE(Told(setting));
        Put(L"Any", setting);
        const std::wstring text = GetSetting(App::Title, L"Settings", L"Any", L"fallback");
        ASSERT_TRUE(setting.Text == text) << Shown(text);
        float value = 0;
        const long number = NumberOf([&] { value = ToSingle(text); });
        if (setting.Number == 0) {
            EXPECT_EQ(0, number);
            EXPECT_EQ(setting.Value, value);
        } else if (setting.Number > 0) {
            EXPECT_EQ(setting.Number, number);
        } else {
            EXPECT_TRUE(number == 0 || number == TypeMismatch || number == Overflow) << number;
            EXPECT_TRUE(number != 0 || std::isfinite(value));
        }
    });
}

TEST_F(SettingsFuzz, WhatIsWrittenIsReadAgain) {
    ForEachCase(400, [](Random& random) {
        const std::wstring text = AnyText(random, 60);
        SaveSetting(App::Title, L"Settings", L"Any", text);
        EXPECT_EQ(Shown(UpToNul(text)), Shown(GetSetting(App::Title, L"Settings", L"Any", L"fallback")));
        const float value = static_cast<float>(random.Between(-10000000, 10000000)) / 16;
        EXPECT_NEAR(value, ToSingle(FromSingle(value)), std::fabs(value) * 1e-6);
    });
}

// The window opens whatever stands there, and the SQL comes back. The first of the four that is no number ends the
// load.
TEST_F(SettingsFuzz, TheWindowOpens) {
    ForEachCase(12, [&](Random& random) {
        Settings::Clear();
        Errors.Forget();
        std::wstring expected;
        bool open = false;  // whether a report follows, or none, is not known
        std::string shown;
        for (const wchar_t* name : {L"MainLeft", L"MainTop", L"MainWidth", L"MainHeight"}) {
            if (random.OneIn(3)) continue;
            const Setting setting = AnySetting(random, 0, 12000);
            shown += Told(setting) + "\n";
            Put(name, setting);
            if (setting.Number != 0 && expected.empty() && !open) {
                if (setting.Number < 0) {
                    open = true;
                } else {
                    expected = L"frmSQLEditor.Form_Load " + std::to_wstring(setting.Number);
                }
            }
        }
        SCOPED_TRACE(shown);
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", Object());
        const std::wstring sql = InControl(AnyText(random, 60));
        bool visible = false;
        EXPECT_EQ(Shown(sql), Shown(DisplayAndClose(editor, sql, [&] { visible = EditorWindow::Find() != nullptr; })));
        EXPECT_TRUE(visible);
        const std::wstring places = Errors.Places();
        if (open) {
            EXPECT_TRUE(places.empty() || places == L"frmSQLEditor.Form_Load 13" ||
                        places == L"frmSQLEditor.Form_Load 6")
                << testing::PrintToString(places);
        } else {
            EXPECT_EQ(expected, places);
        }
    });
}
