# SPDX-License-Identifier: GPL-3.0-or-later
"""Validates files against a JSON Schema, with a validator that is not ours.

usage: validateRuns.py [--known] SCHEMA FILE...
  --known  refuse members that the schema does not name

Prints "taken FILE" or "refused FILE: why" for each file.
"""
import json
import sys

import jsonschema


def close(node):
    """Lets no object have members without a name in the schema."""
    if isinstance(node, dict):
        if "properties" in node:
            node.setdefault("additionalProperties", False)
        for child in node.values():
            close(child)
    elif isinstance(node, list):
        for child in node:
            close(child)


def main():
    arguments = sys.argv[1:]
    is_known = arguments[0] == "--known"
    if is_known:
        arguments = arguments[1:]
    with open(arguments[0], encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    if is_known:
        close(schema)
    validator = jsonschema.Draft202012Validator(schema)
    for name in arguments[1:]:
        try:
            with open(name, encoding="utf-8") as file:
                error = next(validator.iter_errors(json.load(file)), None)
            problem = error and f"{error.json_path}: {error.message[:200]}"
        except (ValueError, OverflowError) as error:
            problem = f"no JSON: {error}"
        print(f"refused {name}: {problem}" if problem else f"taken {name}")


main()
