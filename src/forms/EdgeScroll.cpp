#include "forms/EdgeScroll.h"

namespace {

int Towards(LONG at, LONG from, LONG to, int inset) noexcept {
    if (to - from < 3 * inset) return 0;  // all edge
    return at < from + inset ? -1 : at >= to - inset ? 1 : 0;
}

}  // namespace

EdgeScroll::Step EdgeScroll::At(POINT mouse, const RECT& client, int inset, DWORD now) noexcept {
    const Step step{Towards(mouse.x, client.left, client.right, inset),
                    Towards(mouse.y, client.top, client.bottom, inset)};
    const DWORD since = now - asked_;
    asked_ = now;
    if (step.Across == 0 && step.Down == 0) {
        waiting_ = false;
        return {};
    }
    // Just come to the edge, or back from elsewhere.
    if (!waiting_ || since > 10 * Interval) {
        waiting_ = true;
        due_ = now + Delay;
        return {};
    }
    if (static_cast<LONG>(now - due_) < 0) return {};
    due_ = now + Interval;
    return step;
}
