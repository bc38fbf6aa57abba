#ifndef TESTS_SUPPORT_CODING_H
#define TESTS_SUPPORT_CODING_H

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <brevantis/asn1/runtime/context.h>

#include "support/hex.h"

// Kept apart from the library's headers on purpose: only these two calls are needed to bind a
// buffer, whatever a test is about.
#include <brevantis/asn1/runtime/tag_length.h>

namespace tests {

/// A context that lives as long as the object.
class Context {
public:
    Context() {
        if (rtInitContext(&context_, nullptr) != 0) {
            throw std::bad_alloc();
        }
    }
    ~Context() { rtFreeContext(&context_); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    ASN1CTXT* get() { return &context_; }
    operator ASN1CTXT*() { return &context_; } // NOLINT(google-explicit-constructor)
    ASN1CTXT* operator->() { return &context_; }

private:
    ASN1CTXT context_;
};

/// A context bound to a message for the primitives: no header is read, `size` is the message's
/// size. The octets are an exact-size heap copy, so that a sanitizer sees every read outside them.
class Reader : public Context {
public:
    explicit Reader(const Octets& octets) : octets_(new unsigned char[octets.size()]) {
        if (!octets.empty()) {
            std::memcpy(octets_.get(), octets.data(), octets.size());
        }
        rtInitContextBuffer(get(), octets_.get(), static_cast<unsigned>(octets.size()));
    }
    explicit Reader(std::string_view hex) : Reader(fromHex(hex)) {}

    unsigned position() { return get()->buffer.byteIndex; }
    int recorded() { return get()->errInfo.status; }

private:
    std::unique_ptr<unsigned char[]> octets_;
};

/// A context bound for encoding into a dynamic buffer.
class Writer : public Context {
public:
    Writer() {
        if (xe_setp(get(), nullptr, 0) != 0) {
            throw std::bad_alloc();
        }
    }
    /// The octets written so far, in hexadecimal.
    std::string hex() {
        const ASN1Buffer& buffer = get()->buffer;
        return toHex(buffer.data + buffer.byteIndex, buffer.size - 1 - buffer.byteIndex);
    }
    int recorded() { return get()->errInfo.status; }
};

} // namespace tests

#endif
