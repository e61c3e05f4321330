#include "formats/RecordCatalogue.h"

#include <cstring>

namespace hifx {

std::vector<std::unique_ptr<clsRecType>> BuildRecordTypes(const std::vector<RecordLayout>& layouts, IShell* shell) {
  std::vector<std::unique_ptr<clsRecType>> types;
  types.reserve(layouts.size());
  for (const RecordLayout& layout : layouts) {
    auto type = std::make_unique<clsRecType>(shell);
    type->SetID(1, static_cast<int16_t>(std::strlen(layout.id)), layout.id);
    for (const FieldLayout& field : layout.fields) type->AddField(field.name, field.type, 0, field.length);
    types.push_back(std::move(type));
  }
  return types;
}

}  // namespace hifx
