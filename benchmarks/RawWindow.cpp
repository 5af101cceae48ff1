#include "RawWindow.h"

#include <commctrl.h>

#include <cstdio>
#include <map>

#include "forms/Surroundings.h"
#include "support/Component.h"

// ---- the plan

namespace {

constexpr const wchar_t* FrameClass = L"brvRawFrame";
constexpr const wchar_t* BoxClass = L"brvRawBox";  // for the editor's own plain child windows

bool IsClass(const std::wstring& name, const wchar_t* wanted) { return lstrcmpiW(name.c_str(), wanted) == 0; }
bool IsRichEdit(const std::wstring& name) { return IsClass(name, L"RICHEDIT50W") || IsClass(name, L"RichEdit20W"); }

std::wstring ClassOf(HWND window) {
    wchar_t name[100]{};
    GetClassNameW(window, name, 100);
    return name;
}

std::wstring CaptionOf(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::vector<WindowPlan::Entry> EntriesOf(HMENU menu) {
    std::vector<WindowPlan::Entry> entries;
    for (int at = 0; at < GetMenuItemCount(menu); ++at) {
        wchar_t text[200]{};
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_STRING | MIIM_ID | MIIM_FTYPE | MIIM_STATE | MIIM_SUBMENU;
        info.dwTypeData = text;
        info.cch = 200;
        GetMenuItemInfoW(menu, static_cast<UINT>(at), TRUE, &info);
        entries.push_back({text, info.wID, info.fType, info.fState, {}});
        if (info.hSubMenu != nullptr) entries.back().Below = EntriesOf(info.hSubMenu);
    }
    return entries;
}

void ReadList(HWND list, WindowPlan::Part& part) {
    const LRESULT count = SendMessageW(list, LB_GETCOUNT, 0, 0);
    for (LRESULT at = 0; at < count; ++at) {
        wchar_t text[500]{};
        SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(text));
        part.Rows.push_back({text, 0});
    }
    part.Selected = static_cast<int>(SendMessageW(list, LB_GETCURSEL, 0, 0));
}

void ReadTree(HWND tree, WindowPlan::Part& part) {
    const auto next = [&](UINT relation, LRESULT item) {
        return SendMessageW(tree, TVM_GETNEXTITEM, relation, static_cast<LPARAM>(item));
    };
    const LRESULT caret = next(TVGN_CARET, 0);
    int depth = 0;
    for (LRESULT item = next(TVGN_ROOT, 0); item != 0;) {
        wchar_t text[500]{};
        TVITEMW request{};
        request.mask = TVIF_TEXT | TVIF_HANDLE;
        request.hItem = reinterpret_cast<HTREEITEM>(item);
        request.pszText = text;
        request.cchTextMax = 500;
        SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&request));
        if (item == caret) part.Selected = static_cast<int>(part.Rows.size());
        part.Rows.push_back({text, depth});
        LRESULT following = next(TVGN_CHILD, item);
        if (following != 0) ++depth;
        while (following == 0 && item != 0) {
            following = next(TVGN_NEXT, item);
            if (following == 0) {
                item = next(TVGN_PARENT, item);
                --depth;
            }
        }
        item = following;
    }
}

void ReadToolbar(HWND bar, WindowPlan::Part& part) {
    const LRESULT count = SendMessageW(bar, TB_BUTTONCOUNT, 0, 0);
    for (LRESULT at = 0; at < count; ++at) {
        TBBUTTON button{};
        SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(&button));
        wchar_t text[200]{};
        SendMessageW(bar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(button.idCommand), reinterpret_cast<LPARAM>(text));
        part.Rows.push_back({text, button.idCommand});
    }
}

void ReadStatusBar(HWND bar, WindowPlan::Part& part) {
    int edges[32]{};
    const LRESULT count = SendMessageW(bar, SB_GETPARTS, 32, reinterpret_cast<LPARAM>(edges));
    for (LRESULT at = 0; at < count; ++at) {
        wchar_t text[500]{};
        SendMessageW(bar, SB_GETTEXTW, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(text));
        part.Rows.push_back({text, edges[at]});
    }
}

}  // namespace

WindowPlan WindowPlan::OfEditor() {
    WindowPlan plan;
    const HWND window = EditorWindow::Find();
    plan.Caption = EditorWindow::Caption();
    plan.Style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)) & ~DWORD{WS_VISIBLE};
    plan.ExStyle = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE));
    GetWindowRect(window, &plan.Place);
    plan.Menu = EntriesOf(GetMenu(window));
    std::map<HWND, int> known{{window, -1}};
    std::vector<HWND> children;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM parameter) WINAPI -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(parameter)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&children));
    for (const HWND child : children) {
        const HWND parent = GetParent(child);
        known[child] = static_cast<int>(plan.Parts.size());
        Part part;
        part.Parent = known[parent];
        part.Class = ClassOf(child);
        part.Style = static_cast<DWORD>(GetWindowLongPtrW(child, GWL_STYLE));
        part.ExStyle = static_cast<DWORD>(GetWindowLongPtrW(child, GWL_EXSTYLE));
        part.Id = GetDlgCtrlID(child);
        GetWindowRect(child, &part.Place);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&part.Place), 2);
        const auto font = reinterpret_cast<HFONT>(SendMessageW(child, WM_GETFONT, 0, 0));
        part.Font = font != nullptr && !IsRichEdit(part.Class);
        if (part.Font) GetObjectW(font, sizeof plan.Font, &plan.Font);
        // A bar that is not needed now is taken out of the style meanwhile.
        if (IsRichEdit(part.Class)) part.Style |= WS_HSCROLL | WS_VSCROLL;
        if (IsClass(part.Class, L"ListBox")) part.Style |= WS_VSCROLL;
        if (IsRichEdit(part.Class)) {
            plan.EditorFont.cbSize = sizeof plan.EditorFont;
            SendMessageW(child, EM_GETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&plan.EditorFont));
        } else {
            part.Text = CaptionOf(child);
        }
        if (IsClass(part.Class, L"ListBox")) ReadList(child, part);
        if (IsClass(part.Class, WC_TREEVIEWW)) ReadTree(child, part);
        if (IsClass(part.Class, TOOLBARCLASSNAMEW)) ReadToolbar(child, part);
        if (IsClass(part.Class, STATUSCLASSNAMEW)) ReadStatusBar(child, part);
        if (IsClass(part.Class, L"Button")) part.Pressed = (SendMessageW(child, BM_GETSTATE, 0, 0) & BST_PUSHED) != 0;
        plan.Parts.push_back(part);
    }
    return plan;
}

namespace {

// Writes and reads by the same description of a thing.
class Archive {
public:
    Archive(const std::wstring& path, bool reading)
        : reading_(reading), file_(_wfopen(path.c_str(), reading ? L"rb" : L"wb")) {}
    ~Archive() {
        if (file_ != nullptr) std::fclose(file_);
    }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    template <class T>
    void Plain(T& value) {
        Bytes(&value, sizeof value);
    }
    void Text(std::wstring& text) {
        size_t length = text.size();
        Plain(length);
        text.resize(length);
        Bytes(text.data(), length * sizeof(wchar_t));
    }
    template <class T, class Each>
    void List(std::vector<T>& list, Each&& each) {
        size_t count = list.size();
        Plain(count);
        list.resize(count);
        for (T& item : list) each(item);
    }

private:
    void Bytes(void* data, size_t size) {
        if (file_ == nullptr || size == 0) return;
        const size_t done = reading_ ? std::fread(data, 1, size, file_) : std::fwrite(data, 1, size, file_);
        EXPECT_EQ(size, done);
    }
    bool reading_;
    FILE* file_;
};

void Pass(Archive& archive, std::vector<WindowPlan::Entry>& entries) {
    archive.List(entries, [&](WindowPlan::Entry& entry) {
        archive.Text(entry.Text);
        archive.Plain(entry.Id);
        archive.Plain(entry.Type);
        archive.Plain(entry.State);
        Pass(archive, entry.Below);
    });
}

void Pass(Archive& archive, WindowPlan& plan) {
    archive.Text(plan.Caption);
    archive.Plain(plan.Style);
    archive.Plain(plan.ExStyle);
    archive.Plain(plan.Place);
    archive.Plain(plan.Font);
    archive.Plain(plan.EditorFont);
    Pass(archive, plan.Menu);
    archive.List(plan.Parts, [&](WindowPlan::Part& part) {
        archive.Plain(part.Parent);
        archive.Text(part.Class);
        archive.Text(part.Text);
        archive.Plain(part.Style);
        archive.Plain(part.ExStyle);
        archive.Plain(part.Id);
        archive.Plain(part.Place);
        archive.Plain(part.Font);
        archive.Plain(part.Pressed);
        archive.Plain(part.Selected);
        archive.List(part.Rows, [&](WindowPlan::Row& row) {
            archive.Text(row.Text);
            archive.Plain(row.Number);
        });
    });
}

}  // namespace

void WindowPlan::Write(const std::wstring& path) const {
    Archive archive(path, false);
    Pass(archive, const_cast<WindowPlan&>(*this));
}

WindowPlan WindowPlan::Read(const std::wstring& path) {
    Archive archive(path, true);
    WindowPlan plan;
    Pass(archive, plan);
    return plan;
}

// ---- the window

namespace {

// An icon of the component, copied out of its file, which must not stay loaded.
HICON IconOf(WORD resource, int size) {
    const HMODULE file = LoadLibraryExW(Component::Path().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const auto icon = static_cast<HICON>(LoadImageW(file, MAKEINTRESOURCEW(resource), IMAGE_ICON, size, size, 0));
    FreeLibrary(file);
    return icon;
}

void RegisterClasses() {
    static bool done = false;
    if (done) return;
    done = true;
    WNDCLASSEXW frame{};
    frame.cbSize = sizeof frame;
    frame.lpfnWndProc = DefWindowProcW;
    frame.hInstance = GetModuleHandleW(nullptr);
    frame.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    frame.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    frame.hIcon = IconOf(1, GetSystemMetrics(SM_CXICON));
    frame.lpszClassName = FrameClass;
    RegisterClassExW(&frame);
    frame.lpszClassName = BoxClass;
    RegisterClassExW(&frame);
}

HMENU MakeMenu(const std::vector<WindowPlan::Entry>& entries, HMENU menu) {
    for (const WindowPlan::Entry& entry : entries) {
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_ID | MIIM_FTYPE | MIIM_STATE;
        info.fType = entry.Type;
        info.fState = entry.State;
        info.wID = entry.Id;
        if (!entry.Text.empty()) {
            info.fMask |= MIIM_STRING;
            info.dwTypeData = const_cast<wchar_t*>(entry.Text.c_str());
        }
        if (!entry.Below.empty()) {
            info.fMask |= MIIM_SUBMENU;
            info.hSubMenu = MakeMenu(entry.Below, CreatePopupMenu());
        }
        InsertMenuItemW(menu, static_cast<UINT>(GetMenuItemCount(menu)), TRUE, &info);
    }
    return menu;
}

void FillList(HWND list, const WindowPlan::Part& part) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    for (const WindowPlan::Row& row : part.Rows)
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row.Text.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(part.Selected), 0);
}

void FillTree(HWND tree, const WindowPlan::Part& part) {
    SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
    std::vector<HTREEITEM> above{TVI_ROOT};
    int at = 0;
    for (const WindowPlan::Row& row : part.Rows) {
        above.resize(static_cast<size_t>(row.Number) + 1);
        TVINSERTSTRUCTW insert{};
        insert.hParent = above.back();
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT;
        insert.item.pszText = const_cast<wchar_t*>(row.Text.c_str());
        const LRESULT made = SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert));
        above.push_back(reinterpret_cast<HTREEITEM>(made));
        if (at++ == part.Selected) SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, made);
    }
    SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
}

HIMAGELIST FillToolbar(HWND bar, const WindowPlan::Part& part) {
    SendMessageW(bar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(bar, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DOUBLEBUFFER);
    const HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32, 1, 0);
    static const HICON icon = IconOf(2, 16);
    ImageList_ReplaceIcon(images, -1, icon);
    SendMessageW(bar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
    for (const WindowPlan::Row& row : part.Rows) {
        TBBUTTON button{};
        button.idCommand = row.Number;
        button.fsState = TBSTATE_ENABLED;
        button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
        button.iString = reinterpret_cast<INT_PTR>(row.Text.c_str());
        SendMessageW(bar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
    }
    SendMessageW(bar, TB_AUTOSIZE, 0, 0);
    return images;
}

void FillStatusBar(HWND bar, const WindowPlan::Part& part) {
    std::vector<int> edges;
    for (const WindowPlan::Row& row : part.Rows) edges.push_back(row.Number);
    SendMessageW(bar, SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    for (size_t at = 0; at < part.Rows.size(); ++at) {
        SendMessageW(bar, SB_SETTEXTW, at, reinterpret_cast<LPARAM>(part.Rows[at].Text.c_str()));
    }
}

}  // namespace

RawWindow::RawWindow(const WindowPlan& plan) : plan_(plan) {
    const Surroundings surroundings;
    RegisterClasses();
    font_ = CreateFontIndirectW(&plan.Font);
    const RECT& place = plan.Place;
    window_ = CreateWindowExW(plan.ExStyle, FrameClass, plan.Caption.c_str(), plan.Style, place.left, place.top,
                              place.right - place.left, place.bottom - place.top, nullptr,
                              MakeMenu(plan.Menu, CreateMenu()), GetModuleHandleW(nullptr), nullptr);
    std::vector<HWND> made;
    for (const WindowPlan::Part& part : plan.Parts) {
        const HWND parent = part.Parent < 0 ? window_ : made[static_cast<size_t>(part.Parent)];
        if (IsRichEdit(part.Class)) {
            editorPart_ = made.size();
            editor_ = MakeEditor(part, parent);
            made.push_back(editor_);
            continue;
        }
        const bool own = part.Class.rfind(L"brv", 0) == 0;
        const RECT& at = part.Place;
        const HWND child =
            CreateWindowExW(part.ExStyle, own ? BoxClass : part.Class.c_str(), part.Text.c_str(), part.Style, at.left,
                            at.top, at.right - at.left, at.bottom - at.top, parent,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(part.Id)), GetModuleHandleW(nullptr), nullptr);
        EXPECT_NE(nullptr, child);
        made.push_back(child);
        if (part.Font) SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
        if (IsClass(part.Class, L"ListBox")) FillList(child, part);
        if (IsClass(part.Class, WC_TREEVIEWW)) {
            if (tree_ == nullptr) tree_ = child;
            FillTree(child, part);
        }
        if (IsClass(part.Class, TOOLBARCLASSNAMEW)) images_ = FillToolbar(child, part);
        if (IsClass(part.Class, STATUSCLASSNAMEW)) FillStatusBar(child, part);
        if (part.Pressed) SendMessageW(child, BM_SETSTATE, TRUE, 0);
    }
}

RawWindow::~RawWindow() {
    DestroyWindow(window_);
    if (images_ != nullptr) ImageList_Destroy(images_);
    DeleteObject(font_);
}

// Its text has the editor's font, its lines are not wrapped, and it takes texts of any length.
HWND RawWindow::MakeEditor(const WindowPlan::Part& part, HWND parent) const {
    const RECT& at = part.Place;
    const HWND made = CreateWindowExW(
        part.ExStyle, part.Class.c_str(), L"", part.Style, at.left, at.top, at.right - at.left, at.bottom - at.top,
        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(part.Id)), GetModuleHandleW(nullptr), nullptr);
    EXPECT_NE(nullptr, made);
    SendMessageW(made, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    SendMessageW(made, EM_SETTARGETDEVICE, 0, 1);
    SendMessageW(made, EM_SETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&plan_.EditorFont));
    SendMessageW(made, EM_SETCHARFORMAT, SCF_ALL, reinterpret_cast<LPARAM>(&plan_.EditorFont));
    return made;
}

void RawWindow::RenewEditor() {
    const HWND parent = GetParent(editor_);
    DestroyWindow(editor_);
    editor_ = MakeEditor(plan_.Parts[editorPart_], parent);
}

void RawWindow::Show() const {
    SetWindowPos(window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
    SetFocus(editor_);
    PaintNow(window_);
}

void RawWindow::Hide() const { ShowWindow(window_, SW_HIDE); }

void PaintNow(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    GdiFlush();
}
