#ifndef RUNTIME_SRC_CONTEXT_STATE_H
#define RUNTIME_SRC_CONTEXT_STATE_H

#include <brevantis/asn1/runtime/context.h>

namespace runtime_detail {

/// `initCode` of a context that is set up.
constexpr unsigned int initialisedCode = 0x1AA2A34Au;

/// Open and recursive types that may lie inside each other, unless a context allows fewer.
constexpr unsigned int deepestNesting = 64;

inline bool isSetUp(const ASN1CTXT* ctxt) noexcept {
    return ctxt->initCode == initialisedCode;
}

} // namespace runtime_detail

#endif
