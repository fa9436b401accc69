// The lines of a text file, read the plain way: the whole file in memory, one byte after the
// other. The readers' tests hold the real line stream and the real readers against it.
#pragma once

#include <string>
#include <string_view>

#include "reading/TextLineStream.h"

class PlainTextLines {
 public:
  // `delimiter` is LF or CR.
  PlainTextLines(std::string_view file, char delimiter);

  // The next line, followed by one zero unit. False at the end.
  bool ReadLine(std::u16string& line);

  TextFile::TextEncoding encoding() const noexcept { return encoding_; }
  bool AtEnd() const noexcept { return atEnd_; }

 private:
  bool Is8Bit() const noexcept;
  bool IsReadable() const noexcept;
  std::string TakeUtf16Bytes();
  bool TakeUpToDelimiter(std::string& bytes);
  void Decode(const std::string& bytes, std::u16string& line);

  std::string data_;  // behind the mark, after the translation of text mode
  std::size_t next_ = 0;
  char delimiter_;
  TextFile::TextEncoding encoding_ = TextFile::TextEncoding::kUndetermined;
  bool atEnd_ = false;
};
