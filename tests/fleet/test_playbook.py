# SPDX-License-Identifier: Apache-2.0
"""The example's playbook over a fleet: shown first, written, killed in the middle, run again. A few controllers, or as many as
BMCFRU_FLEET says; what it prints then are the figures of docs/fleet.md."""
import csv
import json
import os
import resource
import shutil
import subprocess
import time
import unittest

from fleet_support import EXAMPLES, FRUCTL, FleetTest

FLEET = max(5, int(os.environ.get("BMCFRU_FLEET", "5")))
MEASURED = "BMCFRU_FLEET" in os.environ
STRACE = shutil.which("strace")
MAY_TRACE = STRACE is not None and subprocess.run([STRACE, "-o", "/dev/null", "true"], capture_output=True, check=False).returncode == 0
OLD = {"baseboard": ("LH22024170042", "RACK7-UNIT12"), "psu1": ("PS8024100311", "")}
LABELS = ("Product Serial Number", "Product Asset Tag")
SERIAL_FILE = "mnt/sdmmc0p4/board/ProductSerialNumber"

# Where those are killed who are: at a write of this file, the so manieth. All of them lie behind the first byte that changes.
BASEBOARD, PSU, EVENTS, OPERATIONS = "eeprom/bus1-addr0xa0.bin", "eeprom/bus2-addr0xa4-switch1.bin", "var/log/fru-events.jsonl", "var/log/operate.jsonl"
POINTS = [(BASEBOARD, 1), (BASEBOARD, 2), (EVENTS, 2), (BASEBOARD, 3), (OPERATIONS, 1), (BASEBOARD, 4), (EVENTS, 4), (BASEBOARD, 5), (EVENTS, 7), (PSU, 1)]

# Stands in for the interpreter of a managed host: strace kills the process that writes, at a write of a file.
KILLED_WORKER = """#!/bin/sh
exec {strace} -f -o {log} -P {file} -e trace=pwrite64,write -e inject=pwrite64,write:signal=KILL:when={when} /usr/bin/python3 "$@"
"""
# The same, but strace only stops it there, and then everything is killed at once: module, worker and who looks on.
KILLED_MODULE = """#!/usr/bin/python3
import os, pathlib, signal, subprocess, sys, time
asCommand = "{strace} -f -o {log} -P {file} -e trace=pwrite64,write -e inject=pwrite64,write:signal=STOP:when={when} /usr/bin/python3".split()
pathLog = pathlib.Path("{log}")
stRun = subprocess.Popen([*asCommand, *sys.argv[1:]], start_new_session=True)
while stRun.poll() is None:
    if pathLog.exists() and "--- stopped by SIGSTOP ---" in pathLog.read_text():
        os.killpg(stRun.pid, signal.SIGKILL)
        stRun.wait()
        os.kill(os.getpid(), signal.SIGKILL)
    time.sleep(0.01)
sys.exit(stRun.returncode)
"""


class Fleet(FleetTest):
    def setUp(self):
        super().setUp()
        self.pathFleet = self.pathTemp / "fleet"
        self.Good(EXAMPLES / "make-fleet", FLEET, self.pathFleet)
        self.asHosts = [f"c{i:03}" for i in range(1, FLEET + 1)]

    def Root(self, strHost):
        return self.pathFleet / "roots" / strHost

    def New(self, strHost):
        """What the table says."""
        dictNew = {}
        with open(self.pathFleet / "labels.csv", encoding="utf-8") as stFile:
            for dictRow in csv.DictReader(stFile):
                if dictRow["root"] == str(self.Root(strHost)):
                    strDevice = dictRow["device"]
                    dictNew[strDevice] = tuple(dictRow[strLabel] or strOld for strLabel, strOld in zip(LABELS, OLD[strDevice]))
        return dictNew

    def Held(self, strHost):
        """What the devices say, which are all in order, EEPROM and cache alike, once whoever comes next has looked."""
        for dictDevice in self.Fructl(self.Root(strHost), "list")["devices"]:
            if dictDevice["name"] in OLD:
                self.assertEqual((dictDevice["image"], dictDevice["cache"]), ("sound", "same"), strHost)
        dictHeld = {}
        for strDevice in OLD:
            dictProduct = self.Fructl(self.Root(strHost), "show", strDevice)["product"]
            dictHeld[strDevice] = (dictProduct["serialNumber"], dictProduct["assetTag"])
        return dictHeld

    def Clocked(self, fnWork):
        """What it gives, and how long it took: in seconds, and in seconds of a processor."""
        stBefore, fStart = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
        done = fnWork()
        stAfter, fEnd = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
        return done, (fEnd - fStart, stAfter.ru_utime + stAfter.ru_stime - stBefore.ru_utime - stBefore.ru_stime)

    def Play(self, *asArguments, bFails=False, **dictMore):
        """The playbook; its report as {host: (result, why)}, what it printed, and how long it took."""
        stDone, tupleTimes = self.Clocked(
            lambda: self.Run("ansible-playbook", "-i", self.pathFleet / "hosts.yml", EXAMPLES / "label.yml", *asArguments, **dictMore))
        self.assertEqual(stDone.returncode, 2 if bFails else 0, stDone.stdout + stDone.stderr)
        with open(self.pathFleet / "report.csv", encoding="utf-8") as stFile:
            dictReport = {dictRow["host"]: (dictRow["result"], dictRow["why"]) for dictRow in csv.DictReader(stFile)}
        return dictReport, stDone.stdout, tupleTimes

    def Say(self, strWhat, tupleTimes=None, iControllers=FLEET):
        """What was measured: how long it took, and how much of a processor, which on a busy machine says more."""
        if MEASURED and tupleTimes is None:
            print(strWhat, flush=True)
        elif MEASURED:
            fSeconds, fProcessor = tupleTimes
            print(f"{strWhat}: {fSeconds:.1f} s, {fProcessor:.1f} s of a processor, {1000 * fProcessor / iControllers:.0f} ms a controller", flush=True)

    def Script(self, strName, strText):
        pathScript = self.pathTemp / strName
        pathScript.write_text(strText)
        pathScript.chmod(0o755)
        return pathScript

    def HostVars(self, strHost, dictVars):
        pathVars = self.pathFleet / "host_vars"
        pathVars.mkdir(exist_ok=True)
        (pathVars / f"{strHost}.yml").write_text(json.dumps(dictVars))

    def Wrap(self, strHost, strScript, strFile, iWhen):
        """Gives a host an interpreter that is killed."""
        strText = strScript.format(strace=STRACE, file=self.Root(strHost) / strFile, when=iWhen, log=self.pathTemp / f"trace-{strHost}")
        self.HostVars(strHost, {"ansible_python_interpreter": str(self.Script(f"python-{strHost}", strText))})

    def test_a_fleet_is_shown_labelled_and_left_alone(self):
        dictTrees = {strHost: self.Tree(self.Root(strHost)) for strHost in self.asHosts}
        dictReport, strOut, tupleTimes = self.Play("--check", "--diff")
        self.Say("check and diff", tupleTimes)
        self.assertEqual(dictReport, {strHost: ("would change", "") for strHost in self.asHosts})
        self.assertEqual({strHost: self.Tree(self.Root(strHost)) for strHost in self.asHosts}, dictTrees)
        strHost = self.asHosts[-1]
        for strLine in ("-Product Serial Number: LH22024170042", f"+Product Serial Number: {self.New(strHost)['baseboard'][0]}",
                        f"--- before: {self.Root(strHost)}: psu1"):
            self.assertIn(f"\n{strLine}\n", strOut)

        # One has a value that is refused, one has lost its controller, one cannot be reached, one has another damaged device: the others
        # go on.
        dictWhy = {"c002": "looks like a placeholder", "c003": "there is no controller in", "c004": "can be reached over ssh",
                   "c005": "not every image is in order"}
        strTable = (self.pathFleet / "labels.csv").read_text()
        (self.pathFleet / "labels.csv").write_text(strTable.replace(self.New("c002")["baseboard"][0], "0000000000"))
        self.Root("c003").rename(self.pathTemp / "away")
        self.HostVars("c004", {"ansible_connection": "ssh", "ansible_ssh_executable": str(self.Script("ssh", "#!/bin/sh\nexit 255\n"))})
        pathRiser = self.Root("c005") / "eeprom/bus3-addr0xa2.bin"
        abRiser = pathRiser.read_bytes()
        pathRiser.write_bytes(b"\x00" * 64 + abRiser[64:])
        dictReport, strOut, tupleTimes = self.Play(bFails=True)
        self.Say("label and verify", tupleTimes)
        self.assertEqual({strHost: tupleResult[0] for strHost, tupleResult in dictReport.items()},
                         {strHost: "failed" if strHost in dictWhy else "changed" for strHost in self.asHosts})
        for strHost, strWhy in dictWhy.items():
            self.assertIn(strWhy, dictReport[strHost][1])
        self.assertIn(f"{FLEET - 4} changed, 4 failed", strOut)
        for strHost in self.asHosts:
            if strHost not in dictWhy:
                self.assertEqual(self.Held(strHost), self.New(strHost))

        (self.pathTemp / "away").rename(self.Root("c003"))
        (self.pathFleet / "labels.csv").write_text(strTable)
        shutil.rmtree(self.pathFleet / "host_vars")
        pathRiser.write_bytes(abRiser)
        self.assertEqual(self.Play("--limit", ",".join(dictWhy))[0], {**dict.fromkeys(dictWhy, ("changed", "")), "c005": ("unchanged", "")})
        dictTrees = {strHost: self.Tree(self.Root(strHost)) for strHost in self.asHosts}
        (self.pathFleet / "labels.csv").write_text("".join(strLine for strLine in strTable.splitlines(True) if "/c001," not in strLine))
        dictReport, _, tupleTimes = self.Play()
        self.Say("label and verify where nothing is to be done", tupleTimes)
        self.assertEqual(dictReport, {**dict.fromkeys(self.asHosts, ("unchanged", "")), "c001": ("no row", "")})
        self.assertEqual({strHost: self.Tree(self.Root(strHost)) for strHost in self.asHosts}, dictTrees)

    @unittest.skipUnless(MAY_TRACE, "there is no strace, or it may not trace")
    def test_nothing_is_lost_where_modules_are_killed_in_the_middle(self):
        # One in ten: every other one loses only the process that writes, the rest everything. Each at a write of its own.
        asVictims = self.asHosts[1::10] if FLEET > 10 else self.asHosts[1:3]
        for i, strHost in enumerate(asVictims):
            self.Wrap(strHost, KILLED_WORKER if i % 2 == 0 else KILLED_MODULE, *POINTS[i % len(POINTS)])
        dictReport, _, tupleTimes = self.Play(bFails=True)
        self.Say(f"label and verify with {len(asVictims)} killed", tupleTimes)
        for strHost in self.asHosts:
            self.assertEqual(dictReport[strHost][0], "failed" if strHost in asVictims else "changed", dictReport[strHost])
        for i, strHost in enumerate(asVictims):
            self.assertIn("was ended by signal 9" if i % 2 == 0 else "MODULE FAILURE", dictReport[strHost][1])
        shutil.rmtree(self.pathFleet / "host_vars")

        iOld = 0
        for strHost in self.asHosts:
            if strHost in asVictims[1:]:  # the first is left to the playbook
                dictHeld = self.Held(strHost)
                for strDevice, tupleHeld in dictHeld.items():
                    self.assertIn(tupleHeld, (OLD[strDevice], self.New(strHost)[strDevice]), strHost)
                    iOld += tupleHeld == OLD[strDevice]
                pathSerial = self.Root(strHost) / SERIAL_FILE
                self.assertEqual(pathSerial.read_text().strip() if pathSerial.exists() else dictHeld["baseboard"][0], dictHeld["baseboard"][0])
        self.Say(f"of {2 * len(asVictims[1:])} devices {iOld} are as before and the others as told")

        dictReport, _, tupleTimes = self.Play()
        self.Say("label and verify again", tupleTimes)
        for strHost in self.asHosts:
            self.assertIn(dictReport[strHost][0], ("changed", "unchanged") if strHost in asVictims else ("unchanged",))
            self.assertEqual(self.Held(strHost), self.New(strHost))
            self.assertFalse(self.Fructl(self.Root(strHost), "journal", "list")["entries"])

    def EachDirectly(self, fnRun):
        for strHost in self.asHosts:
            fnRun(strHost)

    @unittest.skipUnless(MEASURED, "BMCFRU_FLEET=100 measures")
    def test_what_takes_the_time(self):
        pathHosts, asTen = self.pathFleet / "hosts.yml", ("--limit", "controllers[0:9]")
        for strWhat, fnWork in (
                ("fructl label set --from, all of them", lambda: self.Good(FRUCTL, "label", "set", "--from", self.pathFleet / "labels.csv")),
                ("fructl verify, one after the other", lambda: self.EachDirectly(lambda strHost: self.Good(FRUCTL, "--root", self.Root(strHost), "verify"))),
                ("fru_label without Ansible, one after the other", lambda: self.EachDirectly(lambda strHost: self.Does(
                    "fru_label", {"root": str(self.Root(strHost)), "labels": {"baseboard": {"Product Asset Tag": "A1"}}}))),
                ("fru_info without Ansible, one after the other", lambda: self.EachDirectly(lambda strHost: self.Does(
                    "fru_info", {"root": None, "roots": [str(self.Root(strHost))], "records": False}))),
                ("one task of Ansible's own (ping)", lambda: self.Good("ansible", "-i", pathHosts, "-m", "ping", "all")),
                ("the playbook for ten, with one fork", lambda: self.Play(*asTen, ANSIBLE_FORKS="1")),
                ("the playbook for ten, with ten forks", lambda: self.Play(*asTen)),
                ("the playbook for ten, without pipelining", lambda: self.Play(*asTen, ANSIBLE_PIPELINING="false"))):
            self.Say(strWhat, self.Clocked(fnWork)[1], 10 if "for ten" in strWhat else FLEET)


if __name__ == "__main__":
    unittest.main()
