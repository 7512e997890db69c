#pragma once
// The engine's context as the module's C code sees it; a part of contextLayoutTest.
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/// A member that the module sets, or that lies where a difference of macros would show.
struct contextMember {
    const char* name;
    size_t offset;
};

/// Ends with a member without name; its offset is the size of the whole.
const struct contextMember* contextMembersInC(void);

#ifdef __cplusplus
}
#endif
