#pragma once

#include "foundation/Precondition.h"

#include <memory>
#include <vector>

namespace lb {

// A doubly linked list whose ownership runs forward only: the list owns its
// first node and each node owns the next; back links and `last` do not own.
// Not thread-safe; its owner locks.
template <class Payload>
class PXRDoublyLinkedList {
public:
  class Node {
  public:
    explicit Node(Payload value) : payload(std::move(value)) {}
    ~Node() {
      // Release the following nodes one after another instead of by nested
      // destruction, so a long chain cannot exhaust the stack.
      auto following = std::move(next_);
      while (following) following = std::move(following->next_);
    }
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    const Payload payload;
    Node* next() const { return next_.get(); }
    Node* previous() const { return previous_; }

  private:
    friend class PXRDoublyLinkedList;
    std::unique_ptr<Node> next_;
    Node* previous_ = nullptr;
  };

  // Iterating yields the nodes from first to last. The iterator steps on
  // before handing a node out, so the node just returned may be removed.
  class Iterator {
  public:
    explicit Iterator(Node* node) : node_(node), next_(node ? node->next() : nullptr) {}
    Node& operator*() const { return *node_; }
    Iterator& operator++() {
      node_ = next_;
      next_ = node_ ? node_->next() : nullptr;
      return *this;
    }
    bool operator==(const Iterator& other) const { return node_ == other.node_; }

  private:
    Node* node_;
    Node* next_;
  };

  PXRDoublyLinkedList() = default;
  PXRDoublyLinkedList(std::initializer_list<Payload> payloads) {
    for (const auto& payload : payloads) append(payload);
  }
  ~PXRDoublyLinkedList() { removeAll(); }
  PXRDoublyLinkedList(const PXRDoublyLinkedList&) = delete;
  PXRDoublyLinkedList& operator=(const PXRDoublyLinkedList&) = delete;

  // With `debug` on, every change checks the links before and after, and a
  // node handed in must belong to this list. A failure stops the program.
  bool debug = false;

  Node* first() const { return first_.get(); }
  Node* last() const { return last_; }
  bool empty() const { return !first_; }

  Iterator begin() const { return Iterator(first_.get()); }
  Iterator end() const { return Iterator(nullptr); }

  // Links a node that belongs to no list at the front.
  Node* prepend(std::unique_ptr<Node> node) {
    PXR_PRECONDITION(node && !node->next_ && !node->previous_, "node already linked");
    check();
    Node* raw = node.get();
    if (first_) {
      first_->previous_ = raw;
      node->next_ = std::move(first_);
    } else {
      last_ = raw;
    }
    first_ = std::move(node);
    check();
    return raw;
  }

  // Links a node that belongs to no list at the back.
  Node* append(std::unique_ptr<Node> node) {
    PXR_PRECONDITION(node && !node->next_ && !node->previous_, "node already linked");
    check();
    Node* raw = node.get();
    if (last_) {
      raw->previous_ = last_;
      last_->next_ = std::move(node);
    } else {
      first_ = std::move(node);
    }
    last_ = raw;
    check();
    return raw;
  }

  Node* prepend(Payload payload) { return prepend(std::make_unique<Node>(std::move(payload))); }
  Node* append(Payload payload) { return append(std::make_unique<Node>(std::move(payload))); }

  void moveToFirst(Node* node) { prepend(remove(node)); }

  // Unlinks a node of this list and hands it back.
  std::unique_ptr<Node> remove(Node* node) {
    if (debug) PXR_PRECONDITION(contains(node), "node is not in this list");
    check();
    Node* previous = node->previous_;
    std::unique_ptr<Node>& owner = previous ? previous->next_ : first_;
    std::unique_ptr<Node> removed = std::move(owner);
    owner = std::move(removed->next_);
    if (owner) {
      owner->previous_ = previous;
    } else {
      last_ = previous;
    }
    removed->previous_ = nullptr;
    check();
    return removed;
  }

  std::unique_ptr<Node> removeLast() { return last_ ? remove(last_) : nullptr; }

  void removeAll() {
    while (last_) removeLast();
  }

  std::vector<Payload> payloads() const {
    std::vector<Payload> result;
    for (const Node& node : *this) result.push_back(node.payload);
    return result;
  }

private:
  bool contains(const Node* node) const {
    for (const Node& each : *this) {
      if (&each == node) return true;
    }
    return false;
  }

  void check() const {
    if (!debug) return;
    const Node* before = nullptr;
    for (const Node* node = first_.get(); node; node = node->next()) {
      PXR_PRECONDITION(node->previous_ == before, "broken back link");
      PXR_PRECONDITION(node->next() != node, "node is its own successor");
      before = node;
    }
    PXR_PRECONDITION(before == last_, "forward walk does not end at last");
    const Node* after = nullptr;
    for (const Node* node = last_; node; node = node->previous_) {
      PXR_PRECONDITION(node->next() == after, "broken forward link");
      after = node;
    }
    PXR_PRECONDITION(after == first_.get(), "backward walk does not end at first");
  }

  std::unique_ptr<Node> first_;
  Node* last_ = nullptr;
};

} // namespace lb
