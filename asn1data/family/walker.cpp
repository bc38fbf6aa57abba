#include <cstring>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>
#include <brevantis/asn1/runtime/utf8.h>

#include "walker.h"

namespace asn1data::family {

namespace {

/// Counts the characters of a text that a constraint is about: those in front of a zero octet.
struct TextCount {
    ASN1UTF8Count count{};
    bool utf8;

    static void take(void* state, const unsigned char* octets, unsigned size) noexcept {
        auto& text = *static_cast<TextCount*>(state);
        if (text.utf8) {
            rtUTF8CountPiece(&text.count, octets, size);
        } else if (!text.count.ended) {
            const auto* end = static_cast<const unsigned char*>(std::memchr(octets, 0, size));
            text.count.ended = end != nullptr;
            text.count.characters += static_cast<int>(end != nullptr ? end - octets : size);
        }
    }
};

bool isString(const TypeDescription* type) {
    return type != nullptr && family::isString(*type);
}

} // namespace

Walker::Walker(const unsigned char* message, unsigned size, WalkVisitor& visitor,
               WalkFailure& failure)
    : base(message), visitor_(visitor), interest_(visitor.interest()), failure_(failure) {
    static const unsigned char nothing = 0;
    base = message != nullptr ? message : &nothing;
    rtInitReader(&ctxt, base, size);
    ctxt.flags = ASN1F_NO_COPY;
    if (size != 0) { // without octets there is no size to state
        // A message that cannot be bound is met by the decoder itself, with the status that fits.
        xd_setp(&ctxt, base, static_cast<int>(size), nullptr, nullptr);
    }
}

Walker::~Walker() {
    rtMemHeapRelease(&ctxt.memHeap);
}

int Walker::run(const TypeDescription& type) {
    const WalkStep root{nullptr, nullptr, 0, StepKind::Message};
    here.step = &root;
    atElement();
    here.data = elementStart;
    return DecodeFlow<Walking>::decode(Walking(*this), type, {}, ASN1TagExplicit, 0);
}

/// The header and the contents of the value that ends at the position.
WalkScope Walker::scopeBehind() const {
    const bool whole = octets() - valueStart >= 2; // not so where a length is missing
    if (whole && (valueStart[0] & ASN1LongTagNumber) != ASN1LongTagNumber && valueStart[1] < 0x80) {
        return {valueStart, valueStart + 2, static_cast<int>(octets() - valueStart) - 2};
    }
    ASN1Header header;
    const auto left = static_cast<unsigned>(ctxt.buffer.data + ctxt.buffer.size - valueStart);
    if (rtReadHeader(valueStart, left, &header) != ASN1S_SUCCESS) {
        // A fixed string with a length that cannot be read is one without octets.
        return {valueStart, octets(), 0};
    }
    const unsigned char* const contents = valueStart + header.size;
    return {valueStart, contents,
            header.length == ASN1IndefiniteLength ? header.length
                                                  : static_cast<int>(octets() - contents)};
}

void Walker::describe(WalkElement& element, const TypeDescription* type,
                      const WalkScope& scope) const {
    element.step = here.step;
    element.type = type;
    element.element = here.element;
    element.container = here.container;
    element.object = here.object;
    element.data = here.data;
    element.offset = static_cast<unsigned>(here.data - base);
    element.valueOffset = static_cast<unsigned>(scope.valueStart - base);
    element.headerLength = static_cast<unsigned>(scope.contents - here.data);
    element.contentLength = scope.length;
    element.tag = rtTagOfOctet(*scope.valueStart);
    if ((element.tag & ASN1TagNumberMask) == ASN1LongTagNumber) {
        ASN1Header header{};
        rtReadHeader(scope.valueStart, static_cast<unsigned>(scope.contents - scope.valueStart),
                     &header);
        element.tag = header.tag;
    }
    element.depth = here.depth;
    element.segmented = (element.tag & ASN1TagConstructed) != 0 && isString(type);
    element.encapsulates = false;
    element.assembled = here.assembled;
    element.value = WalkValue{};
}

// The reports below have frames of their own, which are gone while an element is gone through.

[[gnu::noinline]] bool Walker::enter(const TypeDescription& type, const WalkScope& scope,
                                     const WalkValue* octets) {
    if (interest_.containers) {
        WalkElement element;
        describe(element, &type, scope);
        if (octets != nullptr) {
            element.encapsulates = true;
            element.value = *octets;
        }
        const WalkAction action = visitor_.enter(element);
        stopped = stopped || action == WalkAction::Stop;
        if (action != WalkAction::Continue) {
            return false;
        }
    }
    ++here.depth;
    return true;
}

[[gnu::noinline]] int Walker::leave(const TypeDescription& type, const WalkScope& scope,
                                    const WalkValue* octets) {
    --here.depth;
    if (interest_.containers) {
        WalkElement element;
        describe(element, &type, scope);
        if (octets != nullptr) {
            element.encapsulates = true;
            element.value = *octets;
        }
        stopped = visitor_.leave(element) == WalkAction::Stop;
    }
    return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
}

[[gnu::noinline]] int Walker::reportPrimitive(const TypeDescription* type, const WalkValue& value) {
    if (interest_.values) {
        WalkElement element;
        describe(element, type, scopeBehind());
        element.value = value;
        stopped = visitor_.primitive(element) == WalkAction::Stop;
    }
    return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
}

int Walker::checkConstraint(const TypeDescription& type, const Constraint& constraint,
                            const char* parameter) {
    const int status = checkNumber(&ctxt, type, number, constraint, parameter);
    if (status != ASN1S_SUCCESS) {
        failure_.constraint = constraint;
        fail(status, {Expectation::InRange, &type});
    }
    return status;
}

int Walker::readRaw(WalkValue& value) {
    atHeader();
    return xd_OpenType(&ctxt, &value.octets, &value.octetCount);
}

/// Reads the value of a primitive without keeping it. What its constraint is about goes to
/// Walker::number.
struct Walker::PrimitiveReader {
    Walker& walker;
    const TypeDescription& type;
    ASN1TagType tagging;
    int length;
    WalkValue& value;

    int operator()(Is<Shape::Boolean>) const { return number<unsigned char>(xd_boolean); }
    int operator()(Is<Shape::Integer>) const { return number<int>(xd_integer); }
    int operator()(Is<Shape::Unsigned>) const { return number<unsigned>(xd_unsigned); }
    int operator()(Is<Shape::Unsigned16>) const { return number<unsigned short>(xd_uint16); }
    int operator()(Is<Shape::Enumerated>) const {
        const int status = number<int>(xd_enum);
        value.number = walker.number = static_cast<unsigned>(value.number);
        return status;
    }
    int operator()(Is<Shape::BigInteger>) const {
        ASN1Extent extent{};
        const int status = xd_measureBigInt(&walker.ctxt, &extent, tagging, length);
        return octets(extent, status);
    }
    int operator()(Is<Shape::BigUnsigned>) const { return (*this)(Is<Shape::BigInteger>()); }
    int operator()(Is<Shape::Null>) const { return xd_null(&walker.ctxt, tagging); }
    int operator()(Is<Shape::ObjectIdentifier>) const {
        value.identifier = &walker.identifier_;
        return xd_objid(&walker.ctxt, &walker.identifier_, tagging, length);
    }
    int operator()(Is<Shape::OctetString>) const {
        ASN1Extent extent{};
        const int status = xd_measureOctets(&walker.ctxt, &extent, nullptr, tagging, length);
        return counted(extent, status);
    }
    int operator()(Is<Shape::FixedOctetString>) const {
        ASN1Extent extent{};
        const int status =
            xd_measureFixedOctets(&walker.ctxt, &extent, type.capacity, tagging, length);
        return counted(extent, status);
    }
    int operator()(Is<Shape::BitString>) const {
        ASN1Extent extent{};
        const int status = xd_measureBits(&walker.ctxt, &extent, tagging, length);
        return bits(extent, status);
    }
    int operator()(Is<Shape::FixedBitString>) const {
        ASN1Extent extent{};
        const int status =
            xd_measureFixedBits(&walker.ctxt, &extent, type.capacity, tagging, length);
        return bits(extent, status);
    }
    int operator()(Is<Shape::Text>) const {
        TextCount text{{}, type.tag == Utf8StringTag};
        const ASN1OctetSink sink{&TextCount::take, &text};
        ASN1Extent extent{};
        const int status = xd_measureText(&walker.ctxt, &extent, &sink, tagging, type.tag, length);
        walker.number = static_cast<unsigned>(text.count.characters);
        return octets(extent, status);
    }
    int operator()(Is<Shape::Text16>) const { return wideText(2); }
    int operator()(Is<Shape::Text32>) const { return wideText(4); }
    int operator()(Is<Shape::OpenType>) const { return walker.readRaw(value); }
    template <Shape S, class = std::enable_if_t<!isPrimitive(S)>>
    int operator()(Is<S>) const {
        return ASN1S_NOT_SUPPORTED; // no coder reads these as a whole
    }

private:
    template <class Number, class Coder>
    int number(Coder coder) const {
        Number read = 0;
        const int status = coder(&walker.ctxt, &read, tagging, length);
        value.number = walker.number = read;
        return status;
    }
    int octets(const ASN1Extent& extent, int status) const {
        value.octets = extent.count != 0 ? extent.data : nullptr;
        value.octetCount = extent.count;
        return status;
    }
    int counted(const ASN1Extent& extent, int status) const {
        walker.number = extent.count;
        return octets(extent, status);
    }
    int bits(ASN1Extent extent, int status) const {
        walker.number = value.bitCount = extent.count;
        extent.count = extent.count / 8 + (extent.count % 8 != 0 ? 1 : 0);
        return octets(extent, status);
    }
    int wideText(unsigned width) const {
        ASN1Extent extent{};
        const int status =
            xd_measureWideText(&walker.ctxt, &extent, width, tagging, type.tag, length);
        walker.number = extent.count;
        extent.count *= width;
        return octets(extent, status);
    }
};

int Walker::primitive(const TypeDescription* type, ASN1TagType tagging, int length) {
    if (tagging == ASN1TagExplicit) {
        atHeader();
    }
    const ASN1SavedState start{ctxt.buffer.byteIndex, ctxt.buffer.bitOffset, ctxt.flags};
    number = 0;
    WalkValue value{};
    const int status =
        type != nullptr
            ? withShape(type->shape, PrimitiveReader{*this, *type, tagging, length, value})
            : readRaw(value);
    if (status != ASN1S_SUCCESS) {
        return fail(
            status,
            {status == ASN1S_TAG_NOT_FOUND ? Expectation::Element : Expectation::Contents, type});
    }
    if (silence != 0) {
        return ASN1S_SUCCESS;
    }
    const bool raw = type == nullptr || type->shape == Shape::OpenType;
    if (raw && object != nullptr) {
        return resolved(value.octets, value.octetCount);
    }
    if (raw && value.octetCount == 0) { // none is there
        return ASN1S_SUCCESS;
    }
    if (object != nullptr && type->shape == Shape::OctetString && value.octetCount != 0) {
        return resolveOctets(*type, value, start, tagging, length);
    }
    return reportPrimitive(type, value);
}

int Walker::resolveOctets(const TypeDescription& type, const WalkValue& value,
                          const ASN1SavedState& start, ASN1TagType tagging, int length) {
    const ASN1Buffer behind = ctxt.buffer;
    const unsigned short flags = ctxt.flags;
    const WalkScope scope = scopeBehind();
    if (!enter(type, scope, &value)) {
        return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
    }
    const bool segmented = value.octets == nullptr;
    const unsigned char* data = value.octets;
    if (segmented) {
        ctxt.buffer.byteIndex = start.byteIndex;
        ctxt.flags = start.flags;
        unsigned count = 0;
        const int status = xd_octstr(&ctxt, &data, &count, tagging, length);
        if (status != ASN1S_SUCCESS) {
            return fail(status, {Expectation::Memory, &type});
        }
    }
    const unsigned char* const outerBase = base;
    const bool outerAssembled = here.assembled;
    const unsigned char* const outerData = here.data;
    if (segmented) {
        base = data;
        here.assembled = true;
    }
    here.data = data;
    int status = resolved(data, value.octetCount);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    if (segmented) {
        rtMemHeapFreePtr(&ctxt.memHeap, const_cast<unsigned char*>(data)); // the heap gave it out
    }
    base = outerBase;
    here.assembled = outerAssembled;
    here.data = outerData;
    ctxt.buffer = behind;
    ctxt.flags = flags;
    number = value.octetCount;
    return leave(type, scope, &value);
}

/// Goes through the octets of an open value. A failure leaves the context on them, success brings
/// it back behind the raw value.
int Walker::resolved(const unsigned char* data, unsigned count) {
    const ObjectDescription* const selected = object;
    const ASN1Buffer behind = ctxt.buffer;
    const unsigned short flags = ctxt.flags;
    if (count == 0) {
        ctxt.buffer = openValue->failing_;
        return fail(ASN1S_END_OF_BUFFER, {Expectation::Octets, selected->type});
    }
    const StepWalk step(*this, *selected);
    valueStart = data;
    int status = xd_setp(&ctxt, data, static_cast<int>(count), nullptr, nullptr);
    if (status != ASN1S_SUCCESS) {
        return fail(status, {Expectation::Header, selected->type});
    }
    const Nesting nesting(&ctxt, true);
    if (nesting.tooDeep()) {
        return fail(ASN1S_NO_MEMORY, {Expectation::LessNesting, selected->type});
    }
    object = nullptr;
    status = DecodeFlow<Walking>::decode(Walking(*this), *selected->type, {}, ASN1TagExplicit, 0);
    if (status == ASN1S_SUCCESS) {
        object = selected;
        openValue->failing_ = ctxt.buffer;
        ctxt.buffer = behind;
        ctxt.flags = flags;
        number = 0;
    }
    return status;
}

int Walker::fail(int status, const Expected& expected) {
    if (status == WalkStopped || failure_.expectation != Expectation::Nothing) {
        return status;
    }
    WalkFailure& failure = failure_;
    failure.status = status;
    failure.offset = static_cast<unsigned>(octets() - base);
    failure.partOffset = ctxt.buffer.byteIndex;
    failure.elementOffset = static_cast<unsigned>(here.data - base);
    failure.assembled = here.assembled;
    failure.expectation = expected.expectation;
    failure.type = expected.type;
    failure.container = expected.container;
    failure.firstExpected = expected.first;
    failure.expectedCount = expected.count;
    if (status == ASN1S_TAG_NOT_FOUND && octets() == candidateStart && candidateCount > 1) {
        failure.expectation = Expectation::OneOf;
        failure.container = candidateOwner;
        failure.firstExpected = candidateFirst;
        failure.expectedCount = candidateCount;
    }
    failure.pathCut =
        writePath(*here.step, failure.path, sizeof failure.path) >= sizeof failure.path;
    findFound(status, expected);
    if (openValue != nullptr) {
        openValue->reportRaw();
    }
    return status;
}

void Walker::findFound(int status, const Expected& expected) {
    const unsigned char* const end = ctxt.buffer.data + ctxt.buffer.size;
    const auto identifierAt = [&](const unsigned char* place) {
        failure_.finding = place < end ? Finding::Identifier : Finding::EndOfMessage;
        failure_.foundNumber = place < end ? *place : 0;
    };
    switch (status) {
    case ASN1S_TAG_NOT_FOUND:
    case ASN1S_EXTRA_ELEMENT:
        identifierAt(octets());
        break;
    case ASN1S_INVALID_CHOICE:
        identifierAt(valueStart);
        break;
    case ASN1S_UNKNOWN_SET_MEMBER:
        identifierAt(elementStart);
        break;
    case ASN1S_DUPLICATE_SET_MEMBER:
        identifierAt(here.data);
        break;
    case ASN1S_MISSING_ELEMENT:
        failure_.finding = octets() < end ? Finding::EndOfElement : Finding::EndOfMessage;
        break;
    case ASN1S_END_OF_BUFFER:
        failure_.finding = Finding::EndOfMessage;
        break;
    case ASN1S_CONSTRAINT_VIOLATION:
    case ASN1S_INVALID_ENUM: {
        const bool text = expected.type != nullptr && expected.type->shape == Shape::Text;
        const bool bad = text && static_cast<int>(static_cast<unsigned>(number)) < 0;
        failure_.finding = bad ? Finding::BadText : Finding::Number;
        failure_.foundNumber = number;
        break;
    }
    case ASN1S_INVALID_LENGTH:
    case ASN1S_VALUE_TOO_BIG:
    case ASN1S_STRING_OVERFLOW:
        if (expected.expectation == Expectation::EndOfContents) {
            identifierAt(octets());
        } else if (valueStart < end) {
            ASN1CTXT reader;
            rtInitReader(&reader, valueStart, static_cast<unsigned>(end - valueStart));
            rtCtxtSetFlag(&reader, ASN1F_LENGTH_UNCHECKED);
            ASN1TAG tag = 0;
            int length = 0;
            const bool known =
                xd_tag(&reader, &tag) == ASN1S_SUCCESS && xd_len(&reader, &length) == ASN1S_SUCCESS;
            failure_.finding = known ? Finding::Length : Finding::Nothing;
            failure_.foundNumber = length == ASN1IndefiniteLength
                                       ? length
                                       : static_cast<long long>(static_cast<unsigned>(length));
        }
        break;
    default:
        break;
    }
}

Walking::Constructed::Constructed(Walker& walker, const TypeDescription& type, int length)
    : walker_(walker), type_(type), scope_{walker.valueStart, walker.octets(), length},
      reported_(walker.reports()), entered_(!reported_ || walker.enter(type, scope_, nullptr)) {
    if (type.table != nullptr) {
        walker.openValue->enters(scope_);
    }
}

int Walking::Constructed::stepOver() {
    if (walker_.stopped) {
        return WalkStopped;
    }
    walker_.stepped = true;
    ASN1CTXT& ctxt = walker_.ctxt;
    if (scope_.length == ASN1IndefiniteLength) {
        const int status = xd_MovePastEOC(&ctxt);
        if (status != ASN1S_SUCCESS) {
            return walker_.fail(status, {Expectation::EndOfContents});
        }
        // Whoever reads the element takes its end-of-contents, or leaves it.
        ctxt.buffer.byteIndex -= 2;
        return ASN1S_SUCCESS;
    }
    const unsigned left =
        ctxt.buffer.byteIndex < ctxt.buffer.size ? ctxt.buffer.size - ctxt.buffer.byteIndex : 0;
    if (static_cast<unsigned>(scope_.length) > left) {
        return walker_.fail(ASN1S_END_OF_BUFFER, {Expectation::Contents, &type_});
    }
    ctxt.buffer.byteIndex += static_cast<unsigned>(scope_.length);
    return ASN1S_SUCCESS;
}

int Walking::Constructed::leave() {
    if (!entered_) {
        return ASN1S_SUCCESS;
    }
    walker_.stepped = false;
    if (!reported_) {
        return ASN1S_SUCCESS;
    }
    if (type_.table != nullptr) {
        walker_.openValue->leaves(scope_);
        return ASN1S_SUCCESS;
    }
    return walker_.leave(type_, scope_, nullptr);
}

} // namespace asn1data::family
