#include <brevantis/asn1/asn1data/revocation_list.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "entry_reader.h"

namespace asn1data {

using namespace revocation_list;

namespace {

/// id_ce_reasonCode and id_ce_certificateIssuer, encoded.
constexpr unsigned char ReasonCode[] = {0x55, 0x1D, 0x15};
constexpr unsigned char CertificateIssuer[] = {0x55, 0x1D, 0x1D};

bool is(const OctetSpan& identifier, const unsigned char (&expected)[3]) {
    return identifier.size == sizeof expected &&
           std::memcmp(identifier.data, expected, sizeof expected) == 0;
}

int readReason(const OctetSpan& value, int& reason) {
    const unsigned char* position = value.data;
    OctetSpan contents;
    const int status =
        takeElement(position, value.data + value.size, EnumeratedOctet, 0xFF, contents);
    if (status != ASN1S_SUCCESS) {
        // No octets are none of an element here, as for every open value.
        return status == ASN1S_MISSING_ELEMENT ? ASN1S_END_OF_BUFFER : status;
    }
    if (contents.size == 0) { // X.690, 8.3.1: one octet or more
        return ASN1S_INVALID_LENGTH;
    }
    if (contents.size > 4) {
        return ASN1S_VALUE_TOO_BIG;
    }
    std::uint32_t number = (contents.data[0] & 0x80) != 0 ? 0xFFFFFFFF : 0;
    for (std::size_t i = 0; i < contents.size; ++i) {
        number = number << 8 | contents.data[i];
    }
    constexpr std::uint32_t aACompromise = 10;
    if (number > aACompromise) {
        return ASN1S_INVALID_ENUM;
    }
    reason = static_cast<int>(number);
    return ASN1S_SUCCESS;
}

/// Whether contents octets of an OBJECT IDENTIFIER (X.690, 8.19) are those of @p identifier.
bool encodes(const OctetSpan& octets, const ASN1OBJID& identifier) {
    if (identifier.numids < 2 || identifier.numids > ASN1MaxSubIds) {
        return false;
    }
    std::size_t place = 0;
    for (unsigned i = 1; i < identifier.numids; ++i) {
        // The first two arcs share a number.
        std::uint64_t expected = identifier.subid[i];
        expected += i == 1 ? std::uint64_t{identifier.subid[0]} * 40 : 0;
        std::uint64_t number = 0;
        bool more = true;
        while (more) {
            if (place == octets.size || number >> 33 != 0) {
                return false;
            }
            number = number << 7 | (octets.data[place] & 0x7FU);
            more = (octets.data[place++] & 0x80) != 0;
        }
        if (number != expected) {
            return false;
        }
    }
    return place == octets.size;
}

/// Reads an element and moves behind it.
/// @param element receives the element with its header
int takeWhole(const unsigned char*& position, const unsigned char* end,
              unsigned char identifierOctet, unsigned mask, OctetSpan& element) {
    const unsigned char* const start = position;
    OctetSpan contents;
    const int status = takeElement(position, end, identifierOctet, mask, contents);
    element = {start, distance(start, position)};
    return status;
}

int takeWholeTime(const unsigned char*& position, const unsigned char* end, OctetSpan& element) {
    const unsigned char* const start = position;
    OctetSpan contents;
    const int status = takeTime(position, end, contents);
    element = {start, distance(start, position)};
    return status;
}

} // namespace

namespace revocation_list {

LongLength readLongLength(const unsigned char* position, const unsigned char* end) noexcept {
    // X.690, 8.1.3.5, with more octets than the number needs tolerated.
    const unsigned count = *position++ & 0x7FU;
    if (count == 0 || count > sizeof(std::uint64_t)) {
        return {ASN1S_INVALID_LENGTH, 0, position};
    }
    if (count > distance(position, end)) {
        return {ASN1S_END_OF_BUFFER, 0, position};
    }
    std::uint64_t length = 0;
    for (unsigned i = 0; i < count; ++i) {
        length = length << 8 | *position++;
    }
    return {ASN1S_SUCCESS, static_cast<std::size_t>(length), position};
}

int takeExtension(const unsigned char*& position, const unsigned char* end,
                  EntryExtension& extension) noexcept {
    OctetSpan contents;
    if (const int status = takeElement(position, end, SequenceOctet, FormIgnored, contents)) {
        return status;
    }
    const unsigned char* next = contents.data;
    if (const int status =
            takeElement(next, position, ObjectIdentifierOctet, 0xFF, extension.identifier)) {
        return status;
    }
    extension.critical = false;
    if (next != position && *next == BooleanOctet) {
        OctetSpan critical;
        if (const int status = takeElement(next, position, BooleanOctet, 0xFF, critical)) {
            return status;
        }
        if (critical.size != 1) { // X.690, 8.2.1
            return ASN1S_INVALID_LENGTH;
        }
        extension.critical = critical.data[0] != 0; // X.690, 8.2.2
    }
    if (next != position && *next == SegmentedOctet) {
        return ASN1S_NOT_SUPPORTED; // segments have no place where the value stands as a whole
    }
    if (const int status = takeElement(next, position, OctetStringOctet, 0xFF, extension.value)) {
        return status;
    }
    return next == position ? ASN1S_SUCCESS : ASN1S_EXTRA_ELEMENT;
}

KnownExtensions readExtensions(OctetSpan extensions) noexcept {
    KnownExtensions known{ASN1S_CONSTRAINT_VIOLATION, RevokedEntry::NoReason, {}};
    const unsigned char* position = extensions.data;
    const unsigned char* const end = position + extensions.size;
    while (position != end) {
        EntryExtension extension;
        known.status = takeExtension(position, end, extension);
        if (known.status == ASN1S_SUCCESS && is(extension.identifier, ReasonCode)) {
            int reason = RevokedEntry::NoReason;
            known.status = readReason(extension.value, reason);
            known.reason = known.reason == RevokedEntry::NoReason ? reason : known.reason;
        } else if (known.status == ASN1S_SUCCESS && is(extension.identifier, CertificateIssuer) &&
                   known.certificateIssuer.data == nullptr) {
            known.certificateIssuer = extension.value;
        }
        if (known.status != ASN1S_SUCCESS) {
            break;
        }
    }
    return known;
}

} // namespace revocation_list

int RevocationList::open(const unsigned char* message, std::size_t size) noexcept {
    *this = RevocationList();
    if (message == nullptr || size < 2) {
        return ASN1S_END_OF_BUFFER;
    }
    const unsigned char* position = message;
    const unsigned char* end = message + size;
    constexpr unsigned char constructedSequence = 0x30;
    constexpr unsigned char indefinite = 0x80; // X.690, 8.1.3.6
    int status = ASN1S_SUCCESS;
    if (message[0] == constructedSequence && message[1] == indefinite) {
        position += 2;
    } else {
        OctetSpan contents;
        status = takeElement(position, end, SequenceOctet, FormIgnored, contents);
        end = position;
        position = contents.data;
    }
    if (status == ASN1S_SUCCESS) {
        status = readSigned(position, end);
    }
    if (status != ASN1S_SUCCESS) {
        *this = RevocationList();
        return status;
    }
    octets_ = {message, distance(message, end)};
    return ASN1S_SUCCESS;
}

int RevocationList::readSigned(const unsigned char* position, const unsigned char* end) noexcept {
    const unsigned char* const start = position;
    OctetSpan contents;
    if (const int status = takeElement(position, end, SequenceOctet, FormIgnored, contents)) {
        return status;
    }
    tbsCertList_ = {start, distance(start, position)};
    end = position;
    position = contents.data;

    OctetSpan unread;
    if (position != end && *position == IntegerOctet) {
        if (const int status = takeElement(position, end, IntegerOctet, 0xFF, unread)) {
            return status;
        }
    }
    if (const int status = takeElement(position, end, SequenceOctet, FormIgnored, unread)) {
        return status;
    }
    if (const int status = takeWhole(position, end, NameOctet, 0xFF, issuer_)) {
        return status;
    }
    if (const int status = takeWholeTime(position, end, thisUpdate_)) {
        return status;
    }
    // RFC 5280 wants a nextUpdate, X.509 does not.
    if (position != end && isTime(*position)) {
        if (const int status = takeWholeTime(position, end, nextUpdate_)) {
            return status;
        }
    }
    if (position != end && (*position & FormIgnored) == SequenceOctet) {
        if (const int status = takeElement(position, end, SequenceOctet, FormIgnored, entries_)) {
            return status;
        }
    }
    if (position != end && (*position & FormIgnored) == ExtensionsOctet) {
        OctetSpan tagged;
        if (const int status = takeElement(position, end, ExtensionsOctet, FormIgnored, tagged)) {
            return status;
        }
        crlExtensions_ = tagged;
    }
    return position == end ? ASN1S_SUCCESS : ASN1S_EXTRA_ELEMENT;
}

RevokedEntries::RevokedEntries(const RevocationList& list) noexcept
    : position_(list.entries().data), end_(position_ + list.entries().size) {}

bool RevokedEntries::next(RevokedEntry& entry) noexcept {
    if (position_ == end_ || status_ != ASN1S_SUCCESS) {
        return false;
    }
    status_ = takeEntry(position_, end_, entry);
    if (status_ != ASN1S_SUCCESS) {
        return false;
    }
    if (entry.certificateIssuer.data != nullptr) {
        issuer_ = entry.certificateIssuer;
    } else if (issuer_.data != nullptr) {
        entry.certificateIssuer = issuer_;
        entry.issuerInherited = true;
    }
    return true;
}

EntryExtensions::EntryExtensions(const RevokedEntry& entry) noexcept
    : position_(entry.extensions.data), end_(position_ + entry.extensions.size) {}

bool EntryExtensions::next(EntryExtension& extension) noexcept {
    if (position_ == end_ || status_ != ASN1S_SUCCESS) {
        return false;
    }
    status_ = takeExtension(position_, end_, extension);
    return status_ == ASN1S_SUCCESS;
}

int findEntryExtension(const RevokedEntry& entry, const ASN1OBJID& identifier,
                       EntryExtension& extension) noexcept {
    EntryExtensions extensions(entry);
    while (extensions.next(extension)) {
        if (encodes(extension.identifier, identifier)) {
            return ASN1S_SUCCESS;
        }
    }
    return ASN1S_MISSING_ELEMENT;
}

} // namespace asn1data
