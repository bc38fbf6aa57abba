#include <brevantis/asn1/runtime/big_integer.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/heap.h>

#include "big_integer_digits.h"
#include "octet_reader.h"

using namespace runtime_detail;

namespace {

/// How a radix is worked in, looked up by half the radix.
struct RadixStep {
    unsigned int bitsPerDigit;  ///< logarithm to base 2 in units of 1/1024 bit, rounded up
    unsigned int digitsPerByte; ///< digits taken in one step, 0 where text is not supported
    unsigned int byteRadix;     ///< factor of one step
};

constexpr RadixStep radixSteps[] = {{0, 0, 0},    {1024, 8, 256}, {2048, 0, 0},
                                    {2648, 0, 0}, {3072, 2, 64},  {3402, 2, 100},
                                    {3672, 0, 0}, {3899, 0, 0},   {4096, 2, 256}};

const RadixStep& stepOf(int radix) noexcept {
    return radixSteps[radix / 2];
}

bool isTextRadix(int radix) noexcept {
    return radix == 2 || radix == 8 || radix == 10 || radix == 16;
}

/// Replaces a number in two's complement form by its negation of the same length.
void negate(unsigned char* octets, int count) noexcept {
    unsigned int carry = 1;
    for (int i = count; i-- > 0;) {
        const unsigned int sum = (octets[i] ^ 0xFFu) + carry;
        octets[i] = static_cast<unsigned char>(sum);
        carry = sum >> 8;
    }
}

/// Makes `mag` a zeroed number of @p octets octets.
/// @return false when memory is out; the record is then as it was
bool makeRoom(ASN1CTXT* ctxt, RtBigIntDataRec* rec, unsigned long long octets) noexcept {
    if (octets > INT_MAX) {
        return false;
    }
    const int count = static_cast<int>(octets);
    if (count > rec->allocated) {
        void* block = rec->dynamic != 0 ? rtMemHeapRealloc(&ctxt->memHeap, rec->mag, count)
                                        : rtMemHeapAlloc(&ctxt->memHeap, count);
        if (block == nullptr) {
            return false;
        }
        rec->mag = static_cast<unsigned char*>(block);
        rec->allocated = count;
        rec->dynamic = 1;
    }
    rec->numocts = count;
    std::memset(rec->mag, 0, octets);
    return true;
}

void dropLeadingZeros(RtBigIntDataRec* rec) noexcept {
    int zeros = 0;
    while (zeros < rec->numocts && rec->mag[zeros] == 0) {
        ++zeros;
    }
    if (zeros != 0) {
        rec->numocts -= zeros;
        std::memmove(rec->mag, rec->mag + zeros, static_cast<std::size_t>(rec->numocts));
    }
}

/// Text of radix 16 and 2: the two's complement form, digit by digit.
int readTranscription(ASN1CTXT* ctxt, RtBigIntDataRec* rec, const char* text, int radix) noexcept {
    const std::size_t digits = std::strlen(text);
    const unsigned int bits = radix == 16 ? 4 : 1;
    const std::size_t perOctet = 8 / bits;
    if (!makeRoom(ctxt, rec, digits / perOctet + (digits % perOctet != 0 ? 1 : 0))) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    rec->sign = 1;
    unsigned char* const lastOctet = rec->mag + (rec->numocts - 1);
    for (std::size_t i = 0; i < digits; ++i) {
        const unsigned int value = digitValue(text[i]);
        if (value >= static_cast<unsigned int>(radix)) {
            return record(ctxt, ASN1S_BAD_VALUE);
        }
        unsigned char& octet = *(lastOctet - (digits - 1 - i) / perOctet);
        octet = static_cast<unsigned char>(static_cast<unsigned int>(octet) << bits | value);
    }
    // Digits that leave the first octet unfilled, a leading 0 among them, cannot set this bit.
    if ((rec->mag[0] & 0x80) != 0) {
        rec->sign = -1;
        negate(rec->mag, rec->numocts);
    }
    dropLeadingZeros(rec);
    return ASN1S_SUCCESS;
}

/// Value of @p count digits as strtoul reads them.
/// @return the value; @p byteRadix for characters that are no such number
unsigned int readStep(const char* text, std::size_t count, int radix,
                      unsigned int byteRadix) noexcept {
    char digits[3] = {};
    std::memcpy(digits, text, count);
    char* end = nullptr;
    const unsigned long value = std::strtoul(digits, &end, radix);
    return end == digits + count && value < byteRadix ? static_cast<unsigned int>(value)
                                                      : byteRadix;
}

/// Text of radix 10 and 8: sign and magnitude.
int readNumber(ASN1CTXT* ctxt, RtBigIntDataRec* rec, const char* text, int radix) noexcept {
    const bool negative = *text == '-';
    if (negative && *++text == '\0') {
        return record(ctxt, ASN1S_BAD_VALUE);
    }
    while (*text == '0') {
        ++text;
    }
    std::size_t digits = std::strlen(text);
    if (digits == 0) {
        rec->sign = 0;
        rec->numocts = 0;
        return ASN1S_SUCCESS;
    }
    const RadixStep& step = stepOf(radix);
    if (digits > ULLONG_MAX / step.bitsPerDigit ||
        !makeRoom(ctxt, rec, ((step.bitsPerDigit * 1ULL * digits >> 10) + 8) / 8)) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    rec->sign = negative ? -1 : 1;
    int used = 0; // octets at the end of mag that are not zero for sure
    std::size_t count = digits % step.digitsPerByte;
    for (count = count != 0 ? count : step.digitsPerByte; digits != 0; count = step.digitsPerByte) {
        unsigned int carry = readStep(text, count, radix, step.byteRadix);
        if (carry == step.byteRadix) {
            return record(ctxt, ASN1S_BAD_VALUE);
        }
        for (int i = 0; i < used || carry != 0; ++i) {
            unsigned char& octet = rec->mag[rec->numocts - 1 - i];
            carry += octet * step.byteRadix;
            octet = static_cast<unsigned char>(carry);
            carry >>= 8;
            used = std::max(used, i + 1);
        }
        text += count;
        digits -= count;
    }
    dropLeadingZeros(rec);
    return ASN1S_SUCCESS;
}

/// Steps over a prefix and returns the radix that it stands for.
int takePrefix(const char** text) noexcept {
    const char* prefix = *text;
    const int radix = prefix[0] != '0'   ? 10
                      : prefix[1] == 'x' ? 16
                      : prefix[1] == 'b' ? 2
                      : prefix[1] == 'o' ? 8
                                         : 10;
    if (radix != 10) {
        *text += 2;
    }
    return radix;
}

/// Writes the digits of radix 16 and 2.
int writeTranscription(ASN1CTXT* ctxt, RtBigIntDataRec* rec, int radix, char* buffer,
                       int bufferSize) noexcept {
    const unsigned int bits = radix == 16 ? 4 : 1;
    const long long digits = rtBigIntGetDataLen(rec) * (8LL / bits);
    if (digits >= bufferSize) {
        return record(ctxt, ASN1S_STRING_OVERFLOW);
    }
    char* next = buffer + digits;
    *next = '\0';
    unsigned int carry = 1;
    for (int i = rec->numocts; i-- > 0 && next != buffer;) {
        unsigned int octet = rec->mag[i];
        if (rec->sign < 0) {
            octet = (octet ^ 0xFF) + carry;
            carry = octet >> 8;
        }
        for (unsigned int shift = 0; shift < 8; shift += bits) {
            *--next = digitOf(octet >> shift & (static_cast<unsigned int>(radix) - 1));
        }
    }
    // A sign octet shows as zeros for a negative value too.
    std::fill(buffer, next, '0');
    return ASN1S_SUCCESS;
}

/// Divides a number in place.
/// @return the remainder
unsigned int divide(unsigned char* octets, int count, unsigned int divisor) noexcept {
    unsigned int remainder = 0;
    for (int i = 0; i < count; ++i) {
        remainder = remainder << 8 | octets[i];
        octets[i] = static_cast<unsigned char>(remainder / divisor);
        remainder %= divisor;
    }
    return remainder;
}

/// Writes the digits of a number backward from the end of @p buffer; uses the number up.
/// @return the first digit, null when the room does not do
char* writeDigits(unsigned char* octets, int count, int radix, char* buffer,
                  char* bufferEnd) noexcept {
    const RadixStep& step = stepOf(radix);
    const auto base = static_cast<unsigned int>(radix);
    char* next = bufferEnd;
    do {
        unsigned int remainder = divide(octets, count, step.byteRadix);
        while (count != 0 && *octets == 0) {
            ++octets;
            --count;
        }
        for (unsigned int i = 0; i < step.digitsPerByte; ++i, remainder /= base) {
            if (count == 0 && i != 0 && remainder == 0) {
                break;
            }
            if (next == buffer) {
                return nullptr;
            }
            *--next = digitOf(remainder % base);
        }
    } while (count != 0);
    return next;
}

/// Writes the digits of radix 10 and 8.
int writeNumber(ASN1CTXT* ctxt, RtBigIntDataRec* rec, int radix, char* buffer,
                int bufferSize) noexcept {
    if (bufferSize < 1) {
        return record(ctxt, ASN1S_STRING_OVERFLOW);
    }
    const bool complement = radix != 10 && rec->sign < 0;
    const int count = complement ? rtBigIntGetDataLen(rec) : rec->numocts;
    auto* work = static_cast<unsigned char*>(rtMemHeapAlloc(&ctxt->memHeap, count));
    if (work == nullptr) {
        return record(ctxt, ASN1S_NO_MEMORY);
    }
    if (complement) {
        rtBigIntGetData(ctxt, rec, work, count);
    } else {
        std::memcpy(work, rec->mag, static_cast<std::size_t>(count));
    }
    char* const end = buffer + (bufferSize - 1);
    char* first = writeDigits(work, count, radix, buffer, end);
    rtMemHeapFreePtr(&ctxt->memHeap, work);

    char mark = '\0';
    if (radix == 10) {
        mark = rec->sign < 0 ? '-' : '\0';
    } else if (rec->sign > 0 && (rec->mag[0] & 0x80) != 0) {
        mark = '0'; // so that the text reads as positive again
    }
    if (first == nullptr || (mark != '\0' && first == buffer)) {
        return record(ctxt, ASN1S_STRING_OVERFLOW);
    }
    if (mark != '\0') {
        *--first = mark;
    }
    *std::copy(first, end, buffer) = '\0';
    return ASN1S_SUCCESS;
}

} // namespace

void rtBigIntInit(RtBigIntDataRec* rec) noexcept {
    *rec = {};
}

int rtBigIntSetStr(ASN1CTXT* ctxt, RtBigIntDataRec* rec, const char* text, int radix) noexcept {
    if (radix != 0 && !isTextRadix(radix)) {
        return record(ctxt, ASN1S_INVALID_PARAMETER);
    }
    if (text == nullptr) {
        return record(ctxt, ASN1S_BAD_VALUE);
    }
    while (*text == ' ') {
        ++text;
    }
    if (radix == 0) {
        radix = takePrefix(&text);
    }
    if (*text == '\0') {
        return record(ctxt, ASN1S_BAD_VALUE);
    }
    return radix == 16 || radix == 2 ? readTranscription(ctxt, rec, text, radix)
                                     : readNumber(ctxt, rec, text, radix);
}

int rtBigIntGetDataLen(RtBigIntDataRec* rec) noexcept {
    if (rec->sign == 0) {
        return 1;
    }
    if (rec->numocts <= 0) { // zero in hexadecimal text: no octet to look at
        return 0;
    }
    const unsigned int first = rec->mag[0];
    if (rec->sign > 0) {
        return rec->numocts + ((first & 0x80) != 0 ? 1 : 0);
    }
    // Kept: octets behind the second are not looked at, so -(80 00 01) comes out one octet short.
    // Programs depend on the length.
    const bool lowerZero = rec->numocts == 1 || rec->mag[1] == 0;
    const unsigned int top = lowerZero ? 0u - first : ~first;
    return rec->numocts + ((top & 0x80) == 0 ? 1 : 0);
}

int rtBigIntGetData(ASN1CTXT* ctxt, RtBigIntDataRec* rec, unsigned char* buffer,
                    int bufferSize) noexcept {
    const int length = rtBigIntGetDataLen(rec);
    if (length > bufferSize) {
        return record(ctxt, ASN1S_STRING_OVERFLOW);
    }
    if (rec->sign == 0) {
        buffer[0] = 0;
        return length;
    }
    if (length == 0) {
        return length;
    }
    const int padding = length - rec->numocts;
    if (padding != 0) {
        buffer[0] = rec->sign < 0 ? 0xFF : 0;
    }
    std::memcpy(buffer + padding, rec->mag, static_cast<std::size_t>(rec->numocts));
    if (rec->sign < 0) {
        negate(buffer + padding, rec->numocts);
    }
    return length;
}

int rtBigIntDigitsNum(RtBigIntDataRec* rec, int radix) noexcept {
    if (radix < 2 || radix > 17) {
        return ASN1S_INVALID_PARAMETER;
    }
    const long long digits = (rec->numocts + 1LL) * 8192 / stepOf(radix).bitsPerDigit;
    return static_cast<int>(std::min<long long>(digits, INT_MAX));
}

void rtBigIntFree(ASN1CTXT* ctxt, RtBigIntDataRec* rec) noexcept {
    if (rec != nullptr && rec->dynamic != 0 && rec->mag != nullptr && rec->allocated != 0) {
        rtMemHeapFreePtr(&ctxt->memHeap, rec->mag);
    }
}

int rtBigIntToString(ASN1CTXT* ctxt, RtBigIntDataRec* rec, int radix, char* buffer,
                     int bufferSize) noexcept {
    if (radix == 16 || radix == 2) {
        return writeTranscription(ctxt, rec, radix, buffer, bufferSize);
    }
    if (rec->numocts <= 0) {
        return ASN1S_INVALID_PARAMETER;
    }
    return isTextRadix(radix) ? writeNumber(ctxt, rec, radix, buffer, bufferSize)
                              : record(ctxt, ASN1S_INVALID_PARAMETER);
}

int rtBigIntStrCompare(ASN1CTXT* ctxt, const char* a, const char* b) noexcept {
    unsigned char roomA[256];
    unsigned char roomB[256];
    RtBigIntDataRec left = {0, roomA, 0, sizeof roomA, 0};
    RtBigIntDataRec right = {0, roomB, 0, sizeof roomB, 0};
    rtBigIntSetStr(ctxt, &left, a, 0);
    rtBigIntSetStr(ctxt, &right, b, 0);
    // Zero in hexadecimal or binary text keeps the sign of its digits.
    const int leftSign = left.numocts != 0 ? left.sign : 0;
    const int rightSign = right.numocts != 0 ? right.sign : 0;
    int result = 0;
    if (leftSign != rightSign) {
        result = leftSign > rightSign ? 1 : -1;
    } else {
        int order = left.numocts - right.numocts;
        if (order == 0) {
            order = std::memcmp(left.mag, right.mag, static_cast<std::size_t>(left.numocts));
        }
        result = order < 0 ? -leftSign : order > 0 ? leftSign : 0;
    }
    rtBigIntFree(ctxt, &left);
    rtBigIntFree(ctxt, &right);
    return result;
}
