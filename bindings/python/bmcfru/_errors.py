# SPDX-License-Identifier: Apache-2.0
"""What can go wrong, by class: the words and exit codes of fructl."""
from typing import Any, Dict, List, Optional, Tuple, Type

from ._data import Device, Diagnostic


class Error(Exception):
    """Something failed. What kind of failure it is, its class tells.

    message      one line that says what was refused, why, and what would be accepted
    code         the class as a word: "refused", "not-found", ...
    exitCode     the class as fructl's exit code
    status       the library's own status code, where it was the library that refused
    device       the device that the call was about, where it is known
    accepted     what would be accepted, where it is a list
    warnings     what was warned of before
    diagnostics  the library's own messages
    document     what was found out before the failure, as fructl --json prints it

    >>> import bmcfru
    >>> try:
    ...     bmcfru.decode(bytes(64))
    ... except bmcfru.DamagedError as error:
    ...     print(error.code, error.exitCode)
    damaged 6
    """

    code = "failed"
    exitCode = 1

    def __init__(self, message: str, document: Optional[Dict[str, Any]] = None,
                 warnings: Optional[List[str]] = None, diagnostics: Optional[List[Diagnostic]] = None) -> None:
        super().__init__(message)
        self.message = message
        self.document: Dict[str, Any] = document or {}
        dictError = self.document.pop("error", {})
        self.status: Optional[int] = dictError.get("status")
        self.device: Optional[Device] = Device(**dictError["device"]) if "device" in dictError else None
        self.accepted: List[str] = dictError.get("accepted", [])
        self.warnings: List[str] = warnings or []
        self.diagnostics: List[Diagnostic] = diagnostics or []

    def __reduce__(self) -> Tuple[Any, ...]:
        return _rebuild, (type(self), self.message, self.__dict__)


def _rebuild(kind: Type[Error], strMessage: str, dictState: Dict[str, Any]) -> Error:
    """An error that has come from another process."""
    error = kind(strMessage)
    error.__dict__.update(dictState)
    return error


class UsageError(Error):
    """What was asked for makes no sense."""

    code, exitCode = "usage", 2


class RefusedError(Error):
    """A value, a name or what an image holds is not accepted."""

    code, exitCode = "refused", 3


class NotFoundError(Error):
    """There is no such device, controller or file."""

    code, exitCode = "not-found", 4


class NoAnswerError(Error):
    """A chip does not answer, or does not keep what is written."""

    code, exitCode = "no-answer", 5


class DamagedError(Error):
    """An image, a record or the database is damaged."""

    code, exitCode = "damaged", 6


class BusyError(Error):
    """Others kept the controller locked all the time that was waited."""

    code, exitCode = "busy", 7


class NotPermittedError(Error):
    """The user may not do that there."""

    code, exitCode = "not-permitted", 8


class DiskFullError(Error):
    """The disk is full."""

    code, exitCode = "disk-full", 9


class HalfWrittenError(Error):
    """A write was cut short and could be neither finished nor undone."""

    code, exitCode = "half-written", 10


ERRORS: Dict[int, Type[Error]] = {
    kind.exitCode: kind
    for kind in (Error, UsageError, RefusedError, NotFoundError, NoAnswerError, DamagedError, BusyError,
                 NotPermittedError, DiskFullError, HalfWrittenError)
}
