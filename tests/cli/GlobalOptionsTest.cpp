#include "cli/TexttablesTest.h"

namespace {

using LocaleTest = TexttablesTest;

TEST_F(LocaleTest, JsonHasTheseKeysInThisOrder) {
  EXPECT_EQ(Output({"--locale", "en-US", "locale", "--json"}),
            "{\"shortDate\":\"M/d/yyyy\",\"timeFormat\":\"h:mm:ss tt\",\"dateOrder\":\"0\","
            "\"decimal\":\".\",\"thousand\":\",\",\"digits\":\"2\",\"leadingZeros\":\"1\","
            "\"currency\":\"$\",\"currencyDigits\":\"2\",\"ansiCodePage\":1252}\n");
}

TEST_F(LocaleTest, LocaleOptionChangesTheValues) {
  const std::string german = Output({"--locale", "de-DE", "locale", "--json"});
  EXPECT_NE(german.find("\"shortDate\":\"dd.MM.yyyy\""), std::string::npos) << german;
  EXPECT_NE(german.find("\"dateOrder\":\"1\""), std::string::npos) << german;
  EXPECT_NE(german.find("\"decimal\":\",\",\"thousand\":\".\""), std::string::npos) << german;
  EXPECT_NE(german.find("\"currency\":\"\xE2\x82\xAC\""), std::string::npos) << german;
  const std::string russian = Output({"locale", "--json", "--locale", "ru-RU"});
  EXPECT_NE(russian.find("\"ansiCodePage\":1251}"), std::string::npos) << russian;
  const std::string forced = Output({"locale", "--json", "--ansi-code-page", "1250"});
  EXPECT_NE(forced.find("\"ansiCodePage\":1250}"), std::string::npos) << forced;
}

// On Windows the user sets it in the system's settings.
#ifndef _WIN32

// Windows has no number for it. The first locale of that kind that a program names is one too.
TEST_F(LocaleTest, LocaleWithoutANumberOfWindowsIsKnown) {
  const std::string values = Output({"--locale", "en-DE", "locale", "--json"});
  EXPECT_NE(values.find("\"currency\":\"\xE2\x82\xAC\""), std::string::npos) << values;
}

TEST_F(LocaleTest, EnvironmentGivesTheUsersLocale) {
  ProcessRequest request = Request({"locale", "--json"});
  EXPECT_EQ(RunProcess(request).output, Output({"--locale", "en-US", "locale", "--json"}));
  request.environment["LC_ALL"] = "de_DE.UTF-8";
  EXPECT_EQ(RunProcess(request).output, Output({"--locale", "de-DE", "locale", "--json"}));
}

#endif

TEST_F(LocaleTest, TextForPeople) {
  EXPECT_EQ(Output({"--locale", "en-US", "locale"}),
            "Short date        M/d/yyyy\n"
            "Time format       h:mm:ss tt\n"
            "Date order        month day year\n"
            "Decimal symbol    .\n"
            "Thousands symbol  ,\n"
            "Decimal places    2\n"
            "Leading zeros     1\n"
            "Currency symbol   $\n"
            "Currency places   2\n"
            "ANSI code page    1252\n");
}

TEST_F(LocaleTest, NeedsNoModule) {
  EXPECT_EQ(Run({"--module", "nothing.so", "locale", "--json"}).exitCode, 0);
}

TEST_F(LocaleTest, UnknownLocaleOrCodePageIsAWrongCommandLine) {
  ExpectUsageError(Run({"--locale", "qq-QQ-nonsense", "locale"}), "qq-QQ-nonsense");
  ExpectUsageError(Run({"--locale", "qq-QQ", "locale"}), "qq-QQ");
  ExpectUsageError(Run({"--ansi-code-page", "99999", "locale"}), "99999");
  ExpectUsageError(Run({"--ansi-code-page", "latin", "locale"}), "latin");
  ExpectUsageError(Run({"--ansi-code-page", "-1", "locale"}), "-1");
  ExpectUsageError(Run({"--ansi-code-page", "0x4E4", "locale"}), "0x4E4");
}

TEST_F(LocaleTest, LocalesAreSpelledAsLanguageTags) {
  for (const char* name : {"de_DE", "de_DE.UTF-8", "de_DE@euro", "de-DE.UTF-8", "", "de-", "-DE",
                           "de--DE", "de DE", "d\xC3\xA9-DE"})
    ExpectUsageError(Run({"--locale", name, "locale"}), "a name such as de-DE, not \"");
  ExpectUsageError(Run({"--locale", "fr_CA", "locale"}), "a name such as fr-CA, not \"fr_CA\"");
  EXPECT_EQ(Output({"--locale", "DE-de", "locale"}), Output({"--locale", "de-DE", "locale"}));
}

class OptionsTest : public TexttablesTest {
 protected:
  std::string TypeOf(const std::string& table, std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"describe", table, "--json"});
    const std::string text = Output(options);
    const std::string key = "\"type\": \"";
    const std::size_t start = text.find(key) + key.size();
    return text.substr(start, text.find('"', start) - start);
  }
};

TEST_F(OptionsTest, DecimalSymbolFollowsTheLocale) {
  Write("a.txt", "Price\n1,25\n2,5\n");
  Write("schema.ini", "[a.txt]\nFormat=Delimited(;)\nColNameHeader=True\nCol1=Price Double\n");
  EXPECT_EQ(Output({"--locale", "de-DE", "rows", "a.txt", "--json"}),
            "{\"Price\":1.25}\n{\"Price\":2.5}\n");
}

TEST_F(OptionsTest, DateOrderFollowsTheLocale) {
  Write("a.csv", "When\n01/02/2020\n");
  EXPECT_EQ(Output({"--locale", "en-US", "rows", "a.csv", "--json"}),
            "{\"When\":\"2020-01-02\"}\n");
  EXPECT_EQ(Output({"--locale", "en-GB", "rows", "a.csv", "--json"}),
            "{\"When\":\"2020-02-01\"}\n");
}

TEST_F(OptionsTest, AnsiCodePageDecodesAnsiFiles) {
  Write("a.csv", "T,U\n\xE9,x\n");
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCharacterSet=ANSI\n");
  EXPECT_EQ(Output({"--ansi-code-page", "1252", "rows", "a.csv"}), "T,U\n\xC3\xA9,x\n");
  EXPECT_EQ(Output({"--ansi-code-page", "1251", "rows", "a.csv"}), "T,U\n\xD0\xB9,x\n");
}

TEST_F(OptionsTest, ReadAsManyRowsAsNeededLooksBeyondTheFirstHundred) {
  std::string bytes = "N,M\n";
  for (int i = 0; i < 150; ++i) bytes += std::to_string(i) + ",1\n";
  Write("a.csv", bytes + "7.5,1\n");
  EXPECT_EQ(TypeOf("a.csv"), "Integer");
  EXPECT_EQ(TypeOf("a.csv", {"--read-as-many-rows-as-needed"}), "Double");
}

TEST_F(OptionsTest, TimeOnlyFieldsAreInferredOnRequest) {
  Write("a.csv", "At,N\n10:30,1\n11:45,2\n");
  EXPECT_EQ(TypeOf("a.csv"), "String");
  EXPECT_EQ(TypeOf("a.csv", {"--infer-time-only-fields"}), "TimeOnly");
  EXPECT_EQ(Output({"--infer-time-only-fields", "rows", "a.csv", "--json", "--limit", "1"}),
            "{\"At\":\"10:30:00\",\"N\":1}\n");
}

TEST_F(OptionsTest, FieldTypeVersionAndHostOptionChooseTheOlderTypes) {
  Write("a.csv", "Day,N\n2020-01-05,1\n");
  EXPECT_EQ(TypeOf("a.csv"), "DateOnly");
  EXPECT_EQ(TypeOf("a.csv", {"--field-type-version", "13.1"}), "Date");
  EXPECT_EQ(TypeOf("a.csv", {"--field-type-version", "13.10"}), "DateOnly");
  EXPECT_EQ(TypeOf("a.csv", {"--host-option", "Use31FieldTypeMapping=1"}), "Date");
  EXPECT_EQ(TypeOf("a.csv", {"--host-option", "use31fieldtypemapping=1"}), "Date");
  EXPECT_EQ(TypeOf("a.csv", {"--host-option", "Use31FieldTypeMapping=0"}), "DateOnly");
  EXPECT_EQ(TypeOf("a.csv",
                   {"--host-option", "Use31FieldTypeMapping=1", "--field-type-version", "other"}),
            "DateOnly")
      << "the property is asked first";
  ExpectUsageError(Run({"--host-option", "nonsense", "locale"}), "NAME=VALUE");
  ExpectUsageError(Run({"--host-option", "=1", "locale"}), "NAME=VALUE");
}

TEST_F(OptionsTest, ModuleCanBeNamed) {
  Write("a.csv", "1\n2\n");
  EXPECT_EQ(Output({"--module", MODULE_FILE, "count", "a.csv"}), "2\n");
  std::filesystem::copy_file(MODULE_FILE, Folder() / "module.so");
  EXPECT_EQ(Output({"--module", "module.so", "count", "a.csv"}), "2\n") << "without a slash";
}

TEST_F(OptionsTest, ModuleThatIsNoneIsAWrongCommandLine) {
  Write("text.so", "no module");
  ExpectUsageError(Run({"--module", "nothing.so", "list", "."}), "nothing.so");
  ExpectUsageError(Run({"--module", "text.so", "list", "."}), "text.so");
}

using CommandLineTest = TexttablesTest;

TEST_F(CommandLineTest, VersionAndHelpAreAnswers) {
  EXPECT_EQ(Output({"--version"}).rfind("texttables ", 0), 0u);
  const std::string help = Output({"--help"});
  for (const char* word : {"list",
                           "describe",
                           "rows",
                           "count",
                           "stat",
                           "create",
                           "load",
                           "copy",
                           "rename",
                           "delete",
                           "claim",
                           "locale",
                           "--module",
                           "--locale",
                           "--ansi-code-page",
                           "--read-as-many-rows-as-needed",
                           "--no-lat-long-fields",
                           "--infer-time-only-fields",
                           "--field-type-version",
                           "--host-option",
                           "--event-log",
                           "--quiet",
                           "--version",
                           "--help"})
    EXPECT_NE(help.find(word), std::string::npos) << word;
  const std::string rows = Output({"rows", "--help"});
  for (const char* word : {"--format", "geojson", "--columns", "--limit", "TABLE"})
    EXPECT_NE(rows.find(word), std::string::npos) << word;
  const std::string create = Output({"create", "--help"});
  for (const char* word : {"--field", "NAME:TYPE[:LENGTH[:PRECISION]]", "--overwrite", "TABLE"})
    EXPECT_NE(create.find(word), std::string::npos) << word;
}

TEST_F(CommandLineTest, UnknownCommandsAreNamed) {
  for (const char* command : {"registry", "unlist", "lst"})
    ExpectUsageError(Run({command, "a.csv"}),
                     std::string("there is no command \"") + command + "\"; commands: list, ");
  ExpectUsageError(Run({}), "a command is missing");
}

TEST_F(CommandLineTest, WrongArgumentsAreUsageErrors) {
  Write("a.csv", "Id\n1\n");
  ExpectUsageError(Run({"list"}), "FOLDER");
  ExpectUsageError(Run({"rows"}), "TABLE");
  ExpectUsageError(Run({"list", ".", "more"}), "more");
  ExpectUsageError(Run({"list", ".", "--nonsense"}), "--nonsense");
  ExpectUsageError(Run({"--nonsense", "list", "."}), "--nonsense");
  ExpectUsageError(Run({"rows", "a.csv", "--format", "GeoJSON"}), "GeoJSON");
  ExpectUsageError(Run({"rows", "a.csv", "--format", "CSV"}), "formats: table, csv, ");
  ExpectUsageError(Run({"rows", "a.csv", "--json", "--format", "csv"}), "--json");
  ExpectUsageError(Run({"rows", "a.csv", "--limit", "-1"}), "--limit");
  ExpectUsageError(Run({"rows", "a.csv", "--limit", "1k"}), "--limit");
  ExpectUsageError(Run({"rows", "a.csv", "--limit"}), "--limit");
  ExpectUsageError(Run({"count", "folder/"}), "FOLDER/NAME");
  ExpectUsageError(Run({"count", ""}), "FOLDER/NAME");
}

TEST_F(CommandLineTest, UsageErrorsTellThePageThatHasTheOption) {
  Write("a.csv", "Id\n1\n");
  struct {
    std::vector<std::string> arguments;
    const char* page;
  } const cases[] = {
      {{}, ""},
      {{"rows"}, "rows "},
      {{"rows", "a.csv", "--limit"}, "rows "},
      {{"rows", "a.csv", "--limit", "x"}, "rows "},
      {{"rows", "a.csv", "--limit", "1", "--limit", "2"}, "rows "},
      {{"rows", "a.csv", "--format", "x"}, "rows "},
      {{"rows", "a.csv", "--json=x"}, "rows "},
      {{"rows", "a.csv", "--columns", "x"}, "rows "},
      {{"count", "a.csv", "--limit", "5"}, "count "},
      {{"create", "b.csv", "--field", "x"}, "create "},
      {{"rename", "a.csv", "b/c.csv"}, "rename "},
      {{"rows", "a.csv", "--locale"}, ""},
      {{"rows", "a.csv", "--locale", "qq-QQ"}, ""},
      {{"rows", "a.csv", "--quiet=x"}, ""},
      {{"rows", "a.csv", "--ansi-code-page", "x"}, ""},
      {{"rows", "a.csv", "--host-option", "x"}, ""},
      {{"rows", "a.csv", "--module", "x"}, ""},
      {{"rows", "a.csv", "--event-log", "no/log"}, ""},
      {{"rowz", "a.csv"}, ""},
      {{"--limits", "5"}, ""},
  };
  for (const auto& c : cases) {
    const ProcessResult result = Run(c.arguments);
    EXPECT_EQ(result.exitCode, 2) << result.errors;
    const std::string end = std::string("\nTry 'texttables ") + c.page + "--help'.\n";
    EXPECT_TRUE(result.errors.ends_with(end)) << result.errors;
  }
}

TEST_F(CommandLineTest, UnexpectedArgumentsAreNamedAsTheyWereGiven) {
  ExpectUsageError(Run({"count", "a.csv", "--limit", "5"}), "count does not take --limit 5\n");
  ExpectUsageError(Run({"--limit", "5", "rows", "a.csv"}),
                   "--limit stands behind the command: rows ... --limit\n");
  ExpectUsageError(Run({"rows", "a.csv", "b.csv", "[c", "d e"}),
                   "rows does not take b.csv [c \"d e\"\n");
  ExpectUsageError(Run({"--limit", "5", "count", "a.csv"}), "--limit");
}

TEST_F(CommandLineTest, HelpIsACommandToo) {
  EXPECT_EQ(Output({"help"}), Output({"--help"}));
  for (const char* command : {"list", "rows", "create", "unregister", "help"})
    EXPECT_EQ(Output({"help", command}), Output({command, "--help"}));
  ExpectUsageError(Run({"help", "rowz"}), "there is no command \"rowz\"; commands: list, ");
  ExpectUsageError(Run({"help", "rows", "count"}), "help does not take count\n");
  EXPECT_NE(Output({"help"}).find("\n  help "), std::string::npos);
}

TEST_F(CommandLineTest, HelpTellsWhatNoLatLongFieldsDoesWithoutAHeader) {
  EXPECT_NE(Output({"--help"}).find("without a header"), std::string::npos);
  // It does so: the columns of such a table are first met in the rows that are looked at.
  Write("a.csv", "1,x\n2,y\n");
  const std::string fields = Output({"--no-lat-long-fields", "describe", "a.csv"});
  EXPECT_NE(fields.find("Field2_X"), std::string::npos) << fields;
}

TEST_F(CommandLineTest, GlobalOptionsStandOnEitherSideOfTheCommand) {
  Write("a.csv", "Day\n2020-01-05\n");
  const std::string before = Output({"--field-type-version", "13.1", "describe", "a.csv"});
  EXPECT_EQ(before, Output({"describe", "a.csv", "--field-type-version", "13.1"}));
  EXPECT_NE(before.find("Date"), std::string::npos);
}

TEST_F(CommandLineTest, TableNamesMayLookLikeOptionsBehindTwoDashes) {
  Write("-x.csv", "1\n2\n");
  EXPECT_EQ(Output({"count", "--", "-x.csv"}), "2\n");
  EXPECT_EQ(Output({"count", "./-x.csv"}), "2\n");
}

}  // namespace
