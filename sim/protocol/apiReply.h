#pragma once

#include <string>
#include <string_view>

#include "sim/array/refusal.h"

namespace protoIPCMsg {
class GPBIPCMsg;
}

/// The reply side of the management API: documents and the IPC message around them.
namespace sim {

/// One value element of a reply, such as "<ReturnBool>True</ReturnBool>".
std::string returnTrue();

/// The ApiMethodReturn element of a method that did its work; `value` is its value element.
std::string successReturn(std::string_view value);

/// The ApiMethodReturn element of a method that was refused.
std::string failureReturn(std::string_view code, std::string_view error, std::string_view localized,
                          std::string_view detail);
std::string failureReturn(const Refusal& refusal);

/// A whole reply document around ApiMethodReturn elements.
std::string replyDocument(std::string_view methodReturns);

/// Makes `message` the API response that carries the document.
void fillReply(std::string document, protoIPCMsg::GPBIPCMsg& message);

}  // namespace sim
