// The words of the language that are coloured. A test asks the program about each of them.

export const programs = 'gaussian orca gamess xtb mrcc maple amesp bdf mopac fcclasses other script'.split(' ');

/// Directives whose block is made of lines; each has a context of its own in grammar.mjs.
export const blockDirectives =
  'source program interface batch control when template param args runner preprocess process mod meta'.split(' ');
/// Directives that hold text: on their line, in the lines below, or in a heredoc.
export const textDirectives = ['keywords', 'extrainput', 'extrainputs', 'body'];

export const controlKeys =
  ('totcore totmem gpus totgpu gpu_type gputype gpu_mem gpumem finalgeom guess_converter guessconverter guess ' +
    'waitfreq alert localfirst externalinp verbosity geom').split(' ');
export const batchKeys = 'lane lanes collect cluster'.split(' ');
export const batchOptions =
  ('geo geometry geo-thresh geometry-threshold energy ener energy-threshold ener-thresh temperature temp min ' +
    'weight boltz-thresh accum boltz-accum').split(' ');

export const plotStatements =
  ('from axis legend title output format terminal size style theme missing x y intensity z yerr yerror error ' +
    'series threshold relative sort mode broaden range bins density limit diagonal fit metrics point column ' +
    'system orbitals orbital spin roots root states state arrow transition unit label value scale position ' +
    'visible order').split(' ');
export const plotOptions =
  'label unit log scale axis style value fwhm task multiplicity root to by'.split(' ');
export const plotKinds =
  ('barrier convergence curve spectrum scatter correlation heatmap matrixmap histogram hist bar barchart ' +
    'errorbar errorbars frontier fmo orbital-level orbital_levels orbitallevels excited excited-state ' +
    'excited_state excited-level excited_levels excitedlevels eslevel eslevels').split(' ');

export const deriveStatements =
  ('let require assert report emit formula profile bind from join where select group aggregate reduce sort ' +
    'limit unit').split(' ');
export const deriveOptions =
  'as by on to in and or not else matches for asc desc table value atomvec kv artifact csv tsv jsonl root unit from'
    .split(' ');

/// Kinds of fragments and the context of their lines.
export const fragmentKinds = {
  body: ['document', 'doc', 'task', 'task_body', 'taskbody', 'task-body'],
  process: ['process', 'command', 'commands', 'cmd', 'preprocess'],
  control: ['control'],
  mod: ['mod'],
  when: ['when'],
  meta: ['meta'],
  param: ['param'],
  args: ['args'],
  batch: ['batch'],
  text: ['text', 'body', 'extrainput'],
};
