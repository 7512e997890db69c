#pragma once

#include <nlohmann/json.hpp>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"

namespace client {

/// Keeps its members in the order in which they travel.
using Json = nlohmann::ordered_json;

// The contents of a reply with the names that its elements have on the wire; an element that is
// nil is null.
Json toJson(const SanApi::ns1__resultObject* result);
Json toJson(const SanApi::ns1__void* nothing);
Json toJson(const SanApi::ns1__scsiInfo* identity);

/// A reply as an object. Valid for every reply of the contract's served operations.
template <class Reply>
Json replyJson(const Reply& reply) {
    return {{"return", toJson(reply.return_)}};
}

inline Json replyJson(const SanApi::ns1__HccAttachVolumeResponse& reply) {
    return {{"origScsiInfo", toJson(reply.origScsiInfo)},
            {"aliasScsiInfo", toJson(reply.aliasScsiInfo)}};
}

}  // namespace client
