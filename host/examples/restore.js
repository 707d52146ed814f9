// A restore host in JScript: cscript //nologo restore.js CATALOG [DESTINATION]
if (WScript.Arguments.length === 0) {
  WScript.Echo("usage: cscript //nologo restore.js CATALOG [DESTINATION]");
  WScript.Quit(2);
}
var dialog;
try {
  dialog = new ActiveXObject("KXRestore.RestoreDlg");
} catch (error) {
  WScript.Echo("KXRestore is not registered: " + error.message);
  WScript.Quit(2);
}
dialog.DBType = 0;  // a catalog file; 1: a server
dialog.DB = WScript.Arguments(0);
if (WScript.Arguments.length > 1) dialog.RestorePath = WScript.Arguments(1);
dialog.frmCaption = "Restore files";

// Modal. 1: "Restore Now" was pressed, and the rows with Restore = True are to be restored. 0: nothing is to be done.
WScript.Echo("DefineRestoreSet = " + dialog.DefineRestoreSet());
