// The keyboard in a form: Tab, access keys, arrows, Enter, Esc and F5.
#include "controls/auto_select.h"
#include "tests/win32/form_fixture.h"

namespace kxrestore::win32::test {

class FormKeys : public FormTest {};

TEST_F(FormKeys, TabFollowsTheOrderOfCreationAndSkipsUnusableControls) {
  ui.shared.SetEnabled(false);
  ui.drive.SetVisible(false);
  const controls::TextBox below("below", &ui.picBottom);
  std::string order;
  Run({[&] {
    for (int press = 0; press < 9; ++press) {
      order += Focused() + ' ';
      Press(VK_TAB);
    }
  }});
  EXPECT_EQ(order, "tabs sampleCmd(0) chk opt(1) cbo txt below bar tabs ") << "splitters last";
}

TEST_F(FormKeys, AccessKeysPressTheirControlOrSelectTheirTab) {
  int applied = 0;
  ui.apply.Click = [&] { ++applied; };
  ui.shared.Click = [&] { ADD_FAILURE() << "pressed by an access key that it shares"; };
  Run({[&] {
    PressAlt(L'y');
    EXPECT_EQ(applied, 1);
    EXPECT_EQ(Focused(), ui.apply.Name());
    PressAlt(L'O');
    EXPECT_EQ(ui.box.Value(), 1);
    PressAlt(L't');
    EXPECT_TRUE(ui.one.Value());
    PressAlt(L'c');
    EXPECT_EQ(ui.tabs.SelectedIndex(), 2);
    EXPECT_EQ(Focused(), "tabs");
    // A button and a tab share this letter, which moves the focus between them.
    PressAlt(L's');
    EXPECT_EQ(Focused(), ui.shared.Name());
    EXPECT_EQ(ui.tabs.SelectedIndex(), 2);
    PressAlt(L's');
    EXPECT_EQ(ui.tabs.SelectedIndex(), 3);
    ui.apply.SetEnabled(false);
    PressAlt(L'y');
    EXPECT_EQ(applied, 1);
  }});
}

TEST_F(FormKeys, AnAccessKeyOfALabelLeadsToTheNextControl) {
  ui.label.SetCaption("A&rea");
  controls::Label name("name", &ui.panel, "R&D");
  controls::TextBox after("after", &ui.form);
  name.SetUseMnemonic(false);
  Run({[&] {
    PressAlt(L'r');
    EXPECT_EQ(Focused(), "after");
    EXPECT_NE(GetWindowLongPtrW(WindowOf(name), GWL_STYLE) & SS_NOPREFIX, 0);
    EXPECT_EQ(GetWindowLongPtrW(WindowOf(ui.label), GWL_STYLE) & SS_NOPREFIX, 0);
    ui.text.SetFocus();
    PressAlt(L'd');
    EXPECT_EQ(Focused(), "txt");
  }});
}

TEST_F(FormKeys, ArrowsAndEnterActOnTheFocusedControl) {
  int applied = 0;
  ui.apply.Click = [&] {
    ++applied;
    ui.apply.SetEnabled(false);
  };
  Run({[&] {
    ui.bar.SetFocus();
    Press(VK_UP);
    Press(VK_LEFT);
    EXPECT_EQ(ui.bar.Top(), 4005 - 120);
    ui.all.SetFocus();
    Press(VK_DOWN);
    EXPECT_TRUE(ui.one.Value());
    EXPECT_EQ(Focused(), ui.one.Name());
    Press(VK_LEFT);
    EXPECT_TRUE(ui.all.Value());
    ui.one.SetEnabled(false);
    Press(VK_UP);
    EXPECT_FALSE(ui.one.Value());

    controls::Control* const others[] = {&ui.text, &ui.mask, &ui.tabs, &ui.box};
    for (controls::Control* const control : others) {
      control->SetFocus();
      Press(VK_RETURN);
    }
    EXPECT_EQ(applied + ui.box.Value(), 0) << "Enter presses the focused button only";
    ui.apply.SetFocus();
    Press(VK_RETURN);
    EXPECT_EQ(applied, 1);
    // A control that is disabled or hidden passes the focus to the next one.
    EXPECT_EQ(Focused(), ui.shared.Name());
    ui.mask.SetFocus();
    ui.panel.SetVisible(false);
    Wait();
    EXPECT_EQ(Focused(), "bar");
    ExpectBox("KXRestore: Text");
    TheDesktop().MessageBox("Text", platform::MessageStyle::kPlain, "");
    EXPECT_EQ(Focused(), "bar") << "a message box returns the focus";
  }});
}

TEST_F(FormKeys, EscapeF5AndTheCloseBoxReachTheForm) {
  std::string seen;
  ui.form.KeyPress = [&](controls::Key key) { seen += key == controls::Key::kEscape ? "Esc " : "F5 "; };
  ui.form.CloseRequest = [&] { seen += "close "; };
  Run({[&] {
    ui.mask.SetFocus();
    Press(VK_ESCAPE);
    Press(VK_F5);
    PostMessageW(WindowOf(ui.form), WM_SYSCOMMAND, SC_CLOSE, 0);
    Wait();
    EXPECT_EQ(seen, "Esc F5 close ");
    EXPECT_TRUE(ui.form.IsOpen());
    // While a list is dropped down, Esc only closes the list.
    Ask(ui.mask, CB_SHOWDROPDOWN, TRUE);
    Press(VK_ESCAPE);
    EXPECT_EQ(seen, "Esc F5 close ");
    EXPECT_FALSE(Ask(ui.mask, CB_GETDROPPEDSTATE));
  }});
}

TEST_F(FormKeys, TheListOfThePageCanBeReachedAndFiltered) {
  controls::AutoSelect list("list", &ui.picBottom, controls::AutoSelect::Style::kFiles);
  list.Move(0, 0, 8700, 1800);
  for (const char* name : {"a.doc", "b.doc"}) {
    controls::AutoSelect::Entry entry;
    entry.name = entry.storedName = name;
    list.Add(entry);
  }
  Run({[&] {
    ui.apply.SetFocus();
    HoldControl(true);
    Press('F');
    HoldControl(false);
    EXPECT_TRUE(list.FilterShown());
    EXPECT_EQ(Focused(), "list");
    list.ShowFilter(false);
    Wait();
    ui.apply.SetFocus();
    list.SetFocus();
    Press(VK_SPACE);
    EXPECT_TRUE(list.TickedAt(1));
    EXPECT_FALSE(list.TickedAt(2));
  }});
}

}  // namespace kxrestore::win32::test
