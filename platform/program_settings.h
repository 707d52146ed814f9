// Reads and writes the product's settings: string values under one registry key, whose path is joined from
// four parts. When access is refused, reads return the default and writes do nothing. An exception is shown
// in a message box.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <variant>

#include "platform/desktop.h"
#include "platform/registry.h"

namespace kxrestore::platform {

class CProgramSettings {
 public:
  CProgramSettings(Registry& registry, Desktop& desktop) : m_registry(registry), m_desktop(desktop) {}

  std::uint32_t RootKey() const { return m_rootKey; }
  void SetRootKey(std::uint32_t rootKey) { m_rootKey = rootKey; }
  const std::string& MainBranch() const { return m_mainBranch; }
  void SetMainBranch(std::string mainBranch) { m_mainBranch = std::move(mainBranch); }
  const std::string& RegBase() const { return m_regBase; }
  void SetRegBase(std::string regBase) { m_regBase = std::move(regBase); }
  const std::string& Program() const { return m_program; }
  void SetProgram(std::string program) { m_program = std::move(program); }
  const std::string& Section() const { return m_section; }
  void SetSection(std::string section) { m_section = std::move(section); }

  // The value's text (a number's decimal text); the default when there is none or it is empty.
  std::string ReadEntry(const std::string& strEntry, const std::string& strDefault) const;
  void WriteEntry(const std::string& strEntry, const std::string& strValue) const;

 private:
  using Value = std::variant<std::monostate, std::int32_t, std::string>;

  std::string KeyPath() const;
  Value GetKeyValue(std::uint32_t root, const std::string& path, const std::string& name) const;
  void SetKeyValue(std::uint32_t root, const std::string& path, const std::string& name,
                   const Value& value) const;

  template <std::invocable Work>
  void Guarded(const char* routine, Work work) const;

  Registry& m_registry;
  Desktop& m_desktop;
  std::uint32_t m_rootKey = kHkeyLocalMachine;
  std::string m_mainBranch = "SOFTWARE";
  std::string m_regBase;
  std::string m_program;
  std::string m_section = "Settings";
};

}  // namespace kxrestore::platform
