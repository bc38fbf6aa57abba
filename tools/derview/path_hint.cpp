#include "path_hint.h"

#include <algorithm>
#include <vector>

#include "escape.h"
#include "nearest.h"
#include "path_filter.h"

namespace derview {

using asn1data::ElementSpan;
using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

constexpr std::size_t MostNames = 12;

/// Collects the names of what is in the element of a path.
class Names : public asn1data::WalkVisitor {
public:
    explicit Names(std::string path) : path_(std::move(path)) {}

    WalkAction enter(const WalkElement& element) override { return add(element); }
    WalkAction primitive(const WalkElement& element) override { return add(element); }

    std::vector<std::string> found;

private:
    WalkAction add(const WalkElement& element) {
        const std::string path = asn1data::pathText(*element.step);
        if (path.size() <= path_.size()) {
            return WalkAction::Continue;
        }
        const std::size_t first = path_.size() + (!path_.empty() && path[path_.size()] == '.');
        const std::size_t end = std::min(path.find_first_of(".[", first + 1), path.size());
        const std::string name = path.substr(first, end - first);
        if (std::find(found.begin(), found.end(), name) == found.end()) {
            found.push_back(name);
        }
        return found.size() > MostNames ? WalkAction::Stop : WalkAction::Continue;
    }

    std::string path_;
};

} // namespace

std::string pathHint(const Message& message, const asn1data::TypeDescription& type,
                     const std::string& path) {
    const Octets octets = message.shown;
    std::string way = path;
    ElementSpan span{};
    do {
        const std::size_t last = way.find_last_of(".[");
        way.erase(last == std::string::npos ? 0 : last);
        span = asn1data::findElement(type, octets.data(), octets.size(), way.c_str());
    } while (span.status != 0 && !way.empty());
    if (span.status != 0) {
        return "";
    }
    Names names(way);
    PathFilter filter(span, names);
    asn1data::walk(type, octets.data(), octets.size(), filter);
    if (names.found.empty()) {
        return "";
    }
    const std::size_t start = way.size() + (way.empty() || path[way.size()] != '.' ? 0 : 1);
    const std::string wrong = path.substr(start, path.find_first_of(".[", start + 1) - start);
    const bool isIndex = wrong.rfind('[', 0) == 0;
    std::string near = isIndex ? "" : didYouMean(wrong, names.found);
    if (!near.empty()) {
        return near;
    }
    std::string text =
        "; " + (way.empty() ? std::string("the message") : escapeName(way)) + " has ";
    for (std::size_t i = 0; i < names.found.size(); ++i) {
        text +=
            (i == 0 ? "" : ", ") + (i == MostNames ? std::string("…") : escapeName(names.found[i]));
    }
    return text;
}

} // namespace derview
