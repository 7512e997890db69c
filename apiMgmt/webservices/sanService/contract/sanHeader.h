// The SOAP header of every message.

// clang-format off
// The schema version that a client was built against.
class ns1__HccApiXsd {
    @std::string                 version 0 = "2.3";
};

class ns1__HccApiHeader {
    ns1__HccApiXsd*              xsdVersion nullptr 1;
    xsd__base64Binary*           userPass 0;
    std::string*                 authToken 0;
};

// For the service description and the pointer's reader and writer; the class of this name that the
// engine uses comes from sanEnv.h.
struct SOAP_ENV__Header {
    ns1__HccApiHeader*           ns1__HccApiHeader_ 0;
};
// clang-format on
