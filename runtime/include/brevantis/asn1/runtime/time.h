#ifndef BREVANTIS_ASN1_RUNTIME_TIME_H
#define BREVANTIS_ASN1_RUNTIME_TIME_H

#include <array>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/control.h>

/// @file
/// Base of the time classes: a caller's time text together with its broken-down fields.

/// A time over a text variable of the caller's. The text is parsed when a field is first asked for
/// and written anew after each change of a field.
///
/// The object keeps a reference to the caller's pointer variable, which must outlive it. A text
/// that is read-only, or a buffer of fewer than 30 octets, cannot take what is written: from the
/// first change on, the caller's variable points to a buffer inside the object. It becomes null
/// when the object goes while the variable still points there.
///
/// Statuses that an operation returns are recorded in the context unless told otherwise; nothing
/// throws but the constructors (ASN1MessageBuffer::RTLError with ASN1S_NO_MEMORY, where they make a
/// context). `getTime` and `setTime` read the process's time zone; an object belongs to one thread.
class BREVANTIS_ASN1_API ASN1CTime : public ASN1CType {
public:
    /// Days of the months of a common year by month number; 0 at index 0.
    static const std::array<short, 13> daysInMonth;
    /// Days of a common year up to the end of a month, by month number; 0 at index 0.
    static const std::array<int, 13> daysAfterMonth;

    ~ASN1CTime() override;
    /// Copies fields and flags; the text stays where this object has it, and is cut to the room
    /// there. The context stays too.
    ASN1CTime& operator=(const ASN1CTime& other);

    /// The fields, parsed if need be.
    /// @return the value, -3 for one that is not set; ASN1S_INVALID_FORMAT for a text that does not
    ///         parse. Negative parts of an offset are values, not failures
    virtual int getYear();
    virtual int getMonth();
    virtual int getDay();
    virtual int getHour();
    virtual int getMinute();
    virtual int getSecond();
    /// @return the fraction: tenths of a second in a text of this library's making
    virtual int getFraction();
    /// @return hours of the offset from UTC, as getYear returns a field
    virtual int getDiffHour();
    /// @return minutes of the offset, with its sign, as getYear returns a field
    virtual int getDiffMinute();
    /// @return the offset from UTC in minutes; ASN1S_INVALID_FORMAT also for a text that does not
    ///         parse
    virtual int getDiff();
    /// @return non-zero for a time in UTC. Under DER nothing is parsed for it
    virtual unsigned char getUTC();
    /// Seconds since 1970-01-01 00:00:00 UTC, with the fields read as local standard time of the
    /// process whatever their zone, and the offset added. Known and kept.
    /// @return the seconds; ASN1S_INVALID_FORMAT for a text that does not parse
    virtual long getTime();

    /// The setters parse if need be, store, and write the text anew; that the other fields do not
    /// parse or are not set yet is no failure.
    /// @param value non-zero for UTC
    /// @return 0, with nothing done under DER
    virtual int setUTC(unsigned char value);
    /// @param value 0 to 32767
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range or a day that its month does not
    ///         have
    virtual int setYear(int value);
    /// @param value 1 to 12
    /// @return as setYear
    virtual int setMonth(int value);
    /// @param value 1 to 31
    /// @return as setYear
    virtual int setDay(int value);
    /// @param value 0 to 23
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    virtual int setHour(int value);
    /// @param value 0 to 59
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    virtual int setMinute(int value);
    /// @param value 0 to 59
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    virtual int setSecond(int value);
    /// @param value the digits behind the decimal mark as a number; any value, and one below 1 is
    ///        not written
    /// @return 0
    virtual int setFraction(int value);
    /// Takes the fields from a moment, as local time of the process.
    /// @param seconds since 1970-01-01 00:00:00 UTC
    /// @param wantOffset non-zero: keep the zone's offset with the time
    /// @return 0; ASN1S_INVALID_FORMAT for a moment whose year has no 16 bits
    virtual int setTime(long seconds, unsigned char wantOffset) = 0;
    /// @param value -12 to 12; the minutes of the offset stay
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    virtual int setDiffHour(int value);
    /// @param hours -12 to 12
    /// @param minutes -59 to 59, taken with the sign of @p hours: positive when @p hours is 0
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    virtual int setDiff(int hours, int minutes);
    /// @param minutes the offset, -720 to 720
    /// @return 0; ASN1S_INVALID_FORMAT for a value out of range
    virtual int setDiff(int minutes);

    /// Takes the fields from a text; one that is not the object's own is written to it too. A
    /// failure is not recorded and leaves the fields as they were.
    /// @param text up to its terminator
    /// @return 0, also for a text without a date, which leaves the fields not set;
    ///         ASN1S_INVALID_FORMAT
    virtual int parseString(const char* text) = 0;
    /// Takes every field back to its initial value and empties the text, which is not parsed then.
    virtual void clear();

    /// Compares by date, then by time of day less the offset; two texts of one moment on different
    /// local dates are different. What does not parse compares by the fields as they are.
    /// @return 0 when equal; otherwise the difference in days, or if that is 0 in milliseconds
    virtual int equals(ASN1CTime& other);
    virtual bool operator==(ASN1CTime& other);
    virtual bool operator!=(ASN1CTime& other);
    virtual bool operator>(ASN1CTime& other);
    virtual bool operator<(ASN1CTime& other);
    virtual bool operator>=(ASN1CTime& other);
    virtual bool operator<=(ASN1CTime& other);

    /// Writes the text from the fields; nothing is parsed.
    /// @return 0; ASN1S_INVALID_FORMAT when a field that the text needs is not set;
    ///         ASN1S_STRING_OVERFLOW when the text does not fit the caller's buffer, which stays as
    ///         it was
    virtual int compileString() = 0;

    /// Writes the text from the fields, if they are set.
    /// @return the text variable
    char*& getTimeStringPtr();
    /// Writes the text from the fields, if they are set.
    /// @return octets of the text, without its terminator
    int getTimeStringLen();
    /// Copies the text as it stands, with its terminator.
    /// @param size octets of @p buffer
    /// @return @p buffer; null when the text does not fit or there is none
    char* getTimeString(char* buffer, int size);

    /// Day of the proleptic Gregorian calendar, 0 for 0001-01-01, parsed if need be. A month that
    /// is not set adds nothing.
    int getDaysNum();
    /// Time of day less the offset in milliseconds, parsed if need be; not reduced to a day.
    long getMillisNum();

    /// Whether a month has a day. Fields that are not set pass: @p d or @p m below 1; with a year
    /// below 0, 29 February passes.
    static bool checkDate(int d, int m, int y) noexcept;
    /// Moves a date.
    /// @param days signed
    /// @return 0; ASN1S_INVALID_FORMAT, unrecorded, with the date as it was for a month that is
    ///         none and a year beyond 16 bits
    static int addDays(int days, short& y, short& m, short& d) noexcept;
    /// Moves a date and time of day; what is below a tenth of a second is lost.
    /// @param milliseconds signed
    /// @param tenths fraction of a second in tenths
    /// @return as addDays
    static int addMilliseconds(int milliseconds, short& y, short& m, short& d, short& h, short& min,
                               short& s, int& tenths) noexcept;

protected:
    /// On a buffer and its context. Nothing is parsed yet.
    /// @param text the caller's text variable
    /// @param size octets of the buffer that @p text points to
    /// @param der non-zero: the time obeys DER (X.690, 11.7 and 11.8)
    ASN1CTime(ASN1MessageBufferIF& buffer, char*& text, int size, unsigned char der);
    ASN1CTime(ASN1MessageBufferIF& buffer, const char*& text, unsigned char der);
    /// On a context that others hold too.
    ASN1CTime(ASN1Context& sharedContext, char*& text, int size, unsigned char der);
    ASN1CTime(ASN1Context& sharedContext, const char*& text, unsigned char der);
    /// On a context of its own.
    ASN1CTime(char*& text, int size, unsigned char der);
    ASN1CTime(const char*& text, unsigned char der);
    /// On the context and buffer of @p other, with a copy of the text in the object; of a longer
    /// text than 35 octets, which no time needs, the beginning.
    ASN1CTime(const ASN1CTime& other);

    static constexpr short NotSet = -3;      ///< a field that no text and no setter has given
    static constexpr int OwnBufferSize = 36; ///< octets of `ownBuffer`, terminator included

    /// Values of the fields, outside of the object.
    struct Fields {
        short year = NotSet;  ///< that of a UTCTime may stand without its century
        short month = NotSet; ///< 1 to 12
        short day = NotSet;   ///< 1 to 31
        short hour = NotSet;  ///< 0 to 23
        short minute = 0;     ///< 0 to 59
        short second = 0;     ///< 0 to 59
        short diffHour = 0;   ///< hours of the offset from UTC, -12 to 12
        short diffMinute = 0; ///< minutes of it, -59 to 59, with its sign
        int secFraction = 0;  ///< the digits behind the decimal mark as a number; 0 without any
    };

    /// Records and returns a status.
    int fail(int status) const noexcept;
    /// Parses the text unless that has been done.
    /// @return 0 or the status, which is recorded
    int ensureParsed();
    /// The same, with a failure neither returned nor recorded.
    void tryParse();
    /// Ends a parse: takes over the fields, and writes the object's text if another was parsed.
    void adoptFields(const Fields& fields, const char* text);
    /// Begins a compilation.
    /// @param fields receives the fields, brought to UTC when the text is to end in "Z"
    /// @return 0; ASN1S_INVALID_FORMAT, unrecorded, when that leads out of the calendar
    int writtenFields(Fields& fields) const noexcept;
    /// Turns to the internal buffer unless the caller's is large enough for a time.
    void checkCapacity();
    /// Puts a terminated text of @p length octets in place of the object's own.
    /// @return 0; ASN1S_STRING_OVERFLOW, recorded, when it does not fit
    int storeText(const char* text, int length);
    /// Takes date and time of day from a moment, as local time of the process.
    /// @param keepOffset whether the offset is computed too: hours, and in place of its minutes its
    ///        seconds modulo 60, so that minutes are lost (known and kept); otherwise it becomes 0
    /// @return 0, or ASN1S_INVALID_FORMAT, recorded
    int takeLocalTime(long seconds, bool keepOffset);

    /// What the getters give, once `parsed` is set; as in Fields.
    short year = NotSet;
    short month = NotSet;
    short day = NotSet;
    short hour = NotSet;
    short minute = 0;
    short second = 0;
    short diffHour = 0;
    short diffMinute = 0;
    int secFraction = 0;
    unsigned char utcFlag;    ///< non-zero: the text ends in "Z"
    unsigned char parsed = 0; ///< non-zero: the fields reflect the text
    unsigned char derRules;   ///< non-zero: the time obeys DER (X.690, 11.7 and 11.8)
    char*& timeStr;           ///< the caller's text variable, or `ownPointer` in a copy
    int timeStrSize;          ///< octets of the caller's buffer, 0 for a read-only text
    /// What `timeStr` leads to when the caller's buffer cannot be written.
    char ownBuffer[OwnBufferSize] = {};
    char* ownPointer = nullptr; ///< the text variable of a copy: null, or `ownBuffer`

private:
    int capacity() const noexcept;
    template <class Field>
    int getField(Field& field);
    template <class Field>
    int setField(Field& field, int value);

    bool pointsHere = false; ///< the caller's variable was turned to `ownBuffer`
};

#endif
