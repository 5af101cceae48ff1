#include "automation/Server.h"

#include <olectl.h>
#include <string>

#include "automation/App.h"

static LONG locks;
ModuleLock::ModuleLock() noexcept { InterlockedIncrement(&locks); }
ModuleLock::ModuleLock(const ModuleLock&) noexcept { InterlockedIncrement(&locks); }
ModuleLock::~ModuleLock() { InterlockedDecrement(&locks); }
bool Server::CanUnload() noexcept { return locks == 0; }
struct Factory : IClassFactory { const ComClass* c; LONG r = 1;
 HRESULT STDMETHODCALLTYPE QueryInterface(REFIID i, void** o) override { if (i == IID_IUnknown || i == IID_IClassFactory) { *o = this; AddRef(); return S_OK; } *o = nullptr; return E_NOINTERFACE; }
 ULONG STDMETHODCALLTYPE AddRef() override { return ++r; } ULONG STDMETHODCALLTYPE Release() override { ULONG n = --r; if (!n) delete this; return n; }
 HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* u, REFIID i, void** o) override { return u ? CLASS_E_NOAGGREGATION : c->Create(i, o); }
 HRESULT STDMETHODCALLTYPE LockServer(BOOL l) override { l ? InterlockedIncrement(&locks) : InterlockedDecrement(&locks); return S_OK; } };
HRESULT Server::GetClassObject(const ComClass* cs, size_t n, REFCLSID id, REFIID iid, void** o) noexcept { *o = nullptr; for (size_t i = 0; i < n; i++) if (cs[i].Id == id) { auto* f = new Factory; f->c = &cs[i]; HRESULT h = f->QueryInterface(iid, o); f->Release(); return h; } return CLASS_E_CLASSNOTAVAILABLE; }

namespace {
HRESULT Put(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value) {
    HKEY key = nullptr;
    LSTATUS st = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr);
    if (st == ERROR_SUCCESS) {
        st = RegSetValueExW(key, name, 0, REG_SZ, (const BYTE*)value.c_str(), (value.size() + 1) * 2);
        RegCloseKey(key);
    }
    return HRESULT_FROM_WIN32(st);
}
std::wstring Guid(REFGUID g) { wchar_t t[64]; StringFromGUID2(g, t, 64); return t; }
}
HRESULT Server::Register(const ComClass* cs, size_t n, Scope scope, bool lib) noexcept {
    HKEY root = scope == Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    wchar_t path[2048]; GetModuleFileNameW(App::Module(), path, 2048);
    for (size_t i = 0; i < n; i++) {
        std::wstring c = L"Software\\Classes\\CLSID\\" + Guid(cs[i].Id), p = std::wstring(L"Software\\Classes\\") + cs[i].ProgId;
        HRESULT h;
        if (FAILED(h = Put(root, p, nullptr, cs[i].Description)) || FAILED(h = Put(root, p + L"\\CLSID", nullptr, Guid(cs[i].Id))) ||
            FAILED(h = Put(root, c, nullptr, cs[i].Description)) || FAILED(h = Put(root, c + L"\\InprocServer32", nullptr, path)) ||
            FAILED(h = Put(root, c + L"\\InprocServer32", L"ThreadingModel", L"Apartment")) || FAILED(h = Put(root, c + L"\\ProgID", nullptr, cs[i].ProgId))) return h;
    }
    (void)lib;
    return S_OK;
}
HRESULT Server::Unregister(const ComClass* cs, size_t n, Scope scope, bool) noexcept {
    HKEY root = scope == Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    for (size_t i = 0; i < n; i++) { RegDeleteTreeW(root, (L"Software\\Classes\\CLSID\\" + Guid(cs[i].Id)).c_str()); RegDeleteTreeW(root, (std::wstring(L"Software\\Classes\\") + cs[i].ProgId).c_str()); }
    return S_OK;
}
