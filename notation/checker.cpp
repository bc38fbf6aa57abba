#include "checker.h"

#include <algorithm>
#include <cstdint>

namespace notation {
namespace {

enum : long long { MaxCount = 0xFFFFFFFFll };

unsigned tagValue(const TagNode& tag) {
    return (static_cast<unsigned>(tag.tagClass) << 30) | tag.number;
}

Octets bothForms(unsigned tag) {
    Octets octets;
    octets.set(identifierOctet(tag & ~Constructed));
    octets.set(identifierOctet(tag | Constructed));
    return octets;
}

// Two values that differ in the form bit alone are not told apart: X.690, 8.1.2.5.
Octets withoutForm(const Octets& octets) {
    Octets result;
    for (unsigned octet = 0; octet < 256; ++octet) {
        if (octets.test(octet)) {
            result.set(octet & 0xDFu);
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
        type.holdsMemory = computeHoldsMemory(type);
        type.identifiers = beginsWith(type, false);
    }
    for (const Type& type : model_.types) {
        checkAmbiguity(type);
    }
    markRecursion();
}

// A record cannot hold itself; the way round has to lead over a list, an array or a CHOICE.
void Checker::checkByValueRecursion(const Type& type) {
    const auto onPath = std::find(path_.begin(), path_.end(), &type);
    if (onPath != path_.end()) {
        std::string cycle;
        for (auto step = onPath; step != path_.end(); ++step) {
            cycle += (*step)->name + " -> ";
        }
        diagnostics_.error(type.at, "a value of '" + type.name + "' would hold itself: " + cycle +
                                        type.name);
        return;
    }
    if (visited_[&type]++ > 0) {
        return;
    }
    path_.push_back(&type);
    if (type.aliasOf != nullptr) {
        checkByValueRecursion(*type.aliasOf);
    } else if (isByValue(type)) {
        for (const Element& element : type.elements) {
            checkByValueRecursion(*element.type);
        }
        if (type.element != nullptr) {
            checkByValueRecursion(*type.element);
        }
    }
    path_.pop_back();
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
    if (type.aliasOf != nullptr) {
        return;
    }
    for (Element& element : type.elements) {
        finish(*element.type);
        finishElement(type, element);
    }
    if (type.element != nullptr) {
        finish(*type.element);
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
    const bool implicitMode =
        node.mode == TagNode::Implicit ||
        (node.mode == TagNode::ModuleDefault && type.module->node.implicitTags);
    if (implicitMode && type.outerTag == 0 && type.tag != 0) {
        type.tag = tagValue(node) | (type.tag & Constructed);
    } else if (!implicitMode && type.outerTag != 0) {
        diagnostics_.error(node.at, "a second EXPLICIT tag on one type is not supported");
    } else {
        type.outerTag = tagValue(node) | Constructed;
    }
}

void Checker::finishElement(const Type& type, Element& element) {
    if (element.tagNode) {
        const TagNode& node = *element.tagNode;
        const bool implicitMode =
            node.mode == TagNode::Implicit ||
            (node.mode == TagNode::ModuleDefault && type.module->node.implicitTags);
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
        element.constraint = ranges(*type.module, *element.node, *element.type);
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
    if (type.builtin || type.aliasOf != nullptr || type.node == nullptr) {
        return;
    }
    if (type.shape == Shape::Enumerated) {
        Range range{0, 0};
        for (const NamedNumber& named : type.names) {
            range.lower =
                &named == &type.names.front() ? named.number : std::min(range.lower, named.number);
            range.upper = std::max(range.upper, named.number);
        }
        if (range.lower < 0) {
            diagnostics_.error(type.at, "a negative value of ENUMERATED is not supported");
        }
        type.constraint = {range};
        return;
    }
    type.constraint = ranges(*type.module, *type.node, type);
    for (const Range& range : type.constraint) {
        if (isFixed(type.shape) && range.upper > type.capacity) {
            diagnostics_.error(type.node->constraintAt, "the size does not fit the capacity of " +
                                                            std::to_string(type.capacity));
            break;
        }
    }
}

std::vector<Range> Checker::ranges(const Module& module, const TypeNode& node, const Type& base) {
    const ShapeTraits& traits = traitsOf(base.shape);
    const bool isNumber = traits.kind == ShapeKind::Number && base.shape != Shape::Enumerated;
    const bool isBigNumber = traits.kind == ShapeKind::BigNumber;
    const bool sized = isString(base.shape) || traits.kind == ShapeKind::Repeated;
    if ((!node.sizes.empty() && !sized) || (!node.values.empty() && !isNumber && !isBigNumber)) {
        diagnostics_.error(node.constraintAt, "the constraint does not fit the type");
        return {};
    }
    const Range whole = sized ? Range{0, MaxCount} : Range{traits.lower, traits.upper};
    std::vector<Range> result;
    for (const RangeNode& range : node.sizes.empty() ? node.values : node.sizes) {
        Range bounds = whole;
        for (const bool lower : {true, false}) {
            const BoundNode& bound = lower ? range.lower : range.upper;
            if (bound.kind == BoundNode::Value) {
                const std::optional<long long> value = number_(module, bound.value);
                if (value && (*value < whole.lower || *value > whole.upper)) {
                    diagnostics_.error(bound.value.at,
                                       "the bound is outside what the type can hold");
                }
                (lower ? bounds.lower : bounds.upper) =
                    value.value_or(lower ? whole.lower : whole.upper);
            } else if ((bound.kind == BoundNode::Max) == lower) {
                (lower ? bounds.lower : bounds.upper) = lower ? whole.upper : whole.lower;
            }
        }
        if (bounds.lower > bounds.upper) {
            diagnostics_.error(node.constraintAt, "the bounds of the range are crossed");
        }
        result.push_back(bounds);
    }
    if (result.size() == 1 && result[0].lower == whole.lower && result[0].upper == whole.upper) {
        return {}; // says nothing
    }
    if (!result.empty() && isBigNumber) {
        diagnostics_.error(node.constraintAt,
                           "an INTEGER held as text has no tested range; give it "
                           "the remark 'value' or leave the range out");
    }
    return result;
}

void Checker::finishDefault(const Type& type, Element& element) {
    const ValueNode& value = *element.defaultValue;
    const Type& target = element.type->target();
    if (type.shape != Shape::Sequence && type.shape != Shape::Set) {
        return;
    }
    if (target.shape == Shape::Boolean) {
        if (value.kind != ValueNode::Boolean) {
            diagnostics_.error(value.at, "the default of a BOOLEAN is TRUE or FALSE");
        }
        element.defaultNumber = value.boolean ? 1 : 0;
        return;
    }
    const ShapeTraits& traits = traitsOf(target.shape);
    const bool big = traits.kind == ShapeKind::BigNumber;
    if (!big && traits.kind != ShapeKind::Number) {
        diagnostics_.error(value.at, "a default is supported on BOOLEAN, INTEGER and ENUMERATED");
        return;
    }
    std::optional<long long> number;
    for (const NamedNumber& named : target.names) {
        if (value.kind == ValueNode::Reference && named.name == value.reference) {
            number = named.number;
        }
    }
    if (!number && value.kind != ValueNode::Boolean && value.kind != ValueNode::Braces &&
        target.shape != Shape::Enumerated) {
        number = number_(*type.module, value);
        if (!number) {
            return;
        }
    }
    if (!number) {
        diagnostics_.error(value.at, target.shape == Shape::Enumerated
                                         ? "the default is not a name of the ENUMERATED"
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

bool Checker::computeHoldsMemory(const Type& type) const {
    const Type& target = type.target();
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
// cycle. So every cycle has one.
void Checker::markRecursion() {
    visited_.clear();
    for (Type& type : model_.types) {
        walkRecursion(type);
    }
}

void Checker::walkRecursion(Type& type) {
    int& state = visited_[&type];
    if (state != 0) {
        type.closesRecursion = type.closesRecursion || state == 1;
        return;
    }
    state = 1;
    Type* target = &type;
    while (target->aliasOf != nullptr) {
        target = target->aliasOf;
    }
    for (Element& element : target->elements) {
        walkRecursion(*element.type);
    }
    if (target->element != nullptr) {
        walkRecursion(*target->element);
    }
    visited_[&type] = 2;
}

// With wholeTag, as a CHOICE or SET compares its alternatives: the form bit counts.
Octets Checker::beginsWith(const Type& type, bool wholeTag) const {
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
        for (const Element& element : target.elements) {
            octets |= beginsWith(element, true);
        }
        return octets;
    }
    const bool universal = type.tag >> 30 == 0;
    const bool oneForm = isPrimitive(type.shape) && !isString(type.shape);
    if (wholeTag || (oneForm && universal)) {
        octets.set(identifierOctet(type.tag));
        return octets;
    }
    return bothForms(type.tag);
}

Octets Checker::beginsWith(const Element& element, bool wholeTag) const {
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

// X.680, 25.6 for a SEQUENCE, 27.3 for a SET, 29.3 for a CHOICE.
void Checker::checkAmbiguity(const Type& type) {
    if (type.builtin || type.aliasOf != nullptr || type.ambiguous) {
        return;
    }
    const bool sequence = type.shape == Shape::Sequence;
    for (std::size_t i = 0; i < type.elements.size(); ++i) {
        const Element& first = type.elements[i];
        if (sequence && first.presence == Presence::Mandatory) {
            continue;
        }
        const Octets octets = withoutForm(beginsWith(first, !sequence));
        for (std::size_t k = i + 1; k < type.elements.size(); ++k) {
            const Element& second = type.elements[k];
            if ((octets & withoutForm(beginsWith(second, !sequence))).any() && !first.ambiguous &&
                !second.ambiguous) {
                complainAmbiguity(type, first, second);
            }
            if (sequence && second.presence == Presence::Mandatory) {
                break;
            }
        }
    }
}

void Checker::complainAmbiguity(const Type& type, const Element& first, const Element& second) {
    const char* const what = type.shape == Shape::Choice ? "alternatives" : "elements";
    diagnostics_.error(second.at, std::string(what) + " '" + first.name + "' and '" + second.name +
                                      "' begin with the same identifier octet");
}

} // namespace notation
