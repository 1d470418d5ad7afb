#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails on a source file that the project's clang-format would change."""
import subprocess
import sys

root = sys.argv[1]
files = subprocess.run(["git", "-C", root, "ls-files", "-co", "--exclude-standard", "*.cpp", "*.h"], capture_output=True,
                       text=True, check=True).stdout.split()
result = subprocess.run(["clang-format", "--dry-run", "--Werror", "-ferror-limit=3", *files], cwd=root,
                        capture_output=True, text=True)
print(result.stderr or f"{len(files)} files are well formed.")
sys.exit(result.returncode or not files)
