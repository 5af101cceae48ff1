# Removes what install.ps1 has installed, the settings included.
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$folder = "$env:ProgramFiles\brvSQLEditor"
# Not as a copy of itself, which would go on behind our back; it then cannot remove its own file. "_?=" is last and takes no quotation marks.
$removal = Start-Process "$folder\uninstall.exe" "/S /RemoveSettings _?=$folder" -Wait -PassThru
if ($removal.ExitCode) { throw "the uninstaller: exit code $($removal.ExitCode)" }
$left = Get-ChildItem $folder -Recurse | ForEach-Object Name
if ($left -and $left -ne 'uninstall.exe') { throw "left behind: $left" }
Remove-Item $folder -Recurse
exit 0
