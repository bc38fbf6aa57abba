#include "value_parser.h"

#include <algorithm>
#include <cstdio>

#include <brevantis/asn1/text/pem.h>

namespace asn1text {

namespace {

constexpr unsigned OctetBits = 8;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

void trim(OctetStore& magnitude) {
    const auto first = std::find_if(magnitude.begin(), magnitude.end(),
                                    [](unsigned char octet) { return octet != 0; });
    magnitude.erase(magnitude.begin(), first);
}

/// The magnitude of decimal digits, nine of them at a time.
OctetStore magnitudeOf(std::string_view digits) {
    constexpr std::size_t atOnce = 9;
    std::vector<std::uint32_t> limbs; // the lowest one first
    for (std::size_t place = 0; place < digits.size();) {
        std::uint64_t carry = 0;
        std::uint64_t scale = 1;
        for (std::size_t i = 0; i < atOnce && place < digits.size(); ++i, ++place) {
            carry = carry * 10 + static_cast<unsigned>(digits[place] - '0');
            scale *= 10;
        }
        for (std::uint32_t& limb : limbs) {
            carry += limb * scale;
            limb = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0) {
            limbs.push_back(static_cast<std::uint32_t>(carry));
        }
    }
    OctetStore magnitude;
    for (auto limb = limbs.rbegin(); limb != limbs.rend(); ++limb) {
        for (unsigned shift = 32; shift != 0;) {
            shift -= OctetBits;
            magnitude.push_back(static_cast<unsigned char>(*limb >> shift));
        }
    }
    trim(magnitude);
    return magnitude;
}

} // namespace

OctetStore Integer::contents() const {
    OctetStore octets;
    if (magnitude.empty()) {
        octets.push_back(0);
        return octets;
    }
    octets.reserve(magnitude.size() + 1);
    octets.push_back(0);
    octets.insert(octets.end(), magnitude.begin(), magnitude.end());
    if (negative) {
        bool carry = true;
        for (auto octet = octets.rbegin(); octet != octets.rend(); ++octet) {
            *octet = static_cast<unsigned char>(~*octet + (carry ? 1 : 0));
            carry = carry && *octet == 0;
        }
    }
    // The octet in front is one too many where the next one has the sign already.
    if ((octets[1] & 0x80u) == (octets[0] & 0x80u)) {
        octets.erase(octets.begin());
    }
    return octets;
}

bool Integer::within(long long lower, long long upper, long long& number) const {
    if (magnitude.size() > sizeof(std::uint64_t)) {
        return false;
    }
    std::uint64_t size = 0;
    for (const unsigned char octet : magnitude) {
        size = size << OctetBits | octet;
    }
    constexpr std::uint64_t most = std::uint64_t{1} << 63;
    if (size > (negative ? most : most - 1)) {
        return false;
    }
    number = negative ? static_cast<long long>(~size + 1) : static_cast<long long>(size);
    return number >= lower && number <= upper;
}

Integer integerOf(bool negative, std::uint64_t magnitude) {
    Integer integer{negative, {}};
    for (unsigned shift = 64; shift != 0;) {
        shift -= OctetBits;
        integer.magnitude.push_back(static_cast<unsigned char>(magnitude >> shift));
    }
    trim(integer.magnitude);
    return integer;
}

const char* parseInteger(std::string_view text, Integer& integer) {
    // The time that decimal digits take grows with the square of their count.
    constexpr std::size_t mostDigits = 4096;
    constexpr const char* wanted = "a number, or digits in a string as \"12\" or \"-0x0c\"";
    integer = {};
    if (!text.empty() && text[0] == '-') {
        integer.negative = true;
        text.remove_prefix(1);
    }
    if (text.substr(0, 2) == "0x") {
        text.remove_prefix(2);
        std::string digits(text.size() % 2, '0');
        digits += text;
        if (text.empty() || parseHex(digits, integer.magnitude) != nullptr) {
            return wanted;
        }
        trim(integer.magnitude);
    } else {
        if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit)) {
            return wanted;
        }
        if (text.size() > mostDigits) {
            return "at most 4096 decimal digits, or hexadecimal ones";
        }
        integer.magnitude = magnitudeOf(text);
    }
    integer.negative = integer.negative && !integer.magnitude.empty();
    return nullptr;
}

const char* parseHex(std::string_view text, OctetStore& octets) {
    return readHex(text, octets) ? nullptr : "hexadecimal digits, two an octet";
}

const char* encodeCharacters(std::string_view utf8, CharacterCoding coding, OctetStore& octets) {
    octets.clear();
    const void* const start = utf8.data();
    Octets rest(static_cast<const unsigned char*>(start), utf8.size());
    if (coding == CharacterCoding::Utf8) {
        octets.assign(rest.begin(), rest.end());
        return nullptr;
    }
    const auto put = [&](std::uint32_t code, unsigned bits) {
        for (unsigned shift = bits; shift != 0;) {
            shift -= OctetBits;
            octets.push_back(static_cast<unsigned char>(code >> shift));
        }
    };
    while (!rest.empty()) {
        const Character next = characterAt(rest, CharacterCoding::Utf8);
        rest = rest.subspan(next.size);
        if (coding == CharacterCoding::Utf32) {
            put(next.code, 32);
        } else if (coding == CharacterCoding::Latin1) {
            if (next.code > 0xFF) {
                return "characters up to U+00FF";
            }
            put(next.code, 8);
        } else if (next.code < 0x10000) {
            put(next.code, 16);
        } else {
            put(0xD800 + ((next.code - 0x10000) >> 10), 16);
            put(0xDC00 + (next.code & 0x3FF), 16);
        }
    }
    return nullptr;
}

std::string inQuotes(std::string_view text) {
    constexpr std::size_t most = 40;
    std::string result = "\"";
    for (const char character : text.substr(0, most)) {
        if (character >= ' ' && character <= '~' && character != '"' && character != '\\') {
            result += character;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(character));
            result += escape;
        }
    }
    return result + (text.size() > most ? "...\"" : "\"");
}

} // namespace asn1text
