# The folder "try" of the portable zip: what is to be double-clicked opens the window, and no class is registered by it.
param([Parameter(Mandatory)] [string] $Shipped, [Parameter(Mandatory)] [string] $Pictures)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'
. "$PSScriptRoot\hand.ps1"

New-Item -ItemType Directory -Force $Pictures | Out-Null
$folder = Join-Path $env:RUNNER_TEMP 'try it'
Expand-Archive (Get-Item "$Shipped\*-portable.zip") $folder
$there = (Get-Item "$folder\*\try").FullName
$env:BRV_NO_PAUSE = 1
$shown = Start-Process "$env:windir\System32\cmd.exe" '/c "Try the SQL Editor.cmd"' -WorkingDirectory $there -PassThru -NoNewWindow `
    -RedirectStandardOutput "$folder\printed.txt"
$shown.Handle | Out-Null  # without it the exit code is not kept
[Hand]::Begin('-- typed ', (Join-Path (Resolve-Path $Pictures) 'try.png'), '')
if (-not $shown.WaitForExit(120000)) {
    $shown.Kill()
    throw 'the demonstration host: no end'
}
$printed = Get-Content -Raw -Encoding UTF8 "$folder\printed.txt"
$printed
if ($shown.ExitCode) { throw "the demonstration host: exit code $($shown.ExitCode)" }
if ($printed -notmatch '-- typed ' -or $printed -notmatch 'this SQL was not run') { throw 'the SQL did not come back' }
foreach ($root in 'HKLM\Software\Classes', 'HKCU\Software\Classes') {
    foreach ($name in 'brvSQLEditor', 'brvADO', 'brvError') {
        # Its errors go to the console: a redirected one would end this script in Windows PowerShell.
        $found = @(reg.exe query $root /s /f $name | Where-Object { $_ -match $name })
        if ($found) { throw "registered: $found" }
    }
}
# What the window keeps. The next steps look for traces.
Remove-Item 'HKCU:\Software\VB and VBA Program Settings\brvSQLEditor' -Recurse
exit 0
