#include "host/catalog_maker/special_rows.h"

#include <string_view>
#include <utility>

namespace kxrestore::sample {

namespace {

constexpr int kLive = 2;

class Builder {
 public:
  FileRow& Plain(Run run, std::string path, std::optional<std::int64_t> size, std::string_view date) {
    FileRow row = PlainFile(std::move(path));
    row.origSize = size;
    row.dateStamp = date;
    return Add(run, std::move(row)).row;
  }

  FileRow& Plugin(Run run, std::string_view plugin, std::string path, std::string_view item,
                  std::int64_t size) {
    FileRow row = PlainFile(std::move(path));
    row.plugin = plugin;
    row.file = item;
    row.origSize = size;
    row.dateStamp = RunOf(run).dateStamp;
    row.storeMethod = 2;
    row.attributes = 0;
    return Add(run, std::move(row)).row;
  }

  // A file whose path is too long for the file name column, which then holds a short form.
  void LongPath(Run run, const std::string& shortForm, const std::string& path, std::string_view date) {
    FileRow row = PlainFile(shortForm);
    row.origName = path;
    row.file = path.substr(path.rfind('\\') + 1);
    row.origSize = 48211;
    row.dateStamp = date;
    Add(run, std::move(row)).longPath = LongPathRow{0, path};
  }

  SpecialRow& Add(Run run, FileRow row) {
    row.setId = RunOf(run).setId;
    row.extension = RunOf(run).extension;
    m_rows.push_back(SpecialRow{run, std::move(row), std::nullopt});
    return m_rows.back();
  }

  std::vector<SpecialRow> Take() { return std::move(m_rows); }

 private:
  std::vector<SpecialRow> m_rows;
};

std::string DeepPath(std::string_view start, int levels, std::string_view name) {
  std::string path(start);
  for (int i = 1; i <= levels; ++i) {
    path += "Correspondence with the regional planning office, part ";
    path += std::to_string(i);
    path += '\\';
  }
  path += name;
  return path;
}

void AddVersions(Builder& add) {
  const std::string report = "C:\\Data\\Reports\\a.doc";
  add.Plain(Run::kDailyNewest, report, 24576, "2026-11-13 16:40:12");
  add.Plain(Run::kDailyNewest, "C:\\Data\\Reports\\b.doc", 19968, "2026-11-02 09:15:00");
  add.Plain(Run::kDailyFirst, report, 20480, "2026-09-01 10:00:00");
  add.Plain(Run::kServerNewest, "C:\\boot.ini", 211, "2024-02-29 12:00:00");
  add.Plain(Run::kDailySecond, report, 22016, "2026-10-02 08:30:00");
  add.Plain(Run::kDailyMidnight, report, 24576, "2026-10-30 17:05:45");
  // The same name in another set, and versions that differ in nothing but their number.
  add.Plain(Run::kOfficeNewest, report, 23040, "2026-11-09 14:00:00");
  add.Plain(Run::kDailyMidnight, "C:\\Data\\Reports\\tie.xls", 16384, "2026-06-15 11:11:11");
  add.Plain(Run::kDailyNewest, "C:\\Data\\Reports\\tie.xls", 16896, "2026-06-15 11:11:11");
  add.Plain(Run::kDailyNewest, "C:\\Data\\Reports\\tie.xls", 16900, "2026-06-15 11:11:11");
  add.Plain(Run::kDailySecond, "C:\\Data\\Reports\\only in the second run.txt", 77, "2026-10-01 00:00:00");
}

void AddServerEntries(Builder& add) {
  const std::string_view mail = "Exchange Server";
  for (const Run run : {Run::kServerNewest, Run::kServerFirst}) {
    const std::string group = "First Storage Group\\";
    add.Plugin(run, mail, group + "MailBoxes\\Jane Doe\\Inbox", "Jane Doe", 5242880);
    add.Plugin(run, "System State", "System State\\Registry\\SOFTWARE", "SOFTWARE", 31457280);
    add.Plugin(run, "Active Directory", "Active Directory\\NTDS\\ntds.dit", "ntds.dit", 41943040);
    add.Plugin(run, "SQL Server", "SQL Server\\master", "master", 9437184);
    add.Plugin(run, mail, group + "Public Folders\\Company Calendar", "Company Calendar", 262144);
    add.Plugin(run, mail, group + "Address Lists\\All Users", "All Users", 65536);
    add.Plugin(run, "Exchange Server Mailbox Müller", group + "MailBoxes\\Jürgen Müller\\Posteingang",
               "Jürgen Müller", 7340032);
    // One mail-server item in several rows that share the value of File.
    add.Plugin(run, mail, group + "MailBoxes\\Jane Doe\\Sent Items", "Jane Doe", 3145728);
    add.Plugin(run, mail, group + "MailBoxes\\Jane Doe\\Calendar", "Jane Doe", 131072);
    add.Plugin(run, mail, group + "MailBoxes\\Pat O'Hara\\Inbox", "Pat O'Hara", 1048576);
    add.Plugin(run, "Exchange Server2", group + "public folders\\Notices", "Notices", 8192);
    add.Plugin(run, mail, group + "Address Lists\\宛先一覧", "宛先一覧", 4096);
    add.Plugin(run, mail, group + "Log Files\\E00.log", "E00.log", 5242880);  // in none of the three branches
    add.Plugin(run, "System State", "System State\\Boot Files\\ntldr", "ntldr", 250048);
    add.Plugin(run, "System State", "System State\\COM+ Class Registration Database", "COM+", 24576);
    add.Plugin(run, "Active Directory", "Active Directory\\SYSVOL\\Policies", "Policies", 12288);
    add.Plugin(run, "SQL Server", "SQL Server\\Sales", "Sales", 734003200);
    add.Plugin(run, "SQL Server", "SQL Server\\O'Brien", "O'Brien", 2097152);
  }
  // One character short of the mail server's name, and an unknown plug-in.
  add.Plugin(Run::kServerNewest, "Exchange Serve", "C:\\Data\\Queue\\message.eml", "message.eml", 900);
  add.Plugin(Run::kServerNewest, "Print Server", "Print Server\\Queues\\Front desk", "Front desk", 512);
}

void AddNames(Builder& add) {
  const Run run = Run::kDailyNewest;
  const std::string_view date = "2026-11-15 08:00:00";
  const std::string_view paths[] = {
      "C:\\Data\\Reports\\O'Neill's list.xls", "C:\\Data\\Größen\\Übersicht 2026.pdf",
      "D:\\Проекты\\План.docx", "D:\\写真\\富士山.jpg", "C:\\Data\\Party \xF0\x9F\x8E\x89.png",
      "C:\\autoexec.bat", "C:\\Data\\noextension", "C:\\Data\\archive.tar.gz", "C:\\Data\\.hidden",
      "C:\\Data\\100% [draft] #1_v2.txt", "C:\\Data\\a;b.txt", "C:\\DATA\\REPORTS\\SUMMARY.DOC",
      "C:\\Data\\Reports\\İstanbul.txt", "C:\\Data\\Reports\\Strasse.txt", "C:\\Data\\Reports\\Straße.txt",
      // A name that is also the name of a folder, and names equal to the text of other nodes of the tree.
      "C:\\Data\\Same", "C:\\Data\\Same.d\\Same", "C:\\Exchange Server\\MailBoxes\\notes.txt",
      "C:\\Data\\item.kxexag"};
  for (const std::string_view path : paths) add.Plain(run, std::string(path), 4096, date);

  for (const std::string_view path :
       {"C:\\Users\\O'Brien\\Desktop\\don't.txt", "C:\\Users\\O'Brien\\it''s.doc", "C:\\Users\\O'Brien\\'"}) {
    add.Plain(Run::kLaptopNewest, std::string(path), 1234, "2026-11-14 20:00:00");
  }
  add.Plain(Run::kOfficeNewest, "C:\\Büro\\Verträge\\Müller & Söhne.doc", 54321, "2026-11-09 13:00:00");
  add.Plain(Run::kJapanese, "C:\\資料\\議事録\\会議.txt", 2048, "2026-11-12 10:00:00");
  add.Plain(Run::kNetwork, "\\\\fileserver\\public\\readme.txt", 640, "2026-10-31 10:00:00");
  add.Plain(Run::kNetwork, "\\\\fileserver\\public\\Forms\\leave.doc", 20480, "2026-10-31 10:00:00");
}

void AddOddValues(Builder& add) {
  const Run run = Run::kDailyNewest;
  const std::string folder = "C:\\Data\\Odd\\";
  const std::string_view date = "2026-11-14 12:00:00";
  add.Plain(run, folder + "size unknown.dat", std::nullopt, date);
  add.Plain(run, folder + "empty.dat", 0, date);
  add.Plain(run, folder + "large.vhd", 5368709120, date);
  add.Plain(run, folder + "no date.dat", 100, date).dateStamp.reset();
  add.Plain(run, folder + "midnight.dat", 100, "2026-11-14 00:00:00");
  add.Plain(run, folder + "no second name.dat", 100, date).file.reset();
  add.Plain(run, folder + "empty plugin.dat", 100, date).plugin = "";
  add.Plain(run, folder + "read-only.dat", 100, date).attributes = 33;
  add.Plain(run, folder + "encrypted.dat", 100, date).encryptMethod = 1;
  add.Plain(run, folder + "lost long path.dat", 100, date).longPathId = 999999999;
  add.Plain(run, folder + "deleted.dat", 100, date).status = 3;
  add.Plain(run, folder + "in work.dat", 100, date).status = 1;
  add.Plain(run, folder + "no status.dat", 100, date).status.reset();
  // Three streams of one file: rows that share set, run and stored name.
  for (int stream = 0; stream < 3; ++stream) {
    add.Plain(run, "C:\\Data\\Streams\\report.doc", 1000 + stream, date).storeMethod = stream;
  }
  FileRow nullPath = PlainFile(folder + "null long path.dat");
  nullPath.origSize = 100;
  nullPath.dateStamp = date;
  add.Add(run, nullPath).longPath = LongPathRow{0, std::nullopt};

  FileRow stray = PlainFile("C:\\Data\\of no set.dat");
  stray.origSize = 100;
  stray.dateStamp = date;
  add.Add(run, stray).row.setId = 99;

  for (const std::string_view name : {"one.txt", "two.txt"}) {
    add.Plain(Run::kLaptopEmpty, "C:\\Users\\O'Brien\\" + std::string(name), 10, date).status = 3;
  }
  add.Plain(Run::kUnknownState, "C:\\Data\\half.txt", 10, date);
}

void AddLongPaths(Builder& add) {
  const Run run = Run::kDailyNewest;
  const std::string_view date = "2026-11-12 07:45:00";
  const std::string deep = "C:\\Data\\Planning\\";
  add.LongPath(run, "C:\\Data\\Planning\\CORRES~1\\MINUTE~1.DOC", DeepPath(deep, 5, "Minutes.docx"), date);
  add.LongPath(run, "C:\\Data\\Planning\\CORRES~1\\O_NEIL~1.PDF", DeepPath(deep, 5, "O'Neill's plän.pdf"),
               date);
  add.LongPath(run, "D:\\CORRES~1\\_4E8C~1.TXT", DeepPath("D:\\", 8, "二.txt"), date);
  add.LongPath(Run::kDailyMidnight, "C:\\Data\\Planning\\CORRES~1\\MINUTE~1.DOC",
               DeepPath(deep, 5, "Minutes.docx"), "2026-10-29 07:45:00");
}

}  // namespace

FileRow PlainFile(std::string path) {
  FileRow row;
  const std::size_t last = path.rfind('\\');
  row.file = path.substr(last + 1);
  const std::size_t first = path.find('\\') + 1;
  if (last + 1 > first) row.subFolder = path.substr(first, last + 1 - first);
  row.status = kLive;
  row.storeMethod = 1;
  row.attributes = 32;
  row.origName = path;
  row.filename = std::move(path);
  return row;
}

std::vector<SpecialRow> SpecialRows() {
  Builder add;
  AddVersions(add);
  AddServerEntries(add);
  AddNames(add);
  AddLongPaths(add);
  AddOddValues(add);
  return add.Take();
}

}  // namespace kxrestore::sample
