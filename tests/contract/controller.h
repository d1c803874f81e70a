// SPDX-License-Identifier: Apache-2.0
// The controller that the contract tests run on. What a test must arrange beyond the platform's own
// calls goes through here; a port brings its own adapter that defines these functions (desk/ is
// that of libbmcfruhost).
#ifndef TESTS_CONTRACT_CONTROLLER_H
#define TESTS_CONTRACT_CONTROLLER_H

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

#include "bmc_types.h"

namespace controller {

using BYTES = std::vector<u8>;

// ---- the adapter's part: every function up to Messages() ----
//
// A function that cannot do its work fails the test (ASSERT_, ADD_FAILURE), never in silence.
// examples/port/contract/ is an adapter to copy.

// An empty controller for one test: no database, chips, files, capabilities; OEM flag not set. What an
// earlier test has left is out of sight. Processes that the test forks see the same controller.
void Start();
// The end of the test that Start() began: removes what it made.
void Stop();

// Where this process finds the controller's path, which begins with a slash: the tests read and write files
// there, and make its directories. Nothing has to exist yet.
std::string RealPath(const std::string &strPath);

// From here on DB_Open() finds a place where no database can be made.
void SpoilDatabasePlace();

// An EEPROM with this content; its capacity is the content's length. ucType and pLocation are those of
// ReadWriteEEPROM(): a location of three bytes for the types 9 to 15, else a name. One that is there is
// replaced.
void LayChip(u8 ucType, const void *pLocation, const BYTES &vecContent);
// What the chip holds now, past every cache, also while another process writes to it.
BYTES ChipContent(u8 ucType, const void *pLocation);
// Switches the chip's write protection on.
void ProtectChip(u8 ucType, const void *pLocation);
// Bytes that one write transfer of this platform moves at most: a killed writer leaves whole pages of this
// size.
extern const u32 g_uiPageSize;

// What BMC_GetOemFlag() and HW_LIB_GetOemFlag() say from now on.
void SetOemFlag(u32 uiFlag);
// A capability of the product, in place of all that there were.
void SetCapability(const std::string &strObject, const std::string &strName, const std::string &strText);
// The texts that the feature service answers with, in this order; none is a list too.
void SetFeatureList(const std::vector<std::string> &vecTexts);

// A hardware description in this platform's form, values as given, be they good or not.
struct HW_OBJECT_TEXT_S
{
    std::string strComponentType;
    std::string strOffset;
    std::string strSize;
    std::string strSelector;
    std::string strDeviceName;
};
std::string HwDescription(const std::vector<HW_OBJECT_TEXT_S> &vecObjects);

// The texts of the diagnostic messages since Start(), in order.
std::vector<std::string> Messages();

// ---- for all tests ----

class ContractTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        Start();
    }
    void TearDown() override
    {
        Stop();
    }
};

// Files of the controller, directories made as needed.
void WriteFile(const std::string &strPath, const std::string &strContent, unsigned uiMode = 0644);
std::string ReadFile(const std::string &strPath);
std::vector<std::string> ReadLines(const std::string &strPath);
std::vector<std::string> FilesIn(const std::string &strPath);

// Runs fnWork in a child process, which exits with its result.
pid_t Spawn(const std::function<int()> &fnWork);
// Its exit status; -1 when it did not exit by itself.
int Await(pid_t iPid);
// Kills it with SIGKILL and waits.
void Kill(pid_t iPid);
// Lets uiMicroseconds pass.
void Pause(unsigned uiMicroseconds);

} // namespace controller

#endif
