// The database engine as the catalog code sees it: a workspace opens databases, a database opens recordsets,
// executes action statements and keeps saved queries. The shape, the SQL dialect and the error numbers are
// those of the desktop engine that the catalogs were made with; every failure is a kxrestore::Error with one
// of engine/error_numbers.h.
//
// Not thread-safe. A database and its recordsets may be destroyed in any order, which closes them.
// Destructors neither throw nor commit: changes that no Flush, EndAction or CommitTrans has committed may be
// rolled back.
//
// Every function may also throw std::bad_alloc. A call that throws has changed nothing in the database, and
// all objects stay usable; only a recordset that failed to move is at its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/sql.h"
#include "engine/value.h"

namespace kxrestore::engine {

enum class RecordsetType {
  kDynaset = 2,   // rows can be edited; reads their current state
  kSnapshot = 4,  // rows do not change after opening, whatever else is written meanwhile
};

// Option of Execute: an engine error is raised and undoes the statement.
inline constexpr int kFailOnError = 128;

// Columns of a result by their names, without regard to case.
using ColumnNames = std::vector<std::string_view>;

class Field;

class Recordset {
 public:
  virtual ~Recordset() = default;

  virtual bool Eof() const = 0;
  // Error 3021 at the end. Errors of reading the next row are raised here, including those that occurred
  // earlier, when a write made the recordset buffer its remaining rows.
  virtual void MoveNext() = 0;

  virtual std::size_t FieldCount() const = 0;
  virtual std::string_view FieldName(std::size_t index) const = 0;
  // The field of that name, without regard to case; error 3265 when there is none.
  Field Fields(std::string_view name);
  virtual ValueView FieldValue(std::size_t index) const = 0;

  // Changing the current row of a dynaset: Edit, Field::Set, Update. Error 3027 where the row cannot be
  // changed.
  virtual void Edit() = 0;
  virtual void SetFieldValue(std::size_t index, Value value) = 0;
  virtual void Update() = 0;

  virtual void Close() = 0;
};

// One column of a recordset, looked up once and read for every row. A view of a text is valid until the next
// move, the next write to the same database, or close.
class Field {
 public:
  Field(Recordset& recordset, std::size_t index) : m_recordset(&recordset), m_index(index) {}

  ValueView Value() const { return m_recordset->FieldValue(m_index); }
  bool IsNull() const { return engine::IsNull(Value()); }
  std::string_view TextView() const;  // only for text and null fields; anything else is converted by Text()
  std::string Text() const { return ToText(Value()); }
  std::int64_t Integer() const { return ToInteger(Value()); }
  bool Boolean() const { return ToBoolean(Value()); }
  void Set(engine::Value value) { m_recordset->SetFieldValue(m_index, std::move(value)); }

 private:
  Recordset* m_recordset;
  std::size_t m_index;
};

class Database {
 public:
  virtual ~Database() = default;

  // `source` is a single SELECT or the name of a table or saved query; a writing statement raises 3219, a
  // second statement 3142. `read`: the columns that will be read, empty for all. The recordset may omit the
  // others, which saves computing and sending them.
  virtual std::unique_ptr<Recordset> OpenRecordset(const Sql& source, RecordsetType type,
                                                   const ColumnNames& read = {}) = 0;

  // Executes one UPDATE, INSERT or DELETE and returns the number of rows changed. A statement that fails or
  // is stopped has changed nothing, and earlier updates of the group stay. Where the failure rolls those back
  // as well (disk full, I/O error, out of memory), the next Idle, Flush or EndAction raises it again for the
  // group.
  virtual std::int64_t Execute(const Sql& sql, int options = 0) = 0;

  // Saved queries. Their text ends in ";". Error 3265 when none has that name, 3012 when the name is taken.
  virtual std::string QueryText(std::string_view name) = 0;
  virtual void CreateQueryDef(std::string_view name, std::string_view sql) = 0;
  virtual void DeleteQueryDef(std::string_view name) = 0;

  // An explicit transaction. BeginTrans commits the pending group first, and no group is committed before
  // CommitTrans or Rollback. Closing or destroying the database rolls back. A commit that fails has written
  // nothing and leaves the transaction open for Rollback. Error 3034 to end a transaction that was not begun,
  // 3219 to begin a second one.
  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void Rollback() = 0;

  virtual void Close() = 0;
};

// Arguments of OpenDatabase.
struct OpenRequest {
  std::string name;  // file path; empty for a server
  bool exclusive = false;
  bool readOnly = false;
  std::string connect;  // empty for a file, "ODBC;..." for a server
};

// The waiting callback, invoked about every 20 ms while a back end opens, reads, writes, commits, closes or
// waits for other processes. It returns whether to continue. After false, the running statement ends with
// error 3059 within 200 ms and has changed nothing; a commit stops waiting within the same time, which counts
// as a failed commit. An exception stops the work in the same way and propagates from the call. The callback
// must not use the engine.
using Waiting = std::function<bool()>;

// Groups of updates since the back end was created. A group is lost when its commit fails or its connection
// breaks: none of its updates is in the database, and the next Idle, Flush or EndAction raises the cause.
struct CommitCounts {
  std::uint64_t committed = 0;
  std::uint64_t lost = 0;

  CommitCounts& operator+=(const CommitCounts& other) {
    committed += other.committed;
    lost += other.lost;
    return *this;
  }
};

// One kind of database. A back end may keep sessions and prepared statements open between the databases that
// are opened within one user action, and group single updates into one commit; see Workspace.
class Backend {
 public:
  virtual ~Backend() = default;
  virtual std::unique_ptr<Database> Open(const OpenRequest& request) = 0;
  virtual bool IsInstalled() const { return true; }  // with everything it needs on this machine
  virtual void BeginAction() {}  // from here on sessions may stay open and updates may be grouped
  // These raise a failed commit; see Workspace.
  virtual void Idle() = 0;                                // commits a group that is 100 ms old
  virtual void Flush() = 0;                               // commits, keeps sessions
  virtual void EndAction() = 0;                           // commits, closes idle sessions
  virtual void SetWaiting(const Waiting& /*waiting*/) {}  // may be empty
  virtual CommitCounts Commits() const { return {}; }     // zeros where updates are never grouped
};

// The default workspace. Within a user action, single updates (Recordset::Update, Execute) are grouped and
// committed at least every 100 ms, before the program waits for anything, and when the action ends. Outside
// of an action every update is committed immediately. Destructors never commit.
//
// A commit that fails rolls back its group: the updates since the last successful commit are not in the
// database. (If a disk fails in the last step of a commit they may be there nevertheless; only reading
// shows.) The failure is raised once, by the next Idle, Flush or EndAction, never by the statement that
// attempted the commit. Its number is that of the cause: 3260 when other processes held the file for longer
// than the engine or the user was willing to wait, else 3026, 3043 or 7. Everything stays usable. When
// several databases fail at once, one error carries all descriptions.
//
// Waiting for other processes' locks is limited to 3 s in total between BeginAction and EndAction, and to 3 s
// a call outside of an action.
class Workspace {
 public:
  struct Backends {
    std::unique_ptr<Backend> sqlite;   // catalog files, the embedded default
    std::unique_ptr<Backend> odbc;     // servers; may be absent
    std::unique_ptr<Backend> dao;      // files of the desktop engine, through it; may be absent
    std::unique_ptr<Backend> jetFile;  // the same files without it; may be absent
  };
  // What opens files of the desktop engine: the engine if it is installed, else the built-in reader; or
  // always one of them.
  enum class DesktopFiles { kEngineIfInstalled, kEngine, kReader };
  explicit Workspace(Backends backends, DesktopFiles desktopFiles = DesktopFiles::kEngineIfInstalled);
  ~Workspace();

  // The header of a file selects the back end, whatever its extension; a connect string selects the server's.
  // Errors: 3024 no such file, 3051 a directory or no permission, 3343 no database, 3049 damaged, 429 desktop
  // engine not installed, 3151 server not reached.
  std::unique_ptr<Database> OpenDatabase(const OpenRequest& request);

  // Commits groups that are due, without waiting for other processes. Call it wherever pending messages are
  // processed. Raises a failed commit, including one that an update attempted.
  void Idle();
  // Commits all groups. Call it before waiting for the user or the host. Raises a failed commit.
  void Flush();
  // The sum over all back ends. Comparing two readings shows whether an update made between them is
  // committed, lost or pending.
  CommitCounts Commits() const;

  // Sets the waiting callback; may be empty.
  void SetWaiting(const Waiting& waiting);

  // Delimit one user action. They nest; only the outermost pair has an effect. EndAction commits, closes
  // sessions and raises a failed commit, after which the action has ended as well. Destroying the workspace
  // within an action rolls back the pending group.
  void BeginAction();
  void EndAction();
  bool InAction() const { return m_depth > 0; }

 private:
  Backend& BackendForFile(const OpenRequest& request);
  Backend* DesktopBackend() const;
  template <typename Operation>
  void ForEachBackend(Operation operation);

  Backends m_backends;
  DesktopFiles m_desktopFiles;
  int m_depth = 0;
  std::vector<std::pair<std::string, Backend*>> m_known;  // back ends by file, for this action
};

// The workspace with every back end that this build has. The environment variable KXRESTORE_DESKTOP_FILES
// chooses what opens files of the desktop engine: "engine", "reader", or, with any other value, whichever is
// available.
std::unique_ptr<Workspace> MakeDefaultWorkspace();

}  // namespace kxrestore::engine
