# check-reports.py JSON SARIF: holds two reports of tamsel-batch against their schemas, and tells what is in them.
import json
import sys

import jsonschema

POSITION = {"type": "integer", "minimum": 1}
SEVERITY = {"enum": ["error", "warning", "note"]}
TEXT = {"type": "object", "required": ["text"], "properties": {"text": {"type": "string"}}}


def record(required, **properties):
    return {"type": "object", "required": required.split(), "properties": properties, "additionalProperties": False}


def array(items):
    return {"type": "array", "items": items}


FINDING = record("severity kind names message", severity=SEVERITY, kind={"type": "string"}, line=POSITION, column=POSITION,
                 names=array({"type": "string"}), message={"type": "string"})
FILE = record("file status findings", file={"type": "string"}, output={"type": "string"}, unchanged={"const": True},
              status={"enum": ["good", "note", "warning", "error", "lost"]}, findings=array(FINDING))
JSON = record("counts files", counts={"type": "object"}, files=array(FILE))

ARTIFACT = record("uri", uri={"type": "string", "pattern": "^[-A-Za-z0-9._~/%]+$"}, uriBaseId={"type": "string"})
PLACE = record("artifactLocation", artifactLocation=ARTIFACT,
               region=record("startLine startColumn", startLine=POSITION, startColumn=POSITION))
RESULT = record("ruleId level message locations", ruleId={"type": "string"}, level=SEVERITY, message=TEXT,
                locations=array(record("physicalLocation", physicalLocation=PLACE)))
RULE = record("id", id={"type": "string"}, shortDescription=TEXT)
RUN = record("tool results", results=array(RESULT), columnKind={"enum": ["utf16CodeUnits", "unicodeCodePoints"]},
             tool=record("driver", driver=record("name", name={"type": "string"}, version={"type": "string"}, rules=array(RULE))),
             originalUriBaseIds={"type": "object"}, invocations=array(record("executionSuccessful", executionSuccessful={"type": "boolean"})))
SARIF = record("version runs", version={"const": "2.1.0"}, runs=array(RUN), **{"$schema": {"type": "string"}})

reports = []
for path, schema in zip(sys.argv[1:], (JSON, SARIF)):
    with open(path, encoding="utf-8") as file:
        reports.append(json.load(file))
    jsonschema.validate(reports[-1], schema)
files = reports[0]["files"]
results = reports[1]["runs"][0]["results"]
rules = {rule["id"] for rule in reports[1]["runs"][0]["tool"]["driver"]["rules"]}
assert {result["ruleId"] for result in results} <= rules
print(f"{sys.argv[1]}: {len(files)} files, {sum(len(file['findings']) for file in files)} findings")
print(f"{sys.argv[2]}: {len(results)} results")
