"""fructl oem, host-name, assemble and fields; and the controller's own files that a description lays down."""
import copy
import json
import shutil
import unittest

from support import EXAMPLES, FructlTest, Run

DESCRIPTION = json.loads((EXAMPLES / "controller.json").read_text())
OEM_FILE = "conf/oempack/bmc/CID_OEM.conf"
CAPABILITY = "conf/capability.ini"


class Described(FructlTest):
    """A controller made from a changed description."""

    def Describe(self, fnChange):
        pathDescription = self.pathTemp / "described"
        if not pathDescription.exists():
            shutil.copytree(EXAMPLES, pathDescription)
        dictDescription = copy.deepcopy(DESCRIPTION)
        fnChange(dictDescription, pathDescription)
        pathFile = pathDescription / "described.json"
        pathFile.write_text(json.dumps(dictDescription))
        return pathFile


class OemTest(Described):
    def setUp(self):
        super().setUp()
        self.Provision()

    def Put(self, strFile, strText):
        pathFile = self.pathRoot / strFile
        pathFile.parent.mkdir(parents=True, exist_ok=True)
        pathFile.write_bytes(strText.encode("utf-8") if isinstance(strText, str) else strText)

    def Oem(self, *asLines):
        self.Put(OEM_FILE, "[oem_configure]\n" + "".join(strLine + "\n" for strLine in asLines))

    def OemMode(self):
        self.Put(CAPABILITY, "[OEM]\nOemFlag = 3\n")


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
        self.assertIn("cannot decode baseboard (0x00:0)", self.Bad(1, "oem", "sync"))

    def test_a_value_that_the_file_cannot_hold_is_no_success(self):
        self.Oem("productassettag = old")
        self.Good("label", "set", "baseboard", "Product Asset Tag=a\"b'c;d")
        self.assertRegex(self.Bad(1, "oem", "sync"), r"the OEM file does not hold the FRU's productassettag after the update \(the library says: INI entry .* refused\)")

    def test_without_a_file(self):
        (self.pathRoot / OEM_FILE).unlink()
        self.assertIn("there is no OEM file to update (the library says: Unable to get oem conf file", self.Bad(1, "oem", "sync"))
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


class Assemble(Described):
    def setUp(self):
        super().setUp()

        def FanBoard(dictDescription, _):
            dictDescription["devices"].append({"id": 6, "name": "fan-board", "componentType": 9, "instance": 0, "size": 256, "databaseOnly": True, "cached": True})

        self.Good("provision", self.Describe(FanBoard))

    TEXTS = {"mfg-date": "2024-05-17 08:30:00", "board-manufacturer": "Lindenhain", "board-product-name": "FB2", "board-serial-number": "FB2240001",
             "board-part-number": "LHFB2", "product-manufacturer": "Lindenhain", "product-name": "Fan Board", "product-part-number": "LH-FB2",
             "product-version": "A", "product-serial-number": "FB22\xfc", "asset-tag": "TAG"}

    def test_a_whole_image_into_the_cache(self):
        asTexts = [f"{strName}={strText}" for strName, strText in self.TEXTS.items()]
        stJson = self.Json("assemble", "fan-board", *asTexts, "--dry-run")
        self.assertEqual((stJson["texts"], stJson["dryRun"], stJson["readsComeFromCache"]), (self.TEXTS, True, True))
        self.assertEqual(self.Json("list")["devices"][6]["image"], "erased")
        self.assertTrue(self.Good("assemble", "--id", "6", *asTexts).strOut.endswith("Done: assembled into the cache of fan-board (0x09:0)\n"))
        stShown = self.Json("show", "fan-board")
        stBoard, stProduct = stShown["board"], stShown["product"]
        self.assertEqual([stBoard["mfgDate"], *[stBoard[s] for s in ("manufacturer", "productName", "serialNumber", "partNumber")],
                          *[stProduct[s] for s in ("manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag")]],
                         list(self.TEXTS.values()))
        self.Good("verify", "fan-board")

    def test_areas_without_texts_are_left_out(self):
        self.Good("assemble", "fan-board", "ASSET_tag=xy")
        self.assertEqual({strKey for strKey in self.Json("show", "fan-board") if strKey in ("chassis", "board", "product")}, {"product"})
        self.Good("assemble", "9:0", "board-serial-number=new")
        self.assertEqual({strKey for strKey in self.Json("show", "fan-board") if strKey in ("chassis", "board", "product")}, {"board"})

    def test_a_device_with_an_eeprom_only_by_force(self):
        self.assertIn("psu1 (0x03:0) has an EEPROM; an image assembled into its cache would hide what is in there",
                      self.Bad(1, "assemble", "psu1", "product-name=xy"))
        abBefore = self.Eeprom("bus2-addr0xa4-switch1.bin").read_bytes()
        self.Good("assemble", "psu1", "product-name=xy", "--force")
        self.assertEqual(self.Json("show", "psu1")["product"]["productName"], "xy")
        self.assertEqual(self.Eeprom("bus2-addr0xa4-switch1.bin").read_bytes(), abBefore)

    def test_what_is_refused(self):
        for iCode, asArguments, strExpected in [
            (2, [], "no device is named"),
            (2, ["fan-board"], "no NAME=VALUE is given; accepted names: mfg-date, board-manufacturer"),
            (2, ["fan-board", "serial=1"], "there is no 'serial' to set; accepted: mfg-date"),
            (2, ["fan-board", "asset-tag=" + "x" * 64], "the value of asset-tag has 64 characters; accepted: 1 to 63"),
            (2, ["fan-board", "asset-tag="], "the value of asset-tag has 0 characters; accepted: 1 to 63"),
            (2, ["fan-board", "mfg-date=17.5.2024"], "mfg-date=17.5.2024 is refused; accepted: YYYY-MM-DD"),
            (1, ["baseboard", "asset-tag=xy"], "baseboard (0x00:0) has 2048 bytes; an image can be assembled for 8 to 256"),
            (1, ["fan", "asset-tag=xy"], "no device named 'fan'"),
            (1, ["fan-board", *[f"{strName}={'x' * 60}" for strName in self.TEXTS if strName != "mfg-date"]],
             "no image for fan-board (0x09:0) could be assembled: 0x81000001"),
        ]:
            with self.subTest(asArguments):
                self.assertIn(strExpected, self.Bad(iCode, "assemble", *asArguments))
        self.assertEqual(self.Json("list")["devices"][6]["image"], "erased")


class Fields(OemTest):
    def test_slots_and_joined_texts(self):
        self.assertEqual(self.Good("fields", "baseboard").strOut, """\
baseboard (0x00:0), custom fields
  chassis 2nd    02005E1000A0
  chassis 3rd    04
  board 1st      TOP24170099
  chassis, all   CUST-000815\\n02005E1000A0\\n04\\nLHSRV2UAAA\\nR07-U12\\n
  board, all     TOP24170099\\n
  product, all   Compute\\n2+0\\n2x25G\\n800W\\n
""")
        self.assertEqual(self.Json("fields", "psu1"), {"device": {"id": 1, "name": "psu1", "componentType": 3, "instance": 0},
                                                       "slots": {"chassisField2": "", "chassisField3": "", "boardField1": ""},
                                                       "joined": {"chassis": None, "board": None, "product": None}})
        self.assertEqual(self.Json("fields", EXAMPLES / "baseboard.hex")["joined"]["product"], "Compute\\n2+0\\n2x25G\\n800W\\n")

    def test_quotes_are_escaped_and_terminals_left_in_peace(self):
        stRecord = self.Json("show", EXAMPLES / "baseboard.hex")
        stRecord.pop("file")
        stRecord["board"]["customFields"] = ["it's\\a\x1b[31m"]
        pathImage = self.pathTemp / "quoted.bin"
        pathRecord = self.Write("record.json", json.dumps(stRecord).encode())
        self.Good("encode", pathRecord, "--output", pathImage, "--size", "2048")
        self.assertEqual(self.Json("fields", pathImage)["joined"]["board"], "it\\'s\\\\a\x1b[31m\\n")
        self.assertIn("  board, all     it\\'s\\\\a\\x1b[31m\\n\n", self.Good("fields", pathImage).strOut)

    def test_what_cannot_be_decoded(self):
        self.assertIn("cannot decode", self.Bad(1, "fields", self.Write("bad.bin", bytes(64))))


class Files(Described):
    """The controller's own files: tried before anything is laid down."""

    def test_what_the_controller_could_not_read_is_refused(self):
        strFru = '<FRU componentType="0" offset="{}" size="{}" selector="{}" deviceName="{}"/>'
        for strMember, abContents, strExpected in [
            ("hardware", b"<hardware><FRU", "the file is refused (the library says: /conf/hw/ProductPath/Baseboard.xml: byte"),
            ("hardware", strFru.format(0, 2048, 9, "bus1-addr0xa0").encode().join([b"<h>", b"</h>"]), "a device name and a selector outside 9 to 15 are needed"),
            ("hardware", strFru.format(0, 2048, 1, "").encode().join([b"<h>", b"</h>"]), "a device name and a selector outside 9 to 15 are needed"),
            ("hardware", strFru.format(0, 70000, 1, "bus1-addr0xa0").encode().join([b"<h>", b"</h>"]), 'size="70000" is no number from 0 to 65535'),
            ("hardware", strFru.format(4000, 97, 1, "bus1-addr0xa0").encode().join([b"<h>", b"</h>"]),
             "the FRU object of component type 0x00 has 97 bytes and ends at 0x1001; accepted: 1 byte or more, up to 0x1000, the end of bus1-addr0xa0"),
            ("hardware", strFru.format(0, 0, 1, "bus1-addr0xa0").encode().join([b"<h>", b"</h>"]), "has 0 bytes and ends at 0x0"),
            ("capability", b"[OEM\nOemFlag = 3\n", "the file is refused"),
            ("capability", b"[OEM]\nOemFlag = three\n", "[OEM] OemFlag is 'three'; accepted: 0 to 4294967295, decimal or 0x"),
            ("oem", b"[oem_configure]\ncheckarea = 65536\n", "[oem_configure] checkarea is '65536'; accepted: 0 to 65535, decimal or 0x"),
            ("oem", b"[oem_configure]\nno equals sign here\n", "the file is refused"),
            ("features", b"[1]", "the file is refused; accepted: a JSON array of texts"),
        ]:
            with self.subTest(abContents):
                def Change(dictDescription, pathDescription):
                    (pathDescription / "changed").write_bytes(abContents)
                    dictDescription["conf"][strMember] = "changed"
                pathFile = self.Describe(Change)
                strError = self.Bad(1, "provision", pathFile)
                self.assertTrue(strError.startswith(f"{pathFile}: conf.{strMember}: "), strError)
                self.assertIn(strExpected, strError)
                self.assertFalse(self.pathRoot.exists())

    def test_a_component_that_is_not_fitted_may_be_described(self):
        def Change(dictDescription, pathDescription):
            (pathDescription / "changed").write_text('<h><FRU componentType="7" offset="0" size="9" selector="1" deviceName="other"/></h>')
            dictDescription["conf"]["hardware"] = "changed"
        self.Good("provision", self.Describe(Change))

    def test_the_oem_file_is_laid_down(self):
        def Change(dictDescription, _):
            dictDescription["conf"]["oemFile"] = "CID_OEM.conf"
        self.Good("provision", self.Describe(Change))
        self.assertTrue((self.pathRoot / "mnt/sdmmc0p2/OEMFile").is_file())

    def test_nothing_is_left_of_the_trial(self):
        pathTrial = self.pathTemp / "trial"
        pathTrial.mkdir()
        self.assertEqual(Run("--root", self.pathRoot, "provision", EXAMPLES / "controller.json", TMPDIR=str(pathTrial)).iCode, 0)
        self.assertEqual(list(pathTrial.iterdir()), [])
        self.assertIn("no directory can be made in ", Run("--root", self.pathRoot, "provision", EXAMPLES / "controller.json", "--force",
                                                         TMPDIR=str(pathTrial / "none")).strErr)


if __name__ == "__main__":
    unittest.main()
