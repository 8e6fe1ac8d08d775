// A byte stream over memory: over a block of its own that grows, or over a block that the caller lends.
#pragma once

#include "Base/OS/qvOSIOStream.h"

#include <cstddef>

namespace qvOS {

/// Bytes in memory behind the stream interface. There is one position, for reading and for writing alike;
/// what is written at it replaces what stood there, and past the end it extends the content. Ends and
/// failures have the codes of `File::getError`.
/// Not thread-safe: a stream belongs to one thread at a time.
class QV_BASE_API MemoryIOStream : public IOStream {
public:
  /// Empty, in a block of its own that grows with what is written.
  MemoryIOStream() = default;
  /// Over `capacity` bytes at `block`, which the caller keeps and which must outlive the stream; the first
  /// `size` of them are content. It never grows: a write that does not fit takes what fits and gives code 4.
  /// A `size` above `capacity` counts as `capacity`.
  MemoryIOStream(void* block, std::size_t capacity, std::size_t size);
  /// Over constant bytes, for reading only: every write gives code 4.
  MemoryIOStream(const void* block, std::size_t size);
  ~MemoryIOStream() override;
  MemoryIOStream(const MemoryIOStream&) = delete;
  MemoryIOStream& operator=(const MemoryIOStream&) = delete;

  /// Code 3 together with the final bytes when fewer than `size` were left, as for a file.
  qvUtil::Error read(void* buffer, std::uint64_t size, std::uint64_t* count) override;
  /// Code 4 when a lent block has no room for all bytes, or when memory is exhausted; then none are taken.
  /// The bytes must not lie in the stream's own block.
  qvUtil::Error write(const void* buffer, std::uint64_t size, std::uint64_t* count) override;

  /// The content; null while there is none. Valid until the next write.
  [[nodiscard]] const void* data() const noexcept { return block_; }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] std::size_t position() const noexcept { return position_; }
  /// Moves the position. False, and no move, beyond the end.
  bool seek(std::size_t position) noexcept;
  /// Cuts the content to `size` bytes; a longer `size` changes nothing. The position stays inside.
  void truncate(std::size_t size) noexcept;

private:
  enum class Block { own, lent, constant };

  std::size_t roomFor(std::uint64_t size);

  unsigned char* block_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::size_t position_ = 0;
  Block kind_ = Block::own;
};

} // namespace qvOS
