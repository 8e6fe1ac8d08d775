// Catalogs as the checks see them.
#pragma once

#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

#include <map>
#include <string>
#include <vector>

/// Texts by key.
using Catalog = std::map<std::string, qvString::IString>;

/// Reads a catalog file into `catalog`.
[[nodiscard]] qvUtil::Error readCatalog(const qvString::IString& file, Catalog& catalog);

/// What a key of a translation is wrong with.
struct Finding {
  std::string key;
  std::string problem;
};

/// Compares a translation with the reference: keys that are missing or left over, and texts whose formats ask
/// for other arguments. In the order of the keys.
[[nodiscard]] std::vector<Finding> compare(const Catalog& reference, const Catalog& translation);
