#include <climits>
#include <cstring>

#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "big_integer_digits.h"
#include "octet_reader.h"
#include "octet_writer.h"

using namespace runtime_detail;

namespace {

constexpr unsigned char integerTag = 2;

/// The digits of hexadecimal or binary text.
struct Digits {
    const char* text;
    std::size_t count;
    unsigned int bits; ///< bits per digit

    std::size_t perOctet() const noexcept { return 8 / bits; }
    bool fillOctets() const noexcept { return count % perOctet() == 0; }
    /// Whether the digits fill octets and the first bit is set; there must be a digit.
    bool beginWithOne() const noexcept {
        return fillOctets() && digitValue(*text) >> (bits - 1) == 1;
    }
    void drop(std::size_t digits) noexcept {
        text += digits;
        count -= digits;
    }
    void dropLeadingZeros() noexcept {
        while (count != 0 && *text == '0') {
            drop(1);
        }
    }
    /// Drops leading octets of all ones; the digits must fill octets.
    void dropLeadingOnes() noexcept {
        const unsigned int ones = (1u << bits) - 1;
        for (; count != 0; drop(perOctet())) {
            for (std::size_t i = 0; i < perOctet(); ++i) {
                if (digitValue(text[i]) != ones) {
                    return;
                }
            }
        }
    }
};

/// Finds the digits behind a prefix.
/// @return false for text without a prefix or without a digit
bool findDigits(const char* text, Digits* digits) noexcept {
    if (text[0] != '0' || (text[1] != 'x' && text[1] != 'b') || text[2] == '\0') {
        return false;
    }
    *digits = {text + 2, std::strlen(text + 2), text[1] == 'x' ? 4u : 1u};
    return true;
}

inline int writeOctet(ASN1CTXT* ctxt, unsigned char octet) noexcept {
    const int status = putOctet(ctxt, octet);
    return status < 0 ? record(ctxt, status) : status;
}

constexpr unsigned int noOctet = 0x100;

/// The octet of @p count digits of @p bits bits.
/// @return noOctet for other characters
inline unsigned int octetOf(const char* text, std::size_t count, unsigned int bits) noexcept {
    unsigned int octet = 0;
    unsigned int all = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned int value = digitValue(text[i]);
        octet = octet << bits | value;
        all |= value;
    }
    return all >> bits == 0 ? octet : noOctet;
}

/// Writes the octets that digits of @p bits bits stand for, from the last to the first, which may
/// be filled in part.
/// @param octets all that will be written: a full buffer grows by as many, since one that grows
///        step by step is copied at each of them
/// @return 0, or a recorded status
template <unsigned int bits>
int writeDigits(ASN1CTXT* ctxt, const Digits& digits, std::size_t octets) noexcept {
    constexpr std::size_t perOctet = 8 / bits;
    ASN1Buffer& buffer = ctxt->buffer;
    std::size_t left = digits.count;
    // Whole octets for which there is room.
    unsigned char* const end = buffer.data + buffer.byteIndex;
    unsigned char* next = end;
    for (std::size_t room = buffer.byteIndex; left >= perOctet && room != 0; --room) {
        const unsigned int octet = octetOf(digits.text + left - perOctet, perOctet, bits);
        if (octet == noOctet) {
            break; // met again, and told, below
        }
        left -= perOctet;
        *--next = static_cast<unsigned char>(octet);
    }
    buffer.byteIndex -= static_cast<unsigned int>(end - next);
    for (std::size_t rest = left; rest != 0;) {
        const std::size_t count = rest < perOctet ? rest : perOctet;
        rest -= count;
        const unsigned int octet = count == perOctet ? octetOf(digits.text + rest, perOctet, bits)
                                                     : octetOf(digits.text, count, bits);
        if (octet == noOctet) {
            return record(ctxt, ASN1S_BAD_VALUE);
        }
        if (ctxt->buffer.byteIndex == 0) {
            const int status = growBuffer(ctxt, static_cast<std::uint32_t>(octets));
            if (status != ASN1S_SUCCESS) {
                return record(ctxt, status);
            }
        }
        ctxt->buffer.data[--ctxt->buffer.byteIndex] = static_cast<unsigned char>(octet);
    }
    return ASN1S_SUCCESS;
}

/// Writes digits, and the sign octet in front of them where there is one.
/// @return the octets written, or a recorded status
int writeContents(ASN1CTXT* ctxt, const Digits& digits, bool signOctet,
                  unsigned char sign) noexcept {
    const std::size_t octets =
        digits.count / digits.perOctet() + (digits.fillOctets() ? 0 : 1) + (signOctet ? 1 : 0);
    if (octets > INT_MAX) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    int status = digits.bits == 4 ? writeDigits<4>(ctxt, digits, octets)
                                  : writeDigits<1>(ctxt, digits, octets);
    if (status == ASN1S_SUCCESS && signOctet) {
        status = writeOctet(ctxt, sign);
    }
    return status < 0 ? status : static_cast<int>(octets);
}

/// Contents octets of transcribed text, in the fewest octets (X.690, 8.3.2).
int writeSigned(ASN1CTXT* ctxt, Digits digits) noexcept {
    const bool negative = digits.beginWithOne();
    if (negative) {
        digits.dropLeadingOnes();
    } else {
        digits.dropLeadingZeros();
    }
    const unsigned char sign = negative ? 0xFF : 0;
    if (digits.count == 0) {
        return writeOctet(ctxt, sign);
    }
    const bool signOctet = digits.fillOctets() && digits.beginWithOne() != negative;
    return writeContents(ctxt, digits, signOctet, sign);
}

/// Contents octets of transcribed text without a sign. A leading zero digit asks for a zero octet.
int writeUnsigned(ASN1CTXT* ctxt, Digits digits) noexcept {
    // Kept: without that digit no sign octet goes in front, though the number then reads as
    // negative. Programs depend on it.
    const bool leadingZero = *digits.text == '0';
    digits.dropLeadingZeros();
    if (digits.count == 0) {
        return writeOctet(ctxt, 0);
    }
    return writeContents(ctxt, digits, leadingZero && digits.fillOctets(), 0);
}

/// Contents octets of text that has to be calculated: decimal and octal, mostly.
int writeCalculated(ASN1CTXT* ctxt, const char* text) noexcept {
    unsigned char room[512];
    RtBigIntDataRec number = {0, room, 0, sizeof room, 0};
    int count = rtBigIntSetStr(ctxt, &number, text, 0);
    if (count == ASN1S_SUCCESS) {
        const int length = rtBigIntGetDataLen(&number);
        ASN1Buffer& buffer = ctxt->buffer;
        // Two octets stay free for the header that most likely follows.
        if (buffer.byteIndex < static_cast<unsigned int>(length) + 2) {
            count = xe_expandBuffer(ctxt, length);
        }
        if (count < 0) {
            record(ctxt, count);
        } else {
            buffer.byteIndex -= static_cast<unsigned int>(length);
            count = rtBigIntGetData(ctxt, &number, buffer.data + buffer.byteIndex, length);
        }
    }
    rtBigIntFree(ctxt, &number);
    return count;
}

bool isEmpty(const char* text) noexcept {
    return text == nullptr || *text == '\0';
}

bool isZeroDigit(const char* text) noexcept {
    return text[0] == '0' && text[1] == '\0';
}

/// Reads the header, where there is one, and moves behind the contents.
int readContents(ASN1CTXT* ctxt, ASN1TagType tagging, int length, const unsigned char** octets,
                 int* count) noexcept {
    if (const int status = readOwnHeader(ctxt, integerTag, tagging, &length)) {
        return status;
    }
    if (!fits(ctxt, length)) { // an indefinite length, which X.690, 8.1.3.2 forbids here, included
        return ASN1S_END_OF_BUFFER;
    }
    *octets = ctxt->buffer.data + ctxt->buffer.byteIndex;
    *count = length;
    ctxt->buffer.byteIndex += static_cast<unsigned int>(length);
    return ASN1S_SUCCESS;
}

/// Octets of "0x", two digits an octet, one more digit at most, and the terminator.
long long textSize(int octets) noexcept {
    return octets * 2LL + 4;
}

int refuseText(ASN1CTXT* ctxt, const char* /*text*/) noexcept {
    return record(ctxt, ASN1S_BAD_VALUE);
}

/// @tparam transcribe writes the contents octets of digits behind a prefix
/// @tparam others writes those of every other text
template <auto transcribe, auto others>
int writeNumber(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) noexcept {
    if (isEmpty(text)) {
        return record(ctxt, ASN1S_BAD_VALUE);
    }
    Digits digits;
    const int count = isZeroDigit(text)           ? writeOctet(ctxt, 0)
                      : findDigits(text, &digits) ? transcribe(ctxt, digits)
                                                  : others(ctxt, text);
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, integerTag, count) : count;
}

int withoutLeadingZeros(const unsigned char** octets, int count) noexcept {
    while (count != 0 && **octets == 0) {
        ++*octets;
        --count;
    }
    return count;
}

} // namespace

int xd_bigint(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging, int length) noexcept {
    *text = nullptr;
    const unsigned char* octets = nullptr;
    if (const int status = readContents(ctxt, tagging, length, &octets, &length)) {
        return status;
    }
    // X.690, 8.3.2 allows one zero octet at most; software that pads numbers to a width sends more.
    const bool leadingZero = length != 0 && *octets == 0;
    length = withoutLeadingZeros(&octets, length);
    const long long room = textSize(length);
    char* next = room > INT_MAX
                     ? nullptr
                     : static_cast<char*>(rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(room)));
    if (next == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    *text = next;
    *next++ = '0';
    *next++ = 'x';
    // Kept: one digit, not two, so that the count of digits is odd. Programs compare these texts.
    if (length == 0 || (leadingZero && (*octets & 0x80) != 0)) {
        *next++ = '0';
    }
    for (const unsigned char* end = octets + length; octets != end; ++octets) {
        next = putDigits(next, *octets);
    }
    *next = '\0';
    return ASN1S_SUCCESS;
}

int xd_measureBigInt(ASN1CTXT* ctxt, ASN1Extent* extent, ASN1TagType tagging, int length) noexcept {
    *extent = {nullptr, 0};
    const unsigned char* octets = nullptr;
    if (const int status = readContents(ctxt, tagging, length, &octets, &length)) {
        return status;
    }
    *extent = {octets, static_cast<unsigned int>(length)};
    // Text that no block can hold does not decode, so it does not measure either.
    const int digits = withoutLeadingZeros(&octets, length);
    return textSize(digits) > INT_MAX ? ASN1S_NO_MEMORY : ASN1S_SUCCESS;
}

int xe_bigint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) noexcept {
    return writeNumber<writeSigned, writeCalculated>(ctxt, text, tagging);
}

int xe_biguint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) noexcept {
    return writeNumber<writeUnsigned, refuseText>(ctxt, text, tagging);
}
