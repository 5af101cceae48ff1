#pragma once

#include <optional>
#include <string>
#include <utility>

#include "forms/Control.h"
#include "forms/DropTarget.h"

// A Unicode rich edit control that is used for plain text, lines not wrapped. Positions and lengths count UTF-16 units, with a
// line end as the two characters CR LF that go in and come out; the control itself keeps one for it.
class RichTextBox : public Control {
public:
    void Create(HWND container, int id);

    // The plain text, line ends as CR LF.
    std::wstring Text() const;
    // Replaces the whole text as plain text, whatever it begins with, and raises Change once. The undo history is empty
    // afterwards and the caret stands at the beginning.
    void SetText(const std::wstring& text);
    long TextLength() const;

    long SelStart() const;
    long SelLength() const;
    std::wstring SelText() const;
    // A position behind the end means the end. SetSelStart leaves nothing selected, SetSelLength keeps the start.
    void SetSelStart(long start);
    void SetSelLength(long length);
    // Replaces the selection, as one step of undo, and leaves the caret behind it.
    void SetSelText(const std::wstring& text);
    // Where the caret is: line and column, both from 1; the column counts characters.
    void CaretPosition(long& line, long& column) const;

    void SetFont(HFONT font) override;  // ignored: the editor has a font of its own
    // The fixed-pitch font of the text.
    void SetEditorFont(const std::wstring& face, float points);

    // The character nearest to a place of the client area, in pixels.
    long CharFromPos(int x, int y) const;
    void ScrollCaret();

    // Another program drops text or files. While its drag is over the control the caret follows the mouse.
    std::function<void(const DroppedData&)> OLEDragDrop;

    Event Change;
    Event SelChange;

    // Kept with the text: whether it was changed since it was last replaced or saved, and the file it belongs to.
    bool DataChanged = false;
    std::wstring FileName;

protected:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    void MakeWindow(HWND container, int id);
    void Prepare();
    void Replace();
    long ToControl(long position) const;
    long FromControl(long position) const;
    void StreamIn(const std::wstring& text, WPARAM flags = 0);
    void ShowDropPlace(POINT screen);
    void ForgetDropPlace();

    std::wstring face_;
    float points_ = 10;
    bool filling_ = false;
    DropTarget target_;
    std::optional<std::pair<long, long>> droppedBefore_;  // what was selected before a drag of another program came
};
