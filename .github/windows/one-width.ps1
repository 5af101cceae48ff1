# Unregisters the 32-bit component: 64-bit hosts must not notice. And the other way round. Both are registered in the end.
param([Parameter(Mandatory)] [string] $Pictures)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$folder = "$env:ProgramFiles\brvSQLEditor"
function Register([string] $Width, [string] $Option) {
    $dll = if ($Width -eq 'SysWOW64') { "$folder\x86\brvSQLEditor.dll" } else { "$folder\x64\brvSQLEditor.dll" }
    $done = Start-Process "$env:windir\$Width\regsvr32.exe" "/s $Option `"$dll`"" -Wait -PassThru
    if ($done.ExitCode) { throw "regsvr32 $Option of ${dll}: exit code $($done.ExitCode)" }
}
foreach ($pair in @(@('SysWOW64', 'System32'), @('System32', 'SysWOW64'))) {
    Register $pair[0] '/u'
    & "$PSScriptRoot\both.ps1" -Script use.ps1 -Pictures $Pictures -Widths $pair[1]
    if ($LASTEXITCODE) { throw "without $($pair[0]): exit code $LASTEXITCODE" }
    Register $pair[0] ''
    & "$PSScriptRoot\both.ps1" -Script use.ps1 -Pictures $Pictures -Widths $pair[0]
    if ($LASTEXITCODE) { throw "$($pair[0]) registered again: exit code $LASTEXITCODE" }
}
exit 0
