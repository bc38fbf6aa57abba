#ifndef BREVANTIS_ASN1_VALUES_UTIL_CODING_ERROR_H
#define BREVANTIS_ASN1_VALUES_UTIL_CODING_ERROR_H

#include <cstddef>
#include <memory>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/export.h>
#include <brevantis/support/error.h>

/// @file
/// What the value classes throw when a message cannot be read, or a value cannot be written.

namespace Brevantis::ASN1 {

/// A coder refused a message or a value: where, and why. Programs that know nothing of it catch
/// ATL::CAtlException as ever, whose m_hr and status() are the same.
class BREVANTIS_ASN1_API CCodingError : public ATL::CAtlException {
public:
    /// @param code the result code
    /// @param failure what is known of it
    /// @throws std::bad_alloc
    CCodingError(int code, const asn1data::WalkFailure& failure);
    ~CCodingError() override;
    CCodingError(const CCodingError&) noexcept = default;
    CCodingError& operator=(const CCodingError&) noexcept = default;

    /// The whole failure in one line: "[1].dNSName at offset 4: expected ..., found ...
    /// (ASN1S_TAG_NOT_FOUND)". All texts here live as long as the exception or a copy of it.
    const char* what() const noexcept override;
    /// The path to the element, as asn1data::writePath writes it; empty for the message itself.
    const char* path() const noexcept;
    /// Of the octet in the message where reading ended; of a value that cannot be written, in the
    /// message that it would be.
    std::size_t offset() const noexcept;
    const char* expected() const noexcept; ///< "an element of ...", empty when there is no telling
    const char* found() const noexcept;    ///< "tag 04 (OCTET STRING)", empty likewise
    /// All that is known, with the coder's status (ASN1Status).
    const asn1data::WalkFailure& failure() const noexcept;

private:
    struct Texts;
    std::shared_ptr<const Texts> texts_;
};

/// The policy that asn1Decode reads messages by in the thread, as long as the object lives: for
/// traits that have to know. Objects lie inside each other.
class BREVANTIS_ASN1_API ReadingScope {
public:
    /// @param policy copied
    explicit ReadingScope(const asn1data::ReadingPolicy& policy) noexcept;
    ~ReadingScope();
    ReadingScope(const ReadingScope&) = delete;
    ReadingScope& operator=(const ReadingScope&) = delete;

    /// That of the innermost object; no policy outside of all.
    static const asn1data::ReadingPolicy& policy() noexcept;

private:
    asn1data::ReadingPolicy policy_;
    const ReadingScope* outer_;
};

/// Throws for a message that a decoder has refused.
/// @param status what the decoder returned
/// @param type what the message was to be; null where there is no telling
/// @param policy that it was decoded by
/// @throws CCodingError with CRYPT_E_ASN1_INTERNAL; ATL::CAtlException with the same when there is
///         no memory to tell more
[[noreturn]] BREVANTIS_ASN1_API void
throwDecodingError(int status, const asn1data::TypeDescription* type, const unsigned char* message,
                   std::size_t size, const asn1data::ReadingPolicy& policy);

/// Throws for a value that an encoder has refused.
/// @param message what it is encoded to where sizes are not looked at; null when it cannot be
/// @throws as throwDecodingError
[[noreturn]] BREVANTIS_ASN1_API void throwEncodingError(int status,
                                                        const asn1data::TypeDescription* type,
                                                        const unsigned char* message,
                                                        std::size_t size);

} // namespace Brevantis::ASN1

#endif
