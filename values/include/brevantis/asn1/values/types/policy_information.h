#ifndef BREVANTIS_ASN1_VALUES_TYPES_POLICY_INFORMATION_H
#define BREVANTIS_ASN1_VALUES_TYPES_POLICY_INFORMATION_H

#include <list>

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// PolicyInformation (RFC 5280, 4.2.1.4).

namespace Brevantis::ASN1 {

/// A certificate policy.
/// @warning Policy qualifiers are not carried: what is read with them is written without.
class BREVANTIS_ASN1_API CPolicyInformation {
public:
    /// No identifier.
    CPolicyInformation() = default;
    /// @param policyIdentifier dotted text; null stands for the empty text
    explicit CPolicyInformation(const char* policyIdentifier);

    /// @return dotted text, valid until it changes
    const char* get_policyIdentifier() const { return policyIdentifier_.c_str(); }
    /// @param policyIdentifier dotted text, looked at when it is encoded; null stands for the empty
    ///        text
    void put_policyIdentifier(const char* policyIdentifier) {
        policyIdentifier_ = policyIdentifier;
    }

    /// @return the DER
    /// @throws ATL::CAtlException with E_INVALIDARG for a text that is no identifier, with
    ///         CRYPT_E_ASN1_INTERNAL for one that cannot be encoded, with CRYPT_E_ASN1_MEMORY when
    ///         memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no PolicyInformation,
    ///         with CRYPT_E_ASN1_MEMORY when memory is out; the object stays as it was
    void decode(const CBlob& blob);

private:
    CStringProxy policyIdentifier_;
};

/// A list of policies.
class BREVANTIS_ASN1_API CPolicyInformationList : public std::list<CPolicyInformation> {
public:
    using std::list<CPolicyInformation>::list;
};

} // namespace Brevantis::ASN1

#endif
