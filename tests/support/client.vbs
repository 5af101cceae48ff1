' A client that knows the component by its name alone.
Dim Editor, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor Nothing
SQL = "select 1"
Editor.Display SQL
WScript.Echo SQL
Editor.Destructor
