#include "dialog/catalog_entries.h"

#include "dialog/listing.h"

namespace kxrestore::dialog {

namespace {

// The number in a value; nothing for other values.
std::optional<std::int64_t> NumberOf(const engine::ValueView& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  if (engine::IsNull(value)) return std::nullopt;
  try {
    return engine::ToInteger(value);
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace

std::string IdentityOf(const controls::AutoSelect::Entry& entry) {
  std::string identity = IsAggregateName(entry.name) ? "a" : "f";
  identity.append(std::to_string(entry.setId)).append(" ");
  return identity.append(entry.extension).append(1, '\0').append(entry.storedName);
}

std::string_view TextOf(const engine::Field& field, std::string& buffer) {
  const engine::ValueView value = field.Value();
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  buffer = engine::ToText(value);
  return buffer;
}

std::int32_t SetIdOf(const controls::AutoSelect::Entry& entry) {
  if (entry.setId == controls::AutoSelect::kNoSetId)
    throw Error(error_number::kTypeMismatch, "Type mismatch");
  return ToLong(entry.setId);
}

std::optional<platform::CivilTime> CivilTimeOf(const engine::ValueView& value) {
  const auto date = engine::ToDateTime(value);
  if (!date) return std::nullopt;
  return platform::CivilTime{date->year, date->month, date->day, date->hour, date->minute, date->second};
}

engine::ColumnNames CatalogEntries::Columns(std::string_view nameColumn, std::string_view setNameColumn) {
  return {nameColumn,  setNameColumn, "OrigSize", "Extension", "SetNameID",
          "DateStamp", "Filename",    "File",     "Plugin"};
}

CatalogEntries::CatalogEntries(engine::Recordset& rows, std::string_view nameColumn,
                               std::string_view setNameColumn)
    : m_name(rows.Fields(nameColumn)),
      m_size(rows.Fields("OrigSize")),
      m_extension(rows.Fields("Extension")),
      m_setId(rows.Fields("SetNameID")),
      m_setName(rows.Fields(setNameColumn)),
      m_date(rows.Fields("DateStamp")),
      m_filename(rows.Fields("Filename")),
      m_file(rows.Fields("File")),
      m_plugin(rows.Fields("Plugin")) {}

std::size_t CatalogEntries::AddCurrentRow(controls::AutoSelect& list, bool ticked) {
  std::string buffers[7];
  const std::string_view file = TextOf(m_file, buffers[0]);
  const std::string_view filename = TextOf(m_filename, buffers[5]);
  const auto aggregate = catalog::AggregateName(TextOf(m_plugin, buffers[1]), file);

  controls::AutoSelect::Entry entry;
  entry.name = aggregate ? std::string_view(*aggregate) : TextOf(m_name, buffers[2]);
  if (entry.name.empty()) entry.name = filename;
  const auto size = NumberOf(m_size.Value());
  entry.sizeKnown = size.has_value();
  entry.size = size.value_or(0);
  entry.extension = TextOf(m_extension, buffers[3]);
  // A missing set is set 0, as in the marking statements.
  const engine::ValueView setId = m_setId.Value();
  entry.setId = engine::IsNull(setId) ? 0 : NumberOf(setId).value_or(controls::AutoSelect::kNoSetId);
  entry.setName = TextOf(m_setName, buffers[4]);
  if (const auto time = CivilTimeOf(m_date.Value())) {
    entry.time = platform::TimeNumber(*time);
  } else {
    entry.date = TextOf(m_date, buffers[6]);
  }
  entry.storedName = catalog::StoredName(entry.name, file, filename);
  return list.Add(entry, ticked);
}

}  // namespace kxrestore::dialog
