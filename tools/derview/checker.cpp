#include "checker.h"

#include "failure_text.h"
#include "lint.h"
#include "path_filter.h"
#include "recode_check.h"

namespace derview {

using asn1data::TypeDescription;

namespace {

std::string countText(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what;
}

} // namespace

void Checker::writeLine(const std::string& place, Style style, const std::string& text) {
    progress_.clear();
    output_.write(place + ": ");
    output_.write(style, text);
    output_.write("\n");
}

void Checker::writeFinding(const Message& message, const std::string& text) {
    ++findings_;
    writeLine(message.place, Style::Bad, text);
}

bool Checker::compare(const Message& message, const TypeDescription& type,
                      asn1data::WalkResult& result) {
    const std::string name = std::string(type.name) + " ";
    // The walk knows places and reasons; it fails exactly where the decoder does.
    asn1data::WalkVisitor nothing;
    ProgressVisitor visitor(progress_, nothing);
    result =
        asn1data::walk(type, message.octets.data(), message.octets.size(), visitor, message.policy);
    if (result.status != 0) {
        ++errors_;
        writeLine(message.place, Style::Bad, name + errorText(result.failure));
        return false;
    }
    RecodeCheck check(message.octets, message.policy, recoder_);
    ProgressVisitor checking(progress_, check);
    const asn1data::WalkResult checked = asn1data::walk(
        type, message.octets.data(), message.octets.size(), checking, message.policy);
    if (!check.difference && check.status == 0 && checked.consumed != message.octets.size() &&
        !checked.stopped) {
        check.difference = checked.consumed;
    }
    if (check.status != 0) {
        ++errors_;
        writeLine(message.place, Style::Bad, name + "error " + recoder_.problem());
        return false;
    }
    if (!check.difference) {
        ++identical_;
        writeLine(message.place, Style::Good, name + "identical");
        return true;
    }
    ++different_;
    const std::size_t offset = *check.difference;
    PathAtOffset place(offset);
    asn1data::walk(type, message.octets.data(), message.octets.size(), place, message.policy);
    writeLine(message.place, Style::Bad,
              name + "differs at " + std::to_string(offset) + " " + pathInParentheses(place.path));
    return false;
}

bool Checker::lint(const Message& message, const TypeDescription& type,
                   asn1data::WalkResult& result) {
    const std::size_t before = findings_;
    const auto tell = [&](const asn1data::Deviation& deviation) {
        writeFinding(message, std::string("not DER at ") + (deviation.assembled ? "~" : "") +
                                  std::to_string(deviation.offset) + " " +
                                  pathInParentheses(asn1data::pathText(*deviation.step)) + ": " +
                                  deviation.what + " (X.690, " + deviation.clause + ")");
    };
    Lint lint(message.octets, tell);
    ProgressVisitor visitor(progress_, lint);
    result =
        asn1data::walk(type, message.octets.data(), message.octets.size(), visitor, message.policy);
    if (result.status != 0 && !recodes_) {
        ++errors_;
        writeLine(message.place, Style::Bad,
                  std::string(type.name) + " " + errorText(result.failure));
        return false;
    }
    return findings_ == before;
}

bool Checker::check(const Message& message, const TypeDescription& type) {
    ++messages_;
    asn1data::WalkResult result{};
    for (const std::string& text : toleratedTexts(message, type)) {
        writeLine(message.place, Style::Name, text);
    }
    bool good = !recodes_ || compare(message, type, result);
    if (lints_) {
        good = lint(message, type, result) && good;
    }
    // A failure has told that the message ends too early.
    if (result.status == 0 && message.missing() != 0) {
        good = false;
        writeFinding(message, missingText(message));
    }
    const Leftover left = message.leftover(result);
    if (left.count != 0) {
        good = false;
        writeFinding(message, trailingText(left.count) + " at " + std::to_string(left.offset));
    }
    return good;
}

void Checker::countFailure(const std::string& place, const std::string& problem) {
    ++messages_;
    ++errors_;
    writeLine(place, Style::Bad, "error: " + problem);
}

void Checker::writeTotal() {
    progress_.clear();
    std::string text = countText(messages_, messages_ == 1 ? "message" : "messages");
    if (recodes_) {
        text += ": " + countText(identical_, "identical") + ", " +
                countText(different_, different_ == 1 ? "differs" : "differ") + ", " +
                countText(errors_, errors_ == 1 ? "error" : "errors");
    } else {
        text += ": " + countText(errors_, errors_ == 1 ? "error" : "errors");
    }
    if (lints_ || findings_ != 0) {
        text += ", " + countText(findings_, findings_ == 1 ? "finding" : "findings");
    }
    output_.write(Style::Heading, text);
    output_.write("\n");
}

} // namespace derview
