# SPDX-License-Identifier: Apache-2.0
"""fructl encode: the documents that it refuses."""
import copy
import os
import unittest

from encode_support import EncodeTest
from support import EXAMPLES

DELETE = object()
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
                strLine = self.Bad(3, "encode", pathDocument, "-o", self.pathTemp / "x.bin")
                self.assertTrue(strLine.startswith(f"{pathDocument}: {strPath + ': ' if strPath else ''}{strWhy}"), strLine)
        self.assertEqual(os.listdir(self.pathTemp), ["record.json"])

    def test_what_is_no_document_is_refused(self):
        for abText, strWhy in [(b"", "not JSON"), (b"{", "not JSON"), (b"{\"board\": 2E9999}", "not JSON: number overflow"), (b"{\"board\": {}, \"board\": {}}", "the member \"board\" stands twice"),
                               (b"{\"board\": {\"manufacturer\": \"\xff\"}}", "not JSON")]:
            self.assertIn(strWhy, self.Bad(3, "encode", self.Write("bad.json", abText), "-o", self.pathTemp / "x.bin"))
        self.assertIn("No such file", self.Bad(4, "encode", self.pathTemp / "none.json", "-o", self.pathTemp / "x.bin"))
        self.assertIn("--output is required", self.Bad(2, "encode", self.Document({})))

    def test_an_area_that_its_length_byte_cannot_count_is_refused(self):
        dictRecord = {"board": {"customFields": ["x" * 63] * 32}}
        self.assertIn("the record cannot be encoded: an area holds at most 2040 bytes", self.Bad(3, "encode", self.Document(dictRecord), "-o", self.pathTemp / "x.bin"))
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
                          self.Bad(3, "encode", self.Document({"board": {"mfgDate": strDate}}), "-o", self.pathTemp / "x.bin"))
        for strName in ("code 0", "German", "code 256", 3):
            self.assertIn("board.language: unknown", self.Bad(3, "encode", self.Document({"board": {"language": strName}}), "-o", self.pathTemp / "x.bin"))


if __name__ == "__main__":
    unittest.main()
