// qvpacket: shows what is in packet files.
#include "dump.h"
#include "graph.h"
#include "info.h"
#include "tool.h"

namespace {

const char* const usage = R"(usage:
  qvpacket info  FILE                     show how the file is written, its types, and how much there is of each
  qvpacket dump  FILE [-json] [-limit N]  show every packet, or the first N
  qvpacket graph FILE                     show objects and references of a file with type tags, for Graphviz
  qvpacket help                           show this

Every command takes:
  -entry NAME                             FILE is a package; read its entry of that name
  -compress, -checksum                    the packet file was written through these filters

A packet is shown as its bytes where the file has no type tags. What stands in front of damage is shown. A word after
"--" is never an option. Exit status: 0 done, 1 something failed or is damaged, 2 wrong usage.
)";

constexpr Command commands[] = {
    {"info", 1, 1, "entry compress checksum"},
    {"dump", 1, 1, "entry compress checksum json limit"},
    {"graph", 1, 1, "entry compress checksum"},
};

constexpr Option options[] = {
    {"entry", true}, {"compress", false}, {"checksum", false}, {"json", false}, {"limit", true}};

std::string problemOf(const CommandLine& line) {
  const std::string limit = line.wordOf("limit").value_or("0");
  const bool isNumber = limit.find_first_not_of("0123456789") == limit.npos && limit.size() <= 18;
  return isNumber ? "" : "this is no number of packets: " + limit;
}

void run(const CommandLine& line) {
  if (line.command == "info") tellAboutFile(line);
  if (line.command == "dump") dumpPackets(line);
  if (line.command == "graph") drawGraph(line);
}

} // namespace

int main(int argc, char** argv) {
  return runTool({"qvpacket", usage, commands, options, problemOf, run}, argc, argv);
}
