// The dialog with real mouse and keyboard input: dragged splitters, a file restored by keys alone, and tab
// switches without flicker.
#include <map>
#include <mutex>

#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"

namespace kxrestore::e2e {
namespace {

RECT Bounds(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return bounds;
}

// Injects mouse and key input through the X server, which Wine treats as the user's. Starting a native
// program from Wine sometimes fails, so it is tried again.
void Xdotool(const std::wstring& actions) {
  constexpr int kNotStarted = -1;
  int code = kNotStarted;
  for (int tried = 0; tried < 3 && code == kNotStarted; ++tried) {
    Program xdotool(L"start.exe /wait /unix /usr/bin/xdotool " + actions);
    code = xdotool.Wait(20'000);
  }
  EXPECT_EQ(0, code);
}

std::wstring MoveTo(LONG x, LONG y) {
  return L"mousemove --sync " + std::to_wstring(x) + L' ' + std::to_wstring(y) + L' ';
}

void Drag(HWND bar, LONG right, LONG down) {
  const RECT from = Bounds(bar);
  const LONG x = (from.left + from.right) / 2, y = (from.top + from.bottom) / 2;
  Xdotool(MoveTo(x, y) + L"mousedown 1 " + MoveTo(x + right / 2, y + down / 2) + MoveTo(x + right, y + down) +
          L"mouseup 1");
}

class WindowTest : public DialogTest {};

TEST_F(WindowTest, TheMouseDragsBothBarsAndBothSidesFollow) {
  Run([&](const DialogDriver& dialog) {
    SetWindowPos(dialog.WaitForForm(), nullptr, 100, 100, 1100, 850, SWP_NOZORDER);
    const auto at = [&](const char* name) { return Bounds(dialog.Control(name)); };
    const RECT bottom = at("picBottom");
    Drag(dialog.Control("splitH"), 0, 60);
    driver::WaitFor(std::chrono::seconds(5), "the lower area to move",
                    [&] { return at("picBottom").top >= bottom.top + 50; });
    EXPECT_NEAR(at("picBottom").bottom, bottom.bottom, 6);
    EXPECT_NEAR(at("picTop").bottom, at("splitH").top, 1);

    const RECT tree = at("tvwSets"), details = at("tvwDetails");
    Drag(dialog.Control("SplitV"), 80, 0);
    driver::WaitFor(std::chrono::seconds(5), "the set tree to grow and the other one to follow", [&] {
      return at("tvwSets").right >= tree.right + 75 && at("tvwDetails").right <= details.right + 2;
    });
    EXPECT_NEAR(at("tvwDetails").left, details.left + 80, 6);
    EXPECT_NEAR(at("tvwDetails").right, details.right, 2);
    dialog.Close();
  });
}

TEST_F(WindowTest, AFileIsFoundTickedAndRestoredByKeysAlone) {
  EXPECT_EQ(1, Run([&](const DialogDriver& dialog) {
              dialog.WaitForForm();
              Xdotool(L"key alt+s b period d o c Return");
              dialog.ExpectText("lblSearchCount", "1 File(s)");
              Xdotool(L"key Down space alt+y");
              dialog.ExpectText("lblCounts(0)", SelectedText(1));
              Xdotool(L"key alt+n");
            }));
  EXPECT_EQ(Ids{kNewB}, m_catalog.Marked());
}

// Counts the WM_PAINT messages of each window of a thread.
class PaintLog {
 public:
  explicit PaintLog(DWORD thread)
      : m_posted(SetWindowsHookExW(WH_GETMESSAGE, Posted, nullptr, thread)),
        m_sent(SetWindowsHookExW(WH_CALLWNDPROC, Sent, nullptr, thread)) {}
  ~PaintLog() {
    UnhookWindowsHookEx(m_posted);
    UnhookWindowsHookEx(m_sent);
  }
  std::map<HWND, int> Take() {
    const std::lock_guard lock(s_mutex);
    return std::exchange(s_counts, {});
  }

 private:
  static void Count(UINT message, HWND window) {
    if (message != WM_PAINT) return;
    const std::lock_guard lock(s_mutex);
    ++s_counts[window];
  }
  static LRESULT CALLBACK Posted(int code, WPARAM wide, LPARAM extra) {
    const MSG& message = *reinterpret_cast<const MSG*>(extra);
    if (code == HC_ACTION && wide == PM_REMOVE) Count(message.message, message.hwnd);
    return CallNextHookEx(nullptr, code, wide, extra);
  }
  static LRESULT CALLBACK Sent(int code, WPARAM wide, LPARAM extra) {
    const auto& message = *reinterpret_cast<const CWPSTRUCT*>(extra);
    if (code == HC_ACTION) Count(message.message, message.hwnd);
    return CallNextHookEx(nullptr, code, wide, extra);
  }

  inline static std::mutex s_mutex;
  inline static std::map<HWND, int> s_counts;
  HHOOK m_posted, m_sent;
};

TEST_F(WindowTest, ATabSwitchPaintsEachWindowOnce) {
  Run([&](const DialogDriver& dialog) {
    dialog.Tab(3);
    driver::WaitFor(std::chrono::seconds(40), "the types",
                    [&] { return dialog.List("asFiles").Count() > 0; });
    Sleep(600);  // until the types are sorted
    PaintLog log(GetWindowThreadProcessId(dialog.WaitForForm(), nullptr));
    for (const int tab : {1, 2, 3, 1}) {
      Sleep(400);
      log.Take();
      dialog.Tab(tab);
      Sleep(400);
      const auto counts = log.Take();
      const std::string panel = "panel(" + std::to_string(tab - 1) + ')';
      EXPECT_TRUE(counts.contains(dialog.Control(panel))) << panel;
      for (const auto& [window, count] : counts) {
        EXPECT_EQ(1, count) << driver::NameOf(window) << ' ' << driver::ClassOf(window) << ", tab " << tab;
      }
    }
    dialog.Close();
  });
}

}  // namespace
}  // namespace kxrestore::e2e
