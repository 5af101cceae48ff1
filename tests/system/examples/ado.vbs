' What the examples in Basic and VBScript use of ADO, which Wine does not have: a database with two tables, of which one has columns. It
' counts the connections that were opened and closed.
Dim TestOpened, TestClosed
TestOpened = 0
TestClosed = 0
Class TestAdo
    Public State
    Public Sub Open(Connection)
        If Connection <> "DSN=test" Then Err.Raise vbObjectError + 1, "ADO", "There is no such database."
        State = 1
        TestOpened = TestOpened + 1
    End Sub
    Public Sub Close()
        If State <> 1 Then Err.Raise 3704, "ADO", "The connection is closed."
        State = 0
        TestClosed = TestClosed + 1
    End Sub
    Public Function Properties(Name)
        If Name <> "DBMS Name" And Name <> "DBMS Version" Then Err.Raise 3265, "ADO", "There is no such property."
        Set Properties = (New TestField).Of("SQLite")
        If Name = "DBMS Version" Then Set Properties = (New TestField).Of("3")
    End Function
    Public Function OpenSchema(Kind, Restrictions)
        Select Case Kind
            Case 20
                If Restrictions(3) = "TABLE" Then
                    Set OpenSchema = (New TestRows).Of(Array("TABLE_NAME"), Array(Array("customer"), Array("product")))
                Else
                    Set OpenSchema = (New TestRows).Of(Array("TABLE_NAME"), Array())
                End If
            Case 4
                If Restrictions(2) <> "product" Then
                    Set OpenSchema = (New TestRows).Of(Array("COLUMN_NAME", "DATA_TYPE", "IS_NULLABLE"), Array())
                Else
                    Set OpenSchema = (New TestRows).Of(Array("COLUMN_NAME", "DATA_TYPE", "IS_NULLABLE"), _
                        Array(Array("sku", 129, False), Array("In ""Stock""", 3, True)))
                End If
            Case Else
                Err.Raise 3251, "ADO", "The provider cannot do that."
        End Select
    End Function
    Public Function Execute(SQL)
        Err.Raise vbObjectError + 2, "ADO", "no such function"
    End Function
End Class
Class TestField
    Public Value
    Public Function Of(Given)
        Value = Given
        Set Of = Me
    End Function
End Class
Class TestRows
    Private Names
    Private Rows
    Private At
    Private Closed
    Public Function Of(GivenNames, GivenRows)
        Names = GivenNames
        Rows = GivenRows
        Set Of = Me
    End Function
    Public Property Get EOF()
        EOF = At > UBound(Rows)
    End Property
    Public Sub MoveNext()
        At = At + 1
    End Sub
    Public Function Fields(Name)
        Dim Position, Row
        Row = Rows(At)
        For Position = 0 To UBound(Names)
            If Names(Position) = Name Then
                Set Fields = (New TestField).Of(Row(Position))
                Exit Function
            End If
        Next
        Err.Raise 3265, "ADO", "There is no field " & Name
    End Function
    Public Sub Close()
        Closed = True
    End Sub
End Class
