// The COM class RestoreDlg: a shell around component::RestoreDlg that adds early and late binding, the event
// and the class information. Apartment-threaded.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include <string>

#include "component/com/com_object.h"
#include "component/com/event_source.h"
#include "component/com/kxrestore.h"
#include "component/restore_dlg.h"

namespace kxrestore::component::com {

class RestoreDlgObject final : public ComObject<_RestoreDlg, IConnectionPointContainer, IProvideClassInfo2> {
 public:
  RestoreDlgObject();

  // _RestoreDlg. No error of the dialog is returned as an HRESULT; a null pointer is E_POINTER.
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

  // A parameter of the shared form.
  HRESULT Set(std::string dialog::Parameters::*member, BSTR text);
  // A caption of this object.
  HRESULT Set(std::string RestoreDlg::*member, BSTR text);

  EventSource m_events;
  RestoreDlg m_dialog;
  ComPtr<ITypeInfo> m_type;  // loaded at the first late-bound call
};

}  // namespace kxrestore::component::com
