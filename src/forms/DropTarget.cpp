#include "forms/DropTarget.h"

#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "automation/ComObject.h"
#include "forms/HandedText.h"
#include "forms/RichEdit.h"

namespace {

CLIPFORMAT RichTextFormat() noexcept {
    static const auto format = static_cast<CLIPFORMAT>(RegisterClipboardFormatW(L"Rich Text Format"));
    return format;
}

FORMATETC Request(CLIPFORMAT format, DWORD medium) noexcept { return {format, nullptr, DVASPECT_CONTENT, -1, medium}; }

bool Offers(IDataObject* data, CLIPFORMAT format, DWORD medium) noexcept {
    FORMATETC request = Request(format, medium);
    return data->QueryGetData(&request) == S_OK;
}

// Of names of files; what stands after it is left out.
constexpr SIZE_T LongestList = 4 * 1024 * 1024;  // bytes

struct Medium : STGMEDIUM {
    Medium() noexcept : STGMEDIUM{} {}
    ~Medium() { ReleaseStgMedium(this); }
    Medium(const Medium&) = delete;
    Medium& operator=(const Medium&) = delete;
};

std::wstring FromCodePage(const std::string& bytes) {
    const int length = static_cast<int>(bytes.size());
    std::wstring text(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, text.data(), static_cast<int>(text.size()));
    return text;
}

}  // namespace

bool DroppedData::GetFormat(Format format) const noexcept {
    switch (format) {
        case Format::Text:
            return Offers(data_, CF_UNICODETEXT, TYMED_HGLOBAL) || Offers(data_, CF_TEXT, TYMED_HGLOBAL);
        case Format::RichText:
            return Offers(data_, RichTextFormat(), TYMED_HGLOBAL);
        case Format::Metafile:
            return Offers(data_, CF_METAFILEPICT, TYMED_MFPICT);
        case Format::EnhancedMetafile:
            return Offers(data_, CF_ENHMETAFILE, TYMED_ENHMF);
        case Format::Bitmap:
            return Offers(data_, CF_BITMAP, TYMED_GDI);
        case Format::Palette:
            return Offers(data_, CF_PALETTE, TYMED_GDI);
        default:
            return Offers(data_, static_cast<CLIPFORMAT>(format), TYMED_HGLOBAL);
    }
}

template <class Character>
std::basic_string<Character> DroppedData::TextOf(CLIPFORMAT format) const {
    FORMATETC request = Request(format, TYMED_HGLOBAL);
    Medium medium;
    if (data_->GetData(&request, &medium) != S_OK || medium.tymed != TYMED_HGLOBAL) return {};
    return HandedText::Read<Character>(medium.hGlobal, L"The text that was dropped is too large for the editor.");
}

std::string DroppedData::FileList() const {
    FORMATETC request = Request(CF_HDROP, TYMED_HGLOBAL);
    Medium medium;
    if (data_->GetData(&request, &medium) != S_OK || medium.tymed != TYMED_HGLOBAL) return {};
    const std::unique_ptr<const void, HandedText::Unlock> locked(GlobalLock(medium.hGlobal), {medium.hGlobal});
    if (locked == nullptr) return {};
    return {static_cast<const char*>(locked.get()), std::min(GlobalSize(medium.hGlobal), LongestList)};
}

std::wstring DroppedData::Text(Format format) const {
    // A program that offers rich text nearly always offers the same text plain.
    if (std::wstring text = TextOf<wchar_t>(CF_UNICODETEXT); !text.empty()) return text;
    if (const std::string bytes = TextOf<char>(CF_TEXT); !bytes.empty()) return FromCodePage(bytes);
    return format == Format::RichText ? PlainTextOf(TextOf<char>(RichTextFormat())) : std::wstring();
}

// Parsed here because DragQueryFile trusts the block's own header and may read past its end.
std::vector<std::wstring> DroppedData::Files() const {
    const std::string bytes = FileList();
    DROPFILES header;
    if (bytes.size() < sizeof header) return {};
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.pFiles < sizeof header || header.pFiles > bytes.size()) return {};
    const std::string_view rest = std::string_view(bytes).substr(header.pFiles);
    std::wstring names;
    if (header.fWide) {
        names.resize(rest.size() / sizeof(wchar_t));
        std::memcpy(names.data(), rest.data(), names.size() * sizeof(wchar_t));
    } else {
        names = FromCodePage(std::string(rest));
    }
    // Names follow each other, each terminated by NUL; an empty one, or the end of the block, ends the list.
    std::vector<std::wstring> files;
    for (size_t at = 0; at < names.size() && names[at] != L'\0';) {
        const size_t end = std::min(names.find(L'\0', at), names.size());
        files.push_back(names.substr(at, end - at));
        at = end + 1;
    }
    return files;
}

// Reference-counted, since OLE may hold it longer than the window lives; after Detach it accepts nothing.
class DropTarget::Target final : public ComObject<IDropTarget> {
public:
    explicit Target(DropTarget* owner) noexcept : owner_(owner) {}
    void Detach() noexcept { owner_ = nullptr; }

    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD, POINTL at, DWORD* effect) noexcept override {
        if (data == nullptr || effect == nullptr) return E_INVALIDARG;
        return Guarded(effect, [&] {
            Ask(data);
            return Follow(at, *effect);
        });
    }
    HRESULT STDMETHODCALLTYPE DragOver(DWORD, POINTL at, DWORD* effect) noexcept override {
        if (effect == nullptr) return E_INVALIDARG;
        return Guarded(effect, [&] { return Follow(at, *effect); });
    }
    HRESULT STDMETHODCALLTYPE DragLeave() noexcept override {
        DWORD effect = DROPEFFECT_COPY;
        return Guarded(&effect, [&] {
            if (owner_->Leave) owner_->Leave();
            return DROPEFFECT_NONE;
        });
    }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD, POINTL at, DWORD* effect) noexcept override {
        if (data == nullptr || effect == nullptr) return E_INVALIDARG;
        return Guarded(effect, [&] {
            Ask(data);
            const DWORD done = Follow(at, *effect);
            // What is not accepted, a picture, is shown to the event all the same; what may only be moved is left
            // alone.
            if ((done != DROPEFFECT_NONE || !accepted_) && owner_ != nullptr && owner_->Drop)
                owner_->Drop(DroppedData(data));
            return done;
        });
    }

private:
    // No exception goes to the other program's side.
    template <class Work>
    HRESULT Guarded(DWORD* effect, Work&& work) noexcept {
        const DWORD allowed = *effect;
        *effect = DROPEFFECT_NONE;
        if (owner_ == nullptr) return S_OK;
        const ComPtr<Target> held(this);
        HRESULT result = S_OK;
        try {
            *effect = allowed;
            *effect = work();
        } catch (...) {
            *effect = DROPEFFECT_NONE;
            result = E_FAIL;
        }
        return result;
    }
    // The call goes to the other program, and messages are dispatched meanwhile: the window may be gone afterwards.
    void Ask(IDataObject* data) {
        accepted_ = false;
        const bool accepted = owner_->Accepts && owner_->Accepts(DroppedData(data));
        accepted_ = accepted && owner_ != nullptr;
    }
    // Only copying is offered; a move-only source is refused.
    DWORD Follow(POINTL at, DWORD allowed) const {
        if (!accepted_ || owner_ == nullptr || (allowed & (DROPEFFECT_COPY | DROPEFFECT_LINK)) == 0)
            return DROPEFFECT_NONE;
        if (owner_->Over) owner_->Over({at.x, at.y});
        if (owner_ == nullptr) return DROPEFFECT_NONE;
        return (allowed & DROPEFFECT_COPY) != 0 ? DROPEFFECT_COPY : DROPEFFECT_LINK;
    }

    DropTarget* owner_;
    bool accepted_ = false;
};

DropTarget::DropTarget() = default;

DropTarget::~DropTarget() { Revoke(); }

void DropTarget::Register(HWND window) {
    Revoke();
    target_ = ComPtr<Target>::Attach(new Target(this));
    // The control's own class may have registered a target of its own.
    RevokeDragDrop(window);
    if (SUCCEEDED(RegisterDragDrop(window, target_.Get()))) window_ = window;
}

void DropTarget::Revoke() noexcept {
    if (window_ != nullptr) RevokeDragDrop(window_);
    window_ = nullptr;
    if (target_) target_->Detach();
    target_.Reset();
}
