#ifndef BREVANTIS_ASN1_RUNTIME_BIT_SET_H
#define BREVANTIS_ASN1_RUNTIME_BIT_SET_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/control.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Bits of a BIT STRING as a set. Bit 0 is the high bit of the first octet (X.690, 8.6.2.1).

/// Sets a bit of an array.
/// @param numbits bits of @p bits
/// @return the bit's mask when it was set before, 0 when not; ASN1S_OUT_OF_BOUNDS when @p index >=
///         @p numbits
BREVANTIS_ASN1_API int rtSetBit(unsigned char* bits, unsigned int numbits,
                                unsigned int index) noexcept;

/// Clears a bit of an array.
/// @param numbits bits of @p bits
/// @return the bit's mask when it was set before, 0 when not; ASN1S_OUT_OF_BOUNDS when @p index >=
///         @p numbits
BREVANTIS_ASN1_API int rtClearBit(unsigned char* bits, unsigned int numbits,
                                  unsigned int index) noexcept;

/// Tests a bit of an array.
/// @param numbits bits of @p bits
/// @return the bit's mask when it is set; 0 when not or @p index >= @p numbits
BREVANTIS_ASN1_API int rtTestBit(const unsigned char* bits, unsigned int numbits,
                                 unsigned int index) noexcept;

/// Bits from the top of an octet down to its lowest one-bit: 0 for 0, 1 for 0x80, 8 for 0x01.
BREVANTIS_ASN1_API int rtOctetBitLen(int octet) noexcept;

/// A set of bits in memory of its own, in a caller's array of fixed size, or in a caller's
/// ASN1TDynBitStr. Base of the control classes of BIT STRING types.
///
/// The bit count is the position of the last one-bit plus one; only a value taken over from a
/// caller can start otherwise. Operations that fail record their status in the context and return
/// it; nothing is thrown and the bits stay as they were. ASN1S_NO_MEMORY (memory is out) is among
/// the failures of every operation that can grow. Ranges go from a first bit to an end bit that is
/// not part of them; a range that is empty changes no bit.
///
/// Own memory is a block of the context's heap and goes with the object. A string in a caller's
/// ASN1TDynBitStr that outgrows its octets moves to such a block and leaves the octets behind. A
/// record that was given without octets keeps its block when the object goes (it lives as long as
/// the heap); every other record is then empty.
class BREVANTIS_ASN1_API ASN1CBitStr : public ASN1CType {
public:
    /// `maxNumBits` of a string that may grow.
    static constexpr unsigned int Unlimited = 0xFFFFFFFFu;

    /// A string without memory and with a limit of 0: it takes nothing until `init` has run.
    ASN1CBitStr();
    explicit ASN1CBitStr(ASN1MessageBufferIF& buffer);
    explicit ASN1CBitStr(ASN1Context& sharedContext);

    /// A string of fixed size in a caller's array. Bits of the array past the count are cleared.
    /// @param data at least (@p maxBits + 7) / 8 octets, which outlive the object
    /// @param numBits the bit count, kept up to date; cut down to the limit at once
    /// @param maxBits the limit
    ASN1CBitStr(unsigned char* data, unsigned int& numBits, unsigned int maxBits);
    ASN1CBitStr(ASN1MessageBufferIF& buffer, unsigned char* data, unsigned int& numBits,
                unsigned int maxBits);
    ASN1CBitStr(ASN1Context& sharedContext, unsigned char* data, unsigned int& numBits,
                unsigned int maxBits);

    /// A string that may grow, in a caller's record. The lowest bit of the last octet is cleared;
    /// other bits past the count are not.
    /// @param record outlives the object; its octets must be writable
    explicit ASN1CBitStr(ASN1TDynBitStr& record);
    ASN1CBitStr(ASN1MessageBufferIF& buffer, ASN1TDynBitStr& record);
    ASN1CBitStr(ASN1Context& sharedContext, ASN1TDynBitStr& record);

    /// An empty string of fixed size in own memory.
    /// @param numBits the limit; 0 for a string that may grow
    ASN1CBitStr(ASN1MessageBufferIF& buffer, unsigned int numBits);
    ASN1CBitStr(ASN1Context& sharedContext, unsigned int numBits);

    /// A copy in own memory, on the context and buffer of @p other unless others are given.
    /// It has the limit of @p other.
    ASN1CBitStr(const ASN1CBitStr& other);
    /// The same, with a limit or without.
    /// @param extendable non-zero: the copy may grow; otherwise it has the limit of @p other
    ASN1CBitStr(const ASN1CBitStr& other, unsigned char extendable);
    ASN1CBitStr(ASN1MessageBufferIF& buffer, const ASN1CBitStr& other,
                unsigned char extendable = 0);
    ASN1CBitStr(ASN1Context& sharedContext, const ASN1CBitStr& other, unsigned char extendable = 0);

    ASN1CBitStr& operator=(const ASN1CBitStr&) = delete;
    ~ASN1CBitStr() override;

    /// Sets a bit.
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bit above the limit; ASN1S_INVALID_LENGTH when a string
    ///         of fixed size has no octet for it
    int set(unsigned int bit);
    /// Sets the bits from @p from to @p to - 1.
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bound above the limit; ASN1S_RANGE_ERROR for @p from >
    ///         @p to; ASN1S_INVALID_LENGTH without room
    int set(unsigned int from, unsigned int to);
    /// Empties the string; memory is kept.
    /// @return 0
    int clear();
    /// Clears a bit, and nothing when it lies past the octets in use.
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bit above the limit
    int clear(unsigned int bit);
    /// Clears the bits from @p from to @p to - 1.
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bound above the limit; ASN1S_RANGE_ERROR for @p from >
    ///         @p to
    int clear(unsigned int from, unsigned int to);
    /// Inverts a bit.
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bit above the limit; ASN1S_INVALID_LENGTH without room
    int invert(unsigned int bit);
    /// Inverts the bits from @p from to @p to - 1.
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bound above the limit; ASN1S_RANGE_ERROR for @p from >
    ///         @p to; ASN1S_INVALID_LENGTH without room
    int invert(unsigned int from, unsigned int to);

    /// @return 1 when the bit is set, else 0
    int get(unsigned int bit) const;
    /// Copies the bits from @p from to @p to - 1, the first one to the high bit of `out[0]`; bits
    /// at `length()` and above read as 0, and so does the rest of @p out.
    /// @param size octets of @p out
    /// @return 0; ASN1S_OUT_OF_BOUNDS for a bound above the limit; ASN1S_RANGE_ERROR for @p from >
    ///         @p to; ASN1S_STRING_OVERFLOW when the range has more bits than @p out
    int get(unsigned int from, unsigned int to, unsigned char* out, int size) const;
    /// Copies the octets in use and zeroes the rest of @p out.
    /// @param size octets of @p out
    /// @return 0; ASN1S_INVALID_LENGTH when more octets are in use
    int getBytes(unsigned char* out, int size) const;

    /// @return octets in use
    int size() const;
    /// @return position of the last one-bit plus one, from the octets
    unsigned int length() const;
    /// @return number of one-bits
    unsigned int cardinality() const;
    /// @return zero-bits below the lowest one-bit of the last octet in use; 0 for an empty string
    int unusedBitsInLastUnit() const;

    /// ANDs with another array; 0 bits empty the string.
    /// @param bits the other array, not this string's own. Bits past @p numBits in its last octet
    ///        count
    /// @return 0; ASN1S_INVALID_PARAMETER for a bad @p bits
    int doAnd(const unsigned char* bits, unsigned int numBits);
    /// ORs with another array, as far as the limit goes.
    /// @param bits the other array, not this string's own
    /// @param numBits with 0, a string of fixed size gets all its bits set
    /// @return 0; ASN1S_INVALID_PARAMETER for a bad @p bits, or 0 bits for a string that may grow;
    ///         ASN1S_INVALID_LENGTH without room
    int doOr(const unsigned char* bits, unsigned int numBits);
    /// XORs with another array, as far as the limit goes; the string's own octets empty it.
    /// @return 0, with nothing done for 0 bits; ASN1S_INVALID_PARAMETER for null @p bits;
    ///         ASN1S_INVALID_LENGTH without room
    int doXor(const unsigned char* bits, unsigned int numBits);
    /// Clears the bits that are set in another array; the string's own octets empty it.
    /// @param bits the other array. Bits past @p numBits in its last octet count
    /// @return 0, with nothing done for 0 bits; ASN1S_INVALID_PARAMETER for null @p bits
    int doAndNot(const unsigned char* bits, unsigned int numBits);

    /// Moves bit i + @p count to bit i; the first @p count bits are lost.
    /// @return 0
    int shiftLeft(unsigned int count);
    /// Moves bit i to bit i + @p count. A string of fixed size uses no more octets than before: it
    /// loses what falls off their end, and everything when @p count is its length or more.
    ///
    /// Three results are not what one expects; they are known and kept, for callers depend on the
    /// exact octets. The first octets are wrong, with bits lost, when the number m of bits to move
    /// (the length, less @p count for a fixed size) is 7 modulo 8, and when m and @p count are both
    /// 0 modulo 8. With a limit that is no multiple of 8, the last octet in use loses the bits past
    /// the limit modulo 8 even when it is not the limit's octet.
    /// @return 0; ASN1S_OUT_OF_BOUNDS when the string would exceed 0xFFFFFFFF bits; ASN1S_NO_MEMORY
    int shiftRight(unsigned int count);

    /// The bits as a record that shares this string's octets.
    operator ASN1TDynBitStr() const; // NOLINT(google-explicit-constructor)
    /// The bits as a record of their own: record and octets are blocks of the context's heap.
    /// @return the record; null when memory is out, with ASN1S_NO_MEMORY recorded
    operator ASN1TDynBitStr*() const; // NOLINT(google-explicit-constructor)

protected:
    /// Binds a string that was built without data to a caller's array of fixed size, as it is.
    void init(unsigned char* data, unsigned int& numBits, unsigned int maxBits);
    /// Binds a string that was built without data to a caller's record, as it is.
    void init(ASN1TDynBitStr& record);

    /// What the constructors do with their arguments, once the context is there: ASN1S_NO_MEMORY is
    /// recorded in it when memory is out, and the string then takes nothing.
    /// @param numBits as in the constructor that has the same arguments
    void privateInit(unsigned char* data, unsigned int& numBits, unsigned int maxBits);
    void privateInit(ASN1TDynBitStr& record);
    void privateInit(unsigned int numBits);
    void privateInit(const ASN1CBitStr& other, unsigned char extendable);

    /// @return a zeroed block of the context's heap, null when memory is out
    unsigned char* allocateMemory(int octets);
    /// @return the block, moved or not, with its new octets zeroed; null when memory is out
    unsigned char* reallocateMemory(unsigned char* block, int oldOctets, int newOctets);
    /// Gives a block back to the context's heap; it stays where there is no context.
    void freeMemory(unsigned char* block);
    /// Brings at least @p units octets into use, growing if need be.
    /// @return 0; ASN1S_INVALID_LENGTH when a string of fixed size has fewer; ASN1S_NO_MEMORY; both
    ///         recorded
    int checkCapacity(int units);
    /// Takes zero octets at the end out of use and the bit count down to `length()`.
    void recalculateUnitsUsed();

public:
    unsigned int ownNumBits = 0;            ///< the bit count, unless a caller holds it
    const unsigned char* ownData = nullptr; ///< the octets, unless a caller's record holds them
    const unsigned char** pBits = &ownData; ///< where the pointer to the octets lies
    unsigned int maxNumBits = 0;            ///< the limit, or Unlimited
    unsigned int* pNumBits = &ownNumBits;   ///< where the bit count lies
    int unitsUsed = 0;                      ///< octets in use
    int unitsAllocated = 0;                 ///< octets available
    unsigned char dynamicAlloc = 0;         ///< non-zero: the octets are this object's to free

private:
    int fail(int status) const;
    int checkRange(unsigned int from, unsigned int to) const;
    int makeRoom(unsigned int bit);
    int makeRoom(unsigned int from, unsigned int to);
    unsigned char* octets() const;
    void releaseOwnMemory();
};

#endif
