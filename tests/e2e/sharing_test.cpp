// Several objects, sinks and apartments that share the one form, and unloading the DLL.
#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

// Lists the marked files and presses Restore Now.
void Commit(const DialogDriver& dialog) {
  dialog.Click("cmdRestore(2)");
  dialog.ExpectEnabled("cmdRestore(0)", true);
  dialog.Click("cmdRestore(0)");
}

class SharingTest : public DialogTest {
 protected:
  SharingTest() { m_catalog.Mark(kBox); }
};

TEST_F(SharingTest, TheEventMayDoAnything) {
  _RestoreDlg* object = m_object.Detach();
  short again = -1, another = -1;
  bool unloadable = true;
  const ComPtr<CountingSink> sink = CountingSink::Make([&] {
    EXPECT_EQ(S_OK, object->DefineRestoreSet(&again));
    EXPECT_EQ(S_OK, m_dll.NewObject()->DefineRestoreSet(&another));
    Text path(L"E:\\next");
    EXPECT_EQ(S_OK, object->put_RestorePath(&path));
    object->Release();
    unloadable = m_dll.CanUnload();
  });
  Advise(object, sink.Get());
  EXPECT_EQ(1, RunDialog(object, Commit));
  EXPECT_EQ(0, again) << "one dialog at a time";
  EXPECT_EQ(0, another);
  EXPECT_EQ(1, sink->events);
  EXPECT_FALSE(unloadable) << "the dialog is running";
  EXPECT_TRUE(m_dll.CanUnload());
  RunDialog(m_dll.NewObject().Get(), [](const DialogDriver& dialog) {
    dialog.ExpectText("lblRestorePath", "Restore To: E:\\next");
    dialog.Close();
  });
}

TEST_F(SharingTest, NoSinkDisturbsTheOthers) {
  const ComPtr<IConnectionPoint> point = EventsOf(m_object.Get());
  DWORD ownCookie = 0, laterCookie = 0;
  const ComPtr<CountingSink> sinks[] = {
      CountingSink::Make(),
      // In a 32-bit host that links GCC's run-time statically, an exception never reaches the component. The
      // case is skipped there.
      CountingSink::Make([] {
        if (sizeof(void*) == 8) throw std::runtime_error("from the host");
      }),
      // The system exception that `throw` raises in a program built by Microsoft's compiler.
      CountingSink::Make([] {
        const ULONG_PTR details[] = {0x19930520, 0, 0};
        RaiseException(0xE06D7363, EXCEPTION_NONCONTINUABLE, 3, details);
      }),
      CountingSink::Make([&] {
        EXPECT_EQ(S_OK, point->Unadvise(ownCookie));
        EXPECT_EQ(S_OK, point->Unadvise(laterCookie));
      })};
  sinks[0]->answer = E_FAIL;
  for (const auto& sink : sinks) ownCookie = Advise(m_object.Get(), sink.Get());
  const ComPtr<CountingSink> removed = CountingSink::Make(), last = CountingSink::Make();
  laterCookie = Advise(m_object.Get(), removed.Get());
  Advise(m_object.Get(), last.Get());
  EXPECT_EQ(1, Run(Commit));
  for (const auto& sink : sinks) EXPECT_EQ(1, sink->events);
  EXPECT_EQ(1, m_sink->events);
  EXPECT_EQ(0, removed->events);
  EXPECT_EQ(1, last->events);
}

TEST_F(SharingTest, AnotherApartmentNeitherWaitsNorDisturbs) {
  short refused = -1;
  Run([&](const DialogDriver& dialog) {
    dialog.WaitForForm();
    {
      const Apartment apartment;
      const ComPtr<_RestoreDlg> other = m_dll.NewObject();
      Text path(L"F:\\later");
      EXPECT_EQ(S_OK, other->put_RestorePath(&path));
      EXPECT_EQ(S_OK, other->DefineRestoreSet(&refused));
    }
    EXPECT_EQ("Restore To: (Original Path)", dialog.Text("lblRestorePath"));
    dialog.Close();
  });
  EXPECT_EQ(0, refused);

  // The other object's setting applies to the next dialog, which may run in a third apartment.
  std::thread([&] {
    const Apartment apartment;
    const ComPtr<_RestoreDlg> other = m_dll.NewObject();
    RunDialog(other.Get(), [](const DialogDriver& dialog) {
      dialog.ExpectText("lblRestorePath", "Restore To: F:\\later");
      dialog.Close();
    });
  }).join();
}

TEST_F(SharingTest, CallersInTheMultithreadedApartmentAreServed) {
  const Registered registered;  // marshalling needs the registered type library
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK,
            CoMarshalInterThreadInterfaceInStream(IID__RestoreDlg, m_object.Get(), stream.GetAddressOf()));
  HANDLE finished = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  const DWORD home = GetCurrentThreadId();
  std::thread caller([&] {
    {
      const Apartment apartment(COINIT_MULTITHREADED);
      ComPtr<_RestoreDlg> object;
      EXPECT_EQ(S_OK, CoGetInterfaceAndReleaseStream(stream.Detach(), IID__RestoreDlg,
                                                     reinterpret_cast<void**>(object.GetAddressOf())));
      EXPECT_NE(m_object.Get(), object.Get());
      DWORD eventThread = 0;
      const ComPtr<CountingSink> sink = CountingSink::Make([&] { eventThread = GetCurrentThreadId(); });
      const DWORD cookie = Advise(object.Get(), sink.Get());
      EXPECT_EQ(S_OK, object->put_lblCaption(Text(L"marshalled")));
      EXPECT_EQ(1, RunDialog(object.Get(), [&](const DialogDriver& dialog) {
                  EXPECT_EQ(home, GetWindowThreadProcessId(dialog.WaitForForm(), nullptr));
                  dialog.ExpectText("lblList", "marshalled");
                  Commit(dialog);
                }));
      EXPECT_EQ(1, sink->events);
      EXPECT_NE(home, eventThread);
      EXPECT_EQ(S_OK, EventsOf(object.Get())->Unadvise(cookie));
    }
    SetEvent(finished);
  });
  DWORD index = 0;  // dispatches calls from other apartments while it waits
  EXPECT_EQ(S_OK, CoWaitForMultipleHandles(0, 60000, 1, &finished, &index));
  caller.join();
  CloseHandle(finished);
  EXPECT_EQ(1, m_sink->events);
  m_object.Reset();
  EXPECT_TRUE(m_dll.CanUnload());
}

TEST_F(SharingTest, TheDllCanBeUnloadedAndLoadedAgain) {
  // A copy, because the fixture keeps the original loaded.
  const std::wstring copy = m_catalog.Folder() + L"KXRestore.dll";
  ASSERT_TRUE(CopyFileW(DllPath().c_str(), copy.c_str(), FALSE));
  for (int round = 0; round < 10; ++round) {
    {
      const ComponentDll dll(copy);
      const ComPtr<_RestoreDlg> object = dll.NewObject();
      Text path(m_catalog.Path());
      object->put_DB(&path);  // makes the form
      // A leftover of an earlier round, such as a window class, would break a DLL at another address.
      if (round % 3 == 0) {
        EXPECT_EQ(0, RunDialog(object.Get(), [](const DialogDriver& dialog) { dialog.Close(); }));
      }
    }
    ASSERT_EQ(nullptr, GetModuleHandleW(copy.c_str())) << "round " << round;
    // Reserves address space, so that the next rounds load the DLL at another address.
    if (round == 2) VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE, PAGE_NOACCESS);
  }
}

}  // namespace
}  // namespace kxrestore::e2e
