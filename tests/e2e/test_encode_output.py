# SPDX-License-Identifier: Apache-2.0
"""fructl encode: the file that it makes."""
import os
import socket
import stat
import subprocess
import threading
import unittest

from encode_support import EncodeTest
from support import COMMAND, EXAMPLES, HexImage, Run

EMPTY_IMAGE = b"\x01" + bytes(6) + b"\xff"


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
            self.assertEqual(self.Bad(3, "encode", pathDocument, "-o", self.pathTemp / "x.bin", "--size", strSize),
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
        self.assertEqual(self.Bad(3, "encode", pathDocument, "-o", pathImage), f"{pathImage} is there already; --force replaces it")
        self.assertEqual(pathImage.read_bytes(), b"precious")
        self.Good("encode", pathDocument, "-o", pathImage, "--force")
        self.assertEqual(len(pathImage.read_bytes()), 8)
        self.assertEqual(sorted(os.listdir(self.pathTemp)), ["mine.bin", "record.json"])

    def test_a_place_that_cannot_be_written_is_told_and_nothing_stays_behind(self):
        pathDocument = self.Document({})
        pathFile = self.Write("file", b"")
        self.assertIn("cannot create the directory", self.Bad(3, "encode", pathDocument, "-o", pathFile / "x.bin"))
        (self.pathTemp / "directory.bin").mkdir()
        self.assertIn("directory.bin is no file and stays as it is", self.Bad(3, "encode", pathDocument, "-o", self.pathTemp / "directory.bin", "--force"))
        self.assertEqual(sorted(os.listdir(self.pathTemp)), ["directory.bin", "file", "record.json"])

    def test_needs_no_controller(self):
        stResult = Run("encode", self.Document({}), "-o", self.pathTemp / "x.bin", FRUCTL_ROOT=str(self.pathTemp / "none"))
        self.assertEqual((stResult.iCode, (self.pathTemp / "none").exists()), (0, False))


class Streams(EncodeTest):
    """-o never replaces what is no regular file."""

    def Bytes(self, strOutput):
        return subprocess.run([*COMMAND, "encode", str(self.Document({})), "-o", strOutput, "--force"], capture_output=True, check=True).stdout

    def test_standard_output_gets_the_image_and_nothing_else(self):
        for strOutput in ("-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"):
            self.assertEqual(self.Bytes(strOutput), EMPTY_IMAGE)
            self.assertEqual(Run("--json", "encode", self.Document({}), "-o", strOutput).Json()["error"]["message"],
                             f"-o {strOutput} and --json both want standard output; accepted: one of them")
        self.assertTrue(os.path.islink("/dev/stdout"))
        pathImage = self.pathTemp / "redirected.bin"
        with open(pathImage, "wb") as stFile:
            subprocess.run([*COMMAND, "encode", str(self.Document({})), "-o", "/dev/stdout"], stdout=stFile, check=True)
        self.assertEqual(pathImage.read_bytes(), EMPTY_IMAGE)

    def test_a_pipe_gets_the_bytes_and_stays(self):
        pathPipe = self.pathTemp / "pipe"
        os.mkfifo(pathPipe)
        listRead = []
        stReader = threading.Thread(target=lambda: listRead.append(pathPipe.read_bytes()), daemon=True)
        stReader.start()
        self.Good("encode", self.Document({}), "-o", pathPipe)
        stReader.join()
        self.assertEqual((listRead, stat.S_ISFIFO(os.lstat(pathPipe).st_mode)), ([EMPTY_IMAGE], True))

    @unittest.skipIf(os.geteuid() != 0, "only root can make a device node")
    def test_a_character_device_stays_one(self):
        pathNode = self.pathTemp / "null"
        try:
            os.mknod(pathNode, 0o600 | stat.S_IFCHR, os.makedev(1, 3))
            open(pathNode, "wb").close()
        except PermissionError:
            self.skipTest("no device nodes here")
        for asForce in ([], ["--force"]):
            self.Good("encode", self.Document({}), "-o", pathNode, *asForce)
        stStat = os.lstat(pathNode)
        self.assertEqual((stat.S_ISCHR(stStat.st_mode), stStat.st_rdev, stat.S_IMODE(stStat.st_mode)), (True, os.makedev(1, 3), 0o600))

    def test_a_link_stays_and_what_it_leads_to_is_written(self):
        pathTarget = self.Write("target.bin", b"old")
        pathLink = self.pathTemp / "link.bin"
        pathLink.symlink_to("target.bin")
        self.assertIn("is there already", self.Bad(3, "encode", self.Document({}), "-o", pathLink))
        self.Good("encode", self.Document({}), "-o", pathLink, "--force")
        self.assertEqual((os.readlink(pathLink), pathTarget.read_bytes()), ("target.bin", EMPTY_IMAGE))
        pathPipeLink = self.pathTemp / "to-null"
        pathPipeLink.symlink_to("/dev/null")
        self.Good("encode", self.Document({}), "-o", pathPipeLink)
        self.assertEqual(os.readlink(pathPipeLink), "/dev/null")

    def test_what_lies_beside_the_file_stays(self):
        pathNew = self.Write("out.bin.new", b"mine")
        pathTemp = self.Write("out.bin.tmp", b"mine too")
        self.Good("encode", self.Document({}), "-o", self.pathTemp / "out.bin")
        self.Good("encode", self.Document({}), "-o", self.pathTemp / "out.bin", "--force")
        self.assertEqual((pathNew.read_bytes(), pathTemp.read_bytes()), (b"mine", b"mine too"))

    def test_anything_else_is_refused(self):
        pathSocket = self.pathTemp / "s"
        with socket.socket(socket.AF_UNIX) as stSocket:
            stSocket.bind(str(pathSocket))
            self.assertIn("is no file and stays as it is", self.Bad(3, "encode", self.Document({}), "-o", pathSocket, "--force"))
        self.assertTrue(stat.S_ISSOCK(os.lstat(pathSocket).st_mode))


if __name__ == "__main__":
    unittest.main()
