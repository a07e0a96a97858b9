// The attribute list and the data source record (see attrlist.h).

#include "attrlist.h"

#include <odbcinst.h>

#include <cstring>

#include "../core/but.h"
#include "../core/strcopy.h"
#include "../platform/ram.h"

void convertAttributeStringToLinkedList(nd** head, const char* attrs)
{
    if (head == nullptr)
        return;
    *head = nullptr;
    if (attrs == nullptr || *attrs == 0)
        return;
    // Grammar: pair* NUL, where pair = key '=' value NUL.  The '=' is looked
    // for from the pair's second character on, so a key is never empty and
    // a leading '=' is part of it.  The search stays inside its own pair: a
    // pair without '=' is all key, with an empty value, instead of running
    // into the next pair.
    for (const char* pair = attrs; *pair != 0;) {
        const std::size_t length = std::strlen(pair);
        const char* equals = length > 1 ? static_cast<const char*>(std::memchr(pair + 1, '=', length - 1)) : nullptr;
        const std::size_t keyLength = equals != nullptr ? static_cast<std::size_t>(equals - pair) : length;
        const char* value = equals != nullptr ? equals + 1 : pair + length;

        nd* node = static_cast<nd*>(ramAllocC(sizeof(nd)));
        if (node == nullptr)
            return;  // the pairs so far stay; the memory error is on the list
        strCopy(node->key, sizeof node->key, pair, static_cast<long>(keyLength));
        strCopy(node->value, sizeof node->value, value);
        node->next = nullptr;
        AddNodeToList(head, node);
        pair += length + 1;
    }
}

char* getValueOfKey(nd* head, const char* key)
{
    if (key == nullptr)
        return nullptr;
    for (nd* node = head; node != nullptr; node = node->next)
        if (BUTSTCMP(node->key, key) == 0)
            return node->value;
    return nullptr;
}

driverDSNName* PopulateDriverDSNStruct(const char* driver, char*, unsigned short request, char* dsn, const char*,
                                       int isFileDSN, const char* filePath)
{
    auto* record = static_cast<driverDSNName*>(ramAllocC(sizeof(driverDSNName)));
    if (record == nullptr)
        return nullptr;
    std::memset(record, 0, sizeof *record);
    if (driver != nullptr) {
        strCopy(record->driverName, sizeof record->driverName, driver);
        SQLGetPrivateProfileString(driver, "Driver", "", record->driverPath, sizeof record->driverPath,
                                   ".odbcinst.ini");
    }
    record->request = request;
    if (dsn != nullptr)
        strCopy(record->dsnName, sizeof record->dsnName, dsn);
    record->isFileDSN = isFileDSN;
    if (isFileDSN == 1 && filePath != nullptr)
        strCopy(record->fileDSNPath, sizeof record->fileDSNPath, filePath);
    return record;
}

void AddNodeToList(nd** head, nd* node)
{
    if (head == nullptr || node == nullptr)
        return;
    node->next = nullptr;
    nd** link = head;
    while (*link != nullptr)
        link = &(*link)->next;
    *link = node;
}

nd* FreeLinkedList(nd* head)
{
    while (head != nullptr) {
        nd* next = head->next;
        ramFreeC(head);
        head = next;
    }
    return nullptr;
}

void FreeDriverDsnStruct(driverDSNName* dsn)
{
    if (dsn != nullptr)
        ramFreeC(dsn);
}
