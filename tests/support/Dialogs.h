#pragma once

#include <string>
#include <vector>

#include "support/Fakes.h"

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
        bool HasIcon = false;
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

// A folder of its own that goes with everything in it.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::wstring operator/(const wchar_t* name) const { return path_ + name; }
    std::wstring Names() const;  // of the files in it, each followed by a bar

private:
    std::vector<std::wstring> List() const;
    std::wstring path_;
};

std::string BytesOf(const std::wstring& path);
void PutBytes(const std::wstring& path, const std::string& bytes);

// The window's File menu, with the dialogs answered.
class FilesFixture : public ComponentFixture {
protected:
    // Shows the window on the text, runs the steps in it, and closes it. Reports are left in Errors.
    std::wstring Inside(const std::wstring& sql, const std::function<void()>& steps);
    static void New() { EditorWindow::Choose(L"File", L"New"); }
    static void Open() { EditorWindow::Choose(L"File", L"Open..."); }
    static void Save() { EditorWindow::Choose(L"File", L"Save"); }
    static void SaveAs() { EditorWindow::Choose(L"File", L"Save As..."); }
    static void Type(const std::wstring& text);  // at the end
    // Opens a file that must come in.
    void Load(const std::wstring& path);
    // Whether New would ask; the text is kept when it does.
    bool Modified();
    static std::wstring FormatPanel();

    Folder Here;
};
