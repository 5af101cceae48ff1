#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <algorithm>

#include "Cases.h"
#include "Windows.h"
#include "editor/ControlIds.h"
#include "support/Browsed.h"

// Names of any kind through the list of Ctrl+Space and F12: what the list offers is written as the host formats it, and
// F12 finds in the tree what was written.
namespace {

constexpr size_t LongestName = 128;

// What the fake host makes of a name.
bool IsName(const std::wstring& name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), [](wchar_t c) {
        return c < L' ' || c == 0x7F || c == 0x85 || c == 0x2028 || c == 0x2029;
    });
}

std::wstring AnyName(Random& random) {
    for (;;) {
        std::wstring name;
        switch (random.Below(4)) {
            case 0:
                name = TextOfLength(random, LongestName);
                break;
            case 1:
                for (size_t left = 1 + random.Below(8); left > 0; --left)
                    name += random.Pick({L'"', L'.', L' ', L'\'', L'[', L']', L'`', L'-', L'a', L'Z', L'\u05D0', L';'});
                break;
            default:
                name = AnyText(random, 30);
                break;
        }
        name.resize(std::min(name.size(), LongestName));
        if (IsName(name)) return name;
    }
}

using EditorWindow::NameList;

using EditorWindow::PressKey;

// "|" in the text is the caret.
void Put(const std::wstring& before, const std::wstring& after) {
    PutText(before + after);
    EditorWindow::Select(static_cast<LONG>(before.size()), static_cast<LONG>(before.size()));
}

}  // namespace

class CompletionFuzz : public BrowsedFixture {};

TEST_F(CompletionFuzz, WhatIsOfferedIsWrittenAndFound) {
    std::wstring table;
    std::wstring column;
    Database.DictionaryMembers[L"Schemas"] = [](const Arguments&) { return Variant(MakeCollection({Variant(L"HR")})); };
    Database.DictionaryMembers[L"Objects"] = [&](const Arguments& a) {
        return Variant(a[0].ToLong() == 1 ? MakeCollection({Variant(table)}) : MakeCollection({}));
    };
    Database.DictionaryMembers[L"Columns"] = [&](const Arguments& a) {
        EXPECT_EQ(table, a[1].ToText());
        return Variant(MakeCollection({Column(column.c_str(), 3L)}));
    };
    Database.Members[L"FormatName"] = [](const Arguments& a) { return Variant(Quoted(a[0].ToText())); };
    Inside([&] {
        ForEachCase(50, [&](Random& random) {
            table = AnyName(random);
            column = AnyName(random);
            Tree.Click(Tree.At({}));
            Tree.Open(Tree.At({}));
            Tree.Click(Tree.Named(Tree.At({}), L"HR"));
            SetFocus(EditorWindow::Editor());

            const std::wstring before = L"select * from HR.";
            Put(before, L"");
            PressKey(VK_SPACE, true);
            ASSERT_NE(nullptr, NameList());
            EXPECT_EQ(1, SendMessageW(NameList(), LVM_GETITEMCOUNT, 0, 0));
            PressKey(VK_RETURN);
            EXPECT_EQ(nullptr, NameList());
            ASSERT_EQ(before + Quoted(table), EditorText()) << Shown(table);

            // Anywhere in it.
            const auto caret = static_cast<LONG>(before.size() + random.Below(Quoted(table).size() + 1));
            EditorWindow::Select(caret, caret);
            Tree.Select(nullptr);
            PressKey(VK_F12);
            ASSERT_NE(nullptr, Tree.Selected()) << Shown(table) << " from " << caret;
            EXPECT_EQ(table, NodeText(Tree.Selected()));

            const std::wstring rest = L" from HR." + Quoted(table) + L" x";
            Put(L"select x.", rest);
            PressKey(VK_SPACE, true);
            ASSERT_NE(nullptr, NameList());
            EXPECT_EQ(1, SendMessageW(NameList(), LVM_GETITEMCOUNT, 0, 0));
            PressKey(VK_RETURN);
            ASSERT_EQ(L"select x." + Quoted(column) + rest, EditorText()) << Shown(column);
            Tree.Select(nullptr);
            PressKey(VK_F12);
            ASSERT_NE(nullptr, Tree.Selected()) << Shown(column) << " of " << Shown(table);
            EXPECT_EQ(column, NodeText(Tree.Selected()));
        });
    });
}

// Anything at all stands around the caret: nothing is written without a choice, and what was not chosen stays.
TEST_F(CompletionFuzz, AnyTextIsLookedAt) {
    Inside([&] {
        Tree.Click(Tree.At({}));
        Tree.Open(Tree.At({}));
        Tree.Click(Tree.Named(Tree.At({}), L"HR"));
        ForEachCase(60, [&](Random& random) {
            PutText(AnyText(random, 80));
            const std::wstring shown = EditorText();
            const auto caret = static_cast<LONG>(random.Below(shown.size() + 1));
            EditorWindow::Select(caret, caret);
            SetFocus(EditorWindow::Editor());
            PressKey(VK_SPACE, true);
            PressKey(random.Pick({VK_DOWN, VK_NEXT, VK_UP}));
            PressKey(VK_ESCAPE);
            EXPECT_EQ(nullptr, NameList());
            PressKey(VK_F12);
            PressKey(VK_F1);
            EXPECT_EQ(shown, EditorText());
        });
    });
}
