# SPDX-License-Identifier: Apache-2.0
"""Images in memory: no controller is needed or touched."""
import json
from typing import Any, Dict, Union

from . import _library, _record
from ._library import TEXTS_ROOM, decodeTexts, texts
from ._data import Check, Layout, LenientRecord, Record, makeCheck, makeLayout, makeLenientRecord, makeRecord
from ._record import recordJson

_newRecord = object.__new__
_Bytes = Union[bytes, bytearray, memoryview]


def decode(image: _Bytes) -> Record:
    """The record that an image holds. DamagedError when the library refuses it, RefusedError for a hardware block.

    >>> record = decode(IMAGE)
    >>> record.product.serialNumber
    'PS8024100311'
    >>> record.chassis is None
    True
    """
    aucImage = image if type(image) is bytes else bytes(image)
    buffer, place = texts.place
    iSize = decodeTexts(aucImage, len(aucImage), place, TEXTS_ROOM)
    if 0 < iSize <= 65536:
        record: Record = _newRecord(Record)
        record._decoded = buffer[:iSize], aucImage  # type: ignore[attr-defined]
        return record
    record = makeRecord(_document(aucImage))  # which tells what is wrong
    return record


def _document(aucImage: bytes) -> Dict[str, Any]:
    dictDocument: Dict[str, Any] = _library.document(_library.Decode(aucImage, len(aucImage)))
    return dictDocument


def _multiRecords(aucImage: bytes) -> Dict[str, Any]:
    dictDocument = _document(aucImage)
    return {strName: dictDocument[strName] for strName in ("multiRecords", "multiRecordsDamaged")
            if strName in dictDocument}


_record.fnMultiRecords = _multiRecords


def encode(record: Union[Record, Dict[str, Any]], size: int = 0, wrap: bool = False) -> bytes:
    """The image of a record, filled up with 0xff to size bytes where that is not 0.

    It is decoded again before it is given away. RefusedError names the member that is not accepted, UsageError a size
    that is none. wrap: manufacturing dates beyond the end of their count, too.

    >>> record = decode(IMAGE)
    >>> record.product.assetTag = "RACK7-U12"
    >>> decode(encode(record, size=256)).product.assetTag
    'RACK7-U12'
    """
    dictRecord = recordJson(record) if isinstance(record, Record) else record
    return _library.take(_library.Encode(json.dumps(dictRecord).encode(), size, int(wrap))).bytes


def verify(image: _Bytes) -> Check:
    """Whether every byte of an image is as it should be, and if not, what is wrong where. It is true where it is sound.

    >>> check = verify(IMAGE[:20] + b"?" + IMAGE[21:])
    >>> check.sound, len(check.problems) > 0
    (False, True)
    """
    aucImage = bytes(image)
    check: Check = makeCheck(_library.document(_library.VerifyImage(aucImage, len(aucImage))))
    return check


def lenient(image: _Bytes) -> LenientRecord:
    """What a damaged image still says: each field with its doubts. DamagedError when that is nothing.

    >>> damaged = lenient(IMAGE[:20] + b"?" + IMAGE[21:])
    >>> damaged.doubtful > 0
    True
    """
    aucImage = bytes(image)
    view: LenientRecord = makeLenientRecord(_library.document(_library.DecodeLeniently(aucImage, len(aucImage))))
    return view


def layout(image: _Bytes) -> Layout:
    """The byte map: which byte belongs to which area and field.

    >>> layout(IMAGE).spans[0].area
    'header'
    """
    aucImage = bytes(image)
    spans: Layout = makeLayout(_library.document(_library.MapImage(aucImage, len(aucImage))))
    return spans
