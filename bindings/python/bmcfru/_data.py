# SPDX-License-Identifier: Apache-2.0
"""What calls give and take, as dataclasses. Their members have the names that 'fructl --json' gives them."""
import dataclasses
from typing import Any, Callable, Dict, List, Optional


@dataclasses.dataclass
class Device:
    """What names a device: its FRU device ID, its name, its component type and the instance of that."""

    id: int
    name: str
    componentType: int
    instance: int


@dataclasses.dataclass
class DeviceState(Device):
    """A device of the table, where its EEPROM is, and the state of its images.

    image  "sound", "damaged", "erased", "unreadable" or "no record"
    cache  "none", "same", "differs", "not trusted" or "only"
    """

    bus: int
    address: int
    switchLevel: int
    startOffset: int
    size: int
    databaseOnly: bool
    image: str
    cache: str


@dataclasses.dataclass
class Diagnostic:
    """A message of the library: its severity as syslog counts, where in the library it comes from, and its text."""

    severity: int
    file: str
    line: int
    text: str


@dataclasses.dataclass
class InternalUse:
    """The internal use area: its bytes, as hex digits with blanks between."""

    data: str


@dataclasses.dataclass
class Chassis:
    """The chassis info area."""

    type: str = "Unknown"
    partNumber: str = ""
    serialNumber: str = ""
    customFields: List[str] = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Board:
    """The board info area. mfgDate is UTC, None where it is unspecified.

    Who makes one gives language or languageCode, and mfgDate or mfgDateMinutes: where both are given they have to agree.
    """

    language: Optional[str] = None
    languageCode: Optional[int] = None
    mfgDate: Optional[str] = None
    mfgDateMinutes: Optional[int] = None
    manufacturer: str = ""
    productName: str = ""
    serialNumber: str = ""
    partNumber: str = ""
    fruFileId: str = ""
    customFields: List[str] = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Product:
    """The product info area."""

    language: Optional[str] = None
    languageCode: Optional[int] = None
    manufacturer: str = ""
    productName: str = ""
    partNumber: str = ""
    version: str = ""
    serialNumber: str = ""
    assetTag: str = ""
    fruFileId: str = ""
    customFields: List[str] = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Record:
    """A decoded image: only the areas that it has, the others are None.

    multiRecords are as docs/multirecords.md describes them: what members one has depends on its type.
    multiRecordsDamaged: the image has a MultiRecord area, and no record of it can be read.
    """

    internalUse: Optional[InternalUse] = None
    chassis: Optional[Chassis] = None
    board: Optional[Board] = None
    product: Optional[Product] = None
    multiRecords: Optional[List[Dict[str, Any]]] = None
    multiRecordsDamaged: bool = False


@dataclasses.dataclass
class ShownRecord(Record):
    """The record of a device. source is "EEPROM" or "cache"; sourcesDiffer: its other image is another one."""

    device: Device = dataclasses.field(default_factory=lambda: Device(0, "", 0, 0))
    source: str = ""
    sourcesDiffer: bool = False


@dataclasses.dataclass
class Finding:
    """What is wrong in an image, and at which byte."""

    offset: int
    area: str
    what: str


@dataclasses.dataclass
class Check:
    """Whether an image is in order. failure: why it is not, where no byte tells it.

    >>> import bmcfru
    >>> check = bmcfru.verify(bytes(64))
    >>> check.sound, check.problems[0].area
    (False, 'header')
    """

    sound: bool
    problems: List[Finding]
    warnings: List[Finding]
    source: str
    failure: Optional[str] = None
    device: Optional[Device] = None

    def __bool__(self) -> bool:
        return self.sound


@dataclasses.dataclass
class Part:
    """A value within a MultiRecord's data."""

    offset: int
    length: int
    field: str
    text: str


@dataclasses.dataclass
class Span:
    """A run of bytes with one meaning; bytes are hex digits with blanks between."""

    offset: int
    length: int
    area: str
    field: str
    text: str
    bytes: str
    note: Optional[str] = None
    problem: Optional[str] = None
    parts: List[Part] = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Layout:
    """An image byte for byte: every byte is in one of the spans."""

    source: str
    size: int
    sound: bool
    problems: List[Finding]
    warnings: List[Finding]
    spans: List[Span]
    device: Optional[Device] = None


@dataclasses.dataclass
class LenientField:
    """A field that can still be read, and what speaks against it."""

    name: str
    offset: int
    text: str
    good: bool
    doubt: Optional[str] = None
    note: Optional[str] = None


@dataclasses.dataclass
class LenientArea:
    """What an area still says."""

    area: str
    fields: List[LenientField]
    remarks: List[str]


@dataclasses.dataclass
class LenientRecord:
    """What a damaged image still says: how many fields are good and doubtful, and each of them."""

    good: int
    doubtful: int
    remarks: List[str]
    areas: List[LenientArea]
    offset: int = 0
    device: Optional[Device] = None
    source: Optional[str] = None
    sourcesDiffer: bool = False


@dataclasses.dataclass
class FieldChange:
    """A field that changes; None: there is no such field."""

    area: str
    field: str
    old: Optional[str]
    new: Optional[str]


@dataclasses.dataclass
class ByteChange:
    """Bytes that change, as hex digits with blanks between."""

    offset: int
    old: str
    new: str


@dataclasses.dataclass
class LabelValue:
    """A label: what it accepts and its value, None where the image has no such field."""

    id: int
    name: str
    area: str
    field: Optional[str]
    minLength: int
    maxLength: int
    noneAllowed: bool
    accepts: str
    powerSupplyField: Optional[int] = None
    value: Optional[str] = None


@dataclasses.dataclass
class LabelStep:
    """One label's write: its value before and after. operationLog is the sentence that the operation log has of it."""

    id: int
    name: str
    old: Optional[str]
    new: Optional[str]
    unchanged: bool
    operationLog: Optional[str] = None


@dataclasses.dataclass
class LabelChange:
    """What setting labels changed, or with dryRun would."""

    device: Device
    dryRun: bool
    labels: List[LabelStep]
    bytes: List[ByteChange]
    notes: List[str]
    losses: List[str]

    @property
    def changed(self) -> bool:
        """Whether a label has, or would have, another value than before."""
        return any(not step.unchanged for step in self.labels)


@dataclasses.dataclass
class ImageChange:
    """What writing a whole image changed, or with dryRun would."""

    device: Device
    dryRun: bool
    unchanged: bool
    sound: bool
    fields: List[FieldChange]
    bytes: List[ByteChange]
    notes: List[str]
    operationLog: Optional[str] = None

    @property
    def changed(self) -> bool:
        """Whether the device holds, or would hold, other bytes than before."""
        return not self.unchanged


@dataclasses.dataclass
class Recovery:
    """What recover() found and did. outcome: "fine", "damaged" (of a dry run) or "restored".

    source is what --json calls "from", which is a word of Python: "stored", "history", "cache", "eeprom" or a file.
    """

    device: Device
    outcome: str
    storedImage: str
    text: str
    dryRun: bool = False
    damage: Optional[str] = None
    source: Optional[str] = None
    unchanged: bool = True
    sound: bool = True
    fields: List[FieldChange] = dataclasses.field(default_factory=list)
    bytes: List[ByteChange] = dataclasses.field(default_factory=list)
    notes: List[str] = dataclasses.field(default_factory=list)

    @property
    def changed(self) -> bool:
        """Whether something was, or would be, restored."""
        return self.outcome != "fine"


@dataclasses.dataclass
class PastImage:
    """An image that a device held before one of its last writes; image is "good", "damaged", "erased" or "none"."""

    number: int
    time: str
    image: str
    command: str


@dataclasses.dataclass
class Undone:
    """The image of the history that was put back, and what changed."""

    device: Device
    dryRun: bool
    number: int
    image: str
    time: str
    command: str
    unchanged: bool
    sound: bool
    fields: List[FieldChange]
    bytes: List[ByteChange]
    notes: List[str]

    @property
    def changed(self) -> bool:
        """Whether the device holds, or would hold, other bytes than before."""
        return not self.unchanged


# ---- from JSON ----

_Maker = Callable[[Any], Any]


def _many(fnOne: _Maker) -> _Maker:
    return lambda listItems: [fnOne(item) for item in listItems]


def _maker(kind: type) -> _Maker:
    """Makes one kind from a JSON object. What a newer library adds is passed over."""
    setNames = frozenset(field.name for field in dataclasses.fields(kind))
    dictMakers = {strName: fnMake for strName, fnMake in _MEMBERS.get(kind, {}).items() if strName in setNames}

    def Make(dictJson: Dict[str, Any]) -> Any:
        dictMembers = {strName: value for strName, value in dictJson.items() if strName in setNames}
        for strName, fnMake in dictMakers.items():
            if dictMembers.get(strName) is not None:
                dictMembers[strName] = fnMake(dictMembers[strName])
        return kind(**dictMembers)

    return Make


_MEMBERS: Dict[type, Dict[str, _Maker]] = {}


def _register(kind: type, **dictMakers: _Maker) -> _Maker:
    _MEMBERS[kind] = dictMakers
    return _maker(kind)


makeDevice = _register(Device)
makeDeviceState = _register(DeviceState)
makeDiagnostic = _register(Diagnostic)
_dictAreas: Dict[str, _Maker] = {"internalUse": _register(InternalUse), "chassis": _register(Chassis),
                                 "board": _register(Board), "product": _register(Product)}
makeRecord = _register(Record, **_dictAreas)
makeShownRecord = _register(ShownRecord, device=makeDevice, **_dictAreas)
_dictFindings: Dict[str, _Maker] = {"problems": _many(_register(Finding)), "warnings": _many(_register(Finding))}
makeCheck = _register(Check, device=makeDevice, **_dictFindings)
makeSpan = _register(Span, parts=_many(_register(Part)))
makeLayout = _register(Layout, device=makeDevice, spans=_many(makeSpan), **_dictFindings)
makeLenientArea = _register(LenientArea, fields=_many(_register(LenientField)))
makeLenientRecord = _register(LenientRecord, device=makeDevice, areas=_many(makeLenientArea))
_dictChanges: Dict[str, _Maker] = {"device": makeDevice, "fields": _many(_register(FieldChange)),
                                   "bytes": _many(_register(ByteChange))}
makeLabelValue = _register(LabelValue)
makeLabelChange = _register(LabelChange, device=makeDevice, labels=_many(_register(LabelStep)),
                            bytes=_dictChanges["bytes"])
makeImageChange = _register(ImageChange, **_dictChanges)
_makeRecovery = _register(Recovery, **_dictChanges)
makePastImage = _register(PastImage)
makeUndone = _register(Undone, **_dictChanges)


def makeRecovery(dictJson: Dict[str, Any]) -> Recovery:
    """As the others, with "source" for "from"."""
    recovery: Recovery = _makeRecovery({**dictJson, "source": dictJson.get("from")})
    return recovery
