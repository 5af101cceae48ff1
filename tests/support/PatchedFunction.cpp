#include "support/PatchedFunction.h"

#include <cstdint>
#include <cstring>

namespace {

// In 64 bits the target may be out of reach of a relative jump: jmp [rip+0] is followed by the address.
#ifdef _WIN64
constexpr unsigned char Opcode[] = {0xFF, 0x25, 0, 0, 0, 0};
#else
constexpr unsigned char Opcode[] = {0xE9};
#endif

}  // namespace

PatchedFunction::PatchedFunction(const wchar_t* library, const char* name, void* instead) {
    const HMODULE module = LoadLibraryW(library);  // never freed: the code must stay while it is patched
    if (module == nullptr) return;
    const FARPROC function = GetProcAddress(module, name);
    if (function == nullptr) return;
    code_ = reinterpret_cast<unsigned char*>(function);
    std::memcpy(before_.data(), code_, before_.size());
    Jump jump = before_;
    std::memcpy(jump.data(), Opcode, sizeof Opcode);
#ifdef _WIN64
    const auto target = reinterpret_cast<uintptr_t>(instead);
#else
    const auto target = reinterpret_cast<uintptr_t>(instead) - (reinterpret_cast<uintptr_t>(code_) + sizeof Opcode + 4);
#endif
    std::memcpy(jump.data() + sizeof Opcode, &target, sizeof target);
    Write(jump);
    if (std::memcmp(code_, jump.data(), jump.size()) != 0) code_ = nullptr;
}

PatchedFunction::~PatchedFunction() {
    if (code_ != nullptr) Write(before_);
}

void PatchedFunction::Write(const Jump& bytes) const noexcept {
    DWORD protection = 0;
    if (!VirtualProtect(code_, bytes.size(), PAGE_EXECUTE_READWRITE, &protection)) return;
    std::memcpy(code_, bytes.data(), bytes.size());
    VirtualProtect(code_, bytes.size(), protection, &protection);
    FlushInstructionCache(GetCurrentProcess(), code_, bytes.size());
}
