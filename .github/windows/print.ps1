# Makes a printer that writes a PDF file without asking, and prints a text of several pages to it from each width.
param([Parameter(Mandatory)] [string] $Pictures)
Set-StrictMode -Version Latest
$ErrorActionPreference = 'Stop'

$file = Join-Path $env:RUNNER_TEMP 'printed.pdf'
Add-PrinterPort -Name $file
Add-Printer -Name 'brv file' -DriverName 'Microsoft Print To PDF' -PortName $file
try {
    Get-CimInstance Win32_Printer -Filter "Name='brv file'" | Invoke-CimMethod -MethodName SetDefaultPrinter | Out-Null
    $env:BRV_PRINTED_FILE = $file
    foreach ($width in 'System32', 'SysWOW64') {
        Remove-Item $file -ErrorAction Ignore
        & "$PSScriptRoot\both.ps1" -Script print-once.ps1 -Pictures $Pictures -Widths $width
        if ($LASTEXITCODE) { throw "${width}: exit code $LASTEXITCODE" }
        # The spooler ends after the program.
        foreach ($second in 1..60) {
            if (-not (Get-PrintJob -PrinterName 'brv file')) { break }
            Start-Sleep 1
        }
        Copy-Item $file "$Pictures\printed-$width.pdf"
        $bytes = [IO.File]::ReadAllBytes($file)
        $text = [Text.Encoding]::GetEncoding('iso-8859-1').GetString($bytes)
        $pages = [regex]::Matches($text, '/Type\s*/Page\b').Count
        "${width}: $($bytes.Length) bytes, $pages pages"
        if (-not $text.StartsWith('%PDF-')) { throw "${width}: that is no PDF file" }
        if ($pages -lt 3) { throw "${width}: 200 lines take three pages and more" }
    }
} finally {
    Remove-Printer -Name 'brv file'
    Remove-PrinterPort -Name $file
}
exit 0
