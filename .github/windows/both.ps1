# Runs a script in the Windows PowerShell of each width, or of those given: -Widths System32 is the 64-bit one, SysWOW64 the 32-bit one.
param(
    [Parameter(Mandatory)] [string] $Script,
    [Parameter(Mandatory)] [string] $Pictures,
    [string[]] $Widths = @('System32', 'SysWOW64')
)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

New-Item -ItemType Directory -Force $Pictures | Out-Null
foreach ($width in $Widths) {
    "---- $width"
    $picture = Join-Path (Resolve-Path $Pictures) "$([IO.Path]::GetFileNameWithoutExtension($Script))-$width.png"
    & "$env:windir\$width\WindowsPowerShell\v1.0\powershell.exe" -NoProfile -STA -ExecutionPolicy Bypass -File "$PSScriptRoot\$Script" -Picture $picture
    if ($LASTEXITCODE) { throw "$width, ${Script}: exit code $LASTEXITCODE" }
}
exit 0
