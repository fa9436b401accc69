// The host's row buffer, filled from lines of JSON.
//
//   LoadedRow row(*collection, fields);
//   row.Read(R"({"Id": 1})");  // throws BadRow
//   loader->LoadRow(row.Buffer());
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Fields.h"
#include "JsonReader.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostRowBuffer.h"

namespace TextTables {

// A line that is no row of the table. what() says why, without the line's number.
class BadRow : public std::runtime_error {
 public:
  BadRow(HRESULT code, const std::string& text) : std::runtime_error(text), code_(code) {}
  HRESULT Code() const noexcept { return code_; }

 private:
  HRESULT code_;
};

class LoadedRow {
 public:
  // `fields` are those of `collection`, and must outlive this. Throws a Refusal.
  LoadedRow(quenra::HostFieldCollection& collection, const std::vector<Field>& fields);

  // Puts the values of an array in the fields' order, with or without the virtual coordinate
  // fields, or of an object by the fields' names into the buffer. Fields that an object does not
  // name become null. Throws BadRow; the buffer then holds nothing of use.
  void Read(std::string_view json);

  quenra::HostRowBuffer* Buffer() const noexcept { return buffer_.Get(); }

  // The first text of each column that is longer than its field, as a warning for people; the
  // data source cuts such texts. Empty when there is nothing new.
  const std::vector<std::string>& Warnings() const noexcept { return warnings_; }

 private:
  using Index = std::unordered_multimap<std::u16string, std::size_t>;

  void ReadArray();
  void ReadObject();
  std::size_t FieldNamed(std::u16string_view name) const;
  std::size_t FreeField(const Index& index, const std::u16string& key, bool& known) const;
  void SetNull(std::size_t field);
  void SetValue(std::size_t field, std::size_t node);
  void WarnOfCut(std::size_t field, std::u16string_view text);

  const std::vector<Field>& fields_;
  std::vector<std::size_t> columns_;  // the fields that are columns of the file
  Index exact_;
  Index folded_;
  quenra::ComPtr<quenra::HostRowBuffer> buffer_;
  JsonDocument document_;
  std::vector<bool> given_;  // in this row
  // The names of the last object, as far as they had a field, and their fields: rows mostly name
  // the same fields in one order.
  std::vector<std::pair<std::u16string, std::size_t>> lastNames_;
  std::vector<bool> warned_;
  std::vector<std::string> warnings_;
};

}  // namespace TextTables
