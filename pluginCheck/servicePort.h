#pragma once

/// Makes this the port of the service-database entry "ostrel-apimgr" for the whole process,
/// plug-ins that are loaded later included.
void offerServicePort(int port);
