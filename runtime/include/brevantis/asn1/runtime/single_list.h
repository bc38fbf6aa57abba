#ifndef BREVANTIS_ASN1_RUNTIME_SINGLE_LIST_H
#define BREVANTIS_ASN1_RUNTIME_SINGLE_LIST_H

#include <brevantis/asn1/export.h>

/// @file
/// The singly linked list of the context and of the SET OF encoders.

struct ASN1CTXT;

/// Node of a singly linked list; the element stays the caller's.
struct Asn1RTSListNode {
    void* data;            ///< the element; the list never looks into it
    Asn1RTSListNode* next; ///< null behind the last
};

/// Singly linked list. Nodes come from the heap of `pctxt`, or from the process heap when it is
/// null.
struct Asn1RTSList {
    unsigned int count;    ///< nodes on the list
    Asn1RTSListNode* head; ///< the first node, null on an empty list
    Asn1RTSListNode* tail; ///< the last node, null on an empty list
    ASN1CTXT* pctxt;       ///< whose `memHeap` the nodes come from; may be null
};

/// Makes @p list empty and binds it to @p ctxt (which may be null). A null list is ignored.
BREVANTIS_ASN1_API void rtSListInitEx(ASN1CTXT* ctxt, Asn1RTSList* list) noexcept;

/// Appends a node for @p data.
/// @return the node, null when memory is out (the list is then unchanged) or @p list is null
BREVANTIS_ASN1_API Asn1RTSListNode* rtSListAppend(Asn1RTSList* list, void* data) noexcept;

/// Frees every node, leaves the elements alone and unbinds the list. A null list is ignored.
BREVANTIS_ASN1_API void rtSListFree(Asn1RTSList* list) noexcept;

#endif
