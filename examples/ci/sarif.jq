# SARIF 2.1.0 from the JSON of `mqkit lint`:
#
#   mqkit lint --format json . | jq --arg root "$(pwd -P)" -f sarif.jq >lint.sarif
#
# Paths below `root` become relative to it; others stay absolute. Columns are the program's: they count bytes.

def relative: if startswith($root + "/") then .[($root | length) + 1:] else . end;

# A path as a URI reference: every part encoded, the slashes kept. An absolute path gets its scheme.
def uri:
  (if startswith("/") then "file://" else "" end) + (split("/") | map(@uri) | join("/"));

# "<file>:<line>:<column>-<line>:<column>" taken apart; the end may be missing, and so may the whole place.
def place:
  (capture("^(?<file>(.|\\n)*):(?<line>[0-9]+):(?<column>[0-9]+)(-(?<endLine>[0-9]+):(?<endColumn>[0-9]+))?$")
   | {file, line: (.line | tonumber), column: (.column | tonumber),
      endLine: (.endLine // null | if . then tonumber else null end),
      endColumn: (.endColumn // null | if . then tonumber else null end)})
  // {file: .};

def region:
  if .line then
    {startLine: .line, startColumn: .column} +
    (if .endLine then {endLine, endColumn} else {} end)
  else null end;

[.files[].issues[]] as $issues
| ([$issues[].code] | unique) as $rules
| {
    "$schema": "https://json.schemastore.org/sarif-2.1.0.json",
    version: "2.1.0",
    runs: [{
      tool: {driver: {name: "mqkit lint", rules: [$rules[] | {id: .}]}},
      results: [$issues[] | . as $issue | (.span | place) as $place | {
        ruleId: .code,
        ruleIndex: (.code as $code | $rules | index($code)),
        level: .severity,
        message: {text: .message},
        locations: [{physicalLocation:
          ({artifactLocation: {uri: ($place.file | relative | uri)}} +
           ($place | region | if . then {region: .} else {} end))}]
      }]
    }]
  }
