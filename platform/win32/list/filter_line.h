// The line above a list that narrows it down: words, and for lists of files dates, sizes and sets. Its fields
// stand in as many rows as the width asks for.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "controls/auto_select.h"
#include "platform/win32/controls/window_context.h"

namespace kxrestore::win32 {

class FilterLine {
 public:
  FilterLine(WindowContext& context, controls::AutoSelect& list) : m_context(context), m_list(list) {}

  // Makes the fields, hidden, in their parent; shows in them what the list is filtered by.
  void Create(HWND parent);
  bool Shown() const { return m_shown; }
  // Shows or hides the fields; places them in `width` pixels and at most `most` rows. Their height.
  int Place(bool show, int width, int mostRows);
  void OnDpiChanged();

  // A key while the focus is in the line or on the entries (`list`).
  enum class KeyAnswer { kNotMine, kDone, kClose, kIntoEntries };
  KeyAnswer OnKey(WPARAM key, bool back, HWND list) const;
  bool Holds(HWND window) const;  // one of the fields, or a part of one
  HWND First() const { return m_fields.empty() ? nullptr : m_fields.front().window; }
  bool IsOpen(HWND window) const;  // a list or calendar hangs down from it
  void FillSets();                 // with the sets of the entries
  void Fill();                     // with what the list is filtered by

  // Messages of the parent about a field. Whether the filter was asked to change.
  bool OnCommand(HWND field, unsigned code);
  bool OnNotify(const NMHDR& header) const;
  std::function<void()> Close;  // the user pressed the line's own button

  controls::ListFilter Read() const;

 private:
  HWND Next(HWND from, bool back) const;  // of those that are shown; nullptr at the end
  bool IsWords(HWND window) const { return window == First(); }
  struct Field {
    HWND window, label;  // the label may be nullptr
    int width;           // twips
    bool shown = false;
  };
  void Add(const wchar_t* windowClass, DWORD style, const std::string& name, const std::string& label,
           int width, DWORD exStyle = 0);
  HWND MakeWindow(const wchar_t* windowClass, const std::string& text, DWORD style, DWORD exStyle) const;
  int LabelWidth(const Field& field) const;
  int RowHeight() const;
  std::int64_t Day(HWND picker, bool end) const;

  WindowContext& m_context;
  controls::AutoSelect& m_list;
  HWND m_parent = nullptr;
  std::vector<Field> m_fields;  // words, from, to, sizes, sets, button
  std::vector<std::int64_t> m_setIds;
  bool m_shown = false;
  bool m_filling = false;
};

}  // namespace kxrestore::win32
