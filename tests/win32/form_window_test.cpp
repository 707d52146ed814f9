#include <gtest/gtest.h>

#include <array>

#include "form_session.h"
#include "platform/win32/control_window.h"
#include "platform/win32/make_windows.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32::test {

namespace {

RECT BoundsInParent(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  MapWindowPoints(nullptr, GetAncestor(window, GA_PARENT), reinterpret_cast<POINT*>(&bounds), 2);
  return bounds;
}

SIZE OuterSize(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return {bounds.right - bounds.left, bounds.bottom - bounds.top};
}

bool HasVisibleStyle(HWND window) {
  return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

// Every window stands where its control says: edge by edge, or with its size when it is a button or a ground
// for others. The heights of combo boxes are the font's.
void ExpectLayout(controls::Form& form, int dpi) {
  ForEachControl(form, [&](controls::Control& control) {
    const HWND window = FormSession::WindowOf(control);
    ASSERT_NE(window, nullptr) << control.Name();
    const RECT bounds = BoundsInParent(window);
    EXPECT_EQ(bounds.left, MulDiv(control.Left(), dpi, 1440)) << control.Name();
    EXPECT_EQ(bounds.top, MulDiv(control.Top(), dpi, 1440)) << control.Name();
    if (control.GetKind() == controls::Kind::kCommandButton ||
        control.GetKind() == controls::Kind::kPictureBox || control.GetKind() == controls::Kind::kCheckBox ||
        control.GetKind() == controls::Kind::kOptionButton) {
      EXPECT_EQ(bounds.right - bounds.left, MulDiv(control.Width(), dpi, 1440)) << control.Name();
    } else {
      EXPECT_EQ(bounds.right, MulDiv(control.Left() + control.Width(), dpi, 1440)) << control.Name();
    }
    const int height = bounds.bottom - bounds.top;
    const int wanted = MulDiv(control.Height(), dpi, 1440);
    const bool combo =
        control.GetKind() == controls::Kind::kComboBox || control.GetKind() == controls::Kind::kDriveListBox;
    EXPECT_LE(std::abs(height - wanted), combo ? 3 : 1)
        << control.Name() << " is " << height << " high, not " << wanted;
  });
}

int FontHeight(HWND window) {
  LOGFONTW font{};
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof font, &font);
  return std::abs(font.lfHeight);
}

}  // namespace

TEST(FormWindow, WindowsStandWhereTheControlsSayAtEveryResolution) {
  SampleForm ui;
  FormSession session;
  int systemDpi = 0;
  int fontHeight = 0;
  session.Then([&] {
    systemDpi = ControlWindow::Of(ui.form)->Context().Dpi();
    fontHeight = FontHeight(FormSession::WindowOf(ui.label));
    ExpectLayout(ui.form, systemDpi);
  });
  for (const int dpi : {144, 192, 96}) {
    session.Then([&, dpi] {
      const HWND form = FormSession::WindowOf(ui.form);
      const RECT bounds{10, 10, 10 + MulDiv(ui.form.Width(), dpi, 1440),
                        10 + MulDiv(ui.form.Height(), dpi, 1440)};
      SendMessageW(form, 0x02E0, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&bounds));
      ExpectLayout(ui.form, dpi);
      EXPECT_NEAR(FontHeight(FormSession::WindowOf(ui.label)), MulDiv(fontHeight, dpi, systemDpi), 1);
      EXPECT_NEAR(FontHeight(FormSession::WindowOf(ui.mask)), MulDiv(fontHeight, dpi, systemDpi), 1);
    });
  }
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, InnerSizeIsTheClientAreaAndSizesGoBothWays) {
  SampleForm ui;
  ui.form.SetMinimumSize(7000, 6100);
  FormSession session;
  std::vector<int> reported;
  ui.form.Resize = [&] { reported.push_back(ui.form.Width()); };
  int pixels = 0;
  session
      .Then([&] {
        const HWND form = FormSession::WindowOf(ui.form);
        const auto& context = ControlWindow::Of(ui.form)->Context();
        RECT inner{};
        GetClientRect(form, &inner);
        EXPECT_NEAR(context.ToPixels(ui.form.ScaleWidth()), inner.right, 1);
        EXPECT_NEAR(context.ToPixels(ui.form.ScaleHeight()), inner.bottom, 1);
        reported.clear();
        pixels = OuterSize(form).cx + 31;
        SetWindowPos(form, nullptr, 0, 0, pixels, OuterSize(form).cy, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(context.ToPixels(ui.form.Width()), pixels);
        EXPECT_EQ(reported.size(), 1u);
        // What the form's code sets comes back once, as it was set.
        reported.clear();
        ui.form.Move(0, 0, 7003, 6107);
      })
      .Then([&] {
        const auto& context = ControlWindow::Of(ui.form)->Context();
        const HWND form = FormSession::WindowOf(ui.form);
        EXPECT_EQ(ui.form.Width(), 7003);
        EXPECT_EQ(ui.form.Height(), 6107);
        EXPECT_EQ(reported.size(), 1u);
        EXPECT_EQ(OuterSize(form).cx, context.ToPixels(7003));
        MINMAXINFO limits{};
        SendMessageW(form, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        EXPECT_EQ(limits.ptMinTrackSize.x, context.ToPixels(7000));
        EXPECT_EQ(limits.ptMinTrackSize.y, context.ToPixels(6100));
        ShowWindow(form, SW_MAXIMIZE);
        EXPECT_EQ(ui.form.WindowState(), controls::WindowState::kMaximized);
        EXPECT_GT(ui.form.Width(), 7003);
        ShowWindow(form, SW_RESTORE);
        EXPECT_EQ(ui.form.WindowState(), controls::WindowState::kNormal);
        EXPECT_EQ(context.ToPixels(ui.form.Width()), context.ToPixels(7003));
        SetWindowPos(form, nullptr, 64, 48, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        EXPECT_TRUE(ui.form.placement.known);
        EXPECT_EQ(context.ToPixels(ui.form.placement.left), 64);
        EXPECT_EQ(context.ToPixels(ui.form.placement.top), 48);
      });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, OpensAtItsRememberedPlaceOrWhollyOnTheScreen) {
  SampleForm ui;
  ui.form.placement = {true, 1500, 750};
  FormSession session;
  session.Then([&] {
    RECT bounds{};
    GetWindowRect(FormSession::WindowOf(ui.form), &bounds);
    const auto& context = ControlWindow::Of(ui.form)->Context();
    EXPECT_EQ(bounds.left, context.ToPixels(1500));
    EXPECT_EQ(bounds.top, context.ToPixels(750));
  });
  EXPECT_TRUE(session.Run(ui.form));

  SampleForm outside;
  outside.form.placement = {true, 190000, -90000};
  session.Then([&] {
    RECT bounds{};
    GetWindowRect(FormSession::WindowOf(outside.form), &bounds);
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_LE(bounds.right, work.right);
    EXPECT_GE(bounds.top, work.top);
  });
  EXPECT_TRUE(session.Run(outside.form));
}

TEST(FormWindow, EveryWindowCarriesItsControlsNameUntilItGoes) {
  SampleForm ui;
  FormSession session;
  session.Then([&] {
    const auto expectName = [](controls::Control& control) {
      const HANDLE value = GetPropW(FormSession::WindowOf(control), L"KXRestore.Control");
      std::array<wchar_t, 64> name{};
      GlobalGetAtomNameW(static_cast<ATOM>(reinterpret_cast<ULONG_PTR>(value)), name.data(), 64);
      EXPECT_EQ(Narrow(name.data()), control.Name());
    };
    expectName(ui.form);
    ForEachControl(ui.form, expectName);
    DestroyWindow(FormSession::WindowOf(ui.progress));  // a window may go without its peer
    EXPECT_EQ(GlobalFindAtomW(L"samplePrg"), 0);
    ui.progress.SetValue(50);
  });
  EXPECT_TRUE(session.Run(ui.form));
  for (const wchar_t* const name : {L"frmSample", L"sampleCmd(0)", L"samplePanel(0)"}) {
    EXPECT_EQ(GlobalFindAtomW(name), 0) << Narrow(name);
  }
}

TEST(FormWindow, ScreenReadersAndThePointerGetTheirTexts) {
  SampleForm ui;
  ui.tabs.SetAccessibleName("Ways to choose");
  ui.mask.SetAccessibleName("Mask");
  ui.mask.SetText("*.doc");
  ui.apply.SetToolTipText("Before");
  FormSession session;
  session.Then([&] {
    EXPECT_EQ(WindowText(FormSession::WindowOf(ui.tabs)), "Ways to choose");
    EXPECT_EQ(WindowText(FormSession::WindowOf(ui.mask)), "*.doc");  // its text is its contents
    ui.apply.SetToolTipText("After");
    HWND tips = FindWindowW(TOOLTIPS_CLASSW, nullptr);
    while (tips != nullptr && GetWindow(tips, GW_OWNER) != FormSession::WindowOf(ui.form)) {
      tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr);
    }
    std::array<wchar_t, 64> text{};
    TTTOOLINFOW tool{TTTOOLINFOW_V1_SIZE};
    tool.hwnd = FormSession::WindowOf(ui.form);
    tool.uId = reinterpret_cast<UINT_PTR>(FormSession::WindowOf(ui.apply));
    tool.lpszText = text.data();
    SendMessageW(tips, TTM_GETTEXTW, text.size(), reinterpret_cast<LPARAM>(&tool));
    EXPECT_EQ(Narrow(text.data()), "After");
    EXPECT_EQ(SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0), 1);
    ui.apply.SetToolTipText("");
    EXPECT_EQ(SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0), 0);
  });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, WindowsShowWhatTheControlsSay) {
  SampleForm ui;
  ui.drive.SetDrives({"d:", "e:"});
  FormSession session;
  session
      .Then([&] {
        ui.apply.SetCaption("Gr\xC3\xBC\xC3\x9F");
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
      })
      .Then([&] {
        EXPECT_EQ(WindowText(FormSession::WindowOf(ui.apply)), "Gr\xC3\xBC\xC3\x9F");
        EXPECT_FALSE(IsWindowEnabled(FormSession::WindowOf(ui.apply)));
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.box), BM_GETCHECK, 0, 0), BST_CHECKED);
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.one), BM_GETCHECK, 0, 0), BST_CHECKED);
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.all), BM_GETCHECK, 0, 0), BST_UNCHECKED);
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.mask), CB_GETCOUNT, 0, 0), 2);
        EXPECT_EQ(WindowText(FormSession::WindowOf(ui.mask)), "a*");
        EXPECT_EQ(WindowText(FormSession::WindowOf(ui.text)), "VOLUME");
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.drive), CB_GETCURSEL, 0, 0), 1);
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.progress), PBM_GETPOS, 0, 0), 2500);
        EXPECT_FALSE(IsWindowVisible(FormSession::WindowOf(ui.frame)));
        EXPECT_EQ(SendMessageW(FormSession::WindowOf(ui.tabs), TCM_GETCURSEL, 0, 0), 1);
        EXPECT_EQ(WindowText(FormSession::WindowOf(ui.form)), "Other");
        // And the user's side of the same.
        SendMessageW(FormSession::WindowOf(ui.box), BM_CLICK, 0, 0);
        EXPECT_EQ(ui.box.Value(), 0);
        SetWindowTextW(FormSession::WindowOf(ui.text), L"TYPED");
        EXPECT_EQ(ui.text.Text(), "TYPED");
        SendMessageW(FormSession::WindowOf(ui.mask), CB_SETCURSEL, 1, 0);
        SendMessageW(FormSession::WindowOf(ui.panel), WM_COMMAND, MAKEWPARAM(0, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(FormSession::WindowOf(ui.mask)));
        EXPECT_EQ(ui.mask.Text(), "*.xls");
        SendMessageW(FormSession::WindowOf(ui.drive), CB_SETCURSEL, 0, 0);
        SendMessageW(FormSession::WindowOf(ui.panel), WM_COMMAND, MAKEWPARAM(0, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(FormSession::WindowOf(ui.drive)));
        EXPECT_EQ(ui.drive.Drive(), "d:");
        SendMessageW(FormSession::WindowOf(ui.tabs), TCM_SETCURFOCUS, 2, 0);
        EXPECT_EQ(ui.tabs.SelectedIndex(), 3);
      });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, FreezesNestAndEndWithTheStateAsItIs) {
  SampleForm ui;
  ui.one.SetVisible(false);
  FormSession session;
  session.Then([&] {
    const HWND panel = FormSession::WindowOf(ui.panel);
    const HWND box = FormSession::WindowOf(ui.box);
    const HWND one = FormSession::WindowOf(ui.one);
    UpdateWindow(box);
    {
      const controls::RedrawFreeze outer(ui.panel);
      {
        const controls::RedrawFreeze inner(ui.panel);
        const controls::RedrawFreeze hiddenOne(ui.one);
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
      const controls::RedrawFreeze freeze(ui.box);
      const controls::RedrawFreeze freezeOne(ui.one);
      ui.box.SetVisible(false);
      ui.one.SetVisible(true);
    }
    EXPECT_FALSE(HasVisibleStyle(box));
    EXPECT_TRUE(HasVisibleStyle(one));
  });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, ArrowsMoveAFocusedBar) {
  SampleForm ui;
  FormSession session;
  session
      .Then([&] {
        SetFocus(FormSession::WindowOf(ui.bar));
        FormSession::Press(VK_UP);
        FormSession::Press(VK_LEFT);
      })
      .Then([&] { EXPECT_EQ(ui.bar.Top(), 4005 - 120); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, PointerMovesAreReportedByEachControl) {
  SampleForm ui;
  std::string seen;
  ui.form.MouseMove = [&] { seen += "form "; };
  ui.apply.MouseMove = [&] { seen += "apply "; };
  ui.label.MouseMove = [&] { seen += "label "; };
  FormSession session;
  session
      .Then([&] {
        seen.clear();
        for (controls::Control* const control :
             {static_cast<controls::Control*>(&ui.form), static_cast<controls::Control*>(&ui.apply),
              static_cast<controls::Control*>(&ui.label)}) {
          PostMessageW(FormSession::WindowOf(*control), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
        }
      })
      .Then([&] { EXPECT_EQ(seen, "form apply label "); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(FormWindow, TheFormsPointerShowsAtOnceAndGoesAgain) {
  SampleForm ui;
  FormSession session;
  session
      .Then([&] {
        RECT bounds{};
        GetWindowRect(FormSession::WindowOf(ui.picBottom), &bounds);
        SetCursorPos(bounds.left + 20, bounds.top + 20);
      })
      .Then([&] {
        ui.form.SetMousePointer(controls::MousePointer::kHourglass);
        EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_WAIT));
        ui.form.SetMousePointer(controls::MousePointer::kDefault);
        EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
      });
  EXPECT_TRUE(session.Run(ui.form));
}

}  // namespace kxrestore::win32::test
