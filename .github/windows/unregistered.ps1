# Makes the component from the portable zip without registration, in both widths: it has to be the file of the zip that is loaded.
param([Parameter(Mandatory)] [string] $Shipped, [Parameter(Mandatory)] [string] $Built)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$folder = Join-Path $env:RUNNER_TEMP 'portable'
Expand-Archive (Get-Item "$Shipped\*-portable.zip") $folder
foreach ($width in @(@('x86', 'win32'), @('x64', 'win64'))) {
    $there = (Get-Item "$folder\*\$($width[0])").FullName
    Copy-Item "$Built\$($width[1])\bin\unregistered.exe" $there
    Set-Content "$there\unregistered.exe.manifest" @'
<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="unregistered" version="1.0.0.0"/>
  <dependency>
    <dependentAssembly>
      <assemblyIdentity type="win32" name="brvSQLEditor.X" version="1.0.0.0"/>
    </dependentAssembly>
  </dependency>
</assembly>
'@
    $loaded = & "$there\unregistered.exe"
    if ($LASTEXITCODE) { throw "$($width[0]): exit code $LASTEXITCODE" }
    "$($width[0]): $loaded"
    if ($loaded -ne "$there\brvSQLEditor.dll") { throw "$($width[0]): another file was loaded" }
}
exit 0
