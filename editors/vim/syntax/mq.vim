" Task files of mqkit.
"
" Whether a quote quotes depends on the whole line: a kind of quote takes part only when the line holds an even
" number of it, those behind a backslash not counted. So what is a string and what is a comment is decided by
" looking back to the start of the line (s:open).
if exists('b:current_syntax')
  finish
endif
let s:cpo_save = &cpo
set cpo&vim

syntax case match
syntax sync fromstart

" ---- lines

function s:pairs(quote) abort
  let other = '\%([^' . a:quote . '\\]\|\\.\)*'
  return '\%(' . other . a:quote . other . a:quote . '\)\+' . other . '\\\?$'
endfunction
let s:double = '\%(' . s:pairs('"') . '\)'
let s:single = '\%(' . s:pairs("'") . '\)'
let s:doubleString = '"\%(\\.\|[^"\\]\)*"'
let s:singleString = '''\%(\\.\|[^''\\]\)*'''
" The line up to here, where both kinds, one kind or neither quote.
let s:both = '^' . s:double . '\@=' . s:single . '\@=\%(' . s:doubleString . '\|' . s:singleString . '\|[^"'']\)*'
let s:onlyDouble = '^' . s:double . '\@=' . s:single . '\@!\%(' . s:doubleString . '\|[^"]\)*'
let s:onlySingle = '^' . s:double . '\@!' . s:single . '\@=\%(' . s:singleString . '\|[^'']\)*'
let s:neither = '^' . s:double . '\@!' . s:single . '\@!.*'
" What is looked for comes first and the look back behind it: that is quick.
let s:mark = '\%(^#\|\s\@1<=#\%(\%(' . join([s:both, s:onlyDouble, s:onlySingle, s:neither], '\|') . '\)#\)\@<=\).*$'
let s:openDouble = '"\%(\%(' . s:both . '\|' . s:onlyDouble . '\)"\)\@<='
let s:openSingle = '''\%(\%(' . s:both . '\|' . s:onlySingle . '\)''\)\@<='

" What ends a word of structure, and the lines that end a block.
let s:behind = '\%( \|\s*$\|\s\+#\)\@='
let s:directive = '\s*%\%(\S\|\s\+[^ \t#]\)'
let s:header = '\s*\$\%(\S\|\s\+[^ \t#]\)'
let s:capture = '\s*@\%(plot\|derive\)' . s:behind
let s:loop = '\s*\%(@foreach?\?\s\+\h\|@end\s*\%($\|\s\@<=#\)\)'
let s:include = '\s*&INCLUDE' . s:behind
let s:fragment = '\s*&FRAGMENT' . s:behind
let s:taskFile = '&INCLUDE \+[^#]*\.\%(mq\|projmq\)\>'
let s:end = ' end=/^\%(' . join([s:directive, s:header, s:capture, s:taskFile, s:fragment], '\|') . '\)\@=/'

execute 'syntax match mqComment /\%#=1' . s:mark . '/ contained contains=mqTodo,@Spell'
syntax keyword mqTodo contained TODO FIXME XXX NOTE
" Only on the line of a directive: in the text below it nothing is a comment.
execute 'syntax match mqHeadComment /\%#=1\%(^\s*%.*\)\@<=' . s:mark . '/ contained contains=mqTodo,@Spell'
execute 'syntax match mqHeredocComment /\%#=1\%(^\s*%\%(keywords\|body\|extrainputs\?\)\s\+<<.*\)\@<=' . s:mark
      \ . '/ contained contains=mqTodo,@Spell'
execute 'syntax match mqString /\%#=1' . s:openDouble . '\%(\\.\|[^"\\]\)*"\?/ contained contains=mqEscape,mqKey'
execute 'syntax match mqString /\%#=1' . s:openSingle . '\%(\\.\|[^''\\]\)*''\?/ contained contains=mqEscape,mqKey'
syntax match mqEscape /\\./ contained
syntax match mqKey /\[[A-Za-z0-9_.\-]\+\]/ contained
syntax match mqNumber /\%([A-Za-z0-9_.\-]\)\@<![-+]\?\%(\d\+\%(\.\d*\)\?\|\.\d\+\)\%([eE][-+]\?\d\+\)\?\%([A-Za-z0-9_.]\)\@!/ contained
syntax region mqSnapshot start=/{{/ end=/}}\|$/ oneline contained contains=mqSnapshot,mqKey
syntax match mqOperator /==\|!=\|<=\|>=\|[<>=]/ contained

" ---- the prelude: everything in front of the body

execute 'syntax match mqComment /\%#=1' . s:mark . '/ contains=mqTodo,@Spell'
syntax match mqYamlComment /\%(^\|\s\)\@<=#.*$/ contained contains=mqTodo,@Spell
syntax match mqPreludeKey /^\s*\%(- \+\)*\zs[^ \t#:"'\[\]{},&$%@-][^:#]*\ze:\%(\s\|$\)/ contained
syntax region mqYamlString start=/\%(\%(:\|^-\|\s-\)\s*\)\@<="/ skip=/\\./ end=/"/ contained
syntax region mqYamlString start=/\%(\%(:\|^-\|\s-\)\s*\)\@<='/ skip=/''/ end=/'/ contained
syntax region mqYamlFlow matchgroup=mqDelimiter start=/\%(\%(:\|^-\|\s-\)\s*\)\@<=[\[{]/ end=/[\]}]/ contained
      \ contains=mqYamlInner,mqYamlFlowString,mqYamlComment,mqNumber
syntax region mqYamlInner matchgroup=mqDelimiter start=/[\[{]/ end=/[\]}]/ contained
      \ contains=mqYamlInner,mqYamlFlowString,mqYamlComment,mqNumber
syntax region mqYamlFlowString start=/\%([\[{,:]\s*\)\@<="/ skip=/\\./ end=/"/ contained
syntax region mqYamlFlowString start=/\%([\[{,:]\s*\)\@<='/ skip=/''/ end=/'/ contained
syntax region mqYamlBlock start=/^\z(\s*\)\%(- \+\)*[^ \t#:][^:#]*:\s\+[|>][-+0-9]*\s*\%($\|#\)\@=/ skip=/^\s*$/
      \ end=/^\%(\z1\s\)\@!/ contained contains=mqPreludeKey,mqYamlHeadComment
syntax match mqYamlHeadComment /\%(:\s\+[|>][-+0-9]*\s\+\)\@<=#.*$/ contained
execute 'syntax region mqYaml start=/^[^ \t#%$@&:][^:]*:/ end=/^\%('
      \ . join([s:header, s:capture, s:loop, s:include, s:fragment, 'define:', 'matrix:', '%'], '\|') . '\)\@=/'
      \ . ' contains=mqPreludeKey,mqYamlString,mqYamlFlow,mqYamlBlock,mqYamlComment,mqNumber keepend'
execute 'syntax region mqDefine matchgroup=mqPreludeWord start=/^\%(define\|matrix\):/'
      \ . ' end=/^\%(  \)\@!\%(\s*[^ \t#]\)\@=/ end=/^\%(' . s:header . '\)\@=/'
      \ . ' contains=mqDefineKey,mqString,mqComment,mqNumber'
syntax match mqDefineKey /^\s*\%(-\s\+\)\?\zs[^ \t:#"'-][^:#]*\ze:/ contained

" ---- loops and includes: they do not end a block

execute 'syntax match mqLoop /^\%(' . s:loop . '\)\@=.*$/ contained contains=mqLoopWord,mqLoopName,mqComment,mqNumber'
syntax match mqLoopWord /^\s*@\%(foreach?\?\|end\)/ contained
syntax match mqLoopWord /\s\@<=in\s\@=/ contained
syntax match mqLoopName /\%(@foreach?\?\s\+\)\@<=[A-Za-z0-9_.\-]\+/ contained
execute 'syntax region mqInclude start=/^' . s:include . '/rs=s end=/$/'
      \ . ' contains=mqIncludeWord,mqIncludeName,mqAngle,mqString,mqComment,mqKey,mqParentheses'
syntax region mqParentheses start=/(/ end=/)/ contained contains=mqParentheses,mqParameter,mqString,mqComment,mqKey
syntax match mqIncludeWord /^\s*&INCLUDE/ contained
syntax match mqIncludeWord /\s\@<=as\s\@=/ contained
syntax match mqIncludeName /\%(&INCLUDE\s\+\)\@<=\h[A-Za-z0-9_.\-]*\s*(\@=/ contained
syntax match mqAngle /<[^>]*>/ contained
syntax match mqParameter /\%(^\|[(,]\)\@<=\s*\zs\h[A-Za-z0-9_\-]*/ contained
syntax cluster mqBetween contains=mqLoop,mqInclude

" ---- the body

execute 'syntax region mqBody start=/^\%(' . join([s:header, s:directive, s:capture, s:loop], '\|') . '\)\@=/ end=/\%$/'
      \ . ' contains=@mqBodyLines'
execute 'syntax region mqLibrary start=/^\%(' . s:fragment . '\)\@=/ end=/\%$/ contains=@mqBodyLines,@mqFragments'
execute 'syntax match mqTask /^\%(' . s:header . '\)\@=.*$/ contained contains=mqComment,mqKey,mqDollar'
syntax match mqDollar /^\s*\zs\$/ contained
syntax match mqFault /^\s*%\S\+/ contained contains=mqComment
syntax cluster mqBodyLines contains=mqTask,mqFault,mqComment,mqString,@mqBetween,@mqBlocks
syntax cluster mqBlocks contains=
      \mqSimple,mqProgram,mqSource,mqControl,mqBatch,mqWhen,mqMod,mqMeta,mqParam,mqArgs,mqInterface,mqProcess,
      \mqInline,mqText,mqHeredoc,mqTaskPlot,mqPlot,mqDerive
syntax cluster mqLine contains=mqString,mqComment,mqKey,mqNumber,@mqBetween

function s:block(group, keywords, contains) abort
  execute 'syntax region ' . a:group . ' matchgroup=mqDirective start=/^\s*%\%(' . a:keywords . '\)' . s:behind . '/'
        \ . s:end . ' contained contains=@mqLine,' . a:contains
endfunction
call s:block('mqSimple', 'template\|runner', 'mqNothing')
call s:block('mqProgram', 'program', 'mqProgramName')
call s:block('mqInterface', 'interface', 'mqConstant')
call s:block('mqSource', 'source', 'mqSourceWord,mqConstant,mqOption')
call s:block('mqControl', 'control', 'mqControlKey,mqConstant')
call s:block('mqBatch', 'batch', 'mqBatchKey,mqBatchWord,mqOption')
call s:block('mqWhen', 'when', 'mqWhenWord,mqConstant,mqSnapshot,mqOperator')
call s:block('mqMod', 'mod', 'mqModWord,mqOption')
call s:block('mqMeta', 'meta', 'mqMetaKey')
call s:block('mqParam', 'param', 'mqOption')
call s:block('mqArgs', 'args', 'mqArgument')
call s:block('mqProcess', 'preprocess\|process', 'mqNothing')
" Text on the directive's own line; what is below it means nothing.
call s:block('mqInline', 'keywords\|body\|extrainputs\?', 'mqNothing')
execute 'syntax region mqText matchgroup=mqDirective start=/^\s*%\%(body\|extrainputs\?\)\%(\s*$\|\s\+#\)\@=/' . s:end
      \ . ' contained contains=mqHeadComment,mqKey,@mqBetween'
syntax region mqHeredoc matchgroup=mqDirective contained contains=mqHeredocComment,mqHeredocWord,mqKey,mqLoop
      \ start=/^\s*%\%(keywords\|body\|extrainputs\?\)\s\+\%(<<\s*\%($\|\s\@<=#\)\)\@=/ matchgroup=mqHeredocWord end=/^\s*EOF\s*$/
syntax region mqHeredoc matchgroup=mqDirective contained contains=mqHeredocComment,mqHeredocWord,mqKey,mqLoop
      \ start=/^\s*%\%(keywords\|body\|extrainputs\?\)\s\+\%(<<\s*\z([^ \t#]\S*\%(\s\+[^ \t#]\S*\)*\)\)\@=/ matchgroup=mqHeredocWord end=/^\s*\z1\s*$/
syntax match mqHeredocWord /\%(^\s*%\a\+\s\+\)\@<=<<\s*\%([^ \t#]\S*\%(\s\+[^ \t#]\S*\)*\)\?/ contained

syntax match mqProgramName /\s\@<=\c\%(gaussian\|orca\|gamess\|xtb\|mrcc\|maple\|amesp\|bdf\|mopac\|fcclasses\|other\|script\)\%(\s\|$\)\@=/ contained
syntax match mqConstant /\s\@<=\%(origin\|restart\|provider\|consume\|allothers\|true\|false\|yes\|no\|on\|off\|mokit\|multiwfn\|none\|check\)\%(\s\|$\|)\)\@=/ contained
syntax match mqSourceWord /^\s*\zsgeom\%(\.[A-Za-z0-9_\-]\+\)\?\s\@=/ contained
syntax match mqOption /\%([A-Za-z0-9_.:\-]\)\@<![A-Za-z_][A-Za-z0-9_.:\-]*=\@=/ contained
syntax match mqControlKey /^\s*\zs\%(totcore\|totmem\|gpus\|totgpu\|gpu_type\|gputype\|gpu_mem\|gpumem\|finalgeom\|guess_converter\|guessconverter\|guess\|waitfreq\|alert\|localfirst\|externalinp\|verbosity\|geom\)\%(\s\|$\)\@=/ contained
syntax match mqBatchKey /^\s*\zs\c\%(lanes\?\|collect\|cluster\)\%(\s\|$\)\@=/ contained
syntax match mqBatchWord /\s\@<=\c\%(\%(--\)\?required\|as\|to\|dist\|distance\|fingerprint\|rmsd\)\%(\s\|$\)\@=/ contained
syntax match mqWhenWord /\%([A-Za-z0-9_.\-]\)\@<!\c\%(completed\|defined\|and\|or\)\%([A-Za-z0-9_.\-]\)\@!/ contained
syntax match mqModWord /\%([A-Za-z0-9_.=\-]\)\@<!\c\%(charge\|spin\|geom\|basisset\)\%(\.[A-Za-z0-9_\-]\+\)\?\s\@=/ contained
syntax match mqModWord /\s\@<=\c\%(add\|subtract\|select\|remove\)\s\@=/ contained
syntax match mqMetaKey /^\s*\zsstrucid/ contained
syntax match mqArgument /["' \t]\@<=--\?\a[A-Za-z0-9_\-]*/ contained

" ---- plots and derives: their own comments, behind any byte outside strings and {{ }}

syntax match mqStatementComment /#.*$/ contained contains=mqTodo,@Spell
syntax match mqStatementEscape /\\./ contained
syntax region mqStatementString start=/"/ skip=/\\./ end=/"\|$/ oneline contained contains=mqEscape,mqKey
syntax region mqStatementString start=/'/ end=/'\|$/ oneline contained contains=mqKey
syntax cluster mqStatement contains=mqStatementComment,mqStatementEscape,mqStatementString,mqSnapshot,mqKey,mqNumber,mqFunction
syntax match mqFunction /\%([A-Za-z0-9_.]\)\@<!\h\w*(\@=/ contained
syntax match mqPlotOption /[ \t)]\@<=\c\%(label\|unit\|log\|scale\|axis\|style\|value\|fwhm\|task\|multiplicity\|root\|to\|by\)\%([A-Za-z0-9_.\-]\)\@!/ contained
syntax match mqPlotWord /^\s*\zs\c\%(from\|axis\|legend\|title\|output\|format\|terminal\|size\|style\|theme\|missing\|x\|y\|intensity\|z\|yerr\|yerror\|error\|series\|threshold\|relative\|sort\|mode\|broaden\|range\|bins\|density\|limit\|diagonal\|fit\|metrics\|point\|column\|system\|orbitals\?\|spin\|roots\?\|states\?\|arrow\|transition\|unit\|label\|value\|scale\|position\|visible\|order\)\%([A-Za-z0-9_.\-]\)\@!/ contained
syntax match mqDeriveOption /[ \t)]\@<=\c\%(as\|by\|on\|to\|in\|and\|or\|not\|else\|matches\|for\|asc\|desc\|table\|value\|atomvec\|kv\|artifact\|csv\|tsv\|jsonl\|root\|unit\|from\)\%([A-Za-z0-9_.\-]\)\@!/ contained
syntax match mqDeriveWord /^\s*\zs\c\%(let\|require\|assert\|report\|emit\|formula\|profile\|bind\|from\|join\|where\|select\|group\|aggregate\|reduce\|sort\|limit\|unit\)\%([A-Za-z0-9_.\-]\)\@!/ contained
execute 'syntax match mqBlockHead /^\%(' . s:capture . '\|\s*%plot' . s:behind . '\).*$/ contained contains=mqBlockWord,mqDirectivePlot,mqPlotKind,mqComment,mqKey'
syntax match mqBlockWord /^\s*@\%(plot\|derive\)/ contained
syntax match mqDirectivePlot /^\s*%plot/ contained
syntax match mqPlotKind /\%([@%]plot\s\+\)\@<=\S\+/ contained
syntax match mqFault /^\s*@end\S.*/ contained
let s:close = ' end=/^\%(\s*@end\s*\%($\|\s\@<=#\)\)\@=/ contained contains=mqBlockHead,mqFault,@mqStatement,'
execute 'syntax region mqPlot start=/^\s*@plot' . s:behind . '/rs=s,hs=s' . s:close . 'mqPlotWord,mqPlotOption'
execute 'syntax region mqDerive start=/^\s*@derive' . s:behind . '/rs=s,hs=s' . s:close . 'mqDeriveWord,mqDeriveOption'
execute 'syntax region mqTaskPlot start=/^\s*%plot' . s:behind . '/rs=s,hs=s' . s:end
      \ . ' contained contains=mqBlockHead,@mqStatement,mqPlotWord,mqPlotOption,@mqBetween'

" ---- libraries

syntax region mqFragmentHead start=/^\s*&FRAGMENT\s/ end=/$/ contained contains=mqFragmentWord,mqFragmentKind,mqComment,mqString,mqKey,mqParentheses
syntax match mqFragmentWord /^\s*&FRAGMENT/ contained
syntax match mqFragmentKind /\%(&FRAGMENT\s\+\)\@<=[A-Za-z0-9_\-]\+/ contained
syntax cluster mqFragments contains=mqFragmentHead
let s:fragmentEnd = ' end=/^\%(' . s:fragment . '\)\@=/ contained contains=mqFragmentHead,'
function s:lines(group, kinds, contains) abort
  execute 'syntax region ' . a:group . 'Fragment start=/^\s*&FRAGMENT \+\%(' . a:kinds . '\)\%(\s\|$\)\@=/rs=s,hs=s'
        \ . s:fragmentEnd . a:contains
  execute 'syntax cluster mqFragments add=' . a:group . 'Fragment'
endfunction
call s:lines('mqText', 'text\|body\|extrainput', 'mqTextLine,mqKey,@mqBetween')
call s:lines('mqProcess', 'process\|commands\?\|cmd\|preprocess', '@mqLine')
call s:lines('mqControl', 'control', '@mqLine,mqControlKey,mqConstant')
call s:lines('mqMod', 'mod', '@mqLine,mqModWord,mqOption')
call s:lines('mqWhen', 'when', '@mqLine,mqWhenWord,mqConstant,mqSnapshot,mqOperator')
call s:lines('mqMeta', 'meta', '@mqLine,mqMetaKey')
call s:lines('mqParam', 'param', '@mqLine,mqOption')
call s:lines('mqArgs', 'args', '@mqLine,mqArgument')
call s:lines('mqBatch', 'batch', '@mqLine,mqBatchKey,mqBatchWord,mqOption')

let s:links = {
      \ 'mqComment': 'Comment', 'mqHeadComment': 'Comment', 'mqHeredocComment': 'Comment', 'mqYamlComment': 'Comment',
      \ 'mqYamlHeadComment': 'Comment', 'mqStatementComment': 'Comment', 'mqTodo': 'Todo',
      \ 'mqString': 'String', 'mqStatementString': 'String', 'mqYamlString': 'String', 'mqYamlFlowString': 'String',
      \ 'mqYamlBlock': 'String', 'mqHeredoc': 'String', 'mqText': 'String', 'mqTextFragment': 'String',
      \ 'mqAngle': 'String', 'mqEscape': 'SpecialChar', 'mqKey': 'Identifier', 'mqSnapshot': 'Special',
      \ 'mqNumber': 'Number', 'mqOperator': 'Operator', 'mqHeredocWord': 'Delimiter', 'mqDelimiter': 'Delimiter',
      \ 'mqPreludeKey': 'Type', 'mqDefineKey': 'Type', 'mqPreludeWord': 'PreProc',
      \ 'mqLoopWord': 'Repeat', 'mqLoopName': 'Identifier', 'mqIncludeWord': 'Include', 'mqIncludeName': 'Function',
      \ 'mqParameter': 'Identifier', 'mqTask': 'Function', 'mqDollar': 'Delimiter', 'mqFault': 'Error',
      \ 'mqDirective': 'Statement', 'mqDirectivePlot': 'Statement', 'mqBlockWord': 'Statement', 'mqBlockHead': 'Function',
      \ 'mqPlotKind': 'Type', 'mqProgramName': 'Constant', 'mqConstant': 'Constant', 'mqSourceWord': 'Keyword',
      \ 'mqOption': 'Identifier', 'mqControlKey': 'Type', 'mqBatchKey': 'Type', 'mqBatchWord': 'Keyword',
      \ 'mqWhenWord': 'Keyword', 'mqModWord': 'Keyword', 'mqMetaKey': 'Type', 'mqArgument': 'Identifier',
      \ 'mqPlotWord': 'Keyword', 'mqPlotOption': 'Label', 'mqDeriveWord': 'Keyword', 'mqDeriveOption': 'Label',
      \ 'mqFunction': 'Function', 'mqFragmentWord': 'Define', 'mqFragmentKind': 'Type', 'mqFragmentHead': 'Function'}
for [s:group, s:target] in items(s:links)
  execute 'highlight default link ' . s:group . ' ' . s:target
endfor

delfunction s:pairs
delfunction s:block
delfunction s:lines
let b:current_syntax = 'mq'
let &cpo = s:cpo_save
unlet s:cpo_save
