#include <map>

#include "parser.h"

// Finds out what each remark and comment belongs to.

namespace notation {
namespace {

// What a remark or a comment can belong to.
struct Item {
    Location at;
    unsigned lastLine;
    std::vector<Remark*>* remarks;
    std::string* comment;
    unsigned depth; ///< 0 for an assignment
};

void collectItems(TypeNode* type, unsigned depth, std::vector<Item>& items) {
    if (type == nullptr) {
        return;
    }
    for (ComponentNode& component : type->components) {
        items.push_back(
            {component.at, component.lastLine, &component.remarks, &component.comment, depth});
        collectItems(component.type.get(), depth + 1, items);
    }
    collectItems(type->element.get(), depth, items);
}

// The item that begins last on the line, unless it lies within one that the line holds whole;
// failing that, the innermost one that ends on it.
Item* itemOfLine(std::vector<Item>& items, const Location& at) {
    Item* begun = nullptr;
    Item* ended = nullptr;
    for (Item& item : items) {
        if (item.at.line == at.line && item.at.column < at.column) {
            const bool within =
                begun != nullptr && begun->lastLine == at.line && item.depth > begun->depth;
            begun = within ? begun : &item;
        } else if (item.lastLine == at.line && item.at.line < at.line) {
            ended = &item;
        }
    }
    return begun != nullptr ? begun : ended;
}

} // namespace

void attachRemarksAndComments(ModuleNode& module) {
    const auto within = [&module](const Location& at) {
        return at.line >= module.firstLine && at.line <= module.lastLine;
    };
    std::vector<Item> items;
    for (Assignment& assignment : module.assignments) {
        items.push_back(
            {assignment.at, assignment.lastLine, &assignment.remarks, &assignment.comment, 0});
        collectItems(assignment.type.get(), 1, items);
    }
    for (Remark& remark : module.file->stream.remarks) {
        if (!within(remark.at)) {
            continue;
        }
        if (Item* item = itemOfLine(items, remark.at)) {
            item->remarks->push_back(&remark);
        } else if (remark.key == "standard" && module.standard.empty()) {
            module.standard = remark.value;
            remark.taken = true;
        }
    }
    // Lines of comment that touch an assignment tell what it is.
    std::map<unsigned, const Comment*> ownLines;
    for (const Comment& comment : module.file->stream.comments) {
        if (!within(comment.at)) {
            continue;
        }
        if (comment.ownLine) {
            ownLines[comment.at.line] = &comment;
        } else if (Item* item = itemOfLine(items, comment.at)) {
            if (item->depth > 0) {
                *item->comment += (item->comment->empty() ? "" : " ") + comment.text;
            }
        }
    }
    const auto linesAbove = [&ownLines](unsigned line) {
        std::string text;
        for (auto found = ownLines.find(line - 1); found != ownLines.end();
             found = ownLines.find(--line - 1)) {
            text.insert(0, found->second->text + (text.empty() ? "" : " "));
        }
        return text;
    };
    for (Assignment& assignment : module.assignments) {
        assignment.comment = linesAbove(assignment.at.line);
    }
    module.comment = linesAbove(module.at.line);
}

} // namespace notation
