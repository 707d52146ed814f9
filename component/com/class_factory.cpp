#include "component/com/class_factory.h"

#include "component/com/com_object.h"
#include "component/com/restore_dlg_object.h"

namespace kxrestore::component::com {
namespace {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return Guard([&] { return Make<RestoreDlgObject>()->QueryInterface(iid, object); });
  }

  STDMETHODIMP LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  void* Find(REFIID iid) override {
    return iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
  }
};

}  // namespace

HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (classId != CLSID_RestoreDlg) return CLASS_E_CLASSNOTAVAILABLE;
  return Guard([&] { return Make<ClassFactory>()->QueryInterface(iid, object); });
}

}  // namespace kxrestore::component::com
