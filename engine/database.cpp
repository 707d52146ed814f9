#include "engine/database.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/error.h"
#include "base/text.h"
#include "engine/dao/dao_backend.h"
#include "engine/error_numbers.h"
#include "engine/failures.h"
#include "engine/jet_file/jet_file_backend.h"
#include "engine/odbc/odbc_backend.h"
#include "engine/sqlite/sqlite_backend.h"

namespace kxrestore::engine {
namespace {

enum class FileKind { kSqlite, kDesktop };

FileKind ReadFileKind(const std::string& name) {
  const std::string quoted = "'" + name + "'";
  const std::string cannotOpen = "The database engine cannot open the file " + quoted + ". ";
  std::error_code failure;
  const std::filesystem::path path(std::u8string(name.begin(), name.end()));
  const auto status = std::filesystem::status(path, failure);
  if (status.type() == std::filesystem::file_type::not_found || name.empty()) {
    Raise(error_number::kFileNotFound, "Could not find file " + quoted + ".");
  }
  if (!std::filesystem::is_regular_file(status)) {
    Raise(error_number::kCannotOpen, cannotOpen + "It is no file, or you need permission to view it.");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) Raise(error_number::kCannotOpen, cannotOpen + "You need permission to view it.");
  std::array<char, 32> header{};
  file.read(header.data(), header.size());
  const std::string_view start(header.data(), static_cast<std::size_t>(file.gcount()));
  using namespace std::string_view_literals;
  if (start.starts_with("SQLite format 3\0"sv)) return FileKind::kSqlite;
  if (start.size() > 4 &&
      (start.substr(4).starts_with("Standard Jet DB") || start.substr(4).starts_with("Standard ACE DB"))) {
    return FileKind::kDesktop;
  }
  Raise(error_number::kUnrecognizedFormat, "Unrecognized database format " + quoted + ".");
}

Workspace::DesktopFiles ChosenDesktopFiles() {
  const char* chosen = std::getenv("KXRESTORE_DESKTOP_FILES");
  const std::string_view text = chosen == nullptr ? "" : chosen;
  if (text == "engine") return Workspace::DesktopFiles::kEngine;
  if (text == "reader") return Workspace::DesktopFiles::kReader;
  return Workspace::DesktopFiles::kEngineIfInstalled;
}

}  // namespace

Field Recordset::Fields(std::string_view name) {
  const std::size_t count = FieldCount();
  for (std::size_t i = 0; i < count; ++i) {
    if (EqualIgnoringCase(FieldName(i), name)) return Field(*this, i);
  }
  RaiseItemNotFound(name);
}

std::string_view Field::TextView() const {
  const ValueView value = Value();
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  if (engine::IsNull(value)) return {};
  Raise(kxrestore::error_number::kTypeMismatch, "Type mismatch");
}

Workspace::Workspace(Backends backends, DesktopFiles desktopFiles)
    : m_backends(std::move(backends)), m_desktopFiles(desktopFiles) {}

Workspace::~Workspace() = default;

// A failure does not keep the operation from the other back ends.
template <typename Operation>
void Workspace::ForEachBackend(Operation operation) {
  Failures failures;
  for (Backend* backend :
       {m_backends.sqlite.get(), m_backends.odbc.get(), m_backends.dao.get(), m_backends.jetFile.get()}) {
    if (backend != nullptr) failures.Try([&] { operation(*backend); });
  }
  failures.Raise();
}

Backend* Workspace::DesktopBackend() const {
  Backend* const engine = m_backends.dao.get();
  Backend* const reader = m_backends.jetFile.get();
  switch (m_desktopFiles) {
    case DesktopFiles::kEngine:
      return engine;
    case DesktopFiles::kReader:
      return reader;
    default:
      return engine != nullptr && (reader == nullptr || engine->IsInstalled()) ? engine : reader;
  }
}

Backend& Workspace::BackendForFile(const OpenRequest& request) {
  for (const auto& [name, backend] : m_known) {
    if (name == request.name) return *backend;
  }
  const FileKind kind = ReadFileKind(request.name);
  Backend* backend = kind == FileKind::kSqlite ? m_backends.sqlite.get() : DesktopBackend();
  if (backend == nullptr) dao::RaiseNotInstalled(request.name);
  if (InAction()) m_known.emplace_back(request.name, backend);
  return *backend;
}

std::unique_ptr<Database> Workspace::OpenDatabase(const OpenRequest& request) {
  if (!request.connect.empty()) {
    if (!m_backends.odbc) {
      Raise(error_number::kOdbcConnectionFailed, "ODBC - connection failed: this build reaches no server.");
    }
    return m_backends.odbc->Open(request);
  }
  if (request.name.find('\0') != std::string::npos) {
    Raise(error_number::kFileNotFound,
          "Could not find file '" + request.name.substr(0, request.name.find('\0')) + "'.");
  }
  return BackendForFile(request).Open(request);
}

void Workspace::Idle() {
  ForEachBackend([](Backend& backend) { backend.Idle(); });
}

void Workspace::Flush() {
  ForEachBackend([](Backend& backend) { backend.Flush(); });
}

CommitCounts Workspace::Commits() const {
  CommitCounts counts;
  for (const Backend* backend :
       {m_backends.sqlite.get(), m_backends.odbc.get(), m_backends.dao.get(), m_backends.jetFile.get()}) {
    if (backend != nullptr) counts += backend->Commits();
  }
  return counts;
}

void Workspace::SetWaiting(const Waiting& waiting) {
  ForEachBackend([&](Backend& backend) { backend.SetWaiting(waiting); });
}

void Workspace::BeginAction() {
  if (m_depth++ == 0) ForEachBackend([](Backend& backend) { backend.BeginAction(); });
}

void Workspace::EndAction() {
  if (m_depth == 0 || --m_depth > 0) return;
  m_known.clear();
  ForEachBackend([](Backend& backend) { backend.EndAction(); });
}

std::unique_ptr<Workspace> MakeDefaultWorkspace() {
  Workspace::Backends backends;
  backends.sqlite = sqlite::MakeSqliteBackend();
  backends.odbc = odbc::MakeOdbcBackend();
  backends.dao = dao::MakeDaoBackend();
  backends.jetFile = jet_file::MakeJetFileBackend();
  return std::make_unique<Workspace>(std::move(backends), ChosenDesktopFiles());
}

}  // namespace kxrestore::engine
