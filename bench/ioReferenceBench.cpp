// A million objects, each an int, three doubles and a pointer to another of them, written with tracked
// references and read back with the pointers set; beside Boost.Serialization and cereal.
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "Base/OS/qvOSIOStream.h"
#include "Base/OS/qvOSMemoryIOStream.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#ifdef BENCH_BoostSerialization
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#endif
#ifdef BENCH_Cereal
#include <cereal/archives/binary.hpp>
#include <cereal/types/memory.hpp>
#include <cereal/types/vector.hpp>
#endif

namespace {

constexpr int count = 1'000'000;

/// Where the pointers go: each to the object before, or all over the place. The peers follow a pointer as
/// they meet it, by recursion, so none goes to an object that comes later.
enum class Shape { chain, scattered };
Shape shape;

int target(int i) {
  if (i == 0) return 0;
  return shape == Shape::chain ? i - 1 : int((std::int64_t(i) * 2654435761u + 13) % i);
}

template <template <class> class Pointer, class Self>
struct Object {
  int id = 0;
  double x = 0, y = 0, z = 0;
  Pointer<Self> next{};
};

template <class T>
using Plain = T*;

/// Comes from one block that is used again from its start, so that the heap is not measured. Counts for this
/// library and for Boost.Serialization.
struct PlainObject : Object<Plain, PlainObject> {
  static inline std::size_t used = 0;
  static void* operator new(std::size_t size) {
    static char* const block = new char[3 * count * sizeof(PlainObject)]();
    return block + size * used++;
  }
  static void* operator new(std::size_t, void* place) { return place; }
  static void operator delete(void*) {}
};
struct SharedObject : Object<std::shared_ptr, SharedObject> {};

template <class Archive>
void serialize(Archive& archive, PlainObject& object, unsigned) {
  archive& object.id& object.x& object.y& object.z& object.next;
}

template <class Archive>
void serialize(Archive& archive, SharedObject& object) {
  archive(object.id, object.x, object.y, object.z, object.next);
}

/// Sums up what is in the objects and where the pointers lead, whatever kind of pointers these are.
template <class Objects>
double digest(const Objects& objects) {
  double result = 0;
  for (const auto& object : objects)
    result += object->id * object->x - object->y / object->z + object->next->id;
  return result;
}

template <class Objects>
void fill(const Objects& objects) {
  for (int i = 0; i < count; ++i) {
    auto& object = *objects[i];
    object.id = i;
    object.x = i * 0.5, object.y = i * 0.25, object.z = i + 1;
    object.next = objects[target(i)];
  }
}

using PlainObjects = std::vector<PlainObject*>;

PlainObjects& plainObjects() {
  static PlainObjects* const objects = [] {
    auto* const result = new PlainObjects;
    for (int i = 0; i < count; ++i) result->push_back(new PlainObject);
    return result;
  }();
  return *objects;
}

/// Where all write to: bytes whose memory is there before the clock starts.
class Sink : public qvOS::IOStream, public std::streambuf {
public:
  Sink() : bytes_(80 * count, '\0') {}

  void clear() { size_ = 0; }
  [[nodiscard]] std::string_view bytes() const { return {bytes_.data(), size_}; }

  qvUtil::Error read(void*, std::uint64_t, std::uint64_t*) override {
    return qvUtil::Error(4, "cannot read");
  }
  qvUtil::Error write(const void* bytes, std::uint64_t size, std::uint64_t* written) override {
    append(bytes, size);
    if (written) *written = size;
    return {};
  }

protected:
  std::streamsize xsputn(const char* bytes, std::streamsize size) override {
    append(bytes, std::size_t(size));
    return size;
  }
  int_type overflow(int_type c) override {
    bytes_.at(size_++) = char(c);
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

/// Reads where the bytes are.
class Source : public std::streambuf {
public:
  explicit Source(std::string_view bytes) {
    char* const first = const_cast<char*>(bytes.data());
    setg(first, first, first + bytes.size());
  }
};

class ObjectType : public ioPacketType {
public:
  ObjectType() : ioPacketType("object") {}

  void read(ioClientReadContext& client) override {
    ioReadContext& context = client.getContext();
    auto* const object = new PlainObject;
    objects.push_back(object);
    context.definePacketReference(object);
    context.readInt(object->id);
    context.readDouble(object->x);
    context.readDouble(object->y);
    context.readDouble(object->z);
    context.readReferenceUsage(&object->next, 0);
  }

  PlainObjects objects;
};

class Registry : public ioPacketRegistry {
public:
  using ioPacketRegistry::ioPacketRegistry;
  ObjectType* type = nullptr;

protected:
  void registerAllTypes() override { supportedType(type = new ObjectType); }
};

void writeBase(Sink& sink) {
  Registry registry(false);
  ioBufferedStreamOutput stream;
  stream.openIOStream(&sink);
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, ioWriteBinary, &registry));
  context->startFile();
  for (const PlainObject* const object : plainObjects()) {
    context->startPacket(registry.type, object);
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

PlainObjects readBase(std::string_view bytes) {
  Registry registry(true);
  qvOS::MemoryIOStream memory(static_cast<const void*>(bytes.data()), bytes.size());
  ioBufferedStreamInput stream;
  stream.openIOStream(&memory);
  const std::unique_ptr<ioReadContext> context(ioReadContextAlloc(stream, &registry));
  ioClientReadContext client(context.get());
  registry.init();
  registry.type->objects.reserve(count);
  context->readFile(client);
  return std::move(registry.type->objects);
}

#ifdef BENCH_BoostSerialization
void writeBoost(Sink& sink) {
  std::ostream stream(&sink);
  {
    boost::archive::binary_oarchive archive(stream);
    for (const PlainObject* const object : plainObjects()) archive << object;
  }
}

PlainObjects readBoost(std::string_view bytes) {
  Source source(bytes);
  std::istream stream(&source);
  boost::archive::binary_iarchive archive(stream);
  PlainObjects objects;
  objects.resize(count);
  for (PlainObject*& object : objects) archive >> object;
  return objects;
}
#endif

#ifdef BENCH_Cereal
using SharedObjects = std::vector<std::shared_ptr<SharedObject>>;

SharedObjects& sharedObjects() {
  static auto* const objects = [] {
    auto* const result = new SharedObjects;
    for (int i = 0; i < count; ++i) result->push_back(std::make_shared<SharedObject>());
    return result;
  }();
  return *objects;
}

void writeCereal(Sink& sink) {
  std::ostream stream(&sink);
  cereal::BinaryOutputArchive archive(stream);
  for (const auto& object : sharedObjects()) archive(object);
}

SharedObjects readCereal(std::string_view bytes) {
  Source source(bytes);
  std::istream stream(&source);
  cereal::BinaryInputArchive archive(stream);
  SharedObjects objects(count);
  for (auto& object : objects) archive(object);
  return objects;
}
#endif

template <class Objects>
struct Peer {
  const char* who;
  Objects& (*objects)();
  void (*write)(Sink&);
  Objects (*read)(std::string_view);
};

/// Brings the objects into shape, and tells what anything read back must sum up to.
template <class Objects>
double prepare(const Peer<Objects>& peer, Shape wanted) {
  shape = wanted;
  fill(peer.objects());
  PlainObject::used = count; // what is read lies behind the objects to write
  return digest(peer.objects());
}

/// Sums up what was read, and cuts the objects loose: a chain of owners dies by recursion.
template <class Objects>
double digestAndCut(const Objects& objects) {
  const double result = digest(objects);
  for (const auto& object : objects) object->next = {};
  return result;
}

template <class Objects>
void measureWrite(benchmark::State& state, Peer<Objects> peer, Shape wanted) {
  const double expected = prepare(peer, wanted);
  Sink sink;
  for (auto _ : state) {
    sink.clear();
    peer.write(sink);
  }
  if (digestAndCut(peer.read(sink.bytes())) != expected) state.SkipWithError("other objects came back");
  state.SetItemsProcessed(state.iterations() * count);
}

template <class Objects>
void measureRead(benchmark::State& state, Peer<Objects> peer, Shape wanted) {
  const double expected = prepare(peer, wanted);
  Sink sink;
  peer.write(sink);
  for (auto _ : state) {
    PlainObject::used = count;
    const Objects objects = peer.read(sink.bytes());
    state.PauseTiming();
    if (digestAndCut(objects) != expected) state.SkipWithError("other objects came back");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * count);
}

template <class Objects>
void compare(const Peer<Objects>& peer) {
  for (const auto& [wanted, name] :
       {std::pair(Shape::chain, " a chain/"), std::pair(Shape::scattered, " scattered/")}) {
    benchmark::RegisterBenchmark(("write" + std::string(name) + peer.who).c_str(), measureWrite<Objects>,
                                 peer, wanted)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("read" + std::string(name) + peer.who).c_str(), measureRead<Objects>, peer,
                                 wanted)
        ->Unit(benchmark::kMillisecond);
  }
}

const bool registered = [] {
  // What the process has got once it keeps, for all alike: the system's zeroing of pages is not measured.
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
  compare<PlainObjects>({"Base", plainObjects, writeBase, readBase});
#ifdef BENCH_BoostSerialization
  compare<PlainObjects>({"BoostSerialization", plainObjects, writeBoost, readBoost});
#endif
#ifdef BENCH_Cereal
  compare<SharedObjects>({"Cereal", sharedObjects, writeCereal, readCereal});
#endif
  return true;
}();

} // namespace
