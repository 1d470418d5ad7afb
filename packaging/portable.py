#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the portable folder of an installed Velmora: portable.py INSTALLED_USR OUTPUT VERSION

The folder holds the program, its files and every library that a Debian 12 desktop may lack, so that it runs where it
lies. What every such desktop has stays out: a bundled copy would not fit its drivers, fonts and sound server, and would
miss its security updates.
"""
import pathlib
import re
import shutil
import subprocess
import sys

# Names of libraries up to `.so`.
OF_THE_DESKTOP = set("""
    ld-linux-x86-64 libc libdl libgcc_s libm libpthread libresolv librt libstdc++
    libEGL libGL libGLX libGLdispatch libOpenGL
    libX11 libX11-xcb libXau libXdmcp libuuid libxcb libxcb-randr libxcb-render libxcb-shm libxkbcommon
    libbrotlicommon libbrotlidec libbsd libexpat libfontconfig libfreetype libgraphite2 libharfbuzz libmd libpng16 libz
    libcap libdbus-1 libffi libgcrypt libglib-2 libgpg-error liblz4 liblzma libpcre2-8 libsystemd libzstd
    libcom_err libcrypto libgmp libgnutls libhogweed libidn2 libnettle libp11-kit libssl libtasn1 libunistring
    libasound libasyncns libpulse libpulsecommon-16
""".split())

PLUGINS = ["platforms/libqxcb.so", "platforms/libqoffscreen.so", "iconengines/libqsvgicon.so",
           "imageformats/libqsvg.so", "platforminputcontexts/libcomposeplatforminputcontextplugin.so",
           "platforminputcontexts/libibusplatforminputcontextplugin.so"]

QT_CONF = "[Paths]\nPrefix = .\nPlugins = plugins\n"


def said(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def libraries_of(path):
    """Name and place of everything that the loader brings for it."""
    return dict(re.findall(r"^\s*(\S+) => (/\S+)", said("ldd", str(path)), re.M))


def bundled(objects):
    """The libraries to take along: of the objects, and of one another."""
    found = {}
    for path in objects:
        found.update(libraries_of(path))
    return {name: place for name, place in found.items() if re.split(r"\.so|\.\d", name)[0] not in OF_THE_DESKTOP}


def package_of(place):
    """Debian knows a file by the name it had before /lib became a link."""
    real = pathlib.Path(place).resolve()
    for name in (str(real), str(real).removeprefix("/usr")):
        found = subprocess.run(["dpkg-query", "-S", name], capture_output=True, text=True)
        if found.returncode == 0:
            return found.stdout.split(":")[0]
    raise SystemExit(f"No package is known to bring {place}.")


def copy_licences(folder, places):
    folder.mkdir()
    packages = sorted({package_of(place) for place in places})
    for package in packages:
        shutil.copy(f"/usr/share/doc/{package}/copyright", folder / package)
    listed = said("dpkg-query", "-W", "-f", "${Package} ${Version}, source ${source:Package} ${source:Version}\n",
                  *packages)
    (folder / "SOURCES").write_text("The libraries in lib and plugins are Debian's, without a change. Their sources "
                                    "are in Debian's archive:\n\n" + listed)


def program_files(installed, folder):
    for name in ("bin/velmora", "share/velmora/conf.mp3", "share/velmora/updates.txt", "share/doc/velmora/velmora.html"):
        shutil.copy2(installed / name, folder)
    for name in ("README.md", "CHANGELOG.md", "LICENSE"):
        shutil.copy2(name, folder)
    (folder / "docs").mkdir()
    shutil.copy2("docs/manual.md", folder / "docs")
    shutil.copytree("docs/pictures", folder / "docs/pictures")
    (folder / "qt.conf").write_text(QT_CONF)


def fill(installed, folder):
    own = pathlib.Path(said("qtpaths6", "--plugin-dir").strip())
    plugins = [own / name for name in PLUGINS]
    modules = sorted(installed.glob("lib/**/velmora/velmora-*.so"))
    libraries = bundled([installed / "bin/velmora", *modules, *plugins])
    program_files(installed, folder)
    (folder / "modules").mkdir()
    for module in modules:
        shutil.copy(module, folder / "modules")
    (folder / "lib").mkdir()
    for name, place in libraries.items():
        shutil.copy(place, folder / "lib" / name)
    for name, plugin in zip(PLUGINS, plugins):
        (folder / "plugins" / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(plugin, folder / "plugins" / name)
    # The old kind of path: it counts for the libraries' own libraries and for plugins, too.
    said("patchelf", "--force-rpath", "--set-rpath", "$ORIGIN/lib", str(folder / "velmora"))
    for module in (folder / "modules").iterdir():
        said("patchelf", "--force-rpath", "--set-rpath", "$ORIGIN/../lib", str(module))
    copy_licences(folder / "licences", [*libraries.values(), *map(str, plugins)])


def main():
    installed, output, version = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
    name = f"velmora-{version}-{said('uname', '-m').strip()}"
    folder = output / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    fill(installed, folder)
    said("tar", "-C", str(output), "--owner=0", "--group=0", "--sort=name", "-I", "zstd -12 -T0", "-cf",
         str(output / f"{name}.tar.zst"), name)
    shutil.rmtree(folder)


main()
