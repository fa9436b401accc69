#include "platform/posix/VariantText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "platform/LocaleInfo.h"
#include "platform/OleAutomation.h"

namespace {

std::u16string Value(const TextLocale& locale, LCTYPE type) {
  if (locale.noUserOverride) type |= LOCALE_NOUSEROVERRIDE;
  char16_t text[128];
  const int count = GetLocaleInfoW(locale.lcid, type, text, 128);
  return count > 0 ? std::u16string(text, static_cast<std::size_t>(count) - 1) : std::u16string();
}

bool IsBlank(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r') || c == 0x00A0; }
bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
bool IsLetter(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

std::u16string_view Trim(std::u16string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool Take(std::u16string_view what, std::u16string_view* text) {
  if (what.empty() || text->substr(0, what.size()) != what) return false;
  text->remove_prefix(what.size());
  return true;
}

bool TakeAtEnd(std::u16string_view what, std::u16string_view* text) {
  if (what.empty() || text->size() < what.size()) return false;
  if (text->substr(text->size() - what.size()) != what) return false;
  text->remove_suffix(what.size());
  return true;
}

// Removes sign, brackets and currency symbol. False when there are two of a kind.
bool TakeDecoration(const TextLocale& locale, std::u16string_view* text, bool* negative) {
  *text = Trim(*text);
  if (text->size() >= 2 && text->front() == u'(' && text->back() == u')') {
    *negative = true;
    *text = Trim(text->substr(1, text->size() - 2));
  }
  const std::u16string currency = Value(locale, LOCALE_SCURRENCY);
  bool signedAlready = *negative;
  bool hasCurrency = false;
  for (;;) {
    const bool minus = Take(u"-", text) || TakeAtEnd(u"-", text);
    if (minus || Take(u"+", text) || TakeAtEnd(u"+", text)) {
      if (signedAlready) return false;
      signedAlready = true;
      *negative = minus;
    } else if (Take(currency, text) || TakeAtEnd(currency, text)) {
      if (hasCurrency) return false;
      hasCurrency = true;
    } else {
      return true;
    }
    *text = Trim(*text);
  }
}

// Rewrites the digits as from_chars reads them. False when something else is among them.
bool Normalize(std::u16string_view text, const TextLocale& locale, std::string* ascii,
               bool* isWhole) {
  const std::u16string decimal = Value(locale, LOCALE_SDECIMAL);
  const std::u16string thousand = Value(locale, LOCALE_STHOUSAND);
  bool hasDigits = false;
  *isWhole = true;
  while (!text.empty()) {
    const char16_t c = text.front();
    if (IsDigit(c)) {
      *ascii += static_cast<char>(c);
      hasDigits = true;
      text.remove_prefix(1);
    } else if (*isWhole && Take(decimal, &text)) {
      *ascii += '.';
      *isWhole = false;
    } else if (*isWhole && hasDigits && Take(thousand, &text)) {
      continue;
    } else if (hasDigits && (c == u'e' || c == u'E')) {
      break;
    } else {
      return false;
    }
  }
  if (!hasDigits) return false;
  if (text.empty()) return true;
  *isWhole = false;
  *ascii += 'e';
  text.remove_prefix(1);
  if (Take(u"-", &text)) {
    *ascii += '-';
  } else {
    Take(u"+", &text);
  }
  if (text.empty()) return false;
  for (const char16_t c : text) {
    if (!IsDigit(c)) return false;
    *ascii += static_cast<char>(c);
  }
  return true;
}

std::u16string Widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

// A date text is a row of numbers, words, and the marks between them.
struct Token {
  enum Kind { kNumber, kWord, kMark } kind = kNumber;
  int value = 0;  // of a number
  std::size_t digits = 0;
  std::u16string word;  // lower case; of a mark the character
};

std::optional<std::vector<Token>> Tokens(std::u16string_view text) {
  std::vector<Token> tokens;
  while (!text.empty()) {
    Token token{Token::kMark, 0, 0, {}};
    const char16_t c = text.front();
    if (IsDigit(c)) {
      token.kind = Token::kNumber;
      for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1)) {
        if (++token.digits > 4) return std::nullopt;
        token.value = token.value * 10 + (text.front() - u'0');
      }
    } else if (IsLetter(c)) {
      token.kind = Token::kWord;
      for (; !text.empty() && IsLetter(text.front()); text.remove_prefix(1)) {
        token.word += static_cast<char16_t>(text.front() | 0x20);
      }
    } else {
      text.remove_prefix(1);
      if (IsBlank(c) || c == u',') continue;
      if (c != u'/' && c != u'-' && c != u'.' && c != u':') return std::nullopt;
      token.word = c;
    }
    tokens.push_back(std::move(token));
  }
  return tokens;
}

// 1..12 for an English month, in full or by its first three letters, else 0.
int MonthOf(std::u16string_view word) {
  constexpr std::array<std::u16string_view, 12> kMonths = {
      u"january", u"february", u"march",     u"april",   u"may",      u"june",
      u"july",    u"august",   u"september", u"october", u"november", u"december"};
  for (std::size_t i = 0; i < kMonths.size(); ++i) {
    if (word == kMonths[i] || word == kMonths[i].substr(0, 3)) return static_cast<int>(i) + 1;
  }
  return 0;
}

struct Clock {
  int hour = 0;
  int minute = 0;
  int second = 0;
};

bool IsMark(const std::vector<Token>& tokens, std::size_t i, char16_t mark) {
  return i < tokens.size() && tokens[i].kind == Token::kMark && tokens[i].word[0] == mark;
}

bool IsNumber(const std::vector<Token>& tokens, std::size_t i) {
  return i < tokens.size() && tokens[i].kind == Token::kNumber;
}

bool ApplyDayPeriod(std::u16string_view word, Clock* clock) {
  const bool isAfternoon = word == u"pm" || word == u"p";
  if (!isAfternoon && word != u"am" && word != u"a") return false;
  if (clock->hour < 1 || clock->hour > 12) return false;
  clock->hour = clock->hour % 12 + (isAfternoon ? 12 : 0);
  return true;
}

// Takes h:mm[:ss][ am] out of the tokens. False when there is a colon but no time.
bool TakeClock(std::vector<Token>* tokens, std::optional<Clock>* clock) {
  std::size_t colon = 0;
  while (colon < tokens->size() && !IsMark(*tokens, colon, u':')) ++colon;
  if (colon == tokens->size()) return true;
  if (colon == 0 || !IsNumber(*tokens, colon - 1) || !IsNumber(*tokens, colon + 1)) return false;
  Clock found{(*tokens)[colon - 1].value, (*tokens)[colon + 1].value, 0};
  std::size_t end = colon + 2;
  if (IsMark(*tokens, end, u':')) {
    if (!IsNumber(*tokens, end + 1)) return false;
    found.second = (*tokens)[end + 1].value;
    end += 2;
  }
  if (end < tokens->size() && (*tokens)[end].kind == Token::kWord &&
      ApplyDayPeriod((*tokens)[end].word, &found)) {
    ++end;
  }
  const auto begin = tokens->begin();
  std::size_t start = colon - 1;
  // The T of 2024-02-29T12:00.
  if (start > 0 && (*tokens)[start - 1].word == u"t") --start;
  tokens->erase(begin + static_cast<std::ptrdiff_t>(start),
                begin + static_cast<std::ptrdiff_t>(end));
  *clock = found;
  return true;
}

struct Day {
  int year;
  int month;
  int day;
};

// Two digits are years from 1930 to 2029, the range that Windows starts with.
int FullYear(const Token& token) {
  if (token.digits > 2) return token.value;
  return token.value < 30 ? 2000 + token.value : 1900 + token.value;
}

std::optional<double> SerialOf(const Day& day, const Clock& clock) {
  if (day.year < 0 || day.month < 1 || day.day < 1) return std::nullopt;
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(day.year);
  time.wMonth = static_cast<WORD>(day.month);
  time.wDay = static_cast<WORD>(day.day);
  time.wHour = static_cast<WORD>(clock.hour);
  time.wMinute = static_cast<WORD>(clock.minute);
  time.wSecond = static_cast<WORD>(clock.second);
  double date = 0;
  if (SystemTimeToVariantTime(&time, &date) == FALSE) return std::nullopt;
  return date;
}

// The three numbers in the given order (as LOCALE_IDATE).
Day Ordered(const std::array<Token, 3>& numbers, int order) {
  switch (order) {
    case 0:
      return {FullYear(numbers[2]), numbers[0].value, numbers[1].value};
    case 1:
      return {FullYear(numbers[2]), numbers[1].value, numbers[0].value};
    default:
      return {FullYear(numbers[0]), numbers[1].value, numbers[2].value};
  }
}

std::optional<double> DateOf(const std::vector<Token>& tokens, int order, const Clock& clock) {
  std::array<Token, 3> numbers;
  std::size_t count = 0;
  int month = 0;
  for (const Token& token : tokens) {
    if (token.kind == Token::kMark) continue;
    if (token.kind == Token::kNumber) {
      if (count == 3) return std::nullopt;
      numbers[count++] = token;
    } else {
      if (month != 0) return std::nullopt;
      month = MonthOf(token.word);
      if (month == 0) return std::nullopt;
    }
  }
  if (month != 0) {
    if (count != 2) return std::nullopt;
    const bool yearFirst = numbers[0].digits > 2;
    const Token& year = yearFirst ? numbers[0] : numbers[1];
    const Token& day = yearFirst ? numbers[1] : numbers[0];
    return SerialOf({FullYear(year), month, day.value}, clock);
  }
  if (count != 3) return std::nullopt;
  if (numbers[0].digits > 2) return SerialOf(Ordered(numbers, 2), clock);
  if (const auto date = SerialOf(Ordered(numbers, order), clock)) return date;
  // 13/1/2024 means one thing even where the month comes first.
  return SerialOf(Ordered(numbers, order == 1 ? 0 : 1), clock);
}

std::u16string Padded(int value, std::size_t width) {
  std::u16string text = Widen(std::to_string(value));
  if (text.size() < width) text.insert(0, width - text.size(), u'0');
  return text;
}

std::u16string Field(char16_t letter, std::size_t count, const SYSTEMTIME& time,
                     const TextLocale& locale) {
  const int hour12 = time.wHour % 12 == 0 ? 12 : time.wHour % 12;
  switch (letter) {
    case u'y':
      return count > 2 ? Padded(time.wYear, 4) : Padded(time.wYear % 100, count);
    case u'M':
      return Padded(time.wMonth, count > 1 ? 2 : 1);
    case u'd':
      return count > 2 ? std::u16string() : Padded(time.wDay, count);
    case u'H':
      return Padded(time.wHour, count);
    case u'h':
      return Padded(hour12, count);
    case u'm':
      return Padded(time.wMinute, count);
    case u's':
      return Padded(time.wSecond, count);
    case u't': {
      const std::u16string period = Value(locale, time.wHour < 12 ? LOCALE_S1159 : LOCALE_S2359);
      return count > 1 ? period : period.substr(0, 1);
    }
    default:
      return {};
  }
}

std::u16string Format(std::u16string_view pattern, const SYSTEMTIME& time,
                      const TextLocale& locale) {
  std::u16string text;
  bool quoted = false;
  std::size_t i = 0;
  while (i < pattern.size()) {
    const char16_t c = pattern[i];
    std::size_t end = i + 1;
    if (c == u'\'') {
      quoted = !quoted;
    } else if (quoted || !IsLetter(c)) {
      text += c;
    } else {
      while (end < pattern.size() && pattern[end] == c) ++end;
      text += Field(c, end - i, time, locale);
    }
    i = end;
  }
  return text;
}

}  // namespace

std::optional<TextNumber> ReadNumber(std::u16string_view text, const TextLocale& locale) {
  TextNumber number;
  std::string ascii;
  bool isWhole = false;
  if (!TakeDecoration(locale, &text, &number.isNegative)) return std::nullopt;
  if (!Normalize(text, locale, &ascii, &isWhole)) return std::nullopt;
  const char* const end = ascii.data() + ascii.size();
  if (isWhole) {
    const auto [stop, error] = std::from_chars(ascii.data(), end, number.magnitude);
    number.isExact = error == std::errc() && stop == end;
  }
  const auto [stop, error] = std::from_chars(ascii.data(), end, number.value);
  if (stop != end) return std::nullopt;
  // Too big for a double is told apart from no number: the caller answers an overflow.
  if (error == std::errc::result_out_of_range) {
    const bool isTiny = ascii.find("e-") != std::string::npos;
    number.value = isTiny ? 0.0 : HUGE_VAL;
  }
  if (number.isNegative) number.value = -number.value;
  return number;
}

std::u16string WriteReal(double value, int digits, const TextLocale& locale) {
  if (std::isnan(value)) return u"1.#QNAN";
  if (std::isinf(value)) return value < 0 ? u"-1.#INF" : u"1.#INF";
  if (value == 0) return u"0";  // and not -0
  char buffer[64];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
  std::u16string text;
  for (const char* p = buffer; p != result.ptr; ++p) {
    if (*p == '.') {
      text += Value(locale, LOCALE_SDECIMAL);
    } else {
      text += static_cast<char16_t>(*p == 'e' ? 'E' : *p);
    }
  }
  return text;
}

std::u16string WriteCurrency(std::int64_t tenThousandths, const TextLocale& locale) {
  const bool negative = tenThousandths < 0;
  const auto bits = static_cast<std::uint64_t>(tenThousandths);
  const std::uint64_t magnitude = negative ? 0 - bits : bits;
  std::string fraction = std::to_string(magnitude % 10000 + 10000).substr(1);
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  std::u16string text = negative ? u"-" : u"";
  text += Widen(std::to_string(magnitude / 10000));
  if (!fraction.empty()) text += Value(locale, LOCALE_SDECIMAL) + Widen(fraction);
  return text;
}

std::optional<double> ReadDate(std::u16string_view text, const TextLocale& locale) {
  std::optional<std::vector<Token>> tokens = Tokens(Trim(text));
  if (!tokens.has_value() || tokens->empty()) return std::nullopt;
  std::optional<Clock> clock;
  if (!TakeClock(&*tokens, &clock)) return std::nullopt;
  if (tokens->empty()) {
    // A time without a day is one of day 0.
    return SerialOf({1899, 12, 30}, *clock);
  }
  const std::u16string order = Value(locale, LOCALE_IDATE);
  return DateOf(*tokens, order.empty() ? 0 : order[0] - u'0', clock.value_or(Clock{}));
}

std::optional<std::u16string> WriteDate(double date, const TextLocale& locale) {
  SYSTEMTIME time{};
  if (VariantTimeToSystemTime(date, &time) == FALSE) return std::nullopt;
  const bool isMidnight = time.wHour == 0 && time.wMinute == 0 && time.wSecond == 0;
  const bool isDayZero = time.wYear == 1899 && time.wMonth == 12 && time.wDay == 30;
  std::u16string text;
  if (isMidnight || !isDayZero) text = Format(Value(locale, LOCALE_SSHORTDATE), time, locale);
  if (isMidnight) return text;
  if (!text.empty()) text += u' ';
  return text + Format(Value(locale, LOCALE_STIMEFORMAT), time, locale);
}
