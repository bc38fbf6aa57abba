#ifndef DERVIEW_ESCAPE_H
#define DERVIEW_ESCAPE_H

#include <cstddef>
#include <string>
#include <string_view>

#include <brevantis/asn1/text/characters.h>

#include "octets.h"

namespace derview {

/// A text that a terminal may be shown: valid UTF-8 in which everything that is not plainly visible
/// (controls, escape sequences, marks that turn the direction of writing, invisible characters,
/// octets that are no character) stands as an escape: \n, \x1B, \u{202E}.
struct EscapedText {
    std::string text;
    std::size_t columns = 0; ///< that it takes on a terminal
    std::size_t rest = 0;    ///< octets that are left out, from where the room was used up
};

/// Escapes characters.
/// @param room columns at most
/// @param quoted whether quotes and backslashes are escaped too
EscapedText escape(Octets octets, CharacterCoding coding, std::size_t room, bool quoted = true);

/// Escapes a text from the command line or a file: a path, a label.
std::string escapeName(std::string_view text);

/// A character or an escape, which is not to be torn.
struct ShownUnit {
    std::size_t size;    ///< octets
    std::size_t columns; ///< that it takes on a terminal
};

/// What an escaped text begins with, which must not be empty.
ShownUnit firstUnit(std::string_view text);

/// Columns that an escaped text takes on a terminal.
std::size_t columnsOf(std::string_view text);

} // namespace derview

#endif
