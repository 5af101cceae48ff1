#include "host/database/CreateTableDialog.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <algorithm>
#include <exception>
#include <iterator>

#include "automation/ActivationContext.h"
#include "automation/App.h"
#include "automation/RuntimeError.h"
#include "host/database/CreateTable.h"
#include "host/database/Resources.h"

namespace {

// The component's own manifest, so that the dialog has themed controls in a host without one.
class ControlsContext {
public:
    ControlsContext() : context_(Make()), active_(context_) {}
    ~ControlsContext() {
        if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);  // the stack has its own reference
    }
    ControlsContext(const ControlsContext&) = delete;
    ControlsContext& operator=(const ControlsContext&) = delete;

private:
    static HANDLE Make() noexcept {
        ACTCTXW request = {};
        request.cbSize = sizeof request;
        request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        request.hModule = App::Module();
        request.lpResourceName = MAKEINTRESOURCEW(IDM_CONTROLS_MANIFEST);
        return CreateActCtxW(&request);
    }
    const HANDLE context_;
    ActiveContext active_;
};

// Windows made meanwhile follow the dots per inch of their monitor, whatever the host says of itself.
class MonitorDpi {
public:
    MonitorDpi() {
        set_ = reinterpret_cast<Set>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetThreadDpiAwarenessContext")));
        if (set_) before_ = set_(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    }
    ~MonitorDpi() {
        if (set_ && before_) set_(before_);
    }
    MonitorDpi(const MonitorDpi&) = delete;
    MonitorDpi& operator=(const MonitorDpi&) = delete;

private:
    using Set = DPI_AWARENESS_CONTEXT(WINAPI*)(DPI_AWARENESS_CONTEXT);
    Set set_ = nullptr;
    DPI_AWARENESS_CONTEXT before_ = nullptr;
};

class CreateTableDialog {
public:
    CreateTableDialog(const IdentifierRules& rules, std::vector<TypeChoice> types)
        : rules_(rules), types_(std::move(types)) {
        const auto whole =
            std::find_if(types_.begin(), types_.end(), [](const TypeChoice& t) { return t.Code == SQL_INTEGER; });
        table_.Columns.push_back({L"id", (whole == types_.end() ? types_.front() : *whole).Name, {}, false, true});
    }
    ~CreateTableDialog() {
        if (previewFont_) DeleteObject(previewFont_);
    }

    std::optional<std::wstring> Show(HWND owner) {
        const ControlsContext controls;
        const MonitorDpi dpi;
        const INT_PTR result = DialogBoxParamW(App::Module(), MAKEINTRESOURCEW(IDD_CREATE_TABLE), owner, Procedure,
                                               reinterpret_cast<LPARAM>(this));
        if (failure_) std::rethrow_exception(failure_);
        if (result == -1) RaiseSystemError(ErrorNumber::OutOfMemory, GetLastError());
        if (result != IDOK) return std::nullopt;
        return CreateTableStatement(rules_, table_);
    }

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrW(window, DWLP_USER, l);
            reinterpret_cast<CreateTableDialog*>(l)->window_ = window;
        }
        auto* self = reinterpret_cast<CreateTableDialog*>(GetWindowLongPtrW(window, DWLP_USER));
        if (!self) return FALSE;
        try {
            return self->Handle(message, w, l);
        } catch (...) {  // must not pass through Windows; Show throws it on
            self->failure_ = std::current_exception();
            EndDialog(window, IDCANCEL);
            return TRUE;
        }
    }

    INT_PTR Handle(UINT message, WPARAM w, LPARAM l) {
        switch (message) {
            case WM_INITDIALOG:
                Prepare();
                return FALSE;  // the focus is set
            case WM_SIZE:
                Layout();
                return TRUE;
            case WM_GETMINMAXINFO: {
                RECT least = Units(0, 0, 330, 230);
                AdjustWindowRectEx(&least, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                                   static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_EXSTYLE)));
                reinterpret_cast<MINMAXINFO*>(l)->ptMinTrackSize = {least.right - least.left, least.bottom - least.top};
                return TRUE;
            }
            case WM_COMMAND:
                return Command(LOWORD(w), HIWORD(w));
            case WM_NOTIFY:
                return Notify(*reinterpret_cast<const NMHDR*>(l));
            default:
                return FALSE;
        }
    }

    HWND Item(int id) const { return GetDlgItem(window_, id); }

    LRESULT Send(int id, UINT message, WPARAM w = 0, LPARAM l = 0) const {
        return SendMessageW(Item(id), message, w, l);
    }

    std::wstring TextOf(int id) const {
        std::wstring text(static_cast<size_t>(GetWindowTextLengthW(Item(id))), L'\0');
        if (!text.empty())
            text.resize(static_cast<size_t>(GetWindowTextW(Item(id), text.data(), static_cast<int>(text.size()) + 1)));
        return text;
    }

    // A name that the user typed: blanks around it are no part of it.
    std::wstring NameIn(int id) const {
        const std::wstring text = TextOf(id);
        const size_t first = text.find_first_not_of(L" \t");
        if (first == std::wstring::npos) return {};
        return text.substr(first, text.find_last_not_of(L" \t") - first + 1);
    }

    void Prepare() {
        // The editor's window is topmost. What it owns stands above it, but only a topmost window stays there when the
        // owner is made topmost once more.
        const HWND owner = GetWindow(window_, GW_OWNER);
        if (owner && (GetWindowLongPtrW(owner, GWL_EXSTYLE) & WS_EX_TOPMOST)) {
            SetWindowPos(window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        }
        Send(IDC_COLUMNS, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
        SetWindowTheme(Item(IDC_COLUMNS), L"Explorer", nullptr);
        const wchar_t* const titles[] = {L"Name", L"Type", L"Size", L"Null", L"Key"};
        for (int i = 0; i < static_cast<int>(std::size(titles)); ++i) {
            LVCOLUMNW column = {};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.pszText = const_cast<wchar_t*>(titles[i]);
            column.cx = 50;
            Send(IDC_COLUMNS, LVM_INSERTCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column));
        }
        for (const TypeChoice& type : types_)
            Send(IDC_COLUMN_TYPE, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(type.Name.c_str()));
        Send(IDC_TABLE_NAME, EM_SETLIMITTEXT, 128);
        Send(IDC_COLUMN_NAME, EM_SETLIMITTEXT, 128);
        Send(IDC_COLUMN_TYPE, CB_LIMITTEXT, 128);
        Send(IDC_COLUMN_SIZE, EM_SETLIMITTEXT, 20);
        Layout();
        FillList(0);
        SetFocus(Item(IDC_TABLE_NAME));
    }

    // Dialog units, which follow the font and so the dots per inch, in pixels.
    RECT Units(int x, int y, int width, int height) const {
        RECT pixels = {x, y, x + width, y + height};
        MapDialogRect(window_, &pixels);
        return pixels;
    }

    void Place(int id, int x, int y, int width, int height) const {
        const RECT r = Units(x, y, std::max(width, 1), std::max(height, 1));
        SetWindowPos(Item(id), nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }

    void Layout() {
        RECT client = {};
        GetClientRect(window_, &client);
        const RECT scale = Units(0, 0, 1000, 1000);
        if (!scale.right || !scale.bottom || !client.right) return;
        const int width = MulDiv(client.right, 1000, scale.right);
        const int height = MulDiv(client.bottom, 1000, scale.bottom);
        const int margin = 7, gap = 4, line = 14, field = 12, label = 8, button = 60;

        Place(IDC_TABLE_NAME_LABEL, margin, margin + 2, 50, label);
        Place(IDC_TABLE_NAME, margin + 54, margin, width - 2 * margin - 54, field);

        const int top = margin + field + 7;
        const int fixed = top + label + 2 + 7 + label + 2 + field + 7 + label + 2 + 7 + line + margin;
        const int free = std::max(height - fixed, 60);
        const int listHeight = std::max(free * 55 / 100, 72);
        const int previewHeight = free - listHeight;
        int y = top;
        Place(IDC_COLUMNS_LABEL, margin, y, 80, label);
        y += label + 2;
        Place(IDC_COLUMNS, margin, y, width - 2 * margin - button - gap, listHeight);
        const int buttons[] = {IDC_ADD, IDC_REMOVE, IDC_MOVE_UP, IDC_MOVE_DOWN};
        for (int i = 0; i < 4; ++i) Place(buttons[i], width - margin - button, y + i * (line + gap), button, line);
        y += listHeight + 7;

        // Name and type share what the size and the two boxes leave.
        const int size = 40, box = 58;
        const int shared = width - 2 * margin - size - 2 * box - 4 * gap - 2;
        const int name = shared * 55 / 100, type = shared - name;
        int x = margin;
        Place(IDC_COLUMN_NAME_LABEL, x, y, name, label);
        Place(IDC_COLUMN_NAME, x, y + label + 2, name, field);
        x += name + gap;
        Place(IDC_COLUMN_TYPE_LABEL, x, y, type, label);
        Place(IDC_COLUMN_TYPE, x, y + label + 2, type, 150);  // the height of the opened list
        x += type + gap;
        Place(IDC_COLUMN_SIZE_LABEL, x, y, size, label);
        Place(IDC_COLUMN_SIZE, x, y + label + 2, size, field);
        x += size + gap + 2;
        Place(IDC_NULLABLE, x, y + label + 3, box, 10);
        x += box + gap;
        Place(IDC_PRIMARY_KEY, x, y + label + 3, box, 10);
        y += label + 2 + field + 7;

        Place(IDC_PREVIEW_LABEL, margin, y, 80, label);
        y += label + 2;
        Place(IDC_PREVIEW, margin, y, width - 2 * margin, previewHeight);

        const int bottom = height - margin - line, close = 50;
        Place(IDC_HINT, margin, bottom + 3, width - 2 * margin - 2 * close - 3 * gap, label);
        Place(IDOK, width - margin - 2 * close - gap, bottom, close, line);
        Place(IDCANCEL, width - margin - close, bottom, close, line);
        FitListColumns();
        FitPreviewFont();
        InvalidateRect(window_, nullptr, TRUE);
    }

    void FitListColumns() const {
        RECT client = {};
        GetClientRect(Item(IDC_COLUMNS), &client);
        // Room for the scroll bar is kept free, so that its coming brings no second one.
        const int whole = client.right - GetSystemMetrics(SM_CXVSCROLL);
        const int narrow = static_cast<int>(Units(0, 0, 34, 1).right);
        const int rest = std::max(whole - 3 * narrow, 3 * narrow);
        const int widths[] = {rest * 55 / 100, rest - rest * 55 / 100, narrow, narrow, narrow};
        for (int i = 0; i < 5; ++i) Send(IDC_COLUMNS, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(i), widths[i]);
    }

    // A statement reads best in a fixed pitch, at the size of the dialog's own font.
    void FitPreviewFont() {
        LOGFONTW description = {};
        const auto dialogFont = reinterpret_cast<HFONT>(SendMessageW(window_, WM_GETFONT, 0, 0));
        if (!dialogFont || !GetObjectW(dialogFont, sizeof description, &description)) return;
        if (description.lfHeight == previewHeight_) return;
        previewHeight_ = description.lfHeight;
        description.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
        wcscpy_s(description.lfFaceName, L"Consolas");
        const HFONT font = CreateFontIndirectW(&description);
        if (!font) return;
        Send(IDC_PREVIEW, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
        if (previewFont_) DeleteObject(previewFont_);
        previewFont_ = font;
    }

    void SetCell(size_t row, int column, const std::wstring& text) const {
        LVITEMW item = {};
        item.iSubItem = column;
        item.pszText = const_cast<wchar_t*>(text.c_str());
        Send(IDC_COLUMNS, LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
    }

    void ShowRow(size_t row) const {
        const NewColumn& column = table_.Columns[row];
        SetCell(row, 0, column.Name);
        SetCell(row, 1, column.Type);
        SetCell(row, 2, column.Size);
        SetCell(row, 3, column.Nullable && !column.PrimaryKey ? L"yes" : L"no");
        SetCell(row, 4, column.PrimaryKey ? L"yes" : L"");
    }

    void FillList(int select) {
        filling_ = true;
        Send(IDC_COLUMNS, WM_SETREDRAW, FALSE);
        Send(IDC_COLUMNS, LVM_DELETEALLITEMS);
        for (size_t i = 0; i < table_.Columns.size(); ++i) {
            LVITEMW item = {};
            item.iItem = static_cast<int>(i);
            Send(IDC_COLUMNS, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
            ShowRow(i);
        }
        Send(IDC_COLUMNS, WM_SETREDRAW, TRUE);
        filling_ = false;
        Select(std::min(select, static_cast<int>(table_.Columns.size()) - 1));
        ShowStatement();
    }

    void Select(int row) {
        selected_ = row;
        if (row >= 0) {
            LVITEMW item = {};
            item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
            Send(IDC_COLUMNS, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
            Send(IDC_COLUMNS, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
        }
        ShowSelected();
    }

    NewColumn* Selected() {
        return selected_ >= 0 && selected_ < static_cast<int>(table_.Columns.size())
                   ? &table_.Columns[static_cast<size_t>(selected_)]
                   : nullptr;
    }

    // Puts the selected column into the fields below the list.
    void ShowSelected() {
        filling_ = true;
        const NewColumn* column = Selected();
        SetWindowTextW(Item(IDC_COLUMN_NAME), column ? column->Name.c_str() : L"");
        SetWindowTextW(Item(IDC_COLUMN_TYPE), column ? column->Type.c_str() : L"");
        SetWindowTextW(Item(IDC_COLUMN_SIZE), column ? column->Size.c_str() : L"");
        CheckDlgButton(window_, IDC_NULLABLE,
                       column && column->Nullable && !column->PrimaryKey ? BST_CHECKED : BST_UNCHECKED);
        CheckDlgButton(window_, IDC_PRIMARY_KEY, column && column->PrimaryKey ? BST_CHECKED : BST_UNCHECKED);
        filling_ = false;
        EnableFields();
    }

    const TypeChoice* ChoiceOf(const std::wstring& name) const {
        for (const TypeChoice& type : types_) {
            if (CompareStringOrdinal(type.Name.c_str(), -1, name.c_str(), -1, TRUE) == CSTR_EQUAL) return &type;
        }
        return nullptr;
    }

    void Enable(int id, bool enabled) const {
        // A disabled control that keeps the focus leaves the keyboard without one.
        if (!enabled && GetFocus() == Item(id)) SendMessageW(window_, WM_NEXTDLGCTL, 0, FALSE);
        EnableWindow(Item(id), enabled);
    }

    void EnableFields() {
        const NewColumn* column = Selected();
        const TypeChoice* type = column ? ChoiceOf(column->Type) : nullptr;
        const int last = static_cast<int>(table_.Columns.size()) - 1;
        Enable(IDC_COLUMN_NAME, column);
        Enable(IDC_COLUMN_TYPE, column);
        Enable(IDC_COLUMN_SIZE, column && (!type || type->TakesSize));
        Enable(IDC_NULLABLE, column && !column->PrimaryKey);
        Enable(IDC_PRIMARY_KEY, column);
        Enable(IDC_REMOVE, column);
        Enable(IDC_MOVE_UP, column && selected_ > 0);
        Enable(IDC_MOVE_DOWN, column && selected_ < last);
    }

    void ShowStatement() {
        const std::wstring statement = CreateTableStatement(rules_, table_);
        SetWindowTextW(Item(IDC_PREVIEW), statement.c_str());
        // The line of the selected column is the one to watch.
        size_t line = 0;
        for (int i = 0; i <= selected_ && line != std::wstring::npos; ++i) line = statement.find(L"\r\n", line + 1);
        if (line != std::wstring::npos && selected_ >= 0) {
            Send(IDC_PREVIEW, EM_SETSEL, line + 2, static_cast<LPARAM>(line + 2));
            Send(IDC_PREVIEW, EM_SCROLLCARET);
        }
        const std::wstring problem = Problem(table_);
        SetWindowTextW(Item(IDC_HINT), problem.c_str());
        Enable(IDOK, problem.empty());
    }

    void Add() {
        NewColumn column;
        const auto text = std::find_if(types_.begin(), types_.end(), [](const TypeChoice& t) {
            return t.Code == SQL_WVARCHAR || t.Code == SQL_VARCHAR;
        });
        const TypeChoice& type = text == types_.end() ? types_.front() : *text;
        column.Type = type.Name;
        column.Size = type.UsualSize;
        const int position = selected_ < 0 ? static_cast<int>(table_.Columns.size()) : selected_ + 1;
        table_.Columns.insert(table_.Columns.begin() + position, column);
        FillList(position);
        SetFocus(Item(IDC_COLUMN_NAME));
    }

    void Remove() {
        if (!Selected()) return;
        table_.Columns.erase(table_.Columns.begin() + selected_);
        FillList(selected_);
    }

    void Move(int by) {
        const int target = selected_ + by;
        if (!Selected() || target < 0 || target >= static_cast<int>(table_.Columns.size())) return;
        std::swap(table_.Columns[static_cast<size_t>(selected_)], table_.Columns[static_cast<size_t>(target)]);
        FillList(target);
    }

    // A field below the list was changed by the user.
    void Change(int id) {
        NewColumn* column = Selected();
        if (filling_ || !column) return;
        switch (id) {
            case IDC_COLUMN_NAME:
                column->Name = NameIn(id);
                break;
            case IDC_COLUMN_SIZE:
                column->Size = NameIn(id);
                break;
            case IDC_NULLABLE:
                column->Nullable = IsDlgButtonChecked(window_, id) == BST_CHECKED;
                break;
            case IDC_PRIMARY_KEY:
                column->PrimaryKey = IsDlgButtonChecked(window_, id) == BST_CHECKED;
                ShowSelected();
                break;
            default:
                break;
        }
        ShowRow(static_cast<size_t>(selected_));
        EnableFields();
        ShowStatement();
    }

    void ChangeType(const std::wstring& name) {
        NewColumn* column = Selected();
        if (filling_ || !column) return;
        const TypeChoice* before = ChoiceOf(column->Type);
        column->Type = name;
        if (const TypeChoice* type = ChoiceOf(name); type && type != before) {
            // A size that fits the old type says nothing about the new one, unless both are texts or both are numbers.
            if (!type->TakesSize || !before || before->UsualSize != type->UsualSize) column->Size = type->UsualSize;
            filling_ = true;
            SetWindowTextW(Item(IDC_COLUMN_SIZE), column->Size.c_str());
            filling_ = false;
        }
        ShowRow(static_cast<size_t>(selected_));
        EnableFields();
        ShowStatement();
    }

    INT_PTR Command(int id, int code) {
        switch (id) {
            case IDOK:
                if (!IsWindowEnabled(Item(IDOK))) return TRUE;  // the Enter key asks for it all the same
                EndDialog(window_, IDOK);
                return TRUE;
            case IDCANCEL:
                EndDialog(window_, IDCANCEL);
                return TRUE;
            case IDC_ADD:
                Add();
                return TRUE;
            case IDC_REMOVE:
                Remove();
                return TRUE;
            case IDC_MOVE_UP:
                Move(-1);
                return TRUE;
            case IDC_MOVE_DOWN:
                Move(1);
                return TRUE;
            case IDC_TABLE_NAME:
                if (code != EN_CHANGE) return FALSE;
                table_.Name = NameIn(id);
                ShowStatement();
                return TRUE;
            case IDC_COLUMN_NAME:
            case IDC_COLUMN_SIZE:
                if (code == EN_CHANGE) Change(id);
                return TRUE;
            case IDC_COLUMN_TYPE:
                if (code == CBN_EDITCHANGE) ChangeType(NameIn(id));
                // The edit field still holds the old text when a row of the list is chosen.
                if (const LRESULT row = Send(id, CB_GETCURSEL); code == CBN_SELCHANGE && row >= 0) {
                    ChangeType(std::wstring(types_[static_cast<size_t>(row)].Name));
                }
                return TRUE;
            case IDC_NULLABLE:
            case IDC_PRIMARY_KEY:
                if (code == BN_CLICKED) Change(id);
                return TRUE;
            default:
                return FALSE;
        }
    }

    INT_PTR Notify(const NMHDR& header) {
        if (header.idFrom != IDC_COLUMNS) return FALSE;
        if (header.code == LVN_ITEMCHANGED && !filling_) {
            const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
            if ((change.uNewState & LVIS_SELECTED) && !(change.uOldState & LVIS_SELECTED) &&
                change.iItem != selected_) {
                selected_ = change.iItem;
                ShowSelected();
            }
        }
        if (header.code == NM_DBLCLK) SetFocus(Item(IDC_COLUMN_NAME));
        if (header.code == LVN_KEYDOWN) {
            const WORD key = reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey;
            if (key == VK_DELETE) Remove();
            if (key == VK_INSERT) Add();
            if (key == VK_F2) SetFocus(Item(IDC_COLUMN_NAME));
        }
        return FALSE;
    }

    const IdentifierRules& rules_;
    const std::vector<TypeChoice> types_;
    NewTable table_;
    HWND window_ = nullptr;
    int selected_ = -1;
    bool filling_ = false;
    HFONT previewFont_ = nullptr;
    LONG previewHeight_ = 0;
    std::exception_ptr failure_;
};

}  // namespace

std::optional<std::wstring> ShowCreateTableDialog(Session& session) {
    std::vector<TypeChoice> types;
    try {
        session.Read([&](Odbc::Connection& connection) { types = ReadTypes(connection); });
    } catch (const Odbc::Error& error) {
        Raise(ErrorFromOdbc(error, DatabaseError::StatementFailed));
    }
    return CreateTableDialog(session.Facts().Rules, std::move(types)).Show(GetActiveWindow());
}
