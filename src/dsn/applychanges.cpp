// Saving a data source through unixODBC's installer library (see
// attrlist.h for what is written where).

#include <odbcinst.h>

#include <cstring>

#include "../core/but.h"
#include "../core/strcopy.h"
#include "../platform/ram.h"
#include "attrlist.h"
#include "backend_impl.h"

const char* const CPoolAttrName[DSN_POOL_KEY_COUNT] = {
    "Pooling",           "ConnectionReset",    "MaxPoolSize",
    "MinPoolSize",       "MaxNumConnPools",    "LoadBalanceTimeout",
    "MaintenaceThreadTimePeriod",
};

namespace {

constexpr const char* kUserFile = ".odbc.ini";
constexpr const char* kDriverFile = ".odbcinst.ini";
constexpr const char* kFileSection = "ODBC";

bool isPoolKey(const char* key)
{
    for (const char* pool : CPoolAttrName)
        if (BUTSTCMP(key, pool) == 0)
            return true;
    return false;
}

// Pool settings belong to the driver's section, shared by all of its data
// sources: write them there and take their nodes out of the list.
void writePoolKeys(nd** list, const driverDSNName* dsn)
{
    nd** link = list;
    while (*link != nullptr) {
        nd* node = *link;
        if (!isPoolKey(node->key)) {
            link = &node->next;
            continue;
        }
        SQLWritePrivateProfileString(dsn->driverName, node->key, node->value, kDriverFile);
        *link = node->next;
        ramFreeC(node);
    }
}

// The first value written to the user file carries a trailing line feed;
// without memory for the copy the plain value is written.
BOOL writeFirstUserValue(const char* section, const nd* node)
{
    const std::size_t length = std::strlen(node->value);
    char* copy = static_cast<char*>(ramAllocC(length + 2));
    if (copy == nullptr)
        return SQLWritePrivateProfileString(section, node->key, node->value, kUserFile);
    std::memcpy(copy, node->value, length);
    copy[length] = '\n';
    copy[length + 1] = 0;
    const BOOL written = SQLWritePrivateProfileString(section, node->key, copy, kUserFile);
    ramFreeC(copy);
    return written;
}

}  // namespace

int applyChanges(nd** list, driverDSNName** dsnSlot)
{
    if (list == nullptr || dsnSlot == nullptr || *dsnSlot == nullptr)
        return 0;
    driverDSNName* dsn = *dsnSlot;
    if (dsn->request != DSN_REQUEST_ADD && dsn->request != DSN_REQUEST_CONFIG)
        return 1;  // a remove request saves nothing here
    const bool fileDSN = dsn->isFileDSN != 0;

    writePoolKeys(list, dsn);

    // The section is rewritten from nothing: keys not in the list are gone.
    if (fileDSN) {
        SQLWriteFileDSN(dsn->fileDSNPath, kFileSection, nullptr, nullptr);
    } else {
        SQLRemoveDSNFromIni(dsn->dsnName);
        if (BUTSTCMP(dsn->previousDSN, dsn->dsnName) != 0) {
            // A new data source has no previous name: nothing to remove.
            // unixODBC's remove leaves the old name's entry under "ODBC
            // Data Sources", where administrators would still list it: a
            // rename takes that entry away too.
            if (dsn->previousDSN[0] != 0) {
                SQLRemoveDSNFromIni(dsn->previousDSN);
                SQLWritePrivateProfileString("ODBC Data Sources", dsn->previousDSN, nullptr, kUserFile);
            }
            strCopy(dsn->previousDSN, sizeof dsn->previousDSN, dsn->dsnName);
        }
    }

    bool first = true;
    for (const nd* node = *list; node != nullptr; node = node->next) {
        if (BUTSTCMP(node->key, "DSN") == 0)
            continue;
        BOOL written;
        if (fileDSN) {
            written = SQLWritePrivateProfileString(kFileSection, node->key, node->value, dsn->fileDSNPath);
        } else if (first) {
            written = writeFirstUserValue(dsn->dsnName, node);
            first = false;
        } else {
            written = SQLWritePrivateProfileString(dsn->dsnName, node->key, node->value, kUserFile);
        }
        if (!written)
            return 0;
    }

    if (fileDSN)
        return SQLWritePrivateProfileString(kFileSection, "Driver", dsn->driverName, dsn->fileDSNPath) ? 1 : 0;
    if (!SQLWritePrivateProfileString("ODBC Data Sources", dsn->dsnName, dsn->driverName, kUserFile))
        return 0;
    return SQLWritePrivateProfileString(dsn->dsnName, "Driver", dsn->driverPath, kUserFile) ? 1 : 0;
}
