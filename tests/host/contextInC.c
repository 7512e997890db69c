#include "tests/host/contextInC.h"

#include "host/include/soapInterface.h"
#include "tests/host/contextMembers.h"

const struct contextMember* contextMembersInC(void) {
    return contextMembers;
}
