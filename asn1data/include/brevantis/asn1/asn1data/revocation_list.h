#ifndef BREVANTIS_ASN1_ASN1DATA_REVOCATION_LIST_H
#define BREVANTIS_ASN1_ASN1DATA_REVOCATION_LIST_H

#include <cstddef>
#include <memory>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>

/// @file
/// Reading an encoded revocation list where it stands (CertificateList, RFC 5280, 5), and
/// finding its entries by serial number.
///
/// For lists that are too large to be decoded. Nothing is copied: everything that is handed out
/// points into the list's octets, which must stay and not change as long as it is used. Nothing is
/// allocated but an index. Sizes have no limit of 2^31 octets. Objects may be shared by threads
/// while nobody changes them.
///
/// What is read is read as the decoder of CertificateList reads it, with these differences:
/// - Entries and their extensions are gone through; names, algorithms, the texts of times, the
///   values of other extensions than reasonCode, and all that follows tbsCertList are stepped over
///   unread. So a list that is damaged there reads here and does not decode.
/// - An element must end where the one around it does, or before.
/// - Only the outermost element may have an indefinite length; below it the decoder takes none
///   either, but for strings in segments. The value of an entry's extension in segments is refused
///   with ASN1S_NOT_SUPPORTED. Identifier octets in the long form are refused.
///
/// Statuses of reading a list or an entry, apart from these:
/// - ASN1S_MISSING_ELEMENT, ASN1S_EXTRA_ELEMENT: an element too few or too many;
/// - ASN1S_TAG_NOT_FOUND: another tag than the expected one;
/// - ASN1S_INVALID_CHOICE: a time that is neither UTCTime nor GeneralizedTime;
/// - ASN1S_INVALID_LENGTH: length octets that are malformed, or lead out of the element around;
/// - ASN1S_END_OF_BUFFER: the octets end within a header;
/// - ASN1S_CONSTRAINT_VIOLATION: crlEntryExtensions without an extension;
/// - ASN1S_VALUE_TOO_BIG, ASN1S_INVALID_ENUM: a reasonCode of more than 4 octets, or not 0..10.

namespace asn1data {

/// Octets somewhere in a list. Null where an element is absent.
struct OctetSpan {
    const unsigned char* data; ///< in the message, which outlives it
    std::size_t size;          ///< octets at `data`
};

/// What stands in front of the entries of a list, and behind them.
class BREVANTIS_ASN1_API RevocationList {
public:
    /// A list of no octets and no entries.
    RevocationList() noexcept = default;

    /// Reads everything around the entries; the entries are stepped over by their length.
    /// @param message an encoded CertificateList, which must outlive this object and all that is
    ///        read through it; octets behind its end are left alone; may be null when @p size is 0
    /// @param size octets of @p message
    /// @return 0, or a status; this object is then one of no entries
    int open(const unsigned char* message, std::size_t size) noexcept;

    /// The whole list, as far as its own length tells; with an indefinite length all that `open`
    /// was given.
    OctetSpan octets() const noexcept { return octets_; }
    /// The element that is signed.
    OctetSpan tbsCertList() const noexcept { return tbsCertList_; }
    /// The element, a Name.
    OctetSpan issuer() const noexcept { return issuer_; }
    /// The element, a Time: identifier octet 17 or 18, length and text.
    OctetSpan thisUpdate() const noexcept { return thisUpdate_; }
    /// The element, a Time; null when absent.
    OctetSpan nextUpdate() const noexcept { return nextUpdate_; }
    /// Contents octets of revokedCertificates: the entries, one behind the other. Null when absent.
    OctetSpan entries() const noexcept { return entries_; }
    /// The element Extensions, without its EXPLICIT tag; null when absent.
    OctetSpan crlExtensions() const noexcept { return crlExtensions_; }

private:
    int readSigned(const unsigned char* position, const unsigned char* end) noexcept;

    OctetSpan octets_{};
    OctetSpan tbsCertList_{};
    OctetSpan issuer_{};
    OctetSpan thisUpdate_{};
    OctetSpan nextUpdate_{};
    OctetSpan entries_{};
    OctetSpan crlExtensions_{};
};

/// An entry of a list.
struct RevokedEntry {
    /// The `reason` of an entry that tells none.
    enum : int { NoReason = -1 };

    OctetSpan octets;         ///< the whole element
    OctetSpan serialNumber;   ///< contents octets of the INTEGER: two's complement, may be padded
    OctetSpan revocationDate; ///< text of the time, such as "260101120000Z"
    OctetSpan extensions;     ///< contents octets of crlEntryExtensions; null when absent
    /// GeneralNames of the certificate's issuer: the value of the entry's own certificateIssuer or,
    /// as RFC 5280, 5.3.3 has it for indirect lists, of the nearest entry in front that has one.
    /// Null when there is none: the issuer is that of the list.
    OctetSpan certificateIssuer;
    int reason;           ///< reasonCode (RFC 5280, 5.3.1), or NoReason
    bool generalizedTime; ///< revocationDate is GeneralizedTime, not UTCTime
    bool issuerInherited; ///< certificateIssuer comes from an entry in front
};

/// An extension of an entry.
struct EntryExtension {
    OctetSpan identifier; ///< contents octets of the OBJECT IDENTIFIER
    OctetSpan value;      ///< contents octets of extnValue
    bool critical; ///< whether a reader that does not know the extension has to refuse the list
};

/// Goes through the entries of a list, in constant memory.
///
///     RevokedEntries entries(list);
///     for (RevokedEntry entry; entries.next(entry);) { ... }
///     return entries.status();
class BREVANTIS_ASN1_API RevokedEntries {
public:
    /// In front of the first entry.
    explicit RevokedEntries(const RevocationList& list) noexcept;

    /// Reads the next entry, its extensions included.
    /// @param entry receives it; undefined when there is none
    /// @return whether there was one; after the last, and from one on that cannot be read, false
    bool next(RevokedEntry& entry) noexcept;
    /// 0, or why the entry that stands next cannot be read.
    int status() const noexcept { return status_; }

private:
    const unsigned char* position_;
    const unsigned char* end_;
    OctetSpan issuer_{};
    int status_ = 0;
};

/// Goes through the extensions of an entry, in their order.
class BREVANTIS_ASN1_API EntryExtensions {
public:
    /// @param entry as RevokedEntries or an index gave it; need not stay
    explicit EntryExtensions(const RevokedEntry& entry) noexcept;

    /// @param extension receives the next one; undefined when there is none
    /// @return whether there was one
    bool next(EntryExtension& extension) noexcept;
    /// 0 for every entry that was read; otherwise why the next extension cannot be.
    int status() const noexcept { return status_; }

private:
    const unsigned char* position_;
    const unsigned char* end_;
    int status_ = 0;
};

/// Finds an extension of an entry.
/// @param identifier such as `id_ce_invalidityDate`
/// @param extension receives the first one of this identifier
/// @return 0; ASN1S_MISSING_ELEMENT when there is none
BREVANTIS_ASN1_API int findEntryExtension(const RevokedEntry& entry, const ASN1OBJID& identifier,
                                          EntryExtension& extension) noexcept;

/// The entries of a list by serial number: 8 octets an entry behind a header of 64, and a sixteenth
/// of an octet more for an indirect list. It can be kept in a file and used from there.
///
/// A look-up compares with the serial number in the list itself, so a wrong index could only fail
/// to find. Against that it carries digests of the list and of itself, of 64 bits, which find every
/// accident, but not those who forge: keep an index where only those write who may decide what is
/// revoked. One that was forged hides entries, or gives octets within an entry that read as one; it
/// never leads outside the entries.
class BREVANTIS_ASN1_API RevocationIndex {
public:
    /// An index of no entries.
    RevocationIndex() noexcept;
    RevocationIndex(RevocationIndex&& other) noexcept;
    RevocationIndex& operator=(RevocationIndex&& other) noexcept;
    RevocationIndex(const RevocationIndex&) = delete;
    RevocationIndex& operator=(const RevocationIndex&) = delete;
    ~RevocationIndex();

    /// Makes the index of a list, which is read once. Takes memory for the index, and as much again
    /// until it is done, in large pages where the system has them; the heap functions
    /// (`g_malloc_func`) are not asked.
    /// @param list need not stay itself, its octets must
    /// @return 0; the status of the first entry that cannot be read; ASN1S_NO_MEMORY;
    ///         ASN1S_VALUE_TOO_BIG for a list of 2^40 octets or more. After a failure the index is
    ///         one of no entries
    int build(const RevocationList& list) noexcept;

    /// Takes an index that was kept. All octets of it and of the list are read to see that they are
    /// whole and belong together.
    /// @param list as for `build`
    /// @param octets as `octets()` gave them, on whatever machine; must outlive this object
    /// @param size octets there
    /// @return 0; ASN1S_INVALID_PARAMETER when it is the index of another list;
    ///         ASN1S_NOT_SUPPORTED for a format of a later version; ASN1S_BAD_VALUE when it is no
    ///         index, or not whole. After a failure the index is one of no entries
    int load(const RevocationList& list, const unsigned char* octets, std::size_t size) noexcept;

    /// The index as octets, in the same form on every machine. They live until this object changes.
    OctetSpan octets() const noexcept { return octets_; }
    /// Entries of the list.
    std::size_t entryCount() const noexcept { return count_; }

    /// Finds the first entry, in the order of the list, with a serial number.
    /// @param serial contents octets of an INTEGER, as serialNumber of a certificate has them. They
    ///        are compared as numbers, so padding does not count, and no octets are 0
    /// @param size octets of @p serial
    /// @param entry receives it, complete as RevokedEntries gives it; undefined when there is none
    /// @return 0; ASN1S_MISSING_ELEMENT when there is none; ASN1S_BAD_VALUE when the index, forged,
    ///         leads to where no entry is
    int find(const unsigned char* serial, std::size_t size, RevokedEntry& entry) const noexcept;

private:
    friend class RevokedMatches;
    struct Release {
        void operator()(unsigned char* octets) const noexcept;
    };

    std::size_t lowerBound(unsigned long long key) const noexcept;
    int entryAt(std::size_t offset, RevokedEntry& entry) const noexcept;
    int findIssuer(std::size_t offset, RevokedEntry& entry) const noexcept;
    void clear() noexcept;
    void view(const RevocationList& list, OctetSpan octets) noexcept;

    RevocationList list_;
    OctetSpan octets_{};
    std::unique_ptr<unsigned char, Release> owned_;
    std::size_t count_ = 0;
    std::size_t checkpointCount_ = 0;
    unsigned offsetBits_ = 0;
    unsigned unsortedBits_ = 0;
};

/// Goes through all entries with one serial number, in the order of the list. In an indirect list
/// each issuer may have one: RevokedEntry::certificateIssuer tells whose it is.
class BREVANTIS_ASN1_API RevokedMatches {
public:
    /// @param index must outlive this object
    /// @param serial as for RevocationIndex::find; must outlive this object
    RevokedMatches(const RevocationIndex& index, const unsigned char* serial,
                   std::size_t size) noexcept;

    /// @param entry receives the next one; undefined when there is none
    /// @return whether there was one
    bool next(RevokedEntry& entry) noexcept;
    /// 0, or ASN1S_BAD_VALUE as for RevocationIndex::find.
    int status() const noexcept { return status_; }

private:
    const RevocationIndex& index_;
    OctetSpan serial_;
    unsigned long long key_;
    std::size_t place_;
    int status_ = 0;
};

} // namespace asn1data

#endif
