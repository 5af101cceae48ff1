' A host with two schemas, for the window that the mouse works.
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
        Set Schemas = (New List).Of(Array("SALES", "SCOTT"))
    End Function
    Public Function Objects(ObjectType, SchemaName, ObjectName, IncludeSystem)
        Set Objects = (New List).Of(Array("ORDERS", "LINES"))
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
        SchemaTerm = ""
    End Property
    Public Property Get Dictionary
        Set Dictionary = New Dictionary
    End Property
    Public Function DBTypeName(TypeCode)
        DBTypeName = "A database"
    End Function
End Class

Dim Editor, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor New Database
SQL = "one two"
Editor.Display SQL
WScript.Echo "[" & SQL & "]"
Editor.Destructor
