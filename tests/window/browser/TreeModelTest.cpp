#include "browser/modLists_Tree.h"

#include <gtest/gtest.h>
#include "catalogue/modLists_Lists.h"
#include "dictionary/clsDictionary.h"
#include "editor/frmSQLEditor.h"
#include "errors/clsErrorHandler.h"
#include "shared/modGlobal.h"
#include "support/HostFakes.h"
#include "support/Settings.h"

// The procedures of the object tree, called one by one on the tree of a window that is made from the component's parts.
namespace {

class TreeModelTest : public testing::Test {
protected:
    TreeModelTest() {
        Settings::Clear();
        modGlobal::Main();
        Host.DictionaryMembers[L"Schemas"] = [](const Arguments&) { return Variant(MakeCollection({Variant(L"HR")})); };
        Host.DictionaryMembers[L"Objects"] = [](const Arguments&) { return Variant(MakeCollection({Variant(L"T")})); };
        Host.DictionaryMembers[L"Columns"] = [](const Arguments&) {
            return Variant(MakeCollection(
                {Variant(MakeCollection({Variant::ArrayOf({Variant(L"COLUMN_NAME"), Variant(L"ID"), Variant(0L)})}))}));
        };
        Dictionary = std::make_shared<clsDictionary>();
        Dictionary->Constructor(Host.MakeDictionary());
        SchemaTermPlural = L"Owners";
        EditorForm = std::make_shared<frmSQLEditor>();
        EditorForm->Load();
    }
    ~TreeModelTest() override {
        EditorForm.reset();
        Dictionary.reset();
        ErrorHandler.reset();
        SchemaTermPlural.clear();
        Settings::Clear();
    }
    Nodes& Items() { return EditorForm->trvDBObjects.Items(); }
    Node Root() { return Items().Item(std::wstring(L"schemas")); }
    Node Added(const Node& parent, const wchar_t* text, const wchar_t* tag) {
        const Node added = Items().Add(parent.Index(), TreeRelationship::Child, Variant::Missing(), text);
        added.SetTag(tag);
        return added;
    }
    // "text/tag" of a node, and its children in brackets.
    static std::wstring Shape(const Node& node) {
        std::wstring shape = node.Text() + L"/" + node.Tag() + (node.Key().empty() ? L"" : L"/" + node.Key());
        if (node.Child()) {
            shape += L"[";
            for (Node child = node.Child(); child; child = child.Next())
                shape += Shape(child) + (child.Next() ? L" " : L"]");
        }
        return shape;
    }
    // So many nodes can still be added, the last of which reaches the limit.
    void LeaveRoom(long nodes) {
        if (!filler_) filler_ = Added(Root(), L"filler", L"filler");
        const short index = filler_.Index();
        while (Items().Count() < 32767 - nodes)
            Items().Add(Variant(static_cast<long>(index)), TreeRelationship::Child, Variant::Missing(), L"x");
        while (Items().Count() > 32767 - nodes) Items().Remove(filler_.Child().Index());
    }
    // What goes up to the caller: its number, source and description; empty when nothing does.
    static std::wstring Raised(const std::function<void()>& work) {
        try {
            work();
        } catch (const RuntimeError& error) {
            return std::to_wstring(error.Number) + L" " + error.Source + L": " + error.Description;
        }
        return {};
    }
    std::wstring Places() {
        std::wstring places = Errors.Places();
        Errors.Forget();
        return places;
    }

    FakeErrors Errors;
    FakeDatabase Host;

private:
    Node filler_;
};

constexpr const wchar_t* LimitError = L"-2147221502 brvSQLEditor: Maximum items in TreeView exceeded.";

}  // namespace

TEST_F(TreeModelTest, AFreshTreeIsTheRootWithItsKeyAndAPlaceholder) {
    EXPECT_EQ(2, Items().Count());
    EXPECT_EQ(L"Owners/schemas/schemas[(undefined)/undefined]", Shape(Root()));
    EXPECT_FALSE(Root().Expanded());
    // Filled again it is as fresh as before.
    Added(Root(), L"more", L"schema");
    modLists::PopulateDBObjects();
    EXPECT_EQ(L"Owners/schemas/schemas[(undefined)/undefined]", Shape(Root()));
    EXPECT_EQ(2, Items().Count());
    // Without an adapter, or with one that is not connected, it is emptied all the same.
    Dictionary->Constructor(Object());
    modLists::PopulateDBObjects();
    EXPECT_EQ(0, Items().Count());
    Dictionary->Constructor(Host.MakeDictionary());
    modLists::PopulateDBObjects();
    EXPECT_EQ(2, Items().Count());
    Dictionary.reset();
    modLists::PopulateDBObjects();
    EXPECT_EQ(0, Items().Count());
    EXPECT_EQ(L"", Places());
    EditorForm.reset();
    modLists::PopulateDBObjects();
    EXPECT_EQ(L"modLists.PopulateDBObjects 91", Places());
}

TEST_F(TreeModelTest, EachKindOfNodeHasItsTagAndItsPlaceholders) {
    Host.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        return Variant(MakeCollection({Variant(L"HR"), Variant::Null(), Variant(L"")}));
    };
    Dictionary->Constructor(Host.MakeDictionary());
    const std::wstring folders =
        L"[Tables/tables[(undefined)/undefined (undefined)/undefined] Views/views[(undefined)/undefined "
        L"(undefined)/undefined]]";
    modLists::PopulateDBObjSchemas(Items(), Root());
    EXPECT_EQ(L"Owners/schemas/schemas[HR/schema" + folders + L" Current Schema/schema" + folders +
                  L" Current Schema/schema" + folders + L"]",
              Shape(Root()));
    const Node schema = Root().Child();
    const Node tables = schema.Child();
    const Node views = tables.Next();
    modLists::PopulateDBObjTablesViews(1, Items(), tables, false);
    modLists::PopulateDBObjTablesViews(2, Items(), views, false);
    EXPECT_EQ(L"Tables/tables[T/table[Columns/columns[(undefined)/undefined]]]", Shape(tables));
    EXPECT_EQ(L"Views/views[T/view[Columns/columns[(undefined)/undefined]]]", Shape(views));
    modLists::PopulateDBObjColumns(Items(), tables.Child().Child());
    EXPECT_EQ(L"T/table[Columns/columns[ID/column[Properties/properties[COLUMN_NAME=ID/property]]]]",
              Shape(tables.Child()));
    modLists::AddDefaultDBObjectItems(Items(), tables.Child());
    EXPECT_EQ(L"T/table[Columns/columns[(undefined)/undefined]]", Shape(tables.Child()));
    modLists::AddDefaultTablesViewsItems(Items(), views);
    EXPECT_EQ(L"Views/views[(undefined)/undefined (undefined)/undefined]", Shape(views));
    modLists::AddDefaultSchemaItems(Items(), schema);
    EXPECT_EQ(L"HR/schema" + folders, Shape(schema));
    EXPECT_EQ(L"", Places());
}

TEST_F(TreeModelTest, ANodeIsAddedWithAllThatIsAskedFor) {
    const Node keyed = modLists::m_AddNode(Items(), L"text", L"tag", Variant::Missing(), Variant::Missing(), L"key");
    EXPECT_EQ(L"text/tag/key", Shape(keyed));
    EXPECT_FALSE(keyed.Parent());
    const Node child = modLists::m_AddNode(Items(), L"below", L"t", L"key", TreeRelationship::Child);
    EXPECT_EQ(keyed, child.Parent());
    EXPECT_EQ(L"text/tag/key[below/t]", Shape(keyed));
    // What the tree refuses is reported, and there is no node.
    EXPECT_FALSE(modLists::m_AddNode(Items(), L"again", L"t", Variant::Missing(), Variant::Missing(), L"key"));
    EXPECT_EQ(L"modLists.m_AddNode 35602", Places());
}

TEST_F(TreeModelTest, TheNodeThatReachesTheLimitIsAddedAndTheErrorGoesUp) {
    LeaveRoom(2);
    EXPECT_EQ(L"",
              Raised([this] { modLists::m_AddNode(Items(), L"before", L"t", L"schemas", TreeRelationship::Child); }));
    EXPECT_EQ(32766, Items().Count());
    EXPECT_EQ(LimitError, Raised([this] {
                  modLists::m_AddNode(Items(), L"last", L"tag of the last", L"schemas", TreeRelationship::Child);
              }));
    EXPECT_EQ(32767, Items().Count());
    const Node last = Root().Child().LastSibling();
    EXPECT_EQ(L"last/tag of the last", Shape(last));
    EXPECT_EQ(L"", Places());
}

TEST_F(TreeModelTest, TheLimitGoesUpThroughEachProcedure) {
    modLists::PopulateDBObjSchemas(Items(), Root());
    const Node node = Added(Root(), L"node", L"any");
    const Node table = Added(Root().Child().Child(), L"T", L"table");
    const Node columns = Added(table, L"Columns", L"columns");
    const struct {
        const char* Name;
        long Adds;
        const Node& Filled;
        std::function<void()> Work;
    } procedures[] = {
        {"AddDefaultDBObjectItems", 2, node, [&] { modLists::AddDefaultDBObjectItems(Items(), node); }},
        {"AddDefaultTablesViewsItems", 2, node, [&] { modLists::AddDefaultTablesViewsItems(Items(), node); }},
        {"AddDefaultSchemaItems", 6, node, [&] { modLists::AddDefaultSchemaItems(Items(), node); }},
        {"PopulateDBObjColumns", 3, columns, [&] { modLists::PopulateDBObjColumns(Items(), columns); }},
        {"PopulateDBObjTablesViews", 3, node, [&] { modLists::PopulateDBObjTablesViews(1, Items(), node, false); }},
    };
    for (const auto& procedure : procedures) {
        for (long room = procedure.Adds + 1; room > 0; --room) {
            SCOPED_TRACE(procedure.Name + std::string(" with room for ") + std::to_string(room));
            modLists::m_ClearNode(Items(), procedure.Filled);
            LeaveRoom(room);
            EXPECT_EQ(room > procedure.Adds ? L"" : LimitError, Raised(procedure.Work));
            EXPECT_EQ(room > procedure.Adds ? 32766 : 32767, Items().Count());
        }
        modLists::m_ClearNode(Items(), procedure.Filled);
    }
    EXPECT_EQ(L"", Places());
}

TEST_F(TreeModelTest, TheLimitGoesUpFromTheSchemas) {
    Host.DictionaryMembers[L"Schemas"] = [](const Arguments&) {
        std::vector<Variant> names;
        for (int at = 0; at < 4700; ++at) names.push_back(Variant(L"S"));
        return Variant(MakeCollection(std::move(names)));
    };
    Dictionary->Constructor(Host.MakeDictionary());
    EXPECT_EQ(LimitError, Raised([this] { modLists::PopulateDBObjSchemas(Items(), Root()); }));
    EXPECT_EQ(32767, Items().Count());
    EXPECT_EQ(L"", Places());
}

TEST_F(TreeModelTest, ClearingANodeTakesAllThatIsBelowIt) {
    modLists::PopulateDBObjSchemas(Items(), Root());
    modLists::m_ClearNode(Items(), Root());
    EXPECT_EQ(1, Items().Count());
    modLists::m_ClearNode(Items(), Root());  // there is nothing any more
    EXPECT_EQ(1, Items().Count());
    EXPECT_EQ(L"", Places());
}

TEST_F(TreeModelTest, AClearingThatFailsIsReportedWithTheChildAndTheCount) {
    // A node of another tree: its first child has a position that this tree does not have.
    Nodes& others = EditorForm->trvDatabaseSpecific.Items();
    others.Clear();
    Node parent;
    for (int at = 0; at < 11; ++at)
        parent = others.Add(Variant::Missing(), Variant::Missing(), Variant::Missing(), L"p");
    others.Add(Variant(11L), TreeRelationship::Child, Variant::Missing(), L"c");
    others.Add(Variant(11L), TreeRelationship::Child, Variant::Missing(), L"d");
    modLists::m_ClearNode(Items(), parent);
    const Report report = Errors.Only();
    EXPECT_EQ(L"modLists.m_ClearNode", report.Place());
    EXPECT_EQ(L"index=[12] count=[2]", report.Debug);
    EXPECT_FALSE(report.DebugMissing);
    Errors.Forget();
    // A node that is gone has no child to tell of.
    const Node gone = Added(Root(), L"gone", L"t");
    Items().Remove(gone.Index());
    modLists::m_ClearNode(Items(), gone);
    EXPECT_EQ(L"index=[] count=[2]", Errors.Only().Debug);
    EXPECT_EQ(L"modLists.m_ClearNode 35601", Places());
}

TEST_F(TreeModelTest, EachProcedureReportsUnderItsOwnName) {
    const Node gone = Added(Root(), L"gone", L"t");
    Items().Remove(gone.Index());
    modLists::AddDefaultDBObjectItems(Items(), gone);
    EXPECT_EQ(L"modLists.m_ClearNode 35601|modLists.AddDefaultDBObjectItems 35601", Places());
    modLists::AddDefaultSchemaItems(Items(), gone);
    EXPECT_EQ(L"modLists.m_ClearNode 35601|modLists.AddDefaultSchemaItems 35601", Places());
    modLists::AddDefaultTablesViewsItems(Items(), gone);
    EXPECT_EQ(L"modLists.m_ClearNode 35601|modLists.AddDefaultTablesViewsItems 35601", Places());
    modLists::PopulateDBObjSchemas(Items(), gone);
    EXPECT_EQ(L"modLists.m_ClearNode 35601|modLists.PopulateDBObjSchemas 35601", Places());
    modLists::PopulateDBObjTablesViews(1, Items(), gone, false);
    EXPECT_EQ(L"modLists.PopulateDBObjTablesViews 35601", Places());
    modLists::PopulateDBObjColumns(Items(), gone);
    EXPECT_EQ(L"modLists.PopulateDBObjColumns 35601", Places());
    // Without a dictionary they have nobody to ask.
    Dictionary.reset();
    modLists::PopulateDBObjSchemas(Items(), Root());
    EXPECT_EQ(L"modLists.PopulateDBObjSchemas 91", Places());
    const Node folder = Added(Root(), L"Tables", L"tables");
    modLists::PopulateDBObjTablesViews(1, Items(), folder, false);
    EXPECT_EQ(L"modLists.PopulateDBObjTablesViews 91", Places());
    modLists::PopulateDBObjColumns(Items(), folder);
    EXPECT_EQ(L"modLists.PopulateDBObjColumns 91", Places());
}

// What the component did not raise itself is reported, also when it has the application's name or a number of the
// range.
TEST_F(TreeModelTest, OnlyTheComponentsOwnErrorsGoUp) {
    const struct {
        long Number;
        const wchar_t* Source;
        bool GoesUp;
    } errors[] = {
        {-2147221503, L"brvSQLEditor", true},
        {-2147221502, L"brvSQLEditor", true},
        {-2147221504 + 65534, L"brvSQLEditor", true},
        {-2147221504, L"brvSQLEditor", false},
        {-2147221504 + 65535, L"brvSQLEditor", false},
        {5, L"brvSQLEditor", false},
        {-2147221502, L"brvADO", false},
        {-2147221502, L"BRVSQLEDITOR", false},
    };
    modLists::PopulateDBObjSchemas(Items(), Root());
    for (const auto& error : errors) {
        // An item of a collection that fails does so in the procedure itself.
        auto* made = new DynamicObject;
        const Object collection = Object::Attach(made);
        made->Define(L"Count", [](const Arguments&) { return Variant(1L); });
        made->Define(L"Item", [error](const Arguments&) -> Variant { RaiseError(error.Number, error.Source, L"d"); });
        for (const wchar_t* member : {L"Schemas", L"Objects", L"Columns"})
            Host.DictionaryMembers[member] = [collection](const Arguments&) { return Variant(collection); };
        Dictionary->Constructor(Host.MakeDictionary());
        const Node schema = Root().Child();
        const Node columns = Added(Added(schema.Child(), L"T", L"table"), L"Columns", L"columns");
        const std::wstring number = std::to_wstring(error.Number);
        const std::wstring raised = error.GoesUp ? number + L" " + error.Source + L": d" : L"";
        EXPECT_EQ(raised, Raised([&] { modLists::PopulateDBObjColumns(Items(), columns); })) << error.Number;
        EXPECT_EQ(error.GoesUp ? L"" : L"modLists.PopulateDBObjColumns " + number, Places());
        if (error.Number != -2147221503) {  // of objects it is told
            EXPECT_EQ(raised, Raised([&] { modLists::PopulateDBObjTablesViews(2, Items(), schema.Child(), false); }));
            EXPECT_EQ(error.GoesUp ? L"" : L"modLists.PopulateDBObjTablesViews " + number, Places());
        }
        EXPECT_EQ(raised, Raised([&] { modLists::PopulateDBObjSchemas(Items(), Root()); }));
        EXPECT_EQ(error.GoesUp ? L"" : L"modLists.PopulateDBObjSchemas " + number, Places());
        // The root has schemas again for the next.
        Host.DictionaryMembers[L"Schemas"] = [](const Arguments&) { return Variant(MakeCollection({Variant(L"HR")})); };
        Dictionary->Constructor(Host.MakeDictionary());
        modLists::PopulateDBObjSchemas(Items(), Root());
    }
}
