#ifndef TESTS_SUPPORT_LOOSENED_H
#define TESTS_SUPPORT_LOOSENED_H

#include <random>

#include "support/hex.h"
#include "support/reference_reader.h"

namespace tests {

/// An element with the contents given, of definite or indefinite length.
inline Octets elementOf(unsigned char identifier, const Octets& contents, bool indefinite) {
    const std::size_t size = contents.size();
    Octets element = {identifier};
    if (indefinite) {
        append(element, {0x80});
    } else if (size < 0x80) {
        append(element, {static_cast<unsigned char>(size)});
    } else {
        append(element, {0x82, static_cast<unsigned char>(size >> 8),
                         static_cast<unsigned char>(size & 0xFF)});
    }
    append(element, contents);
    append(element, indefinite ? Octets{0, 0} : Octets{});
    return element;
}

/// DER as a streaming producer might have written it: lengths left open, strings in segments.
/// Octets that are no elements stay as they are.
inline Octets loosened(const Octets& message, std::mt19937& random) {
    Octets result;
    ReferenceReader reader(message);
    try {
        while (!reader.atEnd()) {
            const unsigned char identifier = reader.peek();
            const ReferenceHeader header = reader.header();
            const Octets contents = reader.take(header.length);
            const bool open = random() % 3 == 0;
            if (header.constructed) {
                append(result, elementOf(identifier, loosened(contents, random), open));
            } else if (identifier > 2 && identifier != 5 && identifier != 6 && random() % 4 == 0) {
                const unsigned char segment = identifier == 3 ? 3 : 4;
                const auto half = contents.begin() + header.length / 2;
                Octets segments = elementOf(segment, Octets(contents.begin(), half), false);
                append(segments, elementOf(segment, Octets(half, contents.end()), false));
                append(result,
                       elementOf(static_cast<unsigned char>(identifier | 0x20), segments, open));
            } else {
                append(result, elementOf(identifier, contents, false));
            }
        }
    } catch (const Refused&) {
        return message;
    }
    return result;
}

} // namespace tests

#endif
