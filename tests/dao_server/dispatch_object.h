// Automation objects made of tables of members. A call with another name, another kind, another number, order
// or type of arguments is refused, and says what is wrong.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "engine/dao/values.h"

namespace kxrestore::dao_server {

using engine::dao::ComPtr;
using engine::dao::Variant;
using Arguments = std::span<const VARIANT>;  // in the order they are written

// State shared by all objects of a server: recorded calls, and the errors of the last failed call.
struct Journal {
  struct Entry {
    int number;
    std::string description, source;
  };
  std::vector<std::string> calls;
  std::vector<Entry> errors;
  std::string innerCause;  // of the failures to come
  int liveObjects = 0;
  bool bareErrors = false;  // failures give only their number; the list has the rest
};

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
            return engine::dao::FromValue(engine::Value(run(arguments)));
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

Variant MakeObject(Journal& journal, std::string name, std::vector<Member> members);

}  // namespace kxrestore::dao_server
