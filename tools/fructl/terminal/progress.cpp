// SPDX-License-Identifier: Apache-2.0
#include "terminal/progress.h"

#include <cstdio>
#include <unistd.h>

namespace {

class StderrLine : public ProgressView
{
  public:
    void Show(const std::string &strWhat, u32 uiDone, u32 uiTotal) override
    {
        fprintf(stderr, "\r%s: %u of %u bytes ", strWhat.c_str(), uiDone, uiTotal);
    }
    void End() override
    {
        fprintf(stderr, "\r\x1b[K");
    }
};

} // namespace

ProgressView *TerminalProgress()
{
    static StderrLine stLine;
    return isatty(STDERR_FILENO) == 1 ? &stLine : nullptr;
}
