// Describes the form as text: its controls as designed, its help and its layout.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {

// The control's name, its caption in quotation marks, and whether it is hidden, disabled or chosen.
inline std::string LookOf(const controls::Control& control) {
  std::string look = control.Name();
  const auto quote = [&](const std::string& text) { look.append(" \"").append(text).append("\""); };
  if (const auto* form = dynamic_cast<const controls::Form*>(&control)) quote(form->Caption());
  if (const auto* frame = dynamic_cast<const controls::Frame*>(&control)) quote(frame->Caption());
  if (const auto* captioned = dynamic_cast<const controls::Captioned*>(&control)) quote(captioned->Caption());
  if (const auto* tabs = dynamic_cast<const controls::TabStrip*>(&control)) {
    for (const auto& tab : tabs->Tabs()) quote(tab.caption + "=" + tab.key);
  }
  if (!control.AccessibleName().empty()) look += " (" + control.AccessibleName() + ")";
  if (!control.Visible()) look += " hidden";
  if (!control.Enabled()) look += " disabled";
  if (const auto* option = dynamic_cast<const controls::OptionButton*>(&control)) {
    if (option->Value()) look += " chosen";
  }
  if (const auto* label = dynamic_cast<const controls::Label*>(&control)) {
    if (!label->FontName().empty()) look += " in " + label->FontName();
  }
  return look;
}

// A paragraph for each container with its controls.
inline std::string DesignOf(const controls::Container& container) {
  Strings pieces{"    " + LookOf(container) + ":"};
  std::string inner;
  for (const controls::Control* const child : container.Children()) {
    pieces.push_back(LookOf(*child));
    const auto* const below = dynamic_cast<const controls::Container*>(child);
    if (below != nullptr && !below->Children().empty()) inner += DesignOf(*below);
  }
  std::string page = Filled(pieces, "      ");
  page.pop_back();
  return "\n" + page + inner;
}

// A line for each control with a help text: the name, the key and the text. Expects that a second move within
// a control does not write the text again.
inline std::string HelpOf(controls::Control& control, controls::Label& help) {
  std::string lines;
  if (control.MouseMove) {
    control.MouseMove();
    lines = "\n    " + control.Name() + ": " + help.Tag() + " \"" + help.Caption() + "\"";
    help.SetCaption("as it was");
    control.MouseMove();
    EXPECT_EQ(help.Caption(), "as it was");
  }
  if (auto* const container = dynamic_cast<controls::Container*>(&control)) {
    for (controls::Control* const child : container->Children()) lines += HelpOf(*child, help);
  }
  return lines;
}

// Appends left, top, width and height of each control that can be visible to its line in `places`.
inline void Measure(const controls::Control& control, std::vector<std::string>& places, std::size_t& next) {
  if (next == places.size()) places.push_back("\n    " + control.Name() + ":");
  places[next].append(places[next].ends_with(':') ? "" : " |");
  for (const int twips : {control.Left(), control.Top(), control.Width(), control.Height()}) {
    places[next].append(" ").append(std::to_string(twips));
  }
  ++next;
  const auto* const container = dynamic_cast<const controls::Container*>(&control);
  if (container == nullptr) return;
  for (const controls::Control* const child : container->Children()) {
    const bool designedHidden =
        !child->Visible() && child->GetKind() != controls::Kind::kPictureBox && child->Name() != "frLoadCD";
    if (!designedHidden) Measure(*child, places, next);
  }
}

inline void Drag(controls::SplitBar& bar, int by) {
  bar.UserMouseMoveOver(controls::SplitBar::kLeftButton, by, by);
  bar.UserMouseUp();
}

// The bounds of all controls at three window sizes. At the largest one both bars are dragged first.
inline std::string PlacesIn(FormControls& ui) {
  std::vector<std::string> places;
  for (const auto& [width, height] : {std::pair(7000, 6100), {11880, 9000}, {20000, 15000}}) {
    ui.form.UserResize(width, height, controls::WindowState::kNormal);
    if (width == 20000) {
      Drag(ui.splitH, 4000);
      Drag(ui.SplitV, 3000);
    }
    std::size_t next = 0;
    Measure(ui.form, places, next);
  }
  std::string all;
  for (const std::string& place : places) all += place;
  return all;
}

}  // namespace kxrestore::dialog_test
