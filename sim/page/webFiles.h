#pragma once

#include <span>
#include <string_view>

namespace sim {

/// A file of the page, as it is in sim/page.
struct WebFile {
    std::string_view path;  // on the server
    std::string_view type;
    std::string_view content;
};

std::span<const WebFile> webFiles();

}  // namespace sim
