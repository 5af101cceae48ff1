#pragma once

#include <windows.h>

#include <string>

// A printer that the user has chosen, and one document on it. A document that is not ended is thrown away.
class Printer {
public:
    // Shows the print dialog of `owner` with these flags (PD_RETURNDC among them). Error 32755: cancelled, or there is
    // no printer and the dialog has said so itself; 482: the chosen one cannot be used, for the reason in the
    // description.
    static Printer Choose(HWND owner, DWORD flags);
    Printer(Printer&& other) noexcept;
    ~Printer();
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    HDC Context() const noexcept { return context_; }
    int Copies() const noexcept { return copies_; }  // that the program has to print itself

    // Each raises error 482 when the printer refuses.
    void StartDocument(const std::wstring& name);
    void StartPage();
    void EndPage();
    void EndDocument();

private:
    Printer(HDC context, int copies) noexcept : context_(context), copies_(copies) {}
    HDC context_;
    int copies_;
    bool started_ = false;
};

// Says which page is printed, and lets the user stop it. Shown when the printing takes longer than a moment; the owner
// is disabled while it lives, and afterwards as it was.
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
