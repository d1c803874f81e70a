# SPDX-License-Identifier: Apache-2.0
"""What is installed, where, and that it can be taken away again."""
import unittest

from support import SOURCE, InstallTest, files_below, run


class Files(InstallTest):
    def test_licence_pages_examples_and_headers_are_where_they_belong(self):
        pathPrefix = self.install()
        asFiles = files_below(pathPrefix)
        for strFile in ("LICENSE", "README.md", "CHANGELOG.md", "docs/architecture.md", "examples/controller.json",
                        "examples/port/CMakeLists.txt", "examples/port/contract/adapter.cpp"):
            self.assertIn(f"share/doc/bmcfru/{strFile}", asFiles)
        for strFolder, strPlace in (("include", ""), ("platform", "platform/"), ("host/include", ""), ("toolkit/capi/include", "")):
            for pathHeader in (SOURCE / strFolder).glob("*.h"):
                self.assertIn(f"include/bmcfru/{strPlace}{pathHeader.name}", asFiles)
        self.assertIn("bin/fructl", asFiles)
        self.assertTrue([s for s in asFiles if s.endswith("/bmcfru/bmcfru-worker1")])
        asStray = [s for s in asFiles if not s.startswith(("bin/", "include/bmcfru/", "lib/", "share/"))]
        self.assertEqual(asStray, [])

    def test_nothing_knows_where_it_was_built_or_first_installed(self):
        pathPrefix = self.install()
        for strFile in files_below(pathPrefix):
            aucContent = (pathPrefix / strFile).read_bytes()
            self.assertNotIn(str(self.pathScratch / "first").encode(), aucContent, strFile)
            if not strFile.endswith(".md"):
                self.assertNotIn(str(SOURCE).encode() + b"/", aucContent, strFile)

    def test_uninstalling_leaves_nothing_of_it(self):
        pathPrefix = self.install()
        pathPrefix.rename(self.pathScratch / "first/place")  # back to where its list says
        pathPrefix = self.pathScratch / "first/place"
        (pathPrefix / "bin/other").write_text("somebody else's")
        run("cmake", f"-DFOLDER={self.pathScratch}", "-P", SOURCE / "packaging/uninstall.cmake")
        self.assertEqual(files_below(pathPrefix), ["bin/other"])
        self.assertEqual([str(p) for p in pathPrefix.rglob("bmcfru")], [])
        strSaid = run("cmake", f"-DFOLDER={self.pathScratch}", "-P", SOURCE / "packaging/uninstall.cmake", code=1)
        self.assertIn("nothing is installed", strSaid)


if __name__ == "__main__":
    unittest.main()
