// Names every value class, member, traits class and template instance once, so that what the
// documentation promises is known to be declared and exported. Nothing here is run but `main`.

#include <iostream>
#include <tuple>

#include <brevantis/asn1/values.h>

// The earlier names of headers stay.
#include <brevantis/asn1/values/attribute/attr_value.h>
#include <brevantis/asn1/values/attribute_traits/attribute_traits.h>
#include <brevantis/asn1/values/attribute_traits/certificate_traits.h>
#include <brevantis/asn1/values/attribute_traits/signing_certificate_traits.h>
#include <brevantis/asn1/values/cmp_traits/cert_id_traits.h>
#include <brevantis/asn1/values/cmp_traits/failure_info_traits.h>
#include <brevantis/asn1/values/cmp_traits/free_text_traits.h>
#include <brevantis/asn1/values/cmp_traits/info_type_and_value_traits.h>
#include <brevantis/asn1/values/cmp_traits/revocation_announcement_traits.h>
#include <brevantis/asn1/values/cmp_traits/status_info_traits.h>
#include <brevantis/asn1/values/cms_traits/content_info_traits.h>
#include <brevantis/asn1/values/cms_traits/signer_info_traits.h>
#include <brevantis/asn1/values/extension_traits/extension_traits.h>
#include <brevantis/asn1/values/extension_traits/named_extension_traits.h>
#include <brevantis/asn1/values/types_traits/access_description_traits.h>
#include <brevantis/asn1/values/types_traits/algorithm_identifier_traits.h>
#include <brevantis/asn1/values/types_traits/attribute_type_and_value_traits.h>
#include <brevantis/asn1/values/types_traits/certificate_identifiers_traits.h>
#include <brevantis/asn1/values/types_traits/distribution_point_traits.h>
#include <brevantis/asn1/values/types_traits/general_name_traits.h>
#include <brevantis/asn1/values/types_traits/issuer_serial_traits.h>
#include <brevantis/asn1/values/types_traits/name_traits.h>
#include <brevantis/asn1/values/types_traits/other_hash_traits.h>
#include <brevantis/asn1/values/types_traits/policy_information_traits.h>
#include <brevantis/asn1/values/types_traits/primitive_traits.h>
#include <brevantis/asn1/values/types_traits/reason_flags_traits.h>
#include <brevantis/asn1/values/types_traits/time_choice_traits.h>
#include <brevantis/asn1/values/util/big_integer_text.h>

using namespace Brevantis;
using namespace Brevantis::ASN1;
using namespace asn1data;

namespace {

/// Odr-uses functions and objects.
template <class... Used>
void use(const Used&... used) {
    ((std::cout << static_cast<const void*>(&used)), ...);
}

template <class Traits, class Value>
void pairOf(const Value& value, Value& target, const CBlob& blob) {
    asn1Encode<Traits, Value>(value);
    asn1Decode<Traits, Value>(blob, target);
}
template <class Traits, class Value>
void setAndGet(typename Traits::ASN1_T& record, Value& value, ASN1CTXT* ctxt) {
    Traits::set(ctxt, record, value);
    Traits::get(record, value);
    Traits::copy(ctxt, record, record);
}
/// The traits of a type of the catalogue, with both template instances.
template <class Traits, class Value>
void whole(Value& value, const CBlob& blob, ASN1CTXT* ctxt) {
    pairOf<Traits, Value>(value, value, blob);
    typename Traits::ASN1_T record{};
    setAndGet<Traits, Value>(record, value, ctxt);
    value.decode(value.encode());
}
template <class Record, class ElementTraits, class Element, class List>
void list(_Asn1RTDList& record, List& value, ASN1CTXT* ctxt) {
    using Traits = ASN1TSeqOfList_traits<Record, ElementTraits, Element, List>;
    Traits::set(ctxt, record, value);
    Traits::get(record, value);
}
template <class Value>
bool compared(const Value& a, const Value& b) {
    Value copy(a);
    copy = b;
    return a == b && a != copy;
}

void bridge(ASN1CTXT* ctxt, CBlob& blob, ASN1OBJID& oid, ctxt_handle& handle, CBigInteger& number,
            OptionalMember<CBlob>& optional, ASN1TSeqOfList& records, ASN1BERDecodeBuffer& owner) {
    use(handle.init());
    handle.release();
    copy_to_member(optional, &blob);
#if BREVANTIS_ASN1_HAS_AUTO_PTR
    copy_to_auto_ptr(optional, &blob);
#endif
    use(str2oid("1.2", &oid), oid2str(blob, &oid), toASN1OBJID("1.2"), toOID(oid));
    const unsigned short units[] = {0, 0};
    use(tostring(L""), tostring(units), tostring(1), towstring(""), towstring(1));
    StringToBigInteger("0x01", number);
    BigIntegerToString(number, blob);
    ASN1StringToBigInteger("0x01", number);
    use(BigIntegerToASN1String(ctxt, number), DWORDToASN1BigInteger(ctxt, 1u),
        ASN1BigIntegerToDWORD("0x01"), DateToASN1GeneralizedTime(ctxt, CDateTime(0, 0), true));
    CInfoTypeAndValueList items;
    ASN1TavList_Parse(records, items);
    ASN1TavList_Encode(items, records, owner);
    const char* text = "";
    const char* record = "";
    CStringProxy narrow;
    CWStringProxy wide;
    CDateTime time(0, 0);
    asn1Encode<ASN1TObjId_traits, const char*>(text);
    asn1Decode<ASN1TObjId_traits, CStringProxy>(blob, narrow);
    asn1Encode<ASN1GeneralizedTime_traits, CDateTime>(time);
    setAndGet<ASN1GeneralizedTime_traits>(record, time, ctxt);
    ASN1TObjId_traits::set(ctxt, oid, text);
    ASN1TObjId_traits::get(oid, narrow);
    ASN1TObjId_traits::copy(ctxt, oid, oid);
    ASN1IA5String_traits::set(ctxt, record, text);
    ASN1IA5String_traits::get(record, narrow);
    ASN1IA5String_traits::copy(ctxt, record, record);
    ASN1UTF8String_traits::set(ctxt, record, L"");
    ASN1UTF8String_traits::get(record, wide);
    ASN1UTF8String_traits::copy(ctxt, record, record);
    ASN1TDynOctStr octets{};
    ASN1TDynBitStr bits{};
    ASN1OpenType open{};
    Asn1Object object{};
    setAndGet<ASN1TDynOctStr_traits>(octets, blob, ctxt);
    setAndGet<ASN1TDynBitStr_traits>(bits, blob, ctxt);
    setAndGet<ASN1TOpenType_traits>(open, blob, ctxt);
    setAndGet<Asn1TObject_traits>(object, blob, ctxt);
    list<Asn1TObject, Asn1TObject_traits, CBlob, CBlobList>(records, *new CBlobList, ctxt);
}

void names(ASN1CTXT* ctxt, CAttributeTypeAndValue& pair, CRelativeDistinguishedName& rdn,
           CName& name, CBlob& blob, const CAttrValue& attribute, _Asn1RTDList& records) {
    use(commonNameAttribute, countryNameAttribute, localityNameAttribute,
        stateOrProvinceNameAttribute, emailAddressAttribute, organizationNameAttribute,
        organizationUnitNameAttribute, titleAttribute, givenNameAttribute, initialsAttribute,
        surnameAttribute, pseudonymAttribute, ogrnAttribute, ogrnipAttribute, snilsAttribute,
        innAttribute, streetAddressAttribute, domainComponentAttribute, unstructuredNameAttribute,
        PostalCodeAttribute, serialNumberAttribute, CATAVRegister::registered_);
    const CATAVRegister row("1.2", L"X", StringTypeUTF8, 64);
    use(row.oid, row.name, row.type, row.maxLength, CATAVRegister::find("1.2"),
        CATAVRegister::find(L"CN"), CATAVRegister::typeToStr("1.2"),
        CATAVRegister::typeFromStr(L"CN"), CATAVRegister::valueToStr("1.2", blob),
        CATAVRegister::valueFromStr("1.2", L"#00", StringTypeDefault),
        CATAVRegister::makeATAV(L"CN", L"x", StringTypePrintable),
        CATAVRegister::makeATAV(L"CN=x", StringTypeTeletex), encodeCharString(L"x", StringTypeBMP),
        decodeCharString(blob), StringTypeIA5, StringTypeUniversal);
    use(CAttributeTypeAndValue("1.2", blob), CAttributeTypeAndValue(L"CN", L"x", StringTypeUTF8),
        CAttributeTypeAndValue(L"CN=x", StringTypeUTF8), CAttributeTypeAndValue(attribute));
    use(pair.get_type(), pair.get_value(), pair.get_type_str(), pair.get_value_str(),
        pair.toString(), compared(pair, pair));
    pair.put_type("1.2");
    pair.put_value(blob);
    pair.put_type_str(L"CN");
    pair.put_value_str(L"x", StringTypeDefault);
    pair.fromString(L"CN=x", StringTypeDefault);
    whole<ASN1T_AttributeTypeAndValue_traits>(pair, blob, ctxt);
    use(CRelativeDistinguishedName(L"CN=x"), rdn.toString(), CName(L"CN=x"), name.toString());
    rdn.fromString(L"CN=x");
    name.fromString(L"CN=x");
    const unsigned short units[] = {0, 0};
    fromString(rdn, units);
    fromString(name, units);
    const CAttributeTypeAndValueSet& set = rdn;
    const CRDNSequence& sequence = name;
    use(set, sequence);
    whole<ASN1T_RelativeDistinguishedName_traits>(rdn, blob, ctxt);
    asn1Encode<ASN1T_Name_traits, CName>(name);
    name.decode(name.encode());
    ASN1T_Name record;
    setAndGet<ASN1T_Name_traits>(record, blob, ctxt);
    list<ASN1T_AttributeTypeAndValue, ASN1T_AttributeTypeAndValue_traits, CAttributeTypeAndValue,
         CRelativeDistinguishedName>(records, rdn, ctxt);
    list<ASN1T_RelativeDistinguishedName, ASN1T_RelativeDistinguishedName_traits,
         CRelativeDistinguishedName, CName>(records, name, ctxt);
}

void attributes(ASN1CTXT* ctxt, CBlob& blob, CAttrValue& value, CAttribute& attribute,
                CAttributes& all, _Asn1RTDList& records, const CPolicyInformationList& policies) {
    use(CAttrValue("1.2"), CAttrValue("1.2", blob), value.get_oid(), value.get_value(),
        value.value(), compared(value, value));
    use(CAttrStringValue("2.5.4.3", L"x"), CAttrStringValue("2.5.4.3", "x"), CAttrCommonName("x"),
        CAttrSurname("x"), CAttrSerialNumber("x"), CAttrCountry("x"), CAttrLocality("x"),
        CAttrStateOrProvinceName("x"), CAttrOrganizationName("x"), CAttrOrganizationalUnitName("x"),
        CAttrTitle("x"), CAttrGivenName("x"), CAttrInitials("x"), CAttrPseudonym("x"),
        CAttrEmailAddress("x"));
    const CAttribute& fixed = attribute;
    attribute = CAttribute("1.2");
    attribute = CAttribute(value);
    attribute.add(value);
    attribute.add(blob);
    attribute.erase(attribute.begin());
    use(fixed.get_oid(), fixed.begin(), fixed.end(), attribute.end(), fixed.size());
    whole<ASN1T_Attribute_traits>(attribute, blob, ctxt);
    const CAttributes& fixedAll = all;
    use(all.find("1.2"), fixedAll.find("1.2"));
    all.erase("1.2");
    whole<ASN1T_Attributes_traits>(all, blob, ctxt);

    CAttrContentType type("1.2");
    type.put_contentType("1.2");
    CAttrMessageDigest digest;
    digest.put_messageDigest(blob);
    CAttrSigningTime time{CDateTime(0, 0)};
    time.put_time(CDateTime(0, 0));
    use(CAttrContentType(blob), type.get_contentType(), CAttrMessageDigest(blob),
        digest.get_messageDigest(), CAttrSigningTime(blob), time.get_time());
    type.encode(), type.decode(), digest.encode(), digest.decode(), time.encode(), time.decode();

    const auto signing = [&](auto& certificate, const auto& certs) {
        using Class = std::decay_t<decltype(certificate)>;
        certificate.put_certs(certs);
        certificate.put_policies(&policies);
        use(Class(certs), Class(blob), certificate.get_certs(), certificate.get_policies());
        certificate.encode(), certificate.decode();
    };
    CAttrSigningCertificate first;
    CAttrSigningCertificateV2 second;
    CAttrOtherSigningCertificate other;
    signing(first, CESSCertIDList());
    signing(second, CESSCertIDv2List());
    signing(other, COtherCertIDList());
    pairOf<ASN1T_SigningCertificate_traits>(first, first, blob);
    pairOf<ASN1T_SigningCertificateV2_traits>(second, second, blob);
    pairOf<ASN1T_OtherSigningCertificate_traits>(other, other, blob);
    ASN1T_SigningCertificate firstRecord;
    ASN1T_SigningCertificateV2 secondRecord;
    ASN1T_OtherSigningCertificate otherRecord;
    setAndGet<ASN1T_SigningCertificate_traits>(firstRecord, first, ctxt);
    setAndGet<ASN1T_SigningCertificateV2_traits>(secondRecord, second, ctxt);
    setAndGet<ASN1T_OtherSigningCertificate_traits>(otherRecord, other, ctxt);

    CCertificateValue certificate;
    CCertificateValues certificates;
    pairOf<ASN1T_Certificate_traits>(certificate, certificate, blob);
    certificate.decode(certificate.encode());
    whole<ASN1T_CertificateValues_traits>(certificates, blob, ctxt);
    ASN1T_Certificate certificateRecord;
    ASN1T_CertificateList crlRecord;
    setAndGet<ASN1T_Certificate_traits>(certificateRecord, blob, ctxt);
    setAndGet<ASN1T_CertificateList_traits>(crlRecord, blob, ctxt);
    asn1EncodeT<ASN1T_Certificate_traits>(certificateRecord);
    asn1DecodeT<ASN1T_Certificate_traits>(blob, ctxt, certificateRecord);
    asn1EncodeT<ASN1T_CertificateList_traits>(crlRecord);
    asn1DecodeT<ASN1T_CertificateList_traits>(blob, ctxt, crlRecord);
    list<ASN1T_Attribute, ASN1T_Attribute_traits, CAttribute, CAttributes>(records, all, ctxt);
    list<ASN1T_Certificate, ASN1T_Certificate_traits, CBlob, CBlobList>(records, certificates,
                                                                        ctxt);
}

void messages(ASN1CTXT* ctxt, CBlob& blob, CContentInfo& content, CSignerInfo& signer) {
    use(CContentInfo("1.2", blob), CContentInfo(content), content.get_contentType(),
        content.get_content());
    content = CContentInfo();
    content.put_contentType("1.2");
    content.put_content(blob);
    whole<ASN1T_ContentInfo_traits>(content, blob, ctxt);
    ASN1T_ContentInfo record;
    setAndGet<ASN1T_ContentInfo_traits>(record, blob, ctxt);
    pairOf<ASN1T_ContentInfo_traits, CBlob>(blob, blob, blob);
    signer.put_version(signer.get_version());
    signer.put_issuer(signer.get_issuer());
    signer.put_serialNumber(signer.get_serialNumber());
    signer.put_signatureAlgorithm(signer.get_signatureAlgorithm());
    signer.put_digestAlgorithm(signer.get_digestAlgorithm());
    signer.put_signature(signer.get_signature());
    use(compared(signer, CSignerInfo()));
    ASN1T_SignerInfo signerRecord;
    ASN1T_SignerInfo_traits::get(signerRecord, signer);
    ASN1T_SignerInfo_traits::copy(ctxt, signerRecord, signerRecord);
    ASN1T_SignerInfo_get(signer, signerRecord);
}

void managementProtocol(ASN1CTXT* ctxt, CBlob& blob, CLanguageTag& tag, CPKIFreeText& text,
                        CPKIFailureInfo& failure, CPKIStatusInfo& status, CCertId& id,
                        CInfoTypeAndValue& item, CInfoTypeAndValueList& items,
                        const CExtensions& extensions) {
    use(CLanguageTag("x"), CLanguageTag(L"x"), CLanguageTagRuRu(), CLanguageTagEnUs(),
        CLanguageTagDefaultRead(), tag.tostring(), CLanguageTag::normalize("X"),
        compared(tag, tag));
    tag.assign(tag);
    CPKIFreeTextString string{tag};
    use(CPKIFreeTextString(L"x", tag), CPKIFreeTextString("x", tag), string.get_language(),
        string.get_value(), compared(string, string));
    string.assign(string);
    string.set_value(L"x");
    use(CPKIFreeText(L"x", tag), CPKIFreeText(string), text.find(tag),
        static_cast<const CPKIFreeText&>(text).find(tag));
    text.insert(string);
    text.remove(tag);
    const CPKIFreeTextString& first = static_cast<const CPKIFreeText&>(text);
    const CPKIFreeTextString copied = text;
    use(first, copied);
    ASN1T_PKIFreeText freeText;
    CPKIFreeText_Encode(ctxt, freeText, text);
    CPKIFreeText_Parse(ctxt, text, freeText);

    failure = CPKIFailureInfo(0u);
    failure.put_value(failure.get_value());
    failure.put_bit(1, failure.get_bit(1));
    asn1Encode<ASN1T_PKIFailureInfo_traits, CPKIFailureInfo>(failure);
    failure.decode(failure.encode());
    ASN1T_PKIFailureInfo failureRecord;
    setAndGet<ASN1T_PKIFailureInfo_traits>(failureRecord, failure, ctxt);
    use(compared(failure, failure));
    status = CPKIStatusInfo(PKIStatusEnum());
    status.put_pkiStatus(status.get_pkiStatus());
    status.put_failureInfo(status.get_failureInfo());
    status.put_statusString(status.get_statusString());
    whole<ASN1T_PKIStatusInfo_traits>(status, blob, ctxt);

    use(CInfoTypeAndValue("1.2"), CInfoTypeAndValue("1.2", blob), item.get_infoType(),
        item.get_infoValue(), compared(item, item), items.find("1.2"),
        static_cast<const CInfoTypeAndValueList&>(items).find("1.2"));
    items.insert(item);
    items.remove("1.2");
    ASN1T_CertId idRecord;
    setAndGet<ASN1T_CertId_traits>(idRecord, id, ctxt);
    CRevAnnContent announcement(PKIStatusEnum(), id, CDateTime(0, 0), CDateTime(0, 0));
    const CRevAnnContent unset;
    announcement.put_status(announcement.get_status());
    announcement.put_certId(announcement.get_certId());
    announcement.put_willBeRevokedAt(announcement.get_willBeRevokedAt());
    announcement.put_badSinceDate(announcement.get_badSinceDate());
    announcement.put_crlDetails(announcement.get_crlDetails());
    announcement.put_crlDetails(&extensions);
    announcement = CRevAnnContent(announcement);
    whole<ASN1T_RevAnnContent_traits>(announcement, blob, ctxt);
    use(unset);
}

void choices(ASN1CTXT* ctxt, CBlob& blob, CTimeChoice& time, CGeneralName& name, CGeneralNames& all,
             const Choice& implementation, _Asn1RTDList& records) {
    const ChoiceValueTraits* traits = implementation.findTraits(1);
    traits->isType(1);
    traits->copyValue(nullptr, traits->newValue(nullptr));
    traits->deleteValue(nullptr);
    use(implementation.type, implementation.value, CTimeChoiceImpl(), CGeneralNameImpl(),
        COtherHashImpl(), CDistributionPointNameImpl());
    use(ChoiceValueTraitsT<void*, 0>(), ChoiceValueTraitsT<std::wstring, 2>(),
        ChoiceValueTraitsT<std::wstring, 3>(), ChoiceValueTraitsT<CBlob, 5>(),
        ChoiceValueTraitsT<std::wstring, 7>(), ChoiceValueTraitsT<CBlob, 8>(),
        ChoiceValueTraitsT<std::wstring, 9>(), ChoiceValueTraitsT<CBlob, 1>(),
        ChoiceValueTraitsT<COtherHashAlgAndValue, 2>(), ChoiceValueTraitsT<CGeneralNames, 1>(),
        ChoiceValueTraitsT<CDateTime, 1>(), ChoiceValueTraitsT<CDateTime, 2>());
    time = CTimeChoice(CDateTime(0, 0));
    time.put_time(*time.get_time());
    use(time.get_type());
    whole<ASN1T_Time_traits>(time, blob, ctxt);
    time.clear();

    name.put_rfc822Name(name.get_rfc822Name());
    name.put_dNSName(name.get_dNSName());
    name.put_directoryName(*name.get_directoryName());
    name.put_uniformResourceIdentifier(name.get_uniformResourceIdentifier());
    name.put_iPAddress(*name.get_iPAddress());
    name.put_registeredID(name.get_registeredID());
    name.decode(name.encode());
    use(name.get_type(), name.toString(), name.wholeText(), compared(name, name),
        toOctetString(blob), fromOctetString(blob), isOneElement(blob));
    use(CGeneralName::rfc822Name(L""), CGeneralName::dNSName(L""),
        CGeneralName::directoryName(blob), CGeneralName::directoryName(CName()),
        CGeneralName::uniformResourceIdentifier(L""), CGeneralName::iPAddress(blob),
        CGeneralName::registeredID(L""));
    name.clear();
    ASN1T_GeneralName record;
    setAndGet<ASN1T_GeneralName_traits>(record, name, ctxt);
    whole<ASN1T_GeneralNames_traits>(all, blob, ctxt);
    list<ASN1T_GeneralName, ASN1T_GeneralName_traits, CGeneralName, CGeneralNames>(records, all,
                                                                                   ctxt);
}

template <class Extension, class Field>
void named(const CBlob& blob, const Field& field) {
    Extension fromField(field);
    Extension fromBlob(blob);
    fromField.encode();
    fromBlob.decode();
}

void extensions(ASN1CTXT* ctxt, CBlob& blob, CExtension& extension, CExtensions& all,
                const CDateTime& time, _Asn1RTDList& records) {
    CExtValue value("1.2", blob);
    use(CExtValue(), CExtValue("1.2"), value.get_oid(), value.get_value(), value.value());
    extension = CExtension(value, true);
    extension = CExtension("1.2", blob);
    extension.put_extnID("1.2");
    extension.put_extnValue(blob);
    extension.put_critical(true);
    use(CExtension(), extension.get_extnID(), extension.get_extnValue(), extension.get_critical(),
        compared(extension, extension));
    whole<ASN1T_Extension_traits>(extension, blob, ctxt);
    use(all.find("1.2"), static_cast<const CExtensions&>(all).find("1.2"), all == all);
    all.insert(extension);
    all.erase("1.2");
    whole<ASN1T_Extensions_traits>(all, blob, ctxt);
    list<ASN1T_Extension, ASN1T_Extension_traits, CExtension, CExtensions>(records, all, ctxt);

    CExtCRLReason reason;
    reason.put_reason(reason.get_reason());
    CExtHoldInstructionCode code;
    code.put_code(code.get_code());
    CExtInvalidityDate date;
    date.put_invalidityDate(date.get_invalidityDate());
    CExtCertificateIssuer issuer;
    issuer.put_issuer(issuer.get_issuer());
    CExtPrivateKeyUsagePeriod period(&time, nullptr);
    period.put_notBefore(period.get_notBefore());
    period.put_notAfter(period.get_notAfter());
    period.encode();
    use(CExtPrivateKeyUsagePeriod(blob));
    named<CExtCRLReason>(blob, reason.get_reason());
    named<CExtHoldInstructionCode>(blob, code.get_code());
    named<CExtInvalidityDate>(blob, time);
    named<CExtCertificateIssuer>(blob, issuer.get_issuer());
    asn1Encode<ASN1T_CRLReason_traits, CrlReason>(reason.get_reason());
    pairOf<ASN1T_PrivateKeyUsagePeriod_traits>(period, period, blob);
    ASN1T_PrivateKeyUsagePeriod record;
    setAndGet<ASN1T_PrivateKeyUsagePeriod_traits>(record, period, ctxt);
}

void commonValues(ASN1CTXT* ctxt, CBlob& blob, CAlgorithmIdentifier& algorithm, CBigInteger& number,
                  CIssuerSerial& serial, COtherHashAlgAndValue& hash, COtherHash& choice,
                  _Asn1RTDList& records) {
    use(CAlgorithmIdentifier("1.2"), algorithm.get_algorithm(), algorithm.get_parameters(),
        compared(algorithm, algorithm));
    algorithm.assign(algorithm);
    algorithm.swap(algorithm);
    algorithm.put_algorithm("1.2");
    algorithm.put_parameters(blob);
    whole<ASN1T_AlgorithmIdentifier_traits>(algorithm, blob, ctxt);
    ASN1T_AlgorithmIdentifier_get(algorithm, *ASN1T_AlgorithmIdentifier_set(ctxt, "1.2", &blob));
    unsigned char octets[] = {1};
    ASN1T_BigInt_inc(octets, 1, 0);
    use(CBigInteger(octets, 1ul), CBigInteger(4ul), ++number, number++, number.abs(),
        number.compare(number), number<number, number> number, number <= number, number >= number,
        compared(number, number));
    number.increment(0);
    number.add(number);
    number.decode(number.encode());

    use(CIssuerSerial(CGeneralNames(), number), serial == serial);
    serial.put_issuer(serial.get_issuer());
    serial.put_serialNumber(serial.get_serialNumber());
    whole<ASN1T_IssuerSerial_traits>(serial, blob, ctxt);
    use(COtherHashAlgAndValue(blob, algorithm), hash.compare_hashValue(hash), hash == hash);
    hash.put_hashAlgorithm(hash.get_hashAlgorithm());
    hash.put_hashValue(hash.get_hashValue());
    whole<ASN1T_OtherHashAlgAndValue_traits>(hash, blob, ctxt);
    use(COtherHash(blob), COtherHash(hash), choice.get_type(), choice.compare_hashValue(choice),
        choice == choice);
    choice.put_sha1Hash(*choice.get_sha1Hash());
    choice.put_otherHash(*choice.get_otherHash());
    asn1Encode<ASN1T_OtherHash_traits, COtherHash>(choice);
    ASN1T_OtherHash hashRecord;
    setAndGet<ASN1T_OtherHash_traits>(hashRecord, choice, ctxt);
    choice.clear();

    CESSCertID first(blob);
    CESSCertIDv2 second(blob, algorithm);
    COtherCertID other(blob, algorithm);
    use(CESSCertID(), CESSCertIDv2(), CESSCertIDv2(blob), COtherCertID(), COtherCertID(blob),
        first == first, second == second, other == other, other.compare_noHashParam(other));
    first.put_certHash(first.get_certHash());
    first.put_issuerSerial(first.get_issuerSerial());
    second.put_certHash(second.get_certHash());
    second.put_issuerSerial(second.get_issuerSerial());
    second.put_hashAlgorithm(second.get_hashAlgorithm());
    other.put_otherCertHash(other.get_otherCertHash());
    other.put_issuerSerial(other.get_issuerSerial());
    whole<ASN1T_ESSCertID_traits>(first, blob, ctxt);
    whole<ASN1T_ESSCertIDv2_traits>(second, blob, ctxt);
    whole<ASN1T_OtherCertID_traits>(other, blob, ctxt);
    CESSCertIDList firstList;
    CESSCertIDv2List secondList;
    COtherCertIDList otherList;
    list<ASN1T_ESSCertID, ASN1T_ESSCertID_traits, CESSCertID>(records, firstList, ctxt);
    list<ASN1T_ESSCertIDv2, ASN1T_ESSCertIDv2_traits, CESSCertIDv2>(records, secondList, ctxt);
    list<ASN1T_OtherCertID, ASN1T_OtherCertID_traits, COtherCertID>(records, otherList, ctxt);
}

void distributionPoints(ASN1CTXT* ctxt, CBlob& blob, CDistributionPointName& name,
                        CDistributionPoint& point, CReasonFlags& reasons,
                        CAccessDescription& access, CPolicyInformation& policy,
                        CAuthorityInfoAccessSyntax& authority, CCRLDistPointsSyntax& points,
                        CPolicyInformationList& policies, _Asn1RTDList& records) {
    use(CDistributionPointName(CGeneralNames()), name.get_type(), compared(name, name));
    name.put_fullName(*name.get_fullName());
    asn1Encode<ASN1T_DistributionPointName_traits, CDistributionPointName>(name);
    name.decode(name.encode());
    ASN1T_DistributionPointName nameRecord;
    setAndGet<ASN1T_DistributionPointName_traits>(nameRecord, name, ctxt);
    name.clear();
    point.put_distributionPoint(point.get_distributionPoint());
    point.put_reasons(point.get_reasons());
    point.put_cRLIssuer(point.get_cRLIssuer());
    use(CDistributionPoint(), CDistributionPoint(point), point == point);
    whole<ASN1T_DistributionPoint_traits>(point, blob, ctxt);
    point.clear();
    ASN1T_CRLDistPointsSyntax pointsRecord;
    setAndGet<ASN1T_CRLDistPointsSyntax_traits>(pointsRecord, points, ctxt);
    list<ASN1T_DistributionPoint, ASN1T_DistributionPoint_traits, CDistributionPoint>(records,
                                                                                      points, ctxt);
    reasons = CReasonFlags(1u);
    reasons.put_value(reasons.get_value());
    reasons.put_bit(1, reasons.get_bit(1));
    reasons.add_flag(CReasonFlags::Flag());
    reasons.remove_flag(CReasonFlags::Flag());
    use(reasons.get_flag(CReasonFlags::Flag()), compared(reasons, reasons));
    ASN1T_ReasonFlags flags;
    setAndGet<ASN1T_ReasonFlags_traits>(flags, reasons, ctxt);
    use(CAccessDescription("1.2", CGeneralName()), access == access);
    access.put_accessMethod(access.get_accessMethod());
    access.put_accessLocation(access.get_accessLocation());
    whole<ASN1T_AccessDescription_traits>(access, blob, ctxt);
    whole<ASN1T_AuthorityInfoAccessSyntax_traits>(authority, blob, ctxt);
    list<ASN1T_AccessDescription, ASN1T_AccessDescription_traits, CAccessDescription>(
        records, authority, ctxt);
    policy = CPolicyInformation("1.2");
    policy.put_policyIdentifier(policy.get_policyIdentifier());
    whole<ASN1T_PolicyInformation_traits>(policy, blob, ctxt);
    list<ASN1T_PolicyInformation, ASN1T_PolicyInformation_traits, CPolicyInformation>(
        records, policies, ctxt);
}

void additions(CBlob& blob, const CName& name, const CGeneralName& general) {
    use(toRfc4514(name), fromRfc4514("CN=x"), toUtf8(L"x"), fromUtf8("x"),
        sameWhole(general, general));
    CSignerInfoBuilder signer(blob);
    CSignedDataBuilder message("1.2", blob);
    message.add(signer);
    use(CSignedDataBuilder("1.2"), message.certificates(), message.encode(), signer.toBeSigned());
    CKeyUsage usage(CKeyUsage::digitalSignature);
    usage.decode(usage.encode());
    CExtKeyUsage purposes{"1.2"};
    purposes.decode(purposes.encode());
    use(purposes.has("1.2"));
    CCertificatePolicies policies(1);
    policies.front().addPracticeStatement("x");
    policies.decode(policies.encode());
}

} // namespace

int main(int argumentCount, char**) {
    // No argument is ever given; with the functions in reach the linker has to find all they name.
    if (argumentCount > 1000) {
        use(std::make_tuple(bridge, names, attributes, messages, managementProtocol, choices,
                            extensions, commonValues, distributionPoints, additions));
    }
    std::wcout << CName(L"C=RU,O=x").toString().c_str() << L'\n';
}
