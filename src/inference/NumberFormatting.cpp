#include "inference/NumberFormatting.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "inference/Digits.h"
#include "schema/Utf8.h"

namespace TextFile::NumberFormat {

namespace {

constexpr int kSingleDigits = 7;
constexpr int kDoubleDigits = 15;
// A double has no more digits behind its point than the smallest one, 2 to the power of -1074.
constexpr std::uint32_t kMostDigits = 1074;
// And no more before it than the largest, with its sign and point.
constexpr std::size_t kBufferSize = std::numeric_limits<double>::max_exponent10 + kMostDigits + 8;

constexpr bool IsReal(FieldType type) noexcept {
  return type == FieldType::kSingle || type == FieldType::kDouble;
}

void AppendWithDecimalSymbol(const Settings& settings, std::string_view text, std::string& bytes) {
  const std::size_t point = text.find('.');
  bytes += text.substr(0, point);
  if (point == std::string_view::npos) return;
  AppendUtf8(std::u16string_view(&settings.decimalSymbol, 1), bytes);
  bytes += text.substr(point + 1);
}

// A single and the double that is the same number have the same digits.
double RealOf(FieldType type, const NumberValue& value) noexcept {
  return type == FieldType::kSingle ? static_cast<double>(value.single) : value.real;
}

std::string_view WriteExactly(FieldType type, const NumberValue& value, int digits,
                              char (&buffer)[kBufferSize]) noexcept {
  char* const limit = buffer + kBufferSize;
  const auto result = IsReal(type) ? std::to_chars(buffer, limit, RealOf(type, value),
                                                   std::chars_format::fixed, digits)
                                   : std::to_chars(buffer, limit, value.integer);
  return {buffer, static_cast<std::size_t>(result.ptr - buffer)};
}

std::string_view Write(FieldType type, const NumberValue& value, int digits,
                       char (&buffer)[kBufferSize]) noexcept {
  static_assert(kBufferSize >= std::max(kFixedRoom, kWholeRoom));
  const char* end = nullptr;
  if (!IsReal(type))
    end = WriteInteger(value.integer, buffer);
  else if (digits <= kMostPlainDigits)
    end = WriteFixed(RealOf(type, value), digits, '.', buffer);
  if (end == nullptr) return WriteExactly(type, value, digits, buffer);
  return {buffer, static_cast<std::size_t>(end - buffer)};
}

}  // namespace

int DigitsOf(const Settings& settings, FieldType type) noexcept {
  if ((settings.specified & Settings::kNumberDigits) != 0)
    return static_cast<int>(std::min(settings.digits, kMostDigits));
  return type == FieldType::kSingle ? kSingleDigits : kDoubleDigits;
}

void AppendNumber(const Settings& settings, FieldType type, const NumberValue& value,
                  std::string& bytes) {
  char buffer[kBufferSize];
  AppendWithDecimalSymbol(settings, Write(type, value, DigitsOf(settings, type), buffer), bytes);
}

void AppendNumberExactly(const Settings& settings, FieldType type, const NumberValue& value,
                         std::string& bytes) {
  char buffer[kBufferSize];
  const int digits = DigitsOf(settings, type);
  AppendWithDecimalSymbol(settings, WriteExactly(type, value, digits, buffer), bytes);
}

bool AppendNumberWithin(const Settings& settings, FieldType type, const NumberValue& value,
                        std::size_t width, std::string& bytes) {
  char buffer[kBufferSize];
  int digits = DigitsOf(settings, type);
  std::string_view text = Write(type, value, digits, buffer);
  while (text.size() > width) {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) return false;
    // As many digits as fit, and at least one less: rounding may have made the whole part longer.
    const auto room = static_cast<int>(width) - static_cast<int>(point) - 1;
    digits = std::max(0, std::min(digits - 1, room));
    text = Write(type, value, digits, buffer);
  }
  AppendWithDecimalSymbol(settings, text, bytes);
  return true;
}

}  // namespace TextFile::NumberFormat
