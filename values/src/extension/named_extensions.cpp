#include <brevantis/asn1/values/extension/named_extensions.h>

#include <utility>

#include <brevantis/asn1/values/extension/named_extension_traits.h>
#include <brevantis/asn1/values/types/general_name_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>

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

constexpr const char* privateKeyUsagePeriodId = "2.5.29.16";
constexpr const char* reasonCodeId = "2.5.29.21";
constexpr const char* instructionCodeId = "2.5.29.23";
constexpr const char* invalidityDateId = "2.5.29.24";
constexpr const char* certificateIssuerId = "2.5.29.29";

} // namespace

CExtCRLReason::CExtCRLReason() : ValueWithField(reasonCodeId) {}

CExtCRLReason::CExtCRLReason(CrlReason reason) : ValueWithField(reasonCodeId) {
    putField(reason);
}

CExtCRLReason::CExtCRLReason(const CBlob& value) : ValueWithField(reasonCodeId, value) {}

CrlReason CExtCRLReason::get_reason() const {
    return field();
}

void CExtCRLReason::put_reason(CrlReason reason) {
    putField(reason);
}

CExtHoldInstructionCode::CExtHoldInstructionCode() : ValueWithField(instructionCodeId) {}

CExtHoldInstructionCode::CExtHoldInstructionCode(const char* code)
    : ValueWithField(instructionCodeId) {
    putField(code);
}

CExtHoldInstructionCode::CExtHoldInstructionCode(const CBlob& value)
    : ValueWithField(instructionCodeId, value) {}

const char* CExtHoldInstructionCode::get_code() const {
    return field().c_str();
}

void CExtHoldInstructionCode::put_code(const char* code) {
    putField(code);
}

CExtInvalidityDate::CExtInvalidityDate() : ValueWithField(invalidityDateId) {}

CExtInvalidityDate::CExtInvalidityDate(const CDateTime& invalidityDate)
    : ValueWithField(invalidityDateId) {
    putField(invalidityDate);
}

CExtInvalidityDate::CExtInvalidityDate(const CBlob& value)
    : ValueWithField(invalidityDateId, value) {}

const CDateTime& CExtInvalidityDate::get_invalidityDate() const {
    return field();
}

void CExtInvalidityDate::put_invalidityDate(const CDateTime& invalidityDate) {
    putField(invalidityDate);
}

CExtCertificateIssuer::CExtCertificateIssuer() : ValueWithField(certificateIssuerId) {}

CExtCertificateIssuer::CExtCertificateIssuer(const CGeneralNames& issuer)
    : ValueWithField(certificateIssuerId) {
    putField(issuer);
}

CExtCertificateIssuer::CExtCertificateIssuer(const CBlob& value)
    : ValueWithField(certificateIssuerId, value) {}

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
    : CExtValue(privateKeyUsagePeriodId), notBefore_(optionalTime(notBefore)),
      notAfter_(optionalTime(notAfter)) {
    encode();
}

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(const CBlob& value)
    : CExtValue(privateKeyUsagePeriodId, value) {
    decode();
}

CExtPrivateKeyUsagePeriod::CExtPrivateKeyUsagePeriod(CExtPrivateKeyUsagePeriod&& other) noexcept
    : CExtValue(privateKeyUsagePeriodId) {
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
