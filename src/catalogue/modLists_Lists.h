#pragma once

#include <string>

#include "catalogue/ItemText.h"
#include "shared/Vocabulary.h"

// The catalogue and the panes that show it. (The object tree's half of this module is in browser/modLists_Tree.h.)
namespace modLists {
// Fills the catalogue with all its entries, in their order. Called once, at start-up, on the empty collection.
void CreateListItems();

// Adds one entry to the catalogue; its Id, and in decimal its key, is the number of entries before it.
void m_CreateListItem(ItemText Text, long list, long DBType, ItemText Category, ItemText Description, ItemText DragDrop,
                      ItemText SelectText, ItemText InsertText, ItemText UpdateText, ItemText DeleteText,
                      ItemText ExecuteText);

// The panes of the editor window. Each is emptied and filled from the catalogue.
void PopulateAnsiSQLCommands();
void PopulateDatabaseSpecificCommands();
void PopulateKolvexCommands();
}  // namespace modLists
