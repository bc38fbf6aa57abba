#ifndef BREVANTIS_ASN1_RUNTIME_SEQUENCE_OF_LIST_H
#define BREVANTIS_ASN1_RUNTIME_SEQUENCE_OF_LIST_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/control.h>
#include <brevantis/asn1/runtime/list.h>

/// @file
/// The list of a SEQUENCE OF or SET OF as an object, with iterators that notice a list changed
/// behind their back.

class ASN1CSeqOfList;

/// A position in a list. Made by ASN1CSeqOfList on the heap of its context and never freed singly:
/// it goes with the heap. The list object must outlive its use.
///
/// Each operation fails with ASN1S_CONCURRENT_MODIFICATION once the list was changed by another
/// route than this iterator. Failures are kept in `stat`; nothing is recorded in the context.
class BREVANTIS_ASN1_API ASN1CSeqOfListIterator {
public:
    /// Gives the element ahead and steps over it.
    /// @return the element; null on failure: ASN1S_MISSING_ELEMENT at the end,
    ///         ASN1S_CONCURRENT_MODIFICATION
    void* next() noexcept;
    /// Gives the element before the one given last, or the one ahead when none was given since the
    /// start, an `insert` or a `remove`.
    /// @return the element; null on failure: ASN1S_MISSING_ELEMENT at either end, the iterator
    ///         staying where it is; ASN1S_CONCURRENT_MODIFICATION
    void* prev() noexcept;
    /// Replaces the element given last; no iterator minds.
    /// @return 0; ASN1S_ILLEGAL_STATE when none was given since the last `insert` or `remove`;
    ///         ASN1S_CONCURRENT_MODIFICATION
    int set(void* data) noexcept;
    /// Inserts in front of the element ahead, at the end when there is none.
    /// @return 0; ASN1S_NO_MEMORY when memory is out; ASN1S_CONCURRENT_MODIFICATION
    int insert(void* data) noexcept;
    /// Removes the element given last from the list; nothing is freed.
    /// @return 0; ASN1S_ILLEGAL_STATE when none was given since the last `insert` or `remove`;
    ///         ASN1S_CONCURRENT_MODIFICATION
    int remove() noexcept;
    /// @return the last failure, 0 until one occurs
    int getState() const noexcept { return stat; }

    ASN1CSeqOfList* pSeqList;      ///< the list that made the iterator
    _Asn1RTDListNode* nextNode;    ///< what `next` will give
    _Asn1RTDListNode* lastNode;    ///< what was given last; null when there is none to act on
    unsigned int expectedModCount; ///< the list's `modCount` as last seen
    int stat;                      ///< last failure; 0 until one occurs

private:
    bool isCurrent() noexcept;
};

/// Object face of a list; base of the control classes of list types. It codes nothing by itself.
///
/// Only freeAll frees elements. Indices are those of the rtDList functions. An
/// operation that has to allocate or free does nothing when the object holds no context. When
/// memory is out a list stays as it was; `size` tells.
class BREVANTIS_ASN1_API ASN1CSeqOfList : public ASN1CType {
public:
    /// On a caller's list, which outlives the object; on a new context unless one is given.
    /// @param initialise non-zero: the list is made empty first
    explicit ASN1CSeqOfList(_Asn1RTDList& list);
    explicit ASN1CSeqOfList(ASN1TSeqOfList& list);
    explicit ASN1CSeqOfList(ASN1TPDUSeqOfList& list);
    ASN1CSeqOfList(ASN1MessageBufferIF& buffer, _Asn1RTDList& list, unsigned char initialise = 0);
    ASN1CSeqOfList(ASN1MessageBufferIF& buffer, ASN1TSeqOfList& list);
    ASN1CSeqOfList(ASN1MessageBufferIF& buffer, ASN1TPDUSeqOfList& list);
    ASN1CSeqOfList(ASN1Context& sharedContext, _Asn1RTDList& list, unsigned char initialise = 0);
    ASN1CSeqOfList(ASN1Context& sharedContext, ASN1TSeqOfList& list);
    ASN1CSeqOfList(ASN1Context& sharedContext, ASN1TPDUSeqOfList& list);

    /// On a list of its own, which goes with the object.
    explicit ASN1CSeqOfList(ASN1MessageBufferIF& buffer);
    explicit ASN1CSeqOfList(ASN1Context& sharedContext);

    ASN1CSeqOfList(const ASN1CSeqOfList&) = delete;
    ASN1CSeqOfList& operator=(const ASN1CSeqOfList&) = delete;
    ~ASN1CSeqOfList() override;

    /// Appends an element, of which the list keeps the pointer alone.
    void append(void* data);
    /// Appends pointers to the slots of an array, which has to outlive the list.
    void appendArray(const void* array, int elementCount, int elementSize);
    /// Appends copies of the slots that begin below @p octetCount octets.
    void appendArrayCopy(const void* array, int octetCount, int elementSize);
    /// Inserts so that the element stands at @p index; see rtDListInsert for indices that there are
    /// none of.
    void insert(int index, void* data);
    /// Inserts in front of @p node, at the end when it is null.
    void insertBefore(void* data, _Asn1RTDListNode* node);
    /// Inserts behind @p node, at the start when it is null.
    void insertAfter(void* data, _Asn1RTDListNode* node);

    /// Takes a node off the list: the one at an index, the first one with a pointer, or one that is
    /// on the list. Nothing is freed, and nothing happens where there is no such node.
    void remove(int index);
    void remove(void* data);
    void remove(_Asn1RTDListNode* node);
    /// Empties the list and frees its nodes.
    void clear();
    /// Empties the list and frees its nodes and their elements.
    void freeAll();

    /// Replaces the element at @p index.
    /// @return the element that was there; null when there is no such node
    void* set(int index, void* data);
    /// @return the element at @p index, null when there is none
    void* get(int index) const;
    /// @return the first element, null on an empty list
    void* getFirst() const;
    /// @return the last element, null on an empty list
    void* getLast() const;
    /// @return index of the first node with @p data, -1 when there is none
    int indexOf(void* data) const;
    int size() const;
    /// Whether the list has no element.
    bool isEmpty() const;

    /// Copies the elements into a new array on the context's heap.
    /// @param elementSize octets of an element
    /// @return the array; null for an empty list or when memory is out
    void* toArray(int elementSize);
    /// Copies the elements into @p array, or into a new one on the context's heap if it has too few
    /// slots.
    /// @param elementSize octets of an element
    /// @param capacity slots of @p array
    /// @return the array copied to; null when memory is out
    void* toArray(void* array, int elementSize, int capacity);

    /// @return a new iterator before the first element; null when memory is out
    ASN1CSeqOfListIterator* iterator();
    /// @return a new iterator at the last element, for `prev`; null when memory is out
    ASN1CSeqOfListIterator* iteratorFromLast();
    /// @return a new iterator at the first node with @p data, at the end when there is none; null
    ///         when memory is out
    ASN1CSeqOfListIterator* iteratorFrom(void* data);

    _Asn1RTDList* pList;       ///< the list served, never null
    unsigned int modCount = 0; ///< raised by every change
    unsigned char wasAssigned; ///< 1: the list is a caller's; 0: it goes with this object

private:
    void allocateList();
    ASN1CSeqOfListIterator* iteratorAt(_Asn1RTDListNode* node);

    _Asn1RTDList fallbackList; ///< serves when there was no memory for a list of its own
};

#endif
