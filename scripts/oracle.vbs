' For scripts/pictures: opens the editor on the SQL of the first argument, as over an Oracle database. There is none: the names are made up here.
Option Explicit

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
        Set Schemas = (New List).Of(Array("HR", "SALES"))
    End Function
    Public Function Objects(ObjectType, SchemaName, ObjectName, IncludeSystem)
        Set Objects = (New List).Of(Array("DEPARTMENTS", "EMPLOYEES", "JOBS", "LOCATIONS"))
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
        UserName = "HR"
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
        DBTypeName = "Oracle"
    End Function
    Public Function FormatName(Name)
        FormatName = Name
    End Function
End Class

Dim Editor, SQL
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
Editor.Constructor New Database
SQL = Replace(WScript.Arguments(0), "|", vbCrLf)
Editor.Display SQL
