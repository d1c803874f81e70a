// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_MUTANTS_SAMPLE_H
#define TESTS_MUTANTS_SAMPLE_H

int SAMPLE_AtMostTen(int iValue);
unsigned SAMPLE_CountDown(unsigned uiLeft);
void SAMPLE_Unused(int *piValue);

#endif
