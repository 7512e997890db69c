/* Calls a plug-in's serve function so that no C++ exception leaves it. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

struct soap;

/* Gives true when the function came back, with what it gave in `status`. When an exception left
 * it, gives false, with the mangled name of the exception's type (static storage) in `type`. */
int soapServeGuarded(int (*serve)(struct soap*), struct soap* context, int* status,
                     const char** type);

#ifdef __cplusplus
}
#endif
