#include <windows.h>
#include <richedit.h>

#include <algorithm>
#include <cstring>

#include "Cases.h"
#include "RichTexts.h"
#include "Windows.h"
#include "forms/TextFile.h"
#include "support/Browsed.h"
#include "support/CountedObject.h"
#include "support/Dialogs.h"
#include "support/Folder.h"
#include "support/TestData.h"

// What other programs drop on the editor: texts of any bytes, with and without an end, damaged lists of files, files of
// any bytes. What the editor held before stays.
namespace {

constexpr const wchar_t* Before = L"one\r\ntwo";

// What a list of files begins with. (Named as its header names it; that one has a Folder of its own.)
struct DropFiles {
    DWORD pFiles;
    POINT pt;
    BOOL fNC;
    BOOL fWide;
};

std::string BytesOfText(const std::wstring& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}

class DropsFuzz : public BrowsedFixture {
protected:
    // Drops on a window that holds `Before`, with the caret after it; what came in.
    std::wstring Dropped(TestData& data, DWORD* effect = nullptr) {
        PutText(Before);
        EditorWindow::Select(7, 7);
        const DWORD done = DropOnEditor(data, {-5000, -5000});
        if (effect != nullptr) *effect = done;
        const std::wstring text = EditorText();
        const std::wstring before = Before;
        EXPECT_TRUE(text.rfind(before, 0) == 0) << "what was there became " << Shown(text);
        return text.size() >= before.size() ? text.substr(before.size()) : L"";
    }
    void WithWindow(const std::function<void()>& cases) {
        EXPECT_EQ(L"the end", Inside([&] {
                      cases();
                      PutText(L"the end");
                  }));
        EXPECT_EQ(L"", Errors.Places());
    }
    static void ExpectText(const std::wstring& expected, const std::wstring& text) {
        EXPECT_TRUE(expected == text) << "expected " << Shown(expected) << "\nbut it is " << Shown(text);
    }
    Folder Here;
};

}  // namespace

TEST_F(DropsFuzz, Texts) {
    WithWindow([&] {
        ForEachCase(40, [&](Random& random) {
            std::wstring text = AnyText(random, 100);
            if (random.OneIn(30)) text = TextOfLength(random, LongText);
            std::string bytes = BytesOfText(text);
            // With its end, without, with something after it, or half a unit more.
            switch (random.Below(4)) {
                case 0:
                    bytes.append(2, '\0');
                    break;
                case 1:
                    bytes += std::string(2, '\0') + AnyBytes(random, 20);
                    break;
                case 2:
                    bytes += 'x';
                    break;
                default:
                    break;
            }
            // A block of memory has no length of nothing.
            if (bytes.empty()) bytes.append(2, '\0');
            TestData data;
            data.Add(CF_UNICODETEXT, bytes);
            if (random.OneIn(4)) data.Add(CF_TEXT, "not this");
            DWORD effect = 0;
            ExpectText(InControl(UpToNul(text)), Dropped(data, &effect));
            EXPECT_EQ(DWORD{DROPEFFECT_COPY}, effect);
        });
    });
}

TEST_F(DropsFuzz, TextsOfTheCodePage) {
    WithWindow([&] {
        ForEachCase(30, [&](Random& random) {
            std::string bytes = AnyBytes(random, 100);
            if (bytes.empty()) bytes = "x";
            TestData data;
            data.Add(CF_TEXT, bytes);
            const std::string upTo = bytes.substr(0, bytes.find('\0'));
            std::wstring text(upTo.size(), L'\0');
            text.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, upTo.data(), static_cast<int>(upTo.size()),
                                                                text.data(), static_cast<int>(text.size()))));
            ExpectText(InControl(text), Dropped(data));
        });
    });
}

// A list of files as programs and damage make it. What a list says within its block is what is dropped; nothing outside
// is looked at.
TEST_F(DropsFuzz, ListsOfFiles) {
    PutBytes(Here / L"a.sql", "first");
    PutBytes(Here / L"b.sql", "second");
    BoxAnswerer box;
    WithWindow([&] {
        ForEachCase(50, [&](Random& random) {
            const bool wide = !random.OneIn(4);
            DropFiles header{};
            header.pFiles = sizeof header;
            header.fWide = wide ? TRUE : FALSE;
            const std::vector<std::wstring> names{Here / L"a.sql", Here / L"b.sql"};
            std::string block;
            const auto end = [&] { block.append(wide ? 2 : 1, '\0'); };
            for (const std::wstring& name : names) {
                block += wide ? BytesOfText(name) : std::string(name.begin(), name.end());
                end();
            }
            end();
            std::wstring expected = L"first\r\nsecond\r\n";
            bool known = true;
            switch (random.Below(8)) {
                case 0:
                    break;
                case 1:  // no end: neither of the list nor of its last name
                    block.resize(block.size() - (wide ? 2 : 1) * (1 + random.Below(2)));
                    break;
                case 2:  // no file
                    block.clear();
                    if (random.OneIn(2)) end();
                    if (random.OneIn(2)) end();
                    expected.clear();
                    break;
                case 3:  // the names begin elsewhere: outside, in the header, in the middle of one
                    header.pFiles = random.Pick<DWORD>(
                        {0, 4, 19, static_cast<DWORD>(sizeof header + block.size()),
                         static_cast<DWORD>(sizeof header + block.size() - 1), 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF,
                         0xFFFFFFF0, static_cast<DWORD>(sizeof header + random.Below(block.size()))});
                    known = false;
                    break;
                case 4:
                    header.fWide = static_cast<BOOL>(random.Next());
                    known = false;
                    break;
                case 5:
                    block = Damaged(random, block, 1 + random.Below(4));
                    known = false;
                    break;
                case 6:  // cut anywhere, within the header too
                    known = false;
                    break;
                default:  // the names begin after something else
                    block.insert(0, "????");
                    header.pFiles += 4;
                    break;
            }
            std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
            bytes += block;
            if (!known && random.OneIn(3)) bytes.resize(1 + random.Below(bytes.size()));
            TestData data;
            data.Add(CF_HDROP, bytes);
            const std::wstring came = Dropped(data);
            if (known) {
                ExpectText(expected, came);
            } else {
                // Whatever was read: one file or the other, or neither, whole.
                std::wstring rest = came;
                for (const std::wstring file : {L"first\r\n", L"second\r\n"}) {
                    for (size_t at; (at = rest.find(file)) != std::wstring::npos;) rest.erase(at, file.size());
                }
                ExpectText(L"", rest);
            }
        });
    });
}

TEST_F(DropsFuzz, Files) {
    WithWindow([&] {
        ForEachCase(40, [&](Random& random) {
            std::wstring expected;
            std::vector<std::wstring> paths;
            for (size_t left = 1 + random.Below(2); left > 0; --left) {
                const std::string bytes = AnyFile(random, 200);
                paths.push_back(Here / (std::to_wstring(left) + L".sql").c_str());
                PutBytes(paths.back(), bytes);
                const std::wstring text = TextFile::Decode(bytes).Text;
                if (!text.empty()) expected += InControl(text + L"\r\n");
            }
            TestData data;
            data.AddFiles(paths);
            ExpectText(expected, Dropped(data));
        });
    });
}

// Rich text of any damage inserts what the reader makes of it, be it nothing.
TEST_F(DropsFuzz, RichTexts) {
    WithWindow([&] {
        ForEachCase(40, [&](Random& random) {
            const std::string whole =
                "{\\rtf1\\ansi{\\fonttbl{\\f0 Courier New;}}\\f0 select {\\b *}\\par from \\u916?t}";
            std::string bytes = random.OneIn(4)   ? whole
                                : random.OneIn(4) ? DamagedRichText(random, AnyRichText(random))
                                                  : Damaged(random, whole, random.Below(5));
            bytes.append(random.Below(2), '\0');
            if (IsRepeating()) std::printf("%s\n", testing::PrintToString(bytes.substr(0, 2000)).c_str());
            TestData data;
            data.Add(static_cast<CLIPFORMAT>(RegisterClipboardFormatW(L"Rich Text Format")),
                     bytes.empty() ? "x" : bytes);
            const std::wstring came = Dropped(data);
            if (bytes == whole || bytes == whole + '\0') ExpectText(L"select *\r\nfrom \u0394t", came);
        });
    });
}

// A program that offers a format and does not hand it over, or hands over something else.
TEST_F(DropsFuzz, BrokenPromises) {
    struct Broken final : StackObject<IDataObject> {
        Random& Chance;
        explicit Broken(Random& random) : Chance(random) {}
        HRESULT STDMETHODCALLTYPE GetData(FORMATETC*, STGMEDIUM* medium) noexcept override {
            *medium = {};
            switch (Chance.Below(5)) {
                case 0:
                    return Chance.Pick<HRESULT>({DV_E_FORMATETC, E_FAIL, E_UNEXPECTED, S_FALSE, RPC_E_DISCONNECTED});
                case 1:
                    medium->tymed = TYMED_HGLOBAL;  // of no block
                    return S_OK;
                case 2:
                    medium->tymed = TYMED_NULL;
                    return S_OK;
                case 3:
                    medium->tymed = TYMED_HGLOBAL;  // of an empty one
                    medium->hGlobal = GlobalAlloc(GMEM_MOVEABLE, 0);
                    return S_OK;
                default:
                    medium->tymed = TYMED_ISTREAM;
                    return SUCCEEDED(CreateStreamOnHGlobal(nullptr, TRUE, &medium->pstm)) ? S_OK : E_OUTOFMEMORY;
            }
        }
        HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) noexcept override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC*) noexcept override {
            return Chance.Pick<HRESULT>({S_OK, S_OK, S_FALSE, DV_E_FORMATETC, E_FAIL});
        }
        HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) noexcept override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) noexcept override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC**) noexcept override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) noexcept override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) noexcept override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) noexcept override { return E_NOTIMPL; }
    };
    WithWindow([&] {
        ForEachCase(40, [&](Random& random) {
            PutText(Before);
            EditorWindow::Select(7, 7);
            Broken data(random);
            const auto target = EditorDropTarget();
            ASSERT_TRUE(target);
            DWORD effect = static_cast<DWORD>(random.Below(8));
            target->DragEnter(&data, MK_LBUTTON, {0, 0}, &effect);
            if (random.OneIn(2)) target->DragOver(MK_LBUTTON, {-1, -1}, &effect);
            effect = static_cast<DWORD>(random.Below(8));
            const HRESULT result =
                random.OneIn(4) ? target->DragLeave() : target->Drop(&data, 0, {-5000, -5000}, &effect);
            EXPECT_EQ(S_OK, result);
            ExpectText(Before, EditorText());
        });
    });
}
