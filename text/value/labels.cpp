#include <brevantis/asn1/text/labels.h>

#include <algorithm>
#include <string_view>

namespace asn1text {

using asn1data::Shape;
using asn1data::StepKind;
using asn1data::TypeDescription;

Label Labels::labelOf(const asn1data::WalkElement& element) const {
    Label label;
    const bool encapsulated = !entered_.empty() && entered_.back().encapsulates;
    const asn1data::WalkStep* step = element.step;
    for (; step->kind == StepKind::Alternative || step->kind == StepKind::Object;
         step = step->outer) {
        // The step in front of this one is that of the OCTET STRING around.
        if (encapsulated && step->outer->kind != StepKind::Alternative &&
            step->kind == StepKind::Object) {
            label.name = step->name;
            break;
        }
        label.choices.emplace_back(step->name);
    }
    std::reverse(label.choices.begin(), label.choices.end());
    switch (step->kind) {
    case StepKind::Member:
        label.name = step->name;
        break;
    case StepKind::Index:
        label.name = "[" + std::to_string(step->index) + "]";
        break;
    case StepKind::Addition:
        label.name = "addition[" + std::to_string(step->index) + "]";
        break;
    default:
        break;
    }
    return label;
}

void Labels::enter(const asn1data::WalkElement& element) {
    entered_.push_back({element.type, element.encapsulates});
}

const TypeDescription* Labels::container() const {
    return entered_.empty() || entered_.back().encapsulates ? nullptr : entered_.back().type;
}

std::string typeText(const TypeDescription& type) {
    std::string name = type.name;
    if (type.notation == nullptr || name.find('_') == std::string::npos) {
        return name;
    }
    if (isList(type)) {
        const bool open = type.element->shape == Shape::OpenType;
        return (type.setOf ? "SET OF " : "SEQUENCE OF ") +
               (open ? std::string("any type") : typeText(*type.element));
    }
    const std::string_view notation = type.notation;
    return std::string(notation.substr(0, std::min(notation.find(" {"), notation.find('\n'))));
}

bool isList(const TypeDescription& type) {
    return type.shape == Shape::List || type.shape == Shape::Array ||
           type.shape == Shape::FixedArray;
}

} // namespace asn1text
