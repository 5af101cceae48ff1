#include "browser/ReadingProgress.h"

#include <utility>

#include "editor/frmSQLEditor.h"
#include "shared/modGlobal.h"

namespace {
constexpr ULONGLONG Patience = 400;  // milliseconds until the first word
constexpr ULONGLONG Interval = 150;  // and from one to the next
}  // namespace

ReadingProgress::ReadingProgress(std::wstring what)
    : form_(EditorForm), what_(std::move(what)), next_(GetTickCount64() + Patience) {}

ReadingProgress::~ReadingProgress() {
    if (!shown_) return;
    try {
        if (const auto form = form_.lock()) form->sbStatusBar.ClearNote();
    } catch (...) {
        // The note stays until the caret moves.
    }
}

void ReadingProgress::Count() noexcept {
    ++count_;
    const ULONGLONG now = GetTickCount64();
    if (now < next_) return;
    next_ = now + Interval;
    try {
        const auto form = form_.lock();
        if (!form) return;
        form->sbStatusBar.ShowNote(L"Reading the " + what_ + L": " + std::to_wstring(count_) + L" by now");
        shown_ = true;
        // Nothing is painted by the loop until the branch is read.
        UpdateWindow(form->sbStatusBar.Handle());
    } catch (...) {
        // Said the next time.
    }
}
