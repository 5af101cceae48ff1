#include "support/TestData.h"

#include <gtest/gtest.h>
#include <shellapi.h>
#include <shlobj.h>

#include <cstring>

#include "support/EditorWindow.h"

TestData& TestData::AddFiles(const std::vector<std::wstring>& files) {
    DROPFILES header{};
    header.pFiles = sizeof header;
    header.fWide = TRUE;
    std::wstring names;
    for (const std::wstring& file : files) names += file + L'\0';
    names += L'\0';
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    bytes.append(reinterpret_cast<const char*>(names.data()), names.size() * sizeof(wchar_t));
    return Add(CF_HDROP, bytes);
}

HRESULT TestData::GetData(FORMATETC* format, STGMEDIUM* medium) noexcept {
    const auto found = contents_.find(format->cfFormat);
    if (found == contents_.end() || (format->tymed & TYMED_HGLOBAL) == 0) return DV_E_FORMATETC;
    *medium = {};
    medium->tymed = TYMED_HGLOBAL;
    medium->hGlobal = GlobalAlloc(GMEM_MOVEABLE, found->second.size());
    std::memcpy(GlobalLock(medium->hGlobal), found->second.data(), found->second.size());
    GlobalUnlock(medium->hGlobal);
    return S_OK;
}

// OLE keeps the target of a window in a property of the window. (In the same process it is the pointer itself.)
ComPtr<IDropTarget> EditorDropTarget() {
    return ComPtr(static_cast<IDropTarget*>(GetPropW(EditorWindow::Editor(), L"OleDropTargetInterface")));
}

void FinishDrop() {
    MSG message;
    while (PeekMessageW(&message, EditorWindow::Editor(), 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

DWORD DropOnEditor(TestData& data, POINTL at, DWORD allowed) {
    const auto target = EditorDropTarget();
    EXPECT_TRUE(target);
    if (!target) return DROPEFFECT_NONE;
    DWORD effect = allowed;
    EXPECT_EQ(S_OK, target->DragEnter(&data, MK_LBUTTON, {0, 0}, &effect));
    effect = allowed;
    EXPECT_EQ(S_OK, target->DragOver(MK_LBUTTON, at, &effect));
    effect = allowed;
    EXPECT_EQ(S_OK, target->Drop(&data, 0, at, &effect));
    FinishDrop();
    return effect;
}
