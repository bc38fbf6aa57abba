#include <charconv>
#include <cstring>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/status.h>

// Paths and failures as text.

namespace asn1data {

namespace {

/// Text in a buffer of the caller's: what does not fit is counted, not written.
class BoundedText {
public:
    BoundedText(char* text, std::size_t size) : text_(text), size_(size) {
        if (size_ != 0) {
            text_[0] = '\0';
        }
    }
    BoundedText& operator<<(const char* piece) {
        for (; *piece != '\0'; ++piece) {
            if (length_ + 1 < size_) {
                text_[length_] = *piece;
                text_[length_ + 1] = '\0';
            }
            ++length_;
        }
        return *this;
    }
    BoundedText& operator<<(long long number) {
        char digits[24];
        *std::to_chars(digits, digits + sizeof digits - 1, number).ptr = '\0';
        return *this << digits;
    }
    /// Two hexadecimal digits.
    BoundedText& octet(unsigned value) {
        static const char digits[] = "0123456789ABCDEF";
        const char pair[] = {digits[value >> 4 & 15], digits[value & 15], '\0'};
        return *this << pair;
    }
    std::size_t length() const { return length_; }

private:
    char* text_;
    std::size_t size_;
    std::size_t length_ = 0;
};

void putPath(BoundedText& out, const WalkStep* step) {
    if (step == nullptr || step->kind == StepKind::Message) {
        return;
    }
    putPath(out, step->outer);
    if (step->kind == StepKind::Index) {
        out << "[" << static_cast<long long>(step->index) << "]";
        return;
    }
    out << (out.length() != 0 ? "." : "");
    if (step->kind == StepKind::Addition) {
        out << "addition[" << static_cast<long long>(step->index) << "]";
    } else {
        out << step->name;
    }
}

void putTag(BoundedText& out, ASN1TAG tag) {
    static const char* const classes[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    out << "[" << classes[tag >> 30] << static_cast<long long>(tag & ASN1TagNumberMask) << "]";
}

/// What a type is called, with its identifier octet: "Name SEQUENCE (30)", "INTEGER (02)".
void putType(BoundedText& out, const TypeDescription& type) {
    const ASN1TAG tag = type.outerTag != 0 ? type.outerTag : type.tag;
    out << type.name;
    if (tag == 0) {
        return;
    }
    const char* const universal =
        tag >> 30 == 0 ? universalTypeName(tag & ASN1TagNumberMask) : nullptr;
    if (universal != nullptr && std::strcmp(universal, type.name) != 0) {
        out << " " << universal;
    }
    out << " (";
    out.octet(rtIdentifierOctet(tag)) << ")";
}

void putElement(BoundedText& out, const ElementDescription& element) {
    if (element.tagging == Tagging::Untagged) {
        out << element.name << " ";
        putType(out, *element.type);
        return;
    }
    putTag(out, element.tag);
    out << " " << element.name;
}

void putAlternatives(BoundedText& out, const WalkFailure& failure) {
    out << (failure.expectedCount > 1 ? "one of " : "");
    for (unsigned i = 0; i < failure.expectedCount; ++i) {
        out << (i != 0 ? ", " : "");
        putElement(out, failure.container->elements[failure.firstExpected + i]);
    }
    if (failure.status == ASN1S_EXTRA_ELEMENT) {
        out << ", or the end of " << failure.container->name;
    }
}

bool isNumber(const TypeDescription* type) {
    return type != nullptr &&
           (kindOf(type->shape) == ShapeKind::Boolean || kindOf(type->shape) == ShapeKind::Number ||
            kindOf(type->shape) == ShapeKind::BigNumber);
}

void putBound(BoundedText& out, long long bound) {
    if (bound == 0xFFFFFFFFLL) {
        out << "MAX";
    } else {
        out << bound;
    }
}

void putRanges(BoundedText& out, const WalkFailure& failure) {
    if (failure.finding == Finding::BadText) {
        out << "UTF-8 text";
        return;
    }
    out << (isNumber(failure.type) ? "a value of " : "a size of ");
    for (unsigned i = 0; i < failure.constraint.count; ++i) {
        const ValueRange& range = failure.constraint.ranges[i];
        out << (i != 0 ? " or " : "");
        putBound(out, range.lower);
        if (range.lower != range.upper) {
            out << "..";
            putBound(out, range.upper);
        }
    }
}

void putExpected(BoundedText& out, const WalkFailure& failure) {
    const char* const name = failure.type != nullptr ? failure.type->name : "an element";
    switch (failure.expectation) {
    case Expectation::Nothing:
        break;
    case Expectation::Element:
        if (failure.type != nullptr) {
            putType(out, *failure.type);
        } else {
            out << name;
        }
        break;
    case Expectation::OneOf:
        putAlternatives(out, failure);
        break;
    case Expectation::NoElement:
        out << "the end of " << failure.container->name;
        break;
    case Expectation::OtherMember:
        out << "a member of " << failure.container->name << " that is not there yet";
        break;
    case Expectation::Header:
        if (failure.finding != Finding::Length) {
            out << "identifier and length octets";
        } else {
            out << (failure.foundNumber == ASN1IndefiniteLength
                        ? "a definite length"
                        : "a length within the octets that are there");
        }
        break;
    case Expectation::Contents:
        out << (failure.finding == Finding::Nothing ? "well-formed contents of " : "contents of ")
            << name;
        break;
    case Expectation::EndOfContents:
        out << "end of contents";
        break;
    case Expectation::InRange:
        putRanges(out, failure);
        break;
    case Expectation::LessNesting:
        out << "at most 64 open and recursive types inside each other";
        break;
    case Expectation::Memory:
        out << "a message that fits the memory";
        break;
    case Expectation::Octets:
        out << "octets of " << name;
        break;
    case Expectation::Der:
        out << "DER (X.690, " << failure.clause << ")";
        break;
    case Expectation::Exact:
        out << "what a record can hold";
        break;
    case Expectation::FewerElements:
        out << "no more elements than the limit";
        break;
    }
}

/// What the status alone tells of what was found: octets that could not be read.
void putInvalid(BoundedText& out, int status) {
    switch (status) {
    case ASN1S_BAD_TAG:
        out << "an invalid tag";
        break;
    case ASN1S_INVALID_LENGTH:
    case ASN1S_VALUE_TOO_BIG:
    case ASN1S_STRING_OVERFLOW:
        out << "an invalid length";
        break;
    default:
        break;
    }
}

void putFound(BoundedText& out, const WalkFailure& failure) {
    switch (failure.finding) {
    case Finding::Nothing:
        if (failure.expectation != Expectation::Memory) {
            putInvalid(out, failure.status);
        }
        break;
    case Finding::EndOfMessage:
        out << "end of message";
        break;
    case Finding::EndOfElement:
        out << "end of the element around it";
        break;
    case Finding::Identifier: {
        const auto octet = static_cast<unsigned>(failure.foundNumber);
        const char* const name = octet == 0     ? "end of contents"
                                 : octet < 0x40 ? universalTypeName(octet & 0x1Fu)
                                                : nullptr;
        out << "tag ";
        out.octet(octet);
        if (name != nullptr) {
            out << " (" << name << ")";
        } else if (octet >= 0x40) {
            out << " (";
            putTag(out, rtTagOfOctet(static_cast<unsigned char>(octet)) & ~ASN1TagConstructed);
            out << ")";
        }
        break;
    }
    case Finding::Length:
        if (failure.foundNumber == ASN1IndefiniteLength) {
            out << "an indefinite length";
        } else {
            out << "a length of " << failure.foundNumber;
        }
        break;
    case Finding::Number:
        out << (isNumber(failure.type) ? "a value of " : "a size of ") << failure.foundNumber;
        break;
    case Finding::BadText:
        out << "octets that are no UTF-8";
        break;
    case Finding::Deviation:
        out << failure.deviation;
        break;
    }
}

/// The text that a writer makes, whatever its length.
template <class Write>
std::string wholeText(Write write) {
    std::string text(write(nullptr, 0), '\0');
    write(text.data(), text.size() + 1);
    return text;
}

} // namespace

std::size_t writePath(const WalkStep& step, char* text, std::size_t size) noexcept {
    BoundedText out(text, size);
    putPath(out, &step);
    return out.length();
}

std::string pathText(const WalkStep& step) {
    return wholeText([&](char* text, std::size_t size) { return writePath(step, text, size); });
}

std::size_t writeExpected(const WalkFailure& failure, char* text, std::size_t size) noexcept {
    BoundedText out(text, size);
    putExpected(out, failure);
    return out.length();
}

std::size_t writeFound(const WalkFailure& failure, char* text, std::size_t size) noexcept {
    BoundedText out(text, size);
    putFound(out, failure);
    return out.length();
}

std::size_t writeFailure(const WalkFailure& failure, char* text, std::size_t size) noexcept {
    BoundedText out(text, size);
    if (failure.status == ASN1S_SUCCESS) {
        return 0;
    }
    out << (failure.path[0] != '\0' ? failure.path : "the message")
        << (failure.pathCut ? "..." : "") << " at offset " << static_cast<long long>(failure.offset)
        << (failure.assembled ? " of the assembled octets: expected " : ": expected ");
    putExpected(out, failure);
    if (writeFound(failure, nullptr, 0) != 0) {
        out << ", found ";
        putFound(out, failure);
    }
    out << " (" << rtStatusName(failure.status) << ")";
    return out.length();
}

std::string failureText(const WalkFailure& failure) {
    return wholeText(
        [&](char* text, std::size_t size) { return writeFailure(failure, text, size); });
}

} // namespace asn1data
