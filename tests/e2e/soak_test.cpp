// What one host process keeps after many runs of the dialog: nothing that grows.
//
// KX_SOAK_RUNS in the environment says how many runs (12 unless set).
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

struct Held {
  int handles = 0;
  int windows = 0, drawing = 0;
  int blocks = 0;  // of the process's heaps, in use
};

// Handles of the system. Not every system keeps count of them, so each value that could be one is tried.
int CountHandles() {
  constexpr UINT_PTR kEnd = 0x8000, kStep = 4;
  int count = 0;
  for (UINT_PTR value = kStep; value < kEnd; value += kStep) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
  }
  return count;
}

BOOL CALLBACK CountChild(HWND, LPARAM count) {
  ++*reinterpret_cast<int*>(count);
  return TRUE;
}

// All windows of this process: top-level ones and those that only take messages, with their children.
int CountWindows() {
  int count = 0;
  const auto addOwn = [&count](HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId()) return;
    ++count;
    EnumChildWindows(window, CountChild, reinterpret_cast<LPARAM>(&count));
  };
  for (const HWND parent : {static_cast<HWND>(nullptr), HWND_MESSAGE}) {
    for (HWND window = nullptr; (window = FindWindowExW(parent, window, nullptr, nullptr)) != nullptr;) {
      addOwn(window);
    }
  }
  return count;
}

// Pens, brushes, fonts, bitmaps, regions and device contexts. A handle's lower half is an index into one
// table; the system accepts it without the upper half.
int CountDrawing() {
  int count = 0;
  for (UINT_PTR index = 1; index < 0x10000; ++index) {
    if (GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0) ++count;
  }
  return count;
}

int CountBlocks() {
  HANDLE heaps[64];
  const DWORD found = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
  int count = 0;
  for (DWORD i = 0; i < found; ++i) {
    HeapLock(heaps[i]);
    for (PROCESS_HEAP_ENTRY entry{}; HeapWalk(heaps[i], &entry);) {
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ++count;
    }
    HeapUnlock(heaps[i]);
  }
  return count;
}

Held Measure() {
  return {.handles = CountHandles(),
          .windows = CountWindows(),
          .drawing = CountDrawing(),
          .blocks = CountBlocks()};
}

// Counts the labels that its thread creates.
class LabelCounter {
 public:
  LabelCounter() : m_hook(SetWindowsHookExW(WH_CBT, OnWindow, nullptr, GetCurrentThreadId())) { s_count = 0; }
  ~LabelCounter() { UnhookWindowsHookEx(m_hook); }
  LabelCounter(const LabelCounter&) = delete;
  LabelCounter& operator=(const LabelCounter&) = delete;
  int Count() const { return s_count; }

 private:
  static LRESULT CALLBACK OnWindow(int code, WPARAM window, LPARAM details) {
    wchar_t name[8] = L"";
    if (code == HCBT_CREATEWND) GetClassNameW(reinterpret_cast<HWND>(window), name, 8);
    if (lstrcmpiW(name, L"Static") == 0) ++s_count;
    return CallNextHookEx(nullptr, code, window, details);
  }
  static inline int s_count = 0;
  HHOOK m_hook;
};

int Runs() {
  const char* const told = std::getenv("KX_SOAK_RUNS");
  return told == nullptr ? 12 : std::max(std::atoi(told), 2);
}

// A run that restores and one that is cancelled, by turns.
void RunOnce(_RestoreDlg* object, bool restores) {
  RunDialog(object, [&](const driver::DialogDriver& dialog) {
    dialog.SelectRun("1");
    dialog.Tick("C:\\");
    dialog.Click("cmdAction(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(3));
    dialog.Tab(3);
    dialog.Click(restores ? "cmdRestore(0)" : "cmdRestore(1)");
    if (!restores) dialog.Answer("YES");
  });
}

TEST_F(DialogTest, TheMeasuresSeeWhatIsKept) {
  const Held before = Measure();
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  const HPEN pen = CreatePen(PS_SOLID, 3, RGB(1, 2, 3));
  const HWND parent = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  CreateWindowW(L"STATIC", L"", WS_CHILD, 0, 0, 9, 9, parent, nullptr, nullptr, nullptr);
  void* const kept = HeapAlloc(GetProcessHeap(), 0, 100);
  const Held with = Measure();
  EXPECT_GE(with.handles, before.handles + 1);
  EXPECT_GE(with.drawing, before.drawing + 1);
  EXPECT_GE(with.windows, before.windows + 2);
  EXPECT_GE(with.blocks, before.blocks + 1);
  HeapFree(GetProcessHeap(), 0, kept);
  DestroyWindow(parent);
  DeleteObject(pen);
  CloseHandle(event);
}

TEST_F(DialogTest, AHostThatRunsForWeeksKeepsNothing) {
  constexpr int kStep = 50;
  const int runs = Runs(), settled = std::min(runs / 2, 100);  // by then the caches of the system are full
  const LabelCounter labels;
  int labelsBefore = 0;
  Held first, last;
  for (int run = 1; run <= runs; ++run) {
    const ComPtr<_RestoreDlg> object = NewObject();
    const ComPtr<CountingSink> sink = CountingSink::Make();
    Advise(object.Get(), sink.Get());
    RunOnce(object.Get(), run % 2 == 0);
    EXPECT_EQ(run % 2 == 0 ? 1 : 0, sink->events);
    m_catalog.Query("UPDATE Catalog SET Restore = 0");
    ASSERT_FALSE(HasFailure()) << "run " << run;
    if (run != settled && run != runs && run % kStep != 0) continue;
    last = Measure();
    if (run == settled) {
      first = last;
      labelsBefore = labels.Count();
    }
    std::printf("run %d: %d handles, %d windows, %d drawing objects, %d blocks of memory (%d labels)\n", run,
                last.handles, last.windows, last.drawing, last.blocks, labels.Count());
    std::fflush(stdout);
  }
  // What is kept of every run, or of every tenth, shows; what comes and goes with a thread does not.
  const int slack = 3 + (runs - settled) / 20;
  EXPECT_LE(last.handles, first.handles + slack);
  EXPECT_LE(last.windows, first.windows + slack);
  EXPECT_LE(last.drawing, first.drawing + slack);
  // Wine never frees one block of 24 bytes for each label.
  EXPECT_LE(last.blocks, first.blocks + labels.Count() - labelsBefore + slack);
}

}  // namespace
}  // namespace kxrestore::e2e
