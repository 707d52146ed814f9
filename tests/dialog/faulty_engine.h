// A workspace over the real back end in which one chosen call fails, once or from then on: opening the
// catalog, opening a recordset, reading a row, marking or committing. It commits after every second mark, so
// that a short walk has several groups of marks.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "tests/dialog/hooked_engine.h"

namespace kxrestore::dialog_test {

enum class Fault { kNone, kReach, kOpen, kRow, kMark, kCommit };

struct Injection {
  Fault fault = Fault::kNone;
  std::size_t at = 0;  // which call of its kind, from 1
  bool forever = false;
  std::size_t seen = 0;  // calls of this kind so far

  // Counts a call of this kind. Returns whether it must fail.
  bool Hits(Fault here) {
    if (fault != here) return false;
    ++seen;
    return forever ? seen >= at : seen == at;
  }
  void Fail(Fault here, int number, const char* description) {
    if (Hits(here)) throw Error(number, description, "test");
  }
};

// A workspace with such an engine. During its lifetime the commits of every SQLite connection that this
// process opens fail as the injection says.
class FaultyEngine {
 public:
  FaultyEngine(std::unique_ptr<engine::Backend> backend, Injection& injection) : m_injection(injection) {
    s_injection = &injection;
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(HookCommits));
    m_hooks.before = [this](const std::string& call) { Before(call); };
    m_hooks.after = [this, &real = *backend](const std::string& call) {
      if (IsMark(call) && ++m_marks % 2 == 0) real.Flush();
    };
    workspace = MakeHookedWorkspace(m_hooks, std::move(backend));
  }
  ~FaultyEngine() {
    sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(HookCommits));
    s_injection = nullptr;
  }
  FaultyEngine(const FaultyEngine&) = delete;
  FaultyEngine& operator=(const FaultyEngine&) = delete;

 private:
  static bool IsMark(const std::string& call) { return call == "write row" || call.starts_with("execute "); }
  void Before(const std::string& call) {
    using namespace engine::error_number;
    if (call == "open catalog") m_injection.Fail(Fault::kReach, kFileNotFound, "Could not find file.");
    if (call == "next row") m_injection.Fail(Fault::kRow, kDiskError, "Disk I/O error during read.");
    if (IsMark(call)) m_injection.Fail(Fault::kMark, kRowLocked, "Locked by another user.");
    if (call.starts_with("snapshot ") || call.starts_with("dynaset ")) {
      m_injection.Fail(Fault::kOpen, kDamaged, "Unrecognized database format.");
    }
  }
  static int HookCommits(sqlite3* connection, char**, const void*) {
    sqlite3_commit_hook(
        connection, [](void*) { return s_injection != nullptr && s_injection->Hits(Fault::kCommit) ? 1 : 0; },
        nullptr);
    return SQLITE_OK;
  }

  static inline Injection* s_injection = nullptr;
  Injection& m_injection;
  EngineHooks m_hooks;
  std::size_t m_marks = 0;

 public:
  std::unique_ptr<engine::Workspace> workspace;  // destroyed before its hooks
};

}  // namespace kxrestore::dialog_test
