# SPDX-License-Identifier: Apache-2.0
"""fructl oem and host-name."""
import subprocess
import unittest

from oem_support import CAPABILITY, OEM_FILE, OemTest
from support import COMMAND


class Show(OemTest):
    def test_the_file_completed_from_the_fru(self):
        strOut = self.Good("oem", "show").strOut
        self.assertTrue(strOut.startswith("/conf/oempack/bmc/CID_OEM.conf\n  copyright_cn         -\n  copyright_en         Copyright 2024 Example Customer\n"
                                          "  boardmanufacturer    Lindenhain Systems  (from the FRU)\n  productmanufacturer  Example Customer\n"), strOut)
        self.assertTrue(strOut.endswith("In force\n  product manufacturer none: the controller is not in OEM mode, or the file has none\n  logo flag            0\n"))
        stJson = self.Json("oem", "show")
        self.assertEqual((stJson["file"], stJson["fromFru"], stJson["oemflag"], stJson["checkarea"], stJson["privateoid"], stJson["userid"],
                          stJson["logocidflag"], stJson["productManufacturerInForce"], stJson["logoFlag"]),
                         ("/conf/oempack/bmc/CID_OEM.conf", ["boardmanufacturer"], 1, 7, 8072, 0, 1, None, 0))
        self.assertEqual((len(stJson["texts"]), stJson["texts"]["qbx"]), (16, "ECBMC"))

    def test_without_a_file_others_stand_in(self):
        (self.pathRoot / OEM_FILE).unlink()
        stJson = self.Json("oem", "show")
        self.assertEqual((stJson["file"], stJson["texts"]["productname"], stJson["texts"]["qbx"], stJson["privateoid"], stJson["oemflag"]),
                         (None, "N/A", "BMC", 8072, 0))
        self.assertIn(" is missing; these stand in for it\n", self.Good("oem", "show").strOut)

    def test_in_oem_mode(self):
        self.OemMode()
        self.assertEqual(self.Json("oem", "show")["productManufacturerInForce"], "Example Customer")
        self.assertEqual(self.Json("oem", "show")["logoFlag"], 1)  # without its file the logo is on
        self.Put("mnt/sdmmc0p2/OEMFile", "")
        self.Oem("logocidflag = n")
        self.assertEqual(self.Json("oem", "show")["logoFlag"], 0)

    def test_texts_in_any_encoding_and_none_that_drives_the_terminal(self):
        self.Put(OEM_FILE, "[oem_configure]\ncopyright_cn = 版权\n".encode("utf-8") + b"copyright_en = caf\xe9\nproductname = a\x1b[31mb\n")
        self.assertEqual(self.Json("oem", "copyright"), {"cn": "版权", "en": "caf\xe9"})
        self.assertEqual(self.Good("oem", "copyright").strOut, "cn  版权\nen  caf\xe9\n")
        self.assertIn("a\\x1b[31mb", self.Good("oem", "show").strOut)


class Sync(OemTest):
    def test_values_are_replaced_and_keys_without_one_stay_so(self):
        strBefore = (self.pathRoot / OEM_FILE).read_text()
        strTable = """\
KEY                  OLD               NEW
productmanufacturer  Example Customer  Lindenhain Systems
productname          EC Compute 2      Hain 220
"""
        self.assertEqual(self.Good("oem", "sync", "--dry-run").strOut, strTable + "nothing was written\n")
        self.assertEqual((self.pathRoot / OEM_FILE).read_text(), strBefore)
        self.assertEqual(self.Good("oem", "sync").strOut, strTable + "Done: 2 keys replaced\n")
        strAfter = (self.pathRoot / OEM_FILE).read_text()
        self.assertIn("productmanufacturer = Lindenhain Systems\n", strAfter)
        self.assertNotIn("productassettag", strAfter)
        self.assertEqual(self.Json("oem", "sync"), {"dryRun": False, "changes": []})
        self.assertIn("are the FRU's already", self.Good("oem", "sync").strOut)

    def test_every_key_that_the_fru_knows(self):
        dictExpected = {"productmanufacturer": "Lindenhain Systems", "productname": "Hain 220", "productserialnumber": "LH22024170042",
                        "productassettag": "RACK7-UNIT12", "productextra1": "Compute", "productextra2": "2+0", "productextra3": "2x25G", "productextra4": "800W",
                        "productpartnumber": "LH220-24C", "chassispartnumber": "LH-CH2U-12", "boardproductname": "LH-MB2 Baseboard", "productversion": "2.1"}
        self.Oem(*[f"{strKey} = old" for strKey in dictExpected], "boardmanufacturer = old", "qbx = old")
        self.assertEqual({s["key"]: s["new"] for s in self.Json("oem", "sync")["changes"]}, dictExpected)
        stTexts = self.Json("oem", "show")["texts"]
        self.assertEqual({strKey: stTexts[strKey] for strKey in dictExpected}, dictExpected)
        self.assertEqual((stTexts["boardmanufacturer"], stTexts["qbx"]), ("old", "old"))

    def test_an_empty_text_of_the_fru_empties_the_key(self):
        def Change(dictDescription, _):
            dictDescription["devices"][0].update({"image": "psu1.hex", "recoveryImage": {"path": "/x.bin", "file": "psu1.hex"}})

        self.Good("provision", self.Describe(Change), "--force")
        self.Oem("productassettag = old", "productextra1 = old")  # no custom fields: their keys stay
        self.assertEqual(self.Good("oem", "sync").strOut, """\
KEY              OLD  NEW
productassettag  old  (empty: from now on it stays so)
Done: 1 key replaced
""")
        stTexts = self.Json("oem", "show")["texts"]
        self.assertEqual((stTexts["productassettag"], stTexts["productextra1"]), ("", "old"))

    def test_without_a_readable_fru(self):
        self.Good("clear", "baseboard", "--yes")
        self.assertIn("cannot decode baseboard (0x00:0)", self.Bad(6, "oem", "sync"))

    def test_a_value_that_the_file_cannot_hold_is_no_success(self):
        self.Oem("productassettag = old")
        self.Good("label", "set", "baseboard", "Product Asset Tag=a\"b'c;d")
        self.assertRegex(self.Bad(1, "oem", "sync"), r"the OEM file does not hold the FRU's productassettag after the update \(the library says: INI entry .* refused\)")

    def test_a_full_disk_is_told_before_anything_is_written(self):
        self.Oem("productassettag = old")
        self.Good("label", "set", "baseboard", "Product Asset Tag=new")
        abBefore = (self.pathRoot / OEM_FILE).read_bytes()
        stProcess = subprocess.run(["sh", "-c", 'ulimit -f 100; exec "$@"', "sh", *COMMAND, "--root", str(self.pathRoot), "oem", "sync"],
                                   capture_output=True, text=True, check=False)
        self.assertEqual(stProcess.returncode, 9)
        self.assertIn("nothing was written", stProcess.stderr)
        self.assertEqual((self.pathRoot / OEM_FILE).read_bytes(), abBefore)

    def test_without_a_file(self):
        (self.pathRoot / OEM_FILE).unlink()
        self.assertIn("there is no OEM file to update (the library says: Unable to get oem conf file", self.Bad(4, "oem", "sync"))
        self.assertFalse((self.pathRoot / OEM_FILE).exists())


class Small(OemTest):
    def test_check(self):
        self.assertEqual(self.Good("oem", "check", "7").strOut, "@\n##\nTest Result: P\n#\nError Code: 0\n$$\n")
        stResult = self.Fructl("oem", "check", "8")
        self.assertEqual((stResult.iCode, stResult.strOut, stResult.strErr), (
            1, "@\n##\nKVToolbuild_check_Flag: 7\nDIAG_check_Falg: 8\nTest Result: F\n#\nError Code: 0\n$$\n",
            "fructl: the package check failed: checkarea is 7, the flag 8\n"))
        self.Oem("checkarea = 0x1234")
        for strFlag in ("0xff", "65535"):
            self.assertEqual(self.Good("oem", "check", strFlag).strOut, "checkarea 4660 (0x1234)\n")
        self.assertEqual(self.Json("oem", "check", "255"), {"flag": 255, "checkarea": 0x1234, "result": "told"})
        self.assertEqual(self.Json("oem", "check", "4660")["result"], "pass")
        self.assertEqual(self.Fructl("oem", "check", "1", "--json").Json()["result"], "fail")
        self.assertEqual(self.Bad(2, "oem", "check", "65536"), "65536 is refused; accepted: 0 to 65535, decimal or 0x")

    def test_copyright(self):
        self.assertEqual(self.Good("oem", "copyright").strOut, "cn  -\nen  Copyright 2024 Example Customer\n")
        self.assertEqual(self.Json("oem", "copyright", "cn"), {"cn": ""})
        self.assertIn("'fructl oem copyright --help' tells more", self.Bad(2, "oem", "copyright", "de"))

    def test_legal(self):
        self.assertEqual(self.Good("oem", "legal", "ab12").strOut, "AB12 is legal\n")
        self.assertEqual(self.Json("oem", "legal", ""), {"text": "", "legal": True})
        stResult = self.Fructl("oem", "legal", "ab-1")
        self.assertEqual((stResult.iCode, stResult.strOut, stResult.strErr), (1, "AB-1 is not legal\n", "fructl: 'ab-1' is refused; accepted: letters and digits\n"))

    def test_host_name(self):
        self.assertEqual(self.Good("host-name").strOut, "host-name prefix  hain\nsoftware name     HainBMC\n")
        self.assertEqual(self.Json("host-name"), {"prefix": "hain", "prefixIsDefault": False, "softwareName": "HainBMC", "softwareNameIsDefault": False})
        self.OemMode()
        self.assertEqual(self.Good("host-name").strOut, "host-name prefix  ECBMC\nsoftware name     ECBMC\n")
        (self.pathRoot / CAPABILITY).unlink()
        self.assertEqual(self.Json("host-name"), {"prefix": "QBX", "prefixIsDefault": True, "softwareName": "QBX", "softwareNameIsDefault": True})
        self.assertIn("QBX  (the default", self.Good("host-name").strOut)


if __name__ == "__main__":
    unittest.main()
