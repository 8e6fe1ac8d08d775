#include "Base/IO/ioChaCha20Poly1305.h"

#include "Base/IO/ioBytes.h"

#include <algorithm>
#include <bit>

namespace ioChaCha20Poly1305 {
namespace {

// ---- The key stream ------------------------------------------------------------------------------------

constexpr std::size_t blockSize = 64;
/// Blocks are made four at a time, one in each lane, so that the compiler uses vector instructions.
constexpr int lanes = 4;

struct Word {
  std::uint32_t lane[lanes];
};

/// One step of a quarter round, in all lanes.
inline void step(Word& sum, const Word& term, Word& mixed, int shift) noexcept {
  Word added, turned;
  for (int i = 0; i < lanes; ++i) added.lane[i] = sum.lane[i] + term.lane[i];
  for (int i = 0; i < lanes; ++i) turned.lane[i] = std::rotl(mixed.lane[i] ^ added.lane[i], shift);
  sum = added;
  mixed = turned;
}

inline void quarterRound(Word& a, Word& b, Word& c, Word& d) noexcept {
  step(a, b, d, 16);
  step(c, d, b, 12);
  step(a, b, d, 8);
  step(c, d, b, 7);
}

/// The cipher's 16 words before its rounds: constants, key, block counter and nonce.
struct State {
  std::uint32_t word[16];

  State(const unsigned char* key, const unsigned char* nonce, std::uint32_t counter) noexcept
      : word{0x61707865, 0x3320646E, 0x79622D32, 0x6B206574} {
    for (int i = 0; i < 8; ++i) word[4 + i] = ioLoadLittle32(key + 4 * i);
    word[12] = counter;
    for (int i = 0; i < 3; ++i) word[13 + i] = ioLoadLittle32(nonce + 4 * i);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { wipe(word, sizeof word); }
};

/// The key stream of the four blocks from the state's counter on. `x` is room for the work.
void makeKeyStream(const State& state, Word (&x)[16], unsigned char* stream) noexcept {
  for (int i = 0; i < 16; ++i)
    for (int j = 0; j < lanes; ++j) x[i].lane[j] = state.word[i];
  for (int j = 0; j < lanes; ++j) x[12].lane[j] += static_cast<std::uint32_t>(j);
  for (int round = 0; round < 10; ++round) {
    for (int i = 0; i < 4; ++i) quarterRound(x[i], x[4 + i], x[8 + i], x[12 + i]);
    for (int i = 0; i < 4; ++i)
      quarterRound(x[i], x[4 + (i + 1) % 4], x[8 + (i + 2) % 4], x[12 + (i + 3) % 4]);
  }
  for (int j = 0; j < lanes; ++j)
    for (int i = 0; i < 16; ++i) {
      const std::uint32_t before = state.word[i] + (i == 12 ? static_cast<std::uint32_t>(j) : 0U);
      ioStoreLittle32(stream + blockSize * static_cast<std::size_t>(j) + 4 * static_cast<std::size_t>(i),
                      x[i].lane[j] + before);
    }
}

// ---- The authenticator ---------------------------------------------------------------------------------

/// Poly1305 in five limbs of 26 bits.
class Authenticator {
public:
  explicit Authenticator(const unsigned char* key) noexcept {
    std::uint32_t t[4];
    for (int i = 0; i < 4; ++i) {
      t[i] = ioLoadLittle32(key + 4 * i);
      pad_[i] = ioLoadLittle32(key + 16 + 4 * i);
    }
    r_[0] = t[0] & 0x3FFFFFF;
    r_[1] = (t[0] >> 26 | t[1] << 6) & 0x3FFFF03;
    r_[2] = (t[1] >> 20 | t[2] << 12) & 0x3FFC0FF;
    r_[3] = (t[2] >> 14 | t[3] << 18) & 0x3F03FFF;
    r_[4] = t[3] >> 8 & 0x00FFFFF;
    wipe(t, sizeof t);
  }
  Authenticator(const Authenticator&) = delete;
  Authenticator& operator=(const Authenticator&) = delete;
  ~Authenticator() { wipe(this, sizeof *this); }

  /// Adds a message. All but the last one have a multiple of 16 bytes, or are to be padded with zeros.
  void add(const unsigned char* message, std::size_t size, bool padded) noexcept {
    for (; size >= 16; size -= 16, message += 16) addBlock(message, 1U << 24);
    if (size == 0) return;
    unsigned char last[16] = {};
    std::memcpy(last, message, size);
    if (!padded) last[size] = 1;
    addBlock(last, padded ? 1U << 24 : 0);
  }

  void finish(unsigned char* tag) noexcept {
    carry();
    carry();
    // The sum minus 2^130 - 5, which is the result where it is not negative.
    std::uint32_t g[5];
    std::uint32_t over = 5;
    for (int i = 0; i < 5; ++i) {
      g[i] = h_[i] + over;
      over = g[i] >> 26;
      g[i] &= 0x3FFFFFF;
    }
    const std::uint32_t takesG = 0U - over;
    for (int i = 0; i < 5; ++i) h_[i] = (h_[i] & ~takesG) | (g[i] & takesG);
    const std::uint32_t words[4] = {h_[0] | h_[1] << 26, h_[1] >> 6 | h_[2] << 20, h_[2] >> 12 | h_[3] << 14,
                                    h_[3] >> 18 | h_[4] << 8};
    std::uint64_t sum = 0;
    for (int i = 0; i < 4; ++i) {
      sum = (sum >> 32) + words[i] + pad_[i];
      ioStoreLittle32(tag + 4 * i, static_cast<std::uint32_t>(sum));
    }
  }

private:
  void carry() noexcept {
    std::uint32_t over = 0;
    for (std::uint32_t& limb : h_) {
      limb += over;
      over = limb >> 26;
      limb &= 0x3FFFFFF;
    }
    h_[0] += over * 5;
  }

  void addBlock(const unsigned char* block, std::uint32_t top) noexcept {
    const std::uint32_t t0 = ioLoadLittle32(block), t1 = ioLoadLittle32(block + 4);
    const std::uint32_t t2 = ioLoadLittle32(block + 8), t3 = ioLoadLittle32(block + 12);
    const std::uint64_t h0 = h_[0] + (t0 & 0x3FFFFFF), h1 = h_[1] + ((t0 >> 26 | t1 << 6) & 0x3FFFFFF);
    const std::uint64_t h2 = h_[2] + ((t1 >> 20 | t2 << 12) & 0x3FFFFFF);
    const std::uint64_t h3 = h_[3] + ((t2 >> 14 | t3 << 18) & 0x3FFFFFF), h4 = h_[4] + (t3 >> 8 | top);
    const std::uint64_t r0 = r_[0], r1 = r_[1], r2 = r_[2], r3 = r_[3], r4 = r_[4];
    // Limbs above 2^130 come back multiplied by 5.
    const std::uint64_t s1 = r1 * 5, s2 = r2 * 5, s3 = r3 * 5, s4 = r4 * 5;
    std::uint64_t d[5] = {
        h0 * r0 + h1 * s4 + h2 * s3 + h3 * s2 + h4 * s1, h0 * r1 + h1 * r0 + h2 * s4 + h3 * s3 + h4 * s2,
        h0 * r2 + h1 * r1 + h2 * r0 + h3 * s4 + h4 * s3, h0 * r3 + h1 * r2 + h2 * r1 + h3 * r0 + h4 * s4,
        h0 * r4 + h1 * r3 + h2 * r2 + h3 * r1 + h4 * r0};
    std::uint64_t over = 0;
    for (int i = 0; i < 5; ++i) {
      d[i] += over;
      h_[i] = static_cast<std::uint32_t>(d[i]) & 0x3FFFFFF;
      over = d[i] >> 26;
    }
    const std::uint64_t low = h_[0] + over * 5;
    h_[0] = static_cast<std::uint32_t>(low) & 0x3FFFFFF;
    h_[1] += static_cast<std::uint32_t>(low >> 26);
  }

  std::uint32_t r_[5];
  std::uint32_t h_[5] = {};
  std::uint32_t pad_[4];
};

/// The tag of the construction: over the extra bytes, the encrypted data and both lengths.
void authenticate(const unsigned char* data, std::size_t size, const unsigned char* extra,
                  std::size_t extraSize, const unsigned char* key, const unsigned char* nonce,
                  unsigned char* tag) noexcept {
  unsigned char oneTimeKey[blockSize] = {};
  chacha20(oneTimeKey, sizeof oneTimeKey, key, nonce, 0);
  Authenticator authenticator(oneTimeKey);
  wipe(oneTimeKey, sizeof oneTimeKey);
  unsigned char lengths[16];
  ioStoreLittle64(lengths, extraSize);
  ioStoreLittle64(lengths + 8, size);
  authenticator.add(extra, extraSize, true);
  authenticator.add(data, size, true);
  authenticator.add(lengths, sizeof lengths, true);
  authenticator.finish(tag);
}

} // namespace

void wipe(void* memory, std::size_t size) noexcept {
  // Through a volatile pointer, so that the compiler cannot know that the call has no effect.
  static void* (*const volatile set)(void*, int, std::size_t) = std::memset;
  if (size > 0) set(memory, 0, size);
}

void chacha20(unsigned char* data, std::size_t size, const unsigned char* key, const unsigned char* nonce,
              std::uint32_t counter) noexcept {
  State state(key, nonce, counter);
  Word x[16];
  unsigned char stream[blockSize * lanes];
  while (size > 0) {
    makeKeyStream(state, x, stream);
    const std::size_t piece = std::min(size, sizeof stream);
    for (std::size_t i = 0; i < piece; ++i) data[i] ^= stream[i];
    data += piece;
    size -= piece;
    state.word[12] += lanes;
  }
  wipe(stream, sizeof stream);
  wipe(x, sizeof x);
}

void poly1305(unsigned char* tag, const unsigned char* message, std::size_t size,
              const unsigned char* key) noexcept {
  Authenticator authenticator(key);
  authenticator.add(message, size, false);
  authenticator.finish(tag);
}

void seal(unsigned char* data, std::size_t size, const unsigned char* extra, std::size_t extraSize,
          const unsigned char* key, const unsigned char* nonce, unsigned char* tag) noexcept {
  chacha20(data, size, key, nonce, 1);
  authenticate(data, size, extra, extraSize, key, nonce, tag);
}

bool open(unsigned char* data, std::size_t size, const unsigned char* extra, std::size_t extraSize,
          const unsigned char* key, const unsigned char* nonce, const unsigned char* tag) noexcept {
  unsigned char expected[tagSize];
  authenticate(data, size, extra, extraSize, key, nonce, expected);
  unsigned difference = 0;
  for (std::size_t i = 0; i < tagSize; ++i) difference |= static_cast<unsigned>(expected[i] ^ tag[i]);
  if (difference != 0) return false;
  chacha20(data, size, key, nonce, 1);
  return true;
}

} // namespace ioChaCha20Poly1305
