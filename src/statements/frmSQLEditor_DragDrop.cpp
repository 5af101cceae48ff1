#include "automation/App.h"
#include "browser/modLists_Tree.h"
#include "catalogue/clsListItem.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/MsgBox.h"
#include "forms/PlainText.h"
#include "forms/RichEdit.h"
#include "forms/Rtf.h"
#include "forms/TextFile.h"
#include "forms/Twips.h"
#include "shared/Vocabulary.h"
#include "shared/modGlobal.h"

namespace {

// The names in a folder. A placeholder gives no name, but its separator is written on purpose.
std::wstring JoinChildren(const Node& Folder, const wchar_t* Separator) {
    std::wstring Joined;
    for (Node Child = Folder.Child(); Child; Child = Child.Next()) {
        if (Child.Tag() != modLists::NodeKind::Undefined) Joined += Child.Text();
        if (Child.Next()) Joined += Separator;
    }
    return Joined;
}

std::wstring NodeText(const Node& Node) {
    namespace NodeKind = modLists::NodeKind;
    const std::wstring& Kind = Node.Tag();
    if (Kind == NodeKind::Schema || Kind == NodeKind::Table || Kind == NodeKind::View || Kind == NodeKind::Column) {
        return Node.Text();
    }
    if (Kind == NodeKind::Columns) return JoinChildren(Node, L", ");
    if (Kind == NodeKind::Tables || Kind == NodeKind::Views || Kind == NodeKind::Schemas)
        return JoinChildren(Node, LineBreak);
    return {};
}

// Above this size the control takes noticeable time for a text; beyond RichTextBox::FileLimit it is refused.
constexpr uint64_t AskBeyond = 1024 * 1024;  // bytes of a file, characters of a text

std::wstring InMegabytes(uint64_t Bytes) { return std::to_wstring((Bytes + 512 * 1024) / (1024 * 1024)) + L" MB"; }

// Asks before what is large; `What`: what it is, with the blank or the line break after it.
bool MayTakeAWhile(HWND Owner, const std::wstring& What, uint64_t Size) {
    return Size <= AskBeyond || MsgBox(Owner,
                                       What + L"is " + InMegabytes(Size) +
                                           L" large, which takes the editor a while. Do you want to insert it?",
                                       MB_OKCANCEL | MB_ICONQUESTION) == IDOK;
}

// Asks before a large file; raises error 75 for a folder and 7 for a file that the editor does not take.
bool MayInsert(HWND Owner, const std::wstring& File) {
    TextFile::CheckPath(File);
    WIN32_FILE_ATTRIBUTE_DATA Facts{};
    if (!GetFileAttributesExW(File.c_str(), GetFileExInfoStandard, &Facts)) return true;  // reading it says why
    if ((Facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RaiseError(ErrorNumber::PathFileAccessError, App::Title, L"This is a folder; only files can be dropped here.");
    }
    const uint64_t Size = (uint64_t{Facts.nFileSizeHigh} << 32) | Facts.nFileSizeLow;
    if (Size > RichTextBox::FileLimit) {
        RaiseError(ErrorNumber::OutOfMemory, App::Title,
                   L"With " + InMegabytes(Size) + L" the file is too large for the editor, which takes up to " +
                       InMegabytes(RichTextBox::FileLimit) + L".");
    }
    return MayTakeAWhile(Owner, File + L"\r\n", Size);
}

// By the rule of File Open: the ending decides whether it is rich text, unless it does not even begin as such. Rich
// text that is damaged is error 321.
std::wstring TextOfFile(const std::wstring& File) {
    const std::string Bytes = TextFile::ReadBytes(File, RichTextBox::FileLimit);
    if (RichTextBox::KindOf(File) != RichTextBox::FileKind::RichText || !BeginsAsRichText(Bytes)) {
        return TextFile::Decode(Bytes).Text;
    }
    constexpr long InvalidFileFormat = 321;
    std::wstring Text;
    if (!IsRichText(Bytes) || !ReadRichText(Bytes, Text)) {
        RaiseError(InvalidFileFormat, App::Title, L"The rich text in this file is damaged.");
    }
    return Text;
}

}  // namespace

std::wstring frmSQLEditor::m_DragText(Control& Source) {
    const auto EntryText = [](long Id) { return modGlobal::Catalogue().Item(std::to_wstring(Id))->DragDrop(); };
    for (const ListBox* List : {&lstKolvex, &lstAnsiSQL}) {
        if (&Source == List) return EntryText(List->ItemData(List->ListIndex()));
    }
    if (&Source == &trvDatabaseSpecific) {
        const Variant Tag = trvDatabaseSpecific.SelectedItem().Tag();
        return Tag.IsNumeric() ? EntryText(Tag.ToLong()) : std::wstring();  // a category has no number
    }
    return &Source == &trvDBObjects ? NodeText(trvDBObjects.SelectedItem()) : std::wstring();
}

// For the mouse pointer alone: what fails here is reported when it is dropped.
bool frmSQLEditor::m_CanDrop(Control& Source) {
    try {
        return !m_DragText(Source).empty();
    } catch (const RuntimeError&) {
        return false;
    }
}

void frmSQLEditor::rtbSQL_DragOver(Control& Source, float X, float Y, DragState State) try {
    const UINT Dpi = rtbSQL.Dpi();
    const int Across = TwipsToPixels(X, Dpi);
    const int Down = TwipsToPixels(Y, Dpi);
    switch (State) {
        case DragState::Enter:
            // The caret first: with the focus the editor scrolls to it, and it was where the user wrote last.
            rtbSQL.Select(rtbSQL.CharFromPos(Across, Down), 0);
            rtbSQL.SetFocus();
            break;
        case DragState::Leave:
            Source.SetFocus();
            break;
        case DragState::Over:
            rtbSQL.ScrollAtEdge(Across, Down);
            rtbSQL.SetSelStart(rtbSQL.CharFromPos(Across, Down));
            break;
        default:
            break;
    }
} catch (...) {
    ReportError(Module, L"rtbSQL_DragOver");
}

// At the caret, which the drag has left where the mouse is.
void frmSQLEditor::rtbSQL_DragDrop(Control& Source, float, float) try {
    const std::wstring Text = m_DragText(Source);
    if (!Text.empty()) m_InsertSQL(Text);
} catch (...) {
    ReportError(Module, L"rtbSQL_DragDrop");
}

// No trap here: what fails goes back to the program that drops. The first format that it offers, in this order,
// decides, so that a program that offers files or pictures beside its text gives the text.
void frmSQLEditor::rtbSQL_OLEDragDrop(const DroppedData& Data) {
    using Format = DroppedData::Format;
    for (const Format Kind : {Format::RichText, Format::Text, Format::Files, Format::Bitmap, Format::Metafile,
                              Format::EnhancedMetafile, Format::DeviceIndependentBitmap, Format::Palette}) {
        if (!Data.GetFormat(Kind)) continue;
        if (Kind == Format::RichText || Kind == Format::Text) {
            m_InsertDropped(Data, Kind);
        } else if (Kind == Format::Files) {
            // Files may be asked for, and read for a while; the other program is not kept waiting.
            rtbSQL.Later([this, Files = Data.Files()] { m_InsertFiles(Files); });
        }
        return;  // a picture inserts nothing
    }
}

// What is not inserted at once waits until the other program has its answer.
void frmSQLEditor::m_InsertDropped(const DroppedData& Data, DroppedData::Format Kind) {
    std::wstring Text;
    try {
        Text = Data.Text(Kind);
    } catch (const RuntimeError& error) {
        rtbSQL.Later([this, Why = error.Description] { m_InsertLater({}, Why); });
        return;
    }
    if (Text.size() <= AskBeyond) return m_InsertSQL(Text);
    rtbSQL.Later([this, Text = std::move(Text)] { m_InsertLater(Text, {}); });
}

void frmSQLEditor::m_InsertLater(const std::wstring& Text, const std::wstring& Refused) try {
    if (!Refused.empty()) {
        MsgBox(Handle(), Refused, MB_OK | MB_ICONEXCLAMATION);
    } else if (MayTakeAWhile(Handle(), L"The text ", Text.size())) {
        m_InsertSQL(Text);
    }
} catch (...) {
    ReportError(Module, L"rtbSQL_OLEDragDrop");
}

// All at once, so that one step of undo takes them back; what stands selected is the last one.
void frmSQLEditor::m_InsertFiles(const std::vector<std::wstring>& Files) try {
    std::wstring All;
    std::wstring Last;
    std::wstring Refused;
    for (const std::wstring& File : Files) {
        try {
            if (!MayInsert(Handle(), File)) continue;
            const std::wstring Text = TextOfFile(File);
            if (Text.empty()) continue;
            Last = Text + LineBreak;
            All += Last;
        } catch (const RuntimeError& error) {
            Refused += L"\r\n" + File + L": " + error.Description;
        }
    }
    if (!All.empty()) m_InsertSQL(All);
    if (Last.size() < All.size()) {
        const long LeadingBreak = Last.compare(0, 2, LineBreak) == 0 ? 2 : 0;
        const long Length = static_cast<long>(PlainText::WithCrLf(Last).size()) - LeadingBreak;
        rtbSQL.Select(rtbSQL.SelStart() + rtbSQL.SelLength() - Length, Length);
    }
    if (!Refused.empty()) {
        MsgBox(Handle(), L"Not everything could be inserted." + Refused, MB_OK | MB_ICONEXCLAMATION);
    }
} catch (...) {
    ReportError(Module, L"rtbSQL_OLEDragDrop");
}
