/*
 * ConfigDSN: the ODBC installer's entry into the driver's setup library.
 *
 * An administrator (or SQLConfigDataSource on its behalf) calls it to add,
 * configure or remove a data source of our driver:
 *   no window handle:  the request is done from the attribute string alone
 *                      (installer.h), nothing is shown;
 *   a window handle:   add and configure open the data source dialog, filled
 *                      from the attributes and, for configure, from the data
 *                      source's current keys (dialoghost.h); remove needs no
 *                      dialog and is done as without a window.
 * The handle itself is never used: it belongs to the caller's toolkit.
 * TRUE on success; on failure an installer error says why and FALSE returns.
 */
#include <odbcinst.h>

#include <string>

#include "attributes.h"
#include "dialoghost.h"
#include "environment.h"
#include "installer.h"
#include "platform/export.h"

namespace {

using namespace hnsybs;

BOOL configureWithDialog(WORD request, const std::string& driver, const Attributes& attributes)
{
    DialogRequest dialog;
    dialog.driver = driver;
    dialog.request = request;
    if (driverLibraryPath(driver).empty())
        return postError(ODBC_ERROR_INVALID_NAME, "driver " + driver + " is not registered");
    if (request == ODBC_CONFIG_DSN) {
        if (!dataSourceName(attributes, dialog.dsn))
            return FALSE;
        if (!dataSourceExists(dialog.dsn))
            return postError(ODBC_ERROR_INVALID_DSN, "there is no data source " + dialog.dsn);
        // The dialog opens on what is saved, with what the caller passed
        // taking the place of the saved values.
        dialog.initial = currentDataSource(dialog.dsn);
        for (const auto& [key, value] : attributes.items())
            dialog.initial.set(key, value);
    } else {
        // A new data source may come with a proposed name and values.
        if (const std::string* name = attributes.find("DSN"))
            dialog.dsn = *name;
        dialog.initial = attributes;
    }
    std::string error;
    if (runDialog(dialog, error) != 0)
        return postError(ODBC_ERROR_REQUEST_FAILED, error);
    return TRUE;
}

}  // namespace

ZU_C_EXPORT BOOL ConfigDSN(HWND hwndParent, WORD fRequest, LPCSTR lpszDriver, LPCSTR lpszAttributes)
{
    prepareEnvironment();
    if (lpszDriver == nullptr || lpszDriver[0] == '\0')
        return postError(ODBC_ERROR_INVALID_NAME, "no driver named");
    Attributes attributes;
    std::string error;
    if (!parseAttributes(lpszAttributes, attributes, error))
        return postError(ODBC_ERROR_INVALID_KEYWORD_VALUE, error);
    std::string driver = lpszDriver;

    switch (fRequest) {
    case ODBC_ADD_DSN:
    case ODBC_CONFIG_DSN:
        if (hwndParent != nullptr)
            return configureWithDialog(fRequest, driver, attributes);
        return fRequest == ODBC_ADD_DSN ? addDataSource(driver, attributes)
                                        : configureDataSource(driver, attributes);
    case ODBC_REMOVE_DSN:
        return removeDataSource(attributes);
    default:
        return postError(ODBC_ERROR_INVALID_REQUEST_TYPE, "request " + std::to_string(fRequest) + " is not known");
    }
}
