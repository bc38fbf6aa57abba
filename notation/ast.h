#ifndef BREVANTIS_NOTATION_AST_H
#define BREVANTIS_NOTATION_AST_H

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lexer.h"

/// @file
/// What the parser makes of a module: the notation as it stands, names not looked up yet.
///
/// A node that holds a name tells the module that the name belongs to, since a parameter brings
/// names of the module that hands it over. What has parameters is kept as its tokens: the resolver
/// puts the actual parameters in and has the result parsed.

namespace notation {

/// A piece of a module, in tokens.
using Tokens = std::vector<Token>;

/// A value in a DEFAULT, a bound or an assignment.
struct ValueNode {
    enum Kind {
        Number,
        Boolean,
        Reference,
        Braces, ///< `{ ... }` that reads as an object identifier
        Text,   ///< `"..."`
        Other   ///< anything else, as `text` alone
    };
    /// A component of an object identifier: a name, a number or both.
    struct Arc {
        std::string name;
        std::string number;
        std::string reference; ///< `name(reference)`: a value for the number
        Location at;
    };

    Kind kind = Number;
    Location at;
    const ModuleNode* scope = nullptr;
    long long number = 0;
    std::string digits; ///< of a number beyond 64 bits, which `number` is the nearest to
    bool boolean = false;
    std::string reference;
    std::string module; ///< `module.reference`
    std::vector<Arc> arcs;
    std::string text; ///< Text: its characters. Other, Braces: the notation
};

/// An end of a range.
struct BoundNode {
    enum Kind { Value, Min, Max };
    Kind kind = Value;
    ValueNode value;
};

struct RangeNode {
    BoundNode lower;
    BoundNode upper;
};

/// A constraint that is more than alternative ranges: X.680, clauses 50 and 51.
struct ConstraintNode {
    enum Kind {
        Range,
        Size, ///< of `parts.front()`
        Union,
        Intersection,
        Except, ///< the first part without the second; without any with one part
        Other   ///< what no number tells: kept as text
    };
    Kind kind = Other;
    RangeNode range;
    std::vector<ConstraintNode> parts;
};

/// A named number of INTEGER or ENUMERATED, a named bit of BIT STRING.
struct NamedNumber {
    std::string name;
    long long number = 0;
    Location at;
    std::optional<ValueNode> reference; ///< the number, where a name stands for it
};

struct TagNode {
    enum Class { Universal, Application, Context, Private };
    enum Mode { ModuleDefault, Implicit, Explicit };
    Class tagClass = Context;
    Mode mode = ModuleDefault;
    bool implicitDefault = false; ///< what ModuleDefault is
    unsigned number = 0;
    std::optional<ValueNode> reference; ///< the number, where a name stands for it
    Location at;

    bool isImplicit() const {
        return mode == Implicit || (mode == ModuleDefault && implicitDefault);
    }
};

/// Owns a node, or none; a copy has a copy of the node.
template <class Node>
class Owned : public std::unique_ptr<Node> {
public:
    using std::unique_ptr<Node>::unique_ptr;
    // NOLINTNEXTLINE(google-explicit-constructor): as a unique_ptr takes another
    Owned(std::unique_ptr<Node>&& node) noexcept : std::unique_ptr<Node>(std::move(node)) {}
    Owned(const Owned& other)
        : std::unique_ptr<Node>(other != nullptr ? std::make_unique<Node>(*other) : nullptr) {}
    Owned(Owned&&) noexcept = default;
    Owned& operator=(const Owned& other) { return *this = Owned(other); }
    Owned& operator=(Owned&&) noexcept = default;
    ~Owned() = default;
};

struct TypeNode;

/// `({Set}{@field})`.
struct TableNode {
    std::string set;
    Tokens arguments; ///< `Set{...}`
    Tokens members;   ///< `{a | b}`: a set without a name
    const ModuleNode* scope = nullptr;
    std::string field;
    Location setAt;
    Location fieldAt;
    bool outer = false; ///< the field stands in a record further out
    std::string text;   ///< where the set is not a plain name
};

/// A line of a SEQUENCE, SET or CHOICE.
struct ComponentNode {
    std::string name;
    Location at;
    unsigned lastLine = 0;
    Owned<TypeNode> type;
    bool optional = false;
    std::optional<ValueNode> defaultValue;
    bool extensionMarker = false; ///< `...`; nothing but the remarks counts then
    bool componentsOf = false;    ///< `COMPONENTS OF type`
    bool addition = false;        ///< stands behind `...`: an older sender leaves it out
    std::vector<Remark*> remarks;
    std::string comment;
};

struct TypeNode {
    enum Kind {
        Boolean,
        Integer,
        Enumerated,
        Null,
        ObjectIdentifier,
        OctetString,
        BitString,
        CharacterString, ///< `reference` holds the type's name, the time types included
        Sequence,
        Set,
        Choice,
        SequenceOf,
        SetOf,
        Reference,
        ClassField, ///< `className` and `fieldName`
        Any,        ///< ANY, ANY DEFINED BY, and what an object's field leaves open
        Tagged,     ///< a tag in front of `element`, which has one of its own
        Selection   ///< `fieldName < element`
    };

    Kind kind = Null;
    Location at;
    const ModuleNode* scope = nullptr;
    std::optional<TagNode> tag;
    std::string reference;
    std::string module; ///< `module.reference`
    Tokens arguments;   ///< `reference{...}`, the braces left out
    std::string className;
    std::string fieldName;
    std::vector<std::string> fieldPath; ///< fields between class and `fieldName`
    std::string text;                   ///< Any: the notation
    std::vector<NamedNumber> names;
    std::vector<ComponentNode> components;
    Owned<TypeNode> element;
    std::vector<RangeNode> sizes;
    std::vector<RangeNode> values;
    std::vector<ConstraintNode> further; ///< constraints that are no plain ranges
    std::string furtherText;             ///< they and what is not tested, as they stand
    Location constraintAt;
    std::optional<TableNode> table;
    Owned<TypeNode> containing; ///< of an OCTET STRING
    bool automatic = false;     ///< the components take tags by their places
    bool expanded = false;      ///< the resolver has been here

    /// Whether it has a range of sizes or of values.
    bool isConstrained() const { return !sizes.empty() || !values.empty(); }
};

/// A piece of the WITH SYNTAX of a class.
struct SyntaxNode {
    enum Kind { Word, Field, Optional };
    Kind kind = Word;
    std::string text;
    std::vector<SyntaxNode> group;
};

struct ClassFieldNode {
    std::string name;
    bool isType = false; ///< `&Type` alone
    bool isSet = false;  ///< `&Set Governor`
    bool optional = false;
    bool unique = false;
    std::shared_ptr<TypeNode> governor; ///< of a value, a set, an object; null for `&field`
    Location at;
};

/// `Governor:name` or `Name` in the braces behind the name of an assignment.
struct ParameterNode {
    std::string name;
};

/// `name ::= ...`
struct Assignment {
    enum Kind {
        Type,
        Value, ///< of a governing type, or an object of a class: only the names can tell
        Class,
        Set,  ///< of values or of objects: only the names can tell
        Macro ///< `MACRO`, or an instance of one: stepped over
    };

    Kind kind = Type;
    std::string name;
    Location at;
    unsigned lastLine = 0;
    std::vector<ParameterNode> parameters;
    Owned<TypeNode> type; ///< Type; governor of Value and Set
    Tokens body;          ///< Value, Set and what has parameters: the right-hand side
    std::vector<ClassFieldNode> fields;
    std::vector<SyntaxNode> syntax;
    std::vector<Remark*> remarks;
    std::string comment;
};

struct ImportNode {
    std::string name;
    std::string module;
    std::string identifier; ///< of the module, as ModuleNode has it; empty where none is given
    Location at;
    Location moduleAt;
};

/// What the modules of a file have in common.
struct FileNode {
    std::string name; ///< as given
    // The compiler's own, for what it makes of the file.
    std::string stem; ///< file name without directory and extension
    std::string digest;
    TokenStream stream;
};

/// A module of a file.
struct ModuleNode {
    std::string name;       ///< with a number behind it where an earlier module has the same
    std::string published;  ///< as it stands
    std::string identifier; ///< arcs, numbers where they are given; empty without one
    std::shared_ptr<FileNode> file;
    Location at;
    unsigned firstLine = 0; ///< behind the module before it
    unsigned lastLine = 0;
    bool implicitTags = false;
    bool automaticTags = false;
    std::vector<ImportNode> imports;
    std::vector<Assignment> assignments;
    std::string standard; ///< where the module is published
    std::string comment;  ///< in front of the module's name
};

} // namespace notation

#endif
