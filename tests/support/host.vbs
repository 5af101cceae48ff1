' A host with two schemas, which shows the window on one SQL after the other. Arguments: how the database describes itself, what it calls its
' schemas, the name of its user, its schemas and its tables (separated by commas), and the SQLs, with "|" for a line end. Without: as below.
' A "#" in the description stands for the code of the type that the component asks about.
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
        Set Schemas = (New List).Of(Split(Argument(3, "SALES,SCOTT"), ","))
    End Function
    Public Function Objects(ObjectType, SchemaName, ObjectName, IncludeSystem)
        Set Objects = (New List).Of(Split(Argument(4, "ORDERS,LINES"), ","))
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
        UserName = Argument(2, "SCOTT")
    End Property
    Public Property Get DBType
        DBType = 4
    End Property
    Public Property Get SchemaTerm
        SchemaTerm = Argument(1, "")
    End Property
    Public Property Get Dictionary
        Set Dictionary = New Dictionary
    End Property
    Public Function DBTypeName(TypeCode)
        DBTypeName = Replace(Argument(0, "A database"), "#", TypeCode)
    End Function
    Public Function FormatName(Name)
        FormatName = Name
    End Function
End Class

Function Argument(Position, Otherwise)
    Argument = Otherwise
    If Position < WScript.Arguments.Count Then Argument = WScript.Arguments(Position)
End Function

Dim Editor, Position, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor New Database
Position = 5
Do
    SQL = Replace(Argument(Position, "one two"), "|", vbCrLf)
    Editor.Display SQL
    WScript.Echo "[" & SQL & "]"
    Position = Position + 1
Loop While Position < WScript.Arguments.Count
Editor.Destructor
