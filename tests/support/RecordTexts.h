// Records as one line of text: [a] [b,c] [].
#pragma once

#include <string>
#include <vector>

#include "reading/Reader.h"

// "(none)" for a record without fields.
inline std::u16string RecordText(const TextFile::Record& record) {
  std::u16string text;
  for (std::size_t i = 0; i < record.size(); ++i) {
    if (i > 0) text += u' ';
    text += u'[' + std::u16string(record[i]) + u']';
  }
  return record.empty() ? u"(none)" : text;
}

// Every record that is left, as its fields.
using RecordFields = std::vector<std::vector<std::u16string>>;
inline RecordFields FieldsOfRecords(TextFile::Reader& reader) {
  RecordFields records;
  while (reader.ReadRecord()) {
    records.emplace_back();
    for (std::size_t i = 0; i < reader.record().size(); ++i)
      records.back().emplace_back(reader.record()[i]);
  }
  return records;
}

// Every record that is left.
inline std::vector<std::u16string> RecordTexts(TextFile::Reader& reader) {
  std::vector<std::u16string> texts;
  while (reader.ReadRecord()) texts.push_back(RecordText(reader.record()));
  return texts;
}
