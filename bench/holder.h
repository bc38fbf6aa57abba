#ifndef BENCH_HOLDER_H
#define BENCH_HOLDER_H

#include <memory>

namespace bench {

template <auto release>
struct Release {
    template <typename Value>
    void operator()(Value* value) const {
        release(value);
    }
};

/// Owns what a C library made, and gives it back with the function that the library has for it.
template <typename Value, auto release>
using Holder = std::unique_ptr<Value, Release<release>>;

} // namespace bench

#endif
