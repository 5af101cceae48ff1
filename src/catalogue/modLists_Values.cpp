#include "catalogue/modLists_Lists.h"

#include "automation/Variant.h"
#include "errors/modErrorHandler.h"

std::wstring modLists::m_VntToStr(const Variant& Value) try {
    return Value.IsNull() ? std::wstring(L"null") : Value.ToText();
} catch (...) {
    ReportError(L"modLists", L"m_VntToStr");
    return {};
}
