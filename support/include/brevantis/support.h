#ifndef BREVANTIS_SUPPORT_H
#define BREVANTIS_SUPPORT_H

/// @file
/// The base that the value classes stand on: octets, text, times, code pages and the exception.

#include <brevantis/support/blob.h>
#include <brevantis/support/code_page.h>
#include <brevantis/support/date_time.h>
#include <brevantis/support/error.h>
#include <brevantis/support/text.h>

#endif
