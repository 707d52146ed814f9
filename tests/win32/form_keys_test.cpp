#include <gtest/gtest.h>

#include "form_session.h"

namespace kxrestore::win32::test {

TEST(FormKeys, TabFollowsTheOrderOfCreationPastWhatCannotBeUsed) {
  SampleForm ui;
  ui.shared.SetEnabled(false);
  ui.drive.SetVisible(false);
  FormSession session;
  std::string order;
  for (int press = 0; press < 8; ++press) {
    session.Then([&] {
      order += FormSession::Focused() == nullptr ? "nothing" : FormSession::Focused()->Name();
      order += ' ';
      FormSession::Press(VK_TAB);
    });
  }
  EXPECT_TRUE(session.Run(ui.form));
  EXPECT_EQ(order, "tabs sampleCmd(0) chk opt(1) cbo txt bar tabs ");
}

TEST(FormKeys, UnderlinedLettersPressTheirControlAndSelectTheirTab) {
  SampleForm ui;
  int applied = 0;
  int shared = 0;
  ui.apply.Click = [&] { ++applied; };
  ui.shared.Click = [&] { ++shared; };
  FormSession session;
  session.Then([&] { FormSession::PressAlt(L'y'); })
      .Then([&] {
        EXPECT_EQ(applied, 1);
        EXPECT_EQ(FormSession::Focused(), &ui.apply);
        FormSession::PressAlt(L'O');
      })
      .Then([&] {
        EXPECT_EQ(ui.box.Value(), 1);
        FormSession::PressAlt(L't');
      })
      .Then([&] {
        EXPECT_TRUE(ui.one.Value());
        FormSession::PressAlt(L'c');
      })
      .Then([&] {
        EXPECT_EQ(ui.tabs.SelectedIndex(), 2);
        EXPECT_EQ(FormSession::Focused(), &ui.tabs);
        // A button and a tab share this letter: the button is not pressed by it.
        FormSession::PressAlt(L's');
      })
      .Then([&] {
        EXPECT_EQ(FormSession::Focused(), &ui.shared);
        EXPECT_EQ(ui.tabs.SelectedIndex(), 2);
        FormSession::PressAlt(L's');
      })
      .Then([&] {
        EXPECT_EQ(shared, 0);
        EXPECT_EQ(ui.tabs.SelectedIndex(), 3);
        ui.apply.SetEnabled(false);
        FormSession::PressAlt(L'y');
      })
      .Then([&] { EXPECT_EQ(applied, 1); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormKeys, LabelsPointToWhatFollowsUnlessTheyShowNames) {
  SampleForm ui;
  ui.label.SetCaption("A&rea");
  controls::Label name("name", &ui.panel, "R&D");
  controls::TextBox after("after", &ui.form);
  name.SetUseMnemonic(false);
  FormSession session;
  session.Then([&] { FormSession::PressAlt(L'r'); })
      .Then([&] {
        EXPECT_EQ(FormSession::Focused(), &ui.bar);
        EXPECT_NE(GetWindowLongPtrW(FormSession::WindowOf(name), GWL_STYLE) & SS_NOPREFIX, 0);
        EXPECT_EQ(GetWindowLongPtrW(FormSession::WindowOf(ui.label), GWL_STYLE) & SS_NOPREFIX, 0);
        after.SetFocus();
        FormSession::PressAlt(L'd');
      })
      .Then([&] { EXPECT_EQ(FormSession::Focused(), &after); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormKeys, ArrowsChooseAmongOptions) {
  SampleForm ui;
  FormSession session;
  session
      .Then([&] {
        ui.all.SetFocus();
        FormSession::Press(VK_DOWN);
      })
      .Then([&] {
        EXPECT_TRUE(ui.one.Value());
        EXPECT_EQ(FormSession::Focused(), &ui.one);
        FormSession::Press(VK_LEFT);
      })
      .Then([&] {
        EXPECT_TRUE(ui.all.Value());
        ui.one.SetEnabled(false);
        FormSession::Press(VK_UP);
      })
      .Then([&] { EXPECT_FALSE(ui.one.Value()); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormKeys, EnterPressesTheFocusedButtonOnly) {
  SampleForm ui;
  int applied = 0;
  ui.apply.Click = [&] { ++applied; };
  FormSession session;
  for (controls::Control* const control :
       {static_cast<controls::Control*>(&ui.text), static_cast<controls::Control*>(&ui.mask),
        static_cast<controls::Control*>(&ui.tabs), static_cast<controls::Control*>(&ui.box)}) {
    session.Then([=] {
      control->SetFocus();
      FormSession::Press(VK_RETURN);
    });
  }
  session
      .Then([&] {
        EXPECT_EQ(applied, 0);
        EXPECT_EQ(ui.box.Value(), 0);
        ui.apply.SetFocus();
        FormSession::Press(VK_RETURN);
      })
      .Then([&] { EXPECT_EQ(applied, 1); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormKeys, FocusMovesOnWhenItsControlIsDisabledOrHidden) {
  SampleForm ui;
  ui.apply.Click = [&] { ui.apply.SetEnabled(false); };
  FormSession session;
  session
      .Then([&] {
        ui.apply.SetFocus();
        FormSession::Press(VK_RETURN);
      })
      .Then([&] {
        EXPECT_EQ(FormSession::Focused(), &ui.shared);
        ui.mask.SetFocus();
        ui.panel.SetVisible(false);
      })
      .Then([&] {
        EXPECT_EQ(FormSession::Focused(), &ui.bar);
        // A message box takes the focus and gives it back.
        session.Platform().desktop.MessageBox("Text", platform::kOkOnly, "");
      })
      .Meanwhile([&] { EXPECT_EQ(AnswerBox(IDOK), "KXRestore: Text"); })
      .Then([&] { EXPECT_EQ(FormSession::Focused(), &ui.bar); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormKeys, EscapeF5AndTheCloseBoxReachTheForm) {
  SampleForm ui;
  std::string seen;
  ui.form.KeyPress = [&](controls::Key key) { seen += key == controls::Key::kEscape ? "Esc " : "F5 "; };
  ui.form.CloseRequest = [&] { seen += "close "; };
  FormSession session;
  session
      .Then([&] {
        ui.mask.SetFocus();
        FormSession::Press(VK_ESCAPE);
        FormSession::Press(VK_F5);
        PostMessageW(FormSession::WindowOf(ui.form), WM_SYSCOMMAND, SC_CLOSE, 0);
      })
      .Then([&] {
        EXPECT_EQ(seen, "Esc F5 close ");
        EXPECT_TRUE(ui.form.IsOpen());
        // In an open list Esc closes that.
        SendMessageW(FormSession::WindowOf(ui.mask), CB_SHOWDROPDOWN, TRUE, 0);
        FormSession::Press(VK_ESCAPE);
      })
      .Then([&] {
        EXPECT_EQ(seen, "Esc F5 close ");
        EXPECT_FALSE(SendMessageW(FormSession::WindowOf(ui.mask), CB_GETDROPPEDSTATE, 0, 0));
      });
  EXPECT_TRUE(session.Run(ui.form));
}

}  // namespace kxrestore::win32::test
