#include "node_texts.h"

#include <algorithm>

#include "value_text.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// A value as the tree shows it.
std::string wholeText(const ValueText& value) {
    return value.text + (value.rest != 0 ? " " + restText(value.rest) : "");
}

/// The last name on a path.
std::string nameOf(const asn1data::WalkStep& step) {
    return step.name != nullptr ? step.name : "[" + std::to_string(step.index) + "]";
}

} // namespace

/// @param behind the octets behind the value in an element, not the element
void NodeTexts::take(ValueTree::Index node, const WalkElement& element, bool behind) {
    if (inside_ != 0) {
        addValue(element, behind ? "behind the value" : nameOf(*element.step));
    } else if (isWanted(node)) {
        texts_[next_++] = {asn1data::pathText(*element.step) + (behind ? ", behind the value" : ""),
                           wholeText(valueText(element, room_, names_))};
    }
}

/// Adds a value to the text of the element that is told of.
void NodeTexts::addValue(const WalkElement& element, const std::string& name) {
    NodeText& told = texts_[next_];
    if (leftOut_ != 0) {
        ++leftOut_;
        return;
    }
    const std::size_t taken = told.text.size() + name.size() + 3;
    const std::size_t left = std::max<std::size_t>(room_ - std::min(room_, taken), SmallestRoom);
    const std::string value = name + ' ' + wholeText(valueText(element, left, names_));
    if (told.text.empty()) {
        told.text = value;
    } else if (told.text.size() + value.size() <= room_) {
        told.text += ", " + value;
    } else {
        ++leftOut_;
    }
}

void NodeTexts::finish() {
    NodeText& told = texts_[next_++];
    if (told.text.empty()) {
        told.text = "(empty)";
    } else if (leftOut_ != 0) {
        told.text +=
            ", and " + std::to_string(leftOut_) + " more" + (leftOut_ == 1 ? " value" : " values");
    }
    leftOut_ = 0;
}

WalkAction NodeTexts::enter(const WalkElement& element) {
    if (inside_ == 0 && next_ == wanted_.size()) {
        return WalkAction::Stop;
    }
    const ValueTree::Index node = index_++;
    const TreeNode& told = tree_[node];
    if (inside_ == 0 && isWanted(node)) {
        texts_[next_].path = asn1data::pathText(*element.step);
        const bool othersInside = next_ + 1 < wanted_.size() && wanted_[next_ + 1] < told.next;
        next_ += othersInside ? 1 : 0;
        inside_ = othersInside ? 0 : 1;
    } else if (inside_ != 0) {
        ++inside_;
    } else if (wanted_[next_] >= told.next && told.complete) {
        index_ = told.next;
        ends_.primitive(element); // it is one that nobody enters
        return WalkAction::Skip;
    }
    ends_.enter(element);
    return WalkAction::Continue;
}

WalkAction NodeTexts::leave(const WalkElement& element) {
    if (const std::size_t hidden = ends_.leave(element).hidden; hidden != 0) {
        OctetStore store;
        take(index_++, hiddenElement(element, hidden, store), true);
    }
    if (inside_ != 0 && --inside_ == 0) {
        finish();
    }
    return WalkAction::Continue;
}

WalkAction NodeTexts::primitive(const WalkElement& element) {
    ends_.primitive(element);
    take(index_++, element, false);
    return WalkAction::Continue;
}

const NodeText& NodeTexts::of(ValueTree::Index node) const {
    const auto found = std::lower_bound(wanted_.begin(), wanted_.end(), node);
    return texts_[static_cast<std::size_t>(found - wanted_.begin())];
}

} // namespace derview
