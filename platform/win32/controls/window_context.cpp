#include "platform/win32/controls/window_context.h"

#include <algorithm>

#include "platform/win32/controls/accessible_name.h"
#include "platform/win32/controls/control_window.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr WORD kManifestResource = 2;
constexpr DWORD kThrottleMilliseconds = 100;
constexpr int kToolTipMilliseconds = 30000;  // long enough to read the longest text
constexpr int kToolTipWidth = 5400;          // twips
constexpr int kMaxRounds = 16;               // of updates that change further windows

HANDLE MakeActivationContext(HINSTANCE module) {
  ACTCTXW description{sizeof description};
  description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  description.hModule = module;
  description.lpResourceName = MAKEINTRESOURCEW(kManifestResource);
  return CreateActCtxW(&description);
}

int SystemDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : USER_DEFAULT_SCREEN_DPI;
}

LOGFONTW MessageFont(int dpi) {
  NONCLIENTMETRICSW metrics{sizeof metrics};
  using ForDpi = BOOL(WINAPI*)(UINT, UINT, void*, UINT, UINT);
  const HMODULE user = GetModuleHandleW(L"user32.dll");
  const auto forDpi =
      reinterpret_cast<ForDpi>(reinterpret_cast<void*>(GetProcAddress(user, "SystemParametersInfoForDpi")));
  if (forDpi != nullptr && forDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi)) {
    return metrics.lfMessageFont;
  }
  if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
    const int systemDpi = SystemDpi();
    if (systemDpi != dpi)
      metrics.lfMessageFont.lfHeight = MulDiv(metrics.lfMessageFont.lfHeight, dpi, systemDpi);
    return metrics.lfMessageFont;
  }
  LOGFONTW font{};
  GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
  return font;
}

}  // namespace

ActivationScope::ActivationScope(HANDLE activationContext) {
  if (activationContext != INVALID_HANDLE_VALUE) m_active = ActivateActCtx(activationContext, &m_cookie);
}

ActivationScope::~ActivationScope() {
  if (m_active) DeactivateActCtx(0, m_cookie);
}

WindowContext::WindowContext(HINSTANCE module)
    : m_module(module), m_activationContext(MakeActivationContext(module)), m_dpi(SystemDpi()) {
  const ActivationScope scope(m_activationContext);
  INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES | ICC_TAB_CLASSES |
                                                   ICC_PROGRESS_CLASS | ICC_BAR_CLASSES | ICC_DATE_CLASSES |
                                                   ICC_STANDARD_CLASSES};
  InitCommonControlsEx(&classes);
}

WindowContext::~WindowContext() {
  if (m_activationContext != INVALID_HANDLE_VALUE) ReleaseActCtx(m_activationContext);
}

void WindowContext::SetDpi(int dpi) {
  if (dpi <= 0 || dpi == m_dpi) return;
  m_dpi = dpi;
  m_retiredFonts = std::move(m_fonts);
  m_fonts.clear();
}

HFONT WindowContext::Font(const std::string& face, bool bold) {
  FontHandle& font = m_fonts[{face, bold}];
  if (!font) {
    LOGFONTW description = MessageFont(m_dpi);
    if (!face.empty()) {
      const std::wstring name = Wide(face);
      const std::size_t length = std::min<std::size_t>(name.size(), LF_FACESIZE - 1);
      std::copy_n(name.begin(), length, description.lfFaceName);
      description.lfFaceName[length] = L'\0';
    }
    if (bold) description.lfWeight = FW_BOLD;
    font.reset(CreateFontIndirectW(&description));
  }
  return font.get();
}

int WindowContext::TextWidth(const std::wstring& text, bool bold) {
  const HDC dc = GetDC(nullptr);
  if (dc == nullptr) return 0;
  const HGDIOBJ before = SelectObject(dc, Font({}, bold));
  SIZE size{};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  SelectObject(dc, before);
  ReleaseDC(nullptr, dc);
  return size.cx;
}

void WindowContext::Later(ControlWindow& window, When when) {
  bool& listed = window.m_listed[static_cast<int>(when)];
  if (listed) return;
  listed = true;
  m_changed[static_cast<int>(when)].push_back(&window);
}

void WindowContext::Forget(ControlWindow& window) {
  for (auto* const list : {&m_changed[0], &m_changed[1], &m_working}) {
    std::replace(list->begin(), list->end(), &window, static_cast<ControlWindow*>(nullptr));
  }
}

void WindowContext::FlushList(When when) {
  const int which = static_cast<int>(when);
  for (int round = 0; round < kMaxRounds && !m_changed[which].empty(); ++round) {
    m_working.swap(m_changed[which]);
    for (std::size_t i = 0; i < m_working.size(); ++i) {  // Forget may clear entries meanwhile
      if (m_working[i] == nullptr) continue;
      m_working[i]->m_listed[which] = false;
      m_working[i]->FlushNow();
    }
    m_working.clear();
  }
}

void WindowContext::Flush() {
  if (m_flushing || m_changed[static_cast<int>(When::kSoon)].empty()) return;
  m_flushing = true;
  FlushList(When::kSoon);
  m_flushing = false;
}

void WindowContext::FlushThrottled() {
  if (m_flushing || m_changed[static_cast<int>(When::kThrottled)].empty()) return;
  const DWORD now = GetTickCount();
  if (now - m_lastThrottled < kThrottleMilliseconds) return;
  m_lastThrottled = now;
  m_flushing = true;
  FlushList(When::kThrottled);
  m_flushing = false;
}

void WindowContext::FlushAll() {
  Flush();
  m_lastThrottled = GetTickCount() - kThrottleMilliseconds;
  FlushThrottled();
}

WindowContext::MessageScope::~MessageScope() {
  if (--m_context.m_depth > 0) return;
  m_context.Flush();
  m_context.FlushThrottled();
}

void WindowContext::SetToolTip(HWND window, const std::string& text) {
  if (m_toolTips == nullptr) {
    if (text.empty() || m_form == nullptr) return;
    const ActivationScope scope(m_activationContext);
    m_toolTips =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0,
                        0, 0, 0, m_form, nullptr, m_module, nullptr);
    if (m_toolTips == nullptr) return;
    SendMessageW(m_toolTips, TTM_SETDELAYTIME, TTDT_AUTOPOP, kToolTipMilliseconds);
  }
  SendMessageW(m_toolTips, TTM_SETMAXTIPWIDTH, 0, ToPixels(kToolTipWidth));
  std::wstring wide = WideShownLines(text);
  TTTOOLINFOW tool{TTTOOLINFOW_V1_SIZE};
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = m_form;
  tool.uId = reinterpret_cast<UINT_PTR>(window);
  tool.lpszText = wide.data();
  SendMessageW(m_toolTips, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  if (!text.empty()) SendMessageW(m_toolTips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void WindowContext::RemoveTexts(HWND window) {
  RemoveTextsOf(window, reinterpret_cast<LPARAM>(this));
  EnumChildWindows(window, RemoveTextsOf, reinterpret_cast<LPARAM>(this));
}

BOOL CALLBACK WindowContext::RemoveTextsOf(HWND window, LPARAM context) {
  reinterpret_cast<WindowContext*>(context)->SetToolTip(window, {});
  RemoveName(window);
  return TRUE;
}

}  // namespace kxrestore::win32
