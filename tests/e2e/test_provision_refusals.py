# SPDX-License-Identifier: Apache-2.0
"""fructl provision: what it refuses, and that it refuses whole."""
import copy
import json
import shutil
import unittest

from support import DESCRIPTION, EXAMPLES, FructlTest

DELETE = object()


def Mutated(listPath, value):
    """The example's description with one member changed, added or deleted."""
    dictDescription = copy.deepcopy(DESCRIPTION)
    member = dictDescription
    for step in listPath[:-1]:
        member = member[step]
    if value is DELETE:
        del member[listPath[-1]]
    else:
        member[listPath[-1]] = value
    return dictDescription


# What is changed, into what, the path in the complaint, and a part of what it says.
MUTATIONS = [
    ([("devices")], [], "devices", "0 devices; accepted: 1 to 100"),
    ([("devices")], {}, "devices", "{} is not an array"),
    ([("devices")], [7], "devices[0]", "7 is not an object; accepted: id, name, componentType"),
    ([("devices")], DELETE, "devices", "missing"),
    (["device"], [], "device", "unknown member; did you mean 'devices'?; accepted: devices, conf"),
    (["devices", 2, "colour"], "red", "devices[2].colour", "unknown member; accepted: id, name, componentType, instance"),
    (["devices", 0, "id"], DELETE, "devices[0].id", "missing; accepted: 0 to 255, as a number or as text such as \"0xff\""),
    (["devices", 0, "id"], 256, "devices[0].id", "256 is refused; accepted: 0 to 255"),
    (["devices", 0, "id"], -1, "devices[0].id", "-1 is refused; accepted: 0 to 255"),
    (["devices", 0, "id"], 1.5, "devices[0].id", "1.5 is refused; accepted: 0 to 255"),
    (["devices", 0, "id"], True, "devices[0].id", "true is refused; accepted: 0 to 255"),
    (["devices", 0, "id"], None, "devices[0].id", "null is refused; accepted: 0 to 255"),
    (["devices", 0, "id"], "0x", "devices[0].id", "\"0x\" is refused; accepted: 0 to 255"),
    (["devices", 1, "id"], 0, "devices[1].id", "0 is already device 'baseboard'; accepted: one that no other device has"),
    (["devices", 1, "name"], DELETE, "devices[1].name", "missing; accepted: a text of 1 to 15 characters"),
    (["devices", 1, "name"], "", "devices[1].name", "\"\" is refused; accepted: a text of 1 to 15 characters"),
    (["devices", 1, "name"], "sixteen-letters!", "devices[1].name", "accepted: a text of 1 to 15 characters"),
    (["devices", 1, "name"], "power supply", "devices[1].name", "'power supply' is refused; accepted: 1 to 15 printable ASCII characters"),
    (["devices", 1, "name"], "3:0", "devices[1].name", "'3:0' is refused; accepted: 1 to 15 printable ASCII characters"),
    (["devices", 1, "name"], "a\nb", "devices[1].name", "holds control characters"),
    (["devices", 1, "name"], "psü", "devices[1].name", "'ps\\xc3\\xbc' is refused"),
    (["devices", 1, "name"], "baseboard", "devices[1].name", "'baseboard' is taken by an earlier device"),
    (["devices", 1, "componentType"], DELETE, "devices[1].componentType", "missing"),
    (["devices", 1, "componentType"], 256, "devices[1].componentType", "accepted: 0 to 255"),
    (["devices", 1, "instance"], DELETE, "devices[1].instance", "missing"),
    (["devices", 2, "instance"], 0, "devices[2].instance", "component type 0x03, instance 0 is already device 'psu1'"),
    (["devices", 3, "sdrRecordId"], 65536, "devices[3].sdrRecordId", "accepted: 0 to 65535"),
    (["devices", 3, "sdrRecordId"], 2, "devices[3].sdrRecordId", "2 is already device 'psu1'"),
    (["devices", 0, "size"], DELETE, "devices[0].size", "missing; accepted: 8 to 65535"),
    (["devices", 0, "size"], 7, "devices[0].size", "7 is refused; accepted: 8 to 65535"),
    (["devices", 0, "size"], 65536, "devices[0].size", "65536 is refused; accepted: 8 to 65535"),
    (["devices", 4, "startOffset"], 65000, "devices[4].size", "startOffset and size end at 0x101e8; accepted: an end of at most 0x10000"),
    (["devices", 0, "size"], 320, "devices[0].image", "the image has 328 bytes; accepted: 1 to 320, the FRU's size"),
    (["devices", 0, "eepromSize"], 2047, "devices[0].eepromSize", "2047 is refused; accepted: 2048 to 65536"),
    (["devices", 0, "accessType"], "high", "devices[0].accessType", "\"high\" is refused; accepted: 0 to 255"),
    (["devices", 0, "eepromType"], 8, "devices[0].eepromType", "8 is refused; accepted: 9 to 15"),
    (["devices", 0, "eepromType"], 16, "devices[0].eepromType", "16 is refused; accepted: 9 to 15"),
    (["devices", 0, "fieldFlag"], 10, "devices[0].fieldFlag", "10 is refused; accepted: 0 to 9"),
    (["devices", 0, "databaseOnly"], 1, "devices[0].databaseOnly", "1 is refused; accepted: true or false"),
    (["devices", 0, "cached"], "yes", "devices[0].cached", "\"yes\" is refused; accepted: true or false"),
    (["devices", 0, "location"], DELETE, "devices[0].location", "missing; accepted: {\"bus\", \"address\", \"switchLevel\"}"),
    (["devices", 0, "location"], "bus1", "devices[0].location", "\"bus1\" is not an object; accepted: bus, address, switchLevel, backend"),
    (["devices", 0, "location", "busNumber"], 1, "devices[0].location.busNumber", "unknown member; accepted: bus, address, switchLevel, backend"),
    (["devices", 0, "location", "bus"], DELETE, "devices[0].location.bus", "missing; accepted: 0 to 15"),
    (["devices", 0, "location", "bus"], 16, "devices[0].location.bus", "16 is refused; accepted: 0 to 15"),
    (["devices", 0, "location", "address"], "0x100", "devices[0].location.address", "\"0x100\" is refused; accepted: 0 to 255"),
    (["devices", 0, "location", "backend"], "nosuch", "devices[0].location", "there is no back end 'nosuch'; accepted: file"),
    (["devices", 3, "location", "backend"], "kernel", "devices[3].eepromSize", "missing; a chip that is no image file has to say"),
    (["devices", 1, "location", "switchLevel"], 300, "devices[1].location.switchLevel", "300 is refused; accepted: 0 to 255"),
    (["devices", 2, "location", "switchLevel"], 1, "devices[2].startOffset",
     "0x0 to 0xff overlaps device 'psu1' (0x0 to 0xff) in the same EEPROM; accepted: ranges apart, or another location"),
    (["devices", 3, "location"], {"bus": 4, "address": 174}, "devices[4].eepromSize", "2048, but device 'riser' says 256 of the same EEPROM"),
    (["devices", 0, "image"], 5, "devices[0].image", "5 is refused; accepted: a text of 1 to 4095 characters"),
    (["devices", 0, "image"], "no-such.hex", "devices[0].image", "no-such.hex: No such file or directory"),
    (["devices", 0, "image"], ".", "devices[0].image", "not a regular file"),
    (["devices", 0, "image"], "bad.hex", "devices[0].image", "bad.hex:2: '0g' is not a byte; accepted: two hex digits"),
    (["devices", 0, "image"], "empty.bin", "devices[0].image", "the image has 0 bytes"),
    (["devices", 0, "recoveryImage"], "BaseBoard.bin", "devices[0].recoveryImage", "is not an object; accepted: path, file"),
    (["devices", 0, "recoveryImage", "contents"], "x", "devices[0].recoveryImage.contents", "unknown member; accepted: path, file"),
    (["devices", 0, "recoveryImage", "file"], DELETE, "devices[0].recoveryImage.file", "missing"),
    (["devices", 0, "recoveryImage", "file"], "large.bin", "devices[0].recoveryImage.file", "the image has 2049 bytes; accepted: 1 to 2048"),
    (["devices", 0, "recoveryImage", "path"], DELETE, "devices[0].recoveryImage.path", "missing; accepted: a text of 2 to 127 characters"),
    (["devices", 0, "recoveryImage", "path"], "/" + "x" * 127, "devices[0].recoveryImage.path", "accepted: a text of 2 to 127 characters"),
    (["devices", 0, "recoveryImage", "path"], "fru/BaseBoard.bin", "devices[0].recoveryImage.path", "accepted: a file's absolute path on the controller"),
    (["devices", 0, "recoveryImage", "path"], "/../../etc/passwd", "devices[0].recoveryImage.path", "accepted: a file's absolute path on the controller"),
    (["devices", 0, "recoveryImage", "path"], "/eeprom/bus1-addr0xa0.bin", "devices[0].recoveryImage.path", "outside /eeprom, /conf,"),
    (["devices", 0, "recoveryImage", "path"], "/usr/../var/lib/fru/fru.db", "devices[0].recoveryImage.path", "outside /eeprom, /conf,"),
    (["devices", 1, "recoveryImage"], {"path": "/usr/upgrade/fru/BaseBoard.bin", "file": "psu1.hex"}, "devices[1].recoveryImage.path",
     "device 'baseboard' stores another image there; accepted: another path, or the same image"),
    (["conf"], [], "conf", "[] is not an object; accepted: capability, features, oem, hardware"),
    (["conf", "capabilities"], "x", "conf.capabilities", "unknown member; accepted: capability, features, oem, hardware"),
    (["conf", "capability"], "no-such.ini", "conf.capability", "no-such.ini: No such file or directory"),
    (["conf", "features"], "psu1.hex", "conf.features", "the file is refused; accepted: a JSON array of texts"),
]


class Refusals(FructlTest):
    def setUp(self):
        super().setUp()
        self.pathDescriptions = self.pathTemp / "descriptions"
        shutil.copytree(EXAMPLES, self.pathDescriptions)

    def Describe(self, dictDescription):
        pathFile = self.pathDescriptions / "described.json"
        pathFile.write_text(json.dumps(dictDescription))
        return pathFile

    def test_every_wrong_description_is_refused_with_the_members_path(self):
        (self.pathDescriptions / "bad.hex").write_text("00 01\n0g\n")
        (self.pathDescriptions / "empty.bin").write_bytes(b"")
        (self.pathDescriptions / "large.bin").write_bytes(b"\xff" * 2049)
        for listPath, value, strPath, strWhy in MUTATIONS:
            with self.subTest(path=strPath, value=value):
                pathFile = self.Describe(Mutated(listPath, value))
                strLine = self.Bad(3, "provision", pathFile)
                self.assertTrue(strLine.startswith(f"{pathFile}: {strPath}: "), strLine)
                self.assertIn(strWhy, strLine)
        self.assertFalse(self.pathRoot.exists(), "something was written")

    def test_what_is_no_json_is_refused(self):
        for strText, strWhy in [("", "not JSON: parse error at line 1, column 1"), ("{", "not JSON: parse error at line 1, column 2"), ("[2E9999]", "not JSON: number overflow"),
                                ("[]", "[] is not an object; accepted: devices, conf"),
                                ('{"devices": [], "devices": []}', 'the member "devices" stands twice in one object; accepted: each member once')]:
            with self.subTest(strText):
                pathFile = self.Write("wrong.json", strText.encode())
                strLine = self.Bad(3, "provision", pathFile)
                self.assertTrue(strLine.startswith(f"{pathFile}: {strWhy}"), strLine)
        self.assertIn("No such file or directory", self.Bad(4, "provision", self.pathTemp / "none.json"))


if __name__ == "__main__":
    unittest.main()
