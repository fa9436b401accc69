// docs/host-interfaces.md lists every interface and class of src/host/interfaces/ with its
// identifier and its slots, as the headers have them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::stringstream text;
  text << stream.rdbuf();
  return text.str();
}

// One line of code without comments.
std::string CodeOf(const fs::path& header) {
  const std::string bare = std::regex_replace(ReadText(header), std::regex("//[^\\n]*"), "");
  return std::regex_replace(bare, std::regex("\\s+"), " ");
}

// "{01234567-89AB-CDEF-0123-456789ABCDEF}" from the numbers of its initialiser.
std::string GuidOf(std::string numbers) {
  std::erase_if(numbers, [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
  numbers = std::regex_replace(numbers, std::regex("0x|,|\\{|\\}"), "");
  std::transform(numbers.begin(), numbers.end(), numbers.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  for (const std::size_t place : {8u, 13u, 18u, 23u}) numbers.insert(place, "-");
  return "{" + numbers + "}";
}

struct Interface {
  std::string base;
  std::vector<std::string> methods;
  std::string header;
};

struct Declarations {
  std::map<std::string, Interface> interfaces;
  std::map<std::string, std::string> identifiers;  // by the constant's name
};

void Collect(const fs::path& header, Declarations& all) {
  const std::string code = CodeOf(header);
  const std::regex structure("struct (\\w+) : public (\\w+) \\{([^}]*)\\};");
  const std::regex method("virtual HRESULT STDMETHODCALLTYPE (\\w+\\([^)]*\\)) = 0;");
  const std::regex identifier(
      "inline constexpr (?:IID|CLSID|GUID) (\\w+) = (\\{[^{}]*\\{[^}]*\\}\\});");
  const std::sregex_iterator end;
  for (std::sregex_iterator match(code.begin(), code.end(), structure); match != end; ++match) {
    Interface found{(*match)[2], {}, header.filename().string()};
    const std::string body = (*match)[3];
    for (std::sregex_iterator slot(body.begin(), body.end(), method); slot != end; ++slot)
      found.methods.push_back((*slot)[1]);
    all.interfaces.emplace((*match)[1], found);
  }
  for (std::sregex_iterator match(code.begin(), code.end(), identifier); match != end; ++match)
    all.identifiers.emplace((*match)[1], GuidOf((*match)[2]));
}

const Declarations& OfTheHeaders() {
  static const Declarations declarations = [] {
    Declarations all;
    for (const auto& entry :
         fs::directory_iterator(fs::path(SOURCE_FOLDER) / "src/host/interfaces"))
      Collect(entry.path(), all);
    return all;
  }();
  return declarations;
}

std::set<std::string> LinesOfPage() {
  std::istringstream stream(ReadText(fs::path(SOURCE_FOLDER) / "docs/host-interfaces.md"));
  std::set<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.insert(line);
  }
  return lines;
}

std::string RowOf(const std::string& name, const Interface& declared) {
  const auto& interfaces = OfTheHeaders().interfaces;
  std::string slots;
  std::size_t number = 1;
  if (const auto base = interfaces.find(declared.base); base != interfaces.end()) {
    slots = "those of `" + declared.base + "`";
    number += base->second.methods.size();
  }
  for (const std::string& method : declared.methods)
    slots += (slots.empty() ? "" : ", ") + std::to_string(number++) + " `" + method + "`";
  if (slots.empty()) slots = "none of its own";
  return "| `" + name + "` | " + OfTheHeaders().identifiers.at("IID_" + name) + " | `" +
         declared.header + "` | " + slots + " |";
}

TEST(InterfaceTableTest, PageListsEveryInterfaceWithItsSlots) {
  const std::set<std::string> lines = LinesOfPage();
  EXPECT_GT(OfTheHeaders().interfaces.size(), 30u);
  for (const auto& [name, declared] : OfTheHeaders().interfaces) {
    const std::string row = RowOf(name, declared);
    EXPECT_TRUE(lines.contains(row)) << "the page lacks\n" << row;
  }
}

TEST(InterfaceTableTest, PageListsEveryOtherIdentifier) {
  const std::set<std::string> lines = LinesOfPage();
  for (const auto& [name, guid] : OfTheHeaders().identifiers) {
    if (name.starts_with("IID_")) continue;
    const std::string row = "| `" + name + "` | " + guid + " |";
    EXPECT_TRUE(lines.contains(row)) << "the page lacks\n" << row;
  }
}

}  // namespace
