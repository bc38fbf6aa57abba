#include <brevantis/asn1/text/schema.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <map>
#include <numeric>
#include <sstream>

#include <notation/diagnostics.h>
#include <notation/names.h>
#include <notation/reader.h>
#include <notation/record_layout.h>

#include "arena.h"
#include "descriptions.h"

namespace asn1text {

using asn1data::ObjectSetDescription;
using asn1data::TypeDescription;

struct Schema::Tables {
    explicit Tables(std::size_t memory) : arena(memory) {}

    Arena arena;
    std::vector<const TypeDescription*> types;
    std::vector<const ObjectSetDescription*> sets;
    std::vector<asn1data::IdentifierDescription> identifiers;
    /// By `Module.Type`, and by `Type` where that is all.
    std::map<std::string, const TypeDescription*, std::less<>> byName;
};

namespace {

/// How deep types stand in each other. Where a type can hold itself the engine counts.
class NestingCheck {
public:
    NestingCheck(std::size_t limit, notation::Diagnostics& diagnostics)
        : limit_(limit), diagnostics_(diagnostics) {}

    void run(const notation::Model& model) {
        for (const notation::Type& type : model.types) {
            if (!deep_ && depthOf(type, 0) > limit_) {
                complain(type);
            }
        }
    }

private:
    std::size_t depthOf(const notation::Type& named, std::size_t above) {
        const notation::Type& type = named.target();
        if (type.builtin || !type.isConstructed()) {
            return 1;
        }
        if (const auto known = depths_.find(&type); known != depths_.end()) {
            return known->second;
        }
        if (above >= limit_) {
            return limit_ + 1; // deep enough to know, and not to run out of stack
        }
        std::size_t depth = 1;
        const auto hold = [&](const notation::Type& held) {
            if (!held.target().closesRecursion) {
                depth = std::max(depth, 1 + depthOf(held, above + 1));
            }
        };
        for (const notation::Element& element : type.elements) {
            hold(*element.type);
        }
        if (type.element != nullptr) {
            hold(*type.element);
        }
        return depths_[&type] = depth;
    }

    void complain(const notation::Type& type) {
        deep_ = true;
        diagnostics_.error(type.at, "types stand in each other more than " +
                                        std::to_string(limit_) + " deep in '" + type.name + "'");
    }

    std::size_t limit_;
    notation::Diagnostics& diagnostics_;
    std::map<const notation::Type*, std::size_t> depths_;
    bool deep_ = false;
};

} // namespace

/// Makes a schema of texts.
class SchemaReader {
public:
    SchemaReader(const std::vector<SchemaText>& texts, const SchemaLimits& limits)
        : texts_(texts), limits_(limits) {}

    std::unique_ptr<const Schema> read(std::vector<SchemaMessage>& messages) {
        std::unique_ptr<const Schema> schema = readAll();
        for (const notation::Diagnostics::Entry& entry : diagnostics_.sorted()) {
            messages.push_back(
                {entry.at.file, entry.at.line, entry.at.column, entry.warning, entry.sentence});
        }
        return schema;
    }

private:
    std::unique_ptr<const Schema> readAll() {
        std::vector<notation::SourceFile> files;
        std::size_t left = limits_.textSize;
        for (const SchemaText& text : texts_) {
            if (text.text.size() > left) {
                refuse("modules of more than " + std::to_string(limits_.textSize) + " octets");
                return nullptr;
            }
            left -= text.text.size();
            files.push_back({text.name, text.text});
        }
        notation::Model model;
        const unsigned largest =
            static_cast<unsigned>(std::min<std::size_t>(limits_.valueSize, INT_MAX));
        if (files.empty()) {
            refuse("no modules");
            return nullptr;
        }
        if (!notation::readModules(files, model, diagnostics_) ||
            !notation::layOutRecords(model, thisPlatform(), largest, diagnostics_)) {
            return nullptr;
        }
        NestingCheck(limits_.depth, diagnostics_).run(model);
        if (diagnostics_.failed()) {
            return nullptr;
        }
        auto tables = std::make_unique<Schema::Tables>(limits_.memory);
        try {
            fill(*tables, model);
        } catch (const ArenaFull&) {
            refuse("descriptions of more than " + std::to_string(limits_.memory) + " octets");
            return nullptr;
        }
        return std::unique_ptr<const Schema>(new Schema(std::move(tables)));
    }

    static void fill(Schema::Tables& tables, const notation::Model& model) {
        Descriptions descriptions(tables.arena);
        std::map<std::string, unsigned> counts;
        for (const auto& module : model.modules) {
            for (const notation::Type* type : module->types) {
                ++counts[type->name];
            }
        }
        for (const auto& module : model.modules) {
            for (const notation::Type* type : module->types) {
                const bool alone = counts[type->name] == 1;
                descriptions.add(*type, alone ? type->name : module->node.name + "." + type->name);
            }
            for (const notation::ObjectSet* set : module->sets) {
                descriptions.add(*set);
            }
        }
        descriptions.describe();
        for (const auto& module : model.modules) {
            for (const notation::Type* type : module->types) {
                const TypeDescription* const description = descriptions.of(*type);
                tables.types.push_back(description);
                tables.byName.emplace(notation::cppName(module->node.name) + "." + type->name,
                                      description);
                if (counts[type->name] == 1) {
                    tables.byName.emplace(type->name, description);
                }
            }
            for (const notation::ObjectSet* set : module->sets) {
                tables.sets.push_back(descriptions.of(*set));
            }
            for (const notation::Identifier& identifier : module->identifiers) {
                tables.identifiers.push_back(descriptions.describe(identifier));
            }
        }
        const auto byName = [](const auto* one, const auto* other) {
            return std::strcmp(one->name, other->name) < 0;
        };
        std::sort(tables.types.begin(), tables.types.end(), byName);
        std::sort(tables.sets.begin(), tables.sets.end(), byName);
        const auto byArcs = [](const auto& one, const auto& other) {
            const ASN1OBJID& left = *one.identifier;
            const ASN1OBJID& right = *other.identifier;
            return std::lexicographical_compare(left.subid, left.subid + left.numids, right.subid,
                                                right.subid + right.numids);
        };
        std::sort(tables.identifiers.begin(), tables.identifiers.end(), byArcs);
    }

    void refuse(const std::string& sentence) {
        diagnostics_.error({texts_.empty() ? "" : texts_.front().name, 0, 0}, sentence);
    }

    const std::vector<SchemaText>& texts_;
    const SchemaLimits& limits_;
    notation::Diagnostics diagnostics_;
};

Schema::Schema(std::unique_ptr<Tables> tables) noexcept : tables_(std::move(tables)) {}
Schema::~Schema() = default;

asn1data::TypeRange Schema::types() const noexcept {
    return {tables_->types.data(), tables_->types.size()};
}

const TypeDescription* Schema::findType(std::string_view name) const {
    const auto found = tables_->byName.find(notation::cppName(std::string(name)));
    return found != tables_->byName.end() ? found->second : nullptr;
}

asn1data::ObjectSetRange Schema::objectSets() const noexcept {
    return {tables_->sets.data(), tables_->sets.size()};
}

asn1data::IdentifierRange Schema::identifiers() const noexcept {
    return {tables_->identifiers.data(), tables_->identifiers.size()};
}

std::string messageText(const SchemaMessage& message) {
    const std::string place = message.line == 0 ? ""
                                                : ":" + std::to_string(message.line) + ":" +
                                                      std::to_string(message.column);
    const bool placed = !message.file.empty();
    return message.file + place + (placed ? ": " : "") +
           (message.warning ? "warning: " : "error: ") + message.sentence + ".";
}

std::unique_ptr<const Schema> readSchema(const std::vector<SchemaText>& texts,
                                         std::vector<SchemaMessage>& messages,
                                         const SchemaLimits& limits) {
    return SchemaReader(texts, limits).read(messages);
}

} // namespace asn1text
