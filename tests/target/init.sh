#!/bin/busybox sh
# SPDX-License-Identifier: Apache-2.0
# The controller's first and only process: drivers, the disk, then commands from the console, one a line.
/bin/busybox --install -s /bin
export PATH=/opt/bmcfru:/bin HOME=/root LD_LIBRARY_PATH=/lib LC_ALL=C NO_COLOR=1
mount -t proc proc /proc
mount -t sysfs sysfs /sys
mount -t devtmpfs devtmpfs /dev
mount -t tmpfs -o mode=1777 tmpfs /tmp
mkdir -p /dev/shm
mount -t tmpfs -o mode=1777 tmpfs /dev/shm
mount -t tracefs tracefs /sys/kernel/tracing
cp -a /laid/. / 2>/dev/null
ip link set lo up
dmesg -n 1
# The machine's own clock begins in 1970.
for strWord in $(cat /proc/cmdline); do case $strWord in date=*) date -s "@${strWord#date=}" >/dev/null ;; esac; done

while read -r strModule; do insmod "/modules/$strModule"; done </modules/order

# What the kernel finds on its own time: the disk, and the chips of the device tree behind switches.
iTries=0
until [ -b /dev/mmcblk0 ] || [ $iTries -ge 600 ]; do sleep 0.1; iTries=$((iTries + 1)); done
# The journal of the file system is replayed here, after a power cut.
mount -t ext4 -o data=ordered /dev/mmcblk0 /data || echo "NO DISK"

stty -echo -onlcr
echo "READY $(cat /proc/uptime)"
# A token, and a command in base64; its output, its words on stderr, its exit code.
while read -r strToken strCommand; do
  printf '%s' "$strCommand" | base64 -d >/run/command
  sh /run/command </dev/null 2>/run/stderr
  iCode=$?
  printf '\n%s ERR\n' "$strToken"
  cat /run/stderr
  printf '\n%s END %d\n' "$strToken" "$iCode"
done
