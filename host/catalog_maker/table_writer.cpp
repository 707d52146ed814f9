#include "host/catalog_maker/table_writer.h"

namespace kxrestore::sample {
namespace {

template <typename T>
Cell CellOf(const std::optional<T>& value) {
  return value ? Cell(*value) : Cell();
}

Cell DateOf(const std::optional<std::string>& date) {
  return date ? Cell(DateText{*date}) : Cell();
}

}  // namespace

void TableWriter::AddSet(const SetRow& row) {
  Insert(Table::kSetNames, {row.id, row.name});
}

void TableWriter::AddRun(const RunRow& row) {
  Insert(Table::kBackupAudit,
         {row.setId, DateOf(row.dateStamp), row.extension, CellOf(row.permanent), CellOf(row.status)});
}

void TableWriter::AddLongPath(const LongPathRow& row) {
  Insert(Table::kLongPaths, {row.id, CellOf(row.path)});
}

void TableWriter::AddFile(const FileRow& row) {
  Insert(Table::kCatalog, {row.id, DateOf(row.dateStamp), row.setId, row.extension, row.filename,
                           CellOf(row.file), CellOf(row.longPathId), row.storeName, row.storeMethod,
                           CellOf(row.plugin), row.restore, CellOf(row.origSize), CellOf(row.status),
                           row.attributes, row.subFolder, row.encryptMethod, row.origName});
}

}  // namespace kxrestore::sample
