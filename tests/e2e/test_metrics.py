# SPDX-License-Identifier: Apache-2.0
"""fructl metrics: health and identity of all devices as Prometheus text."""
import datetime
import json
import os
import pathlib
import re
import subprocess
import threading
import unittest

from support import BASEBOARD_EEPROM, DEBIAN_PYTHON, FructlTest, Image, Texts

FAMILIES = {"fru_devices", "fru_device_info", "fru_device_good", "fru_device_image_state", "fru_device_cache_state", "fru_device_problems",
            "fru_device_warnings", "fru_device_image_bytes", "fru_device_multirecords", "fru_identity_info", "fru_board_manufactured_timestamp_seconds"}


class Metrics(FructlTest):
    def Parsed(self, strText):
        pathFile = self.Write("some.prom", strText.encode())
        pathReader = pathlib.Path(__file__).resolve().parent / "prometheus_reader.py"
        stProcess = subprocess.run([DEBIAN_PYTHON, "-B", pathReader, pathFile], capture_output=True, text=True)
        if "No module named" in stProcess.stderr:
            self.skipTest(f"python3-prometheus-client is not installed for {DEBIAN_PYTHON}")
        self.assertEqual((stProcess.returncode, stProcess.stderr), (0, ""))
        return json.loads(stProcess.stdout)

    def Values(self, strFamily, *asArguments, **dictLabels):
        """The values of a family's samples by device, of those with these labels."""
        dictFamilies = self.Parsed(self.Good("metrics", *asArguments).strOut)
        return {dictOf["device"]: value for _, dictOf, value in dictFamilies[strFamily]["samples"]
                if all(dictOf[strLabel] == strValue for strLabel, strValue in dictLabels.items())}

    def test_another_programs_parser_reads_every_family(self):
        self.Provision()
        dictFamilies = self.Parsed(self.Good("metrics").strOut)
        self.assertEqual(set(dictFamilies), FAMILIES)
        for strName, dictFamily in dictFamilies.items():
            self.assertEqual(dictFamily["type"], "gauge")
            self.assertTrue(dictFamily["help"].endswith("."))
            # No two samples of one family have the same labels: that would be refused as a whole.
            listSeen = [json.dumps(dictLabels, sort_keys=True) for _, dictLabels, _ in dictFamily["samples"]]
            self.assertEqual(len(set(listSeen)), len(listSeen), strName)
        self.assertEqual(dictFamilies["fru_devices"]["samples"], [["fru_devices", {}, 6.0]])

    def test_each_device_says_what_list_and_show_do(self):
        self.Provision()
        dictFamilies = self.Parsed(self.Good("metrics").strOut)
        for dictDevice in self.Json("list")["devices"]:
            dictLabels = {"device": dictDevice["name"], "id": str(dictDevice["id"])}
            self.assertIn(["fru_device_info", {**dictLabels, "component_type": f"0x{dictDevice['componentType']:02x}",
                                               "instance": str(dictDevice["instance"])}, 1.0], dictFamilies["fru_device_info"]["samples"])
            self.assertIn(["fru_device_image_bytes", dictLabels, dictDevice["size"]], dictFamilies["fru_device_image_bytes"]["samples"])
            for strFamily, strNow in (("fru_device_image_state", dictDevice["image"]), ("fru_device_cache_state", dictDevice["cache"])):
                dictStates = {dictOf["state"]: value for _, dictOf, value in dictFamilies[strFamily]["samples"] if dictOf["device"] == dictDevice["name"]}
                self.assertEqual([strState for strState, value in dictStates.items() if value], [strNow])
        stShown = self.Json("show", "baseboard")
        for strArea in ("chassis", "board", "product"):
            dictArea = stShown[strArea]
            self.assertIn(["fru_identity_info", {
                "device": "baseboard", "id": "0", "area": strArea, "manufacturer": dictArea.get("manufacturer", ""),
                "product_name": dictArea.get("productName", ""), "part_number": dictArea["partNumber"], "serial_number": dictArea["serialNumber"],
                "version": dictArea.get("version", ""), "asset_tag": dictArea.get("assetTag", "")}, 1.0], dictFamilies["fru_identity_info"]["samples"])
        stMade = datetime.datetime(1996, 1, 1, tzinfo=datetime.timezone.utc) + datetime.timedelta(minutes=stShown["board"]["mfgDateMinutes"])
        self.assertIn(["fru_board_manufactured_timestamp_seconds", {"device": "baseboard", "id": "0"}, stMade.timestamp()],
                      dictFamilies["fru_board_manufactured_timestamp_seconds"]["samples"])

    def test_damage_is_a_value_and_no_failure(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 9, b"\xee")
        self.assertEqual(self.Values("fru_device_good")["baseboard"], 0)
        self.assertEqual(self.Values("fru_device_good")["psu1"], 1)
        self.assertGreater(self.Values("fru_device_problems")["baseboard"], 0)
        self.assertEqual(self.Values("fru_device_image_state", state="damaged")["baseboard"], 1)
        self.assertNotIn("baseboard", self.Values("fru_identity_info"))

    def test_an_eeprom_that_is_gone_has_no_counts(self):
        self.Provision()
        self.Eeprom(BASEBOARD_EEPROM).unlink()
        self.assertEqual(self.Values("fru_device_good")["baseboard"], 0)
        self.assertEqual(self.Values("fru_device_image_state", state="unreadable")["baseboard"], 1)
        self.assertNotIn("baseboard", self.Values("fru_device_problems"))

    def test_texts_are_escaped(self):
        strNasty = 'a"b\\c\nd\xe9 {} #'
        self.ProvisionImage(Image({3: b"\x19\x00\x00\x00" + Texts(strNasty, "name", "serial", "part", "id")}))
        dictFamilies = self.Parsed(self.Good("metrics").strOut)
        (_, dictLabels, _), = dictFamilies["fru_identity_info"]["samples"]
        self.assertEqual((dictLabels["manufacturer"], dictLabels["serial_number"]), (strNasty, "serial"))
        # All zero says nothing of when.
        self.assertEqual(dictFamilies["fru_board_manufactured_timestamp_seconds"]["samples"], [])

    def test_a_file_is_replaced_whole(self):
        self.Provision()
        pathFile = self.pathTemp / "node" / "fru.prom"
        self.assertIn(": 6 devices\n", self.Good("metrics", "-o", pathFile).strOut)
        self.assertEqual(pathFile.read_text(), self.Good("metrics").strOut)
        self.assertEqual(self.Json("metrics", "-o", pathFile), {"file": str(pathFile), "size": pathFile.stat().st_size, "devices": 6})
        # Whoever has it open meanwhile reads the whole old one, and nobody ever half a new one.
        listSeen = []
        stDone = threading.Event()

        def Watch():
            while not stDone.is_set():
                listSeen.append(pathFile.read_text())
        stThread = threading.Thread(target=Watch)
        stThread.start()
        with open(pathFile) as stOld:
            for _ in range(5):
                self.Good("metrics", "-o", pathFile)
            self.assertEqual(stOld.read(), pathFile.read_text())
        stDone.set()
        stThread.join()
        self.assertEqual(set(listSeen), {pathFile.read_text()})
        self.assertEqual(os.listdir(pathFile.parent), ["fru.prom"])

    def test_standard_output_is_text_only(self):
        self.Provision()
        self.assertEqual(self.Good("metrics", "-o", "-").strOut, self.Good("metrics").strOut)
        self.assertIn("accepted: -o FILE, or without --json", self.Bad(2, "metrics", "--json"))
        self.assertTrue(all(re.match(r"# (HELP|TYPE) fru_|fru_", strLine) for strLine in self.Good("metrics").strOut.splitlines()))


if __name__ == "__main__":
    unittest.main()
