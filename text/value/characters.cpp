#include <brevantis/asn1/text/characters.h>

namespace asn1text {

namespace {

bool isSurrogate(std::uint32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}
bool isHighSurrogate(std::uint32_t code) {
    return code >= 0xD800 && code <= 0xDBFF;
}

unsigned utf8Size(unsigned char lead) {
    if (lead < 0xC2 || lead > 0xF4) {
        return 1;
    }
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
}

Character utf8At(Octets octets) {
    const unsigned char lead = octets[0];
    if (lead < 0x80) {
        return {lead, 1};
    }
    const unsigned size = utf8Size(lead);
    if (size == 1 || octets.size() < size) {
        return {NoCharacter, 1};
    }
    std::uint32_t code = lead & (0x7Fu >> size);
    for (unsigned i = 1; i < size; ++i) {
        if ((octets[i] & 0xC0u) != 0x80) {
            return {NoCharacter, 1};
        }
        code = code << 6 | (octets[i] & 0x3Fu);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool valid = code >= smallest[size] && code <= 0x10FFFF && !isSurrogate(code);
    return valid ? Character{code, size} : Character{NoCharacter, 1};
}

std::uint32_t number(Octets octets, std::size_t first, unsigned size) {
    std::uint32_t result = 0;
    for (unsigned i = 0; i < size; ++i) {
        result = result << 8 | octets[first + i];
    }
    return result;
}

Character utf16At(Octets octets) {
    if (octets.size() < 2) {
        return {NoCharacter, 1};
    }
    const std::uint32_t high = number(octets, 0, 2);
    if (!isSurrogate(high)) {
        return {high, 2};
    }
    const std::uint32_t low = octets.size() >= 4 ? number(octets, 2, 2) : 0;
    if (!isHighSurrogate(high) || low < 0xDC00 || low > 0xDFFF) {
        return {NoCharacter, 2};
    }
    return {0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00), 4};
}

Character utf32At(Octets octets) {
    if (octets.size() < 4) {
        return {NoCharacter, 1};
    }
    const std::uint32_t code = number(octets, 0, 4);
    return {code > 0x10FFFF || isSurrogate(code) ? NoCharacter : code, 4};
}

} // namespace

unsigned neededSize(Octets octets, CharacterCoding coding) noexcept {
    switch (coding) {
    case CharacterCoding::Utf8:
        return utf8Size(octets[0]);
    case CharacterCoding::Utf16:
        return octets.size() >= 2 && isHighSurrogate(number(octets, 0, 2)) ? 4 : 2;
    case CharacterCoding::Utf32:
        return 4;
    case CharacterCoding::Latin1:
        break;
    }
    return 1;
}

Character characterAt(Octets octets, CharacterCoding coding) noexcept {
    switch (coding) {
    case CharacterCoding::Utf8:
        return utf8At(octets);
    case CharacterCoding::Utf16:
        return utf16At(octets);
    case CharacterCoding::Utf32:
        return utf32At(octets);
    case CharacterCoding::Latin1:
        break;
    }
    return {octets[0], 1};
}

void appendUtf8(std::string& text, std::uint32_t code) {
    const auto put = [&](std::uint32_t octet) { text += static_cast<char>(octet); };
    if (code < 0x80) {
        put(code);
        return;
    }
    if (code < 0x800) {
        put(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            put(0xE0 | code >> 12);
        } else {
            put(0xF0 | code >> 18);
            put(0x80 | (code >> 12 & 0x3F));
        }
        put(0x80 | (code >> 6 & 0x3F));
    }
    put(0x80 | (code & 0x3F));
}

std::string toUtf8(Octets octets, CharacterCoding coding) {
    constexpr std::uint32_t replacement = 0xFFFD;
    std::string text;
    for (std::size_t place = 0; place < octets.size();) {
        const Character character = characterAt(octets.subspan(place), coding);
        appendUtf8(text, character.code == NoCharacter ? replacement : character.code);
        place += character.size;
    }
    return text;
}

} // namespace asn1text
