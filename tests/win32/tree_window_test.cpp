#include "platform/win32/tree_window.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "controls/check_propagation.h"
#include "tests/win32/control_host.h"

namespace kxrestore::win32 {
namespace {

using controls::Node;
using controls::RedrawFreeze;
using controls::TreeView;

class TreeWindowTest : public ControlHost {
 protected:
  TreeWindowTest() { Place(tree); }
  ~TreeWindowTest() override { tree.AttachPeer(nullptr); }

  HWND Show() {
    tree.AttachPeer(MakeTreeWindow(context, tree, Host()));
    Pump();
    window = HandleOf(tree);
    ::SetFocus(window);
    Pump();
    return window;
  }

  // A drive with folders, each with files.
  void Fill(int folders, int files) {
    const RedrawFreeze freeze(tree);
    tree.Clear();
    const Node drive = tree.Add({}, "C:\\", "C:\\", 4);
    for (int folder = 0; folder < folders; ++folder) {
      const Node parent = tree.Add(drive, {}, "folder " + std::to_string(folder), 1);
      for (int file = 0; file < files; ++file) {
        tree.Add(parent, {}, "file " + std::to_string(file) + ".doc", 3, "tag");
      }
    }
  }

  void ExpandAll(bool expanded) {
    const int count = static_cast<int>(tree.Count());
    for (int index = 1; index <= count; ++index) {
      Node node = tree.Item(index);
      if (node.HasChildren() && node.Expanded() != expanded) node.SetExpanded(expanded);
    }
  }

  HTREEITEM Next(UINT relation, HTREEITEM item = nullptr) const {
    return reinterpret_cast<HTREEITEM>(
        SendMessageW(window, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
  }
  HTREEITEM Root() const { return Next(TVGN_ROOT); }
  // What the native control holds, without asking for more.
  std::size_t Held() const {
    return static_cast<std::size_t>(CallWindowProcW(
        reinterpret_cast<WNDPROC>(GetClassLongPtrW(window, GCLP_WNDPROC)), window, TVM_GETCOUNT, 0, 0));
  }
  int Box(HTREEITEM item) const {
    return static_cast<int>(
               SendMessageW(window, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_STATEIMAGEMASK)) >>
           12;
  }
  RECT TextOf(HTREEITEM item) const {
    RECT bounds;
    std::memcpy(&bounds, &item, sizeof item);
    SendMessageW(window, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&bounds));
    return bounds;
  }
  POINT PointOn(HTREEITEM item, UINT part) const {
    const RECT text = TextOf(item);
    TVHITTESTINFO hit{};
    hit.pt.y = (text.top + text.bottom) / 2;
    for (hit.pt.x = 0; hit.pt.x < text.right; ++hit.pt.x) {
      SendMessageW(window, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
      if ((hit.flags & TVHT_ONITEM) == part || (part == TVHT_ONITEMBUTTON && hit.flags == part))
        return {hit.pt.x + 2, hit.pt.y};
    }
    ADD_FAILURE() << "no such part";
    return {};
  }

  controls::ImageList images{{"cfolder", "ofolder", "file", "drive"}};
  TreeView tree{"tvwDetails", &form, true};
  HWND window = nullptr;
};

TEST_F(TreeWindowTest, MeasureExpandAll) {
  tree.SetImages(&images);
  Show();
  struct {
    int folders, files;
  } const sizes[] = {{100, 100}, {1000, 100}};
  for (auto size : sizes) {
    auto start = Clock::now();
    Fill(size.folders, size.files);
    const double load = Since(start);
    TakeLongest();
    start = Clock::now();
    Pump();
    PumpFor(0);
    std::printf("%d x %d: model %.0f ms, first show %.1f ms (held %zu)\n", size.folders, size.files, load,
                Since(start), Held());
    TakeLongest();
    start = Clock::now();
    ExpandAll(true);
    const double model = Since(start);
    std::size_t held = 0;
    auto stable = Clock::now();
    double done = 0;
    PumpUntil([&] {
      if (Held() != held) {
        held = Held();
        stable = Clock::now();
        done = Since(start);
      }
      return Since(stable) > 200;
    });
    std::printf("  expand all: model %.1f, done %.0f ms, longest %.0f ms, held %zu\n", model, done,
                TakeLongest(), held);
    start = Clock::now();
    Key(window, VK_END);
    std::printf("  end key %.1f ms\n", Since(start));
    PumpFor(100);
    std::printf("  held after End %zu longest %.1f\n", Held(), TakeLongest());
    start = Clock::now();
    for (int i = 0; i < 10; ++i) Key(window, VK_PRIOR);
    std::printf("  10 page up %.1f ms longest %.1f\n", Since(start), TakeLongest());
    start = Clock::now();
    tree.Item(1).SetChecked(true);
    controls::CheckChildren(tree.Item(1));
    std::printf("  check children %.1f ms", Since(start));
    start = Clock::now();
    Pump();
    std::printf(" pump %.1f ms, box %d\n", Since(start), Box(Root()));
    TakeLongest();
    start = Clock::now();
    ExpandAll(false);
    held = 0;
    PumpUntil([&] {
      if (Held() != held) {
        held = Held();
        stable = Clock::now();
        done = Since(start);
      }
      return Since(stable) > 200;
    });
    std::printf("  collapse all: done %.0f ms longest %.1f held %zu\n", done, TakeLongest(), Held());
    start = Clock::now();
    ExpandAll(true);
    SendMessageW(window, TVM_GETCOUNT, 0, 0);
    std::printf("  expand all + question: %.1f ms\n", Since(start));
    PumpFor(50);
    TakeLongest();
    start = Clock::now();
    Fill(3, 3);
    std::printf("  refill call: %.1f ms\n", Since(start));
    PumpUntil([&] { return Held() == 1; });
    std::printf("  refill done: %.1f ms longest %.1f\n", Since(start), TakeLongest());
    std::fflush(stdout);
  }
}

}  // namespace
}  // namespace kxrestore::win32
