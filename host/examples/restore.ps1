# A restore host in PowerShell: powershell -STA -File restore.ps1 CATALOG [DESTINATION]
# The dialog wants a single-threaded apartment (-STA) and a PowerShell of the component's bitness.
param([Parameter(Mandatory = $true)][string]$Catalog, [string]$Destination = '')

$dialog = New-Object -ComObject KXRestore.RestoreDlg
$dialog.DBType = 0                  # a catalog file; 1: a server
$dialog.DB = $Catalog
$dialog.RestorePath = $Destination
$dialog.frmCaption = 'Restore files'

# Modal. 1: "Restore Now" was pressed, and the marks are in the catalog. 0: there is nothing to do.
if ($dialog.DefineRestoreSet() -eq 1) {
    & kxrestore.exe list --json --catalog $Catalog | ConvertFrom-Json | ForEach-Object {
        "restore: $($_.name) ($($_.size) bytes, set $($_.set), run $($_.run))"
    }
    & kxrestore.exe clear --catalog $Catalog
}
[void][Runtime.InteropServices.Marshal]::ReleaseComObject($dialog)
