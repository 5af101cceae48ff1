#include <windows.h>
#include <commctrl.h>

#include "Bench.h"
#include "Shown.h"
#include "support/Browsed.h"

// All statements of a folder. They are built for Create too, which inserts nothing when the host's dialog is cancelled:
// what the editor takes for the text is measured elsewhere.
class StatementsBench : public BrowsedFixture {
protected:
    // As bare as a late-bound call can be: the member id is kept, the text is passed by reference, the answer is freed.
    static void FormatAll(IDispatch* host, const std::vector<std::wstring>& texts) {
        wchar_t name[] = L"FormatName";
        wchar_t* writable = name;
        DISPID id = DISPID_UNKNOWN;
        host->GetIDsOfNames(IID_NULL, &writable, 1, LOCALE_USER_DEFAULT, &id);
        for (const std::wstring& text : texts) {
            BSTR passed = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
            VARIANTARG argument;
            argument.vt = VT_BYREF | VT_BSTR;
            argument.pbstrVal = &passed;
            DISPPARAMS parameters{&argument, nullptr, 1, 0};
            VARIANT answer;
            VariantInit(&answer);
            host->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                         &answer, nullptr, nullptr);
            VariantClear(&answer);
            SysFreeString(passed);
        }
    }
};

TEST_F(StatementsBench, OfAFolderOfTables) {
    for (const size_t size : Sizes({1000, 10000}, 50)) {
        std::vector<Variant> names;
        std::vector<std::wstring> texts;
        for (size_t at = 0; at < size; ++at) {
            texts.push_back(L"TABLE_" + std::to_wstring(at) + std::wstring(at % 7, L'X'));
            names.push_back(Variant(texts.back()));
        }
        const Variant all(MakeCollection(std::vector<Variant>(names)));
        Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) { return all; };
        int created = 0;
        Database.Members[L"ShowCreateTableDialog1"] = [&](const Arguments&) {
            ++created;
            return Variant();
        };
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
            const UINT create = CommandOf(2, L"&Create");
            CompareRounds({{"all statements of a folder of tables", size, 1.5}}, [&] {
                Round round;
                round.Ours = Took([&] { SendMessageW(ShownEditor(), WM_COMMAND, create, 0); });
                round.Raw = Took([&] {
                    // SELECT, COUNT and sample rows format each name once.
                    for (int statement = 0; statement < 3; ++statement) FormatAll(host.Dispatch(), texts);
                    // As the editor does around the host's dialog, which would be behind it.
                    for (const HWND after : {HWND_NOTOPMOST, HWND_TOPMOST})
                        SetWindowPos(ShownEditor(), after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
                });
                return std::vector<Round>{round};
            });
        });
        EXPECT_LT(0, created);
        editor.Call(L"Destructor");
    }
}
