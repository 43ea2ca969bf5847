"""Holds JSON documents, and the lines of NDJSON files, against the schema of qvinspect.

usage: validate_json.py accept|refuse SCHEMA FILE...

accept: every document and every line has to be valid. refuse: none of them may be.
Says what is not so and exits with 1.
"""
import json
import sys

from jsonschema import Draft202012Validator
from jsonschema.exceptions import best_match


def refuse_constant(name):
    raise ValueError(f"{name} is no JSON")


def unique(pairs):
    keys = [key for key, _ in pairs]
    if len(set(keys)) != len(keys):
        raise ValueError(f"a key occurs twice: {keys}")
    return dict(pairs)


def parse(text):
    return json.loads(text, parse_constant=refuse_constant, object_pairs_hook=unique)


def instances(path):
    """The name and text of every document in the file."""
    with open(path, encoding="utf-8", newline="") as file:
        if not path.endswith(".ndjson"):
            yield path, file.read()
            return
        for number, line in enumerate(file.read().removesuffix("\n").split("\n"), 1):
            yield f"{path}:{number}", line


def problem(validator, text):
    """What is wrong with the text; None when nothing is."""
    try:
        error = best_match(validator.iter_errors(parse(text)))
    except ValueError as error:
        return str(error)
    return None if error is None else f"{error.json_path}: {error.message[:400]}"


def main(mode, schema_path, *paths):
    with open(schema_path, encoding="utf-8") as file:
        schema = parse(file.read())
    Draft202012Validator.check_schema(schema)
    line_schema = {key: value for key, value in schema.items() if key != "$ref"}
    line_schema["$ref"] = "#/$defs/record"
    failures = 0
    for path in paths:
        validator = Draft202012Validator(line_schema if path.endswith(".ndjson") else schema)
        for name, text in instances(path):
            found = problem(validator, text)
            if (found is None) != (mode == "accept"):
                failures += 1
                print(f"{name}: {found or 'is accepted'}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
