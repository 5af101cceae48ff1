#include <gtest/gtest.h>
#include <windows.h>
#include <objbase.h>
#include <oaidl.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Bench.h"

// From nothing in the process to an object that can be called, against a server that has nothing in it. Both DLLs leave
// the process between two rounds.
namespace {

std::wstring BesideProgram(const wchar_t* name) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.find_last_of(L'\\') + 1) + name;
}

// The libraries that a module names as its own needs.
std::vector<std::string> ImportsOf(HMODULE module) {
    const auto* base = reinterpret_cast<const BYTE*>(module);
    const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos.e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    std::vector<std::string> names;
    for (const auto* entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         entry->Name != 0; ++entry) {
        names.emplace_back(reinterpret_cast<const char*>(base + entry->Name));
    }
    return names;
}

// The system's libraries that the component needs, as a host with windows of its own has them loaded.
class HostLibraries {
public:
    HostLibraries() {
        const HMODULE component = LoadLibraryW(BesideProgram(L"brvSQLEditor.dll").c_str());
        for (const std::string& name : ImportsOf(component)) held_.push_back(LoadLibraryA(name.c_str()));
        FreeLibrary(component);
    }
    ~HostLibraries() {
        for (const HMODULE library : held_) FreeLibrary(library);
    }
    HostLibraries(const HostLibraries&) = delete;
    HostLibraries& operator=(const HostLibraries&) = delete;

private:
    std::vector<HMODULE> held_;
};

struct ServerFile {
    const wchar_t* File;
    const wchar_t* Manifest;
    CLSID Class;
};
const ServerFile Ours{L"brvSQLEditor.dll",
                      L"brvSQLEditor.X.manifest",
                      {0x23E4F85E, 0x641E, 0x4BBE, {0x9A, 0xB0, 0xB9, 0x86, 0xE6, 0x59, 0x22, 0xEA}}};
const ServerFile Empty{L"EmptyServer.dll",
                       L"EmptyServer.X.manifest",
                       {0x6B0E9A52, 0x3C1D, 0x4F7E, {0x9A, 0x41, 0x52, 0x0D, 0x8E, 0x17, 0xB3, 0xC4}}};

using GetClass = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
using CanUnload = HRESULT(WINAPI*)();

template <class Function>
Function Export(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// By the exports alone.
double LoadByExports(const ServerFile& server) {
    const std::wstring path = BesideProgram(server.File);
    EXPECT_EQ(nullptr, GetModuleHandleW(server.File));
    HMODULE module = nullptr;
    IDispatch* object = nullptr;
    const double time = Took([&] {
        module = LoadLibraryW(path.c_str());
        IClassFactory* factory = nullptr;
        if (SUCCEEDED(Export<GetClass>(module, "DllGetClassObject")(server.Class, IID_IClassFactory,
                                                                    reinterpret_cast<void**>(&factory)))) {
            factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object));
            factory->Release();
        }
    });
    EXPECT_NE(nullptr, object);
    if (object != nullptr) object->Release();
    EXPECT_EQ(S_OK, Export<CanUnload>(module, "DllCanUnloadNow")());
    FreeLibrary(module);
    return time;
}

// As a host does it, the class found through a manifest: nothing has to be registered.
double LoadByCom(const ServerFile& server) {
    const std::wstring manifest = BesideProgram(server.Manifest);
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.lpSource = manifest.c_str();
    const HANDLE context = CreateActCtxW(&request);
    EXPECT_NE(INVALID_HANDLE_VALUE, context);
    EXPECT_EQ(nullptr, GetModuleHandleW(server.File));
    ULONG_PTR cookie = 0;
    ActivateActCtx(context, &cookie);
    IDispatch* object = nullptr;
    const double time = Took([&] {
        CoCreateInstance(server.Class, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&object));
    });
    DeactivateActCtx(0, cookie);
    ReleaseActCtx(context);
    EXPECT_NE(nullptr, object);
    if (object != nullptr) object->Release();
    CoFreeUnusedLibrariesEx(0, 0);
    return time;
}

}  // namespace

TEST(LoadBench, ToAUsableObject) {
    const HostLibraries libraries;
    Compare(
        {"load to a usable object (DllGetClassObject)", 0, 2.0}, [] { return LoadByExports(Ours); },
        [] { return LoadByExports(Empty); });
    Compare(
        {"load to a usable object (CoCreateInstance)", 0, 2.0}, [] { return LoadByCom(Ours); },
        [] { return LoadByCom(Empty); });
}

// What stands on the user's disk: the file as it is built and stripped, and nothing beside it but Windows.
TEST(LoadBench, TheFile) {
    const std::wstring path = BesideProgram(Ours.File);
    WIN32_FILE_ATTRIBUTE_DATA file{};
    ASSERT_TRUE(GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &file));
    constexpr double megabyte = 1024 * 1024;
    PrintRow({"size of the DLL, against the most that it may have", 0, 1.0}, "MB", file.nFileSizeLow / megabyte, 1.5);

    const HMODULE component = LoadLibraryW(path.c_str());
    ASSERT_NE(nullptr, component);
    wchar_t windows[MAX_PATH];
    const UINT length = GetSystemWindowsDirectoryW(windows, MAX_PATH);
    int libraries = 0, beside = 0;
    for (const std::string& name : ImportsOf(component)) {
        wchar_t from[MAX_PATH]{};
        GetModuleFileNameW(GetModuleHandleA(name.c_str()), from, MAX_PATH);
        ++libraries;
        if (_wcsnicmp(from, windows, length) != 0) ++beside;
        EXPECT_EQ(0, _wcsnicmp(from, windows, length)) << name << " is not of the system";
    }
    FreeLibrary(component);
    EXPECT_LT(5, libraries);
    std::printf("  the DLL needs %d libraries; %d of them do not come with Windows\n", libraries, beside);
}
