// The control table and both directions of binding between the attribute
// list and the widgets.  See controltable.h.
#include "dsn/dialog/controltable.h"

#include <Xm/Text.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include <initializer_list>

#include <cstdlib>
#include <cstring>

#include "core/strcmp.h"
#include "core/strcopy.h"
#include "dsn/attrlist.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/combo_impl.h"
#include "dsn/dialog/securitytab.h"
#include "dsn/dialog/widgets_impl.h"
#include "dsn/msgbox_impl.h"
#include "dsn/protect_impl.h"

Widget iddlgname[ZU_DSN_CONTROL_COUNT];

const char iniids[ZU_DSN_CONTROL_COUNT][ZU_DSN_KEY_SLOT] = {
    "DSN",
    "Description",
    "NetworkAddress",
    "Database",
    "IANAAppCodePage",
    "RaiserrorPositionBehavior",
    "DefaultLongDataBuffLen",
    "InitializationString",
    "ReportCodePageConversionErrors",
    "ApplicationUsingThreads",
    "EnableQuotedIdentifiers",
    "EnableDescribeParam",
    "TruncateTimeTypeFractions",
    "Databases",
    "LogonID",
    "WorkStationID",
    "Charset",
    "ApplicationName",
    "Language",
    "AuthenticationMethod",
    "ServicePrincipalName",
    "GSSClient",
    "SelectMethod",
    "OptimizePrepare",
    "ArraySize",
    "PacketSize",
    "CursorCacheSize",
    "LoadBalancing",
    "AlternateServers",
    "ConnectionRetryCount",
    "ConnectionRetryDelay",
    "EncryptionMethod",
    "ValidateServerCertificate",
    "TrustStore",
    "TrustStorePassword",
    "HostNameInCertificate",
    "LoginTimeout",
    "QueryTimeout",
};

const int idtype[ZU_DSN_CONTROL_COUNT] = {
    1, 1, 1, 1, 1, 2, 1, 1, 2, 3,  // 0-9
    3, 3, 3, 1, 1, 1, 1, 1, 1, 2,  // 10-19
    1, 1, 2, 2, 1, 1, 1, 3, 1, 1,  // 20-29
    1, 2, 3, 1, 5, 1, 1, 1,        // 30-37
};

namespace {

// Stored digit and shown string of one drop-down row.
struct Choice {
    const char* stored;
    const char* shown;
};

struct ChoiceList {
    int index;
    const Choice* rows;
    int count;
};

constexpr Choice cursorPositionRows[] = {{"0", "0 - Default"}, {"1", "1 - MS Compatible"}};
constexpr Choice conversionErrorRows[] = {
    {"0", "0 - Ignore Errors"}, {"1", "1 - Return Errors"}, {"2", "2 - Return Warning"}};
constexpr Choice authMethodRows[] = {{"0", "0 - No Encryption"}, {"1", "1 - Encrypt Password"}, {"4", "4 - Kerberos"}};
constexpr Choice selectMethodRows[] = {{"0", "0 - Cursor"}, {"1", "1 - Direct"}};
constexpr Choice prepareRows[] = {
    {"0", "0 - None"}, {"1", "1 - Partial"}, {"2", "2 - Full"}, {"3", "3 - Full at Prepare"}};
constexpr Choice encryptMethodRows[] = {{"0", "0 - No Encryption"}, {"1", "1 - SSL Auto"}};

constexpr ChoiceList choiceLists[] = {
    {5, cursorPositionRows, 2}, {8, conversionErrorRows, 3}, {19, authMethodRows, 3},
    {22, selectMethodRows, 2},  {23, prepareRows, 4},        {31, encryptMethodRows, 2},
};

const ChoiceList* choicesOf(int index)
{
    for (const ChoiceList& list : choiceLists)
        if (list.index == index)
            return &list;
    return nullptr;
}

// Shown string for a stored value; a value outside the control's rows falls
// back to its first row (not to its default).
const char* shownFor(const ChoiceList& list, const char* value)
{
    for (int r = 0; r < list.count; r++)
        if (strCompareCi(value, list.rows[r].stored) == 0)
            return list.rows[r].shown;
    return list.rows[0].shown;
}

void outOfMemory()
{
    showOutOfMemoryError(shell1);
    exit_code = 1;
}

void setDropDown(int index, Widget w, const char* value)
{
    const ChoiceList* list = choicesOf(index);
    comboShowText(w, list != nullptr ? shownFor(*list, value) : value);
    if (index == ZU_IDX_AUTH_METHOD) {
        if (std::strcmp(value, "4") == 0)
            ungrayAuthOptions();
        authMethodChanged(w, nullptr, nullptr);
    } else if (index == ZU_IDX_ENCRYPT_METHOD) {
        encryptMethodChanged(w, nullptr, nullptr);
    }
}

// The stored form of a drop-down's shown text: the digit of its row, or the
// text itself (cut to the node's size) at an index without rows.
void readDropDown(int index, Widget w, char* value)
{
    char shown[ND_VALUE_SIZE];
    comboSelectedText(w, shown, sizeof shown);
    if (const ChoiceList* list = choicesOf(index); list != nullptr) {
        for (int r = 0; r < list->count; r++) {
            if (strCompareCi(shown, list->rows[r].shown) == 0) {
                strCopy(value, ND_VALUE_SIZE, list->rows[r].stored);
                return;
            }
        }
    }
    strCopy(value, ND_VALUE_SIZE, shown);
}

}  // namespace

void forgetListOfWidgets()
{
    Widget* const controls[] = {&txtSybDSNAme, &txtSybDesc, &txtSybNetAddr, &txtSybDBName, &txtappcodepage,
                     &cmbSybCursPos, &txtSybDefBufSz, &txtInitializationString, &cmbSybCodePConvErrors,
                     &tgSybThreads, &tgSybQuotedIdentifiers, &tgSybDescParameters, &tgSybTruncTimeType,
                     &txtSybDBList, &txtUserNameSectab, &txtSybWorkstationID, &txtSybCharset, &txtSybAppName,
                     &txtSybLang, &cbAuthMethodSectab, &txtServicePrnNameSectab, &txtGssLibSectab, &cbselmethod,
                     &cbprepmethod, &txtfetcharray, &txtpacsize, &txtconcachesize, &tgloadbal, &txtaltserv,
                     &txtconretcnt, &txtconretdel, &cbEncryptMethodSectab, &tgValidServerCertSectab,
                     &txtTrustStoreSectab, &txtTrustStorePwdSecTab, &txtHostNameCertSectab, &txtLoginTimeout,
                     &txtQueryTimeout};
    static_assert(sizeof controls / sizeof controls[0] == ZU_DSN_CONTROL_COUNT, "one widget a row");
    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++) {
        *controls[i] = nullptr;
        iddlgname[i] = nullptr;
    }
}

void createListOfWidgets()
{
    const Widget controls[] = {txtSybDSNAme, txtSybDesc, txtSybNetAddr, txtSybDBName, txtappcodepage, cmbSybCursPos,
                     txtSybDefBufSz, txtInitializationString, cmbSybCodePConvErrors, tgSybThreads,
                     tgSybQuotedIdentifiers, tgSybDescParameters, tgSybTruncTimeType, txtSybDBList, txtUserNameSectab,
                     txtSybWorkstationID, txtSybCharset, txtSybAppName, txtSybLang, cbAuthMethodSectab,
                     txtServicePrnNameSectab, txtGssLibSectab, cbselmethod, cbprepmethod, txtfetcharray, txtpacsize,
                     txtconcachesize, tgloadbal, txtaltserv, txtconretcnt, txtconretdel, cbEncryptMethodSectab,
                     tgValidServerCertSectab, txtTrustStoreSectab, txtTrustStorePwdSecTab, txtHostNameCertSectab,
                     txtLoginTimeout, txtQueryTimeout};
    static_assert(sizeof controls / sizeof controls[0] == ZU_DSN_CONTROL_COUNT, "one widget a row");
    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++)
        iddlgname[i] = controls[i];
}

void ungrayAuthOptions()
{
    for (Widget w : {lbGssLibSectab, txtGssLibSectab, lbServicePrincNameSectab, txtServicePrnNameSectab})
        if (w != nullptr)
            XtSetSensitive(w, True);
}

void populateUIFromLinkedList()
{
    for (nd* node = keyValNodeHeadL; node != nullptr; node = node->next) {
        // A node matches at most one row, but every row is looked at.
        for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++) {
            if (strCompareCi(node->key, iniids[i]) != 0)
                continue;
            Widget w = iddlgname[i];
            if (w == nullptr)
                continue;  // a control that could not be built keeps nothing
            switch (idtype[i]) {
            case ZU_CTRL_TEXT:
                if (strCompareCi(node->key, "DSN") == 0 && driDsnNameL != nullptr)
                    strCopy(driDsnNameL->previousDSN, DSN_FIELD_SIZE, node->value);
                XmTextSetString(w, node->value);
                break;
            case ZU_CTRL_DROPDOWN:
                setDropDown(i, w, node->value);
                break;
            case ZU_CTRL_TOGGLE:
                // Anything but "0", even an empty value, means on.
                XmToggleButtonSetState(w, std::strcmp(node->value, "0") != 0, True);
                break;
            case ZU_CTRL_PROTECTED:
                if (setDehexifiedDecryptedValue(node->value, truststorePasssword, w) == 1) {
                    outOfMemory();
                    return;
                }
                break;
            default:
                break;
            }
        }
    }
    // Keys without a row die here with the list.
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
}

int populateLinkedListFromUI()
{
    if (keyValNodeHeadL != nullptr)
        keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);

    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; i++) {
        nd* node = static_cast<nd*>(std::calloc(1, sizeof(nd)));
        if (node == nullptr) {
            outOfMemory();
            return 0;
        }
        strCopy(node->key, ND_KEY_SIZE, iniids[i]);
        Widget w = iddlgname[i];
        switch (idtype[i]) {
        case ZU_CTRL_TEXT:
            if (w != nullptr) {
                char* text = XmTextGetString(w);
                const char* value = text != nullptr ? text : "";
                if (i == ZU_IDX_DSN && driDsnNameL != nullptr)
                    strCopy(driDsnNameL->dsnName, DSN_FIELD_SIZE, value);
                // Longer text is cut at the node's 1,023 characters.
                strCopy(node->value, ND_VALUE_SIZE, value);
                XtFree(text);
            }
            break;
        case ZU_CTRL_DROPDOWN:
            readDropDown(i, w, node->value);
            break;
        case ZU_CTRL_TOGGLE:
            strCopy(node->value, ND_VALUE_SIZE, w != nullptr && XmToggleButtonGetState(w) ? "1" : "0");
            break;
        case ZU_CTRL_PROTECTED:
            if (setEncryptedHexifiedValue(truststorePasssword, node->value) == 1) {
                std::free(node);
                outOfMemory();
                return 0;
            }
            break;
        default:
            break;
        }
        AddNodeToList(&keyValNodeHeadL, node);
    }
    return 1;
}
