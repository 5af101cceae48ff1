' Opens the SQL Editor and prints the SQL that comes back.
'   cscript //nologo edit_sql.vbs ["ODBC connection string" ["SQL"]]
' A 32-bit engine (C:\Windows\SysWOW64\cscript.exe) uses the 32-bit component, a 64-bit one the 64-bit component.
Option Explicit

Dim Database, Editor, SQL
Set Database = Nothing
If WScript.Arguments.Count > 0 Then
    ' An add-in has a connection object of its own; this one comes with the editor's source code.
    Set Database = CreateObject("brvADO.Database")
    Database.Open WScript.Arguments(0)
End If
SQL = "SELECT 1"
If WScript.Arguments.Count > 1 Then SQL = WScript.Arguments(1)

Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor Database
Editor.Display SQL ' returns when the user has closed the window; the variable has the new text
Editor.Destructor

WScript.Echo SQL
