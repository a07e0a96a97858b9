/*
 * The bulk test driver in a private ODBC configuration: registers the
 * driver library (with or without its bulk entries) under a name in the
 * driver file of a PrivateOdbc, and sets the driver's answers and its call
 * log through the variables testdriver.cpp reads.  The log is a temporary
 * file removed with the object; the variables are cleared on destruction.
 */
#ifndef HNSYB_TESTS_DSN_DRIVER_BULKDRIVER_ENV_H
#define HNSYB_TESTS_DSN_DRIVER_BULKDRIVER_ENV_H

#include <string>
#include <vector>

#include "odbcenv.h"

// Driver names as registered.
inline constexpr const char* kBulkDriver = "HNBulkTest";
inline constexpr const char* kPlainDriver = "HNPlainTest";

class BulkDriverEnv {
public:
    explicit BulkDriverEnv(const PrivateOdbc& odbc);
    ~BulkDriverEnv();
    BulkDriverEnv(const BulkDriverEnv&) = delete;
    BulkDriverEnv& operator=(const BulkDriverEnv&) = delete;

    // What the next bulk calls return, and what getConnectionErrors hands
    // back ("(null)" for a null result).
    void answer(int result, const std::string& messages = "");
    // Messages ValidateTableFromFile writes ('|' between them) and, when not
    // negative, the count it reports instead of their number.
    void verifyMessages(const std::string& messages, int count = -1);
    void failConnect(bool fail);

    // The calls recorded so far, one line each, fields split at tabs.
    std::vector<std::vector<std::string>> calls() const;
    // Only the calls named `name`.
    std::vector<std::vector<std::string>> calls(const std::string& name) const;
    void clearCalls() const;
    const std::string& logPath() const { return log_; }

private:
    std::string log_;
};

#endif
