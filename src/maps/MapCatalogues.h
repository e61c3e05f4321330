// The built-in field catalogue of each map use, and the words the map's
// coded values are shown with.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace hifx {

struct CatalogueEntry {
  int32_t DataType;
  std::string_view FieldName;
  bool Required;
  double MinValue;
  double MaxValue;
  std::string_view Prompt;
};

// The fields of a use in their fixed order; none for an unknown use.
std::span<const CatalogueEntry> MapCatalogue(int32_t use);

// The words of a code, empty for a code that has none.
std::string_view MapTypeText(int32_t type);
std::string_view MapOptionText(int32_t option);
std::string_view MapFilterText(int32_t filter);
std::string_view MapTerminatorText(int32_t terminator);
std::string_view MapFormatText(int32_t format);

// The mapping options a field may be given, in the order they are offered.
std::vector<int32_t> OfferedMapOptions(int32_t use, std::string_view fieldName);

}  // namespace hifx
