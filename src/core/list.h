/*
 * ZuList and ZuDList: circular linked lists of intrusive nodes.
 *
 * A list keeps its last node; the last node's link is the first node, so the
 * head and the tail are both one step away.  A node belongs to at most one
 * list at a time and carries its own links (ZuNode: next; ZuDNode: next and
 * previous); a node outside any list has null links.
 *
 * The list also keeps an iteration position: the node that getNodeAtPos last
 * reached, advanced by getNextNode, cleared when that node is unlinked.
 *
 * Ownership: linking hands nothing over.  The list deletes nodes only in
 * deleteNodes (through their virtual destructors); removeFirstNode,
 * removeLastNode and unlink give the node back to the caller.  Positions are
 * 0-based and not checked beyond what each call says.
 */
#ifndef HNSYB_CORE_LIST_H
#define HNSYB_CORE_LIST_H

#include "object.h"

class ZU_EXPORT ZuNode : public ZuObject {
public:
    ZuNode() = default;
    ~ZuNode() override;
    ZuNode* next = nullptr;
};

class ZU_EXPORT ZuDNode : public ZuObject {
public:
    ZuDNode() = default;
    ~ZuDNode() override;
    ZuDNode* next = nullptr;
    ZuDNode* previous = nullptr;
};

class ZU_EXPORT ZuList : public ZuObject {
public:
    ZuList() = default;
    ~ZuList() override;  // unlinks nothing and deletes nothing
    ZuList(const ZuList&) = delete;
    ZuList& operator=(const ZuList&) = delete;

    void insert(ZuNode* node);                          // at the head
    void append(ZuNode* node);                          // at the tail
    // 0 inserts, count appends, otherwise after getNodeAtPos(position - 1);
    // a position past the count appends.
    void insertAtPos(ZuNode* node, unsigned position);
    // 0 when the node was in the list and is now out of it; 1 otherwise.
    // (ZuList searches for the node; ZuDList has its predecessor at hand and
    // only refuses a node that is in no list: unlinking a node of another
    // list from this one is the caller's error.)
    int unlink(ZuNode* node);
    void deleteNodes();
    ZuNode* getLastNode() const { return last_; }
    ZuNode* getFirstNode() const { return last_ == nullptr ? nullptr : last_->next; }
    // Walks from the first node; null past the last.  Sets the iteration
    // position to the node reached.
    ZuNode* getNodeAtPos(unsigned position);
    // The node after the iteration position (null after the last), which
    // becomes the position.
    ZuNode* getNextNode();
    ZuNode* removeFirstNode();
    ZuNode* removeLastNode();
    // The last node moves to `position` of the list without it.
    void moveLastNodeToPos(unsigned position);
    unsigned getCount() const { return count_; }

private:
    ZuNode* last_ = nullptr;
    unsigned count_ = 0;
    ZuNode* position_ = nullptr;
};

class ZU_EXPORT ZuDList : public ZuObject {
public:
    ZuDList() = default;
    ~ZuDList() override;
    ZuDList(const ZuDList&) = delete;
    ZuDList& operator=(const ZuDList&) = delete;

    void insert(ZuDNode* node);
    void append(ZuDNode* node);
    void insertAtPos(ZuDNode* node, unsigned position);
    int unlink(ZuDNode* node);
    void deleteNodes();
    ZuDNode* getLastNode() const { return last_; }
    ZuDNode* getFirstNode() const { return last_ == nullptr ? nullptr : last_->next; }
    ZuDNode* getNodeAtPos(unsigned position);
    ZuDNode* getNextNode();
    ZuDNode* removeFirstNode();
    ZuDNode* removeLastNode();
    void moveLastNodeToPos(unsigned position);
    unsigned getCount() const { return count_; }

private:
    ZuDNode* last_ = nullptr;
    unsigned count_ = 0;
    ZuDNode* position_ = nullptr;
};

#endif
