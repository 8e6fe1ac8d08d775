// What an object is linked into a list by that the list does not own.
#pragma once

#include "Base/qvBase.h"

namespace qvOS {

/// The two links of an object; null while it is in no list. Only lists and derived classes know of them.
class QV_BASE_API LinkedListNode {
public:
  virtual ~LinkedListNode();
  LinkedListNode(const LinkedListNode&) = delete;
  LinkedListNode& operator=(const LinkedListNode&) = delete;

protected:
  LinkedListNode() noexcept = default;

private:
  friend class LinkedList;

  LinkedListNode* previous = nullptr;
  LinkedListNode* next = nullptr;
};

static_assert(sizeof(LinkedListNode) == 3 * sizeof(void*));

} // namespace qvOS
