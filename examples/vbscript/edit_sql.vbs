' Opens the SQL Editor and prints the SQL that comes back.
'   cscript //nologo edit_sql.vbs ["OLE DB or ODBC connection string" ["SQL"]]
' A 32-bit engine (C:\Windows\SysWOW64\cscript.exe) uses the 32-bit component, a 64-bit one the 64-bit component.
Option Explicit

Dim Database, Editor, SQL
SQL = "SELECT 1"
If WScript.Arguments.Count > 1 Then SQL = WScript.Arguments(1)
Set Database = Nothing
If WScript.Arguments.Count > 0 Then
    If WScript.Arguments(0) <> "" Then Set Database = OpenDatabase(WScript.Arguments(0))
End If

On Error Resume Next
Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
If Err.Number = 429 Then Fail "brvSQLEditor is not registered for programs of this width."
If Err.Number <> 0 Then Fail "brvSQLEditor cannot be made: " & Err.Description
Editor.Constructor Database
If Err.Number = 0 Then Editor.Display SQL ' returns when the user has closed the window; the variable has the new text
Dim Number, Description
Number = Err.Number
Description = Err.Description
Editor.Destructor
If Not Database Is Nothing Then Database.CloseDatabase
If Number <> 0 Then Fail "The SQL Editor failed: " & Description
WScript.Echo SQL

Sub Fail(Message)
    WScript.Echo Message
    WScript.Quit 1
End Sub

' ---- a connection object over ADO, which is part of Windows. That of ..\basic\AdoDatabase.cls knows more.

Function OpenDatabase(Connection)
    On Error Resume Next
    Set OpenDatabase = New AdoDatabase
    OpenDatabase.Begin Connection
    If Err.Number <> 0 Then Fail "The database cannot be opened: " & Err.Description
End Function

Class AdoDatabase
    Private Ado

    Public Sub Begin(Connection)
        Set Ado = CreateObject("ADODB.Connection")
        Ado.Open Connection
    End Sub
    Public Sub CloseDatabase()
        Ado.Close
    End Sub

    Public Property Get Connected()
        Connected = (Ado.State = 1)
    End Property
    Public Property Get CurrentCatalog()
        CurrentCatalog = ""
    End Property
    Public Property Get UserName()
        UserName = ""
    End Property
    Public Property Get DBType() ' what statements look like: here "LIMIT", see the table in docs\hosting.md
        DBType = 17
    End Property
    Public Property Get SchemaTerm()
        SchemaTerm = ""
    End Property
    Public Property Get Dictionary() ' its members are below
        Set Dictionary = Me
    End Property
    Public Function DBTypeName(DBType)
        DBTypeName = Ado.Properties("DBMS Name").Value
    End Function
    Public Function FormatName(Name)
        FormatName = """" & Replace(Name, """", """""") & """"
    End Function

    Public Function Schemas(Name, IncludeSystem)
        Set Schemas = Nothing
    End Function
    Public Function Objects(ObjectType, Schema, Name, IncludeSystem)
        Dim Kind
        Kind = "TABLE"
        If ObjectType = 2 Then Kind = "VIEW"
        Set Objects = New List
        Objects.AddRows Ado.OpenSchema(20, Array(Empty, Empty, Empty, Kind)), "TABLE_NAME"
    End Function
    Public Function Columns(Schema, Table) ' a column is a list of properties, a property an array: name, value, attribute
        Dim Rows, Column
        Set Columns = New List
        Set Rows = Ado.OpenSchema(4, Array(Empty, Empty, CStr(Table), Empty))
        Do Until Rows.EOF
            Set Column = New List
            Column.Add Array("COLUMN_NAME", Rows.Fields("COLUMN_NAME").Value, 0)
            Column.Add Array("DATA_TYPE", Rows.Fields("DATA_TYPE").Value, 0)
            Columns.Add Column
            Rows.MoveNext
        Loop
        Rows.Close
    End Function
    Public Function DataTypeDesc(DataType, Attribute)
        DataTypeDesc = "ADO type " & DataType
    End Function
End Class

' VBScript has no collection that others can read: Count and Item make one.
Class List
    Private Items
    Private Sub Class_Initialize()
        Set Items = CreateObject("Scripting.Dictionary")
    End Sub
    Public Sub Add(Value)
        Items.Add CLng(Items.Count + 1), Value
    End Sub
    Public Sub AddRows(Rows, Field)
        Do Until Rows.EOF
            Add Rows.Fields(Field).Value
            Rows.MoveNext
        Loop
        Rows.Close
    End Sub
    Public Property Get Count()
        Count = Items.Count
    End Property
    Public Property Get Item(Position)
        If IsObject(Items.Item(CLng(Position))) Then Set Item = Items.Item(CLng(Position)) Else Item = Items.Item(CLng(Position))
    End Property
End Class
