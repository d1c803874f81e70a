// SPDX-License-Identifier: Apache-2.0
// An inventory as one HTML page that needs nothing else.
#ifndef FRUCTL_REPORT_PAGE_H
#define FRUCTL_REPORT_PAGE_H

#include <string>
#include <vector>

#include "toolkit/controller/inventory.h"

// strOf: what the page is of. strMade: when, and by what.
std::string PageHtml(const std::vector<INVENTORY_S> &vecInventory, const std::string &strOf,
                     const std::string &strMade);

#endif
