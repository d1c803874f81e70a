# SPDX-License-Identifier: Apache-2.0
"""The examples of the docstrings, each run on an example controller of its own."""
import doctest
import importlib
import pkgutil
import unittest

from support import ControllerTest
import bmcfru


class Docstrings(ControllerTest):
    def test_every_example_works(self):
        aucImage = self.Open().device("psu1").read()
        dictNames = {"ROOT": str(self.pathRoot), "IMAGE": aucImage, **{s: getattr(bmcfru, s) for s in bmcfru.__all__}}
        uiTried = 0
        for module in [bmcfru, *(importlib.import_module(f"bmcfru.{info.name}")
                                 for info in pkgutil.iter_modules(bmcfru.__path__))]:
            result = doctest.testmod(module, extraglobs=dictNames)
            self.assertEqual(result.failed, 0, module.__name__)
            uiTried += result.attempted
        self.assertGreater(uiTried, 20)


if __name__ == "__main__":
    unittest.main()
