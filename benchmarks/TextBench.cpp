#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include "Bench.h"
#include "Fakes.h"
#include "forms/RichText.h"

// The way of the SQL through the editor, against a rich edit control that is made for it and gets the text the fastest
// way.
namespace {

// SQL of long lines: what Wine's control takes for a text grows with the square of its lines.
std::wstring Sql(size_t characters) {
    std::wstring text;
    while (text.size() < characters) {
        text += L"SELECT " + std::wstring(2000, L'x') + L"\r\n";
    }
    text.resize(characters);
    return text;
}

std::wstring ThroughRawControl(const std::wstring& text) {
    const HWND control = CreateWindowExW(0, RichEditClass(), L"", ES_MULTILINE | WS_CHILD | WS_VISIBLE, 0, 0, 300, 300,
                                         EditorWindow::Find(), nullptr, nullptr, nullptr);
    SendMessageW(control, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    SETTEXTEX set{ST_DEFAULT, 1200};
    SendMessageW(control, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&set), reinterpret_cast<LPARAM>(text.c_str()));
    std::wstring back(text.size() + 1, L'\0');
    GETTEXTEX get{};
    get.cb = static_cast<DWORD>(back.size() * sizeof(wchar_t));
    get.flags = GT_USECRLF;
    get.codepage = 1200;
    back.resize(static_cast<size_t>(
        SendMessageW(control, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&get), reinterpret_cast<LPARAM>(back.data()))));
    DestroyWindow(control);
    return back;
}

class TextBench : public ComponentFixture {};

}  // namespace

TEST_F(TextBench, ASecondDisplayWithAnotherText) {
    const Object editor = Dll.Create();
    editor.Call(L"Constructor", Variant::Nothing());
    for (const size_t size : Sizes({100 * 1024, 1024 * 1024}, 2000)) {
        const std::wstring sql = Sql(size);
        DisplayAndClose(editor, sql);
        CompareRounds({{"Display and back, against a new control", size, 1.5}}, [&] {
            Round round;
            std::wstring back;
            DisplayAndClose(editor, L"x", [&] { round.Raw = Took([&] { back = ThroughRawControl(sql); }); });
            EXPECT_EQ(size, back.size());
            // From the call to the moment when the window is up, and from the closing to the return.
            LARGE_INTEGER frequency, called, shown, closed, returned;
            QueryPerformanceFrequency(&frequency);
            const WhenShown close([&] {
                QueryPerformanceCounter(&shown);
                QueryPerformanceCounter(&closed);
                EditorWindow::Close();
            });
            std::wstring text = sql;
            QueryPerformanceCounter(&called);
            editor.Call(L"Display", ByRef(text));
            QueryPerformanceCounter(&returned);
            EXPECT_EQ(size, text.size());
            round.Ours = static_cast<double>(returned.QuadPart - called.QuadPart - (closed.QuadPart - shown.QuadPart)) *
                         1000 / static_cast<double>(frequency.QuadPart);
            return std::vector<Round>{round};
        });
    }
}
