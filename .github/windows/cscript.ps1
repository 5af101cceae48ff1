# Uses the component from the script engine of each width: its window is worked from here.
param([Parameter(Mandatory)] [string] $Picture)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'
. "$PSScriptRoot\hand.ps1"

# In PowerShell of either width: the folder is that of the width, System32 for a program of the same one.
$engine = Start-Process "$env:windir\System32\cscript.exe" "//nologo `"$PSScriptRoot\client.vbs`"" -PassThru -NoNewWindow
$engine.Handle | Out-Null  # without it the exit code is not kept
[Hand]::Begin('-- typed ', $Picture, '')
if (-not $engine.WaitForExit(120000)) {
    $engine.Kill()
    throw 'cscript: no end'
}
if ($engine.ExitCode -ne 7) { throw "cscript: exit code $($engine.ExitCode), not 7" }
exit 0
