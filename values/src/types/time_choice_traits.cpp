#include <brevantis/asn1/values/types/time_choice_traits.h>

#include <string>

#include <brevantis/asn1/runtime/generalized_time.h>
#include <brevantis/asn1/runtime/utc_time.h>
#include <brevantis/asn1/runtime/value_copy.h>

namespace Brevantis::ASN1 {

namespace {

/// The text of a time.
/// @param control of the type that the text is to have
std::string GetASN1CTimeString(const CDateTime& time, ASN1CTime& control) {
    control.clear();
    requireSuccess(control.setYear(time.year()));
    requireSuccess(control.setMonth(time.month()));
    requireSuccess(control.setDay(time.day()));
    requireSuccess(control.setHour(time.hour()));
    requireSuccess(control.setMinute(time.minute()));
    requireSuccess(control.setSecond(time.second()));
    const int length = control.getTimeStringLen();
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    if (control.getTimeString(text.data(), length + 1) == nullptr) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    return text;
}

/// Writes a time as DER has it, into a block on the context's heap.
template <class Control>
void setText(ASN1CTXT* ctxt, const char*& target, const CDateTime& time) {
    EncodeBuffer buffer;
    const char* unused = "";
    Control control(buffer, unused, 1);
    if (rtCopyCharStr(ctxt, GetASN1CTimeString(time, control).c_str(), &target) == 0) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
    }
}

/// Reads the fields of a text. Those that it does not give are negative, and no CDateTime.
template <class Control>
CDateTime getText(const char* text) {
    DecodeBuffer buffer;
    Control control(buffer, text, 0);
    const int second = control.getSecond();
    const int minute = control.getMinute();
    const int hour = control.getHour();
    const int day = control.getDay();
    const int month = control.getMonth();
    const int year = control.getYear();
    return CDateTime(year, month, day, hour, minute, second);
}

} // namespace

void ASN1T_Time_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_Time& record,
                            const CTimeChoice& value) {
    switch (value.get_type()) {
    case asn1data::T_Time_utcTime:
        setText<ASN1CUTCTime>(ctxt, record.u.utcTime, *value.get_time());
        break;
    case asn1data::T_Time_generalTime:
        setText<ASN1CGeneralizedTime>(ctxt, record.u.generalTime, *value.get_time());
        break;
    default:
        return;
    }
    record.t = value.get_type();
}

void ASN1T_Time_traits::get(const asn1data::ASN1T_Time& record, CTimeChoice& value) {
    switch (record.t) {
    case asn1data::T_Time_utcTime:
        value = CTimeChoice(getText<ASN1CUTCTime>(record.u.utcTime));
        break;
    case asn1data::T_Time_generalTime:
        value = CTimeChoice(getText<ASN1CGeneralizedTime>(record.u.generalTime));
        break;
    default:
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
}

} // namespace Brevantis::ASN1
