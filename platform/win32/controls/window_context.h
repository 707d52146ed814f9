// Shared by the windows of one form: module, resolution, fonts, and the list of windows whose controls have
// changed since they were last updated.
//
// Form code changes properties far more often than the screen needs to be updated. A changed window puts
// itself on a list (`Later`). The list is processed after each message (`Flush`) or, for properties that may
// change with every row of a long walk (captions, progress), about ten times a second (`FlushThrottled`).
#pragma once

#include <concepts>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "controls/form.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class ControlWindow;

struct FontDeleter {
  void operator()(HFONT font) const { DeleteObject(font); }
};
using FontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

// Uses common controls version 6 for windows created during its lifetime; the host's own windows keep the
// host's version.
class ActivationScope {
 public:
  explicit ActivationScope(HANDLE activationContext);
  ~ActivationScope();
  ActivationScope(const ActivationScope&) = delete;
  ActivationScope& operator=(const ActivationScope&) = delete;

 private:
  bool m_active = false;
  ULONG_PTR m_cookie = 0;
};

class WindowContext {
 public:
  enum class When { kSoon, kThrottled };

  explicit WindowContext(HINSTANCE module);
  ~WindowContext();
  WindowContext(const WindowContext&) = delete;
  WindowContext& operator=(const WindowContext&) = delete;

  HINSTANCE Module() const { return m_module; }
  // The module's manifest (resource 2), INVALID_HANDLE_VALUE when it has none.
  HANDLE ActivationContext() const { return m_activationContext; }

  int Dpi() const { return m_dpi; }
  void SetDpi(int dpi);  // drops the fonts: every window must be given its font again
  int ToPixels(int twips) const { return MulDiv(twips, m_dpi, 1440); }
  int ToTwips(int pixels) const { return MulDiv(pixels, 1440, m_dpi); }

  // The system's message font at the form's resolution, or a variant with another face or weight. Owned by
  // the context.
  HFONT Font(const std::string& face = {}, bool bold = false);

  int TextWidth(const std::wstring& text, bool bold = false);  // pixels, in that font

  // The pointer for the whole form; nullptr: each window's own.
  HCURSOR FormPointer() const { return m_formPointer; }
  void SetFormPointer(HCURSOR pointer) { m_formPointer = pointer; }

  // The form's window, once it exists.
  HWND FormHandle() const { return m_form; }
  void SetFormHandle(HWND form) { m_form = form; }
  // Moves the keyboard focus on when the focused window is about to be hidden or disabled.
  std::function<void(ControlWindow&)> MoveFocusOff;

  void Later(ControlWindow& window, When when);
  void Forget(ControlWindow& window);
  void Flush();
  void FlushThrottled();  // when it is due
  void FlushAll();

  // Brackets the handling of a message; after the outermost one, pending changes are displayed.
  class MessageScope {
   public:
    explicit MessageScope(WindowContext& context) : m_context(context) { ++context.m_depth; }
    ~MessageScope();
    MessageScope(const MessageScope&) = delete;
    MessageScope& operator=(const MessageScope&) = delete;

   private:
    WindowContext& m_context;
  };

  void SetToolTip(HWND window, const std::string& text);
  // Removes the tool tips and accessible names of a window and its descendants, before they are destroyed.
  void RemoveTexts(HWND window);

  // Runs form code from a window procedure or callback. No exception may pass through those; it is stored
  // here until the message loop takes and reports it.
  template <std::invocable Call>
  void Guarded(Call&& call) noexcept {
    try {
      std::forward<Call>(call)();
    } catch (...) {
      if (!m_error) m_error = std::current_exception();
    }
  }
  std::exception_ptr TakeError() { return std::exchange(m_error, nullptr); }

 private:
  void FlushList(When when);
  static BOOL CALLBACK RemoveTextsOf(HWND window, LPARAM context);

  HINSTANCE m_module;
  HANDLE m_activationContext = INVALID_HANDLE_VALUE;
  int m_dpi;
  HWND m_form = nullptr;
  HWND m_toolTips = nullptr;
  HCURSOR m_formPointer = nullptr;
  using Fonts = std::map<std::pair<std::string, bool>, FontHandle>;
  Fonts m_fonts;
  Fonts m_retiredFonts;                      // of the previous resolution, until every window has a new one
  std::vector<ControlWindow*> m_changed[2];  // by When
  std::vector<ControlWindow*> m_working;
  DWORD m_lastThrottled = 0;
  bool m_flushing = false;
  int m_depth = 0;
  std::exception_ptr m_error;
};

}  // namespace kxrestore::win32
