# SPDX-License-Identifier: Apache-2.0
"""libbmcfrutool.so.1, called through ctypes."""
import ctypes
import json
import os
import pathlib
import threading
from typing import Any, Dict, List, NamedTuple, Optional, Tuple

from . import _data
from ._errors import ERRORS, Error

_LIBRARY = "libbmcfrutool.so.1"


def _load() -> ctypes.CDLL:
    """The one that $BMCFRU_LIBRARY_DIR names, the one that came in the same wheel, or the system's."""
    listPlaces: List[str] = []
    strNamed = os.environ.get("BMCFRU_LIBRARY_DIR", "")
    if strNamed:
        listPlaces.append(str(pathlib.Path(strNamed) / _LIBRARY))
    else:
        pathBundled = pathlib.Path(__file__).resolve().parent / "lib" / _LIBRARY
        if pathBundled.is_file():
            listPlaces.append(str(pathBundled))
        listPlaces.append(_LIBRARY)
    for strPlace in listPlaces:
        try:
            return ctypes.CDLL(strPlace)
        except OSError as error:
            strWhy = str(error)
    raise ImportError(f"bmcfru needs {_LIBRARY} (Debian: libbmcfrutool1): {strWhy}")


_lib = _load()
_ANSWER = ctypes.c_void_p
for _strName, _result, _listArguments in (
        ("ExitCode", ctypes.c_int, [_ANSWER]),
        ("Json", ctypes.c_char_p, [_ANSWER]),
        ("Messages", ctypes.c_char_p, [_ANSWER]),
        ("Bytes", ctypes.c_void_p, [_ANSWER, ctypes.POINTER(ctypes.c_size_t)]),
        ("FreeAnswer", None, [_ANSWER]),
        ("Decode", _ANSWER, [ctypes.c_char_p, ctypes.c_size_t]),
        ("Encode", _ANSWER, [ctypes.c_char_p, ctypes.c_size_t, ctypes.c_uint]),
        ("VerifyImage", _ANSWER, [ctypes.c_char_p, ctypes.c_size_t]),
        ("DecodeLeniently", _ANSWER, [ctypes.c_char_p, ctypes.c_size_t]),
        ("MapImage", _ANSWER, [ctypes.c_char_p, ctypes.c_size_t]),
        ("Open", ctypes.c_void_p, [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_uint, ctypes.c_uint,
                                   ctypes.POINTER(_ANSWER)]),
        ("Close", None, [ctypes.c_void_p]),
        ("WorkerPid", ctypes.c_int, [ctypes.c_void_p]),
        ("Call", _ANSWER, [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_size_t]),
):
    _call = getattr(_lib, "BMCFRU_TOOL_" + _strName)
    _call.restype, _call.argtypes = _result, _listArguments

# Short and often: it keeps the interpreter's lock; its arguments are what C takes them for, so none needs converting.
decodeTexts = ctypes.PyDLL(_lib._name).BMCFRU_TOOL_DecodeTexts


class _Texts(threading.local):
    """Where each thread has its answer put, and the same as arguments: the texts of the longest areas fit in."""

    def __init__(self) -> None:
        buffer = ctypes.create_string_buffer(1 << 16)
        self.place = buffer, ctypes.c_void_p(ctypes.addressof(buffer))


texts = _Texts()
TEXTS_ROOM = ctypes.c_uint(1 << 16)


Decode, Encode = _lib.BMCFRU_TOOL_Decode, _lib.BMCFRU_TOOL_Encode
VerifyImage, DecodeLeniently, MapImage = _lib.BMCFRU_TOOL_VerifyImage, _lib.BMCFRU_TOOL_DecodeLeniently, _lib.BMCFRU_TOOL_MapImage
Close, WorkerPid = _lib.BMCFRU_TOOL_Close, _lib.BMCFRU_TOOL_WorkerPid
_ExitCode, _Json, _Bytes = _lib.BMCFRU_TOOL_ExitCode, _lib.BMCFRU_TOOL_Json, _lib.BMCFRU_TOOL_Bytes
_Messages, _FreeAnswer = _lib.BMCFRU_TOOL_Messages, _lib.BMCFRU_TOOL_FreeAnswer


class Answer(NamedTuple):
    """What a call answers."""

    document: Dict[str, Any]
    bytes: bytes
    warnings: List[str]


def _fail(iCode: int, dictDocument: Dict[str, Any], dictMessages: Dict[str, Any]) -> Error:
    kind = ERRORS.get(iCode, Error)
    return kind(dictDocument.get("error", {}).get("message", "failed"), dictDocument, dictMessages["warnings"],
                [_data.makeDiagnostic(dictOne) for dictOne in dictMessages["diagnostics"]])


def take(answer: Optional[int]) -> Answer:
    """What an answer says; raises what it tells of. Frees it."""
    if not answer:
        raise MemoryError("no memory")
    try:
        iCode = _ExitCode(answer)
        dictDocument = json.loads(_Json(answer))
        if iCode != 0:
            raise _fail(iCode, dictDocument, json.loads(_Messages(answer)))
        uiSize = ctypes.c_size_t()
        pBytes = _Bytes(answer, ctypes.byref(uiSize))
        return Answer(dictDocument, ctypes.string_at(pBytes, uiSize.value) if pBytes else b"",
                      json.loads(_Messages(answer))["warnings"])
    finally:
        _FreeAnswer(answer)


def document(answer: Optional[int]) -> Any:
    """The document alone, of a call that has nothing else: it is called often."""
    if answer and _ExitCode(answer) == 0:
        strJson = _Json(answer)
        _FreeAnswer(answer)
        return json.loads(strJson)
    return take(answer).document


def Open(strRoot: Optional[str], strWho: str, uiWaitMs: int, uiFlags: int) -> int:
    """A handle of a controller."""
    why = _ANSWER()
    handle: Optional[int] = _lib.BMCFRU_TOOL_Open(os.fsencode(strRoot) if strRoot else None, strWho.encode(), uiWaitMs,
                                                  uiFlags, ctypes.byref(why))
    take(why.value)
    if not handle:
        raise MemoryError("no memory")
    return handle


def Call(handle: int, strCall: str, dictArguments: Dict[str, Any], aucBytes: bytes = b"") -> Answer:
    """One call of a controller. Others run meanwhile."""
    strArguments = json.dumps({strName: value for strName, value in dictArguments.items() if value is not None})
    return take(_lib.BMCFRU_TOOL_Call(handle, strCall.encode(), strArguments.encode(), aucBytes, len(aucBytes)))


__all__: Tuple[str, ...] = ("Answer", "Call", "Close", "Decode", "DecodeLeniently", "Encode", "MapImage", "Open",
                            "VerifyImage", "TEXTS_ROOM", "WorkerPid", "decodeTexts", "document", "take", "texts")
