#include <stddef.h>

#include "host/include/soapInterface.h"
#include "tests/host/contextLayout.h"

const struct contextMember* contextLayoutInC(void);
const struct contextMember* contextLayoutInC(void) {
    return contextLayout;
}
