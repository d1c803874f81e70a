// SPDX-License-Identifier: Apache-2.0
// Between the files of the fake platform: its one state, and the question whether this call is to fail.
#ifndef TESTS_FAKE_STATE_H
#define TESTS_FAKE_STATE_H

#include <optional>

#include "fake/fake_platform.h"

namespace fake {

struct STATE_S
{
    std::vector<MESSAGE_S> vecMessages;
    std::function<void(const std::string &)> fnLogHook;
    std::vector<std::string> vecCalls;
    std::map<u32, BYTES> mapDb;
    std::map<std::string, BYTES> mapEeprom;
    std::map<u32, i32> mapEepromResult;
    u32 uiEepromCalls = 0;
    std::map<std::string, i32> mapFileSize;
    std::vector<RPC_REQUEST_S> vecRpc;
    std::map<std::pair<u32, u32>, std::pair<u32, std::vector<std::string>>> mapRpcAnswer;
    u32 uiHwOemFlag = 0;
    u32 uiBmcOemFlag = 0;
    std::map<std::string, std::map<std::string, std::map<std::string, std::string>>> mapIni;
    std::map<std::string, std::string> mapCapability;
    std::optional<std::vector<HW_FRU_OBJECT_S>> optHwObjects;
    std::optional<std::pair<int64_t, int64_t>> optTime;
    std::optional<u32> optPatienceMs;
    std::vector<int64_t> vecWaits;
};

STATE_S &State();

// Counts a call of this kind and says whether, and how, it is to fail.
std::optional<HOW_E> Fault(KIND_E eKind);

// Appends to the journal of calls.
void Journal(const char *pcFormat, ...) __attribute__((format(printf, 1, 2)));

} // namespace fake

#endif
