# Uses the component as a host does: Constructor, Display with a text, typing, closing; the text has to come back, twice.
param([Parameter(Mandatory)] [string] $Picture)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'
. "$PSScriptRoot\hand.ps1"

"process of $([IntPtr]::Size * 8) bits"
[object] $database = $null
$editor = New-Object -ComObject 'brvSQLEditor.clsSQLEditor'
$editor.Constructor([ref] $database)
foreach ($time in 1, 2) {
    $sql = 'select 1'
    [Hand]::Begin("-- typed $time ", $Picture, '')
    $editor.Display([ref] $sql)
    "came back: $sql"
    if ($sql -notmatch "-- typed $time " -or $sql -notmatch 'select 1') { throw 'what was typed did not come back' }
    if ([Hand]::IsShown()) { throw 'the window is still shown' }
}
$editor.Destructor()
[void] [Runtime.InteropServices.Marshal]::ReleaseComObject($editor)
exit 0
