#include "module/ModuleTest.h"

#include <charconv>
#include <ostream>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/interfaces/HostErrors.h"
#include "host/interfaces/HostTimestampOffset.h"

namespace quenra::test {
namespace {

template <class Number>
std::string Shortest(Number number) {
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, number).ptr;
  return std::string(text, end);
}

std::string DumpObject(IUnknown* object) {
  const auto stamp = QueryFor<HostTimestampOffset>(object);
  if (!stamp) return "UNKNOWN";
  DATE date = 0;
  SHORT offset = 0;
  stamp->GetDate(&date);
  stamp->GetOffsetMinutes(&offset);
  return "TZ:" + Shortest(date) + "/" + std::to_string(offset);
}

ErrorSeen Look(HostChainedError& error) {
  ErrorSeen seen{};
  error.GetCode(&seen.code);
  error.GetSourceId(&seen.source);
  BString text;
  error.GetText(text.Receive());
  seen.text = ToUtf8(text.View());
  const auto info = QueryFor<IErrorInfo>(&error);
  EXPECT_EQ(info->GetSource(text.Receive()), S_OK);
  seen.sourceText = ToUtf8(text.View());
  EXPECT_EQ(info->GetHelpFile(text.Receive()), S_OK);
  seen.helpFile = ToUtf8(text.View());
  return seen;
}

FieldSeen Look(HostField& field) {
  FieldSeen seen{};
  BString name;
  field.GetName(name.Receive());
  seen.name = ToUtf8(name.View());
  BString alias;
  field.GetAliasName(alias.Receive());
  EXPECT_EQ(ToUtf8(alias.View()), seen.name);
  field.GetType(&seen.type);
  field.GetLength(&seen.length);
  field.GetPrecision(&seen.precision);
  if (const auto tag = QueryFor<HostFieldTag>(&field)) {
    BString text;
    tag->GetTag(text.Receive());
    seen.tag = ToUtf8(text.View());
  }
  return seen;
}

std::vector<LONG> Identity(std::size_t count) {
  std::vector<LONG> entries(count);
  for (std::size_t i = 0; i < count; ++i) entries[i] = static_cast<LONG>(i);
  return entries;
}

}  // namespace

void PrintTo(const FieldSeen& field, std::ostream* stream) {
  *stream << "{\"" << field.name << "\", " << field.type << ", " << field.length << ", "
          << field.precision << ", \"" << field.tag << "\"}";
}

FieldMapArray::FieldMapArray(const std::vector<LONG>& entries)
    : array_(::SafeArrayCreateVector(VT_I4, 0, static_cast<ULONG>(entries.size()))) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    LONG index = static_cast<LONG>(i);
    LONG entry = entries[i];
    ::SafeArrayPutElement(array_, &index, &entry);
  }
}

VARIANT FieldMapArray::AsVariant() const {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_ARRAY | VT_I4;
  value.parray = array_;
  return value;
}

Slots::Slots(std::size_t count) : values_(count) {
  for (HostFieldValue& slot : values_) {
    ::VariantInit(&slot.value);
    slot.hostData[0] = slot.hostData[1] = this;
  }
  Reset();
}

Slots::~Slots() {
  for (HostFieldValue& slot : values_) ::VariantClear(&slot.value);
}

void Slots::Reset() {
  for (HostFieldValue& slot : values_) {
    ::VariantClear(&slot.value);
    slot.value.vt = VT_I4;
    slot.value.lVal = kUntouched;
  }
}

std::vector<std::string> Slots::Dump() const {
  std::vector<std::string> dump;
  for (const HostFieldValue& slot : values_) dump.push_back(test::Dump(slot.value));
  return dump;
}

bool Slots::HostDataIsUntouched() const {
  for (const HostFieldValue& slot : values_)
    if (slot.hostData[0] != this || slot.hostData[1] != this) return false;
  return true;
}

std::string Dump(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return "EMPTY";
    case VT_NULL:
      return "NULL";
    case VT_I2:
      return "I2:" + std::to_string(value.iVal);
    case VT_I4:
      return value.lVal == Slots::kUntouched ? "untouched" : "I4:" + std::to_string(value.lVal);
    case VT_I8:
      return "I8:" + std::to_string(value.llVal);
    case VT_R4:
      return "R4:" + Shortest(value.fltVal);
    case VT_R8:
      return "R8:" + Shortest(value.dblVal);
    case VT_DATE:
      return "DATE:" + Shortest(value.date);
    case VT_BSTR:
      return "BSTR:" + ToUtf8(ViewOf(value.bstrVal));
    case VT_UNKNOWN:
      return DumpObject(value.punkVal);
    default:
      return "VT " + std::to_string(value.vt);
  }
}

std::vector<ErrorSeen> TakeErrors() {
  std::vector<ErrorSeen> errors;
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Receive()) != S_OK) return errors;
  for (ComPtr<HostChainedError> error = info.As<HostChainedError>(); error;) {
    errors.push_back(Look(*error));
    ComPtr<HostChainedError> next;
    error->GetNext(next.Receive());
    error = next;
  }
  return errors;
}

std::vector<FieldSeen> Fields(const ComPtr<IPlugInDatasetHelper>& table) {
  std::vector<FieldSeen> seen;
  ComPtr<HostFieldCollection> fields;
  if (!table || FAILED(table->DescribeFields(0, fields.Receive()))) return seen;
  LONG count = 0;
  fields->GetFieldCount(&count);
  for (LONG i = 0; i < count; ++i) {
    ComPtr<HostField> field;
    fields->GetField(i, field.Receive());
    seen.push_back(Look(*field));
  }
  return seen;
}

CursorOverAll::CursorOverAll(const ComPtr<IPlugInDatasetHelper>& table)
    : count_(Fields(table).size()), map_(Identity(count_)), slots_(count_) {
  EXPECT_EQ(table->FetchAllRows(0, nullptr, map_.AsVariant(), cursor_.Receive()), S_OK);
}

bool CursorOverAll::AtEnd() const {
  VARIANT_BOOL finished = VARIANT_TRUE;
  if (cursor_) cursor_->AtLastRecord(&finished);
  return finished != VARIANT_FALSE;
}

std::string CursorOverAll::Row() {
  slots_.Reset();
  const auto fast = cursor_.As<IPlugInFastQueryValues>();
  EXPECT_EQ(fast->ReadRecordValuesFast(slots_.Data()), S_OK);
  std::string row;
  for (const std::string& value : slots_.Dump()) row += (row.empty() ? "" : "|") + value;
  return row;
}

std::vector<std::string> Rows(const ComPtr<IPlugInDatasetHelper>& table) {
  std::vector<std::string> rows;
  if (!table) return rows;
  for (CursorOverAll cursor(table); !cursor.AtEnd(); cursor.Advance()) rows.push_back(cursor.Row());
  return rows;
}

void ModuleTest::SetUp() {
  QUENRALocale::SetLocale(u"en-US");
  TakeErrors();
  components_ = LiveComponentCount();
  EventLog::SetSink([this](const EventLogRecord& record) {
    const std::lock_guard lock(eventMutex_);
    events_.push_back({static_cast<int>(record.kind), ToUtf8(record.name), ToUtf8(record.text),
                       ToUtf8(record.context)});
  });
  module_ = std::make_unique<ModuleUnderTest>();
}

void ModuleTest::TearDown() {
  TakeErrors();
  EXPECT_EQ(module_->CanUnloadNow(), S_OK) << "objects of the module are left";
  module_.reset();
  EXPECT_EQ(LiveComponentCount(), components_) << "objects of the host are left";
  EventLog::SetSink({});
  QUENRALocale::SetLocale(u"en-US");
}

ComPtr<IPlugInWorkspaceFactoryHelper2> ModuleTest::Factory() const {
  return module_->Create<IPlugInWorkspaceFactoryHelper2>(CLSID_TextFileWorkspaceFactory);
}

ComPtr<IPlugInWorkspaceHelper> ModuleTest::OpenWorkspace() const {
  ComPtr<IPlugInWorkspaceHelper> workspace;
  EXPECT_EQ(Factory()->OpenFolderWorkspace(BString(folder_.Path()).Get(), workspace.Receive()),
            S_OK);
  return workspace;
}

ComPtr<IPlugInDatasetHelper> ModuleTest::OpenTable(std::u16string_view name) const {
  ComPtr<IPlugInDatasetHelper> table;
  EXPECT_EQ(OpenWorkspace()->OpenDatasetByName(BString(name).Get(), table.Receive()), S_OK)
      << ToUtf8(name);
  return table;
}

HRESULT ModuleTest::OpenResult(std::u16string_view name) const {
  ComPtr<IPlugInDatasetHelper> table;
  const HRESULT result = OpenWorkspace()->OpenDatasetByName(BString(name).Get(), table.Receive());
  EXPECT_EQ(FAILED(result), table.Get() == nullptr);
  return result;
}

ComPtr<IPlugInDatasetHelper> ModuleTest::Table(std::u16string_view name,
                                               std::string_view bytes) const {
  folder_.Write(name, bytes);
  return OpenTable(name);
}

void ModuleTest::SetOption(std::u16string_view name) const {
  const auto options = Factory().As<IWorkspaceFactoryOpenOptions>();
  EXPECT_EQ(options->SetOption(BString(name).Get(), nullptr), S_OK);
}

std::vector<EventSeen> ModuleTest::Events() const {
  const std::lock_guard lock(eventMutex_);
  return events_;
}

std::vector<std::string> ModuleTest::Messages() const {
  std::vector<std::string> messages;
  for (const EventSeen& event : Events())
    if (event.kind == static_cast<int>(EventLogRecord::Kind::kMessage))
      messages.push_back(event.text);
  return messages;
}

}  // namespace quenra::test
