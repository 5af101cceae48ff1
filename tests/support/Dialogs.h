#pragma once

#include <windows.h>

#include <string>
#include <vector>

// Answers the message boxes and file dialogs that come up while it lives, in their order. One that nobody expects is a
// failure and is closed, and so is an answer that nobody asked for.
class Dialogs {
public:
    Dialogs();
    ~Dialogs();
    Dialogs(const Dialogs&) = delete;
    Dialogs& operator=(const Dialogs&) = delete;

    // The next question is answered by the button with this id; the next file dialog by this file, or by Cancel.
    Dialogs& Button(int id);
    Dialogs& File(const std::wstring& path);
    Dialogs& Cancel() { return Button(IDCANCEL); }

    // What a dialog looked like when it was answered.
    struct Seen {
        std::wstring Title;
        std::wstring Text;         // the longest text of a message box
        std::vector<int> Buttons;  // ids of its push buttons, ascending
        std::wstring Name;         // of a file dialog: the file name that it began with
        std::wstring Icon;         // of a message box, as BoxAnswerer has it
        int Default = 0;           // the button that the Enter key presses
        HWND Owner = nullptr;
        bool OwnerDisabled = false;
    };
    std::vector<Seen> All;

private:
    struct Answer {
        int Button;
        std::wstring Path;
    };
    void Look();

    std::vector<Answer> answers_;
    HWND answered_ = nullptr;
    UINT_PTR timer_;
};

// Answers the message boxes that come while it lives, each with a button (IDOK, IDYES, ...), and keeps what they said.
class BoxAnswerer {
public:
    explicit BoxAnswerer(int button = IDOK);
    ~BoxAnswerer();
    BoxAnswerer(const BoxAnswerer&) = delete;
    BoxAnswerer& operator=(const BoxAnswerer&) = delete;
    int Boxes = 0;
    std::wstring Text;
    std::wstring Title;
    std::vector<std::wstring> All;  // "title: text" of each
    // Of the last one: "information", "exclamation", "question", "hand" or "none"; the window that it belongs to; how
    // many buttons it has.
    std::wstring Icon;
    HWND Owner = nullptr;
    int Buttons = 0;
    int Button;

private:
    UINT_PTR timer_;
};
