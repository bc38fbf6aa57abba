#include "json_format.h"

#include <brevantis/asn1/runtime/status.h>
#include <brevantis/asn1/text/elements.h>

#include "failure_text.h"

namespace derview {

void JsonFormat::begin(const View& view) {
    view_ = &view;
    const Message& message = view.message;
    json_.beginObject();
    json_.key("file");
    json_.string(message.file);
    json_.key("message");
    json_.number(static_cast<long long>(message.number));
    if (!message.label.empty()) {
        json_.key("label");
        json_.string(message.label);
    }
    json_.key("type");
    json_.stringOrNull(view.recognition.type != nullptr ? view.type().name : nullptr);
    json_.key("recognised");
    json_.string(view.recognition.reason);
    if (view.span != nullptr) {
        json_.key("path");
        json_.string(*view.path);
        json_.key("offset");
        json_.number(view.span->offset);
    }
    json_.key("size");
    json_.number(static_cast<long long>(view.size()));
    if (view.recognition.type != nullptr) {
        json_.key("value");
        value_.emplace(json_, names_);
    }
}

bool JsonFormat::plain() {
    json_.key("hex");
    json_.hex(view_->message.octets);
    return areElements(view_->message.octets);
}

void JsonFormat::endValue() {
    if (value_) {
        hasTrailing_ = value_->hasTrailing();
        value_->end();
        value_.reset();
    }
}

void JsonFormat::writeError(const asn1data::WalkFailure& failure) {
    json_.key("error");
    json_.beginObject();
    json_.key("status");
    json_.number(failure.status);
    json_.key("name");
    json_.string(rtStatusName(failure.status));
    json_.key("offset");
    json_.number(failure.offset);
    json_.key("path");
    json_.string(failure.path);
    json_.key("expected");
    json_.string(expectedText(failure));
    json_.key("found");
    json_.string(foundText(failure));
    json_.end();
}

void JsonFormat::missing(const asn1data::WalkResult& /*walked*/) {
    endValue();
    if (view_->cut->status != 0) {
        writeError(view_->cut->failure);
    }
    json_.key("missing");
    json_.number(static_cast<long long>(view_->message.missing()));
}

void JsonFormat::error(const asn1data::WalkFailure& failure) {
    endValue();
    writeError(failure);
}

void JsonFormat::trailing(const Leftover& left) {
    endValue();
    json_.key("trailing");
    json_.number(static_cast<long long>(left.count));
}

bool JsonFormat::end() {
    endValue();
    json_.end();
    json_.finish();
    return !hasTrailing_;
}

} // namespace derview
