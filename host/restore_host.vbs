' A sample host in VBScript:
'   cscript //nologo restore_host.vbs --catalog FILE [--restore-path P] [--log FILE] [--action WORD]
'           [--db-type N --server S --database D [--user U --password P]]
'           [--caption T] [--button-caption T] [--label-caption T] [--hide-label]
' It prints "DefineRestoreSet = 1" when the user chose to restore; the marked files then stand in the catalog.
Option Explicit

Dim dialog, i, name, value
On Error Resume Next
Set dialog = CreateObject("KXRestore.RestoreDlg")
If Err.Number <> 0 Then
  WScript.Echo "KXRestore.RestoreDlg cannot be created: " & Hex(Err.Number)
  WScript.Quit 2
End If

i = 0
Do While i < WScript.Arguments.Count
  name = WScript.Arguments(i)
  If name = "--hide-label" Then
    dialog.lblInVisible = True
  ElseIf i + 1 = WScript.Arguments.Count Then
    WScript.Echo name & " wants a value"
    WScript.Quit 1
  Else
    i = i + 1
    value = WScript.Arguments(i)
    Select Case name
      Case "--catalog" dialog.DB = value
      Case "--db-type" dialog.DBType = CInt(value)
      Case "--server" dialog.DBServer = value
      Case "--database" dialog.DBDatabase = value
      Case "--user" dialog.DBUser = value
      Case "--password" dialog.DBPass = value
      Case "--restore-path" dialog.RestorePath = value
      Case "--log" dialog.SessionLogName = value
      Case "--action" dialog.setAction = value
      Case "--caption" dialog.frmCaption = value
      Case "--button-caption" dialog.btnCaption = value
      Case "--label-caption" dialog.lblCaption = value
      Case Else
        WScript.Echo "unknown argument " & name
        WScript.Quit 1
    End Select
  End If
  If Err.Number <> 0 Then
    WScript.Echo name & ": " & Err.Description & " (" & Hex(Err.Number) & ")"
    WScript.Quit 1
  End If
  i = i + 1
Loop

WScript.Echo "DefineRestoreSet = " & dialog.DefineRestoreSet()
