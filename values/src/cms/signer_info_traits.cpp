#include <brevantis/asn1/values/cms/signer_info_traits.h>

#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types/big_integer_text.h>
#include <brevantis/asn1/values/types/name_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

namespace {

CAlgorithmIdentifier algorithmOf(const asn1data::ASN1T_AlgorithmIdentifier& record) {
    CAlgorithmIdentifier algorithm;
    ASN1T_AlgorithmIdentifier_get(algorithm, record);
    return algorithm;
}

} // namespace

// The order is part of the contract: it tells what a signer that is refused leaves behind.
void ASN1T_SignerInfo_get(CSignerInfo& value, const asn1data::ASN1T_SignerInfo& record) {
    value.put_version(record.version);
    value.put_digestAlgorithm(algorithmOf(record.digestAlgorithm));
    value.put_signatureAlgorithm(algorithmOf(record.signatureAlgorithm));
    CBlob octets;
    ASN1TDynOctStr_traits::get(record.signature, octets);
    value.put_signature(octets);

    if (record.sid.t != asn1data::T_SignerIdentifier_issuerAndSerialNumber) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    const auto& signer = requireValue(record.sid.u.issuerAndSerialNumber);
    CBigInteger serialNumber;
    ASN1StringToBigInteger(signer.serialNumber, serialNumber);
    value.put_serialNumber(serialNumber);
    ASN1T_Name_traits::get(signer.issuer, octets);
    value.put_issuer(octets);
}

void ASN1T_SignerInfo_traits::get(const asn1data::ASN1T_SignerInfo& record, CSignerInfo& value) {
    ASN1T_SignerInfo_get(value, record);
}

} // namespace Brevantis::ASN1
