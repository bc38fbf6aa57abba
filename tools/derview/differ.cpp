#include "differ.h"

#include <algorithm>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>

#include "failure_text.h"
#include "node_texts.h"
#include "path_filter.h"
#include "tree_comparison.h"

namespace derview {

namespace {

/// Whether a message can be compared to its end.
bool isWhole(const DiffSide& side) {
    return side.decoded.status == 0 && side.message.missing() == 0;
}

asn1data::WalkResult walkPresent(const DiffSide& side, asn1data::WalkVisitor& visitor) {
    const Message& message = side.message;
    EndFilter present(message.octets.size(), visitor);
    return asn1data::walk(side.type, message.shown.data(), message.shown.size(), present,
                          message.policy);
}

/// Goes through a message as far as it goes, and writes what it breaks off at.
ValueTree treeOf(Output& output, const DiffSide& side) {
    const Message& message = side.message;
    TreeBuilder builder;
    const asn1data::WalkResult result = walkPresent(side, builder);
    std::string problem;
    if (message.missing() != 0 &&
        (result.status == 0 || result.failure.offset >= message.octets.size())) {
        problem = "its end, " + missingText(message);
    } else if (result.status != 0) {
        problem = "an error at " + placeText(result.failure) + ": " + reasonText(result.failure);
    }
    if (!problem.empty()) {
        output.write(Style::Bad, message.place + ": compared up to " + problem);
        output.write("\n");
    }
    return builder.take();
}

using Nodes = std::vector<ValueTree::Index>;

/// What nodes are, in their order.
NodeTexts textsOf(const DiffSide& side, const ValueTree& tree, Nodes nodes, std::size_t room,
                  const IdentifierNames& names) {
    std::sort(nodes.begin(), nodes.end());
    NodeTexts texts(tree, std::move(nodes), room, names);
    walkPresent(side, texts);
    return texts;
}

class DiffWriter {
public:
    DiffWriter(Output& output, const NodeTexts& one, const NodeTexts& other)
        : output_(output), one_(one), other_(other) {}

    void write(const Difference& difference) {
        const bool added = difference.kind == Difference::Added;
        const NodeText& told = added ? other_.of(difference.other) : one_.of(difference.one);
        output_.write(Style::Name, told.path);
        output_.write("\n");
        if (difference.kind == Difference::Moved) {
            output_.write("  moved to " + other_.of(difference.other).path + "\n");
            return;
        }
        if (!added) {
            output_.write(Style::Bad, "  - " + told.text + "\n");
        }
        if (difference.kind != Difference::Removed) {
            output_.write(Style::Good, "  + " + other_.of(difference.other).text + "\n");
        }
    }

private:
    Output& output_;
    const NodeTexts& one_;
    const NodeTexts& other_;
};

} // namespace

bool diffMessages(Output& output, const DiffSide& one, const DiffSide& other, std::size_t width,
                  const IdentifierNames& names) {
    const std::string title = one.message.place + " and " + other.message.place;
    if (&one.type != &other.type) {
        output.write(Style::Bad, title + ": " + one.type.name + " and " + other.type.name);
        output.write("\n");
        return false;
    }
    const bool whole = isWhole(one) && isWhole(other);
    const Octets octets = one.message.octets;
    const bool same = std::equal(octets.begin(), octets.end(), other.message.octets.begin(),
                                 other.message.octets.end());
    if (same && whole) {
        output.write(title + ": " + one.type.name + " identical\n");
        return true;
    }
    output.write(Style::Heading, title + ": " + one.type.name);
    output.write("\n");
    constexpr std::size_t marks = 4;
    const ValueTree left = treeOf(output, one);
    const ValueTree right = treeOf(output, other);
    if (same) {
        output.write("the same octets\n");
        return false;
    }
    TreeComparison comparison(left, right);
    comparison.run();
    Nodes ofOne;
    Nodes ofOther;
    for (const Difference& difference : comparison.differences()) {
        if (difference.kind != Difference::Added) {
            ofOne.push_back(difference.one);
        }
        if (difference.kind != Difference::Removed) {
            ofOther.push_back(difference.other);
        }
    }
    const NodeTexts leftTexts = textsOf(one, left, std::move(ofOne), width - marks, names);
    const NodeTexts rightTexts = textsOf(other, right, std::move(ofOther), width - marks, names);
    DiffWriter writer(output, leftTexts, rightTexts);
    for (const Difference& difference : comparison.differences()) {
        writer.write(difference);
    }
    const std::size_t count = comparison.differences().size();
    if (count == 0 && whole) {
        output.write("the same values in different encodings\n");
        return false;
    }
    output.write(std::to_string(count) + (count == 1 ? " difference" : " differences"));
    if (const std::size_t skipped = comparison.skipped(); skipped != 0) {
        output.write(", " + std::to_string(skipped) + (skipped == 1 ? " value" : " values") +
                     " not compared");
    }
    output.write("\n");
    return false;
}

} // namespace derview
