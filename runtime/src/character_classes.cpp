#include <brevantis/asn1/runtime/character_classes.h>

namespace {

constexpr unsigned char classesOf(unsigned int c) {
    if (c >= 128) {
        return 0;
    }
    if (c == ' ') {
        return ASN1CharWhiteSpace | ASN1CharBlank;
    }
    if (c >= '\t' && c <= '\r') {
        return ASN1CharControl | ASN1CharWhiteSpace;
    }
    if (c < ' ' || c == 127) {
        return ASN1CharControl;
    }
    if (c >= '0' && c <= '9') {
        return ASN1CharDigit;
    }
    const bool upper = c >= 'A' && c <= 'Z';
    const bool lower = c >= 'a' && c <= 'z';
    if (!upper && !lower) {
        return ASN1CharPunctuation;
    }
    const unsigned int ordinal = (c | 0x20u) - 'a';
    return static_cast<unsigned char>((upper ? ASN1CharUpperCase : ASN1CharLowerCase) |
                                      (ordinal < 6 ? ASN1CharHexadecimal : 0));
}

constexpr std::array<unsigned char, 256> makeTable() {
    std::array<unsigned char, 256> table{};
    for (unsigned int c = 0; c < table.size(); ++c) {
        table[c] = classesOf(c);
    }
    return table;
}

constexpr std::array<unsigned char, 256> Table = makeTable();

static_assert(Table['0'] == 0x04 && Table['9'] == 0x04 && Table['/'] == 0x10 && Table[':'] == 0x10);
static_assert(Table['F'] == 0x41 && Table['G'] == 0x01 && Table['f'] == 0x42 && Table['g'] == 0x02);
static_assert(Table['@'] == 0x10 && Table['['] == 0x10 && Table['`'] == 0x10 && Table['{'] == 0x10);
static_assert(Table[' '] == 0x88 && Table[9] == 0x28 && Table[13] == 0x28 && Table[14] == 0x20);
static_assert(Table[8] == 0x20 && Table[127] == 0x20 && Table[128] == 0 && Table[255] == 0);

} // namespace

const std::array<unsigned char, 256> rtCtypeTable = Table;
