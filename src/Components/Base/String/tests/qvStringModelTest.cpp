// Both string classes against the standard's strings: thousands of random operations, told positions and not.
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
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
  static bool isOutOfRange(const std::function<void()>& action) {
    try {
      action();
      return false;
    } catch (const std::out_of_range&) {
      return true;
    }
  }
  static int sign(int value) { return value < 0 ? -1 : value > 0; }

  void change(X& x, Model& model);
  void look(const X& x, const Model& model);
};

template <class X>
void StringModel<X>::change(X& x, Model& model) {
  const X before(x.view());
  const Model old = model, other = anyText(12), chars(other.c_str());
  const X text(full(other));
  const C c = anyChar();
  const unsigned int pos = anyPos(model), n = anyPos(model);
  const std::size_t count = wide(n);
  const struct {
    std::function<void()> change, changeModel;
  } rows[] = {
      {[&] { x = text; }, [&] { model = other; }},
      {[&] { x.assign(chars.c_str()); }, [&] { model = chars; }},
      {[&] { x.append(text); }, [&] { model += other; }},
      {[&] { x += chars.c_str(); }, [&] { model += chars; }},
      {[&] { x += c; }, [&] { model += c; }},
      {[&] { x.prepend(text); }, [&] { model = other + model; }},
      {[&] { x.prepend(chars.c_str()); }, [&] { model = chars + model; }},
      {[&] { x.prepend(c); }, [&] { model = c + model; }},
      {[&] { x.insert(pos, text); }, [&] { model.insert(pos, other); }},
      {[&] { x.insert(pos, chars.c_str()); }, [&] { model.insert(pos, chars); }},
      {[&] { x.insert(pos, c); }, [&] { model.insert(pos, 1, c); }},
      {[&] { x.erase(pos, n); }, [&] { model.empty() ? model : model.erase(pos, count); }},
      {[&] { x.remove(pos, n); }, [&] { model.empty() ? model : model.erase(pos, count); }},
      {[&] { x.replace(pos, n, text); }, [&] { model.replace(pos, count, other); }},
      {[&] { x.replace(pos, n, chars.c_str()); }, [&] { model.replace(pos, count, chars); }},
      {[&] { x.replace(pos, n, c); }, [&] { model.replace(pos, count, 1, c); }},
      {[&] { x.strip(c); }, [&] { model.erase(0, std::min(model.find_first_not_of(c), model.size())); }},
      {[&] { x.rstrip(c); }, [&] { model.erase(model.find_last_not_of(c) + 1); }},
      {[&] { x.insert(x.last(), x); }, [&] { model.insert(model.empty() ? 0 : model.size() - 1, old); }},
      {[&] { x.length() < 300 ? x.append(x) : x.erase(); },
       [&] { old.size() < 300 ? model += old : model = {}; }},
  };
  const std::size_t what = random.below(std::size(rows));
  ASSERT_EQ(isOutOfRange(rows[what].change), isOutOfRange(rows[what].changeModel)) << "row " << what;
  ASSERT_EQ(x.view(), model) << "row " << what;
  ASSERT_EQ(sign(x.compare(before)), sign(model.compare(old))) << "row " << what;
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
  if constexpr (std::is_same_v<X, IString>) {
    EXPECT_STREQ(x.asUTF8(), same.asUTF8()); // made before the last change, and not stale
  }
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
