#pragma once

#include "host/host_interface.h"

/// A node of an intrusive list. Its only virtual operations are the two destructors.
class CListItem {
  public:
    CListItem() = default;
    virtual ~CListItem() = default;
    CListItem(const CListItem&) = delete;
    CListItem& operator=(const CListItem&) = delete;

    CListItem* prev = nullptr;
    CListItem* next = nullptr;
};

/// An intrusive list between two sentinels of the node type. Does not own its nodes: before the list is
/// destroyed, the owner removes each one with RemoveFirst and deletes it.
template <class T>
class CDoubleLinkedList {
  public:
    CDoubleLinkedList() {
        head.next = &tail;
        tail.prev = &head;
    }
    /// Unlinks the remaining nodes without deleting them.
    ~CDoubleLinkedList() {
        while (RemoveFirst() != nullptr) {
        }
    }
    CDoubleLinkedList(const CDoubleLinkedList&) = delete;
    CDoubleLinkedList& operator=(const CDoubleLinkedList&) = delete;

    /// Links `node` after all others; null is ignored.
    void AddAtTail(T* node) {
        if (node == nullptr) {
            return;
        }
        node->prev = tail.prev;
        node->next = &tail;
        tail.prev->next = node;
        tail.prev = node;
        ++count;
    }

    /// Links `node` before all others; null is ignored. Deliberately leaves the `prev` of the former first
    /// node (of `tail` in an empty list) pointing at `head`: this is part of how the list is laid out. Walk
    /// lists forwards only, empty them from the front, and fill each list at one end only.
    void AddAtHead(T* node) {
        if (node == nullptr) {
            return;
        }
        node->prev = &head;
        node->next = head.next;
        head.next = node;
        ++count;
    }

    /// The first node, or null when the list is empty.
    [[nodiscard]] T* First() { return NodeOrEnd(head.next); }

    /// The node after `node`, or null when it is the last.
    [[nodiscard]] T* Next(T* node) { return NodeOrEnd(node->next); }

    /// Unlinks the first node and returns it; null when the list is empty. The node's own links are cleared.
    T* RemoveFirst() {
        T* const node = First();
        if (node != nullptr) {
            head.next = node->next;
            node->next->prev = &head;
            node->prev = nullptr;
            node->next = nullptr;
            --count;
        }
        return node;
    }

    T head;
    T tail;
    A_long count = 0;

  private:
    T* NodeOrEnd(CListItem* item) { return item == &tail ? nullptr : static_cast<T*>(item); }
};
