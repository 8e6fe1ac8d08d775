#include "graph.h"

#include "describe.h"
#include "input.h"
#include "printable.h"
#include "references.h"
#include "walk.h"

#include <cinttypes>
#include <cstdio>

namespace {

std::string objectName(std::uint64_t number) { return "object" + std::to_string(number); }

/// Every object that some packet defines has a statement of its own; what is only referred to stays dashed.
class Graph final : public ReferenceVisitor {
public:
  Graph() { std::puts("digraph packets {\n  node [shape=box, style=dashed];"); }

private:
  void finish() override {
    if (hiddenBytes_ > 0)
      std::printf("  // %" PRId64 " bytes cannot be told apart, and may hold more references\n",
                  hiddenBytes_);
    std::puts("}");
  }

  void startFile(const FileHeader& header) override {
    ReferenceVisitor::startFile(header);
    if (!header.isTagged()) throw Damage{0, "references cannot be told from other values without type tags"};
  }

  void meet(const Packet& packet) override {
    type_ = typeText(header_, packet.id);
    offset_ = packet.offset;
    node_.clear();
  }

  void define(std::uint64_t object) override {
    node_ = objectName(object);
    printNode(type_ + " " + std::to_string(object));
  }

  void refer(std::uint64_t object) override {
    if (node_.empty()) { // a packet that is no object itself
      node_ = "packet" + std::to_string(offset_);
      printNode(type_ + " at " + std::to_string(offset_));
    }
    std::printf("  %s -> %s;\n", node_.c_str(), objectName(object).c_str());
  }

  void printNode(const std::string& label) const {
    std::printf("  %s [label=%s, style=solid];\n", node_.c_str(), quoted(label).c_str());
  }

  std::string type_;
  std::int64_t offset_ = 0;
  std::string node_; // of the packet; empty until it has one
};

} // namespace

void drawGraph(const CommandLine& line) {
  Input input;
  if (!input.open(line)) return;
  Graph graph;
  walk(input, graph);
}
