Attribute VB_Name = "SQLEditing"
' For a workbook: import this module (File > Import File in the editor of macros), put an ODBC connection string into a cell that has the
' name SQLConnection, and start EditActiveCellSQL on a cell with SQL. It works in 32-bit and in 64-bit spreadsheets.
' The tests run these lines in VBScript; the spreadsheet itself is not there.
Option Explicit

' Opens the SQL Editor on the active cell's SQL and writes back what the user made of it.
Public Sub EditActiveCellSQL()
    Dim Cell As Object
    Dim Editor As Object
    Dim SQL As String
    Dim Before As String
    On Error GoTo Failed
    If ActiveCell Is Nothing Then Exit Sub
    Set Cell = ActiveCell
    If IsError(Cell.Value) Then Exit Sub
    ' A cell breaks lines with LF, the editor with CR LF.
    Before = Replace(CStr(Cell.Value), vbCrLf, vbLf)
    SQL = Before

    Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
    Editor.Constructor OpenDatabase()
    Editor.Display SQL
    Editor.Destructor

    SQL = Replace(SQL, vbCrLf, vbLf)
    If SQL = Before Then Exit Sub
    If Len(SQL) > 32767 Then
        MsgBox "The statement is longer than a cell can hold (32,767 characters). It was not written back.", vbExclamation, "SQL Editor"
        Exit Sub
    End If
    ' The apostrophe keeps a statement that begins with a comment ("--") or "=" from being read as a formula.
    Cell.Value = "'" & SQL
    Exit Sub
Failed:
    MsgBox "The SQL Editor could not be used: " & Err.Description, vbExclamation, "SQL Editor"
End Sub

' The connection object of your add-in belongs here. This one comes with the editor's source code. Nothing: without a connection.
Private Function OpenDatabase() As Object
    Dim Connection As String
    Set OpenDatabase = Nothing
    Connection = ConnectionString()
    If Connection = "" Then Exit Function
    Set OpenDatabase = CreateObject("brvADO.Database")
    OpenDatabase.Open Connection
End Function

' What is in the cell named SQLConnection; nothing when there is no such name.
Private Function ConnectionString() As String
    On Error Resume Next
    ConnectionString = ""
    ConnectionString = CStr(ThisWorkbook.Names("SQLConnection").RefersToRange.Value)
End Function
