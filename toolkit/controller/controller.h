// SPDX-License-Identifier: Apache-2.0
// The controller that is worked on: one directory, the root, and who works there.
#ifndef TOOLKIT_CONTROLLER_CONTROLLER_H
#define TOOLKIT_CONTROLLER_CONTROLLER_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class ReadLock;
struct DEVICE_S;

struct CONTROLLER_S
{
    std::string strRoot;                                    // empty: $FRUCTL_ROOT, else ~/.local/state/fructl
    std::string strCommandLine;                             // who works there, for the lock file
    std::function<void(const std::string &strLine)> fnWarn; // of what is no failure; may be empty
    bool bNumbersAreIDs = false;                            // a device named by a number is a FRU device ID
    bool bForeignRoot = false;                              // also write to somebody else's directory
    unsigned uiWaitMs = 10000;                              // for other commands to be done
    mutable std::shared_ptr<ReadLock> pstReadLock;          // since RequireController()
    mutable bool bWriting = false;                          // a RootLock lives
    mutable bool bGoesOnForLong = false;
    mutable std::vector<std::shared_ptr<const DEVICE_S>> vecNamed; // devices that the user named

    void Warn(const std::string &strLine) const;
    // Lets others write meanwhile: from now on reads of this controller are not locked.
    void GoOnForLong() const;
};

// Points the platform to the root directory, and fills in which one it is.
void OpenController(CONTROLLER_S &stController);

// True when the root holds a controller's database. Asked before the database is opened, which would make
// it. Fails when there is one that cannot be used, with the reason.
bool HasController(const CONTROLLER_S &stController);

// Fails with a helpful line when there is none. From then on no other command writes to it, until the
// controller is locked for writing or goes.
void RequireController(const CONTROLLER_S &stController);

// Fails when the root belongs to somebody else and that was not asked for. Asked before anything is written.
void RequireOwnRoot(const CONTROLLER_S &stController);

// Where a file of the controller lies in reality; nothing when its path would lead out of the root.
std::optional<std::string> RealPath(const std::string &strControllerPath);

#endif
