#include "info.h"

#include "describe.h"
#include "input.h"
#include "references.h"
#include "walk.h"

#include <cinttypes>
#include <cstdio>
#include <map>

namespace {

struct Count {
  std::int64_t packets = 0;
  std::int64_t bytes = 0;
  std::int64_t defined = 0;
  std::int64_t references = 0;
};

class Info final : public ReferenceVisitor {
  void finish() override { print(); }

  /// Prints what was counted since a file began.
  void print() {
    if (!hasFile_) return;
    std::printf("%s\n%6s %10s %14s %10s %10s  %s\n", describe(header_).c_str(), "number", "packets", "bytes",
                "objects", "references", "type");
    for (int id = 0; id < static_cast<int>(header_.types.size()); ++id) counts_[id];
    Count total;
    for (const auto& [id, count] : counts_) {
      printLine(std::to_string(id), count, typeText(header_, id));
      total.packets += count.packets;
      total.bytes += count.bytes;
      total.defined += count.defined;
      total.references += count.references;
    }
    printLine("", total, "in all");
    if (hiddenBytes_ > 0)
      std::printf("%" PRId64 " bytes cannot be told apart, and may hold more references\n", hiddenBytes_);
  }

  void startFile(const FileHeader& header) override {
    print();
    ReferenceVisitor::startFile(header);
    hasFile_ = true;
    counts_.clear();
    hiddenBytes_ = 0;
  }

  void meet(const Packet& packet) override {
    current_ = &counts_[packet.id];
    ++current_->packets;
    current_->bytes += packet.size;
    current_->defined += packet.mode == 1;
  }
  void refer(std::uint64_t) override { ++current_->references; }

  void printLine(const std::string& number, const Count& count, const std::string& type) const {
    const std::string references = header_.isTagged() ? std::to_string(count.references) : "-";
    std::printf("%6s %10" PRId64 " %14" PRId64 " %10" PRId64 " %10s  %s\n", number.c_str(), count.packets,
                count.bytes, count.defined, references.c_str(), type.c_str());
  }

  bool hasFile_ = false;
  std::map<int, Count> counts_; // by the number of the type
  Count* current_ = nullptr;
};

} // namespace

void tellAboutFile(const CommandLine& line) {
  Input input;
  if (!input.open(line)) return;
  Info info;
  walk(input, info);
}
