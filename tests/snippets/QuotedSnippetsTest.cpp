// What the documents and the public headers quote is what the tests compile and run: each code
// block stands word for word between "snippet: NAME" and "end of snippet" in a source.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

Lines LinesOf(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  Lines lines;
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  EXPECT_FALSE(lines.empty()) << path;
  return lines;
}

// One text of the lines, without the spaces that all of them begin with.
std::string Dedented(const Lines& lines) {
  std::size_t margin = std::string::npos;
  for (const std::string& line : lines)
    if (!line.empty()) margin = std::min(margin, line.find_first_not_of(' '));
  std::string text;
  for (const std::string& line : lines) text += (line.empty() ? "" : line.substr(margin)) + "\n";
  return text;
}

bool EndsWith(std::string_view text, std::string_view end) { return text.ends_with(end); }

// Names and texts of the snippets in one source. A name may stand there several times.
using Snippets = std::multimap<std::string, std::string>;

void CollectSnippets(const fs::path& path, Snippets& snippets) {
  constexpr std::string_view kBegin = " snippet: ";
  constexpr std::string_view kEnd = " end of snippet";
  Lines snippet;
  std::string name;
  for (const std::string& line : LinesOf(path)) {
    const std::size_t mark = line.find_first_not_of(" /#");
    const std::string_view rest =
        mark == std::string::npos || mark == 0 ? "" : std::string_view(line).substr(mark - 1);
    if (rest.starts_with(kBegin) && line.find_first_of("/#") < mark) {
      name = rest.substr(kBegin.size());
      snippet.clear();
    } else if (rest == kEnd && !name.empty()) {
      snippets.emplace(name, Dedented(snippet));
      name.clear();
    } else if (!name.empty()) {
      snippet.push_back(line);
    }
  }
  EXPECT_EQ(name, "") << "has no end in " << path;
}

const Snippets& AllSnippets() {
  static const Snippets all = [] {
    Snippets snippets;
    for (const char* const folder : {"hosts", "tests"}) {
      for (const auto& entry : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / folder)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_regular_file() && name != "QuotedSnippetsTest.cpp" &&
            (EndsWith(name, ".cpp") || EndsWith(name, ".c") || name == "CMakeLists.txt"))
          CollectSnippets(entry.path(), snippets);
      }
    }
    return snippets;
  }();
  return all;
}

struct Quotation {
  std::string place;  // of its first line
  std::string text;
};

// The fenced blocks of a page in the languages of the sources.
std::vector<Quotation> QuotationsOfPage(const fs::path& path) {
  std::vector<Quotation> quotations;
  Lines block;
  bool inside = false;
  bool wanted = false;
  std::size_t number = 0;
  for (const std::string& line : LinesOf(path)) {
    ++number;
    if (!line.starts_with("```")) {
      if (inside && wanted) block.push_back(line);
      continue;
    }
    if (inside && wanted)
      quotations.push_back(
          {path.filename().string() + " above line " + std::to_string(number), Dedented(block)});
    wanted = line == "```cpp" || line == "```c" || line == "```cmake";
    inside = !inside;
    block.clear();
  }
  EXPECT_FALSE(inside) << path;
  return quotations;
}

// The examples in a header's opening comment: indented by two more spaces than its text.
std::vector<Quotation> QuotationsOfHeader(const std::string& header) {
  std::vector<Quotation> quotations;
  Lines block;
  const auto finish = [&] {
    if (!block.empty()) quotations.push_back({header, Dedented(block)});
    block.clear();
  };
  for (const std::string& line : LinesOf(fs::path(SOURCE_FOLDER) / "src" / header)) {
    if (line.starts_with("#pragma once")) break;
    constexpr std::string_view kIndented = "//   ";
    if (!line.starts_with(kIndented)) {
      finish();
      continue;
    }
    // What begins deeper is no code.
    if (!block.empty() || line[kIndented.size()] != ' ') block.push_back(line.substr(5));
  }
  finish();
  return quotations;
}

std::vector<fs::path> Pages() {
  std::vector<fs::path> pages = {fs::path(SOURCE_FOLDER) / "README.md",
                                 fs::path(SOURCE_FOLDER) / "CONTRIBUTING.md"};
  for (const auto& entry : fs::directory_iterator(fs::path(SOURCE_FOLDER) / "docs"))
    if (EndsWith(entry.path().string(), ".md")) pages.push_back(entry.path());
  return pages;
}

std::vector<std::string> PublicHeaders() {
  std::vector<std::string> headers;
  std::istringstream stream(PUBLIC_HEADERS);
  for (std::string header; std::getline(stream, header, ',');) headers.push_back(header);
  return headers;
}

TEST(QuotedSnippetsTest, EveryBlockOfTheDocumentsIsCompiled) {
  std::set<std::string> texts;
  for (const auto& [name, text] : AllSnippets()) texts.insert(text);
  std::size_t found = 0;
  for (const fs::path& page : Pages()) {
    for (const Quotation& quotation : QuotationsOfPage(page)) {
      ++found;
      EXPECT_TRUE(texts.contains(quotation.text)) << quotation.place << ":\n" << quotation.text;
    }
  }
  EXPECT_GT(found, 5u);
}

TEST(QuotedSnippetsTest, EveryExampleOfAPublicHeaderIsCompiled) {
  std::size_t found = 0;
  for (const std::string& header : PublicHeaders()) {
    for (const Quotation& quotation : QuotationsOfHeader(header)) {
      ++found;
      const auto [first, last] = AllSnippets().equal_range(header);
      EXPECT_TRUE(std::any_of(
          first, last, [&](const auto& snippet) { return snippet.second == quotation.text; }))
          << header << ":\n"
          << quotation.text;
    }
  }
  EXPECT_GT(found, 20u);
}

// A snippet that nobody quotes any more is only a comment that misleads.
TEST(QuotedSnippetsTest, EverySnippetIsQuoted) {
  std::set<std::string> quoted;
  for (const fs::path& page : Pages())
    for (const Quotation& quotation : QuotationsOfPage(page)) quoted.insert(quotation.text);
  for (const std::string& header : PublicHeaders())
    for (const Quotation& quotation : QuotationsOfHeader(header)) quoted.insert(quotation.text);
  for (const auto& [name, text] : AllSnippets())
    EXPECT_TRUE(quoted.contains(text)) << name << ":\n" << text;
}

}  // namespace
