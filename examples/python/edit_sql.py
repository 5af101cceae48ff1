"""Opens the SQL Editor over a database and prints the SQL that comes back.

    python edit_sql.py ["ODBC connection string" ["SQL"]]

Needs pywin32 (pip install pywin32). The component's width is that of the Python that runs it.
The project's tests compile it only: there is no Python for Windows where they run.
"""
import sys

import pythoncom
import win32com.client


def edit_sql(sql, database=None):
    """Shows the window on the text and returns what the user made of it. database: your connection object or None."""
    editor = win32com.client.dynamic.Dispatch("brvSQLEditor.clsSQLEditor")
    editor.Constructor(database)
    # By reference, or nothing could come back.
    text = win32com.client.VARIANT(pythoncom.VT_BYREF | pythoncom.VT_BSTR, sql)
    editor.Display(text)
    editor.Destructor()
    return text.value


def main():
    database = None
    if len(sys.argv) > 1:
        # An add-in has a connection object of its own; this one comes with the editor's source code.
        database = win32com.client.dynamic.Dispatch("brvADO.Database")
        database.Open(sys.argv[1])
    print(edit_sql(sys.argv[2] if len(sys.argv) > 2 else "SELECT 1", database))


if __name__ == "__main__":
    main()
