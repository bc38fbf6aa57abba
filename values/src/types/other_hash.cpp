#include <brevantis/asn1/values/types/other_hash.h>

#include <functional>

#include <brevantis/asn1/values/types/other_hash_traits.h>

namespace Brevantis::ASN1 {

COtherHashAlgAndValue::COtherHashAlgAndValue(const CBlob& value,
                                             const CAlgorithmIdentifier& algorithm)
    : hashAlgorithm_(algorithm), hashValue_(value) {}

bool COtherHashAlgAndValue::compare_hashValue(const COtherHashAlgAndValue& other) const {
    return hashValue_ == other.hashValue_;
}

CBlob COtherHashAlgAndValue::encode() const {
    return asn1Encode<ASN1T_OtherHashAlgAndValue_traits>(*this);
}

void COtherHashAlgAndValue::decode(const CBlob& blob) {
    asn1Decode<ASN1T_OtherHashAlgAndValue_traits>(blob, *this);
}

bool operator==(const COtherHashAlgAndValue& a, const COtherHashAlgAndValue& b) {
    return a.get_hashAlgorithm() == b.get_hashAlgorithm() && a.compare_hashValue(b);
}

bool operator!=(const COtherHashAlgAndValue& a, const COtherHashAlgAndValue& b) {
    return !(a == b);
}

COtherHash::COtherHash(const CBlob& sha1Hash) {
    put_sha1Hash(sha1Hash);
}

COtherHash::COtherHash(const COtherHashAlgAndValue& otherHash) {
    put_otherHash(otherHash);
}

COtherHash::~COtherHash() = default;

void COtherHash::put_sha1Hash(const CBlob& hash) {
    choice_.put<Sha1Hash>(hash);
}

void COtherHash::put_otherHash(const COtherHashAlgAndValue& hash) {
    choice_.put<OtherHash>(hash);
}

void COtherHash::clear() {
    choice_.clear();
}

namespace {

/// Compares the alternatives and the values.
/// @param sameOtherHash compares two values of alternative 2
template <class Comparison>
bool sameHash(const COtherHash& a, const COtherHash& b, Comparison sameOtherHash) {
    if (a.get_type() != b.get_type()) {
        return false;
    }
    if (a.get_sha1Hash() != nullptr) {
        return *a.get_sha1Hash() == *b.get_sha1Hash();
    }
    return a.get_otherHash() == nullptr || sameOtherHash(*a.get_otherHash(), *b.get_otherHash());
}

} // namespace

bool COtherHash::compare_hashValue(const COtherHash& other) const {
    return sameHash(*this, other,
                    [](const COtherHashAlgAndValue& a, const COtherHashAlgAndValue& b) {
                        return a.compare_hashValue(b);
                    });
}

CBlob COtherHash::encode() const {
    return asn1Encode<ASN1T_OtherHash_traits>(*this);
}

void COtherHash::decode(const CBlob& blob) {
    asn1Decode<ASN1T_OtherHash_traits>(blob, *this);
}

bool operator==(const COtherHash& a, const COtherHash& b) {
    return sameHash(a, b, std::equal_to<COtherHashAlgAndValue>());
}

bool operator!=(const COtherHash& a, const COtherHash& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
