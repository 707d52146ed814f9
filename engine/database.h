// The database engine as the catalog code sees it: a workspace opens databases, a database opens recordsets,
// executes action statements and keeps saved queries. The shape, the SQL dialect and the error numbers are
// those of the desktop engine that the catalogs were made with; every failure is a kxrestore::Error with one
// of engine/error_numbers.h.
//
// One thread. A database and its recordsets may be destroyed in any order; destroying closes. Destructors
// neither throw nor commit: what a Flush, an EndAction or a CommitTrans has not returned for may be undone.
//
// Besides its errors every function may throw std::bad_alloc. What threw has changed nothing in the database,
// and everything can be used on; only a recordset that failed to move stands at its end.
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
  kDynaset = 2,   // rows can be edited; reads the rows as they are
  kSnapshot = 4,  // rows stay what they were when the recordset was opened, whatever is written beside it
};

// Option of Execute: an engine error is raised and undoes the statement.
inline constexpr int kFailOnError = 128;

// Columns of a result by their names, without regard to case.
using ColumnNames = std::vector<std::string_view>;

class Recordset;

// One column of a recordset, looked up once and read for every row. A view of a text is valid until the next
// move, the next write to the same database, or close.
class Field {
 public:
  Field(Recordset& recordset, std::size_t index) : m_recordset(&recordset), m_index(index) {}

  ValueView Value() const;
  bool IsNull() const;
  std::string_view TextView() const;  // only for text and null fields; anything else is converted by Text()
  std::string Text() const;
  std::int64_t Integer() const;
  bool Boolean() const;
  void Set(engine::Value value);

 private:
  Recordset* m_recordset;
  std::size_t m_index;
};

class Recordset {
 public:
  virtual ~Recordset() = default;

  virtual bool Eof() const = 0;
  // Error 3021 at the end. What keeps the next row from being read is raised here, also when that was met
  // earlier, while rows were taken into memory because something was written beside them.
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

class Database {
 public:
  virtual ~Database() = default;

  // `source` is one reading statement or the name of a table or saved query. A writing statement or a second
  // one is refused (3219, 3142). `read`: the columns that will be read, empty for all. The recordset may lack
  // the others, so that nobody has to work them out and send them.
  virtual std::unique_ptr<Recordset> OpenRecordset(std::string_view source, RecordsetType type,
                                                   const ColumnNames& read = {}) = 0;

  // One action statement (UPDATE, INSERT, DELETE). Returns the number of rows changed. One that fails or is
  // stopped has changed nothing, and earlier updates of the group stay; where the failure undoes those as
  // well (a full or broken disk, memory), the next Idle, Flush or EndAction raises it again for them.
  virtual std::int64_t Execute(std::string_view sql, int options = 0) = 0;

  // The same for a statement that carries its values. A back end that does not bind them gets the complete
  // text.
  virtual std::unique_ptr<Recordset> OpenRecordset(const Sql& sql, RecordsetType type,
                                                   const ColumnNames& read = {}) {
    return OpenRecordset(sql.Printed(), type, read);
  }
  virtual std::int64_t Execute(const Sql& sql, int options = 0) { return Execute(sql.Printed(), options); }

  // Saved queries. Their text ends in ";". Error 3265 when there is none of that name, 3012 when it is there
  // already.
  virtual std::string QueryText(std::string_view name) = 0;
  virtual void CreateQueryDef(std::string_view name, std::string_view sql) = 0;
  virtual void DeleteQueryDef(std::string_view name) = 0;

  // What is written between BeginTrans and CommitTrans is there as a whole or not at all, and no commit of a
  // group comes between; what waited before is committed first. Rollback undoes it, and so does closing or
  // destroying the database. A commit that fails has written nothing and leaves the transaction to Rollback.
  // Error 3034 to end what was not begun, 3219 to begin a second one beside the first.
  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void Rollback() = 0;

  virtual void Close() = 0;
};

// What OpenDatabase was asked for.
struct OpenRequest {
  std::string name;  // file path; empty for a server
  bool exclusive = false;
  bool readOnly = false;
  std::string connect;  // empty for a file, "ODBC;..." for a server
};

// Called about every 20 ms while a back end works or waits for other processes, whatever it does: opening,
// reading, writing, committing, closing. Answers whether it is to go on. When not, the statement at work ends
// with error 3059 within 200 ms and has changed nothing; a commit gives up waiting after the same time, which
// is no cancellation but a failed commit. An exception ends the work like a refusal and comes out of the
// call. Nothing of the engine may be used from inside.
using Waiting = std::function<bool()>;

// Groups of updates since the back end was made. A group is lost when its commit failed or its connection
// went away; none of its updates is in the database then, and the next Idle, Flush or EndAction raises why.
struct CommitCounts {
  std::uint64_t committed = 0;
  std::uint64_t lost = 0;

  CommitCounts& operator+=(const CommitCounts& other) {
    committed += other.committed;
    lost += other.lost;
    return *this;
  }
};

// One kind of database. A back end may keep sessions and statements warm between the databases that are
// opened within one user action, and gather single updates into one commit; see Workspace.
class Backend {
 public:
  virtual ~Backend() = default;
  virtual std::unique_ptr<Database> Open(const OpenRequest& request) = 0;
  virtual bool IsInstalled() const { return true; }  // what it needs of the machine
  virtual void BeginAction() {}  // from here on sessions may stay warm and updates may wait
  // These raise a failed commit; see Workspace.
  virtual void Idle() = 0;                                // commits what has waited 100 ms
  virtual void Flush() = 0;                               // commits everything, keeps sessions
  virtual void EndAction() = 0;                           // commits everything, lets every idle session go
  virtual void SetWaiting(const Waiting& /*waiting*/) {}  // empty: nobody wants to know
  virtual CommitCounts Commits() const { return {}; }     // zeros where updates never wait
};

// The default workspace. Single updates (Recordset::Update, Execute) made inside one user action are gathered
// and committed at the latest every 100 ms, before the program waits for anything, and when the action ends.
// Outside of an action every update is committed at once. Committing never happens in a destructor's silence.
//
// A commit that fails undoes its group: the updates since the last commit that succeeded are not in the
// database, as if the statements had not been run. (When a disk fails at the very end of a commit they may be
// there all the same; only reading tells.) It is raised once, by Idle, Flush or EndAction, whichever comes
// first, never by the statement in whose course it was tried; its number is that of the cause: 3260 when
// others held the file for longer than the engine waits or than the user wants to, 3026, 3043, 7. Everything
// can be used on after it. When several databases fail at once, their descriptions are raised in one error.
//
// All waiting for other processes' locks between BeginAction and EndAction together ends after 3 s, outside
// of an action that of each call.
class Workspace {
 public:
  struct Backends {
    std::unique_ptr<Backend> sqlite;   // catalog files, the embedded default
    std::unique_ptr<Backend> odbc;     // servers; may be absent
    std::unique_ptr<Backend> dao;      // files of the desktop engine, through it; may be absent
    std::unique_ptr<Backend> jetFile;  // the same files without it; may be absent
  };
  // Who opens files of the desktop engine: the engine where it is installed, else this program's own reader;
  // or always the one or the other.
  enum class DesktopFiles { kEngineIfInstalled, kEngine, kReader };
  explicit Workspace(Backends backends, DesktopFiles desktopFiles = DesktopFiles::kEngineIfInstalled);
  ~Workspace();

  // A file is opened by the back end that its header asks for, whatever its extension; a server by its
  // connect string. Errors: 3024 no such file, 3051 a directory or no permission, 3343 no database, 3049
  // damaged, 429 desktop engine not installed, 3151 server not reached.
  std::unique_ptr<Database> OpenDatabase(const OpenRequest& request);

  // Gives pending commits their chance: call it wherever pending messages are let through. Waits for nobody.
  // Raises a failed commit, also one of an update's own course.
  void Idle();
  // Commits everything now: call it before waiting for the user or the host. Raises a failed commit.
  void Flush();
  // What became of the updates that waited, over all back ends. Compare two readings to see whether an update
  // that was made between them is in the database, lost, or still waiting.
  CommitCounts Commits() const;

  // What to do while the engine works or waits; nothing when empty.
  void SetWaiting(const Waiting& waiting);

  // Brackets one user action; they nest, the outermost counts. EndAction commits, lets sessions go and raises
  // a failed commit; the action has ended then, too. A workspace that is destroyed within an action undoes
  // what has not been committed.
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
  std::vector<std::pair<std::string, Backend*>> m_known;  // files whose header this action has read
};

// The workspace with every back end that this build has. The environment variable KXRESTORE_DESKTOP_FILES
// says who opens files of the desktop engine: "engine", "reader", or anything else for whichever is there.
std::unique_ptr<Workspace> MakeDefaultWorkspace();

}  // namespace kxrestore::engine
