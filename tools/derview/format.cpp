#include "format.h"

#include "der_format.h"
#include "html_format.h"
#include "json_format.h"
#include "list_format.h"
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
        {"tree", &make<TreeFormat>, true, false, true, false, false},
        {"json", &make<JsonFormat>, false, true, true, false, false},
        {"html", &make<HtmlFormat>, false, false, true, false, false},
        {"list", &make<ListFormat>, false, false, true, false, false},
        {"der", &make<DerFormat>, false, false, false, true, true},
        {"pem", &make<PemFormat>, false, false, false, true, false},
    };
    return formats;
}

} // namespace derview
