// ZuList and ZuDList, run through the same typed tests: positions, unlinking,
// removal without deletion, deleteNodes, circularity, and a std::list model.
#include <gtest/gtest.h>

#include <iterator>
#include <list>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

#include "core/list.h"

namespace {
template <class List>
using NodeOf = std::remove_pointer_t<decltype(std::declval<List&>().getLastNode())>;

// A node with an id and a live counter (one per node type).
template <class Node>
struct Item : Node {
    static inline int live = 0;
    int id;
    explicit Item(int i) : id(i) { ++live; }
    ~Item() override { --live; }
};

int idOf(const ZuNode* n) { return n == nullptr ? -1 : static_cast<const Item<ZuNode>*>(n)->id; }
int idOf(const ZuDNode* n) { return n == nullptr ? -1 : static_cast<const Item<ZuDNode>*>(n)->id; }
bool detached(const ZuNode* n) { return n->next == nullptr; }
bool detached(const ZuDNode* n) { return n->next == nullptr && n->previous == nullptr; }

// Ids from the first node on; checks that the last node links back to the
// first, that the count matches and, for ZuDList, every previous link.
template <class List>
std::vector<int> walk(const List& l)
{
    std::vector<int> ids;
    auto* first = l.getFirstNode();
    if (first == nullptr) {
        EXPECT_EQ(l.getLastNode(), nullptr);
        EXPECT_EQ(l.getCount(), 0u);
        return ids;
    }
    EXPECT_EQ(l.getLastNode()->next, first);
    auto* n = first;
    do {
        ids.push_back(idOf(n));
        if constexpr (std::is_same_v<List, ZuDList>) {
            EXPECT_EQ(n->next->previous, n);
        }
        n = n->next;
    } while (n != first && ids.size() <= l.getCount());
    EXPECT_EQ(ids.size(), l.getCount());
    return ids;
}

using V = std::vector<int>;
}  // namespace

template <class List>
class Lists : public ::testing::Test {};
using ListTypes = ::testing::Types<ZuList, ZuDList>;
TYPED_TEST_SUITE(Lists, ListTypes);

TYPED_TEST(Lists, InsertAtPosGetNodeAtPosAndIteration)
{
    using I = Item<NodeOf<TypeParam>>;
    TypeParam l;
    EXPECT_EQ(l.getNodeAtPos(0), nullptr);
    I a(0), b(1), c(2), d(3), e(4);
    l.insertAtPos(&b, 0);
    EXPECT_EQ(b.next, &b);  // a single node is its own ring
    l.insertAtPos(&c, l.getCount());  // count appends
    l.insertAtPos(&a, 0);  // 0 inserts at the head
    l.insertAtPos(&d, 2);  // after position 1
    l.insertAtPos(&e, 99);  // past the count appends
    EXPECT_EQ(walk(l), (V{0, 1, 3, 2, 4}));
    EXPECT_EQ(l.getNodeAtPos(4), &e);
    EXPECT_EQ(l.getNodeAtPos(5), nullptr);  // position == count
    EXPECT_EQ(l.getNodeAtPos(6), nullptr);
    V seen{idOf(l.getNodeAtPos(1))};
    while (auto* n = l.getNextNode())
        seen.push_back(idOf(n));
    EXPECT_EQ(seen, (V{1, 3, 2, 4}));
    EXPECT_EQ(l.getNextNode(), nullptr);  // stays at the end
}

TYPED_TEST(Lists, UnlinkClearsLinksCountAndTheIterationPosition)
{
    using I = Item<NodeOf<TypeParam>>;
    TypeParam l;
    I a(0), b(1), c(2), d(3), stranger(9);
    for (I* n : {&a, &b, &c, &d})
        l.append(n);
    ASSERT_EQ(l.getNodeAtPos(1), &b);
    ASSERT_EQ(l.unlink(&b), 0);
    EXPECT_TRUE(detached(&b));
    EXPECT_EQ(l.getCount(), 3u);
    l.insert(&b);  // b has a successor again: a stale position would reach it
    EXPECT_EQ(l.getNextNode(), nullptr);
    ASSERT_EQ(l.unlink(&b), 0);
    ASSERT_EQ(l.getNodeAtPos(0), &a);
    ASSERT_EQ(l.unlink(&d), 0);  // the last node: its predecessor becomes last
    EXPECT_EQ(l.getLastNode(), &c);
    EXPECT_EQ(l.getNextNode(), &c);  // a position elsewhere is kept
    // Nodes in no list (null links) are refused and change nothing.
    EXPECT_EQ(l.unlink(&stranger), 1);
    EXPECT_EQ(l.unlink(&b), 1);
    if constexpr (std::is_same_v<TypeParam, ZuList>) {
        TypeParam other;
        other.append(&b);  // in another list is not in this one
        EXPECT_EQ(l.unlink(&b), 1);
        EXPECT_EQ(walk(other), V{1});
    }
    EXPECT_EQ(walk(l), (V{0, 2}));
    ASSERT_EQ(l.unlink(&a), 0);
    ASSERT_EQ(l.unlink(&c), 0);  // the only node: the list is empty
    EXPECT_EQ(walk(l), V{});
}

TYPED_TEST(Lists, RemoveFirstAndLastHandNodesBackAndMoveLastNodeToPos)
{
    using I = Item<NodeOf<TypeParam>>;
    TypeParam l;
    EXPECT_EQ(l.removeFirstNode(), nullptr);
    EXPECT_EQ(l.removeLastNode(), nullptr);
    I::live = 0;
    for (int i = 0; i < 5; ++i)
        l.append(new I(i));
    l.moveLastNodeToPos(1);
    EXPECT_EQ(walk(l), (V{0, 4, 1, 2, 3}));
    l.moveLastNodeToPos(0);
    EXPECT_EQ(walk(l), (V{3, 0, 4, 1, 2}));
    l.moveLastNodeToPos(4);  // the end of the list without it
    EXPECT_EQ(walk(l), (V{3, 0, 4, 1, 2}));
    V removed;
    while (l.getCount() > 0) {
        auto* n = l.getCount() % 2 ? l.removeFirstNode() : l.removeLastNode();
        EXPECT_TRUE(detached(n));
        EXPECT_EQ(I::live, static_cast<int>(l.getCount()) + 1);  // handed back, not deleted
        removed.push_back(idOf(n));
        delete n;
    }
    EXPECT_EQ(removed, (V{3, 2, 0, 1, 4}));
}

TYPED_TEST(Lists, DeleteNodesDeletesEveryNodeThroughItsVirtualDestructor)
{
    using I = Item<NodeOf<TypeParam>>;
    I::live = 0;
    std::vector<I*> kept;
    {
        TypeParam l, other;
        for (int i = 0; i < 6; ++i)
            l.append(new I(i)), other.append(kept.emplace_back(new I(i)));
        l.deleteNodes();
        EXPECT_EQ(I::live, 6);
        EXPECT_EQ(walk(l), V{});
    }  // a list's destructor deletes nothing
    EXPECT_EQ(I::live, 6);
    for (I* n : kept)
        delete n;
}

TYPED_TEST(Lists, RandomOperationsMatchAStdListModel)
{
    using I = Item<NodeOf<TypeParam>>;
    std::vector<std::unique_ptr<I>> pool;
    for (int i = 0; i < 40; ++i)
        pool.push_back(std::make_unique<I>(i));
    std::vector<bool> in(pool.size(), false);
    std::list<int> model;
    TypeParam l;
    std::mt19937 rng(31337);
    auto pick = [&](size_t n) { return static_cast<unsigned>(rng() % n); };
    auto modelAt = [&](unsigned p) { return std::next(model.begin(), p); };
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const unsigned op = pick(7), count = static_cast<unsigned>(model.size()), id = pick(pool.size());
        I* n = pool[id].get();
        if (op < 3 && !in[id]) {  // insert, append, insertAtPos (past the count appends)
            const unsigned p = pick(count + 3);
            op == 0 ? l.insert(n) : op == 1 ? l.append(n) : l.insertAtPos(n, p);
            model.insert(op == 0 ? model.begin() : op == 1 || p >= count ? model.end() : modelAt(p), n->id);
            in[id] = true;
        } else if (op == 3) {  // unlink: 0 for a node of the list, 1 for one outside
            ASSERT_EQ(l.unlink(n), in[id] ? 0 : 1);
            model.remove(n->id), in[id] = false;
        } else if (op == 4 || op == 5) {
            n = static_cast<I*>(op == 4 ? l.removeFirstNode() : l.removeLastNode());
            ASSERT_EQ(idOf(n), count == 0 ? -1 : op == 4 ? model.front() : model.back());
            if (count > 0)
                op == 4 ? model.pop_front() : model.pop_back(), in[static_cast<unsigned>(n->id)] = false;
        } else if (op == 6 && count > 0) {
            const unsigned p = pick(count);
            l.moveLastNodeToPos(p);
            model.insert(modelAt(p), model.back());
            model.pop_back();
        }
        if (n != nullptr && !in[static_cast<unsigned>(n->id)]) {
            ASSERT_TRUE(detached(n));
        }
        ASSERT_EQ(walk(l), V(model.begin(), model.end()));
        ASSERT_EQ(idOf(l.getFirstNode()), model.empty() ? -1 : model.front());
        ASSERT_EQ(idOf(l.getLastNode()), model.empty() ? -1 : model.back());
        if (!model.empty()) {
            const unsigned p = pick(model.size());
            ASSERT_EQ(idOf(l.getNodeAtPos(p)), *modelAt(p));
        }
    }
}
