#include "reading/ReaderFactory.h"

#include "reading/DelimitedReader.h"
#include "reading/FixedWidthReader.h"

namespace TextFile {

namespace {

template <class ConcreteReader>
ReaderPtr Make(const TextDatasetDescription& description) {
  return {new ConcreteReader(description),
          [](Reader* reader) { delete static_cast<ConcreteReader*>(reader); }};
}

}  // namespace

ReaderPtr MakeReader(const TextDatasetDescription& description) {
  return description.options.fixedLength ? Make<FixedWidthReader>(description)
                                         : Make<DelimitedReader>(description);
}

ReaderPtr MakeDataReader(const TextDatasetDescription& description) {
  ReaderPtr reader = MakeReader(description);
  reader->ReadRecord();
  if (description.options.columnNameHeader) reader->ReadRecord();
  return reader;
}

}  // namespace TextFile
