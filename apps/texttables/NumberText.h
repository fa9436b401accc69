// Numbers in the shortest form that reads back the same, whatever the locale.
//
//   AppendShortest(output, 43835.4375);  // 43835.4375
//   AppendShortest(output, 2.0);         // 2
//   AppendPlain(output, 100000.0);       // 100000, where AppendShortest gives 1e+05
#pragma once

#include <charconv>
#include <cmath>
#include <concepts>

#include "Output.h"

namespace TextTables {

// A double needs 24 characters; a fixed-point one within AppendPlain's range less than 40.
inline constexpr std::size_t kNumberRoom = 64;

template <class Number>
void AppendShortest(Output& output, Number value) {
  char* place = output.Reserve(kNumberRoom);
  output.Commit(std::to_chars(place, place + kNumberRoom, value).ptr);
}

// For people and spreadsheets: without an exponent, as long as the number stays readable.
template <std::floating_point Number>
void AppendPlain(Output& output, Number value) {
  const Number size = std::fabs(value);
  if (size != 0 && (!(size < Number(1e15)) || size < Number(1e-5)))
    return AppendShortest(output, value);
  char* place = output.Reserve(kNumberRoom);
  output.Commit(std::to_chars(place, place + kNumberRoom, value, std::chars_format::fixed).ptr);
}

}  // namespace TextTables
