#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Decodes one image with this library and with an independent decoder, in turn, and prints how they compare.

The image is the example's baseboard. The other decoder is Debian's python3-pyipmi; what it costs is mostly Python, and
ctypes is most of ours, so the ratio tells an order of magnitude, no more.

usage: bench/compare.py [BUILD]      BUILD: build/native unless told otherwise
"""
import ctypes
import pathlib
import statistics
import sys
import time

from pyipmi.fru import get_fru_inventory_from_file

SOURCE = pathlib.Path(__file__).resolve().parent.parent
ROUNDS, DECODES = 7, 200


def image():
    abImage = b""
    for strLine in (SOURCE / "examples/baseboard.hex").read_text().splitlines():
        abImage += bytes.fromhex(strLine.split("#")[0].rpartition(":")[2])
    return abImage


def timed(fnDecode):
    fStart = time.perf_counter()
    for _ in range(DECODES):
        fnDecode()
    return (time.perf_counter() - fStart) / DECODES


def main():
    pathBuild = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else SOURCE / "build/native").resolve()
    library = ctypes.CDLL(str(pathBuild / "libbmcfru.so"))
    abImage = image()
    abEeprom = abImage + bytes([0xFF] * 8)
    pathImage = pathBuild / "compare-image.bin"
    pathImage.write_bytes(abImage)

    def ours():
        record = ctypes.create_string_buffer(2048)  # more than the record's size on any target
        if library.FRU_ANALYZER_InterpretFRUData(abEeprom, len(abEeprom), record) != 0:
            sys.exit("compare: the image does not decode")
        library.FRU_ANALYZER_SafeFree(record)

    aOurs, aTheirs = [], []
    for _ in range(ROUNDS):
        aOurs.append(timed(ours))
        aTheirs.append(timed(lambda: get_fru_inventory_from_file(str(pathImage))))
    pathImage.unlink()
    fOurs, fTheirs = statistics.median(aOurs), statistics.median(aTheirs)
    print(f"libbmcfru {fOurs * 1e6:8.1f} us   python3-pyipmi {fTheirs * 1e6:8.1f} us   ratio {fTheirs / fOurs:.1f}")


main()
