"""A copy of this machine's root in which everything can be changed and which is gone afterwards.

It is this root seen through an overlay whose changes lie in memory, in namespaces of its own, so that nothing that is
mounted or started in it outlives it. It takes root and a kernel that lets namespaces be made: a container may have
neither.
"""

from pathlib import Path

# $1 is an empty folder, $2 has folders that are needed inside, a line for each; the rest is the command. What else is mounted
# in this root is seen too, but can't be changed.
SET_UP = r"""
set -e
mount -t tmpfs tmpfs "$1"
mkdir "$1/changes" "$1/work" "$1/root"
mount -t overlay overlay -o "lowerdir=/,upperdir=$1/changes,workdir=$1/work" "$1/root"
cut -d ' ' -f 5 /proc/self/mountinfo | sort -u | while read -r place; do
  case "$place/" in
    // | /proc/* | /sys/* | /dev/* | /run/* | /tmp/*) ;;
    *) mount --bind -o ro "$place" "$1/root$place" || true ;;
  esac
done
mount -t proc proc "$1/root/proc"
mount --rbind /sys "$1/root/sys"
mount --rbind /dev "$1/root/dev"
mount -t tmpfs tmpfs "$1/root/run"
mount -t tmpfs -o mode=1777 tmpfs "$1/root/tmp"
while read -r place; do
  case "$place/" in
    /run/* | /tmp/*) mkdir -p "$1/root$place" && mount --bind -o ro "$place" "$1/root$place" ;;
  esac
done <<<"$2"
mkdir "$1/root/run/changes" "$1/root/run/before"
mount --bind -o ro "$1/changes" "$1/root/run/changes"
mount --bind -o ro / "$1/root/run/before"
exec chroot "$1/root" /usr/bin/env -C "$PWD" "${@:3}"
"""

# Inside: what has been changed so far, by the overlay's account, and what is under it.
CHANGES, BEFORE = Path("/run/changes"), Path("/run/before")


def command(folder, needed, inner):
    """What runs a command in a clean root, set up in an empty folder; with the folders in which it finds what it needs."""
    return ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--propagation", "private", "bash", "-c", SET_UP,
            "clean-root", str(folder), "\n".join(str(each) for each in needed), *inner]
