#include <brevantis/asn1/values/types/time_choice.h>

#include <brevantis/asn1/values/types/time_choice_traits.h>

namespace Brevantis::ASN1 {

CTimeChoice::CTimeChoice() {
    choice_.put<UtcTime>(CDateTime(0, 0));
}

CTimeChoice::CTimeChoice(const CDateTime& time) {
    put_time(time);
}

void CTimeChoice::put_time(const CDateTime& time) {
    if (time.year() < 2050) {
        choice_.put<UtcTime>(time);
    } else {
        choice_.put<GeneralTime>(time);
    }
}

const CDateTime* CTimeChoice::get_time() const {
    const CDateTime* time = choice_.get<UtcTime>();
    return time != nullptr ? time : choice_.get<GeneralTime>();
}

unsigned int CTimeChoice::get_type() const {
    return choice_.type();
}

void CTimeChoice::clear() {
    choice_.clear();
}

CBlob CTimeChoice::encode() const {
    return asn1Encode<ASN1T_Time_traits>(*this);
}

void CTimeChoice::decode(const CBlob& blob) {
    asn1Decode<ASN1T_Time_traits>(blob, *this);
}

} // namespace Brevantis::ASN1
