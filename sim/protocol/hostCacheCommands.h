#pragma once

#include <string>

/// The commands of a host-cache cluster: each takes what it needs from the request, works on
/// the state, and gives the value element of the reply. They raise Refusal.
namespace sim {

struct ApiRequest;
class ArrayState;

std::string ping(ArrayState& state, const ApiRequest& request);
std::string addHccToSan(ArrayState& state, const ApiRequest& request);
std::string removeHccFromSan(ArrayState& state, const ApiRequest& request);
std::string renameHccInSan(ArrayState& state, const ApiRequest& request);
std::string newPrimaryCfmAddress(ArrayState& state, const ApiRequest& request);
std::string addServer(ArrayState& state, const ApiRequest& request);
std::string removeServer(ArrayState& state, const ApiRequest& request);
/// Its value is the record with both SCSI identities of the volume.
std::string hccAttachVolume(ArrayState& state, const ApiRequest& request);
std::string hccDetachVolume(ArrayState& state, const ApiRequest& request);
std::string makeDataAvailable(ArrayState& state, const ApiRequest& request);
std::string makeDataUnavailable(ArrayState& state, const ApiRequest& request);
std::string flushComplete(ArrayState& state, const ApiRequest& request);
std::string snapshotPrepareComplete(ArrayState& state, const ApiRequest& request);

}  // namespace sim
