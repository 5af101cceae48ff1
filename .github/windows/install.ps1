# Installs for everybody without questions. Each width has to be registered with a file that is there.
param([Parameter(Mandatory)] [string] $Shipped)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$setup = Start-Process (Get-Item "$Shipped\*-setup.exe") '/S /AllUsers' -Wait -PassThru
if ($setup.ExitCode) { throw "the installer: exit code $($setup.ExitCode)" }
foreach ($view in 'Registry64', 'Registry32') {
    $machine = [Microsoft.Win32.RegistryKey]::OpenBaseKey('LocalMachine', $view)
    $id = $machine.OpenSubKey('Software\Classes\brvSQLEditor.clsSQLEditor\CLSID').GetValue('')
    $server = $machine.OpenSubKey("Software\Classes\CLSID\$id\InprocServer32").GetValue('')
    "${view}: $server"
    if (-not (Test-Path $server)) { throw "${view}: there is no such file" }
}
$log = "$env:windir\Logs\brvSQLEditor-setup.log"
if (-not (Select-String -Quiet -SimpleMatch 'Installed (exit code 0)' $log)) { throw "$log does not tell of the installation" }
if (Test-Path "$env:ProgramFiles\brvSQLEditor\brvSQLEditor.*") { throw 'a folder of the installation itself was left' }
exit 0
