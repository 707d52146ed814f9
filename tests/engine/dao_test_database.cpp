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
using Arguments = std::span<const VARIANT>;  // in the order they are written
using Journal = DaoTestDatabase::Journal;

// ---- automation objects made of tables of members. A call with another name, another kind, another number,
// order or type of arguments is refused, and says what is wrong.

struct Member {
  // `declaration`: "get NAME", "put NAME v", or "call NAME TYPES" with a letter for each argument: s a text,
  // i a number, b a Boolean, v anything. `run` returns nothing, a value of the engine or an object.
  template <class Run>
  Member(std::string_view declaration, Run run)
      : kind(declaration.substr(0, declaration.find(' '))),
        name(declaration.substr(kind.size() + 1)),
        run([run](Arguments arguments) {
          using Result = decltype(run(arguments));
          if constexpr (std::is_same_v<Result, Variant>) {
            return run(arguments);
          } else if constexpr (std::is_void_v<Result>) {
            run(arguments);
            return Variant();
          } else {
            return dao::FromValue(Value(run(arguments)));
          }
        }) {
    if (const std::size_t blank = name.find(' '); blank != name.npos) {
      types = name.substr(blank + 1);
      name.resize(blank);
    }
  }

  std::string kind, name, types;
  std::function<Variant(Arguments)> run;
};

// A COM object with one interface of its own.
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

constexpr int kBadCall = 5;

BSTR MakeBstr(std::string_view text) {
  return std::exchange(Variant(text).Raw().bstrVal, nullptr);
}

std::string Shown(const VARIANT& variant) {
  std::string text;
  const ValueView value = dao::ToValue(variant, text);
  return variant.vt == VT_BSTR ? "\"" + text + "\"" : ToText(value);
}

VARTYPE TypeOf(char letter) {
  return letter == 's' ? VT_BSTR : letter == 'i' ? VT_I4 : letter == 'b' ? VT_BOOL : VT_VARIANT;
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
        throw Error(kBadCall, m_name + ": a value that is put has to be named as such, and nothing else");
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
    if (member == m_members.end()) throw Error(kBadCall, call + " cannot be used like this");
    if (arguments.size() != member->types.size()) throw Error(kBadCall, call + " has other arguments");
    std::string shown;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const VARTYPE type = TypeOf(member->types[i]);
      if (type != VT_VARIANT && type != arguments[i].vt) {
        throw Error(kBadCall, call + ": argument " + std::to_string(i + 1) + " has another type");
      }
      shown += (i == 0 ? "" : ", ") + Shown(arguments[i]);
    }
    m_journal.calls.push_back(call + "(" + shown + ")");
    return member->run(arguments);
  }

  Journal& m_journal;
  const std::string m_name;
  const std::vector<Member> m_members;
};

Variant MakeObject(Journal& journal, std::string name, std::vector<Member> members) {
  Variant object;
  object.Raw().vt = VT_DISPATCH;
  object.Raw().pdispVal = new DispatchObject(journal, std::move(name), std::move(members));
  object.Raw().pdispVal->AddRef();
  return object;
}

// ---- the desktop engine's objects, as far as this program uses them, over the SQLite back end: what is
// asked of "x.mdb" is answered from "x.db" beside it

using SharedRows = std::shared_ptr<Recordset>;

std::string TextOf(const VARIANT& variant) {
  std::string text;
  dao::ToValue(variant, text);
  return text;
}

// Of items that are asked for by their positions.
Variant MakeCollection(Journal& journal, std::string name, std::function<std::size_t()> count,
                       std::function<Variant(std::size_t)> makeItem) {
  return MakeObject(journal, std::move(name),
                    {{"get Count", [=](Arguments) { return static_cast<std::int64_t>(count()); }},
                     {"call Item i", [=](Arguments arguments) {
                        const auto position = static_cast<std::size_t>(arguments[0].lVal);
                        if (position >= count()) {
                          throw Error(error_number::kItemNotFound, "Item not found in this collection.",
                                      "Engine");
                        }
                        return makeItem(position);
                      }}});
}

// A transaction is the workspace's; a database joins it with its first write.
struct Transaction {
  bool begun = false;
  std::vector<Database*> databases;

  void Join(Database& database) {
    if (!begun || std::ranges::find(databases, &database) != databases.end()) return;
    database.BeginTrans();
    databases.push_back(&database);
  }
  void End(void (Database::*how)()) {
    if (!begun) throw Error(error_number::kNoTransaction, "No transaction.", "Engine");
    for (Database* database : databases) (database->*how)();
    databases.clear();
    begun = false;
  }
};

Variant MakeField(Journal& journal, const SharedRows& rows, std::size_t index) {
  return MakeObject(journal, "Field",
                    {{"get Name", [=](Arguments) { return std::string(rows->FieldName(index)); }},
                     {"get Value",
                      [=](Arguments) {
                        const ValueView value = rows->FieldValue(index);
                        if (value == ValueView(DaoTestDatabase::kUnreadable)) {
                          throw Error(3197, "The data has been changed.", "Engine");
                        }
                        return OwnedOf(value);
                      }},
                     {"put Value v", [=](Arguments arguments) {
                        std::string text;
                        rows->SetFieldValue(index, OwnedOf(dao::ToValue(arguments[0], text)));
                      }}});
}

Variant GetRows(Recordset& rows, LONG count) {
  const auto fields = static_cast<LONG>(rows.FieldCount());
  std::vector<Variant> cells;
  LONG read = 0;
  for (; read < count && !rows.Eof(); ++read, rows.MoveNext()) {
    bool readable = true;
    for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
      readable &= rows.FieldValue(i) != ValueView(DaoTestDatabase::kUnreadable);
    }
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

Variant MakeRecordset(Journal& journal, const SharedRows& rows) {
  return MakeObject(
      journal, "Recordset",
      {{"get EOF", [=](Arguments) { return rows->Eof(); }},
       {"get Fields",
        [&journal, rows](Arguments) {
          return MakeCollection(
              journal, "Fields", [rows] { return rows->FieldCount(); },
              [&journal, rows](std::size_t index) { return MakeField(journal, rows, index); });
        }},
       {"call MoveNext", [=](Arguments) { rows->MoveNext(); }},
       {"call Edit", [=](Arguments) { rows->Edit(); }},
       {"call Update", [=](Arguments) { rows->Update(); }},
       {"call Close", [=](Arguments) { rows->Close(); }},
       {"call GetRows i", [=](Arguments arguments) { return GetRows(*rows, arguments[0].lVal); }}});
}

Variant MakeQueryDef(Journal& journal, const std::string& sql) {
  return MakeObject(journal, "QueryDef", {{"get SQL", [=](Arguments) { return sql; }}});
}

Variant MakeDatabase(Journal& journal, const std::shared_ptr<Transaction>& transaction,
                     const std::shared_ptr<Database>& database) {
  const auto changed = std::make_shared<std::int64_t>(0);
  const auto makeQueries = [&journal, transaction, database](Arguments) {
    return MakeObject(journal, "QueryDefs",
                      {{"call Item s",
                        [&journal, database](Arguments arguments) {
                          return MakeQueryDef(journal, database->QueryText(TextOf(arguments[0])));
                        }},
                       {"call Delete s", [=](Arguments arguments) {
                          transaction->Join(*database);
                          database->DeleteQueryDef(TextOf(arguments[0]));
                        }}});
  };
  return MakeObject(journal, "Database",
                    {{"call OpenRecordset si",
                      [&journal, database](Arguments arguments) {
                        const auto type = static_cast<RecordsetType>(arguments[1].lVal);
                        return MakeRecordset(journal, database->OpenRecordset(TextOf(arguments[0]), type));
                      }},
                     {"call Execute si",
                      [=](Arguments arguments) {
                        transaction->Join(*database);
                        *changed = database->Execute(TextOf(arguments[0]), arguments[1].lVal);
                      }},
                     {"get RecordsAffected", [=](Arguments) { return *changed; }},
                     {"call CreateQueryDef ss",
                      [&journal, transaction, database](Arguments arguments) {
                        transaction->Join(*database);
                        database->CreateQueryDef(TextOf(arguments[0]), TextOf(arguments[1]));
                        return MakeQueryDef(journal, TextOf(arguments[1]));
                      }},
                     {"get QueryDefs", makeQueries},
                     {"call Close", [=](Arguments) { database->Close(); }}});
}

Variant MakeWorkspace(Journal& journal, Workspace& workspace) {
  const auto transaction = std::make_shared<Transaction>();
  return MakeObject(journal, "Workspace",
                    {{"call OpenDatabase sbbs",
                      [&journal, &workspace, transaction](Arguments arguments) {
                        OpenRequest request;
                        request.name = TextOf(arguments[0]);
                        request.name.replace(request.name.rfind('.'), std::string::npos, ".db");
                        request.exclusive = arguments[1].boolVal != VARIANT_FALSE;
                        request.readOnly = arguments[2].boolVal != VARIANT_FALSE;
                        return MakeDatabase(journal, transaction, workspace.OpenDatabase(request));
                      }},
                     {"call BeginTrans", [=](Arguments) { transaction->begun = true; }},
                     {"call CommitTrans i", [=](Arguments) { transaction->End(&Database::CommitTrans); }},
                     {"call Rollback", [=](Arguments) { transaction->End(&Database::Rollback); }}});
}

Variant MakeErrors(Journal& journal) {
  return MakeCollection(
      journal, "Errors", [&journal] { return journal.errors.size(); },
      [&journal](std::size_t which) {
        const Journal::Entry entry = journal.errors[which];
        return MakeObject(journal, "Error",
                          {{"get Number", [=](Arguments) { return std::int64_t{entry.number}; }},
                           {"get Description", [=](Arguments) { return entry.description; }},
                           {"get Source", [=](Arguments) { return entry.source; }}});
      });
}

Variant MakeDbEngine(Journal& journal, Workspace& workspace) {
  const auto only = std::make_shared<Variant>(MakeWorkspace(journal, workspace));
  const auto makeWorkspaces = [&journal, only](Arguments) {
    return MakeCollection(
        journal, "Workspaces", [] { return 1; },
        [only](std::size_t) {
          Variant copy;
          VariantCopy(&copy.Raw(), &only->Raw());
          return copy;
        });
  };
  return MakeObject(journal, "DBEngine",
                    {{"get Workspaces", makeWorkspaces},
                     {"get Errors", [&journal](Arguments) { return MakeErrors(journal); }},
                     {"call Idle i", [](Arguments) {}}});
}

class Factory final : public ComObject<IClassFactory> {
 public:
  Factory(std::string name, Journal& journal, Workspace& workspace)
      : m_name(std::move(name)), m_journal(journal), m_workspace(workspace) {}

  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override {
    m_journal.calls.push_back("made " + m_name);
    return MakeDbEngine(m_journal, m_workspace).Raw().pdispVal->QueryInterface(iid, object);
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
