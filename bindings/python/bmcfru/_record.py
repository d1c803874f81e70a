# SPDX-License-Identifier: Apache-2.0
"""A decoded record: its members are made of the library's texts when somebody looks at them."""
import dataclasses
from typing import Any, Callable, Dict, List

from ._data import Board, Chassis, InternalUse, Product, Record

AREAS = ("internalUse", "chassis", "board", "product")
_RECORD = (*AREAS, "multiRecords", "multiRecordsDamaged")

# Decodes an image's MultiRecords, which take longer than all the rest: set by the module that calls the library.
fnMultiRecords: Callable[[bytes], Dict[str, Any]]


def _chassis(dictAreas: Dict[str, Any], listTexts: List[str], listCustom: List[str]) -> None:
    strType, strPart, strSerial = listTexts
    dictAreas["chassis"] = Chassis(strType, strPart, strSerial, listCustom)


def _board(dictAreas: Dict[str, Any], listTexts: List[str], listCustom: List[str]) -> None:
    strLanguage, strCode, strDate, strMinutes, strMaker, strName, strSerial, strPart, strFile = listTexts
    dictAreas["board"] = Board(strLanguage, int(strCode), strDate or None, int(strMinutes), strMaker, strName, strSerial,
                               strPart, strFile, listCustom)


def _product(dictAreas: Dict[str, Any], listTexts: List[str], listCustom: List[str]) -> None:
    strLanguage, strCode, strMaker, strName, strPart, strVersion, strSerial, strAsset, strFile = listTexts
    dictAreas["product"] = Product(strLanguage, int(strCode), strMaker, strName, strPart, strVersion, strSerial, strAsset,
                                   strFile, listCustom)


_MAKE_AREA: Dict[str, Callable[[Dict[str, Any], List[str], List[str]], None]] = {"C": _chassis, "B": _board,
                                                                                 "P": _product}


def _unpack(aucTexts: bytes) -> Dict[str, Any]:
    """The areas from the texts that libbmcfrutool gives, one behind the other."""
    listTexts = aucTexts.decode("latin-1").split("\0")
    dictAreas: Dict[str, Any] = {"internalUse": None, "chassis": None, "board": None, "product": None}
    uiAt = 1
    for strLetter in listTexts[0]:
        if strLetter == "I":
            dictAreas["internalUse"] = InternalUse(listTexts[uiAt])
            uiAt += 1
        elif strLetter != "M":
            uiCustom = uiAt + (4 if strLetter == "C" else 10)
            uiEnd = uiCustom + int(listTexts[uiCustom - 1])
            _MAKE_AREA[strLetter](dictAreas, listTexts[uiAt:uiCustom - 1], listTexts[uiCustom:uiEnd])
            uiAt = uiEnd
    return dictAreas


class _Later:
    """A member of a record that decode() has made: nothing is made of its texts before somebody looks at one. What is
    set stands in front of it."""

    def __init__(self, strName: str) -> None:
        self.strName = strName

    def __get__(self, record: Any, kind: Any = None) -> Any:
        if record is None:
            return None
        dictMembers: Dict[str, Any] = record.__dict__
        aucTexts, aucImage = dictMembers["_decoded"]
        if self.strName in AREAS:
            dictMade = _unpack(aucTexts)
        else:
            dictMade = {"multiRecords": [], "multiRecordsDamaged": False}
            if b"M" in aucTexts[:aucTexts.index(0)]:
                dictMade.update(fnMultiRecords(aucImage))
        dictMade.update(dictMembers)
        dictMembers.update(dictMade)
        return dictMade[self.strName]


for _strName in _RECORD:
    setattr(Record, _strName, _Later(_strName))


def recordJson(record: Record) -> Dict[str, Any]:
    """The document that such a record stands for: what is None is left out."""
    dictJson: Dict[str, Any] = {}
    for strArea in AREAS:
        area = getattr(record, strArea)
        if area is not None:
            dictJson[strArea] = {strName: value for strName, value in dataclasses.asdict(area).items()
                                 if value is not None}
    # A date that is none is told by its number, which would else still stand for the old one.
    if record.board is not None and record.board.mfgDate is None and record.board.mfgDateMinutes is not None:
        dictJson["board"]["mfgDate"] = None
    if record.multiRecords is not None:
        dictJson["multiRecords"] = record.multiRecords
    if record.multiRecordsDamaged:
        dictJson["multiRecordsDamaged"] = True
    return dictJson
