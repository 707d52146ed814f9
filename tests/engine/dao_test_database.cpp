#include "tests/engine/dao_test_database.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

#include "base/utf16.h"
#include "engine/dao/values.h"

namespace kxrestore::engine::testing {
namespace {

using dao::ComPtr;
using dao::Variant;
using Arguments = std::span<const VARIANT>;  // in the order of the parameters
using Journal = DaoTestDatabase::Journal;

constexpr int kBadCall = 5;

// ---- automation objects, each with a table of members. A call with another name or kind, or with another
// number or type of arguments, is refused with a description of the mistake.

// The argument of a parameter; one of type Value takes any argument.
template <class Type>
Type As(const VARIANT& argument) {
  std::string text;
  const Value value = OwnedOf(dao::ToValue(argument, text));
  if constexpr (std::is_same_v<Type, Value>) {
    return value;
  } else {
    const VARTYPE type = std::is_same_v<Type, std::string> ? VT_BSTR
                         : std::is_same_v<Type, bool>      ? VT_BOOL
                                                           : VT_I4;
    if (argument.vt != type) throw Error(kBadCall, "an argument has another type");
    return std::get<Type>(value);
  }
}

// Passes arguments to a function of these types that returns nothing, a value or an object.
template <class Result, class... Types>
std::function<Variant(Arguments)> Unpacking(std::function<Result(Types...)> run) {
  return [=](Arguments arguments) {
    if (arguments.size() != sizeof...(Types)) throw Error(kBadCall, "the number of arguments is another");
    return [&]<std::size_t... kAt>(std::index_sequence<kAt...>) {
      if constexpr (std::is_void_v<Result>) {
        run(As<std::decay_t<Types>>(arguments[kAt])...);
        return Variant();
      } else if constexpr (std::is_same_v<Result, Variant>) {
        return run(As<std::decay_t<Types>>(arguments[kAt])...);
      } else {
        return dao::FromValue(Value(run(As<std::decay_t<Types>>(arguments[kAt])...)));
      }
    }
    (std::index_sequence_for<Types...>());
  };
}

struct Member {
  // `declaration`: "get NAME", "put NAME" or "call NAME".
  template <class Run>
  Member(std::string_view declaration, Run function)
      : kind(declaration.substr(0, declaration.find(' '))),
        name(declaration.substr(kind.size() + 1)),
        run(Unpacking(std::function(std::move(function)))) {}

  std::string kind, name;
  std::function<Variant(Arguments)> run;
};

// A COM object with one interface.
template <class Interface>
class ComObject : public Interface {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == __uuidof(Interface);
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~ComObject() = default;

 private:
  ULONG m_references = 0;
};

BSTR MakeBstr(std::string_view text) {
  return std::exchange(Variant(text).Raw().bstrVal, nullptr);
}

std::string Shown(const VARIANT& variant) {
  std::string text;
  const ValueView value = dao::ToValue(variant, text);
  return variant.vt == VT_BSTR ? "\"" + text + "\"" : ToText(value);
}

WORD HowOf(std::string_view kind) {
  return kind == "get" ? DISPATCH_PROPERTYGET : kind == "put" ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD;
}

class DispatchObject final : public ComObject<IDispatch> {
 public:
  DispatchObject(Journal& journal, std::string name, std::vector<Member> members)
      : m_journal(journal), m_name(std::move(name)), m_members(std::move(members)) {
    ++m_journal.liveObjects;
  }

  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

  // The identifier of a name is the position of the first member of that name.
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* identifiers) override {
    std::string wanted;
    AppendUtf8(wanted, std::wstring_view(names[0]));
    const auto found = std::ranges::find(m_members, wanted, &Member::name);
    identifiers[0] =
        found == m_members.end() ? DISPID_UNKNOWN : static_cast<DISPID>(found - m_members.begin());
    return found == m_members.end() ? DISP_E_UNKNOWNNAME : S_OK;
  }

  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD how, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* details, UINT*) override {
    const ComPtr<DispatchObject> self(this);
    std::vector<VARIANT> arguments(parameters->rgvarg, parameters->rgvarg + parameters->cArgs);
    std::reverse(arguments.begin(), arguments.end());
    try {
      const bool named =
          parameters->cNamedArgs == 1 && parameters->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
      if (parameters->cNamedArgs > 1 || named != (how == DISPATCH_PROPERTYPUT)) {
        throw Error(kBadCall, m_name + ": only the value of a property is a named argument");
      }
      Variant answer = Run(m_members.at(static_cast<std::size_t>(member)).name, how, arguments);
      if (result != nullptr) *result = std::exchange(answer.Raw(), VARIANT{});
      return S_OK;
    } catch (const Error& error) {
      const std::string source = error.Source() == "Engine" ? "DAO." + m_name : "DAO server";
      m_journal.errors.clear();
      if (!m_journal.innerCause.empty()) m_journal.errors.push_back({1, m_journal.innerCause, "driver"});
      m_journal.errors.push_back({error.Number(), error.Description(), source});
      details->scode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, error.Number());
      if (!m_journal.bareErrors) {
        details->bstrDescription = MakeBstr(error.Description());
        details->bstrSource = MakeBstr(source);
      }
      return DISP_E_EXCEPTION;
    }
  }

 private:
  ~DispatchObject() override { --m_journal.liveObjects; }

  Variant Run(const std::string& name, WORD how, Arguments arguments) {
    const std::string call = m_name + "." + name;
    const auto member = std::ranges::find_if(m_members, [&](const Member& candidate) {
      return candidate.name == name && (HowOf(candidate.kind) & how) != 0;
    });
    if (member == m_members.end()) throw Error(kBadCall, call + " is not a member of this kind");
    std::string shown;
    for (const VARIANT& argument : arguments) shown += (shown.empty() ? "" : ", ") + Shown(argument);
    m_journal.calls.push_back(call + "(" + shown + ")");
    return member->run(arguments);
  }

  Journal& m_journal;
  const std::string m_name;
  const std::vector<Member> m_members;
};

Variant MakeObject(Journal* journal, std::string name, std::vector<Member> members) {
  Variant object;
  object.Raw().vt = VT_DISPATCH;
  object.Raw().pdispVal = new DispatchObject(*journal, std::move(name), std::move(members));
  object.Raw().pdispVal->AddRef();
  return object;
}

// ---- the desktop engine's objects, as far as this program uses them, over the SQLite back end. A request
// for "x.mdb" opens "x.db" in the same folder.

using SharedRows = std::shared_ptr<Recordset>;

[[noreturn]] void Fail(int number, const std::string& description) {
  throw Error(number, description, "Engine");
}

// A collection whose items have positions. Each access makes the items that it has at that time.
Variant MakeCollection(Journal* journal, std::string name,
                       const std::function<std::vector<Variant>()>& makeItems) {
  const auto item = [=](std::int64_t position) {
    std::vector<Variant> items = makeItems();
    if (position >= std::ssize(items))
      Fail(error_number::kItemNotFound, "Item not found in this collection.");
    return std::move(items[static_cast<std::size_t>(position)]);
  };
  return MakeObject(
      journal, std::move(name),
      {{"get Count", [=] { return std::int64_t{std::ssize(makeItems())}; }}, {"call Item", item}});
}

// A transaction belongs to the workspace. A database joins it with its first write.
struct Transaction {
  bool begun = false;
  std::vector<Database*> databases;

  void Join(Database& database) {
    if (!begun || std::ranges::find(databases, &database) != databases.end()) return;
    database.BeginTrans();
    databases.push_back(&database);
  }
  void End(void (Database::*how)()) {
    if (!begun) Fail(error_number::kNoTransaction, "No transaction.");
    for (Database* database : databases) (database->*how)();
    databases.clear();
    begun = false;
  }
};

bool IsUnreadable(const Recordset& rows, std::size_t index) {
  return rows.FieldValue(index) == ValueView(DaoTestDatabase::kUnreadable);
}

Variant MakeField(Journal* journal, const SharedRows& rows, std::size_t index) {
  const auto value = [=] {
    if (IsUnreadable(*rows, index)) Fail(3197, "The data has been changed.");
    return OwnedOf(rows->FieldValue(index));
  };
  return MakeObject(journal, "Field",
                    {{"get Name", [=] { return std::string(rows->FieldName(index)); }},
                     {"get Value", value},
                     {"put Value", [=](const Value& changed) { rows->SetFieldValue(index, changed); }}});
}

// An array of columns and rows with the next `count` rows, or fewer before the end or an unreadable row.
Variant GetRows(Recordset& rows, std::int64_t count) {
  const auto fields = static_cast<LONG>(rows.FieldCount());
  std::vector<Variant> cells;
  LONG read = 0;
  for (; read < count && !rows.Eof(); ++read, rows.MoveNext()) {
    bool readable = true;
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) readable &= !IsUnreadable(rows, i);
    if (!readable) break;
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
      cells.push_back(dao::FromValue(OwnedOf(rows.FieldValue(i))));
    }
  }
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(fields), 0}, {static_cast<ULONG>(read), 0}};
  Variant result;
  result.Raw().vt = VT_ARRAY | VT_VARIANT;
  result.Raw().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  for (LONG cell = 0; cell < read * fields; ++cell) {
    LONG at[] = {cell % fields, cell / fields};
    SafeArrayPutElement(result.Raw().parray, at, &cells[static_cast<std::size_t>(cell)].Raw());
  }
  return result;
}

Variant MakeRecordset(Journal* journal, const SharedRows& rows) {
  const auto fields = [=] {
    std::vector<Variant> items;
    for (std::size_t i = 0; i < rows->FieldCount(); ++i) items.push_back(MakeField(journal, rows, i));
    return items;
  };
  return MakeObject(journal, "Recordset",
                    {{"get EOF", [=] { return rows->Eof(); }},
                     {"get Fields", [=] { return MakeCollection(journal, "Fields", fields); }},
                     {"call MoveNext", [=] { rows->MoveNext(); }},
                     {"call Edit", [=] { rows->Edit(); }},
                     {"call Update", [=] { rows->Update(); }},
                     {"call Close", [=] { rows->Close(); }},
                     {"call GetRows", [=](std::int64_t count) { return GetRows(*rows, count); }}});
}

Variant MakeQueryDef(Journal* journal, const std::string& sql) {
  return MakeObject(journal, "QueryDef", {{"get SQL", [=] { return sql; }}});
}

Variant MakeDatabase(Journal* journal, const std::shared_ptr<Transaction>& transaction,
                     const std::shared_ptr<Database>& database) {
  const auto changed = std::make_shared<std::int64_t>(0);
  const auto item = [=](const std::string& name) { return MakeQueryDef(journal, database->QueryText(name)); };
  const auto deleteItem = [=](const std::string& name) {
    transaction->Join(*database);
    database->DeleteQueryDef(name);
  };
  const auto queries = [=] {
    return MakeObject(journal, "QueryDefs", {{"call Item", item}, {"call Delete", deleteItem}});
  };
  const auto open = [=](const std::string& source, std::int64_t type) {
    return MakeRecordset(journal, database->OpenRecordset(source, static_cast<RecordsetType>(type)));
  };
  const auto execute = [=](const std::string& sql, std::int64_t options) {
    transaction->Join(*database);
    *changed = database->Execute(sql, static_cast<int>(options));
  };
  const auto create = [=](const std::string& name, const std::string& sql) {
    transaction->Join(*database);
    database->CreateQueryDef(name, sql);
    return MakeQueryDef(journal, sql);
  };
  return MakeObject(journal, "Database",
                    {{"call OpenRecordset", open},
                     {"call Execute", execute},
                     {"get RecordsAffected", [=] { return *changed; }},
                     {"call CreateQueryDef", create},
                     {"get QueryDefs", queries},
                     {"call Close", [=] { database->Close(); }}});
}

Variant MakeWorkspace(Journal* journal, Workspace* workspace,
                      const std::shared_ptr<Transaction>& transaction) {
  const auto open = [=](std::string name, bool exclusive, bool readOnly, const std::string& /*connect*/) {
    name.replace(name.rfind('.'), std::string::npos, ".db");
    return MakeDatabase(
        journal, transaction,
        workspace->OpenDatabase({.name = name, .exclusive = exclusive, .readOnly = readOnly}));
  };
  return MakeObject(journal, "Workspace",
                    {{"call OpenDatabase", open},
                     {"call BeginTrans", [=] { transaction->begun = true; }},
                     {"call CommitTrans", [=](std::int64_t) { transaction->End(&Database::CommitTrans); }},
                     {"call Rollback", [=] { transaction->End(&Database::Rollback); }}});
}

std::vector<Variant> MakeErrors(Journal* journal) {
  std::vector<Variant> items;
  for (const Journal::Entry& entry : journal->errors) {
    items.push_back(MakeObject(journal, "Error",
                               {{"get Number", [=] { return std::int64_t{entry.number}; }},
                                {"get Description", [=] { return entry.description; }},
                                {"get Source", [=] { return entry.source; }}}));
  }
  return items;
}

Variant MakeDbEngine(Journal* journal, Workspace* workspace) {
  const auto transaction = std::make_shared<Transaction>();
  const auto workspaces = [=] {
    std::vector<Variant> items(1);
    items[0] = MakeWorkspace(journal, workspace, transaction);
    return items;
  };
  return MakeObject(
      journal, "DBEngine",
      {{"get Workspaces", [=] { return MakeCollection(journal, "Workspaces", workspaces); }},
       {"get Errors", [=] { return MakeCollection(journal, "Errors", [=] { return MakeErrors(journal); }); }},
       {"call Idle", [](std::int64_t) {}}});
}

class Factory final : public ComObject<IClassFactory> {
 public:
  Factory(std::string name, Journal& journal, Workspace& workspace)
      : m_name(std::move(name)), m_journal(journal), m_workspace(workspace) {}

  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override {
    m_journal.calls.push_back("made " + m_name);
    return MakeDbEngine(&m_journal, &m_workspace).Raw().pdispVal->QueryInterface(iid, object);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  const std::string m_name;
  Journal& m_journal;
  Workspace& m_workspace;
};

}  // namespace

bool DaoTestDatabase::RealOneIsInstalled() {
  return std::ranges::any_of(std::to_array({L"DAO.DBEngine.120", L"DAO.DBEngine.36", L"DAO.DBEngine.35"}),
                             [](const wchar_t* name) {
                               CLSID identifier;
                               return SUCCEEDED(CLSIDFromProgID(name, &identifier));
                             });
}

DaoTestDatabase::DaoTestDatabase(const std::vector<Installation>& installations) {
  EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
  BYTE number = 0;
  for (const Installation& installation : installations) Register(installation, ++number);
  WriteBytes(Request().name, std::string("\0\1\0\0Standard Jet DB\0and more", 28));
}

void DaoTestDatabase::Register(const Installation& installation, BYTE number) {
  const CLSID identifier = {0x6b0f3a51, 0x1d27, 0x4c0e, {0x9a, 0x44, 0x5e, 0x21, 0x7c, 0x03, 0xd8, number}};
  const std::wstring& key = m_keys.emplace_back(L"Software\\Classes\\" + ToUtf16<wchar_t>(installation.name));
  wchar_t text[40];
  const int length = StringFromGUID2(identifier, text, 40);
  EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, (key + L"\\CLSID").c_str(), nullptr, REG_SZ, text,
                            static_cast<DWORD>(length * sizeof(wchar_t))),
            ERROR_SUCCESS);
  if (installation.broken) return;
  const ComPtr<Factory> factory(new Factory(installation.name, journal, *m_workspace));
  EXPECT_EQ(CoRegisterClassObject(identifier, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &m_classes.emplace_back()),
            S_OK);
}

DaoTestDatabase::~DaoTestDatabase() {
  for (const DWORD cookie : m_classes) CoRevokeClassObject(cookie);
  for (const std::wstring& key : m_keys) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
  CoUninitialize();
}

OpenRequest DaoTestDatabase::Request() const {
  OpenRequest request = m_sqlite->Request();
  request.name.replace(request.name.rfind('.'), std::string::npos, ".mdb");
  return request;
}

}  // namespace kxrestore::engine::testing
