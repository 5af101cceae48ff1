<#
.SYNOPSIS
Opens the SQL Editor and returns the SQL that comes back.
.EXAMPLE
.\Edit-Sql.ps1 -Connection 'Driver=SQLite3;Database=C:\data\shop.db' -Sql 'SELECT 1'
.NOTES
Not run by the project's tests: there is no PowerShell where they run. Windows PowerShell and PowerShell 7 need a single-threaded
apartment, which is their default ("-STA" where it is not).
#>
param(
    [string] $Connection = '',
    [string] $Sql = 'SELECT 1'
)
$ErrorActionPreference = 'Stop'

[object] $database = $null
if ($Connection) {
    # An add-in has a connection object of its own; this one comes with the editor's source code.
    $database = New-Object -ComObject 'brvADO.Database'
    $database.Open($Connection)
}
$editor = New-Object -ComObject 'brvSQLEditor.clsSQLEditor'
try {
    $editor.Constructor([ref] $database)
    $editor.Display([ref] $Sql)
    $editor.Destructor()
} finally {
    [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($editor)
}
$Sql
