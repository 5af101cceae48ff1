#include "browser/modLists.h"
#include "catalogue/clsListItem.h"
#include "component/modGlobal.h"
#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/Twips.h"

namespace {

constexpr const wchar_t* Module = L"frmSQLEditor";
constexpr const wchar_t* LineBreak = L"\r\n";

// The names in a folder. A placeholder gives no name, but the separator behind it stays: kept.
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
    switch (State) {
        case DragState::Enter:
            rtbSQL.SetFocus();
            rtbSQL.SetSelLength(0);
            break;
        case DragState::Leave:
            Source.SetFocus();
            break;
        case DragState::Over: {
            const UINT Dpi = rtbSQL.Dpi();
            rtbSQL.SetSelStart(rtbSQL.CharFromPos(TwipsToPixels(X, Dpi), TwipsToPixels(Y, Dpi)));
            break;
        }
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

// Without a trap of its own: what fails goes back to the program that drops.
void frmSQLEditor::rtbSQL_OLEDragDrop(const DroppedData& Data) {
    using Format = DroppedData::Format;
    for (const Format Kind : {Format::RichText, Format::Text}) {
        if (Data.GetFormat(Kind)) {
            m_InsertSQL(Data.Text(Kind));
            return;
        }
    }
}
