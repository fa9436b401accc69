// Text that comes from files, names and arguments, as people may safely be shown it: nothing in it
// commands a terminal, turns the direction of what stands behind it, or begins a line.
//
//   throw UsageError("there is no column \"" + Shown(name) + "\"");
#pragma once

#include <string>
#include <string_view>

namespace TextTables {

// `text` with control characters, line separators and marks that turn its direction spelled out
// (\t, \n, \u001b, \u202e), so that a table stays aligned and no file's content can command the
// terminal.
std::u16string WithoutControls(std::u16string_view text);

// A value or a name inside a message, in UTF-8: as WithoutControls has it, a byte that is not of
// UTF-8 as \xe9, any other lone surrogate as U+FFFD, and cut behind 200 characters.
std::string Shown(std::u16string_view text);
// The same of an argument, or of bytes that should be UTF-8.
std::string Shown(std::string_view bytes);

// A name that is listed: the same, and not cut.
std::string ShownWhole(std::u16string_view text);

// A whole message, whatever it was made of. Its line ends and tabs stay; every further line begins
// with a tab, so that no text can pass for another message, and what is very long loses its middle.
std::string ShownMessage(std::string_view bytes);

}  // namespace TextTables
