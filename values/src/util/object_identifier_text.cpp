#include <brevantis/asn1/values/util/object_identifier_text.h>

#include <cctype>
#include <cstdlib>
#include <cstring>

#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

namespace {

bool hasTopBit(char character) {
    return (static_cast<unsigned char>(character) & 0x80u) != 0;
}

/// Steps over white space.
/// @return the first other character; null in front of one with the top bit set
const char* skipBlanks(const char* text) {
    for (;;) {
        if (hasTopBit(*text)) {
            return nullptr;
        }
        if (std::isspace(static_cast<unsigned char>(*text)) == 0) {
            return text;
        }
        ++text;
    }
}

/// Reads one arc and the blanks behind it.
/// @return what stands there; null when there is no arc, or no room for one more
const char* readArc(const char* text, ASN1OBJID& oid) {
    char* end = nullptr;
    const unsigned long number = std::strtoul(text, &end, 10);
    if (end == text || oid.numids >= ASN1MaxSubIds) {
        return nullptr;
    }
    oid.subid[oid.numids++] = static_cast<unsigned>(number);
    return skipBlanks(end);
}

} // namespace

unsigned str2oid(const char* text, ASN1OBJID* oid) {
    oid->numids = 0;
    if (text == nullptr) {
        return 1;
    }
    for (const char* dot = std::strchr(text, '.'); dot != nullptr; dot = std::strchr(text, '.')) {
        const char* next = readArc(text, *oid);
        if (next == nullptr || *next != '.') {
            return 1;
        }
        text = dot + 1;
    }
    const char* rest = readArc(text, *oid);
    return rest != nullptr && *rest == '\0' && oid->subid[oid->numids - 1] != 0xFFFFFFFFu ? 0 : 1;
}

bool oid2str(CBlob& text, const ASN1OBJID* oid) {
    text.resize_to(rtOidToStrLen(oid) + 1);
    // Digits are characters of one octet, so the octets of the blob are the text.
    rtOidToStr(oid, static_cast<char*>(static_cast<void*>(text.pbData())), text.cbData());
    return true;
}

ASN1OBJID toASN1OBJID(const char* text) {
    ASN1OBJID oid{};
    if (str2oid(text, &oid) != 0) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    return oid;
}

CStringProxy toOID(const ASN1OBJID& oid) {
    constexpr std::size_t longestArc = 11; // 4294967295 and a dot, or the terminator
    char text[ASN1MaxSubIds * longestArc];
    rtOidToStr(&oid, text, sizeof text);
    return CStringProxy(text);
}

} // namespace Brevantis::ASN1
