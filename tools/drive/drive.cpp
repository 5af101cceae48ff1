// drive: works the SQL Editor's window from another process, as a test tool would, by window messages only.

#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "MenuHook.h"
#include "Window.h"
#include "host/Utf8.h"

namespace {

using Arguments = std::vector<std::wstring>;

constexpr char Help[] =
    "drive [--time SECONDS] COMMAND ...    works the SQL Editor's window (time limit 10 s unless given)\n"
    "  wait [SECONDS]            waits for the window; prints its handle and rectangle: left top right bottom\n"
    "  gone [SECONDS]            waits until the window is no longer shown\n"
    "  caption | text            prints the caption, the editor's text\n"
    "  status [PART]             prints a part of the status bar (the first)\n"
    "  settext FILE              replaces the editor's text by the file's (UTF-8)\n"
    "  type TEXT                 types into the editor, character by character\n"
    "  button N                  prints the screen centre of toolbar button N: x y\n"
    "  press N                   presses toolbar button N\n"
    "  menu CAPTION CAPTION...   chooses from the menu bar, captions without ampersand and shortcut\n"
    "  tree [N]                  lists tree control N with its texts; +/- says expanded or not, * selected\n"
    "  node N TEXT | row N ROW | tab N | character POSITION\n"
    "                            prints where it is on the screen: x y (rows and positions from 1)\n"
    "  expand N                  expands the first node of tree control N that shows and is not expanded yet\n"
    "  selection                 prints the editor's selection: from to, characters as the control counts them\n"
    "  dialog TEXT [BUTTON [ID=VALUE...]]\n"
    "                            waits for a dialog or message box that contains TEXT, prints its texts, fills the\n"
    "                            controls with these ids (a check box by 0 or 1), and presses BUTTON\n"
    "  close                     asks the window to close\n"
    "  dump                      lists all its windows: class, id, rectangle, style, text\n"
    "Exit code: 0 done, 1 not found in time, 2 usage, 3 no answer, 4 menu entry disabled.\n";

void PrintBytes(HANDLE out, const std::string& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        DWORD written = 0;
        if (!WriteFile(out, bytes.data() + done, static_cast<DWORD>(bytes.size() - done), &written, nullptr) ||
            !written)
            return;
        done += written;
    }
}

void Print(const std::wstring& text) { PrintBytes(GetStdHandle(STD_OUTPUT_HANDLE), ToUtf8(text)); }
void PrintLine(const std::wstring& text) { Print(text + L"\n"); }

std::wstring OneLine(const std::wstring& text, size_t most = 200) {
    std::wstring line;
    for (size_t at = 0; at < text.size() && at < most; ++at) {
        if (text[at] == L'\r')
            line += L"\\r";
        else if (text[at] == L'\n')
            line += L"\\n";
        else
            line += text[at];
    }
    return text.size() > most ? line + L"..." : line;
}

std::wstring Numbers(const RECT& r) {
    return std::to_wstring(r.left) + L" " + std::to_wstring(r.top) + L" " + std::to_wstring(r.right) + L" " +
           std::to_wstring(r.bottom);
}

RECT RectOf(HWND window) {
    RECT rect = {};
    if (!GetWindowRect(window, &rect)) throw Failure(NotFound, "the window is gone");
    return rect;
}

// Argument `index` as a number from 1; 1 when it is missing.
size_t NumberAt(const Arguments& arguments, size_t index) {
    if (index >= arguments.size()) return 1;
    const long number = wcstol(arguments[index].c_str(), nullptr, 10);
    if (number < 1) throw Failure(Usage, "a number from 1 was expected");
    return static_cast<size_t>(number);
}

void SetTime(const Arguments& arguments, size_t index) {
    if (index < arguments.size()) Deadline::Set(wcstod(arguments[index].c_str(), nullptr));
}

HWND Editor(HWND window) { return DescendantOfClass(window, L"RICHEDIT", 1); }

// A point of the window's client area, as a point of the screen.
void PrintPlace(HWND window, POINT point) {
    ClientToScreen(window, &point);
    PrintLine(std::to_wstring(point.x) + L" " + std::to_wstring(point.y));
}

// ---- waiting

void Wait(const Arguments& arguments) {
    SetTime(arguments, 1);
    HWND window = WaitForEditor();
    Send(window, WM_NULL);  // shown and answering
    wchar_t handle[32];
    swprintf(handle, 32, L"0x%llx ", static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(window)));
    PrintLine(handle + Numbers(RectOf(window)));
}

void Gone(const Arguments& arguments) {
    SetTime(arguments, 1);
    while (FindEditor()) {
        if (!Deadline::Retry()) throw Failure(NotFound, "the window is still shown");
    }
}

// ---- texts

std::string FileContent(const std::wstring& name) {
    HANDLE file = CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw Failure(Usage, "the file cannot be opened: " + ToUtf8(name));
    std::string content;
    char buffer[64 * 1024];
    BOOL read = FALSE;
    for (DWORD got = 0; (read = ReadFile(file, buffer, sizeof buffer, &got, nullptr)) && got;)
        content.append(buffer, got);
    CloseHandle(file);
    if (!read) throw Failure(Usage, "the file cannot be read: " + ToUtf8(name));
    return content;
}

void SetText(const Arguments& arguments) {
    const std::wstring text = FromUtf8(FileContent(arguments.at(1)));
    HWND editor = Editor(WaitForEditor());
    // Not WM_SETTEXT, which takes some texts for rich text.
    Send(editor, EM_SETSEL, 0, -1);
    Send(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

void Type(const Arguments& arguments) {
    HWND editor = Editor(WaitForEditor());
    for (wchar_t c : arguments.at(1)) {
        if (c == L'\r') continue;
        // A line end is what the Return key gives on Windows; Wine's control ignores the character and looks at the
        // key.
        if (c == L'\n')
            Send(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L"\r\n"));
        else
            Send(editor, WM_CHAR, c, 1);
    }
}

void Status(const Arguments& arguments) {
    HWND bar = DescendantOfClass(WaitForEditor(), STATUSCLASSNAMEW, 1);
    const size_t part = NumberAt(arguments, 1) - 1;
    const size_t length = LOWORD(Send(bar, SB_GETTEXTLENGTHW, part));
    RemoteMemory text(bar, (length + 2) * sizeof(wchar_t));
    Send(bar, SB_GETTEXTW, part, text.Address());
    PrintLine(text.ReadText(length));
}

// ---- toolbar

HWND Toolbar() { return DescendantOfClass(WaitForEditor(), TOOLBARCLASSNAMEW, 1); }

void ButtonCentre(const Arguments& arguments) {
    HWND bar = Toolbar();
    RemoteMemory memory(bar, sizeof(RECT));
    if (!Send(bar, TB_GETITEMRECT, NumberAt(arguments, 1) - 1, memory.Address()))
        throw Failure(NotFound, "no such button");
    RECT rect;
    memory.Read(&rect, sizeof rect);
    PrintPlace(bar, {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2});
}

void PressButton(const Arguments& arguments) {
    HWND bar = Toolbar();
    RemoteMemory memory(bar, sizeof(TBBUTTON));
    if (!Send(bar, TB_GETBUTTON, NumberAt(arguments, 1) - 1, memory.Address()))
        throw Failure(NotFound, "no such button");
    TBBUTTON button;
    memory.Read(&button, sizeof button);
    Post(GetParent(bar), WM_COMMAND, MAKEWPARAM(button.idCommand, BN_CLICKED), reinterpret_cast<LPARAM>(bar));
}

// ---- menu bar

struct CloseHandleDeleter {
    void operator()(void* handle) const { CloseHandle(handle); }
};
struct UnmapDeleter {
    void operator()(MenuRequest* view) const { UnmapViewOfFile(view); }
};
struct UnhookDeleter {
    void operator()(HHOOK hook) const { UnhookWindowsHookEx(hook); }
};

// Asks the part of this program that runs in the window's process.
std::unique_ptr<MenuRequest> AskMenu(HWND window, const Arguments& path) {
    wchar_t name[64];
    MenuRequestName(name, GetCurrentProcessId());
    std::unique_ptr<void, CloseHandleDeleter> mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(MenuRequest), name));
    std::unique_ptr<MenuRequest, UnmapDeleter> request(
        mapping ? static_cast<MenuRequest*>(MapViewOfFile(mapping.get(), FILE_MAP_WRITE | FILE_MAP_READ, 0, 0, 0))
                : nullptr);
    if (!request) throw Failure(NoAnswer, "no shared memory");
    request->Window = reinterpret_cast<uintptr_t>(window);
    request->Depth = static_cast<uint32_t>(path.size());
    if (path.size() > std::size(request->Path)) throw Failure(Usage, "too many captions");
    for (size_t level = 0; level < path.size(); ++level) {
        wcsncpy(request->Path[level], path[level].c_str(), std::size(request->Path[level]) - 1);
    }

    wchar_t file[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, file, MAX_PATH);
    std::wstring library = file;
    library.resize(library.find_last_of(L"\\/") + 1);
    library += L"drive_menu.dll";
    HMODULE module = LoadLibraryW(library.c_str());
    FARPROC hook = module ? GetProcAddress(module, "MenuHook@12") : nullptr;
    if (module && !hook) hook = GetProcAddress(module, "MenuHook");
    if (!hook) throw Failure(NoAnswer, "drive_menu.dll is missing beside this program");
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    std::unique_ptr<std::remove_pointer_t<HHOOK>, UnhookDeleter> hooked(
        SetWindowsHookExW(WH_CALLWNDPROC, reinterpret_cast<HOOKPROC>(reinterpret_cast<void*>(hook)), module, thread));
    if (!hooked) throw Failure(NoAnswer, "the thread of the window takes no hook");
    Send(window, RegisterWindowMessageW(MenuMessage), GetCurrentProcessId(), 0);
    return std::make_unique<MenuRequest>(*request);
}

void ChooseMenu(const Arguments& arguments) {
    const Arguments path(arguments.begin() + 1, arguments.end());
    if (path.empty()) throw Failure(Usage, "captions were expected");
    HWND window = WaitForEditor();
    const auto answer = AskMenu(window, path);
    if (!answer->Found) throw Failure(NotFound, "no such menu entry");
    if (answer->State & MFS_DISABLED) throw Failure(Disabled, "the menu entry is disabled");
    Post(window, WM_COMMAND, MAKEWPARAM(answer->Id, 0), 0);
}

// ---- trees

// Reads nodes of a tree control, each with its state and text.
class Tree {
public:
    explicit Tree(HWND window) : Window(window), memory_(window, sizeof(TVITEMW) + Capacity * sizeof(wchar_t)) {}
    HWND const Window;
    TVITEMW Item{};
    std::wstring Text;

    LRESULT Next(WPARAM relation, LRESULT item = 0) const { return Send(Window, TVM_GETNEXTITEM, relation, item); }
    // Into Item and Text; throws Failure{NotFound} when the node has gone.
    void Read(LRESULT item) {
        Item = {};
        Item.mask = TVIF_TEXT | TVIF_STATE | TVIF_CHILDREN | TVIF_HANDLE;
        Item.hItem = reinterpret_cast<HTREEITEM>(item);
        Item.stateMask = TVIS_EXPANDED | TVIS_SELECTED;
        Item.pszText = reinterpret_cast<wchar_t*>(memory_.Address(sizeof(TVITEMW)));
        Item.cchTextMax = Capacity;
        memory_.Write(&Item, sizeof Item);
        if (!Send(Window, TVM_GETITEMW, 0, memory_.Address()))
            throw Failure(NotFound, "the tree changed while it was read");
        memory_.Read(&Item, sizeof Item);
        Text = memory_.ReadText(Capacity, sizeof(TVITEMW));
    }
    // False when the node does not show.
    bool Place(LRESULT item, RECT& rect) {
        memory_.Write(&item, sizeof(HTREEITEM));  // where the message looks for it
        if (!Send(Window, TVM_GETITEMRECT, TRUE, memory_.Address())) return false;
        memory_.Read(&rect, sizeof rect);
        return true;
    }

private:
    static constexpr size_t Capacity = 4096;
    RemoteMemory memory_;
};

Tree TreeAt(const Arguments& arguments) {
    return Tree(DescendantOfClass(WaitForEditor(), WC_TREEVIEWW, NumberAt(arguments, 1)));
}

void ListTree(const Arguments& arguments) {
    Tree tree = TreeAt(arguments);
    std::function<void(LRESULT, size_t)> print = [&](LRESULT item, size_t depth) {
        for (; item; item = tree.Next(TVGN_NEXT, item)) {
            tree.Read(item);
            const wchar_t sign = tree.Item.state & TVIS_EXPANDED ? L'-' : tree.Item.cChildren ? L'+' : L' ';
            PrintLine(std::wstring(depth * 2, L' ') + (tree.Item.state & TVIS_SELECTED ? L"*" : L"") + sign + L" " +
                      OneLine(tree.Text));
            print(tree.Next(TVGN_CHILD, item), depth + 1);
        }
    };
    print(tree.Next(TVGN_ROOT), 0);
}

// ---- places on the screen, for scripts that move the display's pointer

// The beginning of the text of the first node that shows, or would if the tree were higher, and has the text. Scrolls
// there.
void NodePlace(const Arguments& arguments) {
    Tree tree = TreeAt(arguments);
    for (LRESULT item = tree.Next(TVGN_ROOT); item; item = tree.Next(TVGN_NEXTVISIBLE, item)) {
        tree.Read(item);
        if (tree.Text != arguments.at(2)) continue;
        Send(tree.Window, TVM_ENSUREVISIBLE, 0, item);
        RECT rect;
        if (!tree.Place(item, rect)) break;
        PrintPlace(tree.Window, {rect.left + 4, (rect.top + rect.bottom) / 2});
        return;
    }
    throw Failure(NotFound, "no such node shows");
}

// Passes over nodes without children, which no message expands.
void ExpandNode(const Arguments& arguments) {
    const Tree tree = TreeAt(arguments);
    for (LRESULT item = tree.Next(TVGN_ROOT); item; item = tree.Next(TVGN_NEXTVISIBLE, item)) {
        const auto expanded = [&] {
            return (Send(tree.Window, TVM_GETITEMSTATE, static_cast<WPARAM>(item), TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
        };
        if (expanded()) continue;
        Send(tree.Window, TVM_EXPAND, TVE_EXPAND, item);
        if (expanded()) return;
    }
    throw Failure(NotFound, "there is no node to expand");
}

void TabPlace(const Arguments& arguments) {
    HWND button = DescendantOfClass(WaitForEditor(), L"BUTTON", NumberAt(arguments, 1));
    RECT rect;
    GetClientRect(button, &rect);
    PrintPlace(button, {rect.right / 2, rect.bottom / 2});
}

void RowPlace(const Arguments& arguments) {
    HWND list = DescendantOfClass(WaitForEditor(), L"LISTBOX", NumberAt(arguments, 1));
    // For messages below WM_USER the system carries across what their pointers point to.
    RECT rect;
    if (Send(list, LB_GETITEMRECT, NumberAt(arguments, 2) - 1, reinterpret_cast<LPARAM>(&rect)) == LB_ERR)
        throw Failure(NotFound, "no such row");
    PrintPlace(list, {rect.left + 8, (rect.top + rect.bottom) / 2});
}

void CharacterPlace(const Arguments& arguments) {
    HWND editor = Editor(WaitForEditor());
    RemoteMemory memory(editor, sizeof(POINTL));
    Send(editor, EM_POSFROMCHAR, static_cast<WPARAM>(memory.Address()),
         static_cast<LPARAM>(NumberAt(arguments, 1)) - 1);
    POINTL point;
    memory.Read(&point, sizeof point);
    PrintPlace(editor, {point.x + 1, point.y + 5});
}

void PrintSelection(const Arguments&) {
    HWND editor = Editor(WaitForEditor());
    RemoteMemory memory(editor, sizeof(CHARRANGE));
    Send(editor, EM_EXGETSEL, 0, memory.Address());
    CHARRANGE range;
    memory.Read(&range, sizeof range);
    PrintLine(std::to_wstring(range.cpMin) + L" " + std::to_wstring(range.cpMax));
}

// ---- dialogs

// All texts of a dialog, line by line.
std::wstring DialogText(HWND dialog) {
    std::wstring text = TextOf(dialog) + L"\n";
    for (HWND child : Descendants(dialog)) {
        const std::wstring own = TextOf(child);
        if (!own.empty() && IsWindowVisible(child)) text += own + L"\n";
    }
    return text;
}

BOOL CALLBACK CollectDialog(HWND window, LPARAM dialogs) {
    if (IsWindowVisible(window) && ClassOf(window) == L"#32770")
        reinterpret_cast<std::vector<HWND>*>(dialogs)->push_back(window);
    return TRUE;
}

// The visible dialog that contains `part`, null when there is none, and its texts.
HWND FindDialog(const std::wstring& part, std::wstring& text) {
    std::vector<HWND> dialogs;
    EnumWindows(CollectDialog, reinterpret_cast<LPARAM>(&dialogs));
    for (HWND dialog : dialogs) {
        try {
            text = DialogText(dialog);
        } catch (const Failure& failure) {
            if (failure.Code == NotFound) continue;  // it closed meanwhile
            throw;
        }
        if (text.find(part) != std::wstring::npos) return dialog;
    }
    return nullptr;
}

void Dialog(const Arguments& arguments) {
    std::wstring text;
    HWND dialog = FindDialog(arguments.at(1), text);
    while (!dialog) {
        if (!Deadline::Retry()) throw Failure(NotFound, "no dialog with this text");
        dialog = FindDialog(arguments.at(1), text);
    }
    Print(text);
    if (arguments.size() < 3) return;
    const std::vector<HWND> children = Descendants(dialog);
    for (size_t at = 3; at < arguments.size(); ++at) {
        const size_t equals = arguments[at].find(L'=');
        if (equals == std::wstring::npos) throw Failure(Usage, "ID=VALUE was expected");
        const int id = static_cast<int>(wcstol(arguments[at].c_str(), nullptr, 0));
        bool filled = false;
        for (HWND child : children) {
            if (GetDlgCtrlID(child) != id) continue;
            const wchar_t* const value = arguments[at].c_str() + equals + 1;
            if (_wcsicmp(ClassOf(child).c_str(), L"Button") == 0) {
                Send(child, BM_SETCHECK, static_cast<WPARAM>(wcstol(value, nullptr, 0)), 0);
            } else {
                Send(child, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(value));
            }
            filled = true;
            break;
        }
        if (!filled) throw Failure(NotFound, "the dialog has no control with the id " + std::to_string(id));
    }
    for (HWND child : children) {
        if (_wcsicmp(ClassOf(child).c_str(), L"Button") != 0 || !IsWindowVisible(child)) continue;
        if (WithoutAmpersands(TextOf(child)) != WithoutAmpersands(arguments[2])) continue;
        if (!IsWindowEnabled(child)) throw Failure(Disabled, "the button is disabled");
        // What the button itself would post; BM_CLICK needs the dialog to be the active window.
        Post(GetParent(child), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(child), BN_CLICKED),
             reinterpret_cast<LPARAM>(child));
        return;
    }
    throw Failure(NotFound, "the dialog has no such button");
}

// ---- everything

void DumpWindow(HWND window, size_t depth) {
    wchar_t style[64];
    swprintf(style, 64, L"%08lx/%08lx", static_cast<unsigned long>(GetWindowLongW(window, GWL_STYLE)),
             static_cast<unsigned long>(GetWindowLongW(window, GWL_EXSTYLE)));
    PrintLine(std::wstring(depth * 2, L' ') + ClassOf(window) +
              (depth ? L" #" + std::to_wstring(GetDlgCtrlID(window)) : L"") + L" [" + Numbers(RectOf(window)) + L"] " +
              style + (IsWindowVisible(window) ? L"" : L" hidden") + (IsWindowEnabled(window) ? L"" : L" disabled") +
              L" \"" + OneLine(TextOf(window)) + L"\"");
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        DumpWindow(child, depth + 1);
}

const std::map<std::wstring, void (*)(const Arguments&)> Commands = {
    {L"wait", Wait},
    {L"gone", Gone},
    {L"caption", [](const Arguments&) { PrintLine(TextOf(WaitForEditor())); }},
    {L"text", [](const Arguments&) { Print(TextOf(Editor(WaitForEditor()))); }},
    {L"status", Status},
    {L"settext", SetText},
    {L"type", Type},
    {L"button", ButtonCentre},
    {L"press", PressButton},
    {L"menu", ChooseMenu},
    {L"tree", ListTree},
    {L"node", NodePlace},
    {L"row", RowPlace},
    {L"expand", ExpandNode},
    {L"tab", TabPlace},
    {L"character", CharacterPlace},
    {L"selection", PrintSelection},
    {L"dialog", Dialog},
    {L"close", [](const Arguments&) { Post(WaitForEditor(), WM_CLOSE); }},
    {L"dump", [](const Arguments&) { DumpWindow(WaitForEditor(), 0); }},
};

}  // namespace

int wmain(int count, wchar_t** values) {
    Arguments arguments(values + 1, values + count);
    Deadline::Set(10);
    HANDLE err = GetStdHandle(STD_ERROR_HANDLE);
    try {
        if (arguments.size() > 1 && arguments[0] == L"--time") {
            SetTime(arguments, 1);
            arguments.erase(arguments.begin(), arguments.begin() + 2);
        }
        const auto command = arguments.empty() ? Commands.end() : Commands.find(arguments[0]);
        if (command == Commands.end()) {
            PrintBytes(err, Help);
            return Usage;
        }
        command->second(arguments);
        return Done;
    } catch (const Failure& failure) {
        PrintBytes(err, std::string("drive: ") + failure.what() + "\n");
        return failure.Code;
    } catch (const std::out_of_range&) {
        PrintBytes(err, Help);
        return Usage;
    } catch (const std::exception& exception) {
        PrintBytes(err, std::string("drive: ") + exception.what() + "\n");
        return NoAnswer;
    }
}
