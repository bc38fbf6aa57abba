#ifndef BREVANTIS_ASN1_ASN1DATA_LIST_RECORDS_H
#define BREVANTIS_ASN1_ASN1DATA_LIST_RECORDS_H

#include <iterator>
#include <new>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/list.h>

/// @file
/// The records of a SEQUENCE OF or SET OF: nodes hold their elements as plain pointers.

namespace asn1data {

/// Appends a new, empty element to a list. Node and element are one block of the context's heap and
/// live as long as that.
/// @param list of the catalogue or of a module of one's own, as asn1data::ASN1T_SignerInfos; it
///        tells what its elements are
/// @return null when memory is out; the list is unchanged then
template <class List, class Record = typename List::Element>
Record* appendRecord(ASN1CTXT* ctxt, List& list) noexcept {
    static_assert(alignof(Record) <= alignof(Asn1RTDListNode), "the record follows the node");
    void* const block =
        rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(sizeof(Asn1RTDListNode) + sizeof(Record)));
    if (block == nullptr) {
        return nullptr;
    }
    auto* const record = ::new (static_cast<Asn1RTDListNode*>(block) + 1) Record();
    rtDListAppendNode(ctxt, &list, record);
    return record;
}

/// The records of a list, for a loop: `for (const auto& each : recordsOf(list))`. Nodes without an
/// element end it.
/// @tparam Record what the list's elements are, const or not
template <class Record>
class RecordsOf {
public:
    /// Goes from node to node.
    class Iterator {
    public:
        /// @cond
        using iterator_category = std::forward_iterator_tag;
        using value_type = Record;
        using difference_type = std::ptrdiff_t;
        using pointer = Record*;
        using reference = Record&;
        /// @endcond

        /// @param node null for the end
        explicit Iterator(const Asn1RTDListNode* node = nullptr) noexcept
            : node_(node != nullptr && node->data != nullptr ? node : nullptr) {}

        /// The record; it is the heap's.
        Record& operator*() const noexcept { return *static_cast<Record*>(node_->data); }
        /// Its members.
        Record* operator->() const noexcept { return static_cast<Record*>(node_->data); }
        /// On to the next one.
        Iterator& operator++() noexcept {
            *this = Iterator(node_->next);
            return *this;
        }
        /// On to the next one.
        /// @return where it stood
        Iterator operator++(int) noexcept {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        /// Whether both stand at the same record.
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
            return a.node_ == b.node_;
        }
        /// Whether they do not.
        friend bool operator!=(const Iterator& a, const Iterator& b) noexcept { return !(a == b); }

    private:
        const Asn1RTDListNode* node_;
    };

    /// @param list outlives this
    explicit RecordsOf(const Asn1RTDList& list) noexcept : head_(list.head) {}

    /// The first record.
    Iterator begin() const noexcept { return Iterator(head_); }
    /// Behind the last one.
    Iterator end() const noexcept { return Iterator(); }

private:
    const Asn1RTDListNode* head_;
};

/// The records of a list; see RecordsOf.
/// @param list tells what its elements are, and outlives what is returned
template <class List>
RecordsOf<typename List::Element> recordsOf(List& list) noexcept {
    return RecordsOf<typename List::Element>(list);
}

/// The records of a list that are only read.
template <class List>
RecordsOf<const typename List::Element> recordsOf(const List& list) noexcept {
    return RecordsOf<const typename List::Element>(list);
}

} // namespace asn1data

#endif
