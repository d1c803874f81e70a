# SPDX-License-Identifier: Apache-2.0
"""Wherever a file is named, '-', a pipe's descriptor and a named pipe do as well: nothing is sought in."""
import json
import os
import subprocess
import threading
import unittest

from support import BASEBOARD_EEPROM, COMMAND, EXAMPLES, Environment, FructlTest, HANG_SECONDS, HexImage, Result

PSU_EEPROM = "bus2-addr0xa4-switch1.bin"


class Pipes(FructlTest):
    def setUp(self):
        super().setUp()
        self.Provision()
        self.abPsu = self.Eeprom(PSU_EEPROM).read_bytes()[:256]

    def Piped(self, abInput, *asArguments, bText=True, strCwd=None):
        stProcess = subprocess.run([*COMMAND, "--root", str(self.pathRoot), *map(str, asArguments)], input=abInput, capture_output=True,
                                   env=Environment(), timeout=HANG_SECONDS, cwd=strCwd)
        stResult = Result(stProcess)
        stResult.strErr = stProcess.stderr.decode()
        stResult.strOut = stProcess.stdout.decode() if bText else stProcess.stdout
        return stResult

    def Same(self, stResult, stExpected, strName):
        self.assertEqual((stResult.iCode, stResult.strErr), (stExpected.iCode, stExpected.strErr.replace(str(strName), "standard input")))
        self.assertEqual(stResult.strOut, stExpected.strOut.replace(str(strName), "standard input"))

    def test_standard_input_is_a_file_for_every_reader(self):
        pathFile = self.Write("psu.bin", self.abPsu)
        for asCommand in (["show"], ["map"], ["verify"], ["fields"], ["mr", "list"]):
            with self.subTest(asCommand):
                stFile = self.Fructl(*asCommand, pathFile)
                self.Same(self.Piped(self.abPsu, *asCommand, "-"), stFile, pathFile)
                self.Same(self.Piped(self.abPsu, *asCommand, "--file", "-"), stFile, pathFile)
        self.assertEqual(self.Piped(self.abPsu, "diff", "psu1", "-").iCode, 0)
        self.assertEqual(self.Piped(HexImage(EXAMPLES / "riser.hex"), "diff", "psu1", "-").iCode, 1)

    def test_hex_text_is_known_in_a_stream_too(self):
        stShown = json.loads(self.Piped((EXAMPLES / "psu1.hex").read_bytes(), "--json", "show", "-").strOut)
        stFile = self.Json("show", EXAMPLES / "psu1.hex")
        self.assertEqual((stShown.pop("file"), stFile.pop("file")), ("-", str(EXAMPLES / "psu1.hex")))
        self.assertEqual(stShown, stFile)

    def test_a_pipe_by_its_descriptor_and_a_named_pipe_are_read(self):
        pathPipe = self.pathTemp / "pipe"
        os.mkfifo(pathPipe)
        stExpected = self.Json("show", "psu1")["board"]
        for fnRun in (self.ThroughDescriptor, self.ThroughName):
            for strCommand in ("show", "verify", "map"):
                with self.subTest(how=fnRun.__name__, command=strCommand):
                    iCode, abOut = fnRun(pathPipe, strCommand)
                    self.assertEqual(iCode, 0)
                    if strCommand == "show":
                        self.assertEqual(json.loads(abOut)["board"], stExpected)

    def ThroughDescriptor(self, _pathPipe, strCommand):
        iRead, iWrite = os.pipe()
        os.write(iWrite, self.abPsu)
        os.close(iWrite)
        stProcess = subprocess.run([*COMMAND, "--json", strCommand, f"/dev/fd/{iRead}"], pass_fds=[iRead], capture_output=True, env=Environment())
        os.close(iRead)
        return stProcess.returncode, stProcess.stdout

    def ThroughName(self, pathPipe, strCommand):
        stThread = threading.Thread(target=pathPipe.write_bytes, args=(self.abPsu,))
        stThread.start()
        stProcess = subprocess.run([*COMMAND, "--json", strCommand, str(pathPipe)], capture_output=True, env=Environment())
        stThread.join()
        return stProcess.returncode, stProcess.stdout

    def test_show_encode_and_write_make_one_line(self):
        abShown = self.Piped(b"", "--json", "show", "psu1", bText=False).strOut
        abImage = self.Piped(abShown, "encode", "-", "-o", "-", bText=False).strOut
        self.assertEqual(abImage, self.abPsu[:len(abImage)])
        self.assertEqual(self.Piped(abImage, "write", "psu2", "-").iCode, 0)
        self.assertEqual(self.Json("show", "psu2")["board"], self.Json("show", "psu1")["board"])
        self.assertIn("standard input: board: ", self.Piped(b'{"board": 1}', "encode", "-", "-o", self.pathTemp / "x.bin").strErr)

    def test_read_writes_and_recover_reads_a_pipe(self):
        abImage = self.Piped(b"", "read", "baseboard", "-o", "-", bText=False).strOut
        self.assertEqual(abImage, self.Eeprom(BASEBOARD_EEPROM).read_bytes()[:2048])
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0, b"\x00" * 16)
        stDone = self.Piped(abImage, "recover", "baseboard", "--from", "-")
        self.assertEqual((stDone.iCode, stDone.strOut), (0, "baseboard (0x00:0) was damaged and is restored from standard input\n"))
        self.Good("verify", "baseboard")

    def test_a_stream_is_edited_into_another_place_only(self):
        for asCommand in (["edit", "-", "board.serialNumber=PIPE-1"], ["repair", "-"]):
            stDone = self.Piped(self.abPsu, *asCommand, strCwd=self.pathTemp)
            self.assertEqual((stDone.iCode, stDone.strErr),
                             (2, "fructl: an image from standard input has no place to go back to; accepted: -o FILE, -o - or --dry-run\n"))
        self.assertFalse((self.pathTemp / "-").exists())
        self.assertEqual(self.Piped(self.abPsu, "edit", "-", "board.serialNumber=PIPE-1", "-n").iCode, 0)
        abEdited = self.Piped(self.abPsu, "edit", "-", "board.serialNumber=PIPE-1", "-o", "-", bText=False).strOut
        self.assertEqual(json.loads(self.Piped(abEdited, "--json", "show", "-").strOut)["board"]["serialNumber"], "PIPE-1")
        pathNew = self.pathTemp / "new.bin"
        self.assertEqual(self.Piped(self.abPsu, "edit", "-", "board.serialNumber=PIPE-1", "-o", pathNew).iCode, 0)
        self.assertEqual(pathNew.read_bytes(), abEdited)

    def test_what_is_no_image_is_told(self):
        self.assertEqual(self.Piped(b"", "show", "-").strErr, "fructl: the image file standard input is empty\n")
        stHuge = self.Piped(bytes(1024 * 1024 + 1), "show", "-")
        self.assertEqual((stHuge.iCode, stHuge.strErr), (3, "fructl: cannot read standard input: larger than 1 MiB, which no FRU image is\n"))


if __name__ == "__main__":
    unittest.main()
