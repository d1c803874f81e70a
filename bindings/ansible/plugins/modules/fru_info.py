#!/usr/bin/python
# SPDX-License-Identifier: Apache-2.0
"""The module fru_info."""

DOCUMENTATION = r"""
module: fru_info
short_description: The inventory of controllers
version_added: "1.0.0"
description:
  - Tells the devices of one controller or several, what their images say, and whether those are in order.
  - The same is there as the fact C(bmcfru_controllers).
  - A damaged image is no failure of the module; C(healthy) tells. A controller that is not there is one.
options:
  roots:
    description:
      - Directories of controllers on the managed host.
      - Else the environment variable C(FRUCTL_ROOT) of the managed host, else C(~/.local/state/fructl).
    type: list
    elements: path
    aliases: [root]
  devices:
    description: The devices to look at, by name or as C(TYPE:INSTANCE); without it, all.
    type: list
    elements: str
  records:
    description: Tells what the images say, too.
    type: bool
    default: true
extends_documentation_fragment:
  - bmcfru.fru.controller
"""

EXAMPLES = r"""
- name: What is in these two
  bmcfru.fru.fru_info:
    roots:
      - /srv/controllers/c001
      - /srv/controllers/c002

- name: The serial number of the first one's baseboard
  ansible.builtin.debug:
    msg: "{{ bmcfru_controllers[0].devices[0].record.product.serialNumber }}"

- name: Every image is in order
  bmcfru.fru.fru_info:
    root: "{{ fru_root }}"
    records: false
  register: checked
  failed_when: checked is failed or not checked.healthy
"""

RETURN = r"""
controllers:
  description: What was found, controller by controller; also the fact C(bmcfru_controllers).
  returned: always
  type: list
  elements: dict
  contains:
    root:
      description: The controller's directory.
      type: str
      returned: always
    healthy:
      description: Every image that was looked at is in order.
      type: bool
      returned: always
    error:
      description: Why it cannot be looked at, as in C(errors).
      type: dict
      returned: of a controller that cannot be
    devices:
      description: As C(fructl list --json) has them (C(id), C(name), C(image), C(cache) and more), and these two.
      type: list
      elements: dict
      returned: always
      contains:
        health:
          description:
            - As C(fructl verify --json) has it - C(sound), C(problems) and C(warnings), for each image of the device.
          type: list
          elements: dict
          returned: always
        record:
          description: What the image says, as C(fructl show --json) has it; null where it cannot be decoded.
          type: dict
          returned: with records
          sample: {"product": {"manufacturer": "Lindenhain Systems", "serialNumber": "LH22024170042"}}
        why:
          description: Why it cannot.
          type: str
          returned: where it cannot be decoded
healthy:
  description: Every image of every controller is in order.
  returned: always
  type: bool
error:
  description:
    - The first failure, as C(fructl --json) tells it - C(code) (a word), C(exitCode), C(message), C(root), C(accepted) where it is known what
      would be, C(status) where the library gave one, and its C(diagnostics).
  returned: failure
  type: dict
errors:
  description: All of them.
  returned: failure
  type: list
  elements: dict
"""

from ansible.module_utils.basic import AnsibleModule, env_fallback
from ansible_collections.bmcfru.fru.plugins.module_utils.controller import (
    WAIT, Controller, ErrorOf, Fail, PackageError, RequirePackage, RootOf)

ARGUMENTS = {
    "roots": {"type": "list", "elements": "path", "aliases": ["root"], "fallback": (env_fallback, ["FRUCTL_ROOT"])},
    "devices": {"type": "list", "elements": "str"},
    "records": {"type": "bool", "default": True},
    "wait": WAIT,
}
WHERE = ("device", "source", "sourcesDiffer")  # of a shown image; the rest is its record


def Wanted(stController, listNames):
    """The devices that were asked for."""
    listDevices = stController.Devices()
    if listNames is None:
        return listDevices
    dictById = {dictDevice["id"]: dictDevice for dictDevice in listDevices}
    return [dictById[stController.Id(strName)] for strName in listNames]


def Record(stController, dictDevice):
    try:
        dictShown = stController.Show(dictDevice["name"])
        return {"record": {strKey: value for strKey, value in dictShown.items() if strKey not in WHERE}}
    except PackageError as stError:
        return {"record": None, "why": stError.message}


def Look(stController, dictParameters):
    """One controller's part of the answer."""
    listImages = stController.Verify()
    listDevices = []
    for dictDevice in Wanted(stController, dictParameters["devices"]):
        listHealth = [{strKey: value for strKey, value in dictImage.items() if strKey != "device"} for dictImage in listImages
                      if dictImage["device"]["id"] == dictDevice["id"]]
        dictDevice = {**dictDevice, "health": listHealth}
        if dictParameters["records"]:
            dictDevice.update(Record(stController, dictDevice))
        listDevices.append(dictDevice)
    bHealthy = all(dictImage["sound"] for dictDevice in listDevices for dictImage in dictDevice["health"])
    return {"root": stController.strRoot, "healthy": bHealthy, "devices": listDevices}


def main():
    stModule = AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True)
    RequirePackage(stModule)
    listControllers, listErrors = [], []
    for strRoot in stModule.params["roots"] or [None]:
        strRoot = RootOf(strRoot)
        try:
            listControllers.append(Look(Controller(stModule, strRoot), stModule.params))
        except PackageError as stError:
            listErrors.append(ErrorOf(stModule, stError, strRoot))
            listControllers.append({"root": strRoot, "healthy": False, "error": listErrors[-1], "devices": []})
    dictAnswer = {"controllers": listControllers, "healthy": all(dictController["healthy"] for dictController in listControllers)}
    if listErrors:
        Fail(stModule, listErrors, **dictAnswer)
    stModule.exit_json(changed=False, ansible_facts={"bmcfru_controllers": listControllers}, **dictAnswer)


if __name__ == "__main__":
    main()
