#ifndef FUZZ_ENTRY_H
#define FUZZ_ENTRY_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// Entry point of every target; libFuzzer calls it for each input.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace fuzz {

/// Ends the process, which is how a finding is told.
[[noreturn]] inline void report(const char* finding) {
    std::fprintf(stderr, "finding: %s\n", finding);
    std::abort();
}

/// An input that is used up from its beginning: first what chooses, then what is chosen for.
class Input {
public:
    Input(const unsigned char* data, std::size_t size) : at_(data), end_(data + size) {}

    bool atEnd() const { return at_ == end_; }
    std::size_t size() const { return static_cast<std::size_t>(end_ - at_); }
    /// The next octet; 0 at the end.
    unsigned char octet() { return atEnd() ? static_cast<unsigned char>(0) : *at_++; }
    /// A number of two octets, the high one first.
    unsigned number() {
        const unsigned high = octet();
        return high << 8 | octet();
    }
    /// A number below @p bound, of one octet or two.
    unsigned below(std::size_t bound) {
        const auto count = static_cast<unsigned>(bound);
        return (count > 0x100 ? number() : octet()) % count;
    }
    /// What is left, in a block of exactly its size.
    std::vector<unsigned char> rest() {
        std::vector<unsigned char> octets(at_, end_);
        at_ = end_;
        return octets;
    }
    /// What is left, as text.
    std::string text() {
        std::string characters(at_, end_);
        at_ = end_;
        return characters;
    }

private:
    const unsigned char* at_;
    const unsigned char* end_;
};

} // namespace fuzz

#endif
