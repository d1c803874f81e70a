# SPDX-License-Identifier: Apache-2.0
"""Every command's JSON, held to its schema in docs/json/."""
import json
import os
import pathlib
import signal
import subprocess
import unittest

from support import COMMAND, CORPUS_IMAGES, DEBIAN_PYTHON, EXAMPLES, Environment, FructlTest, NO_CORPUS, Run, SOURCE

SCHEMA = SOURCE / "docs/json/fructl.schema.json"
DEFINITIONS = json.loads(SCHEMA.read_text())["$defs"]


def Leaves(dictHelp):
    """Commands that do something by themselves."""
    if not dictHelp["commands"]:
        return [dictHelp["command"].split()[1:]]
    return [asLeaf for dictCommand in dictHelp["commands"] for asLeaf in Leaves(dictCommand)]


def Name(asCommand):
    return "command:" + "-".join(asCommand)


class Schema(FructlTest):
    def Problems(self, listDocuments):
        stProcess = subprocess.run([DEBIAN_PYTHON, "-B", pathlib.Path(__file__).resolve().parent / "schema_reader.py"], capture_output=True, text=True,
                                   input=json.dumps({"schema": str(SCHEMA), "documents": listDocuments}))
        if "No module named" in stProcess.stderr:
            self.skipTest(f"python3-jsonschema is not installed for {DEBIAN_PYTHON}")
        self.assertEqual((stProcess.returncode, stProcess.stderr), (0, ""))
        return stProcess.stdout.splitlines()

    def Monitored(self):
        """The events of a write, as monitor prints them."""
        stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "--json", "monitor"], stdout=subprocess.PIPE, text=True, env=Environment())
        self.addCleanup(stProcess.stdout.close)
        # It tells what comes after it has begun, so something comes until it tells.
        iValue = 0
        os.set_blocking(stProcess.stdout.fileno(), False)
        strLine = ""
        while not strLine.endswith("\n") and iValue < 500:
            iValue += 1
            self.Good("label", "set", "riser", f"Product Asset Tag=RACK{iValue}")
            strLine += stProcess.stdout.readline()
        stProcess.send_signal(signal.SIGINT)
        stProcess.wait()
        return json.loads(strLine.splitlines()[0])

    def Runs(self):
        """Command lines by the command that they are of; each is run in this order, on the example's controller."""
        pathRecord = self.Write("psu.json", self.Good("show", "psu1", "--json").strOut.encode())
        self.Good("read", "psu1", "-o", self.pathTemp / "whole.bin")
        pathDump = self.Write("dump.bin", bytes([0xA5]) * 64 + (self.pathTemp / "whole.bin").read_bytes())
        pathImage, pathOther = self.pathTemp / "psu.bin", self.pathTemp / "other.bin"
        pathChip = self.pathTemp / "sys/bus/i2c/devices/4-0050/eeprom"
        pathChip.parent.mkdir(parents=True)
        pathChip.write_bytes(self.Eeprom("bus3-addr0xa2.bin").read_bytes())
        os.environ["FRUCTL_SYS"] = str(self.pathTemp / "sys")
        self.addCleanup(os.environ.pop, "FRUCTL_SYS")
        return [
            (["provision"], [EXAMPLES / "controller.json", "--force", "--dry-run"]),
            (["list"], []),
            *[(["show"], [strDevice]) for strDevice in ("baseboard", "psu1", "psu2", "riser", "bmc-card", EXAMPLES / "psu1.hex", "nonsense")],
            (["map"], ["baseboard"]), (["map"], [EXAMPLES / "riser.hex"]), (["map"], ["bmc-card-hw"]),
            (["verify"], []), (["verify"], [EXAMPLES / "psu1.hex"]),
            (["lint"], []), (["lint"], ["psu1", EXAMPLES / "psu1.hex"]), (["lint"], ["nonsense"]),
            (["label", "get"], ["psu1", "Product Serial Number", "Mfg.Date"]), (["label", "get"], ["psu1", "--all"]),
            (["raw", "write"], ["psu1", "--offset", "0", "--bytes", "01", "-n"]),
            (["diff"], ["psu1", "psu2"]), (["diff"], ["psu1", EXAMPLES / "psu1.hex"]), (["diff"], ["psu1", "nonsense"]),
            (["fields"], ["baseboard"]), (["fields"], [EXAMPLES / "psu1.hex"]),
            (["sn"], []), (["psn"], []), (["scan"], []), (["scan"], ["--describe"]),
            (["label", "list"], []), (["label", "list"], ["baseboard"]), (["label", "list"], ["bmc-card-hw"]),
            (["label", "get"], ["psu1", "Product Serial Number"]), (["label", "get"], ["psu1", "Product Serial Numbr"]),
            (["label", "set"], ["psu1", "Product Asset Tag=RACK7", "-n"]), (["label", "set"], ["psu1", "Product Asset Tag=RACK7"]),
            (["label", "set"], ["psu1", "Product Asset Tag=RACK7"]), (["label", "set"], ["psu1", "Mfg.Date=never"]),
            (["label", "set"], ["baseboard", "Product Serial Number=LH22024170043"]), (["psn"], []),
            (["edit"], ["psu1", "product.serialNumber=P-9", "-n"]), (["edit"], ["psu1", "product.serialNumber=P-9"]),
            (["edit"], [EXAMPLES / "psu1.hex", "product.custom[+]=ab", "--size", "1024", "-n"]), (["edit"], ["psu1", "product.nothing=1"]),
            (["repair"], ["psu1"]), (["repair"], [EXAMPLES / "psu1.hex", "-n"]), (["show"], ["psu1", "--lenient"]), (["show"], [pathDump]), (["map"], [pathDump]),
            (["transplant"], [EXAMPLES / "baseboard.hex", "baseboard", "-n"]), (["transplant"], ["nonsense", "baseboard"]),
            (["mr", "list"], []), (["mr", "add"], ["system-name=rack7", "-n"]), (["mr", "add"], ["system-name=rack7"]),
            (["mr", "check"], []), (["mr", "guid"], ["1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f"]),
            (["hw", "show"], ["bmc-card-hw"]), (["hw", "set"], ["bmc-card-hw", "--bytes", "01 02 03 04 05 06 07", "-n"]),
            (["oem", "show"], []), (["oem", "check"], ["0"]), (["oem", "check"], ["0xff"]), (["oem", "copyright"], []), (["oem", "copyright"], ["en"]),
            (["oem", "legal"], ["abc1"]), (["oem", "legal"], ["a-b"]), (["oem", "sync"], ["-n"]), (["oem", "sync"], []),
            (["host-name"], []),
            (["read"], ["psu1", "-o", pathImage]), (["read"], ["psu1", "-o", pathImage]),
            (["write"], ["psu2", pathImage, "-n"]), (["write"], ["psu2", pathImage]), (["write"], ["psu2", pathImage]),
            (["encode"], [pathRecord, "-o", pathOther]), (["encode"], [pathRecord, "-o", pathOther]),
            (["clear"], ["psu2", "--yes"]), (["label", "list"], ["psu2"]), (["map"], ["psu2"]), (["verify"], []), (["sn"], []),
            (["recover"], ["psu2", "-n"]), (["recover"], ["psu2"]), (["recover"], ["psu2"]),
            (["history"], ["psu2"]), (["undo"], ["psu2", "-n"]), (["undo"], ["psu2"]),
            (["journal", "list"], []), (["journal", "discard"], ["1"]),
            (["assemble"], ["psu2", "board-product-name=FB2", "--force"]),
            (["metrics"], ["-o", self.pathTemp / "fru.prom"]),
            (["report"], ["-o", self.pathTemp / "inventory.html"]),
            (["raw", "info"], ["baseboard"]), (["raw", "read"], ["baseboard", "--count", "8"]), (["raw", "read"], ["--id", "200"]),
            (["raw", "write"], ["riser", "--offset", "0", "--bytes", "01"]),
            (["date"], ["2024-05-17"]), (["date"], ["ff", "ff", "ff"]), (["date"], ["00", "00", "00"]),
            (["test-result"], []), (["features"], []),
            (["serve"], ["--address", "nowhere"]),
            (["help"], []), (["help"], ["label", "set"]), (["help"], ["nonsense"]),
            (["completion"], ["bash"]),
        ]

    def test_every_command_has_a_schema_and_every_schema_a_command(self):
        asCommands = sorted(Name(asLeaf) for asLeaf in Leaves(Run("help", "--json").Json()))
        self.assertEqual(sorted(strName for strName in DEFINITIONS if strName.startswith("command:")), asCommands,
                         "docs/json/fructl.schema.json and the commands differ")

    def test_what_commands_print_is_what_the_schema_says(self):
        self.Provision()
        listDocuments = []
        setWhole = set()
        for asCommand, asMore in self.Runs():
            stResult = self.Fructl("--json", *asCommand, *asMore)
            try:
                dictShown = stResult.Json()
            except ValueError:
                self.fail(f"fructl {asCommand} {asMore} printed no JSON: {stResult.strOut[:200]!r} {stResult.strErr[:200]!r}")
            listDocuments.append([Name(asCommand), dictShown])
            # A check that says no, or a difference that is found, is no failure.
            if "error" not in dictShown:
                setWhole.add(Name(asCommand))
        listDocuments.append(["command:monitor", self.Monitored()])
        self.assertEqual(self.Problems(listDocuments), [])
        # Of each a whole one has been seen; for serve tests/ipmi/ has what that needs, for discard a write must have been cut.
        asExpected = {strName for strName in DEFINITIONS if strName.startswith("command:")}
        self.assertEqual(asExpected - setWhole, {"command:monitor", "command:serve", "command:journal-discard"})

    def test_the_service_tells_itself_as_the_schema_says(self):
        self.Provision()
        with open(self.pathTemp / "said", "w+") as stSaid:
            stProcess = subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "--json", "serve", "--port", str(20000 + os.getpid() % 20000)], stdout=stSaid,
                                         stderr=subprocess.PIPE, text=True, env=Environment())
            while stProcess.poll() is None and (self.pathTemp / "said").stat().st_size == 0:
                try:
                    stProcess.wait(0.05)
                except subprocess.TimeoutExpired:
                    pass
            if stProcess.poll() is None:
                stProcess.send_signal(signal.SIGINT)
            strErr = stProcess.communicate()[1]
            stSaid.seek(0)
            dictSaid = json.load(stSaid)
        self.assertEqual(self.Problems([["command:serve", dictSaid]]), [])
        if "error" in dictSaid:
            self.skipTest(f"nothing can be served here: {strErr}")

    @unittest.skipUnless(CORPUS_IMAGES, NO_CORPUS)
    def test_images_of_real_boards_are_told_as_the_schema_says(self):
        listDocuments = []
        for pathImage in CORPUS_IMAGES:
            for strCommand in ("show", "map", "verify", "fields"):
                listDocuments.append([f"command:{strCommand}", self.Fructl("--json", strCommand, pathImage).Json()])
        self.assertEqual(self.Problems(listDocuments), [])

    def test_the_page_of_the_schema_is_what_the_script_makes(self):
        stMade = subprocess.run([str(SOURCE / "scripts/json"), "--check"], capture_output=True, text=True)
        self.assertEqual((stMade.returncode, stMade.stderr), (0, ""))

    def test_a_member_that_is_unknown_missing_or_of_another_kind_is_seen(self):
        self.Provision()
        dictGood = self.Json("oem", "legal", "abc")
        self.assertEqual(self.Problems([["command:oem-legal", dictGood]]), [])
        for dictBad in ({**dictGood, "more": 1}, {"text": "ABC"}, {**dictGood, "legal": "yes"}, {"error": {"code": "refused"}}):
            self.assertNotEqual(self.Problems([["command:oem-legal", dictBad]]), [], dictBad)


if __name__ == "__main__":
    unittest.main()
