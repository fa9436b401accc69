// Operations on tables beside a schema.ini that the user may not read.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <functional>
#include <map>
#include <string>

#include "schema/TableFiles.h"
#include "support/OrdinaryUser.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

namespace fs = boost::filesystem;

class TableFilesPosixTest : public EnglishTest {
 protected:
  TableFilesPosixTest() {
    folder_.Write(u"a.csv", "x,y\n1,2\n");
    folder_.Write(u"schema.ini", "[a.csv]\nCol1=x Text\n");
    fs::permissions(folder_.Native(), fs::all_all);
    fs::permissions(folder_.Native(u"a.csv"), fs::all_all);
    fs::permissions(folder_.Native(u"schema.ini"), fs::no_perms);
  }

  TableLocation In(std::u16string name) const { return {folder_.Path(), std::move(name)}; }

  std::map<std::u16string, std::string> Everything() const {
    std::map<std::u16string, std::string> files;
    for (const std::u16string& name : folder_.Names()) files[name] = folder_.Read(name);
    return files;
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(TableFilesPosixTest, NothingIsDoneBesideASectionThatNobodyCouldTakeAlong) {
  const std::function<void()> operations[] = {
      [&] { RenameTableFiles(In(u"a.csv"), u"b.csv"); },
      [&] { CopyTableFiles(In(u"a.csv"), In(u"b.csv")); },
      [&] { DeleteTableFiles(In(u"a.csv")); },
      [&] { CreateTableFiles(In(u"b.csv"), {FieldDefinition()}); },
  };
  const auto before = Everything();
  for (const auto& operation : operations) {
    {
      const OrdinaryUser ordinary;
      EXPECT_THROW(operation(), TableFailure);
    }
    EXPECT_EQ(Everything(), before);
  }
}

}  // namespace
}  // namespace TextFile

#endif
