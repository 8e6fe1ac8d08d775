// A million commands in groups of ten: pushed, undone and redone, beside a QUndoStack with macros. Every
// action takes part in the result, so both must have acted in the same order.
#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoManager.h"
#include "bench/qvBench.h"

#include <cstdint>
#include <memory>

#ifdef BENCH_QUndoStack
#include <QtGui/qundostack.h>
#endif

namespace {

constexpr int numGroups = 100000;
constexpr int commandsInGroup = 10;

/// What the commands change.
struct Document {
  std::uint64_t value = 0, history = 0;

  void add(std::uint64_t number) {
    value += number;
    history = qvBench::mixed(history, value);
  }
};

class BaseQueue {
  class Add final : public qvUndo::Command {
  public:
    Add(qvUndo::Group* group, Document& document, std::uint64_t number)
        : Command(group, "add"), document_(document), number_(number) {}
    bool doAction() override { return document_.add(number_), true; }
    bool undoAction() override { return document_.add(-number_), true; }

  private:
    Document& document_;
    std::uint64_t number_;
  };

public:
  BaseQueue() { manager_->setMaxBytes(0); } // the peer knows no such limit
  void push(Document& document, std::uint64_t first) {
    qvUndo::Group* const group = manager_->newGroup("group", false);
    for (std::uint64_t i = 0; i < commandsInGroup; ++i) new Add(group, document, first + i);
    group->doIt();
  }
  void undo() { manager_->undoIt(); }
  void redo() { manager_->doIt(); }

private:
  std::unique_ptr<qvUndo::Manager> manager_{qvUndo::newManager()};
};

#ifdef BENCH_QUndoStack
class QtQueue {
  class Add final : public QUndoCommand {
  public:
    Add(const QString& name, Document& document, std::uint64_t number)
        : QUndoCommand(name), document_(document), number_(number) {}
    void redo() override { document_.add(number_); }
    void undo() override { document_.add(-number_); }

  private:
    Document& document_;
    std::uint64_t number_;
  };

public:
  void push(Document& document, std::uint64_t first) {
    stack_.beginMacro(group_);
    for (std::uint64_t i = 0; i < commandsInGroup; ++i) stack_.push(new Add(add_, document, first + i));
    stack_.endMacro();
  }
  void undo() { stack_.undo(); }
  void redo() { stack_.redo(); }

private:
  const QString group_ = "group", add_ = "add";
  QUndoStack stack_;
};
#endif

template <class Queue>
void pushAll(Queue& queue, Document& document) {
  for (int i = 0; i < numGroups; ++i) queue.push(document, static_cast<std::uint64_t>(i) * commandsInGroup);
}

/// The queue's end belongs to it: each command that was made is also deleted.
template <class Queue>
void push(benchmark::State& state) {
  Document document;
  for (auto _ : state) {
    document = {};
    Queue queue;
    pushAll(queue, document);
  }
  qvBench::setResult(state, document.history);
}

/// Measures the way back or the way forth, and goes the other one meanwhile.
template <class Queue>
void walk(benchmark::State& state, bool back) {
  Document document;
  Queue queue;
  pushAll(queue, document);
  const auto all = [&](bool undo) {
    for (int i = 0; i < numGroups; ++i) undo ? queue.undo() : queue.redo();
  };
  for (auto _ : state) {
    document.history = 0;
    if (!back) {
      state.PauseTiming();
      all(true);
      state.ResumeTiming();
    }
    all(back);
    if (back) {
      state.PauseTiming();
      all(false);
      state.ResumeTiming();
    }
  }
  qvBench::setResult(state, document.history);
}

template <class Queue>
void add(const char* who) {
  const std::string name = who;
  benchmark::RegisterBenchmark(("undo push/" + name).c_str(), push<Queue>)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("undo back/" + name).c_str(), walk<Queue>, true)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("undo forth/" + name).c_str(), walk<Queue>, false)
      ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
  add<BaseQueue>("Base");
#ifdef BENCH_QUndoStack
  add<QtQueue>("QUndoStack");
#endif
  return true;
}();

} // namespace
