#ifndef BREVANTIS_ASN1_RUNTIME_GENERALIZED_TIME_H
#define BREVANTIS_ASN1_RUNTIME_GENERALIZED_TIME_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/time.h>

/// @file
/// GeneralizedTime (X.680, clause 46) over a caller's text.

/// A GeneralizedTime, and the base of the control classes of types that are one.
///
/// It takes YYYYMMDDhh[mm[ss[.f]]] with "Z", an offset or nothing, and under DER with "Z" only. The
/// fraction is one digit in what it writes. Of a longer one the value is the digits as a number
/// (ASN1S_INVALID_FORMAT from 2^31 on), and with the second digit read in place of a zone the time
/// counts as local. An offset below an hour is written with a minus sign. Known and kept.
class BREVANTIS_ASN1_API ASN1CGeneralizedTime : public ASN1CTime {
public:
    /// As the constructors of ASN1CTime.
    ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, char*& text, int size, unsigned char der = 0);
    ASN1CGeneralizedTime(ASN1MessageBufferIF& buffer, const char*& text, unsigned char der = 0);
    ASN1CGeneralizedTime(ASN1Context& sharedContext, char*& text, int size, unsigned char der = 0);
    ASN1CGeneralizedTime(ASN1Context& sharedContext, const char*& text, unsigned char der = 0);
    ASN1CGeneralizedTime(char*& text, int size, unsigned char der = 0);
    explicit ASN1CGeneralizedTime(const char*& text, unsigned char der = 0);
    ASN1CGeneralizedTime(const ASN1CGeneralizedTime& other);
    ASN1CGeneralizedTime& operator=(const ASN1CGeneralizedTime& other);
    ~ASN1CGeneralizedTime() override;

    /// @return the hundreds of the year; ASN1S_INVALID_FORMAT for a text that does not parse,
    ///         ASN1S_TAG_NOT_FOUND without a year
    int getCentury();
    /// Replaces the hundreds of the year.
    /// @param value 0 to 99
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    int setCentury(int value);

    int setTime(long seconds, unsigned char wantOffset) override;
    int parseString(const char* text) override;
    int compileString() override;
};

#endif
