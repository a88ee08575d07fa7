# Wipes the files of a folder and keeps a record of each run that had any. For a scheduled task or Intune:
#
#   powershell.exe -NoProfile -ExecutionPolicy Bypass -File nightly.ps1 -Folder D:\Scans\Done -Records D:\Wiped
#
# Ends with zqwipe's exit code: 0 all is gone, 1 something was kept, 2 refused, 3 cancelled.
param(
  [Parameter(Mandatory)] [string] $Folder,
  [Parameter(Mandatory)] [string] $Records,
  [string] $Zqwipe = "$PSScriptRoot\zqwipe.exe"
)
$record = Join-Path $Records ("{0}-{1:yyyyMMddTHHmmssZ}.json" -f $env:COMPUTERNAME, [DateTime]::UtcNow)
[Console]::OutputEncoding = [Text.UTF8Encoding]::new()
$told = & $Zqwipe --yes --json --mask '*' -- $Folder
$status = $LASTEXITCODE
if ($status -ne 0 -or $told -match '"outcome"') {
  [IO.File]::WriteAllLines($record, [string[]]$told)
}
exit $status
