// The windows of a form and its controls: layout, resolution, placement, and values in both directions.
#include "platform/win32/form/make_windows.h"
#include "tests/win32/form_fixture.h"

namespace kxrestore::win32::test {

class FormWindow : public FormTest {
 protected:
  const WindowContext& Context() { return ControlWindow::Of(ui.form)->Context(); }
  static bool HasVisibleStyle(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
  }
  static int FontHeight(controls::Control& control) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(Ask(control, WM_GETFONT)), sizeof font, &font);
    return std::abs(font.lfHeight);
  }

  // Expects every window to have the bounds of its control. Buttons and picture boxes have the exact width,
  // other controls the exact right edge. The height of a combo box follows the font.
  void ExpectLayout(int dpi) {
    ForEachControl(ui.form, [&](controls::Control& control) {
      using controls::Kind;
      const HWND window = WindowOf(control);
      ASSERT_NE(window, nullptr) << control.Name();
      RECT bounds = Bounds(window);
      MapWindowPoints(nullptr, GetAncestor(window, GA_PARENT), reinterpret_cast<POINT*>(&bounds), 2);
      EXPECT_EQ(bounds.left, MulDiv(control.Left(), dpi, 1440)) << control.Name();
      EXPECT_EQ(bounds.top, MulDiv(control.Top(), dpi, 1440)) << control.Name();
      const Kind kind = control.GetKind();
      if (kind == Kind::kCommandButton || kind == Kind::kPictureBox || kind == Kind::kCheckBox ||
          kind == Kind::kOptionButton) {
        EXPECT_EQ(bounds.right - bounds.left, MulDiv(control.Width(), dpi, 1440)) << control.Name();
      } else {
        EXPECT_EQ(bounds.right, MulDiv(control.Left() + control.Width(), dpi, 1440)) << control.Name();
      }
      const bool combo = kind == Kind::kComboBox || kind == Kind::kDriveListBox;
      EXPECT_NEAR(bounds.bottom - bounds.top, MulDiv(control.Height(), dpi, 1440), combo ? 3 : 1)
          << control.Name();
    });
  }
};

TEST_F(FormWindow, WindowsHaveTheBoundsOfTheirControlsAtEveryResolution) {
  Run({[&] {
    const int systemDpi = Context().Dpi();
    const int fontHeight = FontHeight(ui.label);
    ExpectLayout(systemDpi);
    for (const int dpi : {144, 192, 96}) {
      const RECT bounds{10, 10, 10 + MulDiv(ui.form.Width(), dpi, 1440),
                        10 + MulDiv(ui.form.Height(), dpi, 1440)};
      Ask(ui.form, 0x02E0, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&bounds));
      ExpectLayout(dpi);
      EXPECT_NEAR(FontHeight(ui.label), MulDiv(fontHeight, dpi, systemDpi), 1);
      EXPECT_NEAR(FontHeight(ui.mask), MulDiv(fontHeight, dpi, systemDpi), 1);
    }
  }});
}

TEST_F(FormWindow, TheScaleSizeIsTheClientAreaAndSizesGoBothWays) {
  ui.form.SetMinimumSize(7000, 6100);
  std::vector<int> reported;
  ui.form.Resize = [&] { reported.push_back(ui.form.Width()); };
  Run({[&] {
    const HWND form = WindowOf(ui.form);
    const auto pixels = [&](int twips) { return Context().ToPixels(twips); };
    RECT inner{};
    GetClientRect(form, &inner);
    EXPECT_NEAR(pixels(ui.form.ScaleWidth()), inner.right, 1);
    EXPECT_NEAR(pixels(ui.form.ScaleHeight()), inner.bottom, 1);
    reported.clear();
    const RECT outer = Bounds(WindowOf(ui.form));
    const int width = outer.right - outer.left + 31;
    SetWindowPos(form, nullptr, 0, 0, width, outer.bottom - outer.top, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(pixels(ui.form.Width()), width);
    EXPECT_EQ(reported.size(), 1u);
    // A size that code sets is reported once and unchanged.
    ui.form.Move(0, 0, 7003, 6107);
    Wait();
    EXPECT_EQ(ui.form.Width(), 7003);
    EXPECT_EQ(ui.form.Height(), 6107);
    EXPECT_EQ(reported.size(), 2u);
    EXPECT_EQ(Bounds(WindowOf(ui.form)).right - Bounds(WindowOf(ui.form)).left, pixels(7003));
    MINMAXINFO limits{};
    SendMessageW(form, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(limits.ptMinTrackSize.x, pixels(7000));
    EXPECT_EQ(limits.ptMinTrackSize.y, pixels(6100));
    ShowWindow(form, SW_MAXIMIZE);
    EXPECT_EQ(ui.form.WindowState(), controls::WindowState::kMaximized);
    EXPECT_GT(ui.form.Width(), 7003);
    ShowWindow(form, SW_RESTORE);
    EXPECT_EQ(ui.form.WindowState(), controls::WindowState::kNormal);
    EXPECT_EQ(pixels(ui.form.Width()), pixels(7003));
    SetWindowPos(form, nullptr, 64, 48, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_TRUE(ui.form.placement.known);
    EXPECT_EQ(pixels(ui.form.placement.left), 64);
    EXPECT_EQ(pixels(ui.form.placement.top), 48);
  }});
}

TEST_F(FormWindow, OpensAtItsStoredPlaceOrMovedOntoTheScreen) {
  ui.form.placement = {true, 1500, 750};
  ui.form.SetWindowState(controls::WindowState::kMaximized);
  Run({[&] {
    EXPECT_TRUE(IsZoomed(WindowOf(ui.form)));
    ShowWindow(WindowOf(ui.form), SW_RESTORE);
    EXPECT_EQ(Bounds(WindowOf(ui.form)).left, Context().ToPixels(1500));
    EXPECT_EQ(Bounds(WindowOf(ui.form)).top, Context().ToPixels(750));
    EXPECT_EQ(Bounds(WindowOf(ui.form)).right, Context().ToPixels(1500 + 9000));
  }});
  SampleForm outside;
  outside.form.placement = {true, 190000, -90000};
  Run(outside.form, {[&] {
        RECT work{};
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
        EXPECT_LE(Bounds(WindowOf(outside.form)).right, work.right);
        EXPECT_GE(Bounds(WindowOf(outside.form)).top, work.top);
      }});
}

TEST_F(FormWindow, TheNameOfAWindowIsRemovedWithIt) {
  Run({[&] {
    EXPECT_NE(GlobalFindAtomW(L"samplePrg"), 0);
    DestroyWindow(WindowOf(ui.progress));  // a window may be destroyed before its peer
    EXPECT_EQ(GlobalFindAtomW(L"samplePrg"), 0);
    ui.progress.SetValue(50);
  }});
  for (const wchar_t* const name : {L"frmSample", L"sampleCmd(0)", L"samplePanel(0)"}) {
    EXPECT_EQ(GlobalFindAtomW(name), 0) << FromWide(name);
  }
}

TEST_F(FormWindow, NamesAndToolTipsDoNotChangeTheContents) {
  ui.mask.SetAccessibleName("Mask");
  ui.mask.SetText("*.doc");
  ui.apply.SetToolTipText("Before");
  Run({[&] {
    EXPECT_EQ(ShownBy(ui.mask), "*.doc");
    ui.apply.SetToolTipText("After");
    HWND tips = nullptr;
    do {
      tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr);
    } while (tips != nullptr && GetWindow(tips, GW_OWNER) != WindowOf(ui.form));
    wchar_t text[64] = L"";
    TTTOOLINFOW tool{TTTOOLINFOW_V1_SIZE};
    tool.hwnd = WindowOf(ui.form);
    tool.uId = reinterpret_cast<UINT_PTR>(WindowOf(ui.apply));
    tool.lpszText = text;
    driver::Ask(tips, TTM_GETTEXTW, 64, &tool);
    EXPECT_EQ(FromWide(text), "After");
    EXPECT_EQ(driver::Ask(tips, TTM_GETTOOLCOUNT), 1);
    ui.apply.SetToolTipText("");
    EXPECT_EQ(driver::Ask(tips, TTM_GETTOOLCOUNT), 0);
  }});
}

TEST_F(FormWindow, WindowsShowTheirControlsAndReportTheUsersInput) {
  ui.drive.SetDrives({"d:", "e:"});
  Run({[&] {
    ui.apply.SetCaption("Gr\u00FC\u00DF");
    ui.apply.SetEnabled(false);
    ui.box.SetValue(1);
    ui.one.SetValue(true);
    ui.mask.AddItem("*.doc");
    ui.mask.AddItem("*.xls");
    ui.mask.SetText("a*");
    ui.text.SetText("VOLUME");
    ui.drive.SetDrive("e:");
    ui.progress.SetMax(8);
    ui.progress.SetValue(2);
    ui.frame.SetVisible(false);
    ui.tabs.SetSelectedIndex(2);
    ui.form.SetCaption("Other");
    Wait();
    EXPECT_EQ(ShownBy(ui.apply), "Gr\u00FC\u00DF");
    EXPECT_FALSE(IsWindowEnabled(WindowOf(ui.apply)));
    EXPECT_EQ(Ask(ui.box, BM_GETCHECK), BST_CHECKED);
    EXPECT_EQ(Ask(ui.one, BM_GETCHECK), BST_CHECKED);
    EXPECT_EQ(Ask(ui.all, BM_GETCHECK), BST_UNCHECKED);
    EXPECT_EQ(Ask(ui.mask, CB_GETCOUNT), 2);
    EXPECT_EQ(ShownBy(ui.mask), "a*");
    EXPECT_EQ(ShownBy(ui.text), "VOLUME");
    EXPECT_EQ(Ask(ui.drive, CB_GETCURSEL), 1);
    EXPECT_EQ(Ask(ui.progress, PBM_GETPOS), 2500);
    EXPECT_FALSE(IsWindowVisible(WindowOf(ui.frame)));
    EXPECT_EQ(Ask(ui.tabs, TCM_GETCURSEL), 1);
    EXPECT_EQ(ShownBy(ui.form), "Other");

    Ask(ui.box, BM_CLICK);
    EXPECT_EQ(ui.box.Value(), 0);
    SetWindowTextW(WindowOf(ui.text), L"TYPED");
    EXPECT_EQ(ui.text.Text(), "TYPED");
    const auto choose = [&](controls::Control& list, WPARAM item) {
      Ask(list, CB_SETCURSEL, item);
      Ask(ui.panel, WM_COMMAND, MAKEWPARAM(0, CBN_SELCHANGE), reinterpret_cast<LPARAM>(WindowOf(list)));
    };
    choose(ui.mask, 1);
    EXPECT_EQ(ui.mask.Text(), "*.xls");
    choose(ui.drive, 0);
    EXPECT_EQ(ui.drive.Drive(), "d:");
    Ask(ui.tabs, TCM_SETCURFOCUS, 2);
    EXPECT_EQ(ui.tabs.SelectedIndex(), 3);

    std::string seen;
    ui.form.MouseMove = [&] { seen += "form "; };
    ui.shared.MouseMove = [&] { seen += "button "; };
    ui.label.MouseMove = [&] { seen += "label "; };
    controls::Control* const sources[] = {&ui.form, &ui.shared, &ui.label};
    for (controls::Control* const source : sources) Ask(*source, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    EXPECT_EQ(seen, "form button label ");
    const RECT bounds = Bounds(WindowOf(ui.picBottom));
    SetCursorPos(bounds.left + 20, bounds.top + 20);
    Wait();
    ui.form.SetMousePointer(controls::MousePointer::kHourglass);
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_WAIT));
    ui.form.SetMousePointer(controls::MousePointer::kDefault);
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
  }});
}

TEST_F(FormWindow, FreezesNestAndEndWithTheCurrentState) {
  ui.one.SetVisible(false);
  Run({[&] {
    using controls::RedrawFreeze;
    const HWND panel = WindowOf(ui.panel), box = WindowOf(ui.box), one = WindowOf(ui.one);
    UpdateWindow(box);
    {
      const RedrawFreeze outer(ui.panel);
      {
        const RedrawFreeze inner(ui.panel), hiddenOne(ui.one);
        ui.box.SetVisible(false);
        ui.box.SetVisible(true);
      }
      EXPECT_FALSE(HasVisibleStyle(panel));
      EXPECT_FALSE(HasVisibleStyle(one));
      InvalidateRect(box, nullptr, FALSE);
      EXPECT_FALSE(GetUpdateRect(box, nullptr, FALSE));
    }
    EXPECT_TRUE(HasVisibleStyle(panel));
    EXPECT_TRUE(GetUpdateRect(box, nullptr, FALSE));
    EXPECT_FALSE(HasVisibleStyle(one));
    {
      const RedrawFreeze freeze(ui.box), freezeOne(ui.one);
      ui.box.SetVisible(false);
      ui.one.SetVisible(true);
    }
    EXPECT_FALSE(HasVisibleStyle(box));
    EXPECT_TRUE(HasVisibleStyle(one));
  }});
}

}  // namespace kxrestore::win32::test
