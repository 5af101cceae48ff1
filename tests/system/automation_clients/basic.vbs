' A host in VBScript: its database and dictionary are classes of its own.
Option Explicit

' A collection: Count and Item, from 0. An array is none.
Class List
    Private Items
    Public Function Of(Values)
        Items = Values
        Set Of = Me
    End Function
    Public Property Get Count
        Count = UBound(Items) + 1
    End Property
    Public Property Get Item(Position)
        Item = Items(Position)
    End Property
End Class

Class Dictionary
    Public Function Schemas(SchemaName, IncludeSystem)
        Set Schemas = (New List).Of(Array("SCOTT", "SALES"))
    End Function
End Class

Class Database
    Public Property Get Connected
        Connected = True
    End Property
    Public Property Get CurrentCatalog
        CurrentCatalog = ""
    End Property
    Public Property Get UserName
        UserName = "SCOTT"
    End Property
    Public Property Get DBType
        DBType = 4
    End Property
    Public Property Get SchemaTerm
        SchemaTerm = "User"
    End Property
    Public Property Get Dictionary
        Set Dictionary = New Dictionary
    End Property
    Public Function DBTypeName(TypeCode)
        DBTypeName = "Oracle (" & TypeCode & ") of VBScript"
    End Function
End Class

Dim Editor, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor New Database
SQL = "select 1" & vbCrLf & "from dual"
Editor.Display SQL
WScript.Echo "[" & SQL & "]"
SQL = "second"
Editor.Display SQL
WScript.Echo "[" & SQL & "]"
Editor.Destructor
