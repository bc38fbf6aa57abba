#ifndef RUNTIME_SRC_DECIMAL_TEXT_H
#define RUNTIME_SRC_DECIMAL_TEXT_H

#include <cstddef>
#include <cstring>

namespace runtime_detail {

/// Builds a short text of numbers, independent of any locale. What exceeds it is left out; 64
/// octets hold every time, even one whose fields have all the digits that they can have.
class DecimalText {
public:
    void append(char character) noexcept {
        if (length_ + 1 < sizeof text_) {
            text_[length_++] = character;
        }
    }
    void append(const char* characters) noexcept {
        while (*characters != '\0') {
            append(*characters++);
        }
    }
    /// Appends a number with at least @p digits digits.
    void append(int value, int digits) noexcept {
        char reversed[10];
        std::size_t count = 0;
        unsigned rest =
            value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
        if (value < 0) {
            append('-');
        }
        for (; rest != 0; rest /= 10) {
            reversed[count++] = static_cast<char>('0' + rest % 10);
        }
        for (int missing = digits - static_cast<int>(count); missing > 0; --missing) {
            append('0');
        }
        while (count != 0) {
            append(reversed[--count]);
        }
    }

    const char* text() const noexcept { return text_; }
    int length() const noexcept { return static_cast<int>(length_); }

private:
    char text_[64] = {};
    std::size_t length_ = 0;
};

} // namespace runtime_detail

#endif
