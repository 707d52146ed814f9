// Records what the form does, in order: changes of its controls, calls of the engine, and lines of the test.
// A statement is recorded by its text, a change of a control by its new state.
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "dialog/form_controls.h"
#include "tests/dialog/hooked_engine.h"

namespace kxrestore::dialog_test {

class Journal {
 public:
  void Note(std::string line) {
    if (line == "flush" && !m_lines.empty() && m_lines.back() == line) return;  // nothing happened in between
    m_lines.push_back(std::move(line));
  }
  bool Empty() const { return m_lines.empty(); }
  std::vector<std::string> Take() { return std::exchange(m_lines, {}); }
  // Hooks that record the calls of the engine.
  EngineHooks Hooks() {
    return {.before =
                [this](const std::string& call) {
                  if (call != "next row") Note(call);
                },
            .mindsTime = false};
  }
  // Records the changes of all controls from now on. Of positions it records those of the main areas only.
  void Watch(dialog::FormControls& ui);

 private:
  std::vector<std::string> m_lines;
};

// The new state of a control whose property has changed; empty for a change that is not recorded.
inline std::string Shown(const controls::Control& control, controls::Property property) {
  using controls::Property;
  const auto* const form = dynamic_cast<const controls::Form*>(&control);
  switch (property) {
    case Property::kCaption:
      if (form != nullptr) return " \"" + form->Caption() + "\"";
      if (const auto* label = dynamic_cast<const controls::Captioned*>(&control)) {
        return " \"" + label->Caption() + "\"";
      }
      return " text";
    case Property::kVisible:
      if (form != nullptr) return " closed";
      return control.Visible() ? " shown" : " hidden";
    case Property::kEnabled:
      return control.Enabled() ? " enabled" : " disabled";
    case Property::kToolTipText:
      return " tip \"" + control.ToolTipText() + "\"";
    case Property::kAppearance:
      if (form == nullptr) return {};
      return form->MousePointer() == controls::MousePointer::kHourglass ? " hourglass" : " arrow or icon";
    case Property::kValue:
      if (const auto* option = dynamic_cast<const controls::OptionButton*>(&control)) {
        return option->Value() ? " chosen" : " not chosen";
      }
      return " value";
    case Property::kItems:
      return " items";
    case Property::kGeometry:
      switch (control.GetKind()) {
        case controls::Kind::kPictureBox:
        case controls::Kind::kSplitBar:
          if (control.Name().starts_with("panel") || control.Name() == "picCounts") return {};
          break;
        case controls::Kind::kTreeView:
          if (control.Name() != "tvwSets") return {};
          break;
        default:
          return {};
      }
      return " at " + std::to_string(control.Left()) + " " + std::to_string(control.Top()) + " " +
             std::to_string(control.Width()) + " " + std::to_string(control.Height());
    case Property::kWindowState:
    case Property::kTaskProgress:
    case Property::kEmptyText:
      break;
  }
  return {};
}

template <typename Base>
class JournalPeer : public Base {
 public:
  JournalPeer(Journal& journal, controls::Control& control) : m_journal(journal), m_control(control) {}
  void Changed(controls::Property property) override {
    if (const std::string shown = Shown(m_control, property); !shown.empty()) Note(shown);
  }
  void BringToFront() override { Note(" to front"); }
  void SetFocus() override { Note(" focused"); }
  void Refresh() override { Note(" refreshed"); }
  void FreezeRedraw(bool frozen) override { Note(frozen ? " frozen" : " thawed"); }

 protected:
  void Note(const std::string& what) { m_journal.Note(m_control.Name() + what); }
  Journal& m_journal;
  controls::Control& m_control;
};

class JournalTreePeer : public JournalPeer<controls::TreePeer> {
 public:
  using JournalPeer::JournalPeer;
  void NodeAdded(std::uint32_t node) override { Note(" + " + Text(node)); }
  void NodeRemoved(std::uint32_t node) override { Note(" - " + Text(node)); }
  void NodeChanged(std::uint32_t node, controls::NodeProperty property) override {
    if (property == controls::NodeProperty::kMixed) return;
    constexpr const char* kNames[] = {" text", " image", " checked", " expanded", " bold", " selected"};
    Note(" " + Text(node) + kNames[static_cast<int>(property)]);
  }
  void Cleared() override { Note(" cleared"); }

 private:
  std::string Text(std::uint32_t node) const {
    return std::string(static_cast<controls::TreeView&>(m_control).Item(static_cast<int>(node)).Text());
  }
};

class JournalListPeer : public JournalPeer<controls::ListPeer> {
 public:
  using JournalPeer::JournalPeer;
  void EntriesAdded(std::size_t newCount) override {
    Note(" + " + std::string(static_cast<controls::AutoSelect&>(m_control).At(newCount).name));
  }
  void TicksChanged(std::size_t, std::size_t) override { Note(" ticks"); }
  void Cleared() override { Note(" cleared"); }
};

// Skips the progress display, which depends on the clock. progress_test.cpp covers it.
inline void WatchAll(Journal& journal, controls::Control& control) {
  if (control.Name() == "picProgress") return;
  switch (control.GetKind()) {
    case controls::Kind::kTreeView:
      control.AttachPeer(std::make_unique<JournalTreePeer>(journal, control));
      break;
    case controls::Kind::kAutoSelect:
      control.AttachPeer(std::make_unique<JournalListPeer>(journal, control));
      break;
    default:
      control.AttachPeer(std::make_unique<JournalPeer<controls::Peer>>(journal, control));
  }
  if (auto* const container = dynamic_cast<controls::Container*>(&control)) {
    for (controls::Control* const child : container->Children()) WatchAll(journal, *child);
  }
}

inline void Journal::Watch(dialog::FormControls& ui) {
  WatchAll(*this, ui.form);
}

}  // namespace kxrestore::dialog_test
