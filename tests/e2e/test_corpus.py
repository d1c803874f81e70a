# SPDX-License-Identifier: Apache-2.0
"""A folder of real images, when there is one: the texts that are plain to read in them, and no contradictions."""
import sys
import unittest
import zlib

from support import CORPUS_IMAGES, FructlTest, NO_CORPUS, Run, SKIPPED

# By the image's CRC-32: sound or not, and texts by area and field.
EXPECTED = {
    0x5A241CBC: (True, {
        "chassis": {"type": "Pizza Box", "partNumber": "SOME_CHASSIS_PARTNUMBER ", "customFields": ["010203040506070809", "", "HELLO_WORLD ", "some_english"]},
        "board": {"mfgDate": "2022-04-25 18:34:00", "serialNumber": "SOME_BOARD_SERIALNUMBER ", "fruFileId": "0A0B0C"},
        "product": {"partNumber": "SOME_PRODUCT_PARTNUMBER ", "fruFileId": "0A0B0C", "customFields": []},
        "multiRecords": ["http://finance.sc.hp.com:280", "Some Cool Name", "127.0.0.1", "http://finance.sc.hp.com:280", "Some Cool Component Name",
                         "127.0.0.2", "03020100-0504-0706-0809-0a0b0c0d0e0f"]}),
    0x7953E9E2: (True, {"chassis": {"partNumber": "", "serialNumber": "", "customFields": ["010203040506070809", "", "HELLO_WORLD ", "some_english"]}}),
    0xCB0863A8: (True, {"product": {"partNumber": "SOME_PRODUCT_PARTNUMBER ", "fruFileId": "0A0B0C"}}),
    0x2AF7CF58: (True, {
        "board": {"manufacturer": "Struck Innovative Systeme GmbH", "productName": "DRTM-DWC8VM1", "serialNumber": "015", "partNumber": "DRTM-DWC8VM1",
                  "fruFileId": "v0003", "customFields": ["uDWCVM-18.0018"]},
        "product": {"manufacturer": "Struck Innovative Systeme GmbH", "partNumber": "8618-01ML", "version": "v1.1", "assetTag": ""},
        "multiRecords": ["5a 31 00 30 01 03 bd 92 00 01 00 00 83", "5a 31 00 30 01 03 bd 92 00 02 00 00 83"]}),
    0xAA5D668F: (True, {"board": {"manufacturer": "DESY", "productName": "DAMC-FMC25", "serialNumber": "0000", "partNumber": "0000", "fruFileId": "none"},
                        "product": {"manufacturer": "DESY", "productName": "DAMC-FMC25", "version": "0000", "assetTag": "none"},
                        "multiRecords": ["5a 31 00 16 00 41"]}),
    # No record says that it is the last, and the eighth has no data.
    0xFEC3A21E: (False, {"board": {"manufacturer": "Opal Kelly Incorporated", "productName": "EVB1006", "serialNumber": "1135000OKI", "partNumber": "EVB1006"},
                         "multiRecords": []}),
    # Its internal use area is not one length-coded field; what is read there says nothing.
    0x4164E940: (True, {
        "internalUse": {},
        "chassis": {"type": "Rack Mount Chassis", "partNumber": "chassis-part", "serialNumber": "chassis-serial",
                    "customFields": [f"chassis-extra{i}" for i in range(1, 5)]},
        "board": {"mfgDate": "2017-07-10 16:30:00", "manufacturer": "board-manufacturer", "productName": "board-product", "serialNumber": "board-serial",
                  "partNumber": "board-part", "fruFileId": "board-fileid", "customFields": ["board-extra1", "board-extra2"]},
        "product": {"manufacturer": "product-manufacturer", "productName": "product-product", "partNumber": "product-part", "version": "product-version",
                    "serialNumber": "product-serial", "assetTag": "product-asset", "fruFileId": "product-fileid",
                    "customFields": ["product-extra1", "product-extra2", "product-extra3"]}}),
    0xC7728014: (True, {"board": {"language": "code 213", "mfgDate": "2017-07-10 16:30:00", "manufacturer": "", "fruFileId": "", "customFields": []}}),
    0x1831A8E6: (True, {
        "board": {"mfgDate": "2021-01-15 03:27:00", "manufacturer": "Supermicro", "productName": "X11SCZ-F", "serialNumber": "VM211S003599",
                  "partNumber": "MDB-X11SCZ-F-B", "fruFileId": ""},
        "product": {"manufacturer": "RNT Rausch", "productName": "SRV-RNT-1U-DED-3-0002", "partNumber": "", "version": "PO-00003902",
                    "serialNumber": "DS03210109"}}),
    0x415077EE: (True, {
        "internalUse": {},
        "board": {"manufacturer": "Kontron", "productName": "AM4010", "serialNumber": "0023721003", "partNumber": "35943", "fruFileId": "EF_0100"},
        "product": {"manufacturer": "Kontron", "productName": "AM4010", "partNumber": "0012", "version": "0" * 25, "assetTag": "_" * 25,
                    "customFields": ["MAC=00:80:82:74:09:78"]},
        "multiRecords": ["5a 31 00 16 00 1e"]}),
    0xF565B51B: (True, {
        "board": {"manufacturer": "VadaTech", "productName": "UTCA PM", "serialNumber": "4451956", "partNumber": "UTC017", "fruFileId": "MgtCtrl.bin"},
        "product": {"manufacturer": "VadaTech", "productName": "UTCA PM", "partNumber": "UTC017", "version": "05.00", "serialNumber": "4451956",
                    "customFields": ["5D32"]},
        "multiRecords": ["5a 31 00 27 00 a4 01"]}),
}


@unittest.skipUnless(CORPUS_IMAGES, NO_CORPUS)
class Corpus(FructlTest):
    def test_texts_that_are_plain_to_read(self):
        iKnown = 0
        for pathImage in CORPUS_IMAGES:
            iCrc = zlib.crc32(pathImage.read_bytes())
            if iCrc not in EXPECTED:
                continue
            iKnown += 1
            _, dictAreas = EXPECTED[iCrc]
            with self.subTest(pathImage.name):
                stShown = self.Json("show", pathImage)
                self.assertEqual({strArea for strArea in ("internalUse", "chassis", "board", "product") if strArea in stShown},
                                 {strArea for strArea in dictAreas if strArea != "multiRecords"})
                for strArea, fields in dictAreas.items():
                    if strArea == "multiRecords":
                        self.assertEqual([stRecord["text"] for stRecord in stShown[strArea]][:len(fields)], fields)
                        continue
                    self.assertEqual({strField: stShown[strArea][strField] for strField in fields}, fields)
        self.assertGreater(iKnown, 0)

    def test_verify_tells_the_sound_from_the_damaged(self):
        stResult = Run("--json", "verify", *CORPUS_IMAGES)
        listImages = stResult.Json()["images"]
        self.assertEqual(len(listImages), len(CORPUS_IMAGES))
        for pathImage, stImage in zip(CORPUS_IMAGES, listImages):
            self.assertNotIn("failure", stImage, pathImage)
            tupleExpected = EXPECTED.get(zlib.crc32(pathImage.read_bytes()))
            if tupleExpected is not None:
                self.assertEqual(stImage["sound"], tupleExpected[0], pathImage)
        self.assertEqual(stResult.iCode, 0 if all(stImage["sound"] for stImage in listImages) else 1)

    def test_the_map_covers_every_byte_and_says_what_show_says(self):
        for pathImage in CORPUS_IMAGES:
            with self.subTest(pathImage.name):
                stMap = self.Json("map", pathImage)
                stShown = self.Json("show", pathImage)
                abAll = bytearray(pathImage.read_bytes())
                for stSpan in stMap["spans"]:
                    abSpan = bytes.fromhex(stSpan["bytes"])
                    self.assertEqual(abAll[stSpan["offset"]:stSpan["offset"] + stSpan["length"]], abSpan)
                    strText = stSpan["text"].split("\0")[0]  # where readers end it
                    if stSpan["area"] in ("chassis", "board", "product") and stSpan["field"].startswith("custom field "):
                        iField = int(stSpan["field"].split()[-1])
                        self.assertEqual(stShown[stSpan["area"]]["customFields"][iField - 1], strText)
                    elif stSpan["field"] in ("serial number", "part number", "product name", "asset tag", "FRU file ID"):
                        strKey = {"serial number": "serialNumber", "part number": "partNumber", "product name": "productName",
                                  "asset tag": "assetTag", "FRU file ID": "fruFileId"}[stSpan["field"]]
                        self.assertEqual(stShown[stSpan["area"]][strKey], strText)
                self.assertEqual(sum(stSpan["length"] for stSpan in stMap["spans"]), len(abAll))


if __name__ == "__main__":
    if not CORPUS_IMAGES:
        print("skipped: " + NO_CORPUS)
        sys.exit(SKIPPED)
    unittest.main()
