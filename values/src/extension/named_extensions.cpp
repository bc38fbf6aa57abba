#include <brevantis/asn1/values/extension/named_extensions.h>

#include <utility>

#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/values/extension/named_extension_traits.h>
#include <brevantis/asn1/values/types/general_name_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

#include "util/value_with_field.h"

namespace Brevantis::ASN1 {

template <>
struct FieldCoder<CExtValue, CrlReason> : TraitsCoder<ASN1T_CRLReason_traits, CrlReason> {};
template <>
struct FieldCoder<CExtValue, CStringProxy> : TraitsCoder<ASN1TObjId_traits, CStringProxy> {};
template <>
struct FieldCoder<CExtValue, CDateTime> : TraitsCoder<ASN1GeneralizedTime_traits, CDateTime> {};
template <>
struct FieldCoder<CExtValue, CGeneralNames>
    : TraitsCoder<ASN1T_GeneralNames_traits, CGeneralNames> {};

template class ValueWithField<CExtValue, CrlReason>;
template class ValueWithField<CExtValue, CStringProxy>;
template class ValueWithField<CExtValue, CDateTime>;
template class ValueWithField<CExtValue, CGeneralNames>;

namespace {

const CStringProxy privateKeyUsagePeriodId = toOID(asn1data::id_ce_privateKeyUsagePeriod);
const CStringProxy reasonCodeId = toOID(asn1data::id_ce_reasonCode);
const CStringProxy instructionCodeId = toOID(asn1data::id_ce_instructionCode);
const CStringProxy invalidityDateId = toOID(asn1data::id_ce_invalidityDate);
const CStringProxy certificateIssuerId = toOID(asn1data::id_ce_certificateIssuer);

} // namespace

CExtCRLReason::CExtCRLReason() : ValueWithField(reasonCodeId.c_str()) {}

CExtCRLReason::CExtCRLReason(CrlReason reason) : ValueWithField(reasonCodeId.c_str()) {
    putField(reason);
}

CExtCRLReason::CExtCRLReason(const CBlob& value) : ValueWithField(reasonCodeId.c_str(), value) {}

CrlReason CExtCRLReason::get_reason() const {
    return field();
}

void CExtCRLReason::put_reason(CrlReason reason) {
    putField(reason);
}

CExtHoldInstructionCode::CExtHoldInstructionCode() : ValueWithField(instructionCodeId.c_str()) {}

CExtHoldInstructionCode::CExtHoldInstructionCode(const char* code)
    : ValueWithField(instructionCodeId.c_str()) {
    putField(code);
}

CExtHoldInstructionCode::CExtHoldInstructionCode(const CBlob& value)
    : ValueWithField(instructionCodeId.c_str(), value) {}

const char* CExtHoldInstructionCode::get_code() const {
    return field().c_str();
}

void CExtHoldInstructionCode::put_code(const char* code) {
    putField(code);
}

CExtInvalidityDate::CExtInvalidityDate() : ValueWithField(invalidityDateId.c_str()) {}

CExtInvalidityDate::CExtInvalidityDate(const CDateTime& invalidityDate)
    : ValueWithField(invalidityDateId.c_str()) {
    putField(invalidityDate);
}

CExtInvalidityDate::CExtInvalidityDate(const CBlob& value)
    : ValueWithField(invalidityDateId.c_str(), value) {}

const CDateTime& CExtInvalidityDate::get_invalidityDate() const {
    return field();
}

void CExtInvalidityDate::put_invalidityDate(const CDateTime& invalidityDate) {
    putField(invalidityDate);
}

CExtCertificateIssuer::CExtCertificateIssuer() : ValueWithField(certificateIssuerId.c_str()) {}

CExtCertificateIssuer::CExtCertificateIssuer(const CGeneralNames& issuer)
    : ValueWithField(certificateIssuerId.c_str()) {
    putField(issuer);
}

CExtCertificateIssuer::CExtCertificateIssuer(const CBlob& value)
    : ValueWithField(certificateIssuerId.c_str(), value) {}

const CGeneralNames& CExtCertificateIssuer::get_issuer() const {
    return field();
}

void CExtCertificateIssuer::put_issuer(const CGeneralNames& issuer) {
    putField(issuer);
}

namespace {

std::optional<CDateTime> optionalTime(const CDateTime* time) {
    return time != nullptr ? std::optional<CDateTime>(*time) : std::nullopt;
}

const CDateTime* pointerTo(const std::optional<CDateTime>& time) {
    return time.has_value() ? &*time : nullptr;
}

} // namespace

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(const CDateTime* notBefore,
                                                     const CDateTime* notAfter)
    : CExtValue(privateKeyUsagePeriodId.c_str()), notBefore_(optionalTime(notBefore)),
      notAfter_(optionalTime(notAfter)) {
    encode();
}

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(const CBlob& value)
    : CExtValue(privateKeyUsagePeriodId.c_str(), value) {
    decode();
}

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(CExtPrivateKeyUsagePeriod&& other) noexcept
    : CExtValue(privateKeyUsagePeriodId.c_str()) {
    swap(other);
}

CExtPrivateKeyUsagePeriod&
CExtPrivateKeyUsagePeriod::operator=(CExtPrivateKeyUsagePeriod&& other) noexcept {
    CExtPrivateKeyUsagePeriod(std::move(other)).swap(*this);
    return *this;
}

void CExtPrivateKeyUsagePeriod::swap(CExtPrivateKeyUsagePeriod& other) noexcept {
    value().swap(other.value());
    notBefore_.swap(other.notBefore_);
    notAfter_.swap(other.notAfter_);
}

const CDateTime* CExtPrivateKeyUsagePeriod::get_notBefore() const {
    return pointerTo(notBefore_);
}

const CDateTime* CExtPrivateKeyUsagePeriod::get_notAfter() const {
    return pointerTo(notAfter_);
}

void CExtPrivateKeyUsagePeriod::put_notBefore(const CDateTime* time) {
    *this = CExtPrivateKeyUsagePeriod(time, get_notAfter());
}

void CExtPrivateKeyUsagePeriod::put_notAfter(const CDateTime* time) {
    *this = CExtPrivateKeyUsagePeriod(get_notBefore(), time);
}

void CExtPrivateKeyUsagePeriod::encode() {
    value() = asn1Encode<ASN1T_PrivateKeyUsagePeriod_traits>(*this);
}

void CExtPrivateKeyUsagePeriod::decode() {
    asn1Decode<ASN1T_PrivateKeyUsagePeriod_traits>(get_value(), *this);
}

} // namespace Brevantis::ASN1
