#include <brevantis/asn1/values/types/other_hash_traits.h>

#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_OtherHashAlgAndValue_traits::set(ASN1CTXT* ctxt,
                                            asn1data::ASN1T_OtherHashAlgAndValue& record,
                                            const COtherHashAlgAndValue& value) {
    ASN1T_AlgorithmIdentifier_traits::set(ctxt, record.hashAlgorithm, value.get_hashAlgorithm());
    ASN1TDynOctStr_traits::set(ctxt, record.hashValue, value.get_hashValue());
}

void ASN1T_OtherHashAlgAndValue_traits::get(const asn1data::ASN1T_OtherHashAlgAndValue& record,
                                            COtherHashAlgAndValue& value) {
    CAlgorithmIdentifier algorithm;
    CBlob hash;
    ASN1T_AlgorithmIdentifier_traits::get(record.hashAlgorithm, algorithm);
    ASN1TDynOctStr_traits::get(record.hashValue, hash);
    value = COtherHashAlgAndValue(hash, algorithm);
}

void ASN1T_OtherHash_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_OtherHash& record,
                                 const COtherHash& value) {
    switch (value.get_type()) {
    case asn1data::T_OtherHash_sha1Hash: {
        auto& hash = newRecord<asn1data::ASN1T_OtherHashValue>(ctxt);
        ASN1TDynOctStr_traits::set(ctxt, hash, *value.get_sha1Hash());
        record.u.sha1Hash = &hash;
        break;
    }
    case asn1data::T_OtherHash_otherHash: {
        auto& hash = newRecord<asn1data::ASN1T_OtherHashAlgAndValue>(ctxt);
        ASN1T_OtherHashAlgAndValue_traits::set(ctxt, hash, *value.get_otherHash());
        record.u.otherHash = &hash;
        break;
    }
    default:
        return;
    }
    record.t = value.get_type();
}

void ASN1T_OtherHash_traits::get(const asn1data::ASN1T_OtherHash& record, COtherHash& value) {
    if (record.t == asn1data::T_OtherHash_sha1Hash && record.u.sha1Hash != nullptr) {
        CBlob hash;
        ASN1TDynOctStr_traits::get(*record.u.sha1Hash, hash);
        value = COtherHash(hash);
    } else if (record.t == asn1data::T_OtherHash_otherHash && record.u.otherHash != nullptr) {
        COtherHashAlgAndValue hash;
        ASN1T_OtherHashAlgAndValue_traits::get(*record.u.otherHash, hash);
        value = COtherHash(hash);
    }
}

} // namespace Brevantis::ASN1
