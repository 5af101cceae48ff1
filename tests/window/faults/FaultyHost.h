#pragma once

#include "Fault.h"
#include "Model.h"
#include "support/Component.h"
#include "support/EditorTree.h"

// The branches of the first schema, opened by the keyboard; the first table, or the folder of the tables, selected.
void OpenSchema(const EditorTree& tree);
void OpenTables(const EditorTree& tree);
void SelectTable(const EditorTree& tree);
void SelectTables(const EditorTree& tree);

// A component with a host of which any call can be made to fail, and what there is to see of it.
class FaultyHostFixture : public ComponentFixture {
protected:
    FaultyHostFixture();

    // The host again: all names are looked up again. Its collections count and give items, and cannot be enumerated.
    Object MakeHost();
    Object MakeList(const std::wstring& name, std::vector<Variant> items);
    Object MakeColumn(const std::wstring& name);

    // What was reported and told since the last time, as the model says it.
    std::vector<std::wstring> Reported();
    void Compare(const Outcome& expected, const std::vector<std::wstring>& boxes);

    static bool Gone() { return EditorWindow::Find() == nullptr; }
    static void Pump();
    // What is in the editor beside what was there; a failure when that is lost.
    static std::wstring Beside(std::wstring text);

    EditorTree Tree;
    Faults Wanted;
    Watchdog Dog;
};
