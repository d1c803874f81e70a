# SPDX-License-Identifier: Apache-2.0
"""What the modules share: the package bmcfru behind the few calls that they make of it, and how they fail."""
import dataclasses
import os
import traceback

from ansible.module_utils.basic import env_fallback, missing_required_lib

try:
    import bmcfru
    PackageError = bmcfru.Error
    IMPORT_ERROR = None
except (ImportError, OSError):  # no package, or no library beneath it
    bmcfru = None
    PackageError = Exception
    IMPORT_ERROR = traceback.format_exc()

WARNING = 4  # as syslog counts
HOME = "~/.local/state/fructl"  # where fructl has its controller when nobody names one
ROOT = {"type": "path", "fallback": (env_fallback, ["FRUCTL_ROOT"])}
WAIT = {"type": "int", "default": 10}


def RequirePackage(stModule):
    if bmcfru is None:
        stModule.fail_json(msg=missing_required_lib("bmcfru", reason="(Debian's python3-bmcfru; from a checkout, PYTHONPATH names its folder)"),
                           exception=IMPORT_ERROR)


def RootOf(strRoot):
    """The directory that is meant."""
    return os.path.abspath(os.path.expanduser(strRoot or HOME))


class Controller:
    """One controller; its answers are the objects that 'fructl --json' prints. What it warns of, the module warns of."""

    def __init__(self, stModule, strRoot):
        self.stModule = stModule
        self.strRoot = RootOf(strRoot)
        self.stController = bmcfru.Controller(self.strRoot, wait=stModule.params["wait"], who=f"ansible {stModule._name}")

    def Call(self, strCall, abBytes=b"", **dictArguments):
        try:
            stAnswer = self.stController.call(strCall, abBytes, **dictArguments)
        except PackageError as stError:
            self.Warn(stError.warnings)
            raise
        self.Warn(stAnswer.warnings)
        return stAnswer

    def Warn(self, listWarnings):
        for strWarning in listWarnings:
            self.stModule.warn(f"{self.strRoot}: {strWarning}")

    def Devices(self):
        return self.Call("list").document["devices"]

    def Verify(self):
        return self.Call("verify").document["images"]

    def Id(self, strDevice):
        """The FRU device ID of a device, however it is named; whether its image can be decoded does not matter."""
        return self.Call("history", device=strDevice).document["device"]["id"]

    def Show(self, strDevice):
        return self.Call("show", device=strDevice).document

    def SetLabels(self, strDevice, dictLabels, bDryRun, bForce):
        return self.Call("labelSet", device=strDevice, labels=[list(tuplePair) for tuplePair in dictLabels.items()], dryRun=bDryRun,
                         force=bForce).document

    def Read(self, strDevice):
        return self.Call("read", device=strDevice).bytes

    def Write(self, strDevice, abImage, bDryRun, bForce):
        return self.Call("write", abImage, device=strDevice, dryRun=bDryRun, force=bForce).document

    def Recover(self, strDevice, strSource, bDryRun):
        return self.Call("recover", device=strDevice, dryRun=bDryRun, **{"from": strSource}).document


def ErrorOf(stModule, stError, strRoot, strDevice=None):
    """A failure as 'fructl --json' has it in its member "error", with where it was and what the library complained of; with -v
    everything that it said."""
    dictError = {"root": strRoot, "code": stError.code, "exitCode": stError.exitCode, "message": stError.message}
    if strDevice is not None:
        dictError["device"] = strDevice
    if stError.accepted:
        dictError["accepted"] = list(stError.accepted)
    if stError.status is not None:
        dictError["status"] = stError.status
    dictError["diagnostics"] = [dataclasses.asdict(stDiagnostic) for stDiagnostic in stError.diagnostics
                                if stDiagnostic.severity <= WARNING or stModule._verbosity > 0]
    return dictError


def Refusal(strRoot, strDevice, strMessage, listAccepted):
    """What a module refuses by itself, in the same form."""
    return {"root": strRoot, "device": strDevice, "code": "refused", "exitCode": 3, "message": strMessage, "accepted": listAccepted,
            "diagnostics": []}


def Fail(stModule, listErrors, **dictMore):
    """Ends the module: the first failure is the message, and all of them are there as data."""
    strDevice = f"{listErrors[0]['device']}: " if "device" in listErrors[0] else ""
    strMore = f" (and {len(listErrors) - 1} more)" if len(listErrors) > 1 else ""
    dictMore.setdefault("changed", False)
    stModule.fail_json(msg=strDevice + listErrors[0]["message"] + strMore, error=listErrors[0], errors=listErrors, **dictMore)


def ByteLines(listBytes, strWhich):
    """Changed bytes for the diff, a run a line."""
    return [f"bytes at {dictRun['offset']:#06x}: {dictRun[strWhich]}" for dictRun in listBytes]


def Diff(strHeader, asBefore, asAfter):
    """One entry of a module's diff."""
    return {"before_header": strHeader, "after_header": strHeader,
            "before": "".join(strLine + "\n" for strLine in asBefore), "after": "".join(strLine + "\n" for strLine in asAfter)}


def PlanDiff(strHeader, dictPlan):
    """The diff of a write of a whole image."""
    aasSides = []
    for strWhich in ("old", "new"):
        asLines = [f"{dictField['area']} {dictField['field']}: {dictField[strWhich]}" for dictField in dictPlan.get("fields", [])
                   if dictField[strWhich] is not None]
        aasSides.append(asLines + ByteLines(dictPlan.get("bytes", []), strWhich))
    return Diff(strHeader, *aasSides)
