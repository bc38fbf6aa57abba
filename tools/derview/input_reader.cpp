#include "input_reader.h"

#include <algorithm>
#include <climits>

#include <brevantis/asn1/text/json_reader.h>
#include <brevantis/asn1/text/types.h>

#include "escape.h"
#include "header.h"

namespace derview {

namespace {

/// Size of the message of indefinite length that octets begin with, counting what is missing: the
/// rest of the last element in it and the end-of-contents octets of those that are open.
/// @param open receives how many are open
std::size_t sizeWithEnd(Octets octets, std::size_t& open) {
    constexpr std::size_t longestHeader = 16;
    std::size_t place = 0;
    do {
        const Octets rest = octets.subspan(place);
        Header header = readHeader(rest);
        if (header.size == 0 && rest[0] == 0) { // half an end-of-contents
            break;
        }
        if (header.size == 0) {
            OctetStore filled(rest.begin(), rest.end());
            filled.resize(filled.size() + longestHeader);
            header = readHeader(filled);
        }
        if (header.size == 0) {
            return 0;
        }
        if (header.identifier == 0 && header.length == 0) {
            --open;
        } else if (header.indefinite) {
            ++open;
        }
        place += header.size + header.length;
    } while (open != 0 && place < octets.size());
    return std::max(place + EndOfContentsSize * open, octets.size());
}

} // namespace

InputReader::InputReader(const std::string& path, const Arguments& arguments)
    : arguments_(arguments), path_(path), file_(path), messages_(file_.octets(), arguments.input) {}

void InputReader::encode(Message& message) {
    const void* const start = message.octets.data();
    const std::string_view json(static_cast<const char*>(start), message.octets.size());
    message.octets = {};
    bool unknown = false;
    const auto find = [&](const char* name) {
        const asn1data::TypeDescription* type = arguments_.type;
        if (type == nullptr && arguments_.schema != nullptr) {
            type = arguments_.schema->findType(name);
        }
        type = type != nullptr ? type : findType(name);
        unknown = type == nullptr;
        return type;
    };
    JsonMessage told = encodeJsonMessage(json, find, {}, arguments_.names);
    encoded_ = std::move(told.octets);
    message.octets = encoded_;
    message.type = told.type;
    message.problem = told.problem + (unknown ? "; --type tells what it is" : "");
}

void InputReader::pad(Message& message) {
    constexpr std::size_t largest = INT_MAX;
    message.shown = message.octets;
    const Header header = readHeader(message.octets);
    if (header.size == 0 || header.length > largest - header.size) {
        return;
    }
    const std::size_t size =
        header.indefinite ? sizeWithEnd(message.octets, message.open) : header.size + header.length;
    if (size > message.octets.size() && size <= largest) {
        padded_ = std::make_unique<PaddedOctets>(message.octets, size);
        message.shown = padded_->octets().empty() ? message.octets : padded_->octets();
    }
}

std::optional<Message> InputReader::next() {
    std::optional<FoundMessage> found = messages_.next();
    if (!found) {
        return std::nullopt;
    }
    Message message;
    message.file = path_;
    message.number = found->number;
    message.offset = found->offset;
    message.label = escapeName(found->label);
    message.octets = found->octets;
    message.problem = std::move(found->problem);
    if (messages_.form() == InputForm::Auto && !file_.octets().empty()) {
        message.problem += "; --input der takes it as it stands";
    }
    message.trailing = found->trailing;
    if (messages_.form() == InputForm::Json && message.problem.empty()) {
        encode(message);
    }
    pad(message);
    message.place = escapeName(path_ == "-" ? "standard input" : path_);
    if (message.number > 1 || messages_.hasMore()) {
        message.place += "#" + std::to_string(message.number);
    }
    return message;
}

} // namespace derview
