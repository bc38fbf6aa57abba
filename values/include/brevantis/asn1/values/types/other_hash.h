#ifndef BREVANTIS_ASN1_VALUES_TYPES_OTHER_HASH_H
#define BREVANTIS_ASN1_VALUES_TYPES_OTHER_HASH_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/algorithm_identifier.h>
#include <brevantis/asn1/values/types/choice.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>

/// @file
/// OtherHash and OtherHashAlgAndValue (RFC 5126, 5.7.3.3).

namespace Brevantis::ASN1 {

/// A hash value and the algorithm that made it.
class BREVANTIS_ASN1_API COtherHashAlgAndValue {
public:
    /// No hash and no algorithm.
    COtherHashAlgAndValue() = default;
    /// Copies both; nothing is looked at before it is encoded.
    COtherHashAlgAndValue(const CBlob& value, const CAlgorithmIdentifier& algorithm);
    COtherHashAlgAndValue(const COtherHashAlgAndValue&) = default;
    COtherHashAlgAndValue(COtherHashAlgAndValue&&) noexcept = default;
    COtherHashAlgAndValue& operator=(const COtherHashAlgAndValue& other) {
        return assignWhole(*this, other);
    }
    COtherHashAlgAndValue& operator=(COtherHashAlgAndValue&&) noexcept = default;
    ~COtherHashAlgAndValue() = default;

    /// The fields of an OtherHashAlgAndValue; valid until they are set or the object goes.
    const CAlgorithmIdentifier& get_hashAlgorithm() const { return hashAlgorithm_; }
    const CBlob& get_hashValue() const { return hashValue_; }
    /// The setters copy.
    void put_hashAlgorithm(const CAlgorithmIdentifier& algorithm) { hashAlgorithm_ = algorithm; }
    void put_hashValue(const CBlob& value) { hashValue_ = value; }

    /// Whether the hash values are equal, whatever made them.
    bool compare_hashValue(const COtherHashAlgAndValue& other) const;

    /// @return the DER
    /// @throws as CAlgorithmIdentifier::encode
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no
    ///         OtherHashAlgAndValue, with CRYPT_E_ASN1_MEMORY when memory is out; the object stays
    ///         as it was
    void decode(const CBlob& blob);

private:
    CAlgorithmIdentifier hashAlgorithm_;
    CBlob hashValue_;
};

/// Compares algorithm and hash value.
BREVANTIS_ASN1_API bool operator==(const COtherHashAlgAndValue& a, const COtherHashAlgAndValue& b);
BREVANTIS_ASN1_API bool operator!=(const COtherHashAlgAndValue& a, const COtherHashAlgAndValue& b);

BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<COtherHashAlgAndValue, 2>;

/// Alternatives of COtherHash.
class BREVANTIS_ASN1_API COtherHashImpl final
    : public ChoiceOf<ChoiceValueTraitsT<CBlob, 1>, ChoiceValueTraitsT<COtherHashAlgAndValue, 2>> {
};

/// A hash value: alternative 1, `sha1Hash`, or alternative 2, `otherHash`, which names its
/// algorithm.
class BREVANTIS_ASN1_API COtherHash {
public:
    /// No hash: alternative 0.
    COtherHash() = default;
    /// Alternative 1.
    explicit COtherHash(const CBlob& sha1Hash);
    /// Alternative 2.
    explicit COtherHash(const COtherHashAlgAndValue& otherHash);
    COtherHash(const COtherHash& other) = default;
    COtherHash(COtherHash&& other) noexcept = default;
    COtherHash& operator=(const COtherHash& other) = default;
    COtherHash& operator=(COtherHash&& other) noexcept = default;
    virtual ~COtherHash();

    /// @return the number of the alternative, 0 for none
    unsigned int get_type() const { return choice_.type(); }
    /// @return null for another alternative; valid until the hash changes or goes
    const CBlob* get_sha1Hash() const { return choice_.get<Sha1Hash>(); }
    /// @return null for another alternative; valid until the hash changes or goes
    const COtherHashAlgAndValue* get_otherHash() const { return choice_.get<OtherHash>(); }
    /// Alternative 1.
    /// @param hash the SHA-1 hash, copied; its size is not checked
    void put_sha1Hash(const CBlob& hash);
    /// Alternative 2.
    /// @param hash copied
    void put_otherHash(const COtherHashAlgAndValue& hash);
    /// Takes the hash away.
    void clear();

    /// Whether the alternatives and the hash values are equal, whatever algorithms made them.
    bool compare_hashValue(const COtherHash& other) const;

    /// @return the DER
    /// @throws as COtherHashAlgAndValue::encode; ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for
    ///         no hash
    CBlob encode() const;
    /// @throws as COtherHashAlgAndValue::decode
    void decode(const CBlob& blob);

private:
    using Sha1Hash = ChoiceValueTraitsT<CBlob, 1>;
    using OtherHash = ChoiceValueTraitsT<COtherHashAlgAndValue, 2>;

    ChoicePointer<COtherHashImpl> choice_;
};

/// Compares the alternatives, then the values with their algorithms.
BREVANTIS_ASN1_API bool operator==(const COtherHash& a, const COtherHash& b);
BREVANTIS_ASN1_API bool operator!=(const COtherHash& a, const COtherHash& b);

} // namespace Brevantis::ASN1

#endif
