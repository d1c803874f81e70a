# SPDX-License-Identifier: Apache-2.0
"""fructl clear, raw write, test-result, features, date and monitor."""
import datetime
import json
import select
import signal
import subprocess
import unittest

from support import BASEBOARD_EEPROM, COMMAND, Environment, FructlTest, HANG_SECONDS, Run

OPERATE_LOG = "var/log/operate.jsonl"
EVENTS = "var/log/fru-events.jsonl"
SERIAL_NUMBER_FILES = ("mnt/sdmmc0p4/board/ProductSerialNumber", "var/network/ProductSerialNumber")


class ServicesTest(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Lines(self, strPath):
        pathFile = self.pathRoot / strPath
        return [json.loads(strLine) for strLine in pathFile.read_text().splitlines()] if pathFile.exists() else []

    def Snapshot(self):
        return {str(p): p.read_bytes() for p in self.pathRoot.rglob("*") if p.is_file() and "lock" not in p.name}


class Clear(ServicesTest):
    def test_erases_device_and_cache_and_tells_everybody(self):
        self.assertEqual(self.Good("clear", "psu1", "--yes").strOut, "Cleared psu1 FRU successfully.\n")
        self.assertEqual(set(self.Eeprom("bus2-addr0xa4-switch1.bin").read_bytes()[:256]), {0xFF})
        stPsu = self.Json("list")["devices"][1]
        self.assertEqual((stPsu["image"], stPsu["cache"]), ("erased", "same"))
        self.assertEqual([(s["result"], s["text"], s["source"]) for s in self.Lines(OPERATE_LOG)], [(99, "Cleared psu1 FRU successfully.", 12)])
        # Only the baseboard's clear sends the device-changed notice and touches the serial-number files.
        self.assertEqual([(s["event"], s["componentType"], s["instance"]) for s in self.Lines(EVENTS)], [("cleared", 3, 0)])
        self.assertFalse((self.pathRoot / SERIAL_NUMBER_FILES[0]).exists())

    def test_baseboard_clear_empties_the_serial_number_file(self):
        stResult = self.Json("clear", "0:0", "--yes")
        self.assertEqual(stResult["operationLog"], "Cleared baseboard FRU successfully.")
        self.assertEqual((self.pathRoot / SERIAL_NUMBER_FILES[0]).read_bytes(), bytes(80))
        self.assertEqual([s["event"] for s in self.Lines(EVENTS)], ["deviceChanged", "cleared"])

    def test_needs_a_yes_when_there_is_nobody_to_ask(self):
        dictBefore = self.Snapshot()
        self.assertIn("needs --yes", self.Bad(2, "clear", "psu1"))
        self.assertEqual(self.Snapshot(), dictBefore)

    def test_dry_run_writes_nothing(self):
        dictBefore = self.Snapshot()
        self.assertEqual(self.Good("clear", "psu1", "--dry-run").strOut, "would erase 256 bytes of psu1 (0x03:0); nothing was written\n")
        self.assertEqual(self.Json("clear", "psu1", "--dry-run")["bytes"], 256)
        self.assertEqual(self.Snapshot(), dictBefore)

    def test_a_device_that_does_not_answer_is_left_alone_and_logged(self):
        self.Eeprom("bus2-addr0xa4-switch1.bin").unlink()
        self.assertRegex(self.Bad(5, "clear", "psu1", "--yes"), r"psu1 \(0x03:0\) could not be erased: 0x29000004.*EEPROM bus2-addr0xa4-switch1: No such file")
        self.assertEqual([(s["result"], s["text"]) for s in self.Lines(OPERATE_LOG)], [(67, "Failed to clear psu1 FRU.")])
        self.assertEqual(self.Lines(EVENTS), [])


class RawWrite(ServicesTest):
    def test_writes_device_and_cache(self):
        iBefore = self.Eeprom(BASEBOARD_EEPROM).read_bytes()
        stResult = self.Json("raw", "write", "baseboard", "--offset", "0x700", "--bytes", "01 a2FF")
        self.assertEqual((stResult["request"], stResult["response"]), ("00 00 07 01 a2 ff", "00 03"))
        abAfter = self.Eeprom(BASEBOARD_EEPROM).read_bytes()
        self.assertEqual(abAfter[0x700:0x703], bytes([0x01, 0xA2, 0xFF]))
        self.assertEqual(abAfter[:0x700] + abAfter[0x703:], iBefore[:0x700] + iBefore[0x703:])
        self.assertEqual(self.Json("list")["devices"][0]["cache"], "same")

    def test_one_log_entry_for_each_sequence(self):
        self.Good("raw", "write", "psu1", "--offset", "0xf0", "--bytes", "00")
        self.assertEqual(self.Lines(OPERATE_LOG), [])
        self.Good("raw", "info", "psu1")
        for _ in range(2):
            self.Good("raw", "write", "psu1", "--offset", "0xf0", "--bytes", "00")
        self.assertEqual([s["text"] for s in self.Lines(OPERATE_LOG)], ["Set FRU successfully, Device ID: 1."])

    def test_completion_codes_and_refusals(self):
        for strOffset, strCode in (("0x100", "0xcc"), ("0xff", "0xc9")):
            stResult = self.Fructl("raw", "write", "psu1", "--offset", strOffset, "--bytes", "0102")
            self.assertEqual(stResult.iCode, 1)
            self.assertIn(strCode, stResult.strErr)
        for strBytes in ("xyz", "0", "1 ", "00" * 256):
            self.assertIn("accepted: 1 to 255 bytes", self.Bad(2, "raw", "write", "psu1", "--offset", "0", "--bytes", strBytes))


class SmallServices(ServicesTest):
    def test_test_result_is_zero_without_faults(self):
        self.assertEqual(self.Json("test-result"), {"testResult": 0, "faults": {}})
        self.assertEqual(self.Good("test-result").strOut, "test result 0x00, no fault marked\n")

    def test_features(self):
        pathList = self.pathRoot / "conf/features.json"
        pathList.parent.mkdir(exist_ok=True)
        pathList.write_text('["success", "pending", "success"]')
        self.assertEqual(self.Json("features"), {"features": [True, False, True]})
        self.assertEqual(self.Good("features").strOut, "feature 0: success\nfeature 1: failed\nfeature 2: success\n")
        pathList.write_text("[]")
        self.assertEqual(self.Good("features").strOut, "no features\n")
        pathList.write_text("{")
        strErr = self.Bad(1, "features")
        self.assertIn("the feature service did not answer", strErr)
        self.assertIn("conf/features.json: not an array of texts", strErr)

    def test_feature_update_is_handed_over_whole(self):
        abBlock = bytes(i % 251 for i in range(1334))
        self.Good("features", "--update", self.Write("block.bin", abBlock))
        self.assertEqual((self.pathRoot / "var/lib/fru/feature-update.bin").read_bytes(), abBlock)
        self.assertIn("exactly 1334", self.Bad(3, "features", "--update", self.Write("short.bin", abBlock[:-1])))

    def test_monitor_shows_past_and_new_events(self):
        self.Good("clear", "psu1", "--yes")
        stPast = json.loads(self.Good("--json", "monitor", "--all", "--count", "1").strOut)
        self.assertEqual(stPast["event"], "cleared")
        with subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "monitor"], stdout=subprocess.PIPE, text=True,
                              env=Environment()) as stMonitor:
            # The monitor begins at the journal's end, and nobody sees when it is there.
            listReady = []
            while not listReady:
                self.Good("clear", "psu2", "--yes")
                listReady, _, _ = select.select([stMonitor.stdout], [], [], 0.2)
            strLine = stMonitor.stdout.readline()
            stMonitor.send_signal(signal.SIGINT)
            self.assertEqual(stMonitor.wait(timeout=HANG_SECONDS), 0)
        self.assertRegex(strLine, r"^\d{4}-\d\d-\d\dT\S+  cleared  0x03:1\n$")

    def test_monitor_follows_a_journal_that_begins_anew(self):
        pathJournal = self.pathRoot / EVENTS
        self.Good("clear", "psu1", "--yes")
        with open(pathJournal, "a", encoding="utf-8") as stFile:
            stFile.write("x" * (4 * 1024 * 1024 - 100) + "\n")
        with subprocess.Popen([*COMMAND, "--root", str(self.pathRoot), "monitor", "--all", "--count", "3"], stdout=subprocess.PIPE, text=True,
                              env=Environment()) as stMonitor:
            listLines = [stMonitor.stdout.readline()]
            self.Good("clear", "psu2", "--yes")
            listLines += stMonitor.stdout.readlines()
        self.assertEqual(stMonitor.returncode, 0)
        self.assertEqual(len(listLines), 3)
        self.assertRegex(listLines[2], r"^\d{4}-\d\d-\d\dT\S+  cleared  0x03:1\n$")
        self.assertLess(pathJournal.stat().st_size, 10000)
        self.assertGreater((self.pathRoot / (EVENTS + ".1")).stat().st_size, 4000000)

    def test_monitor_hands_no_control_characters_to_a_terminal(self):
        (self.pathRoot / EVENTS).parent.mkdir(parents=True, exist_ok=True)
        (self.pathRoot / EVENTS).write_text('{"event":"x\x1b]0;title\x07","time":"now"}\nno JSON \x1b[2J\n')
        for asMode in ([], ["--json"]):
            strOut = self.Good(*asMode, "monitor", "--all", "--count", "2").strOut
            self.assertEqual([c for c in strOut if c != "\n" and not c.isprintable()], [])


class DryRuns(FructlTest):
    def test_raw_write_and_features_say_what_they_would_do(self):
        self.Provision()
        dictTree = self.Tree()
        self.assertEqual(self.Good("raw", "write", "psu1", "--offset", "0x90", "--bytes", "00ff", "-n").strOut.split("\n")[0], "nothing was written; this would be")
        stJson = self.Json("raw", "write", "psu1", "--offset", "0", "--bytes", "0102", "--dry-run")
        self.assertEqual((stJson["dryRun"], stJson["bytes"]), (True, [{"offset": 1, "old": "00", "new": "02"}]))
        self.assertIn("the bytes would end at 0x0101, and the FRU has 256 bytes", self.Bad(3, "raw", "write", "psu1", "--offset", "255", "--bytes", "0102", "-n"))
        self.assertIn("there is no FRU device ID 77", self.Bad(4, "raw", "write", "--id", "77", "--offset", "0", "--bytes", "01", "-n"))
        pathBlock = self.Write("block.bin", bytes(1334))
        self.assertEqual(self.Good("features", "--update", pathBlock, "-n").strOut, "nothing was handed over; without --dry-run: 1334 bytes to the feature service\n")
        self.Bad(3, "features", "--update", self.Write("short.bin", bytes(10)), "-n")
        self.Bad(2, "features", "-n")
        self.assertEqual({strPath for strPath, value in self.Tree().items() if dictTree.get(strPath) != value}, set())


class Date(unittest.TestCase):
    def test_there_and_back(self):
        for strDate, strBytes in (("1996-01-01", "00 00 00"), ("1996-01-01 00:01:59", "01 00 00"), ("2024-05-17", "80 b9 e3"),
                                  ("2024-5-17 8:30:0", None), ("2025-12-31 23:59:59", None)):
            stResult = Run("--json", "date", strDate)
            self.assertEqual(stResult.iCode, 0, stResult.strErr)
            stJson = stResult.Json()
            aParts = [int(s) for s in strDate.replace(" ", "-").replace(":", "-").split("-")]
            stMoment = datetime.datetime(*aParts)
            self.assertEqual(stJson["minutes"], (stMoment - datetime.datetime(1996, 1, 1)) // datetime.timedelta(minutes=1))
            self.assertEqual(stJson["bytes"], strBytes or stJson["bytes"])
            stBack = Run("--json", "date", "--bytes", *stJson["bytes"].split())
            self.assertEqual(stBack.Json()["text"] or "1996-01-01 00:00:00", stMoment.replace(second=0).strftime("%Y-%m-%d %H:%M:%S"))
            self.assertEqual(stBack.Json()["text"] is None, stJson["minutes"] == 0)

    def test_refusals(self):
        for asArguments, iCode in ((("1995-12-31",), 3), (("2027-11-24 20:16",), 3), (("2024-02-30",), 3), (("2024-4-05",), 3), (("17.5.2024",), 3),
                                   (("--bytes", "00", "00", "1g"), 3), ((), 2)):
            stResult = Run("date", *asArguments)
            self.assertEqual(stResult.iCode, iCode, asArguments)
            self.assertEqual(stResult.strErr.count("\n"), 1)


if __name__ == "__main__":
    unittest.main()
