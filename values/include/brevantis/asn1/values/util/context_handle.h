#ifndef BREVANTIS_ASN1_VALUES_UTIL_CONTEXT_HANDLE_H
#define BREVANTIS_ASN1_VALUES_UTIL_CONTEXT_HANDLE_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/support/error.h>

/// @file
/// A coding context on the stack.

namespace Brevantis::ASN1 {

/// Holds one coding context. It neither sets it up nor releases it by itself: `init` does the one,
/// `release` the other, and `release` belongs on every path, that of an exception included, also
/// where `init` failed.
struct BREVANTIS_ASN1_API ctxt_handle : ASN1CTXT {
    /// @return whether the context is ready; false when memory is out
    bool init();
    /// Gives back the context's memory. Once is enough, more does no harm.
    void release();
};

/// A ctxt_handle for the length of a block: set up by the constructor, released by the destructor.
class ScopedContext {
public:
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    ScopedContext() {
        if (!handle_.init()) {
            handle_.release();
            ATL::AtlThrowImpl(CRYPT_E_ASN1_MEMORY);
        }
    }
    ~ScopedContext() { handle_.release(); }
    ScopedContext(const ScopedContext&) = delete;
    ScopedContext& operator=(const ScopedContext&) = delete;

    /// The context for the plain coders, which lives as long as this object; never null.
    ASN1CTXT* get() { return &handle_; }

private:
    ctxt_handle handle_;
};

} // namespace Brevantis::ASN1

#endif
