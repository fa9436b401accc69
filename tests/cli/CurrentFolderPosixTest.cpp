// What lies in the folder where the program is run.
#ifndef _WIN32

#include "cli/TexttablesTest.h"

namespace {

using CurrentFolderTest = TexttablesTest;

// A library without contents ends the program that takes it for its own.
TEST_F(CurrentFolderTest, LibrariesBesideTheDataAreNotLoaded) {
  for (const char* name : {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6",
                           "libquenraHost.so", "libquenraIcu.so", "quenraDataSourcesFile.so"})
    Write(name, "");
  Write("a.csv", "Id\n1\n");
  EXPECT_EQ(Output({"count", "a.csv"}), "1\n");
  EXPECT_EQ(Output({"--locale", "de-DE", "rows", "a.csv", "--json"}), "{\"Id\":1}\n");
}

}  // namespace

#endif
