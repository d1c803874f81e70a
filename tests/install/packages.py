#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Installs the Debian packages of build/package/ into a root of their own, uses them, and removes them without a trace.

usage: packages.py [amd64] [armhf]     all that there are unless told otherwise

The root is this machine's own with a layer above it, so dependencies are there and every file that anybody writes or
removes lies in the layer. Needs root who may mount for that; without it nothing is tested, and that is said.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PACKAGES = ROOT / "build" / "package"
NAMES = ["fructl", "libbmcfru-dev", "libbmcfru1", "libbmcfruhost1", "libbmcfrutool1"]
EXPOSURE_MAX = "20"  # of systemd's scale, in tenths: 2.0 is "OK", 10.0 is no protection at all
# What package managers and caches keep for themselves, and where this test works.
BOOKS = ("var/lib/dpkg/", "var/log/", "var/cache/", "etc/ld.so.cache", "tmp/", "etc/passwd-", "etc/group-", "etc/shadow-",
         "etc/gshadow-", "etc/subuid-", "etc/subgid-", "etc/.pwd.lock", "run/", "root/")

# Runs in the new root. $1 architecture, $2 emulator or nothing, $3 C compiler, $4 multiarch folder.
INSIDE = r"""
set -eu
cd /tmp/packages
export DEBIAN_FRONTEND=noninteractive FRUCTL_ROOT=/tmp/packages/controller HOME=/root
run() { if [ -n "$EMULATOR" ]; then "$EMULATOR" "$@"; else "$@"; fi; }
ARCH=$1 EMULATOR=$2 CC=$3 MULTIARCH=$4
dpkg -i ./*.deb >dpkg.log 2>&1 || { cat dpkg.log; exit 1; }
dpkg -i ./*.deb >>dpkg.log 2>&1   # over itself, as an upgrade does
! ldd /usr/lib/$MULTIARCH/libbmcfru.so.1 2>/dev/null | grep 'not found'
EXAMPLES=/usr/share/doc/bmcfru/examples
[ -d $EXAMPLES ] || EXAMPLES=$SOURCE_EXAMPLES
run /usr/bin/fructl provision $EXAMPLES/controller.json >/dev/null
run /usr/bin/fructl show baseboard | grep -q LH22024170042
# Loaded or not, it says which: nobody listens there.
IPMI_PASSWORD=x run /usr/bin/fructl --bmc 127.0.0.1 --port 9 --wait 1 list 2>bmc.log && exit 1
grep -q "$BMC_SAYS" bmc.log || { cat bmc.log; exit 1; }
export PKG_CONFIG_LIBDIR=/usr/lib/$MULTIARCH/pkgconfig
$CC -std=c99 -Werror -o consumer main.c $(pkg-config --cflags --libs bmcfru bmcfruhost)
[ "$(run ./consumer $FRUCTL_ROOT)" = LH22024170042 ]
# The worker alone is nobody's: it says so. From Python it works.
run /usr/lib/$MULTIARCH/bmcfru/bmcfru-worker1 2>worker.log && exit 1
grep -q libbmcfrutool worker.log
! ldd /usr/lib/$MULTIARCH/libbmcfrutool.so.1 2>/dev/null | grep 'not found'
if [ -z "$EMULATOR" ]; then
  /usr/bin/python3 -c 'import bmcfru; print(bmcfru.Controller().device("baseboard").label("Product Serial Number").get())' \
    >python.log
  grep -qx LH22024170042 python.log
fi
for strFile in bash-completion/completions/fructl zsh/vendor-completions/_fructl fish/vendor_completions.d/fructl.fish; do
  [ -s /usr/share/$strFile ]
done
dpkg -L fructl | grep -q '/man1/fructl-label.1.gz$'
getent passwd fructl >/dev/null
[ "$(systemctl --root=/ is-enabled fructl-serve.service)" = disabled ]
systemd-analyze verify --man=no /lib/systemd/system/fructl-serve.service
systemd-analyze security --offline=yes --threshold=$EXPOSURE fructl-serve.service >security.log || { cat security.log; exit 1; }
tail -n 1 security.log
dpkg --purge $(for strName in $NAMES; do printf '%s:%s ' $strName $ARCH; done) $DOC >>dpkg.log 2>&1 || { cat dpkg.log; exit 1; }
"""

MOUNTING = r"""
mount -t tmpfs layer "$1"
mkdir "$1/upper" "$1/work" "$1/root"
mount -t overlay root -o lowerdir=/,upperdir="$1/upper",workdir="$1/work" "$1/root"
mount -t proc proc "$1/root/proc"
mount --rbind /dev "$1/root/dev"
"""

OUTSIDE = "set -eu" + MOUNTING + r"""
mkdir -p "$1/root/tmp/packages"
cp "$2"/*.deb "$3" "$1/root/tmp/packages"
chroot "$1/root" /bin/sh -c "$INSIDE" inside "$4" "$5" "$6" "$7"
umount -l "$1/root"
cd "$1/upper"
find . -mindepth 1 \( -type f -o -type l -o -type c -o -type d \) -printf '%y %P\n' | while read -r strKind strPath; do
  case $strKind in
    d) [ -d "/$strPath" ] || echo "left: $strPath/" ;;
    c) [ -e "/$strPath" ] && echo "removed: $strPath" ;;
    *) cmp -s "$strPath" "/$strPath" || echo "left: $strPath" ;;
  esac
done >"$1/traces" || true
cat "$1/traces"
"""


def trial(strArch):
    pathPackages = PACKAGES / strArch
    bNative = strArch == subprocess.run(["dpkg", "--print-architecture"], capture_output=True, text=True).stdout.strip()
    strMultiarch = subprocess.run(["dpkg-architecture", "-a", strArch, "-q", "DEB_HOST_MULTIARCH"], capture_output=True,
                                  text=True).stdout.strip()
    with tempfile.TemporaryDirectory(prefix="bmcfru-packages.") as strLayer:
        done = subprocess.run(
            ["unshare", "-m", "sh", "-c", OUTSIDE, "outside", strLayer, pathPackages, ROOT / "tests/install/consumer/main.c",
             strArch, "" if bNative else "qemu-arm", "gcc" if bNative else f"{strMultiarch}-gcc", strMultiarch],
            env={**os.environ, "INSIDE": INSIDE, "NAMES": " ".join(NAMES), "DOC": "bmcfru-doc libbmcfruhost-ipmi python3-bmcfru" if bNative else "",
                 "EXPOSURE": EXPOSURE_MAX, "SOURCE_EXAMPLES": str(ROOT / "examples"),
                 "BMC_SAYS": "does not answer" if bNative else "cannot be loaded"},
            capture_output=True, text=True)
    asTraces = [s for s in done.stdout.splitlines() if s.startswith(("left: ", "removed: ")) and
                not s.split(": ", 1)[1].startswith(BOOKS)]
    if done.returncode != 0 or asTraces:
        print(done.stdout + done.stderr)
        sys.exit(f"packages: {strArch} failed, traces: {asTraces}")
    print(f"packages: {strArch} installed, provisioned, linked, removed without a trace")


def may_mount():
    """Not in every container."""
    with tempfile.TemporaryDirectory(prefix="bmcfru-packages.") as strLayer:
        return subprocess.run(["unshare", "-m", "sh", "-ec", MOUNTING, "mounting", strLayer], capture_output=True).returncode == 0


def main():
    asArchs = sys.argv[1:] or sorted(p.parent.name for p in PACKAGES.glob("*/source") if p.is_dir())
    if not asArchs:
        sys.exit("packages: there are none; scripts/package makes them")
    if os.geteuid() != 0 or not may_mount():
        print("packages: not tested, for that needs root who may mount")
        return
    for strArch in asArchs:
        trial(strArch)


main()
