#include <brevantis/asn1/values/util/coding_error.h>

#include <new>
#include <string>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/status.h>

namespace Brevantis::ASN1 {

namespace {

thread_local const ReadingScope* innermost = nullptr;

template <class Write>
std::string textOf(const asn1data::WalkFailure& failure, Write write) {
    std::string text(write(failure, nullptr, 0), '\0');
    write(failure, text.data(), text.size() + 1);
    return text;
}

/// What a walk tells of a message; the status alone where it does not come to it.
asn1data::WalkFailure explanation(int status, const asn1data::TypeDescription* type,
                                  const unsigned char* message, std::size_t size,
                                  const asn1data::ReadingPolicy& policy) {
    asn1data::WalkFailure failure{};
    if (type != nullptr && (message != nullptr || size == 0)) {
        failure = asn1data::explain(*type, message, size, policy);
    }
    if (failure.status != status) { // as where memory was out
        failure = {};
        failure.status = status;
    }
    return failure;
}

[[noreturn]] void throwError(const asn1data::WalkFailure& failure) {
    throw CCodingError(CRYPT_E_ASN1_INTERNAL, failure);
}

} // namespace

struct CCodingError::Texts {
    explicit Texts(const asn1data::WalkFailure& known)
        : failure(known), expected(textOf(known, &asn1data::writeExpected)),
          found(textOf(known, &asn1data::writeFound)),
          whole(known.expectation != asn1data::Expectation::Nothing ? asn1data::failureText(known)
                                                                    : rtStatusName(known.status)) {}

    asn1data::WalkFailure failure;
    std::string expected;
    std::string found;
    std::string whole;
};

CCodingError::CCodingError(int code, const asn1data::WalkFailure& failure)
    : CAtlException(code), texts_(std::make_shared<const Texts>(failure)) {}

CCodingError::~CCodingError() = default;

const char* CCodingError::what() const noexcept {
    return texts_->whole.c_str();
}

const char* CCodingError::path() const noexcept {
    return texts_->failure.path;
}

std::size_t CCodingError::offset() const noexcept {
    return texts_->failure.offset;
}

const char* CCodingError::expected() const noexcept {
    return texts_->expected.c_str();
}

const char* CCodingError::found() const noexcept {
    return texts_->found.c_str();
}

const asn1data::WalkFailure& CCodingError::failure() const noexcept {
    return texts_->failure;
}

ReadingScope::ReadingScope(const asn1data::ReadingPolicy& policy) noexcept
    : policy_(policy), outer_(innermost) {
    innermost = this;
}

ReadingScope::~ReadingScope() {
    innermost = outer_;
}

const asn1data::ReadingPolicy& ReadingScope::policy() noexcept {
    static const asn1data::ReadingPolicy none;
    return innermost != nullptr ? innermost->policy_ : none;
}

void throwDecodingError(int status, const asn1data::TypeDescription* type,
                        const unsigned char* message, std::size_t size,
                        const asn1data::ReadingPolicy& policy) {
    try {
        throwError(explanation(status, type, message, size, policy));
    } catch (const std::bad_alloc&) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
}

void throwEncodingError(int status, const asn1data::TypeDescription* type,
                        const unsigned char* message, std::size_t size) {
    throwDecodingError(status, message != nullptr ? type : nullptr, message, size, {});
}

} // namespace Brevantis::ASN1
