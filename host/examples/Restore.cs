// A restore host in C#, late bound: csc /platform:x64 Restore.cs   (or /platform:x86, as the component is installed)
// Restore.exe CATALOG [DESTINATION]
using System;
using System.Runtime.InteropServices;
using System.Runtime.InteropServices.ComTypes;

// The event interface; the dispatch identifier alone counts.
[ComImport, Guid("BB4D256B-BCA9-41F0-A4E1-69474339D805"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
public interface IRestoreEvents {
  [DispId(1)]
  void CommenceRestore();
}

[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
public class Events : IRestoreEvents {
  // The dialog is still on the screen, and the marks are in the catalog: the host restores them here or afterwards.
  public void CommenceRestore() {
    Console.WriteLine("CommenceRestore");
  }
}

public static class Program {
  [STAThread]  // the dialog lives on the thread that runs the user interface
  public static int Main(string[] words) {
    if (words.Length == 0) {
      Console.Error.WriteLine("usage: Restore CATALOG [DESTINATION]");
      return 2;
    }
    Type type = Type.GetTypeFromProgID("KXRestore.RestoreDlg");
    if (type == null) {
      Console.Error.WriteLine("KXRestore is not registered.");
      return 2;
    }
    object instance = Activator.CreateInstance(type);
    Guid events = typeof(IRestoreEvents).GUID;
    IConnectionPoint point;
    int cookie;
    ((IConnectionPointContainer)instance).FindConnectionPoint(ref events, out point);
    point.Advise(new Events(), out cookie);
    try {
      dynamic dialog = instance;
      dialog.DBType = (short)0;  // a catalog file; 1: a server
      dialog.DB = words[0];
      if (words.Length > 1) dialog.RestorePath = words[1];
      dialog.frmCaption = "Restore files";
      Console.WriteLine("DefineRestoreSet = " + dialog.DefineRestoreSet());
    } finally {
      point.Unadvise(cookie);
      Marshal.FinalReleaseComObject(instance);
    }
    return 0;
  }
}
