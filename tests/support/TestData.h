#pragma once

#include <windows.h>
#include <ole2.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/ComPtr.h"
#include "support/CountedObject.h"

// What a program that drops has in its hand: bytes by clipboard format.
class TestData final : public StackObject<IDataObject> {
public:
    std::vector<CLIPFORMAT> Asked;  // formats that were asked for, in their order
    // Runs each time that it is asked for a format, as another program may let messages through while it answers.
    std::function<void()> WhenAsked;

    TestData& Add(CLIPFORMAT format, std::string bytes) {
        contents_[format] = std::move(bytes);
        return *this;
    }
    TestData& AddText(const std::wstring& text) {
        return Add(CF_UNICODETEXT,
                   std::string(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * sizeof(wchar_t)));
    }
    TestData& AddRichText(const std::string& rtf) {
        return Add(static_cast<CLIPFORMAT>(RegisterClipboardFormatW(L"Rich Text Format")), rtf + '\0');
    }
    TestData& AddFiles(const std::vector<std::wstring>& files);

    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) noexcept override;
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) noexcept override {
        Asked.push_back(format->cfFormat);
        if (WhenAsked) WhenAsked();
        return contents_.count(format->cfFormat) != 0 ? S_OK : DV_E_FORMATETC;
    }
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) noexcept override { return E_NOTIMPL; }

private:
    std::map<CLIPFORMAT, std::string> contents_;
};

// Returns the drop target that the editor has registered with OLE, or an empty pointer.
ComPtr<IDropTarget> EditorDropTarget();
// Lets the editor do what it puts off until the other program has had its answer.
void FinishDrop();
// What OLE calls for a drag that comes from the left edge of the screen to a place and lets go there; the effect that
// came back, when the editor has done what it does afterwards. `allowed`: what the dragging program lets be done with
// its data.
DWORD DropOnEditor(TestData& data, POINTL at, DWORD allowed = DROPEFFECT_COPY | DROPEFFECT_MOVE);
