#pragma once

#include <windows.h>

#include <string>

// A printer that the user has chosen, and one document on it. A document that is not ended is thrown away.
class Printer {
public:
    // Shows the print dialog of `owner` with these flags (PD_RETURNDC among them). Error 32755: cancelled, or there is
    // no default printer and the dialog has said so itself; 482: the chosen one cannot be used, for the reason in the
    // description.
    static Printer Choose(HWND owner, DWORD flags);
    Printer(Printer&& other) noexcept;
    ~Printer();
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    HDC Context() const noexcept { return context_; }
    int Copies() const noexcept { return copies_; }       // that the program has to print itself
    bool Collated() const noexcept { return collated_; }  // one after the other, and not each page so many times

    // Each raises error 482 when the printer refuses, and 32755 when the user has cancelled a dialog in which the
    // printer asks for more, such as for the name of a file. That dialog may come with StartDocument and be another
    // program's.
    void StartDocument(const std::wstring& name);
    void StartPage();
    void EndPage();
    void EndDocument();

private:
    explicit Printer(HDC context) noexcept : context_(context) {}
    HDC context_;
    int copies_ = 1;
    bool collated_ = false;
    bool toFile_ = false;  // of which the printer asks for the name
    bool started_ = false;
};

// Says which page is printed, and lets the user stop it. Made when the document has been started. Shown when the
// printing takes longer than a moment; the owner is disabled while it lives, and afterwards as it was.
class PrintingNotice {
public:
    explicit PrintingNotice(HWND owner);
    ~PrintingNotice();
    PrintingNotice(const PrintingNotice&) = delete;
    PrintingNotice& operator=(const PrintingNotice&) = delete;
    // Before each page: false when the user has stopped the printing.
    bool Continue(int page);

private:
    HWND owner_;
    HWND dialog_ = nullptr;
    DWORD started_;
    bool enabled_;
    bool stopped_ = false;
};
