#include <brevantis/asn1/runtime/status.h>

#include <cstdio>

const char* rtStatusName(int status) noexcept {
    if (status >= 0) {
        return "ASN1S_SUCCESS";
    }
    switch (status) {
    case ASN1S_BUFFER_OVERFLOW:
        return "ASN1S_BUFFER_OVERFLOW";
    case ASN1S_END_OF_BUFFER:
        return "ASN1S_END_OF_BUFFER";
    case ASN1S_TAG_NOT_FOUND:
        return "ASN1S_TAG_NOT_FOUND";
    case ASN1S_INVALID_OBJID:
        return "ASN1S_INVALID_OBJID";
    case ASN1S_INVALID_LENGTH:
        return "ASN1S_INVALID_LENGTH";
    case ASN1S_INVALID_ENUM:
        return "ASN1S_INVALID_ENUM";
    case ASN1S_DUPLICATE_SET_MEMBER:
        return "ASN1S_DUPLICATE_SET_MEMBER";
    case ASN1S_MISSING_ELEMENT:
        return "ASN1S_MISSING_ELEMENT";
    case ASN1S_UNKNOWN_SET_MEMBER:
        return "ASN1S_UNKNOWN_SET_MEMBER";
    case ASN1S_EXTRA_ELEMENT:
        return "ASN1S_EXTRA_ELEMENT";
    case ASN1S_INVALID_CHOICE:
        return "ASN1S_INVALID_CHOICE";
    case ASN1S_NO_MEMORY:
        return "ASN1S_NO_MEMORY";
    case ASN1S_STRING_OVERFLOW:
        return "ASN1S_STRING_OVERFLOW";
    case ASN1S_BAD_VALUE:
        return "ASN1S_BAD_VALUE";
    case ASN1S_BAD_TAG:
        return "ASN1S_BAD_TAG";
    case ASN1S_CONSTRAINT_VIOLATION:
        return "ASN1S_CONSTRAINT_VIOLATION";
    case ASN1S_RANGE_ERROR:
        return "ASN1S_RANGE_ERROR";
    case ASN1S_INVALID_UTF8:
        return "ASN1S_INVALID_UTF8";
    case ASN1S_CONCURRENT_MODIFICATION:
        return "ASN1S_CONCURRENT_MODIFICATION";
    case ASN1S_ILLEGAL_STATE:
        return "ASN1S_ILLEGAL_STATE";
    case ASN1S_OUT_OF_BOUNDS:
        return "ASN1S_OUT_OF_BOUNDS";
    case ASN1S_INVALID_PARAMETER:
        return "ASN1S_INVALID_PARAMETER";
    case ASN1S_INVALID_FORMAT:
        return "ASN1S_INVALID_FORMAT";
    case ASN1S_NOT_INITIALISED:
        return "ASN1S_NOT_INITIALISED";
    case ASN1S_VALUE_TOO_BIG:
        return "ASN1S_VALUE_TOO_BIG";
    case ASN1S_NOT_SUPPORTED:
        return "ASN1S_NOT_SUPPORTED";
    default:
        return "unknown status";
    }
}

int rtErrSetData(ASN1ErrInfo* errInfo, int status, const char* /*module*/, int /*line*/) noexcept {
    if (errInfo->status == 0) {
        errInfo->status = status;
    }
    return status;
}

int rtErrReset(ASN1ErrInfo* errInfo) noexcept {
    errInfo->status = 0;
    return 0;
}

int rtErrCopyData(ASN1ErrInfo* source, ASN1ErrInfo* target) noexcept {
    target->status = source->status;
    return target->status;
}

int rtErrAddIntParm(ASN1ErrInfo* /*errInfo*/, int /*value*/) noexcept {
    return 1;
}

int rtErrAddStrParm(ASN1ErrInfo* /*errInfo*/, const char* /*text*/) noexcept {
    return 1;
}

const char* rtErrGetText(ASN1ErrInfo* /*errInfo*/) noexcept {
    return "";
}

int rtErrPrint(ASN1ErrInfo* errInfo) noexcept {
    return std::printf("ASN.1 ERROR: Status %d\n", errInfo->status);
}
