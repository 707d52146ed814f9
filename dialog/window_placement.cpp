#include "dialog/window_placement.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

#include "dialog/client_settings.h"

namespace kxrestore::dialog {

namespace {

constexpr const char* kWindowEntry = "RestoreWindow";        // left, top, width, height, maximized
constexpr const char* kSplittersEntry = "RestoreSplitters";  // top of splitH, left of SplitV
constexpr int kMaxCoordinate = 200000;                       // twips; no screen is larger

// Numbers separated by blanks; nothing unless there are exactly as many as expected, all within range.
template <std::size_t count>
std::optional<std::array<int, count>> ReadNumbers(platform::Platform& platform, const char* entry) {
  const std::string text = UserSettings(platform).ReadEntry(entry, "");
  std::array<int, count> numbers{};
  const char* position = text.data();
  const char* const end = text.data() + text.size();
  for (int& number : numbers) {
    while (position < end && *position == ' ') ++position;
    const auto [next, error] = std::from_chars(position, end, number);
    if (error != std::errc() || number < -kMaxCoordinate || number > kMaxCoordinate) return std::nullopt;
    position = next;
  }
  if (position != end) return std::nullopt;
  return numbers;
}

template <std::size_t count>
void WriteNumbers(platform::Platform& platform, const char* entry, const std::array<int, count>& numbers) {
  std::string text;
  for (const int number : numbers) {
    if (!text.empty()) text += ' ';
    text += std::to_string(number);
  }
  UserSettings(platform).WriteEntry(entry, text);
}

}  // namespace

void WindowPlacement::RestoreWindow() {
  controls::Form& form = m_ui.form;
  const auto window = ReadNumbers<5>(m_platform, kWindowEntry);
  if (!window || (*window)[2] <= 0 || (*window)[3] <= 0) {
    const platform::WindowSize size = m_platform.desktop.SizeToStartWith({form.Width(), form.Height()});
    form.Move(form.Left(), form.Top(), size.width, size.height);
    return;
  }
  const auto [left, top, width, height, maximized] = *window;
  form.Move(form.Left(), form.Top(), width, height);
  form.placement = {true, left, top};
  if (maximized != 0) form.SetWindowState(controls::WindowState::kMaximized);
}

void WindowPlacement::RestoreSplitters() {
  const auto splitters = ReadNumbers<2>(m_platform, kSplittersEntry);
  if (!splitters) return;
  m_layout.WishSplitters({(*splitters)[0], (*splitters)[1]});
}

void WindowPlacement::Remember() const {
  const controls::Form& form = m_ui.form;
  // A window that was never shown has no position to store.
  if (!form.placement.known) return;
  WriteNumbers<5>(m_platform, kWindowEntry,
                  {form.placement.left, form.placement.top, form.NormalWidth(), form.NormalHeight(),
                   form.WindowState() == controls::WindowState::kMaximized ? 1 : 0});
  const Layout::Splitters splitters = m_layout.WishedSplitters();
  WriteNumbers<2>(m_platform, kSplittersEntry, {splitters.top, splitters.left});
}

}  // namespace kxrestore::dialog
