#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Seeds for the fuzzers, made of the images with known faults: make_seeds.py DIRECTORY writes one folder for each fuzzer."""
import json
import pathlib
import random
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/vectors"))
import make_vectors  # noqa: E402


def Seeds():
    """fuzzer -> list of inputs, each as the fuzzer takes it apart."""
    listImages = [abImage for abImage, _ in make_vectors.All().values() if len(abImage) <= 600]
    stRandom = random.Random(16)
    listLabels = [bytes([2, 0, i, 5]) + b"AB-12" + b"\x07" + stRandom.choice(listImages) for i in range(34)]
    listUpdates = [bytes([9]) + len(abImage).to_bytes(2, "little") + abImage + bytes([i % 7 + 1, 4]) + b"name" for i, abImage in enumerate(listImages)]
    listIpmi = [b"\x00\x01\x00" + b"\x02\x00" + b"\x00\x00\x10\x00\x04abcd" + b"\x01\x00\x10\x00\x04", b"\x40\x00\x01" + b"\x01\x00\x00\x00\x08" * 3]
    return {
        "decode": [b"\x04" + abImage for abImage in listImages], "layout": [b"\x00" + abImage for abImage in listImages],
        "label": listLabels, "multirecord": listUpdates, "ipmi": listIpmi,
        "module": [b"\x00\x01\x00" + b"\x01\x20\x04\x00\x00\x00\x10" + b"\x82\x40\x00" + b"\x83\x40\x06\x00\x00\x00\x00\x00\xff"],
        "encode": [b"\x00\x0f" + bytes([iWhich]) + bytes(range(0x20, 0x7F)) * 3 for iWhich in (1, 2, 4, 8, 15, 0x1F, 0x3F)],
        "block": [b"\x01" + bytes(range(32)), b"\x00\x00\x01" + b"\x05AB-12" * 11],
        "json": [pathFile.read_bytes() for pathFile in sorted((ROOT / "examples").glob("*.hex"))] + [
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
