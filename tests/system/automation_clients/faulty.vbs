' A host whose database lacks members, and one that fails: the script goes on, the log of the error component tells.
Option Explicit

Class Half
    Public Property Get Connected
        Connected = True
    End Property
    Public Property Get CurrentCatalog
        CurrentCatalog = ""
    End Property
End Class

Class Failing
    Public Property Get Connected
        Err.Raise 1234, "the host", "no line"
    End Property
End Class

Dim Editor, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor New Half
Editor.Constructor New Failing
Editor.Constructor Nothing
SQL = Null
Editor.Display SQL
SQL = "select 1"
Editor.Display SQL
WScript.Echo "[" & SQL & "]"
Editor.Display SQL
WScript.Echo "[" & SQL & "]"
