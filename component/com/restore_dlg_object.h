// The COM class RestoreDlg: a shell around component::RestoreDlg that adds early and late binding, the event
// and the class information. Apartment-threaded.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include <functional>
#include <memory>

#include "component/com/com_object.h"
#include "component/com/event_source.h"
#include "component/com/kxrestore.h"
#include "component/restore_dlg.h"

namespace kxrestore::component::com {

class RestoreDlgObject final : public ComObject<_RestoreDlg, IConnectionPointContainer, IProvideClassInfo2> {
 public:
  RestoreDlgObject();

  // _RestoreDlg. No error of the dialog comes back as an HRESULT; a null pointer is refused.
  STDMETHODIMP DefineRestoreSet(short* result) override;
  STDMETHODIMP put_DB(BSTR* name) override;
  STDMETHODIMP put_RestorePath(BSTR* path) override;
  STDMETHODIMP put_SessionLogName(BSTR filename) override;
  STDMETHODIMP put_DebugFlag(VARIANT_BOOL flag) override;
  STDMETHODIMP put_frmCaption(BSTR caption) override;
  STDMETHODIMP put_btnCaption(BSTR caption) override;
  STDMETHODIMP put_lblCaption(BSTR caption) override;
  STDMETHODIMP put_lblInVisible(VARIANT_BOOL inVisible) override;
  STDMETHODIMP put_setAction(BSTR action) override;
  STDMETHODIMP put_DBType(short type) override;
  STDMETHODIMP put_DBDatabase(BSTR database) override;
  STDMETHODIMP put_DBServer(BSTR server) override;
  STDMETHODIMP put_DBUser(BSTR user) override;
  STDMETHODIMP put_DBPass(BSTR password) override;

  // IDispatch
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

  // IConnectionPointContainer
  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

  // IProvideClassInfo2
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;

 private:
  void* Find(REFIID iid) override;
  ITypeInfo& Type();

  // Hand a value to the plain object under the rules of the shared form.
  using TextSetter = void (RestoreDlg::*)(const std::string&);
  template <class Value>
  HRESULT Forward(void (RestoreDlg::*setter)(Value), std::decay_t<Value> value);
  HRESULT ForwardText(TextSetter setter, BSTR text);
  // Leaves a value with the plain object, which the form does not see before the dialog runs.
  HRESULT Keep(TextSetter setter, BSTR text);

  EventSource m_events;
  std::shared_ptr<RestoreDlg> m_dialog;  // a setting that waits for another thread's dialog shares it
  ComPtr<ITypeInfo> m_type;              // loaded when the first late-bound caller asks
};

}  // namespace kxrestore::component::com
