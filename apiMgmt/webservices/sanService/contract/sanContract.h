#pragma once
// What travels on the wire, as generated classes: messages, data objects and enumerations
// (SanApi::ns1__Ping, SanApi::ns1__IpAddressPort, ...), their readers and writers, the SOAP header
// and fault, the namespace table, and the skeleton SanApi::SanApiPortBindingService from which the
// service derives. The contract is written in sanApi.h beside this file.
//
// A reader for one message, as a test or tool needs it:
//
//     soap* context = soap_new1(SOAP_C_UTFSTRING);
//     SanApi::ns1__Ping ping;
//     context->is = &stream;
//     SanApi::soap_read_ns1__Ping(context, &ping);
//     soap_destroy(context);  // deletes objects that the context made
//     soap_end(context);      // frees its other memory
//     soap_free(context);
//
// SAN_API_OPERATIONS(OPERATION) expands to OPERATION(AddHccToSan) and so on, for each operation
// that is served, in the skeleton's order.
//
// Pointers inside a message that was read belong to the context and live until soap_destroy and
// soap_end. An enumeration holds any int: a number without a name travels as its decimal text.
#include "apiMgmt/webservices/sanService/contract/sanHeaderContent.h"

#include "SanApiOperations.h"
#include "SanApiSanApiPortBindingService.h"
#include "envStub.h"
