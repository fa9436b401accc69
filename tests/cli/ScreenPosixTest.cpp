#ifndef _WIN32

#include "cli/TexttablesTest.h"

namespace {

class ScreenPosixTest : public TexttablesTest {
 protected:
  std::string OnScreen(unsigned short columns, std::vector<std::string> arguments) const {
    ProcessRequest request = Request(std::move(arguments));
    request.outputIsTerminal = true;
    request.terminalColumns = columns;
    const ProcessResult result = RunProcess(request);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
  }
};

constexpr char kNotes[] =
    "Id,Name,Note\n"
    "1,Ann,a note of thirty-two characters..\n"
    "22,Bartholomew,short\n";

TEST_F(ScreenPosixTest, TablesThatFitAreShownWhole) {
  Write("a.csv", kNotes);
  const std::string whole =
      "Id  Name         Note\n"
      "--  -----------  ---------------------------------\n"
      " 1  Ann          a note of thirty-two characters..\n"
      "22  Bartholomew  short\n";
  EXPECT_EQ(OnScreen(50, {"rows", "a.csv"}), whole) << "2 + 2 + 11 + 2 + 33";
  EXPECT_EQ(OnScreen(0, {"rows", "a.csv"}), whole) << "the terminal does not say";
}

TEST_F(ScreenPosixTest, WideColumnsGiveUpRoom) {
  Write("a.csv", kNotes);
  EXPECT_EQ(OnScreen(30, {"rows", "a.csv"}),
            "Id  Name         Note\n"
            "--  -----------  -------------\n"
            " 1  Ann          a note of th\xE2\x80\xA6\n"
            "22  Bartholomew  short\n");
  // 20 columns are for two, 10 each.
  EXPECT_EQ(OnScreen(26, {"rows", "a.csv"}),
            "Id  Name        Note\n"
            "--  ----------  ----------\n"
            " 1  Ann         a note of\xE2\x80\xA6\n"
            "22  Bartholom\xE2\x80\xA6  short\n");
}

TEST_F(ScreenPosixTest, ColumnsWithoutRoomAreLeftOutAndNamed) {
  Write("a.csv", "First,Second,Third,The fourth\nabcdefgh,abcdefghi,abcdefgh,x\n");
  EXPECT_EQ(OnScreen(19, {"rows", "a.csv"}),
            "First     Second\n"
            "--------  ---------\n"
            "abcdefgh  abcdefghi\n"
            "\n"
            "left out: Third, The fourth (--columns chooses)\n");
  EXPECT_EQ(OnScreen(18, {"rows", "a.csv", "--columns", "Second,Third"}),
            "Second    Third\n"
            "--------  --------\n"
            "abcdefg\xE2\x80\xA6  abcdefgh\n");
  EXPECT_EQ(OnScreen(3, {"rows", "a.csv", "--columns", "First"}),
            "Fi\xE2\x80\xA6\n---\nab\xE2\x80\xA6\n");
}

TEST_F(ScreenPosixTest, NoLineIsWiderThanTheScreenHoweverLateItComes) {
  std::string bytes = "Id,Name\n";
  for (int i = 0; i < 400; ++i) bytes += std::to_string(i) + ",short\n";
  Write("a.csv", bytes + "400," + std::string(100, 'x') + "\n");
  const std::string output = OnScreen(40, {"rows", "a.csv"});
  EXPECT_NE(output.find("\n400  xxxx\xE2\x80\xA6\n"), std::string::npos);
}

TEST_F(ScreenPosixTest, WideCharactersAreCutWhole) {
  // Four of two columns each, with a mark on the second.
  Write("a.csv", "N\n\xE6\x9D\xB1\xE4\xBA\xAC\xCC\x81\xE6\x9D\xB1\xE4\xBA\xAC\n");
  EXPECT_EQ(OnScreen(6, {"rows", "a.csv"}),
            "N\n------\n\xE6\x9D\xB1\xE4\xBA\xAC\xCC\x81\xE2\x80\xA6\n");
}

TEST_F(ScreenPosixTest, OffATerminalNothingIsCut) {
  const std::string value(300, 'x');
  std::string header = "A";
  std::string row = value;
  for (int i = 0; i < 50; ++i) {
    header += ",C" + std::to_string(i);
    row += "," + value;
  }
  Write("a.csv", header + "\n" + row + "\n");
  ProcessRequest request = Request({"rows", "a.csv", "--format", "table"});
  request.errorsAreTerminal = true;
  request.terminalColumns = 20;
  const std::string output = RunProcess(request).output;
  EXPECT_EQ(output.find("left out"), std::string::npos);
  EXPECT_EQ(output.find("\xE2\x80\xA6"), std::string::npos);
  EXPECT_GT(output.size(), 51 * value.size());
}

}  // namespace

#endif
