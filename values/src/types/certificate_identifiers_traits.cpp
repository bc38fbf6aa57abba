#include <brevantis/asn1/values/types/certificate_identifiers_traits.h>

#include <utility>

#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types/issuer_serial_traits.h>
#include <brevantis/asn1/values/types/other_hash_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>

#include "util/read_value.h"

namespace Brevantis::ASN1 {

namespace {

/// Sets the part that all the types have in one form.
template <class Record, class Value>
void setIssuerSerial(ASN1CTXT* ctxt, Record& record, const Value& value) {
    record.m = {};
    if (value.get_issuerSerial() != nullptr) {
        record.m.issuerSerialPresent = 1;
        ASN1T_IssuerSerial_traits::set(ctxt, record.issuerSerial, *value.get_issuerSerial());
    }
}

/// Completes a value that was read but for the part that all the types have in one form.
template <class Record, class Value>
Value withIssuerSerial(const Record& record, Value value) {
    if (record.m.issuerSerialPresent != 0) {
        CIssuerSerial issuerSerial;
        ASN1T_IssuerSerial_traits::get(record.issuerSerial, issuerSerial);
        value.put_issuerSerial(&issuerSerial);
    }
    return value;
}

} // namespace

void ASN1T_ESSCertID_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_ESSCertID& record,
                                 const CESSCertID& value) {
    setIssuerSerial(ctxt, record, value);
    ASN1TDynOctStr_traits::set(ctxt, record.certHash, value.get_certHash());
}

void ASN1T_ESSCertID_traits::get(const asn1data::ASN1T_ESSCertID& record, CESSCertID& value) {
    value = withIssuerSerial(record,
                             CESSCertID(readValue<ASN1TDynOctStr_traits, CBlob>(record.certHash)));
}

void ASN1T_ESSCertIDv2_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_ESSCertIDv2& record,
                                   const CESSCertIDv2& value) {
    setIssuerSerial(ctxt, record, value);
    // DER leaves a DEFAULT value out (X.690, 11.5).
    if (CStringProxy(value.get_hashAlgorithm().get_algorithm()) !=
        HashWithAlgorithm::defaultAlgorithm) {
        record.m.hashAlgorithmPresent = 1;
        ASN1T_AlgorithmIdentifier_traits::set(ctxt, record.hashAlgorithm,
                                              value.get_hashAlgorithm());
    }
    ASN1TDynOctStr_traits::set(ctxt, record.certHash, value.get_certHash());
}

void ASN1T_ESSCertIDv2_traits::get(const asn1data::ASN1T_ESSCertIDv2& record, CESSCertIDv2& value) {
    CESSCertIDv2 read(readValue<ASN1TDynOctStr_traits, CBlob>(record.certHash));
    if (record.m.hashAlgorithmPresent != 0) {
        CAlgorithmIdentifier algorithm;
        ASN1T_AlgorithmIdentifier_traits::get(record.hashAlgorithm, algorithm);
        read.put_hashAlgorithm(algorithm);
    }
    value = withIssuerSerial(record, std::move(read));
}

void ASN1T_OtherCertID_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_OtherCertID& record,
                                   const COtherCertID& value) {
    setIssuerSerial(ctxt, record, value);
    ASN1T_OtherHash_traits::set(ctxt, record.otherCertHash, value.get_otherCertHash());
}

void ASN1T_OtherCertID_traits::get(const asn1data::ASN1T_OtherCertID& record, COtherCertID& value) {
    COtherHash hash;
    ASN1T_OtherHash_traits::get(record.otherCertHash, hash);
    COtherCertID read;
    read.put_otherCertHash(hash);
    value = withIssuerSerial(record, std::move(read));
}

} // namespace Brevantis::ASN1
