// The SOAP header of every message.

// clang-format off
/// The schema version that the sender was built against.
class ns1__HccApiXsd {
    @std::string                 version 0 = "2.3";
};

/// Goes with every message. A request names its version and, but for Ping, its credentials or a
/// token; a reply brings the service's version and neither.
class ns1__HccApiHeader {
    ns1__HccApiXsd*              xsdVersion nullptr 1;
    xsd__base64Binary*           userPass 0;   ///< the base64 text of user:password, which this type encodes once more
    std::string*                 authToken 0;  ///< in place of credentials
};

// For the service description and the pointer's reader and writer; the class of this name that the
// engine uses comes from sanEnv.h.
struct SOAP_ENV__Header {
    ns1__HccApiHeader*           ns1__HccApiHeader_ 0;
};
// clang-format on
