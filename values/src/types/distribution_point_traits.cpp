#include <brevantis/asn1/values/types/distribution_point_traits.h>

#include <utility>

#include <brevantis/asn1/values/types/general_name_traits.h>
#include <brevantis/asn1/values/types/reason_flags_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_DistributionPointName_traits::set(ASN1CTXT* ctxt,
                                             asn1data::ASN1T_DistributionPointName& record,
                                             const CDistributionPointName& value) {
    record.t = 0;
    if (value.get_fullName() != nullptr) {
        record.u.fullName = &newRecord<asn1data::ASN1T_GeneralNames>(ctxt);
        GeneralNameListTraits::set(ctxt, *record.u.fullName, *value.get_fullName());
        record.t = asn1data::T_DistributionPointName_fullName;
    }
}

void ASN1T_DistributionPointName_traits::get(const asn1data::ASN1T_DistributionPointName& record,
                                             CDistributionPointName& value) {
    // Kept: a name relative to the issuer leaves the value as it was.
    if (record.t == asn1data::T_DistributionPointName_fullName && record.u.fullName != nullptr) {
        CGeneralNames fullName;
        GeneralNameListTraits::get(*record.u.fullName, fullName);
        value = CDistributionPointName(fullName);
    }
}

void ASN1T_DistributionPoint_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_DistributionPoint& record,
                                         const CDistributionPoint& value) {
    record.m = {};
    if (value.get_distributionPoint() != nullptr) {
        record.m.distributionPointPresent = 1;
        ASN1T_DistributionPointName_traits::set(ctxt, record.distributionPoint,
                                                *value.get_distributionPoint());
    }
    if (value.get_reasons() != nullptr) {
        record.m.reasonsPresent = 1;
        ASN1T_ReasonFlags_traits::set(ctxt, record.reasons, *value.get_reasons());
    }
    if (value.get_cRLIssuer() != nullptr && !value.get_cRLIssuer()->empty()) {
        record.m.cRLIssuerPresent = 1;
        GeneralNameListTraits::set(ctxt, record.cRLIssuer, *value.get_cRLIssuer());
    }
}

void ASN1T_DistributionPoint_traits::get(const asn1data::ASN1T_DistributionPoint& record,
                                         CDistributionPoint& value) {
    CDistributionPoint read;
    if (record.m.distributionPointPresent != 0) {
        CDistributionPointName name;
        ASN1T_DistributionPointName_traits::get(record.distributionPoint, name);
        read.put_distributionPoint(&name);
    }
    if (record.m.reasonsPresent != 0) {
        CReasonFlags reasons;
        ASN1T_ReasonFlags_traits::get(record.reasons, reasons);
        read.put_reasons(&reasons);
    }
    if (record.m.cRLIssuerPresent != 0) {
        CGeneralNames issuer;
        GeneralNameListTraits::get(record.cRLIssuer, issuer);
        read.put_cRLIssuer(&issuer);
    }
    value = std::move(read);
}

void ASN1T_CRLDistPointsSyntax_traits::set(ASN1CTXT* ctxt,
                                           asn1data::ASN1T_CRLDistPointsSyntax& record,
                                           const CCRLDistPointsSyntax& value) {
    DistributionPointListTraits::set(ctxt, record, value);
}

void ASN1T_CRLDistPointsSyntax_traits::get(const asn1data::ASN1T_CRLDistPointsSyntax& record,
                                           CCRLDistPointsSyntax& value) {
    DistributionPointListTraits::get(record, value);
}

} // namespace Brevantis::ASN1
