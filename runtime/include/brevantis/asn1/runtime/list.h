#ifndef BREVANTIS_ASN1_RUNTIME_LIST_H
#define BREVANTIS_ASN1_RUNTIME_LIST_H

#include <brevantis/asn1/export.h>

/// @file
/// The doubly linked list that holds the elements of SEQUENCE OF and SET OF.
///
/// A node comes in two forms. In the plain form node and element are heap blocks of their own. In
/// the inline form, which decoders use, one block holds the node and directly behind it the
/// element; such a block is made by the decoder and handed over with rtDListAppendNode. Only
/// rtDListFreeAll has to tell them apart.
///
/// Indices count from 0. Nodes live in the heap `memHeap` of the context given. Context and list
/// must not be null unless it is said that they may.

struct ASN1CTXT;

/// Node of a doubly linked list.
struct _Asn1RTDListNode {
    void* data;             ///< the element; the list never looks into it
    _Asn1RTDListNode* next; ///< towards the end; null behind the last
    _Asn1RTDListNode* prev; ///< towards the beginning; null in front of the first
};

/// Doubly linked list.
struct _Asn1RTDList {
    unsigned int count;     ///< nodes on the list
    _Asn1RTDListNode* head; ///< the first node, null on an empty list
    _Asn1RTDListNode* tail; ///< the last node, null on an empty list
};

/// The names that programs use.
using Asn1RTDListNode = _Asn1RTDListNode;
using Asn1RTDList = _Asn1RTDList;

/// Value of a SEQUENCE OF or SET OF; starts out empty.
struct ASN1TSeqOfList : _Asn1RTDList {
    /// An empty list.
    ASN1TSeqOfList() noexcept : _Asn1RTDList{0, nullptr, nullptr} {}
};

/// Value of a SEQUENCE OF or SET OF that is a message of its own; starts out empty.
struct ASN1TPDUSeqOfList : _Asn1RTDList {
    /// An empty list.
    ASN1TPDUSeqOfList() noexcept : _Asn1RTDList{0, nullptr, nullptr} {}
};

/// Makes @p list empty without freeing anything. A null list is ignored.
BREVANTIS_ASN1_API void rtDListInit(_Asn1RTDList* list) noexcept;

/// Appends a plain node for @p data.
/// @return the node; null when memory is out, the list then being unchanged
BREVANTIS_ASN1_API _Asn1RTDListNode* rtDListAppend(ASN1CTXT* ctxt, _Asn1RTDList* list,
                                                   void* data) noexcept;

/// Appends the node that stands directly in front of @p element. Allocates nothing.
/// @param element address behind the node in a block that holds both
/// @return the node; null, with the list unchanged, when the block's address can only be null, as
///         after a failed allocation
BREVANTIS_ASN1_API _Asn1RTDListNode* rtDListAppendNode(ASN1CTXT* ctxt, _Asn1RTDList* list,
                                                       void* element) noexcept;

/// Inserts a plain node so that it stands at @p index. A negative index acts like 1.
/// @return the node; null when @p index is above the count or memory is out, the list then being
///         unchanged
BREVANTIS_ASN1_API _Asn1RTDListNode* rtDListInsert(ASN1CTXT* ctxt, _Asn1RTDList* list, int index,
                                                   void* data) noexcept;

/// Inserts a plain node in front of @p node, or at the end when @p node is null.
/// @return the new node; null when memory is out
BREVANTIS_ASN1_API _Asn1RTDListNode* rtDListInsertBefore(ASN1CTXT* ctxt, _Asn1RTDList* list,
                                                         _Asn1RTDListNode* node,
                                                         void* data) noexcept;

/// Inserts a plain node behind @p node, or at the start when @p node is null.
/// @return the new node; null when memory is out
BREVANTIS_ASN1_API _Asn1RTDListNode*
rtDListInsertAfter(ASN1CTXT* ctxt, _Asn1RTDList* list, _Asn1RTDListNode* node, void* data) noexcept;

/// Node at @p index; a negative index finds the first.
/// @return null when there is none
BREVANTIS_ASN1_API _Asn1RTDListNode* rtDListFindByIndex(const _Asn1RTDList* list,
                                                        int index) noexcept;

/// First node whose element pointer equals @p data.
/// @return null when there is none
BREVANTIS_ASN1_API _Asn1RTDListNode* rtDListFindByData(const _Asn1RTDList* list,
                                                       const void* data) noexcept;

/// Index of the first node whose element pointer equals @p data.
/// @return -1 when there is none
BREVANTIS_ASN1_API int rtDListFindIndexByData(const _Asn1RTDList* list, const void* data) noexcept;

/// Unlinks @p node, which must be in @p list, and frees nothing: node and element stay in the heap
/// until it is released. A null node is ignored.
BREVANTIS_ASN1_API void rtDListRemove(_Asn1RTDList* list, _Asn1RTDListNode* node) noexcept;

/// Frees every node, leaves the elements alone and makes the list empty. Not for inline nodes whose
/// elements are still wanted: they lie in the block that is freed.
BREVANTIS_ASN1_API void rtDListFreeNodes(ASN1CTXT* ctxt, _Asn1RTDList* list) noexcept;

/// Frees every node and its element and makes the list empty. Elements of plain nodes must be
/// blocks of the same heap.
BREVANTIS_ASN1_API void rtDListFreeAll(ASN1CTXT* ctxt, _Asn1RTDList* list) noexcept;

/// Copies the elements into consecutive slots of an array, in list order; a null element gives a
/// slot of zeros.
/// @param array in: where to copy to; out: a new block of the heap when the capacity was too small
/// @param capacity slots of @p array, raised to the count when a block was taken; null when the
///        array is known to be large enough
/// @param elementSize octets of a slot and of every element
/// @return the count of the list; 0 with both arguments unchanged when @p elementSize is negative,
///         the block would exceed 0x7FFFFFFF octets or memory is out
BREVANTIS_ASN1_API unsigned int rtDListToArray(ASN1CTXT* ctxt, const _Asn1RTDList* list,
                                               void** array, unsigned int* capacity,
                                               int elementSize) noexcept;

/// Appends a node for each slot of an array, in order. The array stays the caller's and must
/// outlive the list.
/// @param elementCount slots of @p array; 0 and below append nothing
/// @param elementSize octets of a slot, not negative
/// @return 0; ASN1S_NO_MEMORY when memory is out, with the slots before that one appended;
///         ASN1S_INVALID_PARAMETER for a null @p array or a negative @p elementSize. Nothing is
///         recorded
BREVANTIS_ASN1_API int rtDListAppendArray(ASN1CTXT* ctxt, _Asn1RTDList* list, const void* array,
                                          int elementCount, int elementSize) noexcept;

/// Appends plain nodes for copies of the slots of an array. Mind the unit of @p octetCount: the
/// slots that begin below it are copied, that is `octetCount / elementSize`, rounded up.
/// @param octetCount octets of @p array; 0 and below append nothing
/// @param elementSize octets of a slot, above 0
/// @return 0; ASN1S_NO_MEMORY when memory is out, with the slots before that one appended;
///         ASN1S_INVALID_PARAMETER for a null @p array or an @p elementSize of 0 or below. Nothing
///         is recorded
BREVANTIS_ASN1_API int rtDListAppendArrayCopy(ASN1CTXT* ctxt, _Asn1RTDList* list, const void* array,
                                              int octetCount, int elementSize) noexcept;

#endif
