// The type table in a file: one line "%4d %s\n" for each type, then "@\n".
#include "Base/IO/ioPacketRegistry.h"

#include "Base/Containers/qvMap.h"
#include "Base/Containers/qvVector.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPacketEOF.h"
#include "Base/IO/ioPacketString.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace {

struct NameLess {
  bool operator()(const char* a, const char* b) const noexcept { return std::strcmp(a, b) < 0; }
};

constexpr int lineSize = 90;
constexpr std::string_view blanks = " \t\r\n\v\f";

/// Takes "%d %s" off a line. False where it does not parse; otherwise `name` is terminated in its place.
bool parseLine(char* line, int& number, const char*& name) {
  char* const end = line + std::strlen(line);
  line += std::strspn(line, blanks.data());
  const auto [rest, error] = std::from_chars(line, end, number);
  if (error != std::errc()) return false;
  char* const start = line + (rest - line) + std::strspn(rest, blanks.data());
  start[std::strcspn(start, blanks.data())] = '\0';
  name = start;
  return *start != '\0';
}

} // namespace

struct ioPacketRegistry::Tables {
  qv::vector<ioPacketType*> byId;
  qv::map<const char*, ioPacketType*, NameLess> byName; // the keys are the types' own names
  qv::vector<ioPacketType*> replaced;                   // gave way to a type of the same name
};

ioPacketRegistry::ioPacketRegistry(bool forReading)
    : tables_(std::make_unique<Tables>()), forReading_(forReading) {}

ioPacketRegistry::~ioPacketRegistry() {
  qv::vector<ioPacketType*> types = tables_->replaced;
  for (const auto& [name, type] : tables_->byName) types.append(type);
  tables_.reset(); // its keys die with the types
  for (ioPacketType* const type : types) delete type;
}

void ioPacketRegistry::init() {
  if (initialised_) return;
  supportedType(new ioPacketString);
  supportedType(new ioPacketEOF);
  registerAllTypes();
  initialised_ = true;
}

void ioPacketRegistry::supportedType(ioPacketType* type) { add(type, !forReading_); }

void ioPacketRegistry::add(ioPacketType* type, bool assign) {
  const auto found = tables_->byName.find(type->getName());
  if (found == tables_->byName.end())
    tables_->byName.insert_or_assign(type->getName(), type);
  else if (found->second != type)
    replace(found->second, type);
  if (!assign || type->id_ != -1) return;
  type->id_ = numTypes();
  tables_->byId.append(type);
}

/// The new type takes the number, so that a table never names a type twice.
void ioPacketRegistry::replace(ioPacketType* old, ioPacketType* type) {
  tables_->replaced.append(old);
  tables_->byName.erase(old->getName());
  tables_->byName.insert_or_assign(type->getName(), type);
  if (old->id_ < 0) return;
  type->id_ = old->id_;
  tables_->byId[type->id_] = type;
}

int ioPacketRegistry::numTypes() const noexcept { return tables_->byId.size(); }

ioPacketType* ioPacketRegistry::lookup(int id) const noexcept {
  return id >= 0 && id < numTypes() ? tables_->byId[id] : nullptr;
}

ioPacketType* ioPacketRegistry::lookup(const char* name) const noexcept {
  const auto found = tables_->byName.find(name);
  return found == tables_->byName.end() ? nullptr : found->second;
}

void ioPacketRegistry::writeRegistry(ioBufferedStreamOutput& stream, bool withNames) const {
  if (withNames)
    for (int id = 0; id < numTypes(); ++id) stream.printf("%4d %s\n", id, tables_->byId[id]->getName());
  stream.writeString("@\n");
}

ioStatus ioPacketRegistry::readRegistry(ioBufferedStreamInput& stream) {
  char line[lineSize];
  std::int64_t expected = 0;
  for (bool first = true;; first = false) {
    stream.readLine(line, lineSize);
    if (line[0] == '@') return stream.good() ? ioOK : ioFailed;
    if (!stream.good()) return ioFailed;
    int number = 0;
    const char* name = nullptr;
    if (!parseLine(line, number, name)) return ioBadData;
    // The first number may be any: only the order is checked.
    if (!first && number != expected) return ioBadData;
    expected = std::int64_t(number) + 1;
    ioPacketType* const type = lookup(name);
    add(type ? type : new ioPacketType(name), true);
  }
}
