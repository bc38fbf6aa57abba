#include "list_format.h"

#include <utility>

#include <brevantis/asn1/text/elements.h>
#include <brevantis/asn1/text/labels.h>
#include <brevantis/asn1/text/name_text.h>
#include <brevantis/asn1/text/value.h>

#include "escape.h"
#include "failure_text.h"
#include "fingerprint.h"
#include "value_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// Columns for a value; what is longer is cut.
constexpr std::size_t LongestValue = 80;

std::string_view memberOf(const WalkElement& element) {
    const asn1data::WalkStep* step = element.step;
    while (step->kind == asn1data::StepKind::Alternative ||
           step->kind == asn1data::StepKind::Object) {
        step = step->outer;
    }
    return step->kind == asn1data::StepKind::Member ? step->name : "";
}

bool isName(const WalkElement& element) {
    static const asn1data::TypeDescription* const names = asn1data::findType("RDNSequence");
    return element.type == names && element.contentLength != ASN1IndefiniteLength;
}

void put(std::string& target, const std::string& text) {
    if (target.empty()) {
        target = text;
    }
}

} // namespace

void ListFormat::begin(const View& view) {
    view_ = &view;
    depth_ = 0;
    for (std::string* const text :
         {&subject_, &issuer_, &serialNumber_, &from_, &until_, &problem_, &entry_, &label_}) {
        text->clear();
    }
}

bool ListFormat::plain() {
    return areElements(view_->message.octets);
}

std::string ListFormat::nameOf(const WalkElement& element) const {
    const unsigned before = element.valueOffset - element.offset;
    const std::optional<std::string> text =
        nameText({element.data + before,
                  element.headerLength - before + static_cast<unsigned>(element.contentLength)},
                 names_);
    return text ? escapeName(*text) : std::string("a name that is none");
}

void ListFormat::take(std::string_view name, const std::string& text) {
    if (name == "subject") {
        put(subject_, text);
    } else if (name == "issuer") {
        put(issuer_, text);
    } else if (name == "serialNumber") {
        put(serialNumber_, text);
    } else if (name == "notBefore" || name == "thisUpdate" || name == "genTime" ||
               name == "producedAt" || name == "messageTime") {
        put(from_, text);
    } else if (name == "notAfter" || name == "nextUpdate") {
        put(until_, text);
    }
}

WalkAction ListFormat::enter(const WalkElement& element) {
    const std::string_view member = memberOf(element);
    if (isName(element)) {
        if (listsElements()) {
            addObject(element, false);
            entry_ += "  " + nameOf(element);
        } else {
            take(member, nameOf(element));
        }
        return WalkAction::Skip;
    }
    if (listsElements()) {
        if (depth_ == 1) {
            entry_.clear();
            label_ = asn1data::pathText(*element.step);
        } else if (depth_ > 1) {
            addObject(element, false);
        }
    } else if (member == "revokedCertificates" || member == "extensions") {
        return WalkAction::Skip; // long, and nothing of it is told
    }
    ++depth_;
    return WalkAction::Continue;
}

WalkAction ListFormat::leave(const WalkElement& /*element*/) {
    --depth_;
    if (listsElements() && depth_ == 1) {
        writeEntry(label_);
    }
    return WalkAction::Continue;
}

WalkAction ListFormat::primitive(const WalkElement& element) {
    const ValueKind kind = valueKind(element);
    if (!listsElements()) {
        const std::string_view member = memberOf(element);
        if (kind == ValueKind::Time || kind == ValueKind::BigNumber || kind == ValueKind::Number) {
            take(member, valueText(element, LongestValue, names_).text);
        }
        return WalkAction::Continue;
    }
    const ValueText value = valueText(element, LongestValue, names_);
    const std::string text =
        value.text + (value.rest != 0 ? " " + restText(value.rest) : std::string());
    if (depth_ <= 1) {
        entry_ = "  " + text;
        writeEntry(asn1data::pathText(*element.step));
        return WalkAction::Continue;
    }
    // The name of a typed value says what its identifier does.
    const bool selects = kind == ValueKind::Identifier && element.container != nullptr &&
                         element.container->table != nullptr;
    if (selects) {
        identifier_ = "  " + text;
        return WalkAction::Continue;
    }
    addObject(element, true);
    if (kind != ValueKind::Null) {
        entry_ += (element.object != nullptr ? " " : "  ") + text;
    }
    return WalkAction::Continue;
}

/// Adds what tells a value with an identifier: the name of its object, or the identifier.
void ListFormat::addObject(const WalkElement& element, bool isPrimitive) {
    if (element.object != nullptr) {
        entry_ += std::string("  ") + element.object->name;
        identifier_.clear();
    } else if (isPrimitive && (valueKind(element) == ValueKind::Raw ||
                               valueKind(element) == ValueKind::OctetString)) {
        entry_ += std::exchange(identifier_, {});
    }
}

void ListFormat::writeEntry(std::string_view label) {
    output_.write(Style::Name, escapeName(label));
    output_.write(entry_ + identifier_ + "\n");
    entry_.clear();
    identifier_.clear();
}

void ListFormat::missing(const asn1data::WalkResult& /*walked*/) {
    problem_ = missingText(view_->message);
}

void ListFormat::error(const asn1data::WalkFailure& failure) {
    problem_ = errorText(failure);
}

void ListFormat::trailing(const Leftover& left) {
    put(problem_, trailingText(left.count));
}

bool ListFormat::end() {
    const Message& message = view_->message;
    if (listsElements()) {
        if (!problem_.empty()) {
            diagnostics_.tell(message, problem_);
        }
        return true;
    }
    const asn1data::TypeDescription* const type = view_->recognition.type;
    output_.write(Style::Heading, message.place);
    output_.write(std::string(": ") + (type != nullptr ? type->name : "unknown type"));
    const std::string& name = subject_.empty() ? issuer_ : subject_;
    if (!name.empty()) {
        output_.write("  ");
        output_.write(Style::Text, name);
    }
    if (!serialNumber_.empty()) {
        output_.write("  " + serialNumber_);
    }
    if (!from_.empty()) {
        output_.write("  " + from_ + (until_.empty() ? "" : " to " + until_));
    }
    if (fingerprint_) {
        output_.write("  " + fingerprintText(message.octets));
    }
    if (!problem_.empty()) {
        output_.write("  ");
        output_.write(Style::Bad, problem_);
    }
    output_.write("\n");
    return true;
}

} // namespace derview
