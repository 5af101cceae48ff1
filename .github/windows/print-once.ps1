# One use of the window that prints 200 lines to the default printer, whose file is in BRV_PRINTED_FILE.
param([Parameter(Mandatory)] [string] $Picture)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'
. "$PSScriptRoot\hand.ps1"

[object] $database = $null
$editor = New-Object -ComObject 'brvSQLEditor.clsSQLEditor'
$editor.Constructor([ref] $database)
$sql = (1..200 | ForEach-Object { "select $_" }) -join "`r`n"
[Hand]::Begin('', $Picture, $env:BRV_PRINTED_FILE)
$before = $sql
$editor.Display([ref] $sql)
if ($sql -cne $before) { throw 'printing changed the text' }
$editor.Destructor()
[void] [Runtime.InteropServices.Marshal]::ReleaseComObject($editor)
exit 0
