#include "failure_text.h"

#include <brevantis/asn1/runtime.h>

namespace derview {

using asn1data::WalkFailure;

std::string expectedText(const WalkFailure& failure) {
    return wholeText(
        [&](char* text, std::size_t size) { return asn1data::writeExpected(failure, text, size); });
}

std::string foundText(const WalkFailure& failure) {
    return wholeText(
        [&](char* text, std::size_t size) { return asn1data::writeFound(failure, text, size); });
}

std::string pathInParentheses(const std::string& path) {
    return path.empty() ? "(the message)" : "(" + path + ")";
}

std::string placeText(const WalkFailure& failure) {
    const std::string path = failure.path + std::string(failure.pathCut ? "…" : "");
    return (failure.assembled ? "~" : "") + std::to_string(failure.offset) + " " +
           pathInParentheses(path);
}

std::string reasonText(const WalkFailure& failure) {
    const std::string found = foundText(failure);
    return "expected " + expectedText(failure) + (found.empty() ? "" : ", found " + found);
}

std::string statusText(int status) {
    return std::to_string(status) + " " + rtStatusName(status);
}

std::string errorText(const WalkFailure& failure) {
    return "error " + statusText(failure.status) + " at " + placeText(failure) + ": " +
           reasonText(failure);
}

} // namespace derview
