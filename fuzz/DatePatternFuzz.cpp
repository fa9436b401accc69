// Writes arbitrary times by arbitrary patterns. The first eight bytes are the time, a 64-bit number
// of milliseconds since the year 100 with the lowest byte first; the rest is the pattern.
//
// Holds: the shorter way writes what the exact way writes, within its room; the pattern's text
// stands in what is written.

#include <cstring>
#include <string>

#include "FuzzInput.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "inference/DateFormatting.h"

namespace {

using Fuzz::Check;

// The years 100 to 9999.
constexpr double kFirstDay = -657434;
constexpr std::uint64_t kDays = 3615900;
constexpr std::uint64_t kMillisecondsOfDay = 86400000;

SYSTEMTIME TimeOf(const std::uint8_t* data) {
  std::uint64_t number = 0;
  std::memcpy(&number, data, sizeof number);
  // Whole seconds are what most tables have.
  if (number % 2 == 0) number -= number % 1000;
  const double day = kFirstDay + static_cast<double>(number / kMillisecondsOfDay % kDays);
  SYSTEMTIME time{};
  Check(quenra::DatetimeHelper::FromOADate(day, time));
  const auto rest = static_cast<std::uint32_t>(number % kMillisecondsOfDay);
  time.wHour = static_cast<WORD>(rest / 3600000);
  time.wMinute = static_cast<WORD>(rest / 60000 % 60);
  time.wSecond = static_cast<WORD>(rest / 1000 % 60);
  time.wMilliseconds = static_cast<WORD>(rest % 1000);
  return time;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < sizeof(std::uint64_t)) return 0;
  const SYSTEMTIME time = TimeOf(data);
  const std::u16string text =
      Fuzz::FuzzInput(data + sizeof(std::uint64_t), size - sizeof(std::uint64_t)).RestAsText();
  const TextFile::DatePattern pattern(text);
  std::string exact;
  pattern.Append(time, exact);
  Check(!pattern.empty() || exact.empty());
  std::string quick(pattern.Room(), '\0');
  const char* const end = pattern.Write(time, quick.data());
  if (end == nullptr) {
    Check(time.wMilliseconds != 0);
  } else {
    Check(static_cast<std::size_t>(end - quick.data()) <= pattern.Room());
    quick.resize(static_cast<std::size_t>(end - quick.data()));
    Check(quick == exact);
  }
  for (int c = 1; c < 0x80; ++c)
    if (pattern.HasText(static_cast<char>(c)))
      Check(exact.find(static_cast<char>(c)) != std::string::npos);
  TextFile::OrderOfPattern(text);
  return 0;
}
