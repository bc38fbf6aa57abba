#ifndef BREVANTIS_ASN1DATA_FAMILY_WALKER_H
#define BREVANTIS_ASN1DATA_FAMILY_WALKER_H

#include <algorithm>
#include <type_traits>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/object_identifier.h>

#include "decode_flow.h"

// The sink that reports what is read. A walk keeps what it knows of the element at hand, and of the
// records around it that wait for their open value, on the stack.

namespace asn1data::family {

/// Runs up through the flow like a failure when the visitor has stopped the walk.
enum : int { WalkStopped = 1 };

class OpenValueWalk;

/// A place on the path, and what is known of the element there. Places lie inside each other on the
/// stack, as their steps tell, so that each octet here counts.
struct WalkPlace {
    WalkStep step;
    WalkElement element; ///< what the visitor sees; first what the step tells, the rest when read
    /// Element of a SEQUENCE: the first one of the record that could have stood here; else
    /// NoElement.
    unsigned first;
    bool silent = false; ///< nothing is reported here

    enum : unsigned { NoElement = 0xFFFFFFFFu };

    WalkPlace(const WalkStep* outer, const char* name, unsigned index, StepKind kind,
              const TypeDescription* container, const ElementDescription* declaration,
              const ObjectDescription* object, const unsigned char* data,
              unsigned firstPossible = NoElement)
        : step{outer, name, index, kind}, first(firstPossible) {
        element.step = &step;
        element.element = declaration;
        element.container = container;
        element.object = object;
        element.data = data;
    }
    WalkPlace* outer() const {
        return const_cast<WalkPlace*>(reinterpret_cast<const WalkPlace*>(step.outer));
    }
    WalkPlace(const WalkPlace&) = delete;
    WalkPlace& operator=(const WalkPlace&) = delete;
};
static_assert(std::is_standard_layout_v<WalkPlace>, "a place begins with its step");

/// The octets of a string; `data` is null where they come in segments.
struct WalkOctets {
    const unsigned char* data;
    unsigned count;
};

/// Where a primitive began, to read it once more.
struct WalkHeader {
    unsigned position;
    unsigned short flags;
    ASN1TagType tagging;
    int length;
};

/// Where the contents of an element are.
struct WalkScope {
    const unsigned char* valueStart; ///< its innermost header
    const unsigned char* contents;
    int length; ///< octets of contents, or ASN1IndefiniteLength
};

/// Contents that stand in the message in one piece.
struct WholeContents {
    const unsigned char* octets;
    unsigned count;
    bool longForm = false; ///< the length has more than one octet

    /// Moves from a header at `octets` to its contents.
    /// @param left octets that are there
    /// @return false where the header has more than four octets, or no definite length, or not all
    ///         of its contents
    bool behindHeader(unsigned left) {
        if (left < 2) {
            return false;
        }
        unsigned header = 2;
        count = octets[1];
        if (count >= 0x80) {
            longForm = true;
            if (count == 0x81 && left >= 3) {
                header = 3;
                count = octets[2];
            } else if (count == 0x82 && left >= 4) {
                header = 4;
                count = static_cast<unsigned>(octets[2] << 8 | octets[3]);
            } else {
                return false;
            }
        }
        octets += header;
        return count <= left - header;
    }
};

/// State of one walk.
class Walker {
public:
    Walker(const unsigned char* message, unsigned size, WalkVisitor& visitor, WalkFailure& failure);
    ~Walker();
    Walker(const Walker&) = delete;
    Walker& operator=(const Walker&) = delete;

    /// To be called before `run`, if at all.
    void setPolicy(const ReadingPolicy& policy);

    /// @return 0, WalkStopped, or the decoder's status
    int run(const TypeDescription& type);
    unsigned position() const { return ctxt.buffer.byteIndex; }

    /// The first octet that has not been read.
    const unsigned char* octets() const { return ctxt.buffer.data + ctxt.buffer.byteIndex; }
    /// The octet at the position belongs to the header of the element at hand, or begins another.
    void atHeader() { valueStart = octets(); }
    void atElement() { elementStart = valueStart = octets(); }

    [[gnu::always_inline]] int fail(int status, const Expected& expected) {
        // Part by part: it is to take no room in frames that lie inside each other.
        return fail(status, expected.expectation, expected.type, expected.container, expected.first,
                    expected.count);
    }
    int readElement(const TypeDescription& container, const ElementDescription& element);
    int primitive(const TypeDescription& type, ASN1TagType tagging, int length);
    int openType(const TypeDescription& type);
    int addition();
    int checkConstraint(const TypeDescription& type, const Constraint& constraint,
                        const char* parameter);

    /// Whether the walk goes on behind faults.
    bool goesOn() const { return interest_.faults; }
    /// Goes on behind the element that begins at a place, if it ends in the one around it.
    /// @param status that it failed with
    /// @return 0, WalkStopped, or the status
    int goOnBehind(int status, const unsigned char* element);
    /// Goes on at the end of the contents at hand, if that is known.
    /// @param length of the contents; if it is definite, they end at `scopeEnd`
    int goOnAtEnd(int status, int length);
    /// Goes on where the walk stands: nothing is lost.
    int goOnHere(int status) { return goOn(status, octets()); }

    /// Counts an element, if there is a limit.
    /// @return whether it is beyond the limit
    bool isBeyondLimit() {
        // What is read again was counted when it was read in silence.
        return elementLimit && !rereads && elementsLeft-- == 0;
    }

    /// Whether somebody looks at what is read now.
    bool reports() const { return silence == 0; }
    /// Calls the visitor's `enter` for the element at hand. It may not be entered, or the walk be
    /// stopped.
    /// @param octets of an OCTET STRING that encapsulates, else null
    bool enter(const TypeDescription& type, const WalkScope& scope, const WalkOctets* octets);
    /// The same at its first octet of contents.
    bool enter(const TypeDescription& type, int length) {
        return interest_.containers ? enterHere(type, length) : (++depth, true);
    }
    int leave();
    /// Steps over the contents of an element that is not entered.
    int stepOver(const TypeDescription& type, int length);

    ASN1CTXT ctxt;
    WalkPlace* here = nullptr;                   ///< of the element at hand
    const unsigned char* scopeEnd = nullptr;     ///< where what is read now ends; if it goes on
    const unsigned char* elementStart = nullptr; ///< of the element that a step leads to next
    const unsigned char* valueStart = nullptr;   ///< of the innermost header
    const unsigned char* base;                   ///< offset 0
    OpenValueWalk* openValue = nullptr;          ///< of the innermost record that can have one
    const ObjectDescription* object = nullptr;   ///< what resolves the open value that is read next
    unsigned silence = 0;                        ///< above 0 nothing is reported
    unsigned depth = 0;                          ///< as in WalkElement
    bool assembled = false;                      ///< as in WalkElement
    bool stopped = false;
    bool stepped = false;      ///< the value read last was stepped over
    int bound = 0;             ///< what binding the message came to
    bool elementLimit = false; ///< then the order of reading counts, which is the decoder's
    bool rereads = false;      ///< what is read now has been read in silence
    unsigned elementsLeft = 0;
    long long number = 0; ///< that the constraint of the value read last is about

private:
    struct PrimitiveReader;
    struct WholeReader;

    int fail(int status, Expectation expectation, const TypeDescription* type,
             const TypeDescription* container, unsigned first, unsigned count);
    bool enterHere(const TypeDescription& type, int length);
    int readRaw();
    int readAny(const TypeDescription* type, const WalkHeader& header);
    int took(const TypeDescription* type, const WalkScope& scope, const WalkHeader& header);
    void describe(const TypeDescription* type, const WalkScope& scope);
    WalkScope scopeBehind() const;
    int resolve(const TypeDescription* type, const WalkScope& scope, WalkOctets value,
                const WalkHeader& header);
    int resolveOrKeep(const TypeDescription* type, const WalkScope& scope, WalkOctets value,
                      const WalkHeader& header);
    int reportPrimitive(const TypeDescription* type, const WalkScope& scope);
    int resolveOctets(const TypeDescription& type, const WalkScope& scope, WalkOctets value,
                      const WalkHeader& header);
    int resolved(WalkOctets value, const unsigned char* element);
    int readResolved(WalkOctets value, const ObjectDescription& selected);
    bool goesOnBehind(int status) const;
    int goOn(int status, const unsigned char* end);
    /// The octets up to a place have been reported.
    void reach(const unsigned char* end) {
        if (interest_.faults) {
            reached_ = std::max(reached_, end);
        }
    }
    void expectCandidates();
    void findFound(int status, Expectation expectation, const TypeDescription* type);

    WalkVisitor& visitor_;
    WalkInterest interest_;
    WalkFailure& failure_;
    ASN1TObjId identifier_;
    unsigned trials_ = 0; ///< open values, inside each other, that are read to see whether they can
    unsigned faults_ = 0; ///< open values that were found to stay raw
    bool trusts_ = false; ///< open values are known to decode
    const unsigned char* reached_ = nullptr; ///< behind what was reported last
    WalkFailure first_{};                    ///< fault that the walk has gone on behind

    friend class OpenValueWalk;
};

/// A step on the path, undone at its end.
class StepWalk {
public:
    /// To an element of a SEQUENCE.
    /// @param next index of the first element that could have been there in its place
    StepWalk(Walker& walker, const TypeDescription& container, const ElementDescription& element,
             unsigned next);
    /// To a member of a SET or an alternative of a CHOICE, whose header has been read.
    StepWalk(Walker& walker, const TypeDescription& container, const ElementDescription& element);
    /// To an element of a list, at the position.
    StepWalk(Walker& walker, const TypeDescription& container, unsigned index);
    /// To the typed form of an open value.
    /// @param data first octet of the element
    StepWalk(Walker& walker, const ObjectDescription& object, const unsigned char* data);
    /// To an addition, at the position.
    StepWalk(Walker& walker, const TypeDescription& container, unsigned place, StepKind kind);
    ~StepWalk();
    StepWalk(const StepWalk&) = delete;
    StepWalk& operator=(const StepWalk&) = delete;

private:
    void begin(const TypeDescription& container, const ElementDescription& element);
    void begin();

    Walker& walker_;
    WalkPlace place_;
};

/// A record with an open value, which is resolved when the record is complete: only then is it
/// known to be one. Where the identifier stands in front and the value ends the record, that is
/// settled by the value's header. Anywhere else the value is read in silence when its turn comes,
/// and again, now reported and resolved, at the end of the record.
class OpenValueWalk {
public:
    // What the flags do not tell of yet is not cleared: most records end up without it.
    OpenValueWalk(Walker& walker, const TypeDescription& type)
        : walker_(walker), type_(type), outer_(walker.openValue) {
        walker.openValue = this; // NOLINT(clang-analyzer-optin.cplusplus.UninitializedObject)
    }
    ~OpenValueWalk() { walker_.openValue = outer_; }
    OpenValueWalk(const OpenValueWalk&) = delete;
    OpenValueWalk& operator=(const OpenValueWalk&) = delete;

    /// An element of the record begins at Walker::elementStart.
    /// @return whether it holds the open value and is read for the first time
    bool begins(const ElementDescription& element) {
        return element.offset == type_.table->valueOffset && !begun_ && valueBegins(element);
    }
    /// An element of the record has been read.
    void took(const ElementDescription& element) {
        if (element.offset == type_.table->valueOffset) {
            complete_ = complete_ || &element == element_;
            walker_.object = nullptr; // it has been resolved
        } else if (element.offset == type_.table->identifierOffset &&
                   element.type->shape == Shape::ObjectIdentifier) {
            identify();
        }
    }
    /// The record begins.
    void enters(int length) {
        const ASN1Buffer& buffer = walker_.ctxt.buffer;
        const unsigned char* const contents = walker_.octets();
        end_ = length >= 0 && length <= buffer.data + buffer.size - contents ? contents + length
                                                                             : nullptr;
    }
    /// The record ends, and is left once the value has been reported.
    void leaves() { entered_ = true; }

    int resolve();
    /// Reports the raw value, as far as it is whole, when the record fails behind it; not when it
    /// fails in another element that has been entered, for the value does not belong in there.
    void reportRaw();

private:
    void identify();
    bool valueBegins(const ElementDescription& element);
    int readAgain(const ObjectDescription* object);
    bool endsRecord(const ElementDescription& element) const;

    Walker& walker_;
    const TypeDescription& type_;
    OpenValueWalk* outer_;
    const ElementDescription* element_ = nullptr; ///< begun and not yet reported
    bool begun_ = false;
    bool complete_ = false;
    bool entered_ = false;
    bool identified_ = false;
    const ObjectDescription* object_ = nullptr; ///< of the identifier, with `identified_`
    const unsigned char* end_ = nullptr;        ///< of the record; null for an indefinite length
    // How the walk stood when the value began.
    WalkPlace* here_;
    unsigned depth_;
    unsigned start_;
    unsigned short flags_;
    ASN1Buffer failing_; ///< where the decoder stands when a value turns out to have no octets

    friend class Walker;
};

/// The handle of a walker that the flow passes around.
class Walking {
public:
    struct Value {};
    static constexpr bool watchesOpenValues = true;
    static constexpr bool canGoOn = true;

    explicit Walking(Walker& walker) : walker_(&walker) {}

    ASN1CTXT* ctxt() const { return &walker_->ctxt; }
    [[gnu::always_inline]] int fail(int status, const Expected& expected) const {
        return walker_->fail(status, expected);
    }
    void atElement() const { walker_->atElement(); }
    void atHeader() const { walker_->atHeader(); }

    Value member(Value record, const ElementDescription& /*element*/) const { return record; }
    bool alternative(Value /*record*/, const ElementDescription& /*alternative*/,
                     Value& /*value*/) const {
        return true;
    }
    void prepare(const TypeDescription& /*type*/, Value /*record*/) const {}
    void took(const TypeDescription& type, const ElementDescription& element,
              Value /*record*/) const {
        if (type.table != nullptr) {
            walker_->openValue->took(element);
        }
    }
    void selects(const TypeDescription& /*type*/, Value /*record*/) const {}
    void selected(const TypeDescription& /*type*/, Value /*record*/, unsigned /*selector*/) const {}
    void clearArray(const TypeDescription& /*type*/, Value /*value*/) const {}
    bool makeArray(const TypeDescription& /*type*/, Value /*value*/, int /*size*/) const {
        return true;
    }
    int goOnBehind(int status) const {
        return walker_->goOnBehind(status, walker_->here->element.data);
    }
    int goOnBehindMember(int status) const {
        return walker_->goOnBehind(status, walker_->elementStart);
    }
    int goOnBehindUnread(int status) const {
        return walker_->goOnBehind(status, walker_->octets());
    }
    int goOnHere(int status) const { return walker_->goOnHere(status); }
    int primitive(const TypeDescription& type, Value /*value*/, ASN1TagType tagging,
                  int length) const {
        return type.shape == Shape::OpenType ? walker_->openType(type)
                                             : walker_->primitive(type, tagging, length);
    }
    int addition(const TypeDescription& type, Value /*record*/, unsigned place) const {
        const StepWalk step(*walker_, type, place, StepKind::Addition);
        return walker_->addition();
    }
    int withinConstraint(const TypeDescription& type, Value /*value*/, const Constraint& constraint,
                         const char* parameter) const {
        return constraint.count == 0 || walker_->stepped
                   ? int{ASN1S_SUCCESS}
                   : walker_->checkConstraint(type, constraint, parameter);
    }

    operator Walker&() const { return *walker_; }
    using Step = StepWalk;
    using OpenValue = OpenValueWalk;

    class Constructed {
    public:
        Constructed(Walker& walker, const TypeDescription& type, int length)
            : walker_(walker), type_(type), length_(length), reported_(walker.reports()),
              fits_(!walker.isBeyondLimit()) {
            if (type.table != nullptr) {
                walker.openValue->enters(length);
            }
            entered_ = fits_ && (!reported_ || walker.enter(type, length));
            if (walker.goesOn()) {
                bindScope();
            }
        }
        ~Constructed() {
            if (walker_.goesOn()) {
                walker_.scopeEnd = outerEnd_;
            }
        }
        Constructed(const Constructed&) = delete;
        Constructed& operator=(const Constructed&) = delete;

        bool isEntered() const { return entered_; }
        int stepOver() {
            return fits_ ? walker_.stepOver(type_, length_)
                         : walker_.fail(ASN1S_NO_MEMORY, {Expectation::FewerElements, &type_});
        }
        int leave() {
            if (!entered_) {
                return ASN1S_SUCCESS;
            }
            walker_.stepped = walker_.goesOn() && isCut_;
            if (!reported_) {
                return ASN1S_SUCCESS;
            }
            if (type_.table != nullptr) {
                walker_.openValue->leaves();
                return ASN1S_SUCCESS;
            }
            return walker_.leave();
        }
        /// After a failure inside: goes on at the end, if that is known.
        int goOn(int status) {
            if (walker_.goesOn() && entered_ && ends_) {
                status = walker_.goOnAtEnd(status, length_);
                isCut_ = status == ASN1S_SUCCESS;
            }
            return status;
        }
        /// After a failure that ends the element: it is left all the same.
        void abandon() {
            if (entered_ && reported_ && walker_.goesOn() && !walker_.stopped) {
                if (type_.table != nullptr) {
                    walker_.openValue->reportRaw();
                }
                walker_.leave();
            }
        }

    private:
        void bindScope() {
            outerEnd_ = walker_.scopeEnd;
            isCut_ = false;
            const bool definite = length_ != ASN1IndefiniteLength;
            ends_ = !definite || (length_ >= 0 && length_ <= outerEnd_ - walker_.octets());
            if (definite && ends_) {
                walker_.scopeEnd = walker_.octets() + length_;
            }
        }

        Walker& walker_;
        const TypeDescription& type_;
        // Told where the walk goes on behind faults only.
        const unsigned char* outerEnd_ = nullptr; ///< of what is around
        int length_;
        bool ends_ = false;  ///< in what is around, as far as the length tells
        bool isCut_ = false; ///< not all of it was read
        bool reported_;
        bool fits_;
        bool entered_;
    };

    /// Counts what a list or an array would hold.
    class List {
    public:
        List(Walker& walker, const TypeDescription& /*type*/, Value /*value*/) : walker_(walker) {}
        ~List() { walker_.number = count_; }
        List(const List&) = delete;
        List& operator=(const List&) = delete;
        unsigned count() const { return count_; }
        static bool place(Value& /*element*/) { return true; }
        void append(Value /*element*/) { ++count_; }

    private:
        Walker& walker_;
        unsigned count_ = 0;
    };
    using Places = List;

private:
    Walker* walker_;
};

inline StepWalk::StepWalk(Walker& walker, const TypeDescription& container,
                          const ElementDescription& element, unsigned next)
    : walker_(walker), place_(&walker.here->step, element.name, 0, StepKind::Member, &container,
                              &element, nullptr, walker.elementStart, next) {
    begin(container, element);
}

inline StepWalk::StepWalk(Walker& walker, const TypeDescription& container,
                          const ElementDescription& element)
    : walker_(walker), place_(&walker.here->step, element.name, 0, StepKind::Member, &container,
                              &element, nullptr, walker.elementStart) {
    if (container.shape == Shape::Choice) { // it stands where the CHOICE stands
        place_.step.kind = StepKind::Alternative;
        place_.element.data = walker.here->element.data;
    }
    begin(container, element);
}

inline StepWalk::StepWalk(Walker& walker, const TypeDescription& container, unsigned index)
    : StepWalk(walker, container, index, StepKind::Index) {}

inline StepWalk::StepWalk(Walker& walker, const TypeDescription& container, unsigned place,
                          StepKind kind)
    : walker_(walker), place_(&walker.here->step, nullptr, place, kind, &container, nullptr,
                              nullptr, walker.octets()) {
    walker.atElement();
    begin();
}

inline StepWalk::StepWalk(Walker& walker, const ObjectDescription& object,
                          const unsigned char* data)
    : walker_(walker), place_(&walker.here->step, object.name, 0, StepKind::Object, nullptr,
                              nullptr, &object, data) {
    begin();
}

inline void StepWalk::begin(const TypeDescription& container, const ElementDescription& element) {
    if (container.table != nullptr && walker_.openValue->begins(element)) {
        ++walker_.silence;
        place_.silent = true;
    }
    begin();
}

inline void StepWalk::begin() {
    walker_.here = &place_;
    walker_.stepped = false;
}

inline StepWalk::~StepWalk() {
    walker_.here = place_.outer();
    walker_.silence -= place_.silent ? 1 : 0;
}

} // namespace asn1data::family

#endif
