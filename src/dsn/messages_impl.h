/*
 * Numbers of the dialog's own messages in the catalog "HNmback.mo"
 * (catalogs/HNmback.en_US.msg holds their English texts).  Label texts of
 * the tabs are numbered where the tabs are built.
 */
#ifndef HNSYB_DSN_MESSAGES_IMPL_H
#define HNSYB_DSN_MESSAGES_IMPL_H

enum DsnMessage : unsigned short {
    MSG_ABOUT_ADDRESS1 = 7300,
    MSG_ABOUT_ADDRESS2 = 7301,
    MSG_ABOUT_RIGHTS = 7302,
    MSG_ABOUT_COPYRIGHT = 7303,
    MSG_ABOUT_DATE = 7304,
    MSG_ABOUT_SIZE = 7305,
    MSG_ABOUT_FILE = 7306,
    MSG_ABOUT_VERSION = 7307,
    MSG_ERROR_TITLE = 7308,
    MSG_OK = 7309,
    MSG_OUT_OF_MEMORY = 7312,
    MSG_FILE_DSN_NOT_WRITTEN = 7315,
    MSG_DSN_NOT_WRITTEN = 7316,
    MSG_ABOUT_COMPANY_TAIL = 7331,
    MSG_NO_BACKEND_ENTRY = 7453,
    MSG_INVALID_DSN_NAME = 24049,
    MSG_TEST_CONNECT = 24050,
    MSG_CONNECTED = 24094,
};

#endif
