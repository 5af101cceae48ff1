# Compares each line of SHA256SUMS with the file that it names.
param([Parameter(Mandatory)] [string] $Shipped)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$lines = @(Get-Content "$Shipped\SHA256SUMS")
if ($lines.Count -lt 2) { throw 'SHA256SUMS lacks a file' }
foreach ($line in $lines) {
    if ($line -notmatch '^([0-9a-f]{64}) [ *](.+)$') { throw "not understood: $line" }
    $found = (Get-FileHash -Algorithm SHA256 "$Shipped\$($Matches[2])").Hash
    if ($found -ne $Matches[1]) { throw "$($Matches[2]): $found" }
    $line
}
exit 0
