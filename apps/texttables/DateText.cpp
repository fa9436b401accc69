#include "DateText.h"

#include <cstdlib>

#include "Fields.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/com/ComPtr.h"

namespace TextTables {

namespace {

// The OLE date of 1970-01-01.
constexpr double kUnixEpoch = 25569.0;
constexpr double kSecondsPerDay = 86400.0;

char* WriteDigits(char* place, unsigned value, int count) {
  for (int i = count - 1; i >= 0; --i) {
    place[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  return place + count;
}

char* WriteDate(char* place, const SYSTEMTIME& time) {
  place = WriteDigits(place, time.wYear, 4);
  *place++ = '-';
  place = WriteDigits(place, time.wMonth, 2);
  *place++ = '-';
  return WriteDigits(place, time.wDay, 2);
}

char* WriteTime(char* place, const SYSTEMTIME& time) {
  place = WriteDigits(place, time.wHour, 2);
  *place++ = ':';
  place = WriteDigits(place, time.wMinute, 2);
  *place++ = ':';
  place = WriteDigits(place, time.wSecond, 2);
  if (time.wMilliseconds == 0) return place;
  *place++ = '.';
  return WriteDigits(place, time.wMilliseconds, 3);
}

char* WriteOffset(char* place, int minutes) {
  *place++ = minutes < 0 ? '-' : '+';
  const auto size = static_cast<unsigned>(std::abs(minutes));
  // Tables may have offsets that no place on earth has.
  place = WriteDigits(place, size / 60, size < 100 * 60 ? 2 : 3);
  *place++ = ':';
  return WriteDigits(place, size % 60, 2);
}

}  // namespace

DateParts DatePartsOfField(LONG fieldType) noexcept {
  if (fieldType == kDateOnlyField) return DateParts::kDate;
  if (fieldType == kTimeOnlyField) return DateParts::kTime;
  return DateParts::kBoth;
}

IsoText IsoDate(DATE date, DateParts parts) noexcept {
  IsoText result;
  SYSTEMTIME time = {};
  if (!quenra::DatetimeHelper::FromOADate(date, time)) return result;
  char* place = result.text;
  if (parts != DateParts::kTime) place = WriteDate(place, time);
  if (parts == DateParts::kBoth) *place++ = 'T';
  if (parts != DateParts::kDate) place = WriteTime(place, time);
  result.length = static_cast<std::size_t>(place - result.text);
  return result;
}

IsoText IsoTimestamp(DATE date, int offsetMinutes) noexcept {
  IsoText result = IsoDate(date, DateParts::kBoth);
  if (result.length == 0) return result;
  char* const end = WriteOffset(result.text + result.length, offsetMinutes);
  result.length = static_cast<std::size_t>(end - result.text);
  return result;
}

IsoText IsoUnixTime(LONG seconds) noexcept {
  IsoText result = IsoDate(kUnixEpoch + seconds / kSecondsPerDay, DateParts::kBoth);
  if (result.length > 0) result.text[result.length++] = 'Z';
  return result;
}

bool ReadTimestamp(IUnknown* object, Timestamp& timestamp) noexcept {
  const auto values = quenra::QueryFor<quenra::HostTimestampOffset>(object);
  return values && !FAILED(values->GetDate(&timestamp.date)) &&
         !FAILED(values->GetOffsetMinutes(&timestamp.offsetMinutes));
}

}  // namespace TextTables
