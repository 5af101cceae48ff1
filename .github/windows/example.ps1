# Runs the PowerShell example that was installed: the text has to come back with what was typed.
param([Parameter(Mandatory)] [string] $Picture)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'
. "$PSScriptRoot\hand.ps1"

[Hand]::Begin('-- typed ', $Picture, '')
# The 64-bit folder for programs, from PowerShell of either width.
$sql = & "$env:ProgramW6432\brvSQLEditor\examples\powershell\Edit-Sql.ps1" -Sql 'select 1'
"came back: $sql"
if ("$sql" -notmatch '-- typed ' -or "$sql" -notmatch 'select 1') { throw 'what was typed did not come back' }
exit 0
