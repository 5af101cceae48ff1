#include "Shortage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

namespace {

long count = 0;
long wanted = 0;
bool forAll = false;
long living = 0;

using Malloc = void*(__cdecl*)(size_t);
using FreeBlock = void(__cdecl*)(void*);
using AllocateHeap = void*(WINAPI*)(HANDLE, DWORD, SIZE_T);
using FreeHeap = BOOL(WINAPI*)(HANDLE, DWORD, void*);
Malloc mallocBefore;
FreeBlock freeBefore;
AllocateHeap heapAllocBefore;
FreeHeap heapFreeBefore;

bool Refused() noexcept {
    ++count;
    return wanted != 0 && (count == wanted || (forAll && count > wanted));
}

void* __cdecl MallocInstead(size_t size) {
    if (Refused()) return nullptr;
    void* const block = mallocBefore(size);
    if (block != nullptr) ++living;
    return block;
}

void __cdecl FreeInstead(void* block) {
    if (block != nullptr) --living;
    freeBefore(block);
}

void* WINAPI HeapAllocInstead(HANDLE heap, DWORD flags, SIZE_T size) {
    if (Refused()) return nullptr;
    void* const block = heapAllocBefore(heap, flags, size);
    if (block != nullptr) ++living;
    return block;
}

BOOL WINAPI HeapFreeInstead(HANDLE heap, DWORD flags, void* block) {
    if (block != nullptr) --living;
    return heapFreeBefore(heap, flags, block);
}

// What the language's library does where it finds no way on.
[[noreturn]] void AbortInstead() {
    std::printf("the module ends the process, at allocation %ld\n", count);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 98);
    __builtin_trap();
}

template <class Function>
void* Address(Function function) noexcept {
    return reinterpret_cast<void*>(function);
}

}  // namespace

Shortage::Shortage(HMODULE module) : module_(module) {
    count = wanted = living = 0;
    abort_ = Take("abort", Address(&AbortInstead));
    heapAllocate_ = Take("HeapAlloc", Address(&HeapAllocInstead));
    heapFree_ = Take("HeapFree", Address(&HeapFreeInstead));
    heapAllocBefore = reinterpret_cast<AllocateHeap>(heapAllocate_.Before);
    heapFreeBefore = reinterpret_cast<FreeHeap>(heapFree_.Before);
    if (heapAllocate_.Place != nullptr) return;
    allocate_ = Take("malloc", Address(&MallocInstead));
    free_ = Take("free", Address(&FreeInstead));
    mallocBefore = reinterpret_cast<Malloc>(allocate_.Before);
    freeBefore = reinterpret_cast<FreeBlock>(free_.Before);
    EXPECT_TRUE(allocate_.Place != nullptr && free_.Place != nullptr) << "the module takes its memory elsewhere";
}

Shortage::~Shortage() {
    End();
    for (const Taken& taken : {allocate_, free_, heapAllocate_, heapFree_, abort_}) {
        if (taken.Place != nullptr) Write(taken.Place, taken.Before);
    }
}

void Shortage::Begin(long which, bool forGood) {
    count = 0;
    wanted = which;
    forAll = forGood;
}

long Shortage::Count() noexcept { return count; }

long Shortage::End() {
    wanted = 0;
    return count;
}

long Shortage::Living() { return living; }

// The module's table of imports: the place that holds the function's address.
Shortage::Taken Shortage::Take(const char* name, void* instead) const {
    auto* const base = reinterpret_cast<char*>(module_);
    const auto* const headers =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         library->Name != 0; ++library) {
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* places = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++places) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* const import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) != 0) continue;
            auto** const place = reinterpret_cast<void**>(&places->u1.Function);
            const Taken taken{place, *place};
            Write(place, instead);
            return taken;
        }
    }
    return {};
}

void Shortage::Write(void** place, void* value) {
    DWORD protection = 0;
    VirtualProtect(place, sizeof value, PAGE_READWRITE, &protection);
    *place = value;
    VirtualProtect(place, sizeof value, protection, &protection);
}
