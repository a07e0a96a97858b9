// ZuSeqDictionary and ZuSeqDictionaryW (declared in dictionary.h).
#include "dictionary.h"

namespace {
unsigned long wide(int v) { return static_cast<unsigned long>(static_cast<long>(v)); }
}  // namespace

ZuSeqDictionary::~ZuSeqDictionary()
{
    // The associations are the dictionary's; what they point to is not.
    deleteContents();
}

int ZuSeqDictionary::append(ZuAssociation* association)
{
    if (association == nullptr)
        return 1;  // new reported the memory error
    if (add(association) != 0) {
        delete association;
        return 1;
    }
    return 0;
}

int ZuSeqDictionary::addAssoc(int key, int data) { return append(new ZuIntIntKey(wide(key), wide(data))); }
int ZuSeqDictionary::addAssoc(int key, ZuObject* data) { return append(new ZuIntPtrKey(wide(key), data)); }
int ZuSeqDictionary::addAssoc(ZuSubString* key, ZuObject* data) { return append(new ZuSubPtrKey(key, data)); }

unsigned ZuSeqDictionary::getIndexForKey(int key) const
{
    const unsigned long k = wide(key);
    const unsigned n = getCount();
    unsigned i = 0;
    while (i < n && getAssocAt(i)->isEqual(k) == 0)
        ++i;
    return i;
}

unsigned ZuSeqDictionary::getIndexForKey(const ZuSubString* key) const
{
    const unsigned n = getCount();
    const bool ci = isCaseBlind() != 0;
    unsigned i = 0;
    while (i < n && (ci ? getAssocAt(i)->isEqualCi(key) : getAssocAt(i)->isEqual(key)) == 0)
        ++i;
    return i;
}

unsigned long ZuSeqDictionary::getIntForKey(int key) const
{
    const ZuAssociation* a = foundAt(getIndexForKey(key));
    return a != nullptr ? a->getIntData() : 0;
}

ZuObject* ZuSeqDictionary::getPtrForKey(int key) const
{
    const ZuAssociation* a = foundAt(getIndexForKey(key));
    return a != nullptr ? a->getPtrData() : nullptr;
}

ZuObject* ZuSeqDictionary::getPtrForKey(const ZuSubString* key) const
{
    const ZuAssociation* a = foundAt(getIndexForKey(key));
    return a != nullptr ? a->getPtrData() : nullptr;
}

int ZuSeqDictionary::doesExist(int key) const { return getIndexForKey(key) < getCount() ? 1 : 0; }
int ZuSeqDictionary::doesExist(const ZuSubString* key) const { return getIndexForKey(key) < getCount() ? 1 : 0; }

// A missing key would make the lookup's "not found" index, the count, be
// read as an element (past the table when it is full): it is refused.
int ZuSeqDictionary::changeData(int key, int data)
{
    ZuAssociation* a = foundAt(getIndexForKey(key));
    if (a == nullptr)
        return 1;
    a->changeData(wide(data));
    return 0;
}

int ZuSeqDictionary::changeData(const ZuSubString& key, ZuObject* data)
{
    ZuAssociation* a = foundAt(getIndexForKey(&key));
    if (a == nullptr)
        return 1;
    a->changeData(data);
    return 0;
}

void ZuSeqDictionary::deleteKeyAndData()
{
    for (unsigned i = getCount(); i-- > 0;) {
        ZuAssociation* a = getAssocAt(i);
        setAt(i, nullptr);
        a->deleteKeyAndData();
        delete a;
    }
    deleteContents();  // every slot is null now: only the count drops to 0
}

void ZuSeqDictionary::deleteKeyAndDataAtIndex(unsigned index)
{
    ZuAssociation* a = getAssocAt(index);
    removeAtIndex(index);
    a->deleteKeyAndData();
    delete a;
}

ZuSeqDictionaryW::~ZuSeqDictionaryW() = default;

int ZuSeqDictionaryW::addAssoc(ZuSubStringW* key, ZuObject* data) { return append(new ZuSubPtrKeyW(key, data)); }

unsigned ZuSeqDictionaryW::getIndexForKey(const ZuSubStringW* key) const
{
    const unsigned n = getCount();
    const bool ci = isCaseBlind() != 0;
    unsigned i = 0;
    while (i < n && (ci ? getAssocAt(i)->isEqualCi(key) : getAssocAt(i)->isEqual(key)) == 0)
        ++i;
    return i;
}

ZuObject* ZuSeqDictionaryW::getPtrForKey(const ZuSubStringW* key) const
{
    const ZuAssociation* a = foundAt(getIndexForKey(key));
    return a != nullptr ? a->getPtrData() : nullptr;
}

int ZuSeqDictionaryW::doesExist(const ZuSubStringW* key) const { return getIndexForKey(key) < getCount() ? 1 : 0; }

int ZuSeqDictionaryW::changeData(const ZuSubStringW& key, ZuObject* data)
{
    ZuAssociation* a = foundAt(getIndexForKey(&key));
    if (a == nullptr)
        return 1;
    a->changeData(data);
    return 0;
}
