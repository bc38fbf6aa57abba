#ifndef BREVANTIS_ASN1DATA_REVOCATION_LIST_ENTRY_READER_H
#define BREVANTIS_ASN1DATA_REVOCATION_LIST_ENTRY_READER_H

#include <brevantis/asn1/asn1data/revocation_list.h>
#include <brevantis/asn1/runtime/status.h>

// Reading elements between two pointers, without a context: the sizes of a context end at 2 GB.

namespace asn1data::revocation_list {

/// Identifier octets of what stands in a list.
enum : unsigned char {
    BooleanOctet = 0x01,
    IntegerOctet = 0x02,
    OctetStringOctet = 0x04,
    ObjectIdentifierOctet = 0x06,
    EnumeratedOctet = 0x0A,
    SegmentedOctet = 0x24, ///< OCTET STRING in constructed form
    SequenceOctet = 0x10,
    UtcTimeOctet = 0x17,
    GeneralizedTimeOctet = 0x18,
    NameOctet = 0x30,
    ExtensionsOctet = 0x80,
    FormIgnored = 0xDF
};

inline std::size_t distance(const unsigned char* first, const unsigned char* last) noexcept {
    return static_cast<std::size_t>(last - first);
}

/// A length, and where the contents begin.
struct LongLength {
    int status;
    std::size_t length;
    const unsigned char* contents;
};

/// Reads a length of the long form.
/// @param position of its first octet
/// @return ASN1S_INVALID_LENGTH for the indefinite form and for more than 8 octets
LongLength readLongLength(const unsigned char* position, const unsigned char* end) noexcept;

/// Moves from the identifier octet, which has been looked at, to the contents.
/// @param length receives the length of the contents, which end at @p end or before
inline int readHeader(const unsigned char*& position, const unsigned char* end,
                      std::size_t& length) noexcept {
    ++position;
    if (position == end) {
        return ASN1S_END_OF_BUFFER;
    }
    if (*position < 0x80) {
        length = *position++;
    } else {
        const LongLength read = readLongLength(position, end);
        if (read.status != ASN1S_SUCCESS) {
            return read.status;
        }
        length = read.length;
        position = read.contents;
    }
    return length <= distance(position, end) ? ASN1S_SUCCESS : ASN1S_INVALID_LENGTH;
}

/// Reads a mandatory element and moves behind it.
/// @param mask of the bits of its identifier octet that count
/// @param contents receives the contents
inline int takeElement(const unsigned char*& position, const unsigned char* end,
                       unsigned char identifierOctet, unsigned mask, OctetSpan& contents) noexcept {
    if (position == end) {
        return ASN1S_MISSING_ELEMENT;
    }
    if ((*position & mask) != identifierOctet) {
        return ASN1S_TAG_NOT_FOUND;
    }
    if (const int status = readHeader(position, end, contents.size)) {
        return status;
    }
    contents.data = position;
    position += contents.size;
    return ASN1S_SUCCESS;
}

inline bool isTime(unsigned char identifierOctet) noexcept {
    return identifierOctet == UtcTimeOctet || identifierOctet == GeneralizedTimeOctet;
}

/// Reads a mandatory Time and moves behind it.
inline int takeTime(const unsigned char*& position, const unsigned char* end,
                    OctetSpan& contents) noexcept {
    if (position == end) {
        return ASN1S_MISSING_ELEMENT;
    }
    return isTime(*position) ? takeElement(position, end, *position, 0xFF, contents)
                             : ASN1S_INVALID_CHOICE;
}

/// Reads an extension and moves behind it.
int takeExtension(const unsigned char*& position, const unsigned char* end,
                  EntryExtension& extension) noexcept;

/// What an entry tells of its extensions.
struct KnownExtensions {
    int status;
    int reason;
    OctetSpan certificateIssuer;
};

/// Goes through the extensions of an entry.
/// @param extensions contents octets of crlEntryExtensions
KnownExtensions readExtensions(OctetSpan extensions) noexcept;

/// Reads an entry and moves behind it. Of certificateIssuer it knows the entry's own. What is
/// called from here takes and gives values, so that callers need not keep in memory what they do
/// not look at.
inline int takeEntry(const unsigned char*& position, const unsigned char* end,
                     RevokedEntry& entry) noexcept {
    const unsigned char* const start = position;
    OctetSpan contents;
    if (const int status = takeElement(position, end, SequenceOctet, FormIgnored, contents)) {
        return status;
    }
    entry.octets = {start, distance(start, position)};
    const unsigned char* next = contents.data;
    if (const int status = takeElement(next, position, IntegerOctet, 0xFF, entry.serialNumber)) {
        return status;
    }
    entry.generalizedTime = next != position && *next == GeneralizedTimeOctet;
    if (const int status = takeTime(next, position, entry.revocationDate)) {
        return status;
    }
    entry.reason = RevokedEntry::NoReason;
    entry.issuerInherited = false;
    entry.certificateIssuer = {};
    entry.extensions = {};
    if (next == position) {
        return ASN1S_SUCCESS;
    }
    if ((*next & FormIgnored) != SequenceOctet) {
        return ASN1S_EXTRA_ELEMENT;
    }
    if (const int status =
            takeElement(next, position, SequenceOctet, FormIgnored, entry.extensions)) {
        return status;
    }
    if (next != position) {
        return ASN1S_EXTRA_ELEMENT;
    }
    const KnownExtensions known = readExtensions(entry.extensions);
    entry.reason = known.reason;
    entry.certificateIssuer = known.certificateIssuer;
    return known.status;
}

} // namespace asn1data::revocation_list

#endif
