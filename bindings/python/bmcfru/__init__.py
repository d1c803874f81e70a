# SPDX-License-Identifier: Apache-2.0
"""FRU inventory of a server: images decoded, made and checked; devices of a controller read, labelled and restored.

Everything is done by the libraries that fructl is made of, and every name is that of 'fructl --json'. docs/python.md is
a tour.

>>> import bmcfru
>>> bmcfru.verify(IMAGE).sound
True
"""
from ._controller import Controller, Device, Label
from ._data import (Board, ByteChange, Chassis, Check, Device as DeviceNames, DeviceState, Diagnostic, FieldChange,
                    Finding, ImageChange, InternalUse, LabelChange, LabelStep, LabelValue, Layout, LenientArea,
                    LenientField, LenientRecord, Part, PastImage, Product, Record, Recovery, ShownRecord, Span, Undone)
from ._errors import ERRORS as _ERRORS
from ._errors import (BusyError, DamagedError, DiskFullError, Error, HalfWrittenError, NoAnswerError, NotFoundError,
                      NotPermittedError, RefusedError, UsageError)
from ._images import decode, encode, layout, lenient, verify

# Tracebacks name what users import.
for _kind in _ERRORS.values():
    _kind.__module__ = __name__

__version__ = "1.0.0"
__all__ = [
    "Board", "BusyError", "ByteChange", "Chassis", "Check", "Controller", "DamagedError", "Device", "DeviceNames",
    "DeviceState", "Diagnostic", "DiskFullError", "Error", "FieldChange", "Finding", "HalfWrittenError", "ImageChange",
    "InternalUse", "Label", "LabelChange", "LabelStep", "LabelValue", "Layout", "LenientArea", "LenientField",
    "LenientRecord", "NoAnswerError", "NotFoundError", "NotPermittedError", "Part", "PastImage", "Product", "Record",
    "Recovery", "RefusedError", "ShownRecord", "Span", "Undone", "UsageError", "decode", "encode", "layout", "lenient",
    "verify",
]
