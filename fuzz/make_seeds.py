#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Seeds for the fuzzers, made of the images with known faults: make_seeds.py DIRECTORY writes one folder for each fuzzer."""
import itertools
import json
import pathlib
import random
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/vectors"))
import make_vectors  # noqa: E402

TABLES = (
    b"device,Board Serial Number,Product Asset Tag\npsu1,AB-1,\npsu2,AB-2,\"x,\"\"y\"\n", b"device;sku\npsu1;K7\n\0{sku}-{counter:05}",
    b'[{"device": "psu1", "Board Serial Number": "AB-1", "root": "/srv"}]', b'{"device": "psu1", "Product Version": 3}\n{"device": "psu2", "Product Version": null}')


def Descriptions():
    """Parts of the example's, with the one image that the fuzzer has; each with one of the example's other files. Short ones: none is cut."""
    dictExample = json.loads((ROOT / "examples/controller.json").read_text())
    listDevices = [{**stDevice, "image": "i"} for stDevice in dictExample["devices"]]
    listDevices[0]["recoveryImage"] = {"path": "/usr/a.bin", "file": "i"}
    listPlans = [listDevices[:1], listDevices[1:4], listDevices[4:], [{**listDevices[1], "location": {"bus": 3, "address": 0xA0, "backend": "kernel"}}]]
    for listPlan, (strMember, strFile) in itertools.product(listPlans, dictExample["conf"].items()):
        yield json.dumps({"devices": listPlan, "conf": {strMember: "c"}}, separators=(",", ":")).encode() + b"\0" + (ROOT / "examples" / strFile).read_bytes()


def Seeds():
    """fuzzer -> list of inputs, each as the fuzzer takes it apart."""
    listImages = [abImage for abImage, _ in make_vectors.All().values() if len(abImage) <= 600]
    stRandom = random.Random(16)
    listLabels = [bytes([2, 0, i, 5]) + b"AB-12" + b"\x07" + stRandom.choice(listImages) for i in range(34)]
    listUpdates = [bytes([9]) + len(abImage).to_bytes(2, "little") + abImage + bytes([i % 7 + 1, 4]) + b"name" for i, abImage in enumerate(listImages)]
    listValues = [(0x01, b"\x05AB-12"), (0x11, b"\x0501 02"), (0x09, b"\x0512345"), (0x0D, b"\x05AB-12\x02"), (0x81, b""), (0xC1, b"")]
    listEdits = [bytes([iHow, i % 256]) + abValue + abImage for i, (abImage, (iHow, abValue)) in enumerate(zip(listImages * 2, itertools.cycle(listValues)))]
    listIpmi = [b"\x00\x01\x00" + b"\x02\x00" + b"\x00\x00\x10\x00\x04abcd" + b"\x01\x00\x10\x00\x04", b"\x40\x00\x01" + b"\x01\x00\x00\x00\x08" * 3]
    return {
        "decode": [b"\x04" + abImage for abImage in listImages], "layout": [b"\x00" + abImage for abImage in listImages],
        "label": listLabels, "edit": listEdits, "multirecord": listUpdates, "ipmi": listIpmi,
        "module": [b"\x00\x01\x00" + b"\x01\x20\x04\x00\x00\x00\x10" + b"\x82\x40\x00" + b"\x83\x40\x06\x00\x00\x00\x00\x00\xff"],
        "encode": [b"\x00\x0f" + bytes([iWhich]) + bytes(range(0x20, 0x7F)) * 3 for iWhich in (1, 2, 4, 8, 15, 0x1F, 0x3F)],
        "description": list(Descriptions()),
        "block": [b"\x01" + bytes(range(32)), b"\x00\x00\x01" + b"\x05AB-12" * 11],
        "json": [b"T" + abTable for abTable in TABLES] + [pathFile.read_bytes() for pathFile in sorted((ROOT / "examples").glob("*.hex"))] + [
            json.dumps(dictDocument).encode() for dictDocument in (
                {"board": {"manufacturer": "AB", "customFields": ["CD"]}}, {"chassis": {"type": "Blade"}, "product": {"version": "1"}},
                {"internalUse": {"data": "AB"}, "multiRecords": [{"type": 192, "data": "01 02"}]})]}


def Main(strDirectory):
    for strFuzzer, listInputs in Seeds().items():
        pathOut = pathlib.Path(strDirectory) / strFuzzer
        pathOut.mkdir(parents=True, exist_ok=True)
        for i, abInput in enumerate(listInputs):
            (pathOut / f"{i:04d}").write_bytes(abInput)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_seeds.py DIRECTORY")
    Main(sys.argv[1])
