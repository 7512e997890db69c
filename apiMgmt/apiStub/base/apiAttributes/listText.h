#pragma once

#include <string>
#include <vector>

/// What the list kinds share: items joined with a separator, which an item escapes.
inline constexpr const char* kListSeparator = ":";
inline constexpr const char* kEscapedListSeparator = "-co-";

std::string joinItems(const std::vector<std::string>& items, const std::string& separator);
void escapeListItem(std::string& item);
void unescapeListItem(std::string& item);
