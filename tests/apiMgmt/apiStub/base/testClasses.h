#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiObject.h"

// Small classes of the kinds that the stub deals with, registered like those of the SDK.

class APIThing : public BASEApiObject {
    API_OBJECT(Thing);
    // clang-format off
    //            XML name display name kind    code bounds
    API_ATTRIBUTE(Name,    "Name",      STRING, 20,  NoBounds);
    API_ATTRIBUTE(Notes,   "Notes",     STRING, 20,  NoBounds);
    // clang-format on
    API_ATTRIBUTE_LIST_THEN(BASEApiObject, Name, Notes);
};

class APIOther : public BASEApiObject {
    API_OBJECT(Other);
    API_ATTRIBUTE(Size, "Size", INT, 20, NoBounds);
    API_ATTRIBUTE_LIST(Size);
};

class APIInner : public BASEApiMethodObject {
    API_METHOD_OBJECT(Inner);
    API_ATTRIBUTE(Deep, "Deep", STRING, 20, NoBounds);
    API_ATTRIBUTE_LIST(Deep);
};

class APIRecord : public BASEApiMethodObject {
    API_METHOD_OBJECT(Record);
    // clang-format off
    //            XML name display name kind                    code bounds
    API_ATTRIBUTE(Label,   "Label",     STRING,                 20,  NoBounds);
    API_ATTRIBUTE(Inner,   "Inner",     METHODOBJECT<APIInner>, 20);
    // clang-format on
    API_ATTRIBUTE_LIST(Label, Inner);
};

class APIThingSetMethod : public BASEApiMethod {
    API_METHOD(Thing, Set, true, Reporter);
    // clang-format off
    //            XML name display name kind                     code bounds
    API_ATTRIBUTE(Name,    "Name",      STRING,                  20,  NoBounds);
    API_ATTRIBUTE(Notes,   "Notes",     STRING,                  20,  NoBounds);
    API_ATTRIBUTE(Record,  "Record",    METHODOBJECT<APIRecord>, 20);
    // clang-format on
    API_ATTRIBUTE_LIST(Name, Notes, Record);
};
