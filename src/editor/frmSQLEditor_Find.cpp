#include <algorithm>
#include <cwchar>

#include "editor/frmSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/DialogTemplate.h"
#include "forms/Dpi.h"

// The windows of Ctrl+H and Ctrl+G. Positions are the control's, a line end being one character.
namespace {

constexpr const wchar_t* NotFound = L"Not found";

enum Id { FindId = 100, WithId, CaseId, WordsId, SelectionId, ReplaceId, AllId, ResultId, LineId };

bool IsOfWord(wchar_t c) noexcept { return IsCharAlphaNumericW(c) || c == L'_'; }

// The first place from `from` on at which the text stands wholly before `to`; npos: nowhere.
size_t NextPlace(const std::wstring& text, size_t from, size_t to, const std::wstring& wanted, bool sameCase,
                 bool words) {
    while (from + wanted.size() <= to) {
        const int found = FindStringOrdinal(FIND_FROMSTART, text.data() + from, static_cast<int>(to - from),
                                            wanted.data(), static_cast<int>(wanted.size()), !sameCase);
        if (found < 0) return text.npos;
        const size_t start = from + static_cast<size_t>(found);
        const size_t end = start + wanted.size();
        if (!words || ((start == 0 || !IsOfWord(text[start - 1]) || !IsOfWord(wanted.front())) &&
                       (end == text.size() || !IsOfWord(text[end]) || !IsOfWord(wanted.back())))) {
            return start;
        }
        from = start + 1;
    }
    return text.npos;
}

}  // namespace

void frmSQLEditor::m_OpenReplace() {
    const auto [From, To] = rtbSQL.RawSelection();
    const std::wstring Selected = To - From <= 1000 ? rtbSQL.RawText(From, To) : std::wstring();
    const bool Lines = To - From > 1000 || Selected.find(L'\r') != Selected.npos;
    if (!winReplace.IsOpen()) {
        const UINT Dpi = DpiOf(Handle());
        DialogTemplate Form(L"Replace", MetricsFor(Dpi), Dpi, 250, 92);
        using namespace DialogClass;
        Form.Add(Static, SS_LEFT, 0, 8, 10, 50, 10, -1, L"Fi&nd what:");
        Form.Add(Edit, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, 60, 8, 120, 13, FindId, findText_);
        Form.Add(Static, SS_LEFT, 0, 8, 26, 50, 10, -1, L"Re&place with:");
        Form.Add(Edit, ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, 60, 24, 120, 13, WithId, L"");
        Form.Add(Button, BS_AUTOCHECKBOX | WS_TABSTOP, 0, 8, 42, 80, 11, CaseId, L"Match &case");
        Form.Add(Button, BS_AUTOCHECKBOX | WS_TABSTOP, 0, 8, 54, 80, 11, WordsId, L"Whole &words");
        Form.Add(Button, BS_AUTOCHECKBOX | WS_TABSTOP, 0, 92, 42, 90, 11, SelectionId, L"In the &selection");
        Form.Add(Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 0, 188, 8, 56, 14, IDOK, L"&Find Next");
        Form.Add(Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 188, 25, 56, 14, ReplaceId, L"&Replace");
        Form.Add(Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 188, 42, 56, 14, AllId, L"Replace &All");
        Form.Add(Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 188, 59, 56, 14, IDCANCEL, L"Close");
        Form.Add(Static, SS_LEFT | SS_NOPREFIX, 0, 8, 76, 236, 10, ResultId, L"");
        winReplace.Pressed = [this](int Id) { winReplace_Pressed(Id); };
        winReplace.Open(Handle(), Form);
    }
    if (!Lines && !Selected.empty()) winReplace.SetText(FindId, Selected);
    winReplace.SetChecked(SelectionId, Lines);
    winReplace.Activate();
    SendMessageW(winReplace.Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(winReplace.Handle(), FindId)),
                 TRUE);
}

void frmSQLEditor::m_Result(const std::wstring& Text) {
    if (winReplace.IsOpen()) winReplace.SetText(ResultId, Text);
    sbStatusBar.SetPanelText(CaretPanel, Text);
}

// Selects the next occurrence after the selection, else the first one in the text.
bool frmSQLEditor::m_FindAgain() {
    const std::wstring Wanted = winReplace.Text(FindId);
    if (Wanted.empty()) return false;
    findText_ = Wanted;
    const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
    const auto [From, To] = rtbSQL.RawSelection();
    const bool Case = winReplace.Checked(CaseId);
    const bool Words = winReplace.Checked(WordsId);
    size_t Found = NextPlace(Text, static_cast<size_t>(std::max(To, 0L)), Text.size(), Wanted, Case, Words);
    if (Found == Text.npos) Found = NextPlace(Text, 0, Text.size(), Wanted, Case, Words);
    if (Found == Text.npos) {
        m_Result(NotFound);
        return false;
    }
    rtbSQL.RawSelect(static_cast<long>(Found), static_cast<long>(Found + Wanted.size()));
    rtbSQL.ScrollCaret();
    winReplace.SetText(ResultId, L"");
    return true;
}

void frmSQLEditor::m_ReplaceOne() {
    const std::wstring Wanted = winReplace.Text(FindId);
    const auto [From, To] = rtbSQL.RawSelection();
    // Whole words are looked at in the whole text, so the selection is asked for there.
    const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
    if (!Wanted.empty() && From >= 0 && To - From == static_cast<long>(Wanted.size()) &&
        NextPlace(Text, static_cast<size_t>(From), static_cast<size_t>(To), Wanted, winReplace.Checked(CaseId),
                  winReplace.Checked(WordsId)) == static_cast<size_t>(From)) {
        rtbSQL.SetSelText(winReplace.Text(WithId));
    }
    m_FindAgain();
}

// One step of undo: what stands from the first to the last place is replaced at once.
void frmSQLEditor::m_ReplaceAll() {
    const std::wstring Wanted = winReplace.Text(FindId);
    if (Wanted.empty()) return;
    findText_ = Wanted;
    const std::wstring With = winReplace.Text(WithId);
    const std::wstring Text = rtbSQL.RawText(0, rtbSQL.RawLength());
    const auto [SelFrom, SelTo] = rtbSQL.RawSelection();
    const bool Selection = winReplace.Checked(SelectionId);
    const size_t From = Selection ? static_cast<size_t>(std::max(SelFrom, 0L)) : 0;
    const size_t To = Selection ? std::min(static_cast<size_t>(std::max(SelTo, 0L)), Text.size()) : Text.size();
    std::wstring Changed;
    size_t Count = 0;
    size_t Copied = From;
    for (size_t Found = From; (Found = NextPlace(Text, Found, To, Wanted, winReplace.Checked(CaseId),
                                                 winReplace.Checked(WordsId))) != Text.npos;
         Found += Wanted.size()) {
        Changed.append(Text, Copied, Found - Copied).append(With);
        Copied = Found + Wanted.size();
        ++Count;
    }
    if (Count == 0) return m_Result(NotFound);
    Changed.append(Text, Copied, To - Copied);
    const auto First = static_cast<long>(From);
    const auto Last = First + static_cast<long>(Changed.size());
    m_ReplaceRaw(First, static_cast<long>(To), Changed, Selection ? First : Last, Last);
    m_Result(std::to_wstring(Count) + L" replaced");
}

void frmSQLEditor::winReplace_Pressed(int Id) try {
    if (Id == IDOK) m_FindAgain();
    if (Id == ReplaceId) m_ReplaceOne();
    if (Id == AllId) m_ReplaceAll();
} catch (...) {
    ReportError(Module, L"winReplace_Pressed");
}

void frmSQLEditor::m_OpenGoto() {
    if (!winGoto.IsOpen()) {
        const UINT Dpi = DpiOf(Handle());
        DialogTemplate Form(L"Go To Line", MetricsFor(Dpi), Dpi, 170, 44);
        using namespace DialogClass;
        Form.Add(Static, SS_LEFT, 0, 8, 10, 50, 10, -1, L"&Line number:");
        Form.Add(Edit, ES_AUTOHSCROLL | ES_NUMBER | WS_TABSTOP, WS_EX_CLIENTEDGE, 60, 8, 44, 13, LineId, L"");
        Form.Add(Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 0, 112, 8, 50, 14, IDOK, L"&Go To");
        Form.Add(Button, BS_PUSHBUTTON | WS_TABSTOP, 0, 112, 25, 50, 14, IDCANCEL, L"Close");
        winGoto.Pressed = [this](int Id) { winGoto_Pressed(Id); };
        winGoto.Open(Handle(), Form);
    }
    long Line = 0;
    long Column = 0;
    rtbSQL.CaretPosition(Line, Column);
    winGoto.SetText(LineId, std::to_wstring(Line));
    winGoto.Activate();
    SendMessageW(winGoto.Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(winGoto.Handle(), LineId)), TRUE);
}

// A number beyond the last line means the last line.
void frmSQLEditor::winGoto_Pressed(int Id) try {
    if (Id != IDOK) return;
    const std::wstring Number = winGoto.Text(LineId).substr(0, 9);
    if (Number.empty()) return;
    rtbSQL.GoToLine(std::max(std::wcstol(Number.c_str(), nullptr, 10), 1L));
} catch (...) {
    ReportError(Module, L"winGoto_Pressed");
}
