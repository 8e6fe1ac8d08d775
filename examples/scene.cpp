// A scene of 200,000 objects of five types goes into a package entry, compressed and with checksums, and
// comes back through a registry that lacks one of the types. Every value and every pointer is checked.
//
// The objects refer to each other forward (a node to the next node), backward (to its parent) and in cycles
// (a light and its node, materials in a ring). Node packets carry a second chunk that only a later reader
// knows.
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPackageFile.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSTemporary.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

using qvString::IString;

// ---- the scene ----

struct Node;

struct Material {
  std::string name;
  double color[3] = {};
  Material* next = nullptr; // the materials form a ring
};

struct Mesh {
  std::vector<float> points;
  std::vector<int> corners;
  Material* material = nullptr;
};

struct Light {
  double power = 0;
  Node* node = nullptr; // which points back at the light
};

struct Note {
  std::string text;
  Node* about = nullptr;
};

struct Node {
  std::string name;
  int index = -1;
  Node* parent = nullptr;
  Node* next = nullptr;
  Mesh* mesh = nullptr;
  Light* light = nullptr;
  Note* note = nullptr; // stays null in a reader that knows no notes
};

struct Scene {
  std::vector<std::unique_ptr<Material>> materials;
  std::vector<std::unique_ptr<Mesh>> meshes;
  std::vector<std::unique_ptr<Light>> lights;
  std::vector<std::unique_ptr<Note>> notes;
  std::vector<std::unique_ptr<Node>> nodes;

  [[nodiscard]] std::size_t size() const {
    return materials.size() + meshes.size() + lights.size() + notes.size() + nodes.size();
  }
};

constexpr int nodeCount = 100000;
constexpr int meshCount = 50000;
constexpr int lightCount = 25000;
constexpr int noteCount = 24000;
constexpr int materialCount = 1000;

template <class T>
void make(std::vector<std::unique_ptr<T>>& objects, int count) {
  for (int i = 0; i < count; ++i) objects.push_back(std::make_unique<T>());
}

Scene makeScene() {
  Scene scene;
  make(scene.materials, materialCount);
  make(scene.meshes, meshCount);
  make(scene.lights, lightCount);
  make(scene.notes, noteCount);
  make(scene.nodes, nodeCount);
  for (int i = 0; i < materialCount; ++i) {
    Material& material = *scene.materials[i];
    material.name = "material " + std::to_string(i);
    for (int k = 0; k < 3; ++k) material.color[k] = 1.0 / (i + k + 1);
    material.next = scene.materials[(i + 1) % materialCount].get();
  }
  for (int i = 0; i < meshCount; ++i) {
    Mesh& mesh = *scene.meshes[i];
    for (int k = 0; k < 3 * (i % 8); ++k)
      mesh.points.push_back(static_cast<float>(i) + 0.5f * static_cast<float>(k));
    for (int k = 0; k < i % 5; ++k) mesh.corners.push_back(i * k);
    mesh.material = scene.materials[i % materialCount].get();
  }
  for (int i = 0; i < nodeCount; ++i) {
    Node& node = *scene.nodes[i];
    node.name = "node " + std::to_string(i);
    node.index = i;
    if (i > 0) node.parent = scene.nodes[(i - 1) / 3].get();
    if (i + 1 < nodeCount) node.next = scene.nodes[i + 1].get();
    node.mesh = scene.meshes[i % meshCount].get();
    if (i < lightCount) node.light = scene.lights[i].get();
    if (i < noteCount) node.note = scene.notes[i].get();
  }
  for (int i = 0; i < lightCount; ++i) {
    scene.lights[i]->power = 0.25 * i;
    scene.lights[i]->node = scene.nodes[i].get();
  }
  for (int i = 0; i < noteCount; ++i) {
    scene.notes[i]->text = "note on node " + std::to_string(i);
    scene.notes[i]->about = scene.nodes[i].get();
  }
  return scene;
}

// ---- writing ----

class SceneRegistry : public ioPacketRegistry {
public:
  SceneRegistry() : ioPacketRegistry(false) {}

protected:
  void registerAllTypes() override {
    for (const char* name : {"scene.node", "scene.mesh", "scene.material", "scene.light", "scene.note"})
      supportedType(new ioPacketType(name));
  }
};

void write(ioWriteContext& out, const Material& material) {
  out.startPacket("scene.material", &material);
  out.writeCString(material.name.c_str());
  out.writeDoubleArray(material.color, 3);
  out.writeReference(material.next, false);
  out.endPacket();
}

void write(ioWriteContext& out, const Mesh& mesh) {
  out.startPacket("scene.mesh", &mesh);
  out.writeInt(static_cast<int>(mesh.points.size()));
  out.writeFloatArray(mesh.points.data(), static_cast<int>(mesh.points.size()));
  out.writeInt(static_cast<int>(mesh.corners.size()));
  out.writeIntArray(mesh.corners.data(), static_cast<int>(mesh.corners.size()));
  out.writeReference(mesh.material, false);
  out.endPacket();
}

void write(ioWriteContext& out, const Light& light) {
  out.startPacket("scene.light", &light);
  out.writeDouble(light.power);
  out.writeReference(light.node, false);
  out.endPacket();
}

void write(ioWriteContext& out, const Note& note) {
  out.startPacket("scene.note", &note);
  out.writeCString(note.text.c_str());
  out.writeReference(note.about, false);
  out.endPacket();
}

void write(ioWriteContext& out, const Node& node) {
  out.startPacket("scene.node", &node);
  out.startChunk();
  out.writeCString(node.name.c_str());
  out.writeInt(node.index);
  out.writeReference(node.parent, false);
  out.writeReference(node.next, false);
  out.writeReference(node.mesh, false);
  out.writeReference(node.light, false);
  out.writeReference(node.note, false);
  out.startChunk(); // what a later version added
  out.writeCString("a later version's data");
  out.writeInt64(node.index);
  out.endPacket();
}

template <class T>
void writeAll(ioWriteContext& out, const std::vector<std::unique_ptr<T>>& objects) {
  for (const auto& object : objects) write(out, *object);
}

bool writeScene(const Scene& scene, const IString& fileName) {
  ioBufferedStreamOutput stream;
  stream.openFile(fileName);
  SceneRegistry registry;
  const std::unique_ptr<ioWriteContext> out(ioWriteContextAlloc(stream, ioWriteBinary, &registry));
  out->startFile();
  writeAll(*out, scene.nodes);
  writeAll(*out, scene.meshes);
  writeAll(*out, scene.materials);
  writeAll(*out, scene.lights);
  writeAll(*out, scene.notes);
  out->endFile();
  stream.close();
  return out->good() && stream.good();
}

// ---- reading ----

class SceneReader : public ioClientReadContext {
public:
  using ioClientReadContext::ioClientReadContext;
  Scene scene;
  int unresolvedNotes = 0;
};

template <class T>
T& newObject(ioClientReadContext& client, std::vector<std::unique_ptr<T>> Scene::*list) {
  auto& objects = static_cast<SceneReader&>(client).scene.*list;
  objects.push_back(std::make_unique<T>());
  client.getContext().definePacketReference(objects.back().get());
  return *objects.back();
}

void readMaterial(ioClientReadContext& client) {
  ioReadContext& in = client.getContext();
  Material& material = newObject(client, &Scene::materials);
  material.name = in.fetchCString();
  in.fetchDoubleArray(material.color, 3);
  in.readReferenceUsage(&material.next, 0);
}

void readMesh(ioClientReadContext& client) {
  ioReadContext& in = client.getContext();
  Mesh& mesh = newObject(client, &Scene::meshes);
  mesh.points.resize(static_cast<std::size_t>(in.fetchInt()));
  in.fetchFloatArray(mesh.points.data(), static_cast<int>(mesh.points.size()));
  mesh.corners.resize(static_cast<std::size_t>(in.fetchInt()));
  in.fetchIntArray(mesh.corners.data(), static_cast<int>(mesh.corners.size()));
  in.readReferenceUsage(&mesh.material, 0);
}

void readLight(ioClientReadContext& client) {
  ioReadContext& in = client.getContext();
  Light& light = newObject(client, &Scene::lights);
  light.power = in.fetchDouble();
  in.readReferenceUsage(&light.node, 0);
}

/// Reads the first chunk only; what a later version added is passed over.
class NodeType : public ioPacketType {
public:
  NodeType() : ioPacketType("scene.node") {}

  void read(ioClientReadContext& client) override {
    ioReadContext& in = client.getContext();
    Node& node = newObject(client, &Scene::nodes);
    in.nextChunk();
    node.name = in.fetchCString();
    node.index = in.fetchInt();
    in.readReferenceUsage(&node.parent, 0);
    in.readReferenceUsage(&node.next, 0);
    in.readReferenceUsage(&node.mesh, 0);
    in.readReferenceUsage(&node.light, 0);
    in.readReferenceUsage(&node.note, 0);
  }

  void hasUnresolvedPointer(ioClientReadContext& client, void*, int) override {
    ++static_cast<SceneReader&>(client).unresolvedNotes;
  }
};

/// Knows four of the five types.
class OlderRegistry : public ioPacketRegistry {
public:
  OlderRegistry() : ioPacketRegistry(true) {}

protected:
  void registerAllTypes() override {
    supportedType(new NodeType);
    supportedType(new ioReadPacketByFunction("scene.mesh", readMesh));
    supportedType(new ioReadPacketByFunction("scene.material", readMaterial));
    supportedType(new ioReadPacketByFunction("scene.light", readLight));
  }
};

// ---- checking ----

int differences = 0;

void check(bool same, const char* what, std::size_t index) {
  if (!same && ++differences <= 10) std::fprintf(stderr, "%s of object %zu differs\n", what, index);
}

/// True where both pointers are null, or lead to objects at the same place of their scenes.
template <class T>
bool samePlace(const T* a, const std::vector<std::unique_ptr<T>>& as, const T* b,
               const std::vector<std::unique_ptr<T>>& bs, std::size_t place) {
  if (!a || !b) return !a && !b;
  return place < as.size() && place < bs.size() && as[place].get() == a && bs[place].get() == b;
}

void compare(const Scene& wrote, const Scene& read) {
  check(read.nodes.size() == nodeCount && read.meshes.size() == meshCount &&
            read.materials.size() == materialCount && read.lights.size() == lightCount && read.notes.empty(),
        "the count", 0);
  if (differences) return;
  for (std::size_t i = 0; i < nodeCount; ++i) {
    const Node& a = *wrote.nodes[i];
    const Node& b = *read.nodes[i];
    check(a.name == b.name && a.index == b.index, "a node's value", i);
    check(samePlace(a.parent, wrote.nodes, b.parent, read.nodes, i ? (i - 1) / 3 : 0), "the parent", i);
    check(samePlace(a.next, wrote.nodes, b.next, read.nodes, i + 1), "the next node", i);
    check(samePlace(a.mesh, wrote.meshes, b.mesh, read.meshes, i % meshCount), "the mesh", i);
    check(samePlace(a.light, wrote.lights, b.light, read.lights, i), "the light", i);
    check(!b.note, "the note", i);
  }
  for (std::size_t i = 0; i < meshCount; ++i) {
    const Mesh& a = *wrote.meshes[i];
    const Mesh& b = *read.meshes[i];
    check(a.points == b.points && a.corners == b.corners, "an array", i);
    check(samePlace(a.material, wrote.materials, b.material, read.materials, i % materialCount),
          "the material", i);
  }
  for (std::size_t i = 0; i < materialCount; ++i) {
    const Material& a = *wrote.materials[i];
    const Material& b = *read.materials[i];
    check(a.name == b.name && std::equal(a.color, a.color + 3, b.color), "a material's value", i);
    check(samePlace(a.next, wrote.materials, b.next, read.materials, (i + 1) % materialCount), "the ring", i);
  }
  for (std::size_t i = 0; i < lightCount; ++i) {
    check(wrote.lights[i]->power == read.lights[i]->power, "a light's value", i);
    check(samePlace(wrote.lights[i]->node, wrote.nodes, read.lights[i]->node, read.nodes, i),
          "the light's node", i);
  }
}

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int failed(const char* what) { return std::fprintf(stderr, "scene: %s\n", what), 1; }

} // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: scene PACKAGE\n"), 2;
  std::remove(argv[1]);
  const Scene scene = makeScene();
  const IString entryName("scene");

  const auto writing = std::chrono::steady_clock::now();
  const qvOS::Filename plain = qvOS::createTmpFilename(IString("scene"), nullptr);
  ioPackageFile package;
  if (package.open(IString(argv[1]))) return failed("the package cannot be made");
  if (!writeScene(scene, plain.name())) return failed("the packet file cannot be written");
  const qvUtil::Error added = package.addEntry(plain.name(), entryName, true);
  (void)qvOS::fileDelete(plain);
  if (added || package.update()) return failed("the entry cannot be written");
  const ioPackageFileEntry* entry = package.getEntry(entryName);
  std::printf("scene: %zu objects of 5 types written in %.2f s, %lld bytes stored\n", scene.size(),
              secondsSince(writing), static_cast<long long>(entry->getSize()));

  const auto reading = std::chrono::steady_clock::now();
  ioBufferedStreamInput stream;
  stream.openPackageFileEntry(entry);
  if (entry->getCompressed()) {
    stream.compress(true);
    stream.checksum(true);
  }
  OlderRegistry registry;
  const std::unique_ptr<ioReadContext> in(ioReadContextAlloc(stream, &registry));
  if (!in) return failed("the entry holds no packet file");
  SceneReader reader(in.get());
  if (in->readFile(reader) != ioOK) return failed("the entry cannot be read");
  stream.close();
  compare(scene, reader.scene);
  if (differences) return failed("what was read differs from what was written");
  if (reader.unresolvedNotes != noteCount) return failed("the missing notes are not all reported");
  std::printf(
      "scene: read back in %.2f s without one of the types; every pointer is right, %d notes are missing\n",
      secondsSince(reading), reader.unresolvedNotes);
  return 0;
}
