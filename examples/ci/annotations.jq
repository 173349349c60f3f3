# Annotations of a GitHub run from the JSON of `mqkit lint`, one command a line:
#
#   mqkit lint --format json . | jq --raw-output --arg root "$(pwd -P)" -f annotations.jq

def relative: if startswith($root + "/") then .[($root | length) + 1:] else . end;

# What would end a command, or a value of it.
def data: gsub("%"; "%25") | gsub("\r"; "%0D") | gsub("\n"; "%0A");
def property: data | gsub(":"; "%3A") | gsub(","; "%2C");

def place:
  (capture("^(?<file>(.|\\n)*):(?<line>[0-9]+):(?<column>[0-9]+)(-[0-9]+:[0-9]+)?$"))
  // {file: ., line: null};

.files[].issues[]
| (.span | place) as $place
| "::\(.severity) file=\($place.file | relative | property)"
  + (if $place.line then ",line=\($place.line),col=\($place.column)" else "" end)
  + ",title=\(.code | property)::\(.message | data)"
