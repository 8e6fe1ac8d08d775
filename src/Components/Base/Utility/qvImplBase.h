// ImplBase and ImplHandle: how a public class hides its state in an object that only one source file knows.
#pragma once

#include "Base/qvBase.h"

#include <utility>

namespace qv {

/// Base of hidden implementation objects, so that a public class can destroy one without knowing its type.
class QV_BASE_API ImplBase {
public:
  virtual ~ImplBase();
};

/// The two fields of a public class that hides its state. The handle that is made with an object owns it; a
/// copy is a second handle that does not, and is good only while the owning handle lives.
class ImplHandle {
public:
  /// Owns `object`, which comes from `new`; may be null.
  explicit ImplHandle(ImplBase* object) noexcept : impl(object), owner(true) {}
  ImplHandle(const ImplHandle& other) noexcept : impl(other.impl), owner(false) {}
  /// Gives up what it holds and becomes a handle that owns nothing.
  ImplHandle& operator=(const ImplHandle& other) noexcept {
    if (impl == other.impl) return *this;
    release();
    impl = other.impl;
    return *this;
  }
  ~ImplHandle() { release(); }

  /// The object as the type that the source file knows it to have.
  template <class T>
  [[nodiscard]] T& as() const noexcept {
    return *static_cast<T*>(impl);
  }
  [[nodiscard]] ImplBase* get() const noexcept { return impl; }
  [[nodiscard]] bool isOwner() const noexcept { return owner; }

private:
  void release() noexcept {
    ImplBase* const object = std::exchange(impl, nullptr);
    if (std::exchange(owner, false)) delete object;
  }

  ImplBase* impl;
  bool owner;
};

static_assert(sizeof(ImplBase) == sizeof(void*) && sizeof(ImplHandle) == 2 * sizeof(void*));

} // namespace qv
