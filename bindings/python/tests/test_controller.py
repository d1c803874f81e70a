# SPDX-License-Identifier: Apache-2.0
"""Controllers and devices: the same answers as fructl's, the same changes, the same refusals."""
import fcntl
import os
import pickle
import signal
import unittest

from support import ControllerTest
import bmcfru


class SameAsFructl(ControllerTest):
    def Compare(self, strCall, asWords, **dictArguments):
        self.assertEqual(self.Open().call(strCall, **dictArguments).document, self.Json(*asWords), strCall)

    def test_what_is_read_is_what_fructl_prints(self):
        self.Compare("list", ["list"])
        self.Compare("verify", ["verify"])
        self.Compare("labelList", ["label", "list"])
        for strDevice in ("baseboard", "psu1", "riser", "0x30:0"):
            self.Compare("show", ["show", strDevice], device=strDevice)
            self.Compare("show", ["show", strDevice, "--source", "cache"], device=strDevice, source="cache")
            self.Compare("lenient", ["show", strDevice, "--lenient"], device=strDevice)
            self.Compare("map", ["map", strDevice], device=strDevice)
            self.Compare("labelList", ["label", "list", strDevice], device=strDevice)
            self.Compare("labelGet", ["label", "get", strDevice, "--all"], device=strDevice)
            self.Compare("verify", ["verify", strDevice], device=strDevice)
            self.Compare("history", ["history", strDevice], device=strDevice)
        self.Compare("show", ["show", "--id", "1"], device=1)

    def test_a_failure_is_what_fructl_prints(self):
        self.Damage("psu1")
        for strCall, asWords, dictArguments in (
                ("show", ["show", "psu1"], {"device": "psu1"}),
                ("show", ["show", "psu9"], {"device": "psu9"}),
                ("labelGet", ["label", "get", "psu2", "Product Serial Numbr"],
                 {"device": "psu2", "names": ["Product Serial Numbr"]}),
                ("labelSet", ["label", "set", "psu2", "Product Serial Number", "x" * 70],
                 {"device": "psu2", "labels": [["Product Serial Number", "x" * 70]]})):
            dictPrinted = self.Json(*asWords)
            with self.assertRaises(bmcfru.Error) as caught:
                self.Open().call(strCall, **dictArguments)
            error = caught.exception
            self.assertEqual((error.message, error.code, error.exitCode, error.accepted, error.status),
                             (dictPrinted["error"]["message"], dictPrinted["error"]["code"],
                              dictPrinted["error"]["exitCode"], dictPrinted["error"].get("accepted", []),
                              dictPrinted["error"].get("status")))

    def test_the_library_s_status_and_messages_come_along(self):
        self.Damage("psu1")
        with self.assertRaises(bmcfru.DamagedError) as caught:
            self.Open().device("psu1").show()
        self.assertEqual(caught.exception.status, 0x29000002)
        self.assertIn("Common header", caught.exception.diagnostics[0].text)
        with self.assertRaises(bmcfru.DamagedError) as caught:
            bmcfru.decode(bytes(64))
        self.assertEqual(caught.exception.status, 0x29000002)


class Labels(ControllerTest):
    def test_a_dry_run_tells_the_change_and_writes_nothing(self):
        label = self.Open().device("psu1").label("Product Asset Tag")
        change = label.set("RACK7", dryRun=True)
        step = change.labels[0]
        self.assertEqual((step.old, step.new, step.unchanged, change.changed, change.dryRun),
                         ("", "RACK7", False, True, True))
        self.assertTrue(change.bytes)
        self.assertEqual(label.get(), "")
        self.assertEqual(self.Json("history", "psu1")["images"], [])

    def test_a_label_is_written_read_back_and_kept_in_the_history(self):
        device = self.Open(who="assembly line 4").device("psu1")
        change = device.label("Product Asset Tag").set("RACK7")
        self.assertEqual((change.changed, change.dryRun), (True, False))
        self.assertIn("RACK7", change.labels[0].operationLog)
        self.assertEqual(self.Json("label", "get", "psu1", "Product Asset Tag")["value"], "RACK7")
        self.assertEqual([image.command for image in device.history()], ['assembly line 4: labelSet "psu1"'])
        self.assertEqual(device.undo().changed, True)
        self.assertEqual(device.label("Product Asset Tag").get(), "")

    def test_a_value_that_is_there_already_is_not_written(self):
        device = self.Open().device("psu1")
        device.label("Product Asset Tag").set("RACK7")
        change = device.label("Product Asset Tag").set("RACK7")
        self.assertEqual((change.changed, change.bytes), (False, []))
        self.assertEqual(len(device.history()), 1)

    def test_several_labels_are_written_in_their_order_all_or_none(self):
        device = self.Open().device("riser")
        with self.assertRaises(bmcfru.RefusedError):
            device.setLabels({"Product Version": "2.0", "Product Asset Tag": "x" * 300})
        self.assertEqual(device.history(), [])
        change = device.setLabels({"Product Version": "2.0", "Product Asset Tag": "RACK7"})
        self.assertEqual([step.name for step in change.labels], ["Product Version", "Product Asset Tag"])

    def test_a_placeholder_is_refused_without_force(self):
        label = self.Open().device("psu1").label("Product Asset Tag")
        with self.assertRaises(bmcfru.RefusedError):
            label.set("To be filled by O.E.M.")
        self.assertTrue(label.set("To be filled by O.E.M.", force=True).changed)


class Images(ControllerTest):
    def test_an_image_is_read_and_written_whole(self):
        controller = self.Open()
        aucImage = controller.device("psu1").read()
        self.assertEqual(len(aucImage), 256)
        change = controller.device("psu2").write(aucImage, dryRun=True)
        self.assertEqual((change.changed, change.dryRun), (True, True))
        self.assertNotEqual(controller.device("psu2").read(), aucImage)
        self.assertIn("successfully", controller.device("psu2").write(aucImage).operationLog)
        self.assertEqual(controller.device("psu2").read(), aucImage)
        self.assertEqual(controller.device("psu2").read(source="cache"), aucImage)

    def test_an_image_that_is_not_in_order_needs_force(self):
        device = self.Open().device("psu1")
        aucImage = bytearray(device.read())
        aucImage[30] ^= 1
        with self.assertRaises(bmcfru.DamagedError):
            device.write(aucImage)
        self.assertFalse(device.write(aucImage, force=True).sound)
        self.assertFalse(device.verify())

    def test_a_damaged_device_is_restored(self):
        self.Damage("psu1", 40)
        controller = self.Open()
        device = controller.device("psu1")
        check = device.verify()
        self.assertFalse(check)
        self.assertTrue(check.problems)
        self.assertEqual([c.device.name for c in controller.verify() if not c][:1], ["psu1"])
        self.assertEqual(device.recover(dryRun=True).outcome, "damaged")
        recovery = device.recover()
        self.assertEqual((recovery.outcome, recovery.source, recovery.changed), ("restored", "cache", True))
        self.assertTrue(device.verify())
        self.assertEqual(device.recover().outcome, "fine")

    def test_a_device_is_restored_from_a_file_whatever_the_folder(self):
        device = self.Open().device("psu1")
        (self.pathTemp / "psu1.bin").write_bytes(device.read())
        self.Damage("psu1", 40)
        strBefore = os.getcwd()
        os.chdir(self.pathTemp)
        self.addCleanup(os.chdir, strBefore)
        self.assertEqual(device.recover("psu1.bin").source, str(self.pathTemp / "psu1.bin"))
        self.assertTrue(device.verify())

    def test_who_names_an_image_is_shown_it_though_the_other_differs(self):
        aucImage = self.Open().device("psu2").read()
        pathChip, uiStart = self.Chip("psu1")
        pathChip.write_bytes(pathChip.read_bytes()[:uiStart] + aucImage)
        device = self.Open().device("psu1")
        with self.assertRaises(bmcfru.DamagedError) as caught:
            device.show()
        self.assertTrue(caught.exception.document["sourcesDiffer"])
        self.assertNotEqual(device.show("eeprom").product, device.show("cache").product)
        self.assertTrue(device.show("cache").sourcesDiffer)


class Workers(ControllerTest):
    def test_a_worker_that_is_killed_is_replaced(self):
        controller = self.Open()
        iPid = controller.workerPid
        self.assertEqual(controller.devices()[1].name, "psu1")
        os.kill(iPid, signal.SIGKILL)
        with self.assertRaisesRegex(bmcfru.Error, "signal 9"):
            controller.devices()
        self.assertEqual(controller.devices()[1].name, "psu1")
        self.assertNotIn(controller.workerPid, (0, iPid))

    def test_the_worker_ends_with_its_controller(self):
        controller = self.Open()
        iPid = controller.workerPid
        controller.close()
        self.assertRaises(ProcessLookupError, os.kill, iPid, 0)
        self.assertRaises(bmcfru.UsageError, controller.devices)
        self.assertEqual(controller.workerPid, 0)

    def test_a_child_process_has_a_worker_of_its_own(self):
        controller = self.Open()
        iParents = controller.workerPid
        iChild = os.fork()
        if iChild == 0:
            try:
                bGood = controller.devices()[0].name == "baseboard" and controller.workerPid != iParents
            finally:
                os._exit(0 if bGood else 1)
        self.assertEqual(os.waitpid(iChild, 0)[1], 0)
        self.assertEqual((controller.devices()[0].name, controller.workerPid), ("baseboard", iParents))

    def test_two_controllers_do_not_mix(self):
        with bmcfru.Controller(self.pathTemp / "none") as other:
            self.assertRaises(bmcfru.NotFoundError, other.devices)
            self.assertEqual(len(self.Open().devices()), 6)
            self.assertRaises(bmcfru.NotFoundError, other.devices)

    def test_who_waits_in_vain_is_told(self):
        self.Open().device("psu1").label("Product Asset Tag").set("RACK7")
        with open(self.pathRoot / "var/lock/fructl.lock", encoding="latin-1") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            with self.assertRaisesRegex(bmcfru.BusyError, "another command is"):
                self.Open(wait=0.05).device("psu1").label("Product Asset Tag").set("RACK8")

    def test_an_error_goes_through_a_pickle(self):
        with self.assertRaises(bmcfru.NotFoundError) as caught:
            self.Open().device("psu9").show()
        error = pickle.loads(pickle.dumps(caught.exception))
        self.assertEqual((type(error), error.message, error.accepted),
                         (bmcfru.NotFoundError, caught.exception.message, caught.exception.accepted))

    def test_calls_and_arguments_that_there_are_not_are_told(self):
        controller = self.Open()
        with self.assertRaisesRegex(bmcfru.UsageError, "did you mean 'verify'"):
            controller.call("verfy")
        with self.assertRaises(bmcfru.RefusedError):
            controller.call("show", device="psu1", sorce="cache")


if __name__ == "__main__":
    unittest.main()
