#include "platform/posix/RegistryFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "platform/ExclusiveFile.h"
#include "platform/FileNames.h"
#include "platform/icu/IcuServices.h"
#include "platform/posix/Utf8Conversion.h"

namespace {

constexpr char kHeader[] =
    "; The classes of this user's data sources. Changed by the programs that register them.\n";

bool IsSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
char16_t UpperCase(char16_t unit) {
  if (unit >= 0x80) return Icu().toUpper(unit);
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 0x20) : unit;
}
bool IsControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

// Whether the surrogate at `i` has its other half behind it.
bool IsPair(std::u16string_view text, std::size_t i) {
  return (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
}

bool CanBeWritten(std::u16string_view name) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (IsControl(name[i]) || (IsSurrogate(name[i]) && !IsPair(name, i))) return false;
    if (IsSurrogate(name[i])) ++i;
  }
  return true;
}

// ---------------------------------------------------------------------------------------------
// Writing
// ---------------------------------------------------------------------------------------------

void AppendEscape(std::string& bytes, char16_t unit) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  bytes += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) bytes += kDigits[(unit >> shift) & 0xF];
}

// In quotes. What UTF-8 or a line cannot hold becomes \uXXXX, so that file names of any bytes stay.
void AppendQuoted(std::string& bytes, std::u16string_view text) {
  bytes += '"';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit == u'"' || unit == u'\\') {
      bytes += '\\';
      bytes += static_cast<char>(unit);
    } else if (IsSurrogate(unit) && IsPair(text, i)) {
      bytes += NativeFromFileName(text.substr(i, 2));
      ++i;
    } else if (IsControl(unit) || IsSurrogate(unit)) {
      AppendEscape(bytes, unit);
    } else {
      bytes += NativeFromFileName(text.substr(i, 1));
    }
  }
  bytes += '"';
}

// A key that has values or no subkeys has a section; others show in their subkeys' names.
void AppendKey(std::string& bytes, const RegistryKey& key, const std::u16string& path) {
  if (!path.empty() && (!key.values.empty() || key.subkeys.empty())) {
    bytes += "\n[" + NativeFromFileName(path) + "]\n";
    for (const auto& [name, text] : key.values) {
      if (name.empty())
        bytes += '@';
      else
        AppendQuoted(bytes, name);
      bytes += '=';
      AppendQuoted(bytes, text);
      bytes += '\n';
    }
  }
  for (const auto& [name, subkey] : key.subkeys)
    AppendKey(bytes, subkey, path.empty() ? name : path + u'\\' + name);
}

// ---------------------------------------------------------------------------------------------
// Reading
// ---------------------------------------------------------------------------------------------

std::optional<unsigned> HexDigit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10u;
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10u;
  return std::nullopt;
}

std::optional<char16_t> ReadEscape(std::u16string_view digits) {
  unsigned value = 0;
  if (digits.size() < 4) return std::nullopt;
  for (const char16_t digit : digits.substr(0, 4)) {
    const std::optional<unsigned> number = HexDigit(digit);
    if (!number) return std::nullopt;
    value = value * 16 + *number;
  }
  return static_cast<char16_t>(value);
}

// Takes a text in quotes off the start of `line`. Nullopt when there is none.
std::optional<std::u16string> TakeQuoted(std::u16string_view& line) {
  if (line.empty() || line[0] != u'"') return std::nullopt;
  std::u16string text;
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == u'"') {
      line.remove_prefix(i + 1);
      return text;
    }
    if (line[i] != u'\\') {
      text += line[i];
      continue;
    }
    if (++i == line.size()) return std::nullopt;
    if (line[i] != u'u') {
      text += line[i];
      continue;
    }
    const std::optional<char16_t> unit = ReadEscape(line.substr(i + 1));
    if (!unit) return std::nullopt;
    text += *unit;
    i += 4;
  }
  return std::nullopt;
}

bool ReadValue(std::u16string_view line, RegistryKey& key) {
  std::u16string name;
  if (line[0] == u'@') {
    line.remove_prefix(1);
  } else {
    std::optional<std::u16string> quoted = TakeQuoted(line);
    if (!quoted) return false;
    name = std::move(*quoted);
  }
  if (line.empty() || line[0] != u'=') return false;
  line.remove_prefix(1);
  std::optional<std::u16string> text = TakeQuoted(line);
  if (!text || !line.empty()) return false;
  key.values.insert_or_assign(std::move(name), std::move(*text));
  return true;
}

// Answers false when a line is neither a key, a value, a comment nor empty.
bool ParseRegistry(std::u16string_view text, RegistryKey& root) {
  RegistryKey* current = nullptr;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(u'\n'), text.size());
    std::u16string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == u'\r') line.remove_suffix(1);
    if (line.empty() || line[0] == u';') continue;
    if (line[0] == u'[') {
      if (line.back() != u']') return false;
      const auto path = SplitRegistryPath(line.substr(1, line.size() - 2));
      if (!path || path->empty()) return false;
      bool created = false;
      current = &root.FindOrCreate(*path, created);
    } else if (current == nullptr || !ReadValue(line, *current)) {
      return false;
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------------
// The file
// ---------------------------------------------------------------------------------------------

const char* Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != 0 ? value : nullptr;
}

// Empty when the environment names no folder of the user's.
std::string RegistryPath() {
  if (const char* const file = Environment("QUENRA_REGISTRY")) return file;
  // The standard ignores a relative one.
  const char* const folder = Environment("XDG_CONFIG_HOME");
  if (folder != nullptr && folder[0] == '/') return std::string(folder) + "/quenra/registry";
  const char* const home = Environment("HOME");
  return home != nullptr ? std::string(home) + "/.config/quenra/registry" : std::string();
}

LSTATUS ErrorOf(int systemError) {
  switch (systemError) {
    case EACCES:
    case EPERM:
    case EROFS:
      return static_cast<LSTATUS>(ERROR_ACCESS_DENIED);
    case ENOENT:
    case ENOTDIR:
      return static_cast<LSTATUS>(ERROR_PATH_NOT_FOUND);
    default:
      return static_cast<LSTATUS>(ERROR_REGISTRY_IO_FAILED);
  }
}

// The folders of the file, for the user alone as the standard wants it.
void MakeFolders(const std::string& file) {
  for (std::size_t slash = file.find('/', 1); slash != std::string::npos;
       slash = file.find('/', slash + 1))
    ::mkdir(file.substr(0, slash).c_str(), 0700);
}

LSTATUS ReadFile(const std::string& path, RegistryKey& root) {
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return errno == ENOENT ? static_cast<LSTATUS>(ERROR_SUCCESS) : ErrorOf(errno);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad() || !ParseRegistry(FileNameFromNative(bytes), root))
    return static_cast<LSTATUS>(ERROR_REGISTRY_CORRUPT);
  return static_cast<LSTATUS>(ERROR_SUCCESS);
}

// Waits for others. Whoever makes many changes, one after another, waits once only: a change that
// follows one that waited in vain does not wait again.
bool TakeHold(ExclusiveFile& file, const std::string& path) {
  using Clock = std::chrono::steady_clock;
  static std::atomic<Clock::rep> lastBusy = Clock::time_point::min().time_since_epoch().count();
  const Clock::time_point last{Clock::duration(lastBusy.load())};
  const bool hasWaited = last != Clock::time_point::min() && Clock::now() - last < kWriterPatience;
  const auto patience = hasWaited ? std::chrono::milliseconds(0) : kWriterPatience;
  if (file.OpenToReplace(path + ".new", path, patience)) return true;
  if (ExclusiveFile::MeansBusy(file.error())) lastBusy = Clock::now().time_since_epoch().count();
  return false;
}

}  // namespace

bool RegistryNameOrder::operator()(std::u16string_view a, std::u16string_view b) const noexcept {
  return std::lexicographical_compare(
      a.begin(), a.end(), b.begin(), b.end(),
      [](char16_t x, char16_t y) { return UpperCase(x) < UpperCase(y); });
}

RegistryKey* RegistryKey::Find(const std::vector<std::u16string>& path) {
  RegistryKey* key = this;
  for (const std::u16string& name : path) {
    const auto found = key->subkeys.find(name);
    if (found == key->subkeys.end()) return nullptr;
    key = &found->second;
  }
  return key;
}

RegistryKey& RegistryKey::FindOrCreate(const std::vector<std::u16string>& path, bool& created) {
  RegistryKey* key = this;
  created = false;
  for (const std::u16string& name : path) {
    const auto [entry, isNew] = key->subkeys.try_emplace(name);
    key = &entry->second;
    created = isNew;
  }
  return *key;
}

std::optional<std::vector<std::u16string>> SplitRegistryPath(std::u16string_view path) {
  std::vector<std::u16string> names;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(u'\\'), path.size());
    if (!CanBeWritten(path.substr(0, end))) return std::nullopt;
    if (end > 0) names.emplace_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return names;
}

LSTATUS ReadRegistry(RegistryKey& root) {
  const std::string path = RegistryPath();
  return path.empty() ? static_cast<LSTATUS>(ERROR_PATH_NOT_FOUND) : ReadFile(path, root);
}

LSTATUS UpdateRegistry(const std::function<LSTATUS(RegistryKey& root)>& change) {
  const std::string path = RegistryPath();
  if (path.empty()) return static_cast<LSTATUS>(ERROR_PATH_NOT_FOUND);
  MakeFolders(path);
  ExclusiveFile file;
  if (!TakeHold(file, path)) return ErrorOf(file.error().value());
  RegistryKey root;
  LSTATUS result = ReadFile(path, root);
  if (result == static_cast<LSTATUS>(ERROR_SUCCESS)) result = change(root);
  if (result != static_cast<LSTATUS>(ERROR_SUCCESS)) return result;
  std::string bytes = kHeader;
  AppendKey(bytes, root, {});
  if (!file.Write(bytes) || !file.Replace(path)) return ErrorOf(file.error().value());
  return result;
}
