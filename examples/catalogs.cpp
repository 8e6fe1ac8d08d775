// Prints the same messages in the languages of the catalogs that are named: catalogs FILE...
#include "Base/OS/qvOSNativePath.h"
#include "Base/String/qvStringTable.h"
#include "Base/String/qvStringTableCatalog.h"

#include <cstdio>

namespace {

using qvString::IString;

// Keys that are looked up often are made once.
const qvStringTable::Key helloKey("greeting.hello");
const qvStringTable::Key doneKey("save.done");
const qvStringTable::Key questionKey("save.question");

void print(const IString& text) { std::printf("  %s\n", text.asUTF8()); }

/// @return whether the catalog had a text for each message.
bool printMessages() {
  const qvStringTable::StringTable& table = qvStringTable::appStringTable();
  const IString name(QV_W("Ren\u00e9e"));
  IString text;
  bool known[3];
  text.format(&table.getString(helloKey, &known[0]), name.asWChar());
  print(text);
  text.format(&table.getString(doneKey, &known[1]), 3, 1.5);
  print(text);
  text.format(&table.getString(questionKey, &known[2]), QV_W("bridge"));
  print(text);
  // What no catalog has is the caller's to tell.
  print(table.getString("status.ready", IString(QV_W("(no text for this one)"))));
  return known[0] && known[1] && known[2];
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 2) return std::fputs("usage: catalogs FILE...\n", stderr), 2;
  for (int i = 1; i < argc; ++i) {
    const IString file = qvOS::fromNativePath(argv[i]);
    qvStringTable::appStringTable().clear();
    if (const qvUtil::Error error = qvStringTable::Manager::loadCatalog(file))
      return std::fputs(error.message(), stderr), 1;
    std::printf("%s\n", argv[i]);
    if (!printMessages()) return std::fputs("a text is missing\n", stderr), 1;
  }
  return 0;
}
