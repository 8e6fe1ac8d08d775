// A text document with undo. Each action of the user is a group of commands; "replace all" makes one group
// for each line that it changes and chains them, so that one undo takes all of it back.
#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoManager.h"

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using Document = std::vector<std::string>;

/// Adds a line at the end.
class AddLine : public qvUndo::Command {
public:
  AddLine(qvUndo::Group* group, Document& document, std::string line)
      : Command(group, "add line"), document_(document), line_(std::move(line)) {}

  bool doAction() override {
    document_.push_back(line_);
    return true;
  }
  bool undoAction() override {
    document_.pop_back();
    return true;
  }

private:
  Document& document_;
  std::string line_;
};

/// Gives a line another text. The way back is the same exchange.
class ChangeLine : public qvUndo::Command {
public:
  ChangeLine(qvUndo::Group* group, Document& document, std::size_t line, std::string text)
      : Command(group, "change line"), document_(document), line_(line), other_(std::move(text)) {}

  bool doAction() override {
    document_[line_].swap(other_);
    return true;
  }
  bool undoAction() override { return doAction(); }
  int getNumBytesUsed() const override { return static_cast<int>(sizeof *this + other_.capacity()); }

private:
  Document& document_;
  std::size_t line_;
  std::string other_;
};

void type(qvUndo::Manager& undo, Document& document, const char* line) {
  qvUndo::Group* group = undo.newGroup("type", false);
  new AddLine(group, document, line); // the group owns it
  group->doIt();
}

void replaceAll(qvUndo::Manager& undo, Document& document, const std::string& from, const std::string& to) {
  bool chained = false; // the first group starts the chain, the others are tied to it
  for (std::size_t line = 0; line < document.size(); ++line) {
    const std::size_t place = document[line].find(from);
    if (place == std::string::npos) continue;
    qvUndo::Group* group = undo.newGroup("replace", chained);
    new ChangeLine(group, document, line, std::string(document[line]).replace(place, from.size(), to));
    group->doIt();
    chained = true;
  }
}

/// Prints the document, and tells whether it is as expected.
bool shows(const char* when, const Document& document, const Document& expected) {
  std::printf("%s:\n", when);
  for (const std::string& line : document) std::printf("    %s\n", line.c_str());
  return document == expected;
}

} // namespace

int main() {
  Document document;
  const std::unique_ptr<qvUndo::Manager> undo(qvUndo::newManager());
  undo->setMaxGroups(100); // the last hundred chains can be undone

  type(*undo, document, "a red house");
  type(*undo, document, "a red boat");
  replaceAll(*undo, document, "red", "green");
  bool good = shows("replaced", document, {"a green house", "a green boat"});

  undo->undoIt();
  good = shows("after one undo", document, {"a red house", "a red boat"}) && good;
  undo->undoIt();
  good = shows("after another", document, {"a red house"}) && good;
  undo->doIt();
  undo->doIt();
  good = shows("after two redos", document, {"a green house", "a green boat"}) && good;

  undo->undoIt();
  type(*undo, document, "a red flag"); // what was undone cannot be redone any more
  good = shows("typed on", document, {"a red house", "a red boat", "a red flag"}) && good && !undo->canRedo();
  return good ? 0 : 1;
}
