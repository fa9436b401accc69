#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/TexttablesTest.h"

namespace {

// Everything that must not reach a terminal inside a message: a title, a clear screen, a bell, the
// same commands as C1 controls, delete, marks and overrides of direction, separators of lines.
const char kHostile[] =
    "a\x1b]0;title\x07"
    "b\x1b[2Jc\rd\x7f"
    "e\xC2\x9B"
    "2Jf\xC2\x85g\xE2\x80\xAEh\xE2\x81\xA6i\xE2\x80\x8Ej\xD8\x9Ck\xE2\x80\xA8l";
const char kHostileShown[] =
    "a\\u001b]0;title\\u0007"
    "b\\u001b[2Jc\\rd\\u007f"
    "e\\u009b"
    "2Jf\\u0085g\\u202eh\\u2066i\\u200ej\\u061ck\\u2028l";
const char kForged[] = "x\ntexttables: error: 0x80004005: all is lost";
const char kForgedShown[] = "x\\ntexttables: error: 0x80004005: all is lost";

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class MessageSafetyTest : public TexttablesTest {
 protected:
  // A column of numbers with one value that is none, in quotes.
  void WriteMismatch(const std::string& value) const {
    Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=N Long\n");
    Write("a.csv", "N\n1\n\"" + value + "\"\n");
  }
  static std::string Warning(const std::string& value) {
    return "texttables: warning: 0x80040955: In file a.csv, field value " + value +
           " does not match defined type of field N. Update schema.ini file and try again.\n";
  }
  static void ExpectHarmless(const std::string& errors) {
    for (const char byte : errors)
      EXPECT_TRUE(byte == '\n' || byte == '\t' || (byte != 0x7F && (byte & 0xE0) != 0)) << errors;
    for (const char* bytes : {"\xC2\x85", "\xC2\x9B", "\xE2\x80\xAE", "\xE2\x81\xA6",
                              "\xE2\x80\x8E", "\xD8\x9C", "\xE2\x80\xA8"})
      EXPECT_EQ(errors.find(bytes), std::string::npos) << errors;
  }
};

TEST_F(MessageSafetyTest, ValuesAreEscapedInWarnings) {
  WriteMismatch(kHostile);
  EXPECT_EQ(Run({"rows", "a.csv", "--format", "none"}).errors, Warning(kHostileShown));
}

TEST_F(MessageSafetyTest, NoValueForgesALine) {
  WriteMismatch(kForged);
  EXPECT_EQ(Run({"rows", "a.csv", "--format", "none"}).errors, Warning(kForgedShown));
}

TEST_F(MessageSafetyTest, FieldNamesAreEscapedInWarnings) {
  std::string bytes = std::string("\"") + kForged + "\"\n";
  for (int i = 0; i < 150; ++i) bytes += std::to_string(i) + "\n";
  Write("a.csv", bytes + "x\n");
  const std::string errors = Run({"rows", "a.csv", "--format", "none"}).errors;
  EXPECT_EQ(LinesOf(errors).size(), 1u) << errors;
  EXPECT_NE(errors.find(kForgedShown), std::string::npos) << errors;
}

// The message's own line breaks stay; that of the offending text is spelled out.
TEST_F(MessageSafetyTest, SchemaTextsForgeNoLine) {
  Write("a.csv", "1\n");
  Write("schema.ini", "[a.csv]\nFormat=Delimited(\"\ntexttables: error: lost)\n");
  ExpectRefused(Run({"describe", "a.csv"}),
                "texttables: error: 0x80040311: a.csv\n"
                "\tDouble quote cannot be used as a custom delimiter in schema.ini.\n"
                "\tDelimited(\"\\ntexttables: error: lost)\n");
}

TEST_F(MessageSafetyTest, ArgumentsAreEscaped) {
  Write("a.csv", "N\n1\n");
  for (const std::string hostile : {kHostile, kForged}) {
    const std::string shown = hostile == kHostile ? kHostileShown : kForgedShown;
    const std::vector<std::string> wrong[] = {
        {hostile},
        {"--" + hostile},
        {"rows", "a.csv", hostile},
        {"rows", "a.csv", "--" + hostile},
        {"rows", "a.csv", "--json=" + hostile},
        {"rows", "a.csv", "--limit", hostile},
        {"rows", "a.csv", "--format", hostile},
        {"rows", "a.csv", "--columns", hostile},
        {"rows", "a.csv", "--json", "--format", hostile},
        {"rename", "a.csv", "b/" + hostile},
        {"create", "n.csv", "--field", hostile},
        {"create", "n.csv", "--field", hostile + ":String", "--field", hostile + ":String"},
        {"--locale", hostile, "locale"},
        {"--ansi-code-page", hostile, "locale"},
        {"--host-option", hostile, "locale"},
        {"--module", "no/" + hostile, "list", "."},
        {"--event-log", "no/" + hostile, "locale"}};
    for (const std::vector<std::string>& arguments : wrong) {
      const ProcessResult result = Run(arguments);
      SCOPED_TRACE(arguments.front() + " " + arguments.back());
      ExpectUsageError(result, shown);
      ExpectHarmless(result.errors);
      EXPECT_EQ(LinesOf(result.errors).size(), 2u) << result.errors;
    }
  }
}

TEST_F(MessageSafetyTest, NamesAreEscapedInRefusals) {
  for (const std::string hostile : {kHostile, kForged}) {
    const std::string shown = hostile == kHostile ? kHostileShown : kForgedShown;
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"rows", hostile},
                                                      {"list", hostile},
                                                      {"rows", hostile + "/a"},
                                                      {"load", "a.csv", hostile},
                                                      {"copy", hostile, "b.csv"},
                                                      {"delete", hostile}}) {
      const ProcessResult result = Run(arguments);
      SCOPED_TRACE(arguments.front());
      EXPECT_EQ(result.exitCode, 1);
      EXPECT_NE(result.errors.find(shown), std::string::npos) << result.errors;
      ExpectHarmless(result.errors);
      EXPECT_EQ(LinesOf(result.errors).size(), 1u) << result.errors;
    }
  }
}

TEST_F(MessageSafetyTest, LoadedLinesAreEscaped) {
  Write("a.csv", "N\n1\n");
  // JSON lets all of these stand in a text but the C0 controls.
  Write("rows.jsonl",
        "[\"e\xC2\x9B"
        "2J\x7F\xE2\x80\xAE"
        "\"]\n");
  const ProcessResult result = Run({"load", "a.csv", "rows.jsonl"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("cannot hold \"e\\u009b2J\\u007f\\u202e\""), std::string::npos)
      << result.errors;
  ExpectHarmless(result.errors);
  Write("names.jsonl", "{\"x\\ntexttables: error: lost\":1}\n");
  const ProcessResult named = Run({"load", "a.csv", "names.jsonl"});
  EXPECT_EQ(LinesOf(named.errors).size(), 1u) << named.errors;
}

TEST_F(MessageSafetyTest, ValuesAreShortenedTo200Characters) {
  // Of two bytes each, so that characters are told from bytes.
  std::string value;
  for (int i = 0; i < 200; ++i) value += "\xC3\xA9";
  WriteMismatch(value);
  EXPECT_EQ(Run({"rows", "a.csv", "--format", "none"}).errors, Warning(value));
  WriteMismatch(value + "x");
  EXPECT_EQ(Run({"rows", "a.csv", "--format", "none"}).errors, Warning(value + "\xE2\x80\xA6"));
}

TEST_F(MessageSafetyTest, TheEventLogKeepsTheWholeText) {
  const std::string value = std::string(3'000'000, 'x') + "\x1b" + "end";
  WriteMismatch(value);
  EXPECT_EQ(Run({"rows", "a.csv", "--format", "none", "--event-log", "log"}).errors,
            Warning(std::string(200, 'x') + "\xE2\x80\xA6"));
  int whole = 0;
  for (const std::string& line : LinesOf(Read("log"))) {
    const auto event = nlohmann::json::parse(line);
    if (event.contains("text"))
      whole += event["text"].get<std::string>().find(value) != std::string::npos;
  }
  EXPECT_EQ(whole, 2) << "the message, and the chained error";
}

TEST_F(MessageSafetyTest, NoMessageIsLongHoweverManyNamesItTells) {
  std::string header;
  for (int i = 0; i < 3000; ++i) header += (i > 0 ? ",Column" : "Column") + std::to_string(i);
  Write("a.csv", header + "\n");
  const ProcessResult result = Run({"rows", "a.csv", "--columns", "nope"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.errors.find("Column0, Column1, "), std::string::npos);
  EXPECT_LT(result.errors.size(), 2500u);
}

TEST_F(MessageSafetyTest, RowsOf1000MismatchesTellThemAll) {
  constexpr int kColumns = 1000;
  std::string section = "[a.csv]\nFormat=CSVDelimited\nColNameHeader=False\n";
  std::string row;
  for (int i = 1; i <= kColumns; ++i) {
    section += "Col" + std::to_string(i) + "=C" + std::to_string(i) + " Long\n";
    row += (i > 1 ? ",x" : "x") + std::to_string(i);
  }
  Write("schema.ini", section);
  Write("a.csv", row + "\n");
  std::string expected;
  for (int i = 1; i <= kColumns; ++i) {
    const std::string number = std::to_string(i);
    expected += "texttables: warning: 0x80040955: In file a.csv, field value x" + number +
                " does not match defined type of field C" + number +
                ". Update schema.ini file and try again.\n";
  }
  EXPECT_EQ(Run({"rows", "a.csv", "--format", "none"}).errors, expected);
}

TEST_F(MessageSafetyTest, TablesSpellControlsAndMarksOfDirection) {
  Write("a.csv", std::string("N\n\"") + kHostile + "\"\n");
  const std::string output = Output({"rows", "a.csv", "--format", "table"});
  EXPECT_NE(output.find(kHostileShown), std::string::npos) << output;
  ExpectHarmless(output);
}

}  // namespace
