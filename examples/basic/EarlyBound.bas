Attribute VB_Name = "EarlyBound"
' The same window early-bound, for Visual Basic and for workbooks that stay on one computer: Tools > References, "brvSQLEditor 1.0:
' the SQL Editor window for database add-ins". Where the reference is missing no macro of the project runs: in what you hand out take
' SQLEditing.bas.
' The tests run these lines in VBScript, which has no types: the declarations are compared with the type library.
Option Explicit

' Edited: what the user made of SQL. Database: your connection object, AdoDatabase or Nothing.
Public Function EditedSQL(ByVal SQL As String, ByVal Database As Object) As String
    Dim Editor As brvSQLEditor.clsSQLEditor
    Dim Text As String ' both arguments are by reference: a variable of another type is "ByRef argument type mismatch"
    Dim Connection As Object
    Dim Number As Long
    Dim Source As String
    Dim Description As String
    Text = SQL
    Set Connection = Database
    On Error GoTo Failed
    Set Editor = New brvSQLEditor.clsSQLEditor
    Editor.Constructor Connection
    Editor.Display Text
    Editor.Destructor
    EditedSQL = Text
    Exit Function
Failed:
    Number = Err.Number
    Source = Err.Source
    Description = Err.Description
    On Error Resume Next
    If Not Editor Is Nothing Then Editor.Destructor
    On Error GoTo 0
    Err.Raise Number, Source, Description
End Function
