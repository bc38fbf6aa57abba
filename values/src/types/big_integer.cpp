#include <brevantis/asn1/values/types/big_integer.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/types/big_integer_text.h>
#include <brevantis/asn1/values/util/private_buffer.h>

namespace Brevantis::ASN1 {

namespace {

bool isNegative(const unsigned char* octets) {
    return (*octets & 0x80u) != 0;
}

/// Octets of a number, one at least.
struct Octets {
    const unsigned char* data;
    unsigned long size;

    explicit Octets(const CBigInteger& number) : data(number.pbData()), size(number.cbData()) {}

    /// Drops octets at the front that only repeat the sign (X.690, 8.3.2).
    void dropSignOctets() {
        const unsigned char signOctet = isNegative(data) ? 0xFF : 0;
        while (size > 1 && *data == signOctet && isNegative(data + 1) == isNegative(data)) {
            ++data;
            --size;
        }
    }
};

int compareOctets(const Octets& a, const Octets& b) {
    return std::memcmp(a.data, b.data, a.size);
}

} // namespace

CBigInteger::CBigInteger(const unsigned char* data, unsigned long size) : CBlob(data, size) {}

CBigInteger::CBigInteger(unsigned long size) : CBlob(size) {}

void CBigInteger::increment(int limit) {
    if (cbData() > INT_MAX) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    ASN1T_BigInt_inc(pbData(), static_cast<int>(cbData()), limit);
}

CBigInteger& CBigInteger::operator++() {
    increment(0);
    return *this;
}

CBigInteger CBigInteger::operator++(int) {
    CBigInteger before(*this);
    increment(0);
    return before;
}

void CBigInteger::add(const CBigInteger& other) {
    if (cbData() != other.cbData()) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    CBigInteger sum(cbData());
    unsigned carry = 0;
    for (unsigned long i = cbData(); i-- != 0; carry >>= 8) {
        carry += static_cast<unsigned>(pbData()[i]) + other.pbData()[i];
        sum.pbData()[i] = static_cast<unsigned char>(carry);
    }
    swap(sum);
}

CBigInteger CBigInteger::abs() const {
    CBigInteger result(*this);
    if (result.cbData() != 0) {
        // Kept: the sign bit is cleared and nothing complemented, so that -1 gives 127.
        *result.pbData() &= 0x7F;
    }
    return result;
}

int CBigInteger::compare(const CBigInteger& other) const {
    if (cbData() == 0) {
        return other.cbData() == 0 ? 0 : isNegative(other.pbData()) ? 1 : -1;
    }
    if (other.cbData() == 0) {
        return isNegative(pbData()) ? -1 : 1;
    }
    Octets left(*this);
    Octets right(other);
    if (isNegative(left.data) != isNegative(right.data)) {
        return isNegative(left.data) ? -1 : 1;
    }
    if (left.size == right.size) {
        return compareOctets(left, right);
    }
    left.dropSignOctets();
    right.dropSignOctets();
    if (left.size == right.size) {
        return compareOctets(left, right);
    }
    // Kept: the sign is not looked at. Programs rely on the order of negative numbers as it is.
    return left.size < right.size ? -1 : 1;
}

CBlob CBigInteger::encode() const {
    CBlob text;
    BigIntegerToString(*this, text);
    asn1data::ASN1T_CertificateSerialNumber record =
        static_cast<const char*>(static_cast<const void*>(text.pbData()));
    EncodeBuffer buffer;
    asn1data::ASN1C_CertificateSerialNumber control(buffer, record);
    return buffer.message(control.EncodeTo(buffer));
}

void CBigInteger::decode(const CBlob& blob) {
    DecodeBuffer buffer(blob);
    asn1data::ASN1T_CertificateSerialNumber record = nullptr;
    asn1data::ASN1C_CertificateSerialNumber control(buffer, record);
    requireSuccess(control.DecodeFrom(buffer));
    StringToBigInteger(record, *this);
}

bool operator==(const CBigInteger& a, const CBigInteger& b) {
    return a.compare(b) == 0;
}

bool operator!=(const CBigInteger& a, const CBigInteger& b) {
    return a.compare(b) != 0;
}

bool operator<(const CBigInteger& a, const CBigInteger& b) {
    return a.compare(b) < 0;
}

bool operator>(const CBigInteger& a, const CBigInteger& b) {
    return a.compare(b) > 0;
}

bool operator<=(const CBigInteger& a, const CBigInteger& b) {
    return a.compare(b) <= 0;
}

bool operator>=(const CBigInteger& a, const CBigInteger& b) {
    return a.compare(b) >= 0;
}

void ASN1T_BigInt_inc(unsigned char* data, int size, int limit) {
    const int first = std::max(limit, 0);
    for (int i = size - 1; i >= first; --i) {
        if (++data[i] != 0) {
            return;
        }
    }
}

} // namespace Brevantis::ASN1
