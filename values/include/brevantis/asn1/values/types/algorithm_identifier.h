#ifndef BREVANTIS_ASN1_VALUES_TYPES_ALGORITHM_IDENTIFIER_H
#define BREVANTIS_ASN1_VALUES_TYPES_ALGORITHM_IDENTIFIER_H

#include <utility>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/text.h>

/// @file
/// AlgorithmIdentifier (RFC 5280, 4.1.1.2).

namespace Brevantis::ASN1 {

/// An algorithm and its parameters.
class BREVANTIS_ASN1_API CAlgorithmIdentifier {
public:
    /// No identifier, no parameters.
    CAlgorithmIdentifier();
    /// @param algorithm dotted text; null stands for the empty text
    explicit CAlgorithmIdentifier(const char* algorithm);
    /// Copies identifier and parameters.
    CAlgorithmIdentifier(const CAlgorithmIdentifier& other);
    /// Takes over both; @p other may hold anything then and can be assigned to.
    CAlgorithmIdentifier(CAlgorithmIdentifier&& other) noexcept;
    CAlgorithmIdentifier& operator=(const CAlgorithmIdentifier& other) {
        return assignWhole(*this, other);
    }
    CAlgorithmIdentifier& operator=(CAlgorithmIdentifier&& other) noexcept;
    virtual ~CAlgorithmIdentifier();

    /// Reading a record stores the identifier by this function, so that a derived class can see it.
    /// @param algorithm dotted text; looked at when it is encoded. Null stands for the empty text
    virtual void put_algorithm(const char* algorithm);

    /// Copies identifier and parameters.
    void assign(const CAlgorithmIdentifier& other) { *this = other; }
    void swap(CAlgorithmIdentifier& other) noexcept;

    /// @return dotted text, valid until it changes
    const char* get_algorithm() const { return algorithm_.c_str(); }
    /// @return the DER of the parameters, empty when they are absent
    const CBlob& get_parameters() const { return parameters_; }
    /// @param parameters their DER; empty for none. `encode` writes the first element
    void put_parameters(const CBlob& parameters) { parameters_ = parameters; }
    void put_parameters(CBlob&& parameters) noexcept { parameters_ = std::move(parameters); }

    /// The parameters of an algorithm that the library knows are decoded and written anew as DER;
    /// of any other the first element goes out as it is. What stands behind the first element is
    /// dropped in both cases; isOneElement tells whether anything does.
    /// @return the DER
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for an identifier whose text is none,
    ///         for parameters that the algorithm, where it is known, does not have, and for ones
    ///         whose first element is cut off; with CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no
    ///         AlgorithmIdentifier, with CRYPT_E_ASN1_MEMORY when memory is out; the object stays
    ///         as it was
    void decode(const CBlob& blob);

private:
    CStringProxy algorithm_;
    CBlob parameters_;
};

/// Compares the texts and the octets. Parameters that are NULL (05 00) differ from none.
BREVANTIS_ASN1_API bool operator==(const CAlgorithmIdentifier& a, const CAlgorithmIdentifier& b);
BREVANTIS_ASN1_API bool operator!=(const CAlgorithmIdentifier& a, const CAlgorithmIdentifier& b);

} // namespace Brevantis::ASN1

#endif
