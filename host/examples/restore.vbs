' A restore host in VBScript: cscript //nologo restore.vbs CATALOG [DESTINATION]
' Shows the dialog, then lists what is to be restored with the component's command line, and takes the marks away.
Option Explicit
Dim catalog, dialog, shell, files, list
If WScript.Arguments.Count = 0 Then
  WScript.Echo "usage: cscript //nologo restore.vbs CATALOG [DESTINATION]"
  WScript.Quit 2
End If
catalog = WScript.Arguments(0)

On Error Resume Next
Set dialog = CreateObject("KXRestore.RestoreDlg")
If Err.Number <> 0 Then
  WScript.Echo "KXRestore is not registered: " & Hex(Err.Number)
  WScript.Quit 2
End If
On Error GoTo 0

dialog.DBType = 0                       ' a catalog file; 1: a server
dialog.DB = catalog
If WScript.Arguments.Count > 1 Then dialog.RestorePath = WScript.Arguments(1)
dialog.frmCaption = "Restore files"

' Modal. 1: "Restore Now" was pressed, and the marks are in the catalog. 0: there is nothing to do.
If dialog.DefineRestoreSet() <> 1 Then
  WScript.Echo "Nothing is to be restored."
  WScript.Quit 0
End If

' kxrestore.exe stands beside this script or on the path. What it writes is UTF-8.
Set shell = CreateObject("WScript.Shell")
Set files = CreateObject("Scripting.FileSystemObject")
list = files.GetSpecialFolder(2) & "\" & files.GetTempName()
If shell.Run("cmd /c kxrestore.exe list --catalog """ & catalog & """ > """ & list & """", 0, True) <> 0 Then
  WScript.Echo "The marks cannot be read."
  WScript.Quit 1
End If
WScript.Echo files.OpenTextFile(list).ReadAll()   ' here the host restores them
files.DeleteFile list
shell.Run "cmd /c kxrestore.exe clear --catalog """ & catalog & """", 0, True
