#include "catalogue/clsListItem.h"

#include "automation/RuntimeError.h"
#include "errors/modErrorHandler.h"

namespace {
constexpr const wchar_t* Module = L"clsListItem";
}

clsListItem::clsListItem() {
    try {
        commands_ = std::make_unique<Collection<std::wstring>>();
    } catch (...) {
        ReportError(Module, L"Class_Initialize");
    }
}

// Reports under the name of the initialisation: kept, both events share it on purpose.
clsListItem::~clsListItem() {
    try {
        Destructor();
    } catch (...) {
        try {
            ReportError(Module, L"Class_Initialize");
        } catch (...) {
            // The end of an object is the end of the way: there is no caller to travel to.
        }
    }
}

void clsListItem::Constructor(const std::wstring& Text, long Id, long list, long DBType, const std::wstring& Category,
                              const std::wstring& Description, const std::wstring& DragDrop,
                              const std::wstring& SelectText, const std::wstring& InsertText,
                              const std::wstring& UpdateText, const std::wstring& DeleteText,
                              const std::wstring& ExecuteText, const Variant& Commands) try {
    text_ = Text;
    id_ = Id;
    list_ = list;
    dbType_ = DBType;
    category_ = Category;
    description_ = Description;
    dragDrop_ = DragDrop;
    selectText_ = SelectText;
    insertText_ = InsertText;
    updateText_ = UpdateText;
    deleteText_ = DeleteText;
    executeText_ = ExecuteText;
    if (!Commands.IsMissing()) {
        for (const Variant& command : Commands.ToArray()) commands_->Add(command.ToText());
    }
} catch (...) {
    ReportError(Module, L"Constructor");
}

void clsListItem::Destructor() try {
    commands_.reset();
} catch (...) {
    ReportError(Module, L"Destructor");
}

std::wstring clsListItem::GetCommand(short Index) const try {
    if (Index == 32767) RaiseError(ErrorNumber::Overflow);
    const long position = Index + 1;
    if (commands_ == nullptr) RaiseError(ErrorNumber::ObjectNotSet);
    return position <= commands_->Count() ? commands_->Item(position) : std::wstring();
} catch (...) {
    ReportError(Module, L"GetCommand");
    return {};
}

std::wstring clsListItem::Category() const try {
    return category_;
} catch (...) {
    ReportError(Module, L"Get Category");
    return {};
}

long clsListItem::DBType() const try {
    return dbType_;
} catch (...) {
    ReportError(Module, L"Get DBType");
    return 0;
}

std::wstring clsListItem::DeleteText() const try {
    return deleteText_;
} catch (...) {
    ReportError(Module, L"Get DeleteText");
    return {};
}

std::wstring clsListItem::Description() const try {
    return description_;
} catch (...) {
    ReportError(Module, L"Get Description");
    return {};
}

std::wstring clsListItem::DragDrop() const try {
    return dragDrop_;
} catch (...) {
    ReportError(Module, L"Get DragDrop");
    return {};
}

std::wstring clsListItem::ExecuteText() const try {
    return executeText_;
} catch (...) {
    ReportError(Module, L"Get ExecuteText");
    return {};
}

long clsListItem::Id() const try {
    return id_;
} catch (...) {
    ReportError(Module, L"Get Id");
    return 0;
}

std::wstring clsListItem::InsertText() const try {
    return insertText_;
} catch (...) {
    ReportError(Module, L"Get InsertText");
    return {};
}

long clsListItem::list() const try {
    return list_;
} catch (...) {
    ReportError(Module, L"Get list");
    return 0;
}

std::wstring clsListItem::SelectText() const try {
    return selectText_;
} catch (...) {
    ReportError(Module, L"Get SelectText");
    return {};
}

std::wstring clsListItem::Text() const try {
    return text_;
} catch (...) {
    ReportError(Module, L"Get Text");
    return {};
}

std::wstring clsListItem::UpdateText() const try {
    return updateText_;
} catch (...) {
    ReportError(Module, L"Get UpdateText");
    return {};
}
