#include <brevantis/asn1/values/types/algorithm_identifier.h>

#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>

namespace Brevantis::ASN1 {

CAlgorithmIdentifier::CAlgorithmIdentifier() = default;

CAlgorithmIdentifier::CAlgorithmIdentifier(const char* algorithm) : algorithm_(algorithm) {}

CAlgorithmIdentifier::CAlgorithmIdentifier(const CAlgorithmIdentifier& other) = default;

CAlgorithmIdentifier::CAlgorithmIdentifier(CAlgorithmIdentifier&& other) noexcept = default;

CAlgorithmIdentifier&
CAlgorithmIdentifier::operator=(CAlgorithmIdentifier&& other) noexcept = default;

CAlgorithmIdentifier::~CAlgorithmIdentifier() = default;

void CAlgorithmIdentifier::put_algorithm(const char* algorithm) {
    algorithm_ = algorithm;
}

void CAlgorithmIdentifier::swap(CAlgorithmIdentifier& other) noexcept {
    algorithm_.swap(other.algorithm_);
    parameters_.swap(other.parameters_);
}

CBlob CAlgorithmIdentifier::encode() const {
    return asn1Encode<ASN1T_AlgorithmIdentifier_traits>(*this);
}

void CAlgorithmIdentifier::decode(const CBlob& blob) {
    asn1Decode<ASN1T_AlgorithmIdentifier_traits>(blob, *this);
}

bool operator==(const CAlgorithmIdentifier& a, const CAlgorithmIdentifier& b) {
    return CStringProxy(a.get_algorithm()) == b.get_algorithm() &&
           a.get_parameters() == b.get_parameters();
}

bool operator!=(const CAlgorithmIdentifier& a, const CAlgorithmIdentifier& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
