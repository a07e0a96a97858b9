/*
 * Dictionaries: key and value associations, hashed (ZuDictionary, over
 * ZuSet) or in a plain array that keeps insertion order (ZuSeqDictionary).
 * The W twins take ZuSubStringW keys and that class's hash.
 *
 * ZuAssociation is the abstract pair.  Comparing two associations is double
 * dispatch: a.isEqual(b) asks b's typed isEqual about a's key, so only keys
 * of one kind ever compare equal.  Texts are equal with equal length and
 * bytes (units); case-blind, by strEqualCi over both lengths.  Integer keys
 * know no case: their case-blind comparison is the exact one.
 *
 * What the dictionaries keep true:
 *  - ZuDictionary holds at most one association per key (case-blind with
 *    CaseBlind set); adding an equal key replaces the association, and the
 *    replaced one is destroyed, its key and data staying the caller's;
 *  - ZuSeqDictionary appends without testing for duplicates, and lookups
 *    scan from index 0, the first match winning.
 *
 * Ownership: an association belongs to its dictionary, which destroys it
 * in its destructor, leaving the key and data to the caller.  Key objects
 * (ZuSubString, ZuSubStringW) and data objects handed in stay the caller's
 * until deleteKeyAndData, which deletes them with the associations
 * (ZuIntPtrKey deletes its data, ZuSubPtrKey key and data).  reset() of the
 * underlying set destroys nothing.  Allocation failures give 1 with
 * ramAddMemoryError, and the entries present stay in place; a key or data
 * object is never deleted by a failed add.  Not thread-safe; the owner locks.
 */
#ifndef HNSYB_CORE_DICTIONARY_H
#define HNSYB_CORE_DICTIONARY_H

#include "array.h"
#include "set.h"
#include "substring.h"

class ZU_EXPORT ZuAssociation : public ZuObject {
public:
    ~ZuAssociation() override;

    // Virtual operations in this order.  The base comparisons say 0 and the
    // base getters 0 or null; changeData of the base does nothing.
    virtual int isEqual(const ZuAssociation* other) const = 0;
    virtual int isEqualCi(const ZuAssociation* other) const;
    virtual int isEqual(const ZuSubStringW* key) const;
    virtual int isEqualCi(const ZuSubStringW* key) const;
    virtual int isEqual(const ZuSubString* key) const;
    virtual int isEqualCi(const ZuSubString* key) const;
    virtual int isEqual(unsigned long key) const;
    virtual unsigned long getIntKey() const;
    virtual unsigned long getIntData() const;
    virtual ZuSubString* getSubKey() const;
    virtual ZuSubStringW* getSubKeyW() const;
    virtual ZuObject* getPtrData() const;
    virtual void changeData(unsigned long data);
    virtual void changeData(ZuObject* data);
    virtual unsigned long hash() const = 0;
    // Deletes what the key class owns of key and data (see the table above).
    virtual void deleteKeyAndData() = 0;
};

// Integer key, integer data.  Hash: the key.  deleteKeyAndData: nothing.
class ZU_EXPORT ZuIntIntKey : public ZuAssociation {
public:
    using ZuAssociation::changeData;
    using ZuAssociation::isEqual;
    using ZuAssociation::isEqualCi;
    ZuIntIntKey(unsigned long key, unsigned long data) : key_(key), data_(data) {}
    ~ZuIntIntKey() override;
    int isEqual(const ZuAssociation* other) const override;
    int isEqualCi(const ZuAssociation* other) const override;
    int isEqual(unsigned long key) const override;
    unsigned long getIntKey() const override;
    unsigned long getIntData() const override;
    void changeData(unsigned long data) override;
    unsigned long hash() const override;
    void deleteKeyAndData() override;

private:
    unsigned long key_;
    unsigned long data_;
};

// Integer key, object data.  Hash: the key.  deleteKeyAndData: the data.
class ZU_EXPORT ZuIntPtrKey : public ZuAssociation {
public:
    using ZuAssociation::changeData;
    using ZuAssociation::isEqual;
    using ZuAssociation::isEqualCi;
    ZuIntPtrKey(unsigned long key, ZuObject* data) : key_(key), data_(data) {}
    ~ZuIntPtrKey() override;
    int isEqual(const ZuAssociation* other) const override;
    int isEqualCi(const ZuAssociation* other) const override;
    int isEqual(unsigned long key) const override;
    unsigned long getIntKey() const override;
    ZuObject* getPtrData() const override;
    void changeData(ZuObject* data) override;
    unsigned long hash() const override;
    void deleteKeyAndData() override;

private:
    unsigned long key_;
    ZuObject* data_;
};

// Text key, object data.  Hash: ZuSubString::hash.  deleteKeyAndData: both.
class ZU_EXPORT ZuSubPtrKey : public ZuAssociation {
public:
    using ZuAssociation::changeData;
    using ZuAssociation::isEqual;
    using ZuAssociation::isEqualCi;
    ZuSubPtrKey(ZuSubString* key, ZuObject* data) : key_(key), data_(data) {}
    ~ZuSubPtrKey() override;
    int isEqual(const ZuAssociation* other) const override;
    int isEqualCi(const ZuAssociation* other) const override;
    int isEqual(const ZuSubString* key) const override;
    int isEqualCi(const ZuSubString* key) const override;
    ZuSubString* getSubKey() const override;
    ZuObject* getPtrData() const override;
    void changeData(ZuObject* data) override;
    unsigned long hash() const override;
    void deleteKeyAndData() override;

private:
    ZuSubString* key_;
    ZuObject* data_;
};

// Wide text key, object data.  Hash: ZuSubStringW::hash.  deleteKeyAndData: both.
class ZU_EXPORT ZuSubPtrKeyW : public ZuAssociation {
public:
    using ZuAssociation::changeData;
    using ZuAssociation::isEqual;
    using ZuAssociation::isEqualCi;
    ZuSubPtrKeyW(ZuSubStringW* key, ZuObject* data) : key_(key), data_(data) {}
    ~ZuSubPtrKeyW() override;
    int isEqual(const ZuAssociation* other) const override;
    int isEqualCi(const ZuAssociation* other) const override;
    int isEqual(const ZuSubStringW* key) const override;
    int isEqualCi(const ZuSubStringW* key) const override;
    ZuSubStringW* getSubKeyW() const override;
    ZuObject* getPtrData() const override;
    void changeData(ZuObject* data) override;
    unsigned long hash() const override;
    void deleteKeyAndData() override;

private:
    ZuSubStringW* key_;
    ZuObject* data_;
};

// Hashed dictionary.  Integer keys and data are taken as `int` and kept as
// unsigned long (sign-extended).  Lookups give the index of the matching
// slot or of the empty slot that ended the probe (the table size when the
// dictionary has no table); the getters give 0 or null for an empty slot.
class ZU_EXPORT ZuDictionary : public ZuSet {
public:
    static constexpr unsigned CaseBlind = 1u << 31;

    explicit ZuDictionary(unsigned flags = 0) : flags_(flags) {}
    // Destroys the associations; keys and data survive.
    ~ZuDictionary() override;

    // Allocate the association, then add; 0, or 1 with nothing kept (the
    // key and data stay the caller's).
    int addAssoc(int key, int data);
    int addAssoc(int key, ZuObject* data);
    int addAssoc(ZuSubString* key, ZuObject* data);

    unsigned getIndexForKey(int key) const;
    unsigned getIndexForKey(const ZuSubString* key) const;
    unsigned long getIntForKey(int key) const;
    ZuObject* getPtrForKey(int key) const;
    ZuObject* getPtrForKey(const ZuSubString* key) const;
    int doesExist(int key) const;
    int doesExist(const ZuSubString* key) const;

    // From the last slot to the first: the association deletes its key and
    // data, is destroyed, and its slot nulled; the count becomes 0.
    void deleteKeyAndData();

    // The association in a slot, null when empty; index below the table size.
    ZuAssociation* getAssocAt(unsigned index) const { return static_cast<ZuAssociation*>(getEntry(index)); }
    unsigned getFlags() const { return flags_; }
    int isCaseBlind() const { return (flags_ & CaseBlind) != 0 ? 1 : 0; }

protected:
    unsigned long doHash(const void* entry) const override;
    int areEqual(const void* entry, const void* other) const override;

    // Adds a new association (null: allocation failed, reported); on failure
    // destroys it.  A replaced association is destroyed.  0 or 1.
    int addAssociation(ZuAssociation* association);
    // The association in slot `index`, null when empty or out of the table.
    ZuAssociation* slotAssoc(unsigned index) const
    {
        return index < getTableSize() ? getAssocAt(index) : nullptr;
    }

private:
    unsigned flags_;
};

class ZU_EXPORT ZuDictionaryW : public ZuDictionary {
public:
    using ZuDictionary::ZuDictionary;
    using ZuDictionary::addAssoc;
    using ZuDictionary::doesExist;
    using ZuDictionary::getIndexForKey;
    using ZuDictionary::getPtrForKey;
    ~ZuDictionaryW() override;

    int addAssoc(ZuSubStringW* key, ZuObject* data);
    unsigned getIndexForKey(const ZuSubStringW* key) const;
    ZuObject* getPtrForKey(const ZuSubStringW* key) const;
    int doesExist(const ZuSubStringW* key) const;
};

// The same surface over a ZuArray of associations in insertion order.
// Lookups that find nothing give the count (index) or 0 / null (data).
class ZU_EXPORT ZuSeqDictionary : public ZuArray {
public:
    explicit ZuSeqDictionary(unsigned caseBlind = 0) : caseBlind_(caseBlind) {}
    // Destroys the associations; keys and data survive.
    ~ZuSeqDictionary() override;

    // Appends, without testing for an equal key.  0 or 1.
    int addAssoc(int key, int data);
    int addAssoc(int key, ZuObject* data);
    int addAssoc(ZuSubString* key, ZuObject* data);

    unsigned getIndexForKey(int key) const;
    unsigned getIndexForKey(const ZuSubString* key) const;
    unsigned getIndexForKey(const ZuSubString& key) const { return getIndexForKey(&key); }
    unsigned long getIntForKey(int key) const;
    ZuObject* getPtrForKey(int key) const;
    ZuObject* getPtrForKey(const ZuSubString* key) const;
    int doesExist(int key) const;
    int doesExist(const ZuSubString* key) const;

    // Lookup, then the association's changeData.  The key is expected to
    // exist; a missing one gives 1 and changes nothing.
    int changeData(int key, int data);
    int changeData(const ZuSubString& key, ZuObject* data);

    // Every association deletes its key and data and is destroyed; count 0.
    void deleteKeyAndData();
    // The same for one association, which is then removed.
    void deleteKeyAndDataAtIndex(unsigned index);

    // Index below the count.
    ZuAssociation* getAssocAt(unsigned index) const { return static_cast<ZuAssociation*>(at(index)); }
    ZuObject* getPtrDataAtIndex(unsigned index) const { return getAssocAt(index)->getPtrData(); }
    unsigned long getIntDataAtIndex(unsigned index) const { return getAssocAt(index)->getIntData(); }
    ZuSubString* getSubKeyAtIndex(unsigned index) const { return getAssocAt(index)->getSubKey(); }
    unsigned long getIntKeyAtIndex(unsigned index) const { return getAssocAt(index)->getIntKey(); }

    int isCaseBlind() const { return caseBlind_ != 0 ? 1 : 0; }

protected:
    // Appends a new association (null: allocation failed, reported); on
    // failure destroys it.  0 or 1.
    int append(ZuAssociation* association);
    // The association at `index`, null past the count.
    ZuAssociation* foundAt(unsigned index) const { return index < getCount() ? getAssocAt(index) : nullptr; }

private:
    unsigned caseBlind_;
};

class ZU_EXPORT ZuSeqDictionaryW : public ZuSeqDictionary {
public:
    using ZuSeqDictionary::ZuSeqDictionary;
    using ZuSeqDictionary::addAssoc;
    using ZuSeqDictionary::changeData;
    using ZuSeqDictionary::doesExist;
    using ZuSeqDictionary::getIndexForKey;
    using ZuSeqDictionary::getPtrForKey;
    ~ZuSeqDictionaryW() override;

    int addAssoc(ZuSubStringW* key, ZuObject* data);
    unsigned getIndexForKey(const ZuSubStringW* key) const;
    unsigned getIndexForKey(const ZuSubStringW& key) const { return getIndexForKey(&key); }
    ZuObject* getPtrForKey(const ZuSubStringW* key) const;
    int doesExist(const ZuSubStringW* key) const;
    int changeData(const ZuSubStringW& key, ZuObject* data);
    ZuSubStringW* getSubKeyWAtIndex(unsigned index) const { return getAssocAt(index)->getSubKeyW(); }
};

#endif
