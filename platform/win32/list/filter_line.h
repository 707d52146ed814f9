// The line above a list in which the user filters it: by words and, in lists of files, by date, size and set.
// The fields take as many rows as the width requires.
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

  // Creates the fields, hidden, and fills them.
  void Create(HWND parent);
  bool Shown() const { return m_shown; }
  // Shows or hides the fields and lays them out in `width` pixels and at most `maxRows` rows. Returns the
  // height, 0 when hidden.
  int Place(bool show, int width, int maxRows);
  int RowHeight() const;  // pixels
  void OnDpiChanged();

  // A key pressed in the line or on the entries (`list`).
  enum class KeyAnswer { kNotMine, kDone, kClose, kIntoEntries };
  KeyAnswer OnKey(WPARAM key, bool back, HWND list) const;
  bool Holds(HWND window) const;  // whether it is a field or a part of one
  HWND First() const { return m_fields.empty() ? nullptr : m_fields.front().window; }
  bool IsOpen(HWND window) const;  // whether the field has its list or calendar open
  void FillSets();                 // from the sets of the entries
  void Fill();                     // from the filter of the list

  // Notifications of a field to the parent. True when the filter may have changed.
  bool OnCommand(HWND field, unsigned code);
  bool OnNotify(const NMHDR& header) const;
  std::function<void()> Close;  // the user pressed the line's close button

  controls::ListFilter Read() const;

 private:
  HWND Next(HWND from, bool back) const;  // the next visible field; nullptr at the end
  bool IsWords(HWND window) const { return window == First(); }
  struct Field {
    HWND window, label;  // label: nullptr for none
    int width;           // twips
    bool shown = false;
  };
  struct Row {
    std::vector<std::size_t> fields;  // places in m_fields
    int room;                         // pixels left over
  };
  std::vector<Row> Rows(int width) const;
  void Add(const wchar_t* windowClass, DWORD style, const std::string& name, const std::string& label,
           int width, DWORD exStyle = 0);
  HWND MakeWindow(const wchar_t* windowClass, const std::string& text, DWORD style, DWORD exStyle) const;
  int LabelWidth(const Field& field) const;
  int FieldWidth(const Field& field) const;  // with its label and the gaps
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
