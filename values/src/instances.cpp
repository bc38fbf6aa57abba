// Every line of a header that declares an instance makes it here, see util/instances.h.
#define BREVANTIS_ASN1_INSTANCE template

#include <brevantis/asn1/values.h>
