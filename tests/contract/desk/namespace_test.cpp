// SPDX-License-Identifier: Apache-2.0
// The desk's own: processes that have the same number, each in a pid namespace of its own, as in containers.
#include <sched.h>
#include <unistd.h>

#include "bmc_db.h"
#include "bmc_eeprom.h"
#include "bmc_operatelog.h"
#include "controller.h"

namespace {

using controller::BYTES;

constexpr int g_iNotAllowed = 124;
constexpr u32 g_uiLen = 512;

int InNewNamespace(const std::function<int()> &fnWork)
{
    return controller::Await(controller::Spawn([&] {
        return unshare(CLONE_NEWPID) == 0 ? controller::Await(controller::Spawn(fnWork)) : g_iNotAllowed;
    }));
}

// Everything that takes a lock, ten times; 0 when all of it is done.
int UseAll(u8 ucFill)
{
    for (u32 i = 0; i < 10U; ++i) {
        BYTES vecData(g_uiLen, static_cast<u8>(ucFill + i));
        BYTES vecRead(g_uiLen);
        if (DB_PutInternal(DB_Open(), 1, g_uiLen, vecData.data(), "namespace_test.cpp", __LINE__) != 0U ||
            DB_Get(DB_Open(), 1, g_uiLen, vecRead.data()) != 0U || vecRead != BYTES(g_uiLen, vecRead[0])) {
            return 10;
        }
        if (ReadWriteEEPROM(1, "chip", vecData.data(), 0, g_uiLen, BMC_EEPROM_WRITE) !=
                static_cast<i32>(g_uiLen) ||
            ReadWriteEEPROM(1, "chip", vecRead.data(), 0, g_uiLen, BMC_EEPROM_READ) !=
                static_cast<i32>(g_uiLen)) {
            return 11;
        }
        if (OPERATELOG_AddLogComm(17, OPERATELOG_RESULT_SUCCESS, "text", 0, 0, 1, 12) != 0U) {
            return 12;
        }
    }
    return getpid() == 1 ? 0 : 13;
}

class Namespaces : public controller::ContractTest
{};

TEST_F(Namespaces, AChildWithItsParentsNumberUsesDatabaseChipsAndJournalsBesideIt)
{
    controller::LayChip(1, "chip", BYTES(g_uiLen, 0));
    const int iResult = InNewNamespace([] {
        const int iBefore = UseAll(1);
        if (iBefore != 0) {
            return iBefore;
        }
        int aiPipe[2];
        if (pipe(aiPipe) != 0) {
            return 1;
        }
        const pid_t iOther = controller::Spawn([&aiPipe] {
            return InNewNamespace([&aiPipe] { return write(aiPipe[1], "x", 1) == 1 ? UseAll(100) : 2; });
        });
        char cByte = 0;
        const int iBeside = read(aiPipe[0], &cByte, 1) == 1 ? UseAll(200) : 3;
        const int iChild = controller::Await(iOther);
        return iBeside != 0 ? iBeside : iChild != 0 ? iChild : UseAll(50);
    });
    if (iResult == g_iNotAllowed) {
        GTEST_SKIP() << "no new pid namespace may be made here";
    }
    EXPECT_EQ(iResult, 0);
    EXPECT_EQ(controller::ReadLines("/var/log/operate.jsonl").size(), 40U);
}

} // namespace
