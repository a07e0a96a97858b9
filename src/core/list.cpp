#include "list.h"

// The two lists share every walk; only linking differs (a ZuDNode also keeps
// its predecessor, which lets ZuDList unlink without a search).  The shared
// operations are written once over the list's own fields.
namespace {

template <class Node>
struct ListFields {
    Node*& last;
    unsigned& count;
    Node*& position;
};

template <class Node>
Node* nodeAtPos(ListFields<Node> f, unsigned position)
{
    Node* node = f.last == nullptr ? nullptr : f.last->next;
    for (unsigned i = 0; node != nullptr && i < position; ++i)
        node = node == f.last ? nullptr : node->next;
    f.position = node;
    return node;
}

template <class Node>
Node* nextNode(ListFields<Node> f)
{
    if (f.position == nullptr || f.position == f.last)
        f.position = nullptr;
    else
        f.position = f.position->next;
    return f.position;
}

void linkAfter(ZuNode* previous, ZuNode* node) { node->next = previous->next; previous->next = node; }
void linkAfter(ZuDNode* previous, ZuDNode* node)
{
    node->next = previous->next;
    node->previous = previous;
    previous->next->previous = node;
    previous->next = node;
}
void linkAlone(ZuNode* node) { node->next = node; }
void linkAlone(ZuDNode* node) { node->next = node->previous = node; }

template <class Node>
void insertHead(ListFields<Node> f, Node* node)
{
    if (f.last == nullptr) {
        linkAlone(node);
        f.last = node;
    } else {
        linkAfter(f.last, node);
    }
    ++f.count;
}

template <class Node>
void appendTail(ListFields<Node> f, Node* node)
{
    insertHead(f, node);
    f.last = node;
}

template <class Node>
void insertAt(ListFields<Node> f, Node* node, unsigned position)
{
    if (position == 0) {
        insertHead(f, node);
    } else if (position >= f.count) {
        appendTail(f, node);
    } else {
        linkAfter(nodeAtPos(f, position - 1), node);
        ++f.count;
    }
}

// Takes `node`, whose predecessor is `previous`, out of the list.
template <class Node>
void unlinkWith(ListFields<Node> f, Node* node, Node* previous)
{
    if (node == previous) {
        f.last = nullptr;
    } else {
        previous->next = node->next;
        if constexpr (requires { node->previous; })
            node->next->previous = previous;
        if (f.last == node)
            f.last = previous;
    }
    node->next = nullptr;
    if constexpr (requires { node->previous; })
        node->previous = nullptr;
    --f.count;
    if (f.position == node)
        f.position = nullptr;
}

}  // namespace

#define ZU_LIST_FIELDS(Node) ListFields<Node>{last_, count_, position_}

ZuNode::~ZuNode() = default;
ZuDNode::~ZuDNode() = default;

// ---- ZuList ----------------------------------------------------------------

ZuList::~ZuList() = default;

void ZuList::insert(ZuNode* node) { insertHead(ZU_LIST_FIELDS(ZuNode), node); }
void ZuList::append(ZuNode* node) { appendTail(ZU_LIST_FIELDS(ZuNode), node); }
void ZuList::insertAtPos(ZuNode* node, unsigned position) { insertAt(ZU_LIST_FIELDS(ZuNode), node, position); }
ZuNode* ZuList::getNodeAtPos(unsigned position) { return nodeAtPos(ZU_LIST_FIELDS(ZuNode), position); }
ZuNode* ZuList::getNextNode() { return nextNode(ZU_LIST_FIELDS(ZuNode)); }

int ZuList::unlink(ZuNode* node)
{
    if (last_ == nullptr || node == nullptr)
        return 1;
    // A singly linked node does not know its predecessor: search for it.
    ZuNode* previous = last_;
    do {
        if (previous->next == node) {
            unlinkWith(ZU_LIST_FIELDS(ZuNode), node, previous);
            return 0;
        }
        previous = previous->next;
    } while (previous != last_);
    return 1;
}

void ZuList::deleteNodes()
{
    while (ZuNode* first = removeFirstNode())
        delete first;
}

ZuNode* ZuList::removeFirstNode()
{
    ZuNode* first = getFirstNode();
    if (first != nullptr)
        unlinkWith(ZU_LIST_FIELDS(ZuNode), first, last_);
    return first;
}

ZuNode* ZuList::removeLastNode()
{
    ZuNode* node = last_;
    if (node != nullptr)
        unlink(node);
    return node;
}

void ZuList::moveLastNodeToPos(unsigned position)
{
    if (ZuNode* node = removeLastNode())
        insertAtPos(node, position);
}

// ---- ZuDList ---------------------------------------------------------------

ZuDList::~ZuDList() = default;

void ZuDList::insert(ZuDNode* node) { insertHead(ZU_LIST_FIELDS(ZuDNode), node); }
void ZuDList::append(ZuDNode* node) { appendTail(ZU_LIST_FIELDS(ZuDNode), node); }
void ZuDList::insertAtPos(ZuDNode* node, unsigned position) { insertAt(ZU_LIST_FIELDS(ZuDNode), node, position); }
ZuDNode* ZuDList::getNodeAtPos(unsigned position) { return nodeAtPos(ZU_LIST_FIELDS(ZuDNode), position); }
ZuDNode* ZuDList::getNextNode() { return nextNode(ZU_LIST_FIELDS(ZuDNode)); }

int ZuDList::unlink(ZuDNode* node)
{
    // The predecessor is at hand.  A node that is in no list has null links.
    if (last_ == nullptr || node == nullptr || node->previous == nullptr)
        return 1;
    unlinkWith(ZU_LIST_FIELDS(ZuDNode), node, node->previous);
    return 0;
}

void ZuDList::deleteNodes()
{
    while (ZuDNode* first = removeFirstNode())
        delete first;
}

ZuDNode* ZuDList::removeFirstNode()
{
    ZuDNode* first = getFirstNode();
    if (first != nullptr)
        unlinkWith(ZU_LIST_FIELDS(ZuDNode), first, last_);
    return first;
}

ZuDNode* ZuDList::removeLastNode()
{
    ZuDNode* node = last_;
    if (node != nullptr)
        unlinkWith(ZU_LIST_FIELDS(ZuDNode), node, node->previous);
    return node;
}

void ZuDList::moveLastNodeToPos(unsigned position)
{
    if (ZuDNode* node = removeLastNode())
        insertAtPos(node, position);
}
