#include <windows.h>
#include <commctrl.h>
#include <richedit.h>
#include <richole.h>
#include <tom.h>

#include <optional>

#include "Bench.h"
#include "RawWindow.h"
#include "Shown.h"
#include "automation/ComPtr.h"
#include "sql/Lexer.h"
#include "support/Component.h"

// What the colours cost: taking a text apart, the time until they are there, and typing where they are.
namespace {

std::wstring Sql100(size_t characters) {
    const std::wstring statement =
        L"SELECT customer_number, count(*) AS orders_of_the_customer  -- what they have bought\r\n"
        L"FROM sales_department.customer_orders JOIN \"Order Details\" ON order_number = 'it''s'\r\n"
        L"WHERE price_of_the_article > 12.50 AND article_group IN ('tools', 'furniture');\r\n";
    std::wstring text;
    while (text.size() < characters) text += statement;
    text.resize(characters);
    return text;
}

// Asked of the text object model, which selects and paints nothing.
COLORREF ColourAt(HWND editor, LONG position) {
    constexpr IID TextDocumentId = {0x8CC497C0, 0xA1DF, 0x11CE, {0x80, 0x98, 0x00, 0xAA, 0x00, 0x47, 0xBE, 0x5D}};
    ComPtr<IUnknown> ole;
    SendMessageW(editor, EM_GETOLEINTERFACE, 0, reinterpret_cast<LPARAM>(ole.Receive()));
    const auto document = ole.As<ITextDocument>(TextDocumentId);
    if (!document) return CLR_DEFAULT;
    ComPtr<ITextRange> range;
    ComPtr<ITextFont> font;
    long colour = tomAutoColor;
    if (range.Filled(document->Range(position, position + 1, range.Receive())) &&
        font.Filled(range->GetFont(font.Receive())))
        font->GetForeColor(&colour);
    // Wine answers with what the automatic colour is now.
    const auto found = static_cast<COLORREF>(colour);
    return colour == static_cast<long>(tomAutoColor) || found == GetSysColor(COLOR_WINDOWTEXT) ? CLR_DEFAULT : found;
}

// Calls a step from the window's own loop, some time after the one before, until it answers true.
class Until {
public:
    Until(UINT milliseconds, std::function<bool()> step) : step_(std::move(step)), every_(milliseconds) {
        self = this;
        Set();
    }
    ~Until() { self = nullptr; }

private:
    void Set() {
        timer_ = SetTimer(nullptr, 0, every_, [](HWND, UINT, UINT_PTR id, DWORD) WINAPI {
            KillTimer(nullptr, id);
            if (self == nullptr) return;
            if (ShownEditor() == nullptr || !self->step_()) self->Set();
        });
    }
    static inline Until* self = nullptr;
    std::function<bool()> step_;
    UINT every_;
    UINT_PTR timer_ = 0;
};

class ColoursBench : public ComponentFixture {
protected:
    ColoursBench() : editor_(Dll.Create()) { editor_.Call(L"Constructor", Variant::Nothing()); }
    ~ColoursBench() override { editor_.Call(L"Destructor"); }
    Object editor_;
};

}  // namespace

TEST_F(ColoursBench, Lexing) {
    for (const size_t size : Sizes({1024 * 1024}, 2000)) {
        const std::wstring text = Sql100(size);
        Compare(
            {"taking a text apart, against copying it", size, 10},
            [&] {
                size_t length = 0;
                const double time = Took([&] {
                    Sql::Lexer lexer(text, Sql::DialectOf(0));
                    for (Sql::Token token; lexer.Next(token);) length += token.Length;
                });
                EXPECT_EQ(size, length);
                return time;
            },
            [&] {
                size_t length = 0;
                const double time = Took([&] {
                    const std::wstring copy(text.data(), text.size());
                    length += copy.size() + (copy.back() == L'?' ? 1 : 0);
                });
                EXPECT_EQ(size, length);
                return time;
            });
    }
}

// The colours come after the first paint. On the machine of docs/performance.md the bare side takes 110 ms, and they
// may take 100.
TEST_F(ColoursBench, UntilAllThatIsSeenHasItsColour) {
    for (const size_t size : Sizes({100 * 1024}, 2000)) {
        const std::wstring sql = Sql100(size);
        // The last statement that is seen begins with a keyword.
        const auto colour = [] {
            const HWND editor = EditorWindow::Editor();
            RECT client;
            GetClientRect(editor, &client);
            POINTL below{0, client.bottom - 1};
            const auto last = SendMessageW(editor, EM_CHARFROMPOS, 0, reinterpret_cast<LPARAM>(&below));
            auto line = SendMessageW(editor, EM_EXLINEFROMCHAR, 0, last);
            while (line > 0 && line % 3 != 0) --line;
            return ColourAt(editor,
                            static_cast<LONG>(SendMessageW(editor, EM_LINEINDEX, static_cast<WPARAM>(line), 0)));
        };
        CompareRounds({{"all that is seen coloured, against the 100 ms it may take", size, 1}}, [&] {
            Round round{0, 100};
            double painted = 0;
            std::wstring text = sql;
            const WhenWaiting step([&] {
                PaintNow(ShownEditor());
                painted = Now();
                EXPECT_EQ(CLR_DEFAULT, colour());
            });
            const Until seen(10, [&] {
                if (painted == 0 || colour() == CLR_DEFAULT) return false;
                PaintNow(ShownEditor());
                round.Ours = Now() - painted;
                SendMessageW(ShownEditor(), WM_CLOSE, 0, 0);
                return true;
            });
            editor_.Call(L"Display", ByRef(text));
            return std::vector{round};
        });
    }
}

TEST_F(ColoursBench, Typing) {
    for (const size_t size : Sizes({100 * 1024}, 2000)) {
        const std::wstring sql = Sql100(size);
        std::wstring text = sql;
        const Until typed(100, [&] {
            const HWND editor = EditorWindow::Editor();
            // The last line begins with a keyword or goes on with one: everything has its colour.
            const auto end = static_cast<LONG>(SendMessageW(editor, EM_GETLINECOUNT, 0, 0)) - 1;
            for (LONG line = end; line > end - 3; --line) {
                const auto first = static_cast<LONG>(SendMessageW(editor, EM_LINEINDEX, static_cast<WPARAM>(line), 0));
                if (ColourAt(editor, first) == CLR_DEFAULT && size > 500) return false;
            }
            const WindowPlan plan = WindowPlan::OfEditor();
            RawWindow raw(plan);
            SETTEXTEX set{ST_DEFAULT, 1200};
            SendMessageW(raw.Editor(), EM_SETTEXTEX, reinterpret_cast<WPARAM>(&set),
                         reinterpret_cast<LPARAM>(sql.c_str()));
            raw.Show();
            // In the first line, after a name; a hundred characters and a paint after each.
            const auto type = [](HWND control, HWND window) {
                CHARRANGE place{22, 22};
                SendMessageW(control, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&place));
                return Took([&] {
                    for (int at = 0; at < 20; ++at) {
                        SendMessageW(control, WM_CHAR, L"name_of_the_column, "[at], 1);
                        PaintNow(window);
                    }
                });
            };
            Compare(
                {"typing 20 characters in colours, against the bare control", size, 1.5},
                [&] { return type(editor, ShownEditor()); }, [&] { return type(raw.Editor(), raw.Handle()); });
            raw.Hide();
            SendMessageW(ShownEditor(), WM_CLOSE, 0, 0);
            return true;
        });
        editor_.Call(L"Display", ByRef(text));
    }
}
