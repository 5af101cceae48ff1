#include <gtest/gtest.h>

#include "Component.h"

namespace {

std::wstring ValueOf(HKEY root, const std::wstring& path, const wchar_t* name = nullptr) {
    wchar_t value[1024];
    DWORD size = sizeof value;
    const LSTATUS status =
        RegGetValueW(root, (L"Software\\Classes\\" + path).c_str(), name, RRF_RT_REG_SZ, nullptr, value, &size);
    return status == ERROR_SUCCESS ? value : L"(none)";
}

std::wstring ClassText() {
    wchar_t text[40];
    StringFromGUID2(Component::Class, text, 40);
    return text;
}

// Whether there is any trace of the class.
bool IsRegistered(HKEY root) {
    for (const std::wstring& path :
         {std::wstring(L"brvError.clsError"), std::wstring(L"brvError.clsError.1"), L"CLSID\\" + ClassText()}) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(root, (L"Software\\Classes\\" + path).c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS) {
            RegCloseKey(key);
            return true;
        }
    }
    return false;
}

std::wstring LibraryPath() {
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(Component::Library(), path, MAX_PATH));
}

class BrvErrorServer : public testing::Test {
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }
};

}  // namespace

TEST_F(BrvErrorServer, StaysLoadedForAsLongAsAnObjectLives) {
    auto* canUnload = Component::Exported<HRESULT WINAPI()>("DllCanUnloadNow");
    EXPECT_EQ(canUnload(), S_OK);
    {
        const Object component = Component::Make();
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(BrvErrorServer, KnowsItsOwnClassAlone) {
    auto* getClassObject = Component::Exported<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject");
    void* object = &object;
    EXPECT_EQ(getClassObject(CLSID_NULL, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
}

TEST_F(BrvErrorServer, IsFoundByNameWhenRegisteredForTheUser) {
    const bool before = IsRegistered(HKEY_CURRENT_USER);
    auto* install = Component::Exported<HRESULT WINAPI(BOOL, LPCWSTR)>("DllInstall");
    ASSERT_EQ(install(TRUE, L"User"), S_OK);
    EXPECT_EQ(ValueOf(HKEY_CURRENT_USER, L"brvError.clsError\\CLSID"), ClassText());
    EXPECT_EQ(ValueOf(HKEY_CURRENT_USER, L"CLSID\\" + ClassText() + L"\\InprocServer32"), LibraryPath());
    EXPECT_EQ(ValueOf(HKEY_CURRENT_USER, L"CLSID\\" + ClassText() + L"\\InprocServer32", L"ThreadingModel"),
              L"Apartment");
    // Wine up to 8 does not see the classes of the user, in HKEY_CLASSES_ROOT as little as in COM.
    HKEY seen = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, L"brvError.clsError", 0, KEY_READ, &seen) == ERROR_SUCCESS) {
        RegCloseKey(seen);
        EXPECT_NO_THROW(EXPECT_TRUE(Object::Create(L"brvError.clsError").Has(L"ErrorMessage")));
    }
    ASSERT_EQ(install(FALSE, L"user"), S_OK);
    EXPECT_FALSE(IsRegistered(HKEY_CURRENT_USER));
    EXPECT_EQ(install(FALSE, L"user"), S_OK) << "what is gone need not be removed";
    if (before) install(TRUE, L"user");
}

TEST_F(BrvErrorServer, RegistersForNobodyElseByTheUsersDoor) {
    auto* install = Component::Exported<HRESULT WINAPI(BOOL, LPCWSTR)>("DllInstall");
    EXPECT_EQ(install(TRUE, L"everybody"), E_INVALIDARG);
    EXPECT_EQ(install(TRUE, nullptr), E_INVALIDARG);
}

TEST_F(BrvErrorServer, RegistersForTheMachineWhereThatIsAllowed) {
    const bool before = IsRegistered(HKEY_LOCAL_MACHINE);
    const HRESULT result = Component::Exported<HRESULT WINAPI()>("DllRegisterServer")();
    if (result == E_ACCESSDENIED) {
        EXPECT_EQ(IsRegistered(HKEY_LOCAL_MACHINE), before);
        GTEST_SKIP() << "no rights to register for the machine";
    }
    ASSERT_EQ(result, S_OK);
    EXPECT_EQ(ValueOf(HKEY_LOCAL_MACHINE, L"CLSID\\" + ClassText() + L"\\InprocServer32"), LibraryPath());
    EXPECT_NO_THROW(EXPECT_TRUE(Object::Create(L"brvError.clsError").Has(L"ErrorMessage")));
    EXPECT_EQ(Component::Exported<HRESULT WINAPI()>("DllUnregisterServer")(), S_OK);
    EXPECT_FALSE(IsRegistered(HKEY_LOCAL_MACHINE));
    if (before) Component::Exported<HRESULT WINAPI()>("DllRegisterServer")();
}

TEST_F(BrvErrorServer, MakesObjectsThatKnowTheirMembersWithoutRegardToCase) {
    const Object component = Component::Make();
    for (const wchar_t* name : {L"Constructor", L"ALERT", L"logevent", L"ErrorMessage", L"DisplayAlerts", L"LogFile"}) {
        EXPECT_TRUE(component.Has(name)) << name;
    }
    EXPECT_FALSE(component.Has(L"Destructor"));
}
