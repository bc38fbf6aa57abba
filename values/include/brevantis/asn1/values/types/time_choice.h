#ifndef BREVANTIS_ASN1_VALUES_TYPES_TIME_CHOICE_H
#define BREVANTIS_ASN1_VALUES_TYPES_TIME_CHOICE_H

#include <brevantis/asn1/values/types/choice.h>
#include <brevantis/support/date_time.h>

/// @file
/// Time as X.509 writes it.

namespace Brevantis::ASN1 {

BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CDateTime, 1>;
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CDateTime, 2>;

/// Alternatives of CTimeChoice.
class BREVANTIS_ASN1_API CTimeChoiceImpl final
    : public ChoiceOf<ChoiceValueTraitsT<CDateTime, 1>, ChoiceValueTraitsT<CDateTime, 2>> {};

/// Time (RFC 5280, 4.1): a UTCTime or a GeneralizedTime, as the year demands.
///
/// What lies below a second is not encoded.
/// @warning A UTCTime shows two digits of the year. A time before 1950 is one too, and comes back
///          as the year of 1950 to 2049 that has the same two digits.
class BREVANTIS_ASN1_API CTimeChoice {
public:
    /// `CDateTime(0, 0)` as a UTCTime.
    CTimeChoice();
    /// As `put_time` sets it.
    explicit CTimeChoice(const CDateTime& time);

    /// Up to 2049 the time becomes a UTCTime, from 2050 on a GeneralizedTime (RFC 5280, 4.1.2.5).
    void put_time(const CDateTime& time);
    /// @return the time, valid until it changes or goes; null when there is none
    const CDateTime* get_time() const;
    /// @return 1 for utcTime, 2 for generalTime; 0 behind `clear` and when moved from
    unsigned int get_type() const;

    /// Takes the time away. Give the object a new one before it is encoded.
    void clear();

    /// @return the DER
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when there is no time
    CBlob encode() const;
    /// The fields of the text are taken as they stand: a zone offset is not applied. The
    /// alternative is chosen anew by the year, so that a GeneralizedTime before 2050 becomes
    /// alternative 1.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob is no Time, with
    ///         E_INVALIDARG when its text is no time; the object stays as it was
    void decode(const CBlob& blob);

private:
    using UtcTime = ChoiceValueTraitsT<CDateTime, 1>;
    using GeneralTime = ChoiceValueTraitsT<CDateTime, 2>;

    ChoicePointer<CTimeChoiceImpl> choice_;
};

} // namespace Brevantis::ASN1

#endif
