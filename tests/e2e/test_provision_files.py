# SPDX-License-Identifier: Apache-2.0
"""The controller's own files that a description lays down."""
import unittest

from support import Described, EXAMPLES, Run


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
                strError = self.Bad(3, "provision", pathFile)
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
