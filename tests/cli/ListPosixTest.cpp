#ifndef _WIN32

#include "cli/TexttablesTest.h"

namespace {

using ListPosixTest = TexttablesTest;

TEST_F(ListPosixTest, NamesAreEscapedOnATerminalOnly) {
  // Longer than a value in a message may be: a list shows whole names.
  const std::string name = "a\x1b[2J\n\xE2\x80\xAE\xE9" + std::string(220, 'x') + ".csv";
  Write(name, "1\n");
  ProcessRequest request = Request({"list", "."});
  EXPECT_EQ(RunProcess(request).output, name + "\n");
  request.outputIsTerminal = true;
  EXPECT_EQ(RunProcess(request).output,
            "a\\u001b[2J\\n\\u202e\\xe9" + std::string(220, 'x') + ".csv\n");
}

TEST_F(ListPosixTest, ClaimedNamesAreEscapedOnATerminalOnly) {
  const std::string name = std::string("a\x1b[2J\xE2\x80\xAE") + ".csv";
  Write("b.csv", "1\n");
  ProcessRequest request = Request({"claim", ".", name});
  EXPECT_EQ(RunProcess(request).output, name + "\n") << "programs get the name itself";
  request.outputIsTerminal = true;
  EXPECT_EQ(RunProcess(request).output, "a\\u001b[2J\\u202e.csv\n");
}

}  // namespace

#endif
