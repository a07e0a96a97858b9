#include "dictionary.h"

#include "but.h"
#include "strcmp.h"

namespace {
// Integer keys and data enter as int and are kept sign-extended.
unsigned long wide(int v) { return static_cast<unsigned long>(static_cast<long>(v)); }

int sameText(const ZuSubString* a, const ZuSubString* b)
{
    return a->getLength() == b->getLength() && memEqual(a->getData(), b->getData(), a->getLength()) ? 1 : 0;
}
int sameTextCi(const ZuSubString* a, const ZuSubString* b)
{
    return strEqualCi(a->getData(), static_cast<long>(a->getLength()), b->getData(),
                      static_cast<long>(b->getLength()), a->getType()) != 0 ? 1 : 0;
}
int sameText(const ZuSubStringW* a, const ZuSubStringW* b)
{
    return a->getLength() == b->getLength() &&
                   memEqual(a->getData(), b->getData(), a->getLength() * sizeof(unsigned short))
               ? 1
               : 0;
}
int sameTextCi(const ZuSubStringW* a, const ZuSubStringW* b)
{
    return strEqualCi(a->getData(), static_cast<long>(a->getLength()), b->getData(),
                      static_cast<long>(b->getLength()), ZU_CP_UTF16) != 0 ? 1 : 0;
}
}  // namespace

// ---- ZuAssociation -------------------------------------------------------

ZuAssociation::~ZuAssociation() = default;
int ZuAssociation::isEqualCi(const ZuAssociation*) const { return 0; }
int ZuAssociation::isEqual(const ZuSubStringW*) const { return 0; }
int ZuAssociation::isEqualCi(const ZuSubStringW*) const { return 0; }
int ZuAssociation::isEqual(const ZuSubString*) const { return 0; }
int ZuAssociation::isEqualCi(const ZuSubString*) const { return 0; }
int ZuAssociation::isEqual(unsigned long) const { return 0; }
unsigned long ZuAssociation::getIntKey() const { return 0; }
unsigned long ZuAssociation::getIntData() const { return 0; }
ZuSubString* ZuAssociation::getSubKey() const { return nullptr; }
ZuSubStringW* ZuAssociation::getSubKeyW() const { return nullptr; }
ZuObject* ZuAssociation::getPtrData() const { return nullptr; }
void ZuAssociation::changeData(unsigned long) {}
void ZuAssociation::changeData(ZuObject*) {}

// ---- Key classes ---------------------------------------------------------

ZuIntIntKey::~ZuIntIntKey() = default;
int ZuIntIntKey::isEqual(const ZuAssociation* other) const { return other->isEqual(key_); }
int ZuIntIntKey::isEqualCi(const ZuAssociation* other) const { return other->isEqual(key_); }
int ZuIntIntKey::isEqual(unsigned long key) const { return key == key_ ? 1 : 0; }
unsigned long ZuIntIntKey::getIntKey() const { return key_; }
unsigned long ZuIntIntKey::getIntData() const { return data_; }
void ZuIntIntKey::changeData(unsigned long data) { data_ = data; }
unsigned long ZuIntIntKey::hash() const { return key_; }
void ZuIntIntKey::deleteKeyAndData() {}

ZuIntPtrKey::~ZuIntPtrKey() = default;
int ZuIntPtrKey::isEqual(const ZuAssociation* other) const { return other->isEqual(key_); }
int ZuIntPtrKey::isEqualCi(const ZuAssociation* other) const { return other->isEqual(key_); }
int ZuIntPtrKey::isEqual(unsigned long key) const { return key == key_ ? 1 : 0; }
unsigned long ZuIntPtrKey::getIntKey() const { return key_; }
ZuObject* ZuIntPtrKey::getPtrData() const { return data_; }
void ZuIntPtrKey::changeData(ZuObject* data) { data_ = data; }
unsigned long ZuIntPtrKey::hash() const { return key_; }
void ZuIntPtrKey::deleteKeyAndData()
{
    delete data_;
    data_ = nullptr;
}

ZuSubPtrKey::~ZuSubPtrKey() = default;
int ZuSubPtrKey::isEqual(const ZuAssociation* other) const { return other->isEqual(key_); }
int ZuSubPtrKey::isEqualCi(const ZuAssociation* other) const { return other->isEqualCi(key_); }
int ZuSubPtrKey::isEqual(const ZuSubString* key) const { return sameText(key_, key); }
int ZuSubPtrKey::isEqualCi(const ZuSubString* key) const { return sameTextCi(key_, key); }
ZuSubString* ZuSubPtrKey::getSubKey() const { return key_; }
ZuObject* ZuSubPtrKey::getPtrData() const { return data_; }
void ZuSubPtrKey::changeData(ZuObject* data) { data_ = data; }
unsigned long ZuSubPtrKey::hash() const { return key_->hash(); }
void ZuSubPtrKey::deleteKeyAndData()
{
    delete key_;
    delete data_;
    key_ = nullptr;
    data_ = nullptr;
}

ZuSubPtrKeyW::~ZuSubPtrKeyW() = default;
int ZuSubPtrKeyW::isEqual(const ZuAssociation* other) const { return other->isEqual(key_); }
int ZuSubPtrKeyW::isEqualCi(const ZuAssociation* other) const { return other->isEqualCi(key_); }
int ZuSubPtrKeyW::isEqual(const ZuSubStringW* key) const { return sameText(key_, key); }
int ZuSubPtrKeyW::isEqualCi(const ZuSubStringW* key) const { return sameTextCi(key_, key); }
ZuSubStringW* ZuSubPtrKeyW::getSubKeyW() const { return key_; }
ZuObject* ZuSubPtrKeyW::getPtrData() const { return data_; }
void ZuSubPtrKeyW::changeData(ZuObject* data) { data_ = data; }
unsigned long ZuSubPtrKeyW::hash() const { return key_->hash(); }
void ZuSubPtrKeyW::deleteKeyAndData()
{
    delete key_;
    delete data_;
    key_ = nullptr;
    data_ = nullptr;
}

// ---- ZuDictionary --------------------------------------------------------

ZuDictionary::~ZuDictionary()
{
    for (unsigned i = getTableSize(); i-- > 0;)
        delete getAssocAt(i);
}

unsigned long ZuDictionary::doHash(const void* entry) const
{
    return static_cast<const ZuAssociation*>(entry)->hash();
}

int ZuDictionary::areEqual(const void* entry, const void* other) const
{
    const auto* held = static_cast<const ZuAssociation*>(entry);
    const auto* probe = static_cast<const ZuAssociation*>(other);
    return isCaseBlind() ? probe->isEqualCi(held) : probe->isEqual(held);
}

int ZuDictionary::addAssociation(ZuAssociation* association)
{
    if (association == nullptr)
        return 1;  // new reported the memory error
    void* displaced = nullptr;
    if (store(association, &displaced) != 0) {
        delete association;
        return 1;
    }
    // The replaced association would be unreachable: it goes, while its key
    // and data, which the caller handed in, stay the caller's.
    delete static_cast<ZuAssociation*>(displaced);
    return 0;
}

int ZuDictionary::addAssoc(int key, int data) { return addAssociation(new ZuIntIntKey(wide(key), wide(data))); }
int ZuDictionary::addAssoc(int key, ZuObject* data) { return addAssociation(new ZuIntPtrKey(wide(key), data)); }
int ZuDictionary::addAssoc(ZuSubString* key, ZuObject* data) { return addAssociation(new ZuSubPtrKey(key, data)); }

unsigned ZuDictionary::getIndexForKey(int key) const
{
    const unsigned long k = wide(key);
    return probe(k, [k](const void* held) { return static_cast<const ZuAssociation*>(held)->isEqual(k) != 0; });
}

unsigned ZuDictionary::getIndexForKey(const ZuSubString* key) const
{
    if (isCaseBlind())
        return probe(key->hash(),
                     [key](const void* held) { return static_cast<const ZuAssociation*>(held)->isEqualCi(key) != 0; });
    return probe(key->hash(),
                 [key](const void* held) { return static_cast<const ZuAssociation*>(held)->isEqual(key) != 0; });
}

unsigned long ZuDictionary::getIntForKey(int key) const
{
    const ZuAssociation* a = slotAssoc(getIndexForKey(key));
    return a != nullptr ? a->getIntData() : 0;
}

ZuObject* ZuDictionary::getPtrForKey(int key) const
{
    const ZuAssociation* a = slotAssoc(getIndexForKey(key));
    return a != nullptr ? a->getPtrData() : nullptr;
}

ZuObject* ZuDictionary::getPtrForKey(const ZuSubString* key) const
{
    const ZuAssociation* a = slotAssoc(getIndexForKey(key));
    return a != nullptr ? a->getPtrData() : nullptr;
}

int ZuDictionary::doesExist(int key) const { return slotAssoc(getIndexForKey(key)) != nullptr ? 1 : 0; }
int ZuDictionary::doesExist(const ZuSubString* key) const { return slotAssoc(getIndexForKey(key)) != nullptr ? 1 : 0; }

void ZuDictionary::deleteKeyAndData()
{
    for (unsigned i = getTableSize(); i-- > 0;) {
        if (ZuAssociation* a = getAssocAt(i)) {
            a->deleteKeyAndData();
            delete a;
        }
    }
    clearSlots();
}

ZuDictionaryW::~ZuDictionaryW() = default;

int ZuDictionaryW::addAssoc(ZuSubStringW* key, ZuObject* data) { return addAssociation(new ZuSubPtrKeyW(key, data)); }

unsigned ZuDictionaryW::getIndexForKey(const ZuSubStringW* key) const
{
    if (isCaseBlind())
        return probe(key->hash(),
                     [key](const void* held) { return static_cast<const ZuAssociation*>(held)->isEqualCi(key) != 0; });
    return probe(key->hash(),
                 [key](const void* held) { return static_cast<const ZuAssociation*>(held)->isEqual(key) != 0; });
}

ZuObject* ZuDictionaryW::getPtrForKey(const ZuSubStringW* key) const
{
    const ZuAssociation* a = slotAssoc(getIndexForKey(key));
    return a != nullptr ? a->getPtrData() : nullptr;
}

int ZuDictionaryW::doesExist(const ZuSubStringW* key) const { return slotAssoc(getIndexForKey(key)) != nullptr ? 1 : 0; }
