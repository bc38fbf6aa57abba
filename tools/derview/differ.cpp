#include "differ.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/asn1data/walk_rules.h>
#include <brevantis/asn1/text/labels.h>
#include <brevantis/asn1/text/value.h>

#include "failure_text.h"
#include "path_filter.h"
#include "value_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// A value of a message.
struct Field {
    std::string path;
    const asn1data::TypeDescription* type;
    OctetStore value;
    std::string text;
};

/// Collects the values of a message.
class FieldCollector : public asn1data::WalkVisitor {
public:
    FieldCollector(std::size_t room, const IdentifierNames& names) : room_(room), names_(names) {}

    WalkAction enter(const WalkElement& element) override {
        ends_.enter(element);
        justEntered_ = true;
        return WalkAction::Continue;
    }

    WalkAction leave(const WalkElement& element) override {
        if (justEntered_) {
            fields.push_back({asn1data::pathText(*element.step), element.type, {}, "(empty)"});
        }
        justEntered_ = false;
        if (const std::size_t hidden = ends_.leave(element).hidden; hidden != 0) {
            OctetStore store;
            WalkElement behind = element;
            behind.value.octets = valueOctets(element, Endless, store).last(hidden).data();
            behind.value.octetCount = static_cast<unsigned>(hidden);
            behind.segmented = false;
            add(behind, ", behind the value");
        }
        return WalkAction::Continue;
    }

    WalkAction primitive(const WalkElement& element) override {
        ends_.primitive(element);
        justEntered_ = false;
        add(element, "");
        return WalkAction::Continue;
    }

    std::vector<Field> fields;

private:
    void add(const WalkElement& element, const char* place) {
        const ValueText value = valueText(element, room_, names_);
        fields.push_back({asn1data::pathText(*element.step) + place, element.type,
                          comparable(element),
                          value.text + (value.rest != 0 ? " " + restText(value.rest) : "")});
    }

    /// Octets that are the same when the values are.
    static OctetStore comparable(const WalkElement& element) {
        const bool hasOctets = element.value.octets != nullptr || element.segmented;
        if (!hasOctets) {
            const std::string text = valueText(element, Endless).text;
            return {text.begin(), text.end()};
        }
        OctetStore store;
        const Octets octets = valueOctets(element, Endless, store);
        OctetStore result(octets.begin(), octets.end());
        result.push_back(static_cast<unsigned char>(element.value.bitCount % 8));
        return result;
    }

    static constexpr std::size_t Endless = std::numeric_limits<std::size_t>::max();

    std::size_t room_;
    const IdentifierNames& names_;
    asn1data::ContentsEnd ends_;
    bool justEntered_ = false;
};

/// Whether a message can be compared to its end.
bool isWhole(const DiffSide& side) {
    return side.decoded.status == 0 && side.message.missing() == 0;
}

/// Collects the values of a message as far as it goes, and writes what it breaks off at.
std::vector<Field> collect(Output& output, const DiffSide& side, std::size_t room,
                           const IdentifierNames& names) {
    const Message& message = side.message;
    FieldCollector collector(room, names);
    EndFilter present(message.octets.size(), collector);
    const asn1data::WalkResult result = asn1data::walk(
        side.type, message.shown.data(), message.shown.size(), present, message.policy);
    std::string problem;
    if (message.missing() != 0 &&
        (result.status == 0 || result.failure.offset >= message.octets.size())) {
        problem = "its end, " + missingText(message);
    } else if (result.status != 0) {
        problem = "an error at " + placeText(result.failure) + ": " + reasonText(result.failure);
    }
    if (!problem.empty()) {
        output.write(Style::Bad, message.place + ": compared up to " + problem);
        output.write("\n");
    }
    return std::move(collector.fields);
}

using Places = std::unordered_map<std::string_view, std::size_t>;

Places placesOf(const std::vector<Field>& fields) {
    Places places;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        places.emplace(fields[i].path, i);
    }
    return places;
}

/// How many fields can be compared with those of a damaged message: those up to the last one that
/// both have.
std::size_t comparableCount(const Places& places, const std::vector<Field>& damaged) {
    std::size_t count = 0;
    for (const Field& field : damaged) {
        const auto found = places.find(field.path);
        count = found != places.end() ? std::max(count, found->second + 1) : count;
    }
    return count;
}

class DiffWriter {
public:
    explicit DiffWriter(Output& output) : output_(output) {}

    void write(const Field* one, const Field* other) {
        ++differences;
        output_.write(Style::Name, one != nullptr ? one->path : other->path);
        output_.write("\n");
        if (one != nullptr) {
            output_.write(Style::Bad, "  - " + one->text + "\n");
        }
        if (other != nullptr) {
            output_.write(Style::Good, "  + " + other->text + "\n");
        }
    }

    std::size_t differences = 0;

private:
    Output& output_;
};

} // namespace

bool diffMessages(Output& output, const DiffSide& one, const DiffSide& other, std::size_t width,
                  const IdentifierNames& names) {
    const std::string title = one.message.place + " and " + other.message.place;
    if (&one.type != &other.type) {
        output.write(Style::Bad, title + ": " + one.type.name + " and " + other.type.name);
        output.write("\n");
        return false;
    }
    const bool whole = isWhole(one) && isWhole(other);
    const Octets octets = one.message.octets;
    const bool same = std::equal(octets.begin(), octets.end(), other.message.octets.begin(),
                                 other.message.octets.end());
    if (same && whole) {
        output.write(title + ": " + one.type.name + " identical\n");
        return true;
    }
    output.write(Style::Heading, title + ": " + one.type.name);
    output.write("\n");
    constexpr std::size_t marks = 4;
    const std::vector<Field> left = collect(output, one, width - marks, names);
    const std::vector<Field> right = collect(output, other, width - marks, names);
    if (same) {
        output.write("the same octets\n");
        return false;
    }
    const Places leftPlaces = placesOf(left);
    const Places rightPlaces = placesOf(right);
    // What stands behind the damage in the other message might have stood here too.
    const std::size_t leftEnd = isWhole(other) ? left.size() : comparableCount(leftPlaces, right);
    const std::size_t rightEnd = isWhole(one) ? right.size() : comparableCount(rightPlaces, left);
    // In the order of the first message; what only the second one has stands where it stands there.
    DiffWriter writer(output);
    std::size_t next = 0;
    const auto writeAdded = [&](std::size_t end) {
        for (; next < end; ++next) {
            if (leftPlaces.count(right[next].path) == 0) {
                writer.write(nullptr, &right[next]);
            }
        }
    };
    for (std::size_t i = 0; i < leftEnd; ++i) {
        const Field& field = left[i];
        const auto found = rightPlaces.find(field.path);
        if (found == rightPlaces.end()) {
            writer.write(&field, nullptr);
            continue;
        }
        writeAdded(found->second);
        const Field& counterpart = right[found->second];
        if (field.type != counterpart.type || field.value != counterpart.value) {
            writer.write(&field, &counterpart);
        }
    }
    writeAdded(rightEnd);
    if (writer.differences == 0 && whole) {
        output.write("the same values in different encodings\n");
        return false;
    }
    output.write(std::to_string(writer.differences) +
                 (writer.differences == 1 ? " difference" : " differences"));
    const std::size_t skipped = left.size() - leftEnd + right.size() - rightEnd;
    if (skipped != 0) {
        output.write(", " + std::to_string(skipped) + (skipped == 1 ? " value" : " values") +
                     " not compared");
    }
    output.write("\n");
    return false;
}

} // namespace derview
