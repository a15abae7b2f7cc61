"""The project's own C and C++ files, for the tests of this folder."""
import pathlib

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SUFFIXES = {".h", ".c", ".cpp"}
FOLDERS = ("include", "formats", "vs_pfs", "vsd_pfs", "lib", "cli", "sandbox", "command", "batch", "builder",
           "tests", "fuzz", "bench", "examples")


def source_files():
    """Path below the project's root, and text, of each file in order. Never none."""
    files = sorted(path for folder in FOLDERS for path in (ROOT / folder).rglob("*")
                   if path.suffix in SUFFIXES)
    if not files:
        raise SystemExit(f"no sources below {ROOT}")
    for path in files:
        yield path.relative_to(ROOT).as_posix(), path.read_text(encoding="utf-8")
