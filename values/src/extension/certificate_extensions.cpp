#include <brevantis/asn1/values/extension/certificate_extensions.h>

#include <algorithm>
#include <new>
#include <utility>

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/asn1data/information_objects.h>
#include <brevantis/asn1/asn1data/list_records.h>
#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/runtime/bit_set.h>
#include <brevantis/asn1/values/types/character_string.h>
#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>
#include <brevantis/asn1/values/util/text_conversion.h>
#include <brevantis/asn1/values/util/traits.h>

namespace Brevantis::ASN1 {

namespace {

constexpr unsigned usageCount = 9;

struct UsageTraits : CatalogueTraits<asn1data::ASN1T_KeyUsage, asn1data::ASN1C_KeyUsage,
                                     &asn1data::asn1Copy_KeyUsage> {
    static void set(ASN1CTXT* /*ctxt*/, ASN1_T& record, const CKeyUsage& value) {
        record = {};
        for (unsigned i = 0; i < usageCount; ++i) {
            if ((value.get_value() >> i & 1) != 0) {
                rtSetBit(record.data, usageCount, i);
                record.numbits = i + 1;
            }
        }
    }
    static void get(const ASN1_T& record, CKeyUsage& value) {
        const unsigned count = std::min(record.numbits, usageCount);
        unsigned flags = 0;
        for (unsigned i = 0; i < count; ++i) {
            flags |= rtTestBit(record.data, count, i) != 0 ? 1u << i : 0;
        }
        value.put_value(flags);
    }
};

using PurposesRecord = asn1data::ASN1T__extKeyUsage_ExtnType;

struct PurposesTraits : CatalogueTraits<PurposesRecord, asn1data::ASN1C__extKeyUsage_ExtnType,
                                        &asn1data::asn1Copy__extKeyUsage_ExtnType> {
    static void set(ASN1CTXT* ctxt, PurposesRecord& record, const CExtKeyUsage& value) {
        if (value.empty()) {
            ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
        }
        const auto size = static_cast<unsigned long>(sizeof(ASN1TObjId) * value.size());
        record.elem = static_cast<ASN1TObjId*>(allocateBlock(ctxt, size));
        for (const CStringProxy& each : value) {
            auto* const purpose = ::new (record.elem + record.n) ASN1TObjId();
            ASN1TObjId_traits::set(ctxt, *purpose, each.c_str());
            ++record.n;
        }
    }
    static void get(const PurposesRecord& record, CExtKeyUsage& value) {
        CExtKeyUsage purposes;
        for (unsigned i = 0; i < record.n; ++i) {
            purposes.push_back(toOID(record.elem[i]));
        }
        value.swap(purposes);
    }
};

struct PoliciesTraits : CatalogueTraits<asn1data::ASN1T_CertificatePoliciesSyntax,
                                        asn1data::ASN1C_CertificatePoliciesSyntax,
                                        &asn1data::asn1Copy_CertificatePoliciesSyntax> {
    static void set(ASN1CTXT* ctxt, ASN1_T& record, const CCertificatePolicies& value) {
        for (const CCertificatePolicy& each : value) {
            auto& policy = newElement(ctxt, record);
            ASN1TObjId_traits::set(ctxt, policy.policyIdentifier, each.policyIdentifier.c_str());
            for (const CPolicyQualifier& remark : each.qualifiers) {
                policy.m.policyQualifiersPresent = 1;
                auto& qualifier = newElement(ctxt, policy.policyQualifiers);
                ASN1TObjId_traits::set(ctxt, qualifier.policyQualifierId, remark.oid.c_str());
                if (remark.value.cbData() != 0) {
                    qualifier.m.qualifierPresent = 1;
                    Asn1TObject_traits::set(ctxt, qualifier.qualifier, remark.value);
                }
            }
        }
    }
    static void get(const ASN1_T& record, CCertificatePolicies& value) {
        CCertificatePolicies policies;
        for (const auto& each : asn1data::recordsOf(record)) {
            CCertificatePolicy& policy = policies.emplace_back();
            policy.policyIdentifier = toOID(each.policyIdentifier);
            if (each.m.policyQualifiersPresent == 0) {
                continue;
            }
            for (const auto& remark : asn1data::recordsOf(each.policyQualifiers)) {
                CPolicyQualifier& qualifier = policy.qualifiers.emplace_back();
                qualifier.oid = toOID(remark.policyQualifierId);
                if (remark.m.qualifierPresent != 0) {
                    Asn1TObject_traits::get(remark.qualifier, qualifier.value);
                }
            }
        }
        value.swap(policies);
    }
};

} // namespace

CBlob CKeyUsage::encode() const {
    return asn1Encode<UsageTraits>(*this);
}

void CKeyUsage::decode(const CBlob& blob) {
    asn1Decode<UsageTraits>(blob, *this);
}

bool CExtKeyUsage::has(const char* purpose) const {
    return std::find(begin(), end(), CStringProxy(purpose)) != end();
}

CBlob CExtKeyUsage::encode() const {
    return asn1Encode<PurposesTraits>(*this);
}

void CExtKeyUsage::decode(const CBlob& blob) {
    asn1Decode<PurposesTraits>(blob, *this);
}

void CCertificatePolicy::addPracticeStatement(const char* uri) {
    CPolicyQualifier qualifier;
    qualifier.oid = toOID(asn1data::id_qt_cps);
    qualifier.value = encodeCharString(towstring(uri).c_str(), StringTypeIA5);
    qualifiers.push_back(std::move(qualifier));
}

CBlob CCertificatePolicies::encode() const {
    return asn1Encode<PoliciesTraits>(*this);
}

void CCertificatePolicies::decode(const CBlob& blob) {
    asn1Decode<PoliciesTraits>(blob, *this);
}

} // namespace Brevantis::ASN1
