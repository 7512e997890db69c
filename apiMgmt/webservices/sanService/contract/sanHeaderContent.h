#pragma once
// The content of the SOAP header, as the generated code of the header sees it. Only that code
// includes this file; everything else includes sanContract.h.
#include <stdsoap2.h>

// The generated messages switch off what the engine declares outside namespaces. Header and fault
// belong there, so it is switched on again behind them.
#include "SanApiH.h"
#undef WITH_NOGLOBAL

using SanApi::ns1__HccApiHeader;  // NOLINT(bugprone-reserved-identifier): generated name
