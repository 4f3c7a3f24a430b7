"""Command line of the generator: `python -m wrpgen generate|tags`."""

import argparse
import sys
from pathlib import Path

from . import generate, tags


def main() -> int:
    parser = argparse.ArgumentParser(prog="wrpgen", description=__doc__)
    commands = parser.add_subparsers(dest="command", required=True)
    make = commands.add_parser("generate", help="write the bindings of one module")
    make.add_argument("--api", type=Path, required=True, help="folder of the descriptions")
    make.add_argument("--module", required=True, help="key of the module in modules.json")
    make.add_argument("--native", type=Path, help="folder for the C++ units")
    make.add_argument("--managed", type=Path, help="folder for the C# entry classes")
    make.add_argument("--stubs", type=Path, help="folder for the stubs")
    make.add_argument("--units", type=int, default=1, help="number of grouped C++ units")
    make.add_argument("--skipped", action="store_true", help="list the members without a form")
    complete = commands.add_parser("tags", help="make the tags that are missing")
    complete.add_argument("--api", type=Path, required=True)
    arguments = parser.parse_args()
    if arguments.command == "tags":
        for name in tags.complete(arguments.api):
            print(f"tagged {name}")
        return 0
    result = generate.load(arguments.api, arguments.module)
    if arguments.native:
        result.write_native(arguments.native, arguments.units)
    if arguments.managed:
        result.write_managed(arguments.managed)
    if arguments.stubs:
        result.write_stubs(arguments.stubs)
    if arguments.skipped:
        print("\n".join(result.skipped))
    return 0


sys.exit(main())
