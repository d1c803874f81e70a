// SPDX-License-Identifier: Apache-2.0
// What the platform's folders share: messages, the shield at the C boundary, locks, files below the root.
#ifndef BMCHOST_SUPPORT_HOST_H
#define BMCHOST_SUPPORT_HOST_H

#include <exception>
#include <mutex>
#include <optional>
#include <string>

#include "bmc_support.h"
#include "bmcfru_host.h"
#include "files/files.h"
#include "plain/plain.h"

// A message of the platform itself.
#define HOST_LOG(uiSeverity, ...)                                                                            \
    BMC_DiagLogOut(BMCHOST_DIAG_MODULE, 0U, (uiSeverity), __LINE__, __FILE_NAME__, __VA_ARGS__)

namespace host {

// errno as text, from any thread.
const char *ErrText(int iError);

// No exception leaves a platform call: its callers are C.
template <typename RESULT, typename WORK> RESULT Shield(RESULT result, WORK fnWork) noexcept
{
    try {
        return fnWork();
    } catch (const std::exception &error) {
        HOST_LOG(BMC_DIAG_ERROR, "platform call failed: %s", error.what());
    } catch (...) {
        HOST_LOG(BMC_DIAG_ERROR, "platform call failed");
    }
    return result;
}

// The locks of the library, in the order in which they are taken. fork() takes them all, so that a child
// never inherits one that a thread of its parent holds. Nothing is logged while one is held: a sink may hang.
struct LOCKS_S
{
    std::mutex mtxDb;
    std::mutex mtxEeprom;
    std::mutex mtxIni;
    std::mutex mtxDiag;
    std::mutex mtxRoot;
};
LOCKS_S &Locks();

// The database's connection does not live through fork(). With mtxDb held.
void CloseDbForFork();

// The root now; grows by one with every BMCHOST_SetRoot().
u32 RootGeneration();

// A controller's path below the root; throws std::system_error when it is refused.
std::string Resolve(const char *pcPath);
files::PLACE_S PlaceOf(const char *pcPath);
// The same for what is about to be changed: throws also when the root is somebody else's and nobody has
// allowed that. At the first use in a root, what killed processes left in it is tidied.
files::PLACE_S WritePlaceOf(const char *pcPath);

// Text files that are read whole: what is larger is a mistake or worse.
constexpr size_t g_uiTextFileMax = size_t{1} << 20U;
// How long a file's lock may be somebody else's.
constexpr unsigned g_uiLockPatienceMs = 5000;

// This moment as "2024-05-01T12:34:56.789Z".
std::string NowText();
// Appends one line to a journal below the root, whole or not at all, whatever other processes append; a
// journal that has reached its limit first makes room for a new one.
u32 AppendToJournal(const char *pcJournal, const std::string &strLine);
// The OEM flag, from the capability file.
u32 OemFlag();
// A capability: 0, or not 0 when there is none.
u32 Capability(const char *pcObject, const char *pcName, std::string *pstrValue);

} // namespace host

#endif
