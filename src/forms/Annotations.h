#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

struct IAccPropServices;

// What programs that read the screen are told of windows whose class has no text of its own to go by. Where the system
// has no such service (Wine), nothing is told and nothing fails. The windows are to live for as long as this object, or
// up to Clear.
class Annotations {
public:
    Annotations() = default;
    ~Annotations() { Clear(); }
    Annotations(const Annotations&) = delete;
    Annotations& operator=(const Annotations&) = delete;

    void SetName(HWND window, const std::wstring& name);
    // `role`: one of ROLE_SYSTEM_...
    void SetRole(HWND window, long role);
    // Takes everything back that was told.
    void Clear() noexcept;

private:
    enum class Property { Name, Role };
    // The system's service, or null. Asked for once, not for each of many windows.
    IAccPropServices* Services() noexcept;
    IAccPropServices* services_ = nullptr;
    bool asked_ = false;
    std::vector<std::pair<HWND, Property>> told_;
};
