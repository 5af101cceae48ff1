"""Runs the example in Python (the first argument) with stand-ins for pywin32, and prints what went wrong. pywin32 hands the text back in
the variant that was passed, or as the result where it knows the type library: the example has to take either."""
import importlib.util
import sys
import types


class ComError(Exception):
    def __init__(self, hresult):
        super().__init__(hresult)
        self.hresult = hresult


class Variant:
    def __init__(self, kind, value):
        self.kind, self.value = kind, value


class Editor:
    as_result = fails = False

    def __init__(self):
        self.calls = []

    def Constructor(self, database):
        self.calls.append("Constructor")
        self.database = database.value

    def Display(self, text):
        self.calls.append("Display")
        if Editor.fails:
            raise ComError(-2147352567)
        if self.database:
            names = self.database.Dictionary.Objects(1, None, "", False)
            columns = self.database.Dictionary.Columns(None, names[0])
            check("dictionary", (names, [list(column) for column in columns]), (["product"], [[["COLUMN_NAME", "sku", 0]]]))
            check("name", self.database.FormatName('a"b'), '"a""b"')
        if Editor.as_result:
            return "edited"
        text.value = "edited"

    def Destructor(self):
        self.calls.append("Destructor")


class Rows:
    def __init__(self, field, values):
        self.field, self.values, self.closed = field, list(values), False

    EOF = property(lambda self: not self.values)

    def MoveNext(self):
        self.values.pop(0)

    def Fields(self, name):
        assert name == self.field
        return types.SimpleNamespace(Value=self.values[0])

    def Close(self):
        self.closed = True


class Ado:
    open = 0

    def Open(self, connection):
        Ado.open += 1

    def Close(self):
        Ado.open -= 1

    def OpenSchema(self, kind, restrictions):
        return Rows("TABLE_NAME", ["product"]) if kind == 20 else Rows("COLUMN_NAME", ["sku"])


failures = []
made = []
registered = True


def check(what, found, expected):
    if found != expected:
        failures.append("%s: expected %r, found %r" % (what, expected, found))


def dispatch(name):
    if name == "ADODB.Connection":
        return Ado()
    if not registered:
        raise ComError(-2147221005)
    made.append(Editor())
    return made[-1]


pythoncom = types.ModuleType("pythoncom")
pythoncom.VT_DISPATCH, pythoncom.VT_BYREF, pythoncom.VT_BSTR, pythoncom.com_error = 9, 0x4000, 8, ComError
win32com, client, server, util = (types.ModuleType(name) for name in ("win32com", "win32com.client", "win32com.server", "win32com.server.util"))
win32com.client, win32com.server, server.util = client, server, util
client.dynamic = types.SimpleNamespace(Dispatch=dispatch)
client.VARIANT = Variant
util.wrap = lambda thing: thing
util.Collection = list
sys.modules.update({"pythoncom": pythoncom, "win32com": win32com, "win32com.client": client, "win32com.server": server, "win32com.server.util": util})

loaded = importlib.util.spec_from_file_location("example", sys.argv[1])
example = importlib.util.module_from_spec(loaded)
sys.dont_write_bytecode = True
loaded.loader.exec_module(example)

for Editor.as_result in (False, True):
    check("text", example.edit_sql("before"), "edited")
    check("calls", made[-1].calls, ["Constructor", "Display", "Destructor"])
database = example.AdoDatabase("DSN=test")
check("text over a database", example.edit_sql("before", database), "edited")
Editor.fails = True
try:
    example.edit_sql("before")
    failures.append("a failure was swallowed")
except ComError:
    check("calls of a failure", made[-1].calls, ["Constructor", "Display", "Destructor"])
database.close()

sys.argv[1:] = ["DSN=test"]
registered = False
try:
    example.main()
    failures.append("no exit code where nothing is registered")
except SystemExit as end:
    check("message", "is not registered" in str(end), True)
check("connections left open", Ado.open, 0)
print("\n".join(failures) or "as expected")
sys.exit(bool(failures))
