#include "Component.h"

#include <gtest/gtest.h>

#include <cstdio>

// ---- the DLL

HMODULE Component::Library() {
    static const HMODULE library = [] {
        wchar_t path[MAX_PATH];
        const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
        std::wstring name(path, length);
        name = name.substr(0, name.find_last_of(L'\\')) + L"\\brvError.dll";
        const HMODULE loaded = LoadLibraryW(name.c_str());
        if (loaded == nullptr) {
            std::fprintf(stderr, "brvError.dll cannot be loaded (%lu)\n", GetLastError());
            ExitProcess(96);
        }
        return loaded;
    }();
    return library;
}

Object Component::Make() {
    auto* getClassObject = Exported<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject");
    IClassFactory* factory = nullptr;
    CheckHresult(getClassObject(Class, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    IDispatch* made = nullptr;
    const HRESULT result = factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&made));
    factory->Release();
    CheckHresult(result);
    return Object::Attach(made);
}

Object Component::MakeConstructed() {
    const Object made = Make();
    made.Call(L"Constructor", L"Test Program", short{4}, short{5}, short{6});
    return made;
}

// ---- surroundings

EnvironmentValue::EnvironmentValue(const wchar_t* name, const wchar_t* value) : name_(name) {
    wchar_t old[1024];
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(name, old, 1024);
    had_ = GetLastError() != ERROR_ENVVAR_NOT_FOUND;
    old_.assign(old, length < 1024 ? length : 0);
    SetEnvironmentVariableW(name, value);
}

EnvironmentValue::~EnvironmentValue() { SetEnvironmentVariableW(name_, had_ ? old_.c_str() : nullptr); }

namespace {

std::wstring MakeFolder() {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    static int serial = 0;
    wchar_t name[64];
    swprintf(name, 64, L"brverror-%lu-%d", GetCurrentProcessId(), ++serial);
    const std::wstring made = std::wstring(folder) + name;
    EXPECT_TRUE(CreateDirectoryW(made.c_str(), nullptr));
    return made;
}

void RemoveFolder(const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = found.cFileName;
            if (name == L"." || name == L"..") continue;
            const std::wstring path = folder + L"\\" + name;
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
                RemoveFolder(path);
            } else {
                DeleteFileW(path.c_str());
            }
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }
    RemoveDirectoryW(folder.c_str());
}

}  // namespace

LogFolder::LogFolder() : folder_(MakeFolder()), variable_(L"BRVERROR_LOG", (folder_ + L"\\events.log").c_str()) {}

LogFolder::~LogFolder() { RemoveFolder(folder_); }

bool FileExists(const std::wstring& name) { return GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::string BytesOf(const std::wstring& name) {
    std::string bytes;
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return bytes;
    char part[65536];
    for (DWORD read = 0; ReadFile(file, part, sizeof part, &read, nullptr) && read > 0;) bytes.append(part, read);
    CloseHandle(file);
    return bytes;
}

void WriteBytes(const std::wstring& name, const std::string& bytes) {
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    CloseHandle(file);
}

std::vector<std::vector<std::wstring>> EntriesOf(const std::wstring& name) {
    const std::string bytes = BytesOf(name);
    std::wstring text(bytes.size(), L'\0');
    const int length =
        bytes.empty() ? 0
                      : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                                            text.data(), static_cast<int>(text.size()));
    if (!bytes.empty() && length == 0) return {{L"no UTF-8"}};
    text.resize(static_cast<size_t>(length));

    std::vector<std::vector<std::wstring>> entries;
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find(L"\r\n", at);
        if (end == std::wstring::npos) {
            entries.push_back({L"unfinished"});
            break;
        }
        std::vector<std::wstring> fields;
        for (size_t from = at;;) {
            const size_t tab = text.find(L'\t', from);
            if (tab == std::wstring::npos || tab > end) {
                fields.push_back(text.substr(from, end - from));
                break;
            }
            fields.push_back(text.substr(from, tab - from));
            from = tab + 1;
        }
        entries.push_back(std::move(fields));
        at = end + 2;
    }
    return entries;
}

// ---- message boxes

namespace {

std::vector<Box>* closed = nullptr;
int ticks = 0;

std::wstring CaptionOf(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

// An icon as the 32 by 32 dots that it draws on white.
std::vector<DWORD> DotsOf(HICON icon) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 32, 32, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* dots = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &dots, nullptr, 0);
    const HDC context = CreateCompatibleDC(nullptr);
    const HGDIOBJ old = SelectObject(context, bitmap);
    PatBlt(context, 0, 0, 32, 32, WHITENESS);
    DrawIconEx(context, 0, 0, icon, 32, 32, 0, nullptr, DI_NORMAL);
    GdiFlush();
    std::vector<DWORD> result(static_cast<DWORD*>(dots), static_cast<DWORD*>(dots) + 32 * 32);
    SelectObject(context, old);
    DeleteDC(context);
    DeleteObject(bitmap);
    return result;
}

BOOL CALLBACK CloseBox(HWND window, LPARAM) {
    wchar_t className[32];
    GetClassNameW(window, className, 32);
    if (std::wstring(className) != L"#32770" || !IsWindowVisible(window)) return TRUE;
    Box box{};
    box.Title = CaptionOf(window);
    box.Owner = GetWindow(window, GW_OWNER);
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        GetClassNameW(child, className, 32);
        if (lstrcmpiW(className, L"Static") != 0) continue;
        if ((GetWindowLongPtrW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
            const auto icon = reinterpret_cast<HICON>(SendMessageW(child, STM_GETICON, 0, 0));
            if (icon == nullptr) continue;
            box.Warning = DotsOf(icon) == DotsOf(LoadIconW(nullptr, IDI_WARNING));
            box.Information = DotsOf(icon) == DotsOf(LoadIconW(nullptr, IDI_INFORMATION));
        } else {
            box.Text += CaptionOf(child);
        }
    }
    closed->push_back(std::move(box));
    PostMessageW(window, WM_COMMAND, IDOK, 0);
    return FALSE;
}

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    if (++ticks > 200) {
        std::fprintf(stderr, "a message box stays open\n");
        std::fflush(stderr);
        ExitProcess(97);
    }
    // A box that was told to close has this long to go.
    if (ticks % 4 == 0) EnumThreadWindows(GetCurrentThreadId(), &CloseBox, 0);
}

}  // namespace

std::vector<Box> BoxesOf(const std::function<void()>& work) {
    std::vector<Box> boxes;
    closed = &boxes;
    ticks = 0;
    const UINT_PTR timer = SetTimer(nullptr, 0, 50, &Tick);
    try {
        work();
    } catch (const RuntimeError& error) {
        ADD_FAILURE() << "error " << error.Number;
    }
    KillTimer(nullptr, timer);
    closed = nullptr;
    return boxes;
}

Object MakeError(long number, const wchar_t* source, const wchar_t* description) {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    const auto give = [made](const wchar_t* name, Variant value) {
        made->Define(name, [value = std::move(value)](const Arguments&) { return value; });
    };
    give(L"Number", number);
    give(L"Source", source);
    give(L"Description", description);
    give(L"HelpFile", L"C:\\help\\program.chm");
    give(L"HelpContext", 1007L);
    give(L"LastDllError", 32L);
    return held;
}
