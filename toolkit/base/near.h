// SPDX-License-Identifier: Apache-2.0
// Guesses: which of the names somebody may have meant who wrote one that there is not.
#ifndef TOOLKIT_BASE_NEAR_H
#define TOOLKIT_BASE_NEAR_H

#include <string>
#include <vector>

// The nearest first, three at most.
std::vector<std::string> NearNames(const std::string &strText, const std::vector<std::string> &vecNames);

// "; did you mean 'one' or 'another'?", or nothing where no name is near. It goes behind what was refused.
std::string DidYouMean(const std::string &strText, const std::vector<std::string> &vecNames);

#endif
