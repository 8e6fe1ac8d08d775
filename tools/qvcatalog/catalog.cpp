#include "catalog.h"

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringFormatArguments.h"
#include "Base/String/qvStringTable.h"
#include "Base/String/qvStringTableCatalog.h"

namespace {

using Arguments = qv::vector<qvString::CString>;

/// The arguments of a format as a person reads them.
std::string listed(const Arguments& arguments) {
  std::string text;
  for (const qvString::CString& argument : arguments) text += std::string(" ") + argument.asChar();
  return text.empty() ? " nothing" : text;
}

/// What is wrong with a text; nothing where it can take the reference's place.
std::string problemOf(const qvString::IString& reference, const qvString::IString& text) {
  const Arguments wanted = qvString::formatArguments(reference.asWChar());
  const Arguments taken = qvString::formatArguments(text.asWChar());
  return taken == wanted ? "" : "takes" + listed(taken) + ", and the reference takes" + listed(wanted);
}

} // namespace

qvUtil::Error readCatalog(const qvString::IString& file, Catalog& catalog) {
  qvStringTable::StringTable& table = qvStringTable::appStringTable();
  table.clear();
  qvUtil::Error error = qvStringTable::Manager::loadCatalog(file);
  qv::vector<qvStringTable::Key> keys;
  table.getKeys([](const qvStringTable::Key&, const qvStringTable::Key&) { return 0; }, {}, keys);
  for (const qvStringTable::Key& key : keys) catalog[key.value().asChar()] = table.getString(key);
  return error;
}

std::vector<Finding> compare(const Catalog& reference, const Catalog& translation) {
  std::vector<Finding> findings;
  auto wanted = reference.begin();
  auto given = translation.begin();
  while (wanted != reference.end() || given != translation.end()) {
    if (given == translation.end() || (wanted != reference.end() && wanted->first < given->first)) {
      findings.push_back({wanted++->first, "missing"});
    } else if (wanted == reference.end() || given->first < wanted->first) {
      findings.push_back({given++->first, "left over"});
    } else {
      if (std::string problem = problemOf(wanted->second, given->second); !problem.empty())
        findings.push_back({given->first, std::move(problem)});
      ++wanted;
      ++given;
    }
  }
  return findings;
}
