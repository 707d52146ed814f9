// Base of the databases of all back ends. Several databases may share a session until they close; a
// transaction belongs to the database that began it.
//
// A Session provides Place() for messages, BeginTransaction(owner), CommitTransaction(), UndoTransaction()
// and TransactionOwner().
#pragma once

#include <memory>
#include <utility>

#include "base/error.h"
#include "engine/database.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine {

template <class Session>
class SessionDatabase : public Database {
 public:
  ~SessionDatabase() override {
    try {
      SessionDatabase::Close();
    } catch (...) {  // the back end rolls back
    }
  }
  SessionDatabase(const SessionDatabase&) = delete;
  SessionDatabase& operator=(const SessionDatabase&) = delete;

  void BeginTrans() override {
    Session& session = OpenForWriting();
    if (session.TransactionOwner() != nullptr) {
      Raise(error_number::kInvalidOperation,
            "Invalid operation: a transaction has begun already in '" + session.Place() + "'.");
    }
    session.BeginTransaction(*this);
  }
  void CommitTrans() override { OpenInTransaction().CommitTransaction(); }
  void Rollback() override { OpenInTransaction().UndoTransaction(); }

  void Close() override {
    const std::shared_ptr<Session> session = std::move(m_session);
    if (session && session->TransactionOwner() == this) session->UndoTransaction();
  }

 protected:
  SessionDatabase(std::shared_ptr<Session> session, bool readOnly)
      : m_session(std::move(session)), m_readOnly(readOnly) {}

  bool IsReadOnly() const { return m_readOnly; }

  // The session, if the database is open, writable, or in a transaction of its own, respectively; otherwise
  // the corresponding error.
  const std::shared_ptr<Session>& Open() const {
    if (!m_session) {
      Raise(error_number::kObjectInvalid, "Object invalid or no longer set: the database.");
    }
    return m_session;
  }

  Session& OpenForWriting() const {
    Session& session = *Open();
    if (m_readOnly) {
      Raise(error_number::kReadOnly,
            "Cannot update. Database or object is read-only: '" + session.Place() + "'.");
    }
    return session;
  }

  Session& OpenInTransaction() const {
    Session& session = *Open();
    if (session.TransactionOwner() == this) return session;
    Raise(error_number::kNoTransaction,
          "You tried to commit or rollback a transaction without first beginning a transaction.");
  }

 private:
  std::shared_ptr<Session> m_session;
  bool m_readOnly;
};

}  // namespace kxrestore::engine
