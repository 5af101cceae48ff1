#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <optional>

#include "Bench.h"
#include "RawWindow.h"
#include "Shown.h"
#include "support/Component.h"
#include "support/EditorTree.h"

// The way of the SQL through the editor, against a rich edit control of the same styles in a window that shows the
// same, which gets and gives the text the fastest way.
namespace {

// What Wine's control takes for a text grows with the square of its lines: they are long in the long texts.
constexpr size_t LongLines = 2000;
constexpr size_t UsualLines = 80;

std::wstring Statements(size_t characters, size_t line = LongLines, wchar_t filler = L'x') {
    std::wstring text;
    while (text.size() < characters) {
        text += L"SELECT " + std::wstring(line - 9, filler) + L"\r\n";
    }
    text.resize(characters);
    return text;
}

void PutText(HWND control, const std::wstring& text) {
    SETTEXTEX set{ST_DEFAULT, 1200};
    SendMessageW(control, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&set), reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageW(control, EM_SETSEL, 0, 0);
}

std::wstring GetText(HWND control, size_t length) {
    std::wstring back(length + 1, L'\0');
    GETTEXTEX get{};
    get.cb = static_cast<DWORD>(back.size() * sizeof(wchar_t));
    get.flags = GT_USECRLF;
    get.codepage = 1200;
    back.resize(static_cast<size_t>(
        SendMessageW(control, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&get), reinterpret_cast<LPARAM>(back.data()))));
    return back;
}

class TextBench : public ComponentFixture {
protected:
    TextBench() : editor_(Dll.Create()) {
        editor_.Call(L"Constructor", Variant::Nothing());
        DisplayAndClose(editor_, L"", [this] { plan_ = WindowPlan::OfEditor(); });
        raw_.emplace(plan_);
    }
    ~TextBench() override {
        raw_.reset();
        editor_.Call(L"Destructor");
    }

    // Display with the text: in, painted, closed and out again. Milliseconds.
    double Ours(const std::wstring& sql) const {
        std::wstring text = sql;
        const WhenWaiting step([] {
            const HWND window = ShownEditor();
            PaintNow(window);
            SendMessageW(window, WM_CLOSE, 0, 0);
        });
        const double time = Took([&] { editor_.Call(L"Display", ByRef(text)); });
        EXPECT_EQ(sql, text);
        return time;
    }
    double Raw(const std::wstring& sql, bool newControl) {
        std::wstring back;
        const double time = Took([&] {
            if (newControl) raw_->RenewEditor();
            PutText(raw_->Editor(), sql);
            raw_->Show();
            raw_->Hide();
            back = GetText(raw_->Editor(), sql.size());
        });
        EXPECT_EQ(sql, back);
        return time;
    }
    void InAndOut(const char* operation, size_t size, size_t line) {
        const std::wstring sql = Statements(size, line);
        Compare(
            {operation, size, 1.15},
            [&] {
                const double time = Ours(sql);
                Ours(L"");
                return time;
            },
            [&] {
                const double time = Raw(sql, false);
                raw_->RenewEditor();
                return time;
            });
    }

    Object editor_;
    WindowPlan plan_;
    std::optional<RawWindow> raw_;
};

}  // namespace

TEST_F(TextBench, InAndOut) {
    for (const size_t size : Sizes({100 * 1024, 1024 * 1024}, 2000)) {
        InAndOut("SQL into Display and out again", size, LongLines);
    }
    if (FullSizes()) InAndOut("SQL into Display and out again, lines of 80", 100 * 1024, UsualLines);
}

TEST_F(TextBench, ASecondDisplayWithAnotherText) {
    for (const size_t size : Sizes({100 * 1024, 1024 * 1024}, 2000)) {
        const std::wstring texts[] = {Statements(size, LongLines, L'x'), Statements(size, LongLines, L'y')};
        size_t ours = 0, raw = 0;
        Compare(
            {"second Display with another text, against a new control", size, 1.5},
            [&] { return Ours(texts[++ours % 2]); }, [&] { return Raw(texts[++raw % 2], true); });
    }
}

// From the menu entry, with everything that belongs to it: the statement is looked up, put on a line of its own,
// selected and scrolled into view.
TEST_F(TextBench, AStatementAtTheEnd) {
    for (const size_t size : Sizes({100 * 1024, 1024 * 1024}, 2000)) {
        const std::wstring sql = Statements(size);
        DisplayAndClose(editor_, sql, [&] {
            const HWND window = ShownEditor();
            ShowPage(1);
            const UINT command = CommandOf(2, L"&Execute");
            const HWND control = EditorWindow::Editor();
            SetFocus(control);
            const auto toTheEnd = [](HWND text) {
                CHARRANGE end{-1, -1};
                SendMessageW(text, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&end));
                SendMessageW(text, EM_SCROLLCARET, 0, 0);
            };
            toTheEnd(control);
            PaintNow(window);
            PutText(raw_->Editor(), sql);
            raw_->Show();
            toTheEnd(raw_->Editor());
            const auto insert = [&] {
                SendMessageW(window, WM_COMMAND, command, 0);
                PaintNow(window);
            };
            insert();
            const std::wstring inserted = GetText(control, size + 1000).substr(size);
            EXPECT_LT(4U, inserted.size());
            Compare(
                {"a statement inserted at the end, against EM_REPLACESEL", size, 1.5}, [&] { return Took(insert); },
                [&] {
                    return Took([&] {
                        SendMessageW(raw_->Editor(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(inserted.c_str()));
                        PaintNow(raw_->Handle());
                    });
                });
            raw_->Hide();
        });
    }
}
