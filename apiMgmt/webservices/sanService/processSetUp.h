#pragma once

/// Does early what the first request of a process would otherwise do: starts the secure transport
/// library of the engine, which alone takes as long as fifty requests; looks up the API manager's
/// port; makes the lists and parsers that are made on first use. Called in the server's parent
/// process, so that its children have it all from their start. Each call renews the port, since a
/// server reads its configuration anew without starting anew. Raises nothing: what fails here is
/// done later.
void setUpProcess();

/// Does the same for a thread: its own data, and what the C++ library and protobuf make with its
/// first exception and message. The C library ends the process when there is no memory for those,
/// so it is taken before it is scarce. Costs a look from the second call on. Compiled to come with
/// the thread (-ftls-model=initial-exec), only ten plug-ins could ever be loaded, one behind the
/// other.
void setUpThread();
