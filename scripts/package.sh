#!/usr/bin/env bash
# Builds the Debian package out/ferrule_<version>_<arch>.deb with CPack from the normal build
# tree (the one scripts/test.sh builds and tests), and checks it: lintian with no error, the
# desktop entry through desktop-file-validate, the AppStream metadata through appstreamcli, the
# MIME type through update-mime-database. Installs what it needs when it is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

# dpkg-shlibdeps (dpkg-dev) finds the package's dependencies; rsvg-convert (librsvg2-bin) draws
# the icon's sizes; help2man writes the manual pages from --help; bash-completion is for the
# package test.
scripts/deps.sh dpkg-dev file lintian desktop-file-utils appstream shared-mime-info \
                librsvg2-bin help2man bash-completion
scripts/configure.sh
nice cmake --build build --target ferrule-host ferrule-device Ferrule ferrule_packaging

mkdir -p out
rm -f out/ferrule_*.deb
(cd build && cpack -G DEB >/dev/null)
debs=(out/ferrule_*.deb)
deb=${debs[0]}
echo "== $deb"
dpkg-deb --info "$deb" | sed -n 's/^ \(Version\|Architecture\|Depends\|Installed-Size\):/  \1:/p'

echo "== lintian"
lintian --fail-on error --info "$deb" || { echo "lintian found errors in $deb"; exit 1; }

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
dpkg-deb -x "$deb" "$tree"
echo "== desktop-file-validate"
desktop-file-validate "$tree"/usr/share/applications/*.desktop
echo "== appstreamcli validate"
# --no-net: the checks of the screenshot and home page addresses need the network.
appstreamcli validate --no-net --explain "$tree"/usr/share/metainfo/*.metainfo.xml
echo "== update-mime-database"
# It says what is wrong with a type on stderr but exits 0 all the same.
mkdir -p "$tree/check/mime"
cp -r "$tree/usr/share/mime/packages" "$tree/check/mime/"
mime_errors=$(XDG_DATA_DIRS="$tree/check" update-mime-database "$tree/check/mime" 2>&1 >/dev/null)
if [ -n "$mime_errors" ]; then
    echo "$mime_errors"
    exit 1
fi
echo "Package: $deb"
