// SPDX-License-Identifier: Apache-2.0
// A source file to be changed, one change at a time: sample_test.cpp notices all but one.
#include "sample.h"

int SAMPLE_AtMostTen(int iValue)
{
    if (iValue > 10) {
        return 10;
    }
    return iValue;
}

unsigned SAMPLE_CountDown(unsigned uiLeft)
{
    unsigned uiSteps = 0U;
    while (uiLeft != 0U) {
        uiLeft -= 1U;
        ++uiSteps;
    }
    return uiSteps;
}

void SAMPLE_Unused(int *piValue)
{
    *piValue = 7;
}
