#include "Fields.h"

#include "Failures.h"
#include "host/CoreSupport/BString.h"
#include "host/DataCore/DataCoreUtil.h"
#include "host/com/ComPtr.h"

namespace TextTables {

namespace {

Field Read(quenra::HostField& field) {
  Field result;
  quenra::BString text;
  Check(field.GetName(text.Receive()), u"field");
  result.name = text.View();
  Check(field.GetType(&result.type), result.name);
  Check(field.GetLength(&result.length), result.name);
  Check(field.GetPrecision(&result.precision), result.name);
  if (const auto tagged = quenra::QueryFor<quenra::HostFieldTag>(&field)) {
    Check(tagged->GetTag(text.Receive()), result.name);
    result.tag = text.View();
  }
  return result;
}

}  // namespace

std::vector<Field> FieldsOf(quenra::IPlugInDatasetHelper& dataset, const std::u16string& table) {
  quenra::ComPtr<quenra::HostFieldCollection> collection;
  Check(dataset.DescribeFields(0, collection.Receive()), table);
  LONG count = 0;
  Check(collection->GetFieldCount(&count), table);
  std::vector<Field> fields;
  for (LONG i = 0; i < count; ++i) {
    quenra::ComPtr<quenra::HostField> field;
    Check(collection->GetField(i, field.Receive()), table);
    fields.push_back(Read(*field));
  }
  return fields;
}

std::string FieldTypeName(LONG type) {
  switch (type) {
    case 0:
      return "SmallInteger";
    case 1:
      return "Integer";
    case 2:
      return "Single";
    case 3:
      return "Double";
    case 4:
      return "String";
    case 5:
      return "Date";
    case 6:
      return "ObjectId";
    case 10:
      return "Guid";
    case 11:
      return "GlobalId";
    case 13:
      return "BigInteger";
    case 14:
      return "DateOnly";
    case 15:
      return "TimeOnly";
    case 16:
      return "TimestampOffset";
    default:
      return "Type" + std::to_string(type);
  }
}

int FindField(const std::vector<Field>& fields, const std::u16string& name) {
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (fields[i].name == name) return static_cast<int>(i);
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (quenra::DataCoreUtil::CompareFoldCase(fields[i].name, name)) return static_cast<int>(i);
  return -1;
}

}  // namespace TextTables
