#ifndef BREVANTIS_ASN1_RUNTIME_SINGLE_LIST_H
#define BREVANTIS_ASN1_RUNTIME_SINGLE_LIST_H

#include <brevantis/asn1/export.h>

/// @file
/// The singly linked list of the context and of the SET OF encoders.

struct ASN1CTXT;

/// Node of a singly linked list; the element stays the caller's.
struct Asn1RTSListNode {
    void* data;
    Asn1RTSListNode* next;
};

/// Singly linked list. Nodes come from the heap of `pctxt`, or from the process heap when it is
/// null.
struct Asn1RTSList {
    unsigned int count;
    Asn1RTSListNode* head;
    Asn1RTSListNode* tail;
    ASN1CTXT* pctxt;
};

/// Makes @p list empty and binds it to @p ctxt (which may be null). A null list is ignored.
BREVANTIS_ASN1_API void rtSListInitEx(ASN1CTXT* ctxt, Asn1RTSList* list) noexcept;

/// Appends a node for @p data.
/// @return the node, null when memory is out (the list is then unchanged) or @p list is null
BREVANTIS_ASN1_API Asn1RTSListNode* rtSListAppend(Asn1RTSList* list, void* data) noexcept;

/// Frees every node, leaves the elements alone and unbinds the list. A null list is ignored.
BREVANTIS_ASN1_API void rtSListFree(Asn1RTSList* list) noexcept;

#endif
