#pragma once

#include "stdsoap2.h"

namespace client {

/// Opens a connection for `context` with `open`, a function of the engine, and gives up after so
/// many seconds: for the look-up of the name, all its addresses and the greeting of TLS together.
/// Gives the socket, or an invalid one with the error on the context.
SOAP_SOCKET openWithin(soap& context, decltype(soap::fopen) open, const char* endpoint,
                       const char* host, int port, double seconds);

}  // namespace client
