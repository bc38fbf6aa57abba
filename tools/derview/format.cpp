#include "format.h"

#include "der_format.h"
#include "json_format.h"
#include "tree_format.h"

namespace derview {

namespace {

template <class Made>
std::unique_ptr<Format> make(const FormatContext& context) {
    return std::make_unique<Made>(context);
}

} // namespace

std::span<const FormatDescription> allFormats() {
    static constexpr FormatDescription formats[] = {
        {"tree", &make<TreeFormat>, true, false, true, false},
        {"json", &make<JsonFormat>, false, true, true, false},
        {"der", &make<DerFormat>, false, false, false, true},
    };
    return formats;
}

} // namespace derview
