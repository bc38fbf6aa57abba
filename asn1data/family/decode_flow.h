#ifndef BREVANTIS_ASN1DATA_FAMILY_DECODE_FLOW_H
#define BREVANTIS_ASN1DATA_FAMILY_DECODE_FLOW_H

#include <algorithm>

#include <brevantis/asn1/asn1data/generated.h>
#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "tag_match.h"
#include "value_access.h"

// How the octets of a message are read by the description of its type: which element may begin
// where, whose tag is read by whom, where a value ends. What becomes of the values is up to a sink:
// the decoder has one that stores them, the walk one that reports them.

namespace asn1data::family {

/// What the reading wanted to find when it failed.
struct Expected {
    Expectation expectation = Expectation::Contents;
    const TypeDescription* type = nullptr;      ///< that was to be read
    const TypeDescription* container = nullptr; ///< whose elements were to come
    unsigned first = 0;                         ///< the first of these elements
    unsigned count = 0;
};

/// The flow over a sink, a handle that is passed by value. It has
/// - `Value`, where a value goes, and `member`, `alternative`, which lead on from a record;
/// - `fail`, which records a status with what was expected, and hands it back;
/// - `primitive`, `addition`, `withinConstraint`, `prepare`, `took`, `selects`, `selected`;
/// - objects that live as long as something is read: `Step` (on the path to an element),
///   `Constructed` (its contents), `List` and `Places` (its elements);
/// - `canGoOn`: whether it may go on behind a failure, with `goOnBehind` and the like, and
///   `Constructed::goOn`;
/// - `watchesOpenValues`: whether it has to know a record with an open value from the start, by an
///   `OpenValue` object, or can `resolve` that from the record.
template <class Sink>
struct DecodeFlow {
    using Value = typename Sink::Value;

    enum : unsigned { MaximumListCount = 0x7FFFFFFEu };

    /// The contents octets of a constructed value, from where the position stands now. What
    /// rtScopeEnded tests is settled for a definite length once.
    class Scope {
    public:
        Scope(const ASN1CTXT* ctxt, int length)
            : open_{ctxt->buffer.data + ctxt->buffer.byteIndex, length} {
            const unsigned start = ctxt->buffer.byteIndex;
            const unsigned left = start < ctxt->buffer.size ? ctxt->buffer.size - start : 0;
            end_ = length == ASN1IndefiniteLength ? 0
                   : length < 0                   ? start
                                : start + std::min(static_cast<unsigned>(length), left);
        }
        bool ended(const ASN1CTXT* ctxt) const {
            return ctxt->buffer.byteIndex >= end_ &&
                   (open_.length != ASN1IndefiniteLength || rtScopeEnded(ctxt, open_));
        }

    private:
        ASN1ElementScope open_;
        unsigned end_; ///< of a definite length, held to the end of the buffer
    };

    /// What xd_tag_len does for a header of two octets without a call, and xd_tag_len for any
    /// other.
    static int readHeader(ASN1CTXT* ctxt, ASN1TAG& tag, int& length) {
        ASN1Buffer& buffer = ctxt->buffer;
        constexpr unsigned closed = ASN1F_INDEF_MESSAGE | ASN1F_LAST_EOC;
        const unsigned char* const header = buffer.data + buffer.byteIndex;
        if (buffer.size < 2 || buffer.byteIndex > buffer.size - 2 ||
            (header[0] & ASN1LongTagNumber) == ASN1LongTagNumber || header[1] >= 0x80 ||
            (ctxt->flags & closed) == closed) {
            return xd_tag_len(ctxt, &tag, &length, ASN1MatchAdvance);
        }
        ctxt->savedInfo.byteIndex = buffer.byteIndex;
        ctxt->savedInfo.flags = ctxt->flags;
        tag = rtTagOfOctet(header[0]);
        length = header[1];
        buffer.byteIndex += 2;
        ctxt->flags = static_cast<unsigned short>((ctxt->flags & ~ASN1F_CONSTRUCTED) |
                                                  ((header[0] & 0x20) << 5));
        return ASN1S_SUCCESS;
    }

    /// Steps over the end-of-contents octets that close an indefinite form (X.690, 8.1.5).
    static int stepOverEndOfContents(Sink sink) {
        if (!rtEndOfContentsAhead(sink.ctxt())) {
            return sink.fail(ASN1S_INVALID_LENGTH, {Expectation::EndOfContents});
        }
        sink.ctxt()->buffer.byteIndex += 2;
        return ASN1S_SUCCESS;
    }

    /// Decodes the value of an element whose tag, if it has one, was read with the given length.
    /// Whoever reads a tag in indefinite form steps over its end-of-contents, where the element
    /// belongs to the structures that streaming producers write so (RFC 5652, 5.1 and the
    /// like).
    [[gnu::always_inline]] static int decodeTagged(Sink sink, const TypeDescription& container,
                                                   const ElementDescription& element, Value value,
                                                   ASN1TagType inner, int length) {
        const int status = decode(sink, *element.type, value, inner, length);
        if (status != ASN1S_SUCCESS || length != ASN1IndefiniteLength) {
            return status;
        }
        // Kept: any other type leaves these octets to its caller, who depends on the position.
        if (!container.stepsOverEndOfContents && !element.type->stepsOverEndOfContents) {
            return ASN1S_SUCCESS;
        }
        if (inner == ASN1TagImplicit && isString(*element.type)) {
            return ASN1S_SUCCESS;
        }
        return stepOverEndOfContents(sink);
    }

    [[gnu::always_inline]] static int decodeElement(Sink sink, const TypeDescription& container,
                                                    const ElementDescription& element,
                                                    Value value) {
        int status = ASN1S_SUCCESS;
        if (element.tagging == Tagging::Untagged) {
            status = decode(sink, *element.type, value, ASN1TagExplicit, 0);
        } else {
            int length = 0;
            sink.atHeader();
            status = isLong(element.identifier) ? readLongTag(sink.ctxt(), element.tag, length)
                                                : xd_Tag1AndLen(sink.ctxt(), &length);
            if (status != ASN1S_SUCCESS) {
                return sink.fail(status, {Expectation::Header, element.type});
            }
            // Kept: the length of an EXPLICIT tag is not held against what stands inside.
            status = decodeTagged(sink, container, element, value, innerTagging(element), length);
        }
        if (status != ASN1S_SUCCESS) {
            return sink.fail(status, {});
        }
        return sink.withinConstraint(*element.type, value, element.constraint, element.parameter);
    }

    /// Elements behind the known ones, kept as they are.
    [[gnu::noinline]] static int decodeAdditions(Sink sink, const TypeDescription& type,
                                                 Value record, const Scope& scope) {
        ASN1CTXT* const ctxt = sink.ctxt();
        for (unsigned place = 0; !scope.ended(ctxt); ++place) {
            const unsigned start = ctxt->buffer.byteIndex;
            const int status = sink.addition(type, record, place);
            if (status != ASN1S_SUCCESS) {
                return sink.fail(status, {Expectation::Header});
            }
            // ASN1F_LAST_EOC makes every element absent, and absent elements have no end.
            if (ctxt->buffer.byteIndex == start) {
                return sink.fail(ASN1S_END_OF_BUFFER, {Expectation::Header});
            }
        }
        return ASN1S_SUCCESS;
    }

    /// Fails where elements of a record can stand, from one on to the next mandatory one.
    [[gnu::cold, gnu::noinline]] static int failAt(Sink sink, int status,
                                                   const TypeDescription& type, unsigned first) {
        unsigned last = first;
        while (last < type.elementCount && type.elements[last].presence != Presence::Mandatory) {
            ++last;
        }
        last += last < type.elementCount ? 1 : 0;
        return sink.fail(status, {first == last ? Expectation::NoElement : Expectation::OneOf,
                                  nullptr, &type, first, last - first});
    }

    /// Goes on where a mandatory element should have been. What stands there is a later one, or
    /// stands in its place, or in front of it.
    /// @param place behind that element, which is looked for again if the place is one less
    [[gnu::cold, gnu::noinline]] static int
    goOnWithout(Sink sink, int status, const TypeDescription& type, unsigned& place) {
        ASN1CTXT* const ctxt = sink.ctxt();
        for (unsigned later = place; later < type.elementCount; ++later) {
            if (beginsHere(ctxt, type.elements[later])) {
                return sink.goOnHere(status);
            }
        }
        status = sink.goOnBehindUnread(status);
        if (status == ASN1S_SUCCESS && ctxt->buffer.byteIndex < ctxt->buffer.size &&
            beginsHere(ctxt, type.elements[place - 1])) {
            --place;
        }
        return status;
    }

    /// Elements in the order of declaration (X.690, 8.9.2); the place in the declaration only moves
    /// on.
    [[gnu::always_inline]] static int decodeSequence(Sink sink, const TypeDescription& type,
                                                     Value record, int length) {
        ASN1CTXT* const ctxt = sink.ctxt();
        sink.prepare(type, record);
        const Scope scope(ctxt, length);
        unsigned place = 0;
        unsigned next = 0; // the place behind the element that was there last
        unsigned found = 0;
        while (!scope.ended(ctxt)) {
            if (place >= type.elementCount) {
                if (type.extensionOffset == NoOffset) {
                    return failAt(sink, ASN1S_EXTRA_ELEMENT, type, next);
                }
                const int status = decodeAdditions(sink, type, record, scope);
                if (status != ASN1S_SUCCESS) {
                    return status;
                }
                break;
            }
            const ElementDescription& element = type.elements[place++];
            const bool mandatory = element.presence == Presence::Mandatory;
            if (!mandatory || element.tagging != Tagging::Untagged) {
                if (!beginsHere(ctxt, element)) {
                    if (!mandatory) {
                        continue;
                    }
                    int status = failAt(sink, ASN1S_TAG_NOT_FOUND, type, next);
                    const unsigned missing = place;
                    if constexpr (Sink::canGoOn) {
                        status = goOnWithout(sink, status, type, place);
                    }
                    if (status != ASN1S_SUCCESS) {
                        return status;
                    }
                    found += place == missing ? 1 : 0;
                    continue;
                }
            }
            sink.atElement();
            const typename Sink::Step step(sink, type, element, next);
            int status = decodeElement(sink, type, element, sink.member(record, element));
            if (status == ASN1S_SUCCESS) {
                sink.took(type, element, record);
            } else {
                if constexpr (Sink::canGoOn) {
                    status = sink.goOnBehind(status);
                }
                if (status != ASN1S_SUCCESS) {
                    return status;
                }
            }
            found += mandatory ? 1 : 0;
            next = place;
        }
        return found < type.mandatoryCount ? failAt(sink, ASN1S_MISSING_ELEMENT, type, next)
                                           : ASN1S_SUCCESS;
    }

    /// Members of a SET by their numbers: as many as the schema compiler allows in one.
    class Seen {
    public:
        bool has(unsigned number) const { return (words_[number / 64] >> number % 64 & 1u) != 0; }
        void add(unsigned number) { words_[number / 64] |= 1ULL << number % 64; }

    private:
        unsigned long long words_[4] = {};
    };

    /// The first mandatory member of a SET that was not seen.
    static unsigned missingMember(const TypeDescription& type, const Seen& seen) {
        unsigned i = 0;
        while (i + 1 < type.elementCount &&
               (seen.has(i) || type.elements[i].presence != Presence::Mandatory)) {
            ++i;
        }
        return i;
    }

    /// Elements in any order (X.690, 8.11.2), each by its whole tag.
    [[gnu::always_inline]] static int decodeSet(Sink sink, const TypeDescription& type,
                                                Value record, int length) {
        ASN1CTXT* const ctxt = sink.ctxt();
        sink.prepare(type, record);
        const Scope scope(ctxt, length);
        Seen seen;
        unsigned found = 0;
        while (!scope.ended(ctxt)) {
            ASN1TAG tag = 0;
            int elementLength = 0;
            sink.atElement();
            const unsigned start = ctxt->buffer.byteIndex;
            int status = readHeader(ctxt, tag, elementLength);
            if (status != ASN1S_SUCCESS) {
                return sink.fail(status, {Expectation::Header});
            }
            const unsigned i = memberWith(type, ctxt->buffer.data[start], tag);
            if (i == type.elementCount) {
                status =
                    sink.fail(ASN1S_UNKNOWN_SET_MEMBER, {Expectation::OtherMember, nullptr, &type});
                if constexpr (Sink::canGoOn) {
                    status = sink.goOnBehindMember(status);
                }
                if (status != ASN1S_SUCCESS) {
                    return status;
                }
                continue;
            }
            const ElementDescription& element = type.elements[i];
            const Value value = sink.member(record, element);
            const typename Sink::Step step(sink, type, element);
            if (element.matchTag == 0) {
                ctxt->buffer.byteIndex = start;
                status = decode(sink, *element.type, value, ASN1TagExplicit, 0);
            } else {
                status =
                    decodeTagged(sink, type, element, value, innerTagging(element), elementLength);
            }
            if (status != ASN1S_SUCCESS) {
                sink.fail(status, {});
            } else {
                status = sink.withinConstraint(*element.type, value, element.constraint,
                                               element.parameter);
            }
            if (status == ASN1S_SUCCESS && seen.has(i)) {
                status = sink.fail(ASN1S_DUPLICATE_SET_MEMBER,
                                   {Expectation::OtherMember, nullptr, &type});
            }
            if constexpr (Sink::canGoOn) {
                if (status != ASN1S_SUCCESS) {
                    status = sink.goOnBehind(status);
                }
            }
            if (status != ASN1S_SUCCESS) {
                return status;
            }
            seen.add(i);
            sink.took(type, element, record);
            found += element.presence == Presence::Mandatory ? 1 : 0;
        }
        return found < type.mandatoryCount
                   ? sink.fail(ASN1S_MISSING_ELEMENT,
                               {Expectation::OneOf, nullptr, &type, missingMember(type, seen), 1})
                   : ASN1S_SUCCESS;
    }

    [[gnu::noinline]] static int decodeChoice(Sink sink, const TypeDescription& type,
                                              Value record) {
        ASN1CTXT* const ctxt = sink.ctxt();
        sink.selects(type, record);
        const unsigned start = ctxt->buffer.byteIndex;
        ASN1TAG tag = 0;
        int length = 0;
        sink.atHeader();
        int status = readHeader(ctxt, tag, length);
        if (status != ASN1S_SUCCESS) {
            return sink.fail(status, {Expectation::OneOf, nullptr, &type, 0, type.elementCount});
        }
        const unsigned char octet = ctxt->buffer.data[start];
        for (unsigned i = 0; i < type.elementCount; ++i) {
            const ElementDescription& alternative = type.elements[i];
            // An alternative without a tag to compare reads its own from the start.
            const bool untagged = alternative.matchTag == 0;
            if (untagged ? !mayBegin(alternative, octet, tag) : tag != alternative.matchTag) {
                continue;
            }
            Value value;
            if (!sink.alternative(record, alternative, value)) {
                return sink.fail(ASN1S_NO_MEMORY, {Expectation::Memory});
            }
            const typename Sink::Step step(sink, type, alternative);
            if (untagged) {
                ctxt->buffer.byteIndex = start;
                status = decode(sink, *alternative.type, value, ASN1TagExplicit, 0);
            } else {
                status =
                    decodeTagged(sink, type, alternative, value, innerTagging(alternative), length);
            }
            if (status != ASN1S_SUCCESS) {
                return sink.fail(status, {});
            }
            status = sink.withinConstraint(*alternative.type, value, alternative.constraint,
                                           alternative.parameter);
            if (status != ASN1S_SUCCESS) {
                return status;
            }
            sink.selected(type, record, i + 1);
            return ASN1S_SUCCESS;
        }
        return sink.fail(ASN1S_INVALID_CHOICE,
                         {Expectation::OneOf, nullptr, &type, 0, type.elementCount});
    }

    /// The elements of a repeated value, each in the place that `elements` has for it.
    template <class Elements>
    [[gnu::always_inline]] static int decodeElements(Sink sink, const TypeDescription& type,
                                                     Elements& elements, int length,
                                                     unsigned capacity) {
        const Scope scope(sink.ctxt(), length);
        while (!scope.ended(sink.ctxt())) {
            if (elements.count() >= capacity) {
                return sink.fail(ASN1S_EXTRA_ELEMENT, {Expectation::NoElement, nullptr, &type});
            }
            Value place;
            if (!elements.place(place)) {
                return sink.fail(ASN1S_NO_MEMORY, {Expectation::Memory});
            }
            const typename Sink::Step step(sink, type, elements.count());
            int status = decode(sink, *type.element, place, ASN1TagExplicit, 0);
            if constexpr (Sink::canGoOn) {
                if (status != ASN1S_SUCCESS) {
                    status = sink.goOnBehind(status);
                }
            }
            if (status != ASN1S_SUCCESS) {
                return status;
            }
            elements.append(place);
        }
        return ASN1S_SUCCESS;
    }

    [[gnu::always_inline]] static int decodeList(Sink sink, const TypeDescription& type,
                                                 Value value, int length) {
        typename Sink::List list(sink, type, value);
        return decodeElements(sink, type, list, length, MaximumListCount);
    }

    [[gnu::always_inline]] static int decodePlaces(Sink sink, const TypeDescription& type,
                                                   Value value, int length, unsigned capacity) {
        typename Sink::Places places(sink, type, value);
        return decodeElements(sink, type, places, length, capacity);
    }

    [[gnu::always_inline]] static int decodeArray(Sink sink, const TypeDescription& type,
                                                  Value value, int length) {
        sink.clearArray(type, value);
        int count = 0;
        const int status = xd_count(sink.ctxt(), length, &count);
        if (status != ASN1S_SUCCESS) {
            return sink.fail(status, {Expectation::Contents, &type});
        }
        const unsigned long long size =
            static_cast<unsigned long long>(count) * type.element->valueSize;
        if (size > 0x7FFFFFCFu || !sink.makeArray(type, value, static_cast<int>(size))) {
            return sink.fail(ASN1S_NO_MEMORY, {Expectation::Memory});
        }
        return decodePlaces(sink, type, value, length, static_cast<unsigned>(count));
    }

    template <Shape shape>
    [[gnu::always_inline]] static int decodeContents(Sink sink, const TypeDescription& type,
                                                     Value value, int length) {
        if constexpr (shape == Shape::Sequence) {
            return decodeSequence(sink, type, value, length);
        } else if constexpr (shape == Shape::Set) {
            return decodeSet(sink, type, value, length);
        } else if constexpr (shape == Shape::List) {
            return decodeList(sink, type, value, length);
        } else if constexpr (shape == Shape::Array) {
            return decodeArray(sink, type, value, length);
        } else if constexpr (shape == Shape::FixedArray) {
            return decodePlaces(sink, type, value, length, type.capacity);
        } else {
            static_assert(shape == Shape::Choice);
            return sink.fail(ASN1S_NOT_SUPPORTED, {Expectation::Contents, &type});
        }
    }

    [[gnu::always_inline]] static int readOwnTag(Sink sink, const TypeDescription& type,
                                                 unsigned char identifier, int& length) {
        sink.atHeader();
        if (rtMatchShort(sink.ctxt(), identifier, &length)) {
            return ASN1S_SUCCESS;
        }
        return readOwnLongTag(sink, type, identifier, length);
    }

    [[gnu::noinline]] static int readOwnLongTag(Sink sink, const TypeDescription& type,
                                                unsigned char identifier, int& length) {
        const int status = xd_match1(sink.ctxt(), identifier, &length);
        return status == ASN1S_SUCCESS
                   ? status
                   : sink.fail(status, {status == ASN1S_TAG_NOT_FOUND ? Expectation::Element
                                                                      : Expectation::Header,
                                        &type});
    }

    static int readTag(Sink sink, const TypeDescription& type, ASN1TAG tag, int& length) {
        const unsigned char identifier = rtIdentifierOctet(tag);
        if (!isLong(identifier)) {
            return readOwnTag(sink, type, identifier, length);
        }
        sink.atHeader();
        const int status = readLongTag(sink.ctxt(), tag, length);
        return status == ASN1S_SUCCESS
                   ? status
                   : sink.fail(status, {status == ASN1S_TAG_NOT_FOUND ? Expectation::Element
                                                                      : Expectation::Header,
                                        &type});
    }

    /// One tag, unless it has been read, and the contents behind it. Whoever reads the tag steps
    /// over its end-of-contents.
    ///
    /// Records and lists lie inside each other: this is the one frame that each takes on the stack.
    template <Shape shape>
    [[gnu::noinline]] static int decodeContainer(Sink sink, const TypeDescription& type,
                                                 Value value, ASN1TagType tagging, int length) {
        if (tagging == ASN1TagExplicit) {
            const int status = readOwnTag(sink, type, type.identifier, length);
            if (status != ASN1S_SUCCESS) {
                return status;
            }
        }
        typename Sink::Constructed constructed(sink, type, length);
        int status = constructed.isEntered() ? decodeContents<shape>(sink, type, value, length)
                                             : constructed.stepOver();
        if constexpr (Sink::canGoOn) {
            if (status != ASN1S_SUCCESS) {
                status = constructed.goOn(status);
            }
        }
        if (status == ASN1S_SUCCESS && type.stepsOverEndOfContents &&
            length == ASN1IndefiniteLength && tagging == ASN1TagExplicit) {
            status = stepOverEndOfContents(sink);
        }
        if constexpr (Sink::canGoOn) {
            if (status != ASN1S_SUCCESS) {
                constructed.abandon();
            }
        }
        return status == ASN1S_SUCCESS ? constructed.leave() : status;
    }

    [[gnu::noinline]] static int decodeConstructedValue(Sink sink, const TypeDescription& type,
                                                        Value value, ASN1TagType tagging,
                                                        int length) {
        return withShape(
            type.shape, [&](auto is) __attribute__((always_inline)) {
                constexpr Shape shape = decltype(is)::value;
                constexpr Shape road = isPrimitive(shape) ? Shape::Choice : shape; // refused alike
                return decodeContainer<road>(sink, type, value, tagging, length);
            });
    }

    /// A value with tags of its own around the one that its shape tells, or with a limit on
    /// nesting.
    [[gnu::noinline]] static int decodeTagsAndContents(Sink sink, const TypeDescription& type,
                                                       Value value, ASN1TagType tagging,
                                                       int length) {
        const Nesting nesting(sink.ctxt(), type.closesRecursion);
        if (nesting.tooDeep()) {
            return sink.fail(ASN1S_NO_MEMORY, {Expectation::LessNesting});
        }
        int outerLength = 0;
        int status = ASN1S_SUCCESS;
        if (type.outerTag != 0) {
            if (tagging == ASN1TagExplicit) {
                status = readTag(sink, type, type.outerTag, outerLength);
            }
            tagging = ASN1TagExplicit;
        }
        const bool constructed = (type.tag & ASN1TagConstructed) != 0;
        const bool ownTag = constructed ? isLong(type.identifier)
                                        : type.tag != 0 && !isTagOfCoder(type.shape, type.tag);
        if (status == ASN1S_SUCCESS && ownTag && tagging == ASN1TagExplicit) {
            status = readTag(sink, type, type.tag, length);
            tagging = ASN1TagImplicit;
        }
        if (status != ASN1S_SUCCESS) {
            return status;
        }
        if (type.shape == Shape::Choice) {
            status = decodeChoice(sink, type, value);
        } else if (constructed) {
            status = decodeConstructedValue(sink, type, value, tagging, length);
        } else {
            status = sink.primitive(type, value, tagging, length);
        }
        if (status == ASN1S_SUCCESS && outerLength == ASN1IndefiniteLength &&
            type.stepsOverEndOfContents) {
            status = stepOverEndOfContents(sink);
        }
        return status;
    }

    /// Everything of a value but its open value.
    [[gnu::always_inline]] static int decodeValue(Sink sink, const TypeDescription& type,
                                                  Value value, ASN1TagType tagging, int length) {
        int status = ASN1S_SUCCESS;
        switch (type.road) {
        case Road::Primitive:
            status = sink.primitive(type, value, tagging, length);
            break;
        case Road::Constructed:
            status = decodeConstructedValue(sink, type, value, tagging, length);
            break;
        case Road::Choice:
            status = decodeChoice(sink, type, value);
            break;
        case Road::Tagged:
            status = decodeTagsAndContents(sink, type, value, tagging, length);
            break;
        }
        if (status != ASN1S_SUCCESS) {
            return sink.fail(status, {});
        }
        return sink.withinConstraint(type, value, type.constraint, type.parameter);
    }

    /// A record with an open value, which is resolved when all else has been read.
    [[gnu::noinline]] static int decodeWithOpenValue(Sink sink, const TypeDescription& type,
                                                     Value value, ASN1TagType tagging, int length) {
        if constexpr (Sink::watchesOpenValues) {
            typename Sink::OpenValue openValue(sink, type);
            const int status = decodeValue(sink, type, value, tagging, length);
            return status == ASN1S_SUCCESS ? openValue.resolve() : status;
        } else {
            const int status = decodeValue(sink, type, value, tagging, length);
            return status == ASN1S_SUCCESS ? sink.resolve(type, value) : status;
        }
    }

    /// A value.
    [[gnu::always_inline]] static int decode(Sink sink, const TypeDescription& type, Value value,
                                             ASN1TagType tagging, int length) {
        return type.table == nullptr ? decodeValue(sink, type, value, tagging, length)
                                     : decodeWithOpenValue(sink, type, value, tagging, length);
    }
};

} // namespace asn1data::family

#endif
