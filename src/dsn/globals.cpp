// The process-wide state of the dialog (see backend_impl.h).

#include "../platform/catalog.h"
#include "backend_impl.h"

void* BACKEND_HANDLE_CFG = nullptr;
BackendEntry CONNECT_BACK_DLG = nullptr;
const char* const BACK_DLG_FUNC = "invokeBackend";
const char* HINSTFRONTEND = "uxmfront";

nl_catd Rfile = ZU_NO_CATALOG;
Widget shODBCAdmin = nullptr;
Widget shell1 = nullptr;
Display* display = nullptr;
driverDSNName* driDsnNameL = nullptr;
nd* keyValNodeHeadL = nullptr;
int exit_code = 0;
Widget current_shell = nullptr;
unsigned char loop_done = 0;
char* truststorePasssword = nullptr;
