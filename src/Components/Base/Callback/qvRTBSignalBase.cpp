#include "Base/Callback/qvRTBSignalBase.h"

#include <cstddef>

namespace qvRTB {

struct SignalBase::connectionItem::Layout {
  static_assert(offsetof(connectionItem, next_) == 0 && offsetof(connectionItem, prev_) == sizeof(void*));
  static_assert(offsetof(connectionItem, function_) == 2 * sizeof(void*));
  static_assert(offsetof(connectionItem, owner_) == 3 * sizeof(void*));
  static_assert(offsetof(connectionItem, peer_) == 4 * sizeof(void*));
  static_assert(offsetof(connectionItem, lockCount_) == 5 * sizeof(void*));
  static_assert(offsetof(connectionItem, blockCount_) == 5 * sizeof(void*) + 2);
  static_assert(offsetof(connectionItem, destroyPending_) == 5 * sizeof(void*) + 4);
  static_assert(sizeof(connectionItem) == 5 * sizeof(void*) + 8);
};

SignalBase::connectionItem::~connectionItem() { delete function_; }

void SignalBase::connectionItem::unlink() noexcept {
  if (prev_)
    prev_->next_ = next_;
  else
    owner_->head_ = next_;
  if (next_) next_->prev_ = prev_;
  next_ = nullptr;
  prev_ = nullptr;
  owner_ = nullptr;
}

void SignalBase::connectionItem::destroy() {
  if (peer_) {
    peer_->peer_ = nullptr;
    peer_->destroy();
    peer_ = nullptr;
  }
  if (lockCount_ > 0) {
    destroyPending_ = true;
    return;
  }
  if (owner_) unlink();
  delete this;
}

// Takes the items off one by one from a list that is in order at every moment: the destructor of a function
// object may cut further connections of this signal.
SignalBase::~SignalBase() {
  while (connectionItem* item = head_) {
    item->unlink();
    item->destroy();
  }
}

SignalBase::connectionItem* SignalBase::createConnectionItem() {
  auto* item = new connectionItem(this);
  item->next_ = head_;
  if (head_) head_->prev_ = item;
  head_ = item;
  return item;
}

Connection* SignalBase::addCallback(FunctionBase* function) {
  if (!function) return nullptr;
  connectionItem* item = createConnectionItem();
  item->function_ = function;
  return item;
}

Connection* SignalBase::addCallback(FunctionBase* function, SignalClient& client) {
  if (!function) return nullptr;
  connectionItem* peer = client.createConnectionItem();
  connectionItem* item = createConnectionItem();
  item->function_ = function;
  item->peer_ = peer;
  peer->peer_ = item;
  return item;
}

SignalBase::connectionItem* SignalBase::find(const Connection* connection) const noexcept {
  connectionItem* item = head_;
  while (item && item != connection) item = item->next_;
  return item;
}

void SignalBase::disconnect(Connection* connection) {
  if (connectionItem* item = find(connection)) item->destroy();
}

void SignalBase::disconnectInstance(void* instance) {
  connectionItem* item = head_;
  if (item) item->lock();
  while (item) {
    if (item->function_->isInstance(instance)) item->destroy();
    connectionItem* next = item->next_;
    if (next) next->lock();
    item->unlock();
    item = next;
  }
}

Connection* SignalBase::findGlobalCallback(void* function) const {
  for (connectionItem* item = head_; item; item = item->next_)
    if (item->function_->isGlobalFunction(function)) return item;
  return nullptr;
}

Connection* SignalBase::findInstance(void* instance) const {
  for (connectionItem* item = head_; item; item = item->next_)
    if (!item->destroyPending_ && item->function_->isInstance(instance)) return item;
  return nullptr;
}

void SignalBase::block(Connection* connection) {
  if (connectionItem* item = find(connection)) item->block();
}

void SignalBase::unblock(Connection* connection) {
  if (connectionItem* item = find(connection)) item->unblock();
}

void SignalBase::blockAll() {
  if (!head_) return;
  for (connectionItem* item = head_->next_; item; item = item->next_) item->block();
}

void SignalBase::unblockAll() {
  if (!head_) return;
  for (connectionItem* item = head_->next_; item; item = item->next_) item->unblock();
}

bool SignalBase::isBlocked(const Connection* connection) const {
  const connectionItem* item = find(connection);
  return !item || item->isBlocked();
}

int SignalBase::numConnections() const noexcept {
  int count = 0;
  for (const connectionItem* item = head_; item; item = item->next_) ++count;
  return count;
}

} // namespace qvRTB
