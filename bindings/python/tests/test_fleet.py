# SPDX-License-Identifier: Apache-2.0
"""Many controllers through a pool of threads, one in ten killed in the middle of its write: nothing is lost.

BMCFRU_FLEET=100 takes a hundred controllers instead of a few, BMCFRU_FLEET_DIR another folder than memory, and
BMCFRU_FLEET_THREADS so many threads instead of ten; what took how long is printed.
"""
import concurrent.futures
import os
import pathlib
import random
import resource
import shutil
import signal
import tempfile
import threading
import time
import unittest

from support import TEMP, Provision
import bmcfru

FLEET = int(os.environ.get("BMCFRU_FLEET", "10"))
THREADS = int(os.environ.get("BMCFRU_FLEET_THREADS", "10"))
FOLDER = os.environ.get("BMCFRU_FLEET_DIR", TEMP)
KILLS_OF_EACH = 20  # of a controller that is one in ten
LABEL, NAME = "Product Asset Tag", "psu1"


def Work(pathRoot, strValue):
    """What a factory does with each: label, and look."""
    with bmcfru.Controller(pathRoot, who="fleet") as controller:
        change = controller.device(NAME).label(LABEL).set(strValue)
        return change.changed, all(controller.verify())


class Fleet(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pathTemp = pathlib.Path(tempfile.mkdtemp(prefix="bmcfru-fleet-", dir=FOLDER))
        cls.addClassCleanup(shutil.rmtree, cls.pathTemp)
        Provision(cls.pathTemp / "example")
        cls.apathRoots = [cls.pathTemp / f"root{i}" for i in range(FLEET)]
        for pathRoot in cls.apathRoots:
            shutil.copytree(cls.pathTemp / "example", pathRoot, symlinks=True)

    def test_a_pool_of_threads_labels_and_verifies_all(self):
        fBegin, before = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
        with concurrent.futures.ThreadPoolExecutor(THREADS) as pool:
            listDone = list(pool.map(lambda pathRoot: Work(pathRoot, f"POOL-{pathRoot.name}"), self.apathRoots))
        fTook, after = time.monotonic() - fBegin, resource.getrusage(resource.RUSAGE_CHILDREN)
        self.assertEqual(listDone, [(True, True)] * FLEET)
        for pathRoot in self.apathRoots:
            with bmcfru.Controller(pathRoot) as controller:
                self.assertEqual(controller.device(NAME).label(LABEL).get(), f"POOL-{pathRoot.name}")
        fProcessor = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        print(f"{FLEET} controllers, {THREADS} threads: labelled and verified in {fTook:.2f} s, "
              f"{fTook / FLEET * 1e3:.1f} ms each; processor time of the workers {fProcessor:.2f} s")

    def test_nothing_is_lost_where_one_in_ten_is_killed(self):
        apathKilled = self.apathRoots[::10]
        with concurrent.futures.ThreadPoolExecutor(THREADS) as pool:
            listKilled = [pool.submit(self.Kills, pathRoot) for pathRoot in apathKilled]
            listDone = [pool.submit(Work, pathRoot, "CALM") for pathRoot in self.apathRoots if pathRoot not in apathKilled]
        self.assertEqual([f.result()[1] for f in listDone], [True] * len(listDone))
        listKilled = [f.result() for f in listKilled]
        uiInterrupted = sum(t[0] for t in listKilled)
        print(f"{len(listKilled)} of {FLEET} controllers killed {KILLS_OF_EACH} times each: {uiInterrupted} calls cut short, "
              f"{sum(t[1] for t in listKilled)} of them left the new image, none anything but old or new")
        self.assertGreater(uiInterrupted, 0)

    def Kills(self, pathRoot):
        """How many calls were cut short, and how many of those left the new image."""
        rand = random.Random(pathRoot.name)
        with bmcfru.Controller(pathRoot) as controller:
            controller.device(NAME).label(LABEL).set("ODD-VALUE")
            fBegin = time.monotonic()
            controller.device(NAME).label(LABEL).set("EVEN")
            fWrite = time.monotonic() - fBegin
        uiInterrupted = uiNew = 0
        for i in range(KILLS_OF_EACH):
            strNew = ("ODD-VALUE", "EVEN")[i % 2]
            with bmcfru.Controller(pathRoot) as controller:
                aucOld = controller.device(NAME).read()
                aucNew = self.Changed(aucOld, controller.device(NAME).label(LABEL).set(strNew, dryRun=True))
            bInterrupted = self.KilledWrite(pathRoot, strNew, rand.uniform(0, fWrite))
            with bmcfru.Controller(pathRoot) as controller:  # who comes next
                self.assertTrue(all(controller.verify()), pathRoot)  # the cached image, too
                aucThere = controller.device(NAME).read()
                self.assertIn(aucThere, (aucOld, aucNew), pathRoot)
                uiInterrupted += bInterrupted
                uiNew += bInterrupted and aucThere == aucNew
                controller.device(NAME).label(LABEL).set(strNew)
        return uiInterrupted, uiNew

    def Changed(self, aucImage, change):
        """The image that a dry run promises."""
        aucNew = bytearray(aucImage)
        for run in change.bytes:
            aucBytes = bytes.fromhex(run.new)
            aucNew[run.offset:run.offset + len(aucBytes)] = aucBytes
        return bytes(aucNew)

    def KilledWrite(self, pathRoot, strValue, fAfter):
        """Whether the call was cut short."""
        with bmcfru.Controller(pathRoot) as controller:
            timer = threading.Timer(fAfter, os.kill, (controller.workerPid, signal.SIGKILL))
            timer.start()
            try:
                controller.device(NAME).label(LABEL).set(strValue)
                return False
            except bmcfru.Error as error:
                self.assertIn("signal 9", str(error))
                return True
            finally:
                timer.cancel()
                timer.join()


if __name__ == "__main__":
    unittest.main()
