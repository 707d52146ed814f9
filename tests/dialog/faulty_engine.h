// The engine with one fault at a chosen place: an opening, a row, a mark or a commit that fails, once or from
// then on. Everything else is the real back end's work. Commits come after every second mark, so that a short
// walk has several groups.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "engine/database.h"
#include "engine/error_numbers.h"
#include "tests/dialog/pass_through_engine.h"

namespace kxrestore::dialog_test {

enum class Fault { kNone, kReach, kOpen, kRow, kMark, kCommit };

struct Injection {
  Fault fault = Fault::kNone;
  std::size_t at = 0;  // from 1
  bool forever = false;
  std::size_t seen = 0;  // places of this kind that were passed

  // Whether this place fails.
  bool Hits(Fault here) {
    if (fault != here) return false;
    ++seen;
    return forever ? seen >= at : seen == at;
  }
  void Fail(Fault here, int number, const char* description) {
    if (Hits(here)) throw Error(number, description, "test");
  }
};

class FaultyRecordset : public PassThroughRecordset {
 public:
  FaultyRecordset(std::unique_ptr<engine::Recordset> rows, Injection& injection, engine::Backend& backend,
                  std::size_t& marks)
      : PassThroughRecordset(std::move(rows)), m_injection(injection), m_backend(backend), m_marks(marks) {}

  void MoveNext() override {
    m_injection.Fail(Fault::kRow, engine::error_number::kDiskError, "Disk I/O error during read.");
    PassThroughRecordset::MoveNext();
  }
  void Update() override {
    m_injection.Fail(Fault::kMark, engine::error_number::kRowLocked, "Locked by another user.");
    PassThroughRecordset::Update();
    if (++m_marks % 2 == 0) m_backend.Flush();
  }

 private:
  Injection& m_injection;
  engine::Backend& m_backend;
  std::size_t& m_marks;
};

class FaultyDatabase : public PassThroughDatabase {
 public:
  FaultyDatabase(std::unique_ptr<engine::Database> database, Injection& injection, engine::Backend& backend,
                 std::size_t& marks)
      : PassThroughDatabase(std::move(database)),
        m_injection(injection),
        m_backend(backend),
        m_marks(marks) {}

  std::unique_ptr<engine::Recordset> OpenRecordset(std::string_view source, engine::RecordsetType type,
                                                   const engine::ColumnNames& read) override {
    m_injection.Fail(Fault::kOpen, engine::error_number::kDamaged, "Unrecognized database format.");
    return std::make_unique<FaultyRecordset>(m_database->OpenRecordset(source, type, read), m_injection,
                                             m_backend, m_marks);
  }
  std::int64_t Execute(std::string_view sql, int options) override {
    m_injection.Fail(Fault::kMark, engine::error_number::kRowLocked, "Locked by another user.");
    const std::int64_t rows = m_database->Execute(sql, options);
    if (++m_marks % 2 == 0) m_backend.Flush();
    return rows;
  }

 private:
  Injection& m_injection;
  engine::Backend& m_backend;
  std::size_t& m_marks;
};

// During its lifetime, connections of the embedded database opened in this process fail their commits as the
// injection specifies.
class FaultyBackend : public engine::Backend {
 public:
  FaultyBackend(std::unique_ptr<engine::Backend> backend, Injection& injection)
      : m_backend(std::move(backend)), m_injection(injection) {
    s_injection = &injection;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(HookCommits));
  }
  ~FaultyBackend() override {
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(HookCommits));
    s_injection = nullptr;
  }

  std::unique_ptr<engine::Database> Open(const engine::OpenRequest& request) override {
    m_injection.Fail(Fault::kReach, engine::error_number::kFileNotFound, "Could not find file.");
    return std::make_unique<FaultyDatabase>(m_backend->Open(request), m_injection, *m_backend, m_marks);
  }
  void BeginAction() override { m_backend->BeginAction(); }
  void Idle() override { m_backend->Idle(); }
  void Flush() override { m_backend->Flush(); }
  void EndAction() override { m_backend->EndAction(); }
  void SetWaiting(const engine::Waiting& waiting) override { m_backend->SetWaiting(waiting); }
  engine::CommitCounts Commits() const override { return m_backend->Commits(); }

 private:
  static int HookCommits(sqlite3* connection, char**, const void*) {
    sqlite3_commit_hook(
        connection, [](void*) { return s_injection != nullptr && s_injection->Hits(Fault::kCommit) ? 1 : 0; },
        nullptr);
    return SQLITE_OK;
  }

  static inline Injection* s_injection = nullptr;
  std::unique_ptr<engine::Backend> m_backend;
  Injection& m_injection;
  std::size_t m_marks = 0;
};

}  // namespace kxrestore::dialog_test
