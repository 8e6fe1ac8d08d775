// ReferenceCount and Reference: shared ownership inside one thread.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/qvBase.h"

#include <cstddef>
#include <type_traits>
#include <utility>

namespace qv {

/// Base of objects that several holders share inside one thread. The count is not atomic, by design; what
/// crosses threads uses `qvThread::ReferenceCount`. A new object has count 0. Copying an object never copies
/// its count.
class QV_BASE_API ReferenceCount {
public:
  ReferenceCount(const ReferenceCount&) noexcept : refs_(0) {}
  ReferenceCount& operator=(const ReferenceCount&) noexcept { return *this; }

  /// Adds a holder.
  void ref() const noexcept { ++refs_; }
  /// Takes a holder away, and deletes the object if exactly 0 are left.
  void unref() const {
    if (--refs_ == 0) delete this;
  }
  /// The number of holders.
  [[nodiscard]] int refs() const noexcept { return refs_; }

protected:
  ReferenceCount() noexcept : refs_(0) {}
  virtual ~ReferenceCount();

private:
  mutable int refs_; // holders of a constant object count, too
};

static_assert(sizeof(ReferenceCount) == 2 * sizeof(void*));

/// Holds an object that has `ref` and `unref`, and counts as one of its holders; may be null. As large as a
/// pointer.
template <class T>
class Reference {
public:
  using element_type = T;

  Reference() noexcept = default;
  Reference(std::nullptr_t) noexcept {}
  Reference(T* object) noexcept : object_(object) {
    if (object_) object_->ref();
  }
  Reference(const Reference& other) noexcept : Reference(other.object_) {}
  Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  /// From a holder of a derived or less constant type.
  template <class U>
  requires std::is_convertible_v<U*, T*> Reference(const Reference<U>& other)
  noexcept : Reference(other.get()) {}
  ~Reference() { reset(); }

  /// Takes the new object before it drops the old one, so that assigning a reference to itself, or to a part
  /// of what it holds, is safe.
  Reference& operator=(Reference other) noexcept {
    swap(other);
    return *this;
  }

  /// Drops the object. The pointer is null before the object can go, so that its destructor sees no dead
  /// holder.
  void reset() {
    if (T* const object = std::exchange(object_, nullptr)) object->unref();
  }
  void swap(Reference& other) noexcept { std::swap(object_, other.object_); }

  /// The object; null if there is none.
  [[nodiscard]] T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  [[nodiscard]] explicit operator bool() const noexcept { return object_ != nullptr; }

private:
  T* object_ = nullptr;
};

template <class T, class U>
bool operator==(const Reference<T>& a, const Reference<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T>
bool operator==(const Reference<T>& a, const T* b) noexcept {
  return a.get() == b;
}
template <class T>
bool operator==(const Reference<T>& a, std::nullptr_t) noexcept {
  return !a.get();
}
template <class T>
void swap(Reference<T>& a, Reference<T>& b) noexcept {
  a.swap(b);
}

template <class T>
inline constexpr bool isRelocatable<Reference<T>> = true;

} // namespace qv
