#include "component/com/restore_dlg_object.h"

#include <olectl.h>

#include "component/com/the_form.h"
#include "component/com/type_library.h"
#include "component/com/wide_text.h"

namespace kxrestore::component::com {
namespace {

using dialog::Parameters;

constexpr DISPID kCommenceRestore = 1;

}  // namespace

RestoreDlgObject::RestoreDlgObject() : m_events(*this, DIID___RestoreDlg), m_dialog(TheForm()) {
  m_dialog.CommenceRestore = [this] { m_events.Fire(kCommenceRestore); };
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
  // The host may release its last reference in the event.
  const ComPtr<IUnknown> self(static_cast<_RestoreDlg*>(this));
  return SkipErrors([&] { *result = TheForm().Run([this] { return m_dialog.DefineRestoreSet(); }); });
}

HRESULT RestoreDlgObject::Set(std::string Parameters::*member, BSTR text) {
  return SkipErrors([&] { m_dialog.Set(member, FromBstr(text)); });
}

HRESULT RestoreDlgObject::Set(std::string RestoreDlg::*member, BSTR text) {
  return SkipErrors([&] { m_dialog.*member = FromBstr(text); });
}

STDMETHODIMP RestoreDlgObject::put_DB(BSTR* name) {
  return name ? Set(&Parameters::DBName, *name) : E_POINTER;
}

STDMETHODIMP RestoreDlgObject::put_RestorePath(BSTR* path) {
  return path ? Set(&Parameters::RestorePath, *path) : E_POINTER;
}

STDMETHODIMP RestoreDlgObject::put_SessionLogName(BSTR filename) {
  return Set(&Parameters::LogFilename, filename);
}

STDMETHODIMP RestoreDlgObject::put_DebugFlag(VARIANT_BOOL flag) {
  return SkipErrors([&] { m_dialog.Set(&Parameters::DebugFlag, flag != VARIANT_FALSE); });
}

STDMETHODIMP RestoreDlgObject::put_frmCaption(BSTR caption) {
  return Set(&RestoreDlg::frmCaption, caption);
}

STDMETHODIMP RestoreDlgObject::put_btnCaption(BSTR caption) {
  return Set(&RestoreDlg::btnCaption, caption);
}

STDMETHODIMP RestoreDlgObject::put_lblCaption(BSTR caption) {
  return Set(&RestoreDlg::lblCaption, caption);
}

STDMETHODIMP RestoreDlgObject::put_lblInVisible(VARIANT_BOOL inVisible) {
  m_dialog.lblInVisible = inVisible != VARIANT_FALSE;
  return S_OK;
}

STDMETHODIMP RestoreDlgObject::put_setAction(BSTR action) {
  return Set(&Parameters::curAction, action);
}

STDMETHODIMP RestoreDlgObject::put_DBType(short type) {
  return SkipErrors([&] { m_dialog.Set(&Parameters::DBType, type); });
}

STDMETHODIMP RestoreDlgObject::put_DBDatabase(BSTR database) {
  return Set(&Parameters::DBDatabase, database);
}

STDMETHODIMP RestoreDlgObject::put_DBServer(BSTR server) {
  return Set(&Parameters::DBServer, server);
}

STDMETHODIMP RestoreDlgObject::put_DBUser(BSTR user) {
  return Set(&Parameters::DBUser, user);
}

STDMETHODIMP RestoreDlgObject::put_DBPass(BSTR password) {
  return Set(&Parameters::DBPass, password);
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
