' A client for cscript, whose exit code is 0 after an error too: 7 says that the text came back with what was typed.
Option Explicit
Dim Editor, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor Nothing
SQL = "select 1"
Editor.Display SQL
Editor.Destructor
WScript.Echo SQL
If InStr(SQL, "-- typed") > 0 And InStr(SQL, "select 1") > 0 Then WScript.Quit 7
WScript.Quit 1
