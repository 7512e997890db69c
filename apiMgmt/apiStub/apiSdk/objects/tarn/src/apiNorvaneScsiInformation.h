#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

/// The two SCSI identities of a cached volume: the array's own, and the alias under which the
/// host presents it.
class APINorvaneScsiInformation : public BASEApiMethodObject {
    API_METHOD_OBJECT(NorvaneScsiInformation);
    // clang-format off
    //            XML name                  display name                   kind    code bounds
    API_ATTRIBUTE(AliasScsiDeviceId,        "Alias Scsi Device Id",        STRING, 20,  AtLeast(1));
    API_ATTRIBUTE(AliasScsiSerialNumber,    "Alias Scsi Serial Number",    STRING, 21,  AtLeast(1));
    API_ATTRIBUTE(OriginalScsiDeviceId,     "Original Scsi Device Id",     STRING, 20,  AtLeast(1));
    API_ATTRIBUTE(OriginalScsiSerialNumber, "Original Scsi Serial Number", STRING, 24,  AtLeast(0));
    // clang-format on
    API_ATTRIBUTE_LIST(AliasScsiDeviceId, AliasScsiSerialNumber, OriginalScsiDeviceId,
                       OriginalScsiSerialNumber);
};
