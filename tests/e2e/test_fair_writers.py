# SPDX-License-Identifier: Apache-2.0
"""Many writers at once: each has its turn, in the order in which they came."""
import subprocess
import unittest

from support import COMMAND, EMULATOR, Environment, FructlTest

WRITERS = 8
ROUNDS = 4 if EMULATOR else 24


class Turns(FructlTest):
    def test_of_eight_writers_none_is_refused(self):
        self.Provision()
        strLoop = ('for i in $(seq "$1"); do '
                   f'{" ".join(COMMAND)} --root "$2" --wait 600 label set psu1 "Product Asset Tag" "$3-$i" >/dev/null || exit 1; done')
        listProcesses = [subprocess.Popen(["sh", "-c", strLoop, "sh", str(ROUNDS), str(self.pathRoot), f"W{i}"], stderr=subprocess.PIPE, text=True,
                                          env=Environment()) for i in range(WRITERS)]
        listErrors = [stProcess.communicate()[1] for stProcess in listProcesses]
        self.assertEqual(listErrors, [""] * WRITERS)
        self.assertEqual([stProcess.returncode for stProcess in listProcesses], [0] * WRITERS)
        self.Good("verify", "psu1")
        # Each write kept the image before it, so that every one of them happened.
        listNumbers = [st["number"] for st in self.Json("history", "psu1")["images"]]
        self.assertEqual(listNumbers[-1], WRITERS * ROUNDS)


if __name__ == "__main__":
    unittest.main()
