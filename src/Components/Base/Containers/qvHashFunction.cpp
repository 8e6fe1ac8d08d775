#include "Base/Containers/qvHashFunction.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qv {

namespace {

using Table = std::array<std::uint32_t, 256>;

/// A fixed table of well-mixed words: the upper halves of the SplitMix64 series (Steele, Lea, Flood 2014).
constexpr Table mixedTable(std::uint64_t state) {
  Table table{};
  for (std::uint32_t& word : table) {
    state += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    word = static_cast<std::uint32_t>((mixed ^ (mixed >> 31)) >> 32);
  }
  return table;
}

constexpr Table tableA = mixedTable(1);
constexpr Table tableB = mixedTable(2);
constexpr Table tableC = mixedTable(3);
constexpr Table tableD = mixedTable(4);

/// A term is the table's word for a byte.
class ByteTerms {
public:
  explicit ByteTerms(const unsigned char* bytes) noexcept : at_(bytes) {}
  std::uint32_t operator()(const Table& table) noexcept { return table[*at_++]; }

private:
  const unsigned char* at_;
};

/// A term is a word of the text with one of the table's words, which one goes by the place.
class WordTerms {
public:
  explicit WordTerms(const unsigned int* words) noexcept : words_(words) {}
  std::uint32_t operator()(const Table& table) noexcept {
    const std::uint32_t term = words_[index_] ^ table[index_ % table.size()];
    ++index_;
    return term;
  }

private:
  const unsigned int* words_;
  std::size_t index_ = 0;
};

/// Rounds of 15 terms. The last round enters at the step that leaves it as many terms as are left.
template <class Terms>
std::uint32_t hashOfTerms(Terms term, std::size_t count) noexcept {
  constexpr std::size_t termsInRound = 15;
  std::uint32_t hash = 0;
  while (count > 0) {
    const std::size_t terms = count < termsInRound ? count : termsInRound;
    count -= terms;
    std::uint32_t t = 0;
    switch (terms) {
    case 15:
      t = term(tableB);
      [[fallthrough]];
    case 14:
      t ^= term(tableC);
      [[fallthrough]];
    case 13:
      hash ^= t + term(tableD);
      t = 0;
      [[fallthrough]];
    case 12:
      t = term(tableB);
      [[fallthrough]];
    case 11:
      t -= term(tableC);
      [[fallthrough]];
    case 10:
      t += term(tableD);
      [[fallthrough]];
    case 9:
      hash ^= t ^ term(tableA);
      t = 0;
      [[fallthrough]];
    case 8:
      t = term(tableC);
      [[fallthrough]];
    case 7:
      t += term(tableD);
      [[fallthrough]];
    case 6:
      t ^= term(tableA);
      [[fallthrough]];
    case 5:
      hash ^= t - term(tableB);
      t = 0;
      [[fallthrough]];
    case 4:
      t = term(tableD);
      [[fallthrough]];
    case 3:
      t ^= term(tableA);
      [[fallthrough]];
    case 2:
      t -= term(tableB);
      [[fallthrough]];
    default:
      hash ^= t + term(tableC);
    }
  }
  return hash;
}

std::uint32_t hashOfBytes(const void* bytes, std::size_t count) noexcept {
  return hashOfTerms(ByteTerms(static_cast<const unsigned char*>(bytes)), count);
}

} // namespace

unsigned int hashfunction(const unsigned char* bytes, int count) noexcept {
  return count < 1 ? 0 : hashOfBytes(bytes, static_cast<std::size_t>(count));
}

unsigned int hashfunction(const char* first, const char* last) noexcept {
  return last <= first ? 0 : hashOfBytes(first, static_cast<std::size_t>(last - first));
}

unsigned int hashfunction(const WChar* chars, int count) noexcept {
  return count < 1 ? 0 : hashOfBytes(chars, static_cast<std::size_t>(count) * sizeof(WChar));
}

unsigned int hashfunction(const unsigned int* words, int count) noexcept {
  return count < 1 ? 0 : hashOfTerms(WordTerms(words), static_cast<std::size_t>(count));
}

unsigned int hashfunction(const char* string) noexcept {
  if (!string) return 0;
  std::uint32_t hash = 0;
  for (ByteTerms term(reinterpret_cast<const unsigned char*>(string)); *string != '\0';) {
    std::uint32_t t = term(tableA);
    if (*++string != '\0') {
      t += term(tableB);
      if (*++string != '\0') {
        t -= term(tableC);
        if (*++string != '\0') {
          t ^= term(tableD);
          ++string;
        }
      }
    }
    hash ^= t;
  }
  return hash;
}

} // namespace qv
