#include "automation/Server.h"

#include <gtest/gtest.h>
#include <sddl.h>
#include <olectl.h>

#include <string>
#include <vector>

#include "FakeDispatch.h"
#include "automation/DynamicObject.h"
#include "support/PatchedFunction.h"

// Registration is tested in a key of our own that stands in for the hives, so that nothing is left behind.

namespace {

constexpr CLSID ClassId = {0x6F1B0B3A, 0x7C0E, 0x4A53, {0x9B, 0x5E, 0x2D, 0x11, 0x8C, 0x40, 0x6A, 0x71}};
constexpr CLSID OtherId = {0x6F1B0B3B, 0x7C0E, 0x4A53, {0x9B, 0x5E, 0x2D, 0x11, 0x8C, 0x40, 0x6A, 0x71}};
constexpr GUID LibraryId = {0xD4AB6E0E, 0x2E0F, 0x4E0B, {0x8C, 0x3C, 0x55, 0x7A, 0x11, 0x9E, 0x30, 0x27}};
constexpr const wchar_t* ClassText = L"{6F1B0B3A-7C0E-4A53-9B5E-2D118C406A71}";
constexpr const wchar_t* LibraryText = L"{D4AB6E0E-2E0F-4E0B-8C3C-557A119E3027}";
constexpr const wchar_t* Sandbox = L"Software\\AutomationTest sandbox";

HRESULT Make(REFIID iid, void** object) {
    auto* made = new DynamicObject;
    const HRESULT result = made->QueryInterface(iid, object);
    made->Release();
    return result;
}

constexpr ComClass Classes[] = {
    {ClassId, L"AutomationTest.clsThing", L"A thing", &LibraryId, &Make},
    {OtherId, L"AutomationTest.clsOther", L"Another thing", nullptr, &Make},
};

// Puts a private key in the place of a hive for this process.
class Hive {
public:
    explicit Hive(HKEY replaced, const wchar_t* name = L"hive", bool sealed = false)
        : replaced_(replaced), path_(std::wstring(Sandbox) + L"\\" + name) {
        RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
        EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, &key_, nullptr));
        HKEY classes = nullptr;
        EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(key_, L"Software\\Classes\\CLSID", 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, &classes, nullptr));
        RegCloseKey(classes);
        if (sealed) {
            // Wine looks at the rights of a key that is opened, and not of the one that a new key is made in.
            EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(key_, L"Software\\Classes\\AutomationTest.clsThing", 0, nullptr, 0,
                                                     KEY_ALL_ACCESS, nullptr, &classes, nullptr));
            RegCloseKey(classes);
            Seal(L"Software\\Classes\\AutomationTest.clsThing");
            Seal(L"Software\\Classes");
        }
        EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(replaced_, key_));
    }
    ~Hive() {
        RegOverridePredefKey(replaced_, nullptr);
        for (const std::wstring& path : sealed_) SetAccess(path, L"D:P(A;;KA;;;WD)");
        RegCloseKey(key_);
        RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, path_.c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, Sandbox);  // unless another one stands there
    }
    Hive(const Hive&) = delete;
    Hive& operator=(const Hive&) = delete;

    // A value below the hive, "<none>" when there is none.
    std::wstring Value(const std::wstring& path, const wchar_t* name = nullptr) const {
        wchar_t text[1024];
        DWORD size = sizeof text;
        return RegGetValueW(key_, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS ? text
                                                                                                            : L"<none>";
    }
    bool Has(const std::wstring& path) const {
        HKEY found = nullptr;
        if (RegOpenKeyExW(key_, path.c_str(), 0, KEY_READ, &found) != ERROR_SUCCESS) return false;
        RegCloseKey(found);
        return true;
    }
    int KeysBelow(const std::wstring& path) const {
        HKEY found = nullptr;
        if (RegOpenKeyExW(key_, path.c_str(), 0, KEY_READ, &found) != ERROR_SUCCESS) return -1;
        DWORD keys = 0;
        RegQueryInfoKeyW(found, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr);
        RegCloseKey(found);
        return static_cast<int>(keys);
    }

private:
    // Takes from everybody the right to write there.
    void Seal(const wchar_t* path) {
        sealed_.insert(sealed_.begin(), path_ + L"\\" + path);
        SetAccess(sealed_.front(), L"D:P(A;;KRWDSD;;;WD)");
    }
    void SetAccess(const std::wstring& path, const wchar_t* descriptor) {
        HKEY key = nullptr;
        PSECURITY_DESCRIPTOR made = nullptr;
        EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(descriptor, SDDL_REVISION_1, &made, nullptr));
        EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, READ_CONTROL | WRITE_DAC, &key));
        EXPECT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, made));
        RegCloseKey(key);
        LocalFree(made);
    }

    HKEY replaced_;
    std::wstring path_;
    std::vector<std::wstring> sealed_;  // the outermost first
    HKEY key_ = nullptr;
};

std::wstring Module() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

void ExpectRegistered(const Hive& hive) {
    const std::wstring classes = L"Software\\Classes\\";
    const std::wstring id = classes + L"CLSID\\" + ClassText;
    EXPECT_EQ(L"A thing", hive.Value(classes + L"AutomationTest.clsThing"));
    EXPECT_EQ(ClassText, hive.Value(classes + L"AutomationTest.clsThing\\CLSID"));
    EXPECT_EQ(L"AutomationTest.clsThing.1", hive.Value(classes + L"AutomationTest.clsThing\\CurVer"));
    EXPECT_EQ(ClassText, hive.Value(classes + L"AutomationTest.clsThing.1\\CLSID"));
    EXPECT_EQ(L"A thing", hive.Value(id));
    EXPECT_EQ(Module(), hive.Value(id + L"\\InprocServer32"));
    EXPECT_EQ(L"Apartment", hive.Value(id + L"\\InprocServer32", L"ThreadingModel"));
    EXPECT_EQ(L"AutomationTest.clsThing.1", hive.Value(id + L"\\ProgID"));
    EXPECT_EQ(L"AutomationTest.clsThing", hive.Value(id + L"\\VersionIndependentProgID"));
    EXPECT_TRUE(hive.Has(id + L"\\Programmable"));
    EXPECT_EQ(LibraryText, hive.Value(id + L"\\TypeLib"));
    EXPECT_EQ(L"Another thing", hive.Value(classes + L"AutomationTest.clsOther"));
}

}  // namespace

TEST(ServerTest, RegistersForEverybody) {
    const Hive machine(HKEY_LOCAL_MACHINE);
    ASSERT_EQ(S_OK, Server::Register(Classes, 2, Server::Scope::Machine, false));
    ExpectRegistered(machine);
    ASSERT_EQ(S_OK, Server::Register(Classes, 2, Server::Scope::Machine, false)) << "a second time as well";
    ASSERT_EQ(S_OK, Server::Unregister(Classes, 2, Server::Scope::Machine, false));
    EXPECT_EQ(1, machine.KeysBelow(L"Software\\Classes"));
    EXPECT_EQ(0, machine.KeysBelow(L"Software\\Classes\\CLSID"));
    EXPECT_EQ(S_OK, Server::Unregister(Classes, 2, Server::Scope::Machine, false)) << "what is not there is no failure";
}

TEST(ServerTest, RegistersForTheUserWithoutTheMachine) {
    const Hive machine(HKEY_LOCAL_MACHINE, L"machine", true);
    {
        const Hive user(HKEY_CURRENT_USER, L"user");
        ASSERT_EQ(S_OK, Server::Register(Classes, 2, Server::Scope::User, false));
        ExpectRegistered(user);
        EXPECT_EQ(0, machine.KeysBelow(L"Software\\Classes\\CLSID"));
        ASSERT_EQ(S_OK, Server::Unregister(Classes, 2, Server::Scope::User, false));
        EXPECT_EQ(1, user.KeysBelow(L"Software\\Classes"));
        EXPECT_EQ(0, user.KeysBelow(L"Software\\Classes\\CLSID"));
    }
}

// Windows keeps CLSID apart for programs of 32 and of 64 bits, and the names together.
TEST(ServerTest, KeepsTheNamesThatTheOtherWidthNeeds) {
    constexpr REGSAM Other = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    const std::wstring name = L"Software\\Classes\\AutomationTest.clsThing";
    const std::wstring id = std::wstring(L"Software\\Classes\\CLSID\\") + ClassText;
    const auto has = [](const std::wstring& path, REGSAM view) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ | view, &key) != ERROR_SUCCESS) return false;
        RegCloseKey(key);
        return true;
    };
    // As the other width registers itself.
    HKEY other = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, id.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | Other,
                                             nullptr, &other, nullptr));
    RegCloseKey(other);
    const bool apart = !has(id, 0);
    if (apart) {
        EXPECT_EQ(S_OK, Server::Register(Classes, 1, Server::Scope::Machine, false));
        EXPECT_TRUE(has(id, 0));
        EXPECT_EQ(S_OK, Server::Unregister(Classes, 1, Server::Scope::Machine, false));
        EXPECT_FALSE(has(id, 0));
        EXPECT_TRUE(has(id, Other));
        EXPECT_TRUE(has(name + L"\\CLSID", 0));
        EXPECT_TRUE(has(name + L".1\\CLSID", 0));
    }
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyExW(HKEY_LOCAL_MACHINE, id.c_str(), Other, 0));
    // The last one takes them along.
    EXPECT_EQ(S_OK, Server::Register(Classes, 1, Server::Scope::Machine, false));
    EXPECT_EQ(S_OK, Server::Unregister(Classes, 1, Server::Scope::Machine, false));
    EXPECT_FALSE(has(name, 0));
    EXPECT_FALSE(has(name + L".1", 0));
    EXPECT_FALSE(has(id, 0));
    if (!apart) GTEST_SKIP() << "this system has one width only";
}

TEST(ServerTest, SaysThatAccessWasDenied) {
    const Hive machine(HKEY_LOCAL_MACHINE, L"machine", true);
    EXPECT_EQ(E_ACCESSDENIED, Server::Register(Classes, 2, Server::Scope::Machine, false));
    EXPECT_EQ(2, machine.KeysBelow(L"Software\\Classes"));
    EXPECT_EQ(0, machine.KeysBelow(L"Software\\Classes\\CLSID"));
    EXPECT_TRUE(machine.Has(L"Software\\Classes\\AutomationTest.clsThing")) << "what stood there before stays";
}

TEST(ServerTest, RemovesWhatWasWrittenBeforeAFailure) {
    const Hive machine(HKEY_LOCAL_MACHINE);
    // Keys that outlive a restart cannot stand in one that does not: the second class cannot be written.
    HKEY passing = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\AutomationTest.clsOther", 0,
                                             nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &passing, nullptr));
    RegCloseKey(passing);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE),
              Server::Register(Classes, 2, Server::Scope::Machine, false));
    EXPECT_EQ(1, machine.KeysBelow(L"Software\\Classes"));
    EXPECT_EQ(0, machine.KeysBelow(L"Software\\Classes\\CLSID"));
}

TEST(ServerTest, RegistersTheTypeLibrary) {
    const std::wstring library = std::wstring(L"TypeLib\\") + LibraryText + L"\\1.0";
    const std::wstring file = library + (sizeof(void*) == 8 ? L"\\0\\win64" : L"\\0\\win32");
    const Hive machine(HKEY_LOCAL_MACHINE);
    const Hive classes(HKEY_CLASSES_ROOT, L"classes");
    ASSERT_EQ(S_OK, Server::Register(Classes, 2, Server::Scope::Machine, true));
    ExpectRegistered(machine);
    EXPECT_EQ(L"Library of a test", classes.Value(library));
    EXPECT_EQ(Module(), classes.Value(file));
    ASSERT_EQ(S_OK, Server::Unregister(Classes, 2, Server::Scope::Machine, true));
    EXPECT_FALSE(classes.Has(library));
    EXPECT_EQ(S_OK, Server::Unregister(Classes, 2, Server::Scope::Machine, true));
}

TEST(ServerTest, RegistersTheTypeLibraryForTheUser) {
    const std::wstring library = std::wstring(L"TypeLib\\") + LibraryText + L"\\1.0";
    const Hive classes(HKEY_CLASSES_ROOT, L"classes");
    const Hive user(HKEY_CURRENT_USER, L"user");
    // Wine registers type libraries of users for everybody.
    const bool wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    const std::wstring there = wine ? library : L"Software\\Classes\\" + library;
    const Hive& hive = wine ? classes : user;
    ASSERT_EQ(S_OK, Server::Register(Classes, 2, Server::Scope::User, true));
    ExpectRegistered(user);
    EXPECT_EQ(L"Library of a test", hive.Value(there));
    ASSERT_EQ(S_OK, Server::Unregister(Classes, 2, Server::Scope::User, true));
    EXPECT_FALSE(hive.Has(there));
}

namespace {
HRESULT loaded = S_OK;
HRESULT WINAPI LoadInstead(const wchar_t*, REGKIND kind, ITypeLib** library) noexcept {
    EXPECT_EQ(REGKIND_NONE, kind) << "for everybody or for the user is said afterwards";
    *library = nullptr;
    return loaded;
}
}  // namespace

TEST(ServerTest, ATypeLibraryThatCannotBeLoadedIsSaidAndLeavesNothing) {
    const PatchedFunction load(L"oleaut32.dll", "LoadTypeLibEx", reinterpret_cast<void*>(&LoadInstead));
    ASSERT_TRUE(load);
    for (const Server::Scope scope : {Server::Scope::Machine, Server::Scope::User}) {
        const Hive hive(scope == Server::Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER);
        for (const auto& [failure, said] : {std::pair{TYPE_E_CANTLOADLIBRARY, SELFREG_E_TYPELIB},
                                            {E_FAIL, SELFREG_E_TYPELIB},
                                            {E_ACCESSDENIED, E_ACCESSDENIED},
                                            {E_OUTOFMEMORY, E_OUTOFMEMORY}}) {
            loaded = failure;
            EXPECT_EQ(said, Server::Register(Classes, 2, scope, true));
            EXPECT_EQ(1, hive.KeysBelow(L"Software\\Classes"));
            EXPECT_EQ(0, hive.KeysBelow(L"Software\\Classes\\CLSID"));
        }
        ASSERT_EQ(S_OK, Server::Register(Classes, 2, scope, false));
        loaded = E_ACCESSDENIED;
        EXPECT_EQ(SELFREG_E_TYPELIB, Server::Unregister(Classes, 2, scope, true));
        EXPECT_EQ(0, hive.KeysBelow(L"Software\\Classes\\CLSID")) << "the classes go all the same";
    }
}

TEST(ServerTest, GivesAFactoryForItsClasses) {
    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, Server::GetClassObject(Classes, 2, OtherId, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    EXPECT_FALSE(Server::CanUnload());
    IDispatch* made = nullptr;
    EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&made)));
    ASSERT_NE(nullptr, made);
    void* aggregated = made;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(made, IID_IUnknown, &aggregated));
    EXPECT_EQ(nullptr, aggregated);
    made->Release();
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IDispatch, nullptr));
    void* wrong = factory;
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IEnumVARIANT, &wrong));
    EXPECT_EQ(nullptr, wrong);
    factory->Release();
}

TEST(ServerTest, RefusesOtherClassesAndInterfaces) {
    void* object = reinterpret_cast<void*>(1);
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, Server::GetClassObject(Classes, 2, LibraryId, IID_IClassFactory, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_NOINTERFACE, Server::GetClassObject(Classes, 2, ClassId, IID_IDispatch, &object));
    EXPECT_EQ(E_POINTER, Server::GetClassObject(Classes, 2, ClassId, IID_IClassFactory, nullptr));
    EXPECT_TRUE(Server::CanUnload());
}

TEST(ServerTest, LocksKeepTheModule) {
    EXPECT_TRUE(Server::CanUnload());
    {
        const ModuleLock lock;
        ModuleLock copy(lock);
        copy = lock;
        EXPECT_FALSE(Server::CanUnload());
    }
    EXPECT_TRUE(Server::CanUnload());
    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, Server::GetClassObject(Classes, 2, ClassId, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    factory->LockServer(TRUE);
    IClassFactory* const kept = factory;
    kept->AddRef();
    kept->LockServer(FALSE);
    kept->LockServer(TRUE);
    factory->Release();
    EXPECT_FALSE(Server::CanUnload());
    kept->LockServer(FALSE);
    EXPECT_EQ(E_UNEXPECTED, kept->LockServer(FALSE)) << "one too many";
    EXPECT_FALSE(Server::CanUnload()) << "the factory lives";
    kept->LockServer(TRUE);
    kept->Release();
    EXPECT_FALSE(Server::CanUnload()) << "the lock outlives the factory";
    ASSERT_EQ(S_OK, Server::GetClassObject(Classes, 2, ClassId, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    factory->LockServer(FALSE);
    factory->Release();
    EXPECT_TRUE(Server::CanUnload());
}
