#ifndef _WIN32

#include <sys/stat.h>
#include <unistd.h>

#include "cli/TexttablesTest.h"

namespace {

class RefusalPosixTest : public TexttablesTest {
 protected:
  static std::string Refused(const std::string& text) {
    return "texttables: error: " + text + "\n";
  }
  // By an ordinary user. A process of two users would not find its libraries, so the program is
  // started by one that changes both.
  ProcessResult RunWithoutRights(std::vector<std::string> arguments) const {
    ProcessRequest request = Request(std::move(arguments));
    if (::geteuid() == 0) {
      const std::vector<std::string> change = {"--reuid=65534", "--regid=65534", "--clear-groups",
                                               request.program};
      request.arguments.insert(request.arguments.begin(), change.begin(), change.end());
      request.program = "/usr/bin/setpriv";
    }
    return RunProcess(request);
  }
  void Link(const std::string& name, const std::string& target) const {
    std::filesystem::create_symlink(target, Folder() / name);
  }
};

TEST_F(RefusalPosixTest, FileWithoutRights) {
  Write("x.csv", "Id\n1\n");
  std::filesystem::permissions(Folder() / "x.csv", std::filesystem::perms::none);
  for (const char* command : {"describe", "rows", "count", "stat"})
    ExpectRefused(RunWithoutRights({command, "x.csv"}),
                  Refused("0x80040211: x.csv: the file cannot be opened (Permission denied)"));
}

TEST_F(RefusalPosixTest, FolderBehindOneWithoutRights) {
  Write("shut/inner/x.csv", "Id\n1\n");
  std::filesystem::permissions(Folder() / "shut", std::filesystem::perms::none);
  ExpectRefused(RunWithoutRights({"list", "shut/inner"}),
                Refused("0x80040258: shut/inner: the folder cannot be opened (Permission denied)"));
  ExpectRefused(RunWithoutRights({"rows", "shut/x.csv"}),
                Refused("0x80040351: table not found: x.csv (Permission denied)"));
  std::filesystem::permissions(Folder() / "shut", std::filesystem::perms::owner_all);
}

TEST_F(RefusalPosixTest, WhatIsNoFileIsNamed) {
  ASSERT_EQ(::mkfifo((Folder() / "x.csv").c_str(), 0644), 0);
  ExpectRefused(Run({"rows", "x.csv"}),
                Refused("0x80040211: x.csv: the file cannot be opened (it is a named pipe)"));
}

TEST_F(RefusalPosixTest, LoopsOfLinks) {
  Link("x.csv", "x.csv");
  const std::string reason = " (Too many levels of symbolic links)";
  for (const char* command : {"rows", "delete"})
    ExpectRefused(Run({command, "x.csv"}), Refused("0x80040351: table not found: x.csv" + reason));
  ExpectRefused(Run({"list", "x.csv"}),
                Refused("0x80040258: x.csv: the folder cannot be opened" + reason));
}

// A link that is in the way of the file in which the new table is made is told by its own name.
TEST_F(RefusalPosixTest, LinkInTheWayOfATemporaryFileIsNamed) {
  Write("a.csv", "Id\n1\n");
  Link("~b.csv.tmp", "elsewhere");
  const std::string errors = Refused("0x80004005: ./b.csv: ./~b.csv.tmp is a link");
  ExpectRefused(Run({"copy", "a.csv", "b.csv"}), errors);
  ExpectRefused(Run({"create", "b.csv", "--field", "Id:Integer"}), errors);
}

}  // namespace

#endif
