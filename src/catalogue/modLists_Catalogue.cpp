#include "catalogue/Catalogue.h"
#include "catalogue/clsListItem.h"
#include "catalogue/modLists.h"
#include "component/modGlobal.h"
#include "errors/modErrorHandler.h"

namespace {
constexpr const wchar_t* Module = L"modLists";
}

void modLists::CreateListItems() try {
    for (const CatalogueSection& Section : CatalogueSections()) {
        for (const CatalogueEntry& Entry : Section.Entries) {
            const CatalogueTexts Texts = ExpandTexts(Section, Entry);
            m_CreateListItem(std::wstring(Entry.Text), Section.list, Section.DBType, std::wstring(Section.Category),
                             Texts.Description, Texts.DragDrop, Texts.SelectText, L"", L"", L"", Texts.ExecuteText);
        }
    }
} catch (...) {
    ReportError(Module, L"CreateListItems");
}

void modLists::m_CreateListItem(const std::wstring& Text, long list, long DBType, const std::wstring& Category,
                                const std::wstring& Description, const std::wstring& DragDrop,
                                const std::wstring& SelectText, const std::wstring& InsertText,
                                const std::wstring& UpdateText, const std::wstring& DeleteText,
                                const std::wstring& ExecuteText) try {
    const long Id = modGlobal::Catalogue().Count();
    const auto Item = std::make_shared<clsListItem>();
    Item->Constructor(Text, Id, list, DBType, Category, Description, DragDrop, SelectText, InsertText, UpdateText, DeleteText,
                      ExecuteText, Variant::ArrayOf({}));
    ListItems->Add(Item, std::to_wstring(Id));
} catch (...) {
    ReportError(Module, L"m_CreateListItem");
}
