#include "der_format.h"

#include <brevantis/asn1/text/pem.h>
#include <brevantis/asn1/text/recognition.h>

#include "failure_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

void DerFormat::begin(const View& view) {
    view_ = &view;
    ends_ = {};
    losses_.clear();
    trailing_ = 0;
    refused_ = false;
}

WalkAction DerFormat::enter(const WalkElement& element) {
    ends_.enter(element);
    return WalkAction::Continue;
}

WalkAction DerFormat::leave(const WalkElement& element) {
    if (const std::size_t hidden = ends_.leave(element).hidden; hidden != 0) {
        losses_.push_back(asn1data::pathText(*element.step) + ": " + octetsText(hidden) +
                          " behind the value left out");
    }
    return WalkAction::Continue;
}

WalkAction DerFormat::primitive(const WalkElement& element) {
    ends_.primitive(element);
    return WalkAction::Continue;
}

void DerFormat::refuse(const std::string& text) {
    diagnostics_.tell(view_->message, std::string(view_->type().name) + " " + text);
    refused_ = true;
}

void DerFormat::missing(const asn1data::WalkResult& /*walked*/) {
    refuse(view_->cut->status != 0 ? errorText(view_->cut->failure)
                                   : "cut short: " + missingText(view_->message));
}

void DerFormat::error(const asn1data::WalkFailure& failure) {
    refuse(errorText(failure));
}

void DerFormat::write(const View& /*view*/, Octets encoded) {
    output_.writeOctets(encoded);
}

void PemFormat::write(const View& view, Octets encoded) {
    const std::string& label = view.message.label;
    output_.write(pem::write(label.empty() ? labelOf(view.type()) : label, encoded));
}

bool DerFormat::end() {
    if (refused_) {
        return false;
    }
    const Message& message = view_->message;
    if (recoder_.recode(view_->type(), message.octets, message.policy) != 0) {
        refuse("error " + recoder_.problem());
        return false;
    }
    write(*view_, recoder_.encoded());
    for (const std::string& loss : losses_) {
        diagnostics_.tell(message, loss);
    }
    if (trailing_ != 0) {
        diagnostics_.tell(message, trailingText(trailing_));
    }
    return losses_.empty();
}

} // namespace derview
