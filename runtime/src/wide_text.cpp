#include <brevantis/asn1/runtime/wide_text.h>

#include <algorithm>

#include "heap_block.h"

namespace {

bool permits(const Asn132BitCharSet* alphabet, unsigned int value) noexcept {
    if (alphabet == nullptr) {
        return true;
    }
    if (value < alphabet->firstChar || value > alphabet->lastChar) {
        return false;
    }
    const unsigned int* const end = alphabet->data + alphabet->nchars;
    return alphabet->nchars == 0 || std::find(alphabet->data, end, value) != end;
}

/// The common road: a block for every character of the text, then those that the alphabet permits.
/// @param value makes a 32-bit character of one of the text
template <class Char, class Value>
Asn132BitCharString* convert(ASN1CTXT* ctxt, const Char* text, Asn132BitCharString* target,
                             const Asn132BitCharSet* alphabet, Value value) noexcept {
    if (target == nullptr) {
        return nullptr;
    }
    *target = {0, nullptr};
    if (text == nullptr) {
        return nullptr;
    }
    std::size_t length = 0;
    while (text[length] != Char{}) {
        ++length;
    }
    target->data = static_cast<unsigned int*>(runtime_detail::allocateBlock(ctxt, 4 * length));
    if (target->data == nullptr) {
        return nullptr;
    }
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned int character = value(text[i]);
        if (permits(alphabet, character)) {
            target->data[target->nchars++] = character;
        }
    }
    return target;
}

} // namespace

Asn132BitCharString* rtCToUCSString(ASN1CTXT* ctxt, const char* text, Asn132BitCharString* target,
                                    const Asn132BitCharSet* alphabet) noexcept {
    return convert(ctxt, text, target, alphabet,
                   [](char c) -> unsigned int { return static_cast<unsigned char>(c); });
}

Asn132BitCharString* rtWCSToUCSString(ASN1CTXT* ctxt, const wchar_t* text,
                                      Asn132BitCharString* target,
                                      const Asn132BitCharSet* alphabet) noexcept {
    return convert(ctxt, text, target, alphabet,
                   [](wchar_t c) { return static_cast<unsigned int>(c) & 0xFFFF; });
}

wchar_t* rtUCSToWCSString(const Asn132BitCharString* source, wchar_t* target,
                          std::size_t capacity) noexcept {
    std::size_t written = 0;
    for (unsigned int i = 0; i < source->nchars && written < capacity; ++i) {
        if (source->data[i] < 0x10000) {
            target[written++] = static_cast<wchar_t>(source->data[i]);
        }
    }
    if (written < capacity) {
        target[written] = L'\0';
    }
    return target;
}
