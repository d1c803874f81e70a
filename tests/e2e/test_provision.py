# SPDX-License-Identifier: Apache-2.0
"""fructl provision: what it writes."""
import contextlib
import copy
import json
import os
import shutil
import sqlite3
import unittest

from support import BASEBOARD_EEPROM, DESCRIPTION, EXAMPLES, FructlTest, HexImage


class Provision(FructlTest):
    def setUp(self):
        super().setUp()
        self.pathDescriptions = self.pathTemp / "descriptions"
        shutil.copytree(EXAMPLES, self.pathDescriptions)

    def Describe(self, dictDescription):
        pathFile = self.pathDescriptions / "described.json"
        pathFile.write_text(json.dumps(dictDescription))
        return pathFile

    def test_the_example_becomes_files_and_records(self):
        self.Provision()
        abBaseboard = HexImage(EXAMPLES / "baseboard.hex")
        abEeprom = self.Eeprom(BASEBOARD_EEPROM).read_bytes()
        self.assertEqual(abEeprom, abBaseboard.ljust(4096, b"\xff"))
        abCard = HexImage(EXAMPLES / "bmc-card.hex")
        abBlock = HexImage(EXAMPLES / "hardware/bmc-card.hex")
        self.assertEqual(self.Eeprom("bus4-addr0xae.bin").read_bytes(), (abBlock.ljust(256, b"\xff") + abCard).ljust(2048, b"\xff"))
        self.assertEqual(self.Eeprom("bus2-addr0xa4-switch2.bin").read_bytes(), HexImage(EXAMPLES / "psu2.hex").ljust(256, b"\xff"))
        # The stored image has exactly the FRU's size, so that the cache takes it whole.
        self.assertEqual((self.pathRoot / "usr/upgrade/fru/BaseBoard.bin").read_bytes(), abBaseboard.ljust(2048, b"\xff"))
        for strFile, strSource in [("conf/capability.ini", "capability.ini"), ("conf/features.json", "features.json"),
                                   ("conf/oempack/bmc/CID_OEM.conf", "CID_OEM.conf"), ("conf/hw/ProductPath/Baseboard.xml", "Baseboard.xml")]:
            self.assertEqual((self.pathRoot / strFile).read_bytes(), (EXAMPLES / strSource).read_bytes())
        listDevices = self.Json("list")["devices"]
        self.assertEqual([stDevice["name"] for stDevice in listDevices], ["baseboard", "psu1", "psu2", "riser", "bmc-card", "bmc-card-hw"])
        self.assertEqual([(stDevice["image"], stDevice["cache"]) for stDevice in listDevices], [("sound", "same")] * 5 + [("sound", "none")])

    def test_what_it_did_is_told_for_people_and_for_programs(self):
        strOut = self.Good("provision", EXAMPLES / "controller.json").strOut
        self.assertIn(f"Done: a controller with 6 devices in {self.pathRoot}\n", strOut)
        self.assertRegex(strOut, r"\n 1  psu1 +0x03 +0  bus2-addr0xa4-switch1.bin +256  psu1.hex +-\n")
        stJson = self.Json("provision", EXAMPLES / "controller.json", "--force")
        self.assertEqual((stJson["root"], stJson["written"]), (str(self.pathRoot), True))
        self.assertEqual(stJson["devices"][0], {"id": 0, "name": "baseboard", "eeprom": str(self.Eeprom(BASEBOARD_EEPROM)), "backend": "file", "image": "baseboard.hex",
                                                "cached": True, "storedImage": "/usr/upgrade/fru/BaseBoard.bin"})

    def test_a_dry_run_writes_nothing(self):
        stResult = self.Good("provision", EXAMPLES / "controller.json", "--dry-run")
        self.assertIn(f"Nothing was written: the description is in order, and without --dry-run its 6 devices would go into {self.pathRoot}\n", stResult.strOut)
        self.assertFalse(self.Json("provision", EXAMPLES / "controller.json", "--dry-run")["written"])
        self.assertFalse(self.pathRoot.exists())

    def test_a_chip_whose_write_protect_pin_is_pulled_stays_so(self):
        self.Provision()
        pathChip = self.Eeprom(BASEBOARD_EEPROM)
        pathChip.chmod(0o444)
        self.Good("provision", EXAMPLES / "controller.json", "--force")
        self.assertEqual(pathChip.stat().st_mode & 0o7777, 0o444)

    def test_names_that_others_laid_are_not_written_through(self):
        pathVictim = self.pathRoot.parent / "victim"
        pathVictim.write_text("kept")
        (self.pathRoot / "eeprom").mkdir(parents=True)
        for strName in (BASEBOARD_EEPROM + ".new", BASEBOARD_EEPROM.replace(".bin", ".new")):
            (self.pathRoot / "eeprom" / strName).symlink_to(pathVictim)
        self.Good("provision", EXAMPLES / "controller.json")
        self.assertEqual(pathVictim.read_text(), "kept")
        self.assertFalse(self.Eeprom(BASEBOARD_EEPROM).is_symlink())

    @unittest.skipIf(os.geteuid() != 0, "only root can act as two users")
    def test_a_directory_of_another_user_is_written_to_when_asked_for_only(self):
        self.Provision()
        os.chown(self.pathRoot, 65534, 65534)
        dictBefore = self.Tree()
        strRefused = (f"{self.pathRoot} belongs to another user, so nothing is written there; --foreign-root writes all the same")
        self.assertEqual(self.Bad(8, "provision", EXAMPLES / "controller.json", "--force"), strRefused)
        self.assertEqual(self.Bad(8, "label", "set", "psu1", "Product Version=C3"), strRefused)
        self.Good("show", "psu1")
        self.assertEqual(self.Tree(), dictBefore)
        self.Good("--foreign-root", "label", "set", "psu1", "Product Version=C3")

    def test_a_controller_is_replaced_only_by_force(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"mine")
        strRefused = f"there is a controller with 6 devices in {self.pathRoot} already; --force replaces it, --root names another place"
        self.assertEqual(self.Bad(3, "provision", EXAMPLES / "controller.json"), strRefused)
        self.assertEqual(self.Bad(3, "provision", EXAMPLES / "controller.json", "--dry-run"), strRefused)
        self.assertEqual(self.Eeprom(BASEBOARD_EEPROM).read_bytes()[:4], b"mine")
        dictFewer = copy.deepcopy(DESCRIPTION)
        del dictFewer["devices"][1:]
        self.Good("provision", self.Describe(dictFewer), "--force")
        self.assertEqual(len(self.Json("list")["devices"]), 1)
        self.assertNotEqual(self.Eeprom(BASEBOARD_EEPROM).read_bytes()[:4], b"mine")
        # What was device 4 has no bytes any more.
        self.assertIn("completion code 0xcc", self.Bad(1, "raw", "read", "--id", "4"))

    def test_a_database_that_cannot_be_read_is_told_and_nothing_is_written(self):
        self.Provision()
        pathDatabase = self.pathRoot / "var/lib/fru/fru.db"
        for iCode, strWhy, fnSpoil in [(6, "is damaged", lambda: os.truncate(pathDatabase, 8192)),
                                       (6, "is damaged: it is empty", lambda: os.truncate(pathDatabase, 0)),
                                       (6, "is damaged", lambda: pathDatabase.write_bytes(b"x" * 20000)),
                                       (1, "an earlier release has made it; remove ", self.LayFormerDatabase)]:
            fnSpoil()
            dictBefore = self.Snapshot()
            for asArguments in (["provision", EXAMPLES / "controller.json"], ["provision", EXAMPLES / "controller.json", "--force"],
                                ["list"], ["label", "set", "baseboard", "Product Asset Tag", "X"]):
                stResult = self.Fructl(*asArguments)
                self.assertEqual((stResult.iCode, stResult.strOut), (iCode, ""), asArguments)
                self.assertIn(strWhy, stResult.strErr)
                self.assertIn(str(self.pathRoot), stResult.strErr)
            self.assertEqual(self.Snapshot(), dictBefore)

    def LayFormerDatabase(self):
        (self.pathRoot / "var/lib/fru/fru.db").unlink()
        (self.pathRoot / "var/lib/fru/db").mkdir()
        (self.pathRoot / "var/lib/fru/db/data.mdb").write_bytes(bytes(8192))

    def Snapshot(self):
        """Every file but the lock."""
        return {pathFile: pathFile.read_bytes() for pathFile in self.pathRoot.rglob("*") if pathFile.is_file() and "lock" not in pathFile.parts}

    def test_the_database_is_one_file_that_others_can_look_into(self):
        self.Provision()
        self.assertEqual(sorted(pathFile.name for pathFile in (self.pathRoot / "var/lib/fru").iterdir()), ["fru.db", "journal"])
        self.assertEqual(list((self.pathRoot / "var/lib/fru/journal").iterdir()), [])
        with contextlib.closing(sqlite3.connect(f"file:{self.pathRoot}/var/lib/fru/fru.db?mode=ro", uri=True)) as stDatabase:
            def Ask(strSql):
                return stDatabase.execute(strSql).fetchall()
            self.assertEqual(Ask("PRAGMA application_id") + Ask("PRAGMA user_version"), [(0x42465255,), (1,)])
            self.assertEqual(Ask("PRAGMA integrity_check"), [("ok",)])
            self.assertEqual(Ask(f"SELECT typeof(data), length(data) FROM record WHERE key={0x108105FF}"), [("blob", 3703)])
            self.assertEqual(Ask(f"SELECT count(*) FROM record WHERE key BETWEEN {0x10810000} AND {0x108100FF}"), [(6,)])
            self.assertEqual(Ask(f"SELECT data FROM record WHERE key={0x10810200}")[0][0],
                             HexImage(EXAMPLES / "baseboard.hex").ljust(2048, b"\xff"))

    def test_a_device_without_image_is_erased_and_one_without_cache_is_read_from_the_eeprom(self):
        dictDescription = copy.deepcopy(DESCRIPTION)
        del dictDescription["devices"][1]["image"]
        dictDescription["devices"][2]["cached"] = False
        self.Good("provision", self.Describe(dictDescription))
        listDevices = self.Json("list")["devices"]
        self.assertEqual([(stDevice["image"], stDevice["cache"]) for stDevice in listDevices[:4]],
                         [("sound", "same"), ("erased", "none"), ("sound", "none"), ("sound", "same")])
        self.assertEqual(self.Eeprom("bus2-addr0xa4-switch1.bin").read_bytes(), b"\xff" * 256)

    def test_devices_share_an_eeprom_in_ranges_apart(self):
        dictDescription = copy.deepcopy(DESCRIPTION)
        dictDescription["devices"][3].update({"location": {"bus": 4, "address": "0xae"}, "eepromSize": 2048, "startOffset": 1280})
        self.Good("provision", self.Describe(dictDescription))
        abEeprom = self.Eeprom("bus4-addr0xae.bin").read_bytes()
        abRiser = HexImage(EXAMPLES / "riser.hex")
        self.assertEqual((abEeprom[1280:1280 + len(abRiser)], len(abEeprom)), (abRiser, 2048))
        self.Good("verify")

    def test_a_database_only_device_needs_no_eeprom(self):
        dictDescription = copy.deepcopy(DESCRIPTION)
        dictDescription["devices"][3]["databaseOnly"] = True
        del dictDescription["devices"][3]["location"]
        self.Good("provision", self.Describe(dictDescription))
        stDevice = self.Json("list")["devices"][3]
        self.assertEqual((stDevice["image"], stDevice["cache"], stDevice["databaseOnly"]), ("sound", "only", True))
        self.assertFalse(self.Eeprom("bus3-addr0xa2.bin").exists())
        self.assertEqual(self.Json("show", "riser")["board"]["productName"], "LH-RS2 Riser")
        dictDescription["devices"][3]["cached"] = False
        self.assertIn("devices[3].cached: a databaseOnly device that is not cached could never be read; accepted: true",
                      self.Bad(3, "provision", self.Describe(dictDescription), "--force"))


if __name__ == "__main__":
    unittest.main()
