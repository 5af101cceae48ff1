#pragma once

#include "automation/RuntimeError.h"

// The error that the work raises; its number is 0 when it raises none.
template <class Work>
RuntimeError ErrorOf(Work&& work) {
    try {
        work();
    } catch (const RuntimeError& error) {
        return error.Copy();
    }
    return {};
}

template <class Work>
long NumberOf(Work&& work) {
    return ErrorOf(work).Number;
}
