#ifndef BREVANTIS_ASN1_RUNTIME_UTC_TIME_H
#define BREVANTIS_ASN1_RUNTIME_UTC_TIME_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/time.h>

/// @file
/// UTCTime (X.680, clause 47) over a caller's text.

/// A UTCTime. It takes YYMMDDhhmm[ss] with "Z" or an offset, and under DER with "Z" only; it always
/// writes seconds. There is no fraction. Hour and minute start out as not set. An offset below an
/// hour is written with a minus sign. Known and kept.
class BREVANTIS_ASN1_API ASN1CUTCTime : public ASN1CTime {
public:
    /// As the constructors of ASN1CTime.
    ASN1CUTCTime(ASN1MessageBufferIF& buffer, char*& text, int size, unsigned char der = 0);
    ASN1CUTCTime(ASN1MessageBufferIF& buffer, const char*& text, unsigned char der = 0);
    ASN1CUTCTime(ASN1Context& sharedContext, char*& text, int size, unsigned char der = 0);
    ASN1CUTCTime(ASN1Context& sharedContext, const char*& text, unsigned char der = 0);
    ASN1CUTCTime(char*& text, int size, unsigned char der = 0);
    explicit ASN1CUTCTime(const char*& text, unsigned char der = 0);
    ASN1CUTCTime(const ASN1CUTCTime& other);
    ASN1CUTCTime& operator=(const ASN1CUTCTime& other);
    ~ASN1CUTCTime() override;

    /// @return 0, without parsing
    int getFraction() override;
    /// @return as in the base. To take UTC away from a time without an offset does nothing, for the
    ///         text would have no zone
    int setUTC(unsigned char value) override;
    /// Stores the year as given: with two digits `getYear` has no century afterwards. The text,
    /// which shows two digits, is right either way.
    /// @param value 0 to 32767
    int setYear(int value) override;
    /// @return ASN1S_NOT_SUPPORTED, the fraction being 0
    int setFraction(int value) override;
    /// Without @p wantOffset the local time of day goes out marked "Z". Known and kept.
    int setTime(long seconds, unsigned char wantOffset) override;
    int parseString(const char* text) override;
    void clear() override;
    /// @return as in the base; ASN1S_INVALID_FORMAT also when there is neither "Z" nor an offset,
    ///         with the text written without a zone
    int compileString() override;

private:
    void setInitialFields();
};

#endif
