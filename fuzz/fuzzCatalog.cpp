// A string catalog: it loads or tells why it does not, and all that it stored has a key that is valid. Texts
// are walked as formats.
#include "Base/String/qvStringFormatArguments.h"
#include "Base/String/qvStringTable.h"
#include "Base/String/qvStringTableCatalog.h"
#include "fuzz/scratchFile.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qvStringTable;
  static const ScratchFile scratch;
  scratch.write(data, size);
  StringTable& table = appStringTable();
  table.clear();
  const qvUtil::Error error = Manager::loadCatalog(scratch.name());
  if (error && error.num() != 3 && error.num() != 5) std::abort();
  qv::vector<Key> keys;
  if (table.getKeys([](const Key&, const Key&) { return 0; }, Key(), keys) != table.size()) std::abort();
  for (const Key& key : keys) {
    if (!Key::isValidKeyString(key.value())) std::abort();
    static_cast<void>(qvString::formatArguments(table.getString(key).asWChar()));
  }
  return 0;
}
