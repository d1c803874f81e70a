# SPDX-License-Identifier: Apache-2.0
"""What fructl tells of MultiRecords, beside what ipmi-fru does of the same images: records_test.py FRUCTL."""
import json
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest

PATH_HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(PATH_HERE.parent / "e2e")]

from multirecord_support import Records  # noqa: E402
from support import Image  # noqa: E402

IMAGES = 60
RECORDS_EACH = 8

# What ipmi-fru calls a member, by the record's type. What it shows is a number with a unit, yes or no, or hex.
OUTPUT = {
    "Output Number": "outputNumber", "Output on Standy": "onInStandby", "Nominal Voltage": "nominalVoltageMillivolts",
    "Maximum Negative Voltage Deviation": "maximumNegativeDeviationMillivolts", "Maximum Positive Voltage Deviation": "maximumPositiveDeviationMillivolts",
    "Ripple and Noise pk-pk": "rippleAndNoiseMillivolts", "Minimum Current Draw": "minimumCurrentMilliamperes",
    "Maximum Current Draw": "maximumCurrentMilliamperes"}
LOAD = {
    "Output Number": "outputNumber", "Nominal Voltage": "nominalVoltageMillivolts", "Spec'd Minimum Voltage": "minimumVoltageMillivolts",
    "Spec'd Maximum Voltage": "maximumVoltageMillivolts", "Spec'd Ripple and Noise pk-pk": "rippleAndNoiseMillivolts",
    "Minimum Current Load": "minimumCurrentMilliamperes", "Maximum Current Load": "maximumCurrentMilliamperes"}
COMPATIBILITY = {
    "Entity ID": "entityId", "Comptability Base": "compatibilityBase", "Comptability Code Start Value": "firstCode"}
NAMES = {
    0x00: ("Power Supply", {
        "Overall Capacity": "overallCapacityWatts", "Peak VA": "peakApparentPowerVoltAmperes", "Max Inrush Current": "inrushCurrentAmperes",
        "Inrush Interval": "inrushIntervalMilliseconds", "Low End Input Voltage 1": "inputRange1LowMillivolts",
        "High End Input Voltage 1": "inputRange1HighMillivolts", "Low End Input Voltage 2": "inputRange2LowMillivolts",
        "High End Input Voltage 2": "inputRange2HighMillivolts", "Low End Acceptable Frequency": "inputFrequencyLowHertz",
        "High End Acceptable Frequency": "inputFrequencyHighHertz", "A/C Dropout Tolerance": "dropoutToleranceMilliseconds",
        "Predictive Fail Support": "predictiveFailurePin", "Power Factor Correction Supported": "powerFactorCorrection", "AutoSwitch Supprt": "autoswitch",
        "Hot Swap Support": "hotSwap", "Peak Capacity": "peakCapacityWatts", "Hold Up Time": "holdUpTimeSeconds",
        "Total Combined Wattage": "combinedCapacityWatts"}),
    0x01: ("DC Output", OUTPUT),
    0x02: ("DC Load", LOAD),
    0x04: ("Base Compatibility", COMPATIBILITY),
    0x05: ("Extended Compatibility", COMPATIBILITY),
    0x09: ("DC Output", OUTPUT),
    0x0A: ("DC Load", LOAD),
}
LENGTHS = {0x00: 24, 0x01: 13, 0x02: 13, 0x04: 7, 0x05: 7, 0x09: 13, 0x0A: 13}
# ipmi-fru shows the numbers that stand for "unspecified".
UNSPECIFIED = {"peakApparentPowerVoltAmperes": 0xFFFF, "inrushCurrentAmperes": 0xFF}
# The voltages of outputs and loads in millivolts it keeps in 16 bits: beyond 32.767 V they go round.
WRAPPED = {strKey for dictNames in (OUTPUT, LOAD) for strKey in dictNames.values() if strKey.endswith(("VoltageMillivolts", "DeviationMillivolts"))}
# It leaves a combined wattage of 0 out, and what belongs to it.
LEFT_OUT = ("combinedCapacityWatts",)


def Theirs(strOut):
    """(what the record is, name, value) of each line of ipmi-fru's."""
    for strLine in strOut.splitlines():
        for strRecord in sorted({stPair[0] for stPair in NAMES.values()}):
            stMatch = re.fullmatch(rf"  FRU {strRecord} ([^:]+): (.*)", strLine)
            if stMatch:
                yield strRecord, stMatch.group(1), stMatch.group(2)


def Number(strValue):
    if strValue in ("Yes", "No"):
        return strValue == "Yes"
    stHex = re.fullmatch("([0-9A-F]+)h", strValue)
    return int(stHex.group(1), 16) if stHex else int(strValue.split()[0])


class Words(unittest.TestCase):
    maxDiff = None

    def test_ipmi_fru_tells_the_same_numbers(self):
        stRandom = random.Random(7)
        iCompared = 0
        with tempfile.TemporaryDirectory() as strTemp:
            pathImage = pathlib.Path(strTemp) / "image.bin"
            for i in range(IMAGES):
                listTypes = [stRandom.choice(list(NAMES)) for _ in range(RECORDS_EACH)]
                pathImage.write_bytes(Image({5: Records([(iType, stRandom.randbytes(LENGTHS[iType])) for iType in listTypes])}) + b"\xff" * 8)
                strOut = subprocess.run(["ipmi-fru", f"--fru-file={pathImage}"], capture_output=True, text=True, errors="replace").stdout
                stProcess = subprocess.run([FRUCTL, "mr", "list", "--json", str(pathImage)], capture_output=True, text=True, check=True)
                iCompared += self.Compare(strOut, json.loads(stProcess.stdout)["multiRecords"], f"image {i}")
        self.assertGreater(iCompared, IMAGES * RECORDS_EACH * 3)

    def Compare(self, strOut, listRecords, strWhich):
        listExpected = []
        for stRecord in listRecords:
            strRecord, dictNames = NAMES[stRecord["type"]]
            for strName, strKey in dictNames.items():
                value = stRecord["fields"][strKey]
                value = UNSPECIFIED[strKey] if value is None else value
                value = (value + 0x8000) % 0x10000 - 0x8000 if strKey in WRAPPED else value
                if strKey not in LEFT_OUT or value:
                    listExpected.append((strRecord, strName, value))
        setNames = {(strRecord, strName) for strRecord, dictNames in NAMES.values() for strName in dictNames}
        listTheirs = [(strRecord, strName, Number(strValue)) for strRecord, strName, strValue in Theirs(strOut) if (strRecord, strName) in setNames]
        self.assertEqual(listTheirs, listExpected, f"{strWhich}\n{strOut}")
        return len(listTheirs)


if __name__ == "__main__":
    FRUCTL = sys.argv.pop(1)
    unittest.main(verbosity=2)
