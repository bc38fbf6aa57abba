#ifndef TESTS_SUPPORT_MESSAGE_CLASSES_H
#define TESTS_SUPPORT_MESSAGE_CLASSES_H

#include <brevantis/asn1/values.h>

namespace tests {

/// Stands for a class where only its name is wanted.
template <class Class>
struct Named {
    using type = Class;
};

/// Calls @p visit with the name of each message that a value class of its own stands for, and
/// with the class.
template <class Visit>
void forEachMessageClass(Visit visit) {
    using namespace Brevantis::ASN1;
    visit("AccessDescription", Named<CAccessDescription>());
    visit("AlgorithmIdentifier", Named<CAlgorithmIdentifier>());
    visit("Attribute", Named<CAttribute>());
    visit("AttributeTypeAndValue", Named<CAttributeTypeAndValue>());
    visit("Attributes", Named<CAttributes>());
    visit("AuthorityInfoAccessSyntax", Named<CAuthorityInfoAccessSyntax>());
    visit("BigInteger", Named<CBigInteger>());
    visit("CRLDistPointsSyntax", Named<CCRLDistPointsSyntax>());
    visit("ContentInfo", Named<CContentInfo>());
    visit("DistributionPoint", Named<CDistributionPoint>());
    visit("DistributionPointName", Named<CDistributionPointName>());
    visit("ESSCertID", Named<CESSCertID>());
    visit("ESSCertIDv2", Named<CESSCertIDv2>());
    visit("Extension", Named<CExtension>());
    visit("Extensions", Named<CExtensions>());
    visit("GeneralName", Named<CGeneralName>());
    visit("GeneralNames", Named<CGeneralNames>());
    visit("IssuerSerial", Named<CIssuerSerial>());
    visit("Name", Named<CName>());
    visit("OtherCertID", Named<COtherCertID>());
    visit("OtherHash", Named<COtherHash>());
    visit("OtherHashAlgAndValue", Named<COtherHashAlgAndValue>());
    visit("PolicyInformation", Named<CPolicyInformation>());
    visit("ReasonFlags", Named<CReasonFlags>());
    visit("RelativeName", Named<CRelativeDistinguishedName>());
    visit("RevAnnContent", Named<CRevAnnContent>());
    visit("StatusInfo", Named<CPKIStatusInfo>());
    visit("Time", Named<CTimeChoice>());
}

/// A value of a class, to be decoded into.
template <class Value>
Value emptyValue() {
    return Value();
}
template <>
inline Brevantis::ASN1::CPKIStatusInfo emptyValue() {
    return Brevantis::ASN1::CPKIStatusInfo(Brevantis::ASN1::PKIStatusEnum_accepted);
}

} // namespace tests

#endif
