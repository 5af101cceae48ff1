#include <windows.h>
#include <commctrl.h>

#include "Bench.h"
#include "RawWindow.h"
#include "Shown.h"
#include "support/Browsed.h"

// The list of names of Ctrl+Space when the object browser is as full as it can be. On the machine of
// docs/performance.md it may take 50 ms to be there, and each key 16.
namespace {

using EditorWindow::NameList;

using EditorWindow::PressKey;

class CompletionBench : public BrowsedFixture {};

}  // namespace

TEST_F(CompletionBench, TheListAndItsKeys) {
    // A table is three nodes.
    for (const size_t tables : Sizes({10900}, 50)) {
        Database.DictionaryMembers[L"Objects"] = [tables](const Arguments& a) {
            std::vector<Variant> names;
            for (size_t at = 0; at < (a[0].ToLong() == 1 ? tables : 0); ++at)
                names.emplace_back(L"TABLE_OF_A_DEPARTMENT_" + std::to_wstring(at));
            return Variant(MakeCollection(std::move(names)));
        };
        Inside([&] {
            Tree.Click(Tree.At({}));
            Tree.Open(Tree.At({}));
            Tree.Click(Tree.Named(Tree.At({}), L"HR"));
            const HWND editor = EditorWindow::Editor();
            SetFocus(editor);
            const auto nodes = static_cast<size_t>(Tree.Count());
            const auto open = [&] {
                EditorWindow::SetText(L"select * from ");
                EditorWindow::Select(14, 14);
                const double time = Took([&] {
                    PressKey(VK_SPACE, true);
                    if (NameList() != nullptr) PaintNow(NameList());
                });
                EXPECT_NE(nullptr, NameList());
                return time;
            };
            Compare(
                {"the list of all names, against the 50 ms it may take", nodes, 1},
                [&] {
                    const double time = open();
                    PressKey(VK_ESCAPE, false);
                    return time;
                },
                [] { return 50.0; });
            CompareRounds({{"what the list adds to a key, against the 16 ms it may take", nodes, 1}}, [&] {
                const auto type = [&] {
                    return Took([&] {
                        SendMessageW(editor, WM_CHAR, L'e', 1 | (0x12 << 16));  // the key of that letter
                        PaintNow(ShownEditor());
                        if (NameList() != nullptr) PaintNow(NameList());
                    });
                };
                open();
                const double with = type();
                EXPECT_NE(nullptr, NameList());
                PressKey(VK_ESCAPE, false);
                EditorWindow::SetText(L"select * from ");
                EditorWindow::Select(14, 14);
                return std::vector<Round>{{with - type(), 16}};
            });
        });
    }
}
