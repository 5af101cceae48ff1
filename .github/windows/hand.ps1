# The user of the window: a thread of the client's own process that works it by messages while Display waits. For Windows PowerShell 5.1.
Add-Type -ReferencedAssemblies System.Drawing -TypeDefinition @'
using System;
using System.Drawing;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

public static class Hand {
    delegate bool Visit(IntPtr window, IntPtr data);
    [DllImport("user32.dll", CharSet = CharSet.Unicode)] static extern IntPtr FindWindowW(string name, string caption);
    [DllImport("user32.dll")] static extern bool EnumWindows(Visit visit, IntPtr data);
    [DllImport("user32.dll")] static extern bool EnumChildWindows(IntPtr parent, Visit visit, IntPtr data);
    [DllImport("user32.dll", CharSet = CharSet.Unicode)] static extern int GetClassNameW(IntPtr window, StringBuilder name, int size);
    [DllImport("user32.dll", CharSet = CharSet.Unicode)] static extern int GetWindowTextW(IntPtr window, StringBuilder text, int size);
    [DllImport("user32.dll")] static extern bool IsWindowVisible(IntPtr window);
    [DllImport("user32.dll")] static extern bool PostMessageW(IntPtr window, uint message, IntPtr wide, IntPtr last);
    [DllImport("user32.dll")] static extern IntPtr GetMenu(IntPtr window);
    [DllImport("user32.dll")] static extern IntPtr GetSubMenu(IntPtr menu, int position);
    [DllImport("user32.dll")] static extern int GetMenuItemCount(IntPtr menu);
    [DllImport("user32.dll")] static extern uint GetMenuItemID(IntPtr menu, int position);
    [DllImport("user32.dll", CharSet = CharSet.Unicode)] static extern int GetMenuStringW(IntPtr menu, uint item, StringBuilder text, int size, uint flags);

    const string FormClass = "brvSQLEditorForm";
    const uint WM_CLOSE = 0x10, WM_CHAR = 0x102, WM_COMMAND = 0x111, MF_BYPOSITION = 0x400;

    static IntPtr Form() {
        IntPtr form = FindWindowW(FormClass, null);
        return form != IntPtr.Zero && IsWindowVisible(form) ? form : IntPtr.Zero;
    }
    public static bool IsShown() { return Form() != IntPtr.Zero; }

    static string ClassOf(IntPtr window) {
        StringBuilder text = new StringBuilder(200);
        GetClassNameW(window, text, text.Capacity);
        return text.ToString();
    }
    static IntPtr Editor() {
        IntPtr found = IntPtr.Zero;
        EnumChildWindows(Form(), delegate(IntPtr window, IntPtr data) {
            if (ClassOf(window).StartsWith("RICHEDIT", StringComparison.OrdinalIgnoreCase)) found = window;
            return found == IntPtr.Zero;
        }, IntPtr.Zero);
        return found;
    }
    static IntPtr Dialog(string caption) {
        IntPtr found = IntPtr.Zero;
        EnumWindows(delegate(IntPtr window, IntPtr data) {
            StringBuilder text = new StringBuilder(200);
            GetWindowTextW(window, text, text.Capacity);
            if (IsWindowVisible(window) && ClassOf(window) == "#32770" && text.ToString().StartsWith(caption)) found = window;
            return found == IntPtr.Zero;
        }, IntPtr.Zero);
        return found;
    }
    static uint Command(string caption) {
        IntPtr bar = GetMenu(Form());
        for (int menu = 0; menu < GetMenuItemCount(bar); ++menu) {
            IntPtr items = GetSubMenu(bar, menu);
            for (int item = 0; item < GetMenuItemCount(items); ++item) {
                StringBuilder text = new StringBuilder(200);
                GetMenuStringW(items, (uint)item, text, text.Capacity, MF_BYPOSITION);
                if (text.ToString().Replace("&", "").Split('\t')[0] == caption) return GetMenuItemID(items, item);
            }
        }
        throw new Exception("there is no menu entry " + caption);
    }
    static void Until(string what, int seconds, Func<bool> holds) {
        for (int tenth = 0; tenth < seconds * 10; ++tenth) {
            if (holds()) return;
            Thread.Sleep(100);
        }
        throw new Exception("waited in vain: " + what);
    }
    static void TakePicture(string file) {
        using (Bitmap picture = new Bitmap(1024, 768))
        using (Graphics graphics = Graphics.FromImage(picture)) {
            graphics.CopyFromScreen(0, 0, 0, 0, picture.Size);
            picture.Save(file);
        }
    }

    // Types the text, prints when a file to wait for is given, and closes the window. Ends the process when that is not possible, since
    // Display would never return.
    public static void Begin(string typed, string picture, string printed) {
        Thread thread = new Thread(delegate() {
            try {
                Until("the window", 60, delegate { return IsShown() && Editor() != IntPtr.Zero; });
                foreach (char letter in typed) PostMessageW(Editor(), WM_CHAR, (IntPtr)letter, (IntPtr)1);
                Thread.Sleep(1000);
                TakePicture(picture);
                if (printed != "") {
                    PostMessageW(Form(), WM_COMMAND, (IntPtr)Command("Print..."), IntPtr.Zero);
                    Until("the print dialog", 60, delegate { return Dialog("Print") != IntPtr.Zero; });
                    Thread.Sleep(1000);
                    TakePicture(picture.Replace(".png", "-dialog.png"));
                    PostMessageW(Dialog("Print"), WM_COMMAND, (IntPtr)1, IntPtr.Zero);
                    Until("the printed file", 120, delegate {
                        return System.IO.File.Exists(printed) && new System.IO.FileInfo(printed).Length > 0;
                    });
                    Until("the end of the printing", 60, delegate { return Dialog("Print") == IntPtr.Zero; });
                }
                PostMessageW(Form(), WM_CLOSE, IntPtr.Zero, IntPtr.Zero);
                Until("the closing", 30, delegate { return !IsShown(); });
            } catch (Exception error) {
                Console.WriteLine(error.Message);
                TakePicture(picture.Replace(".png", "-failed.png"));
                Environment.Exit(3);
            }
        });
        thread.IsBackground = true;
        thread.Start();
    }
}
'@
