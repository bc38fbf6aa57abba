#include "checker.h"

#include <algorithm>
#include <cstdint>

namespace notation {
namespace {

enum : long long { MaxCount = 0xFFFFFFFFll };
enum : std::size_t { DeepestRecord = 1000, MostElements = 256 };

unsigned tagValue(const TagNode& tag) {
    return (static_cast<unsigned>(tag.tagClass) << 30) | tag.number;
}

std::string spelledTag(unsigned tag) {
    static const char* const classes[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    return "[" + std::string(classes[tag >> 30]) + std::to_string(tag & 0x1FFFFFFFu) + "]";
}

Octets bothForms(unsigned tag) {
    Octets octets;
    octets.set(identifierOctet(tag & ~Constructed));
    octets.set(identifierOctet(tag | Constructed));
    return octets;
}

// Values that two constraints permit; no range at all permits every value.
std::vector<Range> commonTo(const std::vector<Range>& first, const std::vector<Range>& second) {
    if (first.empty() || second.empty()) {
        return first.empty() ? second : first;
    }
    std::vector<Range> result;
    for (const Range& a : first) {
        for (const Range& b : second) {
            const Range common{std::max(a.lower, b.lower), std::min(a.upper, b.upper)};
            if (common.lower <= common.upper) {
                result.push_back(common);
            }
        }
    }
    return result;
}

bool isByValue(const Type& type) {
    return type.shape == Shape::Sequence || type.shape == Shape::Set ||
           type.shape == Shape::FixedArray;
}

} // namespace

void Checker::run() {
    const std::size_t before = diagnostics_.entries().size();
    for (Type& type : model_.types) {
        checkByValueRecursion(type);
    }
    if (diagnostics_.entries().size() > before) {
        return; // what follows walks values downwards
    }
    for (Type& type : model_.types) {
        finish(type);
    }
    for (Type& type : model_.types) {
        finishElements(type);
    }
    for (Type& type : model_.types) {
        type.holdsMemory = computeHoldsMemory(type);
        type.identifiers = beginsWith(type, false);
    }
    for (const Type& type : model_.types) {
        checkAmbiguity(type);
    }
    markRecursion();
}

// A record cannot hold itself; the way round has to lead over a list, an array or a CHOICE.
// Returns how many records deep a value is.
std::size_t Checker::checkByValueRecursion(const Type& type) {
    const auto onPath = std::find(path_.begin(), path_.end(), &type);
    if (onPath != path_.end()) {
        std::string cycle;
        for (auto step = onPath; step != path_.end(); ++step) {
            cycle += (*step)->name + " -> ";
        }
        diagnostics_.error(type.at, "a value of '" + type.name + "' would hold itself: " + cycle +
                                        type.name);
        return 0;
    }
    if (const auto known = recordDepths_.find(&type); known != recordDepths_.end()) {
        return known->second;
    }
    std::size_t depth = 0;
    path_.push_back(&type);
    const auto goInto = [&](const Type& inner) {
        if (path_.size() <= DeepestRecord) {
            depth = std::max(depth, checkByValueRecursion(inner));
        } else {
            depth = DeepestRecord;
        }
    };
    if (type.aliasOf != nullptr) {
        goInto(*type.aliasOf);
    } else if (isByValue(type)) {
        for (const Element& element : type.elements) {
            goInto(*element.type);
        }
        if (type.element != nullptr) {
            goInto(*type.element);
        }
    }
    path_.pop_back();
    if (++depth > DeepestRecord) {
        if (!tooDeep_) {
            diagnostics_.error(type.at, "values hold each other more than " +
                                            std::to_string(DeepestRecord) + " deep");
        }
        tooDeep_ = true;
        depth = 0; // told once is enough
    }
    recordDepths_[&type] = depth;
    return depth;
}

void Checker::finish(Type& type) {
    if (type.finished) {
        return;
    }
    type.finished = true;
    if (type.aliasOf != nullptr) {
        finish(*type.aliasOf);
        const Type& target = *type.aliasOf;
        type.shape = target.shape;
        type.universalTag = target.universalTag;
        type.setOf = target.setOf;
        type.stepsOverEndOfContents = type.stepsOverEndOfContents || target.stepsOverEndOfContents;
        type.copyable = type.copyable && target.copyable;
        type.generalizedTime = target.generalizedTime;
        type.capacity = target.capacity;
        type.constraint = target.constraint;
    }
    finishTags(type);
    finishConstraint(type);
}

void Checker::finishElements(Type& type) {
    if (type.aliasOf != nullptr) {
        return;
    }
    unsigned presenceBit = 0;
    for (Element& element : type.elements) {
        finishElement(type, element);
        if (element.presence == Presence::Optional) {
            element.presenceBit = presenceBit++;
        }
    }
    if (type.elements.size() > MostElements) {
        diagnostics_.error(type.at, "more than " + std::to_string(MostElements) +
                                        " elements are not supported");
    }
}

// X.680, 31.2.7: a tag on a CHOICE or an open type is EXPLICIT whatever is written.
void Checker::finishTags(Type& type) {
    const bool alias = type.aliasOf != nullptr;
    type.tag = alias ? type.aliasOf->tag : type.universalTag;
    type.outerTag = alias ? type.aliasOf->outerTag : 0;
    if (!type.tagNode) {
        return;
    }
    const TagNode& node = *type.tagNode;
    const bool implicitMode = node.isImplicit();
    if (implicitMode && type.outerTag == 0 && type.tag != 0) {
        type.tag = tagValue(node) | (type.tag & Constructed);
    } else if (!implicitMode && type.outerTag != 0) {
        wrapInChoice(type, tagValue(node) | Constructed);
    } else {
        type.outerTag = tagValue(node) | Constructed;
    }
}

// A type has room for one EXPLICIT tag. A second one is that of a CHOICE with the other type as its
// only alternative, which is the same on the wire.
void Checker::wrapInChoice(Type& type, unsigned tag) {
    if (!type.node->sizes.empty() || !type.node->values.empty() || !type.node->further.empty()) {
        diagnostics_.error(type.tagNode->at,
                           "a second EXPLICIT tag on a type with a constraint is not supported");
    }
    Element inner;
    inner.name = "value";
    inner.member = "value";
    inner.line = "value " + type.aliasOf->name;
    inner.at = type.at;
    inner.type = type.aliasOf;
    type.elements.push_back(std::move(inner));
    type.aliasOf = nullptr;
    type.shape = Shape::Choice;
    type.universalTag = 0;
    type.capacity = 0;
    type.constraint.clear();
    type.tag = 0;
    type.outerTag = tag;
    type.node = nullptr;
}

void Checker::finishElement(const Type& type, Element& element) {
    if (element.tagNode) {
        const TagNode& node = *element.tagNode;
        const bool implicitMode = node.isImplicit();
        const unsigned outermost =
            element.type->outerTag != 0 ? element.type->outerTag : element.type->tag;
        if (implicitMode && outermost != 0) {
            element.tagging = Tagging::Implicit;
            element.tag = tagValue(node) | (outermost & Constructed);
        } else {
            element.tagging = Tagging::Explicit;
            element.tag = tagValue(node) | Constructed;
        }
    }
    if (element.constraintPending) {
        element.constraint = ranges(*element.node, *element.type);
    }
    const bool choice = type.shape == Shape::Choice;
    element.parameter = (choice ? "pvalue->u." : "pvalue->") + element.member;
    const char* const access = choice ? "->" : ".";
    if (isString(element.type->shape) && *traitsOf(element.type->shape).countName != '\0') {
        element.parameter += std::string(access) + traitsOf(element.type->shape).countName;
    }
    if (element.defaultValue) {
        finishDefault(type, element);
    }
}

void Checker::finishConstraint(Type& type) {
    if (type.builtin || type.node == nullptr) {
        return;
    }
    if (type.aliasOf != nullptr) {
        type.constraint = commonTo(type.constraint, ranges(*type.node, type));
        return;
    }
    if (type.node->kind == TypeNode::Enumerated) {
        Range range{0, 0};
        for (const NamedNumber& named : type.names) {
            range.lower =
                &named == &type.names.front() ? named.number : std::min(range.lower, named.number);
            range.upper = std::max(range.upper, named.number);
        }
        const ShapeTraits& traits = traitsOf(type.shape);
        if (range.lower < traits.lower || range.upper > traits.upper) {
            diagnostics_.error(type.at, "a value of ENUMERATED has 32 bits at most");
        }
        type.constraint = {range};
        return;
    }
    type.constraint = ranges(*type.node, type);
    for (const Range& range : type.constraint) {
        if (isFixed(type.shape) && range.upper > type.capacity) {
            diagnostics_.error(type.node->constraintAt, "the size does not fit the capacity of " +
                                                            std::to_string(type.capacity));
            break;
        }
    }
}

std::vector<Range> Checker::ranges(const TypeNode& node, const Type& base) {
    const ShapeTraits& traits = traitsOf(base.shape);
    const bool isNumber = traits.kind == ShapeKind::Number && base.shape != Shape::Enumerated;
    const bool isBigNumber = traits.kind == ShapeKind::BigNumber;
    const bool sized = isString(base.shape) || traits.kind == ShapeKind::Repeated;
    const bool isNumeric =
        std::any_of(node.values.begin(), node.values.end(), [](const RangeNode& range) {
            return range.lower.kind == BoundNode::Value &&
                   range.lower.value.kind == ValueNode::Number;
        });
    if ((!node.sizes.empty() && !sized) || (isNumeric && !isNumber && !isBigNumber)) {
        diagnostics_.error(node.constraintAt, "the constraint does not fit the type");
        return {};
    }
    const Range whole = sized ? Range{0, MaxCount} : Range{traits.lower, traits.upper};
    std::vector<Range> result;
    // An INTEGER held as text is not compared, nor are names of an ENUMERATED.
    const bool tested = !node.sizes.empty() || isNumber;
    for (const RangeNode& range : node.sizes.empty() ? node.values : node.sizes) {
        Range bounds = whole;
        for (const bool lower : {true, false}) {
            const BoundNode& node_ = lower ? range.lower : range.upper;
            const std::optional<long long> value =
                tested ? bound(node_, base, whole.lower, whole.upper) : std::nullopt;
            if (value && (*value < whole.lower || *value > whole.upper)) {
                diagnostics_.error(node_.value.at, "the bound is outside what the type can hold");
            }
            (lower ? bounds.lower : bounds.upper) =
                value.value_or(lower ? whole.lower : whole.upper);
        }
        if (bounds.lower > bounds.upper) {
            diagnostics_.error(node.constraintAt, "the bounds of the range are crossed");
        }
        result.push_back(bounds);
    }
    if (!tested) {
        result.clear();
    }
    for (const ConstraintNode& further : node.further) {
        if (const auto ranges = rangesOf(further, base, false)) {
            result = commonTo(result, *ranges);
        }
    }
    if (result.size() == 1 && result[0].lower == whole.lower && result[0].upper == whole.upper) {
        return {}; // says nothing
    }
    return result;
}

std::optional<long long> Checker::bound(const BoundNode& node, const Type& base, long long low,
                                        long long high) {
    if (node.kind != BoundNode::Value) {
        return node.kind == BoundNode::Min ? low : high;
    }
    for (const NamedNumber& named : base.target().names) {
        if (node.value.kind == ValueNode::Reference && named.name == node.value.reference) {
            return named.number;
        }
    }
    return number_(node.value);
}

// What a constraint permits, as far as numbers tell; nothing when they do not. Where a part of it
// is not tested, more is permitted than is written, never less.
std::optional<std::vector<Range>> Checker::rangesOf(const ConstraintNode& node, const Type& base,
                                                    bool size) {
    const ShapeTraits& traits = traitsOf(base.shape);
    const bool isNumber = traits.kind == ShapeKind::Number && base.shape != Shape::Enumerated;
    const bool sized = isString(base.shape) || traits.kind == ShapeKind::Repeated;
    const Range whole = size ? Range{0, MaxCount} : Range{traits.lower, traits.upper};
    switch (node.kind) {
    case ConstraintNode::Range: {
        if (!size && !isNumber) {
            return std::nullopt;
        }
        const auto lower = bound(node.range.lower, base, whole.lower, whole.upper);
        const auto upper = bound(node.range.upper, base, whole.lower, whole.upper);
        if (!lower || !upper || *lower > *upper || *lower > whole.upper || *upper < whole.lower) {
            return std::nullopt;
        }
        return std::vector<Range>{{std::max(*lower, whole.lower), std::min(*upper, whole.upper)}};
    }
    case ConstraintNode::Size:
        return sized && !size ? rangesOf(node.parts.front(), base, true) : std::nullopt;
    case ConstraintNode::Union: {
        std::vector<Range> all;
        for (const ConstraintNode& part : node.parts) {
            const auto ranges = rangesOf(part, base, size);
            if (!ranges) {
                return std::nullopt;
            }
            all.insert(all.end(), ranges->begin(), ranges->end());
        }
        return all;
    }
    case ConstraintNode::Intersection: {
        std::vector<Range> all;
        for (const ConstraintNode& part : node.parts) {
            if (const auto ranges = rangesOf(part, base, size)) {
                all = commonTo(all, *ranges);
            }
        }
        return all.empty() ? std::nullopt : std::optional<std::vector<Range>>(all);
    }
    case ConstraintNode::Except:
        return node.parts.size() > 1 ? rangesOf(node.parts.front(), base, size) : std::nullopt;
    case ConstraintNode::Other:
        break;
    }
    return std::nullopt;
}

void Checker::finishDefault(const Type& type, Element& element) {
    const ValueNode& value = *element.defaultValue;
    const Type& target = element.type->target();
    if (type.shape != Shape::Sequence && type.shape != Shape::Set) {
        return;
    }
    const ShapeTraits& traits = traitsOf(target.shape);
    const bool big = traits.kind == ShapeKind::BigNumber;
    const bool isValue = value.kind != ValueNode::Number && value.kind != ValueNode::Boolean &&
                         value.kind != ValueNode::Reference;
    const bool compared = big || traits.kind == ShapeKind::Number || target.shape == Shape::Boolean;
    const bool byName = target.shape == Shape::Boolean && value.kind == ValueNode::Reference;
    if (!compared || byName || value.kind == ValueNode::Other) {
        // What no machine word holds is not compared with its default.
        diagnostics_.warning(value.at, "the default of '" + element.name +
                                           "' is not compared: the element is OPTIONAL, and absent "
                                           "means the default");
        element.presence = Presence::Optional;
        element.defaultValue.reset();
        return;
    }
    if (target.shape == Shape::Boolean) {
        if (value.kind != ValueNode::Boolean) {
            diagnostics_.error(value.at, "the default of a BOOLEAN is TRUE or FALSE");
        }
        element.defaultNumber = value.boolean ? 1 : 0;
        return;
    }
    std::optional<long long> number;
    for (const NamedNumber& named : target.names) {
        if (value.kind == ValueNode::Reference && named.name == value.reference) {
            number = named.number;
        }
    }
    if (big && !value.digits.empty()) {
        element.defaultText = value.digits;
        return;
    }
    if (!number && value.kind != ValueNode::Boolean && !isValue &&
        target.shape != Shape::Enumerated) {
        number = number_(value);
        if (!number) {
            return;
        }
    }
    if (!number) {
        diagnostics_.error(value.at, target.shape == Shape::Enumerated
                                         ? "the default is not a name of the ENUMERATED"
                                     : value.kind == ValueNode::Text
                                         ? "the default of an INTEGER is a number, which stands in "
                                           "no quotation marks"
                                         : "the default of an INTEGER is a number");
        return;
    }
    bool fits = *number >= traits.lower && *number <= traits.upper;
    for (const std::vector<Range>* tested : {&element.constraint, &element.type->constraint}) {
        fits = fits && (tested->empty() ||
                        std::any_of(tested->begin(), tested->end(), [&number](const Range& range) {
                            return *number >= range.lower && *number <= range.upper;
                        }));
    }
    if (!fits) {
        diagnostics_.error(value.at, "the default is outside what the element can hold");
    }
    element.defaultNumber = *number;
    if (big) {
        element.defaultText = std::to_string(*number);
        element.defaultNumber = 0;
    }
}

bool Checker::computeHoldsMemory(const Type& type) {
    const Type& target = type.target();
    const auto known = memory_.find(&target);
    if (known != memory_.end()) {
        return known->second;
    }
    const bool result = valuesHoldMemory(target);
    memory_[&target] = result;
    return result;
}

bool Checker::valuesHoldMemory(const Type& target) {
    switch (target.shape) {
    case Shape::FixedArray:
        return computeHoldsMemory(*target.element);
    case Shape::Choice:
        return std::any_of(target.elements.begin(), target.elements.end(),
                           [](const Element& element) {
                               const ShapeTraits& traits = traitsOf(element.type->shape);
                               return !traits.scalar || traits.holdsMemory;
                           });
    case Shape::Sequence:
    case Shape::Set:
        return !target.extensionMember.empty() ||
               std::any_of(target.elements.begin(), target.elements.end(),
                           [this](const Element& element) {
                               return element.hasSlot || computeHoldsMemory(*element.type);
                           });
    default:
        return traitsOf(target.shape).holdsMemory;
    }
}

// Depth first; where an edge leads back to a type that is still being walked, that type closes the
// cycle. So every cycle has one. The path is kept on the heap: it can be as long as the module.
void Checker::markRecursion() {
    enum State { Unseen, Open, Done };
    std::map<const Type*, State> states;
    struct Step {
        Type* type;
        Type* target;
        std::size_t next;
    };
    std::vector<Step> path;
    const auto enter = [&](Type& type) {
        State& state = states[&type];
        if (state != Unseen) {
            type.closesRecursion = type.closesRecursion || state == Open;
            return;
        }
        state = Open;
        Type* target = &type;
        while (target->aliasOf != nullptr) {
            target = target->aliasOf;
        }
        path.push_back({&type, target, 0});
    };
    for (Type& type : model_.types) {
        enter(type);
        while (!path.empty()) {
            Step& step = path.back();
            const std::size_t next = step.next++;
            if (next < step.target->elements.size()) {
                enter(*step.target->elements[next].type);
            } else if (next == step.target->elements.size() && step.target->element != nullptr) {
                enter(*step.target->element);
            } else if (next >= step.target->elements.size()) {
                states[step.type] = Done;
                path.pop_back();
            }
        }
    }
}

// With wholeTag, as a CHOICE or SET compares its alternatives: the form bit counts.
Octets Checker::beginsWith(const Type& type, bool wholeTag) {
    Octets octets;
    if (type.outerTag != 0) {
        if (!wholeTag) {
            return bothForms(type.outerTag);
        }
        octets.set(identifierOctet(type.outerTag));
        return octets;
    }
    const Type& target = type.target();
    if (type.shape == Shape::OpenType) {
        return octets.set().reset(0);
    }
    if (type.shape == Shape::Choice) {
        return alternativesBeginWith(target).octets;
    }
    const bool universal = type.tag >> 30 == 0;
    const bool oneForm = isPrimitive(type.shape) && !isString(type.shape);
    if (wholeTag || (oneForm && universal)) {
        octets.set(identifierOctet(type.tag));
        return octets;
    }
    return bothForms(type.tag);
}

Octets Checker::beginsWith(const Element& element, bool wholeTag) {
    if (element.tagging == Tagging::Untagged) {
        return beginsWith(*element.type, wholeTag);
    }
    if (!wholeTag) {
        return bothForms(element.tag);
    }
    Octets octets;
    octets.set(identifierOctet(element.tag));
    return octets;
}

// A CHOICE begins as its alternatives do, whatever it stands in.
const Checker::Beginnings& Checker::alternativesBeginWith(const Type& choice) {
    const auto [found, isNew] = beginnings_.emplace(&choice, Beginnings());
    Beginnings& beginnings = found->second;
    if (!isNew) {
        if (beginnings.gathering) {
            diagnostics_.error(choice.at, "'" + choice.name +
                                              "' is an alternative of itself, with "
                                              "no tag to tell how often");
        }
        return beginnings;
    }
    beginnings.gathering = true;
    if (++choiceDepth_ > DeepestRecord) {
        diagnostics_.error(choice.at, "a CHOICE holds a CHOICE more than " +
                                          std::to_string(DeepestRecord) + " deep");
    } else {
        for (const Element& element : choice.elements) {
            const Beginnings each = tagsOf(element);
            beginnings.octets |= beginsWith(element, true);
            beginnings.tags.insert(each.tags.begin(), each.tags.end());
            beginnings.any = beginnings.any || each.any;
        }
    }
    beginnings.gathering = false;
    --choiceDepth_;
    return beginnings;
}

// The tags that a value of the element can begin with, without the form bit: X.690, 8.1.2.5.
Checker::Beginnings Checker::tagsOf(const Element& element) {
    Beginnings result;
    const Type& type = *element.type;
    if (element.tagging != Tagging::Untagged || type.outerTag != 0 || type.tag != 0) {
        const unsigned tag = element.tagging != Tagging::Untagged ? element.tag
                             : type.outerTag != 0                 ? type.outerTag
                                                                  : type.tag;
        result.tags.insert(tag & ~Constructed);
    } else if (type.shape == Shape::OpenType) {
        result.any = true;
    } else {
        result = alternativesBeginWith(type.target());
    }
    return result;
}

// Whether the decoder cannot tell one from the other.
bool Checker::isAmbiguous(const Beginnings& first, const Beginnings& second) {
    if (first.any || second.any) {
        return first.any ? second.any || !second.tags.empty() : !first.tags.empty();
    }
    return std::any_of(second.tags.begin(), second.tags.end(),
                       [&](unsigned tag) { return first.tags.count(tag) != 0; });
}

// X.680, 25.6 for a SEQUENCE, 27.3 for a SET, 29.3 for a CHOICE.
void Checker::checkAmbiguity(const Type& type) {
    if (type.builtin || type.aliasOf != nullptr || type.ambiguous ||
        type.elements.size() > MostElements) {
        return;
    }
    std::vector<Beginnings> tags;
    tags.reserve(type.elements.size());
    for (const Element& element : type.elements) {
        tags.push_back(tagsOf(element));
    }
    const bool sequence = type.shape == Shape::Sequence;
    for (std::size_t i = 0; i < type.elements.size(); ++i) {
        const Element& first = type.elements[i];
        if (sequence && first.presence == Presence::Mandatory) {
            continue;
        }
        for (std::size_t k = i + 1; k < type.elements.size(); ++k) {
            const Element& second = type.elements[k];
            if (isAmbiguous(tags[i], tags[k]) && !first.ambiguous && !second.ambiguous) {
                complainAmbiguity(type, first, second, tags[i], tags[k]);
            }
            if (sequence && second.presence == Presence::Mandatory) {
                break;
            }
        }
    }
}

void Checker::complainAmbiguity(const Type& type, const Element& first, const Element& second,
                                const Beginnings& ofFirst, const Beginnings& ofSecond) {
    const std::string what = type.shape == Shape::Choice ? "alternatives" : "elements";
    std::string sentence =
        what + " '" + first.name + "' and '" + second.name + "' begin with the same ";
    if (ofFirst.any || ofSecond.any) {
        sentence +=
            "identifier octet: '" + (ofFirst.any ? first.name : second.name) + "' can have any tag";
    } else {
        const auto common =
            std::find_if(ofSecond.tags.begin(), ofSecond.tags.end(),
                         [&](unsigned tag) { return ofFirst.tags.count(tag) != 0; });
        const Octets octets = beginsWith(first, true) & beginsWith(second, true);
        std::string octet;
        for (unsigned i = 0; i < octets.size() && octet.empty(); ++i) {
            if (octets.test(i)) {
                octet = {"0123456789ABCDEF"[i >> 4], "0123456789ABCDEF"[i & 15]};
            }
        }
        sentence += (octet.empty() ? "tag" : "identifier octet, " + octet + " of the tag") + " " +
                    spelledTag(*common);
    }
    diagnostics_.error(second.at, sentence + "; one of them needs a tag of its own");
}

} // namespace notation
