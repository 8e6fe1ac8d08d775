// What all signals share: the list of connections and the rules that let a slot cut any connection, or
// destroy the signal itself, while the signal is being emitted. There is no lock: a signal belongs to one
// thread.
#pragma once

#include "Base/Callback/qvRTBFunction.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvRTB {

class SignalClient;

/// The opaque name of a connection, valid until it is cut.
class Connection {};

/// A list of connections, the newest first. One pointer; an idle signal costs no allocation.
class SignalBase {
public:
  SignalBase() = default;
  SignalBase(const SignalBase&) = delete;
  SignalBase& operator=(const SignalBase&) = delete;

  /// Cuts every connection. In the middle of an emit the running slot finishes and no other is called.
  QV_BASE_API ~SignalBase();

  /// Connects `function`, whose owner the signal becomes, as the first to be called.
  /// @return the connection; null where `function` is null. Cost: one allocation.
  QV_BASE_API Connection* addCallback(FunctionBase* function);
  /// The same, cut as well when `client` is destroyed.
  QV_BASE_API Connection* addCallback(FunctionBase* function, SignalClient& client);

  /// Cuts `connection`; one that is not on this signal is ignored. Cost: linear in the connections.
  QV_BASE_API void disconnect(Connection* connection);
  /// Cuts each connection that calls into the object at `instance`.
  QV_BASE_API void disconnectInstance(void* instance);

  /// The newest connection to the free function at `function`, or null. It finds also one that was cut by a
  /// slot that still runs.
  [[nodiscard]] QV_BASE_API Connection* findGlobalCallback(void* function) const;
  /// The newest connection into the object at `instance` that is not cut, or null.
  [[nodiscard]] QV_BASE_API Connection* findInstance(void* instance) const;

  /// Keeps `connection` from being called until as many `unblock` calls came; one not on this signal is
  /// ignored. An `unblock` too many also keeps it from being called, though `isBlocked` then tells false.
  QV_BASE_API void block(Connection* connection);
  QV_BASE_API void unblock(Connection* connection);
  /// Blocks every connection but the newest, which still is called.
  QV_BASE_API void blockAll();
  /// Undoes one `blockAll`: it passes over the newest connection as well.
  QV_BASE_API void unblockAll();
  /// Whether `connection` is blocked; true for one that is not on this signal.
  [[nodiscard]] QV_BASE_API bool isBlocked(const Connection* connection) const;

  /// How many connections there are, with those that were cut by a slot that still runs.
  [[nodiscard]] QV_BASE_API int numConnections() const noexcept;
  [[nodiscard]] bool isConnected() const noexcept { return head_ != nullptr; }

  class connectionItem;

protected:
  /// Calls `invoke(FunctionBase&)` for each connection that is neither cut nor blocked. An exception of a
  /// slot passes through and leaves that connection locked: it is called further, but never freed.
  template <class Invoke>
  void emitWith(Invoke&& invoke) const;

private:
  connectionItem* createConnectionItem();
  connectionItem* find(const Connection* connection) const noexcept;

  connectionItem* head_ = nullptr;
};

/// One connection, on the list of a signal or, as its peer, on the list of a client.
class SignalBase::connectionItem : public Connection {
public:
  explicit connectionItem(SignalBase* owner) noexcept : owner_(owner) {}
  /// Deletes the function object.
  QV_BASE_API ~connectionItem();
  /// Copies all the fields as they stand, ownership included.
  connectionItem& operator=(const connectionItem&) = default;
  connectionItem(const connectionItem&) = delete;

  /// Keeps the item in memory while an emit stands on it. A count that is full stays full.
  void lock() noexcept {
    if (lockCount_ != fullCount) ++lockCount_;
  }
  /// Undoes one `lock`, and frees an item that was cut in the meantime.
  void unlock() {
    if (lockCount_ != fullCount && --lockCount_ == 0 && destroyPending_) destroy();
  }

  void block() noexcept { blockCount_ = static_cast<std::int16_t>(blockCount_ + 1); }
  void unblock() noexcept { blockCount_ = static_cast<std::int16_t>(blockCount_ - 1); }
  [[nodiscard]] bool isBlocked() const noexcept { return blockCount_ > 0; }

  /// Cuts the connection and its peer. A locked item is flagged and goes with its last `unlock`.
  QV_BASE_API void destroy();

private:
  friend class SignalBase;
  struct Layout;
  static constexpr std::uint16_t fullCount = 0xffff;

  void unlink() noexcept;
  [[nodiscard]] bool isCallable() const noexcept { return !destroyPending_ && blockCount_ == 0; }

  connectionItem* next_ = nullptr;
  connectionItem* prev_ = nullptr;
  FunctionBase* function_ = nullptr;
  SignalBase* owner_;
  connectionItem* peer_ = nullptr;
  std::uint16_t lockCount_ = 0;
  std::int16_t blockCount_ = 0;
  bool destroyPending_ = false;
};

/// An object that receives callbacks has one as a base or a member: when it is destroyed, every connection
/// that was made with it is cut.
class SignalClient : private SignalBase {
public:
  SignalClient() = default;

private:
  friend class SignalBase;
};

static_assert(sizeof(SignalBase) == sizeof(void*) && sizeof(SignalClient) == sizeof(void*));

template <class Invoke>
void SignalBase::emitWith(Invoke&& invoke) const {
  connectionItem* item = head_;
  if (!item) return;
  item->lock();
  while (item) {
    if (item->isCallable()) invoke(*item->function_);
    // Read after the call, which may have cut the next one or destroyed the signal. It is locked before this
    // item goes, since the destructor of a function object may cut connections too.
    connectionItem* next = item->next_;
    if (next) next->lock();
    item->unlock();
    item = next;
  }
}

} // namespace qvRTB
