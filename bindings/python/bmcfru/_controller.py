# SPDX-License-Identifier: Apache-2.0
"""Controllers and their devices, with the guarantees of the command line."""
import dataclasses
import os
import sys
import threading
import weakref
from types import TracebackType
from typing import Any, Dict, List, Mapping, Optional, Type, Union

from . import _library
from ._data import (Check, Device as DeviceNames, DeviceState, ImageChange, LabelChange, LabelValue, Layout,
                    LenientRecord, PastImage, Recovery, ShownRecord, Undone, makeCheck, makeDeviceState, makeImageChange,
                    makeLabelChange, makeLabelValue, makeLayout, makeLenientRecord, makePastImage, makeRecovery,
                    makeShownRecord, makeUndone)
from ._errors import DamagedError, Error, NotFoundError, UsageError

_FOREIGN_ROOT = 1


def _who() -> str:
    return os.path.basename(sys.argv[0]) if sys.argv and sys.argv[0] not in ("", "-", "-c", "-m") else "python"


class Controller:
    """A controller, kept in the directory root; none named: $FRUCTL_ROOT, else ~/.local/state/fructl.

    Its calls may come from any thread; they follow one another, and those of different controllers run side by side,
    each in a worker process of its own, which ends with close() or with the object. wait: seconds that a call waits
    for other programs on the same controller, then it raises BusyError. who stands in the history and the operation
    log. foreignRoot: write also to a directory of another user.

    >>> with Controller(ROOT) as controller:
    ...     [device.name for device in controller.devices()]
    ['baseboard', 'psu1', 'psu2', 'riser', 'bmc-card', 'bmc-card-hw']
    """

    def __init__(self, root: Union[str, "os.PathLike[str]", None] = None, wait: float = 10.0, who: Optional[str] = None,
                 foreignRoot: bool = False) -> None:
        strRoot = os.fspath(root) if root is not None else None
        self.root = strRoot
        self.warnings: List[str] = []
        self._lock = threading.Lock()
        self._handle = _library.Open(strRoot, _who() if who is None else who, int(wait * 1000),
                                     _FOREIGN_ROOT if foreignRoot else 0)
        self._closed = False
        self._finalizer = weakref.finalize(self, _library.Close, self._handle)

    def __enter__(self) -> "Controller":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"bmcfru.Controller({self.root!r})"

    def close(self) -> None:
        """Ends the worker, behind a call that is under way. Any call after it raises UsageError."""
        with self._lock:
            self._closed = True
            self._finalizer()

    @property
    def workerPid(self) -> int:
        """The process that works for this controller; 0: none at this moment."""
        return 0 if self._closed else int(_library.WorkerPid(self._handle))

    def call(self, name: str, data: bytes = b"", **arguments: Any) -> "_library.Answer":
        """Any call of the C interface (bmcfru_tool.h), with what it answers as JSON. The methods are nicer."""
        with self._lock:
            if self._closed:
                raise UsageError(f"{self!r} is closed")
            answer = _library.Call(self._handle, name, arguments, data)
        self.warnings = answer.warnings
        return answer

    def devices(self) -> List[DeviceState]:
        """All devices and the state of their images, in the order of the device table.

        >>> Controller(ROOT).devices()[1].image
        'sound'
        """
        return [makeDeviceState(dictDevice) for dictDevice in self.call("list").document["devices"]]

    def device(self, device: Union[str, int, DeviceNames]) -> "Device":
        """One device: by its name, as "TYPE:INSTANCE", by its FRU device ID as a number, or as devices() gives it.

        Whether there is such a device its first call finds out.
        """
        return Device(self, device.id if isinstance(device, DeviceNames) else device)

    def verify(self) -> List[Check]:
        """Whether the images of all devices are in order.

        >>> [check.device.name for check in Controller(ROOT).verify() if not check]
        []
        """
        return [makeCheck(dictCheck) for dictCheck in self.call("verify").document["images"]]


class Device:
    """A device of a controller. What it is called there is not looked up before the first call."""

    def __init__(self, controller: Controller, device: Union[str, int]) -> None:
        self.controller = controller
        self._device = device

    def __repr__(self) -> str:
        return f"{self.controller!r}.device({self._device!r})"

    def _call(self, strCall: str, data: bytes = b"", **arguments: Any) -> Dict[str, Any]:
        return self.controller.call(strCall, data, device=self._device, **arguments).document

    def _shown(self, strCall: str, source: Optional[str], **arguments: Any) -> Dict[str, Any]:
        """Who has said which image he wants is shown it, whatever the other one is."""
        try:
            return self._call(strCall, source=source, **arguments)
        except DamagedError as error:
            if source is None or not error.document.get("sourcesDiffer", False):
                raise
            return error.document

    def state(self) -> DeviceState:
        """As Controller.devices() tells it.

        >>> Controller(ROOT).device("psu1").state().size
        256
        """
        idDevice = self._call("history")["device"]["id"]
        for state in self.controller.devices():
            if state.id == idDevice:
                return state
        raise NotFoundError(f"{self!r} is gone")

    def show(self, source: Optional[str] = None) -> ShownRecord:
        """The record in its EEPROM, or with source="cache" in its cached image.

        DamagedError where an image cannot be decoded; and, unless source is given, where the device's two images are
        not the same: the error's document is the record all the same.

        >>> Controller(ROOT).device("psu1").show().product.productName
        '800 W Power Supply'
        """
        record: ShownRecord = makeShownRecord(self._shown("show", source))
        return record

    def lenient(self, source: Optional[str] = None) -> LenientRecord:
        """What can still be read of a damaged image: each field with its doubts."""
        view: LenientRecord = makeLenientRecord(self._shown("lenient", source))
        return view

    def layout(self, source: Optional[str] = None) -> Layout:
        """The byte map of its image."""
        spans: Layout = makeLayout(self._call("map", source=source))
        return spans

    def labels(self, source: Optional[str] = None) -> List[LabelValue]:
        """The labels that it takes, what they accept, and their values."""
        return [makeLabelValue(dictLabel) for dictLabel in self._shown("labelList", source)["labels"]]

    def label(self, name: str) -> "Label":
        """One named field.

        >>> Controller(ROOT).device("psu1").label("Product Serial Number").get()
        'PS8024100311'
        """
        return Label(self, name)

    def setLabels(self, values: Mapping[str, str], dryRun: bool = False, force: bool = False) -> LabelChange:
        """Writes several labels, all or none. Names and values are checked before anything is read or written.

        Where a value is there already nothing is written. force: also placeholders, and where something beside the
        labels would be lost.

        >>> device = Controller(ROOT).device("psu1")
        >>> change = device.setLabels({"Product Asset Tag": "RACK7", "Product Version": "A2"}, dryRun=True)
        >>> [(step.old, step.new) for step in change.labels]
        [('', 'RACK7'), ('A1', 'A2')]
        >>> change.changed, change.dryRun
        (True, True)
        """
        change: LabelChange = makeLabelChange(self._call("labelSet", labels=[list(pair) for pair in values.items()],
                                                         dryRun=dryRun, force=force))
        return change

    def read(self, source: Optional[str] = None) -> bytes:
        """Its whole image, every byte.

        >>> len(Controller(ROOT).device("psu1").read())
        256
        """
        return self.controller.call("read", device=self._device, source=source).bytes

    def write(self, image: Union[bytes, bytearray, memoryview], dryRun: bool = False, force: bool = False) -> ImageChange:
        """Writes a whole image; what lies behind it becomes 0xff. force: also one that is not in order.

        >>> device = Controller(ROOT).device("psu2")
        >>> device.write(device.read()).changed
        False
        """
        change: ImageChange = makeImageChange(self._call("write", bytes(image), dryRun=dryRun, force=force))
        return change

    def recover(self, source: Union[str, "os.PathLike[str]", None] = None, dryRun: bool = False) -> Recovery:
        """Restores it where it is damaged or erased, or its cached image differs.

        source: "stored", "history", "cache" or an image file; without it the first of the three that is in order.

        >>> Controller(ROOT).device("baseboard").recover(dryRun=True).outcome
        'fine'
        """
        strSource = None if source is None else os.fspath(source)
        if strSource is not None and strSource not in ("stored", "history", "cache"):
            strSource = os.path.abspath(strSource)
        dictArguments: Dict[str, Any] = {"from": strSource, "dryRun": dryRun}
        return makeRecovery(self._call("recover", **dictArguments))

    def history(self) -> List[PastImage]:
        """The images that it held before its last 20 writes, oldest first."""
        return [makePastImage(dictImage) for dictImage in self._call("history")["images"]]

    def undo(self, number: Optional[int] = None, dryRun: bool = False) -> Undone:
        """Puts an image of the history back; without its number the newest that differs from what is there."""
        undone: Undone = makeUndone(self._call("undo", to=number, dryRun=dryRun))
        return undone

    def verify(self) -> Check:
        """Whether its EEPROM's image and the cached one are in order: the first that is not, else the EEPROM's.

        >>> bool(Controller(ROOT).device("psu1").verify())
        True
        """
        listChecks: List[Check] = [makeCheck(dictCheck) for dictCheck in self._call("verify")["images"]]
        return next((check for check in listChecks if not check.sound), listChecks[0])


@dataclasses.dataclass
class Label:
    """A named field of a device."""

    device: Device
    name: str

    def describe(self, source: Optional[str] = None) -> LabelValue:
        """Its value and what it accepts."""
        value: LabelValue = makeLabelValue(self.device._shown("labelGet", source, names=[self.name]))
        return value

    def get(self, source: Optional[str] = None) -> Optional[str]:
        """Its value; None where that is an unspecified date. RefusedError where the image has no such field."""
        return self.describe(source).value

    def set(self, value: str, dryRun: bool = False, force: bool = False) -> LabelChange:
        """Writes it; tells old and new and the bytes that changed, or with dryRun would.

        >>> label = Controller(ROOT).device("riser").label("Product Asset Tag")
        >>> change = label.set("RACK9", dryRun=True)
        >>> change.labels[0].new, change.changed, len(change.bytes) > 0
        ('RACK9', True, True)
        """
        return self.device.setLabels({self.name: value}, dryRun, force)


__all__ = ["Controller", "Device", "Error", "Label"]
