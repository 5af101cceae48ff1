#include <windows.h>
#include <commctrl.h>

#include "Bench.h"
#include "automation/HostCollection.h"
#include "support/Browsed.h"

// The object browser against a raw tree control that gets the same items, from the same collections of the same host.
// The component is the built DLL, worked by messages.
namespace {

// A tree control as the platform makes it, of the size of the editor's, with one root.
class RawTree {
public:
    RawTree() {
        // In the place of the editor's own, so that both paint as much.
        const HWND ours = View(0);
        RECT place;
        GetClientRect(GetParent(ours), &place);
        window_ = CreateWindowExW(WS_EX_CLIENTEDGE, WC_TREEVIEWW, L"",
                                  WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT |
                                      TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP | WS_CLIPSIBLINGS,
                                  0, 0, place.right, place.bottom, GetParent(ours), nullptr, nullptr, nullptr);
        SetWindowPos(window_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        SendMessageW(window_, WM_SETFONT, static_cast<WPARAM>(SendMessageW(ours, WM_GETFONT, 0, 0)), FALSE);
        // As deep as the editor's, since a branch that opens below others scrolls them away.
        const HTREEITEM schemas = Insert(TVI_ROOT, L"Schemas");
        const HTREEITEM schema = Insert(schemas, L"HR");
        for (const wchar_t* other : {L"Current Schema", L"Current Schema", L"Sales & Co"}) Insert(schemas, other);
        root_ = Insert(schema, L"Tables");
        Insert(Insert(schema, L"Views"), L"(undefined)");
        for (const HTREEITEM above : {schemas, schema}) {
            SendMessageW(window_, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(above));
        }
    }
    ~RawTree() { DestroyWindow(window_); }
    RawTree(const RawTree&) = delete;
    RawTree& operator=(const RawTree&) = delete;

    HTREEITEM Root() const { return root_; }
    HTREEITEM Insert(HTREEITEM parent, const wchar_t* text) const {
        TVINSERTSTRUCTW insert{};
        insert.hParent = parent;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT;
        insert.item.pszText = const_cast<wchar_t*>(text);
        return reinterpret_cast<HTREEITEM>(
            SendMessageW(window_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
    }
    void Hold(bool held) const {
        SendMessageW(window_, WM_SETREDRAW, !held, 0);
        if (!held) InvalidateRect(window_, nullptr, TRUE);
    }
    void Expand(UINT how) const { SendMessageW(window_, TVM_EXPAND, how, reinterpret_cast<LPARAM>(root_)); }
    void DeleteChildren() const {
        for (;;) {
            const LRESULT child = SendMessageW(window_, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(root_));
            if (child == 0) break;
            SendMessageW(window_, TVM_DELETEITEM, 0, child);
        }
    }

private:
    HWND window_;
    HTREEITEM root_;
};

Variant Names(size_t count) {
    std::vector<Variant> names;
    for (size_t at = 0; at < count; ++at) names.push_back(Variant(L"TABLE_" + std::to_wstring(at)));
    return Variant(MakeCollection(std::move(names)));
}

class TreeBench : public BrowsedFixture {
protected:
    // Wide enough for the texts: Wine takes milliseconds to draw a scroll bar, and draws it with every change.
    static void Widen() {
        SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 1200, 800, SWP_NOMOVE | SWP_NOZORDER);
        const HWND grip = GetDlgItem(EditorWindow::Find(), 1006);
        SendMessageW(grip, WM_LBUTTONDOWN, MK_LBUTTON, 0);
        SendMessageW(grip, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(400, 5));
        SendMessageW(grip, WM_LBUTTONUP, 0, 0);
    }
    void Expand(HTREEITEM item) const {
        SendMessageW(Tree.Handle(), TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
    }
    void Collapse(HTREEITEM item) const {
        SendMessageW(Tree.Handle(), TVM_EXPAND, TVE_COLLAPSE, reinterpret_cast<LPARAM>(item));
    }
};

}  // namespace

TEST_F(TreeBench, AFolderOfTables) {
    for (const size_t size : Sizes({1000, 10000}, 50)) {
        const Variant names = Names(size);
        Database.DictionaryMembers[L"Objects"] = [&](const Arguments&) { return names; };
        Inside([&] {
            Widen();
            Tree.Open(Tree.At({}));
            Tree.Open(Tree.At({0}));
            const HTREEITEM tables = Tree.At({0, 0});
            CompareRounds({{"expand a folder of tables", size, 1.25}, {"collapse it", size, 1.25}}, [&] {
                Round expand, collapse;
                expand.Ours = Took([&] { Expand(tables); });
                EXPECT_GE(Tree.Count(), static_cast<int>(size) * 3);
                collapse.Ours = Took([&] { Collapse(tables); });
                EXPECT_LT(Tree.Count(), 40);
                const RawTree raw;
                expand.Raw = Took([&] {
                    raw.Hold(true);
                    raw.DeleteChildren();
                    HostCollection(names).ForEach([&](const Variant& name) {
                        const HTREEITEM table = raw.Insert(raw.Root(), name.bstrVal);
                        raw.Insert(raw.Insert(table, L"Columns"), L"(undefined)");
                        return true;
                    });
                    raw.Expand(TVE_EXPAND);
                    raw.Hold(false);
                });
                collapse.Raw = Took([&] {
                    raw.Hold(true);
                    raw.Expand(TVE_COLLAPSE);
                    raw.DeleteChildren();
                    raw.Insert(raw.Root(), L"(undefined)");
                    raw.Insert(raw.Root(), L"(undefined)");
                    raw.Hold(false);
                });
                return std::vector<Round>{expand, collapse};
            });
        });
    }
}

TEST_F(TreeBench, TheColumnsOfATable) {
    for (const size_t size : Sizes({100, 1000}, 10)) {
        std::vector<Variant> columns;
        for (size_t at = 0; at < size; ++at) {
            std::vector<Variant> properties{Property(L"COLUMN_NAME", L"COLUMN_" + std::to_wstring(at))};
            for (int more = 1; more < 8; ++more)
                properties.push_back(Property(L"PROPERTY_" + std::to_wstring(more), static_cast<long>(more)));
            columns.push_back(Variant(MakeCollection(std::move(properties))));
        }
        const Variant all(MakeCollection(std::move(columns)));
        Database.DictionaryMembers[L"Columns"] = [&](const Arguments&) { return all; };
        Inside([&] {
            Widen();
            Tree.Open(Tree.At({}));
            Tree.Open(Tree.At({0}));
            Tree.Open(Tree.At({0, 0}));
            const HTREEITEM table = Tree.At({0, 0, 0});
            CompareRounds({{"expand a table's columns, 8 properties each", size, 1.25}}, [&] {
                Round round;
                round.Ours = Took([&] { Expand(table); });
                EXPECT_GE(Tree.Count(), static_cast<int>(size) * 10);
                Collapse(table);
                const RawTree raw;
                round.Raw = Took([&] {
                    raw.Hold(true);
                    raw.DeleteChildren();
                    HostCollection(all).ForEach([&](const Variant& column) {
                        const HTREEITEM node = raw.Insert(raw.Root(), L"COLUMN");
                        const HTREEITEM folder = raw.Insert(node, L"Properties");
                        HostCollection(column).ForEach([&](const Variant& property) {
                            const std::vector<Variant> elements = property.ToArray();
                            raw.Insert(folder, (elements[0].ToText() + L"=" + elements[1].ToText()).c_str());
                            return true;
                        });
                        return true;
                    });
                    raw.Expand(TVE_EXPAND);
                    raw.Hold(false);
                });
                return std::vector<Round>{round};
            });
        });
    }
}
