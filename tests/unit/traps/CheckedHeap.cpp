#include <windows.h>

#include <cstdint>
#include <new>

// new and delete of a build with BRV_TRAPS, in each program and DLL of it. Each block is looked at when it is deleted;
// one that was written before its front or after its end, deleted twice, deleted in the other form (array or not) or
// as another size ends the program there. What lies after the end the heap knows itself when its tail checking is on
// (see scripts/test-traps).
namespace {

constexpr uintptr_t One = 0x0B10C001;
constexpr uintptr_t Array = 0x0B10C00A;
constexpr uintptr_t Deleted = 0xDE1E7ED0;
constexpr uintptr_t Untouched = 0xF0C0FFEE;

// Before each block. Its size keeps the alignment that the heap gives.
struct Front {
    size_t Size;
    uintptr_t Form;
    uintptr_t Guard[2];
};
static_assert(sizeof(Front) % MEMORY_ALLOCATION_ALIGNMENT == 0);

void* Allocate(size_t size, uintptr_t form) {
    if (size <= SIZE_MAX - sizeof(Front)) {
        if (auto* front = static_cast<Front*>(HeapAlloc(GetProcessHeap(), 0, sizeof(Front) + size))) {
            *front = {size, form, {Untouched, Untouched}};
            return front + 1;
        }
    }
    throw std::bad_alloc();
}

void Free(void* block, uintptr_t form) noexcept {
    if (block == nullptr) return;
    auto* front = static_cast<Front*>(block) - 1;
    // First what Windows calls safe for whatever it is given.
    if (!HeapValidate(GetProcessHeap(), 0, front)) __builtin_trap();
    if (front->Form != form || front->Guard[0] != Untouched || front->Guard[1] != Untouched) __builtin_trap();
    front->Form = Deleted;
    if (!HeapFree(GetProcessHeap(), 0, front)) __builtin_trap();
}

void FreeSized(void* block, size_t size, uintptr_t form) noexcept {
    if (block != nullptr && (static_cast<Front*>(block) - 1)->Size != size) __builtin_trap();
    Free(block, form);
}

}  // namespace

void* operator new(size_t size) { return Allocate(size, One); }
void* operator new[](size_t size) { return Allocate(size, Array); }
void operator delete(void* block) noexcept { Free(block, One); }
void operator delete[](void* block) noexcept { Free(block, Array); }
void operator delete(void* block, size_t size) noexcept { FreeSized(block, size, One); }
void operator delete[](void* block, size_t size) noexcept { FreeSized(block, size, Array); }
