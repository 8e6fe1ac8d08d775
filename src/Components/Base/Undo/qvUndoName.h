// The name of a group or a command, as neighbours share it. Private.
#pragma once

#include "Base/Utility/qvReferenceCount.h"

#include <cstring>
#include <new>

namespace qvUndo {

/// A text that does not change, in one block with the count of its holders. Not thread-safe.
class Name {
public:
  /// The name `text`: `neighbour`, which may be null, if it says the same, else a copy; null of null.
  [[nodiscard]] static qv::Reference<const Name> make(const char* text,
                                                      const qv::Reference<const Name>& neighbour) {
    if (!text) return nullptr;
    if (neighbour && std::strcmp(neighbour->text(), text) == 0) return neighbour;
    const std::size_t size = std::strlen(text) + 1;
    auto* const name = new (::operator new(sizeof(Name) + size)) Name;
    std::memcpy(static_cast<void*>(name + 1), text, size);
    return name;
  }
  Name(const Name&) = delete;
  Name& operator=(const Name&) = delete;

  void ref() const noexcept { ++refs_; }
  void unref() const noexcept {
    if (--refs_ == 0) ::operator delete(const_cast<Name*>(this));
  }
  [[nodiscard]] const char* text() const noexcept { return reinterpret_cast<const char*>(this + 1); }

private:
  Name() = default;

  mutable int refs_ = 0;
};

/// Null where there is no name.
[[nodiscard]] inline const char* textOf(const qv::Reference<const Name>& name) noexcept {
  return name ? name->text() : nullptr;
}

} // namespace qvUndo
