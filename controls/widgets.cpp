#include "controls/widgets.h"

#include <algorithm>

#include "controls/errors.h"

namespace kxrestore::controls {

namespace {

// Assigns a value. Whether that changed it.
template <typename T, typename U>
bool Replace(T& value, U&& replacement) {
  if (value == replacement) return false;
  value = std::forward<U>(replacement);
  return true;
}

}  // namespace

// A walk sets its count at every item. Assigning a view reuses the caption's memory.
void Captioned::SetCaption(std::string_view caption) {
  if (Replace(m_caption, caption)) Notify(Property::kCaption);
}

void Frame::SetCaption(std::string_view caption) {
  if (Replace(m_caption, caption)) Notify(Property::kCaption);
}

void Label::SetFontName(std::string name) {
  if (Replace(m_fontName, std::move(name))) Notify(Property::kAppearance);
}

void Label::SetBold(bool bold) {
  if (Replace(m_bold, bold)) Notify(Property::kAppearance);
}

void Label::SetRightAligned(bool rightAligned) {
  if (Replace(m_rightAligned, rightAligned)) Notify(Property::kAppearance);
}

void Label::SetUseMnemonic(bool useMnemonic) {
  if (Replace(m_useMnemonic, useMnemonic)) Notify(Property::kAppearance);
}

void CommandButton::UserClick() {
  if (Click && AcceptsUser()) Click();
}

void CheckBox::SetValue(int value) {
  if (value != 0 && value != 1) ThrowInvalidPropertyValue();
  if (!Replace(m_value, value)) return;
  Notify(Property::kValue);
  if (Click) Click();
}

void CheckBox::UserClick() {
  if (AcceptsUser()) SetValue(1 - m_value);
}

void OptionButton::SetValue(bool value) {
  if (m_value == value) return;
  if (value && GetContainer() != nullptr) {
    for (Control* const sibling : GetContainer()->Children()) {
      if (sibling == this || sibling->GetKind() != Kind::kOptionButton) continue;
      static_cast<OptionButton*>(sibling)->SetValue(false);
    }
  }
  m_value = value;
  Notify(Property::kValue);
  if (value && Click) Click();
}

void OptionButton::UserClick() {
  if (AcceptsUser()) SetValue(true);
}

void TextBox::SetText(std::string text) {
  if (Replace(m_text, std::move(text))) Notify(Property::kCaption);
}

void TextBox::UserType(std::string text) {
  if (!m_locked && AcceptsUser()) m_text = std::move(text);
}

void ComboBox::SetText(std::string text) {
  if (Replace(m_text, std::move(text))) Notify(Property::kCaption);
}

void ComboBox::AddItem(std::string item) {
  m_items.push_back(std::move(item));
  Notify(Property::kItems);
}

void ComboBox::UserType(std::string text) {
  if (AcceptsUser()) m_text = std::move(text);
}

void ComboBox::UserEnter() {
  if (Enter && AcceptsUser()) Enter();
}

bool ComboBox::UserDown() {
  return Down && AcceptsUser() && Down();
}

void TabStrip::SetSelectedIndex(int index) {
  if (index < 1 || static_cast<std::size_t>(index) > m_tabs.size()) ThrowIndexOutOfBounds();
  if (!Replace(m_selected, index)) return;
  Notify(Property::kValue);
  if (Click) Click();
}

void TabStrip::UserSelect(int index, bool goIn) {
  if (index < 1 || static_cast<std::size_t>(index) > m_tabs.size() || !AcceptsUser()) return;
  SetSelectedIndex(index);
  if (goIn && GoIn) GoIn();
}

void DriveListBox::SetDrives(std::vector<std::string> drives) {
  if (Replace(m_drives, std::move(drives))) Notify(Property::kItems);
}

void DriveListBox::SetDrive(std::string drive) {
  if (Replace(m_drive, std::move(drive))) Notify(Property::kValue);
  if (Change) Change();
}

void DriveListBox::UserSelect(std::string drive) {
  if (AcceptsUser()) SetDrive(std::move(drive));
}

void ProgressBar::SetMax(double max) {
  if (!(max > 0)) ThrowInvalidPropertyValue();
  if (!Replace(m_max, max)) return;
  m_value = std::min(m_value, m_max);
  Notify(Property::kValue);
}

void ProgressBar::SetValue(double value) {
  if (!(value >= 0 && value <= m_max)) ThrowInvalidPropertyValue();
  if (Replace(m_value, value)) Notify(Property::kValue);
}

void ProgressBar::SetIndeterminate(bool indeterminate) {
  if (Replace(m_indeterminate, indeterminate)) Notify(Property::kAppearance);
}

int ImageList::Index(std::string_view key) const {
  const auto place = std::find(m_keys.begin(), m_keys.end(), key);
  if (place == m_keys.end()) ThrowElementNotFound();
  return static_cast<int>(place - m_keys.begin()) + 1;
}

}  // namespace kxrestore::controls
