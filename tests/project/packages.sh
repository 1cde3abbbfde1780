#!/usr/bin/env bash
# The Debian packages that `./dev packages` has made, in the folder PACKAGES, are without fault for lintian, install in
# a fresh Debian with what they depend on and nothing else, and work there. Needs root and Debian's archive.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

((EUID == 0)) || fail "only root can make a fresh Debian"
lintian --allow-root --info --fail-on error,warning,info "$PACKAGES"/*.deb
for package in "$PACKAGES"/*.deb; do
    name=$(basename "${package%%_*}")
    dpkg-deb --fsys-tarfile "$package" | tar --list >files
    for file in changelog.gz changelog.Debian.gz copyright; do
        grep -q -x "./usr/share/doc/$name/$file" files || fail "$name: no $file"
    done
done

# What debootstrap mounts in the root goes with its namespace, however it ends.
unshare --mount debootstrap --variant=minbase bookworm root http://deb.debian.org/debian >debootstrap.log || {
    tail debootstrap.log >&2
    fail "no fresh Debian"
}
mkdir root/packages
cp "$PACKAGES"/*.deb root/packages
cp "$SOURCE"/tests/project/host/{main,log}.c root/packages

# in_root COMMAND...: in the fresh Debian, from the folder of the packages
in_root() {
    chroot root /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 \
        sh -e -c "cd /packages && $*"
}

in_root 'apt-get update && apt-get install --yes --no-install-recommends ./libqzoci0_*.deb ./qznum_*.deb'
expect_equal "4 / 2.03 in the fresh Debian" "1.97044335453201990000000343349759605911" \
    "$(in_root "qznum eval '4 / 2.03'" | head -n 1)"

in_root 'apt-get install --yes --no-install-recommends ./libqzoci-dev_*.deb gcc libc6-dev pkgconf'
# shellcheck disable=SC2016 # expanded there
in_root 'cc -o shared main.c log.c $(pkg-config --cflags --libs qzoci)'
# shellcheck disable=SC2016
in_root 'cc -static -o static main.c log.c $(pkg-config --static --cflags --libs qzoci)'
for kind in shared static; do
    expect_equal "$kind host in the fresh Debian" "RESULT 10 193 3 31 1 1 1 1 1 1 6" \
        "$(in_root "./$kind" | grep '^RESULT')" # 2.3000000000000005
done

# Nothing stays behind.
in_root 'apt-get purge --yes libqzoci0 libqzoci-dev qznum'
expect_equal "files left" "" "$(find root/usr root/etc root/var/lib/dpkg/info -name '*qz*')"
rm -rf root
