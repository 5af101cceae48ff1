#include "Cases.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Seeds.h"

namespace {

constexpr DWORD Longest = 60000;  // milliseconds that a case may take

// Read by the watching thread and after a crash.
char property[200];
volatile uint64_t seed = 0;
volatile LONG running = 0;
volatile DWORD began = 0;

std::string Named(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

void Tell(const char* what) {
    std::printf("%s in BRV_FUZZ_SEED=%s:%llx\n", what, property, static_cast<unsigned long long>(seed));
    std::fflush(stdout);
}

LONG WINAPI Crashed(EXCEPTION_POINTERS* pointers) {
    if (running != 0) {
        char what[120];
        std::snprintf(what, sizeof what, "a crash (%08lx at %p)", pointers->ExceptionRecord->ExceptionCode,
                      pointers->ExceptionRecord->ExceptionAddress);
        Tell(what);
    }
    TerminateProcess(GetCurrentProcess(), 98);
    return EXCEPTION_EXECUTE_HANDLER;
}

// Fresh seeds are small enough to be read out, and differ by property and round.
uint64_t FreshSeed(const char* name, uint64_t round, int number) {
    uint64_t mixed = round * 1000003 + static_cast<uint64_t>(number);
    for (; *name != '\0'; ++name) mixed = mixed * 1099511628211U + static_cast<unsigned char>(*name);
    return Random(mixed).Next() >> 24;
}

bool Run(uint64_t which, const char* found, const std::function<void(Random&)>& one) {
    seed = which;
    began = GetTickCount();
    running = 1;
    char place[300];
    std::snprintf(place, sizeof place, "BRV_FUZZ_SEED=%s:%llx %s", property, static_cast<unsigned long long>(which),
                  found);
    {
        const testing::ScopedTrace trace(__FILE__, __LINE__, place);
        Random random(which);
        one(random);
    }
    running = 0;
    if (testing::Test::HasFailure()) Tell("a failure");
    return !testing::Test::HasFailure();
}

}  // namespace

bool IsRepeating() { return !Named("BRV_FUZZ_SEED").empty(); }

void WatchCases() {
    SetUnhandledExceptionFilter(&Crashed);
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void*) WINAPI -> DWORD {
            for (;;) {
                Sleep(500);
                if (running == 0 || GetTickCount() - began < Longest) continue;
                Tell("no end");
                TerminateProcess(GetCurrentProcess(), 99);
            }
        },
        nullptr, 0, nullptr);
    CloseHandle(thread);
}

void ForEachCase(int count, const std::function<void(Random&)>& one) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::snprintf(property, sizeof property, "%s.%s", test.test_suite_name(), test.name());
    if (IsRepeating()) {
        const std::string wanted = Named("BRV_FUZZ_SEED");
        const size_t colon = wanted.rfind(':');
        ASSERT_NE(std::string::npos, colon) << "BRV_FUZZ_SEED is PROPERTY:SEED";
        if (wanted.substr(0, colon) != property) GTEST_SKIP();
        Run(std::strtoull(wanted.c_str() + colon + 1, nullptr, 16), "", one);
        return;
    }
    const uint64_t round = std::strtoull(Named("BRV_FUZZ_ROUND").c_str(), nullptr, 10);
    if (round == 0) {
        for (const KeptSeed& kept : KeptSeeds) {
            if (std::string(property) == kept.Property && !Run(kept.Seed, kept.Found, one)) return;
        }
    }
    const std::string scale = Named("BRV_FUZZ_SCALE");
    const int cases = scale.empty() ? count : count * std::atoi(scale.c_str()) / 100;
    for (int number = 0; number < cases; ++number) {
        if (!Run(FreshSeed(property, round, number), "", one)) return;
    }
}
