#include "tree_format.h"

#include <algorithm>

#include <brevantis/asn1/text/name_text.h>

#include "escape.h"
#include "failure_text.h"
#include "fingerprint.h"
#include "number_text.h"
#include "value_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// Longer names push their own value to the right, not those of their neighbours.
constexpr std::size_t LongestAligned = 26;

TreePlace placeOf(const WalkElement& element, std::size_t shift, bool inner) {
    return {element.offset + shift, element.headerLength,
            element.contentLength == ASN1IndefiniteLength ? -1LL : element.contentLength,
            element.assembled, inner};
}

TreePlace placeOf(const asn1data::WalkFailure& failure, std::size_t shift) {
    return {failure.offset + shift, 0, 0, failure.assembled};
}

/// Where octets stand that a value consists of.
TreePlace placeOfOctets(const WalkElement& element, Octets octets, std::size_t shift) {
    const bool inMessage = !element.segmented;
    const std::size_t behind =
        inMessage ? static_cast<std::size_t>(octets.data() - element.data) : 0;
    return {inMessage ? element.offset + behind + shift : 0, 0, 0,
            element.assembled || element.segmented};
}

bool isSerialNumber(const WalkElement& element) {
    const std::string_view name = element.step->name != nullptr ? element.step->name : "";
    return name == "serialNumber" || name == "userCertificate" || name == "certSerialNumber";
}

} // namespace

/// Columns for the names of the elements of the type around.
std::size_t TreeFormat::nameColumns() {
    const asn1data::TypeDescription* const container = labels_.container();
    if (container == nullptr) {
        return 0;
    }
    if (container != container_) {
        container_ = container;
        columns_ = isList(*container) ? 3 : 0;
        for (unsigned i = 0; i < container->elementCount; ++i) {
            const std::size_t length = std::string_view(container->elements[i].name).size();
            columns_ = std::max(columns_, length <= LongestAligned ? length : 0);
        }
    }
    return columns_;
}

std::size_t TreeFormat::writeLabel(const WalkElement& element) {
    std::size_t column = lines_.begin(depth(), placeOf(element, shift_, outerDepth_ != 0));
    const Label label = labels_.labelOf(element);
    if (!label.name.empty()) {
        column = lines_.name(label.name, nameColumns(), column);
    }
    for (const std::string& choice : label.choices) {
        column = lines_.prefix(choice, column);
    }
    return column;
}

void TreeFormat::writeValue(const WalkElement& element, std::size_t column) {
    if (writeInside(element, column)) {
        return;
    }
    const ValueKind kind = valueKind(element);
    const auto fits = [&](std::size_t columns) { return lines_.roomAt(column) > columns; };
    if (!fits(TreeLines::LeastRoom)) {
        column = lines_.findRoom(
            column, std::min(columnsOf(valueText(element, TreeLines::LeastRoom, names_).text),
                             TreeLines::LeastRoom));
    }
    const std::size_t room = lines_.full() ? Endless : lines_.roomAt(column);
    const bool isOctets = kind == ValueKind::OctetString || kind == ValueKind::Raw;
    if (lines_.full() && isOctets && element.value.octetCount != 0) {
        OctetStore store;
        lines_.octets(valueOctets(element, Endless, store), column);
        return;
    }
    // A digest or a serial number is worth a second line.
    constexpr std::size_t neverCut = 66;
    ValueText value = valueText(element, std::max(room, neverCut), names_);
    if (lines_.full() && kind == ValueKind::BigNumber && isSerialNumber(element)) {
        const std::string other = otherFormText(element);
        value.text += other.empty() ? "" : " (" + other + ")";
    }
    lines_.value(kind, value.rest == 0 ? value : valueText(element, room, names_), column);
}

bool TreeFormat::writeInside(const WalkElement& element, std::size_t column) {
    const ValueKind kind = valueKind(element);
    const bool isString = kind == ValueKind::OctetString ||
                          (kind == ValueKind::Bits && element.type->nameCount == 0 &&
                           element.value.bitCount % 8 == 0);
    if (kind != ValueKind::Raw && !isString) {
        return false;
    }
    OctetStore store;
    const Octets octets = valueOctets(element, Endless, store);
    if (octets.empty()) {
        return false;
    }
    const InnerType inner = types_.find(element, octets);
    const TreePlace place = placeOfOctets(element, octets, shift_);
    if (inner.type != nullptr) {
        const std::string text = inner.type->name + (inner.key.empty() ? "" : ", " + inner.key);
        lines_.text(Style::Quiet, text, lines_.findRoom(column, text.size()));
        openInside(*inner.type, octets, place);
        return true;
    }
    const std::optional<PlainElement> plain = firstElement(octets);
    if (kind == ValueKind::Raw) {
        if (!plain || plain->octets.size() != octets.size()) {
            return false;
        }
        TreePlace own = place;
        own.headerLength = plain->header;
        plain_.writeValue(*plain, column, depth(), own);
        return true;
    }
    if (!inner.key.empty()) {
        column = lines_.prefix(inner.key, column);
    }
    // The value of an extension is an element in any case; elsewhere a primitive may be chance.
    const bool isElement =
        element.step->name != nullptr && std::string_view(element.step->name) == "extnValue";
    if (!plain || !(plain->constructed || isElement) || !holdElements(octets)) {
        return !inner.key.empty() && (writeKey(element, column), true);
    }
    const std::string text = kind == ValueKind::Bits
                                 ? "BIT STRING, " + std::to_string(element.value.bitCount) + " bits"
                                 : "OCTET STRING, " + std::to_string(octets.size()) + " octets";
    lines_.text(Style::Quiet, text, lines_.findRoom(column, text.size()));
    plain_.write(octets, depth() + 1, place);
    return true;
}

/// Writes a key that is nothing but octets.
void TreeFormat::writeKey(const WalkElement& element, std::size_t column) {
    OctetStore store;
    const Octets octets = valueOctets(element, Endless, store);
    if (lines_.full()) {
        lines_.octets(octets, column);
        return;
    }
    column = lines_.findRoom(column, TreeLines::LeastRoom);
    lines_.value(ValueKind::OctetString, cutHex("", octets, octets.size(), lines_.roomAt(column)),
                 column);
}

/// Goes through octets by their type, in lines below the one of the value that they stand in.
void TreeFormat::openInside(const asn1data::TypeDescription& type, Octets octets,
                            const TreePlace& place) {
    Labels labels;
    asn1data::ContentsEnd ends;
    InnerTypes types;
    const std::size_t outerDepth = outerDepth_;
    const std::size_t shift = shift_;
    std::swap(labels, labels_);
    std::swap(ends, ends_);
    std::swap(types, types_);
    outerDepth_ += labels.depth() + (lines_.offsets() ? 1 : 0);
    shift_ = place.offset;
    asn1data::walk(type, octets.data(), octets.size(), *this);
    std::swap(labels, labels_);
    std::swap(ends, ends_);
    std::swap(types, types_);
    outerDepth_ = outerDepth;
    shift_ = shift;
}

bool TreeFormat::writeName(const WalkElement& element) {
    static const asn1data::TypeDescription* const names = asn1data::findType("RDNSequence");
    if (element.type != names || lines_.full() || lines_.offsets() || labels_.depth() == 0) {
        return false;
    }
    const unsigned char* const header = element.data + (element.valueOffset - element.offset);
    const std::size_t size = element.headerLength - (element.valueOffset - element.offset) +
                             static_cast<std::size_t>(std::max(element.contentLength, 0));
    const std::optional<std::string> text = nameText({header, size}, names_);
    // A value that is no text has a type of its own, which the parts tell.
    if (!text || text->find("=#") != std::string::npos) {
        return false;
    }
    std::size_t column = lines_.begin(depth(), placeOf(element, shift_, outerDepth_ != 0));
    const Label label = labels_.labelOf(element);
    if (!label.name.empty()) {
        column = lines_.name(label.name, nameColumns(), column);
    }
    for (const std::string& choice : label.choices) {
        if (choice != "rdnSequence") {
            column = lines_.prefix(choice, column);
        }
    }
    const std::string shown = text->empty() ? "(empty)" : escapeName(*text);
    lines_.text(Style::Text, shown,
                lines_.findRoom(column, std::min(columnsOf(shown), TreeLines::LeastRoom)));
    return true;
}

WalkAction TreeFormat::enter(const WalkElement& element) {
    if (writeName(element)) {
        reach(element, false);
        ends_.primitive(element);
        return WalkAction::Skip;
    }
    reach(element, true);
    ends_.enter(element);
    types_.enter(element);
    if (labels_.depth() == 0 && !lines_.offsets()) {
        // The heading above has told all about the message.
        labels_.enter(element);
        return WalkAction::Continue;
    }
    const std::string text =
        typeText(*element.type) + (element.contentLength == 0 ? " (empty)" : "");
    const std::size_t column = writeLabel(element);
    lines_.text(Style::Quiet, text, lines_.findRoom(column, text.size()));
    labels_.enter(element);
    return WalkAction::Continue;
}

WalkAction TreeFormat::leave(const WalkElement& element) {
    const asn1data::ContentsEnd::Gap gap = ends_.leave(element);
    if (gap.hidden != 0) {
        hidesOctets_ = true;
        OctetStore store;
        const Octets hidden = valueOctets(element, Endless, store).last(gap.hidden);
        const TreePlace place = placeOfOctets(element, hidden, shift_);
        lines_.failure(depth(), octetsText(gap.hidden) + " behind the value", place);
        plain_.write(hidden, depth(), place);
    }
    labels_.leave();
    types_.leave();
    return WalkAction::Continue;
}

WalkAction TreeFormat::primitive(const WalkElement& element) {
    reach(element, false);
    ends_.primitive(element);
    types_.primitive(element);
    writeValue(element, writeLabel(element));
    return WalkAction::Continue;
}

WalkAction TreeFormat::fault(const asn1data::WalkFault& fault) {
    faulted_ = true;
    lines_.failure(depth(), errorText(fault.failure), placeOf(fault.failure, shift_));
    plain_.write({fault.data, fault.size}, depth(), {fault.offset + shift_, 0, 0, fault.assembled});
    if (!fault.assembled && shift_ == 0) {
        reached_ = fault.offset + std::size_t{fault.size};
    }
    return WalkAction::Continue;
}

/// Keeps how far the message has been shown.
void TreeFormat::reach(const WalkElement& element, bool entered) {
    if (shift_ != 0 || element.assembled) {
        return;
    }
    std::size_t size = element.headerLength;
    if (entered) {
        // What is in it follows.
    } else if (element.contentLength != ASN1IndefiniteLength) {
        size += static_cast<unsigned>(element.contentLength);
    } else {
        const Octets octets = view_->message.shown;
        size = asn1data::elementSize(element, octets.data() + octets.size());
    }
    reached_ = std::max(reached_, element.offset + size);
}

std::string TreeFormat::headingText() const {
    const asn1data::TypeDescription* const type = view_->recognition.type;
    return view_->message.place + ": " + (type != nullptr ? type->name : "unknown type");
}

std::string TreeFormat::headingRest() const {
    if (view_->span == nullptr) {
        return ", " + octetsText(view_->size()) + ", " + view_->recognition.reason;
    }
    const std::string& path = *view_->path;
    return ", " + (path.empty() ? "the message" : escapeName(path)) + " at offset " +
           std::to_string(view_->span->offset) + ", " + octetsText(view_->size());
}

void TreeFormat::writeHeading() {
    if (!first_) {
        output_.write("\n");
    }
    first_ = false;
    output_.write(Style::Heading, headingText());
    output_.write(Style::Quiet, headingRest());
    output_.write("\n");
    if (fingerprint_) {
        output_.write(Style::Quiet, fingerprintText(view_->message.octets) + "\n");
    }
}

void TreeFormat::begin(const View& view) {
    view_ = &view;
    labels_ = {};
    ends_ = {};
    types_ = {};
    hidesOctets_ = false;
    faulted_ = false;
    reached_ = 0;
    writeHeading();
    if (view.cut != nullptr && view.cut->status != 0) {
        lines_.failure(0, errorText(view.cut->failure), placeOf(view.cut->failure, 0));
    }
}

bool TreeFormat::plain() {
    return plain_.write(view_->message.octets, 0, {0, 0, 0, false});
}

/// Writes what is left of the message, by tags and lengths.
void TreeFormat::writeRest() {
    const Octets octets = view_->message.octets;
    if (reached_ < octets.size() && view_->span == nullptr) {
        plain_.write(octets.subspan(reached_), depth(), {reached_, 0, 0, false});
    }
}

void TreeFormat::missing(const asn1data::WalkResult& walked) {
    const Message& message = view_->message;
    if (walked.status != 0 && !walked.stopped && walked.failure.offset < message.octets.size()) {
        error(walked.failure);
        return;
    }
    writeRest();
    lines_.failure(depth(), "the message ends here: " + missingText(message),
                   {message.octets.size(), 0, 0, false});
}

void TreeFormat::error(const asn1data::WalkFailure& failure) {
    if (faulted_) { // it was told where it stands
        return;
    }
    lines_.failure(depth(), errorText(failure), placeOf(failure, shift_));
    writeRest();
}

void TreeFormat::trailing(const Leftover& left) {
    const Message& message = view_->message;
    lines_.note(trailingText(left.count) + " from offset " + std::to_string(left.offset) + " on");
    const std::size_t offset = left.offset - message.offset;
    plain_.write({message.octets.data() + offset, left.count}, 0, {offset, 0, 0, false});
}

} // namespace derview
