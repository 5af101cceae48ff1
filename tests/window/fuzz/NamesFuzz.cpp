#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <set>

#include "Cases.h"
#include "Windows.h"
#include "editor/ControlIds.h"
#include "support/Browsed.h"

// Names of any kind on their way from the host's dictionary through the tree, the statements, the description and
// drops. A node keeps the name as the host gave it; the tree's control, the label and the tooltip only show it, up to
// its first NUL, and menus show none. What is expected is written down here a second time, from the names alone.
namespace {

struct Column {
    std::wstring Name;
    std::vector<std::pair<std::wstring, Variant>> Properties;  // after COLUMN_NAME
};

struct Model {
    long Type = 0;
    std::wstring Catalog;
    std::wstring User;
    bool OwnersSchema = false;  // the schema's name and the owner's differ in nothing but their case
    std::vector<std::wstring> Schemas;
    size_t Schema = 0;  // the one that is opened
    bool Views = false;
    std::vector<std::wstring> Objects;
    size_t Object = 0;
    std::vector<Column> Columns;
};

// ---- what statements have to say

std::wstring SchemaText(const Model& model) {
    const std::wstring& name = model.Schemas[model.Schema];
    return name.empty() ? L"Current Schema" : name;
}

bool IsDefault(const std::wstring& schema) {
    std::wstring lower = schema;
    for (wchar_t& unit : lower) {
        if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit + 32);
    }
    return lower == L"current schema";
}

std::wstring TableReference(const Model& model, const std::wstring& table) {
    static const std::set<long> qualifying = {4, 8, 13, 26, 27, 40};
    const std::wstring schema = SchemaText(model);
    const bool qualified = qualifying.count(model.Type) != 0 && !model.OwnersSchema && !IsDefault(schema);
    return (qualified ? schema + L"." : L"") + Quoted(table);
}

std::wstring SampleRows(const Model& model, const std::wstring& table) {
    const std::wstring reference = TableReference(model, table);
    switch (model.Type) {
        case 2:
        case 28:
            return L"SELECT first 100 * FROM " + reference;
        case 4:
            return L"SELECT * FROM " + reference + L" WHERE rownum <= 100";
        case 13:
            return L"SELECT * FROM " + reference + L"  fetch first 100 rows only";
        case 17:
        case 27:
            return L"SELECT * FROM " + reference + L" LIMIT 100";
        default:
            return L"SELECT top 100 * FROM " + reference;
    }
}

std::wstring Describe(const Model& model, const std::wstring& table) {
    const std::wstring schema = SchemaText(model);
    return L"DESCRIBE " + (schema == L"Current Schema" ? L"" : schema + L".") + table;
}

std::wstring Join(const std::vector<std::wstring>& parts, const std::wstring& between) {
    std::wstring joined;
    for (size_t at = 0; at < parts.size(); ++at) joined += (at > 0 ? between : L"") + parts[at];
    return joined;
}

template <class Part>
std::vector<std::wstring> ForColumns(const Model& model, Part&& part) {
    std::vector<std::wstring> parts;
    for (const Column& column : model.Columns) parts.push_back(part(column.Name));
    return parts;
}

// The statement of an entry of the Action menu for the opened table or view.
std::wstring OfTable(const Model& model, const std::wstring& entry) {
    const std::wstring& name = model.Objects[model.Object];
    const std::wstring reference = TableReference(model, name);
    const auto formatted = ForColumns(model, [](const std::wstring& column) { return Quoted(column); });
    if (entry == L"Select") return L"SELECT " + Join(formatted, L"\r\n, ") + L"\r\nFROM " + reference + L"\r\n";
    if (entry == L"Insert") {
        const auto values = ForColumns(model, [](const std::wstring& column) { return column + L"_value"; });
        return L"INSERT INTO " + reference + L"\r\n( " + Join(formatted, L"\r\n, ") + L"\r\n) VALUES\r\n( " +
               Join(values, L"\r\n, ") + L"\r\n)";
    }
    const auto assigned = ForColumns(model, [](const std::wstring& column) { return Quoted(column) + L" = value"; });
    if (entry == L"Update") {
        return L"UPDATE " + reference + L"\r\nSET " + Join(assigned, L"\r\n, ") + L"\r\nWHERE " +
               Join(assigned, L"\r\n AND ");
    }
    if (entry == L"Delete") return L"DELETE FROM " + reference + L"\r\nWHERE\t" + Join(assigned, L"\r\nAND\t");
    if (entry == L"Count rows") return L"SELECT COUNT(*) FROM " + reference;
    if (entry == L"Sample rows") return SampleRows(model, name);
    return Describe(model, name);
}

std::wstring OfFolder(const Model& model, const std::wstring& entry) {
    std::vector<std::wstring> statements;
    for (const std::wstring& name : model.Objects) {
        statements.push_back(entry == L"Select"               ? L"SELECT * FROM " + TableReference(model, name)
                             : entry.rfind(L"Count", 0) == 0  ? L"SELECT COUNT(*) FROM " + TableReference(model, name)
                             : entry.rfind(L"Sample", 0) == 0 ? SampleRows(model, name)
                                                              : Describe(model, name));
    }
    return Join(statements, L";\r\n");
}

std::wstring OfColumn(const Model& model, const std::wstring& column, const std::wstring& entry) {
    const std::wstring& table = model.Objects[model.Object];
    if (entry == L"Select") return L"SELECT " + column + L"\r\nFROM " + table;
    if (entry == L"Insert") return L"INSERT (" + column + L")\r\nINTO " + table + L"\r\nVALUES ( value )";
    return L"UPDATE " + table + L"\r\nSET " + column + L" = value\r\nWHERE ...";
}

class NamesFuzz : public BrowsedFixture {
protected:
    NamesFuzz() {
        Database.Members[L"CurrentCatalog"] = [this](const Arguments&) { return Variant(Host.Catalog); };
        Database.Members[L"UserName"] = [this](const Arguments&) { return Variant(Host.User); };
        Database.Members[L"DBType"] = [this](const Arguments&) { return Variant(Host.Type); };
        Database.Members[L"FormatName"] = [](const Arguments& a) { return Variant(Quoted(a[0].ToText())); };
        Database.DictionaryMembers[L"Schemas"] = [this](const Arguments&) {
            std::vector<Variant> names(Host.Schemas.begin(), Host.Schemas.end());
            return Variant(MakeCollection(std::move(names)));
        };
        Database.DictionaryMembers[L"Objects"] = [this](const Arguments& a) {
            std::vector<Variant> names;
            if (IsAsked(a[1]) && (a[0].ToLong() == 2) == Host.Views)
                names.assign(Host.Objects.begin(), Host.Objects.end());
            return Variant(MakeCollection(std::move(names)));
        };
        Database.DictionaryMembers[L"Columns"] = [this](const Arguments& a) {
            std::vector<Variant> columns;
            if (!IsAsked(a[0]) || a[1].ToText() != Host.Objects[Host.Object]) return Variant(MakeCollection({}));
            for (const ::Column& column : Host.Columns) {
                std::vector<Variant> properties{Property(L"COLUMN_NAME", column.Name)};
                for (const auto& [name, value] : column.Properties) properties.push_back(Property(name, value));
                columns.emplace_back(MakeCollection(std::move(properties)));
            }
            return Variant(MakeCollection(std::move(columns)));
        };
    }

    // Whether the dictionary is asked for the schema that is opened, by exactly its name.
    bool IsAsked(const Variant& schema) const {
        const std::wstring text = SchemaText(Host);
        return text == L"Current Schema" ? schema.IsNull() : !schema.IsNull() && schema.ToText() == text;
    }

    // Names that differ, so that each is asked for by itself.
    static std::vector<std::wstring> Names(Random& random, size_t count, size_t longest) {
        std::vector<std::wstring> names;
        while (names.size() < count) {
            std::wstring name = AnyText(random, longest);
            if (std::find(names.begin(), names.end(), name) != names.end()) name += std::to_wstring(names.size());
            names.push_back(name);
        }
        return names;
    }

    static Model AnyModel(Random& random, size_t longest = 60) {
        Model model;
        model.Type = random.Pick({0L, 1L, 2L, 4L, 8L, 13L, 17L, 24L, 26L, 27L, 28L, 40L, 99L, -1L});
        model.Schemas = Names(random, 1 + random.Below(3), longest);
        model.Schema = random.Below(model.Schemas.size());
        if (random.OneIn(6)) model.Schemas[model.Schema] = random.Pick({L"Current Schema", L"CURRENT schema", L""});
        model.Views = random.OneIn(3);
        model.Objects = Names(random, 1 + random.Below(3), longest);
        model.Object = random.Below(model.Objects.size());
        for (const std::wstring& name : Names(random, 1 + random.Below(4), longest)) {
            ::Column column{name, {}};
            for (size_t left = random.Below(3); left > 0; --left) {
                column.Properties.emplace_back(AnyText(random, 20), random.OneIn(4) ? Variant::Null()
                                                                    : random.OneIn(4)
                                                                        ? Variant(random.Between(-99999, 99999))
                                                                        : Variant(AnyText(random)));
            }
            model.Columns.push_back(std::move(column));
        }
        const std::wstring schema = SchemaText(model);
        model.OwnersSchema = random.OneIn(4);
        const std::wstring owner = model.OwnersSchema ? InOtherCase(random, schema) : schema + L"2";
        const bool catalog = random.OneIn(2);
        model.Catalog = catalog ? owner : L"";
        model.User = catalog ? AnyText(random) : owner;
        return model;
    }

    // Connects the host as it is now and opens its schema, folder and object: a node that is selected in a closed
    // branch opens the branches above it, which reads them again.
    void OpenModel(const Object& editor) {
        editor.Call(L"Constructor", Database.Make());
        Errors.Forget();
        const HTREEITEM root = Tree.At({});
        if (Tree.Next(TVGN_NEXTVISIBLE, root) == nullptr) {
            Tree.Open(root);
        } else {
            Click(root);  // reads the schemas again
        }
        schema_ = Tree.At({static_cast<int>(Host.Schema)});
        Tree.Open(schema_);
        folder_ = Tree.Next(TVGN_CHILD, schema_);
        if (Host.Views) folder_ = Tree.Next(TVGN_NEXT, folder_);
        Tree.Open(folder_);
        object_ = Tree.Next(TVGN_CHILD, folder_);
        for (size_t left = Host.Object; left > 0; --left) object_ = Tree.Next(TVGN_NEXT, object_);
        Tree.Open(object_);
        columns_ = Tree.Next(TVGN_CHILD, object_);
        Click(object_);
    }

    // By the keyboard: what has no text to show has no place to be clicked either.
    void Click(HTREEITEM item) const {
        Tree.Select(item);
        Tree.Key(VK_SPACE);
    }

    // Chooses an entry with the caret, or a selection, in the middle of a text, and says whether what was there before
    // stays and the statement stands after what was selected, and selected itself.
    static void ExpectInserted(Random& random, const std::wstring& expected, const std::wstring& inserted,
                               const std::function<void()>& insert) {
        const std::wstring before = random.OneIn(2) ? L"" : L"ab\r\ncd\r\n";
        PutText(before);
        const size_t from = random.Below(before.empty() ? 1 : 7);
        const size_t to = before.empty() ? 0 : from + random.Below(7 - from);
        EditorWindow::Select(static_cast<long>(from), static_cast<long>(to));
        insert();
        const size_t caret = to + (to > 2 ? 1 : 0) + (to > 5 ? 1 : 0);  // the control counts a line end once
        const std::wstring whole = InControl(before.substr(0, caret)) + expected + InControl(before.substr(caret));
        const std::wstring text = EditorText();
        EXPECT_TRUE(whole == text) << "expected " << Shown(whole) << "\nbut it is " << Shown(text);
        CHARRANGE range{};
        SendMessageW(EditorWindow::Editor(), EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
        const auto lines = std::count(inserted.begin(), inserted.end(), L'\n');
        const bool leading = inserted.rfind(L"\r\n", 0) == 0;
        // Nothing is selected again where nothing comes in.
        if (!inserted.empty()) {
            EXPECT_EQ(static_cast<long>(to) + (leading ? 1 : 0), range.cpMin) << Shown(inserted);
            EXPECT_EQ(static_cast<long>(to + inserted.size()) - lines, range.cpMax) << Shown(inserted);
        }
    }

    static void ExpectStatement(Random& random, const wchar_t* entry, const std::wstring& statement) {
        const std::wstring whole = InControl(L"\r\n" + statement + L";\r\n");
        ExpectInserted(random, whole, whole, [&] { EditorWindow::Choose(L"Action", entry); });
    }

    static LPARAM Mapped(HWND from, HWND to, POINT at) {
        MapWindowPoints(from, to, &at, 1);
        return MAKELPARAM(at.x, at.y);
    }

    // Drags a node into the empty editor. False: the tree shows nothing of the node that the mouse could take.
    bool Drag(HTREEITEM item) const {
        SendMessageW(Tree.Handle(), TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
        SendMessageW(Tree.Handle(), WM_HSCROLL, SB_LEFT, 0);
        POINT at{};
        if (NodeText(item).empty() || !Tree.Place(item, at)) return false;
        TVHITTESTINFO hit{};
        hit.pt = at;
        SendMessageW(Tree.Handle(), TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
        if (hit.hItem != item || (hit.flags & TVHT_ONITEMLABEL) == 0) return false;
        PutText(L"");
        const HWND view = Tree.Handle();
        SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(view, WM_MOUSEMOVE, MK_LBUTTON, Mapped(EditorWindow::Editor(), view, {5, 5}));
        SendMessageW(view, WM_LBUTTONUP, 0, Mapped(EditorWindow::Editor(), view, {5, 5}));
        return true;
    }

    void ExpectDropped(HTREEITEM item, const std::wstring& expected) {
        if (!Drag(item)) return;
        ++drops_;
        const std::wstring text = EditorText();
        EXPECT_TRUE(InControl(expected) == text)
            << "expected " << Shown(InControl(expected)) << "\nbut it is " << Shown(text);
    }

    static void ExpectText(const std::wstring& expected, const std::wstring& text) {
        EXPECT_TRUE(expected == text) << "expected " << Shown(expected) << "\nbut it is " << Shown(text);
    }

    // One window for all cases: each case gives the component another host. The SQL comes back when it is closed.
    void WithWindow(const std::function<void(const Object& editor)>& cases) {
        Host.Schemas = {L"S"};
        Host.Objects = {L"T"};
        Host.User = L"U";
        const Object editor = Connected();
        EXPECT_EQ(L"the end", DisplayAndClose(editor, L"", [&] {
                      SetWindowPos(EditorWindow::Find(), nullptr, 0, 0, 900, 900, SWP_NOMOVE | SWP_NOZORDER);
                      cases(editor);
                      PutText(L"the end");
                  }));
    }

    Model Host;
    HTREEITEM schema_ = nullptr;
    HTREEITEM folder_ = nullptr;
    HTREEITEM object_ = nullptr;
    HTREEITEM columns_ = nullptr;
    int drops_ = 0;
};

}  // namespace

TEST_F(NamesFuzz, Statements) {
    WithWindow([&](const Object& editor) {
        ForEachCase(25, [&](Random& random) {
            Host = AnyModel(random);
            OpenModel(editor);
            // Two of the entries a case: each insertion costs as much as all else.
            std::vector<const wchar_t*> entries = {L"Select", L"Count rows", L"Sample rows",
                                                   Host.Views ? L"Describe view" : L"Describe table"};
            if (!Host.Views) entries.insert(entries.end(), {L"Insert", L"Update", L"Delete"});
            for (int left = 2; left > 0; --left) {
                const wchar_t* const entry = random.Pick(entries);
                ExpectStatement(random, entry, OfTable(Host, entry));
            }
            Tree.Select(folder_);
            const std::wstring kind = Host.Views ? L"views" : L"tables";
            const std::wstring entry = random.Pick<std::wstring>(
                {L"Select", L"Count rows in all " + kind, L"Describe all " + kind, L"Sample rows from all " + kind});
            ExpectStatement(random, entry.c_str(), OfFolder(Host, entry));
            const size_t which = random.Below(Host.Columns.size());
            HTREEITEM column = Tree.Next(TVGN_CHILD, columns_);
            for (size_t left = which; left > 0; --left) column = Tree.Next(TVGN_NEXT, column);
            Tree.Select(column);
            const wchar_t* const action = random.Pick({L"Select", L"Insert", L"Update"});
            ExpectStatement(random, action, OfColumn(Host, Host.Columns[which].Name, action));
            EXPECT_EQ(L"", Errors.Places());
        });
    });
}

TEST_F(NamesFuzz, TreeAndDescription) {
    WithWindow([&](const Object& editor) {
        ForEachCase(25, [&](Random& random) {
            Host = AnyModel(random);
            OpenModel(editor);
            const std::wstring schema = SchemaText(Host);
            const std::wstring& object = Host.Objects[Host.Object];
            // The label shows what it is given, ampersands too, up to a NUL.
            EXPECT_NE(0, GetWindowLongW(EditorWindow::Control(IdDescription), GWL_STYLE) & SS_NOPREFIX);
            ExpectText(
                UpToNul(object + (Host.Views
                                      ? L" view: a custom-tailored presentation of data (or stored query) in the " +
                                            schema + L" schema."
                                      : L" table: a basic unit of data storage in the " + schema +
                                            L" schema. Open to view the column definition of this table.")),
                Description());
            Tree.Select(schema_);
            ExpectText(UpToNul(schema + L" schema: contains a list of database objects (tables and views)."),
                       Description());
            size_t at = 0;
            for (HTREEITEM item = Tree.At({0}); item != nullptr; item = Tree.Next(TVGN_NEXT, item)) {
                const std::wstring& name = Host.Schemas.at(at++);
                ExpectText(UpToNul(name.empty() ? L"Current Schema" : name), NodeText(item));
            }
            EXPECT_EQ(Host.Schemas.size(), at);
            at = 0;
            for (HTREEITEM item = Tree.Next(TVGN_CHILD, folder_); item != nullptr; item = Tree.Next(TVGN_NEXT, item))
                ExpectText(UpToNul(Host.Objects.at(at++)), NodeText(item));
            EXPECT_EQ(Host.Objects.size(), at);
            at = 0;
            for (HTREEITEM item = Tree.Next(TVGN_CHILD, columns_); item != nullptr; item = Tree.Next(TVGN_NEXT, item)) {
                const ::Column& column = Host.Columns.at(at++);
                ExpectText(UpToNul(column.Name), NodeText(item));
                HTREEITEM property = Tree.Next(TVGN_CHILD, Tree.Next(TVGN_CHILD, item));
                ExpectText(UpToNul(L"COLUMN_NAME=" + column.Name), NodeText(property));
                for (const auto& [name, value] : column.Properties) {
                    property = Tree.Next(TVGN_NEXT, property);
                    ExpectText(UpToNul(name + L"=" + (value.IsNull() ? L"null" : value.ToText())), NodeText(property));
                }
                EXPECT_EQ(nullptr, Tree.Next(TVGN_NEXT, property));
            }
            EXPECT_EQ(Host.Columns.size(), at);
            EXPECT_EQ(L"", Errors.Places());
        });
    });
}

TEST_F(NamesFuzz, DropsFromTheTree) {
    int cases = 0;
    WithWindow([&](const Object& editor) {
        ForEachCase(12, [&](Random& random) {
            ++cases;
            Host = AnyModel(random);
            OpenModel(editor);
            std::vector<std::wstring> schemas;
            for (const std::wstring& name : Host.Schemas) schemas.push_back(name.empty() ? L"Current Schema" : name);
            ExpectDropped(schema_, SchemaText(Host));
            ExpectDropped(object_, Host.Objects[Host.Object]);
            ExpectDropped(Tree.Next(TVGN_CHILD, columns_), Host.Columns[0].Name);
            switch (random.Below(3)) {
                case 0:
                    ExpectDropped(columns_,
                                  Join(ForColumns(Host, [](const std::wstring& name) { return name; }), L", "));
                    break;
                case 1:
                    ExpectDropped(folder_, Join(Host.Objects, L"\r\n"));
                    break;
                default:
                    ExpectDropped(Tree.At({}), Join(schemas, L"\r\n"));
                    break;
            }
            EXPECT_EQ(L"", Errors.Places());
        });
    });
    if (cases > 5) {
        EXPECT_GT(drops_, cases);  // else the mouse took none
    }
}

// A name as long as a name can be, in one place a case, through everything.
TEST_F(NamesFuzz, LongNames) {
    WithWindow([&](const Object& editor) {
        ForEachCase(3, [&](Random& random) {
            Host = AnyModel(random, 10);
            Host.Columns.resize(1);
            Host.Type = 4;
            Host.OwnersSchema = false;
            Host.User = L"somebody";
            Host.Catalog.clear();
            const std::wstring name = TextOfLength(random, LongText);
            switch (random.Below(3)) {
                case 0:
                    Host.Schemas[Host.Schema] = name;
                    break;
                case 1:
                    Host.Objects[Host.Object] = name;
                    break;
                default:
                    Host.Columns[0].Name = name;
                    break;
            }
            OpenModel(editor);
            ExpectText(UpToNul(SchemaText(Host)), NodeText(schema_));
            ExpectText(UpToNul(Host.Objects[Host.Object]), NodeText(object_));
            ExpectText(UpToNul(Host.Columns[0].Name), NodeText(Tree.Next(TVGN_CHILD, columns_)));
            ExpectStatement(random, L"Select", OfTable(Host, L"Select"));
            ExpectDropped(object_, Host.Objects[Host.Object]);
            EXPECT_EQ(L"", Errors.Places());
            PutText(L"");
        });
    });
}
