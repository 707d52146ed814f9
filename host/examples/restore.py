"""A restore host in Python: python restore.py CATALOG [DESTINATION]

Shows how to restore: the marked rows are read in their order when the event comes, and the marks are taken away when all
is done. Needs pywin32 (pip install pywin32) and a Python of the component's bitness. The catalog is an SQLite file.
"""
import contextlib
import sqlite3
import sys

MARKED = """
    SELECT Catalog.ID, COALESCE(LongPaths.LongPath, Catalog.Filename), Catalog.OrigSize, Catalog.StoreName
    FROM Catalog LEFT JOIN LongPaths ON LongPaths.PathID = Catalog.LongPathID
    WHERE Catalog.Restore <> 0 ORDER BY Catalog.ID"""


def marked_rows(catalog):
    """The rows to restore: number, path, bytes (None: not known), name in the store."""
    with contextlib.closing(sqlite3.connect(catalog)) as database:
        return database.execute(MARKED).fetchall()


def unmark(catalog, numbers):
    """Takes the marks of these rows away, all of them or none. Marks made meanwhile stay."""
    with contextlib.closing(sqlite3.connect(catalog)) as database, database:
        database.executemany("UPDATE Catalog SET Restore = 0 WHERE ID = ?", ((number,) for number in numbers))


def main(catalog, destination=""):
    import win32com.client

    done = []

    class Events:
        def OnCommenceRestore(self):
            # The dialog is still on the screen; keep this short, or restore after DefineRestoreSet instead.
            for number, path, size, store_name in marked_rows(catalog):
                print(f"restore: {path} ({size} bytes, {store_name})")
                done.append(number)

    dialog = win32com.client.DispatchWithEvents("KXRestore.RestoreDlg", Events)
    dialog.DBType = 0  # a catalog file; 1: a server
    dialog.DB = catalog
    dialog.RestorePath = destination
    dialog.frmCaption = "Restore files"
    if dialog.DefineRestoreSet() == 1:
        unmark(catalog, done)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:3])
