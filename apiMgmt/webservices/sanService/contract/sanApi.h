// The contract of the service, for the code generator (soapcpp2): what travels on the wire
// between a host-cache cluster and the array. This file and those that it imports are no C++
// headers; the generator reads them and writes SanApiStub.h, SanApiH.h and their sources into the
// build directory.
//
// How to read a member: 1 after the name means that the element is required, 0 that it is
// optional; nullptr that it may be nil on the wire, which a null pointer becomes; a std::vector is an
// element repeated once per item. @ marks an attribute. A trailing underscore of a name, there to
// keep clear of keywords and other names, is not part of the name on the wire.
//
// /// above a class or an enumeration, and ///< behind a member, is documentation: clients read it in
// the service description (sanApi.wsdl), which is made of these definitions in the build. What
// stands above a request says what its operation does. Comments with // are for those who read here.
//
// The order of everything is part of the interface: namespace rows, children, values of
// enumerations, and the operations, from which come the order in which the dispatcher compares
// tags and the virtual slots of the skeleton.

// Used before the other imports so that its row of the namespace table comes before theirs.
//gsoap ns3 schema namespace: urn:san-api:version
//gsoap ns3 schema form: unqualified
#import "sanVersion.h"

#import "stlvector.h"
#import "xop.h"
#import "xmime.h"

//gsoap ns1 service name: SanApiPortBinding
//gsoap ns1 service namespace: urn:san-api:service
//gsoap ns1 service style: document
//gsoap ns1 service encoding: literal
//gsoap ns1 schema namespace: urn:san-api:service
//gsoap ns1 schema form: unqualified

#import "sanEnums.h"
#import "sanTypes.h"
#import "sanOtherTypes.h"
#import "sanHeader.h"
#import "sanOperations.h"
