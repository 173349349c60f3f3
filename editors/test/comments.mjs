// The law of comments, for any editor: what it colours as a comment is what the program strips, and nothing else.
//
// A colouring is a function from texts to the columns at which the comment of each line begins, or -1 for a line
// without one.
import assert from 'node:assert/strict';
import { exampleFiles, exampleText, exampleTree, keptText, quotingPuzzles } from './program.mjs';

/// What is tried at each line of the examples: the line, or lines, in its place.
const changes = {
  'a comment behind a blank': (line) => `${line} # zz`,
  'a mark without a blank': (line) => `${line}#zz`,
  'odd quotes in the comment': (line) => `${line} # it's "zz`,
  'a line of its own': (line) => `# zz\n${line}`,
  'an indented line of its own': (line) => `    # zz\n${line}`,
};

export async function requireCommentsOfExamples(colour, files = exampleFiles) {
  const tree = exampleTree();
  const trials = files.flatMap((path) => {
    const lines = exampleText(path).replace(/\n$/, '').split('\n');
    return lines.flatMap((line, i) => Object.entries(changes).map(([change, make]) => {
      const changed = make(line);
      const text = [...lines.slice(0, i), changed, ...lines.slice(i + 1)].join('\n') + '\n';
      const column = changed.lastIndexOf('#', changed.indexOf('zz'));
      return { path, line, change, text, number: i, column };
    }));
  });
  const begins = await colour(trials.map(({ text }) => text));
  const originals = new Map(files.map((path) => [path, tree.original(path)]));
  let seen = { comment: 0, text: 0 };
  trials.forEach(({ path, line, change, text, number, column }, t) => {
    const comment = begins[t][number] !== -1 && begins[t][number] <= column;
    const stripped = tree.changed(path, text) === originals.get(path);
    // Where the program passes over any text (behind `matrix:`, or behind a number), a mark tells nothing.
    if (!comment && stripped && tree.changed(path, text.replace(/#(?=[^#\n]*zz)/, '')) === originals.get(path)) {
      return;
    }
    assert.equal(comment, stripped,
      `${path}:${number + 1}: ${change}: coloured as ${comment ? 'a comment' : 'text'}: ${JSON.stringify(line)}`);
    ++seen[comment ? 'comment' : 'text'];
  });
  return seen;
}

export async function requireCommentsOfPuzzles(colour, count) {
  const puzzles = quotingPuzzles(count);
  const kept = keptText(puzzles);
  const texts = puzzles.map((line) => `$t\n  %when ${line}\n`);
  const begins = await colour(texts);
  puzzles.forEach((line, i) => {
    const whole = `  %when ${line}`;
    const begin = begins[i][1];
    const shown = (begin === -1 ? whole : whole.slice(0, begin)).trim().slice('%when'.length).trim();
    assert.equal(shown, kept[i], JSON.stringify(line));
  });
}
