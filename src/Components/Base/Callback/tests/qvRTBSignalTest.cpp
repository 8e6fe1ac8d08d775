// Signals, with what slots may do to them while they are being emitted. Run under the address sanitizer,
// since most mistakes here would be touches of freed memory.
#include "Base/Callback/qvRTBSignal.h"
#include "Base/Callback/qvRTBAsyncSignal.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using qvRTB::Connection;

std::string trace;

// A function object that writes its letter and runs an action; it counts the living.
class Slot final : public qvRTB::FunctionVoid {
public:
  explicit Slot(char letter, std::function<void()> action = {}, std::function<void()> atEnd = {})
      : letter_(letter), action_(std::move(action)), atEnd_(std::move(atEnd)) {
    ++alive;
  }
  ~Slot() override {
    if (atEnd_) atEnd_();
    --alive;
    letter_ = '!';
  }
  bool isInstance(void* instance) override { return instance == Slot::instance(letter_); }
  void call() override {
    trace += letter_;
    if (action_) action_();
    trace += static_cast<char>(letter_ - 'a' + 'A'); // after the action: the object must still be there
  }
  static void* instance(char letter) { return targets + (letter - 'a'); }
  static int alive;
  static char targets[26];

private:
  char letter_;
  std::function<void()> action_, atEnd_;
};
int Slot::alive = 0;
char Slot::targets[26];

// Three slots; the walk goes c, b, a. The middle one runs an action, once unless told otherwise.
struct Scene {
  std::unique_ptr<qvRTB::SignalVoid> signal = std::make_unique<qvRTB::SignalVoid>();
  std::unique_ptr<qvRTB::SignalClient> client = std::make_unique<qvRTB::SignalClient>();
  Connection *a, *b, *c;
  int runs = 0;

  explicit Scene(std::function<void(Scene&)> action) {
    a = signal->addCallback(new Slot('a'), *client);
    b = signal->addCallback(new Slot('b',
                                     [this, action] {
                                       if (runs++ == 0) action(*this);
                                     }),
                            *client);
    c = signal->addCallback(new Slot('c'));
  }
  std::string emit() {
    trace.clear();
    if (signal) signal->emit();
    return trace;
  }
};

TEST(Signal, SurvivesWhatASlotDoes) {
  const struct {
    int line;
    const char* what;
    std::function<void(Scene&)> action;
    const char *first, *second;
    int left;
  } rows[] = {
      {__LINE__, "cut itself twice",
       [](Scene& s) {
         s.signal->disconnect(s.b);
         s.signal->disconnect(s.b);
         EXPECT_EQ(s.signal->numConnections(), 3);
         EXPECT_EQ(s.signal->findInstance(Slot::instance('b')), nullptr);
       },
       "cCbBaA", "cCaA", 2},
      {__LINE__, "cut the next", [](Scene& s) { s.signal->disconnect(s.a); }, "cCbB", "cCbB", 2},
      {__LINE__, "cut all",
       [](Scene& s) {
         for (const char letter : {'a', 'b', 'c'}) s.signal->disconnectInstance(Slot::instance(letter));
         EXPECT_EQ(Slot::alive, 1);
       },
       "cCbB", "", 0},
      {__LINE__, "emit again", [](Scene& s) { s.signal->emit(); }, "cCbcCbBaABaA", "cCbBaA", 3},
      {__LINE__, "cut itself and emit again",
       [](Scene& s) {
         s.signal->disconnect(s.b);
         s.signal->emit();
       },
       "cCbcCaABaA", "cCaA", 2},
      {__LINE__, "destroy the signal", [](Scene& s) { s.signal.reset(); }, "cCbB", "", 0},
      {__LINE__, "destroy the client", [](Scene& s) { s.client.reset(); }, "cCbB", "cC", 1},
      {__LINE__, "block all but the newest", [](Scene& s) { s.signal->blockAll(); }, "cCbB", "cC", 3},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.line) + ": " + row.what);
    {
      Scene scene(row.action);
      EXPECT_EQ(scene.emit(), row.first);
      EXPECT_EQ(scene.emit(), row.second);
      EXPECT_EQ(scene.signal ? scene.signal->numConnections() : 0, row.left);
      EXPECT_EQ(Slot::alive, row.left);
    }
    EXPECT_EQ(Slot::alive, 0);
  }
}

TEST(Signal, SurvivesWhatTheDestructorOfAFunctionDoes) {
  for (const bool destroySignal : {false, true}) {
    auto signal = std::make_unique<qvRTB::SignalVoid>();
    Connection *next = signal->addCallback(new Slot('a')), *cut = nullptr;
    const auto cutNext = [&] {
      if (signal) signal->disconnect(next);
    };
    cut = signal->addCallback(new Slot(
        'b', [&] { signal->disconnect(cut); }, cutNext));
    trace.clear();
    destroySignal ? signal.reset() : signal->emit();
    EXPECT_EQ(trace, destroySignal ? "" : "bB");
    EXPECT_EQ(Slot::alive, 0);
  }
}

TEST(Signal, CutsWithEitherSide) {
  qvRTB::SignalVoid signal, other;
  struct Listener : qvRTB::SignalClient {
    int calls = 0;
    void heard() { ++calls; }
  };
  {
    Listener listener;
    Connection* connection = signal.connect(&listener, &Listener::heard, listener);
    EXPECT_EQ(signal.findInstance(&listener), connection);
    EXPECT_EQ(signal.findInstance(&signal), nullptr);
    other.connect(&listener, &Listener::heard, listener);
    signal.emit();
    other.emit();
    EXPECT_EQ(listener.calls, 2);
    qvRTB::SignalVoid().connect(&listener, &Listener::heard, listener);
  }
  EXPECT_FALSE(signal.isConnected() || other.isConnected());
}

TEST(Signal, Blocks) {
  qvRTB::SignalVoid signal, other;
  Connection* connection = signal.addCallback(new Slot('a'));
  Connection* foreign = other.addCallback(new Slot('x'));
  const auto emits = [&] {
    trace.clear();
    signal.emit();
    return trace;
  };
  EXPECT_TRUE(signal.isBlocked(foreign));
  signal.block(foreign);
  signal.disconnect(foreign);
  EXPECT_FALSE(other.isBlocked(foreign));
  signal.blockAll(); // the newest connection is passed over
  EXPECT_EQ(emits(), "aA");
  for (int i = 0; i < 2; ++i) signal.block(connection);
  signal.unblock(connection);
  EXPECT_TRUE(signal.isBlocked(connection));
  signal.unblock(connection);
  EXPECT_EQ(emits(), "aA");
  signal.unblock(connection); // one too many: not told as blocked, and not called
  EXPECT_FALSE(signal.isBlocked(connection));
  EXPECT_EQ(emits(), "");
  EXPECT_EQ(signal.addCallback(nullptr), nullptr);

  Scene scene([](Scene&) {});
  scene.signal->block(scene.b);
  for (int i = 0; i < 2; ++i) scene.signal->blockAll();
  scene.signal->unblockAll();
  EXPECT_EQ(scene.emit(), "cC");
  scene.signal->unblockAll();
  EXPECT_EQ(scene.emit(), "cCaA"); // `b` keeps its own block
}

// Cuts its newest connection, which is found nevertheless while it runs.
void cutItself(qvRTB::SignalBase& signal) {
  Connection* const newest = signal.findGlobalCallback(reinterpret_cast<void*>(&cutItself));
  signal.disconnect(newest);
  EXPECT_EQ(signal.findGlobalCallback(reinterpret_cast<void*>(&cutItself)), newest);
}

TEST(Signal, FindsTheNewest) {
  qvRTB::SignalArg<qvRTB::SignalBase&> signal;
  void* const self = reinterpret_cast<void*>(&cutItself);
  signal.connect(cutItself);
  Connection* const newest = signal.connect(cutItself);
  EXPECT_EQ(signal.findGlobalCallback(self), newest);
  signal.emit(signal);
  EXPECT_EQ(signal.findGlobalCallback(self), nullptr);
  EXPECT_FALSE(signal.isConnected());
}

TEST(Signal, CarriesArguments) {
  int received = 0;
  qvRTB::SignalArg<int> number;
  number.connect([&](int value) { received += value; });
  struct Target {
    std::string text;
    void take(const std::string& name, void* pointer, int value) {
      text += name + (pointer == this ? "!" : "?") + std::to_string(value);
    }
  } target;
  qvRTB::Signal3Args<const std::string&, void*, int> three;
  for (int i = 0; i < 2; ++i) three.connect(&target, &Target::take);
  three.emit("size", &target, 3);
  EXPECT_EQ(target.text, "size!3size!3");

  struct Carrier : qvRTB::AsyncSignal {
    qvRTB::SignalArg<int>& signal;
    explicit Carrier(qvRTB::SignalArg<int>& of) : signal(of) {}
    void emit() override { signal.emit(7); }
  };
  std::unique_ptr<qvRTB::AsyncSignal>(new Carrier(number))->emit();
  EXPECT_EQ(received, 7);
}

TEST(Signal, StaysWholeAfterExceptions) {
  static auto& signal = *new qvRTB::SignalVoid; // never destroyed: a connection that threw is never freed
  bool fail = true;
  signal.addCallback(new Slot('a', [&] {
    if (fail) throw 1;
  }));
  for (int i = 0; i < 70000; ++i)
    EXPECT_THROW(signal.emit(), int); // more often than a count of passes can tell
  fail = false;
  trace.clear();
  signal.emit();
  EXPECT_EQ(trace, "aA");
}

// Slots do random things, three emits deep; a model tells at each call which slot is due.
class SignalModel : public testing::Test {
protected:
  struct Entry {
    Connection* connection;
    int blocks;
  };

  void add() {
    const int id = next_++;
    Connection* connection = random_.oneIn(2) ? signal_->connect([this, id] { called(id); })
                                              : signal_->connect([this, id] { called(id); }, client_);
    model_.emplace(id, Entry{connection, 0});
  }
  int due() const {
    auto it = model_.upper_bound(last_.back()); // the order is newest first
    while (it != model_.end() && it->second.blocks != 0) ++it;
    return it == model_.end() ? -1 : it->first;
  }
  void emit() {
    last_.push_back(next_);
    signal_->emit();
    EXPECT_EQ(due(), -1);
    last_.pop_back();
  }
  void called(const int id) {
    ASSERT_EQ(id, due());
    last_.back() = id;
    ++calls_;
    for (int i = random_.between(0, 2); i > 0 && signal_; --i) act();
  }
  void act() {
    auto it = model_.begin();
    if (!model_.empty()) std::advance(it, static_cast<long>(random_.below(model_.size())));
    const auto choice = random_.below(100);
    if (choice < 1) {
      signal_.reset();
      model_.clear();
    } else if (choice < 35) {
      add();
    } else if (choice < 45) {
      if (last_.size() < 3) emit();
    } else if (it == model_.end()) {
      return;
    } else if (choice < 75) {
      signal_->disconnect(it->second.connection);
      model_.erase(it);
    } else if (choice < 88) {
      signal_->block(it->second.connection);
      ++it->second.blocks;
    } else {
      signal_->unblock(it->second.connection);
      --it->second.blocks;
    }
  }

  qvTest::Random random_{20};
  qvRTB::SignalClient client_;
  std::unique_ptr<qvRTB::SignalVoid> signal_;
  std::map<int, Entry, std::greater<>> model_;
  std::vector<int> last_;
  int next_ = 0;
  int calls_ = 0;
};

TEST_F(SignalModel, IsFollowed) {
  for (int round = 0; round < 400; ++round) {
    signal_ = std::make_unique<qvRTB::SignalVoid>();
    for (int i = random_.between(0, 8); i > 0; --i) add();
    for (int i = 0; i < 4 && signal_; ++i) emit();
    signal_.reset();
    model_.clear();
    ASSERT_TRUE(last_.empty());
  }
  EXPECT_GT(calls_, 5000);
}

} // namespace
