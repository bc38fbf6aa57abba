#include <brevantis/asn1/values/cms/signed_data_builder.h>

#include <algorithm>

#include <brevantis/asn1/asn1data/cms.h>
#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/values/attribute/attribute_traits.h>
#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types/big_integer_text.h>
#include <brevantis/asn1/values/types/name_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/traits.h>

namespace Brevantis::ASN1 {

namespace {

/// A certificate, of which what is signed stays as it came.
using CertificateRecord =
    CatalogueTraits<asn1data::ASN1T_SignedOpenType, asn1data::ASN1C_SignedOpenType,
                    &asn1data::asn1Copy_SignedOpenType>;

struct SignerRecord : CatalogueTraits<asn1data::ASN1T_SignerInfo, asn1data::ASN1C_SignerInfo,
                                      &asn1data::asn1Copy_SignerInfo> {
    static void set(ASN1CTXT* ctxt, ASN1_T& record, const CSignerInfoBuilder& value) {
        record.version = asn1data::CMSVersion_v1;
        auto& signer = newRecord<asn1data::ASN1T_IssuerAndSerialNumber>(ctxt);
        ASN1T_Name_traits::set(ctxt, signer.issuer, value.get_issuer());
        signer.serialNumber = BigIntegerToASN1String(ctxt, value.get_serialNumber());
        record.sid.t = asn1data::T_SignerIdentifier_issuerAndSerialNumber;
        record.sid.u.issuerAndSerialNumber = &signer;
        ASN1T_AlgorithmIdentifier_traits::set(ctxt, record.digestAlgorithm,
                                              value.get_digestAlgorithm());
        if (!value.signedAttributes().empty()) {
            record.m.signedAttrsPresent = 1;
            AttributeListTraits::set(ctxt, record.signedAttrs, value.signedAttributes());
        }
        ASN1T_AlgorithmIdentifier_traits::set(ctxt, record.signatureAlgorithm,
                                              value.get_signatureAlgorithm());
        ASN1TDynOctStr_traits::set(ctxt, record.signature, value.get_signature());
        if (!value.unsignedAttributes().empty()) {
            record.m.unsignedAttrsPresent = 1;
            AttributeListTraits::set(ctxt, record.unsignedAttrs, value.unsignedAttributes());
        }
    }
};

} // namespace

CSignerInfoBuilder::CSignerInfoBuilder(const CBlob& certificate) {
    DecodeBuffer buffer(certificate);
    asn1data::ASN1T_Certificate record;
    asn1data::ASN1C_Certificate control(buffer, record);
    int status = buffer.init();
    if (status == 0) {
        status = control.DecodeFrom(buffer);
    }
    if (status != 0) {
        throwDecodingError(status, asn1data::findType("Certificate"), certificate.pbData(),
                           certificate.cbData(), {});
    }
    ASN1T_Name_traits::get(record.tbsCertificate.issuer, issuer_);
    ASN1StringToBigInteger(record.tbsCertificate.serialNumber, serialNumber_);
}

CBlob CSignerInfoBuilder::encode() const {
    return asn1Encode<SignerRecord>(*this);
}

/// A whole message as its record.
struct SignedDataRecord : CatalogueTraits<asn1data::ASN1T_SignedData, asn1data::ASN1C_SignedData,
                                          &asn1data::asn1Copy_SignedData> {
    static void set(ASN1CTXT* ctxt, ASN1_T& record, const CSignedDataBuilder& value) {
        auto& content = record.encapContentInfo;
        if (str2oid(value.contentType_.c_str(), &content.eContentType) != 0) {
            ATL::AtlThrowImpl(E_INVALIDARG);
        }
        const bool isData = value.contentType_ == toOID(asn1data::id_data);
        record.version = isData ? asn1data::CMSVersion_v1 : asn1data::CMSVersion_v3;
        if (!value.isDetached_) {
            content.m.eContentPresent = 1;
            ASN1TDynOctStr_traits::set(ctxt, content.eContent, value.content_);
        }
        for (const CAlgorithmIdentifier& each : value.digestAlgorithms_) {
            ASN1T_AlgorithmIdentifier_traits::set(ctxt, newElement(ctxt, record.digestAlgorithms),
                                                  each);
        }
        if (!value.certificates_.empty()) {
            record.m.certificatesPresent = 1;
            for (const CBlob& each : value.certificates_) {
                auto& certificate = newRecord<asn1data::ASN1T_SignedOpenType>(ctxt);
                asn1DecodeT<CertificateRecord>(each, ctxt, certificate);
                auto& choice = newElement(ctxt, record.certificates);
                choice.t = asn1data::T_CertificateChoicesRaw_certificate;
                choice.u.certificate = &certificate;
            }
        }
        for (const CBlob& each : value.signers_) {
            auto& signer = newElement(ctxt, record.signerInfos);
            asn1DecodeT<SignerRecord>(each, ctxt, signer);
        }
    }
};

CSignedDataBuilder::CSignedDataBuilder(const char* contentType, const CBlob& content)
    : contentType_(contentType), content_(content) {}

CSignedDataBuilder::CSignedDataBuilder(const char* contentType)
    : contentType_(contentType), isDetached_(true) {}

void CSignedDataBuilder::add(const CSignerInfoBuilder& signer) {
    CBlob encoded = signer.encode();
    const CAlgorithmIdentifier& algorithm = signer.get_digestAlgorithm();
    const bool known = std::find(digestAlgorithms_.begin(), digestAlgorithms_.end(), algorithm) !=
                       digestAlgorithms_.end();
    signers_.push_back(std::move(encoded));
    if (!known) {
        try {
            digestAlgorithms_.push_back(algorithm);
        } catch (...) {
            signers_.pop_back();
            throw;
        }
    }
}

CBlob CSignedDataBuilder::encode() const {
    const CBlob content = asn1Encode<SignedDataRecord>(*this);
    // Written here, since a ContentInfo would read the certificates anew to write them as DER.
    EncodeBuffer buffer;
    ASN1CTXT* const ctxt = buffer.getCtxtPtr();
    requireSuccess(buffer.init());
    const int inner = xe_OpenType(ctxt, content.pbData(), static_cast<unsigned>(content.cbData()));
    const int tagged = inner < 0 ? inner : xe_tag_len(ctxt, 0xA0000000u, inner);
    ASN1OBJID type = asn1data::id_signedData;
    const int identifier = tagged < 0 ? tagged : xe_objid(ctxt, &type, ASN1TagExplicit);
    return buffer.message(identifier < 0 ? identifier
                                         : xe_tag_len(ctxt, 0x20000010u, tagged + identifier));
}

} // namespace Brevantis::ASN1
