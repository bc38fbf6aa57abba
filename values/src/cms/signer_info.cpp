#include <brevantis/asn1/values/cms/signer_info.h>

namespace Brevantis::ASN1 {

bool operator==(const CSignerInfo& a, const CSignerInfo& b) {
    return a.get_version() == b.get_version() &&
           a.get_digestAlgorithm() == b.get_digestAlgorithm() && a.get_issuer() == b.get_issuer() &&
           a.get_serialNumber() == b.get_serialNumber() && a.get_signature() == b.get_signature() &&
           a.get_signatureAlgorithm() == b.get_signatureAlgorithm();
}

bool operator!=(const CSignerInfo& a, const CSignerInfo& b) {
    return !(a == b);
}

} // namespace Brevantis::ASN1
