#include "core/names/NameStoreError.h"

#include <utility>

namespace lumnara {

NameStoreError::NameStoreError(Case which, std::string sentence)
    : Failure(std::move(sentence)),
      which_(which) {}

NameStoreError NameStoreError::unsupportedSchema(std::int64_t version) {
    return {Case::unsupportedSchema,
            "desktops.json uses schema " + std::to_string(version) + ", which this version cannot read."};
}

NameStoreError NameStoreError::notLoaded(std::string reason) {
    return {Case::notLoaded,
            "desktops.json could not be read: " + reason + ". Names are not being saved until it can."};
}

} // namespace lumnara
