"""Opens the SQL Editor over a database and prints the SQL that comes back.

    python edit_sql.py ["OLE DB or ODBC connection string" ["SQL"]]

Needs pywin32 (pip install pywin32). The component's width is that of the Python that runs it.
The project's tests run it with stand-ins for pywin32: there is no Python for Windows where they run.
"""
import sys

import pythoncom
import win32com.client
import win32com.server.util

NOT_REGISTERED = (-2147221005, -2147221164)  # 0x800401F3 the name is unknown, 0x80040154 the class is


class AdoDatabase:
    """The connection object that the editor asks for, over ADO, which is part of Windows. It is its own dictionary."""

    _public_methods_ = ["DBTypeName", "FormatName", "Schemas", "Objects", "Columns", "DataTypeDesc"]
    _public_attrs_ = ["Connected", "CurrentCatalog", "UserName", "DBType", "SchemaTerm", "Dictionary"]

    def __init__(self, connection):
        self._ado = win32com.client.dynamic.Dispatch("ADODB.Connection")
        self._ado.Open(connection)
        self.Connected = True
        self.CurrentCatalog = ""
        self.UserName = ""
        self.DBType = 17  # what statements look like, here "LIMIT": see the table in docs/hosting.md
        self.SchemaTerm = ""

    @property
    def Dictionary(self):
        return win32com.server.util.wrap(self)

    def close(self):
        self._ado.Close()

    def DBTypeName(self, code):
        return self._ado.Properties("DBMS Name").Value

    def FormatName(self, name):
        # A name in quotes is right in every database: the dictionary gives it as it was created.
        return '"' + name.replace('"', '""') + '"'

    def Schemas(self, name, system):
        return collection(["default"])  # for databases without schemas too: None would be Null, which is no object

    def Objects(self, kind, schema, name, system):
        rows = self._ado.OpenSchema(20, [None, None, None, "VIEW" if kind == 2 else "TABLE"])
        return collection(self._read(rows, lambda field: field("TABLE_NAME")))

    def Columns(self, schema, table):
        # A column is a collection of properties, a property an array: name, value, attribute.
        rows = self._ado.OpenSchema(4, [None, None, table, None])
        return collection(self._read(rows, lambda field: collection([["COLUMN_NAME", field("COLUMN_NAME"), 0]])))

    def DataTypeDesc(self, kind, attribute):
        return "ADO type %d" % kind

    @staticmethod
    def _read(rows, make):
        found = []
        while not rows.EOF:
            found.append(make(lambda name: rows.Fields(name).Value))
            rows.MoveNext()
        rows.Close()
        return found


def collection(items):
    return win32com.server.util.wrap(win32com.server.util.Collection(items))


def edit_sql(sql, database=None):
    """Shows the window on the text and returns what the user made of it. database: your connection object or None."""
    editor = win32com.client.dynamic.Dispatch("brvSQLEditor.clsSQLEditor")
    try:
        editor.Constructor(win32com.client.VARIANT(pythoncom.VT_DISPATCH, database))
        # By reference, or nothing could come back. Where pywin32 knows the type library it hands the text back as the result instead.
        text = win32com.client.VARIANT(pythoncom.VT_BYREF | pythoncom.VT_BSTR, sql)
        result = editor.Display(text)
        return result if isinstance(result, str) else text.value
    finally:
        editor.Destructor()


def main():
    database = None
    try:
        if len(sys.argv) > 1:
            database = AdoDatabase(sys.argv[1])
        wrapped = win32com.server.util.wrap(database) if database else None
        print(edit_sql(sys.argv[2] if len(sys.argv) > 2 else "SELECT 1", wrapped))
    except pythoncom.com_error as error:
        if error.hresult in NOT_REGISTERED:
            sys.exit("brvSQLEditor (or ADO) is not registered for programs of the width of this Python.")
        sys.exit("The SQL Editor or the database failed: %s" % (error,))
    finally:
        if database:
            database.close()


if __name__ == "__main__":
    main()
