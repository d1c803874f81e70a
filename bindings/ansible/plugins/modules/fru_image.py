#!/usr/bin/python
# SPDX-License-Identifier: Apache-2.0
"""The module fru_image."""

DOCUMENTATION = r"""
module: fru_image
short_description: Whole images of devices, read, written and recovered
version_added: "1.0.0"
description:
  - Reads a device's whole image into a file, writes a whole image, or restores a device whose image is damaged or erased.
options:
  state:
    description:
      - C(read) sees to it that the file I(path) holds the image byte for byte, and writes the file only where it does not.
      - C(written) sees to it that EEPROM and cache hold the image of the file I(path), filled up with 0xff.
      - C(recovered) restores a device that is not in order from an image that is, and leaves one alone that is in order.
    type: str
    choices: [read, written, recovered]
    required: true
  device:
    description: The device's name, or C(TYPE:INSTANCE).
    type: str
    required: true
  path:
    description: The file on the managed host; its bytes are the image's. Needed for C(read) and C(written).
    type: path
  source:
    description:
      - What C(recovered) takes - C(stored), C(history), C(cache), or a file on the managed host, by its absolute path.
      - Without it the first that is in order, in that order.
    type: str
  force:
    description: C(written) takes an image that is not in order.
    type: bool
    default: false
extends_documentation_fragment:
  - bmcfru.fru.controller
  - bmcfru.fru.controller.root
"""

EXAMPLES = r"""
- name: Keep what the power supply holds
  bmcfru.fru.fru_image:
    root: /srv/controllers/c001
    state: read
    device: psu1
    path: /srv/saved/psu1.bin

- name: Put it back
  bmcfru.fru.fru_image:
    root: /srv/controllers/c001
    state: written
    device: psu1
    path: /srv/saved/psu1.bin

- name: Restore the baseboard where it is damaged
  bmcfru.fru.fru_image:
    root: /srv/controllers/c001
    state: recovered
    device: baseboard
"""

RETURN = r"""
root:
  description: The controller's directory.
  returned: always
  type: str
device:
  description: The device, with C(id), C(name), C(componentType) and C(instance); of C(read) as it was named.
  returned: success
  type: raw
file:
  description: The file that holds the image.
  returned: when state is read
  type: str
size:
  description: Bytes that C(read) has read.
  returned: when state is read
  type: int
fields:
  description: Fields that change, with C(area), C(field), C(old) and C(new).
  returned: when an image is written, or would be
  type: list
  elements: dict
  sample: [{"area": "board", "field": "serial number", "old": "PS8024100312", "new": "PS8024100311"}]
bytes:
  description: Bytes that change, with C(offset), C(old) and C(new).
  returned: when an image is written, or would be
  type: list
  elements: dict
outcome:
  description: What C(recovered) found, or did.
  returned: when state is recovered
  type: str
text:
  description: The same in words.
  returned: when state is recovered
  type: str
from:
  description: What it was restored from.
  returned: when a device is restored, or would be
  type: str
error:
  description:
    - The failure, as C(fructl --json) tells it - C(code) (a word), C(exitCode), C(message), C(root), C(device), C(accepted) where it is known
      what would be, C(status) where the library gave one, and its C(diagnostics).
  returned: failure
  type: dict
errors:
  description: A list of that one.
  returned: failure
  type: list
  elements: dict
"""

import os
import tempfile

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.bmcfru.fru.plugins.module_utils.controller import (
    ROOT, WAIT, Controller, Diff, ErrorOf, Fail, PackageError, PlanDiff, RequirePackage, RootOf)

ARGUMENTS = {
    "state": {"type": "str", "choices": ["read", "written", "recovered"], "required": True},
    "device": {"type": "str", "required": True},
    "path": {"type": "path"},
    "source": {"type": "str"},
    "force": {"type": "bool", "default": False},
    "root": ROOT,
    "wait": WAIT,
}
LINE_BYTES = 16
FILE_ERRORS = {FileNotFoundError: ("not-found", 4), PermissionError: ("not-permitted", 8)}


def Dump(abImage):
    """An image for the diff."""
    return [f"{iAt:#06x}: {abImage[iAt:iAt + LINE_BYTES].hex(' ')}" for iAt in range(0, len(abImage), LINE_BYTES)]


def FileBytes(strPath):
    with open(strPath, "rb") as stFile:
        return stFile.read()


def Keep(stModule, strPath, abImage):
    """Puts the image into the file, whole or not at all."""
    iFile, strTemporary = tempfile.mkstemp(dir=stModule.tmpdir)
    with os.fdopen(iFile, "wb") as stFile:
        stFile.write(abImage)
    stModule.atomic_move(strTemporary, strPath)


def Read(stModule, stController):
    strPath = stModule.params["path"]
    abImage = stController.Read(stModule.params["device"])
    if not os.path.isdir(os.path.dirname(os.path.abspath(strPath))):
        raise FileNotFoundError(f"there is no folder for {strPath}")
    abBefore = FileBytes(strPath) if os.path.exists(strPath) else None
    bChanged = abBefore != abImage
    if bChanged and not stModule.check_mode:
        Keep(stModule, strPath, abImage)
    dictAnswer = {"changed": bChanged, "device": stModule.params["device"], "file": strPath, "size": len(abImage)}
    if bChanged:
        dictAnswer["diff"] = [Diff(strPath, Dump(abBefore or b""), Dump(abImage))]
    return dictAnswer


def Planned(stController, dictPlan):
    """The answer of a write of a whole image."""
    bChanged = not dictPlan.get("unchanged", True)
    dictAnswer = {**dictPlan, "changed": bChanged}
    if bChanged:
        dictAnswer["diff"] = [PlanDiff(f"{stController.strRoot}: {dictPlan['device']['name']}", dictPlan)]
    return dictAnswer


def Write(stModule, stController):
    dictPlan = stController.Write(stModule.params["device"], FileBytes(stModule.params["path"]), stModule.check_mode, stModule.params["force"])
    return Planned(stController, dictPlan)


def Recover(stModule, stController):
    return Planned(stController, stController.Recover(stModule.params["device"], stModule.params["source"], stModule.check_mode))


STATES = {"read": Read, "written": Write, "recovered": Recover}


def main():
    stModule = AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True,
                             required_if=[("state", "read", ["path"]), ("state", "written", ["path"])])
    RequirePackage(stModule)
    strRoot, strDevice = RootOf(stModule.params["root"]), stModule.params["device"]
    try:
        dictAnswer = STATES[stModule.params["state"]](stModule, Controller(stModule, strRoot))
    except PackageError as stError:
        Fail(stModule, [ErrorOf(stModule, stError, strRoot, strDevice)], root=strRoot)
    except OSError as stError:
        strCode, iExitCode = next((tupleCode for kind, tupleCode in FILE_ERRORS.items() if isinstance(stError, kind)), ("failed", 1))
        dictError = {"root": strRoot, "device": strDevice, "code": strCode, "exitCode": iExitCode, "message": str(stError), "diagnostics": []}
        Fail(stModule, [dictError], root=strRoot)
    stModule.exit_json(root=strRoot, **dictAnswer)


if __name__ == "__main__":
    main()
