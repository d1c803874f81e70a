// SPDX-License-Identifier: Apache-2.0
// Health and identity of devices in Prometheus' text format, version 0.0.4.
#ifndef TOOLKIT_CONTROLLER_METRICS_H
#define TOOLKIT_CONTROLLER_METRICS_H

#include <string>
#include <vector>

#include "toolkit/controller/inventory.h"

// All families, each with its HELP and TYPE; a device without a value has no sample.
std::string MetricsText(const std::vector<INVENTORY_S> &vecInventory);

#endif
