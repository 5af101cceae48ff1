' What the modules of Basic use of the spreadsheet and of Visual Basic: a workbook with a connection, the active cell, and a collection.
Class TestCell
    Public Value
    Public HasFormula
    Public Locked
    Public ProtectContents
    Public Property Get Worksheet()
        Set Worksheet = Me
    End Property
End Class
Class TestRange
    Public RefersToRange
End Class
Class TestWorkbook
    Public Connection
    Public Default Function Names(Name)
        Set Names = New TestRange
        Set Names.RefersToRange = New TestCell
        If Name = "SQLConnection" Then Names.RefersToRange.Value = Connection
    End Function
End Class
Class Collection
    Private Items
    Private Sub Class_Initialize()
        Set Items = CreateObject("Scripting.Dictionary")
    End Sub
    Public Sub Add(Value)
        Items.Add CLng(Items.Count + 1), Value
    End Sub
    Public Property Get Count()
        Count = Items.Count
    End Property
    Public Property Get Item(Position)
        If IsObject(Items.Item(CLng(Position))) Then Set Item = Items.Item(CLng(Position)) Else Item = Items.Item(CLng(Position))
    End Property
End Class
Dim ActiveCell, ThisWorkbook
Set ThisWorkbook = New TestWorkbook
Set ActiveCell = New TestCell
Set Database = Nothing ' as Visual Basic begins with
OpenedWith = ""

Function IsError(Value)
    IsError = (VarType(Value) = 10)
End Function
Function MsgBox(Text, Buttons, Title)
    WScript.Echo Title & ": " & Text
    MsgBox = vbRetry
End Function
