#include "host/catalog_maker/folder_walk.h"

#include <iterator>
#include <string_view>

#include "host/catalog_maker/dates.h"

namespace kxrestore::sample {

namespace {

constexpr std::size_t kDeepestLevel = 9;
constexpr std::size_t kLongestFolder =
    170;  // bytes; with its longest file name a path stays below 260 characters

constexpr std::string_view kFolderNames[] = {
    "Reports", "Invoices",    "Projects",   "Archive",     "Customers",   "Contracts", "Photos",   "Music",
    "Backup",  "Drafts",      "Letters",    "Templates",   "Personnel",   "Marketing", "Sales",    "Support",
    "Quality", "Designs",     "Minutes",    "Budget 2025", "Budget 2026", "Taxes",     "Research", "Manuals",
    "Plans",   "Übersichten", "Verträge",   "Größen",      "Факты",       "資料",      "Old",      "Temp",
    "Scans",   "Orders",      "Deliveries", "Tenders",     "Training",    "Website",   "Source",   "Release"};

constexpr std::string_view kStems[] = {
    "Invoice",  "Report",    "Letter",   "Summary",   "Minutes",  "Offer",     "Contract",  "Price list",
    "Budget",   "Plan",      "Schedule", "Checklist", "Notes",    "Draft",     "Overview",  "Order",
    "Delivery", "Statement", "Agenda",   "Memo",      "Protocol", "Survey",    "Analysis",  "Forecast",
    "Vertrag",  "Übersicht", "Größen",   "Rechnung",  "Отчёт",    "議事録",    "O'Neill",   "Résumé",
    "index",    "readme",    "setup",    "config",    "data",     "image",     "figure",    "table",
    "backup",   "export",    "import",   "list",      "address",  "inventory", "catalogue", "guide",
    "manual",   "handbook",  "policy",   "form",      "template", "diagram",   "sketch",    "layout",
    "logo",     "banner",    "screen",   "photo",     "scan",     "fax",       "receipt",   "ticket"};

// Relative frequency of a type, its smallest size in bytes, and how often that size may double.
struct FileType {
  std::string_view ending;
  std::uint32_t weight;
  std::uint32_t smallest;
  std::uint32_t doublings;
};

constexpr FileType kTypes[] = {
    {".doc", 9, 19456, 7},  {".docx", 14, 11264, 8}, {".xls", 6, 13824, 7}, {".xlsx", 11, 8192, 9},
    {".pdf", 14, 20480, 9}, {".jpg", 12, 40960, 8},  {".png", 7, 2048, 10}, {".txt", 7, 64, 11},
    {".htm", 4, 512, 8},    {".xml", 5, 256, 11},    {".dll", 4, 8192, 9},  {".exe", 2, 16384, 10},
    {".zip", 3, 1024, 12},  {".mp3", 2, 1048576, 3}, {".eml", 4, 1024, 9},  {".pptx", 3, 40960, 9},
    {".csv", 3, 128, 13},   {".log", 3, 64, 13},     {".ini", 2, 32, 6},    {".tar.gz", 1, 10240, 11},
    {".bak", 1, 4096, 12},  {"", 1, 16, 10},         {".DOC", 1, 19456, 7}, {".avi", 1, 8388608, 5}};

constexpr std::uint32_t TotalWeight() {
  std::uint32_t total = 0;
  for (const FileType& type : kTypes) total += type.weight;
  return total;
}

const FileType& PickType(Random& random) {
  std::uint32_t point = random.Below(TotalWeight());
  for (const FileType& type : kTypes) {
    if (point < type.weight) return type;
    point -= type.weight;
  }
  return kTypes[0];
}

constexpr std::uint32_t kPhotoFlavour = 0;  // of the eight kinds of folders

}  // namespace

FolderWalk::FolderWalk(std::uint64_t seed, Shape shape) : m_random(seed), m_shape(shape) {
  StartDrive('C');
  if (m_shape.flat) {
    m_folder += "Flat\\";
    m_filesLeft = 1;
    MakeFile();
  } else {
    Next();
  }
}

void FolderWalk::Next() {
  if (m_shape.flat) {
    MakeFile();
    return;
  }
  if (m_count == m_shape.filesOnFirstDrive) {
    StartDrive('D');
    m_filesLeft = 0;
  }
  while (m_filesLeft == 0) NextFolder();
  --m_filesLeft;
  MakeFile();
}

void FolderWalk::StartDrive(char letter) {
  m_folder.assign({letter, ':', '\\'});
  m_levels.assign(1, Level{m_folder.size(), m_random.Below(std::size(kFolderNames))});
}

void FolderWalk::NextFolder() {
  // Below the top two levels the walk descends, moves sideways or ascends, which gives folders of every depth
  // and parents of a few to a few dozen folders.
  if (m_levels.size() > 2) {
    const bool deeper =
        m_levels.size() < kDeepestLevel && m_folder.size() < kLongestFolder && m_random.Below(100) < 46;
    if (!deeper) {
      m_levels.pop_back();
      while (m_levels.size() > 2 && m_random.Below(100) < 40) m_levels.pop_back();
      if (m_levels.size() == 2 && m_random.Below(100) < 20) m_levels.pop_back();
    }
  }
  m_folder.resize(m_levels.back().pathLength);
  EnterChild();

  m_flavour = m_random.Below(8);
  m_firstStem = m_random.Below(std::size(kStems));
  m_fileNumber = 0;
  // Mostly 10 to 40 files, sometimes up to 100, and some folders that only hold folders.
  const std::uint32_t kind = m_random.Below(10);
  m_filesLeft = kind == 0 ? 0 : 10 + m_random.Below(kind < 8 ? 30 : 91);
}

void FolderWalk::EnterChild() {
  Level& parent = m_levels.back();
  const std::uint32_t number = parent.children++;
  m_folder += kFolderNames[(parent.firstName + number) % std::size(kFolderNames)];
  if (number >= std::size(kFolderNames)) {
    m_folder += ' ';
    m_folder += std::to_string(number / std::size(kFolderNames) + 1);
  }
  m_folder += '\\';
  m_levels.push_back(Level{m_folder.size(), m_random.Below(std::size(kFolderNames))});
}

void FolderWalk::MakeFile() {
  const FileType* type = &PickType(m_random);
  const std::uint32_t number = m_fileNumber++;
  if (m_flavour == kPhotoFlavour && !m_shape.flat) {
    type = &kTypes[5];
    m_name = "IMG_";
    const std::string digits = std::to_string(number + 17);
    m_name.append(4 - digits.size(), '0');
    m_name += digits;
  } else {
    m_name = kStems[(m_firstStem + number) % std::size(kStems)];
    if (number >= std::size(kStems)) {
      m_name += ' ';
      m_name += std::to_string(number / std::size(kStems) + 1);
    }
  }
  m_name += type->ending;

  const std::int64_t base = std::int64_t{type->smallest} << m_random.Below(type->doublings + 1);
  m_size = base + m_random.Below(static_cast<std::uint32_t>(base));
  static const std::int64_t kFirstDay = Seconds(2019, 1, 1);
  const std::uint32_t day = m_random.Below(2700);
  m_modified = kFirstDay + day * kDay + m_random.Below(kDay);
  constexpr int kArchive = 32, kReadOnly = 1, kHidden = 2;
  m_attributes = kArchive;
  const std::uint32_t special = m_random.Below(64);
  if (special < 3) m_attributes |= kReadOnly;
  if (special == 3) m_attributes |= kHidden;
  ++m_count;
}

}  // namespace kxrestore::sample
