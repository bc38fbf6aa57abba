#include "time_text.h"

namespace derview {

std::optional<std::string> timeText(const asn1data::WalkElement& element) {
    std::optional<std::string> text = isoTime(element);
    if (text) {
        text->replace(text->find('T'), 1, " ");
        if (text->back() == 'Z') {
            text->replace(text->size() - 1, 1, " UTC");
        }
    }
    return text;
}

} // namespace derview
