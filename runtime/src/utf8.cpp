#include <brevantis/asn1/runtime/utf8.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string>

#include <brevantis/asn1/runtime/status.h>

#include "heap_block.h"

const unsigned char encoding_byte[5] = {0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

namespace {

unsigned int octetAt(const char* text) noexcept {
    return static_cast<unsigned char>(*text);
}

/// Octets of the sequence that @p lead begins, 0 when it cannot begin one.
unsigned int sequenceLength(unsigned int lead) noexcept {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC0 || lead > 0xFD) {
        return 0;
    }
    unsigned int length = 2;
    while (length < 6 && lead >= encoding_byte[length - 1]) {
        ++length;
    }
    return length;
}

/// Bits of the value that the lead octet of a sequence carries.
unsigned int leadBits(unsigned int lead, unsigned int length) noexcept {
    return length == 1 ? lead : lead & ((0x80u >> length) - 1);
}

bool isContinuation(unsigned int octet) noexcept {
    return (octet & 0xC0) == 0x80;
}

unsigned int withContinuation(unsigned int value, unsigned int octet) noexcept {
    return value << 6 | (octet & 0x3F);
}

/// Writes a sequence of @p length octets, 2 or more.
void writeSequence(unsigned int value, unsigned int length, char* target) noexcept {
    for (unsigned int i = length - 1; i > 0; --i) {
        target[i] = static_cast<char>(0x80 | (value & 0x3F));
        value >>= 6;
    }
    target[0] = static_cast<char>(encoding_byte[length - 2] | value);
}

/// Results are `int`, so no more than that is ever written.
std::size_t countable(std::size_t capacity) noexcept {
    return capacity < INT_MAX ? capacity : static_cast<std::size_t>(INT_MAX);
}

/// Whether text has no octet above 127; a word at a time.
bool isAscii(const void* text, std::size_t size) noexcept {
    const auto* const octets = static_cast<const unsigned char*>(text);
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t seen = 0;
    std::size_t i = 0;
    for (; i + sizeof seen <= size; i += sizeof seen) {
        std::uint64_t word = 0;
        std::memcpy(&word, octets + i, sizeof word);
        seen |= word;
    }
    for (; i < size; ++i) {
        seen |= octets[i];
    }
    return (seen & highBits) == 0;
}

int toInt(std::size_t count) noexcept {
    return count <= INT_MAX ? static_cast<int>(count) : static_cast<int>(ASN1S_BUFFER_OVERFLOW);
}

} // namespace

unsigned int rtUTF8CharSize(unsigned int value) noexcept {
    return value < 0x80        ? 1
           : value < 0x800     ? 2
           : value < 0x10000   ? 3
           : value < 0x200000  ? 4
           : value < 0x4000000 ? 5
                               : 6;
}

int rtUTF8EncodeChar(unsigned int value, char* target, std::size_t size) noexcept {
    if (value < 0x80) {
        *target = static_cast<char>(value);
        return 1;
    }
    if (value > 0x7FFFFFFF) {
        return ASN1S_INVALID_UTF8;
    }
    const unsigned int length = rtUTF8CharSize(value);
    if (size < length) {
        return ASN1S_BUFFER_OVERFLOW;
    }
    writeSequence(value, length, target);
    return static_cast<int>(length);
}

int rtUTF8DecodeChar(ASN1CTXT* /*ctxt*/, const char* text, std::size_t* size) noexcept {
    if (text == nullptr || size == nullptr || *size == 0) {
        return ASN1S_INVALID_UTF8;
    }
    const unsigned int lead = octetAt(text);
    const unsigned int length = sequenceLength(lead);
    if (length == 0 || length > *size) {
        return ASN1S_INVALID_UTF8;
    }
    unsigned int value = leadBits(lead, length);
    for (unsigned int i = 1; i < length; ++i) {
        const unsigned int octet = octetAt(text + i);
        if (!isContinuation(octet)) {
            return ASN1S_INVALID_UTF8;
        }
        value = withContinuation(value, octet);
    }
    *size = length;
    return static_cast<int>(value);
}

int rtUTF8Len(const char* text) noexcept {
    if (text == nullptr) {
        return 0;
    }
    std::size_t count = std::strlen(text);
    if (isAscii(text, count)) {
        return toInt(count);
    }
    count = 0;
    while (*text != '\0') {
        const unsigned int length = sequenceLength(octetAt(text));
        if (length == 0) {
            return ASN1S_INVALID_UTF8;
        }
        ++text;
        for (unsigned int i = 1; i < length && *text != '\0'; ++i) {
            ++text;
        }
        ++count;
    }
    return toInt(count);
}

void rtUTF8CountPiece(ASN1UTF8Count* count, const unsigned char* octets,
                      std::size_t size) noexcept {
    if (!count->ended && count->missing == 0 && isAscii(octets, size) &&
        std::memchr(octets, 0, size) == nullptr) {
        count->characters += static_cast<int>(size);
        return;
    }
    for (std::size_t i = 0; i < size && !count->ended; ++i) {
        if (octets[i] == 0) {
            count->ended = true;
        } else if (count->missing != 0) {
            --count->missing;
        } else if (const unsigned int length = sequenceLength(octets[i])) {
            ++count->characters;
            count->missing = length - 1;
        } else {
            count->characters = ASN1S_INVALID_UTF8;
            count->ended = true;
        }
    }
}

std::size_t rtUTF8LenBytes(const char* text) noexcept {
    return text != nullptr ? std::strlen(text) : 0;
}

char* rtUTF8Strdup(ASN1CTXT* ctxt, const char* text) noexcept {
    return text != nullptr ? runtime_detail::copyBlock(ctxt, text, std::strlen(text) + 1) : nullptr;
}

int rtUTF8ToWCS(ASN1CTXT* /*ctxt*/, const char* text, wchar_t* target,
                std::size_t capacity) noexcept {
    if (text == nullptr) {
        return 0;
    }
    const std::size_t limit = countable(capacity);
    std::size_t written = 0;
    while (*text != '\0') {
        if (target != nullptr && written >= limit) {
            return ASN1S_BUFFER_OVERFLOW;
        }
        const unsigned int lead = octetAt(text++);
        const unsigned int length = sequenceLength(lead);
        if (length == 0) {
            return ASN1S_INVALID_UTF8;
        }
        unsigned int value = leadBits(lead, length);
        // Kept: the bits that are there make the last character. Programs cut texts to a fixed
        // size.
        for (unsigned int i = 1; i < length && *text != '\0'; ++i) {
            const unsigned int octet = octetAt(text++);
            if (!isContinuation(octet)) {
                return ASN1S_INVALID_UTF8;
            }
            value = withContinuation(value, octet);
        }
        if (target != nullptr) {
            target[written++] = static_cast<wchar_t>(value);
        }
    }
    return static_cast<int>(written);
}

int rtWCSToUTF8(ASN1CTXT* /*ctxt*/, const wchar_t* text, std::size_t count, char* target,
                std::size_t size) noexcept {
    const std::size_t limit = countable(size);
    std::size_t written = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::wint_t value = std::char_traits<wchar_t>::to_int_type(text[i]);
        if (value > 0x7FFFFFFF) {
            return ASN1S_INVALID_UTF8;
        }
        const unsigned int length = rtUTF8CharSize(value);
        if (length == 1) {
            if (written >= limit) {
                return ASN1S_BUFFER_OVERFLOW;
            }
            target[written] = static_cast<char>(value);
        } else {
            if (limit <= written + length) {
                return ASN1S_BUFFER_OVERFLOW;
            }
            writeSequence(value, length, target + written);
        }
        written += length;
    }
    return static_cast<int>(written);
}
