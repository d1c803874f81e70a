// One run of fructl: the options that all commands share, the controller it works on, and what
// the library said.
#ifndef FRUCTL_SESSION_H
#define FRUCTL_SESSION_H

#include <functional>
#include <string>
#include <vector>

#include "error.h"

struct SESSION_S
{
    std::string strRoot; // empty: $FRUCTL_ROOT, else ~/.local/state/fructl
    bool bVerbose = false;
    bool bJson = false;
    std::string strCommandLine;            // as typed, for the lock file
    std::function<void()> fnRun;           // set by the command that was named
    EXIT_CODE_E enExitCode = EXIT_CODE_OK; // of a command that did not fail
};

// Points the platform to the root directory, and its diagnostics to TakeDiagnostics() (and
// stderr when verbose).
void OpenSession(SESSION_S &stSession);

// True when the root holds a controller's database. Asked before the database is opened, which would make it.
bool HasController(const SESSION_S &stSession);

// Fails with a helpful line when there is none.
void RequireController(const SESSION_S &stSession);

// What the library reported as failures and warnings (severity 4 or worse) since the last of these two
// calls, in order.
std::vector<std::string> TakeDiagnostics();
const std::vector<std::string> &Diagnostics(); // the same, left where it is
void ClearDiagnostics();

// The first of them, as " (the library says: ...)", or nothing: the first failure is the cause of
// those after it.
std::string DiagnosticHint();

// Held while a command writes to the controller. Its file names the holder.
class ROOT_LOCK
{
  public:
    // Waits two seconds for another writer, then fails with who holds it.
    explicit ROOT_LOCK(const SESSION_S &stSession);
    ~ROOT_LOCK();
    ROOT_LOCK(const ROOT_LOCK &) = delete;
    ROOT_LOCK &operator=(const ROOT_LOCK &) = delete;

  private:
    int m_iFd = -1;
};

#endif
