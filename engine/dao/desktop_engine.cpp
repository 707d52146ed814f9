#include "engine/dao/desktop_engine.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "base/error.h"
#include "engine/dao/dao_backend.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::dao {
namespace {

// Newest first. The last two exist for x86 programs only.
constexpr const wchar_t* kEngines[] = {L"DAO.DBEngine.120", L"DAO.DBEngine.36", L"DAO.DBEngine.35"};

constexpr std::int32_t kRefreshCache = 8;  // of Idle: flush pending writes and the read cache

constexpr std::int32_t kForceWrite = 1;  // of CommitTrans: sync to disk before returning

// A version that is registered but cannot be created, or exists for the other bitness only, does not hide an
// older one.
ComPtr<IDispatch> MakeNewest(const std::string& file) {
  std::string reason;
  for (const wchar_t* name : kEngines) {
    CLSID identifier;
    if (FAILED(CLSIDFromProgID(name, &identifier))) continue;
    ComPtr<IDispatch> engine;
    const HRESULT result = CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                            reinterpret_cast<void**>(engine.GetAddressOf()));
    if (SUCCEEDED(result)) return engine;
    if (reason.empty()) {
      char buffer[80];
      std::snprintf(buffer, sizeof buffer, "%ls is registered but answers 0x%08lX", name,
                    static_cast<unsigned long>(result));
      reason = buffer;
    }
  }
  RaiseNotInstalled(file, reason);
}

Object ListOfErrors(const ComPtr<IDispatch>& engine) {
  try {
    return Object(engine).GetObject(L"Errors");
  } catch (const Error&) {
    return {};  // an engine without the list still reports errors
  }
}

}  // namespace

bool DesktopEngine::IsInstalled() {
  return std::any_of(std::begin(kEngines), std::end(kEngines), [](const wchar_t* name) {
    CLSID identifier;
    ComPtr<IClassFactory> factory;
    return SUCCEEDED(CLSIDFromProgID(name, &identifier)) &&
           SUCCEEDED(CoGetClassObject(identifier, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                      reinterpret_cast<void**>(factory.GetAddressOf())));
  });
}

DesktopEngine::DesktopEngine(const std::string& file) {
  const ComPtr<IDispatch> engine = MakeNewest(file);
  m_engine = Object(engine, ListOfErrors(engine).Dispatch());
  m_workspace = m_engine.GetObject(L"Workspaces").Item(Variant(0));
}

void DesktopEngine::HasWritten() {
  if (!m_firstUnwritten) m_firstUnwritten = Clock::now();
  if (!m_gather) WriteOutAfter(std::chrono::milliseconds(0));
}

void DesktopEngine::WriteOutAfter(std::chrono::milliseconds age) {
  if (!m_firstUnwritten || Clock::now() - *m_firstUnwritten < age) return;
  m_firstUnwritten.reset();
  m_engine.Call(L"Idle", Variant(kRefreshCache));
}

void DesktopEngine::BeginTransaction(const Database& owner) {
  WriteOutAfter(std::chrono::milliseconds(0));
  m_workspace.Call(L"BeginTrans");
  m_transactionOwner = &owner;
}

void DesktopEngine::CommitTransaction() {
  m_workspace.Call(L"CommitTrans", Variant(kForceWrite));
  m_transactionOwner = nullptr;
  m_firstUnwritten.reset();
}

void DesktopEngine::UndoTransaction() {
  m_transactionOwner = nullptr;
  m_firstUnwritten.reset();
  m_workspace.Call(L"Rollback");
}

Session::Session(std::shared_ptr<DesktopEngine> engine, const OpenRequest& request)
    : m_engine(std::move(engine)), m_request(request) {
  m_database = m_engine->DefaultWorkspace().CallForObject(
      L"OpenDatabase", Variant(std::string_view(request.name)), Variant(request.exclusive),
      Variant(request.readOnly), Variant(std::string_view(request.connect)));
}

Session::~Session() {
  try {
    m_database.Call(L"Close");
  } catch (const Error&) {
    // It is closed either way; errors of pending writes have been raised by WriteOutAfter.
  }
}

bool Session::IsFor(const OpenRequest& request) const {
  return request.name == m_request.name && request.exclusive == m_request.exclusive &&
         request.readOnly == m_request.readOnly && request.connect == m_request.connect;
}

}  // namespace kxrestore::engine::dao
