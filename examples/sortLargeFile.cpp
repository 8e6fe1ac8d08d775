// Sorts a file of numbers that may be larger than the address space. Parts that fit are sorted one by one and
// put away in moveable memory, where they have no address; then they are merged, with one small piece of each
// part mapped at a time. Run it under "ulimit -v 65536": the file has 128 MiB, the program at most 64.
#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSMoveableMemory.h"
#include "Base/OS/qvOSTemporary.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <queue>
#include <random>
#include <utility>
#include <vector>

namespace {

using Numbers = std::vector<std::uint64_t>;
using Piece = qv::Reference<qvOS::MoveableMapping>;
using qvOS::File;
using qvOS::FileTransport;

constexpr std::size_t fileNumbers = 16 * 1024 * 1024;
constexpr std::size_t partNumbers = 2 * 1024 * 1024;
constexpr std::size_t pieceNumbers = 128 * 1024;

[[noreturn]] void stop(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

void check(const qvUtil::Error& error) {
  if (error) stop(error.message());
}

void write(File& file, const Numbers& numbers) {
  check(file.write(numbers.data(), numbers.size() * sizeof numbers[0], nullptr));
}

/// The next numbers of the file, at most so many; none at its end.
Numbers read(File& file, std::size_t most) {
  Numbers numbers(most);
  std::uint64_t bytes = 0;
  const qvUtil::Error error = file.read(numbers.data(), most * sizeof numbers[0], &bytes);
  if (error && error.num() != 3) check(error); // 3 is the end of the file
  numbers.resize(bytes / sizeof numbers[0]);
  return numbers;
}

/// Sorted numbers in moveable memory, taken out in order.
class Part {
public:
  Part(qvOS::MoveableMemory& memory, Numbers numbers) : left_(numbers.size()) {
    std::sort(numbers.begin(), numbers.end());
    for (std::size_t at = 0; at < numbers.size(); at += pieceNumbers) {
      pieces_.push_back(memory.allocate(pieceNumbers * sizeof numbers[0]));
      if (!pieces_.back()) stop("the disk is full");
      std::copy_n(&numbers[at], std::min(pieceNumbers, numbers.size() - at), mapped(pieces_.back()));
      pieces_.back()->unmap();
    }
  }

  [[nodiscard]] bool isEmpty() const { return left_ == 0; }

  std::uint64_t takeFirst() {
    if (next_ == 0) piece_ = mapped(pieces_[current_]);
    const std::uint64_t number = piece_[next_++];
    if (next_ == pieceNumbers) {
      pieces_[current_++]->unmap();
      next_ = 0;
    }
    --left_;
    return number;
  }

private:
  static std::uint64_t* mapped(const Piece& piece) {
    void* const address = piece->map();
    if (!address) stop("no address space is left");
    return static_cast<std::uint64_t*>(address);
  }

  std::vector<Piece> pieces_;
  std::uint64_t* piece_ = nullptr; // where the current one is mapped
  std::size_t current_ = 0, next_ = 0, left_;
};

void merge(std::vector<Part>& parts, File& to) {
  using Head = std::pair<std::uint64_t, Part*>;
  std::priority_queue<Head, std::vector<Head>, std::greater<>> heads;
  for (Part& part : parts) heads.emplace(part.takeFirst(), &part);
  Numbers merged;
  while (!heads.empty()) {
    const auto [number, part] = heads.top();
    heads.pop();
    if (!part->isEmpty()) heads.emplace(part->takeFirst(), part);
    merged.push_back(number);
    if (merged.size() == pieceNumbers || heads.empty()) {
      write(to, merged);
      merged.clear();
    }
  }
}

void sortFile(const qvOS::Filename& from, const qvOS::Filename& to) {
  File in(from.name()), out(to.name());
  check(in.open(FileTransport::openRead));
  check(out.open(FileTransport::openWrite));
  qvOS::MoveableMemory memory; // goes after the parts that it holds
  if (!memory.initializeFiles(from.dirname(), QV_W("sort"))) stop("no directory for the parts");
  std::vector<Part> parts;
  for (Numbers numbers = read(in, partNumbers); !numbers.empty(); numbers = read(in, partNumbers))
    parts.emplace_back(memory, std::move(numbers));
  merge(parts, out);
}

/// Writes random numbers. @return their sum.
std::uint64_t makeFile(const qvOS::Filename& name) {
  File file(name.name());
  check(file.open(FileTransport::openWrite));
  std::mt19937_64 random;
  std::uint64_t sum = 0;
  for (std::size_t done = 0; done < fileNumbers; done += pieceNumbers) {
    Numbers numbers(pieceNumbers);
    for (std::uint64_t& number : numbers) sum += number = random();
    write(file, numbers);
  }
  return sum;
}

/// Whether the file has that many numbers of that sum in ascending order.
bool isSorted(const qvOS::Filename& name, std::uint64_t sum) {
  File file(name.name());
  check(file.open(FileTransport::openRead));
  std::size_t count = 0;
  std::uint64_t last = 0;
  for (Numbers numbers = read(file, pieceNumbers); !numbers.empty(); numbers = read(file, pieceNumbers))
    for (const std::uint64_t number : numbers) {
      if (number < last) return false;
      last = number;
      sum -= number;
      ++count;
    }
  return sum == 0 && count == fileNumbers;
}

} // namespace

int main() {
  const qvOS::Filename unsorted = qvOS::createTmpFilename(QV_W("numbers"), nullptr);
  const qvOS::Filename sorted = qvOS::createTmpFilename(QV_W("sorted"), nullptr);
  const std::uint64_t sum = makeFile(unsorted);
  sortFile(unsorted, sorted);
  const bool good = isSorted(sorted, sum);
  std::printf("%s\n", good ? "sorted" : "not sorted");
  check(qvOS::fileDelete(unsorted));
  check(qvOS::fileDelete(sorted));
  return good ? 0 : 1;
}
