<#
.SYNOPSIS
Opens the SQL Editor and returns the SQL that comes back.
.EXAMPLE
.\Edit-Sql.ps1 -Connection 'DSN=sales;UID=anna;PWD=secret' -Sql 'SELECT 1'
.NOTES
Where scripts are not allowed to run ("execution policy"): powershell -ExecutionPolicy Bypass -File Edit-Sql.ps1, and Unblock-File for one
that was downloaded. It needs a single-threaded apartment, which is the default of Windows PowerShell and PowerShell 7 ("-STA" where it is
not); a connection needs Windows PowerShell, whose .NET makes classes for COM.
Not run by the project's tests: there is no PowerShell where they run.
#>
param(
    [string] $Connection = '',
    [string] $Sql = 'SELECT 1'
)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

[object] $database = $null
$editor = $null
try {
    if ($Connection) {
        if ($PSVersionTable.PSVersion.Major -gt 5) { throw 'With a connection this example needs Windows PowerShell (powershell.exe).' }
        Add-Type -Path "$PSScriptRoot\..\csharp\OdbcDatabase.cs" -ReferencedAssemblies 'System.Data', 'System.Xml'
        $database = New-Object OdbcDatabase $Connection
    }
    try {
        $editor = New-Object -ComObject 'brvSQLEditor.clsSQLEditor'
    } catch {
        throw "brvSQLEditor cannot be made: is it registered for programs of $(8 * [IntPtr]::Size) bits? $_"
    }
    $editor.Constructor([ref] $database)
    $editor.Display([ref] $Sql)
    $Sql
} finally {
    if ($editor) {
        try { $editor.Destructor() } finally { [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($editor) }
    }
    if ($database) { $database.Dispose() }
}
