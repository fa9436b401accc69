// What a host hands over when it creates and fills tables.
//
//   const auto fields = MakeFields({{u"Id", 1}, {u"Name", 4, 20}});
//   workspace->CreateTable(BString(u"a.csv").Get(), fields.Get(), table.Receive());
//   loader->LoadRow(MakeRow(fields, values).Get());
#pragma once

#include <string_view>
#include <vector>

#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostFields.h"
#include "host/interfaces/HostRowBuffer.h"
#include "host/interfaces/HostWorkspace.h"

namespace quenra::test {

struct FieldAsked {
  std::u16string_view name;
  LONG type;
  LONG length = 0;
  LONG precision = 0;
};

// Throws std::runtime_error when the host has no such object; so do the others.
ComPtr<HostFieldCollection> MakeFields(const std::vector<FieldAsked>& fields);

ComPtr<HostRowBuffer> MakeRow(const ComPtr<HostFieldCollection>& fields,
                              const std::vector<Variant>& values);

ComPtr<HostWorkspace> MakeWorkspace(std::u16string_view folder);

Variant NullValue();
Variant SmallValue(SHORT number);
Variant BigValue(LONGLONG number);
Variant SingleValue(float number);
Variant DateValue(DATE date);
Variant StampValue(DATE date, SHORT offsetMinutes);

}  // namespace quenra::test
