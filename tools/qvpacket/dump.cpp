#include "dump.h"

#include "describe.h"
#include "input.h"
#include "print.h"
#include "printable.h"
#include "walk.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace {

// ---- for people ----

class PlainDump final : public Visitor {
  void startFile(const FileHeader& header) override {
    header_ = header;
    std::printf("%s, %zu types\n", describe(header).c_str(), header.types.size());
  }

  void startPacket(const Packet& packet) override {
    indentation_ = 2;
    std::printf("%" PRId64 ": %s, reference mode %d, %" PRId64 " bytes%s\n", packet.offset,
                typeText(header_, packet.id).c_str(), packet.mode, packet.size,
                packet.tooLarge ? ", too many to be shown" : "");
  }

  void open(Container container) override {
    line(container == Container::chunk ? "chunk" : "sub-packet");
    indentation_ += 2;
  }
  void close() override { indentation_ -= 2; }

  void value(const char* kind, const Scalar& scalar) override {
    indent();
    std::printf("%s ", kind);
    printScalar(scalar, quoted);
    std::putchar('\n');
  }
  void array(const char* kind) override { line(kind); }

  void bytes(std::string_view bytes, std::int64_t offset, const char* why) override {
    if (why) line(std::to_string(bytes.size()) + " bytes, as they are: " + why);
    header_.isText() ? showLines(bytes) : showHex(bytes, offset);
  }

  void showLines(std::string_view text) const {
    while (!text.empty()) {
      const std::string_view first = text.substr(0, text.find('\n'));
      text.remove_prefix(std::min(first.size() + 1, text.size()));
      if (first.find_first_not_of(' ') == first.npos) continue;
      indent();
      printText(first);
      std::putchar('\n');
    }
  }

  void showHex(std::string_view bytes, std::int64_t offset) const {
    constexpr std::size_t width = 16;
    while (!bytes.empty()) {
      std::string text(bytes.substr(0, width));
      const int unused = static_cast<int>(3 * (width - text.size()));
      indent();
      std::printf("%" PRId64 ":", offset);
      printHex(text, " ");
      std::replace_if(
          text.begin(), text.end(), [](char c) { return c < 0x20 || c >= 0x7F; }, '.');
      std::printf("%*s  %s\n", unused, "", text.c_str());
      bytes.remove_prefix(text.size());
      offset += width;
    }
  }

  void indent() const { std::printf("%*s", indentation_, ""); }
  void line(const std::string& text) const { std::printf("%*s%s\n", indentation_, "", text.c_str()); }

  FileHeader header_;
  int indentation_ = 0;
};

// ---- for programs ----

class JsonDump final : public Visitor {
  void startFile(const FileHeader& header) override {
    header_ = header;
    std::string types;
    for (const std::string& type : header.types) types += (types.empty() ? "" : ",") + jsonString(type);
    std::printf("{\"littleEndian\":%s,\"method\":%d,\"types\":[%s]}\n",
                header.littleEndian ? "true" : "false", header.method, types.c_str());
  }

  void startPacket(const Packet& packet) override {
    const std::string name = header_.nameOf(packet.id);
    std::printf("{\"offset\":%" PRId64 ",\"id\":%d,\"type\":%s,\"mode\":%d,\"size\":%" PRId64 ",%s",
                packet.offset, packet.id, name.empty() ? "null" : jsonString(name).c_str(), packet.mode,
                packet.size, packet.tooLarge ? "\"tooLarge\":true," : "");
    list("\"items\":[");
  }
  void endPacket() override { std::fputs("]}\n", stdout); }

  void open(Container container) override {
    separate();
    list(container == Container::chunk ? "{\"chunk\":[" : "{\"subpacket\":[");
  }
  void close() override {
    std::fputs("]}", stdout);
    isFirst_ = false;
  }

  void value(const char* kind, const Scalar& scalar) override {
    separate();
    std::printf("{\"kind\":\"%s\",\"value\":", kind);
    printScalar(scalar, jsonString);
    std::putchar('}');
  }
  void array(const char* kind) override {
    separate();
    std::printf("{\"kind\":\"%s\"}", kind);
  }

  void bytes(std::string_view bytes, std::int64_t, const char*) override {
    separate();
    std::fputs("{\"bytes\":\"", stdout);
    printHex(bytes, "");
    std::fputs("\"}", stdout);
  }

  void list(const char* begin) {
    std::fputs(begin, stdout);
    isFirst_ = true;
  }
  void separate() {
    if (!isFirst_) std::putchar(',');
    isFirst_ = false;
  }

  FileHeader header_;
  bool isFirst_ = true; // in the innermost list
};

} // namespace

void dumpPackets(const CommandLine& line) {
  Input input;
  if (!input.open(line)) return;
  const std::optional<std::string> limit = line.wordOf("limit");
  PlainDump plain;
  JsonDump json;
  walk(input, line.has("json") ? static_cast<Visitor&>(json) : plain, limit ? std::stoll(*limit) : noLimit);
}
