#ifndef DERVIEW_TERMINAL_H
#define DERVIEW_TERMINAL_H

#include <cstddef>
#include <string>

namespace derview {

/// When colours are used.
enum class ColorChoice : unsigned char { Auto, Always, Never };

/// Whether standard output is to be coloured. Auto: on a terminal that is not "dumb", unless
/// NO_COLOR is set and not empty.
bool usesColor(ColorChoice choice);

/// Whether a standard stream (1 or 2) is a terminal.
bool isTerminal(int descriptor);

/// Columns of a terminal; 80 where standard output is none or does not say.
std::size_t terminalWidth();

} // namespace derview

#endif
