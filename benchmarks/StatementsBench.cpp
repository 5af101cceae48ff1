#include <windows.h>
#include <commctrl.h>

#include "Bench.h"
#include "Browsed.h"

// All statements of a folder. They are built for Create too, which inserts nothing when the host's dialog is cancelled:
// what the editor takes for the text is measured elsewhere.
class StatementsBench : public BrowsedFixture {};

TEST_F(StatementsBench, OfAFolderOfTables) {
    for (const size_t size : Sizes({1000, 10000}, 50)) {
        std::vector<Variant> names;
        for (size_t at = 0; at < size; ++at) names.push_back(Variant(L"TABLE_" + std::to_wstring(at)));
        const Variant all(MakeCollection(std::vector<Variant>(names)));
        Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) { return all; };
        Database.Members[L"ShowCreateTableDialog1"] = [](const Arguments&) { return Variant(); };
        // Not recorded: the log of the fake would be most of the time.
        auto* fast = new DynamicObject;
        const Object host = Object::Attach(fast);
        for (const auto& [name, member] : Database.Members) fast->Define(name, member);
        fast->Define(L"FormatName", [](const Arguments& a) { return a[0]; });
        const Object editor = Dll.Create();
        editor.Call(L"Constructor", host);
        DisplayAndClose(editor, L"", [&] {
            Tree.Open(Tree.At({}));
            Tree.Open(Tree.At({0}));
            Tree.Open(Tree.At({0, 0}));
            Tree.Select(Tree.At({0, 0}));
            CompareRounds({{"all statements of a folder of tables", size, 1.5}}, [&] {
                Round round;
                round.Ours = Took([] { EditorWindow::Choose(L"Action", L"Create"); });
                round.Raw = Took([&] {
                    // SELECT, COUNT and sample rows format each name once.
                    for (int statement = 0; statement < 3; ++statement) {
                        for (const Variant& name : names) {
                            std::wstring text = name.ToText();
                            host.Get(L"FormatName", ByRef(text)).ToText();
                        }
                    }
                });
                return std::vector<Round>{round};
            });
        });
        editor.Call(L"Destructor");
    }
}
