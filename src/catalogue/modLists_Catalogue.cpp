#include <utility>

#include "catalogue/Catalogue.h"
#include "catalogue/clsListItem.h"
#include "catalogue/modLists_Lists.h"
#include "errors/modErrorHandler.h"
#include "shared/modGlobal.h"

void modLists::CreateListItems() try {
    for (const CatalogueSection& Section : CatalogueSections()) {
        for (const CatalogueEntry& Entry : Section.Entries) {
            CatalogueTexts Texts = ExpandTexts(Section, Entry);
            m_CreateListItem(ItemText::Constant(Entry.Text), Section.list, Section.DBType,
                             ItemText::Constant(Section.Category), std::move(Texts.Description),
                             std::move(Texts.DragDrop), std::move(Texts.SelectText), L"", L"", L"",
                             std::move(Texts.ExecuteText));
        }
    }
} catch (...) {
    ReportError(Module, L"CreateListItems");
}

// The texts are moved all the way.
void modLists::m_CreateListItem(ItemText Text, long list, long DBType, ItemText Category, ItemText Description,
                                ItemText DragDrop, ItemText SelectText, ItemText InsertText, ItemText UpdateText,
                                ItemText DeleteText, ItemText ExecuteText) try {
    const long Id = modGlobal::Catalogue().Count();
    const auto Item = std::make_shared<clsListItem>();
    Item->Constructor(std::move(Text), Id, list, DBType, std::move(Category), std::move(Description),
                      std::move(DragDrop), std::move(SelectText), std::move(InsertText), std::move(UpdateText),
                      std::move(DeleteText), std::move(ExecuteText));
    ListItems->Add(Item, std::to_wstring(Id));
} catch (...) {
    ReportError(Module, L"m_CreateListItem");
}
