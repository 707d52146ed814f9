// A host process that runs the dialog many times does not leak.
//
// The environment variable KX_SOAK_RUNS sets the number of runs (default 12).
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

// Open kernel handles. Not every system counts them, so every possible value is probed.
int CountHandles() {
  int count = 0;
  DWORD flags = 0;
  for (UINT_PTR value = 4; value < 0x8000; value += 4) {
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
  }
  return count;
}

BOOL CALLBACK CountWindow(HWND, LPARAM count) {
  ++*reinterpret_cast<int*>(count);
  return TRUE;
}

// All windows of this process: top-level and message-only windows with their children.
int CountWindows() {
  int count = 0;
  for (const HWND parent : {static_cast<HWND>(nullptr), HWND_MESSAGE}) {
    for (HWND window = nullptr; (window = FindWindowExW(parent, window, nullptr, nullptr)) != nullptr;) {
      DWORD process = 0;
      GetWindowThreadProcessId(window, &process);
      if (process != GetCurrentProcessId()) continue;
      ++count;
      EnumChildWindows(window, CountWindow, reinterpret_cast<LPARAM>(&count));
    }
  }
  return count;
}

// GDI objects: pens, brushes, fonts, bitmaps, regions and device contexts. The lower half of a handle is an
// index into one table, and the system accepts it without the upper half.
int CountDrawing() {
  int count = 0;
  for (UINT_PTR index = 1; index < 0x10000; ++index) {
    if (GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0) ++count;
  }
  return count;
}

// Allocated blocks in all heaps.
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

int g_labels = 0;  // labels that this thread has created
LRESULT CALLBACK CountLabel(int code, WPARAM window, LPARAM details) {
  const bool label = code == HCBT_CREATEWND && driver::ClassOf(reinterpret_cast<HWND>(window)) == "Static";
  g_labels += label ? 1 : 0;
  return CallNextHookEx(nullptr, code, window, details);
}

// What the process holds at one moment.
struct Held {
  int handles = CountHandles(), windows = CountWindows(), drawing = CountDrawing(), labels = g_labels;
  int blocks = CountBlocks();
};

TEST_F(DialogTest, ManyRunsDoNotLeak) {
  constexpr int kStep = 50;
  const char* const told = std::getenv("KX_SOAK_RUNS");
  const int runs = told == nullptr ? 12 : std::max(std::atoi(told), 2);
  const int settled = std::min(runs / 2, 100);  // by then the system's caches are filled
  std::vector<Held> measured;
  const HHOOK hook = SetWindowsHookExW(WH_CBT, CountLabel, nullptr, GetCurrentThreadId());
  for (int run = 1; run <= runs; ++run) {
    const ComPtr<_RestoreDlg> object = NewObject();
    const ComPtr<CountingSink> sink = CountingSink::Make();
    Advise(object.Get(), sink.Get());
    const bool restores = run % 2 == 0;
    RunDialog(object.Get(), [&](const DialogDriver& dialog) {
      dialog.SelectRun("1");
      dialog.Tick("C:\\");
      dialog.Click("cmdAction(0)");
      dialog.ExpectText("lblCounts(0)", SelectedText(3));
      dialog.Tab(3);
      dialog.Click(restores ? "cmdRestore(0)" : "cmdRestore(1)");
      if (!restores) dialog.Answer("YES");
    });
    EXPECT_EQ(restores ? 1 : 0, sink->events);
    m_catalog.Query("UPDATE Catalog SET Restore = 0");
    ASSERT_FALSE(HasFailure()) << "run " << run;
    if (run < settled || (run != settled && run != runs && run % kStep != 0)) continue;
    const Held& now = measured.emplace_back();
    std::printf("run %d: %d handles, %d windows, %d drawing objects, %d blocks of memory\n", run, now.handles,
                now.windows, now.drawing, now.blocks);
    std::fflush(stdout);
  }
  UnhookWindowsHookEx(hook);
  const Held &first = measured.front(), &last = measured.back();
  EXPECT_GT(std::min({first.handles, first.windows, first.drawing, first.blocks}), 0);
  // The slack hides what a thread allocates and frees, but not a leak in every run or in every tenth.
  const int slack = 3 + (runs - settled) / 20;
  EXPECT_LE(last.handles, first.handles + slack);
  EXPECT_LE(last.windows, first.windows + slack);
  EXPECT_LE(last.drawing, first.drawing + slack);
  // Wine leaks one block of 24 bytes for each label.
  EXPECT_LE(last.blocks, first.blocks + last.labels - first.labels + slack);
}

}  // namespace
}  // namespace kxrestore::e2e
