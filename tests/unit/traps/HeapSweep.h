#pragma once

#include <windows.h>

#include <vector>

// Whether all blocks of all heaps of this process are whole. With the heap's tail and free checking on this includes
// the bytes after each block and the content of blocks that were freed a short while ago.
inline bool HeapsAreWhole() {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 8);
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    if (count > heaps.size()) return true;  // new ones meanwhile
    for (DWORD at = 0; at < count; ++at) {
        if (!HeapValidate(heaps[at], 0, nullptr)) return false;
    }
    return true;
}
