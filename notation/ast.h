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

namespace notation {

/// A value in a DEFAULT, a bound or an assignment.
struct ValueNode {
    enum Kind {
        Number,
        Boolean,
        Reference,
        Braces ///< `{ ... }`: an object identifier
    };
    /// A component of an object identifier: a name, a number or both.
    struct Arc {
        std::string name;
        std::string number;
        Location at;
    };

    Kind kind = Number;
    Location at;
    long long number = 0;
    bool boolean = false;
    std::string reference;
    std::vector<Arc> arcs;
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

/// A named number of INTEGER or ENUMERATED, a named bit of BIT STRING.
struct NamedNumber {
    std::string name;
    long long number = 0;
    Location at;
};

struct TagNode {
    enum Class { Universal, Application, Context, Private };
    enum Mode { ModuleDefault, Implicit, Explicit };
    Class tagClass = Context;
    Mode mode = ModuleDefault;
    unsigned number = 0;
    Location at;
};

struct TypeNode;

/// `({Set}{@field})`.
struct TableNode {
    std::string set;
    std::string field;
    Location setAt;
    Location fieldAt;
};

/// A line of a SEQUENCE, SET or CHOICE.
struct ComponentNode {
    std::string name;
    Location at;
    unsigned lastLine = 0;
    std::unique_ptr<TypeNode> type;
    bool optional = false;
    std::optional<ValueNode> defaultValue;
    bool extensionMarker = false; ///< `...`; nothing but the remarks counts then
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
        ClassField ///< `className` and `fieldName`
    };

    Kind kind = Null;
    Location at;
    std::optional<TagNode> tag;
    std::string reference;
    std::string className;
    std::string fieldName;
    std::vector<NamedNumber> names;
    std::vector<ComponentNode> components;
    std::unique_ptr<TypeNode> element;
    std::vector<RangeNode> sizes;
    std::vector<RangeNode> values;
    Location constraintAt;
    std::optional<TableNode> table;
    std::unique_ptr<TypeNode> containing; ///< of an OCTET STRING
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
    bool isType = false; ///< otherwise it holds an OBJECT IDENTIFIER
    bool optional = false;
    Location at;
};

/// `name ::= ...`
struct Assignment {
    enum Kind {
        Type,
        Value, ///< of a governing type, or an object of a class: only the names can tell
        Class,
        Set
    };

    Kind kind = Type;
    std::string name;
    Location at;
    unsigned lastLine = 0;
    std::unique_ptr<TypeNode> type; ///< Type; governor of Value
    std::string governor;           ///< class of a Set
    std::size_t firstToken = 0;     ///< Value: right-hand side
    std::vector<ClassFieldNode> fields;
    std::vector<SyntaxNode> syntax;
    std::vector<std::pair<std::string, Location>> members; ///< of a Set
    std::vector<Remark*> remarks;
    std::string comment;
};

struct ImportNode {
    std::string name;
    std::string module;
    Location at;
    Location moduleAt;
};

/// A module of a file.
struct ModuleNode {
    std::string name;
    std::string file; ///< as given
    std::string stem; ///< file name without directory and extension
    std::string digest;
    Location at;
    bool implicitTags = false;
    TokenStream stream;
    std::vector<ImportNode> imports;
    std::vector<Assignment> assignments;
    std::string standard; ///< where the module is published
    std::string comment;  ///< in front of the module's name
};

} // namespace notation

#endif
