#pragma once

#include <string_view>

namespace sim {

/// The description of the HTTP interface, as it stands in openapi.json.
std::string_view openApi();

}  // namespace sim
