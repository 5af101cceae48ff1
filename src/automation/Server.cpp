#include "automation/Server.h"

#include <oleauto.h>
#include <olectl.h>

#include <cwchar>
#include <new>
#include <string>
#include <vector>

#include "automation/App.h"
#include "automation/ComObject.h"
#include "automation/RuntimeError.h"
#include "automation/SystemLibrary.h"

namespace {

LONG alive = 0;
LONG serverLocks = 0;  // counted apart: a host that unlocks too often must not outweigh a living object

class ClassFactory final : public ComObject<IClassFactory> {
public:
    explicit ClassFactory(const ComClass& made) noexcept : made_(made) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : made_.Create(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (lock) {
            InterlockedIncrement(&serverLocks);
            return S_OK;
        }
        for (LONG locks = serverLocks; locks > 0;) {
            const LONG before = InterlockedCompareExchange(&serverLocks, locks - 1, locks);
            if (before == locks) return S_OK;
            locks = before;
        }
        return E_UNEXPECTED;
    }

private:
    const ComClass& made_;
};

// ---- registration

std::wstring TextOfGuid(REFGUID guid) {
    wchar_t text[40];
    StringFromGUID2(guid, text, 40);
    return text;
}

std::wstring ModulePath() {
    const std::wstring path = App::ModulePath();
    if (path.empty()) RaiseSystemError(ErrorNumber::PathNotFound, GetLastError());
    // A host may have loaded the module by its short name, which is not guaranteed to persist.
    std::wstring whole(32768, L'\0');
    const DWORD length = GetLongPathNameW(path.c_str(), whole.data(), static_cast<DWORD>(whole.size()));
    if (length == 0 || length >= whole.size()) return path;
    whole.resize(length);
    return whole;
}

HKEY RootOf(Server::Scope scope) noexcept {
    return scope == Server::Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

std::wstring ClassesKey(const std::wstring& below) { return L"Software\\Classes\\" + below; }

// Thrown by the registration's own steps.
struct Refused {
    LSTATUS Status;
};

void Write(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value) {
    // Closed by hand: nothing in between can throw.
    HKEY key = nullptr;
    LSTATUS status = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) {
        status = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(key);
    }
    if (status != ERROR_SUCCESS) throw Refused{status};
}

LSTATUS Remove(HKEY root, const std::wstring& path) noexcept {
    const LSTATUS status = RegDeleteTreeW(root, path.c_str());
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND ? ERROR_SUCCESS : status;
}

std::wstring VersionedProgId(const ComClass& registered) { return std::wstring(registered.ProgId) + L".1"; }

// `begun` is set when the first key is written.
void WriteClass(HKEY root, const ComClass& registered, const std::wstring& path, bool& begun) {
    const std::wstring id = TextOfGuid(registered.Id);
    const std::wstring versioned = VersionedProgId(registered);
    Write(root, ClassesKey(registered.ProgId), nullptr, registered.Description);
    begun = true;
    Write(root, ClassesKey(std::wstring(registered.ProgId) + L"\\CLSID"), nullptr, id);
    Write(root, ClassesKey(std::wstring(registered.ProgId) + L"\\CurVer"), nullptr, versioned);
    Write(root, ClassesKey(versioned), nullptr, registered.Description);
    Write(root, ClassesKey(versioned + L"\\CLSID"), nullptr, id);
    const std::wstring key = ClassesKey(L"CLSID\\" + id);
    Write(root, key, nullptr, registered.Description);
    Write(root, key + L"\\InprocServer32", nullptr, path);
    Write(root, key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    Write(root, key + L"\\ProgID", nullptr, versioned);
    Write(root, key + L"\\VersionIndependentProgID", nullptr, registered.ProgId);
    Write(root, key + L"\\Programmable", nullptr, L"");
    if (registered.TypeLibrary != nullptr)
        Write(root, key + L"\\TypeLib", nullptr, TextOfGuid(*registered.TypeLibrary));
}

// Whether the class is registered for programs of the other width. Windows keeps the keys below CLSID apart for the two
// and everything else together. Where there is one width only the flag means nothing: the class has to be removed
// before.
bool IsClassOfOtherWidth(HKEY root, const std::wstring& classKey) noexcept {
    constexpr REGSAM Other = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, classKey.c_str(), 0, KEY_READ | Other, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

LSTATUS RemoveClass(HKEY root, const ComClass& registered) {
    const std::wstring classKey = ClassesKey(L"CLSID\\" + TextOfGuid(registered.Id));
    LSTATUS first = Remove(root, classKey);
    // The names lead to the same identifier for both widths.
    if (IsClassOfOtherWidth(root, classKey)) return first;
    for (const std::wstring& name : {std::wstring(registered.ProgId), VersionedProgId(registered)}) {
        const LSTATUS status = Remove(root, ClassesKey(name));
        if (first == ERROR_SUCCESS) first = status;
    }
    return first;
}

// Per user they came with Windows Vista, and not every import library has them.
HMODULE Automation() noexcept { return LoadSystemLibrary(L"oleaut32.dll"); }
constinit SystemFunction<HRESULT WINAPI(ITypeLib*, OLECHAR*, OLECHAR*)> RegisterForUser{&Automation,
                                                                                        "RegisterTypeLibForUser"};
constinit SystemFunction<HRESULT WINAPI(REFGUID, WORD, WORD, LCID, SYSKIND)> UnregisterForUser{
    &Automation, "UnRegisterTypeLibForUser"};

HRESULT RegisterLibrary(const std::wstring& path, Server::Scope scope) noexcept {
    ComPtr<ITypeLib> library;
    const HRESULT result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Receive());
    if (FAILED(result)) return result;
    auto* writable = const_cast<OLECHAR*>(path.c_str());
    if (scope == Server::Scope::Machine) return RegisterTypeLib(library.Get(), writable, nullptr);
    return RegisterForUser ? RegisterForUser(library.Get(), writable, nullptr) : E_NOTIMPL;
}

bool IsLibraryKnown(const TLIBATTR& library) noexcept {
    wchar_t id[40];
    wchar_t path[80];
    StringFromGUID2(library.guid, id, 40);
    swprintf(path, 80, L"TypeLib\\%ls\\%x.%x", id, library.wMajorVerNum, library.wMinorVerNum);
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_READ, &key) == ERROR_FILE_NOT_FOUND) return false;
    if (key != nullptr) RegCloseKey(key);
    return true;
}

HRESULT UnregisterLibrary(const std::wstring& path, Server::Scope scope) noexcept {
    ComPtr<ITypeLib> library;
    HRESULT result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Receive());
    if (FAILED(result)) return result;
    TLIBATTR* attributes = nullptr;
    result = library->GetLibAttr(&attributes);
    if (SUCCEEDED(result)) {
        const auto unregister = [&](const auto& function) {
            return function(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid,
                            attributes->syskind);
        };
        result = scope == Server::Scope::Machine ? unregister(UnRegisterTypeLib)
                 : UnregisterForUser             ? unregister(UnregisterForUser)
                                                 : E_NOTIMPL;
        // Windows and Wine return different errors for a missing one.
        if (FAILED(result) && !IsLibraryKnown(*attributes)) result = S_OK;
        library->ReleaseTLibAttr(attributes);
    }
    return result;
}

}  // namespace

// ---- what is alive

ModuleLock::ModuleLock() noexcept { InterlockedIncrement(&alive); }

ModuleLock::ModuleLock(const ModuleLock&) noexcept { InterlockedIncrement(&alive); }

ModuleLock::~ModuleLock() { InterlockedDecrement(&alive); }

bool Server::CanUnload() noexcept {
    return InterlockedCompareExchange(&alive, 0, 0) == 0 && InterlockedCompareExchange(&serverLocks, 0, 0) == 0;
}

HRESULT Server::GetClassObject(const ComClass* classes, size_t count, REFCLSID id, REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    for (size_t at = 0; at < count; ++at) {
        if (classes[at].Id != id) continue;
        const auto factory = ComPtr<ClassFactory>::Attach(new (std::nothrow) ClassFactory(classes[at]));
        return factory ? factory->QueryInterface(iid, object) : E_OUTOFMEMORY;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT Server::Register(const ComClass* classes, size_t count, Scope scope, bool typeLibrary) noexcept {
    HRESULT result = S_OK;
    bool begun = false;
    try {
        const std::wstring path = ModulePath();
        for (size_t at = 0; at < count; ++at) WriteClass(RootOf(scope), classes[at], path, begun);
        if (typeLibrary) result = RegisterLibrary(path, scope);
        if (FAILED(result) && result != E_OUTOFMEMORY && result != E_ACCESSDENIED) result = SELFREG_E_TYPELIB;
    } catch (const Refused& refused) {
        result = HRESULT_FROM_WIN32(refused.Status);
    } catch (...) {
        result = SELFREG_E_CLASS;
    }
    // A half-registered class could be found but not created. One that could not be changed stays as it was.
    if (FAILED(result) && begun) Unregister(classes, count, scope, false);
    return result;
}

HRESULT Server::Unregister(const ComClass* classes, size_t count, Scope scope, bool typeLibrary) noexcept {
    try {
        LSTATUS first = ERROR_SUCCESS;
        for (size_t at = 0; at < count; ++at) {
            const LSTATUS status = RemoveClass(RootOf(scope), classes[at]);
            if (first == ERROR_SUCCESS) first = status;
        }
        HRESULT result = typeLibrary ? UnregisterLibrary(ModulePath(), scope) : S_OK;
        if (FAILED(result)) result = SELFREG_E_TYPELIB;
        return first == ERROR_SUCCESS ? result : HRESULT_FROM_WIN32(first);
    } catch (...) {
        return SELFREG_E_CLASS;
    }
}
