#include <brevantis/support/code_page.h>

#include <climits>
#include <cstddef>
#include <string_view>

namespace {

thread_local unsigned long lastError = 0;

int fail(unsigned long error) {
    SetLastError(error);
    return 0;
}

constexpr char32_t highestCharacter = 0x10FFFF;

constexpr bool isCharacter(char32_t value) {
    return value < 0xD800 || (value > 0xDFFF && value <= highestCharacter);
}

/// Reads the sequence that a text begins with.
/// @return its octets, or 0 when they are not well-formed
std::size_t readSequence(std::string_view text, char32_t& character) {
    constexpr char32_t lowest[] = {0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) {
        character = lead;
        return 1;
    }
    const std::size_t length = lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length == 0 || lead > 0xF7 || length > text.length()) {
        return 0;
    }
    character = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto octet = static_cast<unsigned char>(text[i]);
        if ((octet & 0xC0) != 0x80) {
            return 0;
        }
        character = character << 6 | (octet & 0x3Fu);
    }
    return character >= lowest[length - 1] && isCharacter(character) ? length : 0;
}

template <class Emit>
void decodeUtf8(std::string_view text, Emit emit) {
    while (!text.empty()) {
        char32_t character = 0;
        const std::size_t length = readSequence(text, character);
        emit(static_cast<wchar_t>(length == 0 ? U'\uFFFD' : character));
        text.remove_prefix(length == 0 ? 1 : length);
    }
}

template <class Emit>
void encodeCharacter(char32_t character, Emit emit) {
    const auto put = [&](char32_t octet) { emit(static_cast<char>(octet)); };
    const auto putRest = [&](unsigned shift) { put(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        putRest(0);
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        putRest(6);
        putRest(0);
    } else {
        put(0xF0 | character >> 18);
        putRest(12);
        putRest(6);
        putRest(0);
    }
}

template <class Text, class Target>
bool areArguments(unsigned codePage, unsigned long flags, const Text* text, int size,
                  const Target* target, int targetSize) {
    constexpr unsigned processPage = 0;
    constexpr unsigned utf8Page = 65001;
    if ((codePage != processPage && codePage != utf8Page) || flags != 0) {
        return false;
    }
    if (text == nullptr || size == 0 || size < -1) {
        return false;
    }
    if (targetSize == 0) {
        return true;
    }
    return targetSize > 0 && target != nullptr &&
           static_cast<const void*>(text) != static_cast<const void*>(target);
}

template <class Char>
std::basic_string_view<Char> viewOf(const Char* text, int size) {
    return {text,
            size >= 0 ? static_cast<std::size_t>(size) : std::char_traits<Char>::length(text) + 1};
}

/// Counts what a conversion emits and, when it fits, runs it again to store it.
template <class Unit, class Convert>
int deliver(Unit* target, int targetSize, Convert convert) {
    std::size_t count = 0;
    convert([&](Unit) { ++count; });
    if (count > INT_MAX) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    if (targetSize != 0) {
        if (count > static_cast<std::size_t>(targetSize)) {
            return fail(ERROR_INSUFFICIENT_BUFFER);
        }
        convert([&](Unit unit) { *target++ = unit; });
    }
    return static_cast<int>(count);
}

} // namespace

int MultiByteToWideChar(unsigned codePage, unsigned long flags, const char* text, int size,
                        wchar_t* target, int targetSize) noexcept {
    if (!areArguments(codePage, flags, text, size, target, targetSize)) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    return deliver(target, targetSize,
                   [source = viewOf(text, size)](auto emit) { decodeUtf8(source, emit); });
}

int WideCharToMultiByte(unsigned codePage, unsigned long flags, const wchar_t* text, int size,
                        char* target, int targetSize, const char* defaultChar,
                        int* usedDefaultChar) noexcept {
    const auto replacement =
        static_cast<unsigned char>(defaultChar == nullptr ? '?' : *defaultChar);
    if (!areArguments(codePage, flags, text, size, target, targetSize) || replacement > 0x7F) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    bool replaced = false;
    const int count = deliver(target, targetSize, [&, source = viewOf(text, size)](auto emit) {
        for (const wchar_t unit : source) {
            const auto character = static_cast<char32_t>(unit);
            const bool stays = isCharacter(character);
            replaced = replaced || !stays;
            encodeCharacter(stays ? character : replacement, emit);
        }
    });
    if (count != 0 && usedDefaultChar != nullptr) {
        *usedDefaultChar = replaced ? 1 : 0;
    }
    return count;
}

unsigned long GetLastError() noexcept {
    return lastError;
}

void SetLastError(unsigned long error) noexcept {
    lastError = error;
}
