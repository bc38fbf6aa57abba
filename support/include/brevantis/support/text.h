#ifndef BREVANTIS_SUPPORT_TEXT_H
#define BREVANTIS_SUPPORT_TEXT_H

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include <brevantis/asn1/export.h>

/// @file
/// Owned text: CStringProxy (narrow) and CWStringProxy (wide, 32-bit units).

namespace Brevantis {

/// A text that owns its characters. The encoding is the caller's matter. Copying throws
/// std::bad_alloc when memory is out and leaves the target as it was; a text that was moved from
/// may hold anything and can be assigned to.
template <class Char>
class BREVANTIS_ASN1_API BasicStringProxy {
    using String = std::basic_string<Char>;

    /// One side of a comparison, so that comparing with a pointer copies nothing.
    struct View {
        View(const BasicStringProxy& text) noexcept : characters(text.text_) {}
        View(const String& text) noexcept : characters(text) {}
        View(const Char* text) noexcept {
            if (text != nullptr) {
                characters = text;
            }
        }
        std::basic_string_view<Char> characters;
    };

public:
    /// The empty text.
    BasicStringProxy() noexcept = default;

    /// Copies a terminated text.
    /// @param text null stands for the empty text
    BasicStringProxy(const Char* text) : text_(text == nullptr ? String() : String(text)) {}

    /// Takes a whole string, characters of value 0 inside it too.
    BasicStringProxy(String text) noexcept : text_(std::move(text)) {}

    /// The characters and a terminator; never null. Valid until the text changes or goes.
    const Char* c_str() const noexcept { return text_.c_str(); }

    /// Characters, the terminator not counted.
    std::size_t length() const noexcept { return text_.length(); }

    bool empty() const noexcept { return text_.empty(); }

    void swap(BasicStringProxy& other) noexcept { text_.swap(other.text_); }

    friend void swap(BasicStringProxy& a, BasicStringProxy& b) noexcept { a.swap(b); }

    // Texts compare by the values of their characters. Either side may also be a string or a
    // pointer; a null pointer is the empty text.
    friend bool operator==(View a, View b) noexcept { return a.characters == b.characters; }
    friend bool operator!=(View a, View b) noexcept { return a.characters != b.characters; }
    friend bool operator<(View a, View b) noexcept { return a.characters < b.characters; }
    friend bool operator>(View a, View b) noexcept { return a.characters > b.characters; }
    friend bool operator<=(View a, View b) noexcept { return a.characters <= b.characters; }
    friend bool operator>=(View a, View b) noexcept { return a.characters >= b.characters; }

    /// Writes the characters up to the end of the text, as the stream writes a string.
    friend std::basic_ostream<Char>& operator<<(std::basic_ostream<Char>& stream,
                                                const BasicStringProxy& text) {
        return stream << text.text_;
    }

private:
    String text_;
};

/// Owned narrow text.
using CStringProxy = BasicStringProxy<char>;
/// Owned wide text.
using CWStringProxy = BasicStringProxy<wchar_t>;

} // namespace Brevantis

#endif
