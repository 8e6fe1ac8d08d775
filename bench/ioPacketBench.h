// What the benchmarks of packet files have in common: objects that point to the object before them, or to any
// other, most of which are read long before or after; and who writes them to memory and reads them back.
#pragma once

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "Base/OS/qvOSIOStream.h"
#include "bench/qvBench.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

#include <malloc.h>

#ifdef BENCH_BoostSerialization
#include <boost/serialization/tracking.hpp>
#endif

namespace qvBench {

inline constexpr int objectCount = 1'000'000;

struct Object {
  int id;
  double x, y, z;
  Object* next;

  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& id& x& y& z& next;
  }
};

// The graph as it is given to everybody: object i points to object next[i].
struct Graph {
  std::vector<std::unique_ptr<Object>> objects;
  std::vector<int> next;
};

inline Graph makeGraph(std::vector<int> next) {
  Graph graph;
  for (std::size_t i = 0; i < next.size(); ++i) {
    const auto number = static_cast<double>(i);
    graph.objects.push_back(
        std::make_unique<Object>(Object{static_cast<int>(i), number / 3, number / 5, number / 7, nullptr}));
  }
  for (std::size_t i = 0; i < next.size(); ++i)
    graph.objects[i]->next = next[i] < 0 ? nullptr : graph.objects[static_cast<std::size_t>(next[i])].get();
  graph.next = std::move(next);
  return graph;
}

inline const Graph& near() {
  static const Graph graph = [] {
    std::vector<int> next;
    for (int i = 0; i < objectCount; ++i) next.push_back(i - 1);
    return makeGraph(std::move(next));
  }();
  return graph;
}

inline const Graph& anywhere() {
  static const Graph graph = [] {
    std::vector<int> next;
    for (const std::uint64_t number : randomNumbers(objectCount, 6))
      next.push_back(static_cast<int>(number % objectCount));
    return makeGraph(std::move(next));
  }();
  return graph;
}

// What the process has got from the system it keeps, so that nobody is measured for the zeroing of pages.
inline const bool keepsMemory = mallopt(M_MMAP_MAX, 0) && mallopt(M_TRIM_THRESHOLD, -1);

// Where all write to and read from: memory that is there beforehand.
class Memory : public qvOS::IOStream, public std::streambuf {
public:
  explicit Memory(std::size_t capacity) : bytes_(capacity, '\0') {}

  void clear() { size_ = 0; }
  void rewind() { setg(bytes_.data(), bytes_.data(), bytes_.data() + size_); }

  qvUtil::Error read(void* bytes, std::uint64_t size, std::uint64_t* count) override {
    *count = static_cast<std::uint64_t>(sgetn(static_cast<char*>(bytes), static_cast<std::streamsize>(size)));
    return *count < size ? qvUtil::Error(3, "End Of File") : qvUtil::Error();
  }
  qvUtil::Error write(const void* bytes, std::uint64_t size, std::uint64_t*) override {
    append(bytes, size);
    return {};
  }

protected:
  std::streamsize xsputn(const char* bytes, std::streamsize size) override {
    append(bytes, static_cast<std::size_t>(size));
    return size;
  }
  int_type overflow(int_type c) override {
    bytes_.at(size_++) = static_cast<char>(c);
    return c;
  }

private:
  void append(const void* bytes, std::size_t size) {
    if (size > bytes_.size() - size_) std::abort();
    std::memcpy(bytes_.data() + size_, bytes, size);
    size_ += size;
  }

  std::string bytes_;
  std::size_t size_ = 0;
};

// What all must have read.
template <class Pointers>
std::uint64_t hashOfObjects(const Pointers& objects) {
  std::uint64_t hash = objects.size();
  for (const auto& object : objects) {
    hash = mixed(hash, static_cast<std::uint64_t>(object->id));
    for (const double number : {object->x, object->y, object->z}) // a text has fewer digits
      hash = mixed(hash, static_cast<std::uint64_t>(std::llround(1000 * number)));
    hash = mixed(hash, object->next ? static_cast<std::uint64_t>(object->next->id) : UINT64_MAX);
  }
  return hash;
}

// Each of the following writes a graph, and reads it into objects of their own on the heap.

template <class Who>
class Types : public ioPacketRegistry {
public:
  using ioPacketRegistry::ioPacketRegistry;

protected:
  void registerAllTypes() override { supportedType(new ioReadPacketByFunction("object", readObject)); }

private:
  static void readObject(ioClientReadContext& client) {
    auto object = std::make_unique<Object>();
    ioReadContext& context = client.getContext();
    context.definePacketReference(object.get());
    context.readInt(object->id);
    context.readDouble(object->x);
    context.readDouble(object->y);
    context.readDouble(object->z);
    context.readReferenceUsage(&object->next, 0);
    static_cast<typename Who::Client&>(client).objects.push_back(std::move(object));
  }
};

template <ioWriteMethod method, std::size_t mostBytesPerObject>
class Base {
public:
  explicit Base(const Graph& graph) : graph_(graph), memory_(graph.objects.size() * mostBytesPerObject) {}

  void write() {
    Types<Base> types(false);
    memory_.clear();
    ioBufferedStreamOutput stream;
    stream.openIOStream(&memory_);
    const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, method, &types));
    context->startFile();
    const ioPacketType* const type = types.lookup("object");
    for (const auto& object : graph_.objects) {
      context->startPacket(type, object.get());
      context->writeInt(object->id);
      context->writeDouble(object->x);
      context->writeDouble(object->y);
      context->writeDouble(object->z);
      context->writeReference(object->next, false);
      context->endPacket();
    }
    context->endFile();
    stream.close();
  }

  void read() {
    Types<Base> types(true);
    memory_.rewind();
    ioBufferedStreamInput stream;
    stream.openIOStream(&memory_);
    const std::unique_ptr<ioReadContext> context(ioReadContextAlloc(stream, &types));
    objects_.reserve(graph_.objects.size());
    Client client(context.get(), objects_);
    if (context->readFile(client) != ioOK) objects_.clear();
  }

  [[nodiscard]] std::uint64_t hash() const { return hashOfObjects(objects_); }
  void forget() { objects_.clear(); }

private:
  friend class Types<Base>;
  using Objects = std::vector<std::unique_ptr<Object>>;
  struct Client : ioClientReadContext {
    Client(ioReadContext* context, Objects& target) : ioClientReadContext(context), objects(target) {}
    Objects& objects;
  };

  const Graph& graph_;
  Memory memory_;
  Objects objects_;
};

template <class Output, class Input, std::size_t mostBytesPerObject>
class BoostSerialization {
public:
  explicit BoostSerialization(const Graph& graph)
      : graph_(graph), memory_(graph.objects.size() * mostBytesPerObject) {}

  void write() {
    memory_.clear();
    std::ostream stream(&memory_);
    Output archive(stream);
    for (const auto& object : graph_.objects) {
      const Object* const pointer = object.get();
      archive << pointer;
    }
  }

  void read() {
    memory_.rewind();
    std::istream stream(&memory_);
    Input archive(stream);
    objects_.reserve(graph_.objects.size());
    for (std::size_t i = 0; i < graph_.objects.size(); ++i) {
      Object* pointer = nullptr;
      archive >> pointer;
      objects_.emplace_back(pointer);
    }
  }

  [[nodiscard]] std::uint64_t hash() const { return hashOfObjects(objects_); }
  void forget() { objects_.clear(); }

private:
  const Graph& graph_;
  Memory memory_;
  std::vector<std::unique_ptr<Object>> objects_;
};

// What was written is judged by what it reads as.
template <class Who>
void write(benchmark::State& state, const Graph& (*graph)()) {
  Who who(graph());
  for (auto _ : state) who.write();
  who.read();
  setResult(state, who.hash());
}

template <class Who>
void read(benchmark::State& state, const Graph& (*graph)()) {
  Who who(graph());
  who.write();
  std::uint64_t hash = 0;
  for (auto _ : state) {
    who.read();
    state.PauseTiming();
    hash = who.hash();
    who.forget();
    state.ResumeTiming();
  }
  setResult(state, hash);
}

} // namespace qvBench

#ifdef BENCH_BoostSerialization
BOOST_CLASS_TRACKING(qvBench::Object, boost::serialization::track_always)
#endif
