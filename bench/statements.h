// The dialog's statements about the benchmarks' run, for the benchmarks below the dialog.
#pragma once

#include <string>

namespace kxrestore::bench {

inline constexpr char kDetailStatement[] =
    "SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
    "Catalog.File, "
    "Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, Catalog.Plugin, "
    "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile "
    "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
    "WHERE (((Catalog.SetNameID)=1) AND ((Catalog.Extension)='001') AND ((Catalog.Status)=2));";

}  // namespace kxrestore::bench
