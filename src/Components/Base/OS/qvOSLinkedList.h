// A list of objects that bring their links with them. Private to the library.
#pragma once

#include "Base/OS/qvOSLinkedListNode.h"

namespace qvOS {

/// Starts and ends in a link of its own, so that every node has neighbours. It owns nothing, and can neither
/// be copied nor moved.
class LinkedList {
public:
  LinkedList() noexcept {
    head_.next = &tail_;
    tail_.previous = &head_;
  }
  LinkedList(const LinkedList&) = delete;
  LinkedList& operator=(const LinkedList&) = delete;

  /// @{ The node at an end, or beside another one; null where there is none.
  [[nodiscard]] LinkedListNode* first() const noexcept { return after(head_); }
  [[nodiscard]] LinkedListNode* before(const LinkedListNode& node) const noexcept {
    return node.previous == &head_ ? nullptr : node.previous;
  }
  [[nodiscard]] LinkedListNode* after(const LinkedListNode& node) const noexcept {
    return node.next == &tail_ ? nullptr : node.next;
  }
  /// @}

  void append(LinkedListNode& node) noexcept { insertBefore(tail_, node); }
  void insertBefore(LinkedListNode& position, LinkedListNode& node) noexcept {
    node.previous = position.previous;
    node.next = &position;
    node.previous->next = &node;
    position.previous = &node;
  }
  static void unlink(LinkedListNode& node) noexcept {
    node.previous->next = node.next;
    node.next->previous = node.previous;
    node.previous = node.next = nullptr;
  }

private:
  LinkedListNode head_;
  LinkedListNode tail_;
};

} // namespace qvOS
