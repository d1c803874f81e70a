// SPDX-License-Identifier: Apache-2.0
// What the labels' catalogue drags in of a controller: a fuzzer of texts has none.
#include <optional>

#include "bmcfru_host.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/controller.h"

void BMCHOST_SetDiagSink(void (*)(const BMCHOST_DIAG_S *, void *), void *) {}

void RequireController(const CONTROLLER_S &)
{
    Fail("there is no controller");
}

void FailLibrary(ErrorClass enElse, const std::string &strLine, const std::string &, std::optional<u32>)
{
    Fail(enElse, strLine);
}
