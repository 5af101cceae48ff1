#pragma once

#include "forms/Control.h"

// A list of texts, each with a number of the program's own. Rows are counted from 0.
class ListBox : public Control {
public:
    void Create(HWND container, int id);

    void Clear();
    int ListCount() const;
    // Appends a row and returns its number. Error 7 when the control has no memory for it.
    int AddItem(const std::wstring& text);
    std::wstring List(int row) const;  // empty for a row that is not there
    void SetItemData(int row, long data);
    long ItemData(int row) const;
    int ListIndex() const;  // -1: no row is selected
    // Selects a row (-1: none) and raises Click, as a user's selection does, also when the row was selected before.
    // Error 380 for a row that is not there.
    void SetListIndex(int row);

    std::wstring DragCaption() const override;  // the selected row

protected:
    bool OnReflected(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void EndTracking(LPARAM press) override;
    POINT MenuPoint() const override;
};
