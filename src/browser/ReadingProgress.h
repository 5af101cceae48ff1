#pragma once

#include <windows.h>

#include <memory>
#include <string>

class frmSQLEditor;

// Says in the status bar what is read and how many by now, when a branch of the object browser takes longer than users
// wait without a word. What it says goes when it does.
class ReadingProgress {
public:
    // `what`: in the plural, such as "tables of HR".
    explicit ReadingProgress(std::wstring what);
    ~ReadingProgress();
    ReadingProgress(const ReadingProgress&) = delete;
    ReadingProgress& operator=(const ReadingProgress&) = delete;

    // One more was read. A failure to say so is no failure to read.
    void Count() noexcept;

private:
    std::weak_ptr<frmSQLEditor> form_;  // the host may release it meanwhile
    std::wstring what_;
    long count_ = 0;
    ULONGLONG next_;  // when it is said again, milliseconds
    bool shown_ = false;
};
