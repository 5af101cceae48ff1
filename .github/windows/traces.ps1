# Fails when anything under the component's name or identity stands in the registry or in the folders that the installer uses.
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$found = @()
foreach ($root in 'HKLM\Software\Classes', 'HKCU\Software\Classes', 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall',
        'HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall', 'HKCU\Software\VB and VBA Program Settings') {
    foreach ($view in '/reg:64', '/reg:32') {
        # 1 is the exit code where nothing is found, and where the key itself is not there.
        $found += @(reg.exe query $root /s /f brvSQLEditor $view 2>$null | Where-Object { $_ -match 'brvSQLEditor' })
    }
}
foreach ($folder in $env:ProgramFiles, ${env:ProgramFiles(x86)}, "$env:LOCALAPPDATA\Programs") {
    if (Test-Path "$folder\brvSQLEditor") { $found += Get-ChildItem "$folder\brvSQLEditor" -Recurse | ForEach-Object FullName; $found += $folder }
}
$found
if ($found) { throw 'traces of the component were found' }
'no traces'
exit 0
