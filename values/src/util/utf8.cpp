#include <brevantis/asn1/values/util/utf8.h>

#include <brevantis/support/error.h>

namespace Brevantis::ASN1 {

namespace {

bool isCharacter(unsigned long character) {
    return character < 0xD800 || (character > 0xDFFF && character <= 0x10FFFF);
}

} // namespace

std::string toUtf8(std::wstring_view text) {
    std::string octets;
    octets.reserve(text.size());
    for (const wchar_t each : text) {
        const auto character = static_cast<unsigned long>(each);
        if (!isCharacter(character)) {
            ATL::AtlThrowImpl(E_INVALIDARG);
        }
        const auto tail = [&](unsigned shift) {
            octets += static_cast<char>(0x80 | (character >> shift & 0x3F));
        };
        if (character < 0x80) {
            octets += static_cast<char>(character);
        } else if (character < 0x800) {
            octets += static_cast<char>(0xC0 | character >> 6);
            tail(0);
        } else if (character < 0x10000) {
            octets += static_cast<char>(0xE0 | character >> 12);
            tail(6);
            tail(0);
        } else {
            octets += static_cast<char>(0xF0 | character >> 18);
            tail(12);
            tail(6);
            tail(0);
        }
    }
    return octets;
}

std::wstring fromUtf8(std::string_view text) {
    std::wstring characters;
    characters.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i]);
        const unsigned count = first < 0x80   ? 1
                               : first < 0xC2 ? 0 // within a character, or longer than needed
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
        if (count == 0 || text.size() - i < count) {
            ATL::AtlThrowImpl(E_INVALIDARG);
        }
        unsigned long character = count == 1 ? first : first & (0x7Fu >> count);
        for (unsigned k = 1; k < count; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) {
                ATL::AtlThrowImpl(E_INVALIDARG);
            }
            character = character << 6 | (next & 0x3Fu);
        }
        const bool longerThanNeeded =
            (count == 3 && character < 0x800) || (count == 4 && character < 0x10000);
        if (longerThanNeeded || !isCharacter(character)) {
            ATL::AtlThrowImpl(E_INVALIDARG);
        }
        characters += static_cast<wchar_t>(character);
        i += count;
    }
    return characters;
}

} // namespace Brevantis::ASN1
