#ifndef BREVANTIS_NOTATION_CHECKER_H
#define BREVANTIS_NOTATION_CHECKER_H

#include <functional>
#include <set>
#include <vector>

#include "model.h"

namespace notation {

/// Settles what needs all names to be known (tags, bounds, defaults, what a value can begin with)
/// and refuses what could not be held in memory or told apart on the wire.
class Checker {
public:
    using Number = std::function<std::optional<long long>(const ValueNode&)>;

    /// @param number evaluates a bound or a default
    Checker(Model& model, Diagnostics& diagnostics, Number number)
        : model_(model), diagnostics_(diagnostics), number_(std::move(number)) {}

    void run();

private:
    void finish(Type& type);
    void finishTags(Type& type);
    void wrapInChoice(Type& type, unsigned tag);
    void finishElements(Type& type);
    void finishElement(const Type& type, Element& element);
    void finishConstraint(Type& type);
    std::vector<Range> ranges(const TypeNode& node, const Type& base);
    std::optional<std::vector<Range>> rangesOf(const ConstraintNode& node, const Type& base,
                                               bool size);
    std::optional<long long> bound(const BoundNode& node, const Type& base, long long low,
                                   long long high);
    void finishDefault(const Type& type, Element& element);

    std::size_t checkByValueRecursion(const Type& type);
    bool computeHoldsMemory(const Type& type);
    bool valuesHoldMemory(const Type& target);
    void markRecursion();

    /// What a value can begin with.
    struct Beginnings {
        Octets octets; ///< of an untagged CHOICE
        std::set<unsigned> tags;
        bool any = false;
        bool gathering = false;
    };
    Octets beginsWith(const Type& type, bool wholeTag);
    Octets beginsWith(const Element& element, bool wholeTag);
    const Beginnings& alternativesBeginWith(const Type& choice);
    Beginnings tagsOf(const Element& element);
    static bool isAmbiguous(const Beginnings& first, const Beginnings& second);
    void checkAmbiguity(const Type& type);
    void complainAmbiguity(const Type& type, const Element& first, const Element& second,
                           const Beginnings& ofFirst, const Beginnings& ofSecond);

    Model& model_;
    Diagnostics& diagnostics_;
    Number number_;
    std::vector<const Type*> path_;
    std::map<const Type*, std::size_t> recordDepths_;
    bool tooDeep_ = false;
    std::map<const Type*, bool> memory_;
    std::map<const Type*, Beginnings> beginnings_;
    std::size_t choiceDepth_ = 0;
};

} // namespace notation

#endif
