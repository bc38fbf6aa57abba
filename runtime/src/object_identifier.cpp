#include <brevantis/asn1/runtime/object_identifier.h>

#include <cstdlib>
#include <cstring>

namespace {

/// Number of arcs that may be touched in a record that claims @p numids of them.
constexpr unsigned int usableArcs(unsigned int numids) noexcept {
    return numids < ASN1MaxSubIds ? numids : static_cast<unsigned int>(ASN1MaxSubIds);
}

/// Stores the count and the arcs in use.
template <class Record, class Arc>
void storeArcs(Record& target, unsigned int numids, const Arc* arcs) noexcept {
    target.numids = numids;
    if (arcs != target.subid && numids != 0) {
        std::memcpy(target.subid, arcs, usableArcs(numids) * sizeof(Arc));
    }
}

/// Places of the widest arc, 4294967295.
constexpr std::size_t MaxArcDigits = 10;

std::size_t decimalDigits(unsigned int arc) noexcept {
    std::size_t digits = 1;
    for (; arc >= 10; arc /= 10) {
        ++digits;
    }
    return digits;
}

} // namespace

ASN1TObjId::ASN1TObjId(unsigned char count, const unsigned int* arcs) noexcept {
    storeArcs(*this, count, arcs);
}
ASN1TObjId::ASN1TObjId(const ASN1OBJID& other) noexcept {
    storeArcs(*this, other.numids, other.subid);
}
ASN1TObjId::ASN1TObjId(const ASN1TObjId& other) noexcept
    : ASN1TObjId(static_cast<const ASN1OBJID&>(other)) {}
ASN1TObjId& ASN1TObjId::operator=(const ASN1OBJID& other) noexcept {
    storeArcs(*this, other.numids, other.subid);
    return *this;
}
// An assignment to itself copies nothing: its arcs are in place.
ASN1TObjId& ASN1TObjId::operator=(
    const ASN1TObjId& other) noexcept { // NOLINT(bugprone-unhandled-self-assignment)
    return *this = static_cast<const ASN1OBJID&>(other);
}

ASN1TObjId64::ASN1TObjId64(unsigned char count, const long long* arcs) noexcept {
    storeArcs(*this, count, arcs);
}
ASN1TObjId64::ASN1TObjId64(const ASN1OID64& other) noexcept {
    storeArcs(*this, other.numids, other.subid);
}
ASN1TObjId64::ASN1TObjId64(const ASN1TObjId64& other) noexcept
    : ASN1TObjId64(static_cast<const ASN1OID64&>(other)) {}
ASN1TObjId64& ASN1TObjId64::operator=(const ASN1OID64& other) noexcept {
    storeArcs(*this, other.numids, other.subid);
    return *this;
}
ASN1TObjId64& ASN1TObjId64::operator=(
    const ASN1TObjId64& other) noexcept { // NOLINT(bugprone-unhandled-self-assignment)
    return *this = static_cast<const ASN1OID64&>(other);
}

bool operator==(const ASN1OBJID& left, const ASN1OBJID& right) noexcept {
    return left.numids == right.numids &&
           std::memcmp(left.subid, right.subid, usableArcs(left.numids) * sizeof left.subid[0]) ==
               0;
}

void rtSetOID(ASN1OBJID* target, const ASN1OBJID* source) noexcept {
    storeArcs(*target, source->numids, source->subid);
}

int rtCopyOID(ASN1CTXT* /*ctxt*/, const ASN1OBJID* source, ASN1OBJID* target) noexcept {
    if (source == nullptr || target == nullptr) {
        return 0;
    }
    storeArcs(*target, source->numids, source->subid);
    return 1;
}

int rtCmpOIDValue(const char* /*name*/, const ASN1OBJID* first, const ASN1OBJID* second,
                  char* text) noexcept {
    if (*first == *second) {
        return 1;
    }
    *text = '\0';
    return 0;
}

int rtCmpOID(const char* name, const ASN1OBJID* first, const ASN1OBJID* second,
             char* text) noexcept {
    return rtCmpOIDValue(name, first, second, text);
}

int rtOidToStr(const ASN1OBJID* oid, char* text, std::size_t size) noexcept {
    if (size == 0) {
        return 0;
    }
    *text = '\0';
    const unsigned int arcs = usableArcs(oid->numids);
    std::size_t room = size - 1;
    for (unsigned int i = 0; i < arcs; ++i) {
        char piece[MaxArcDigits + 1];
        char* const end = piece + sizeof piece;
        char* begin = end;
        unsigned int rest = oid->subid[i];
        do {
            *--begin = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (i != 0) {
            *--begin = '.';
        }
        const auto length = static_cast<std::size_t>(end - begin);
        if (length > room) {
            return 0;
        }
        std::memcpy(text, begin, length);
        text += length;
        *text = '\0';
        room -= length;
    }
    return arcs == oid->numids ? 1 : 0;
}

std::size_t rtOidToStrLen(const ASN1OBJID* oid) noexcept {
    const unsigned int arcs = usableArcs(oid->numids);
    std::size_t length = arcs != 0 ? arcs - 1 : 0;
    for (unsigned int i = 0; i < arcs; ++i) {
        length += decimalDigits(oid->subid[i]);
    }
    return length;
}

bool rtStrToOid(const char* text, ASN1OBJID* oid) noexcept {
    oid->numids = 0;
    for (;;) {
        if (oid->numids == ASN1MaxSubIds) {
            return false;
        }
        // Kept: what strtoul takes is an arc, with blanks, a sign, or no digit. Programs depend on
        // it. A dot anywhere in the rest makes this arc one that has to end at a dot; without one
        // it is the last and has to end with the text.
        const char expectedEnd = std::strchr(text, '.') != nullptr ? '.' : '\0';
        char* end = nullptr;
        oid->subid[oid->numids++] = static_cast<unsigned int>(std::strtoul(text, &end, 10));
        if (*end != expectedEnd) {
            return false;
        }
        if (expectedEnd == '\0') {
            return true;
        }
        text = end + 1;
    }
}
