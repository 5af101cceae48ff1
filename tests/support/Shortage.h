#pragma once

#include <windows.h>

// Makes a loaded module short of memory: its calls of the C library's allocation go through this, and the one that is
// wanted finds nothing, or that one and all that follow. What the host and the tests allocate is not touched. In a
// build with traps, whose new and delete go to the heap themselves, it is the heap's functions that are taken.
class Shortage {
public:
    explicit Shortage(HMODULE module);
    ~Shortage();
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    // `which`: the allocation that fails, counted from 1 from now on; 0: none.
    static void Begin(long which, bool forGood);
    // How many allocations there were since Begin.
    static long Count() noexcept;
    // Lets them succeed again, and returns their count.
    static long End();
    // Blocks that the module has and has not given back, beyond those it had at the beginning.
    static long Living();

private:
    struct Taken {
        void** Place = nullptr;
        void* Before = nullptr;
    };
    Taken Take(const char* name, void* instead) const;
    static void Write(void** place, void* value);

    HMODULE module_;
    Taken allocate_;
    Taken free_;
    Taken heapAllocate_;
    Taken heapFree_;
    Taken abort_;
};
