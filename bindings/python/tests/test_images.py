# SPDX-License-Identifier: Apache-2.0
"""Images in memory: decoded, made, checked and mapped as fructl does it with files."""
import copy
import dataclasses
import os
import pathlib
import pickle
import subprocess
import sys
import threading
import unittest

from support import SOURCE, ControllerTest, Fructl
import bmcfru

CORPUS = os.environ.get("BMCFRU_CORPUS_DIR", "")


class Images(ControllerTest):
    def setUp(self):
        super().setUp()
        controller = self.Open()
        self.dictImages = {s: controller.device(s).read() for s in ("baseboard", "psu1", "psu2", "bmc-card")}
        for pathImage in sorted(pathlib.Path(CORPUS).glob("*.bin")) if CORPUS else []:
            self.dictImages[pathImage.name] = pathImage.read_bytes()

    def File(self, strName):
        pathImage = self.pathTemp / f"{strName}.img"
        pathImage.write_bytes(self.dictImages[strName])
        return pathImage

    def test_every_image_decodes_as_fructl_shows_it(self):
        uiDecoded = 0
        for strName, aucImage in self.dictImages.items():
            dictShown, iCode = Fructl(self.pathRoot, "show", self.File(strName), "--offset", "0")
            try:
                record = bmcfru.decode(aucImage)
            except bmcfru.Error as error:
                self.assertEqual((error.exitCode, iCode), (iCode, error.exitCode), strName)
                self.assertEqual(error.code, dictShown["error"]["code"], strName)
                continue
            dictRecord = {s: value for s, value in dataclasses.asdict(record).items() if value is not None}
            if not dictRecord.pop("multiRecordsDamaged"):
                self.assertNotIn("multiRecordsDamaged", dictShown)
            else:
                self.assertTrue(dictShown.pop("multiRecordsDamaged"))
            self.assertEqual(dictRecord, {s: value for s, value in dictShown.items() if s != "file"}, strName)
            uiDecoded += 1
        self.assertGreaterEqual(uiDecoded, 4)

    def test_verify_lenient_and_layout_are_what_fructl_prints(self):
        for strName, aucImage in list(self.dictImages.items())[:12]:
            pathImage = self.File(strName)
            dictCheck = Fructl(self.pathRoot, "verify", pathImage, "--offset", "0")[0]["images"][0]
            check = bmcfru.verify(aucImage)
            self.assertEqual((check.sound, [dataclasses.asdict(f) for f in check.problems], check.failure),
                             (dictCheck["sound"], dictCheck["problems"], dictCheck.get("failure")), strName)
            dictMap = Fructl(self.pathRoot, "map", pathImage, "--offset", "0")[0]
            layout = bmcfru.layout(aucImage)
            self.assertEqual([(s.offset, s.length, s.area, s.field, s.text, s.bytes) for s in layout.spans],
                             [(d["offset"], d["length"], d["area"], d["field"], d["text"], d["bytes"])
                              for d in dictMap["spans"]], strName)
            dictLenient, iCode = Fructl(self.pathRoot, "show", pathImage, "--lenient", "--offset", "0")
            if iCode == 0:
                view = bmcfru.lenient(aucImage)
                self.assertEqual((view.good, view.doubtful, [len(a.fields) for a in view.areas]),
                                 (dictLenient["good"], dictLenient["doubtful"],
                                  [len(d["fields"]) for d in dictLenient["areas"]]), strName)

    def test_what_is_decoded_is_encoded_the_same(self):
        for strName in ("baseboard", "psu1", "psu2", "bmc-card"):
            aucImage = self.dictImages[strName]
            record = bmcfru.decode(aucImage)
            aucMade = bmcfru.encode(record, size=len(aucImage))
            self.assertEqual(len(aucMade), len(aucImage))
            self.assertEqual(bmcfru.decode(aucMade), record, strName)

    def test_a_record_that_is_made_by_hand_becomes_an_image(self):
        record = bmcfru.Record(chassis=bmcfru.Chassis("Rack Mount Chassis", "P1", "S1", ["one", "two"]),
                               board=bmcfru.Board(mfgDate="2024-05-17 09:30:00", manufacturer="Maker"),
                               product=bmcfru.Product(productName="Näme"))
        back = bmcfru.decode(bmcfru.encode(record, size=512))
        self.assertEqual((back.chassis, back.board.mfgDate, back.board.language, back.product.productName),
                         (record.chassis, "2024-05-17 09:30:00", "English", "Näme"))
        back.board.mfgDate = back.board.mfgDateMinutes = None
        self.assertIsNone(bmcfru.decode(bmcfru.encode(back)).board.mfgDate)

    def test_a_member_that_is_not_accepted_is_named(self):
        with self.assertRaisesRegex(bmcfru.RefusedError, "product: *assetTag|product.assetTag"):
            bmcfru.encode(bmcfru.Record(product=bmcfru.Product(assetTag="x" * 300)))
        record = bmcfru.decode(self.dictImages["psu1"])
        record.board.mfgDate = "2024-05-17 09:30:00"
        with self.assertRaisesRegex(bmcfru.RefusedError, "contradicts"):
            bmcfru.encode(record)
        with self.assertRaises(bmcfru.UsageError):
            bmcfru.encode(bmcfru.decode(self.dictImages["psu1"]), size=3)

    def test_a_decoded_record_is_a_dataclass_like_any_other(self):
        record = bmcfru.decode(self.dictImages["baseboard"])
        self.assertIs(type(record), bmcfru.Record)
        other = bmcfru.Record(record.internalUse, record.chassis, record.board, record.product, record.multiRecords)
        self.assertEqual(other, record)
        for twin in (copy.deepcopy(bmcfru.decode(self.dictImages["baseboard"])),
                     pickle.loads(pickle.dumps(bmcfru.decode(self.dictImages["baseboard"]))),
                     dataclasses.replace(bmcfru.decode(self.dictImages["baseboard"]))):
            self.assertEqual(twin, record)
        changed = bmcfru.decode(self.dictImages["baseboard"])
        changed.chassis = None  # before anything was looked at
        self.assertIsNone(changed.chassis)
        self.assertEqual((changed.board, changed.multiRecords), (record.board, record.multiRecords))
        self.assertIn("serialNumber=", repr(bmcfru.decode(self.dictImages["psu1"])))
        self.assertEqual(bmcfru.Record().multiRecords, None)

    def test_what_is_no_image_raises_and_tells_what_the_library_said(self):
        for image in (b"", bytes(8), b"\xff" * 64, self.dictImages["psu1"][:20], bytearray(b"\x01" * 64)):
            with self.assertRaises(bmcfru.DamagedError) as caught:
                bmcfru.decode(image)
            self.assertTrue(caught.exception.diagnostics or caught.exception.message)
        with self.assertRaises(bmcfru.UsageError):
            bmcfru.decode(bytes(2 * 1024 * 1024))

    def test_the_time_zone_changes_nothing(self):
        strCode = ("import sys, bmcfru; r = bmcfru.decode(sys.stdin.buffer.read()); b = bmcfru.encode(r, 256);"
                   "print(r.board.mfgDate, bmcfru.decode(b).board.mfgDate)")
        for strZone in ("UTC0", "America/New_York", "Asia/Kolkata"):
            done = subprocess.run([sys.executable, "-c", strCode], input=self.dictImages["psu1"], check=True,
                                  capture_output=True, env={**os.environ, "TZ": strZone,
                                                            "PYTHONPATH": str(SOURCE / "bindings/python")})
            self.assertEqual(done.stdout, b"2024-02-05 14:10:00 2024-02-05 14:10:00\n", strZone)

    def test_threads_decode_side_by_side(self):
        listWrong = []
        aaucImages = [self.dictImages[s] for s in ("baseboard", "psu1", "psu2", "bmc-card")]
        listRight = [bmcfru.decode(aucImage) for aucImage in aaucImages]

        def Work(uiFirst):
            for i in range(uiFirst, uiFirst + 300):
                if bmcfru.decode(aaucImages[i % 4]) != listRight[i % 4] or not bmcfru.verify(aaucImages[i % 4]):
                    listWrong.append(i)
        listThreads = [threading.Thread(target=Work, args=(i,)) for i in range(4)]
        for thread in listThreads:
            thread.start()
        for thread in listThreads:
            thread.join()
        self.assertEqual(listWrong, [])


if __name__ == "__main__":
    unittest.main()
