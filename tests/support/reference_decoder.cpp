#include "support/reference_decoder.h"

#include <algorithm>

#include <brevantis/asn1/runtime/status.h>

#include "support/reference_reader.h"
#include "support/value_text.h"

namespace tests {

using namespace asn1data;

namespace {

using Header = ReferenceHeader;

enum : unsigned { ConstructedBit = 0x20000000u, ClassBits = 0xC0000000u, DeepestNesting = 64 };
enum : unsigned { Utf8StringTag = 12 };

/// Where an element stands.
struct Place {
    std::string path;
    unsigned start; ///< its first octet, EXPLICIT tags included

    Place member(const std::string& name, unsigned at) const {
        return {path.empty() ? name : path + "." + name, at};
    }
    Place index(std::size_t i, unsigned at) const {
        return {path + "[" + std::to_string(i) + "]", at};
    }
};

/// A value that has been read.
struct Node {
    const char* name = ""; ///< as the element of a record
    std::string text;      ///< of a primitive, as valueText writes it
    std::string note;      ///< of the element, as elementNote writes it; none for no octets
    Shape shape = Shape::Null;
    bool there = false;
    std::string alternatives; ///< that were chosen on the way to the value
    std::vector<Node> members;
    std::vector<Node> typed;    ///< what an open value holds, if that is known
    long long number = 0;       ///< that constraints are about
    std::vector<unsigned> arcs; ///< of an identifier
    Octets octets;              ///< of an OCTET STRING or open type
    Place place{};
    unsigned valueStart = 0;
    unsigned contents = 0;
    bool segmented = false;
    bool reportedLast = false; ///< the open value of a record, behind its other members
};

std::string textOf(const Node& node) {
    std::string text = node.text;
    if (node.shape == Shape::Sequence || node.shape == Shape::Set) {
        text = "{";
        for (const Node& member : node.members) {
            const std::string name = member.name + std::string(*member.name != 0 ? " " : "");
            text += member.there || !member.text.empty() ? name + textOf(member) + ", " : "";
        }
        text += "}";
    } else if (node.shape == Shape::List) {
        std::vector<std::string> texts;
        std::transform(node.members.begin(), node.members.end(), std::back_inserter(texts), textOf);
        text = membersText(texts);
    }
    return node.alternatives + text + (node.typed.empty() ? "" : " typed " + textOf(node.typed[0]));
}

std::string notesOf(const Node& node) {
    std::vector<const Node*> inOrder;
    for (const Node& inner : node.typed.empty() ? node.members : node.typed) {
        inOrder.push_back(&inner);
    }
    std::stable_sort(inOrder.begin(), inOrder.end(), [&](const Node* a, const Node* b) {
        return node.shape == Shape::Set ? a->place.start < b->place.start
                                        : b->reportedLast && !a->reportedLast;
    });
    std::string notes;
    for (const Node* inner : inOrder) {
        notes += notesOf(*inner);
    }
    const bool entered =
        !isPrimitive(node.shape) || (!node.typed.empty() && node.shape == Shape::OctetString);
    return entered ? node.note + "{\n" + notes + "}\n" : node.typed.empty() ? node.note : notes;
}

bool isStringShape(Shape shape) {
    return shape == Shape::OctetString || shape == Shape::FixedOctetString ||
           shape == Shape::BitString || shape == Shape::FixedBitString || shape == Shape::Text ||
           shape == Shape::Text16 || shape == Shape::Text32;
}

/// The text form of an INTEGER: as many digits as its octets have, zero octets in front left out
/// but for one digit where the number would turn negative.
std::string integerText(const Octets& octets) {
    std::size_t zeros = 0;
    while (zeros < octets.size() && octets[zeros] == 0) {
        ++zeros;
    }
    std::string digits;
    for (std::size_t i = zeros; i < octets.size(); ++i) {
        digits += "0123456789abcdef"[octets[i] >> 4];
        digits += "0123456789abcdef"[octets[i] & 15];
    }
    if (digits.empty() || (zeros != 0 && octets[zeros] >= 0x80)) {
        digits.insert(0, "0");
    }
    return "'0x" + digits + "'";
}

/// Characters of UTF-8 by its lead octets; far beyond every bound where an octet cannot lead.
long long utf8Length(const std::string& text) {
    long long count = 0;
    for (std::size_t i = 0; i < text.size(); ++count) {
        const unsigned lead = static_cast<unsigned char>(text[i]);
        if ((lead >= 0x80 && lead < 0xC0) || lead >= 0xFE) {
            return 0xFFFFFFFFLL;
        }
        i += lead < 0x80   ? 1
             : lead < 0xE0 ? 2
             : lead < 0xF0 ? 3
             : lead < 0xF8 ? 4
             : lead < 0xFC ? 5
                           : 6;
    }
    return count;
}

std::string wideText(const Octets& octets, unsigned width) {
    std::vector<unsigned> characters(octets.size() / width);
    for (std::size_t i = 0; i < characters.size() * width; ++i) {
        characters[i / width] = characters[i / width] << 8 | octets[i];
    }
    return numbersText(characters.data(), characters.size());
}

std::string defaultText(const ElementDescription& element) {
    if (element.defaultText != nullptr) {
        return "'" + std::string(element.defaultText) + "'";
    }
    return element.type->shape != Shape::Boolean ? std::to_string(element.defaultNumber)
           : element.defaultNumber != 0          ? "TRUE"
                                                 : "FALSE";
}

/// Reads one run of octets: the message, or those of an open value.
class Decoder {
public:
    Decoder(Octets octets, unsigned base, bool assembled, unsigned depth)
        : in(std::move(octets)), base_(base), assembled_(assembled), depth_(depth) {}

    /// @param read the header, where the type's own tag was replaced by one that has been read
    Node decode(const TypeDescription& type, const Header* read, const Place& place);

    ReferenceReader in;

private:
    Node decodeTagged(const TypeDescription& container, const ElementDescription& element,
                      const Header& header, const Place& place);
    Node constructed(const TypeDescription& type, const Header& header, const Place& place);
    void sequence(const TypeDescription& type, int length, Node& record);
    void set(const TypeDescription& type, int length, Node& record);
    void elements(const TypeDescription& type, int length, Node& list);
    Node choice(const TypeDescription& type, const Place& place);
    Node primitive(const TypeDescription& type, const Header* read, const Place& place);
    void read(const TypeDescription& type, const Header* header, Node& node, std::string& shown);
    void checkBounds(const TypeDescription& type, const Constraint& constraint,
                     long long number) const;
    void resolve(const TypeDescription& type, Node& record);
    void resolve(const ObjectDescription& object, Node& raw);
    void describe(Node& node, const TypeDescription* type, int length, const std::string& shown) {
        node.note = elementNote(node.place.path, base_ + node.place.start, base_ + node.valueStart,
                                node.contents - node.place.start, length, assembled_, type, shown);
    }

    unsigned base_; ///< of the octets in the message
    bool assembled_;
    unsigned depth_;       ///< open and recursive types around
    unsigned failing_ = 0; ///< where an open value is missed that has no octets
};

Node Decoder::decode(const TypeDescription& type, const Header* read, const Place& place) {
    struct Depth {
        unsigned& depth;
        bool counts;
        ~Depth() { depth -= counts ? 1 : 0; }
    } const nesting{depth_, type.closesRecursion};
    depth_ += type.closesRecursion ? 1 : 0;
    if (depth_ > DeepestNesting) {
        in.refuse(ASN1S_NO_MEMORY);
    }
    Header outer;
    if (type.outerTag != 0) {
        outer = read == nullptr ? in.match(type.outerTag) : outer;
        read = nullptr;
    }
    const bool isConstructed = (type.tag & ConstructedBit) != 0;
    Header own;
    const bool ownTag = read == nullptr && (isConstructed || (type.tag & ClassBits) != 0);
    if (ownTag) {
        own = in.match(type.tag);
        read = &own;
    }
    Node node = type.shape == Shape::Choice ? choice(type, place)
                : isConstructed             ? constructed(type, *read, place)
                                            : primitive(type, read, place);
    if (type.stepsOverEndOfContents && isConstructed && ownTag && own.indefinite()) {
        in.endOfContents();
    }
    if (type.stepsOverEndOfContents && outer.indefinite()) {
        in.endOfContents();
    }
    checkBounds(type, type.constraint, node.number);
    if (type.table != nullptr) {
        resolve(type, node);
    }
    return node;
}

/// Whoever reads a tag without a length ends it, among the types that are streamed; strings end
/// themselves.
Node Decoder::decodeTagged(const TypeDescription& container, const ElementDescription& element,
                           const Header& header, const Place& place) {
    const bool isExplicit = element.tagging == Tagging::Explicit;
    Node node = decode(*element.type, isExplicit ? nullptr : &header, place);
    if (header.indefinite() &&
        (container.stepsOverEndOfContents || element.type->stepsOverEndOfContents) &&
        (isExplicit || !isStringShape(element.type->shape))) {
        in.endOfContents();
    }
    return node;
}

void Decoder::checkBounds(const TypeDescription& type, const Constraint& constraint,
                          long long number) const {
    bool within = constraint.count == 0;
    for (unsigned i = 0; i < constraint.count; ++i) {
        within = within ||
                 (number >= constraint.ranges[i].lower && number <= constraint.ranges[i].upper);
    }
    if (!within) {
        in.refuse(type.shape == Shape::Enumerated ? ASN1S_INVALID_ENUM
                                                  : ASN1S_CONSTRAINT_VIOLATION);
    }
}

void Decoder::sequence(const TypeDescription& type, int length, Node& record) {
    const unsigned start = in.at;
    for (unsigned i = 0; i < type.elementCount && !in.ended(start, length); ++i) {
        const ElementDescription& element = type.elements[i];
        const bool untagged = element.tagging == Tagging::Untagged;
        const unsigned wanted = element.tag >> 24 | (element.tag & 31u);
        const bool begins = untagged ? element.type->identifiers.contains(in.peek())
                                     : ((in.peek() ^ wanted) & 0xDFu) == 0;
        const bool mandatory = element.presence == Presence::Mandatory;
        if (!begins && mandatory && !untagged) {
            in.refuse(ASN1S_TAG_NOT_FOUND);
        }
        if (begins || mandatory) {
            const Place place = record.place.member(element.name, in.at);
            record.members[i] = untagged
                                    ? decode(*element.type, nullptr, place)
                                    : decodeTagged(type, element, in.headerOfOneOctet(), place);
            checkBounds(*element.type, element.constraint, record.members[i].number);
        }
    }
    for (std::size_t i = 0; !in.ended(start, length); ++i) {
        if (type.extensionOffset == NoOffset) {
            in.refuse(ASN1S_EXTRA_ELEMENT);
        }
        const Place addition = record.place.member("addition", in.at).index(i, in.at);
        record.members.push_back(primitive(builtin::openType, nullptr, addition));
    }
}

void Decoder::set(const TypeDescription& type, int length, Node& record) {
    const unsigned start = in.at;
    while (!in.ended(start, length)) {
        const Header header = in.header();
        const auto* const end = type.elements + type.elementCount;
        const auto* const element = std::find_if(type.elements, end, [&](const auto& member) {
            return header.tag ==
                   (member.tagging == Tagging::Untagged ? member.type->tag : member.tag);
        });
        if (element == end) {
            in.refuse(ASN1S_UNKNOWN_SET_MEMBER);
        }
        Node node =
            decodeTagged(type, *element, header, record.place.member(element->name, header.start));
        checkBounds(*element->type, element->constraint, node.number);
        Node& member = record.members[static_cast<std::size_t>(element - type.elements)];
        if (member.there) {
            in.refuse(ASN1S_DUPLICATE_SET_MEMBER);
        }
        member = std::move(node);
    }
}

void Decoder::elements(const TypeDescription& type, int length, Node& list) {
    const unsigned most = type.shape == Shape::Array        ? in.countElements(length)
                          : type.shape == Shape::FixedArray ? type.capacity
                                                            : 0x7FFFFFFEu;
    const unsigned start = in.at;
    while (!in.ended(start, length)) {
        if (list.members.size() >= most) {
            in.refuse(ASN1S_EXTRA_ELEMENT);
        }
        const Place place = list.place.index(list.members.size(), in.at);
        list.members.push_back(decode(*type.element, nullptr, place));
    }
    list.number = static_cast<long long>(list.members.size());
}

Node Decoder::constructed(const TypeDescription& type, const Header& header, const Place& place) {
    Node node;
    node.there = true;
    node.place = place;
    node.shape = type.element != nullptr ? Shape::List : type.shape;
    node.valueStart = header.start;
    node.contents = header.contents;
    describe(node, &type, header.length, "");
    if (type.element != nullptr) {
        elements(type, header.length, node);
        return node;
    }
    node.members.resize(type.elementCount);
    if (type.shape == Shape::Sequence) {
        sequence(type, header.length, node);
    } else {
        set(type, header.length, node);
    }
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& element = type.elements[i];
        Node& member = node.members[i];
        member.name = element.name;
        if (!member.there && element.presence == Presence::Mandatory) {
            in.refuse(ASN1S_MISSING_ELEMENT);
        }
        if (!member.there && element.presence == Presence::Default) {
            member.text = defaultText(element);
        }
    }
    return node;
}

/// What stands in the open value of a complete record is decoded by the type that goes with the
/// identifier in it.
void Decoder::resolve(const TypeDescription& type, Node& record) {
    const TableConstraint& table = *type.table;
    const Node* identifier = nullptr;
    Node* value = nullptr;
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const unsigned offset = type.elements[i].offset;
        identifier = offset == table.identifierOffset ? &record.members[i] : identifier;
        value = offset == table.valueOffset ? &record.members[i] : value;
    }
    if (identifier == nullptr || value == nullptr || !value->there) {
        return;
    }
    value->reportedLast = true;
    const auto& arcs = identifier->arcs;
    const auto* const end = table.objects->objects + table.objects->count;
    const auto* const object = std::find_if(table.objects->objects, end, [&](const auto& known) {
        return std::equal(arcs.begin(), arcs.end(), known.arcs, known.arcs + known.arcCount);
    });
    if (object == end || object->type == nullptr) {
        return;
    }
    failing_ = in.at;
    if (table.value != OpenValue::OpenTypes) {
        resolve(*object, *value);
        return;
    }
    for (Node& member : value->members) {
        resolve(*object, member);
    }
}

void Decoder::resolve(const ObjectDescription& object, Node& raw) {
    const bool contained = raw.shape == Shape::OctetString;
    if (raw.octets.empty()) {
        if (contained) {
            return;
        }
        throw Refused{ASN1S_END_OF_BUFFER, failing_, false};
    }
    const bool assembled = contained && raw.segmented;
    const unsigned inner = contained ? raw.contents : raw.valueStart;
    Decoder decoder(raw.octets, assembled ? 0 : base_ + inner, assembled || assembled_, depth_ + 1);
    decoder.in.bind();
    if (decoder.depth_ > DeepestNesting) {
        decoder.in.refuse(ASN1S_NO_MEMORY);
    }
    // Tags around an open type belong to what stands in it; octets in a string are a new beginning.
    const unsigned start = contained ? 0 : raw.place.start - inner;
    const Place place = raw.place.member(object.name, start);
    raw.typed.push_back(decoder.decode(*object.type, nullptr, place));
    failing_ = decoder.in.at;
}

Node Decoder::choice(const TypeDescription& type, const Place& place) {
    const Header header = in.header();
    const unsigned char octet = in.since(header.start)[0];
    for (unsigned i = 0; i < type.elementCount; ++i) {
        const ElementDescription& alternative = type.elements[i];
        const TypeDescription& inner = *alternative.type;
        const bool untagged = alternative.tagging == Tagging::Untagged;
        const bool readsItself = untagged && (inner.tag == 0 || inner.outerTag != 0);
        if (readsItself ? !inner.identifiers.contains(octet)
                        : header.tag != (untagged ? inner.tag : alternative.tag)) {
            continue;
        }
        Place there = place;
        there.path = place.member(alternative.name, 0).path;
        in.at = readsItself ? header.start : in.at;
        Node node = readsItself ? decode(inner, nullptr, there)
                                : decodeTagged(type, alternative, header, there);
        checkBounds(inner, alternative.constraint, node.number);
        node.alternatives.insert(0, alternative.name + std::string(" "));
        node.number = 0;
        return node;
    }
    in.refuse(ASN1S_INVALID_CHOICE);
}

/// @param shown what a walk reports of the value
void Decoder::read(const TypeDescription& type, const Header* header, Node& node,
                   std::string& shown) {
    Octets& octets = node.octets;
    switch (type.shape) {
    case Shape::Boolean:
        node.number = in.boolean(header);
        break;
    case Shape::Integer:
        node.number = in.signedNumber(2, header);
        break;
    case Shape::Enumerated:
        node.number = static_cast<unsigned>(in.signedNumber(10, header));
        break;
    case Shape::Unsigned:
        node.number = in.unsignedNumber(header);
        break;
    case Shape::Unsigned16:
        node.number = in.shortNumber(header);
        break;
    case Shape::Null:
        in.null(header);
        node.text = "NULL";
        return;
    case Shape::BigInteger:
    case Shape::BigUnsigned:
        octets = in.integer(header);
        node.text = integerText(octets);
        break;
    case Shape::ObjectIdentifier:
        node.arcs = in.identifier(header);
        node.text = shown = numbersText(node.arcs.data(), node.arcs.size());
        return;
    case Shape::OctetString:
    case Shape::FixedOctetString:
        octets = type.shape == Shape::OctetString ? in.octetString(header)
                                                  : in.fixedOctets(type.capacity, header);
        node.number = static_cast<long long>(octets.size());
        node.text = octetsText(octets.size(), octets.data(), octets.size());
        break;
    case Shape::BitString:
    case Shape::FixedBitString: {
        unsigned bits = 0;
        octets = type.shape == Shape::BitString ? in.bitString(header, bits)
                                                : in.fixedBits(type.capacity, header, bits);
        node.number = bits;
        node.text = octetsText(bits, octets.data(), octets.size());
        shown = "/" + std::to_string(bits);
        break;
    }
    case Shape::Text: {
        octets = in.text(type.tag, header);
        const std::string text(octets.begin(), std::find(octets.begin(), octets.end(), 0));
        node.number =
            type.tag == Utf8StringTag ? utf8Length(text) : static_cast<long long>(text.size());
        node.text = "'" + text + "'";
        break;
    }
    case Shape::Text16:
    case Shape::Text32: {
        const unsigned width = type.shape == Shape::Text16 ? 2 : 4;
        octets = in.wideText(type.tag, header);
        octets.resize(octets.size() / width * width);
        node.number = static_cast<long long>(octets.size() / width);
        node.text = wideText(octets, width);
        break;
    }
    case Shape::OpenType:
        octets = in.element();
        node.text = octetsText(octets.size(), octets.data(), octets.size());
        break;
    case Shape::Sequence:
    case Shape::Set:
    case Shape::Choice:
    case Shape::List:
    case Shape::Array:
    case Shape::FixedArray:
        break; // are read element by element
    }
    if (isNumeric(type.shape)) {
        shown = std::to_string(node.number);
        node.text = type.shape != Shape::Boolean ? shown : node.number != 0 ? "TRUE" : "FALSE";
        return;
    }
    shown = toHex(octets) + shown;
}

Node Decoder::primitive(const TypeDescription& type, const Header* read, const Place& place) {
    Node node;
    node.there = true;
    node.place = place;
    node.shape = type.shape;
    const unsigned start = in.at;
    std::string shown;
    try {
        this->read(type, read, node, shown);
    } catch (const Refused& refused) {
        throw Refused{refused.status, start,
                      refused.status != ASN1S_TAG_NOT_FOUND || refused.position != start};
    }
    if (type.shape == Shape::OpenType && node.octets.empty()) {
        return node;
    }
    // A length that a primitive form cannot have counts for nothing.
    Header header = read != nullptr ? *read : in.headerAt(start);
    header.length = header.constructed ? header.length : 0;
    node.valueStart = header.start;
    node.contents = header.contents;
    node.segmented = header.constructed && isStringShape(type.shape);
    if (node.segmented && (type.shape == Shape::BitString || type.shape == Shape::FixedBitString)) {
        shown.erase(0, shown.find('/')); // a walk does not put these together
    }
    describe(node, &type,
             header.indefinite() ? header.length : static_cast<int>(in.at - header.contents),
             shown);
    return node;
}

} // namespace

std::string elementNote(const std::string& path, unsigned offset, unsigned valueOffset,
                        unsigned headerLength, int contentLength, bool assembled,
                        const TypeDescription* type, const std::string& value) {
    return path + "@" + std::to_string(offset) + "/" + std::to_string(valueOffset) + ":" +
           std::to_string(headerLength) + "+" + std::to_string(contentLength) +
           (assembled ? "* " : " ") + (type != nullptr ? type->name : builtin::openType.name) +
           "=" + value + "\n";
}

ReferenceDecoding referenceDecoding(const TypeDescription& type, const Octets& message) {
    Decoder decoder(message, 0, false, 0);
    try {
        try {
            decoder.in.bind();
        } catch (const Refused&) {
            // What does not hold as a message is met again, with the status that fits.
        }
        const Node value = decoder.decode(type, nullptr, {"", decoder.in.at});
        return {ASN1S_SUCCESS, decoder.in.at, false, textOf(value), notesOf(value)};
    } catch (const Refused& refused) {
        return {refused.status, refused.position, refused.inside, "", ""};
    }
}

} // namespace tests
