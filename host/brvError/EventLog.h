#pragma once

#include <initializer_list>
#include <string>

// The event log: a text file in UTF-8, one line an entry, its fields separated by tabs.
class EventLog {
public:
    // `title` names the folder below the user's local application data; the environment variable BRVERROR_LOG names
    // another file. No file is touched before the first entry.
    explicit EventLog(const std::wstring& title);

    const std::wstring& FileName() const noexcept { return fileName_; }
    // Appends an entry: the time and then the fields. Tabs, line ends and other control characters inside a field are
    // written as escapes, so that no text can pass for an entry of its own; a field is cut at 32,768 characters. A file
    // of more than 1 MB becomes events.1.log first, in place of an older one. Returns whether it was written; a log
    // that cannot be written is no error, since there would be nobody left to tell.
    bool Append(std::initializer_list<std::wstring> fields) const noexcept;

private:
    std::wstring fileName_;
};
