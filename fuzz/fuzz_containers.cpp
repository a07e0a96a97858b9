// Random byte strings drive a sorted integer array, a value array and a
// doubly linked list through their operations; a model in the standard
// library checks every step, and any difference aborts (a finding).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <map>
#include <vector>

#include "core/list.h"
#include "core/sortedarray.h"

namespace {
struct Node : ZuDNode {
    explicit Node(int v) : value(v) {}
    int value;
};

void check(bool ok)
{
    if (!ok)
        std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ZuSortedArrayZUSIZE_T sorted;
    std::multimap<size_t, int> sortedModel;  // key -> arrival, kept in arrival order per key
    ZuArrayS32 values(0);
    std::vector<int32_t> valuesModel;
    ZuDList list;
    std::list<Node*> listModel;

    for (size_t i = 0; i + 2 < size; i += 3) {
        const uint8_t op = data[i] % 8;
        const uint8_t a = data[i + 1], b = data[i + 2];
        switch (op) {
        case 0:
            check(sorted.add(a % 16) == 0);
            sortedModel.emplace(a % 16, 0);
            break;
        case 1: {
            unsigned idx = 0;
            const int hit = sorted.findIndexOf(b % 16, &idx);
            check(hit == (sortedModel.count(b % 16) != 0));
            check(idx <= sorted.getCount());
            break;
        }
        case 2: {
            const unsigned at = valuesModel.empty() ? 0 : a % (valuesModel.size() + 1);
            check(values.addAtIndex(static_cast<int32_t>(b) - 128, at) == 0);
            valuesModel.insert(valuesModel.begin() + at, static_cast<int32_t>(b) - 128);
            break;
        }
        case 3:
            if (!valuesModel.empty()) {
                const unsigned at = a % valuesModel.size();
                values.removeAtIndex(at);
                valuesModel.erase(valuesModel.begin() + at);
            }
            break;
        case 4: {
            auto* n = new Node(b);
            const unsigned pos = a % (listModel.size() + 2);  // may pass the count: appends
            list.insertAtPos(n, pos);
            auto it = listModel.begin();
            std::advance(it, pos < listModel.size() ? pos : listModel.size());
            listModel.insert(it, n);
            break;
        }
        case 5:
            if (!listModel.empty()) {
                auto it = listModel.begin();
                std::advance(it, a % listModel.size());
                check(list.unlink(*it) == 0);
                delete *it;
                listModel.erase(it);
            }
            break;
        case 6:
            if (!listModel.empty()) {
                list.moveLastNodeToPos(a % listModel.size());
                Node* last = listModel.back();
                listModel.pop_back();
                auto it = listModel.begin();
                std::advance(it, a % (listModel.size() + 1));
                listModel.insert(it, last);
            }
            break;
        case 7:
            values.shrink(values.getCount() / 2);
            valuesModel.resize(valuesModel.size() / 2);
            break;
        }
    }

    check(sorted.getCount() == sortedModel.size());
    unsigned i = 0;
    for (const auto& [key, arrival] : sortedModel)
        check(sorted.at(i++) == key);
    check(values.getCount() == valuesModel.size());
    for (i = 0; i < valuesModel.size(); ++i)
        check(values.at(i) == valuesModel[i]);
    check(list.getCount() == listModel.size());
    i = 0;
    for (Node* n : listModel)
        check(list.getNodeAtPos(i++) == n);
    list.deleteNodes();
    return 0;
}
