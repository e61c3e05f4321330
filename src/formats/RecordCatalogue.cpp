#include "formats/RecordCatalogue.h"

#include <cstring>

namespace hifx {

std::vector<std::unique_ptr<clsRecType>> BuildRecordTypes(const std::vector<RecordSpec>& specs, IShell* shell) {
  std::vector<std::unique_ptr<clsRecType>> types;
  types.reserve(specs.size());
  for (const RecordSpec& spec : specs) {
    auto type = std::make_unique<clsRecType>(shell);
    type->SetID(1, static_cast<int16_t>(std::strlen(spec.id)), spec.id);
    for (const FieldSpec& field : spec.fields) type->AddField(field.name, field.type, 0, field.length);
    types.push_back(std::move(type));
  }
  return types;
}

}  // namespace hifx
