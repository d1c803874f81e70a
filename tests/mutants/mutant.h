// SPDX-License-Identifier: Apache-2.0
// Put in front of every rewritten source file: asks whether this change of it is the one to be made.
#ifndef TESTS_MUTANTS_MUTANT_H
#define TESTS_MUTANTS_MUTANT_H

extern "C" bool MUTANT_Is(unsigned uiMutant);

#endif
