// Both string classes against the standard's strings: thousands of random operations, told positions and not.
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace qvString {
namespace {

template <class X>
class StringModel : public testing::Test {
public:
  using C = std::remove_cv_t<std::remove_pointer_t<decltype(std::declval<const X&>().view().data())>>;
  using Model = std::basic_string<C>;
  static constexpr std::size_t nowhere = Model::npos;

  qvTest::Random random{0x5712};

  /// Few different characters, so that things are found; NUL and the highest bit among them.
  C anyChar() {
    const C letters[] = {'a', 'a', 'b', ' ', C(0), static_cast<C>(0xD83D), static_cast<C>(0xE9)};
    return letters[random.below(std::size(letters))];
  }
  Model anyText(int longest) {
    Model text(random.below(static_cast<std::uint64_t>(longest) + 1), C());
    for (C& c : text) c = anyChar();
    return text;
  }
  /// Mostly inside, sometimes at or past the end, sometimes "to the end".
  unsigned int anyPos(const Model& model) {
    return random.oneIn(8) ? String::npos : static_cast<unsigned int>(random.below(model.size() + 3));
  }
  static std::size_t wide(unsigned int pos) { return pos == String::npos ? nowhere : pos; }
  static unsigned int told(std::size_t pos) {
    return pos == nowhere ? String::npos : static_cast<unsigned int>(pos);
  }
  /// A string with everything that `model` holds, NULs too.
  static X full(const Model& model) { return X(model.data(), static_cast<int>(model.size())); }
  static int sign(int value) { return value < 0 ? -1 : value > 0; }

  void change(X& x, Model& model);
  void look(const X& x, const Model& model);
};

template <class X>
void StringModel<X>::change(X& x, Model& model) {
  const X before(x.view());
  const Model old = model, other = anyText(12);
  const Model chars(other.c_str());
  const X text(full(other).view());
  const unsigned int pos = anyPos(model), count = anyPos(model);
  const C c = anyChar();
  const auto modelErase = [&] {
    if (!model.empty()) model.erase(pos, wide(count));
  };
  bool thrown = false, expected = false;
  const std::uint64_t what = random.below(21);
  try {
    switch (what) {
    case 0:
      model = other;
      break;
    case 1:
      model = chars;
      break;
    case 2:
      model += other;
      break;
    case 3:
      model += chars;
      break;
    case 4:
      model += c;
      break;
    case 5:
      model.insert(0, other);
      break;
    case 6:
      model.insert(std::size_t{0}, chars);
      break;
    case 7:
      model.insert(std::size_t{0}, 1, c);
      break;
    case 8:
      model.insert(pos, other);
      break;
    case 9:
      model.insert(pos, chars);
      break;
    case 10:
      model.insert(pos, 1, c);
      break;
    case 11:
    case 12:
      modelErase();
      break;
    case 13:
      model.replace(pos, wide(count), other);
      break;
    case 14:
      model.replace(pos, wide(count), chars);
      break;
    case 15:
      model.replace(pos, wide(count), 1, c);
      break;
    case 16:
      model.erase(0, std::min(model.find_first_not_of(c), model.size()));
      break;
    case 17:
      model.erase(model.find_last_not_of(c) + 1);
      break;
    case 18:
      model.insert(std::min<std::size_t>(pos, model.size()), model);
      break;
    case 19:
      model += model;
      if (model.size() > 300) model.clear();
      break;
    case 20:
      if (!model.empty()) model[model.size() / 2] = c;
      break;
    }
  } catch (const std::out_of_range&) {
    expected = true;
  }
  try {
    switch (what) {
    case 0:
      x = text;
      break;
    case 1:
      x.assign(other.c_str());
      break;
    case 2:
      x.append(text);
      break;
    case 3:
      x += other.c_str();
      break;
    case 4:
      x.append(c);
      break;
    case 5:
      x.prepend(text);
      break;
    case 6:
      x.prepend(other.c_str());
      break;
    case 7:
      x.prepend(c);
      break;
    case 8:
      x.insert(pos, text);
      break;
    case 9:
      x.insert(pos, other.c_str());
      break;
    case 10:
      x.insert(pos, c);
      break;
    case 11:
      x.erase(pos, count);
      break;
    case 12:
      x.remove(pos, count);
      break;
    case 13:
      x.replace(pos, count, text);
      break;
    case 14:
      x.replace(pos, count, other.c_str());
      break;
    case 15:
      x.replace(pos, count, c);
      break;
    case 16:
      x.strip(c);
      break;
    case 17:
      x.rstrip(c);
      break;
    case 18:
      x.insert(std::min(pos, x.length()), x);
      break;
    case 19:
      x.append(x);
      if (x.length() > 300) x.erase();
      break;
    case 20:
      if (!x.isEmpty()) x.replace(x.length() / 2, 1, c);
      break;
    }
  } catch (const std::out_of_range&) {
    thrown = true;
  }
  ASSERT_EQ(thrown, expected) << "operation " << what;
  ASSERT_EQ(x.view(), model) << "operation " << what;
  ASSERT_EQ(sign(x.compare(before)), sign(model.compare(old))) << "operation " << what;
}

template <class X>
void StringModel<X>::look(const X& x, const Model& model) {
  const Model needle =
      random.oneIn(2) && model.size() > 4 ? model.substr(model.size() / 2, random.below(5)) : anyText(3);
  const Model chars(needle.c_str());
  const unsigned int pos = anyPos(model);
  const C c = anyChar();
  const bool none = model.empty() || needle.empty();
  EXPECT_EQ(x.find(full(needle), pos), none ? String::npos : told(model.find(needle, wide(pos))));
  EXPECT_EQ(x.rfind(full(needle), pos), none ? String::npos : told(model.rfind(needle, wide(pos))));
  EXPECT_EQ(x.find(needle.c_str(), pos), chars.empty() ? String::npos : told(model.find(chars, wide(pos))));
  EXPECT_EQ(x.rfind(needle.c_str(), pos), chars.empty() ? String::npos : told(model.rfind(chars, wide(pos))));
  EXPECT_EQ(x.find(c, pos), told(model.find(c, wide(pos))));
  EXPECT_EQ(x.rfind(c, pos), told(model.rfind(c, wide(pos))));
  bool (*const isA)(C) = [](C each) { return each == 'a'; };
  EXPECT_EQ(x.find(isA, pos), told(model.find('a', wide(pos))));
  EXPECT_EQ(x.rfind(isA, pos), told(model.rfind('a', wide(pos))));
  EXPECT_EQ(x.length(), model.size());
  EXPECT_EQ(x.last(), model.empty() ? 0 : model.size() - 1);
  EXPECT_GE(x.capacity(), x.length());
  EXPECT_EQ(x[x.length()], C());
  const X same = full(model);
  EXPECT_TRUE(x == same && x <= same && x >= same && !(x != same) && !(x < same) && !(x > same));
  EXPECT_EQ(hashfunction(x), hashfunction(same));
}

using Classes = testing::Types<CString, IString>;
TYPED_TEST_SUITE(StringModel, Classes);

TYPED_TEST(StringModel, RandomOperations) {
  TypeParam x;
  typename TestFixture::Model model;
  for (int step = 0; step < 20000 && !this->HasFatalFailure(); ++step) {
    this->change(x, model);
    this->look(x, model);
    if (this->HasFailure()) FAIL() << "step " << step;
  }
}

TEST(StringModelWide, ReplaceAllAndFindAny) {
  qvTest::Random random(0x1234);
  const auto text = [&](int longest) {
    std::basic_string<qv::WChar> made;
    for (std::uint64_t n = random.below(static_cast<std::uint64_t>(longest)); n > 0; --n)
      made += static_cast<qv::WChar>('a' + 64 * random.below(2) +
                                     random.below(2)); // two letters share a sieve bit
    return made;
  };
  for (int step = 0; step < 5000; ++step) {
    const auto from = text(4), to = text(5), model = text(80);
    IString x(model);
    x.replace(IString(from), IString(to));
    auto expected = model;
    if (!from.empty())
      for (std::size_t at = 0; (at = expected.find(from, at)) != expected.npos; at += to.size())
        expected.replace(at, from.size(), to);
    ASSERT_EQ(x.view(), expected);
    const auto pos = static_cast<unsigned int>(random.below(90));
    const auto told = [](std::size_t found) { return static_cast<unsigned int>(found); };
    ASSERT_EQ(IString(model).findAny(IString(from), pos), told(model.find_first_of(from, pos)));
    ASSERT_EQ(IString(model).rfindAny(IString(from), pos), told(model.find_last_of(from, pos)));
  }
}

} // namespace
} // namespace qvString
