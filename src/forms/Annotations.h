#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "automation/ComPtr.h"

struct IAccPropServices;

// Accessible names and roles for windows whose class does not provide them. Without the system's service (Wine) it does
// nothing and nothing fails. The windows must live as long as this object, or until Clear.
class Annotations {
public:
    Annotations() noexcept;
    ~Annotations();
    Annotations(const Annotations&) = delete;
    Annotations& operator=(const Annotations&) = delete;

    void SetName(HWND window, const std::wstring& name);
    // `role`: one of ROLE_SYSTEM_...
    void SetRole(HWND window, long role);
    // Removes all annotations.
    void Clear() noexcept;

private:
    enum class Property { Name, Role };
    // The system's service, or null. Asked for once, not for each of many windows.
    IAccPropServices* Services() noexcept;
    ComPtr<IAccPropServices> services_;
    bool asked_ = false;
    std::vector<std::pair<HWND, Property>> told_;
};
