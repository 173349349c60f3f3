// Where comments are, by the program's own word: the measure of every editor's colours.
import { exampleFiles, exampleText, keptText, quotingPuzzles, unchanged } from './program.mjs';

/// What is tried at each line of the examples: the line, or lines, in its place.
const changes = {
  'a comment behind a blank': (line) => `${line} # zz`,
  'a mark without a blank': (line) => `${line}#zz`,
  'odd quotes in the comment': (line) => `${line} # it's "zz`,
  'a line of its own': (line) => `# zz\n${line}`,
  'an indented line of its own': (line) => `    # zz\n${line}`,
};

/// Comment marks at every line of every example. Each trial: its path and whole text, the number of the line and the
/// column of the mark (from 0), and whether the program strips it as a comment. Marks at places where the program
/// passes over any text (behind `matrix:`, or behind a number of `%control`) tell nothing and are left out.
export async function trialsOfExamples() {
  const trials = exampleFiles.flatMap((path) => {
    const lines = exampleText(path).replace(/\n$/, '').split('\n');
    return lines.flatMap((line, number) => Object.entries(changes).map(([change, make]) => {
      const changed = make(line);
      const text = [...lines.slice(0, number), changed, ...lines.slice(number + 1)].join('\n') + '\n';
      return { path, line, change, text, number, column: changed.lastIndexOf('#', changed.indexOf('zz')) };
    }));
  });
  const stripped = await unchanged(trials);
  const bare = trials.map(({ path, text }) => ({ path, text: text.replace(/#(?=[^#\n]*zz)/, '') }));
  const unmarked = trials.map((_, i) => i).filter((i) => stripped[i] && trials[i].change === 'a mark without a blank');
  const passedOver = await unchanged(unmarked.map((i) => bare[i]));
  const silent = new Set(unmarked.filter((_, k) => passedOver[k]));
  return trials.map((trial, i) => ({ ...trial, comment: stripped[i] })).filter((_, i) => !silent.has(i));
}

/// Lines of quotes, backslashes and marks, as one condition each; `kept` is what the program keeps of it as a value.
export function quotingTrials(count) {
  const puzzles = quotingPuzzles(count);
  return keptText(puzzles).map((kept, i) => {
    const line = `  %when ${puzzles[i]}`;
    return { text: `$t\n${line}\n`, number: 1, kept, line };
  });
}

/// What is left of a line whose comment begins at `begin` (-1: it has none), as the value of its directive.
export const valueBefore = (line, begin) =>
  (begin === -1 ? line : line.slice(0, begin)).trim().slice('%when'.length).trim();
