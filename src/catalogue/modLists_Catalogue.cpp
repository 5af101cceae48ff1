#include "catalogue/clsListItem.h"
#include "catalogue/modLists.h"
#include "component/modGlobal.h"
#include "errors/modErrorHandler.h"

namespace {
constexpr const wchar_t* Module = L"modLists";
}

// The entries themselves are still to come: until then the catalogue is empty, and so are the panes that show it.
void modLists::CreateListItems() try {
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
