#pragma once

#include <windows.h>
#include <richedit.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "forms/Annotations.h"
#include "forms/Control.h"
#include "forms/DropTarget.h"
#include "forms/EdgeScroll.h"
#include "forms/TextFile.h"

class Printer;
class PrintingNotice;

// A Unicode rich edit control that is used for plain text, lines not wrapped. Positions and lengths count UTF-16 units,
// with a line end as the two characters CR LF that go in and come out; the control itself keeps one for it. What else
// is a line end somewhere (forms/PlainText.h) is one here too, and comes out as CR LF.
class RichTextBox : public Control {
public:
    void Create(HWND container, int id);

    // The plain text, line ends as CR LF. When somebody destroyed the control while its form was shown, what it held
    // then. Error 7: the control cannot give it; 91: there is no control.
    std::wstring Text() const;
    // Replaces the whole text as plain text, whatever it begins with, and raises Change once. The undo history is empty
    // afterwards and the caret stands at the beginning. Error 7: the control did not take it all; 91: there is no
    // control.
    void SetText(const std::wstring& text);
    long TextLength() const;

    long SelStart() const;
    long SelLength() const;
    std::wstring SelText() const;
    // A position after the end means the end. SetSelStart leaves nothing selected, SetSelLength keeps the start.
    void SetSelStart(long start);
    void SetSelLength(long length);
    // Both at once: the selection is painted, and SelChange raised, a single time, and not at all when it is that
    // already.
    void Select(long start, long length);
    // Replaces the selection, as one step of undo, and leaves the caret after it.
    void SetSelText(const std::wstring& text);
    // Where the caret is: line and column, both from 1; the column counts characters.
    void CaretPosition(long& line, long& column) const;

    void SetFont(HFONT font) override;  // ignored: the editor has a font of its own
    // The fixed-pitch font of the text.
    void SetEditorFont(const std::wstring& face, float points);
    // Shows the text so many times as large as its font is at the window's dots per inch; a file or a printer has it as
    // it is. The user's own zoom (the wheel with the Ctrl key) lasts until another scale, or other dots, want another
    // size.
    void SetScale(float scale);
    // The user's own zoom: a tenth larger or smaller for each step, as far as one can read it; 0: the scale again.
    void Zoom(int steps);
    // The user's own zoom in percent of that scale, and that it may be another one now, whatever changed it.
    long ZoomPercent() const;
    Event Zoomed;
    // Puts the caret at the beginning of a line, counted from 1; after the last one means the last one.
    void GoToLine(long line);
    // What programs that read the screen call the control; its window's text is what it holds.
    void SetAccessibleName(const std::wstring& name);

    // The character nearest to a place of the client area, or around it, in pixels.
    long CharFromPos(int x, int y) const;
    // A drag is over a place of the client area, or around it, in pixels: at an edge the text scrolls, a step at a
    // time.
    void ScrollAtEdge(int x, int y);
    void ScrollCaret();

    // Selects the next occurrence of the text after the selection, else the first one in the whole text, upper and
    // lower case being the same, and scrolls to it. False, and nothing changed: there is none.
    bool Find(const std::wstring& text);

    // Keys or other programs ask for it: only what the event does is done. The control's own would bring formats in, or
    // put them on the clipboard.
    Event PasteRequested;
    Event CopyRequested;
    Event CutRequested;

    // A key goes down, before the editor does anything with it: its virtual-key code and the sum of ShiftState. True:
    // it was taken, with the character that may come with it. Which keys the editor has of its own is in
    // forms/RichTextBox_Keys.cpp.
    std::function<bool(int key, int shift)> KeyPressed;

    // Another program drops text or files. While its drag is over the control the caret follows the mouse. The other
    // program waits until the event is over: whatever may ask the user something goes into Later.
    std::function<void(const DroppedData&)> OLEDragDrop;
    // Does something as soon as what is under way is over, if the control still shows then.
    void Later(std::function<void()> work);

    Event Change;
    Event SelChange;

    // Kept with the text: whether it was changed since it was last replaced or saved, and the file it belongs to, with
    // how that file writes down its text.
    bool DataChanged = false;
    std::wstring FileName;
    TextFile::Format FileFormat;

    // Files (forms/RichTextBox_Files.cpp). A failure is a run-time error and leaves the text, these three values and
    // the file as they were.
    enum class FileKind { RichText, Text };
    // A name that ends in "rtf", in capitals or not, is one of rich text.
    static FileKind KindOf(const std::wstring& fileName);
    // In bytes. Far beyond any SQL that is written by hand; the control takes many times as much of the host's
    // memory, and under Wine takes minutes for more.
    static constexpr uint64_t FileLimit = 4 * 1024 * 1024;
    // Replaces the text by that of a file, as SetText does, and keeps the file's format. Error 7: larger than
    // FileLimit; 321: no rich text, or not all of it; a text with characters that the control does not keep; else as
    // TextFile::Read.
    void LoadFile(const std::wstring& path, FileKind kind);
    // Writes the text to a file: as rich text, or in FileFormat, which changes when it cannot hold a character.
    void SaveFile(const std::wstring& path, FileKind kind);
    // Whether the file of FileName holds something else than what was last loaded from it or saved to it here. False
    // when there is no such file any more, or it cannot be read.
    bool FileChangedOutside() const;

    // ---- A view of the text (forms/RichTextBox_View.cpp): how characters are shown beside what they are. Files, the
    // printer, the undo history and Change know nothing of it. Positions are the control's own in this part: a line end
    // is one character, CR.
    struct Shade {
        long From;
        long To;
        bool Ground;      // what the characters stand on, else they themselves
        COLORREF Colour;  // CLR_DEFAULT: as in every window
    };
    // False: the control cannot, or not all of it.
    bool Show(std::span<const Shade> shades);
    // Shows everything as it is. MadePlain tells that it was not already, also where a file or a printer asked for it.
    void ShowPlain();
    Event MadePlain;
    // Whether the text came with formats, which nobody is to change.
    bool HasFormats() const noexcept { return rich_; }
    // Grows each time the whole text is replaced by SetText or a file.
    unsigned Texts() const noexcept { return texts_; }
    // An input method is writing: what it underlines is to be left alone.
    bool Composing() const noexcept { return composing_; }
    long RawLength() const;
    std::wstring RawText(long from, long to) const;
    std::pair<long, long> RawSelection() const;
    void RawSelect(long from, long to);
    // Where a character stands, in pixels of the screen: its left edge, and the top and the bottom of its line.
    RECT RawPlace(long position) const;
    // Where the line of a position begins, and where it ends, before its CR.
    long RawLineStart(long position) const;
    long RawLineEnd(long position) const;
    // The first and the last character that are to be seen, or so.
    std::pair<long, long> Seen() const;
    // While Change is raised: what may have changed, and what was selected before.
    struct Edit {
        enum class How { Anything, Near, Typed } Kind = How::Anything;
        long From = 0;
        long To = 0;
    };
    const Edit& LastEdit() const noexcept { return edit_; }

    // Prints the whole text into a document that was started (forms/RichTextBox_Print.cpp), lines wrapped at the
    // margins, and ends it. False: the user has stopped it, and nothing is printed. Error 482: the printer refused;
    // 32755: the user has cancelled it in a dialog of the printer's.
    bool Print(Printer& printer, PrintingNotice& notice) const;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    POINT MenuPoint() const override;  // at the caret

private:
    // A message of the keyboard (forms/RichTextBox_Keys.cpp). True: it is not for the control.
    bool OnKey(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool IsOfTakenKey(LPARAM lParam) noexcept;

    // Keeps what a message that may change the text finds.
    struct Noting {
        RichTextBox& Box;
        Edit Before;
        Noting(RichTextBox& box, UINT message, WPARAM wParam);
        ~Noting() { Box.edit_ = Before; }
    };

    void ForgetShades();
    int LinePixels() const noexcept;
    void MakeWindow(HWND container, int id);
    void Prepare();
    void Replace();
    long ControlLength() const;  // as the control counts: a line end once, the end of the last paragraph not at all
    // What is selected, as the control counts, without the end of the last paragraph, which is no part of the text.
    CHARRANGE Selected() const;
    long ToControl(long position) const;
    long FromControl(long position) const;
    void StreamIn(const std::wstring& text, WPARAM flags = 0);
    void FillWith(const std::wstring& text);
    void SetRichText(std::string_view rtf);
    std::string RichText() const;
    bool FindFrom(long from, long to, const std::wstring& text);  // positions as the control counts them
    void DoLater();
    void ShowDropPlace(POINT screen);
    void ForgetDropPlace();

    std::optional<std::wstring> lastText_;  // what the control held when somebody destroyed it
    std::wstring accessibleName_;
    Annotations annotations_;
    std::wstring face_;
    float points_ = 10;
    float zoom_ = 1;
    bool filling_ = false;
    bool rich_ = false;     // the text brought formats with it
    uint64_t fileSum_ = 0;  // of the bytes of FileName's file, as they were last loaded or saved
    bool shaded_ = false;   // characters may be shown otherwise than they are
    bool composing_ = false;
    unsigned texts_ = 0;
    Edit edit_;
    DropTarget target_;
    std::vector<std::function<void()>> later_;
    EdgeScroll edges_;
    std::optional<LPARAM> takenKey_;  // the key that was taken last, until its character has come or it is up
    std::optional<std::pair<long, long>> droppedBefore_;  // what was selected before a drag of another program came
};
