// A restore host in C++ with #import, for Microsoft's compiler alone: cl /EHsc restore_import.cpp
// The type library is the one of the same bitness, beside the DLL in the package.
#ifdef _WIN64
#import "../../x64/KXRestore.tlb" no_namespace
#else
#import "../../x86/KXRestore.tlb" no_namespace
#endif

#include <cstdio>

int wmain(int count, wchar_t** words) {
  if (count < 2) {
    std::puts("usage: restore_import CATALOG [DESTINATION]");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int code = 0;
  try {
    _RestoreDlgPtr dialog(__uuidof(RestoreDlg));
    // The text properties DB and RestorePath are put by reference.
    _bstr_t catalog(words[1]), destination(count > 2 ? words[2] : L"");
    BSTR catalogText = catalog.copy(), destinationText = destination.copy();
    dialog->put_DBType(0);  // a catalog file; 1: a server
    dialog->put_DB(&catalogText);
    dialog->put_RestorePath(&destinationText);
    dialog->put_frmCaption(_bstr_t(L"Restore files"));
    std::printf("DefineRestoreSet = %d\n", dialog->DefineRestoreSet());
    SysFreeString(catalogText);
    SysFreeString(destinationText);
  } catch (const _com_error& error) {
    std::printf("KXRestore: %08lX\n", static_cast<unsigned long>(error.Error()));
    code = 2;
  }
  CoUninitialize();
  return code;
}
