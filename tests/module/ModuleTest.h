// What every test of the built module starts from and is checked for at its end.
//
//   TEST_F(SomethingTest, ReadsNumbers) {
//     folder_.Write(u"a.csv", "Id\n1\n");
//     EXPECT_THAT(Rows(OpenTable(u"a.csv")), ElementsAre("I4:1"));
//   }
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/CoreSupport/BString.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "support/ModuleUnderTest.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace quenra::test {

struct ErrorSeen {
  HRESULT code;
  GUID source;
  std::string text;
  std::string sourceText;  // what IErrorInfo answers
  std::string helpFile;
};

struct FieldSeen {
  std::string name;
  LONG type;
  LONG length;
  LONG precision;
  std::string tag;
  friend bool operator==(const FieldSeen&, const FieldSeen&) = default;
};
void PrintTo(const FieldSeen& field, std::ostream* stream);

struct EventSeen {
  int kind;  // of EventLogRecord
  std::string name;
  std::string text;
  std::string context;
};

// A field map: a SAFEARRAY of 32-bit integers.
class FieldMapArray {
 public:
  explicit FieldMapArray(const std::vector<LONG>& entries);
  ~FieldMapArray() { ::SafeArrayDestroy(array_); }
  FieldMapArray(const FieldMapArray&) = delete;
  FieldMapArray& operator=(const FieldMapArray&) = delete;
  SAFEARRAY* Get() const { return array_; }
  VARIANT AsVariant() const;

 private:
  SAFEARRAY* array_;
};

// The host's value slots; each starts as VT_I4 with `kUntouched`, so that a slot left alone shows.
class Slots {
 public:
  static constexpr LONG kUntouched = -77;
  explicit Slots(std::size_t count);
  ~Slots();
  Slots(const Slots&) = delete;
  Slots& operator=(const Slots&) = delete;
  HostFieldValue* Data() { return values_.data(); }
  VARIANT& operator[](std::size_t slot) { return values_[slot].value; }
  void Reset();  // frees the values and starts again
  std::vector<std::string> Dump() const;
  bool HostDataIsUntouched() const;

 private:
  std::vector<HostFieldValue> values_;
};

// "I2:1", "I4:1", "I8:1", "R4:1.5", "R8:1.5", "BSTR:text", "DATE:43831.5", "TZ:43831.5/120",
// "NULL", "EMPTY"; "untouched" for a slot that was left alone.
std::string Dump(const VARIANT& value);

// Newest first; the thread's chain is empty afterwards.
std::vector<ErrorSeen> TakeErrors();

// A new array of the fields.
std::vector<FieldSeen> Fields(const ComPtr<IPlugInDatasetHelper>& table);

// A cursor that wants every field, slot by slot.
class CursorOverAll {
 public:
  explicit CursorOverAll(const ComPtr<IPlugInDatasetHelper>& table);
  bool AtEnd() const;
  // The current row's values joined by "|".
  std::string Row();
  void Advance() { cursor_->AdvanceRecord(); }
  const ComPtr<IPlugInCursorHelper>& Cursor() const { return cursor_; }

 private:
  std::size_t count_;
  FieldMapArray map_;
  Slots slots_;
  ComPtr<IPlugInCursorHelper> cursor_;  // goes before the map that it locks
};

std::vector<std::string> Rows(const ComPtr<IPlugInDatasetHelper>& table);

// Loads the module anew for each test, with the locale en-US, an empty error chain and an event log
// that is kept; afterwards the module must agree to be unloaded, and neither it nor the host may
// have an object left.
class ModuleTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  ComPtr<IPlugInWorkspaceFactoryHelper2> Factory() const;
  ComPtr<IPlugInWorkspaceHelper> OpenWorkspace() const;
  // Expects success.
  ComPtr<IPlugInDatasetHelper> OpenTable(std::u16string_view name) const;
  // What OpenDatasetByName answers when it does not succeed.
  HRESULT OpenResult(std::u16string_view name) const;
  // Writes the file and opens it.
  ComPtr<IPlugInDatasetHelper> Table(std::u16string_view name, std::string_view bytes) const;
  void SetOption(std::u16string_view name) const;
  std::vector<EventSeen> Events() const;
  // The messages among the events.
  std::vector<std::string> Messages() const;

  TemporaryFolder folder_;
  std::unique_ptr<ModuleUnderTest> module_;

 private:
  LONG components_ = 0;
  mutable std::mutex eventMutex_;
  std::vector<EventSeen> events_;
};

}  // namespace quenra::test
