# SPDX-License-Identifier: Apache-2.0
"""What the documentation of every module says alike."""


class ModuleDocFragment:
    DOCUMENTATION = r"""
options:
  wait:
    description: How many seconds to wait for other programs that work on the same controller.
    type: int
    default: 10
requirements:
  - the Python package bmcfru (Debian's python3-bmcfru) on the managed host
notes:
  - Nothing is read or written on the control node. For controllers that are directories of the control node itself, use C(connection=local).
  - What is written goes through the same journal, lock and read-back as the command line C(fructl). A write that is killed, or loses its
    power, is finished or undone by whoever next works on the controller.
author:
  - libbmcfru developers (@bmcfru)
"""

    # Of the modules that work on one controller.
    ROOT = r"""
options:
  root:
    description:
      - The controller's directory on the managed host.
      - Else the environment variable C(FRUCTL_ROOT) of the managed host, else C(~/.local/state/fructl).
    type: path
"""
