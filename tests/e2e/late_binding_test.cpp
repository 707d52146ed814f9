// Calls through IDispatch as scripting engines make them. What the values do is tested with the dialog.
#include <gtest/gtest.h>

#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {
namespace {

class LateBindingTest : public testing::Test {
 protected:
  HRESULT Put(const wchar_t* name, VARIANT value) {
    return CallByName(m_object.Get(), name, DISPATCH_PROPERTYPUT, &value);
  }
  VARIANT OfText(BSTR text) {
    VARIANT value{};
    value.vt = VT_BSTR;
    value.bstrVal = text;
    return value;
  }
  VARIANT OfNumber(LONG number) {
    VARIANT value{};
    value.vt = VT_I4;
    value.lVal = number;
    return value;
  }
  VARIANT Reference(VARIANT* to) {
    VARIANT value{};
    value.vt = VT_BYREF | VT_VARIANT;
    value.pvarVal = to;
    return value;
  }

  Apartment m_apartment;
  ComponentDll m_dll;
  ComPtr<_RestoreDlg> m_object = m_dll.NewObject();
};

TEST_F(LateBindingTest, TextsArriveHoweverTheyArePassed) {
  Text text(L"C:\\catalog.db");
  VARIANT byReference{};
  byReference.vt = VT_BYREF | VT_BSTR;
  byReference.pbstrVal = &text;
  VARIANT variable = OfText(text);
  VARIANT number = OfNumber(42);
  VARIANT empty{};
  for (const wchar_t* name : {L"DB", L"RestorePath", L"SessionLogName", L"frmCaption", L"DBPass"}) {
    SCOPED_TRACE(testing::Message() << name);
    EXPECT_EQ(S_OK, Put(name, OfText(text)));
    EXPECT_EQ(S_OK, Put(name, byReference));
    EXPECT_EQ(S_OK, Put(name, Reference(&variable)));
    EXPECT_EQ(S_OK, Put(name, OfNumber(42)));
    EXPECT_EQ(S_OK, Put(name, Reference(&number)));
    EXPECT_EQ(S_OK, Put(name, empty));
    EXPECT_EQ(S_OK, Put(name, Reference(&empty)));
  }
  // The host's variable is the host's.
  EXPECT_EQ(VT_BSTR, variable.vt);
  EXPECT_STREQ(L"C:\\catalog.db", variable.bstrVal);
}

TEST_F(LateBindingTest, NumbersAndFlagsAreConverted) {
  VARIANT variable = OfNumber(1);
  Text one(L"1");
  VARIANT truth{};
  truth.vt = VT_BOOL;
  truth.boolVal = VARIANT_TRUE;
  EXPECT_EQ(S_OK, Put(L"DBType", OfNumber(0)));
  EXPECT_EQ(S_OK, Put(L"DBType", Reference(&variable)));
  EXPECT_EQ(S_OK, Put(L"DBType", OfText(one)));
  EXPECT_EQ(S_OK, Put(L"DebugFlag", truth));
  EXPECT_EQ(S_OK, Put(L"lblInVisible", OfNumber(0)));
  EXPECT_EQ(S_OK, Put(L"lblInVisible", Reference(&truth)));
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
