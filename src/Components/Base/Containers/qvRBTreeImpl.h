// The untyped core of the ordered sets and maps: a red-black tree whose nodes come from a pool. All element
// types share this one copy of the code; walks that compare keys come with the type's record, so that they
// run inline.
#pragma once

#include "Base/Containers/qvBlockAllocator.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qv {

/// A balanced tree of keys, each with a value or without. `end()` is the tree itself, which therefore cannot
/// be moved as bytes. Nodes stay where they are until they are erased. Exhausted memory ends the process. Not
/// thread-safe, but for reading.
class RBTreeImpl {
public:
  enum Color : std::int32_t { black = 0, red = 1 };

  /// The links; key and value follow at the offsets that the record gives, which may lie in the padding
  /// behind the colour.
  struct Node {
    Node* left;
    Node* right;
    Node* parent;
    Color color;

    Node() = default;
    Node(const Node&) = delete;
    /// Copies links and colour, and no byte more.
    Node& operator=(const Node& other) noexcept {
      left = other.left;
      right = other.right;
      parent = other.parent;
      color = other.color;
      return *this;
    }
    /// @{ Neighbours in order. The one after the last is the header, and the one before the header the last.
    [[nodiscard]] QV_BASE_API Node* next() const noexcept;
    [[nodiscard]] QV_BASE_API Node* prev() const noexcept;
    /// @}
    /// Exchanges the headers of two trees; an empty side ends linked to itself. The roots' parents stay.
    QV_BASE_API void swapHeaders(Node& other) noexcept;
  };

  /// Bytes of the links and the colour: where a key may begin.
  static constexpr std::uint32_t sHeaderSize = 3 * sizeof(Node*) + sizeof(Color);

  /// What the core knows of a key and a value type: one constant record for each pair.
  struct TypeUtil {
    /// Bytes of one node, links included.
    std::int32_t nodeSize;
    /// @{ Where key and value begin in the node.
    std::int32_t keyOffset;
    std::int32_t valueOffset;
    /// @}
    /// Strict ordering of keys.
    bool (*less)(const void* keyA, const void* keyB);
    void (*copyKey)(void* dst, const void* src);
    /// @{ Copy- and default-construct a value. Null where there is none.
    void (*copyValue)(void* dst, const void* src);
    void (*constructValue)(void* dst);
    /// @}
    /// @{ Null if there is nothing to do.
    void (*destructKey)(void* key);
    void (*destructValue)(void* value);
    /// @}
    /// Destroys and frees a whole subtree.
    void (*destructSubtree)(RBTreeImpl* tree, Node* root);
    /// @{ First node not less than, or greater than, the key; `end()` where there is none.
    Node* (*lowerBound)(const RBTreeImpl* tree, const void* key);
    Node* (*upperBound)(const RBTreeImpl* tree, const void* key);
    /// @}
    /// Stores the node under which the key belongs, behind its equals; the header if the tree is empty. True
    /// if it goes to the left, as it does under the header.
    bool (*findInsertPosition)(RBTreeImpl* tree, const void* key, Node** parentOut);
  };

  /// Two bounds.
  struct Range {
    Node* first;
    Node* second;
  };

  /// Empty. `typeUtil` must outlive the tree.
  explicit RBTreeImpl(const TypeUtil* typeUtil) noexcept
      : typeUtil_(typeUtil), allocator_(static_cast<std::size_t>(typeUtil->nodeSize), 10) {
    initializeTreeState();
  }
  RBTreeImpl(const RBTreeImpl& other) : RBTreeImpl(other.typeUtil_) { copy(other); }
  RBTreeImpl& operator=(const RBTreeImpl&) = delete;
  ~RBTreeImpl() { destructAllNodes(); }

  /// @{ The constructors' work, on raw memory or on a tree that was destroyed.
  QV_BASE_API void initialize(const TypeUtil* typeUtil) noexcept;
  QV_BASE_API void initialize(const RBTreeImpl& other);
  /// @}
  /// The links and the count of an empty tree.
  void initializeTreeState() noexcept {
    header_.left = header_.right = &header_;
    header_.parent = nullptr;
    header_.color = red;
    count_ = 0;
  }

  [[nodiscard]] int size() const noexcept { return count_; }
  [[nodiscard]] Node* root() const noexcept { return header_.parent; }
  [[nodiscard]] Node* begin() noexcept { return header_.left; }
  [[nodiscard]] const Node* begin() const noexcept { return header_.left; }
  [[nodiscard]] Node* end() noexcept { return &header_; }
  [[nodiscard]] const Node* end() const noexcept { return &header_; }

  /// @{ The pool's functions.
  void setNumElementsInBlock(int count) noexcept { allocator_.setNumElementsInBlock(count); }
  [[nodiscard]] Node* allocateNode() noexcept { return static_cast<Node*>(allocator_.alloc()); }
  void freeNode(Node* node) noexcept { allocator_.free(node); }
  /// @}

  /// The first node with that key, or `end()`.
  [[nodiscard]] QV_BASE_API Node* findNode(const void* key) const;
  /// Number of nodes with that key.
  [[nodiscard]] QV_BASE_API int count(const void* key) const;
  [[nodiscard]] Node* lowerBound(const void* key) const { return typeUtil_->lowerBound(this, key); }
  [[nodiscard]] Node* upperBound(const void* key) const { return typeUtil_->upperBound(this, key); }
  [[nodiscard]] Range equalRange(const void* key) { return {lowerBound(key), upperBound(key)}; }

  /// @{ Inserts copies of key and value (default-constructed where no value is given), unless the key is
  /// there already. Returns the new or the existing node, whose value stays as it is.
  QV_BASE_API Node* insertNodeUnique(const void* key, const void* value);
  QV_BASE_API Node* insertNodeUnique(const void* key);
  /// @}
  /// @{ Inserts always, behind the nodes with the same key. Returns the new node.
  QV_BASE_API Node* insertNodeNonUnique(const void* key, const void* value);
  QV_BASE_API Node* insertNodeNonUnique(const void* key);
  /// @}
  /// @{ The same; a key that belongs next to `hint` costs no walk from the root.
  QV_BASE_API Node* insertNodeUnique(Node* hint, const void* key, const void* value);
  QV_BASE_API Node* insertNodeUnique(Node* hint, const void* key);
  QV_BASE_API Node* insertNodeNonUnique(Node* hint, const void* key, const void* value);
  QV_BASE_API Node* insertNodeNonUnique(Node* hint, const void* key);
  /// @}
  /// The value of that key, which is inserted with a default-constructed value where it is missing.
  QV_BASE_API void* getValuePtr(const void* key);

  /// Unlinks, rebalances, destroys and frees. Other nodes keep their addresses.
  QV_BASE_API void eraseNode(Node* node);
  /// Erases from `first` up to `last`.
  QV_BASE_API void eraseNodesRange(Node* first, Node* last);
  /// Erases all nodes with that key. Returns how many.
  QV_BASE_API int eraseNodesMatching(const void* key);
  /// Erases everything; the pool keeps its blocks.
  QV_BASE_API void clear();

  /// Restores the colours after `node`, which is red, was linked in.
  QV_BASE_API void rebalance(Node* node) noexcept;

  /// Exchanges everything, type records included.
  QV_BASE_API void swap(RBTreeImpl& other) noexcept;
  /// Makes this a copy, built anew by insertion in order. Nothing for the tree itself.
  QV_BASE_API void copy(const RBTreeImpl& other);

protected:
  [[nodiscard]] bool keyCompare(const void* keyA, const void* keyB) const {
    return typeUtil_->less(keyA, keyB);
  }
  [[nodiscard]] void* keyPtrOfNode(const Node* node) const noexcept {
    return const_cast<char*>(reinterpret_cast<const char*>(node)) + typeUtil_->keyOffset;
  }
  [[nodiscard]] void* valuePtrOfNode(const Node* node) const noexcept {
    return const_cast<char*>(reinterpret_cast<const char*>(node)) + typeUtil_->valueOffset;
  }
  [[nodiscard]] QV_BASE_API static Node* sFindLeftMost(const Node* node) noexcept;
  [[nodiscard]] QV_BASE_API static Node* sFindRightMost(const Node* node) noexcept;
  /// Steps of `next` from `first` to `last`.
  [[nodiscard]] QV_BASE_API static int sDistanceBetween(Node* first, Node* last) noexcept;

  /// Inserts under `parent`: to the left if `forceLeft` is not null, else to the right if `forceRight` is not
  /// null, else where the order says. Under the header it becomes the root of an empty tree.
  QV_BASE_API Node* insertNode(Node* forceLeft, Node* parent, const void* key, const void* value,
                               Node* forceRight);
  QV_BASE_API void destructAllNodes();
  QV_BASE_API void rotateLeft(Node* node) noexcept;
  QV_BASE_API void rotateRight(Node* node) noexcept;

private:
  friend struct detail::ContainerCheck;
  struct Layout;

  struct NewNode;

  Node* makeNode(const void* key, const void* value);
  Node* insertBetween(Node* before, Node* after, const void* key, const void* value);
  void replaceChild(Node* node, Node* replacement) noexcept;
  void unlinkNode(Node* node) noexcept;
  void rebalanceAfterErase(Node* node, Node* parent) noexcept;
  bool keyLess(const Node* a, const void* key) const { return keyCompare(keyPtrOfNode(a), key); }
  bool lessKey(const void* key, const Node* a) const { return keyCompare(key, keyPtrOfNode(a)); }

  Node header_;
  std::int32_t count_;
  const TypeUtil* typeUtil_;
  BlockAllocator allocator_;
};

} // namespace qv
