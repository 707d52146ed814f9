#include "platform/win32/list/list_text.h"

#include "base/phrases.h"

namespace kxrestore::win32 {

using controls::AutoSelect;
using controls::ListColumn;

namespace {

std::string TimeText(const platform::Regional& regional, std::int64_t time) {
  return DateAndTime(regional, platform::TimeOfNumber(time));
}

int WidthOf(HDC dc, const std::wstring& text) {
  SIZE size{};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  return size.cx;
}

// Whether a place is inside a surrogate pair.
bool InsidePair(const std::wstring& text, std::size_t place) {
  return place < text.size() && text[place] >= 0xDC00 && text[place] <= 0xDFFF;
}

}  // namespace

std::string CellText(const AutoSelect& list, std::size_t number, ListColumn column,
                     const platform::Regional& regional) {
  const AutoSelect::Entry entry = list.At(number);
  switch (column) {
    case ListColumn::kSize:
      return entry.sizeKnown ? regional.Grouped(entry.size) : std::string();
    case ListColumn::kExtension:
      return std::string(entry.extension);
    case ListColumn::kSet:
      return std::string(entry.setName);
    case ListColumn::kDate:
      return entry.time == AutoSelect::kNoTime ? std::string(entry.date) : TimeText(regional, entry.time);
    case ListColumn::kBackup: {
      const std::int64_t run = list.RunTime ? list.RunTime(entry) : AutoSelect::kNoTime;
      return run == AutoSelect::kNoTime ? std::string() : TimeText(regional, run);
    }
    case ListColumn::kVersion:
      switch (list.VersionAt(number)) {
        case AutoSelect::Version::kNewest:
          return Say(Phrase::kVersionNewest);
        case AutoSelect::Version::kOlder:
          return Say(Phrase::kVersionOlder);
        default:
          return {};
      }
    case ListColumn::kFolder:
      return std::string(controls::SplitPath(entry.name).folder);
    case ListColumn::kName:
      break;
  }
  const bool files = list.GetStyle() == AutoSelect::Style::kFiles;
  return std::string(files ? controls::SplitPath(entry.name).name : entry.name);
}

std::wstring FitMiddle(HDC dc, const std::wstring& text, int width) {
  if (WidthOf(dc, text) <= width) return text;
  const auto shortened = [&text](std::size_t kept) {
    std::size_t first = kept / 3;
    std::size_t last = text.size() - (kept - first);
    if (InsidePair(text, first)) --first;
    if (InsidePair(text, last)) ++last;
    return text.substr(0, first) + L'\u2026' + text.substr(last);
  };
  std::size_t fits = 0, tooMany = text.size();
  while (fits + 1 < tooMany) {
    const std::size_t kept = (fits + tooMany) / 2;
    (WidthOf(dc, shortened(kept)) <= width ? fits : tooMany) = kept;
  }
  return shortened(fits);
}

}  // namespace kxrestore::win32
