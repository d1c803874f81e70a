# SPDX-License-Identifier: Apache-2.0
"""The test programs of the build for armhf, each as it is, on the controller."""
import re

from controller import BUS, KERNEL_ADDRESSES, RAW_ADDRESSES

# Minutes under an emulator, and nothing in them depends on the machine; the contract is run for the chips alone.
LONG = ("unit_lib_fru_write", "unit_locale", "unit_lib_fru_analyzer", "unit_lib_fru", "examples_test", "thread_desk")
CHIPS = "*Eeprom*:*Chip*-*AKilledWrite*"
# Of the contract, what no real chip of 8 KiB can play: other capacities, protection by a pin; and kills by the hundred.
REAL = "*-*ShortAtTheEnd*:*NeverGrows*:*AKilledWrite*"
PINS = ":*Protected*"


class Programs:
    def __init__(self, stWorld, stMachine, stReport, bQuick):
        self.stWorld = stWorld
        self.stMachine = stMachine
        self.stReport = stReport
        self.bQuick = bQuick

    def One(self, strProgram, strFilter="*", strBefore=""):
        stAnswer = self.stMachine.Run(f"cd /tmp; {strBefore} {strProgram} --gtest_brief=1 --gtest_filter='{strFilter}' >/tmp/said 2>&1; "
                                      "iCode=$?; grep -v -E '^\\[ (RUN  |      OK)' /tmp/said | tail -n 60; rm -f /tmp/said; exit $iCode")
        stPassed = re.search(r"\[==========\] (\d+) tests? .*\((\d+) ms total\)\n\[  PASSED  \] (\d+) test", stAnswer.strOut)
        if stAnswer.iCode != 0 or not stPassed or stPassed.group(3) == "0":
            raise AssertionError(f"exit code {stAnswer.iCode}\n{stAnswer.strOut[-4000:]}{stAnswer.strErr[-1000:]}")
        iSkipped = int(stPassed.group(1)) - int(stPassed.group(3))
        return f"{stPassed.group(3)} tests in {int(stPassed.group(2)) / 1000:.1f} s" + (f", {iSkipped} skipped" if iSkipped else "")

    def Run(self):
        for strProgram in self.stWorld.listTests:
            if self.bQuick and strProgram in LONG:
                continue
            strFilter = CHIPS if self.bQuick and strProgram.startswith("contract") else "*"
            self.stReport.Check(strProgram, lambda strName=strProgram, strWhich=strFilter: self.One(strName, strWhich))
        for strBackend, aiAddresses, strFilter in (("kernel", KERNEL_ADDRESSES, REAL), ("i2c", RAW_ADDRESSES, REAL + PINS)):
            strChips = f"{strBackend} {BUS} " + " ".join(f"{iAddress:#x}" for iAddress in aiAddresses)
            self.stReport.Check(f"contract over {strBackend}", lambda strWhich=strFilter, strWhere=strChips: self.One(
                "target_chips", strWhich, f"export BMCFRU_TARGET_CHIPS='{strWhere}';"))
