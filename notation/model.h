#ifndef BREVANTIS_NOTATION_MODEL_H
#define BREVANTIS_NOTATION_MODEL_H

#include <bitset>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data/shape.h>

#include "ast.h"

/// @file
/// What the emitters work from: every type with its storage, tags and rows settled.

namespace notation {

// Values are held as the engine holds them.
using asn1data::isFixed;
using asn1data::isPrimitive;
using asn1data::isString;
using asn1data::kindOf;
using asn1data::Shape;
using asn1data::ShapeKind;
using asn1data::ShapeTraits;
using asn1data::traitsOf;

enum class Tagging { Untagged, Implicit, Explicit };
enum class Presence { Mandatory, Optional, Default };

enum : unsigned { Constructed = 0x20000000u };

/// First identifier octet of a tag.
constexpr unsigned char identifierOctet(unsigned tag) {
    const unsigned number = tag & 0x1FFFFFFFu;
    return static_cast<unsigned char>((tag >> 24 & 0xE0u) | (number < 31 ? number : 31));
}

struct Range {
    long long lower;
    long long upper;
};

using Octets = std::bitset<256>;

/// What a value takes in memory, in octets.
struct Extent {
    unsigned size = 0;
    unsigned alignment = 0; ///< 0: not settled
};

struct Module;
struct Type;
struct ObjectSet;

struct Element {
    std::string name;   ///< in the notation
    std::string member; ///< in C++
    std::string line;   ///< its line of the notation
    std::string comment;
    Location at;
    Type* type = nullptr;
    std::optional<TagNode> tagNode;
    unsigned tag = 0;
    Tagging tagging = Tagging::Untagged;
    Presence presence = Presence::Mandatory;
    unsigned presenceBit = 0;
    const TypeNode* node = nullptr;
    bool constraintPending = false; ///< `node` bears a constraint that the type does not have
    std::vector<Range> constraint;
    std::string parameter;
    std::optional<ValueNode> defaultValue;
    long long defaultNumber = 0;
    std::optional<std::string> defaultText;
    bool ambiguous = false; ///< it may begin as another element does
    bool hasSlot = false;   ///< an OCTET STRING with the slot of its typed value behind it

    // Settled by layOutRecords.
    unsigned offset = 0;     ///< in the record; of the union in a CHOICE
    unsigned slotOffset = 0; ///< of the typed value, with `hasSlot`

    /// The tag that stands for an alternative of a CHOICE, 0 where only its first octet tells.
    unsigned matchTag() const;
};

/// How a table constraint finds its identifier and its value.
struct Table {
    const ObjectSet* set = nullptr;
    std::size_t identifier = 0; ///< indices of elements
    std::size_t value = 0;
    enum Kind { OpenType, OpenTypes, OctetString } kind = OpenType;
};

struct Type {
    std::string name; ///< in C++ without prefix; of the `builtin` constant for a built-in type
    bool builtin = false;
    Module* module = nullptr;
    Location at;
    std::string notation;
    std::string comment;
    std::string standard;

    Shape shape = Shape::Null;
    unsigned universalTag = 0; ///< of the notation's type, 0 for CHOICE and open type
    bool setOf = false;
    bool stepsOverEndOfContents = false;
    bool copyable = true;
    bool ambiguous = false;
    unsigned capacity = 0;
    std::optional<TagNode> tagNode;
    Type* aliasOf = nullptr; ///< catalogue type that this is another name of
    Type* element = nullptr;
    std::vector<Element> elements;
    std::string extensionMember;
    std::vector<NamedNumber> names;
    const TypeNode* node = nullptr;
    std::vector<Range> constraint;
    std::optional<Table> table;
    bool generalizedTime = false;
    bool inPlace = false; ///< described within another type

    // Settled by the checker.
    bool finished = false;
    unsigned tag = 0;
    unsigned outerTag = 0;
    bool holdsMemory = false;
    bool closesRecursion = false;
    Octets identifiers;

    // Settled by layOutRecords.
    Extent extent;
    unsigned countOffset = 0;    ///< of the count, or of a CHOICE's selector
    unsigned dataOffset = 0;     ///< of what the count is of, or of the union
    unsigned presenceOffset = 0; ///< of `m`, with OPTIONAL elements
    unsigned extensionOffset = 0;

    /// The type that the name stands for in the end.
    const Type& target() const { return aliasOf != nullptr ? aliasOf->target() : *this; }
    bool isConstructed() const {
        return shape == Shape::Sequence || shape == Shape::Set || shape == Shape::Choice ||
               isRepeated();
    }
    bool isRepeated() const {
        return shape == Shape::List || shape == Shape::Array || shape == Shape::FixedArray;
    }
    /// Whether there is a struct of the type's own, rather than a name for another.
    bool hasRecord() const {
        return !builtin && aliasOf == nullptr &&
               (isConstructed() || shape == Shape::FixedOctetString ||
                shape == Shape::FixedBitString || shape == Shape::Null);
    }
    bool hasPresence() const;
    /// Elements that have to be there.
    unsigned mandatoryCount() const;
    /// Whether a union holds the type's value by pointer.
    bool isIndirect() const { return !traitsOf(shape).scalar; }
    /// Whether the type's record takes part in the ownership of memory.
    bool ownsContext() const { return hasRecord() && holdsMemory; }
    /// What a broken constraint of the type names.
    std::string parameter() const;
};

struct Identifier {
    std::string name;
    std::string notation; ///< right-hand side
    std::string comment;
    Location at;
    std::vector<unsigned> arcs;
    std::string copyOf; ///< C++ name when it is a plain reference to another
};

struct ObjectClass {
    std::string name; ///< in C++
    std::string typeField;
    std::string idField;
    bool typeOptional = false;
    /// It has an identifier `&id`, one type and further identifiers at most: a class in C++. Of any
    /// other class there are the tables that its sets need.
    bool hasRecord = false;
    const Assignment* node = nullptr;
    Module* module = nullptr;
    bool hasOptionalFields() const;
};

struct Object {
    std::string name; ///< in C++
    std::string comment;
    Location at;
    const ObjectClass* objectClass = nullptr;
    Module* module = nullptr;
    std::vector<unsigned> arcs;
    Type* type = nullptr;
    Owned<TypeNode> typeNode;
    enum { Declared, Resolving, Resolved } state = Declared;
};

struct ObjectSet {
    std::string name; ///< in C++
    std::string comment;
    const ObjectClass* objectClass = nullptr;
    Module* module = nullptr;
    std::vector<const Object*> objects;
    bool resolved = false;
};

struct Module {
    ModuleNode node;
    std::string space; ///< namespace of its own, where a name of its stands in another module too
    bool ofLibrary = false;   ///< compiled already: its types are used, and nothing is made of it
    std::vector<Type*> types; ///< in order of need
    std::vector<Identifier> identifiers;
    std::vector<const ObjectClass*> classes;
    std::vector<const Object*> objects;
    std::vector<const ObjectSet*> sets;
};

/// The modules of a file, which share the generated files.
struct File {
    std::shared_ptr<FileNode> node;
    std::vector<Module*> modules;
    bool ofLibrary = false;
};

struct Model {
    Module builtinModule; ///< types that the notation brings along, in notation
    std::vector<std::unique_ptr<Module>> modules;
    std::vector<File> files;
    std::deque<Type> types;
    std::deque<ObjectClass> classes;
    std::deque<Object> objects;
    std::deque<ObjectSet> sets;
    std::map<std::string, Type*> builtins;
};

} // namespace notation

#endif
