#pragma once

#include <cstdint>
#include <functional>

#include "Generator.h"

// Runs a property, which is the running test, case by case: first those of its kept seeds (Seeds.h), then `count` fresh
// ones. A case gets all its chance from the generator that it is handed. The first case that fails ends the property.
//
// Environment, for scripts/fuzz:
//   BRV_FUZZ_SEED   PROPERTY:SEED as a failure tells it: this case alone, every other property is skipped
//   BRV_FUZZ_ROUND  the fresh cases of another round; 0 unless given
//   BRV_FUZZ_SCALE  so many times as many fresh cases, in percent; 100 unless given
//
// A case that ends the process, or takes longer than a minute, is told with its property and seed too.
void ForEachCase(int count, const std::function<void(Random&)>& one);
// Whether one case is repeated: it may say more of itself.
bool IsRepeating();
// Ends whoever waits too long or crashes with a word about the case.
void WatchCases();
