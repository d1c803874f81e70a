# SPDX-License-Identifier: Apache-2.0
"""What the tests of encode and diff share."""
import json

from support import FructlTest


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
        dictShown.pop("source", None)
        dictShown.pop("sourcesDiffer", None)
        return dictShown
