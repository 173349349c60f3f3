# A GitLab Code Quality report from the JSON of `mqkit lint`:
#
#   mqkit lint --format json . | jq --arg root "$(pwd -P)" -f code-quality.jq >code-quality.json
#
# The fingerprint of a finding does not depend on its line, so that it stays the same finding when lines above it
# change: it is made of the path, the code, the message, and how many alike stand above it.

def relative: if startswith($root + "/") then .[($root | length) + 1:] else . end;

def place:
  (capture("^(?<file>(.|\\n)*):(?<line>[0-9]+):[0-9]+(-[0-9]+:[0-9]+)?$") | {file, line: (.line | tonumber)})
  // {file: ., line: 1};

[.files[].issues[] | (.span | place) as $place | {
  description: .message,
  check_name: .code,
  severity: (if .severity == "error" then "major" else "minor" end),
  location: {path: ($place.file | relative), lines: {begin: $place.line}}
}]
| reduce .[] as $finding ({seen: {}, all: []};
    ([$finding.location.path, $finding.check_name, $finding.description] | join("\n")) as $what
    | (.seen[$what] // 0) as $alike
    | .seen[$what] = $alike + 1
    | .all += [$finding + {fingerprint: ("\($what)\n\($alike)" | @base64)}])
| .all
