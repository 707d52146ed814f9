// A sample host. Like a backup client it creates the object, connects to its event, sets the properties, runs
// the dialog, and restores the marked files in the event. Here "restoring" prints their paths.
//
// Exit codes: 0 whatever the user chose, 1 for an invalid command line, 2 when the component or its event is
// missing, 3 for a failed script.
#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <exception>
#include <iostream>
#include <optional>

#include "base/utf16.h"
#include "component/com/kxrestore.h"
#include "host/arguments.h"
#include "host/event_sink.h"
#include "host/main_window.h"
#include "host/marked_files.h"
#include "host/script_thread.h"

namespace {

using namespace kxrestore::host;
using Microsoft::WRL::ComPtr;

class Apartment {
 public:
  Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

class Bstr {
 public:
  explicit Bstr(const std::string& text) : m_text(SysAllocString(kxrestore::ToWide(text).c_str())) {}
  ~Bstr() { SysFreeString(m_text); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  operator BSTR() const { return m_text; }
  BSTR* operator&() { return &m_text; }

 private:
  BSTR m_text;
};

void Configure(_RestoreDlg& dialog, const Arguments& arguments) {
  Bstr catalog(arguments.catalog);
  Bstr restorePath(arguments.restorePath);
  dialog.put_DBType(arguments.dbType);
  dialog.put_DB(&catalog);
  dialog.put_DBDatabase(Bstr(arguments.database));
  dialog.put_DBServer(Bstr(arguments.server));
  dialog.put_DBUser(Bstr(arguments.user));
  dialog.put_DBPass(Bstr(arguments.password));
  dialog.put_RestorePath(&restorePath);
  dialog.put_SessionLogName(Bstr(arguments.log));
  dialog.put_setAction(Bstr(arguments.action));
  dialog.put_frmCaption(Bstr(arguments.caption));
  dialog.put_btnCaption(Bstr(arguments.buttonCaption));
  dialog.put_lblCaption(Bstr(arguments.labelCaption));
  dialog.put_lblInVisible(arguments.hideLabel ? VARIANT_TRUE : VARIANT_FALSE);
}

// The dialog is still showing, and the marks are in the catalog.
void Restore(const Arguments& arguments) {
  std::cout << "CommenceRestore" << std::endl;
  try {
    for (const std::string& path : MarkedFiles(arguments)) std::cout << "restore: " << path << '\n';
  } catch (const std::exception& error) {
    std::cout << "the catalog cannot be read: " << error.what() << '\n';
  }
  std::cout << std::flush;
}

int Run(const Arguments& arguments) {
  const Apartment apartment;
  ComPtr<_RestoreDlg> dialog;
  const HRESULT created = CoCreateInstance(CLSID_RestoreDlg, nullptr, CLSCTX_INPROC_SERVER, IID__RestoreDlg,
                                           reinterpret_cast<void**>(dialog.GetAddressOf()));
  if (FAILED(created)) {
    std::cerr << "KXRestore.RestoreDlg cannot be created: 0x" << std::hex << static_cast<unsigned>(created)
              << ". Is the component registered?" << std::endl;
    return 2;
  }
  const Connection connection(dialog.Get(), [&] { Restore(arguments); });
  if (!connection) {
    std::cerr << "The event CommenceRestore cannot be received." << std::endl;
    return 2;
  }

  std::optional<MainWindow> window;
  if (arguments.window) window.emplace();
  Configure(*dialog.Get(), arguments);
  short result = 0;
  {
    const ScriptThread script(arguments.script, arguments.shots);
    dialog->DefineRestoreSet(&result);
  }
  std::cout << "DefineRestoreSet = " << result << std::endl;
  return 0;
}

}  // namespace

int wmain(int count, wchar_t** words) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(kxrestore::FromWide(words[i]));
  try {
    return Run(ParseArguments(arguments));
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n' << kUsage;
    return 1;
  }
}
