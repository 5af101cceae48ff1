Attribute VB_Name = "SQLEditing"
' For a workbook: import this module and AdoDatabase.cls (File > Import File in the editor of macros), put an OLE DB or ODBC connection
' string into a cell that has the name SQLConnection, and start EditActiveCellSQL on a cell with SQL. It works in 32-bit and in 64-bit
' spreadsheets, without a reference: where the SQL Editor is missing, the other macros of the workbook go on working.
' The tests run these lines in VBScript; the spreadsheet itself is not there.
Option Explicit

Private Database As AdoDatabase ' opened for the first cell, kept for the next ones
Private OpenedWith As String

' Opens the SQL Editor on the active cell's SQL and writes back what the user made of it.
Public Sub EditActiveCellSQL()
    Dim Cell As Object
    Dim Editor As Object
    Dim SQL As String
    Dim Before As String
    Dim Number As Long
    Dim Description As String
    If ActiveCell Is Nothing Then Exit Sub
    Set Cell = ActiveCell
    If Cell.HasFormula Then
        MsgBox "This cell has a formula. Writing a statement into it would delete the formula.", vbExclamation, "SQL Editor"
        Exit Sub
    End If
    If IsError(Cell.Value) Then Exit Sub
    If Cell.Worksheet.ProtectContents And Cell.Locked Then Exit Sub
    ' A cell breaks lines with LF, the editor with CR LF.
    Before = Replace(CStr(Cell.Value), vbCrLf, vbLf)
    SQL = Before

    On Error GoTo Failed
    Set Editor = CreateObject("brvSQLEditor.clsSQLEditor")
    Editor.Constructor OpenDatabase()
    Do
        Editor.Display SQL
        SQL = Replace(SQL, vbCrLf, vbLf)
        If Len(SQL) <= 32767 Then Exit Do
        ' Not lost: it comes up again.
        If MsgBox("A cell holds 32,767 characters. Shorten the statement, or save it to a file.", vbRetryCancel, "SQL Editor") = vbCancel Then
            SQL = Before
            Exit Do
        End If
    Loop
    Editor.Destructor

    If SQL = Before Then Exit Sub
    ' The apostrophe keeps a statement that begins with a comment ("--") or "=" from being read as a formula.
    Cell.Value = "'" & SQL
    Exit Sub
Failed:
    Number = Err.Number
    Description = Err.Description
    On Error Resume Next
    If Not Editor Is Nothing Then Editor.Destructor
    If Editor Is Nothing And Number = 429 Then Description = "It is not installed on this computer for programs of this width."
    MsgBox "The SQL Editor could not be used: " & Description, vbExclamation, "SQL Editor"
End Sub

' Call it when no more cells are to be edited; the spreadsheet does so when the workbook is closed.
Public Sub Auto_Close()
    If Not Database Is Nothing Then Database.CloseDatabase
    Set Database = Nothing
End Sub

' The connection object of your add-in belongs here. Nothing: without a connection.
Private Function OpenDatabase() As Object
    Dim Connection As String
    Set OpenDatabase = Nothing
    Connection = ConnectionString()
    If Connection <> OpenedWith Then Auto_Close
    If Connection = "" Then Exit Function
    If Database Is Nothing Then Set Database = New AdoDatabase
    If Not Database.Connected Then Database.OpenDatabase Connection
    OpenedWith = Connection
    Set OpenDatabase = Database
End Function

' What is in the cell named SQLConnection; nothing when there is no such name.
Private Function ConnectionString() As String
    On Error Resume Next
    ConnectionString = ""
    ConnectionString = CStr(ThisWorkbook.Names("SQLConnection").RefersToRange.Value)
End Function
