#ifndef TESTS_SUPPORT_REFERENCE_READER_H
#define TESTS_SUPPORT_REFERENCE_READER_H

#include <vector>

#include "support/hex.h"

namespace tests {

/// Why reading ended, and where.
struct Refused {
    int status;
    unsigned position;
    bool inside = false; ///< somewhere behind the position, within a primitive that begins there
};

/// Identifier and length octets that have been read.
struct ReferenceHeader {
    enum : int { Indefinite = -9999 };

    unsigned start = 0;    ///< first identifier octet
    unsigned contents = 0; ///< behind the length octets
    unsigned tag = 0;      ///< class in bits 31 and 30, form in bit 29
    int length = 0;
    bool constructed = false;

    bool indefinite() const { return length == Indefinite; }
};

/// Reads elements off octets, one after another: X.690 as far as the library takes it, written a
/// second time and with nothing in mind but to be plain. What cannot be read throws Refused with
/// the status that the library has for it.
class ReferenceReader {
public:
    explicit ReferenceReader(Octets octets)
        : size(static_cast<unsigned>(octets.size())), octets_(std::move(octets)) {}

    /// Confines the reading to the first element.
    void bind();

    ReferenceHeader header();
    /// The header behind an identifier octet that stands for itself.
    ReferenceHeader headerOfOneOctet();
    /// The header that was read at @p start; with contents that begin here if it could not be read.
    ReferenceHeader headerAt(unsigned start);
    /// The header of a tag, in either form.
    ReferenceHeader match(unsigned tag);
    void endOfContents();
    void stepOver();
    /// Counts the elements in contents that begin here.
    unsigned countElements(int length);
    /// Whether contents that began at @p start are used up.
    bool ended(unsigned start, int length) const;

    // Values. Those that are handed no header read their own, which is universal.
    unsigned boolean(const ReferenceHeader* read);
    int signedNumber(unsigned tag, const ReferenceHeader* read);
    unsigned unsignedNumber(const ReferenceHeader* read);
    unsigned shortNumber(const ReferenceHeader* read);
    void null(const ReferenceHeader* read);
    Octets integer(const ReferenceHeader* read);
    std::vector<unsigned> identifier(const ReferenceHeader* read);
    Octets octetString(const ReferenceHeader* read);
    Octets text(unsigned tag, const ReferenceHeader* read);
    Octets wideText(unsigned tag, const ReferenceHeader* read);
    Octets fixedOctets(unsigned capacity, const ReferenceHeader* read, unsigned otherwise = 0);
    Octets bitString(const ReferenceHeader* read, unsigned& count);
    Octets fixedBits(unsigned capacity, const ReferenceHeader* read, unsigned& count);
    /// A whole element; empty where none begins any more.
    Octets element();
    /// As many octets as they are.
    Octets take(int count);

    [[noreturn]] void refuse(int status) const { throw Refused{status, at}; }
    bool atEnd() const { return at >= size; }
    unsigned char peek() const { return octets_[at]; }
    /// The octets from @p start to the position.
    Octets since(unsigned start) const;

    unsigned at = 0;
    unsigned size;

private:
    /// What the contents of a string come to.
    struct Extent {
        unsigned room;   ///< octets that the value can take
        unsigned length; ///< octets of contents
    };

    unsigned char next();
    unsigned tag();
    int length();
    ReferenceHeader lengthOf(ReferenceHeader header);
    int ownLength(unsigned tag);
    Extent extent(const ReferenceHeader& header, unsigned segmentTag);
    Octets contentsOf(bool constructed, unsigned room, unsigned length);
    Octets bits(bool constructed, unsigned capacity, int length, unsigned& count);
    void close(const ReferenceHeader& header);

    Octets octets_;
    bool open_ = false; ///< the first element does not tell its length
};

} // namespace tests

#endif
