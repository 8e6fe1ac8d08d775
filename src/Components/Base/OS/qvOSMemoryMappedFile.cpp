#include "Base/OS/qvOSMemoryMappedFile.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformMap.h"

#include <utility>

namespace qvOS {

using qvString::IString;

namespace {

class MappedFileImpl final : public qv::ImplBase {
public:
  ~MappedFileImpl() override { close(); }

  bool create(const IString& name, std::uint64_t bytes, bool deleteOnClose) {
    const qvString::CString path = toNativePath(name);
    IString kept;
    kept = name; // which may be the present file's own
    close();
    filename = std::move(kept);
    if (qvPlatform::createMapFile(path.asChar(), bytes, deleteOnClose, &handles)) {
      close();
      return false;
    }
    size = static_cast<std::int64_t>(bytes);
    return true;
  }

  void close() {
    size = 0;
    filename = IString();
    qvPlatform::closeMapFile(&handles);
  }

  [[nodiscard]] bool contains(std::int64_t offset, std::uint64_t bytes) const {
    return bytes > 0 && offset >= 0 && offset <= size && bytes <= static_cast<std::uint64_t>(size - offset);
  }

  IString filename;
  std::int64_t size = 0;
  qvPlatform::MapFile handles;
};

} // namespace

MemoryMappedFile::MemoryMappedFile() : handle_(new MappedFileImpl) {}

bool MemoryMappedFile::createFile(const IString& name, std::uint64_t size, bool deleteOnClose) {
  return handle_.as<MappedFileImpl>().create(name, size, deleteOnClose);
}

bool MemoryMappedFile::valid() const noexcept { return getSize() > 0; }

const IString& MemoryMappedFile::getFilename() const noexcept {
  return handle_.as<MappedFileImpl>().filename;
}

std::int64_t MemoryMappedFile::getSize() const noexcept { return handle_.as<MappedFileImpl>().size; }

FileMapping MemoryMappedFile::map(std::int64_t offset, std::uint64_t size) noexcept {
  const MappedFileImpl& file = handle_.as<MappedFileImpl>();
  void* address = nullptr;
  if (file.contains(offset, size)) (void)qvPlatform::mapWindow(file.handles, offset, size, &address);
  return FileMapping(offset, size, address);
}

} // namespace qvOS
