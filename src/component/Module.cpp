#include <windows.h>

#include "automation/Server.h"
#include "component/clsSQLEditor.h"
#include "forms/WindowClass.h"
#include "shared/modGlobal.h"

namespace {

// Runs the module's start-up once. COM may ask from any thread: no caller gets a class before start-up is complete,
// except calls that start-up itself causes on its own thread.
class Start {
public:
    Start() noexcept { InitializeCriticalSection(&lock_); }
    ~Start() { DeleteCriticalSection(&lock_); }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;
    void Once() noexcept {
        EnterCriticalSection(&lock_);
        if (!begun_) {
            begun_ = true;
            modGlobal::Own();  // what fails makes the error component
            try {
                modGlobal::Main();
            } catch (...) {
                // Not even reported: the next procedure that fails tries to report again.
            }
        }
        LeaveCriticalSection(&lock_);
    }

private:
    CRITICAL_SECTION lock_;
    bool begun_ = false;
};

// Failures are reported through another component.
void StartOnce() noexcept {
    static Start start;
    start.Once();
}

void End() noexcept {
    UnregisterWindowClasses();
    modGlobal::End();
}

}  // namespace

// Forget is the module's last call before it is unloaded. The module releases what it holds of the host and of the
// error component there, since in DllMain it would be too late. Objects may be touched on their own thread alone.
const ServerModule TheServer{SQLEditorClass, true, &StartOnce, &modGlobal::Forget, &End};
