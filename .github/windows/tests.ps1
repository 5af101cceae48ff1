# Runs the test programs of a folder that need nothing but Windows, each with a limit of time. Fails when one of them does.
param([Parameter(Mandatory)] [string] $Folder, [Parameter(Mandatory)] [string] $Results)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

New-Item -ItemType Directory -Force $Results | Out-Null
$Results = Resolve-Path $Results
$failed = @()
foreach ($name in 'AutomationTest', 'FormsTest', 'ComponentTest', 'CatalogueTest', 'BrowserTest', 'StatementsTest', 'EditorTest', 'EditingTest',
        'FilesTest', 'FaultsTest', 'LeaksTest') {
    $program = Resolve-Path "$Folder\$name.exe"
    $test = Start-Process $program "--gtest_output=xml:$Results\$name.xml" -PassThru -NoNewWindow -WorkingDirectory $Results `
        -RedirectStandardOutput "$Results\$name.txt"
    $test.Handle | Out-Null  # without it the exit code is not kept
    if (-not $test.WaitForExit(600000)) {
        $test.Kill()
        $failed += "$name (no end)"
    } elseif ($test.ExitCode) {
        $failed += "$name ($($test.ExitCode))"
    }
    Get-Content "$Results\$name.txt" | Where-Object { $_ -match 'FAILED|PASSED|Failure|SKIPPED' } | ForEach-Object { "${name}: $_" }
}
if ($failed) { throw "failed: $($failed -join ', ')" }
exit 0
