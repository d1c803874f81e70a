"""fructl encode: the inverse of 'show --json', what it refuses, and that readers of other makes see the same."""
import copy
import json
import os
import random
import unittest

from support import CHASSIS_TYPES, CORPUS, EXAMPLES, FructlTest, HexImage, Image, Independent, ReadIndependently, Run, Texts, ZeroSum

DELETE = object()
# Three-byte dates of the format, as minutes since 1996.
MINUTES_MAX = 0xFFFFFF


def RandomText(stRandom, iMax=63):
    iLength = stRandom.choice([0, 2, 3, 7, 12, 31, iMax])
    return "".join(chr(stRandom.choice([*range(0x20, 0x7F)] * 4 + [0x01, 0x0A, 0x1B, 0x7F, *range(0x80, 0x100)])) for _ in range(iLength))


def RandomFields(stRandom, *asKeys):
    return {strKey: RandomText(stRandom) for strKey in asKeys} | {"customFields": [RandomText(stRandom) for _ in range(stRandom.choice([0, 1, 4, 9]))]}


def RandomRecord(iSeed):
    """A document that 'show --json' might have printed, without its derived texts."""
    stRandom = random.Random(iSeed)
    dictRecord = {}
    if stRandom.random() < 0.4:
        dictRecord["internalUse"] = {"data": RandomText(stRandom)}
    if stRandom.random() < 0.7:
        dictRecord["chassis"] = {"type": stRandom.choice(CHASSIS_TYPES), **RandomFields(stRandom, "partNumber", "serialNumber")}
    if stRandom.random() < 0.7:
        dictRecord["board"] = {"languageCode": stRandom.choice([0, 1, 25, 136, 255]), "mfgDateMinutes": stRandom.choice([0, 1, 14838330, MINUTES_MAX]),
                               **RandomFields(stRandom, "manufacturer", "productName", "serialNumber", "partNumber", "fruFileId")}
    if stRandom.random() < 0.7:
        dictRecord["product"] = {"languageCode": stRandom.choice([0, 9, 255]),
                                 **RandomFields(stRandom, "manufacturer", "productName", "partNumber", "version", "serialNumber", "assetTag", "fruFileId")}
    dictRecord["multiRecords"] = [
        {"type": stRandom.choice([0, 3, 5, 0x0B, 0xC1, 0xFF]), "formatVersion": stRandom.choice([0, 2, 15]),
         "data": stRandom.randbytes(stRandom.choice([1, 2, 17, 255])).hex(" ")}
        for _ in range(stRandom.choice([0, 1, 3, 6]))]
    return dictRecord


class EncodeTest(FructlTest):
    def Document(self, dictRecord, strName="record.json"):
        return self.Write(strName, json.dumps(dictRecord).encode())

    def Encode(self, dictRecord, *asOptions, strName="made.bin"):
        pathImage = self.pathTemp / strName
        pathImage.unlink(missing_ok=True)
        self.Good("encode", self.Document(dictRecord), "-o", pathImage, *asOptions)
        return pathImage

    def Shown(self, target):
        dictShown = self.Json("show", target)
        self.assertEqual(dictShown.pop("file", None) is None, dictShown.pop("device", None) is not None)
        return dictShown


class Inverse(EncodeTest):
    def test_every_example_comes_back_byte_for_byte(self):
        for pathFile in sorted(EXAMPLES.glob("*.hex")):
            with self.subTest(pathFile.name):
                pathImage = self.Encode(self.Json("show", pathFile))
                self.assertEqual(pathImage.read_bytes(), HexImage(pathFile))

    def test_what_a_device_shows_is_taken_as_it_is(self):
        self.Provision()
        pathImage = self.Encode(self.Json("show", "baseboard"), "--size", "2048")
        self.assertEqual(pathImage.read_bytes(), self.Eeprom("bus1-addr0xa0.bin").read_bytes()[:2048])

    def test_generated_records_come_back_whole_and_other_readers_see_the_same(self):
        listShown, listImages = [], []
        for iSeed in range(10):
            dictRecord = RandomRecord(iSeed)
            pathImage = self.Encode(dictRecord, strName=f"{iSeed}.bin")
            dictShown = self.Shown(pathImage)
            with self.subTest(iSeed):
                for strArea in ("internalUse", "chassis", "board", "product"):
                    dictArea = dict(dictShown.get(strArea, {}))
                    for strDerived in ("language", "mfgDate"):
                        dictArea.pop(strDerived, None)
                    self.assertEqual(dictArea, dictRecord.get(strArea, {}))
                self.assertEqual([{strKey: dictOne[strKey] for strKey in ("type", "formatVersion", "data")} for dictOne in dictShown["multiRecords"]],
                                 dictRecord["multiRecords"])
                # Encoded again, its derived texts among it, it is the same image.
                self.assertEqual(self.Encode(dictShown).read_bytes(), pathImage.read_bytes())
            self.Good("verify", pathImage)
            listShown.append(dictShown)
            listImages.append(pathImage)
        for iSeed, dictSeen in enumerate(ReadIndependently(self, listImages)):
            with self.subTest(iSeed):
                self.assertEqual(dictSeen, Independent(listShown[iSeed]))

    def test_other_readers_see_the_examples_texts(self):
        listFiles = sorted(EXAMPLES.glob("*.hex"))
        listShown = [self.Shown(pathFile) for pathFile in listFiles]
        listImages = [self.Encode(dictShown, strName=pathFile.name + ".bin") for pathFile, dictShown in zip(listFiles, listShown)]
        for dictShown, dictSeen in zip(listShown, ReadIndependently(self, listImages)):
            self.assertEqual(dictSeen, Independent(dictShown))

    def test_real_images_come_back_or_the_reason_is_told(self):
        listFiles = sorted(CORPUS.glob("*.bin"))
        if not listFiles:
            self.skipTest(f"no images in {CORPUS}")
        iEncoded = 0
        for pathFile in listFiles:
            stShown = self.Fructl("--json", "show", pathFile)
            if stShown.iCode != 0:
                continue
            with self.subTest(pathFile.name):
                pathImage = self.pathTemp / "again.bin"
                stResult = self.Fructl("encode", self.Document(stShown.Json()), "-o", pathImage, "--force")
                if stResult.iCode != 0:
                    self.assertRegex(stResult.strErr, r"record\.json: \S+: (has \d+ characters|has one character|the document is of an image)")
                    continue
                iEncoded += 1
                self.assertEqual(self.Json("diff", pathFile, pathImage)["differences"], [])
        self.assertGreater(iEncoded, 0)


class Output(EncodeTest):
    def test_what_was_made_is_told(self):
        dictRecord = self.Json("show", EXAMPLES / "baseboard.hex")
        pathDocument = self.Document(dictRecord)
        self.assertEqual(self.Good("encode", pathDocument, "-o", self.pathTemp / "a.bin").strOut,
                         f"{self.pathTemp}/a.bin: 328 bytes: header, chassis, board, product, 2 MultiRecords\n")
        self.assertEqual(self.Json("encode", pathDocument, "-o", self.pathTemp / "b.bin", "--size", "0x200"),
                         {"file": f"{self.pathTemp}/b.bin", "size": 512, "contents": ["header", "chassis", "board", "product", "2 MultiRecords"]})

    def test_without_areas_there_is_a_header_and_nothing_else(self):
        self.assertEqual(self.Encode({}).read_bytes(), b"\x01" + bytes(6) + b"\xff")

    def test_the_size_fills_with_erased_bytes(self):
        dictRecord = self.Json("show", EXAMPLES / "riser.hex")
        self.assertEqual(self.Encode(dictRecord, "--size", "81").read_bytes(), HexImage(EXAMPLES / "riser.hex") + b"\xff")

    def test_a_size_in_which_the_image_cannot_be_read_is_refused(self):
        pathDocument = self.Document(self.Json("show", EXAMPLES / "riser.hex"))
        for strSize in ("80", "79", "8"):
            self.assertEqual(self.Bad(1, "encode", pathDocument, "-o", self.pathTemp / "x.bin", "--size", strSize),
                             f"--size {strSize} is too small: the record takes 80 bytes, and readers refuse an area that ends with the image's "
                             "last byte; accepted: 81 and more")
        for strSize in ("7", "65536", "-1", "big", ""):
            self.assertIn("accepted: 8 to 65535, decimal or 0x" if strSize else "", self.Bad(2, "encode", pathDocument, "-o", self.pathTemp / "x.bin",
                                                                                             f"--size={strSize}"))
        self.assertFalse((self.pathTemp / "x.bin").exists())

    def test_readable_hex_by_name(self):
        pathImage = self.Encode(self.Json("show", EXAMPLES / "riser.hex"), strName="riser-again.hex")
        self.assertTrue(pathImage.read_text().startswith("0000: 01 00 00 01 00 00 00 fe 01 09 00 e0 2e e1 d2 4c\n0010: "))
        self.assertEqual(HexImage(pathImage), HexImage(EXAMPLES / "riser.hex"))
        self.assertTrue(self.Json("diff", EXAMPLES / "riser.hex", pathImage)["sameBytes"])

    def test_a_file_that_is_there_stays_without_force(self):
        pathDocument = self.Document({})
        pathImage = self.Write("mine.bin", b"precious")
        self.assertEqual(self.Bad(1, "encode", pathDocument, "-o", pathImage), f"{pathImage} is there already; --force replaces it")
        self.assertEqual(pathImage.read_bytes(), b"precious")
        self.Good("encode", pathDocument, "-o", pathImage, "--force")
        self.assertEqual(len(pathImage.read_bytes()), 8)
        self.assertEqual(sorted(os.listdir(self.pathTemp)), ["mine.bin", "record.json"])

    def test_a_place_that_cannot_be_written_is_told_and_nothing_stays_behind(self):
        pathDocument = self.Document({})
        pathFile = self.Write("file", b"")
        self.assertIn("cannot create the directory", self.Bad(1, "encode", pathDocument, "-o", pathFile / "x.bin"))
        (self.pathTemp / "directory.bin").mkdir()
        self.assertIn("directory.bin: Is a directory", self.Bad(1, "encode", pathDocument, "-o", self.pathTemp / "directory.bin", "--force"))
        self.assertEqual(sorted(os.listdir(self.pathTemp)), ["directory.bin", "file", "record.json"])

    def test_needs_no_controller(self):
        stResult = Run("encode", self.Document({}), "-o", self.pathTemp / "x.bin", FRUCTL_ROOT=str(self.pathTemp / "none"))
        self.assertEqual((stResult.iCode, (self.pathTemp / "none").exists()), (0, False))


LONG = "x" * 64
# What is changed in the example's record, into what, the path in the complaint, and a part of what it says.
MUTATIONS = [
    ([], [], "", "[] is not an object; accepted: device, file, internalUse, chassis, board, product, multiRecords"),
    (["header"], {}, "header", "unknown member; accepted: device, file, internalUse"),
    (["chassis"], "Blade", "chassis", "\"Blade\" is not an object; accepted: type, partNumber, serialNumber, customFields"),
    (["chassis", "colour"], "red", "chassis.colour", "unknown member; accepted: type, partNumber"),
    (["chassis", "type"], DELETE, "chassis.type", "missing"),
    (["chassis", "type"], "rack mount chassis", "chassis.type", "'rack mount chassis' is no chassis type; accepted: Unspecified, Other, "),
    (["chassis", "partNumber"], LONG, "chassis.partNumber", "has 64 characters, but a length byte counts only to 63; accepted: a text of 0 or 2 to 63"),
    (["chassis", "serialNumber"], "x", "chassis.serialNumber", "has one character, and its length byte would be 0xc1, the mark that ends the fields"),
    (["chassis", "serialNumber"], 7, "chassis.serialNumber", "not a text; accepted: a text of 0 or 2 to 63 Latin-1 characters"),
    (["board", "manufacturer"], "a\0b", "board.manufacturer", "holds a NUL, where every reader ends the text"),
    (["board", "productName"], "10 \u20ac", "board.productName", "holds a character beyond U+00FF, which the format has no byte for"),
    (["board", "productName"], "\u00fc" * 64, "board.productName", "has 64 characters"),
    (["board", "customFields"], "one", "board.customFields", "\"one\" is not an array"),
    (["board", "customFields"], ["", "xy", "z"], "board.customFields[2]", "has one character"),
    (["board", "customFields"], ["", LONG], "board.customFields[1]", "has 64 characters"),
    (["board", "customFields"], [None], "board.customFields[0]", "not a text"),
    (["board", "customFields"], [""] * 256, "board.customFields", "256 fields; accepted: 0 to 255"),
    (["board", "languageCode"], 256, "board.languageCode", "256 is refused; accepted: 0 to 255"),
    (["board", "languageCode"], 7, "board.language", "contradicts languageCode, which says 'code 7'"),
    (["board", "mfgDateMinutes"], 16777216, "board.mfgDateMinutes", "16777216 is refused; accepted: 0 to 16777215"),
    (["board", "mfgDate"], "2024-03-19 09:30:00", "board.mfgDate", "contradicts mfgDateMinutes, which says '2024-03-18 09:30:00'; change both or leave"),
    (["product", "version"], ["2.1"], "product.version", "not a text"),
    (["multiRecords"], {}, "multiRecords", "{} is not an array"),
    (["multiRecords"], [{"type": 0xC1, "data": "00"}] * 65, "multiRecords", "65 records; accepted: 0 to 64"),
    (["multiRecords", 0, "type"], DELETE, "multiRecords[0].type", "missing; accepted: 0 to 255"),
    (["multiRecords", 0, "formatVersion"], 16, "multiRecords[0].formatVersion", "16 is refused; accepted: 0 to 15"),
    (["multiRecords", 1, "data"], "", "multiRecords[1].data", "refused; accepted: 1 to 255 bytes as a text of two hex digits each"),
    (["multiRecords", 1, "data"], "0", "multiRecords[1].data", "refused"),
    (["multiRecords", 1, "data"], "0x", "multiRecords[1].data", "refused"),
    (["multiRecords", 1, "data"], "0 1", "multiRecords[1].data", "refused"),
    (["multiRecords", 1, "data"], "00" * 256, "multiRecords[1].data", "refused"),
    (["multiRecords", 1, "data"], 7, "multiRecords[1].data", "refused"),
    (["multiRecords", 0, "text"], "another name", "multiRecords[0].text", "contradicts data, which says 'hain-r07-u12'"),
    (["multiRecords", 0, "name"], "OEM", "multiRecords[0].name", "contradicts type and data, which says 'Management Access, System Name'"),
    (["multiRecordsDamaged"], True, "multiRecordsDamaged", "the document is of an image whose MultiRecords cannot be read"),
    (["internalUse"], {"data": LONG}, "internalUse.data", "has 64 characters"),
    (["internalUse"], {"bytes": "00"}, "internalUse.bytes", "unknown member; accepted: data"),
]


class Refusals(EncodeTest):
    def test_a_wrong_document_is_refused_with_the_path(self):
        dictGood = self.Json("show", EXAMPLES / "baseboard.hex")
        for listPath, value, strPath, strWhy in MUTATIONS:
            dictRecord = copy.deepcopy(dictGood)
            member = dictRecord
            for step in listPath[:-1]:
                member = member[step]
            if not listPath:
                dictRecord = value
            elif value is DELETE:
                del member[listPath[-1]]
            else:
                member[listPath[-1]] = value
            with self.subTest(strPath, value=str(value)[:20]):
                pathDocument = self.Document(dictRecord)
                strLine = self.Bad(1, "encode", pathDocument, "-o", self.pathTemp / "x.bin")
                self.assertTrue(strLine.startswith(f"{pathDocument}: {strPath + ': ' if strPath else ''}{strWhy}"), strLine)
        self.assertEqual(os.listdir(self.pathTemp), ["record.json"])

    def test_what_is_no_document_is_refused(self):
        for abText, strWhy in [(b"", "not JSON"), (b"{", "not JSON"), (b"{\"board\": {}, \"board\": {}}", "the member \"board\" stands twice"),
                               (b"{\"board\": {\"manufacturer\": \"\xff\"}}", "not JSON")]:
            self.assertIn(strWhy, self.Bad(1, "encode", self.Write("bad.json", abText), "-o", self.pathTemp / "x.bin"))
        self.assertIn("No such file", self.Bad(1, "encode", self.pathTemp / "none.json", "-o", self.pathTemp / "x.bin"))
        self.assertIn("--output is required", self.Bad(2, "encode", self.Document({})))

    def test_an_area_that_its_length_byte_cannot_count_is_refused(self):
        dictRecord = {"board": {"customFields": ["x" * 63] * 32}}
        self.assertIn("the record cannot be encoded: an area holds at most 2040 bytes", self.Bad(1, "encode", self.Document(dictRecord), "-o", self.pathTemp / "x.bin"))
        dictRecord["board"]["customFields"].pop()
        self.Good("verify", self.Encode(dictRecord))

    def test_texts_and_numbers_may_each_stand_alone(self):
        def Board(**dictMembers):
            return self.Shown(self.Encode({"board": dictMembers}))["board"]
        self.assertEqual([Board(mfgDate=strDate)["mfgDateMinutes"] for strDate in ("1996-01-01", "2024-03-18", "2024-03-18 09:30:00")],
                         [0, 14837760, 14838330])
        self.assertEqual([Board(language=strName)["languageCode"] for strName in ("English", "code 7", "code 255")], [0, 7, 255])
        self.assertEqual((Board(languageCode="0x19")["language"], Board()["languageCode"]), ("English", 0))
        for strDate in ("2024-3-18", "2024-02-30", "2028-01-01", "1995-12-31", "2024-03-18 09:30:59", "today", "2024-03-18 x"):
            self.assertIn("accepted: YYYY-MM-DD or YYYY-MM-DD HH:MM:00, 1996-01-01 to 2027-11-24",
                          self.Bad(1, "encode", self.Document({"board": {"mfgDate": strDate}}), "-o", self.pathTemp / "x.bin"))
        for strName in ("code 0", "German", "code 256", 3):
            self.assertIn("board.language: unknown", self.Bad(1, "encode", self.Document({"board": {"language": strName}}), "-o", self.pathTemp / "x.bin"))


class Diff(EncodeTest):
    def test_the_same_is_0_and_different_is_1_with_every_field(self):
        self.Provision()
        self.assertEqual(self.Good("diff", "baseboard", EXAMPLES / "baseboard.hex").strOut, "same: every field, and every byte that both images have\n")
        stResult = self.Fructl("diff", "psu1", "psu2")
        self.assertEqual((stResult.iCode, stResult.strErr), (1, ""))
        self.assertEqual(stResult.strOut, """\
- psu1 (0x03:0)
+ psu2 (0x03:1)

board info area
  serial number
    - PS8024100311
    + PS8024100312

product info area
  serial number
    - PS8024100311
    + PS8024100312
""")
        stResult = self.Fructl("diff", "psu1", "0x03:1", "--json")
        stJson = stResult.Json()
        self.assertEqual((stResult.iCode, stResult.strErr, stJson["same"], stJson["sameBytes"]), (1, "", False, False))
        self.assertEqual((stJson["a"]["device"]["name"], stJson["b"]["device"]["name"]), ("psu1", "psu2"))
        self.assertEqual(stJson["differences"], [{"area": strArea, "field": "serial number", "a": "PS8024100311", "b": "PS8024100312"}
                                                 for strArea in ("board", "product")])

    def test_areas_fields_and_records_that_only_one_has(self):
        abRecord = bytes([0xC1, 0x82, 2]) + ZeroSum(b"\x07\x08")
        abRecord += ZeroSum(abRecord) + b"\x07\x08"
        pathLeft = self.Write("left.bin", Image({3: bytes(4) + Texts("a1", "", "", "", "", "custom")}))
        pathRight = self.Write("right.bin", Image({3: b"\x19" + bytes(3) + Texts("a1", "b2", "", "", ""), 5: abRecord}))
        stResult = self.Fructl("diff", pathLeft, pathRight, "--json")
        self.assertEqual(stResult.iCode, 1)
        self.assertEqual([(s["area"], s["field"], s["a"], s["b"]) for s in stResult.Json()["differences"]], [
            ("board", "language", "English (0)", "English (25)"),
            ("board", "product name", "", "b2"),
            ("board", "custom field 1", "custom", None),
            ("multiRecord", "record 1", None, "type 0xc1, version 2: 07 08"),
        ])
        self.assertIn("\n  custom field 1\n    - custom\n\nMultiRecord area\n  record 1\n    + type 0xc1, version 2: 07 08\n", self.Fructl("diff", pathLeft, pathRight).strOut)
        self.assertIn("\n  product name\n    - -\n    + b2\n", self.Fructl("diff", pathLeft, pathRight).strOut)

    def test_the_same_fields_in_other_bytes_are_the_same(self):
        pathBinary = self.Write("binary.bin", Image({3: bytes(4) + b"\x02\x12\xab" + Texts("", "", "", "")}))
        pathText = self.Write("text.bin", Image({3: bytes(4) + Texts("12AB", "", "", "", "")}))
        self.assertEqual(self.Good("diff", pathBinary, pathText).strOut, "same: every field; some bytes differ (unused ones, or a text stored in another way)\n")
        self.assertEqual({strKey: self.Json("diff", pathBinary, pathText)[strKey] for strKey in ("same", "sameBytes")}, {"same": True, "sameBytes": False})

    def test_trouble_is_2(self):
        self.Provision()
        self.assertIn("has no device named 'psu9'", self.Bad(2, "diff", "psu1", "psu9"))
        self.assertIn("cannot decode", self.Bad(2, "diff", self.Write("bad.bin", b"\x02" + bytes(8)), "psu1"))
        self.Eeprom("bus2-addr0xa4-switch1.bin").unlink()
        self.assertIn("the EEPROM of psu1 (0x03:0) does not answer", self.Bad(2, "diff", "psu1", "psu2"))
        self.assertIn("B is required", self.Bad(2, "diff", "psu1"))


if __name__ == "__main__":
    unittest.main()
