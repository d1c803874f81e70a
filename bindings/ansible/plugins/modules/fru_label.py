#!/usr/bin/python
# SPDX-License-Identifier: Apache-2.0
"""The module fru_label."""

DOCUMENTATION = r"""
module: fru_label
short_description: Labels that devices shall hold
version_added: "1.0.0"
description:
  - Sees to it that labels (named fields of FRU images, such as C(Product Serial Number)) have the values that are told, and writes only
    where they have not.
  - Everything is checked, on all devices, before the first is written. All labels of a device are written in one transaction, or none.
  - A device that fails keeps none of the others from being written.
options:
  labels:
    description:
      - For each device (a name, or C(TYPE:INSTANCE)) the labels that it shall hold and their values.
      - Values are texts. Numbers are refused, for YAML reads C(0012) and C(2.0) as something else; put them in quotes.
      - A label whose value is null is left alone.
    type: dict
  rows:
    description:
      - The same as a list, as the lookup C(bmcfru.fru.label_table) reads it from a table.
      - Several rows may name one device; they are one transaction. Two that set the same label of it are refused.
    type: list
    elements: dict
    suboptions:
      device:
        description: A device's name, or C(TYPE:INSTANCE).
        type: str
        required: true
      labels:
        description: The labels that it shall hold and their values.
        type: dict
        required: true
      root:
        description: The controller's directory; I(root) of the module where it is missing.
        type: path
      where:
        description: Where the row is from (C(labels.csv:3)), for messages.
        type: str
  force:
    description: Takes placeholders (C(0000000000)) too, and losses beside the label.
    type: bool
    default: false
extends_documentation_fragment:
  - bmcfru.fru.controller
  - bmcfru.fru.controller.root
"""

EXAMPLES = r"""
- name: The product's serial number, and where the server stands
  bmcfru.fru.fru_label:
    root: /srv/controllers/c001
    labels:
      baseboard:
        Product Serial Number: LH22024170043
        Product Asset Tag: RACK7-UNIT12

- name: What a table says of this controller
  bmcfru.fru.fru_label:
    root: "{{ fru_root }}"
    rows: "{{ query('bmcfru.fru.label_table', 'labels.csv', root=fru_root) }}"

- name: The package of a checkout
  bmcfru.fru.fru_label:
    labels:
      psu1:
        Product Asset Tag: SPARE
  environment:
    PYTHONPATH: /srv/libbmcfru/bindings/python
"""

RETURN = r"""
devices:
  description: What was looked at, in the order of the request.
  returned: always, of a failure those that were done
  type: list
  elements: dict
  contains:
    root:
      description: The controller's directory.
      type: str
      returned: always
    device:
      description: The device, with C(id), C(name), C(componentType) and C(instance).
      type: dict
      returned: always
    changed:
      description: Something was written, or would be in check mode.
      type: bool
      returned: always
    labels:
      description: Each label with its C(name), C(old) and C(new) value, and what the operation log says.
      type: list
      elements: dict
      returned: always
      sample: [{"name": "Product Asset Tag", "old": "RACK7-UNIT12", "new": "RACK7-UNIT13"}]
    bytes:
      description: Bytes of the image that change, with C(offset), C(old) and C(new).
      type: list
      elements: dict
      returned: always
    notes:
      description: What else is worth knowing.
      type: list
      elements: str
      returned: always
    losses:
      description: What the image loses beside; only with I(force).
      type: list
      elements: str
      returned: always
error:
  description:
    - The first failure, as C(fructl --json) tells it - C(code) (a word), C(exitCode), C(message), C(root), C(device), C(accepted) where it
      is known what would be, C(status) where the library gave one, and its C(diagnostics).
  returned: failure
  type: dict
  sample: {"code": "refused", "exitCode": 3, "device": "psu1", "message": "...", "accepted": ["..."], "diagnostics": []}
errors:
  description: All of them.
  returned: failure
  type: list
  elements: dict
"""

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.bmcfru.fru.plugins.module_utils.controller import (
    ROOT, WAIT, ByteLines, Controller, Diff, ErrorOf, Fail, PackageError, Refusal, RequirePackage, RootOf)

ARGUMENTS = {
    "labels": {"type": "dict"},
    "rows": {"type": "list", "elements": "dict", "options": {
        "device": {"type": "str", "required": True},
        "labels": {"type": "dict", "required": True},
        "root": {"type": "path"},
        "where": {"type": "str"}}},
    "root": ROOT,
    "wait": WAIT,
    "force": {"type": "bool", "default": False},
}


def Requests(dictParameters):
    """{(root, device): {label: value}} in the order of the request, and what is refused of it."""
    listRows = dictParameters["rows"]
    if listRows is None:
        listRows = [{"device": strDevice, "labels": dictLabels} for strDevice, dictLabels in dictParameters["labels"].items()]
    dictRequests, listErrors = {}, []
    for dictRow in listRows:
        strRoot, strDevice = RootOf(dictRow.get("root") or dictParameters["root"]), dictRow["device"]
        strWhere = f"{dictRow['where']}: " if dictRow.get("where") else ""
        if not isinstance(dictRow["labels"], dict):
            listErrors.append(Refusal(strRoot, strDevice, f"{strWhere}the labels of '{strDevice}' are no mapping of names to values",
                                      ["names of labels with their values"]))
            continue
        dictLabels = dictRequests.setdefault((strRoot, strDevice), {})
        for strLabel, value in dictRow["labels"].items():
            if value is None:
                continue
            if not isinstance(value, str):
                listErrors.append(Refusal(strRoot, strDevice, f"{strWhere}the value of '{strLabel}' of '{strDevice}' is {value!r}, which is no "
                                          "text; accepted: a text in quotes", ["a text in quotes"]))
            elif strLabel in dictLabels:
                listErrors.append(Refusal(strRoot, strDevice, f"{strWhere}'{strLabel}' of '{strDevice}' is set by another row too; accepted: "
                                          "each label of a device once", ["each label of a device once"]))
            else:
                dictLabels[strLabel] = value
    return {tupleKey: dictLabels for tupleKey, dictLabels in dictRequests.items() if dictLabels}, listErrors


def Result(strRoot, dictSet):
    """What the module tells of one device."""
    bChanged = any(not dictLabel.get("unchanged") for dictLabel in dictSet["labels"])
    return {"root": strRoot, "device": dictSet["device"], "changed": bChanged, "labels": dictSet["labels"], "bytes": dictSet["bytes"],
            "notes": dictSet["notes"], "losses": dictSet["losses"]}


def LabelDiff(dictResult):
    """Old and new fields, and the bytes."""
    aasSides = []
    for strWhich in ("old", "new"):
        asLines = [f"{dictLabel['name']}: {dictLabel[strWhich]}" for dictLabel in dictResult["labels"]
                   if not dictLabel.get("unchanged") and dictLabel[strWhich] is not None]
        aasSides.append(asLines + ByteLines(dictResult["bytes"], strWhich))
    return Diff(f"{dictResult['root']}: {dictResult['device']['name']}", *aasSides)


def EachDevice(stModule, dictRequests, dictControllers, bDryRun):
    """The results of all that can be done, and the failures of the rest."""
    dictResults, listErrors = {}, []
    for (strRoot, strDevice), dictLabels in dictRequests.items():
        try:
            if strRoot not in dictControllers:
                dictControllers[strRoot] = Controller(stModule, strRoot)
            dictSet = dictControllers[strRoot].SetLabels(strDevice, dictLabels, bDryRun, stModule.params["force"])
            dictResults[strRoot, strDevice] = Result(strRoot, dictSet)
        except PackageError as stError:
            if "labels" in stError.document:  # the device holds them, and something beside it failed
                dictResults[strRoot, strDevice] = Result(strRoot, stError.document)
            listErrors.append(ErrorOf(stModule, stError, strRoot, strDevice))
    return dictResults, listErrors


def TwiceNamed(dictResults):
    """Devices that the request names in two ways, psu1 and 3:0: that would be two writes."""
    dictNames, listErrors = {}, []
    for (strRoot, strDevice), dictResult in dictResults.items():
        strOther = dictNames.setdefault((strRoot, dictResult["device"]["id"]), strDevice)
        if strOther != strDevice:
            listErrors.append(Refusal(strRoot, strDevice, f"'{strDevice}' and '{strOther}' are one device; accepted: one name for a device",
                                      ["one name for a device"]))
    return listErrors


def main():
    stModule = AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True, mutually_exclusive=[("labels", "rows")],
                             required_one_of=[("labels", "rows")])
    RequirePackage(stModule)
    dictRequests, listErrors = Requests(stModule.params)
    dictControllers = {}
    dictResults, listMore = EachDevice(stModule, dictRequests, dictControllers, True)
    listErrors += listMore + TwiceNamed(dictResults)
    if listErrors:
        Fail(stModule, listErrors, devices=[])
    if not stModule.check_mode:
        dictWanted = {tupleKey: dictRequests[tupleKey] for tupleKey, dictResult in dictResults.items() if dictResult["changed"]}
        dictWritten, listErrors = EachDevice(stModule, dictWanted, dictControllers, False)
        dictResults = {tupleKey: dictWritten.get(tupleKey, dictResult) for tupleKey, dictResult in dictResults.items()
                       if tupleKey in dictWritten or tupleKey not in dictWanted}
    listResults = list(dictResults.values())
    dictAnswer = {"changed": any(dictResult["changed"] for dictResult in listResults), "devices": listResults,
                  "diff": [LabelDiff(dictResult) for dictResult in listResults if dictResult["changed"]]}
    if listErrors:
        Fail(stModule, listErrors, **dictAnswer)
    stModule.exit_json(**dictAnswer)


if __name__ == "__main__":
    main()
