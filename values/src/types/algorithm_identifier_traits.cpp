#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>

#include <utility>

#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

namespace Brevantis::ASN1 {

namespace {

void setRecord(ASN1CTXT* ctxt, asn1data::ASN1T_AlgorithmIdentifier& record, const char* algorithm,
               const CBlob* parameters) {
    asn1data::ASN1T_AlgorithmIdentifier checked;
    if (str2oid(algorithm, &checked.algorithm) != 0) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    DecodeBuffer buffer;
    if (parameters != nullptr && parameters->cbData() != 0) {
        checked.m.parametersPresent = 1;
        Asn1TObject_traits::set(buffer.getCtxtPtr(), checked.parameters, *parameters);
        // A known algorithm with parameters that do not decode is not let out.
        requireSuccess(asn1data::asn1DTC_AlgorithmIdentifier(buffer.getCtxtPtr(), &checked));
    }
    ASN1T_AlgorithmIdentifier_traits::copy(ctxt, checked, record);
}

} // namespace

asn1data::ASN1T_AlgorithmIdentifier*
ASN1T_AlgorithmIdentifier_set(ASN1CTXT* ctxt, const char* algorithm, const CBlob* parameters) {
    auto& record = newRecord<asn1data::ASN1T_AlgorithmIdentifier>(ctxt);
    setRecord(ctxt, record, algorithm, parameters);
    return &record;
}

void ASN1T_AlgorithmIdentifier_get(CAlgorithmIdentifier& value,
                                   const asn1data::ASN1T_AlgorithmIdentifier& record) {
    CStringProxy algorithm;
    CBlob parameters;
    ASN1TObjId_traits::get(record.algorithm, algorithm);
    if (record.m.parametersPresent != 0) {
        Asn1TObject_traits::get(record.parameters, parameters);
    }
    value.put_algorithm(algorithm.c_str());
    // Nothing may fail any more behind the identifier.
    value.put_parameters(std::move(parameters));
}

void ASN1T_AlgorithmIdentifier_traits::set(ASN1CTXT* ctxt,
                                           asn1data::ASN1T_AlgorithmIdentifier& record,
                                           const CAlgorithmIdentifier& value) {
    setRecord(ctxt, record, value.get_algorithm(), &value.get_parameters());
}

void ASN1T_AlgorithmIdentifier_traits::get(const asn1data::ASN1T_AlgorithmIdentifier& record,
                                           CAlgorithmIdentifier& value) {
    ASN1T_AlgorithmIdentifier_get(value, record);
}

} // namespace Brevantis::ASN1
