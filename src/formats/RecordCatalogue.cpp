#include "formats/RecordCatalogue.h"

#include <cstring>

#include "base/Failure.h"

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

void RecordKinds::Add(clsRecType* type) {
  if (type->IDStart != 1 || type->IDText.empty()) throw Failure(fail::kInvalidCall);
  byFirstByte_[static_cast<unsigned char>(type->IDText.front())].push_back(type);
}

}  // namespace hifx
