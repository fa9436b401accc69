#include <charconv>
#include <string>

#include "inference/NumberParsing.h"

namespace TextFile {

namespace {

// One attempt to read a text from its start; every step says whether it went well.
class Amount {
 public:
  Amount(const CurrencySettings& settings, std::u16string_view text)
      : settings_(settings), rest_(text) {}

  bool Character(char16_t character) noexcept {
    if (rest_.empty() || rest_.front() != character) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool Symbol() noexcept {
    if (!rest_.starts_with(settings_.symbol)) return false;
    rest_.remove_prefix(settings_.symbol.size());
    return true;
  }

  // At most one.
  bool Blank() noexcept {
    Character(u' ');
    return true;
  }

  // Digits and decimal symbols; thousands symbols between them are skipped.
  bool Number() {
    std::string digits;
    while (!rest_.empty()) {
      const char16_t unit = rest_.front();
      if (unit >= u'0' && unit <= u'9')
        digits.push_back(static_cast<char>(unit));
      else if (unit == settings_.decimalSymbol)
        digits.push_back('.');
      else if (unit != settings_.thousandSymbol)
        break;
      rest_.remove_prefix(1);
    }
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, value_);
    return error == std::errc() && last == end;
  }

  // Nothing but blanks is left.
  bool End() const noexcept { return rest_.find_first_not_of(u' ') == std::u16string_view::npos; }

  bool SymbolThenNumber() {
    return settings_.symbol.empty() ? Number() : Symbol() && Blank() && Number();
  }
  bool NumberThenSymbol() { return !settings_.symbol.empty() && Number() && Blank() && Symbol(); }

  double value() const noexcept { return value_; }

 private:
  const CurrencySettings& settings_;
  std::u16string_view rest_;
  double value_ = 0;
};

using Body = bool (Amount::*)();

bool ReadPlain(Amount& amount, Body body) { return (amount.*body)() && amount.End(); }

bool ReadMinus(Amount& amount, Body body) {
  return amount.Character(u'-') && (amount.*body)() && amount.End();
}

bool ReadParentheses(Amount& amount, Body body) {
  return amount.Character(u'(') && (amount.*body)() && amount.Character(u')') && amount.End();
}

}  // namespace

bool ParseCurrency(const CurrencySettings& settings, std::u16string_view text, double& result) {
  struct Form {
    bool (*read)(Amount&, Body);
    double sign;
  };
  constexpr Form kForms[] = {{ReadPlain, 1.0}, {ReadMinus, -1.0}, {ReadParentheses, -1.0}};
  constexpr Body kBodies[] = {&Amount::SymbolThenNumber, &Amount::NumberThenSymbol};
  for (const Form& form : kForms) {
    for (const Body body : kBodies) {
      Amount amount(settings, text);
      if (!form.read(amount, body)) continue;
      result = form.sign * amount.value();
      return true;
    }
  }
  return false;
}

}  // namespace TextFile
