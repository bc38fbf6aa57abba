#include "support/reference_reader.h"

#include <algorithm>

#include <brevantis/asn1/runtime/status.h>

namespace tests {

namespace {

enum : unsigned { FormBit = 0x20000000u, LargestTagNumber = 0x1FFFFFFFu, MostArcs = 128 };

} // namespace

Octets ReferenceReader::since(unsigned start) const {
    const auto first = octets_.begin() + static_cast<std::ptrdiff_t>(start);
    return Octets(first, octets_.begin() + static_cast<std::ptrdiff_t>(at));
}

unsigned char ReferenceReader::next() {
    if (atEnd()) {
        refuse(ASN1S_END_OF_BUFFER);
    }
    return octets_[at++];
}

Octets ReferenceReader::take(int count) {
    if (count < 0 || static_cast<unsigned>(count) > size - std::min(at, size)) {
        refuse(ASN1S_END_OF_BUFFER);
    }
    at += static_cast<unsigned>(count);
    return since(at - static_cast<unsigned>(count));
}

unsigned ReferenceReader::tag() {
    const unsigned first = next();
    unsigned number = first & 31u;
    if (number == 31) {
        number = 0;
        for (int count = 1;; ++count) {
            const unsigned octet = next();
            number = number << 7 | (octet & 0x7Fu);
            const bool more = (octet & 0x80u) != 0;
            if ((count >= 5 && number > LargestTagNumber) || (count == 9 && more)) {
                refuse(ASN1S_BAD_TAG);
            }
            if (!more) {
                break;
            }
        }
    }
    return (first & 0xE0u) << 24 | number;
}

int ReferenceReader::length() {
    const unsigned first = next();
    if (first <= 0x80) {
        return first < 0x80 ? static_cast<int>(first) : int{ReferenceHeader::Indefinite};
    }
    unsigned value = 0;
    if ((first & 0x7Fu) > 4) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    for (unsigned left = first & 0x7Fu; left != 0; --left) {
        value = value << 8 | next();
    }
    const int result = static_cast<int>(value);
    // Octets that happen to spell the library's own mark are taken for it.
    if (result != ReferenceHeader::Indefinite && (result < 0 || value > size - at)) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    return result;
}

ReferenceHeader ReferenceReader::lengthOf(ReferenceHeader header) {
    header.length = length();
    header.contents = at;
    header.constructed = (header.tag & FormBit) != 0;
    return header;
}

ReferenceHeader ReferenceReader::header() {
    ReferenceHeader header;
    header.start = at;
    header.tag = tag();
    header = lengthOf(header);
    if (header.indefinite() && !header.constructed) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    return header;
}

ReferenceHeader ReferenceReader::headerOfOneOctet() {
    ReferenceHeader header;
    header.start = at;
    const unsigned octet = next();
    header.tag = (octet & 0xE0u) << 24 | (octet & 31u);
    return lengthOf(header);
}

ReferenceHeader ReferenceReader::headerAt(unsigned start) {
    const unsigned here = at;
    ReferenceHeader known;
    known.start = start;
    known.contents = here;
    try {
        at = start;
        known = header();
    } catch (const Refused&) {
    }
    at = here;
    return known;
}

ReferenceHeader ReferenceReader::match(unsigned tag) {
    const unsigned octet = tag >> 24 | (tag & 31u);
    if (atEnd() || ((peek() ^ octet) & 0xDFu) != 0) {
        refuse(ASN1S_TAG_NOT_FOUND);
    }
    const ReferenceHeader header = headerOfOneOctet();
    if (header.indefinite() && !header.constructed) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    return header;
}

/// The length behind a universal tag in primitive form.
int ReferenceReader::ownLength(unsigned tag) {
    if (atEnd() || peek() != tag) {
        refuse(ASN1S_TAG_NOT_FOUND);
    }
    ++at;
    return length();
}

bool ReferenceReader::ended(unsigned start, int length) const {
    if (length == ReferenceHeader::Indefinite) {
        return at + 2 > size || (octets_[at] == 0 && octets_[at + 1] == 0);
    }
    return at - start >= static_cast<unsigned>(length) || atEnd();
}

void ReferenceReader::endOfContents() {
    if (at + 2 > size || octets_[at] != 0 || octets_[at + 1] != 0) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    at += 2;
}

void ReferenceReader::stepOver() {
    ReferenceHeader passed = header();
    take(passed.indefinite() ? 0 : passed.length);
    for (unsigned depth = passed.indefinite() ? 1 : 0; depth != 0;) {
        passed = header();
        if (passed.indefinite()) {
            ++depth;
        } else if (passed.tag == 0 && passed.length == 0) {
            --depth;
        } else {
            take(passed.length);
        }
    }
}

unsigned ReferenceReader::countElements(int length) {
    const unsigned start = at;
    unsigned count = 0;
    while (!ended(start, length)) {
        stepOver();
        ++count;
    }
    at = start;
    return count;
}

void ReferenceReader::bind() {
    try {
        const ReferenceHeader first = header();
        open_ = first.indefinite();
        if (!open_) {
            const unsigned end = at + static_cast<unsigned>(first.length);
            at = 0;
            if (end > size) {
                refuse(ASN1S_INVALID_LENGTH);
            }
            size = end;
        }
        at = 0;
    } catch (const Refused& refused) {
        if (refused.status != ASN1S_INVALID_LENGTH) {
            throw;
        }
        at = 0;
        refuse(ASN1S_INVALID_LENGTH);
    }
}

unsigned ReferenceReader::boolean(const ReferenceHeader* read) {
    if (read == nullptr && (atEnd() || peek() != 1)) {
        refuse(ASN1S_TAG_NOT_FOUND);
    }
    int length = read != nullptr ? read->length : 0;
    if (read == nullptr) {
        ++at;
        length = next();
    }
    if (length != 1) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    return next();
}

int ReferenceReader::signedNumber(unsigned tag, const ReferenceHeader* read) {
    const int length = read != nullptr ? read->length : ownLength(tag);
    if (length < 0 || length > 4) {
        refuse(ASN1S_VALUE_TOO_BIG);
    }
    if (length == 0) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    const Octets octets = take(length);
    unsigned value = octets[0] >= 0x80 ? ~0u : 0u;
    for (const unsigned char octet : octets) {
        value = value << 8 | octet;
    }
    return static_cast<int>(value);
}

unsigned ReferenceReader::unsignedNumber(const ReferenceHeader* read) {
    const int length = read != nullptr ? read->length : ownLength(2);
    if (length < 0 || length > 5) {
        refuse(ASN1S_VALUE_TOO_BIG);
    }
    unsigned value = 0;
    for (int i = 0; i < length; ++i) {
        if (i == 0 && length == 5 && !atEnd() && peek() != 0) {
            refuse(ASN1S_VALUE_TOO_BIG);
        }
        value = value << 8 | next();
    }
    return value;
}

unsigned ReferenceReader::shortNumber(const ReferenceHeader* read) {
    int length = read != nullptr ? read->length : 0;
    if (read == nullptr) {
        if (!open_ && at + 3 > size) {
            refuse(ASN1S_END_OF_BUFFER);
        }
        if (atEnd() || peek() != 2) {
            refuse(ASN1S_TAG_NOT_FOUND);
        }
        ++at;
        length = next();
    }
    if (length < 0 || length > 3) {
        refuse(ASN1S_VALUE_TOO_BIG);
    }
    if (length == 3 && next() != 0) {
        --at;
        refuse(ASN1S_VALUE_TOO_BIG);
    }
    unsigned value = next(); // the library reads one where there is none, too
    if (length > 1) {
        value = value << 8 | next();
    }
    return value;
}

void ReferenceReader::null(const ReferenceHeader* read) {
    if (read != nullptr) {
        return;
    }
    if (atEnd() || peek() != 5) {
        refuse(ASN1S_TAG_NOT_FOUND);
    }
    ++at;
    if (next() != 0) {
        refuse(ASN1S_INVALID_LENGTH);
    }
}

Octets ReferenceReader::integer(const ReferenceHeader* read) {
    return take(read != nullptr ? read->length : ownLength(2));
}

std::vector<unsigned> ReferenceReader::identifier(const ReferenceHeader* read) {
    const int length = read != nullptr ? read->length : ownLength(6);
    if (length < 1) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    std::vector<unsigned> numbers;
    unsigned number = 0;
    const Octets octets = take(length);
    for (std::size_t i = 0; i < octets.size(); ++i) {
        number = number << 7 | (octets[i] & 0x7Fu);
        if (octets[i] >= 0x80 && i + 1 < octets.size()) {
            continue;
        }
        if (numbers.empty()) {
            numbers = {number < 80 ? number / 40 : 2, number < 80 ? number % 40 : number - 80};
        } else {
            numbers.push_back(number);
        }
        if (numbers.size() == MostArcs && i + 1 < octets.size()) {
            at -= static_cast<unsigned>(octets.size() - i - 1);
            refuse(ASN1S_INVALID_OBJID);
        }
        number = 0;
    }
    return numbers;
}

ReferenceReader::Extent ReferenceReader::extent(const ReferenceHeader& header,
                                                unsigned segmentTag) {
    if (!header.indefinite()) {
        return {static_cast<unsigned>(header.length), static_cast<unsigned>(header.length)};
    }
    const unsigned start = at;
    unsigned room = 0;
    for (;;) {
        const ReferenceHeader segment = this->header();
        if (segment.tag != segmentTag && segment.tag != 0) {
            refuse(ASN1S_BAD_TAG);
        }
        if (segment.tag == 0 && segment.length == 0) {
            const unsigned length = at - 2 - start;
            at = start;
            return {room, length};
        }
        take(segment.length);
        room += static_cast<unsigned>(segment.length);
    }
}

/// The octets of a string, whose segments are primitive OCTET STRINGs where it has any.
Octets ReferenceReader::contentsOf(bool constructed, unsigned room, unsigned length) {
    if (!constructed) {
        if (length > room) {
            refuse(ASN1S_STRING_OVERFLOW);
        }
        return take(static_cast<int>(length));
    }
    Octets all;
    const unsigned start = at;
    while (!ended(start, static_cast<int>(length))) {
        const unsigned left = std::min(length, room - static_cast<unsigned>(all.size()));
        const Octets segment = fixedOctets(left, nullptr, left);
        all.insert(all.end(), segment.begin(), segment.end());
    }
    if (at - start != length) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    return all;
}

void ReferenceReader::close(const ReferenceHeader& header) {
    if (header.constructed && header.indefinite()) {
        endOfContents();
    }
}

Octets ReferenceReader::octetString(const ReferenceHeader* read) {
    const ReferenceHeader header = read != nullptr ? *read : match(4);
    const Extent string = extent(header, 4);
    Octets octets = contentsOf(header.constructed, string.room, string.length);
    close(header);
    return octets;
}

Octets ReferenceReader::text(unsigned tag, const ReferenceHeader* read) {
    const ReferenceHeader header = read != nullptr ? *read : match(tag);
    const Extent string = extent(header, 4);
    Octets octets;
    try {
        octets =
            string.room != 0 ? contentsOf(header.constructed, string.room, string.length) : octets;
    } catch (const Refused&) {
        close(header); // whose failure comes first
        throw;
    }
    close(header);
    return octets;
}

Octets ReferenceReader::wideText(unsigned tag, const ReferenceHeader* read) {
    const ReferenceHeader header = read != nullptr ? *read : match(tag);
    return header.length == 0 ? Octets() : octetString(&header);
}

/// @param otherwise length to go on with where the string's own cannot be read
Octets ReferenceReader::fixedOctets(unsigned capacity, const ReferenceHeader* read,
                                    unsigned otherwise) {
    int length = read != nullptr ? read->length : static_cast<int>(otherwise);
    if (read == nullptr) {
        try {
            length = ownLength(4);
        } catch (const Refused& refused) {
            if (refused.status == ASN1S_TAG_NOT_FOUND) {
                throw;
            }
        }
    }
    if (length < 0) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    if (static_cast<unsigned>(length) > capacity) {
        refuse(ASN1S_STRING_OVERFLOW);
    }
    return contentsOf(read != nullptr && read->constructed, capacity,
                      static_cast<unsigned>(length));
}

/// The octets of a BIT STRING. Of segments only the last one loses its count of unused bits: the
/// library keeps those of the others as data.
Octets ReferenceReader::bits(bool constructed, unsigned capacity, int length, unsigned& count) {
    Octets octets;
    unsigned unused = 0;
    count = 0;
    if (!constructed) {
        if (length == 0) {
            return octets;
        }
        if (length < 0) {
            refuse(ASN1S_INVALID_LENGTH);
        }
        unused = next();
        if (length == 1) {
            if (unused != 0) {
                refuse(ASN1S_INVALID_LENGTH);
            }
            return octets;
        }
        if (unused > 7) {
            refuse(ASN1S_BAD_VALUE);
        }
        if (static_cast<unsigned>(length) - 1 > capacity) {
            refuse(ASN1S_STRING_OVERFLOW);
        }
        octets = take(length - 1);
        count = static_cast<unsigned>(octets.size()) * 8 - unused;
        return octets;
    }
    const unsigned start = at;
    std::size_t last = 0;
    bool lastTold = true; // while there is no segment
    bool toldInFront = false;
    while (!ended(start, length)) {
        int left = match(3).length;
        if (left < 0) {
            refuse(ASN1S_INVALID_LENGTH);
        }
        if (octets.size() + static_cast<unsigned>(left) == capacity + 1) {
            unused = next();
            --left;
            toldInFront = true;
        }
        if (octets.size() + static_cast<unsigned>(left) > capacity) {
            refuse(ASN1S_STRING_OVERFLOW);
        }
        lastTold = toldInFront;
        last = octets.size();
        const Octets segment = take(left);
        octets.insert(octets.end(), segment.begin(), segment.end());
    }
    if (!lastTold) {
        if (last == octets.size()) {
            refuse(ASN1S_INVALID_LENGTH); // the last segment has to bring the count
        }
        unused = octets[last];
        octets.erase(octets.begin() + static_cast<std::ptrdiff_t>(last));
    }
    if (unused > 7) {
        refuse(ASN1S_BAD_VALUE);
    }
    if (octets.empty() && unused != 0) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    if (length != ReferenceHeader::Indefinite && at - start != static_cast<unsigned>(length)) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    count = static_cast<unsigned>(octets.size()) * 8 - unused;
    return octets;
}

Octets ReferenceReader::bitString(const ReferenceHeader* read, unsigned& count) {
    const ReferenceHeader header = read != nullptr ? *read : match(3);
    const Extent string = extent(header, 3);
    Octets octets;
    count = 0;
    if (string.room >= 2) {
        octets = bits(header.constructed, string.room - 1, static_cast<int>(string.length), count);
    } else if (string.room == 1 && next() != 0) {
        refuse(ASN1S_INVALID_LENGTH);
    }
    close(header);
    return octets;
}

Octets ReferenceReader::fixedBits(unsigned capacity, const ReferenceHeader* read, unsigned& count) {
    const int length = read != nullptr ? read->length : ownLength(3);
    return bits(read != nullptr && read->constructed, (capacity + 7) / 8, length, count);
}

Octets ReferenceReader::element() {
    const unsigned start = at;
    try {
        const ReferenceHeader first = header();
        if (first.tag == 0 && first.length == 0) {
            refuse(ASN1S_BAD_VALUE);
        }
        if (!first.indefinite() && static_cast<unsigned>(first.length) > size - at) {
            refuse(ASN1S_BAD_VALUE);
        }
    } catch (const Refused& refused) {
        if (refused.status != ASN1S_END_OF_BUFFER) {
            throw;
        }
        return {};
    }
    at = start;
    try {
        stepOver();
    } catch (const Refused& refused) {
        if (refused.status != ASN1S_END_OF_BUFFER) {
            throw;
        }
    }
    return since(start);
}

} // namespace tests
