// The SOAP header and fault of the engine, for the code generator: a definition of its own, since
// the engine wants them outside every namespace while all messages live in SanApi. The header's
// content comes from the definition of the messages; sanHeaderContent.h brings it in and hands its
// reading and writing on.

//gsoap ns1 schema namespace: urn:san-api:service
#include "apiMgmt/webservices/sanService/contract/sanHeaderContent.h"

class ns1__HccApiHeader;
extern typedef ns1__HccApiHeader* ns1__HccApiHeaderPointer;

struct SOAP_ENV__Header {
    ns1__HccApiHeaderPointer ns1__HccApiHeader_ 0;
};
