#include "component/com/restore_dlg_object.h"

#include <olectl.h>

#include "component/com/the_form.h"
#include "component/com/type_library.h"
#include "component/com/wide_text.h"

namespace kxrestore::component::com {
namespace {

constexpr DISPID kCommenceRestore = 1;

}  // namespace

RestoreDlgObject::RestoreDlgObject()
    : m_events(*this, DIID___RestoreDlg), m_dialog(std::make_shared<RestoreDlg>(TheForm())) {
  m_dialog->CommenceRestore = [this] { m_events.Fire(kCommenceRestore); };
}

void* RestoreDlgObject::Find(REFIID iid) {
  if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID__RestoreDlg)
    return static_cast<_RestoreDlg*>(this);
  if (iid == IID_IConnectionPointContainer) return static_cast<IConnectionPointContainer*>(this);
  if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2)
    return static_cast<IProvideClassInfo2*>(this);
  return nullptr;
}

STDMETHODIMP RestoreDlgObject::DefineRestoreSet(short* result) {
  if (!result) return E_POINTER;
  *result = 0;
  // The host may let go of its last reference in the event.
  const ComPtr<IUnknown> self(static_cast<_RestoreDlg*>(this));
  return SkipErrors([&] { *result = TheForm().Run([this] { return m_dialog->DefineRestoreSet(); }); });
}

template <class Value>
HRESULT RestoreDlgObject::Forward(void (RestoreDlg::*setter)(Value), std::decay_t<Value> value) {
  return SkipErrors([&] {
    TheForm().Apply([dialog = m_dialog, use = ModuleUse(), setter, value = std::move(value)] {
      ((*dialog).*setter)(value);
    });
  });
}

HRESULT RestoreDlgObject::ForwardText(TextSetter setter, BSTR text) {
  return SkipErrors([&] { Forward(setter, FromBstr(text)); });
}

HRESULT RestoreDlgObject::Keep(TextSetter setter, BSTR text) {
  return SkipErrors([&] { ((*m_dialog).*setter)(FromBstr(text)); });
}

STDMETHODIMP RestoreDlgObject::put_DB(BSTR* name) {
  return name ? ForwardText(&RestoreDlg::DB, *name) : E_POINTER;
}

STDMETHODIMP RestoreDlgObject::put_RestorePath(BSTR* path) {
  return path ? ForwardText(&RestoreDlg::RestorePath, *path) : E_POINTER;
}

STDMETHODIMP RestoreDlgObject::put_SessionLogName(BSTR filename) {
  return ForwardText(&RestoreDlg::SessionLogName, filename);
}

STDMETHODIMP RestoreDlgObject::put_DebugFlag(VARIANT_BOOL flag) {
  return Forward(&RestoreDlg::DebugFlag, flag != VARIANT_FALSE);
}

STDMETHODIMP RestoreDlgObject::put_frmCaption(BSTR caption) {
  return Keep(&RestoreDlg::frmCaption, caption);
}

STDMETHODIMP RestoreDlgObject::put_btnCaption(BSTR caption) {
  return Keep(&RestoreDlg::btnCaption, caption);
}

STDMETHODIMP RestoreDlgObject::put_lblCaption(BSTR caption) {
  return Keep(&RestoreDlg::lblCaption, caption);
}

STDMETHODIMP RestoreDlgObject::put_lblInVisible(VARIANT_BOOL inVisible) {
  return SkipErrors([&] { m_dialog->lblInVisible(inVisible != VARIANT_FALSE); });
}

STDMETHODIMP RestoreDlgObject::put_setAction(BSTR action) {
  return ForwardText(&RestoreDlg::setAction, action);
}

STDMETHODIMP RestoreDlgObject::put_DBType(short type) {
  return Forward(&RestoreDlg::DBType, static_cast<std::int16_t>(type));
}

STDMETHODIMP RestoreDlgObject::put_DBDatabase(BSTR database) {
  return ForwardText(&RestoreDlg::DBDatabase, database);
}

STDMETHODIMP RestoreDlgObject::put_DBServer(BSTR server) {
  return ForwardText(&RestoreDlg::DBServer, server);
}

STDMETHODIMP RestoreDlgObject::put_DBUser(BSTR user) {
  return ForwardText(&RestoreDlg::DBUser, user);
}

STDMETHODIMP RestoreDlgObject::put_DBPass(BSTR password) {
  return ForwardText(&RestoreDlg::DBPass, password);
}

ITypeInfo& RestoreDlgObject::Type() {
  if (!m_type) m_type = LoadTypeInfo(IID__RestoreDlg);
  return *m_type.Get();
}

STDMETHODIMP RestoreDlgObject::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP RestoreDlgObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return Guard([&] {
    *info = ComPtr<ITypeInfo>(&Type()).Detach();
    return S_OK;
  });
}

STDMETHODIMP RestoreDlgObject::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids) return E_POINTER;
  return Guard([&] { return Type().GetIDsOfNames(names, count, ids); });
}

STDMETHODIMP RestoreDlgObject::Invoke(DISPID member, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters,
                                      VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!parameters) return E_POINTER;
  const ComPtr<IUnknown> self(static_cast<_RestoreDlg*>(this));
  return Guard([&] {
    return InvokeByType(Type(), static_cast<_RestoreDlg*>(this), member, flags, *parameters, result,
                        exception, wrongArgument);
  });
}

STDMETHODIMP RestoreDlgObject::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (!points) return E_POINTER;
  *points = nullptr;
  return Guard([&] {
    *points = EnumeratePoints({ComPtr<IConnectionPoint>(&m_events)}).Detach();
    return S_OK;
  });
}

STDMETHODIMP RestoreDlgObject::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (!point) return E_POINTER;
  *point = nullptr;
  if (iid != DIID___RestoreDlg) return CONNECT_E_NOCONNECTION;
  *point = ComPtr<IConnectionPoint>(&m_events).Detach();
  return S_OK;
}

STDMETHODIMP RestoreDlgObject::GetClassInfo(ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  return Guard([&] {
    *info = LoadTypeInfo(CLSID_RestoreDlg).Detach();
    return S_OK;
  });
}

STDMETHODIMP RestoreDlgObject::GetGUID(DWORD kind, GUID* guid) {
  if (!guid) return E_POINTER;
  *guid = kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID ? DIID___RestoreDlg : GUID_NULL;
  return kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID ? S_OK : E_INVALIDARG;
}

}  // namespace kxrestore::component::com
