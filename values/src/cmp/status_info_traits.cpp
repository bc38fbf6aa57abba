#include <brevantis/asn1/values/cmp/status_info_traits.h>

#include <utility>

#include <brevantis/asn1/values/cmp/failure_info_traits.h>
#include <brevantis/asn1/values/cmp/free_text_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_PKIStatusInfo_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_PKIStatusInfo& record,
                                     const CPKIStatusInfo& value) {
    record.m = {};
    record.status = value.get_pkiStatus();
    if (value.get_failureInfo().get_value() != 0) {
        ASN1T_PKIFailureInfo_traits::set(ctxt, record.failInfo, value.get_failureInfo());
        record.m.failInfoPresent = 1;
    }
    if (!value.get_statusString().empty()) {
        CPKIFreeText_Encode(ctxt, record.statusString, value.get_statusString());
        record.m.statusStringPresent = 1;
    }
}

void ASN1T_PKIStatusInfo_traits::get(const asn1data::ASN1T_PKIStatusInfo& record,
                                     CPKIStatusInfo& value) {
    CPKIStatusInfo read(static_cast<PKIStatusEnum>(record.status));
    if (record.m.failInfoPresent != 0) {
        CPKIFailureInfo failureInfo(0);
        ASN1T_PKIFailureInfo_traits::get(record.failInfo, failureInfo);
        read.put_failureInfo(failureInfo);
    }
    if (record.m.statusStringPresent != 0) {
        CPKIFreeText text;
        CPKIFreeText_Parse(nullptr, text, record.statusString);
        read.put_statusString(text);
    }
    value = std::move(read);
}

} // namespace Brevantis::ASN1
