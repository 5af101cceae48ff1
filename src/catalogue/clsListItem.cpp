#include "catalogue/clsListItem.h"

#include <utility>

#include "automation/RuntimeError.h"
#include "errors/modErrorHandler.h"

clsListItem::clsListItem() {
    try {
        commands_.emplace();
    } catch (...) {
        ReportError(Module, L"Class_Initialize");
    }
}

// Reports under the name of the initialisation: both events share it on purpose.
clsListItem::~clsListItem() {
    try {
        Destructor();
    } catch (...) {
        try {
            ReportError(Module, L"Class_Initialize");
        } catch (...) {
            // A destructor has no caller to report to.
        }
    }
}

void clsListItem::Constructor(ItemText Text, long Id, long list, long DBType, ItemText Category, ItemText Description,
                              ItemText DragDrop, ItemText SelectText, ItemText InsertText, ItemText UpdateText,
                              ItemText DeleteText, ItemText ExecuteText, const Variant& Commands) try {
    text_ = std::move(Text);
    id_ = Id;
    list_ = list;
    dbType_ = DBType;
    category_ = std::move(Category);
    description_ = std::move(Description);
    dragDrop_ = std::move(DragDrop);
    selectText_ = std::move(SelectText);
    insertText_ = std::move(InsertText);
    updateText_ = std::move(UpdateText);
    deleteText_ = std::move(DeleteText);
    executeText_ = std::move(ExecuteText);
    if (!Commands.IsMissing()) {
        for (const Variant& command : Commands.ToArray()) AddCommand(command.ToText());
    }
} catch (...) {
    ReportError(Module, L"Constructor");
}

void clsListItem::Constructor(long list, ItemText SelectText, ItemText InsertText, ItemText UpdateText,
                              ItemText DeleteText, std::vector<std::wstring> Commands) try {
    Constructor(L"", 0, list, 0, L"", L"", L"", std::move(SelectText), std::move(InsertText), std::move(UpdateText),
                std::move(DeleteText), L"");
    for (std::wstring& command : Commands) AddCommand(std::move(command));
} catch (...) {
    ReportError(Module, L"Constructor");
}

void clsListItem::AddCommand(std::wstring Command) {
    if (!commands_) RaiseError(ErrorNumber::ObjectNotSet);
    commands_->Add(std::move(Command));
}

void clsListItem::Destructor() try { commands_.reset(); } catch (...) {
    ReportError(Module, L"Destructor");
}

std::wstring clsListItem::GetCommand(short Index) const try {
    if (Index == 32767) RaiseError(ErrorNumber::Overflow);
    const long position = Index + 1;
    if (!commands_) RaiseError(ErrorNumber::ObjectNotSet);
    return position <= commands_->Count() ? commands_->Item(position) : std::wstring();
} catch (...) {
    ReportError(Module, L"GetCommand");
    return {};
}

std::wstring clsListItem::Category() const try { return category_.Text(); } catch (...) {
    ReportError(Module, L"Get Category");
    return {};
}

long clsListItem::DBType() const try { return dbType_; } catch (...) {
    ReportError(Module, L"Get DBType");
    return 0;
}

std::wstring clsListItem::DeleteText() const try { return deleteText_.Text(); } catch (...) {
    ReportError(Module, L"Get DeleteText");
    return {};
}

std::wstring clsListItem::Description() const try { return description_.Text(); } catch (...) {
    ReportError(Module, L"Get Description");
    return {};
}

std::wstring clsListItem::DragDrop() const try { return dragDrop_.Text(); } catch (...) {
    ReportError(Module, L"Get DragDrop");
    return {};
}

std::wstring clsListItem::ExecuteText() const try { return executeText_.Text(); } catch (...) {
    ReportError(Module, L"Get ExecuteText");
    return {};
}

long clsListItem::Id() const try { return id_; } catch (...) {
    ReportError(Module, L"Get Id");
    return 0;
}

std::wstring clsListItem::InsertText() const try { return insertText_.Text(); } catch (...) {
    ReportError(Module, L"Get InsertText");
    return {};
}

long clsListItem::list() const try { return list_; } catch (...) {
    ReportError(Module, L"Get list");
    return 0;
}

std::wstring clsListItem::SelectText() const try { return selectText_.Text(); } catch (...) {
    ReportError(Module, L"Get SelectText");
    return {};
}

std::wstring clsListItem::Text() const try { return text_.Text(); } catch (...) {
    ReportError(Module, L"Get Text");
    return {};
}

std::wstring clsListItem::UpdateText() const try { return updateText_.Text(); } catch (...) {
    ReportError(Module, L"Get UpdateText");
    return {};
}
