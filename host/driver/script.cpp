#include "host/driver/script.h"

#include <functional>
#include <istream>
#include <map>
#include <ostream>

#include "base/utf16.h"

namespace kxrestore::driver {
namespace {

constexpr char kBlanks[] = " \t\r";

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Removes the first word from `rest` and returns it.
std::string TakeWord(std::string& rest) {
  const std::size_t end = rest.find_first_of(kBlanks);
  const std::string word = rest.substr(0, end);
  rest = end == std::string::npos ? std::string() : Trimmed(rest.substr(end));
  return word;
}

std::string Unquoted(const std::string& text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

bool YesNo(const std::string& text) {
  if (text == "YES") return true;
  if (text == "NO") return false;
  throw DriverError("YES or NO is wanted, not " + Quoted(text));
}

int Integer(const std::string& text) {
  std::size_t used = 0;
  int number = 0;
  try {
    number = std::stoi(text, &used);
  } catch (const std::exception&) {
    used = 0;
  }
  if (used == 0 || used != text.size()) throw DriverError("a number is wanted, not " + Quoted(text));
  return number;
}

void Shoot(std::ostream& out, const std::filesystem::path& folder, const std::string& name) {
  out << "shot: " << name << std::endl;
  const std::filesystem::path picture = folder / ToWide(name + ".png");
  const std::filesystem::path done = folder / ToWide(name + ".done");
  try {
    WaitFor(std::chrono::seconds(5), name, [&] {
      std::error_code ignored;
      return std::filesystem::exists(picture, ignored) || std::filesystem::exists(done, ignored);
    });
  } catch (const DriverError&) {  // no screenshots are being taken
  }
}

class Commands {
 public:
  Commands(const DialogDriver& driver, std::ostream& out, const std::filesystem::path& folder) {
    const DialogDriver* d = &driver;
    m_plain["wait-form"] = [=](auto&) { d->WaitForForm(); };
    m_plain["wait-closed"] = [=](auto&) { d->WaitUntilClosed(); };
    m_plain["close"] = [=](auto&) { d->Close(); };
    m_plain["dump"] = [=, &out](auto&) { out << d->Dump() << std::flush; };
    m_plain["key"] = [=](auto& name) { d->Key(name); };
    m_plain["tab"] = [=](auto& number) { d->Tab(Integer(number)); };
    m_plain["answer"] = [=](auto& button) { d->Answer(button); };
    m_plain["expect-message"] = [=](auto& text) { d->ExpectMessage(text); };
    m_plain["select-run"] = [=](auto& which) { d->SelectRun(which); };
    m_plain["select-set"] = [=](auto& name) { d->SelectSet(name); };
    m_plain["select-node"] = [=](auto& path) { d->SelectNode(path); };
    m_plain["tick"] = [=](auto& path) { d->Tick(path); };
    m_plain["click"] = m_plain["check"] = m_plain["option"] = [=](auto& button) { d->Click(button); };
    m_plain["shot"] = [=, &out](auto& name) { Shoot(out, folder, name); };
    m_named["tick-entry"] = [=](auto& list, auto& which) { d->TickEntry(list, which); };
    m_named["select-entry"] = [=](auto& list, auto& which) { d->SelectEntry(list, which); };
    m_named["menu"] = [=](auto& control, auto& item) { d->ChooseFromMenu(control, item); };
    m_named["filter"] = [=](auto& list, auto& words) { d->Filter(list, words); };
    m_named["choose"] = [=](auto& box, auto& item) { d->Choose(box, item); };
    m_named["type"] = [=](auto& field, auto& text) { d->Type(field, text); };
    m_named["expect-caption"] = [=](auto& control, auto& text) { d->ExpectText(control, text); };
    m_named["expect-settled"] = [=](auto& control, auto& ending) { d->ExpectSettled(control, ending); };
    m_named["expect-enabled"] = [=](auto& control, auto& yesNo) { d->ExpectEnabled(control, YesNo(yesNo)); };
    m_named["expect-visible"] = [=](auto& control, auto& yesNo) { d->ExpectVisible(control, YesNo(yesNo)); };
    m_named["expect-count"] = [=](auto& list, auto& count) { d->ExpectCount(list, Integer(count)); };
  }

  void Run(const std::string& line) const {
    std::string rest = line;
    const std::string command = TakeWord(rest);
    if (const auto plain = m_plain.find(command); plain != m_plain.end()) {
      plain->second(Unquoted(rest));
    } else if (const auto named = m_named.find(command); named != m_named.end()) {
      const std::string control = TakeWord(rest);
      named->second(control, Unquoted(rest));
    } else {
      throw DriverError("there is no command " + Quoted(command));
    }
  }

 private:
  std::map<std::string, std::function<void(const std::string&)>> m_plain;
  std::map<std::string, std::function<void(const std::string&, const std::string&)>> m_named;
};

}  // namespace

void RunScript(const DialogDriver& driver, std::istream& script, std::ostream& out,
               const std::filesystem::path& folder) {
  const Commands commands(driver, out, folder);
  std::string line;
  for (int number = 1; std::getline(script, line); ++number) {
    line = Trimmed(line);
    if (line.empty() || line.front() == '#') continue;
    try {
      commands.Run(line);
    } catch (const DriverError& error) {
      throw DriverError("line " + std::to_string(number) + ", " + line + ": " + error.what());
    }
  }
}

}  // namespace kxrestore::driver
