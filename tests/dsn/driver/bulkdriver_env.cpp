#include "driver/bulkdriver_env.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

const char* const kVariables[] = {"HNSYB_TESTDRIVER_LOG",    "HNSYB_TESTDRIVER_RESULT",
                                  "HNSYB_TESTDRIVER_MESSAGES", "HNSYB_TESTDRIVER_VERIFY",
                                  "HNSYB_TESTDRIVER_VERIFY_COUNT", "HNSYB_TESTDRIVER_CONNECT"};

}  // namespace

BulkDriverEnv::BulkDriverEnv(const PrivateOdbc& odbc)
{
    // Both drivers in unixODBC's driver file, after the section already there.
    std::ofstream drivers(odbc.driverFile(), std::ios::app);
    drivers << "\n[" << kBulkDriver << "]\nDriver=" << HNSYB_TESTDRIVER_PATH << "\n\n[" << kPlainDriver
            << "]\nDriver=" << HNSYB_TESTDRIVER_PLAIN_PATH << "\n";
    drivers.close();
    odbc.clearInstallerCache();
    log_ = odbc.dir() + "/driver-calls.log";
    clearCalls();
    setenv("HNSYB_TESTDRIVER_LOG", log_.c_str(), 1);
    answer(0);
    verifyMessages("");
    failConnect(false);
}

BulkDriverEnv::~BulkDriverEnv()
{
    for (const char* name : kVariables)
        unsetenv(name);
    unlink(log_.c_str());
}

void BulkDriverEnv::answer(int result, const std::string& messages)
{
    setenv("HNSYB_TESTDRIVER_RESULT", std::to_string(result).c_str(), 1);
    setenv("HNSYB_TESTDRIVER_MESSAGES", messages.c_str(), 1);
}

void BulkDriverEnv::verifyMessages(const std::string& messages, int count)
{
    setenv("HNSYB_TESTDRIVER_VERIFY", messages.c_str(), 1);
    if (count < 0)
        unsetenv("HNSYB_TESTDRIVER_VERIFY_COUNT");
    else
        setenv("HNSYB_TESTDRIVER_VERIFY_COUNT", std::to_string(count).c_str(), 1);
}

void BulkDriverEnv::failConnect(bool fail)
{
    if (fail)
        setenv("HNSYB_TESTDRIVER_CONNECT", "fail", 1);
    else
        unsetenv("HNSYB_TESTDRIVER_CONNECT");
}

std::vector<std::vector<std::string>> BulkDriverEnv::calls() const
{
    std::vector<std::vector<std::string>> result;
    std::ifstream in(log_);
    std::string line;
    while (std::getline(in, line)) {
        std::vector<std::string> fields;
        std::istringstream parts(line);
        std::string field;
        while (std::getline(parts, field, '\t'))
            fields.push_back(field);
        if (!line.empty() && line.back() == '\t')
            fields.emplace_back();
        result.push_back(fields);
    }
    return result;
}

std::vector<std::vector<std::string>> BulkDriverEnv::calls(const std::string& name) const
{
    std::vector<std::vector<std::string>> result;
    for (auto& call : calls()) {
        if (!call.empty() && call[0] == name)
            result.push_back(call);
    }
    return result;
}

void BulkDriverEnv::clearCalls() const { std::ofstream(log_, std::ios::trunc); }
