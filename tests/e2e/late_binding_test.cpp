// Calls through IDispatch as scripting engines make them. What the values do is tested with the dialog.
#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {
namespace {

class LateBindingTest : public ObjectTest {
 protected:
  HRESULT Put(const wchar_t* name, VARIANT value) {
    return CallByName(m_object.Get(), name, DISPATCH_PROPERTYPUT, &value);
  }
};

TEST_F(LateBindingTest, ValuesArriveHoweverTheyArePassed) {
  Text text(L"C:\\catalog.db"), one(L"1");
  VARIANT textByReference{}, empty{}, truth{};
  textByReference.vt = VT_BYREF | VT_BSTR;
  textByReference.pbstrVal = &text;
  truth.vt = VT_BOOL;
  truth.boolVal = VARIANT_TRUE;
  VARIANT variable = OfText(text), number = OfNumber(1);
  for (const wchar_t* name : {L"DB", L"RestorePath", L"SessionLogName", L"frmCaption", L"DBPass"}) {
    for (const VARIANT& value : {OfText(text), textByReference, Reference(&variable), OfNumber(42),
                                 Reference(&number), empty, Reference(&empty)}) {
      EXPECT_EQ(S_OK, Put(name, value)) << testing::PrintToString(name) << " as " << value.vt;
    }
  }
  // The host's variable is the host's.
  EXPECT_EQ(VT_BSTR, variable.vt);
  EXPECT_STREQ(L"C:\\catalog.db", variable.bstrVal);

  for (const wchar_t* name : {L"DBType", L"DebugFlag", L"lblInVisible"}) {
    for (const VARIANT& value : {OfNumber(0), Reference(&number), OfText(one), truth, Reference(&truth)}) {
      EXPECT_EQ(S_OK, Put(name, value)) << testing::PrintToString(name) << " as " << value.vt;
    }
  }
  EXPECT_EQ(DISP_E_OVERFLOW, Put(L"DBType", OfNumber(70000)));
}

TEST_F(LateBindingTest, WrongCallsAreRefusedAndNothingBreaks) {
  VARIANT null{};
  null.vt = VT_NULL;
  VARIANT result{};
  Text text(L"x");
  VARIANT value = OfText(text);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, Put(L"frmCaption", null));
  EXPECT_EQ(DISP_E_TYPEMISMATCH, Put(L"DB", Reference(&null)));
  VARIANT circle{};
  circle = Reference(&circle);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, Put(L"DB", circle));
  EXPECT_EQ(DISP_E_UNKNOWNNAME, Put(L"NoSuchProperty", value));
  // There is nothing to read.
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, CallByName(m_object.Get(), L"DB", DISPATCH_PROPERTYGET, nullptr, &result));
  EXPECT_TRUE(FAILED(CallByName(m_object.Get(), L"DefineRestoreSet", DISPATCH_METHOD, &value, &result)));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
            m_object->Invoke(0x12345, IID_NULL, 0, DISPATCH_METHOD, std::make_unique<DISPPARAMS>().get(),
                             nullptr, nullptr, nullptr));
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, m_object->Invoke(0x60030009, IID_IUnknown, 0, DISPATCH_METHOD, nullptr,
                                                      nullptr, nullptr, nullptr));
  EXPECT_EQ(E_POINTER,
            m_object->Invoke(0x60030009, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(LateBindingTest, NamesAndTypeInformation) {
  LPOLESTR name = const_cast<LPOLESTR>(L"dEfInErEsToReSeT");  // script languages do not mind the case
  DISPID id = 0;
  EXPECT_EQ(S_OK, m_object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(0x60030009, id);

  UINT count = 0;
  EXPECT_EQ(S_OK, m_object->GetTypeInfoCount(&count));
  EXPECT_EQ(1u, count);
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(S_OK, m_object->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.GetAddressOf()));
  ITypeInfo* none = type.Get();
  EXPECT_EQ(DISP_E_BADINDEX, m_object->GetTypeInfo(1, LOCALE_USER_DEFAULT, &none));
  EXPECT_EQ(nullptr, none);
}

TEST_F(LateBindingTest, EarlyCallsMindNullPointersOnly) {
  EXPECT_EQ(E_POINTER, m_object->DefineRestoreSet(nullptr));
  EXPECT_EQ(E_POINTER, m_object->put_DB(nullptr));
  EXPECT_EQ(E_POINTER, m_object->put_RestorePath(nullptr));
  BSTR none = nullptr;
  EXPECT_EQ(S_OK, m_object->put_DB(&none));
  EXPECT_EQ(S_OK, m_object->put_frmCaption(nullptr));
  EXPECT_EQ(S_OK, m_object->put_DBType(-32768));
  Text halves(std::wstring{L'a', wchar_t(0xD800), L'\0', wchar_t(0xDC00)});
  EXPECT_EQ(S_OK, m_object->put_DBUser(halves));
}

}  // namespace
}  // namespace kxrestore::e2e
